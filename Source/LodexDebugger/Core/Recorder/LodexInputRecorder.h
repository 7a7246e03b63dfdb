// Copyright Lodex contributors.
#pragma once

#include "LodexEventRecord.h"
#include "LodexRecorderHost.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class ILodexInputLogSink;

/** The add-line operation's modes. */
enum class ELodexAddLineMode
{
	/** Appends the line. */
	Append = 0,
	/** A placeholder for a key press still going on, under the key's name. */
	Placeholder = 1,
	/** The finished line of a key press, under the key's name: it goes where the key's placeholder is. */
	KeyLine = 2,
};

/**
 * Where the input recorder writes its script: the recorder panel's add-line operation and the two things of the
 * panel it reads (the "Use FPS" option, and whether the VR device line was written).
 */
class ILodexScriptSink
{
public:
	virtual ~ILodexScriptSink() = default;
	/** The add-line operation (docs/recorder.md): line, mode, and the key name for modes 1 and 2. */
	virtual void AddLine(const std::string& Line, ELodexAddLineMode Mode, const std::string& KeyName) = 0;
	virtual bool IsUsingFps() const = 0;
	virtual bool IsDeviceAnnounced() const = 0;
	virtual void SetDeviceAnnounced() = 0;
};

/** A key or analog event: the engine key's name ("SpaceBar", "Gamepad_LeftX"). */
struct FLodexKeyInput
{
	std::string Key;
	/** The analog value of an analog event; written to the input log only. */
	float AnalogValue = 0.0f;
};

/** A pointer event: its screen-space position, the effecting button's key name (empty for none), its wheel delta. */
struct FLodexPointerInput
{
	double ScreenX = 0.0;
	double ScreenY = 0.0;
	std::string Button;
	float WheelDelta = 0.0f;
};

/**
 * The input processor's logic (docs/recorder.md): turns input events into event records and, once per UI frame in
 * Tick, aged records into script lines for the panel's add-line operation. Every handler returns false, so the event
 * always goes on to the game. Everything it reads from the editor comes through the host; with a log sink, every
 * event, every tick and every change of what the tick reads is also written to the raw input log.
 */
class FLodexInputRecorder
{
public:
	FLodexInputRecorder(ILodexScriptSink& InPanel, ILodexRecorderHost& InHost, ILodexInputLogSink* InLog);
	FLodexInputRecorder(const FLodexInputRecorder&) = delete;
	FLodexInputRecorder& operator=(const FLodexInputRecorder&) = delete;

	bool HandleKeyDown(const FLodexKeyInput& Input);
	bool HandleKeyUp(const FLodexKeyInput& Input);
	bool HandleAnalogInput(const FLodexKeyInput& Input);
	bool HandleMouseMove(const FLodexPointerInput& Input);
	bool HandleMouseButtonDown(const FLodexPointerInput& Input);
	bool HandleMouseButtonUp(const FLodexPointerInput& Input);
	bool HandleMouseButtonDoubleClick(const FLodexPointerInput& Input);
	bool HandleMouseWheel(const FLodexPointerInput& Input);
	/** Records nothing. */
	bool HandleMotionDetected();

	/** The script generation, once per UI frame. */
	void Tick();

	/**
	 * At Stop, before the processor goes: writes every record still waiting, in order, as the ticks would have
	 * written them had the session gone on without input. Presses and held keys whose release never came are
	 * dropped.
	 */
	void Flush();

	/** Writes the session line and the "Use FPS" state at Record. */
	void LogSessionStart(bool bUseFps);
	void LogUseFps(bool bUseFps);
	void LogButton(
		const char* Name, const std::string* ObjectName, const std::string* Mode, const std::string* Lodestring);

	/** The number of fields of an event record. */
	static constexpr int GetEventRecordFieldCount() { return 8; }

	//~ Inspection, for tests and benchmarks.
	const FLodexRecordArray& GetRecords() const { return Records; }
	const FLodexGestureMap& GetOpenGestures() const { return OpenGestures; }
	const FLodexHeldKeys& GetHeldKeys() const { return HeldKeys; }

	/** The age a record must exceed before the walk writes it: 3.1 times R frames, compared in double precision. */
	static bool IsAged(std::int64_t Age, double R);

private:
	/** What one handler or tick read from the host. */
	struct FHostState
	{
		std::uint32_t Frame = 0;
		bool bHasViewport = false;
		FLodexViewportRect Viewport;
		bool bVR = false;
	};

