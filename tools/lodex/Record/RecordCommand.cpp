// Copyright Lodex contributors.
#include "RecordCommand.h"
#include "Cli/AtomicFile.h"

#include "InputLogReplay.h"
#include "Cli/LodexCli.h"
#include "LodexTool.h"
#include "SampleSession.h"
#include "Scenes/SceneOptions.h"
#include "Cli/WholeFile.h"

#include "LodexDebugger/Core/Recorder/LodexRecorderPanel.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <CLI/CLI.hpp>

namespace
{
	constexpr FSceneOptionLayout RecordSceneLayout{"--scene",
		"Scene file (a snapshot or a level) in which the log's buttons find their objects", SceneVerboseNotes};

	/**
	 * Saves the script as Download does with the output area as Stop left it (the log holds no edits of the area):
	 * the area's text, whole, under a unique name beside the target, then renamed over it.
	 */
	bool SaveScriptFile(const std::string& Path, const std::string& Shown, std::string& OutError)
	{
		return WriteFileAtomically(Path, FLodexRecorderPanel::MakeDownloadText(Shown), OutError);
	}

	class FRecordCommand final : public ILodexCommand
	{
	public:
		CLI::App* Register(CLI::App& Parent) override
		{
			CLI::App* Sub = Parent.add_subcommand(
				"record", "Turn an input log into the script the Input Recorder holds after Stop");
			Sub->add_option("--input", InputPath, "Input log (JSON Lines)")->required();
			Sub->add_flag("--fps", bForceFps, "Write every duration in the FPS form, as with \"Use FPS\" checked");
			SceneFile.Declare(*Sub);
			Sub->add_option("--out", OutPath, "Save the script to this file instead of printing it");
			return Sub;
		}

		int Run(FLodexCliIo& Io) override
		{
			std::string Text;
			std::string Error;
			if (!ReadWholeFile(InputPath, Text, Error, {LodexMaxTextFileBytes, "an input log", true}))
			{
				Io.Err << "lodex: " << Error << "\n";
				return LodexExitFailure;
			}
			FSceneFile SceneRead;
			FInputLogReplayOptions Options;
			Options.bForceFps = bForceFps;
			if (SceneFile.IsGiven())
			{
				if (!SceneFile.Load(SceneRead, Io.Err))
				{
					return LodexExitFailure;
				}
				Options.Scene = &SceneRead.Scene;
			}
			FInputLogReplay Replay;
			if (!ReplayInputLog(Text, InputPath, Options, Replay, Error))
			{
				Io.Err << "lodex: " << Error << "\n";
				return LodexExitFailure;
			}
			if (OutPath.empty())
			{
				Io.Out << Replay.Script;
				return LodexExitOk;
			}
			if (!SaveScriptFile(OutPath, Replay.Script, Error))
			{
				Io.Err << "lodex: " << Error << "\n";
				return LodexExitFailure;
			}
			return LodexExitOk;
		}

	private:
		std::string InputPath;
		bool bForceFps = false;
		FCommandSceneOptions SceneFile{RecordSceneLayout};
		std::string OutPath;
	};
}

bool PrintRecordedSessionDemo(const FSceneSnapshot& Scene, FLodexCliIo& Io)
{
	FInputLogReplayOptions Options;
	Options.Scene = &Scene;
	FInputLogReplay Replay;
	std::string Error;
	if (!ReplayInputLog(GetSampleInputLog(), "the embedded sample input log", Options, Replay, Error))
	{
		Io.Err << "lodex: " << Error << "\n";
		return false;
	}
	Io.Out << "\nA recorded session: the sample input log (samples/session.jsonl), " << Replay.EventCount
		   << " events from frame " << Replay.FirstFrame << " to " << Replay.LastFrame << " on the host \""
		   << Replay.HostName << "\", replayed through the Input Recorder\n\n";
	Io.Out << "The script after Stop, one line a line (`lodex record` prints it with \"\\r\\n\" between lines):\n\n";
	for (const std::string& Line : LodexText::SplitDroppingEmpty(Replay.Script, LodexText::LineSeparator))
	{
		Io.Out << Line << "\n";
	}
	return true;
}

std::unique_ptr<ILodexCommand> MakeRecordCommand()
{
	return std::make_unique<FRecordCommand>();
}
