// Copyright Lodex contributors.
// A level read as a scene (LevelScene.h): the files a level is made of, found under its project's Content folder and
// read, then handed to the scene (LoadedLevel.h).
#include "LevelScene.h"

#include "ContentFiles.h"
#include "LevelInstanceNames.h"
#include "LoadedLevel.h"
#include "Packages/TaggedProperties.h"
#include "Packages/UnrealPackage.h"
#include "Cli/WholeFile.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <string_view>
#include <utility>

namespace
{
	namespace fs = std::filesystem;

	constexpr std::size_t RedirectLimit = 8;
	constexpr std::size_t ClassDepthLimit = 32;
	/** The deepest Level Instances are followed inside one another. */
	constexpr std::size_t InstanceDepthLimit = 16;
	/** From this many notes of one kind on, they are summed up in one line. */
	constexpr std::size_t GroupedFrom = 3;

	/** A package read from a file, kept for the lookups that need it again (Blueprint classes). */
	struct FReadPackage
	{
		std::string File;
		FUnrealPackage Package;
	};

	/** What a Blueprint class's package says of it: its default tags, when it saves them, and its super class. */
	struct FClassDefaults
	{
		bool bHasTags = false;
		FSharedTags Tags;
		std::string SuperPath;
	};

	bool IsGamePackage(const std::string& PackagePath)
	{
		return PackagePath.rfind("/Game/", 0) == 0;
	}

	/** The reader's state: where Content is, what has been read, and what to tell. */
	class FLevelLoader
	{
	public:
		FLevelLoader(const FLevelReadOptions& InOptions, FLevelScene& InOut)
			: Options(InOptions)
			, Out(InOut)
		{
		}

		bool Load(const std::string& Path, std::string& OutError);

	private:
		bool FindContentRoot(const std::string& Path, std::string& OutPackagePath);
		void FindGameContentOfPlugin();
		void NoteMissingExternalActors(const FLoadedLevel& Level);
		std::string FileOfPackage(const std::string& PackagePath) const;
		/** Whether a package is one of the project's content, mounted at `/Game/` or at ContentRoot's mount point. */
		bool IsContentPackage(const std::string& PackagePath) const
		{
			return IsGamePackage(PackagePath) || PackagePath.rfind(MountPoint, 0) == 0;
		}
		bool ReadPackage(
			const std::string& File, const std::string& PackagePath, FUnrealPackage& OutPackage, std::string& OutError);
		bool LoadLevel(std::string File, std::string PackagePath, std::vector<FLoadedLevel>& Levels,
			std::vector<std::string>& OutStreaming, std::string& OutError);
		/** Each external actor package of the level; one that cannot be read is a note. */
		void LoadExternalActors(FLoadedLevel& Level);
		bool FillClassDefaultTags(FLevelActor& Actor, std::string& OutError);
		/** The defaults of a Blueprint class, read once; null when its package is not under Content or (bOutFailed,
		 * OutError) cannot be read. */
		const FClassDefaults* DefaultsOf(const std::string& ClassPath, std::string& OutError, bool& bOutFailed);
		/** Whether the class at ClassPath is the engine's class Target or derives from it, as its packages show. */
		bool DerivesFrom(const std::string& ClassPath, const std::string& Target, bool& bOut, std::string& OutError);
		/** The levels of the Level Instances of each level read, and of theirs, each appended to Levels. */
		void LoadLevelInstances(std::vector<FLoadedLevel>& Levels);
		void LoadLevelInstance(std::vector<FLoadedLevel>& Levels, std::size_t Host, const FLevelActor& Actor);
		const FReadPackage* FindClassPackage(const std::string& PackagePath, std::string& OutError, bool& bOutFailed);
		/** A part of the level (Kind: an external actor package, a sub-level, a Blueprint class) that could not be
		 * read: Error names its file and why. */
		void NoteUnreadable(const std::string& Kind, const std::string& Error);
		/** A note of a kind that is summed up when there are many: Summary says what N of them are ("N " first). */
		void NoteGrouped(const std::string& Summary, const std::string& Line);
		/** The grouped notes: each on its own line, or one line per kind when many and not verbose. */
		void FlushGroupedNotes();
		void MarkLevelsStreamedOnDemand(std::vector<FLoadedLevel>& Levels) const;
		/** Drops the objects whose class derives from no component class; an unreadable class is a note. */
		void KeepComponentsOfComponentClasses(FLoadedLevel& Level);
		bool IsComponentClass(const std::string& ClassPath, bool& bOutComponent, std::string& OutError);

