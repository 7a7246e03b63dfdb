// Copyright Lodex contributors.
#include "LodexInputRecorder.h"

#include "LodexInputLog.h"
#include "LodexScriptLines.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{
	/** A double click's end frame lies this many frames after its frame. */
	constexpr std::uint32_t LodexDoubleClickFrames = 20;

	/** A floating value truncated toward zero into a 32-bit integer, clamped to its range; nan gives 0. */
	std::int32_t LodexTruncateToInt32(double Value)
	{
		if (!(Value == Value))
		{
			return 0;
		}
		if (Value >= static_cast<double>(std::numeric_limits<std::int32_t>::max()))
		{
			return std::numeric_limits<std::int32_t>::max();
		}
		if (Value <= static_cast<double>(std::numeric_limits<std::int32_t>::min()))
		{
			return std::numeric_limits<std::int32_t>::min();
		}
		return static_cast<std::int32_t>(Value);
	}

	bool IsLodexButtonCode(std::int32_t Code)
	{
		return Code >= LodexMouseButton::Left && Code <= LodexMouseButton::Middle;
	}

	const std::string LodexNoKeyName;
}

FLodexInputRecorder::FLodexInputRecorder(
	ILodexScriptSink& InPanel, ILodexRecorderHost& InHost, ILodexInputLogSink* InLog)
	: Panel(InPanel)
	, Host(InHost)
	, Log(InLog)
{
	FLodexViewportRect Viewport;
	if (Host.GetPlayViewport(Viewport))
	{
		bHasSeenViewport = true;
		LastViewport = Viewport;
	}
}

bool FLodexInputRecorder::IsAged(std::int64_t Age, double R)
{
	return static_cast<double>(Age) > 3.1 * R;
}

FLodexInputRecorder::FHostState FLodexInputRecorder::ReadHostState()
{
	FHostState State;
	State.Frame = Host.GetFrameNumber();
	State.bHasViewport = Host.GetPlayViewport(State.Viewport);
	State.bVR = Host.IsVRTracking();
	if (State.bHasViewport)
	{
		bHasSeenViewport = true;
		LastViewport = State.Viewport;
	}
	if (Log != nullptr)
	{
		if (State.bHasViewport != bLoggedViewport || (State.bHasViewport && State.Viewport != LoggedViewport))
		{
			LogLine(LodexInputLog::MakePieLine(State.Frame, State.bHasViewport ? &State.Viewport : nullptr));
			bLoggedViewport = State.bHasViewport;
			LoggedViewport = State.Viewport;
		}
		if (State.bVR != bLoggedVR)
		{
			LogLine(LodexInputLog::MakeVRLine(State.Frame, State.bVR, Host.GetTrackingSystemName()));
			bLoggedVR = State.bVR;
		}
	}
	return State;
}

void FLodexInputRecorder::LogLine(const std::string& Line)
{
	if (Log != nullptr)
	{
		Log->WriteLine(Line);
	}
}

void FLodexInputRecorder::ReadPoses(std::uint32_t Frame)
{
	for (int Index = 0; Index < LodexVRDeviceCount; ++Index)
	{
		const ELodexVRDevice Device = static_cast<ELodexVRDevice>(Index);
		FLodexVRPose Pose;
		if (Host.GetVRPose(Device, Pose))
		{
			Poses[Index] = Pose;
			if (Log != nullptr && (!LoggedPoses[Index] || *LoggedPoses[Index] != Pose))
			{
				LogLine(LodexInputLog::MakePoseLine(Frame, Device, Pose));
				LoggedPoses[Index] = Pose;
			}
		}
		else
		{
			Poses[Index].reset();
		}
	}
}

void FLodexInputRecorder::ToViewport(
	const FLodexPointerInput& Input, const FLodexViewportRect& Viewport, std::int32_t& OutX, std::int32_t& OutY)
{
	OutX = LodexTruncateToInt32(Input.ScreenX - Viewport.Left);
	OutY = LodexTruncateToInt32(Input.ScreenY - Viewport.Top);
}

