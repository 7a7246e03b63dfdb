// Copyright Lodex contributors.
#include "InstallPlan.h"

#include "DescriptorText.h"

#include "LodexDebugger/Core/Shell/LodexShell.h"
#include "LodexDebugger/Core/Shell/LodexStyle.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
	namespace fs = std::filesystem;

	/** Folders of a module that hold build outputs, never sources. */
	const char* const BuildOutputFolders[] = {"Binaries", "Intermediate"};

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

	bool CheckProject(const std::string& ProjectDir, std::string& OutError)
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

	bool CheckSource(const std::string& SourceDir, std::string& OutError)
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
	bool AddFile(FInstallPlan& Plan, const fs::path& From, const std::string& Relative, std::string& OutError)
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
			File.Destination = EInstallDestination::Link;
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
			File.Destination = EInstallDestination::File;
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

	bool CollectFiles(const std::string& SourceDir, FInstallPlan& Plan, std::string& OutError)
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

	/** Refuses a folder the install would write into that is a link: nothing is written through one. */
	bool CheckNotFolderLink(const fs::path& Folder, std::string& OutError)
	{
		std::error_code Code;
		if (!fs::is_symlink(fs::symlink_status(Folder, Code)))
		{
			return true;
		}
		OutError = GenericString(Folder) + ": is a link (to " + fs::read_symlink(Folder, Code).string() +
			"); the install writes nothing through a link; nothing was changed";
		return false;
	}

	/**
	 * Every folder on a file's way must be a folder or absent, none of them a link, and every place written to
	 * writable.
	 */
	bool CheckDestinations(const FInstallPlan& Plan, std::string& OutError)
	{
		std::error_code Code;
		for (const FPlannedFile& File : Plan.Files)
		{
			for (fs::path Folder = File.To.parent_path(); Folder != Plan.PluginDir && Folder.has_parent_path();
				 Folder = Folder.parent_path())
			{
				if (!CheckNotFolderLink(Folder, OutError))
				{
					return false;
				}
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
			if ((File.Destination == EInstallDestination::File && !CanWriteFile(File.To)) || !CanWriteFolder(Folder))
			{
				OutError = GenericString(File.Destination == EInstallDestination::Absent ? Folder : File.To) +
					": cannot be written (read-only?); nothing was changed";
				return false;
			}
		}
		return true;
	}

	/** The descriptor is updated where its links lead, keeping its owner; its backup goes beside it. */
	bool CheckDescriptorWrites(FInstallPlan& Plan, std::string& OutError)
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
		Backup.To += LodexDescriptorBackupSuffix;
		Backup.Relative = std::string(LodexPluginDescriptorName) + LodexDescriptorBackupSuffix;
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
			Backup.Destination = EInstallDestination::Link;
			Backup.Previous = fs::read_symlink(Backup.To, Code).string();
		}
		else if (fs::exists(Status))
		{
			std::string ReadError;
			Backup.Destination = EInstallDestination::File;
			if (!ReadFileBytes(Backup.To, Backup.Previous, ReadError))
			{
				OutError = ReadError;
				return false;
			}
		}
		Plan.Backup = std::move(Backup);
		return true;
	}

	bool ReadDescriptor(FInstallPlan& Plan, std::string& OutError)
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
}

bool MakeInstallPlan(
	const std::string& ProjectDir, const std::string& SourceDir, FInstallPlan& OutPlan, std::string& OutError)
{
	if (!CheckProject(ProjectDir, OutError))
	{
		return false;
	}
	OutPlan.PluginDir = fs::path(ProjectDir) / "Plugins" / LodexPluginFolderName;
	OutPlan.Descriptor = OutPlan.PluginDir / LodexPluginDescriptorName;
	if (!CheckNotFolderLink(OutPlan.PluginDir.parent_path(), OutError) ||
		!CheckNotFolderLink(OutPlan.PluginDir, OutError))
	{
		return false;
	}
	std::error_code Code;
	if (!fs::is_regular_file(OutPlan.Descriptor, Code))
	{
		OutError = GenericString(OutPlan.Descriptor) +
			(fs::is_directory(OutPlan.Descriptor, Code)
					? ": is a folder, not the plug-in's descriptor"
					: ": not found; the project needs the UnrealCLR plug-in in Plugins/UnrealCLR first");
		return false;
	}
	return CheckSource(SourceDir, OutError) && ReadDescriptor(OutPlan, OutError) &&
		CollectFiles(SourceDir, OutPlan, OutError) && CheckDestinations(OutPlan, OutError);
}
