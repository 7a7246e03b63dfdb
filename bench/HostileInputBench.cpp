// Copyright Lodex contributors.
// Inputs crafted to make a reader do more than read: level files whose exports share their data or whose actors'
// class ends a long import chain of long names, C# tests with many findings, long argument lists, deep nesting and
// long lines, and snapshots whose classes derive in one long chain. Each benchmark runs over a range of sizes and
// reports the time's complexity fit (expected: linear) and, per byte of input, the most memory the reading held at
// once ("peak_bytes_per_input_byte", counted by the allocator below: flat across the range when memory is linear).
#include "Demo/SampleData.h"
#include "Lint/LintCommand.h"
#include "Scenes/LevelScene.h"
#include "Scenes/SceneEvaluation.h"
#include "Scenes/SceneSnapshot.h"
#include "TestPackageWriter.h"

#include "LodexDebugger/Core/Lodestring/LodexBestLocator.h"
#include "LodexDebugger/Core/Lodestring/LodexSceneIndex.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <malloc.h>
#include <new>
#include <string>

namespace
{
	// Allocations are counted only while a reading is measured, so that the other benchmarks of this binary pay no
	// more than one load of a flag for each allocation.
	std::atomic<bool> bCounting{false};
	std::atomic<std::int64_t> LiveBytes{0};
	std::atomic<std::int64_t> PeakBytes{0};

	void* CountedAllocate(std::size_t Size)
	{
		void* Block = std::malloc(Size == 0 ? 1 : Size);
		if (Block == nullptr)
		{
			throw std::bad_alloc();
		}
		if (bCounting.load(std::memory_order_relaxed))
		{
			const std::int64_t Usable = static_cast<std::int64_t>(malloc_usable_size(Block));
			const std::int64_t Live = LiveBytes.fetch_add(Usable) + Usable;
			std::int64_t Peak = PeakBytes.load();
			while (Live > Peak && !PeakBytes.compare_exchange_weak(Peak, Live))
			{
			}
		}
		return Block;
	}

	void CountedFree(void* Block)
	{
		if (Block != nullptr)
		{
			if (bCounting.load(std::memory_order_relaxed))
			{
				LiveBytes.fetch_sub(static_cast<std::int64_t>(malloc_usable_size(Block)));
			}
			std::free(Block);
		}
	}
}

void* operator new(std::size_t Size)
{
	return CountedAllocate(Size);
}
void* operator new[](std::size_t Size)
{
	return CountedAllocate(Size);
}
void operator delete(void* Block) noexcept
{
	CountedFree(Block);
}
void operator delete[](void* Block) noexcept
{
	CountedFree(Block);
}
void operator delete(void* Block, std::size_t) noexcept
{
	CountedFree(Block);
}
void operator delete[](void* Block, std::size_t) noexcept
{
	CountedFree(Block);
}

namespace
{
	/**
	 * Runs Read once per iteration and reports the input's size, the time's complexity over the range, and the most
	 * memory held at once above what was held before, per byte of input.
	 */
	template<typename TRead>
	void MeasureReading(benchmark::State& State, std::size_t InputBytes, TRead&& Read)
	{
		std::int64_t Growth = 0;
		for (auto _ : State)
		{
			// What the reading allocates and has not freed, at its most.
			LiveBytes.store(0);
			PeakBytes.store(0);
			bCounting.store(true);
			Read();
			bCounting.store(false);
			Growth = std::max(Growth, PeakBytes.load());
		}
		State.SetComplexityN(static_cast<benchmark::IterationCount>(InputBytes));
		State.counters["input_bytes"] = static_cast<double>(InputBytes);
		State.counters["peak_bytes_per_input_byte"] =
			static_cast<double>(Growth) / static_cast<double>(std::max<std::size_t>(InputBytes, 1));
	}

