// Copyright Lodex contributors.
#include "LodestringCases.h"
#include "Scenes/SceneSnapshot.h"
#include "TestGraph.h"

#include "LodexDebugger/Core/Lodestring/Lodestring.h"

#include <gtest/gtest.h>

#include <random>

namespace
{
	using EKind = FTestGraph::EKind;

	class LodestringScene : public ::testing::Test
	{
	protected:
		void SetUp() override
		{
			std::string Error;
			ASSERT_TRUE(FSceneSnapshot::Parse(LodestringCases::Scene, "cases", Scene, Error)) << Error;
		}
		FLodexObject Find(const char* Id) const
		{
			std::string Error;
			return Scene.FindObject(Id, Error);
		}
		FSceneSnapshot Scene;
	};

	TEST_F(LodestringScene, EveryShapeOfWalkInEveryMode)
	{
		for (const LodestringCases::FRow& Row : LodestringCases::Rows)
		{
			const FLodexObject Object = Find(Row.Object);
			ASSERT_TRUE(Object) << Row.Object;
			EXPECT_EQ(BuildLodestring(Scene, Object, Row.Mode), Row.Expected)
				<< Row.Object << ", \"" << Row.Mode << "\"";
		}
	}

	TEST_F(LodestringScene, OneStepOfTheWalkPerKind)
	{
		const std::pair<const char*, const char*> Steps[] = {
			{"door", "house"},
			{"house", nullptr},
			{"hinge", "door"},
			{"fog", nullptr},
			{"levelComp", nullptr},
			{"user", "panel"},
			{"w", nullptr},
			{"tree", "panel"},
			{"brick", "pkg"},
			{"pkg", nullptr},
		};
		for (const auto& [From, To] : Steps)
		{
			EXPECT_EQ(GetLodestringParent(Scene, Find(From)), To ? Find(To) : FLodexObject()) << From;
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

	/** Generated forests of attached actors, each with a component, against what each mode must mean. */
	TEST(LodestringProperties, GeneratedActorForests)
	{
		std::mt19937 Random(20261121);
		for (int Round = 0; Round < 200; ++Round)
		{
			FTestGraph Graph;
			std::vector<FTestGraph::FNode*> Actors;
			const int ActorCount = 1 + static_cast<int>(Random() % 12);
			for (int Index = 0; Index < ActorCount; ++Index)
			{
				FTestGraph::FNode* Parent =
					Actors.empty() || Random() % 4 == 0 ? nullptr : Actors[Random() % Actors.size()];
				std::vector<std::string> Tags;
				for (unsigned Tag = Random() % 3; Tag > 0; --Tag)
				{
					Tags.push_back("t" + std::to_string(Random() % 5));
				}
				Actors.push_back(&Graph.Actor("A" + std::to_string(Index), Parent, Tags));
			}
			for (FTestGraph::FNode* Owner : Actors)
			{
				const FTestGraph::FNode& Comp = Graph.Add(EKind::Component, "C_" + Owner->Name, Owner);
				const std::string Step = "/fn:component('" + Comp.Name + "')";
				const FLodexObject Handle = FTestGraph::Handle(Comp);
				const std::string OwnerAbsolute = BuildLodestring(Graph, FTestGraph::Handle(*Owner), "Absolute");

				// A component's path is its owner's followed by its own step; relative names the owner only.
				EXPECT_EQ(BuildLodestring(Graph, Handle, "Absolute"), OwnerAbsolute + Step);
				EXPECT_EQ(BuildLodestring(Graph, Handle, "Relative"), "//" + Owner->Name + Step);

				// The absolute path has one step per actor up to the top, which also gives the tag expression.
				const FTestGraph::FNode* Top = Owner;
				std::size_t Depth = 1;
				for (; Top->AttachParent != nullptr; Top = Top->AttachParent)
				{
					++Depth;
				}
				EXPECT_EQ(
					BuildLodestring(Graph, Handle, "Tag"), BuildLodestring(Graph, FTestGraph::Handle(*Top), "Tag"));
				EXPECT_EQ(OwnerAbsolute.rfind("/*[@name = '" + Top->Name + "']", 0), 0u) << OwnerAbsolute;
				std::size_t Steps = 0;
				for (std::size_t At = OwnerAbsolute.find("/*["); At != std::string::npos;
					 At = OwnerAbsolute.find("/*[", At + 1))
				{
					++Steps;
				}
				EXPECT_EQ(Steps, Depth) << OwnerAbsolute;
			}
		}
	}
}
