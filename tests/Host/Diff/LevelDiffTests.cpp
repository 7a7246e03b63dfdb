// Copyright Lodex contributors.
// lodex diff on pairs of levels built in code: each kind of edit a designer makes, pinned as the reviewer reads it.
#include "Diff/DiffCommand.h"
#include "Diff/LevelDiff.h"
#include "Scenes/LevelScene.h"
#include "Host/Scenes/TestPackageWriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>

namespace
{
	FTestActor Actor(const std::string& Name, const std::string& Guid, const std::string& Label)
	{
		FTestActor Made = TestActor(Name, {{"Root", "SceneComponent"}}, "Root");
		Made.Guid = Guid;
		Made.Label = Label;
		Made.bLocation = true;
		return Made;
	}

	/** A house with a door attached to it, a lamp, a crate, an actor saved without GUID and the level script. */
	FTestMap BaseMap()
	{
		FTestMap Map;
		FTestActor House = Actor("House", "00000000000000000000000000000001", "House");
		FTestActor Door = Actor("Door_2", "00000000000000000000000000000002", "Door");
		Door.Components = {{"Root", "SceneComponent", "House.Root"}};
		Door.bTags = true;
		Door.Tags = {"exit"};
		FTestActor Lamp = Actor("Lamp_2", "00000000000000000000000000000003", "");
		FTestActor Crate = Actor("Crate_1", "00000000000000000000000000000004", "Crate");
		Crate.Components = {{"Root", "SceneComponent"}, {"Mesh"}};
		Crate.Location[0] = 100;
		FTestActor Old = Actor("Old_1", "", "Old One");
		FTestActor Script = Actor("Main_C_3", "00000000000000000000000000000005", "");
		Script.Class = "/Game/Maps/Main.Main_C";
		Map.Actors = {House, Door, Lamp, Crate, Old, Script};
		return Map;
	}

	/** The map's actor of that name, which the base map has. */
	FTestActor& Find(FTestMap& Map, const std::string& Name)
	{
		return *std::find_if(
			Map.Actors.begin(), Map.Actors.end(), [&](const FTestActor& Candidate) { return Candidate.Name == Name; });
	}

	FLevelScene ReadMap(const FTestMap& Map, const std::string& Name)
	{
		FLevelScene Scene;
		std::string Error;
		EXPECT_TRUE(ReadLevelSceneBytes(WriteTestMap(Map), Name, Map.PackagePath, Scene, Error)) << Error;
		return Scene;
	}

	std::string DiffText(const std::function<void(FTestMap&)>& Edit)
	{
		FTestMap After = BaseMap();
		Edit(After);
		const FLevelScene Old = ReadMap(BaseMap(), "old.umap");
		const FLevelScene New = ReadMap(After, "new.umap");
		return FormatLevelDiffText(DiffLevelScenes(Old.Scene, New.Scene), "old", "new");
	}

	/** How a diff of the base map pairs its actors when none is added or removed and the GUIDs stay. */
	const std::string Paired = " (6 of 6 actors paired: 5 by GUID, 0 by level script class, 1 by fingerprint)\n";