	void ReadLevelBytes(benchmark::State& State, const std::string& Bytes, bool bExpectError)
	{
		MeasureReading(State, Bytes.size(),
			[&]
			{
				FLevelScene Scene;
				std::string Error;
				const bool bRead = ReadLevelSceneBytes(Bytes, "hostile.umap", "/Game/Maps/Main", Scene, Error);
				if (bRead == bExpectError)
				{
					State.SkipWithError(bRead ? "the level was read" : Error.c_str());
				}
				benchmark::DoNotOptimize(Scene);
			});
	}

	/** A long name the engine allows (its names hold up to 1023 characters). */
	std::string LongName(std::size_t Index)
	{
		return "N" + std::to_string(Index) + "_" + std::string(1000, 'x');
	}

	// N actors with many tags whose export entries all point at the first actor's data: refused at the first
	// overlap, where each actor's tags were read again from the same bytes.
	void BM_HostileOverlappingExports(benchmark::State& State)
	{
		const std::size_t Actors = static_cast<std::size_t>(State.range(0));
		FTestMap Map;
		for (std::size_t Index = 0; Index < Actors; ++Index)
		{
			FTestActor Actor;
			Actor.Name = "A" + std::to_string(Index);
			Actor.bTags = Index == 0;
			for (std::size_t Tag = 0; Index == 0 && Tag < 256; ++Tag)
			{
				Actor.Tags.push_back(LongName(Tag));
			}
			Map.Actors.push_back(std::move(Actor));
		}
		FTestPackage Package;
		std::string Bytes = WriteTestMap(Map, &Package);
		const std::vector<std::size_t>& Entries = Package.Layout.ExportEntries;
		FTestBytes Patched;
		Patched.Text = std::move(Bytes);
		if (Entries.size() != Actors + 2)
		{
			State.SkipWithError("the map holds other exports than its world, level and actors");
			return;
		}
		for (std::size_t Export = 3; Export < Entries.size(); ++Export)
		{
			// The serial size (64 bits), then the serial offset: those of export 2, the first actor.
			for (const std::size_t Field : {std::size_t(28), std::size_t(36)})
			{
				const std::string First = Patched.Text.substr(Entries[2] + Field, 8);
				Patched.Text.replace(Entries[Export] + Field, 8, First);
			}
		}
		ReadLevelBytes(State, Patched.Text, true);
	}
	BENCHMARK(BM_HostileOverlappingExports)
		->RangeMultiplier(4)
		->Range(256, 16384)
		->Unit(benchmark::kMillisecond)
		->Complexity(benchmark::oN);

	// N actors whose class ends an import chain of N long names, each name 1 KB.
	void BM_HostileLongImportChain(benchmark::State& State)
	{
		const std::size_t Count = static_cast<std::size_t>(State.range(0));
		FTestPackage Package;
		std::int32_t Class = Package.Import("/Script/CoreUObject", "Package", 0, "/Script/Engine");
		for (std::size_t Depth = 0; Depth < Count; ++Depth)
		{
			Class = Package.Import("/Script/CoreUObject", "Class", Class, LongName(Depth));
		}
		FTestMap Map;
		for (std::size_t Index = 0; Index < Count; ++Index)
		{
			FTestActor Actor;
			Actor.Name = "A" + std::to_string(Index);
			Actor.ClassIndex = Class;
			Map.Actors.push_back(std::move(Actor));
		}
		ReadLevelBytes(State, WriteTestMap(Map, &Package), false);
	}
	BENCHMARK(BM_HostileLongImportChain)
		->RangeMultiplier(2)
		->Range(256, 4096)
		->Unit(benchmark::kMillisecond)
		->Complexity(benchmark::oN);

	/** The sample level, indexed once, that the C# benchmarks lint against. */
	struct FLintScene
	{
		FLintScene()
		{
			std::string Error;
			FSceneSnapshot::Parse(GetSampleLevelJson(), "sample", Scene, Error);
			Index = IndexSceneSnapshot(Scene);
			Finder = std::make_unique<FLodexBestLocatorFinder>(*Index);
		}
		FSceneSnapshot Scene;
		std::unique_ptr<FLodexSceneIndex> Index;
		std::unique_ptr<FLodexBestLocatorFinder> Finder;
	};

