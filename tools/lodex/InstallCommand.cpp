// Copyright Lodex contributors.
#include "Clipboard.h"
#include "JsonErrors.h"
#include "LodexCli.h"

#include "LodexDebugger/Core/Shell/LodexShell.h"
#include "LodexDebugger/Core/Shell/LodexStyle.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <unistd.h>

#ifndef LODEX_DEFAULT_SOURCE_DIR
#define LODEX_DEFAULT_SOURCE_DIR ""
#endif

namespace
{
	namespace fs = std::filesystem;
	using FOrderedJson = nlohmann::ordered_json;

	/** The plug-in that carries the module, and its descriptor. */
	const char* const PluginDescriptorName = "UnrealCLR.uplugin";
	const char* const BackupSuffix = ".bak";
	/** Folders of a module that hold build outputs, never sources. */
	const char* const BuildOutputFolders[] = {"Binaries", "Intermediate"};

	/**
	 * The descriptor entry: an editor module, loaded after the engine has started, when the level editor
	 * is there for the module to extend its main menu.
	 */
	FOrderedJson MakeModuleEntry()
	{
		FOrderedJson Entry = FOrderedJson::object();
		Entry["Name"] = LodexModuleName;
		Entry["Type"] = "Editor";
		Entry["LoadingPhase"] = "PostEngineInit";
		return Entry;
	}

	/** One file the install puts into the plug-in folder. */
	struct FPlannedFile
	{
		fs::path From;
		/** The path under the plug-in folder, with "/" separators. */
		std::string Relative;
		bool bExists = false;
		bool bSame = false;
	};

	struct FInstallPlan
	{
		fs::path PluginDir;
		fs::path Descriptor;
		std::vector<FPlannedFile> Files;
		/** Files under the installed module folder that the source tree no longer has. */
		std::vector<std::string> Stale;
		std::string DescriptorText;
		/** The descriptor's new text, when the module has to be added. */
		std::optional<std::string> NewDescriptorText;
		/** Set when the descriptor already lists the module in a form other than the one the install writes. */
		std::string ExistingEntryNote;
	};

	bool ReadWholeFile(const fs::path& Path, std::string& OutText)
	{
		std::ifstream In(Path, std::ios::binary);
		if (!In)
		{
			return false;
		}
		std::ostringstream Buffer;
		Buffer << In.rdbuf();
		OutText = Buffer.str();
		return !In.bad();
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
		return access(Path.c_str(), W_OK | X_OK) == 0;
	}

