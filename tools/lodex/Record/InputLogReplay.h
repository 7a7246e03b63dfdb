// Copyright Lodex contributors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class FSceneSnapshot;

struct FInputLogReplayOptions
{
	/** Write every duration in the FPS form, whatever the log's "useFps" lines say. */
	bool bForceFps = false;
	/** The level the log's buttons find their objects in; without one they take the log's "lodestring". */
	const FSceneSnapshot* Scene = nullptr;
};

/** What a replay produced. */
struct FInputLogReplay
{
	/** The script as the panel holds it after Stop: the lines joined with "\r\n". */
	std::string Script;
	/** The panel's line store after Stop: the script's lines, none holding a line break. */
	std::vector<std::string> Lines;
	std::string HostName;
	/** The lines of the log read (blank lines included), and the first and last frame met. */
	std::size_t LineCount = 0;
	std::size_t EventCount = 0;
	std::uint32_t FirstFrame = 0;
	std::uint32_t LastFrame = 0;
};

/**
 * Plays an input log (docs/input-log.md) through the recorder's core as the editor did: the session line is Record,
 * every event goes to its handler, every "tick" line runs the tick, the end of the log is Stop. On a malformed log
 * returns false with one line in OutError: "SourceName:LINE: what is wrong" (for a line that is not JSON,
 * "SourceName:LINE:COLUMN: "). Text fields hold no control character, so that every script line is one line.
 */
bool ReplayInputLog(const std::string& Text, const std::string& SourceName, const FInputLogReplayOptions& Options,
	FInputLogReplay& Out, std::string& OutError);
