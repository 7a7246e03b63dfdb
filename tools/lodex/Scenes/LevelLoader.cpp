// Copyright Lodex contributors.
// Finds the files a level is made of under its project's Content folder, reads them, and hands them to the scene.
#include "LevelScene.h"

#include "ContentFiles.h"
#include "LoadedLevel.h"
#include "Packages/TaggedProperties.h"
#include "Cli/WholeFile.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <algorithm>
#include <filesystem>
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
		std::vector<std::string> Tags;
		std::string SuperPath;
	};

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
		bool ReadPackage(
			const std::string& File, const std::string& PackagePath, FUnrealPackage& OutPackage, std::string& OutError);
		bool LoadLevel(std::string File, std::string PackagePath, std::vector<FLoadedLevel>& Levels,
			std::vector<std::string>& OutStreaming, std::string& OutError);
		bool LoadExternalActors(FLoadedLevel& Level, std::string& OutError);
		bool FillClassDefaultTags(FLevelActor& Actor, std::string& OutError);
		const FReadPackage* FindClassPackage(const std::string& PackagePath, std::string& OutError, bool& bOutFailed);

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
		/** Each Blueprint class's defaults, read once however many actors have the class. */
		std::map<std::string, FClassDefaults> ClassDefaults;
	};

	std::string ShownPath(const fs::path& Path)
	{
		return Path.lexically_normal().generic_string();
	}

	bool IsGamePackage(const std::string& PackagePath)
	{
		return PackagePath.rfind("/Game/", 0) == 0;
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
	Out.Files.push_back(File);
	FLoadedLevel Level;
	Level.PackagePath = PackagePath;
	Level.WorldPath = Contents.WorldPath;
	Level.File = File;
	Level.Sources.push_back(FActorSource{File, PackagePath});
	Level.Actors.reserve(Contents.Actors.size());
	for (FLevelActor& Actor : Contents.Actors)
	{
		Level.Actors.push_back(FLoadedActor{std::move(Actor), 0});
	}
	if (!LoadExternalActors(Level, OutError))
	{
		return false;
	}
	if (bPartitioned && Level.Sources.size() == 1)
	{
		NoteMissingExternalActors(Level);
	}
	for (FLoadedActor& Loaded : Level.Actors)
	{
		if (!FillClassDefaultTags(Loaded.Actor, OutError))
		{
			return false;
		}
	}
	OutStreaming = std::move(Contents.StreamingLevelPackages);
	Levels.push_back(std::move(Level));
	return true;
}

bool FLevelLoader::LoadExternalActors(FLoadedLevel& Level, std::string& OutError)
{
	if (ContentRoot.empty() || Level.PackagePath.rfind(MountPoint, 0) != 0)
	{
		return true;
	}
	const fs::path Folder = ContentRoot / "__ExternalActors__" / fs::path(Level.PackagePath.substr(MountPoint.size()));
	std::error_code Code;
	if (!fs::is_directory(Folder, Code))
	{
		return true;
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
		if (!ReadPackage(Shown, PackagePath, Package, OutError))
		{
			return false;
		}
		if (!ReadExternalActorPackage(Package, LevelPath, Actors, OtherLevel, Error))
		{
			OutError = Error.Describe(Shown);
			return false;
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
	return true;
}

const FReadPackage* FLevelLoader::FindClassPackage(
	const std::string& PackagePath, std::string& OutError, bool& bOutFailed)
{
	bOutFailed = false;
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
		bOutFailed = true;
		return nullptr;
	}
	Slot = std::move(Read);
	return Slot.get();
}

bool FLevelLoader::FillClassDefaultTags(FLevelActor& Actor, std::string& OutError)
{
	std::string ClassPath = Actor.ClassPath;
	std::set<std::string> Seen;
	for (std::size_t Depth = 0; !Actor.bHasTags && Depth < ClassDepthLimit && IsGamePackage(ClassPath); ++Depth)
	{
		if (!Seen.insert(ClassPath).second)
		{
			break;
		}
		const std::size_t Dot = ClassPath.find('.');
		if (Dot == std::string::npos)
		{
			break;
		}
		const std::string PackagePath = ClassPath.substr(0, Dot);
		const std::string ClassName = ClassPath.substr(Dot + 1);
		bool bFailed = false;
		const FReadPackage* Class = FindClassPackage(PackagePath, OutError, bFailed);
		if (bFailed)
		{
			return false;
		}
		if (Class == nullptr)
		{
			if (MissingClasses.insert(PackagePath).second)
			{
				Out.Notes.push_back(
					LodexText::EscapeControlsAndIllFormed("the Blueprint class " + ClassPath + " is not under " +
						(ContentRoot.empty() ? std::string("a Content folder") : ShownPath(ContentRoot)) +
						": the default tags of its actors are unknown"));
			}
			break;
		}
		auto Found = ClassDefaults.find(ClassPath);
		if (Found == ClassDefaults.end())
		{
			FPackageError Error;
			FClassDefaults Defaults;
			if (!ReadClassDefaults(
					Class->Package, ClassName, Defaults.bHasTags, Defaults.Tags, Defaults.SuperPath, Error))
			{
				OutError = Error.Describe(Class->File);
				return false;
			}
			Found = ClassDefaults.emplace(ClassPath, std::move(Defaults)).first;
		}
		if (Found->second.bHasTags)
		{
			Actor.bHasTags = true;
			Actor.Tags = Found->second.Tags;
		}
		ClassPath = Found->second.SuperPath;
	}
	return true;
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
		if (!LoadLevel(File, SubLevel, Levels, More, OutError))
		{
			return false;
		}
		++Out.SubLevelCount;
		Pending.insert(Pending.end(), More.begin(), More.end());
	}
	return BuildLevelScene(std::move(Levels), Out, OutError);
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