	std::string GenericString(const fs::path& Path)
	{
		return Path.generic_string();
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
	 * entries. Listing stops at the first error, which Code then holds.
	 */
	std::vector<std::string> ListModuleFiles(const fs::path& Root, std::error_code& Code)
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
			if (It->is_regular_file(Code))
			{
				Files.push_back(GenericString(Relative));
			}
		}
		std::sort(Files.begin(), Files.end());
		return Files;
	}

	/** Renders the descriptor the way the engine writes descriptors: tabs, and the original's BOM and line ends. */
	std::string RenderDescriptor(const FOrderedJson& Descriptor, const std::string& Original)
	{
		std::string Text = Descriptor.dump(1, '\t');
		const bool bCrLf = Original.find("\r\n") != std::string::npos;
		if (bCrLf)
		{
			std::string Converted;
			for (const char Char : Text)
			{
				if (Char == '\n')
				{
					Converted += '\r';
				}
				Converted += Char;
			}
			Text = Converted;
		}
		if (!Original.empty() && Original.back() == '\n')
		{
			Text += bCrLf ? "\r\n" : "\n";
		}
		if (Original.rfind("\xEF\xBB\xBF", 0) == 0)
		{
			Text = "\xEF\xBB\xBF" + Text;
		}
		return Text;
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
			if (!fs::is_directory(ProjectDir, Code))
			{
				OutError = ProjectDir + ": no such folder";
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

		void AddFile(FInstallPlan& Plan, const fs::path& From, const std::string& Relative) const
		{
			FPlannedFile File;
			File.From = From;
			File.Relative = Relative;
			const fs::path To = Plan.PluginDir / Relative;
			std::error_code Code;
			File.bExists = fs::exists(To, Code);
			std::string Old;
			std::string New;
			File.bSame = File.bExists && fs::is_regular_file(To, Code) && ReadWholeFile(To, Old) &&
				ReadWholeFile(From, New) && Old == New;
			Plan.Files.push_back(File);
		}

		bool CollectFiles(FInstallPlan& Plan, std::string& OutError) const
		{
			const std::string ModuleRelative = std::string("Source/") + LodexModuleName;
			const fs::path ModuleSource = fs::path(SourceDir) / ModuleRelative;
			std::error_code Code;
			const std::vector<std::string> Sources = ListModuleFiles(ModuleSource, Code);
			if (Code)
			{
				OutError = GenericString(ModuleSource) + ": cannot list the folder (" + Code.message() + ")";
				return false;
			}
			for (const std::string& Relative : Sources)
			{
				AddFile(Plan, ModuleSource / Relative, ModuleRelative + "/" + Relative);
			}
			for (const FLodexBrushInfo& Brush : GetLodexBrushes())
			{
				const std::string Relative = std::string(Brush.RelativePath) + Brush.Extension;
				AddFile(Plan, fs::path(SourceDir) / Relative, Relative);
			}

			// Files of an earlier install that this source tree no longer has: reported, never deleted.
			const fs::path Installed = Plan.PluginDir / ModuleRelative;
			if (fs::is_directory(Installed, Code))
			{
				for (const std::string& Relative : ListModuleFiles(Installed, Code))
				{
					if (!std::binary_search(Sources.begin(), Sources.end(), Relative))
					{
						Plan.Stale.push_back(ModuleRelative + "/" + Relative);
					}
				}
			}
			return true;
		}

		/** Every destination must be a file or absent, every folder on its way a folder or absent, all writable. */
		bool CheckDestinations(const FInstallPlan& Plan, std::string& OutError) const
		{
			std::error_code Code;
			for (const FPlannedFile& File : Plan.Files)
			{
				const fs::path To = Plan.PluginDir / File.Relative;
				for (fs::path Folder = To.parent_path(); Folder != Plan.PluginDir && Folder.has_parent_path();
					 Folder = Folder.parent_path())
				{
					if (fs::exists(Folder, Code) && !fs::is_directory(Folder, Code))
					{
						OutError = GenericString(Folder) + ": is a file where the install needs a folder";
						return false;
					}
				}
				if (File.bSame)
				{
					continue;
				}
				if (File.bExists)
				{
					if (!fs::is_regular_file(To, Code))
					{
						OutError = GenericString(To) + ": is not a file; the install needs to write a file there";
						return false;
					}
					if (!CanWriteFile(To) || !CanWriteFolder(To.parent_path()))
					{
						OutError = GenericString(To) + ": cannot be written (read-only?); nothing was changed";
						return false;
					}
				}
				else
				{
					const fs::path Existing = NearestExisting(To.parent_path(), Plan.PluginDir);
					if (!CanWriteFolder(Existing))
					{
						OutError = GenericString(Existing) + ": the folder cannot be written; nothing was changed";
						return false;
					}
				}
			}
			return true;
		}

		bool ReadDescriptor(FInstallPlan& Plan, std::string& OutError) const
		{
			const std::string Shown = GenericString(Plan.Descriptor);
			if (!ReadWholeFile(Plan.Descriptor, Plan.DescriptorText))
			{
				OutError = Shown + ": cannot read the file";
				return false;
			}
			FOrderedJson Descriptor;
			try
			{
				Descriptor = FOrderedJson::parse(Plan.DescriptorText);
			}
			catch (const FOrderedJson::parse_error& ParseError)
			{
				OutError = Shown + ":" + DescribeJsonPosition(Plan.DescriptorText, ParseError.byte) +
					": not valid JSON: " + DescribeJsonParseReason(ParseError.what());
				return false;
			}
			if (!Descriptor.is_object())
			{
				OutError = Shown + ": the descriptor is a JSON " + Descriptor.type_name() + ", not an object";
				return false;
			}
			if (Descriptor.contains("Modules") && !Descriptor["Modules"].is_array())
			{
				OutError = Shown + ": \"Modules\" is a JSON " + std::string(Descriptor["Modules"].type_name()) +
					", not a list";
				return false;
			}
			for (const FOrderedJson& Module : Descriptor.value("Modules", FOrderedJson::array()))
			{
				if (Module.is_object() && Module.value("Name", FOrderedJson()) == LodexModuleName)
				{
					if (Module.value("Type", FOrderedJson()) != "Editor")
					{
						Plan.ExistingEntryNote = "note: " + Shown + " already lists " + LodexModuleName +
							" with Type " + Module.value("Type", FOrderedJson()).dump() + "; it is left as it is";
					}
					return true;
				}
			}
			Descriptor["Modules"].push_back(MakeModuleEntry());
			Plan.NewDescriptorText = RenderDescriptor(Descriptor, Plan.DescriptorText);
			if (!CanWriteFile(Plan.Descriptor))
			{
				OutError = Shown + ": the descriptor is read-only; nothing was changed";
				return false;
			}
			if (!CanWriteFolder(Plan.PluginDir))
			{
				OutError = GenericString(Plan.PluginDir) + ": the folder cannot be written; nothing was changed";
				return false;
			}
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
					": not found; the project needs the UnrealCLR plug-in in Plugins/UnrealCLR first";
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

		std::string DescribeModuleEntry() const
		{
			return std::string("add ") + MakeModuleEntry().dump() + " to \"Modules\" of " + PluginDescriptorName +
				" (the descriptor as it was is kept in " + PluginDescriptorName + BackupSuffix + ")";
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
				Io.Out << "  " << (File.bExists ? "replace " : "copy ") << File.Relative << "\n";
			}
			if (Plan.NewDescriptorText)
			{
				Io.Out << "  " << DescribeModuleEntry() << "\n";
			}
			if (CountChanges(Plan) == 0)
			{
				Io.Out << "  change nothing: the module is installed and up to date\n";
			}
			else if (Same > 0)
			{
				Io.Out << "  leave " << Same << " file(s) that are already up to date\n";
			}
			PrintNotes(Plan, Io);
			Io.Out << "Nothing was changed.\n";
			return LodexExitOk;
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
			Io.Out << "Installing " << LodexModuleName << " from " << SourceDir << " into "
				   << GenericString(Plan.PluginDir) << "\n";
			std::size_t Copied = 0;
			std::size_t Replaced = 0;
			std::size_t Same = 0;
			for (const FPlannedFile& File : Plan.Files)
			{
				if (File.bSame)
				{
					++Same;
					continue;
				}
				const fs::path To = Plan.PluginDir / File.Relative;
				std::error_code Code;
				fs::create_directories(To.parent_path(), Code);
				if (!Code)
				{
					fs::copy_file(File.From, To, fs::copy_options::overwrite_existing, Code);
				}
				if (Code)
				{
					Io.Err << "lodex: " << GenericString(To) << ": cannot copy the file (" << Code.message()
						   << "); the descriptor was not changed\n";
					return LodexExitFailure;
				}
				Io.Out << "  " << (File.bExists ? "replaced " : "copied ") << File.Relative << "\n";
				++(File.bExists ? Replaced : Copied);
			}
			if (Plan.NewDescriptorText && !WriteDescriptor(Plan, Io))
			{
				return LodexExitFailure;
			}
			PrintNotes(Plan, Io);
			Io.Out << "Done: " << Copied << " file(s) copied, " << Replaced << " replaced, " << Same
				   << " already up to date; " << PluginDescriptorName << " "
				   << (Plan.NewDescriptorText ? "now lists " : "already listed ") << LodexModuleName << ".\n";
			return LodexExitOk;
		}

		bool WriteDescriptor(const FInstallPlan& Plan, FLodexCliIo& Io) const
		{
			std::error_code Code;
			const fs::perms Permissions = fs::status(Plan.Descriptor, Code).permissions();
			const std::string Backup = GenericString(Plan.Descriptor) + BackupSuffix;
			std::string Error;
			if (!WriteFileAtomically(Backup, Plan.DescriptorText, Error) ||
				!WriteFileAtomically(GenericString(Plan.Descriptor), *Plan.NewDescriptorText, Error))
			{
				Io.Err << "lodex: " << Error << "\n";
				return false;
			}
			fs::permissions(Plan.Descriptor, Permissions, Code);
			Io.Out << "  added " << MakeModuleEntry().dump() << " to \"Modules\" of " << PluginDescriptorName
				   << " (the descriptor as it was is in " << PluginDescriptorName << BackupSuffix << ")\n";
			return true;
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
