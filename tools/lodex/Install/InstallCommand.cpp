// Copyright Lodex contributors.
#include "Cli/AtomicFile.h"
#include "DescriptorText.h"
#include "Cli/LodexCli.h"
#include "LodexTool.h"

#include "LodexDebugger/Core/Shell/LodexShell.h"
#include "LodexDebugger/Core/Shell/LodexStyle.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

#ifndef LODEX_DEFAULT_SOURCE_DIR
#define LODEX_DEFAULT_SOURCE_DIR ""
#endif

namespace
{
	/** "1 file", "8 files". */
	std::string CountFiles(std::size_t Count)
	{
		return std::to_string(Count) + (Count == 1 ? " file" : " files");
	}

	namespace fs = std::filesystem;
	using FOrderedJson = nlohmann::ordered_json;

	/** The plug-in that carries the module, and its descriptor. */
	const char* const PluginDescriptorName = "UnrealCLR.uplugin";
	const char* const BackupSuffix = ".bak";
	/** Folders of a module that hold build outputs, never sources. */
	const char* const BuildOutputFolders[] = {"Binaries", "Intermediate"};

	std::string DescribeModuleEntry()
	{
		FOrderedJson Entry = FOrderedJson::object();
		for (const auto& [Key, Value] : GetLodexModuleEntry())
		{
			Entry[Key] = Value;
		}
		return Entry.dump();
	}

	/** What stands where the install puts a file. */
	enum class EDestination
	{
		Absent,
		File,
		Link,
	};

	/** One file the install puts into the plug-in folder, with its bytes, and what it replaces. */
	struct FPlannedFile
	{
		fs::path To;
		/** The path under the plug-in folder, with "/" separators. */
		std::string Relative;
		std::string Bytes;
		EDestination Destination = EDestination::Absent;
		/** The bytes of the file replaced, or the target of the link replaced, to put back after a failure. */
		std::string Previous;
		bool bSame = false;
	};

	struct FInstallPlan
	{
		fs::path PluginDir;
		fs::path Descriptor;
		/** Where the descriptor's links lead: the file that is updated. */
		fs::path DescriptorTarget;
		std::vector<FPlannedFile> Files;
		/** Files under the installed module folder that the source tree no longer has. */
		std::vector<std::string> Stale;
		std::string DescriptorText;
		/** The descriptor's new text, when the module has to be added. */
		std::optional<std::string> NewDescriptorText;
		/** The backup of the descriptor as it was, beside the descriptor. */
		std::optional<FPlannedFile> Backup;
		/** Set when the descriptor already lists the module in a form other than the one the install writes. */
		std::string ExistingEntryNote;
	};

	std::string GenericString(const fs::path& Path)
	{
		return Path.generic_string();
	}

	/** Reads a whole file; on failure OutError says why, after the path. */
	bool ReadFileBytes(const fs::path& Path, std::string& OutBytes, std::string& OutError)
	{
		const int Handle = open(Path.c_str(), O_RDONLY | O_CLOEXEC);
		if (Handle < 0)
		{
			OutError = GenericString(Path) + ": cannot read the file (" + std::strerror(errno) + ")";
			return false;
		}
		OutBytes.clear();
		char Buffer[65536];
		for (;;)
		{
			const ssize_t Count = read(Handle, Buffer, sizeof(Buffer));
			if (Count < 0 && errno == EINTR)
			{
				continue;
			}
			if (Count < 0)
			{
				OutError = GenericString(Path) + ": cannot read the file (" + std::strerror(errno) + ")";
				close(Handle);
				return false;
			}
			if (Count == 0)
			{
				break;
			}
			OutBytes.append(Buffer, static_cast<std::size_t>(Count));
		}
		close(Handle);
		return true;
	}

	/** Whether the file can really be opened for writing (a permission check alone is wrong for root). */
	bool CanWriteFile(const fs::path& Path)
	{
		const int Handle = open(Path.c_str(), O_WRONLY | O_CLOEXEC);
		if (Handle < 0)
		{
			return false;
		}
		close(Handle);
		return true;
	}

	bool CanWriteFolder(const fs::path& Path)
	{
		return access(Path.empty() ? "." : Path.c_str(), W_OK | X_OK) == 0;
	}

