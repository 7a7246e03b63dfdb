// Copyright Lodex contributors.
// Fuzz target input_log: an input log replayed through the recorder's core as `lodex record` replays one, without a
// scene and, with "Use FPS" forced, on the embedded sample level. A log is refused with one line naming a line of
// it, or gives a script whose stored lines are whole lines.
#include "FuzzProperties.h"
#include "InputLogReplay.h"
#include "SampleData.h"
#include "SceneSnapshot.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <cstdlib>
#include <string>

namespace
{
	const FSceneSnapshot& GetFuzzSampleScene()
	{
		static const FSceneSnapshot Scene = []
		{
			FSceneSnapshot Parsed;
			std::string Error;
			if (!FSceneSnapshot::Parse(GetSampleLevelJson(), "the sample level", Parsed, Error))
			{
				std::abort(); // the embedded sample is read by `lodex demo` and its tests
			}
			return Parsed;
		}();
		return Scene;
	}

	std::string CheckReplay(const std::string& Input, const FInputLogReplayOptions& Options)
	{
		using LodexFuzz::Shown;
		FInputLogReplay Replay;
		std::string Error;
		if (!ReplayInputLog(Input, "log.jsonl", Options, Replay, Error))
		{
			return LodexFuzz::CheckFileError(Error, "log.jsonl", Input, true);
		}
		for (std::size_t Index = 0; Index < Replay.Lines.size(); ++Index)
		{
			if (Replay.Lines[Index].find_first_of("\r\n") != std::string::npos)
			{
				return "script line " + std::to_string(Index + 1) +
					" holds a line break: " + Shown(Replay.Lines[Index]);
			}
		}
		if (Replay.Lines.size() < 2 || Replay.Script != LodexText::Join(Replay.Lines, LodexText::LineSeparator))
		{
			return "the script is not its " + std::to_string(Replay.Lines.size()) +
				" lines joined with \"\\r\\n\": " + Shown(Replay.Script);
		}
		const std::size_t Lines = LodexFuzz::SplitLines(Input).size();
		const std::size_t ReadLines = Input.empty() || Input.back() != '\n' ? Lines : Lines - 1;
		if (Replay.LineCount != ReadLines || Replay.EventCount >= Replay.LineCount ||
			Replay.FirstFrame > Replay.LastFrame)
		{
			return "the replay read " + std::to_string(Replay.LineCount) + " lines of " + std::to_string(ReadLines) +
				", " + std::to_string(Replay.EventCount) + " events, frames " + std::to_string(Replay.FirstFrame) +
				" to " + std::to_string(Replay.LastFrame);
		}
		return std::string();
	}
}

std::string CheckInputLogInput(const std::string& Input)
{
	const std::string Plain = CheckReplay(Input, FInputLogReplayOptions());
	if (!Plain.empty())
	{
		return Plain;
	}
	FInputLogReplayOptions OnTheSample;
	OnTheSample.bForceFps = true;
	OnTheSample.Scene = &GetFuzzSampleScene();
	const std::string OnScene = CheckReplay(Input, OnTheSample);
	return OnScene.empty() ? std::string() : "on the sample level, with --fps: " + OnScene;
}
