// Copyright Lodex contributors.
#include "Evaluation/EvaluationFixture.h"
#include "TestGraph.h"

#include "LodexDebugger/Core/Lodestring/Lodestring.h"

#include <gtest/gtest.h>

namespace
{
	using EKind = FTestGraph::EKind;

	TEST(LodestringScene, EveryShapeOfWalkInEveryMode)
	{
		const FCasesScene Cases;
		for (const LodestringCases::FRow& Row : LodestringCases::Rows)
		{
			std::string Error;
			const FLodexObject Object = Cases.Scene.FindObject(Row.Object, Error);
			ASSERT_TRUE(Object) << Row.Object;
			EXPECT_EQ(BuildLodestring(Cases.Scene, Object, Row.Mode), Row.Expected)
				<< Row.Object << ", \"" << Row.Mode << "\"";
		}
	}

	TEST(LodestringWalk, RelativeGoesNoHigherThanTheNearestNode)
	{
		FTestGraph Graph;
		FTestGraph::FNode& Top = Graph.Actor("Top");
		FTestGraph::FNode& A = Graph.Actor("A", &Top);
		const FTestGraph::FNode& Comp = Graph.Add(EKind::Component, "Comp", &A);
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(Comp), "Relative"), "//A/fn:component('Comp')");
		EXPECT_EQ(Top.NameReads, 0);
	}

	TEST(LodestringWalk, NoStaleTagsWithoutATagsArray)
	{
		FTestGraph Graph;
		FTestGraph::FNode& A = Graph.Actor("A", nullptr, {"kept"});
		A.bHasTags = false; // the graph answers "no array" but leaves its list filled
		EXPECT_TRUE(GetTagStrings(Graph, FTestGraph::Handle(A)).empty());
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(A), "Tag"), "/*[]");
	}

	TEST(LodestringWalk, LongLoopBehindALongTailNamesEveryObjectOnce)
	{
		for (const int LoopLength : {1, 2, 3, 37, 64, 65})
		{
			FTestGraph Graph;
			std::vector<FTestGraph::FNode*> Chain;
			for (int Index = 0; Index < 100 + LoopLength; ++Index)
			{
				Chain.push_back(&Graph.Actor("N" + std::to_string(Index)));
			}
			for (std::size_t Index = 0; Index + 1 < Chain.size(); ++Index)
			{
				Chain[Index]->AttachParent = Chain[Index + 1];
			}
			Chain.back()->AttachParent = Chain[100]; // the loop starts after a tail of 100

			std::string Expected;
			for (std::size_t Index = Chain.size(); Index > 0; --Index)
			{
				Expected += "/*[@name = 'N" + std::to_string(Index - 1) + "']";
			}
			EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(*Chain.front()), "Absolute"), Expected) << LoopLength;
		}
	}
}