bool FLodexInputRecorder::IsOutside(std::int32_t X, std::int32_t Y, const FLodexViewportRect& Viewport)
{
	return X < 0 || X > Viewport.Width || Y < 0 || Y > Viewport.Height;
}

void FLodexInputRecorder::AddLine(const std::string& Line)
{
	Panel.AddLine(Line, ELodexAddLineMode::Append, LodexNoKeyName);
}

bool FLodexInputRecorder::HandleKeyDown(const FLodexKeyInput& Input)
{
	const FHostState State = ReadHostState();
	if (Log != nullptr)
	{
		LogLine(LodexInputLog::MakeKeyLine(State.Frame, "keyDown", Input.Key));
	}
	if (!State.bHasViewport)
	{
		return false;
	}
	const std::int32_t Code = Host.GetKeyCode(Input.Key);
	if (State.bVR)
	{
		AddLine(LodexScriptLines::MakeKeyPressAtOnceLine(Host.GetKeyName(Code)));
		return false;
	}
	if (HeldKeys.Find(Code) != nullptr)
	{
		// Auto-repeat of a key already held.
		return false;
	}
	const std::string Key = Host.GetKeyName(Code);
	Panel.AddLine(LodexScriptLines::MakeKeyPlaceholderLine(Key), ELodexAddLineMode::Placeholder, Key);
	HeldKeys.Add(FLodexEventRecord(State.Frame, ELodexEventKind::KeyDown, Code, 0, 0));
	return false;
}

bool FLodexInputRecorder::HandleKeyUp(const FLodexKeyInput& Input)
{
	const FHostState State = ReadHostState();
	if (Log != nullptr)
	{
		LogLine(LodexInputLog::MakeKeyLine(State.Frame, "keyUp", Input.Key));
	}
	if (!State.bHasViewport)
	{
		return false;
	}
	CloseOpenMoves();
	const std::int32_t Code = Host.GetKeyCode(Input.Key);
	if (FLodexEventRecord* Held = HeldKeys.Find(Code))
	{
		FLodexEventRecord Press = *Held;
		HeldKeys.Remove(Code);
		if (State.bVR)
		{
			// Pressed before VR mode began: its line is written now, as VR mode writes key presses.
			AddLine(LodexScriptLines::MakeKeyPressAtOnceLine(Host.GetKeyName(Code)));
		}
		else
		{
			Press.EndFrame = State.Frame;
			Records.Add(Press);
		}
	}
	else if (!State.bVR)
	{
		// A release whose press was not recorded (it began before Record, or outside a play session).
		AddLine(LodexScriptLines::MakeKeyEndedLine(Host.GetKeyName(Code)));
	}
	return false;
}

bool FLodexInputRecorder::HandleAnalogInput(const FLodexKeyInput& Input)
{
	const FHostState State = ReadHostState();
	if (Log != nullptr)
	{
		LogLine(LodexInputLog::MakeAnalogLine(State.Frame, Input.Key, Input.AnalogValue));
	}
	if (!State.bHasViewport)
	{
		return false;
	}
	const std::int32_t Code = Host.GetKeyCode(Input.Key);
	auto Found = std::find_if(
		AnalogBursts.begin(), AnalogBursts.end(), [Code](const FAnalogBurst& Burst) { return Burst.Code == Code; });
	if (Found == AnalogBursts.end())
	{
		AnalogBursts.push_back(FAnalogBurst{Code, State.Frame, std::nullopt});
		Found = AnalogBursts.end() - 1;
	}
	else if (State.Frame >= Found->LastFrame && State.Frame - Found->LastFrame <= 1)
	{
		// The axis is still moving: the burst goes on.
		Found->LastFrame = State.Frame;
		if (!Found->Record)
		{
			// It began in VR mode, where its line was written at once.
			return false;
		}
		if (FLodexEventRecord* Record = Records.FindBySequence(*Found->Record))
		{
			Record->EndFrame = State.Frame;
			return false;
		}
		// Its record has been written already: what follows starts a new one.
	}
	Found->LastFrame = State.Frame;
	Found->Record.reset();

	const std::string Key = Host.GetKeyName(Code);
	if (State.bVR)
	{
		AddLine(LodexScriptLines::MakeKeyPressAtOnceLine(Key));
		return false;
	}
	Panel.AddLine(LodexScriptLines::MakeAnalogPlaceholderLine(Key), ELodexAddLineMode::Placeholder, Key);
	FLodexEventRecord Record(State.Frame, ELodexEventKind::Analog, Code, 0, 0);
	Record.EndFrame = State.Frame;
	Found->Record = Records.Add(Record);
	return false;
}