		const FLevelReadOptions& Options;
		FLevelScene& Out;
		fs::path ContentRoot;
		/** Where ContentRoot is mounted: `/Game/`, or `/NAME/` for the content of plug-in NAME. */
		std::string MountPoint = "/Game/";
		/** For a plug-in's level, the game's own Content folder (mounted at `/Game/`), when the project has one. */
		fs::path GameContentRoot;
		std::set<std::string> ReadLevels;
		std::map<std::string, std::unique_ptr<FReadPackage>> ClassPackages;
		std::set<std::string> MissingClasses;
		/** The sub-levels a level names as streamed in at play time, and those one names as loaded at start. */
		std::set<std::string> OnDemandLevels;
		std::set<std::string> StartLevels;
		/** Whether each Blueprint class an object of an actor has derives from a component class. */
		std::map<std::string, bool> ComponentClasses;
		/** Each Blueprint class's defaults, read once however many actors have the class. */
		std::map<std::string, FClassDefaults> ClassDefaults;
		/** Blueprint class packages that could not be read, and why. */
		std::map<std::string, std::string> UnreadableClasses;
		/** By kind (their summary), in the order seen: the notes summed up when many (each once). */
		std::vector<std::pair<std::string, std::vector<std::string>>> Grouped;
		/** Every grouped note so far (its summary, a line break, its line): each is kept once, found in a lookup. */
		std::set<std::string> GroupedSeen;
	};

	std::string ShownPath(const fs::path& Path)
	{
		return Path.lexically_normal().generic_string();
	}

	/**
	 * Whether the map is a World Partition map: its world settings' `WorldPartition` subobject (AWorldSettings::
	 * WorldPartition) is saved in it as an export of class WorldPartition. Its actors are then saved one a package.
	 */
	bool HasWorldPartitionExport(const FUnrealPackage& Package)
	{
		for (std::size_t Index = 0; Index < Package.GetExports().size(); ++Index)
		{
			if (Package.ClassNameOf(static_cast<std::int32_t>(Index + 1)) == "WorldPartition")
			{
				return true;
			}
		}
		return false;
	}

	/**
	 * Whether PackagePath is a package under Mount (`/Game/`, or `/NAME/` for plug-in NAME) the engine could save:
	 * Mount and a name with no empty part, no trailing '/', and none of the characters the engine refuses in a package
	 * name (INVALID_LONGPACKAGE_CHARACTERS: `\:*?"<>|' ,.&!~` and line breaks, tabs, '@', '#'). So a name never leads
	 * out of Content: no "..", no absolute path after the mount point, no backslash.
	 */
	bool IsPackageNameUnder(const std::string& PackagePath, const std::string& Mount)
	{
		if (PackagePath.rfind(Mount, 0) != 0 || PackagePath.size() == Mount.size() || PackagePath.back() == '/' ||
			PackagePath.find("//") != std::string::npos)
		{
			return false;
		}
		for (const char Character : PackagePath)
		{
			if (static_cast<unsigned char>(Character) < 0x20 ||
				std::string_view("\\:*?\"<>|' ,.&!~@#").find(Character) != std::string_view::npos)
			{
				return false;
			}
		}
		return true;
	}
}

void FLevelLoader::FindGameContentOfPlugin()
{
	for (fs::path Folder = ContentRoot.parent_path(); Folder != Folder.parent_path(); Folder = Folder.parent_path())
	{
		std::error_code Code;
		if (Folder.filename() == "Plugins" && fs::is_directory(Folder.parent_path() / "Content", Code))
		{
			GameContentRoot = Folder.parent_path() / "Content";
			return;
		}
	}
}

void FLevelLoader::NoteMissingExternalActors(const FLoadedLevel& Level)
{
	if (ContentRoot.empty() || Level.PackagePath.rfind(MountPoint, 0) != 0)
	{
		return;
	}
	const fs::path Folder = ContentRoot / "__ExternalActors__" / fs::path(Level.PackagePath.substr(MountPoint.size()));
	std::error_code Code;
	const std::string Where = fs::is_directory(Folder, Code)
		? "its external actor folder " + ShownPath(Folder) + " holds no actor packages"
		: "it has no external actor folder " + ShownPath(Folder);
	Out.Notes.push_back(LodexText::EscapeControlsAndIllFormed(
		Level.File + ": a World Partition map, but " + Where + "; only the actors the map itself saves are read"));
}

