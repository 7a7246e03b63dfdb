// Copyright Lodex contributors.
// The input processor's tick: aged event records into script lines, the VR pass, the waits between bursts, and the
// flush at Stop (docs/recorder.md).
#include "LodexInputRecorder.h"

#include "LodexInputLog.h"
#include "LodexScriptLines.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{
	/** The reference value R of a tick: 20, and 5 once the VR pass has run. */
	constexpr double LodexRecorderR = 20.0;
	constexpr double LodexRecorderVRR = 5.0;

	/** The start value of the wait rule's smallest gap, which also means "no record left". */
	constexpr std::int64_t LodexNoGap = 99999;
	/** "The kind of the last line written" before any line is. */
	constexpr int LodexNoLine = -1;

	std::uint32_t LodexTruncateToUint32(double Value)
	{
		if (!(Value > 0.0))
		{
			return 0;
		}
		if (Value >= static_cast<double>(std::numeric_limits<std::uint32_t>::max()))
		{
			return std::numeric_limits<std::uint32_t>::max();
		}
		return static_cast<std::uint32_t>(Value);
	}

	int LodexKindNumber(ELodexEventKind Kind)
	{
		return static_cast<int>(Kind);
	}

	/** The scroll line of a wheel record: its first event's truncated delta and the number of events merged. */
	std::string MakeLodexScrollLine(const FLodexEventRecord& Wheel)
	{
		return LodexScriptLines::MakeScrollLine(Wheel.X, Wheel.Y);
	}
}

void FLodexInputRecorder::Tick()
{
	const FHostState State = ReadHostState();
	if (State.bVR)
	{
		ReadPoses(State.Frame);
	}
	const float DeltaSeconds = Host.GetWorldDeltaSeconds();
	if (Log != nullptr)
	{
		LogLine(LodexInputLog::MakeTickLine(State.Frame, DeltaSeconds));
	}
	if (State.bHasViewport)
	{
		LastDeltaSeconds = DeltaSeconds;
		FTickContext Context;
		Context.Frame = State.Frame;
		Context.DeltaSeconds = DeltaSeconds;
		Context.Viewport = State.Viewport;
		Context.bVR = State.bVR;
		RunTick(Context);
	}
	if (Log != nullptr)
	{
		Log->Flush();
	}
}

void FLodexInputRecorder::WriteKeyRecord(const FLodexEventRecord& Record, const FTickContext& Context)
{
	const std::string Key = Host.GetKeyName(Record.Code);
	const LodexScriptLines::FDuration Duration = LodexScriptLines::MakeDuration(
		static_cast<std::int64_t>(Record.EndFrame) - static_cast<std::int64_t>(Record.Frame), Context.DeltaSeconds);
	std::string Line;
	if (!Panel.IsUsingFps())
	{
		Line = LodexScriptLines::MakeKeyPressLine(Key, LodexScriptLines::EDurationForm::Frames, Duration);
	}
	else if (Record.Kind == ELodexEventKind::Analog)
	{
		Line = LodexScriptLines::MakeKeyPressSecondFpsLine(Key, Duration);
	}
	else
	{
		Line = LodexScriptLines::MakeKeyPressLine(Key, LodexScriptLines::EDurationForm::Fps, Duration);
	}
	Panel.AddLine(Line, ELodexAddLineMode::KeyLine, Key);
}

void FLodexInputRecorder::WriteVRPoses()
{
	for (int Index = 0; Index < LodexVRDeviceCount; ++Index)
	{
		if (Poses[Index] && (!WrittenPositions[Index] || *WrittenPositions[Index] != Poses[Index]->Position))
		{
			AddLine(LodexScriptLines::MakeVRPoseLine(static_cast<ELodexVRDevice>(Index), *Poses[Index]));
			WrittenPositions[Index] = Poses[Index]->Position;
		}
	}
}

void FLodexInputRecorder::RunTick(const FTickContext& Context)
{
	FTickProgress Progress;
	Progress.StartCount = Records.Num();
	Progress.R = LodexRecorderR;
	Progress.LastKind = LodexNoLine;
	if (Context.bVR)
	{
		RunVRPass(Context, Progress);
	}
	WalkRecords(Context, Progress);
	WriteEndOfBurst(Context, Progress);
	WriteWait(Context, Progress);
}

void FLodexInputRecorder::TakeFront(FTickProgress& Progress)
{
	Progress.LastTakenFrame = Records.Front().Frame;
	Progress.bTookAny = true;
	Records.RemoveFront();
}

