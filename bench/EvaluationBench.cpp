// Copyright Lodex contributors.
#include "Repl/EvaluationSession.h"

#include "LodexDebugger/Core/Evaluation/LodexDebuggerPanel.h"
#include "LodexDebugger/Core/Evaluation/LodexReplPanel.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace
{
	/** What a focused panel costs on a tick while nothing is pending (target: a few nanoseconds). */
	void BM_IdlePollRepl(benchmark::State& State)
	{
		FLodexHeadlessEvaluatorHost Host(true);
		FLodexReplPanel Panel(Host);
		for (auto _ : State)
		{
			benchmark::DoNotOptimize(Panel.Tick(true));
			benchmark::ClobberMemory();
		}
	}
	BENCHMARK(BM_IdlePollRepl);

	void BM_IdlePollDebugger(benchmark::State& State)
	{
		FLodexHeadlessEvaluatorHost Host(true);
		FLodexDebuggerPanel Panel(Host);
		for (auto _ : State)
		{
			benchmark::DoNotOptimize(Panel.Tick(true));
			benchmark::ClobberMemory();
		}
	}
	BENCHMARK(BM_IdlePollDebugger);

	/** A step result of N context lines and 10 stack lines, as the debugger's poll consumes it. */
	void BM_ConsumeStepResult(benchmark::State& State)
	{
		std::vector<std::string> Lines;
		for (int Index = 0; Index < State.range(0); ++Index)
		{
			Lines.push_back("/*[@name = 'House']/*[@name = 'Actor_" + LodexText::FormatInt(Index) + "']");
		}
		const std::string Context = LodexText::Join(Lines, LodexText::LineSeparator);
		Lines.resize(10);
		const std::string Stack = LodexText::Join(Lines, LodexText::LineSeparator);
		const std::string Result = "/*[@name = 'House']<VELT.Highlight>/*</>";

		FLodexHeadlessEvaluatorHost Host(true);
		FLodexDebuggerPanel Panel(Host);
		FLodexEvaluatorBlock& Block = Host.GetEvaluatorBlock();
		Block.contextText = Context.c_str();
		Block.stackText = Stack.c_str();
		Block.resultText = Result.c_str();
		Block.operationText = "select the children";
		Block.nodeTypeText = "NameStep";
		Block.durationMs = 1.25;
		for (auto _ : State)
		{
			Block.status = 8;
			benchmark::DoNotOptimize(Panel.PollEvaluator());
		}
		if (Panel.GetContextItems().size() != static_cast<std::size_t>(State.range(0)))
		{
			State.SkipWithError("the context was not consumed");
		}
		State.SetItemsProcessed(State.iterations() * State.range(0));
	}
	BENCHMARK(BM_ConsumeStepResult)->Arg(1000)->Arg(10000);

	/** A Step Into press: the running-game check, the path converted and written, the request code. */
	void BM_StepIntoRequest(benchmark::State& State)
	{
		FLodexHeadlessEvaluatorHost Host(true);
		std::vector<char> Buffer(4096);
		Host.GetEvaluatorBlock().pathText = Buffer.data();
		FLodexDebuggerPanel Panel(Host);
		Panel.OnPathTextChanged("/*[@name = 'House']/*[@name = 'Door']/fn:component('Hinge')");
		for (auto _ : State)
		{
			benchmark::DoNotOptimize(Panel.OnStepIntoClicked());
		}
	}
	BENCHMARK(BM_StepIntoRequest);
}