bool FLodexInputRecorder::StartPointerEvent(
	const FLodexPointerInput& Input, const char* Type, const float* WheelDelta, FPointerEvent& Out)
{
	Out.State = ReadHostState();
	if (Log != nullptr)
	{
		LogLine(LodexInputLog::MakePointerLine(
			Out.State.Frame, Type, Input.ScreenX, Input.ScreenY, Input.Button, WheelDelta));
	}
	if (!Out.State.bHasViewport || Out.State.bVR)
	{
		return false;
	}
	ToViewport(Input, Out.State.Viewport, Out.X, Out.Y);
	Out.Code = GetLodexMouseButtonCode(Input.Button);
	return true;
}

bool FLodexInputRecorder::HandleMouseMove(const FLodexPointerInput& Input)
{
	FPointerEvent Event;
	if (!StartPointerEvent(Input, "move", nullptr, Event))
	{
		return false;
	}
	// A pointer outside the play viewport is not moving in the game; during a press the press record itself
	// carries the gesture to its release.
	if (IsOutside(Event.X, Event.Y, Event.State.Viewport) || OpenGestures.HasOpenPress())
	{
		return false;
	}
	if (FLodexEventRecord* Open = OpenGestures.Find(Event.Code))
	{
		Open->EndFrame = Event.State.Frame;
		Open->EndX = Event.X;
		Open->EndY = Event.Y;
		return false;
	}
	// A move with a button as its effecting button is a drag; until stretched, a gesture ends where it began.
	FLodexEventRecord Record(Event.State.Frame,
		IsLodexButtonCode(Event.Code) ? ELodexEventKind::Drag : ELodexEventKind::Move, Event.Code, Event.X, Event.Y);
	Record.EndFrame = Event.State.Frame;
	Record.EndX = Event.X;
	Record.EndY = Event.Y;
	OpenGestures.Set(Event.Code, Record);
	return false;
}

void FLodexInputRecorder::CloseOpenMoves()
{
	std::array<std::int32_t, 4> Codes{};
	std::size_t Count = 0;
	for (std::int32_t Code = LodexMouseButton::None; Code <= LodexMouseButton::Middle; ++Code)
	{
		const FLodexEventRecord* Open = OpenGestures.Find(Code);
		if (Open != nullptr && (Open->Kind == ELodexEventKind::Move || Open->Kind == ELodexEventKind::Drag))
		{
			Codes[Count++] = Code;
		}
	}
	if (Count == 0)
	{
		return;
	}
	std::stable_sort(Codes.begin(), Codes.begin() + static_cast<std::ptrdiff_t>(Count),
		[this](std::int32_t A, std::int32_t B) { return OpenGestures.Find(A)->Frame < OpenGestures.Find(B)->Frame; });
	for (std::size_t Index = 0; Index < Count; ++Index)
	{
		Records.Add(*OpenGestures.Find(Codes[Index]));
		OpenGestures.Remove(Codes[Index]);
	}
}

