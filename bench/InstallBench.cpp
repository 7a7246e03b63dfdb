// Copyright Lodex contributors.
// The install's reading of a plug-in descriptor: time linear in the descriptor's size, whatever its shape.
#include "Install/DescriptorText.h"

#include <benchmark/benchmark.h>

#include <string>

namespace
{
	/** A descriptor in the engine's layout whose "Modules" lists Count modules, the module not among them. */
	std::string WideDescriptor(std::int64_t Count)
	{
		std::string Text = "{\n\t\"FileVersion\": 3,\n\t\"Installed\": True,\n\t\"modules\": [\n";
		for (std::int64_t Index = 0; Index < Count; ++Index)
		{
			Text += "\t\t{\n\t\t\t\"Name\": \"Module" + std::to_string(Index) +
				"\",\n\t\t\t\"Type\": \"Runtime\",\n\t\t\t\"LoadingPhase\": \"Default\"\n\t\t},\n";
		}
		return Text + "\t]\n}\n";
	}

	/** A descriptor whose "Extra" field is Count lists of depth 255, the deepest it may have. */
	std::string DeepDescriptor(std::int64_t Count)
	{
		std::string Text = "{\"Modules\": [], \"Extra\": [";
		for (std::int64_t Index = 0; Index < Count; ++Index)
		{
			Text += std::string(254, '[') + std::string(254, ']') + ",";
		}
		return Text + "]}";
	}

	void RunDescriptorUpdate(benchmark::State& State, const std::string& Text)
	{
		for (auto _ : State)
		{
			FDescriptorUpdate Update;
			std::string Error;
			benchmark::DoNotOptimize(PlanDescriptorUpdate(Text, "UnrealCLR.uplugin", Update, Error));
			benchmark::DoNotOptimize(Update.NewText);
		}
		State.SetBytesProcessed(State.iterations() * static_cast<std::int64_t>(Text.size()));
		State.SetComplexityN(static_cast<std::int64_t>(Text.size()));
	}

	void BM_DescriptorUpdateWide(benchmark::State& State)
	{
		RunDescriptorUpdate(State, WideDescriptor(State.range(0)));
	}
	BENCHMARK(BM_DescriptorUpdateWide)->Range(1 << 8, 1 << 16)->Complexity(benchmark::oN);

	void BM_DescriptorUpdateDeep(benchmark::State& State)
	{
		RunDescriptorUpdate(State, DeepDescriptor(State.range(0)));
	}
	BENCHMARK(BM_DescriptorUpdateDeep)->Range(1 << 4, 1 << 12)->Complexity(benchmark::oN);
}
