// Copyright Lodex contributors.
#include "TestGraph.h"
#include "TestReflection.h"

#include "LodexDebugger/Core/Lodestring/LodestringEvaluator.h"
#include "LodexDebugger/Core/Paths/LodexBestCopy.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
	TEST(BestCopy, LogsEachSelectedActorsBestLodestringWithItsCountAndCopiesThemAllOneALine)
	{
		FListedTestGraph Scene;
		FTestGraph::FNode& House = Scene.Listed(Scene.Actor("House", nullptr, {"bldg"}));
		FTestGraph::FNode& Door = Scene.Listed(Scene.Actor("Door", &House));
		Scene.Listed(Scene.Add(FTestGraph::EKind::Component, "Hinge", &Door));
		// Two untagged cubes at the root: nothing tells them apart.
		FTestGraph::FNode& Cube = Scene.Listed(Scene.Actor("Cube"));
		Scene.Listed(Scene.Actor("Cube"));
		// An actor of another level, which the scene does not hold.
		FTestGraph::FNode& Elsewhere = Scene.Actor("Elsewhere");
		const FLodexSceneIndex Index(Scene, Scene);

		const FTestSelection Selection{&Door, nullptr, &Cube, &Elsewhere};
		FRecordingOutput Output;
		const std::vector<std::string> Copied = PrintSelectedBestLodestrings(Index, Selection, Output);

		ASSERT_EQ(Copied.size(), 2u);
		const std::string& DoorBest = Copied[0];
		const std::string& CubeBest = Copied[1];
		// What is copied finds what it says it finds.
		EXPECT_EQ(EvaluateLodestring(Index, DoorBest).Matches.size(), 1u) << DoorBest;
		EXPECT_EQ(EvaluateLodestring(Index, CubeBest).Matches.size(), 2u) << CubeBest;

		EXPECT_EQ(Output.Messages(),
			(std::vector<std::string>{"Best Lodestring : " + DoorBest + " (matches 1 object)",
				"Best Lodestring : " + CubeBest + " (matches 2 objects): no Lodestring tells them apart",
				"Best Lodestring : Elsewhere is not in the level: no Lodestring finds it"}));
		ASSERT_EQ(Output.Lines.size(), 3u);
		EXPECT_EQ(Output.Lines[1].Verbosity, ELodexLogVerbosity::Log);
		EXPECT_EQ(Output.Lines[2].Verbosity, ELodexLogVerbosity::Warning);
		// One copy, every Lodestring on a line of its own, so that the clipboard holds them all.
		EXPECT_EQ(Output.Copies, std::vector<std::string>{DoorBest + "\r\n" + CubeBest});
	}

	TEST(BestCopy, AnEmptySelectionOrOneOfNothingButStrangersCopiesNothing)
	{
		FListedTestGraph Scene;
		Scene.Listed(Scene.Actor("Lamp"));
		FTestGraph::FNode& Elsewhere = Scene.Actor("Elsewhere");
		const FLodexSceneIndex Index(Scene, Scene);

		FRecordingOutput Output;
		EXPECT_TRUE(PrintSelectedBestLodestrings(Index, FTestSelection{}, Output).empty());
		EXPECT_TRUE(Output.Lines.empty());
		EXPECT_TRUE(PrintSelectedBestLodestrings(Index, FTestSelection{&Elsewhere}, Output).empty());
		EXPECT_EQ(Output.Lines.size(), 1u);
		EXPECT_TRUE(Output.Copies.empty()) << "the clipboard keeps what it held";
	}
}
