// Copyright Lodex contributors.
#include "TestGraph.h"

#include "LodexDebugger/Core/Lodestring/LodexBestLocator.h"
#include "LodexDebugger/Core/Lodestring/LodexSceneIndex.h"

#include <gtest/gtest.h>

namespace
{
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
		// A latch whose generated name the locator through its door still writes; a switch in one lamp and in the
		// warehouse: a name two lamps share anchors it.
		FTestGraph::FNode& Latch = Level.Listed(Level.Add(EKind::Component, "Latch_2", &Door));
		FTestGraph::FNode& Switch = Level.Listed(Level.Actor("Switch", &Lamp));
		Level.Listed(Level.Actor("Switch", &Warehouse));

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
			{&Latch, "//Door/fn:component('Latch_2')", false},
			{&Switch, "//Lamp/Switch", true},
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
}
