// Copyright Lodex contributors.
#pragma once

#include "LodexRecorderHost.h"

#include <cstdint>
#include <string>

/**
 * Where the raw input log of a recording goes, one JSON line at a time (docs/input-log.md). The editor writes it to
 * a file under the project's Saved folder; the recorder flushes it at the end of every tick.
 */
class ILodexInputLogSink
{
public:
	virtual ~ILodexInputLogSink() = default;

	/** Writes one line; the sink adds the line end ("\n"). */
	virtual void WriteLine(const std::string& Line) = 0;

	/** Hands what was written so far to the operating system. */
	virtual void Flush() = 0;
};

/** The raw input log's lines, built as plain text: one JSON object a line, UTF-8. */
namespace LodexInputLog
{
	/** The value of "lodexInputLog" in the session line. */
	inline constexpr int Version = 1;

	/** The folder under the project's Saved folder that holds the logs, and the start of their names. */
	inline constexpr const char* FolderName = "Lodex/InputLogs";
	inline constexpr const char* FilePrefix = "RecordedInput-";
	inline constexpr const char* FileExtension = ".jsonl";

	/** "RecordedInput-YYYYMMDD-HHMMSS.jsonl", from the local time the recording started. */
	std::string MakeFileName(int Year, int Month, int Day, int Hour, int Minute, int Second);

	/** The session line; the viewport and the level are left out when absent (null). */
	std::string MakeSessionLine(
		const std::string& HostName, const FLodexViewportRect* Viewport, const std::string* LevelPath);

	/** "keyDown" or "keyUp" with "key". */
	std::string MakeKeyLine(std::uint32_t Frame, const char* Type, const std::string& Key);
	std::string MakeAnalogLine(std::uint32_t Frame, const std::string& Key, float Value);
	/**
	 * "mouseDown", "mouseUp", "doubleClick", "move" or "wheel" with "x", "y" (screen space) and "button" (left out
	 * when empty); "wheel" also carries "delta".
	 */
	std::string MakePointerLine(
		std::uint32_t Frame, const char* Type, double X, double Y, const std::string& Button, const float* WheelDelta);
	std::string MakeTickLine(std::uint32_t Frame, float DeltaSeconds);
	/** "pie" with "running", and the viewport's rectangle while running. */
	std::string MakePieLine(std::uint32_t Frame, const FLodexViewportRect* Viewport);
	std::string MakeUseFpsLine(std::uint32_t Frame, bool bUseFps);
	/**
	 * "button" with "name"; for a button that takes the selected object, "object" (its name), "mode" and
	 * "lodestring" (what the editor built).
	 */
	std::string MakeButtonLine(std::uint32_t Frame, const char* Name, const std::string* ObjectName,
		const std::string* Mode, const std::string* Lodestring);
	std::string MakeVRLine(std::uint32_t Frame, bool bTracking, const std::string& SystemName);
	std::string MakePoseLine(std::uint32_t Frame, ELodexVRDevice Device, const FLodexVRPose& Pose);

	/** The text of a JSON string literal, quotes included. */
	std::string QuoteJson(const std::string& Text);

	/** The shortest decimal text that reads back as the same double ("%.17g" at most); 0 for inf and nan. */
	std::string FormatJsonDouble(double Value);

	/** The shortest decimal text that reads back as the same float ("%.9g" at most); 0 for inf and nan. */
	std::string FormatJsonFloat(float Value);
}