bool FLevelLoader::FindContentRoot(const std::string& Path, std::string& OutPackagePath)
{
	std::error_code Code;
	const fs::path Absolute = fs::absolute(fs::path(Path), Code).lexically_normal();
	for (fs::path Folder = Absolute.parent_path(); !Folder.empty(); Folder = Folder.parent_path())
	{
		if (Folder.filename() == "Content")
		{
			ContentRoot = Folder;
			const std::string Plugin = PluginOfContentFolder(Folder);
			if (!Plugin.empty())
			{
				MountPoint = "/" + Plugin + "/";
				FindGameContentOfPlugin();
			}
			const fs::path Relative = Absolute.lexically_relative(Folder).replace_extension();
			OutPackagePath = MountPoint + Relative.generic_string();
			return true;
		}
		if (Folder == Folder.parent_path())
		{
			break;
		}
	}
	OutPackagePath = "/Game/" + fs::path(Path).stem().generic_string();
	return false;
}

std::string FLevelLoader::FileOfPackage(const std::string& PackagePath) const
{
	const bool bGame = !GameContentRoot.empty() && IsPackageNameUnder(PackagePath, "/Game/");
	if (ContentRoot.empty() || (!bGame && !IsPackageNameUnder(PackagePath, MountPoint)))
	{
		return std::string();
	}
	const fs::path Base = bGame ? GameContentRoot / fs::path(PackagePath.substr(6))
								: ContentRoot / fs::path(PackagePath.substr(MountPoint.size()));
	for (const char* Extension : {".umap", ".uasset"})
	{
		fs::path Candidate = Base;
		Candidate += Extension;
		if (Options.Files != nullptr)
		{
			Options.Files->FetchFile(Candidate.string());
		}
		std::error_code Code;
		if (fs::is_regular_file(Candidate, Code))
		{
			return ShownPath(Candidate);
		}
	}
	return std::string();
}

bool FLevelLoader::ReadPackage(
	const std::string& File, const std::string& PackagePath, FUnrealPackage& OutPackage, std::string& OutError)
{
	std::string Bytes;
	if (!ReadWholeFile(File, Bytes, OutError, LodexSceneFileRules))
	{
		return false;
	}
	if (IsGitLfsPointer(Bytes))
	{
		OutError = GitLfsPointerError(File);
		return false;
	}
	FPackageError Error;
	if (!FUnrealPackage::Read(std::move(Bytes), PackagePath, OutPackage, Error))
	{
		OutError = Error.Describe(File);
		return false;
	}
	return true;
}

bool FLevelLoader::LoadLevel(std::string File, std::string PackagePath, std::vector<FLoadedLevel>& Levels,
	std::vector<std::string>& OutStreaming, std::string& OutError)
{
	FLevelPackageContents Contents;
	bool bPartitioned = false;
	for (std::size_t Redirects = 0;; ++Redirects)
	{
		FUnrealPackage Package;
		FPackageError Error;
		if (!ReadPackage(File, PackagePath, Package, OutError))
		{
			return false;
		}
		bPartitioned = HasWorldPartitionExport(Package);
		if (!ReadLevelPackage(Package, Contents, Error))
		{
			OutError = Error.Describe(File);
			return false;
		}
		if (Contents.RedirectTarget.empty())
		{
			break;
		}
		const std::string Target = Contents.RedirectTarget.substr(0, Contents.RedirectTarget.find('.'));
		const std::string TargetFile = FileOfPackage(Target);
		if (TargetFile.empty())
		{
			OutError = File + ": a redirector to " + LodexText::EscapeControlsAndIllFormed(Target) +
				", which is not under " +
				(ContentRoot.empty() ? std::string("a Content folder") : ShownPath(ContentRoot));
			return false;
		}
		if (Redirects + 1 == RedirectLimit || ReadLevels.count(Target) != 0)
		{
			OutError = File + ": a redirector to " + LodexText::EscapeControlsAndIllFormed(Target) +
				", which redirects back or on past " + std::to_string(RedirectLimit) + " redirectors";
			return false;
		}
		Out.Notes.push_back(LodexText::EscapeControlsAndIllFormed(
			File + ": a redirector to " + Target + "; followed it to " + TargetFile));
		ReadLevels.insert(PackagePath);
		File = TargetFile;
		PackagePath = Target;
	}
	ReadLevels.insert(PackagePath);
	if (std::find(Out.Files.begin(), Out.Files.end(), File) == Out.Files.end())
	{
		Out.Files.push_back(File); // a level instanced many times is one file
	}
	FLoadedLevel Level;
	Level.PackagePath = PackagePath;
	Level.WorldPath = Contents.WorldPath;
	Level.File = File;
	Level.bWorldPartition = bPartitioned;
	Level.Sources.push_back(FActorSource{File, PackagePath});
	Level.Actors.reserve(Contents.Actors.size());
	for (FLevelActor& Actor : Contents.Actors)
	{
		Level.Actors.push_back(FLoadedActor{std::move(Actor), 0});
	}
	LoadExternalActors(Level);
	if (bPartitioned && Level.Sources.size() == 1)
	{
		NoteMissingExternalActors(Level);
	}
	KeepComponentsOfComponentClasses(Level);
	for (FLoadedActor& Loaded : Level.Actors)
	{
		std::string ClassError;
		if (!FillClassDefaultTags(Loaded.Actor, ClassError))
		{
			NoteUnreadable("Blueprint class", ClassError);
		}
	}
	for (const std::string& Sub : Contents.StreamingLevelPackages)
	{
		const bool bOnDemand = std::find(Contents.OnDemandLevelPackages.begin(), Contents.OnDemandLevelPackages.end(),
								   Sub) != Contents.OnDemandLevelPackages.end();
		(bOnDemand ? OnDemandLevels : StartLevels).insert(Sub);
	}
	OutStreaming = std::move(Contents.StreamingLevelPackages);
	Levels.push_back(std::move(Level));
	return true;
}

