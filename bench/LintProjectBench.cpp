// Copyright Lodex contributors.
// `lodex lint --project` on a generated project: 20 levels of 10,000 actors and 2,000 test files holding 20,000
// Lodestrings, levels read included, with 1 and 2 jobs.
#include "BenchFolder.h"
#include "LodexTool.h"
#include "TestPackageWriter.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <unistd.h>

namespace
{
	constexpr std::size_t BenchLevels = 20;
	constexpr std::size_t BenchActors = 10000;
	constexpr std::size_t BenchFiles = 2000;
	constexpr std::size_t BenchLodestringsPerFile = 10;

	/** The project in a temporary folder, removed when the benchmarks end. */
	struct FBenchProject
	{
		FBenchProject()
		{
			const std::string Root = Folder.Make();
			if (Root.empty())
			{
				return;
			}
			for (std::size_t Level = 0; Level < BenchLevels; ++Level)
			{
				// Props in rows of ten, each with a mesh; every tenth tagged with its row.
				FTestMap Map;
				Map.PackagePath = "/Game/Maps/Zone" + std::to_string(Level);
				Map.Actors.reserve(BenchActors);
				for (std::size_t Index = 0; Index < BenchActors; ++Index)
				{
					FTestActor Actor;
					Actor.Name = "Prop" + std::to_string(Index);
					Actor.Components = {{"Root", "SceneComponent", ""}, {"Mesh", "StaticMeshComponent", ""}};
					Actor.Root = "Root";
					if (Index % 10 == 0)
					{
						Actor.bTags = true;
						Actor.Tags = {"row_" + std::to_string(Index / 10)};
					}
					Map.Actors.push_back(std::move(Actor));
				}
				WriteTestFile(Root, "Content/Maps/Zone" + std::to_string(Level) + ".umap", WriteTestMap(Map));
			}
			// Each file loads one level and checks ten Lodestrings of every kind: names, tags, components, a miss.
			for (std::size_t File = 0; File < BenchFiles; ++File)
			{
				std::string Text = "public class Test" + std::to_string(File) + "\n{\n\tpublic void Run()\n\t{\n" +
					"\t\tapi.LoadLevel(\"/Game/Maps/Zone" + std::to_string(File % BenchLevels) + "\");\n";
				for (std::size_t Item = 0; Item < BenchLodestringsPerFile; ++Item)
				{
					const std::size_t Actor = (File * 37 + Item * 101) % BenchActors;
					const std::string Name = "Prop" + std::to_string(Actor);
					const std::string Lodestring = Item % 5 == 0 ? "//" + Name
						: Item % 5 == 1                          ? "/*[@name = '" + Name + "']"
						: Item % 5 == 2 ? "//*[@tag = 'row_" + std::to_string(Actor / 10) + "']"
						: Item % 5 == 3 ? "//" + Name + "/fn:component('Mesh')"
										: "//Missing" + std::to_string(Actor);
					Text += "\t\tapi.Click(\"" + Lodestring + "\");\n";
				}
				WriteTestFile(Root, "Tests/Test" + std::to_string(File) + ".cs", Text + "\t}\n}\n");
			}
		}
		FBenchFolder Folder;
		/** The project's folder; empty when it could not be made. */
		const std::string& Path = Folder.Path;
	};

	const FBenchProject& BenchProject()
	{
		static const FBenchProject Project;
		return Project;
	}

	void BM_LintProject(benchmark::State& State)
	{
		const FBenchProject& Project = BenchProject();
		if (Project.Path.empty())
		{
			State.SkipWithError("cannot make the project's folder");
			return;
		}
		const std::vector<std::string> Args = {"lint", "--project", Project.Path, "--jobs",
			std::to_string(State.range(0)), "--format", "json", Project.Path + "/Tests"};
		std::size_t Bytes = 0;
		for (auto _ : State)
		{
			std::ostringstream Out;
			std::ostringstream Err;
			RunLodexCli(Args, Out, Err);
			Bytes = Out.str().size();
			if (Err.str().rfind("Checked 20000 Lodestrings in 2000 files against 20 levels", 0) != 0)
			{
				State.SkipWithError(("not the run expected: " + Err.str()).c_str());
				return;
			}
		}
		State.counters["report_bytes"] = static_cast<double>(Bytes);
	}
	BENCHMARK(BM_LintProject)
		->Arg(1)
		->Arg(2)
		->Unit(benchmark::kMillisecond)
		->Iterations(3)
		->MeasureProcessCPUTime()
		->UseRealTime();
}