	/** Whether a file written by this process could be given the owner and group of the existing one. */
	bool CanKeepOwner(const struct stat& Existing)
	{
		if (geteuid() == 0)
		{
			return true;
		}
		if (Existing.st_uid != geteuid())
		{
			return false;
		}
		if (Existing.st_gid == getegid())
		{
			return true;
		}
		std::vector<gid_t> Groups(static_cast<std::size_t>(std::max(getgroups(0, nullptr), 0)));
		const int Count = getgroups(static_cast<int>(Groups.size()), Groups.data());
		return std::find(Groups.begin(), Groups.begin() + std::max(Count, 0), Existing.st_gid) !=
			Groups.begin() + std::max(Count, 0);
	}

	/** The nearest folder at or above Path (inside Stop) that exists; where new folders would be made. */
	fs::path NearestExisting(fs::path Path, const fs::path& Stop)
	{
		std::error_code Error;
		while (!fs::exists(Path, Error) && Path != Stop && Path.has_parent_path())
		{
			Path = Path.parent_path();
		}
		return Path;
	}

	bool IsBuildOutputOrHidden(const fs::path& Relative)
	{
		for (const fs::path& Part : Relative)
		{
			const std::string Name = Part.string();
			if (!Name.empty() && Name[0] == '.')
			{
				return true;
			}
			for (const char* Folder : BuildOutputFolders)
			{
				if (Name == Folder)
				{
					return true;
				}
			}
		}
		return false;
	}

	/**
	 * The files under Root, as sorted generic paths relative to it, leaving out build outputs and hidden
	 * entries. Listing stops at the first error, which Code then holds; a link that leads nowhere is an error
	 * too (OutDangling names it), since the install could copy nothing for it.
	 */
	std::vector<std::string> ListModuleFiles(const fs::path& Root, std::error_code& Code, fs::path* OutDangling)
	{
		std::vector<std::string> Files;
		for (fs::recursive_directory_iterator It(Root, Code), End; !Code && It != End; It.increment(Code))
		{
			const fs::path Relative = It->path().lexically_relative(Root);
			if (IsBuildOutputOrHidden(Relative))
			{
				if (It->is_directory(Code))
				{
					It.disable_recursion_pending();
				}
				continue;
			}
			std::error_code StatusCode;
			if (OutDangling != nullptr && It->is_symlink(StatusCode) && !fs::exists(It->path(), StatusCode))
			{
				*OutDangling = It->path();
				break;
			}
			if (It->is_regular_file(Code))
			{
				Files.push_back(GenericString(Relative));
			}
		}
		std::sort(Files.begin(), Files.end());
		return Files;
	}

	class FInstallCommand final : public ILodexCommand
	{
	public:
		CLI::App* Register(CLI::App& Parent) override
		{
			CLI::App* App = Parent.add_subcommand("install",
				"Put the module into a game project: its sources and icons into Plugins/UnrealCLR, and the module "
				"into UnrealCLR.uplugin");
			App->add_option("--project", ProjectDir, "The game project's folder (the one with the .uproject file)")
				->required();
			App->add_flag("--dry-run", bDryRun, "List what would be done and change nothing");
			App->add_option("--source", SourceDir,
				"The Lodex source tree to take the module from (default: the one lodex was built from)");
			return App;
		}

		int Run(FLodexCliIo& Io) override
		{
			if (SourceDir.empty())
			{
				SourceDir = LODEX_DEFAULT_SOURCE_DIR;
			}
			FInstallPlan Plan;
			std::string Error;
			if (!MakePlan(Plan, Error))
			{
				Io.Err << "lodex: " << Error << "\n";
				return LodexExitFailure;
			}
			return bDryRun ? PrintDryRun(Plan, Io) : Apply(Plan, Io);
		}

	private:
		bool CheckProject(std::string& OutError) const
		{
			std::error_code Code;
			const fs::file_status Status = fs::status(ProjectDir, Code);
			if (!fs::exists(Status))
			{
				OutError = ProjectDir + ": no such folder";
				return false;
			}
			if (!fs::is_directory(Status))
			{
				OutError = ProjectDir + ": is a file, not a folder; give the game project's folder";
				return false;
			}
			for (const fs::directory_entry& Entry : fs::directory_iterator(ProjectDir, Code))
			{
				if (Entry.path().extension() == ".uproject" && Entry.is_regular_file(Code))
				{
					return true;
				}
			}
			OutError = ProjectDir + ": no .uproject file in the folder; give the game project's folder";
			return false;
		}