void FLevelLoader::LoadExternalActors(FLoadedLevel& Level)
{
	if (ContentRoot.empty() || Level.PackagePath.rfind(MountPoint, 0) != 0)
	{
		return;
	}
	const fs::path Folder = ContentRoot / "__ExternalActors__" / fs::path(Level.PackagePath.substr(MountPoint.size()));
	if (Options.Files != nullptr)
	{
		Options.Files->FetchFolder(Folder.string());
	}
	std::error_code Code;
	if (!fs::is_directory(Folder, Code))
	{
		return;
	}
	std::vector<fs::path> Files;
	for (fs::recursive_directory_iterator It(Folder, Code), End; !Code && It != End; It.increment(Code))
	{
		if (It->path().extension() == ".uasset" && It->is_regular_file(Code))
		{
			Files.push_back(It->path());
		}
	}
	std::sort(Files.begin(), Files.end());
	const std::string LevelPath = Level.WorldPath + ":PersistentLevel";
	for (const fs::path& File : Files)
	{
		const std::string Shown = ShownPath(File);
		const std::string PackagePath =
			MountPoint + File.lexically_relative(ContentRoot).replace_extension().generic_string();
		FUnrealPackage Package;
		FPackageError Error;
		std::vector<FLevelActor> Actors;
		std::string OtherLevel;
		std::string ActorError;
		if (!ReadPackage(Shown, PackagePath, Package, ActorError))
		{
			NoteUnreadable("external actor package", ActorError);
			continue;
		}
		if (!ReadExternalActorPackage(Package, LevelPath, Actors, OtherLevel, Error))
		{
			NoteUnreadable("external actor package", Error.Describe(Shown));
			continue;
		}
		if (Actors.empty() && !OtherLevel.empty())
		{
			Out.Notes.push_back(LodexText::EscapeControlsAndIllFormed(
				Shown + ": an actor of " + OtherLevel + ", not of " + LevelPath + "; left out"));
		}
		Out.ExternalActorCount += Actors.size();
		Level.Sources.push_back(FActorSource{Shown, PackagePath});
		for (FLevelActor& Actor : Actors)
		{
			Level.Actors.push_back(FLoadedActor{std::move(Actor), Level.Sources.size() - 1});
		}
	}
}

const FReadPackage* FLevelLoader::FindClassPackage(
	const std::string& PackagePath, std::string& OutError, bool& bOutFailed)
{
	bOutFailed = false;
	const auto Unreadable = UnreadableClasses.find(PackagePath);
	if (Unreadable != UnreadableClasses.end())
	{
		OutError = Unreadable->second;
		bOutFailed = true;
		return nullptr;
	}
	const auto Found = ClassPackages.find(PackagePath);
	if (Found != ClassPackages.end())
	{
		return Found->second.get();
	}
	std::unique_ptr<FReadPackage>& Slot = ClassPackages[PackagePath];
	const std::string File = FileOfPackage(PackagePath);
	if (File.empty())
	{
		return nullptr;
	}
	auto Read = std::make_unique<FReadPackage>();
	Read->File = File;
	if (!ReadPackage(File, PackagePath, Read->Package, OutError))
	{
		UnreadableClasses.emplace(PackagePath, OutError);
		bOutFailed = true;
		return nullptr;
	}
	Slot = std::move(Read);
	return Slot.get();
}