void FLodexInputRecorder::RunVRPass(const FTickContext& Context, FTickProgress& Progress)
{
	// The device, the key presses waiting at the front, the poses that moved.
	if (!Context.bFlushing && !Panel.IsDeviceAnnounced())
	{
		AddLine(LodexScriptLines::MakeCreateInputDeviceLine(Host.GetTrackingSystemName()));
		Panel.SetDeviceAnnounced();
	}
	while (!Records.IsEmpty() &&
		(Records.Front().Kind == ELodexEventKind::KeyDown || Records.Front().Kind == ELodexEventKind::Analog))
	{
		const FLodexEventRecord Record = Records.Front();
		WriteKeyRecord(Record, Context);
		Progress.LastKind = LodexKindNumber(Record.Kind);
		TakeFront(Progress);
	}
	if (!Context.bFlushing)
	{
		WriteVRPoses();
	}
	Progress.R = LodexRecorderVRR;
}

void FLodexInputRecorder::WalkRecords(const FTickContext& Context, FTickProgress& Progress)
{
	// In array order, until a record that must wait.
	while (!Records.IsEmpty())
	{
		const FLodexEventRecord Record = Records.Front();
		const ELodexEventKind Kind = Record.Kind;
		const bool bOutside = IsOutside(Record.X, Record.Y, Context.Viewport);
		if ((Kind == ELodexEventKind::ButtonDown || Kind == ELodexEventKind::DoubleClick) && bOutside)
		{
			TakeFront(Progress);
			continue;
		}
		if ((Kind == ELodexEventKind::Move || Kind == ELodexEventKind::Drag) && bOutside)
		{
			if (!Context.bFlushing)
			{
				break;
			}
			TakeFront(Progress);
			continue;
		}
		const std::int64_t Age = Context.Frame - static_cast<std::int64_t>(Record.EndFrame);
		if (Kind == ELodexEventKind::DoubleClick)
		{
			if (Age < 0)
			{
				break;
			}
			const std::int64_t Frames =
				static_cast<std::int64_t>(Record.EndFrame) - static_cast<std::int64_t>(Record.Frame);
			AddLine(LodexScriptLines::MakeDoubleClickLine(Record.Code, Record.X, Record.Y, Frames));
			Progress.LastKind = LodexKindNumber(Kind);
			TakeFront(Progress);
			continue;
		}
		if (!IsAged(Age, Progress.R))
		{
			break;
		}
		WriteAgedRecord(Record, Context, Progress);
		TakeFront(Progress);
	}
}

void FLodexInputRecorder::WriteAgedRecord(
	const FLodexEventRecord& Record, const FTickContext& Context, FTickProgress& Progress)
{
	using namespace LodexScriptLines;
	const EDurationForm Form = Panel.IsUsingFps() ? EDurationForm::Fps : EDurationForm::Frames;
	const std::int64_t Frames = static_cast<std::int64_t>(Record.EndFrame) - static_cast<std::int64_t>(Record.Frame);
	const FDuration Duration = MakeDuration(Frames, Context.DeltaSeconds);
	switch (Record.Kind)
	{
		case ELodexEventKind::ButtonDown:
		{
			const double Dx = static_cast<double>(Record.EndX) - static_cast<double>(Record.X);
			const double Dy = static_cast<double>(Record.EndY) - static_cast<double>(Record.Y);
			const double Distance = std::sqrt(Dx * Dx + Dy * Dy);
			if (Progress.R <= Distance)
			{
				AddLine(MakeDragLine(Record.Code, Record.EndX, Record.EndY, Record.X, Record.Y, Form, Duration));
				Progress.LastKind = LodexKindNumber(ELodexEventKind::Drag);
			}
			else
			{
				AddLine(MakeClickLine(Record.Code, Record.X, Record.Y, Form, Duration));
				Progress.LastKind = LodexKindNumber(Record.Kind);
			}
			break;
		}
		case ELodexEventKind::Wheel:
			AddLine(MakeLodexScrollLine(Record));
			Progress.LastKind = LodexKindNumber(Record.Kind);
			break;
		case ELodexEventKind::Move:
		case ELodexEventKind::Drag:
			AddLine(MakeMoveLine(Record.EndX, Record.EndY, Record.X, Record.Y, Form, Duration));
			Progress.LastKind = LodexKindNumber(Record.Kind);
			break;
		case ELodexEventKind::KeyDown:
		case ELodexEventKind::Analog:
			WriteKeyRecord(Record, Context);
			Progress.LastKind = LodexKindNumber(Record.Kind);
			break;
		case ELodexEventKind::DoubleClick:
			break;
	}
}

