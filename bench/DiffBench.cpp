// Copyright Lodex contributors.
// Level changes: lodex diff of two generated levels of 100,000 actors with 5% of them changed, both read from their
// files; and the repair of 1,000 broken Lodestrings in 200 test files (lint --baseline --fix, as a patch).
#include "Diff/DiffCommand.h"
#include "Diff/LevelDiff.h"
#include "Lint/LintBaseline.h"
#include "Lint/LintFix.h"
#include "Scenes/LevelScene.h"
#include "Scenes/SceneEvaluation.h"
#include "BenchFolder.h"
#include "TestPackageWriter.h"

#include "LodexDebugger/Core/Lodestring/LodexBestLocator.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace
{
	std::string BenchGuid(std::size_t Number)
	{
		char Text[40];
		std::snprintf(Text, sizeof(Text), "%032zX", Number + 1);
		return Text;
	}

	/**
	 * A level of Actors actors and the same level with one actor in twenty changed: renamed, re-tagged, moved,
	 * removed or replaced by a new one, in turn.
	 */
	void MakeLevelPair(std::size_t Actors, FTestMap& Old, FTestMap& New)
	{
		Old.PackagePath = "/Game/Maps/Big";
		Old.Actors.reserve(Actors);
		for (std::size_t Index = 0; Index < Actors; ++Index)
		{
			FTestActor Actor;
			Actor.Name = "StaticMeshActor_" + std::to_string(Index);
			Actor.Label = "Crate " + std::to_string(Index);
			Actor.Guid = BenchGuid(Index);
			// A static mesh actor: its one component is its root; one in a hundred starts a row attached together.
			Actor.Components = {{"StaticMeshComponent0", "StaticMeshComponent",
				Index % 100 != 0 ? Old.Actors.back().Name + ".StaticMeshComponent0" : ""}};
			Actor.Root = "StaticMeshComponent0";
			Actor.bLocation = true;
			Actor.Location[0] = static_cast<double>(Index);
			Actor.bTags = Index % 10 == 0;
			if (Actor.bTags)
			{
				Actor.Tags = {"crate", "row_" + std::to_string(Index / 10)};
			}
			Old.Actors.push_back(std::move(Actor));
		}
		New = Old;
		std::vector<FTestActor> Kept;
		Kept.reserve(Actors);
		for (std::size_t Index = 0; Index < Actors; ++Index)
		{
			FTestActor Actor = New.Actors[Index];
			if (Index % 20 == 7)
			{
				switch ((Index / 20) % 5)
				{
					case 0:
						Actor.Name += "_renamed";
						break;
					case 1:
						Actor.bTags = true;
						Actor.Tags = {"moved_on"};
						break;
					case 2:
						Actor.Location[1] = 250;
						break;
					case 3:
						continue; // removed
					default:
						Actor.Name = "NewActor_" + std::to_string(Index);
						Actor.Guid = BenchGuid(Actors + Index);
						break;
				}
			}
			Kept.push_back(std::move(Actor));
		}
		New.Actors = std::move(Kept);
	}

	const std::pair<std::string, std::string>& LevelFiles(std::size_t Actors)
	{
		static FBenchFolder Folder;
		static std::pair<std::string, std::string> Files;
		if (!Files.first.empty())
		{
			return Files;
		}
		const std::string Root = Folder.Make();
		if (Root.empty())
		{
			return Files;
		}
		FTestMap Old;
		FTestMap New;
		MakeLevelPair(Actors, Old, New);
		WriteTestFile(Root + "/old/Content", "Maps/Big.umap", WriteTestMap(Old));
		WriteTestFile(Root + "/new/Content", "Maps/Big.umap", WriteTestMap(New));
		Files = {Root + "/old/Content/Maps/Big.umap", Root + "/new/Content/Maps/Big.umap"};
		return Files;
	}

	void BM_DiffGeneratedLevels(benchmark::State& State)
	{
		const auto& Files = LevelFiles(static_cast<std::size_t>(State.range(0)));
		std::size_t Changes = 0;
		for (auto _ : State)
		{
			// As lodex diff reads them: both sides at once.
			FSceneFileOptions OldFile;
			OldFile.Path = Files.first;
			FSceneFileOptions NewFile;
			NewFile.Path = Files.second;
			FSceneFile Old;
			FSceneFile New;
			std::string Error;
			if (!LoadScenePair(OldFile, NewFile, Old, New, Error))
			{
				State.SkipWithError(Error.c_str());
				return;
			}
			const FLevelDiff Diff = DiffLevelScenes(Old.Scene, New.Scene);
			const std::string Text = FormatLevelDiffText(Diff, Files.first, Files.second);
			Changes = Diff.Changes.size();
			benchmark::DoNotOptimize(Text);
		}
		State.counters["changes"] = static_cast<double>(Changes);
	}
	BENCHMARK(BM_DiffGeneratedLevels)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(3);

	/**
	 * 200 test files of five Lodestrings each, every one naming by name an actor the new level renamed; the
	 * levels are read once, the rest (indexing, pairing, linting, repairing, the patch) is measured.
	 */
	void BM_FixBrokenLodestrings(benchmark::State& State)
	{
		const std::size_t Actors = static_cast<std::size_t>(State.range(0));
		FTestMap OldMap;
		FTestMap NewMap;
		MakeLevelPair(Actors, OldMap, NewMap);
		for (FTestActor& Actor : NewMap.Actors)
		{
			Actor.Name += "_next";
		}
		FLevelScene Old;
		FLevelScene New;
		std::string Error;
		if (!ReadLevelSceneBytes(WriteTestMap(OldMap), "old.umap", OldMap.PackagePath, Old, Error) ||
			!ReadLevelSceneBytes(WriteTestMap(NewMap), "new.umap", NewMap.PackagePath, New, Error))
		{
			State.SkipWithError(Error.c_str());
			return;
		}
		std::vector<std::string> Files;
		std::vector<std::string> Texts;
		for (std::size_t File = 0; File < 200; ++File)
		{
			std::string Text = "class T" + std::to_string(File) + "\n{\n\tvoid Run(Api api)\n\t{\n";
			for (std::size_t Line = 0; Line < 5; ++Line)
			{
				Text += "\t\tapi.Click(\"//*[@name = 'StaticMeshActor_" +
					std::to_string((File * 5 + Line) * 7 % Actors) + "']\");\n";
			}
			Files.push_back("Tests/T" + std::to_string(File) + ".cs");
			Texts.push_back(Text + "\t}\n}\n");
		}
		std::size_t Repaired = 0;
		for (auto _ : State)
		{
			const auto OldIndex = IndexSceneSnapshot(Old.Scene);
			const auto NewIndex = IndexSceneSnapshot(New.Scene);
			const FLodexBestLocatorFinder Finder(*NewIndex);
			FLintBaselineCheck Check(Old.Scene, *OldIndex, New.Scene, *NewIndex, Finder);
			FLodexLintReport Report;
			for (std::size_t File = 0; File < Files.size(); ++File)
			{
				LintCSharpSource(*NewIndex, Finder, Files[File], Texts[File], FLodexLintOptions(), Report, &Check);
			}
			std::string Patch;
			Repaired = 0;
			for (const FLintFileRepair& Repair : RepairLintFiles(Check.GetBroken(), Files, Texts))
			{
				Patch += MakeUnifiedDiff(Repair.File, Repair.Before, Repair.After);
				Repaired += Repair.Repairs;
			}
			benchmark::DoNotOptimize(Patch);
		}
		State.counters["repaired"] = static_cast<double>(Repaired);
	}
	BENCHMARK(BM_FixBrokenLodestrings)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(3);
}

namespace
{
	/** The pairing and the report alone, on the two levels read once. */
	void BM_DiffScenesOnly(benchmark::State& State)
	{
		const auto& Files = LevelFiles(static_cast<std::size_t>(State.range(0)));
		FLevelScene Old;
		FLevelScene New;
		std::string Error;
		if (!ReadLevelScene(Files.first, FLevelReadOptions(), Old, Error) ||
			!ReadLevelScene(Files.second, FLevelReadOptions(), New, Error))
		{
			State.SkipWithError(Error.c_str());
			return;
		}
		for (auto _ : State)
		{
			const FLevelDiff Diff = DiffLevelScenes(Old.Scene, New.Scene);
			benchmark::DoNotOptimize(FormatLevelDiffText(Diff, Files.first, Files.second));
		}
	}
	BENCHMARK(BM_DiffScenesOnly)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(3);
}