const FClassDefaults* FLevelLoader::DefaultsOf(const std::string& ClassPath, std::string& OutError, bool& bOutFailed)
{
	bOutFailed = false;
	const auto Known = ClassDefaults.find(ClassPath);
	if (Known != ClassDefaults.end())
	{
		return &Known->second;
	}
	const std::size_t Dot = ClassPath.find('.');
	if (Dot == std::string::npos)
	{
		return nullptr;
	}
	const FReadPackage* Class = FindClassPackage(ClassPath.substr(0, Dot), OutError, bOutFailed);
	if (Class == nullptr)
	{
		return nullptr;
	}
	FPackageError Error;
	FClassDefaults Defaults;
	if (!ReadClassDefaults(
			Class->Package, ClassPath.substr(Dot + 1), Defaults.bHasTags, Defaults.Tags, Defaults.SuperPath, Error))
	{
		OutError = Error.Describe(Class->File);
		bOutFailed = true;
		return nullptr;
	}
	return &ClassDefaults.emplace(ClassPath, std::move(Defaults)).first->second;
}

bool FLevelLoader::FillClassDefaultTags(FLevelActor& Actor, std::string& OutError)
{
	std::string ClassPath = Actor.ClassPath;
	std::set<std::string> Seen;
	for (std::size_t Depth = 0; !Actor.bHasTags && Depth < ClassDepthLimit && IsContentPackage(ClassPath); ++Depth)
	{
		if (!Seen.insert(ClassPath).second || ClassPath.find('.') == std::string::npos)
		{
			break;
		}
		bool bFailed = false;
		const FClassDefaults* Defaults = DefaultsOf(ClassPath, OutError, bFailed);
		if (bFailed)
		{
			return false;
		}
		if (Defaults == nullptr)
		{
			const std::string PackagePath = ClassPath.substr(0, ClassPath.find('.'));
			if (MissingClasses.insert(PackagePath).second)
			{
				const std::string Where =
					ContentRoot.empty() ? std::string("a Content folder") : ShownPath(ContentRoot);
				NoteGrouped(
					"Blueprint classes are not under " + Where + ": the default tags of their actors are unknown",
					LodexText::EscapeControlsAndIllFormed("the Blueprint class " + ClassPath + " is not under " +
						Where + ": the default tags of its actors are unknown"));
			}
			break;
		}
		if (Defaults->bHasTags)
		{
			Actor.bHasTags = true;
			Actor.Tags = Defaults->Tags;
		}
		ClassPath = Defaults->SuperPath;
	}
	return true;
}

bool FLevelLoader::DerivesFrom(
	const std::string& ClassPath, const std::string& Target, bool& bOut, std::string& OutError)
{
	bOut = false;
	std::string Path = ClassPath;
	std::set<std::string> Seen;
	for (std::size_t Depth = 0; Depth < ClassDepthLimit && Seen.insert(Path).second; ++Depth)
	{
		if (Path == Target)
		{
			bOut = true;
			return true;
		}
		if (Path.empty() || Path.rfind("/Script/", 0) == 0)
		{
			return true; // an engine class other than Target
		}
		bool bFailed = false;
		const FClassDefaults* Defaults = DefaultsOf(Path, OutError, bFailed);
		if (Defaults == nullptr)
		{
			return !bFailed;
		}
		Path = Defaults->SuperPath;
	}
	return true;
}