	/** What one pass of the walk works with. */
	struct FTickContext
	{
		std::int64_t Frame = 0;
		float DeltaSeconds = 0.0f;
		FLodexViewportRect Viewport;
		bool bVR = false;
		bool bFlushing = false;
	};

	/** What the steps of one tick hand on to the next: what the tick found, wrote and took from the array. */
	struct FTickProgress
	{
		/** How many records waited when the tick began. */
		std::size_t StartCount = 0;
		/** The age threshold's R: 20 frames, 5 in VR mode. */
		double R = 0.0;
		/** The kind number of the last line written, or none. */
		int LastKind = 0;
		/** Whether a record was taken from the array, and the frame of the last one taken. */
		bool bTookAny = false;
		std::uint32_t LastTakenFrame = 0;
	};

	/** A pointer event as its handler works with it. */
	struct FPointerEvent
	{
		FHostState State;
		/** The pointer's viewport position. */
		std::int32_t X = 0;
		std::int32_t Y = 0;
		/** The effecting button's code. */
		std::int32_t Code = 0;
	};

	FHostState ReadHostState();
	/**
	 * The start every pointer handler shares: reads the host and logs the event as Type (with the wheel's delta
	 * when given). False when the recorder leaves the event alone (no play viewport, or VR mode); otherwise Out
	 * holds its position and button.
	 */
	bool StartPointerEvent(
		const FLodexPointerInput& Input, const char* Type, const float* WheelDelta, FPointerEvent& Out);
	void LogLine(const std::string& Line);
	void ReadPoses(std::uint32_t Frame);

	/** The viewport position of a screen-space point, each coordinate truncated to a 32-bit integer. */
	static void ToViewport(
		const FLodexPointerInput& Input, const FLodexViewportRect& Viewport, std::int32_t& OutX, std::int32_t& OutY);
	static bool IsOutside(std::int32_t X, std::int32_t Y, const FLodexViewportRect& Viewport);

	/** Open move and drag records leave the gesture map for the record array, oldest first. */
	void CloseOpenMoves();

	/** One tick: the VR pass, the walk, the end of a burst, the wait; in that order. */
	void RunTick(const FTickContext& Context);
	void RunVRPass(const FTickContext& Context, FTickProgress& Progress);
	void WalkRecords(const FTickContext& Context, FTickProgress& Progress);
	void WriteAgedRecord(const FLodexEventRecord& Record, const FTickContext& Context, FTickProgress& Progress);
	void WriteEndOfBurst(const FTickContext& Context, const FTickProgress& Progress);
	void WriteWait(const FTickContext& Context, const FTickProgress& Progress);
	/** Takes the front record out of the array, noting its frame. */
	void TakeFront(FTickProgress& Progress);
	void WriteKeyRecord(const FLodexEventRecord& Record, const FTickContext& Context);
	void WriteVRPoses();
	void AddLine(const std::string& Line);

	ILodexScriptSink& Panel;
	ILodexRecorderHost& Host;
	ILodexInputLogSink* Log;

	FLodexRecordArray Records;
	FLodexGestureMap OpenGestures;
	FLodexHeldKeys HeldKeys;

	/** The click records each button last completed, so that a double click can take the place of its first click. */
	std::array<std::optional<std::uint64_t>, 3> LastClicks;

	/** The last wheel record made: the next wheel event merges with it while it is still in the array. */
	std::optional<std::uint64_t> PendingWheel;

	/** Analog events of one key on consecutive frames make one burst: one record, or one line in VR mode. */
	struct FAnalogBurst
	{
		std::int32_t Code = 0;
		std::uint32_t LastFrame = 0;
		std::optional<std::uint64_t> Record;
	};
	std::vector<FAnalogBurst> AnalogBursts;

	/** The last viewport seen and the last tick's delta time: Flush works with them after the viewport has gone. */
	bool bHasSeenViewport = false;
	FLodexViewportRect LastViewport;
	float LastDeltaSeconds = 0.0f;

	/** The poses sampled this tick, and the positions of the last pose lines written. */
	std::array<std::optional<FLodexVRPose>, LodexVRDeviceCount> Poses;
	std::array<std::optional<FLodexVector3>, LodexVRDeviceCount> WrittenPositions;

	/** What the log last said of the viewport, VR mode and the poses, so that it records only changes. */
	bool bLoggedViewport = false;
	FLodexViewportRect LoggedViewport;
	bool bLoggedVR = false;
	std::array<std::optional<FLodexVRPose>, LodexVRDeviceCount> LoggedPoses;
};
