// Copyright Lodex contributors.
#include "BestLocatorLaw.h"
#include "TestGraph.h"

#include "LodexDebugger/Core/Lodestring/LodestringEvaluator.h"
#include "LodexDebugger/Core/Lodestring/LodexBestLocator.h"
#include "LodexDebugger/Core/Lodestring/LodestringProgram.h"
#include "LodexDebugger/Core/Lodestring/LodexSceneIndex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace
{
	/** The names a Lodestring's standard reading tests (steps, components, @name) that end in a generated number. */
	std::size_t CountGeneratedNames(const std::string& Lodestring)
	{
		FLodestringProgram Program;
		FLodexPathError Error;
		EXPECT_TRUE(CompileLodestring(Lodestring, Program, Error)) << Lodestring << ": " << Error.Message;
		const std::vector<FLodexPredicateEdge> NoEdges;
		std::size_t Count = 0;
		for (const FLodexStepOp& Op : Program.GetOps())
		{
			if (Op.StandardStep == 0)
			{
				continue;
			}
			Count += !Op.bAnyName && HasGeneratedInstanceSuffix(Op.Name) ? 1 : 0;
			for (const FLodexPredicateEdge& Edge : Op.Predicate != nullptr ? Op.Predicate->Edges : NoEdges)
			{
				Count += Edge.bStandard && Edge.Kind == ELodexPredicateEdgeKind::Comparison &&
						Edge.Attribute == ELodexAttribute::Name && HasGeneratedInstanceSuffix(Edge.Value)
					? 1
					: 0;
			}
		}
		return Count;
	}

	TEST(LodestringBestLocator, ComponentsAndGeneratedNodesRestOnAStableAnchorWhenOneSinglesThemOut)
	{
		FListedTestGraph Level;
		using EKind = FTestGraph::EKind;
		// Warehouse > Shelf_C_4 > Crate_3, whose StaticMeshComponent0 is the only one of that name in the warehouse.
		FTestGraph::FNode& Warehouse = Level.Listed(Level.Actor("Warehouse"));
		FTestGraph::FNode& Shelf = Level.Listed(Level.Actor("Shelf_C_4", &Warehouse));
		FTestGraph::FNode& Crate = Level.Listed(Level.Actor("Crate_3", &Shelf));
		FTestGraph::FNode& Mesh = Level.Listed(Level.Add(EKind::Component, "StaticMeshComponent0", &Crate));
		// The crate's body holds a glow: nested components.
		FTestGraph::FNode& Body = Level.Listed(Level.Add(EKind::Component, "Body", &Crate));
		FTestGraph::FNode& Glow = Level.Listed(Level.Add(EKind::Component, "Glow", &Body));
		// A yard with another Crate_3 and the same components: neither the crate's name nor theirs is unique.
		FTestGraph::FNode& Yard = Level.Listed(Level.Actor("Yard"));
		FTestGraph::FNode& YardCrate = Level.Listed(Level.Actor("Crate_3", &Yard));
		Level.Listed(Level.Add(EKind::Component, "StaticMeshComponent0", &YardCrate));
		Level.Listed(
			Level.Add(EKind::Component, "Glow", &Level.Listed(Level.Add(EKind::Component, "Body", &YardCrate))));
		// A depot known by its tag, with a generated name; a box in it and one outside, each with a handle.
		FTestGraph::FNode& Depot = Level.Listed(Level.Actor("Depot_7", nullptr, {"north"}));
		FTestGraph::FNode& Box = Level.Listed(Level.Actor("Box_1", &Depot));
		FTestGraph::FNode& Handle = Level.Listed(Level.Add(EKind::Component, "Handle", &Box));
		FTestGraph::FNode& LooseBox = Level.Listed(Level.Actor("Box_1"));
		Level.Listed(Level.Add(EKind::Component, "Handle", &LooseBox));
		// A door whose hinge its own stable name finds: the shorter locator through the node stays the best.
		FTestGraph::FNode& Door = Level.Listed(Level.Actor("Door", &Warehouse));
		FTestGraph::FNode& Hinge = Level.Listed(Level.Add(EKind::Component, "Hinge", &Door));
		// A component whose generated name nothing stable tells apart: the node's name stays.
		FTestGraph::FNode& Lamp = Level.Listed(Level.Actor("Lamp", &Yard));
		FTestGraph::FNode& Bulb = Level.Listed(Level.Add(EKind::Component, "Bulb_0", &Lamp));
		Level.Listed(Level.Add(EKind::Component, "Bulb_0", &Level.Listed(Level.Actor("Lamp", &Yard))));

		const FLodexSceneIndex Index(Level, Level);
		const FLodexBestLocatorFinder Finder(Index);
		const struct
		{
			const FTestGraph::FNode* Node;
			const char* Lodestring;
			bool bStable;
		} Rows[] = {
			{&Mesh, "//Warehouse//fn:component('StaticMeshComponent0')", true},
			{&Glow, "//Warehouse//fn:component('Glow')", true},
			{&Body, "//Warehouse//fn:component('Body')", true},
			{&Crate, "//Warehouse//Crate_3", false},
			{&YardCrate, "//Yard/Crate_3", false},
			{&Handle, "//*[@tag = 'north']//fn:component('Handle')", true},
			{&Box, "//*[@tag = 'north']//Box_1", false},
			{&Hinge, "//Door/fn:component('Hinge')", true},
			{&Shelf, "//Shelf_C_4", false},
		};
		for (const auto& Row : Rows)
		{
			const FLodexBestLocator Best = Finder.Find(Index.FindIndex(FTestGraph::Handle(*Row.Node)));
			EXPECT_EQ(Best.Lodestring, Row.Lodestring) << Row.Node->Name;
			EXPECT_EQ(Best.MatchCount, 1u) << Row.Node->Name;
			EXPECT_EQ(Best.bStable, Row.bStable) << Row.Node->Name;
		}
		// Two lamps of one name in the yard, each with a Bulb_0: no anchor tells the bulbs apart.
		const std::uint32_t BulbIndex = Index.FindIndex(FTestGraph::Handle(Bulb));
		const FLodexBestLocator BestBulb = Finder.Find(BulbIndex);
		EXPECT_EQ(BestBulb.Lodestring, Index.GetAbsoluteLodestring(BulbIndex));
		EXPECT_EQ(BestBulb.MatchCount, 2u);
		EXPECT_EQ(BestBulb.Evidence, ELodexLocatorEvidence::Absolute);
	}

	/**
	 * A level as a game has it: stable names at the top (some shared, some tagged), generated instance names below
	 * (`Shelf_C_4`, `Crate_3`), engine component names (`StaticMeshComponent0`), now and then a component holding
	 * another. Small numbers, so that names repeat.
	 */
	void MakeWarehouse(FListedTestGraph& Level, unsigned Seed)
	{
		using EKind = FTestGraph::EKind;
		std::mt19937 Random(Seed);
		const auto Pick = [&Random](int Low, int High)
		{
			return std::uniform_int_distribution<int>(Low, High)(Random);
		};
		const auto Chance = [&Random](double Probability)
		{
			return std::bernoulli_distribution(Probability)(Random);
		};
		static const char* const Places[] = {"Warehouse", "Yard", "Office", "Dock", "Warehouse"};
		static const char* const Kinds[] = {"Shelf_C", "Crate", "Pallet_C", "Rack", "Bin"};
		static const char* const Components[] = {
			"StaticMeshComponent0", "SceneComponent0", "Light_1", "Collision", "StaticMeshComponent0"};
		for (int Place = Pick(1, 5); Place > 0; --Place)
		{
			FTestGraph::FNode& Root = Level.Listed(Level.Actor(Places[Pick(0, 4)]));
			if (Chance(0.3))
			{
				Root.Tags.push_back(Chance(0.5) ? "north" : "south");
			}
			std::vector<FTestGraph::FNode*> Holders{&Root};
			for (int Count = Pick(1, 9); Count > 0; --Count)
			{
				FTestGraph::FNode* Parent =
					Holders[static_cast<std::size_t>(Pick(0, static_cast<int>(Holders.size()) - 1))];
				const char* Kind = Kinds[Pick(0, 4)];
				std::string Name = Kind;
				if (Chance(0.8))
				{
					Name += "_" + std::to_string(Pick(0, 4));
				}
				FTestGraph::FNode& Made = Level.Listed(Level.Actor(Name, Parent));
				if (Chance(0.15))
				{
					Made.Tags.push_back("t" + std::to_string(Pick(0, 9)));
				}
				Holders.push_back(&Made);
				for (int Component = Pick(0, 2); Component > 0; --Component)
				{
					FTestGraph::FNode& Held = Level.Listed(Level.Add(EKind::Component, Components[Pick(0, 4)], &Made));
					if (Chance(0.2))
					{
						Level.Listed(Level.Add(EKind::Component, Components[Pick(0, 4)], &Held));
					}
				}
			}
		}
	}

	/**
	 * The anchored locators of an object, made here from the tree alone: for each of the nearest eight node
	 * ancestors (and, for a component, the node that holds it) with a name at most 64 nodes share, and for each of
	 * their tags no other node has, `//Anchor//Name` for a node and `//Anchor//fn:component('Name')` for a component.
	 */
	std::vector<std::string> AnchoredLocators(const FLodexSceneIndex& Index, std::uint32_t Object)
	{
		std::vector<std::string> Out;
		const bool bComponent = Index.IsComponent(Object);
		std::uint32_t Node = Object;
		while (Node != FLodexSceneIndex::None && Index.IsComponent(Node))
		{
			Node = Index.GetParent(Node);
		}
		if (Node == FLodexSceneIndex::None)
		{
			return Out;
		}
		const std::string Tail =
			bComponent ? "//fn:component('" + Index.GetName(Object) + "')" : "//" + Index.GetName(Object);
		std::uint32_t Anchor = bComponent ? Node : Index.GetParent(Node);
		for (int Depth = 0; Anchor != FLodexSceneIndex::None && Depth < (bComponent ? 9 : 8); ++Depth)
		{
			if (Index.IsNode(Anchor))
			{
				if (Index.GetNodesNamed(Index.GetNameId(Anchor)).size() <= 64)
				{
					Out.push_back("//" + Index.GetName(Anchor) + Tail);
				}
				for (const std::uint32_t Tag : Index.GetTagIds(Anchor))
				{
					if (Index.GetNodesTagged(Tag).size() == 1)
					{
						Out.push_back("//*[@tag = '" + Index.GetTagText(Tag) + "']" + Tail);
					}
				}
			}
			Anchor = Index.GetParent(Anchor);
		}
		return Out;
	}

	TEST(LodestringBestLocator, RanksNamesSavedWithTheLevelBeforeNamesOfSpawnedObjects)
	{
		// Room_2 > Lamp_4 > Light, and a second lamp elsewhere with a Light of its own. Through the lamp is shorter
		// than through the room; both rest on one generated name. Which one wins depends on what was saved.
		const struct
		{
			ELodexPlacement Lamp;
			ELodexPlacement Room;
			const char* Lodestring;
		} Rows[] = {
			{ELodexPlacement::Placed, ELodexPlacement::Placed, "//Lamp_4/fn:component('Light')"},
			{ELodexPlacement::Spawned, ELodexPlacement::Placed, "//Room_2//fn:component('Light')"},
			{ELodexPlacement::Unknown, ELodexPlacement::Placed, "//Room_2//fn:component('Light')"},
			{ELodexPlacement::Spawned, ELodexPlacement::Spawned, "//Lamp_4/fn:component('Light')"},
			{ELodexPlacement::Placed, ELodexPlacement::Spawned, "//Lamp_4/fn:component('Light')"},
		};
		for (const auto& Row : Rows)
		{
			FListedTestGraph Level;
			using EKind = FTestGraph::EKind;
			FTestGraph::FNode& Room = Level.Listed(Level.Actor("Room_2"));
			FTestGraph::FNode& Lamp = Level.Listed(Level.Actor("Lamp_4", &Room));
			FTestGraph::FNode& Light = Level.Listed(Level.Add(EKind::Component, "Light", &Lamp));
			FTestGraph::FNode& Other = Level.Listed(Level.Actor("Lamp_9"));
			Level.Listed(Level.Add(EKind::Component, "Light", &Other));
			Room.Placement = Row.Room;
			Lamp.Placement = Row.Lamp;
			const FLodexSceneIndex Index(Level, Level);
			const FLodexBestLocator Best =
				FLodexBestLocatorFinder(Index).Find(Index.FindIndex(FTestGraph::Handle(Light)));
			EXPECT_EQ(Best.Lodestring, Row.Lodestring) << static_cast<int>(Row.Lamp) << static_cast<int>(Row.Room);
			EXPECT_EQ(Best.MatchCount, 1u);
			EXPECT_FALSE(Best.bStable);
		}
	}

	TEST(LodestringRoundTrip, TheBestLocatorOfAGeneratedLevelRestsOnNoMoreGeneratedNamesThanAnAnchorThatFindsItAlone)
	{
		std::size_t Anchored = 0;
		std::size_t StableComponents = 0;
		for (unsigned Seed = 1; Seed <= 600; ++Seed)
		{
			FListedTestGraph Scene;
			MakeWarehouse(Scene, Seed);
			const FLodexSceneIndex Index(Scene, Scene);
			const FLodexBestLocatorFinder Finder(Index);
			for (std::uint32_t Object = 0; Object < Index.Num(); ++Object)
			{
				const FLodexBestLocator Best =
					ExpectBestLocatorLaw(Index, Finder, Object, "seed " + std::to_string(Seed));
				const std::string Absolute = Index.GetAbsoluteLodestring(Object);
				EXPECT_EQ(Best.bStable,
					Best.Evidence != ELodexLocatorEvidence::Absolute && CountGeneratedNames(Best.Lodestring) == 0)
					<< "seed " << Seed << ": " << Best.Lodestring;
				// Any anchored locator that finds the object alone, no longer than the absolute one, bounds the
				// generated names the best may rest on.
				for (const std::string& Candidate : AnchoredLocators(Index, Object))
				{
					const FLodexEvaluation Tried = EvaluateLodestring(Index, Candidate);
					if (Candidate.size() > Absolute.size() || !Tried.bOk || Tried.Matches.size() != 1 ||
						Tried.Matches[0].Object != Object)
					{
						continue;
					}
					++Anchored;
					EXPECT_LE(CountGeneratedNames(Best.Lodestring), CountGeneratedNames(Candidate))
						<< "seed " << Seed << ": " << Best.Lodestring << " where " << Candidate << " finds it alone";
					StableComponents += Index.IsComponent(Object) && CountGeneratedNames(Candidate) == 0 ? 1 : 0;
				}
				if (::testing::Test::HasFailure())
				{
					return;
				}
			}
		}
		// The generator makes such anchors often enough to mean something.
		EXPECT_GT(Anchored, 3000u);
		EXPECT_GT(StableComponents, 500u);
	}
}