	TEST(LevelDiff, EachEditIsReportedAsTheReviewerReadsIt)
	{
		const struct
		{
			const char* What;
			std::function<void(FTestMap&)> Edit;
			std::string Expected;
		} Rows[] = {
			{"nothing", [](FTestMap&) {}, "no changes" + Paired},
			{"rename keeps the GUID", [](FTestMap& Map) { Find(Map, "Door_2").Name = "Door_3"; },
				"1 renamed" + Paired + "renamed:\n  Door (Door_2) -> Door_3\n"},
			{"re-label", [](FTestMap& Map) { Find(Map, "Door_2").Label = "Front Door"; },
				"1 re-labelled" + Paired + "re-labelled:\n  Door_2: 'Door' -> 'Front Door'\n"},
			{"re-attach to a new actor",
				[](FTestMap& Map)
				{
					Map.Actors.push_back(Actor("House_A", "0000000000000000000000000000000A", "House A"));
					Find(Map, "Door_2").Components = {{"Root", "SceneComponent", "House_A.Root"}};
				},
				"1 added, 1 re-attached" + Paired +
					"added:\n  House A (House_A) [StaticMeshActor]\nre-attached:\n  Door (Door_2): House -> House A "
					"(House_A)\n"},
			{"re-tag",
				[](FTestMap& Map) {
					Find(Map, "Door_2").Tags = {"locked", "red"};
				},
				"1 re-tagged" + Paired + "re-tagged:\n  Door (Door_2): -'exit' +'locked' +'red'\n"},
			{"delete, and the door it held is detached",
				[](FTestMap& Map)
				{
					Map.Actors.erase(Map.Actors.begin());
					Find(Map, "Door_2").Components = {{"Root", "SceneComponent"}};
				},
				"1 removed, 1 re-attached (5 of 6 actors paired: 4 by GUID, 0 by level script class, 1 by "
				"fingerprint)\nremoved:\n  House [StaticMeshActor]\nre-attached:\n  Door (Door_2): House -> nothing\n"},
			{"class replaced, moved, a component gone",
				[](FTestMap& Map)
				{
					FTestActor& Crate = Find(Map, "Crate_1");
					Crate.Class = "SkeletalMeshActor";
					Crate.Location[1] = -20.25;
					Crate.Components = {{"Root", "SceneComponent"}, {"Light", "PointLightComponent"}};
				},
				"1 class changed, 1 moved, 1 components added, 1 components removed" + Paired +
					"class changed:\n  Crate (Crate_1): StaticMeshActor -> SkeletalMeshActor\nmoved:\n  Crate "
					"(Crate_1): (100, 0, 0) -> (100, -20.25, 0)\ncomponents added:\n  Crate (Crate_1): "
					"Light\ncomponents removed:\n  Crate (Crate_1): Mesh\n"},
			{"a move within the tolerance is none", [](FTestMap& Map) { Find(Map, "Crate_1").Location[0] = 100.4; },
				"no changes" + Paired},
			{"an actor without GUID renamed: its fingerprint pairs it",
				[](FTestMap& Map) { Find(Map, "Old_1").Name = "Old_2"; },
				"1 renamed" + Paired + "renamed:\n  Old One (Old_1) -> Old_2\n"},
			{"an actor without GUID renamed and re-labelled: too far, never a guess",
				[](FTestMap& Map)
				{
					FTestActor& Edited = Find(Map, "Old_1");
					Edited.Name = "Old_2";
					Edited.Label = "Other";
				},
				"1 added, 1 removed (5 of 6 actors paired: 5 by GUID, 0 by level script class, 0 by fingerprint)\n"
				"added:\n  Other (Old_2) [StaticMeshActor]\nremoved:\n  Old One (Old_1) [StaticMeshActor]\n"},
			{"two equal candidates: none is taken",
				[](FTestMap& Map)
				{
					FTestActor& First = Find(Map, "Old_1");
					First.Name = "Old_2";
					FTestActor Second = First;
					Second.Name = "Old_3";
					Map.Actors.push_back(Second);
				},
				"2 added, 1 removed (5 of 6 actors paired: 5 by GUID, 0 by level script class, 0 by fingerprint)\n"
				"added:\n  Old One (Old_2) [StaticMeshActor]\n  Old One (Old_3) [StaticMeshActor]\n"
				"removed:\n  Old One (Old_1) [StaticMeshActor]\n"},
			{"the level script gets a new GUID and name when its Blueprint is compiled",
				[](FTestMap& Map)
				{
					Find(Map, "Main_C_3").Guid = "000000000000000000000000000000F5";
					Find(Map, "Main_C_3").Name = "Main_C_4";
				},
				"1 renamed (6 of 6 actors paired: 4 by GUID, 1 by level script class, 1 by fingerprint)\n"
				"renamed:\n  Main_C_3 -> Main_C_4\n"},
			{"a copy saved under another name: no GUID shared",
				[](FTestMap& Map)
				{
					for (FTestActor& Each : Map.Actors)
					{
						Each.Guid = Each.Guid.empty() ? "" : "F" + Each.Guid.substr(1);
					}
					Find(Map, "Door_2").Name = "Door_3";
				},
				"1 renamed (6 of 6 actors paired: 0 by GUID, 1 by level script class, 5 by fingerprint)\n"
				"note: the two versions share no actor GUID (a copy of the level saved under another name?): actors "
				"were paired by their fingerprint\nrenamed:\n  Door (Door_2) -> Door_3\n"},
		};
		for (const auto& Row : Rows)
		{
			EXPECT_EQ(DiffText(Row.Edit), "old -> new: " + Row.Expected) << Row.What;
		}
	}

	TEST(LevelDiff, JsonNamesBothActorsOfEachChange)
	{
		const FLevelScene Old = ReadMap(BaseMap(), "old.umap");
		FTestMap After = BaseMap();
		Find(After, "Door_2").Name = "Door_3";
		const FLevelScene New = ReadMap(After, "new.umap");
		const nlohmann::json Json =
			nlohmann::json::parse(FormatLevelDiffJson(DiffLevelScenes(Old.Scene, New.Scene), "old", "new"));
		EXPECT_EQ(Json["changes"], nlohmann::json::parse(R"([{"kind": "renamed", "before": "Door_2", "after": "Door_3",
			"old": {"id": "/Game/Maps/Main.Main:PersistentLevel.Door_2", "name": "Door_2", "label": "Door",
				"class": "StaticMeshActor", "guid": "00000000000000000000000000000002"},
			"new": {"id": "/Game/Maps/Main.Main:PersistentLevel.Door_3", "name": "Door_3", "label": "Door",
				"class": "StaticMeshActor", "guid": "00000000000000000000000000000002"}}])"));
		EXPECT_EQ(Json["changed"], true);
		EXPECT_EQ(Json["sharedGuids"], true);
	}
}
