// Copyright Lodex contributors.
#include "Record/RecorderReplayHost.h"

#include "LodexDebugger/Core/Recorder/LodexInputLog.h"
#include "LodexDebugger/Core/Recorder/LodexRecorderPanel.h"

#include <benchmark/benchmark.h>

#include <string>

namespace
{
	/** The editor of the benchmarks: a 1280 by 720 play viewport at (100, 50), 60 frames a second. */
	struct FRecorderBenchEditor
	{
		FRecorderBenchEditor()
		{
			Host.SetViewport(FLodexViewportRect{100.0, 50.0, 1280, 720});
			Host.SetDeltaSeconds(0.016666668f);
			Host.SetHostName("bench");
			Host.SetFrame(1000);
		}

		/** Puts Count lines in the store, as a long session would have. */
		void FillStore(std::int64_t Count)
		{
			for (std::int64_t Index = 0; Index < Count; ++Index)
			{
				Panel.AddLine(
					"api.Click(MouseButtons.LEFT, new Vector2(520, 332), 6); ", ELodexAddLineMode::Append, "");
			}
		}

		FRecorderReplayHost Host;
		FLodexRecorderPanel Panel{Host};
	};

	/** A log that keeps nothing: the cost of building the lines alone. */
	class FDiscardingLog final : public ILodexInputLogSink
	{
	public:
		void WriteLine(const std::string& Line) override { Bytes += Line.size(); }
		void Flush() override {}
		std::size_t Bytes = 0;
	};

	FLodexPointerInput BenchPointer(double X, double Y)
	{
		FLodexPointerInput Input;
		Input.ScreenX = 100.0 + X;
		Input.ScreenY = 50.0 + Y;
		return Input;
	}

	/** One pointer move: the gate, the position, the open move record stretched. */
	void BM_RecorderHandleMouseMove(benchmark::State& State)
	{
		FRecorderBenchEditor Editor;
		Editor.Panel.Record();
		FLodexInputRecorder& Recorder = *Editor.Panel.GetRecorder();
		const FLodexPointerInput Inputs[2] = {BenchPointer(400.5, 300.25), BenchPointer(410.0, 305.0)};
		std::size_t Index = 0;
		for (auto _ : State)
		{
			benchmark::DoNotOptimize(Recorder.HandleMouseMove(Inputs[Index++ & 1]));
		}
	}
	BENCHMARK(BM_RecorderHandleMouseMove);

	/** The same, writing the move's line to the raw input log. */
	void BM_RecorderHandleMouseMoveLogged(benchmark::State& State)
	{
		FRecorderBenchEditor Editor;
		FDiscardingLog Log;
		Editor.Panel.Record(&Log);
		FLodexInputRecorder& Recorder = *Editor.Panel.GetRecorder();
		const FLodexPointerInput Inputs[2] = {BenchPointer(400.5, 300.25), BenchPointer(410.0, 305.0)};
		std::size_t Index = 0;
		for (auto _ : State)
		{
			benchmark::DoNotOptimize(Recorder.HandleMouseMove(Inputs[Index++ & 1]));
		}
		benchmark::DoNotOptimize(Log.Bytes);
	}
	BENCHMARK(BM_RecorderHandleMouseMoveLogged);

	/** A key held down: its auto-repeat finds the key held and records nothing more. */
	void BM_RecorderHandleKeyRepeat(benchmark::State& State)
	{
		FRecorderBenchEditor Editor;
		Editor.Panel.Record();
		FLodexInputRecorder& Recorder = *Editor.Panel.GetRecorder();
		FLodexKeyInput Key;
		Key.Key = "SpaceBar";
		Recorder.HandleKeyDown(Key);
		for (auto _ : State)
		{
			benchmark::DoNotOptimize(Recorder.HandleKeyDown(Key));
		}
	}
	BENCHMARK(BM_RecorderHandleKeyRepeat);

	/**
	 * A wheel turn merging with the wheel record waiting at the front of a long array, behind which many clicks
	 * wait: the pending record is found by its sequence number, however many records came after it.
	 */
	void BM_RecorderHandleWheelBehindRecords(benchmark::State& State)
	{
		FRecorderBenchEditor Editor;
		Editor.Panel.Record();
		FLodexInputRecorder& Recorder = *Editor.Panel.GetRecorder();
		FLodexPointerInput Turns[2] = {BenchPointer(640.0, 360.0), BenchPointer(640.0, 360.0)};
		Turns[0].WheelDelta = 1.0f;
		Turns[1].WheelDelta = -1.0f;
		Recorder.HandleMouseWheel(Turns[0]);
		for (std::int64_t Index = 0; Index < State.range(0); ++Index)
		{
			FLodexPointerInput Press = BenchPointer(static_cast<double>(Index % 1000), 10.0);
			Press.Button = "LeftMouseButton";
			Recorder.HandleMouseButtonDown(Press);
			Recorder.HandleMouseButtonUp(Press);
		}
		std::size_t Index = 0;
		for (auto _ : State)
		{
			benchmark::DoNotOptimize(Recorder.HandleMouseWheel(Turns[Index++ & 1]));
		}
		State.counters["waiting"] = static_cast<double>(Recorder.GetRecords().Num());
	}
	BENCHMARK(BM_RecorderHandleWheelBehindRecords)->Arg(10)->Arg(1000)->Arg(100000);

	/** A tick whose first record is too young: the walk stops at once, however long the session has been. */
	void BM_RecorderTickNothingDue(benchmark::State& State)
	{
		FRecorderBenchEditor Editor;
		Editor.FillStore(State.range(0));
		Editor.Panel.Record();
		FLodexInputRecorder& Recorder = *Editor.Panel.GetRecorder();
		for (int Index = 0; Index < 50; ++Index)
		{
			FLodexPointerInput Press = BenchPointer(10.0 * Index, 10.0);
			Press.Button = "LeftMouseButton";
			Recorder.HandleMouseButtonDown(Press);
			Recorder.HandleMouseButtonUp(Press);
		}
		Editor.Host.SetFrame(1001);
		for (auto _ : State)
		{
			Recorder.Tick();
		}
		State.counters["waiting"] = static_cast<double>(Recorder.GetRecords().Num());
	}
	BENCHMARK(BM_RecorderTickNothingDue)->Arg(1000)->Arg(10000)->Arg(100000);

	/** Adding a line outside VR mode: stored, the joined text extended, the output refreshed. */
	void BM_RecorderAddLine(benchmark::State& State)
	{
		FRecorderBenchEditor Editor;
		Editor.FillStore(State.range(0));
		const std::string Line = "api.KeyPress(new KeyCode[] { KeyCode.SpaceBar}, 30); // api.GetLastFPS() * 0.5";
		for (auto _ : State)
		{
			Editor.Panel.AddLine(Line, ELodexAddLineMode::Append, "");
		}
		State.counters["lines"] = static_cast<double>(Editor.Panel.GetLines().size());
	}
	BENCHMARK(BM_RecorderAddLine)->Arg(1000)->Arg(10000)->Arg(100000)->Iterations(200000);
}
