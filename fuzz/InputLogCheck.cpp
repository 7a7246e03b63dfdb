// Copyright Lodex contributors.
// Fuzz target input_log: an input log replayed through the recorder's core as `lodex record` replays one, without a
// scene and, with "Use FPS" forced, on the embedded sample level. A log is refused with one line naming a line of
// it, or gives a script whose stored lines are whole lines.
#include "FuzzProperties.h"
#include "FuzzSample.h"
#include "Record/InputLogReplay.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <algorithm>
#include <string>
#include <vector>

namespace
{
	/** Whether Text is the lines joined with "\r\n", compared in place. */
	bool IsJoinedWithLineSeparator(const std::string& Text, const std::vector<std::string>& Lines)
	{
		const std::string Separator = LodexText::LineSeparator;
		std::size_t At = 0;
		for (std::size_t Index = 0; Index < Lines.size(); ++Index)
		{
			if (Index > 0)
			{
				if (Text.compare(At, Separator.size(), Separator) != 0)
				{
					return false;
				}
				At += Separator.size();
			}
			if (Text.compare(At, Lines[Index].size(), Lines[Index]) != 0)
			{
				return false;
			}
			At += Lines[Index].size();
		}
		return At == Text.size();
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
		if (Replay.Lines.size() < 2 || !IsJoinedWithLineSeparator(Replay.Script, Replay.Lines))
		{
			return "the script is not its " + std::to_string(Replay.Lines.size()) +
				" lines joined with \"\\r\\n\": " + Shown(Replay.Script);
		}
		const std::size_t Lines = static_cast<std::size_t>(std::count(Input.begin(), Input.end(), '\n')) + 1;
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
	OnTheSample.Scene = &LodexFuzz::GetSampleScene();
	const std::string OnScene = CheckReplay(Input, OnTheSample);
	return OnScene.empty() ? std::string() : "on the sample level, with --fps: " + OnScene;
}