void FLodexInputRecorder::WriteEndOfBurst(const FTickContext& Context, const FTickProgress& Progress)
{
	// The array held records and is now empty.
	const int LastKind = Progress.LastKind;
	const bool bContinuousLast = LastKind == LodexKindNumber(ELodexEventKind::Analog) ||
		LastKind == LodexKindNumber(ELodexEventKind::Move) || LastKind == LodexKindNumber(ELodexEventKind::Drag) ||
		LastKind == LodexKindNumber(ELodexEventKind::Wheel);
	if (Progress.StartCount > 0 && Records.IsEmpty() && !bContinuousLast && !Context.bVR)
	{
		AddLine(LodexScriptLines::MakeWaitForEmptyInputLine());
	}
}

void FLodexInputRecorder::WriteWait(const FTickContext& Context, const FTickProgress& Progress)
{
	// The smallest gap from the last record taken to the records still waiting.
	if (!Progress.bTookAny || Records.Num() >= Progress.StartCount)
	{
		return;
	}
	std::int64_t Gap = LodexNoGap;
	for (std::size_t Index = 0; Index < Records.Num(); ++Index)
	{
		Gap = std::min(Gap, static_cast<std::int64_t>(Records[Index].Frame) - Progress.LastTakenFrame);
	}
	const bool bNoWaitAfter = Progress.LastKind == LodexKindNumber(ELodexEventKind::Analog) ||
		Progress.LastKind == LodexKindNumber(ELodexEventKind::Wheel);
	if (Gap != LodexNoGap && Gap >= 0 && !bNoWaitAfter && !Context.bVR)
	{
		// Frames times the 32-bit delta time, then times 1000.0 in double precision, truncated.
		const float GapSeconds = static_cast<float>(Gap) * Context.DeltaSeconds;
		AddLine(LodexScriptLines::MakeWaitLine(LodexTruncateToUint32(static_cast<double>(GapSeconds) * 1000.0)));
	}
}

void FLodexInputRecorder::Flush()
{
	const FHostState State = ReadHostState();
	CloseOpenMoves();
	OpenGestures.Empty();
	HeldKeys.Empty();
	AnalogBursts.clear();
	for (std::optional<std::uint64_t>& LastClick : LastClicks)
	{
		LastClick.reset();
	}
	PendingWheel.reset();
	if (bHasSeenViewport)
	{
		const double R = State.bVR ? LodexRecorderVRR : LodexRecorderR;
		const std::int64_t MinimumAge = static_cast<std::int64_t>(std::floor(3.1 * R)) + 1;
		while (!Records.IsEmpty())
		{
			const FLodexEventRecord& Front = Records.Front();
			FTickContext Context;
			Context.Frame = static_cast<std::int64_t>(Front.EndFrame) +
				(Front.Kind == ELodexEventKind::DoubleClick ? 0 : MinimumAge);
			Context.DeltaSeconds = LastDeltaSeconds;
			Context.Viewport = LastViewport;
			Context.bVR = State.bVR;
			Context.bFlushing = true;
			const std::size_t Before = Records.Num();
			RunTick(Context);
			if (Records.Num() == Before)
			{
				Records.RemoveFront();
			}
		}
	}
	Records.Empty();
	if (Log != nullptr)
	{
		Log->Flush();
	}
}

void FLodexInputRecorder::LogSessionStart(bool bUseFps)
{
	if (Log == nullptr)
	{
		return;
	}
	FLodexViewportRect Viewport;
	const bool bHasViewport = Host.GetPlayViewport(Viewport);
	std::string Level;
	const bool bHasLevel = Host.GetCurrentLevelPath(Level);
	LogLine(LodexInputLog::MakeSessionLine(
		Host.GetHostName(), bHasViewport ? &Viewport : nullptr, bHasLevel ? &Level : nullptr));
	bLoggedViewport = bHasViewport;
	LoggedViewport = Viewport;
	LogUseFps(bUseFps);
	Log->Flush();
}

void FLodexInputRecorder::LogUseFps(bool bUseFps)
{
	if (Log != nullptr)
	{
		const FHostState State = ReadHostState();
		LogLine(LodexInputLog::MakeUseFpsLine(State.Frame, bUseFps));
	}
}

void FLodexInputRecorder::LogButton(
	const char* Name, const std::string* ObjectName, const std::string* Mode, const std::string* Lodestring)
{
	if (Log != nullptr)
	{
		const FHostState State = ReadHostState();
		LogLine(LodexInputLog::MakeButtonLine(State.Frame, Name, ObjectName, Mode, Lodestring));
	}
}