bool FLodexInputRecorder::HandleMouseButtonDown(const FLodexPointerInput& Input)
{
	FPointerEvent Event;
	if (!StartPointerEvent(Input, "mouseDown", nullptr, Event))
	{
		return false;
	}
	CloseOpenMoves();
	// A press of the same button whose release never came is replaced.
	OpenGestures.Set(
		Event.Code, FLodexEventRecord(Event.State.Frame, ELodexEventKind::ButtonDown, Event.Code, Event.X, Event.Y));
	return false;
}

bool FLodexInputRecorder::HandleMouseButtonUp(const FLodexPointerInput& Input)
{
	FPointerEvent Event;
	if (!StartPointerEvent(Input, "mouseUp", nullptr, Event))
	{
		return false;
	}
	CloseOpenMoves();
	FLodexEventRecord* Open = OpenGestures.Find(Event.Code);
	if (Open == nullptr || Open->Kind != ELodexEventKind::ButtonDown)
	{
		return false;
	}
	Open->EndFrame = Event.State.Frame;
	Open->EndX = Event.X;
	Open->EndY = Event.Y;
	const std::uint64_t Sequence = Records.Add(*Open);
	if (IsLodexButtonCode(Event.Code))
	{
		LastClicks[static_cast<std::size_t>(Event.Code)] = Sequence;
	}
	OpenGestures.Remove(Event.Code);
	return false;
}

bool FLodexInputRecorder::HandleMouseButtonDoubleClick(const FLodexPointerInput& Input)
{
	FPointerEvent Event;
	if (!StartPointerEvent(Input, "doubleClick", nullptr, Event))
	{
		return false;
	}
	const std::int32_t Code = Event.Code;
	FLodexEventRecord DoubleClick(Event.State.Frame, ELodexEventKind::DoubleClick, Code, Event.X, Event.Y);
	DoubleClick.EndFrame = Event.State.Frame + LodexDoubleClickFrames;
	if (IsLodexButtonCode(Code))
	{
		std::optional<std::uint64_t>& LastClick = LastClicks[static_cast<std::size_t>(Code)];
		FLodexEventRecord* FirstClick = LastClick ? Records.FindBySequence(*LastClick) : nullptr;
		LastClick.reset();
		if (FirstClick != nullptr && FirstClick->Kind == ELodexEventKind::ButtonDown && FirstClick->Code == Code)
		{
			// The pair's first click, still waiting, becomes the double click.
			*FirstClick = DoubleClick;
			return false;
		}
	}
	Records.Add(DoubleClick);
	return false;
}

bool FLodexInputRecorder::HandleMouseWheel(const FLodexPointerInput& Input)
{
	FPointerEvent Event;
	if (!StartPointerEvent(Input, "wheel", &Input.WheelDelta, Event))
	{
		return false;
	}
	CloseOpenMoves();
	if (IsOutside(Event.X, Event.Y, Event.State.Viewport))
	{
		// The wheel turned over another part of the editor, not over the game.
		return false;
	}
	const std::int32_t Delta = LodexTruncateToInt32(Input.WheelDelta);
	// The wheel record still waiting, wherever it is in the array: found by its sequence number, not by a scan.
	FLodexEventRecord* Pending = PendingWheel ? Records.FindBySequence(*PendingWheel) : nullptr;
	// The merge only counts the event: the record keeps its first event's delta, and a count that would pass a
	// 32-bit integer starts a new record.
	if (Pending != nullptr && Pending->Kind == ELodexEventKind::Wheel &&
		Pending->Y < std::numeric_limits<std::int32_t>::max())
	{
		++Pending->Y;
		return false;
	}
	FLodexEventRecord Wheel(Event.State.Frame, ELodexEventKind::Wheel, LodexMouseButton::WheelCode, Delta, 1);
	Wheel.EndFrame = Event.State.Frame;
	PendingWheel = Records.Add(Wheel);
	return false;
}

bool FLodexInputRecorder::HandleMotionDetected()
{
	return false;
}
