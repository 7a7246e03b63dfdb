// Copyright Lodex contributors.
#include "Cli/AtomicFile.h"
#include "Cli/LodexCli.h"
#include "DescriptorText.h"
#include "InstallPlan.h"
#include "LodexTool.h"

#include "LodexDebugger/Core/Shell/LodexShell.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <csignal>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <optional>
#include <pthread.h>

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

	std::string DescribeModuleEntry()
	{
		FOrderedJson Entry = FOrderedJson::object();
		for (const auto& [Key, Value] : GetLodexModuleEntry())
		{
			Entry[Key] = Value;
		}
		return Entry.dump();
	}

	/** The environment variable that makes the install stop at a step and wait for a signal: a testing aid. */
	constexpr const char* PauseAtVariable = "LODEX_INSTALL_PAUSE_AT";

	/**
	 * SIGINT, SIGTERM and SIGHUP, held back from the moment the install starts and looked for between its steps,
	 * so that one stops it at a step it can undo. A signal that comes once the descriptor is in place finds the
	 * install complete, and is dropped.
	 */
	class FInstallSignals
	{
	public:
		explicit FInstallSignals(std::ostream& InErr)
			: Err(InErr)
		{
			sigemptyset(&Signals);
			for (const int Signal : {SIGINT, SIGTERM, SIGHUP})
			{
				sigaddset(&Signals, Signal);
			}
			pthread_sigmask(SIG_BLOCK, &Signals, &Previous);
			const char* PauseAt = std::getenv(PauseAtVariable);
			PauseStep = PauseAt != nullptr ? PauseAt : "";
		}
		~FInstallSignals()
		{
			const timespec NoWait{0, 0};
			while (sigtimedwait(&Signals, nullptr, &NoWait) > 0)
			{
			}
			pthread_sigmask(SIG_SETMASK, &Previous, nullptr);
		}
		FInstallSignals(const FInstallSignals&) = delete;
		FInstallSignals& operator=(const FInstallSignals&) = delete;

		/**
		 * Whether a signal has come, after the named step. At the step LODEX_INSTALL_PAUSE_AT names, it first says
		 * "lodex: paused at STEP" on standard error and waits for one.
		 */
		bool Interrupted(const std::string& Step)
		{
			if (Received == 0 && Step == PauseStep)
			{
				Err << "lodex: paused at " << Step << std::endl;
				int Signal = 0;
				Received = sigwait(&Signals, &Signal) == 0 ? Signal : 0;
			}
			const timespec NoWait{0, 0};
			if (Received == 0)
			{
				const int Signal = sigtimedwait(&Signals, nullptr, &NoWait);
				Received = Signal > 0 ? Signal : 0;
			}
			return Received != 0;
		}

		/** "SIGTERM". */
		std::string Name() const { return Received == SIGINT ? "SIGINT" : Received == SIGTERM ? "SIGTERM" : "SIGHUP"; }

		/** 128 and the signal's number, as a shell reports a command a signal ended: 130, 143, 129. */
		int ExitStatus() const { return 128 + Received; }

	private:
		std::ostream& Err;
		sigset_t Signals;
		sigset_t Previous;
		std::string PauseStep;
		int Received = 0;
	};

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
			// A dry run changes nothing, so a signal may end it where it is.
			std::optional<FInstallSignals> Signals;
			if (!bDryRun)
			{
				Signals.emplace(Io.Err);
			}
			FInstallPlan Plan;
			std::string Error;
			if (!MakeInstallPlan(ProjectDir, SourceDir, Plan, Error))
			{
				Io.Err << "lodex: " << Error << "\n";
				return LodexExitFailure;
			}
			return bDryRun ? PrintDryRun(Plan, Io) : Apply(Plan, *Signals, Io);
		}

	private:
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
			return std::string(File.Destination == EInstallDestination::Absent ? Copy : Replace) + " " + File.Relative +
				(File.Destination == EInstallDestination::Link ? " (a link there becomes a copy of the file)" : "");
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
				   << Plan.PluginDir.generic_string() << " would\n";
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
				Io.Out << "  add " << DescribeModuleEntry() << " to \"Modules\" of " << LodexPluginDescriptorName
					   << " (the descriptor as it was is kept in " << LodexPluginDescriptorName
					   << LodexDescriptorBackupSuffix << ")\n";
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
				case EInstallDestination::Absent:
					fs::remove(File.To, Code);
					break;
				case EInstallDestination::File:
					WriteFileAtomically(File.To.string(), File.Previous, Ignored, {false, false});
					break;
				case EInstallDestination::Link:
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
				OutError = Folder.generic_string() + ": cannot make the folder (" + Code.message() + ")";
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

		int Apply(const FInstallPlan& Plan, FInstallSignals& Signals, FLodexCliIo& Io) const
		{
			if (Signals.Interrupted("planned"))
			{
				Io.Err << "lodex: interrupted by " << Signals.Name() << "; nothing was changed\n";
				return Signals.ExitStatus();
			}
			if (CountChanges(Plan) == 0)
			{
				PrintNotes(Plan, Io);
				Io.Out << LodexModuleName << " is already installed in " << Plan.PluginDir.generic_string()
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
			bool bInterrupted = false;
			for (std::size_t Index = 0; bStaged && !bInterrupted && Index < Changes.size(); ++Index)
			{
				bStaged = MakeFolders(Changes[Index]->To.parent_path(), CreatedFolders, Error) &&
					Staged[Index].Stage(Changes[Index]->To.string(), Changes[Index]->Bytes, {false, false}, Error);
				bInterrupted = bStaged && Signals.Interrupted("staged:" + std::to_string(Index + 1));
			}
			if (bStaged && !bInterrupted && Plan.NewDescriptorText)
			{
				bStaged =
					StagedDescriptor.Stage(Plan.Descriptor.string(), *Plan.NewDescriptorText, {true, true}, Error);
				bInterrupted = bStaged && Signals.Interrupted("staged:descriptor");
			}
			if (!bStaged || bInterrupted)
			{
				Staged.clear();
				StagedDescriptor.Discard();
				RemoveFolders(CreatedFolders);
				if (bInterrupted)
				{
					Io.Err << "lodex: interrupted by " << Signals.Name() << "; nothing was changed\n";
					return Signals.ExitStatus();
				}
				Io.Err << "lodex: " << Error << "; nothing was changed\n";
				return LodexExitFailure;
			}

			// Each file moved into place can be put back until the descriptor is: a signal before that undoes
			// them all.
			std::size_t Committed = 0;
			while (Committed < Changes.size() && !bInterrupted && Staged[Committed].Commit(Error))
			{
				++Committed;
				bInterrupted = Signals.Interrupted("moved:" + std::to_string(Committed));
			}
			const bool bCommitted = Committed == Changes.size() && !bInterrupted &&
				(!Plan.NewDescriptorText || StagedDescriptor.Commit(Error));
			if (!bCommitted)
			{
				for (std::size_t Index = Committed; Index-- > 0;)
				{
					PutBack(*Changes[Index]);
				}
				Staged.clear();
				StagedDescriptor.Discard();
				RemoveFolders(CreatedFolders);
				if (bInterrupted)
				{
					Io.Err << "lodex: interrupted by " << Signals.Name() << "; the project was put back as it was\n";
					return Signals.ExitStatus();
				}
				Io.Err << "lodex: " << Error << "; the project was put back as it was\n";
				return LodexExitFailure;
			}

			Io.Out << "Installing " << LodexModuleName << " from " << SourceDir << " into "
				   << Plan.PluginDir.generic_string() << "\n";
			std::size_t Copied = 0;
			std::size_t Replaced = 0;
			for (const FPlannedFile& File : Plan.Files)
			{
				if (!File.bSame)
				{
					Io.Out << "  " << DescribeFile(File, "copied", "replaced") << "\n";
					++(File.Destination == EInstallDestination::Absent ? Copied : Replaced);
				}
			}
			if (Plan.NewDescriptorText)
			{
				Io.Out << "  added " << DescribeModuleEntry() << " to \"Modules\" of " << LodexPluginDescriptorName
					   << " (the descriptor as it was is in " << LodexPluginDescriptorName
					   << LodexDescriptorBackupSuffix << ")\n";
			}
			PrintNotes(Plan, Io);
			Io.Out << "Done: " << CountFiles(Copied) << " copied, " << Replaced << " replaced, "
				   << Plan.Files.size() - Copied - Replaced << " already up to date; " << LodexPluginDescriptorName
				   << " " << (Plan.NewDescriptorText ? "now lists " : "already listed ") << LodexModuleName << ".\n";
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