		bool CheckSource(std::string& OutError) const
		{
			std::error_code Code;
			const fs::path Module = fs::path(SourceDir) / "Source" / LodexModuleName;
			if (SourceDir.empty() || !fs::is_regular_file(Module / "LodexDebugger.Build.cs", Code))
			{
				OutError = (SourceDir.empty() ? std::string("(no source folder)") : SourceDir) +
					": not a Lodex source tree (no Source/LodexDebugger/LodexDebugger.Build.cs); give one with "
					"--source";
				return false;
			}
			for (const FLodexBrushInfo& Brush : GetLodexBrushes())
			{
				const fs::path Icon = fs::path(SourceDir) / (std::string(Brush.RelativePath) + Brush.Extension);
				if (!fs::is_regular_file(Icon, Code))
				{
					OutError = GenericString(Icon) + ": icon not found in the source tree";
					return false;
				}
			}
			return true;
		}

		/** Reads the source file and looks at what stands where it goes. */
		bool AddFile(FInstallPlan& Plan, const fs::path& From, const std::string& Relative, std::string& OutError) const
		{
			FPlannedFile File;
			File.To = Plan.PluginDir / Relative;
			File.Relative = Relative;
			if (!ReadFileBytes(From, File.Bytes, OutError))
			{
				return false;
			}
			std::error_code Code;
			const fs::file_status Status = fs::symlink_status(File.To, Code);
			if (fs::is_symlink(Status))
			{
				// Replaced by the file itself: nothing is written through a link.
				File.Destination = EDestination::Link;
				File.Previous = fs::read_symlink(File.To, Code).string();
			}
			else if (fs::is_directory(Status))
			{
				OutError = GenericString(File.To) +
					": is a folder where the install needs to put a file; nothing "
					"was changed";
				return false;
			}
			else if (fs::is_regular_file(Status))
			{
				File.Destination = EDestination::File;
				if (!ReadFileBytes(File.To, File.Previous, OutError))
				{
					return false;
				}
				File.bSame = File.Previous == File.Bytes;
			}
			else if (fs::exists(Status))
			{
				OutError = GenericString(File.To) + ": is not a regular file; the install needs to put a file there";
				return false;
			}
			Plan.Files.push_back(std::move(File));
			return true;
		}

		bool CollectFiles(FInstallPlan& Plan, std::string& OutError) const
		{
			const std::string ModuleRelative = std::string("Source/") + LodexModuleName;
			const fs::path ModuleSource = fs::path(SourceDir) / ModuleRelative;
			std::error_code Code;
			fs::path Dangling;
			const std::vector<std::string> Sources = ListModuleFiles(ModuleSource, Code, &Dangling);
			if (Code)
			{
				OutError = GenericString(ModuleSource) + ": cannot list the folder (" + Code.message() + ")";
				return false;
			}
			if (!Dangling.empty())
			{
				OutError = GenericString(Dangling) + ": is a link to nothing (" +
					fs::read_symlink(Dangling, Code).string() + "); the install cannot copy it";
				return false;
			}
			for (const std::string& Relative : Sources)
			{
				if (!AddFile(Plan, ModuleSource / Relative, ModuleRelative + "/" + Relative, OutError))
				{
					return false;
				}
			}
			for (const FLodexBrushInfo& Brush : GetLodexBrushes())
			{
				const std::string Relative = std::string(Brush.RelativePath) + Brush.Extension;
				if (!AddFile(Plan, fs::path(SourceDir) / Relative, Relative, OutError))
				{
					return false;
				}
			}

			// Files of an earlier install that this source tree no longer has: reported, never deleted.
			const fs::path Installed = Plan.PluginDir / ModuleRelative;
			if (fs::is_directory(Installed, Code))
			{
				for (const std::string& Relative : ListModuleFiles(Installed, Code, nullptr))
				{
					if (!std::binary_search(Sources.begin(), Sources.end(), Relative))
					{
						Plan.Stale.push_back(ModuleRelative + "/" + Relative);
					}
				}
			}
			return true;
		}

