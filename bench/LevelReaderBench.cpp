// Copyright Lodex contributors.
// Reading levels: a generated level of 100,000 actors with 3 components each, a town of 1,000 Level Instances of one
// house, and any real levels named in LODEX_BENCH_LEVELS (paths separated by ':'), each read as `lodex` reads a map.
#include "BenchFolder.h"
#include "Scenes/LevelScene.h"
#include "TestPackageWriter.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace
{
	/** Content/Maps/Big.umap in a temporary folder: a row of actors, each attached to the one before it. */
	const std::string& BigLevelFile(std::size_t Actors)
	{
		static FBenchFolder Folder;
		static std::string File;
		const std::string Root = File.empty() ? Folder.Make() : std::string();
		if (Root.empty())
		{
			return File;
		}
		FTestMap Map;
		Map.PackagePath = "/Game/Maps/Big";
		Map.Actors.reserve(Actors);
		for (std::size_t Index = 0; Index < Actors; ++Index)
		{
			FTestActor Actor;
			Actor.Name = "StaticMeshActor_" + std::to_string(Index);
			Actor.Label = "Crate " + std::to_string(Index);
			Actor.Components = {{"Root", "SceneComponent", Index > 0 ? Map.Actors.back().Name + ".Root" : ""},
				{"Mesh", "StaticMeshComponent", ""}, {"Light", "PointLightComponent", ""}};
			Actor.Root = "Root";
			if (Index % 10 == 0)
			{
				Actor.bTags = true;
				Actor.Tags = {"crate", "row_" + std::to_string(Index / 10)};
			}
			Map.Actors.push_back(std::move(Actor));
		}
		WriteTestFile(Root + "/Content", "Maps/Big.umap", WriteTestMap(Map));
		File = Root + "/Content/Maps/Big.umap";
		return File;
	}

	void ReadLevel(benchmark::State& State, const std::string& File, std::size_t ExpectedObjects)
	{
		std::size_t Objects = 0;
		for (auto _ : State)
		{
			FLevelScene Scene;
			std::string Error;
			if (!ReadLevelScene(File, FLevelReadOptions(), Scene, Error))
			{
				State.SkipWithError(Error.c_str());
				return;
			}
			Objects = Scene.Scene.GetObjects().size();
			benchmark::DoNotOptimize(Objects);
		}
		if (ExpectedObjects != 0 && Objects != ExpectedObjects)
		{
			State.SkipWithError("the level gave another number of objects");
		}
		State.counters["objects"] = static_cast<double>(Objects);
	}

	void BM_ReadGeneratedLevel(benchmark::State& State)
	{
		const std::size_t Actors = static_cast<std::size_t>(State.range(0));
		ReadLevel(State, BigLevelFile(Actors), 1 + Actors * 4);
	}
	BENCHMARK(BM_ReadGeneratedLevel)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(5);

	/**
	 * Content/Maps/Town.umap in a temporary folder: Instances Level Instances of Content/Houses/House.umap, a level of
	 * 100 actors with 2 components each, so that the house is read once per instance.
	 */
	const std::string& TownLevelFile(std::size_t Instances)
	{
		static FBenchFolder Folder;
		static std::string File;
		const std::string Root = File.empty() ? Folder.Make() : std::string();
		if (Root.empty())
		{
			return File;
		}
		FTestMap House;
		House.PackagePath = "/Game/Houses/House";
		for (std::size_t Index = 0; Index < 100; ++Index)
		{
			FTestActor Actor;
			Actor.Name = "StaticMeshActor_" + std::to_string(Index);
			Actor.Components = {{"Root", "SceneComponent", Index > 0 ? House.Actors.back().Name + ".Root" : ""},
				{"Mesh", "StaticMeshComponent", ""}};
			Actor.Root = "Root";
			House.Actors.push_back(std::move(Actor));
		}
		FTestMap Town;
		Town.PackagePath = "/Game/Maps/Town";
		for (std::size_t Index = 0; Index < Instances; ++Index)
		{
			FTestActor Instance;
			Instance.Name = "LevelInstance_" + std::to_string(Index);
			Instance.Class = "LevelInstance";
			char Guid[33];
			std::snprintf(Guid, sizeof(Guid), "%032zX", Index + 1);
			Instance.Guid = Guid;
			Instance.FirstProperties = [](FTestPackage::FData& Data)
			{
				Data.SoftObject("WorldAsset", "/Game/Houses/House.House");
			};
			Town.Actors.push_back(std::move(Instance));
		}
		WriteTestFile(Root + "/Content", "Houses/House.umap", WriteTestMap(House));
		WriteTestFile(Root + "/Content", "Maps/Town.umap", WriteTestMap(Town));
		File = Root + "/Content/Maps/Town.umap";
		return File;
	}

	void BM_ReadLevelInstances(benchmark::State& State)
	{
		const std::size_t Instances = static_cast<std::size_t>(State.range(0));
		ReadLevel(State, TownLevelFile(Instances), 1 + Instances + Instances * (1 + 100 * 3));
	}
	BENCHMARK(BM_ReadLevelInstances)->Arg(1000)->Unit(benchmark::kMillisecond)->Iterations(3);

	/** One benchmark per file of LODEX_BENCH_LEVELS. */
	const bool bRealLevelsRegistered = []
	{
		const char* List = std::getenv("LODEX_BENCH_LEVELS");
		std::string Files = List != nullptr ? List : "";
		for (std::size_t Start = 0; Start < Files.size();)
		{
			const std::size_t End = Files.find(':', Start) == std::string::npos ? Files.size() : Files.find(':', Start);
			const std::string File = Files.substr(Start, End - Start);
			if (!File.empty())
			{
				benchmark::RegisterBenchmark(
					("BM_ReadLevel/" + std::filesystem::path(File).filename().string()).c_str(),
					[File](benchmark::State& State) { ReadLevel(State, File, 0); })
					->Unit(benchmark::kMillisecond);
			}
			Start = End + 1;
		}
		return true;
	}();
}