bool FLevelLoader::IsComponentClass(const std::string& ClassPath, bool& bOutComponent, std::string& OutError)
{
	const auto Known = ComponentClasses.find(ClassPath);
	if (Known != ComponentClasses.end())
	{
		bOutComponent = Known->second;
		return true;
	}
	// Up the supers, as far as the class packages under Content show them, to a class named as components are.
	bOutComponent = false;
	std::string Path = ClassPath;
	std::set<std::string> Seen;
	for (std::size_t Depth = 0; Depth < ClassDepthLimit && Seen.insert(Path).second; ++Depth)
	{
		const std::size_t Dot = Path.find('.');
		const std::string Name = Dot == std::string::npos ? Path : Path.substr(Dot + 1);
		const auto EndsIn = [&Name](const std::string& Tail)
		{
			return Name.size() >= Tail.size() && Name.compare(Name.size() - Tail.size(), Tail.size(), Tail) == 0;
		};
		if (Name == "ActorComponent" || EndsIn("Component") || EndsIn("Component_C"))
		{
			bOutComponent = true;
			break;
		}
		if (Dot == std::string::npos || !IsContentPackage(Path))
		{
			break;
		}
		bool bFailed = false;
		const FClassDefaults* Defaults = DefaultsOf(Path, OutError, bFailed);
		if (bFailed)
		{
			return false;
		}
		if (Defaults == nullptr)
		{
			break;
		}
		Path = Defaults->SuperPath;
	}
	ComponentClasses.emplace(ClassPath, bOutComponent);
	return true;
}

void FLevelLoader::KeepComponentsOfComponentClasses(FLoadedLevel& Level)
{
	for (FLoadedActor& Loaded : Level.Actors)
	{
		std::vector<FLevelComponent>& Components = Loaded.Actor.Components;
		for (FLevelComponent& Component : Components)
		{
			bool bComponent = false;
			std::string ClassError;
			if (!Component.ClassToCheck.empty() && !IsComponentClass(Component.ClassToCheck, bComponent, ClassError))
			{
				NoteUnreadable("Blueprint class", ClassError);
				bComponent = false;
			}
			if (bComponent)
			{
				Component.ClassToCheck.clear();
			}
		}
		// What is left to check is no component: its class derives from none, as far as its packages show.
		Components.erase(std::remove_if(Components.begin(), Components.end(),
							 [](const FLevelComponent& Component) { return !Component.ClassToCheck.empty(); }),
			Components.end());
	}
}

void FLevelLoader::MarkLevelsStreamedOnDemand(std::vector<FLoadedLevel>& Levels) const
{
	// A sub-level any level names as loaded at start is loaded at start; the map itself always is.
	for (std::size_t Index = 1; Index < Levels.size(); ++Index)
	{
		Levels[Index].bStreamedOnDemand =
			OnDemandLevels.count(Levels[Index].PackagePath) != 0 && StartLevels.count(Levels[Index].PackagePath) == 0;
	}
}

bool FLevelLoader::Load(const std::string& Path, std::string& OutError)
{
	std::string PackagePath;
	if (!FindContentRoot(Path, PackagePath))
	{
		Out.Notes.push_back(LodexText::EscapeControlsAndIllFormed(Path +
			": not inside a Content folder; its external actors, sub-levels and Blueprint "
			"classes are not looked up"));
	}
	std::vector<FLoadedLevel> Levels;
	std::vector<std::string> Pending;
	if (!LoadLevel(Path, PackagePath, Levels, Pending, OutError))
	{
		return false;
	}
	if (!Options.bSubLevels && !Pending.empty())
	{
		std::string Names;
		for (const std::string& Name : Pending)
		{
			Names += (Names.empty() ? "" : ", ") + Name;
		}
		Out.Notes.push_back(LodexText::EscapeControlsAndIllFormed(Levels[0].File + ": sub-levels left out: " + Names));
		Pending.clear();
	}
	// Sub-levels in the order the levels name them, each read once; theirs after them.
	for (std::size_t Next = 0; Next < Pending.size(); ++Next)
	{
		const std::string SubLevel = Pending[Next];
		if (ReadLevels.count(SubLevel) != 0)
		{
			continue;
		}
		const std::string File = FileOfPackage(SubLevel);
		if (File.empty())
		{
			ReadLevels.insert(SubLevel);
			Out.Notes.push_back(LodexText::EscapeControlsAndIllFormed("the sub-level " + SubLevel + " is not under " +
				(ContentRoot.empty() ? std::string("a Content folder") : ShownPath(ContentRoot)) + "; left out"));
			continue;
		}
		std::vector<std::string> More;
		std::string SubLevelError;
		if (!LoadLevel(File, SubLevel, Levels, More, SubLevelError))
		{
			ReadLevels.insert(SubLevel);
			NoteUnreadable("sub-level", SubLevelError);
			continue;
		}
		++Out.SubLevelCount;
		Pending.insert(Pending.end(), More.begin(), More.end());
	}
	MarkLevelsStreamedOnDemand(Levels);
	LoadLevelInstances(Levels);
	FlushGroupedNotes();
	return BuildLevelScene(std::move(Levels), Out, OutError);
}