		/** Every folder on a file's way must be a folder or absent, and every place written to writable. */
		bool CheckDestinations(const FInstallPlan& Plan, std::string& OutError) const
		{
			std::error_code Code;
			for (const FPlannedFile& File : Plan.Files)
			{
				for (fs::path Folder = File.To.parent_path(); Folder != Plan.PluginDir && Folder.has_parent_path();
					 Folder = Folder.parent_path())
				{
					const fs::file_status Status = fs::status(Folder, Code);
					if (fs::exists(Status) && !fs::is_directory(Status))
					{
						OutError = GenericString(Folder) + ": is a file where the install needs a folder";
						return false;
					}
					if (!fs::exists(Status) && fs::is_symlink(fs::symlink_status(Folder, Code)))
					{
						OutError = GenericString(Folder) + ": is a link to nothing where the install needs a folder";
						return false;
					}
				}
				if (File.bSame)
				{
					continue;
				}
				const fs::path Folder = NearestExisting(File.To.parent_path(), Plan.PluginDir);
				if ((File.Destination == EDestination::File && !CanWriteFile(File.To)) || !CanWriteFolder(Folder))
				{
					OutError = GenericString(File.Destination == EDestination::Absent ? Folder : File.To) +
						": cannot be written (read-only?); nothing was changed";
					return false;
				}
			}
			return true;
		}

		bool ReadDescriptor(FInstallPlan& Plan, std::string& OutError) const
		{
			const std::string Shown = GenericString(Plan.Descriptor);
			std::string ReadError;
			if (!ReadFileBytes(Plan.Descriptor, Plan.DescriptorText, ReadError))
			{
				OutError = ReadError;
				return false;
			}
			FDescriptorUpdate Update;
			if (!PlanDescriptorUpdate(Plan.DescriptorText, Shown, Update, OutError))
			{
				return false;
			}
			Plan.ExistingEntryNote = Update.ExistingEntryNote;
			if (!Update.NewText)
			{
				return true;
			}
			Plan.NewDescriptorText = std::move(Update.NewText);
			return CheckDescriptorWrites(Plan, OutError);
		}

		/** The descriptor is updated where its links lead, keeping its owner; its backup goes beside it. */
		bool CheckDescriptorWrites(FInstallPlan& Plan, std::string& OutError) const
		{
			const std::string Shown = GenericString(Plan.Descriptor);
			std::error_code Code;
			Plan.DescriptorTarget = fs::canonical(Plan.Descriptor, Code);
			if (Code)
			{
				OutError = Shown + ": cannot find the file its link leads to (" + Code.message() + ")";
				return false;
			}
			struct stat Existing;
			if (!CanWriteFile(Plan.DescriptorTarget) || stat(Plan.DescriptorTarget.c_str(), &Existing) != 0)
			{
				OutError = Shown + ": the descriptor is read-only; nothing was changed";
				return false;
			}
			if (!CanKeepOwner(Existing))
			{
				OutError = Shown +
					": the descriptor belongs to another user, whom a rewritten file could not keep as "
					"its owner; nothing was changed";
				return false;
			}
			for (const fs::path& Folder : {Plan.DescriptorTarget.parent_path(), Plan.PluginDir})
			{
				if (!CanWriteFolder(Folder))
				{
					OutError = GenericString(Folder) + ": the folder cannot be written; nothing was changed";
					return false;
				}
			}

			FPlannedFile Backup;
			Backup.To = Plan.Descriptor;
			Backup.To += BackupSuffix;
			Backup.Relative = std::string(PluginDescriptorName) + BackupSuffix;
			Backup.Bytes = Plan.DescriptorText;
			const fs::file_status Status = fs::symlink_status(Backup.To, Code);
			if (fs::is_directory(Status))
			{
				OutError = GenericString(Backup.To) +
					": is a folder where the install keeps the descriptor's backup; nothing was changed";
				return false;
			}
			if (fs::is_symlink(Status))
			{
				Backup.Destination = EDestination::Link;
				Backup.Previous = fs::read_symlink(Backup.To, Code).string();
			}
			else if (fs::exists(Status))
			{
				std::string ReadError;
				Backup.Destination = EDestination::File;
				if (!ReadFileBytes(Backup.To, Backup.Previous, ReadError))
				{
					OutError = ReadError;
					return false;
				}
			}
			Plan.Backup = std::move(Backup);
			return true;
		}

