// Copyright Lodex contributors.
#include "Cli/HostOutput.h"
#include "Cli/ListSelection.h"
#include "Cli/LodexCli.h"
#include "LodexTool.h"
#include "Scenes/SceneEvaluation.h"
#include "Scenes/SceneOptions.h"

#include "LodexDebugger/Core/Lodestring/LodestringEvaluator.h"
#include "LodexDebugger/Core/Paths/LodexBestCopy.h"
#include "LodexDebugger/Core/Lodestring/LodexBestLocator.h"
#include "LodexDebugger/Core/Lodestring/LodexMatchNotice.h"

#include "LodexDebugger/Core/Lodestring/Lodestring.h"
#include "LodexDebugger/Core/Paths/PathCommands.h"

#include <CLI/CLI.hpp>

namespace
{
	/** The mode of `lodex path` and `lodex copy` that gives each object's best Lodestring. */
	constexpr const char* BestMode = "best";

	/** The scene of `lodex path` and `lodex copy`. */
	constexpr FSceneOptionLayout PathSceneLayout{"--scene", LodexSceneFileHelp, SceneRequired | SceneVerboseNotes};

	/** Loads the scene and resolves the named objects; on failure writes one line and returns false. */
	bool LoadSceneAndObjects(const FCommandSceneOptions& SceneFile, const std::vector<std::string>& Names,
		FSceneFile& OutFile, std::vector<FLodexObject>& OutObjects, FLodexCliIo& Io)
	{
		if (!SceneFile.Load(OutFile, Io.Err))
		{
			return false;
		}
		std::string Error;
		for (const std::string& Name : Names)
		{
			const FLodexObject Object = OutFile.Scene.FindObject(Name, Error);
			if (!Object)
			{
				Io.Err << "lodex: " << SceneFile.Path << ": " << Error << "\n";
				return false;
			}
			OutObjects.push_back(Object);
		}
		return true;
	}

	class FPathCommand final : public ILodexCommand
	{
	public:
		CLI::App* Register(CLI::App& Parent) override
		{
			CLI::App* Sub = Parent.add_subcommand("path", "Print the Lodestring of each object, one a line");
			SceneFile.Declare(*Sub);
			Sub->add_option("--mode", Mode,
				   "Absolute, Relative or Tag (exact case), or best: the shortest, most stable Lodestring "
				   "that finds the object alone; any other text gives no node steps")
				->default_val("Absolute");
			Sub->add_option("objects", Objects, "Object ids, or names (or editor labels) that exactly one object has")
				->required();
			return Sub;
		}

		int Run(FLodexCliIo& Io) override
		{
			FSceneFile File;
			std::vector<FLodexObject> Resolved;
			if (!LoadSceneAndObjects(SceneFile, Objects, File, Resolved, Io))
			{
				return LodexExitFailure;
			}
			const FSceneSnapshot& Scene = File.Scene;
			std::string Text;
			if (Mode == BestMode)
			{
				const std::unique_ptr<FLodexSceneIndex> Index = IndexSceneSnapshot(Scene);
				const FLodexBestLocatorFinder Finder(*Index);
				for (const FLodexObject Object : Resolved)
				{
					const std::uint32_t Found = Index->FindIndex(Object);
					const FLodexBestLocator Best =
						Found == FLodexSceneIndex::None ? FLodexBestLocator{} : Finder.Find(Found);
					Text += Best.Lodestring + "\n";
					if (Found == FLodexSceneIndex::None)
					{
						Io.Err << "lodex: " << Scene.GetName(Object) << " takes no step in a Lodestring\n";
					}
					else if (Best.MatchCount != 1)
					{
						Io.Err << "lodex: " << Best.Lodestring << " matches " << Best.MatchCount
							   << " objects: no Lodestring tells them apart\n";
					}
				}
				Io.Out << Text;
				return LodexExitOk;
			}
			for (const FLodexObject Object : Resolved)
			{
				Text += BuildLodestring(Scene, Object, Mode);
				Text += "\n";
			}
			Io.Out << Text;
			return LodexExitOk;
		}

	private:
		FCommandSceneOptions SceneFile{PathSceneLayout};
		std::string Mode = LodestringModes::Absolute;
		std::vector<std::string> Objects;
	};

	class FCopyCommand final : public ILodexCommand
	{
	public:
		CLI::App* Register(CLI::App& Parent) override
		{
			CLI::App* Sub = Parent.add_subcommand(
				"copy", "Run a \"MenuTool\" command on a selection: log each Lodestring, copy it to the clipboard");
			SceneFile.Declare(*Sub);
			std::vector<std::string> Modes;
			for (const FLodexCommandInfo& Command : GetMenuToolCommandSet().Commands)
			{
				Modes.emplace_back(Command.Mode);
			}
			Modes.emplace_back(BestMode);
			Sub->add_option("--mode", Mode,
				   "The command: Relative (\"Lodestring Relative\"), Absolute, or best (the pull-down's \"Copy Best "
				   "Lodestring\")")
				->required()
				->check(CLI::IsMember(Modes));
			Sub->add_option(
				   "--clipboard", ClipboardFile, "Write the clipboard to this file instead of the system clipboard")
				->check(CLI::Validator([](const std::string& Value)
					{ return Value.empty() ? std::string("needs a file name") : std::string(); },
					"FILE"));
			Sub->add_option("objects", Objects,
				"The selection, in order: object ids, or names or editor labels that one object has");
			return Sub;
		}

		int Run(FLodexCliIo& Io) override
		{
			FSceneFile File;
			std::vector<FLodexObject> Resolved;
			if (!LoadSceneAndObjects(SceneFile, Objects, File, Resolved, Io))
			{
				return LodexExitFailure;
			}
			const FSceneSnapshot& Scene = File.Scene;
			FHostOutput Output(Io.Out, Io.Err,
				ClipboardFile.empty() ? EClipboardTarget::System : EClipboardTarget::File, ClipboardFile);
			FLodexClipboardCapture Capture(Output);
			const std::unique_ptr<FLodexSceneIndex> Index = IndexSceneSnapshot(Scene);
			std::vector<std::string> CopiedTexts;
			if (Mode == BestMode)
			{
				CopiedTexts = PrintSelectedBestLodestrings(*Index, FListSelection(std::move(Resolved)), Capture);
			}
			else
			{
				PrintSelectedActorLodestrings(Scene, FListSelection(std::move(Resolved)), Capture, Mode);
				CopiedTexts = Capture.GetCopiedTexts();
			}

			// How many objects each copied Lodestring matches, as the editor's notice says it.
			for (const std::string& Copied : CopiedTexts)
			{
				Io.Err << DescribeLodestringCheck(Copied, EvaluateLodestring(*Index, Copied)) << "\n";
			}
			return Output.AllCopiesSucceeded() ? LodexExitOk : LodexExitFailure;
		}

	private:
		FCommandSceneOptions SceneFile{PathSceneLayout};
		std::string Mode;
		std::string ClipboardFile;
		std::vector<std::string> Objects;
	};
}

std::unique_ptr<ILodexCommand> MakePathCommand()
{
	return std::make_unique<FPathCommand>();
}

std::unique_ptr<ILodexCommand> MakeCopyCommand()
{
	return std::make_unique<FCopyCommand>();
}