void FLevelLoader::LoadLevelInstances(std::vector<FLoadedLevel>& Levels)
{
	// Levels grows as instances are read: the levels of instances inside instances are read in turn.
	for (std::size_t Host = 0; Host < Levels.size(); ++Host)
	{
		for (std::size_t Index = 0; Index < Levels[Host].Actors.size(); ++Index)
		{
			const FLevelActor& Actor = Levels[Host].Actors[Index].Actor;
			if (Actor.InstancedWorld.empty() || Actor.bEditorOnly)
			{
				continue;
			}
			bool bInstance = false;
			std::string ClassError;
			if (!DerivesFrom(Actor.ClassPath, "/Script/Engine.LevelInstance", bInstance, ClassError))
			{
				NoteUnreadable("Blueprint class", ClassError);
				continue;
			}
			if (bInstance)
			{
				const FLevelActor Instance = Actor; // Levels may grow, and move its actors, below
				LoadLevelInstance(Levels, Host, Instance);
			}
		}
	}
}

void FLevelLoader::LoadLevelInstance(std::vector<FLoadedLevel>& Levels, std::size_t Host, const FLevelActor& Actor)
{
	const std::string World = Actor.InstancedWorld.substr(0, Actor.InstancedWorld.find('.'));
	const std::string Named = "the Level Instance " + Actor.Path + " of " + World;
	std::vector<std::string> Guids{Actor.Guid};
	std::size_t Depth = 1;
	for (std::size_t Up = Host;; Up = Levels[Up].InstanceHost, ++Depth)
	{
		// The engine refuses to load a level inside itself (ALevelInstance::CheckForLoop).
		if (Levels[Up].Sources.front().Package == World || Depth > InstanceDepthLimit)
		{
			Out.Notes.push_back(LodexText::EscapeControlsAndIllFormed(Named +
				(Depth > InstanceDepthLimit ? " lies " + std::to_string(InstanceDepthLimit) + " instances deep"
											: " lies inside that level itself") +
				"; its level is not read again"));
			return;
		}
		if (Levels[Up].InstanceActor.empty())
		{
			break;
		}
		Guids.push_back(Levels[Up].InstanceGuid);
	}
	const std::string File = FileOfPackage(World);
	if (File.empty())
	{
		Out.Notes.push_back(LodexText::EscapeControlsAndIllFormed(Named + ": its level is not under " +
			(ContentRoot.empty() ? std::string("a Content folder") : ShownPath(ContentRoot)) + "; left out"));
		return;
	}
	std::vector<std::string> Streaming; // a Level Instance's level is loaded without its streaming levels
	std::string Error;
	const std::size_t Count = Levels.size();
	if (!LoadLevel(File, World, Levels, Streaming, Error))
	{
		NoteUnreadable("Level Instance level", Error);
		return;
	}
	FLoadedLevel& Level = Levels[Count];
	std::string Loaded = LevelInstancePackageName(Level.PackagePath, Guids);
	if (Loaded.empty())
	{
		// The game gives an actor saved without a GUID a new one each time it runs, and so its level a new name.
		Loaded = "/Temp" + Level.PackagePath + "_LevelInstance_" + Actor.Name;
		Out.Notes.push_back(LodexText::EscapeControlsAndIllFormed(Named + " (or an instance it lies in) saves no " +
			"ActorGuid: the game names its level anew each time it runs; shown as " + Loaded));
	}
	if (Levels[Host].bWorldPartition)
	{
		NoteGrouped("Level Instances lie in World Partition maps: the game moves their actors into the map's own "
					"streaming cells; shown in levels of their own",
			LodexText::EscapeControlsAndIllFormed(Named + " lies in the World Partition map " + Levels[Host].File +
				": the game moves its actors into the map's own streaming cells; shown in a level of its own"));
	}
	// Every object path of the level starts with its package: the game's objects start with the instance's.
	const std::string From = Level.PackagePath + ".";
	const std::string To = Loaded + ".";
	const auto Rename = [&From, &To](std::string& Path)
	{
		if (Path.compare(0, From.size(), From) == 0)
		{
			Path.replace(0, From.size(), To);
		}
	};
	Rename(Level.WorldPath);
	for (FLoadedActor& Entry : Level.Actors)
	{
		Rename(Entry.Actor.Path);
		Rename(Entry.Actor.AttachParentPath);
		for (FLevelComponent& Component : Entry.Actor.Components)
		{
			Rename(Component.Path);
		}
	}
	Level.PackagePath = Loaded;
	Level.InstanceActor = Actor.Path;
	Level.InstanceGuid = Actor.Guid;
	Level.InstanceHost = Host;
	Level.bStreamedOnDemand = Levels[Host].bStreamedOnDemand;
	++Out.LevelInstanceCount;
}

