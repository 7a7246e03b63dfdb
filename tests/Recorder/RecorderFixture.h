// Copyright Lodex contributors.
#pragma once

#include "Record/RecorderReplayHost.h"

#include "LodexDebugger/Core/Recorder/LodexInputLog.h"
#include "LodexDebugger/Core/Recorder/LodexRecorderPanel.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

/** An input log kept in memory, line by line, with the number of flushes. */
class FMemoryInputLog final : public ILodexInputLogSink
{
public:
	void WriteLine(const std::string& Line) override { Lines.push_back(Line); }
	void Flush() override { ++FlushCount; }

	/** The log as a file holds it. */
	std::string Text() const { return LodexText::Join(Lines, "\n") + "\n"; }

	std::vector<std::string> Lines;
	int FlushCount = 0;
};

/**
 * The recorder panel on a manual editor: a 1280 by 720 play viewport whose top-left corner is at (100, 50) on the
 * screen, 60 frames a second, frame 1000 at the start. Events are given in viewport pixels.
 */
class RecorderTest : public ::testing::Test
{
protected:
	static constexpr double ViewportLeft = 100.0;
	static constexpr double ViewportTop = 50.0;
	static constexpr float Delta = 0.016666668f;

	RecorderTest()
	{
		Host.SetViewport(FLodexViewportRect{ViewportLeft, ViewportTop, 1280, 720});
		Host.SetDeltaSeconds(Delta);
		Host.SetHostName("rig-3");
		Host.SetFrame(1000);
	}

	/** Record, with the header lines taken off the line store so that tests see only what the session wrote. */
	void StartRecording(ILodexInputLogSink* Log = nullptr)
	{
		ASSERT_TRUE(Panel.Record(Log));
		HeaderCount = Panel.GetLines().size();
	}

	FLodexInputRecorder& Recorder() { return *Panel.GetRecorder(); }

	/**
	 * Moves the clock to Frame for an event: with auto-ticking, the editor's tick runs first on every frame since the
	 * last tick and before Frame (the tick of Frame itself comes after its events).
	 */
	void At(std::uint32_t Frame)
	{
		if (bAutoTick)
		{
			for (std::uint32_t Next = LastTicked + 1; Next < Frame; ++Next)
			{
				Tick(Next);
			}
		}
		Host.SetFrame(Frame);
	}

	static FLodexPointerInput Pointer(double X, double Y, const char* Button = "")
	{
		FLodexPointerInput Input;
		Input.ScreenX = ViewportLeft + X;
		Input.ScreenY = ViewportTop + Y;
		Input.Button = Button;
		return Input;
	}
	static FLodexKeyInput Key(const char* Name, float Value = 0.0f)
	{
		FLodexKeyInput Input;
		Input.Key = Name;
		Input.AnalogValue = Value;
		return Input;
	}

	/** Hands Input to the recorder's Handler at Frame. */
	template<typename TInput>
	void Send(std::uint32_t Frame, bool (FLodexInputRecorder::*Handler)(const TInput&), const TInput& Input)
	{
		At(Frame);
		(Recorder().*Handler)(Input);
	}

	using FRecorder = FLodexInputRecorder;
	void KeyDown(std::uint32_t Frame, const char* Name) { Send(Frame, &FRecorder::HandleKeyDown, Key(Name)); }
	void KeyUp(std::uint32_t Frame, const char* Name) { Send(Frame, &FRecorder::HandleKeyUp, Key(Name)); }
	void Analog(std::uint32_t Frame, const char* Name) { Send(Frame, &FRecorder::HandleAnalogInput, Key(Name, 0.5f)); }
	void Move(std::uint32_t Frame, double X, double Y, const char* Button = "")
	{
		Send(Frame, &FRecorder::HandleMouseMove, Pointer(X, Y, Button));
	}
	void Down(std::uint32_t Frame, double X, double Y, const char* Button = "LeftMouseButton")
	{
		Send(Frame, &FRecorder::HandleMouseButtonDown, Pointer(X, Y, Button));
	}
	void Up(std::uint32_t Frame, double X, double Y, const char* Button = "LeftMouseButton")
	{
		Send(Frame, &FRecorder::HandleMouseButtonUp, Pointer(X, Y, Button));
	}
	void DoubleClick(std::uint32_t Frame, double X, double Y, const char* Button = "LeftMouseButton")
	{
		Send(Frame, &FRecorder::HandleMouseButtonDoubleClick, Pointer(X, Y, Button));
	}
	void Click(std::uint32_t Frame, double X, double Y, std::uint32_t Frames = 6)
	{
		Down(Frame, X, Y);
		Up(Frame + Frames, X, Y);
	}
	void Wheel(std::uint32_t Frame, double X, double Y, float WheelDelta)
	{
		At(Frame);
		FLodexPointerInput Input = Pointer(X, Y);
		Input.WheelDelta = WheelDelta;
		Recorder().HandleMouseWheel(Input);
	}
	void Tick(std::uint32_t Frame)
	{
		Host.SetFrame(Frame);
		Recorder().Tick();
		LastTicked = Frame;
	}
	/** A tick on every frame after the last tick, up to and including Last, as the editor ticks. */
	void TickThrough(std::uint32_t Last)
	{
		for (std::uint32_t Frame = LastTicked + 1; Frame <= Last; ++Frame)
		{
			Tick(Frame);
		}
	}

	/** The lines the session wrote so far (without the two header lines). */
	std::vector<std::string> Written() const
	{
		const std::vector<std::string>& Lines = Panel.GetLines();
		return std::vector<std::string>(Lines.begin() + static_cast<std::ptrdiff_t>(HeaderCount), Lines.end());
	}

	FRecorderReplayHost Host;
	FLodexRecorderPanel Panel{Host};
	std::size_t HeaderCount = 0;
	bool bAutoTick = true;
	/** Record happens at frame 1000; the first tick after it is frame 1001's. */
	std::uint32_t LastTicked = 1000;
};

using FLines = std::vector<std::string>;

/** Every field of a record on one line, to compare a record whole. */
inline std::string DescribeRecord(const FLodexEventRecord& Record)
{
	return "kind " + std::to_string(static_cast<std::uint32_t>(Record.Kind)) + ", frames " +
		std::to_string(Record.Frame) + "-" + std::to_string(Record.EndFrame) + ", code " + std::to_string(Record.Code) +
		", from " + std::to_string(Record.X) + "," + std::to_string(Record.Y) + " to " + std::to_string(Record.EndX) +
		"," + std::to_string(Record.EndY);
}

inline FLines DescribeRecords(const FLodexRecordArray& Records)
{
	FLines Described;
	for (std::size_t Index = 0; Index < Records.Num(); ++Index)
	{
		Described.push_back(DescribeRecord(Records[Index]));
	}
	return Described;
}