		bool MakePlan(FInstallPlan& Plan, std::string& OutError) const
		{
			if (!CheckProject(OutError))
			{
				return false;
			}
			Plan.PluginDir = fs::path(ProjectDir) / "Plugins" / LodexPluginFolderName;
			Plan.Descriptor = Plan.PluginDir / PluginDescriptorName;
			std::error_code Code;
			if (!fs::is_regular_file(Plan.Descriptor, Code))
			{
				OutError = GenericString(Plan.Descriptor) +
					(fs::is_directory(Plan.Descriptor, Code)
							? ": is a folder, not the plug-in's descriptor"
							: ": not found; the project needs the UnrealCLR plug-in in Plugins/UnrealCLR first");
				return false;
			}
			return CheckSource(OutError) && ReadDescriptor(Plan, OutError) && CollectFiles(Plan, OutError) &&
				CheckDestinations(Plan, OutError);
		}

		static std::size_t CountChanges(const FInstallPlan& Plan)
		{
			std::size_t Count = Plan.NewDescriptorText ? 1 : 0;
			for (const FPlannedFile& File : Plan.Files)
			{
				Count += File.bSame ? 0 : 1;
			}
			return Count;
		}

		static std::string DescribeFile(const FPlannedFile& File, const char* Copy, const char* Replace)
		{
			return std::string(File.Destination == EDestination::Absent ? Copy : Replace) + " " + File.Relative +
				(File.Destination == EDestination::Link ? " (a link there becomes a copy of the file)" : "");
		}

		void PrintNotes(const FInstallPlan& Plan, FLodexCliIo& Io) const
		{
			for (const std::string& Stale : Plan.Stale)
			{
				Io.Out << "  keep " << Stale << " (not in the source tree; remove it by hand if it is not wanted)\n";
			}
			if (!Plan.ExistingEntryNote.empty())
			{
				Io.Out << Plan.ExistingEntryNote << "\n";
			}
		}

		int PrintDryRun(const FInstallPlan& Plan, FLodexCliIo& Io) const
		{
			Io.Out << "Dry run: installing " << LodexModuleName << " from " << SourceDir << " into "
				   << GenericString(Plan.PluginDir) << " would\n";
			std::size_t Same = 0;
			for (const FPlannedFile& File : Plan.Files)
			{
				if (File.bSame)
				{
					++Same;
					continue;
				}
				Io.Out << "  " << DescribeFile(File, "copy", "replace") << "\n";
			}
			if (Plan.NewDescriptorText)
			{
				Io.Out << "  add " << DescribeModuleEntry() << " to \"Modules\" of " << PluginDescriptorName
					   << " (the descriptor as it was is kept in " << PluginDescriptorName << BackupSuffix << ")\n";
			}
			if (CountChanges(Plan) == 0)
			{
				Io.Out << "  change nothing: the module is installed and up to date\n";
			}
			else if (Same > 0)
			{
				Io.Out << "  leave " << CountFiles(Same) << " already up to date\n";
			}
			PrintNotes(Plan, Io);
			Io.Out << "Nothing was changed.\n";
			return LodexExitOk;
		}

		/** Puts a changed file back as it was: its old bytes, its old link, or nothing. */
		static void PutBack(const FPlannedFile& File)
		{
			std::error_code Code;
			std::string Ignored;
			switch (File.Destination)
			{
				case EDestination::Absent:
					fs::remove(File.To, Code);
					break;
				case EDestination::File:
					WriteFileAtomically(File.To.string(), File.Previous, Ignored, {false, false});
					break;
				case EDestination::Link:
					fs::remove(File.To, Code);
					fs::create_symlink(File.Previous, File.To, Code);
					break;
			}
		}

		/**
		 * Creates the folders missing on the way to Folder, innermost last, adding each to Created; false with
		 * the reason when one cannot be made.
		 */
		static bool MakeFolders(const fs::path& Folder, std::vector<fs::path>& Created, std::string& OutError)
		{
			std::error_code Code;
			if (Folder.empty() || fs::is_directory(Folder, Code))
			{
				return true;
			}
			if (!MakeFolders(Folder.parent_path(), Created, OutError))
			{
				return false;
			}
			if (!fs::create_directory(Folder, Code) && Code)
			{
				OutError = GenericString(Folder) + ": cannot make the folder (" + Code.message() + ")";
				return false;
			}
			Created.push_back(Folder);
			return true;
		}