void FLevelLoader::NoteUnreadable(const std::string& Kind, const std::string& Error)
{
	const std::string Kinds = Kind + (Kind.back() == 's' ? "es" : "s");
	NoteGrouped(Kinds + " could not be read and are left out",
		LodexText::EscapeControlsAndIllFormed(Error) + "; this " + Kind + " is left out");
}

void FLevelLoader::NoteGrouped(const std::string& Summary, const std::string& Line)
{
	auto Group = std::find_if(Grouped.begin(), Grouped.end(),
		[&Summary](const std::pair<std::string, std::vector<std::string>>& Entry) { return Entry.first == Summary; });
	if (Group == Grouped.end())
	{
		Grouped.emplace_back(Summary, std::vector<std::string>());
		Group = Grouped.end() - 1;
	}
	if (GroupedSeen.insert(Summary + "\n" + Line).second)
	{
		Group->second.push_back(Line);
	}
}

void FLevelLoader::FlushGroupedNotes()
{
	for (const auto& [Summary, Lines] : Grouped)
	{
		if (Options.bVerbose || Lines.size() < GroupedFrom)
		{
			Out.Notes.insert(Out.Notes.end(), Lines.begin(), Lines.end());
			continue;
		}
		Out.Notes.push_back(std::to_string(Lines.size()) + " " + Summary + "; the first: " + Lines.front() +
			"; --verbose lists them all");
	}
	Grouped.clear();
	GroupedSeen.clear();
}

bool ReadLevelScene(const std::string& Path, const FLevelReadOptions& Options, FLevelScene& Out, std::string& OutError)
{
	FLevelScene Scene;
	std::error_code Code;
	if (fs::is_directory(Path, Code))
	{
		OutError = Path + ": is a folder, not a level file";
		return false;
	}
	FLevelLoader Loader(Options, Scene);
	if (!Loader.Load(Path, OutError))
	{
		return false;
	}
	Out = std::move(Scene);
	return true;
}

bool IsUnrealPackageBytes(const std::string& Bytes)
{
	static const char Tag[] = {'\xC1', '\x83', '\x2A', '\x9E'};
	static const char Swapped[] = {'\x9E', '\x2A', '\x83', '\xC1'};
	return Bytes.size() >= 4 && (Bytes.compare(0, 4, Tag, 4) == 0 || Bytes.compare(0, 4, Swapped, 4) == 0);
}

bool IsUnrealPackageFile(const std::string& Path)
{
	std::ifstream In(Path, std::ios::binary);
	char Head[4] = {};
	return In.read(Head, 4) && IsUnrealPackageBytes(std::string(Head, 4));
}

bool ReadLevelSceneBytes(std::string Bytes, const std::string& SourceName, const std::string& PackagePath,
	FLevelScene& Out, std::string& OutError)
{
	Out = FLevelScene();
	FUnrealPackage Package;
	FPackageError Error;
	FLevelPackageContents Contents;
	if (!FUnrealPackage::Read(std::move(Bytes), PackagePath, Package, Error) ||
		!ReadLevelPackage(Package, Contents, Error))
	{
		OutError = Error.Describe(SourceName);
		return false;
	}
	if (!Contents.RedirectTarget.empty())
	{
		OutError = SourceName + ": a redirector to " + LodexText::EscapeControlsAndIllFormed(Contents.RedirectTarget) +
			", not a level";
		return false;
	}
	std::vector<FLoadedLevel> Levels(1);
	Levels[0].PackagePath = PackagePath;
	Levels[0].WorldPath = Contents.WorldPath;
	Levels[0].File = SourceName;
	Levels[0].Sources.push_back(FActorSource{SourceName, PackagePath});
	Levels[0].Actors.reserve(Contents.Actors.size());
	for (FLevelActor& Actor : Contents.Actors)
	{
		Levels[0].Actors.push_back(FLoadedActor{std::move(Actor), 0});
	}
	Out.Files.push_back(SourceName);
	return BuildLevelScene(std::move(Levels), Out, OutError);
}