	void LintSource(benchmark::State& State, const std::string& Source, std::size_t ExpectedChecked)
	{
		static const FLintScene Lint;
		std::size_t Checked = 0;
		MeasureReading(State, Source.size(),
			[&]
			{
				FLodexLintReport Report;
				LintCSharpSource(*Lint.Index, *Lint.Finder, "Hostile.cs", Source, FLodexLintOptions(), Report);
				Checked = Report.Checked;
				benchmark::DoNotOptimize(Report);
			});
		if (Checked != ExpectedChecked)
		{
			State.SkipWithError("lint checked another number of Lodestrings");
		}
	}

	// N findings, one a line, each a locator that matches nothing.
	void BM_HostileManyFindings(benchmark::State& State)
	{
		const std::size_t Count = static_cast<std::size_t>(State.range(0));
		std::string Source;
		for (std::size_t Index = 0; Index < Count; ++Index)
		{
			Source += "api.Click(\"//Nobody" + std::to_string(Index) + "\");\n";
		}
		LintSource(State, Source, Count);
	}
	BENCHMARK(BM_HostileManyFindings)
		->RangeMultiplier(4)
		->Range(1024, 65536)
		->Unit(benchmark::kMillisecond)
		->Complexity(benchmark::oN);

	// One call with N arguments on one line, each a locator that matches nothing.
	void BM_HostileLongArgumentLine(benchmark::State& State)
	{
		const std::size_t Count = static_cast<std::size_t>(State.range(0));
		std::string Source = "api.Click(";
		for (std::size_t Index = 0; Index < Count; ++Index)
		{
			Source += (Index > 0 ? ", \"//Nobody" : "\"//Nobody") + std::to_string(Index) + "\"";
		}
		Source += ");";
		LintSource(State, Source, Count);
	}
	BENCHMARK(BM_HostileLongArgumentLine)
		->RangeMultiplier(4)
		->Range(1024, 65536)
		->Unit(benchmark::kMillisecond)
		->Complexity(benchmark::oN);

	// api calls nested N deep, and N parentheses around one literal: every call reads its own arguments only.
	void BM_HostileDeepParentheses(benchmark::State& State)
	{
		const std::size_t Depth = static_cast<std::size_t>(State.range(0));
		std::string Source;
		for (std::size_t Index = 0; Index < Depth; ++Index)
		{
			Source += "api.Click(";
		}
		Source += "\"//Nobody\"" + std::string(Depth, ')') + ";\napi.Click(" + std::string(Depth, '(') + "\"//Door\"" +
			std::string(Depth, ')') + ");\napi.Find<" + std::string(Depth, '<') + "\n";
		LintSource(State, Source, 1);
	}
	BENCHMARK(BM_HostileDeepParentheses)
		->RangeMultiplier(4)
		->Range(4096, 262144)
		->Unit(benchmark::kMillisecond)
		->Complexity(benchmark::oN);

	// A snapshot whose N classes derive one from the next.
	void BM_HostileLongClassChain(benchmark::State& State)
	{
		const std::size_t Count = static_cast<std::size_t>(State.range(0));
		std::string Text = R"({"objects": [{"id": "a", "kind": "actor", "name": "A", "class": "C0"}], "classes": [)";
		for (std::size_t Index = 0; Index < Count; ++Index)
		{
			Text += (Index > 0 ? ", " : "") + std::string(R"({"name": "C)") + std::to_string(Index) + "\"" +
				(Index + 1 < Count ? R"(, "super": "C)" + std::to_string(Index + 1) + "\"" : "") + "}";
		}
		Text += "]}";
		MeasureReading(State, Text.size(),
			[&]
			{
				FSceneSnapshot Scene;
				std::string Error;
				if (!FSceneSnapshot::Parse(Text, "chain.json", Scene, Error))
				{
					State.SkipWithError(Error.c_str());
				}
				benchmark::DoNotOptimize(Scene);
			});
	}
	BENCHMARK(BM_HostileLongClassChain)
		->RangeMultiplier(4)
		->Range(1024, 65536)
		->Unit(benchmark::kMillisecond)
		->Complexity(benchmark::oN);
}