		static void RemoveFolders(const std::vector<fs::path>& Created)
		{
			std::error_code Code;
			for (auto It = Created.rbegin(); It != Created.rend(); ++It)
			{
				fs::remove(*It, Code); // only when empty
			}
		}

		int Apply(const FInstallPlan& Plan, FLodexCliIo& Io) const
		{
			if (CountChanges(Plan) == 0)
			{
				PrintNotes(Plan, Io);
				Io.Out << LodexModuleName << " is already installed in " << GenericString(Plan.PluginDir)
					   << " and up to date; nothing was changed.\n";
				return LodexExitOk;
			}

			// First every new content is written beside its place, where a failure (a full disk, a file-size
			// limit) leaves the project as it was; then each is moved in, the descriptor last.
			std::vector<const FPlannedFile*> Changes;
			for (const FPlannedFile& File : Plan.Files)
			{
				if (!File.bSame)
				{
					Changes.push_back(&File);
				}
			}
			if (Plan.NewDescriptorText)
			{
				Changes.push_back(&*Plan.Backup);
			}
			std::vector<fs::path> CreatedFolders;
			std::vector<FStagedFile> Staged(Changes.size());
			FStagedFile StagedDescriptor;
			std::string Error;
			bool bStaged = true;
			for (std::size_t Index = 0; bStaged && Index < Changes.size(); ++Index)
			{
				bStaged = MakeFolders(Changes[Index]->To.parent_path(), CreatedFolders, Error) &&
					Staged[Index].Stage(Changes[Index]->To.string(), Changes[Index]->Bytes, {false, false}, Error);
			}
			if (bStaged && Plan.NewDescriptorText)
			{
				bStaged =
					StagedDescriptor.Stage(Plan.Descriptor.string(), *Plan.NewDescriptorText, {true, true}, Error);
			}
			if (!bStaged)
			{
				Staged.clear();
				StagedDescriptor.Discard();
				RemoveFolders(CreatedFolders);
				Io.Err << "lodex: " << Error << "; nothing was changed\n";
				return LodexExitFailure;
			}

			std::size_t Committed = 0;
			while (Committed < Changes.size() && Staged[Committed].Commit(Error))
			{
				++Committed;
			}
			const bool bCommitted =
				Committed == Changes.size() && (!Plan.NewDescriptorText || StagedDescriptor.Commit(Error));
			if (!bCommitted)
			{
				for (std::size_t Index = 0; Index < Committed; ++Index)
				{
					PutBack(*Changes[Index]);
				}
				Staged.clear();
				StagedDescriptor.Discard();
				RemoveFolders(CreatedFolders);
				Io.Err << "lodex: " << Error << "; the project was put back as it was\n";
				return LodexExitFailure;
			}

			Io.Out << "Installing " << LodexModuleName << " from " << SourceDir << " into "
				   << GenericString(Plan.PluginDir) << "\n";
			std::size_t Copied = 0;
			std::size_t Replaced = 0;
			for (const FPlannedFile& File : Plan.Files)
			{
				if (!File.bSame)
				{
					Io.Out << "  " << DescribeFile(File, "copied", "replaced") << "\n";
					++(File.Destination == EDestination::Absent ? Copied : Replaced);
				}
			}
			if (Plan.NewDescriptorText)
			{
				Io.Out << "  added " << DescribeModuleEntry() << " to \"Modules\" of " << PluginDescriptorName
					   << " (the descriptor as it was is in " << PluginDescriptorName << BackupSuffix << ")\n";
			}
			PrintNotes(Plan, Io);
			Io.Out << "Done: " << CountFiles(Copied) << " copied, " << Replaced << " replaced, "
				   << Plan.Files.size() - Copied - Replaced << " already up to date; " << PluginDescriptorName << " "
				   << (Plan.NewDescriptorText ? "now lists " : "already listed ") << LodexModuleName << ".\n";
			return LodexExitOk;
		}

		std::string ProjectDir;
		std::string SourceDir;
		bool bDryRun = false;
	};
}

std::unique_ptr<ILodexCommand> MakeInstallCommand()
{
	return std::make_unique<FInstallCommand>();
}
