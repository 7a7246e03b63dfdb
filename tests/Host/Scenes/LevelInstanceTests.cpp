// Copyright Lodex contributors.
// Level Instances: the level an instance actor names is read once per instance, under the package the game loads it
// as, and marked as the instance's.
#include "LevelContentTest.h"
#include "LodexRun.h"
#include "Scenes/LevelInstanceNames.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
	TEST(LevelInstanceNames, TheHashIsTheEnginesCityHash64ForEveryLengthBranch)
	{
		// The values the engine's own CityHash64 (Core/Private/Hash/CityHash.cpp) gives for bytes i * 37 + 11.
		std::vector<unsigned char> Bytes(96);
		for (std::size_t Index = 0; Index < Bytes.size(); ++Index)
		{
			Bytes[Index] = static_cast<unsigned char>(Index * 37 + 11);
		}
		const std::vector<std::pair<std::size_t, std::uint64_t>> Cases = {
			{0, 0x9ae16a3b2f90404fULL},
			{3, 0x373a2b2a12e0c581ULL},
			{7, 0x960838fbc6d9c975ULL},
			{16, 0xd836480326a974d6ULL},
			{32, 0xa03300e1b2be6da7ULL},
			{48, 0x17c28ebc25e42153ULL},
			{64, 0x2a7ab541551d3235ULL},
			{80, 0xa1584753b45e6d17ULL},
			{96, 0x03d8a29066120b44ULL},
		};
		for (const auto& [Size, Expected] : Cases)
		{
			SCOPED_TRACE(Size);
			EXPECT_EQ(LevelInstanceCityHash64(Bytes.data(), Size), Expected);
		}
	}

	TEST(LevelInstanceNames, TheLevelIsNamedAfterTheGuidsOfItsInstanceAndOfTheInstancesAroundIt)
	{
		const std::string Own = "0123ABCD4567EF0189AB2345CDEF6789";
		const std::string Outer = "DEADBEEF000000017FFFFFFF80000000";
		EXPECT_EQ(LevelInstancePackageName("/Game/Houses/House", {Own}),
			"/Temp/Game/Houses/House_LevelInstance_8b4dc41be34a854d_1");
		EXPECT_EQ(LevelInstancePackageName("/Game/Houses/House", {Own, Outer}),
			"/Temp/Game/Houses/House_LevelInstance_03e0bcfb45c82157_1");
		// No GUID, or none that FGuid::ToString() writes: the game makes one up, so there is no name to tell.
		EXPECT_EQ(LevelInstancePackageName("/Game/Houses/House", {Own, ""}), "");
		EXPECT_EQ(LevelInstancePackageName("/Game/Houses/House", {"0123abcd4567ef0189ab2345cdef6789"}), "");
		EXPECT_EQ(LevelInstancePackageName("/Game/Houses/House", {}), "");
	}

	/** An actor saving WorldAsset (as ALevelInstance does) that names World, with an ActorGuid. */
	FTestActor Instancing(
		const std::string& Name, const std::string& Class, const std::string& World, const std::string& Guid = "")
	{
		FTestActor Made = TestActorOfClass(Name, Class);
		Made.Guid = Guid;
		Made.FirstProperties = [World](FTestPackage::FData& Data)
		{
			Data.SoftObject("WorldAsset", World);
		};
		return Made;
	}

	class LevelInstances : public FLevelContentTest
	{
	protected:
		/** Reads Content/Maps/Main.umap; each object as "id @level", with the instance it is the level of. */
		std::vector<std::string> ReadLevels()
		{
			Read();
			std::vector<std::string> Lines;
			for (const FSceneObject& Object : Scene.Scene.GetObjects())
			{
				const std::string Level = Scene.Scene.GetLevelName(FSceneSnapshot::Handle(Object));
				Lines.push_back(Object.Id + " @" + Level +
					(Object.InstancedBy.empty() ? std::string() : " by " + Object.InstancedBy) +
					(Object.bStreamedOnDemand ? " streamed" : ""));
			}
			return Lines;
		}
	};

	const std::string GuidA = "0123ABCD4567EF0189AB2345CDEF6789";
	const std::string GuidB = "DEADBEEF000000017FFFFFFF80000000";
	const std::string GuidP = "11111111222222223333333344444444";

	TEST_F(LevelInstances, EachInstanceReadsItsLevelUnderTheNameTheGameLoadsItAsAndInstancesInsideFollow)
	{
		WriteMap(TestMap("/Game/Maps/Main",
			{
				Instancing("LevelInstance_1", "LevelInstance", "/Game/Houses/House.House", GuidA),
				Instancing("LevelInstance_2", "LevelInstance", "/Game/Houses/House.House", GuidB),
				// A Blueprint class deriving from LevelInstance is one; a packed level actor's level is not loaded in
				// the game, and any other actor's WorldAsset is not a level to load.
				Instancing("Tower_3", "/Game/BP/BP_Tower.BP_Tower_C", "/Game/Houses/Tower.Tower", GuidP),
				Instancing("Packed_4", "/Game/BP/BPP_Shed.BPP_Shed_C", "/Game/Houses/Shed.Shed", GuidP),
				Instancing("Portal_5", "StaticMeshActor", "/Game/Houses/Shed.Shed", GuidP),
				Instancing("Nowhere_6", "LevelInstance", "/Game/Houses/Gone.Gone", GuidP),
				Instancing("Unset_7", "LevelInstance", "None", GuidP),
			}));
		Write("BP/BP_Tower.uasset",
			WriteTestBlueprint("/Game/BP/BP_Tower", "BP_Tower_C", "/Script/Engine.LevelInstance", false, {}));
		Write("BP/BPP_Shed.uasset",
			WriteTestBlueprint("/Game/BP/BPP_Shed", "BPP_Shed_C", "/Script/Engine.PackedLevelActor", false, {}));
		const FTestActor Lamp = TestActor("Lamp", {{"Bulb", "PointLightComponent"}}, "Bulb");
		WriteMap(TestMap(
			"/Game/Houses/House", {Lamp, Instancing("Porch_1", "LevelInstance", "/Game/Houses/Porch.Porch", GuidP)}));
		WriteMap(TestMap("/Game/Houses/Porch", {TestActor("Step")}));
		WriteMap(TestMap("/Game/Houses/Tower", {TestActor("Bell")}));
		WriteMap(TestMap("/Game/Houses/Shed", {TestActor("Rake")}));

		const std::vector<std::string> Lines = ReadLevels();
		const std::string Map = "/Game/Maps/Main.Main:PersistentLevel";
		const std::string HouseA = LevelInstancePackageName("/Game/Houses/House", {GuidA});
		const std::string HouseB = LevelInstancePackageName("/Game/Houses/House", {GuidB});
		const std::string PorchA = LevelInstancePackageName("/Game/Houses/Porch", {GuidP, GuidA});
		const std::string PorchB = LevelInstancePackageName("/Game/Houses/Porch", {GuidP, GuidB});
		const std::string TowerP = LevelInstancePackageName("/Game/Houses/Tower", {GuidP});
		const auto InHouse = [](const std::string& Package, const std::string& Rest)
		{
			return Package + ".House:PersistentLevel" + Rest + " @" + Package;
		};
		EXPECT_EQ(Lines,
			(std::vector<std::string>{
				Map + " @/Game/Maps/Main",
				Map + ".LevelInstance_1 @/Game/Maps/Main",
				Map + ".LevelInstance_2 @/Game/Maps/Main",
				Map + ".Tower_3 @/Game/Maps/Main",
				Map + ".Packed_4 @/Game/Maps/Main",
				Map + ".Portal_5 @/Game/Maps/Main",
				Map + ".Nowhere_6 @/Game/Maps/Main",
				Map + ".Unset_7 @/Game/Maps/Main",
				InHouse(HouseA, "") + " by " + Map + ".LevelInstance_1",
				InHouse(HouseA, ".Lamp"),
				InHouse(HouseA, ".Lamp.Bulb"),
				InHouse(HouseA, ".Porch_1"),
				InHouse(HouseB, "") + " by " + Map + ".LevelInstance_2",
				InHouse(HouseB, ".Lamp"),
				InHouse(HouseB, ".Lamp.Bulb"),
				InHouse(HouseB, ".Porch_1"),
				TowerP + ".Tower:PersistentLevel @" + TowerP + " by " + Map + ".Tower_3",
				TowerP + ".Tower:PersistentLevel.Bell @" + TowerP,
				PorchA + ".Porch:PersistentLevel @" + PorchA + " by " + HouseA + ".House:PersistentLevel.Porch_1",
				PorchA + ".Porch:PersistentLevel.Step @" + PorchA,
				PorchB + ".Porch:PersistentLevel @" + PorchB + " by " + HouseB + ".House:PersistentLevel.Porch_1",
				PorchB + ".Porch:PersistentLevel.Step @" + PorchB,
			}));
		EXPECT_EQ(Scene.LevelInstanceCount, 5u);
		// A level instanced many times is one file read.
		EXPECT_EQ(Scene.Files.size(), 4u);
		EXPECT_EQ(Scene.Notes,
			std::vector<std::string>{"the Level Instance " + Map +
				".Nowhere_6 of /Game/Houses/Gone: its level is not under " + Temp.Path + "/Content; left out"});
		// Attached within the instance's level, under its new name.
		const FSceneObject* BulbOwner = Object(HouseB + ".House:PersistentLevel.Lamp.Bulb").Outer;
		ASSERT_NE(BulbOwner, nullptr);
		EXPECT_EQ(BulbOwner->Id, HouseB + ".House:PersistentLevel.Lamp");
	}

	TEST_F(LevelInstances, ALoopAnUnnamedInstanceAndAnOnDemandOrWorldPartitionHostAreToldAndStillRead)
	{
		// Main is a World Partition map without its actor folder: the game moves the actors of the instances in it
		// into its cells.
		const FTestActor Settings = TestActor("WorldSettings", {{"WorldPartition", "WorldPartition"}});
		WriteMap(TestMap("/Game/Maps/Main",
			{Settings, Instancing("LevelInstance_1", "LevelInstance", "/Game/Houses/House.House")},
			{"/Game/Maps/Far"}));
		WriteMap(
			TestMap("/Game/Houses/House", {Instancing("Again_1", "LevelInstance", "/Game/Houses/House.House", GuidA)}));
		WriteMap(TestMap("/Game/Maps/Far", {Instancing("Hut_1", "LevelInstance", "/Game/Houses/Hut.Hut", GuidB)}));
		WriteMap(TestMap("/Game/Houses/Hut", {TestActor("Door")}));

		const std::vector<std::string> Lines = ReadLevels();
		const std::string Unnamed = "/Temp/Game/Houses/House_LevelInstance_LevelInstance_1";
		const std::string HutB = LevelInstancePackageName("/Game/Houses/Hut", {GuidB});
		EXPECT_EQ(Lines,
			(std::vector<std::string>{
				"/Game/Maps/Main.Main:PersistentLevel @/Game/Maps/Main",
				"/Game/Maps/Main.Main:PersistentLevel.WorldSettings @/Game/Maps/Main",
				"/Game/Maps/Main.Main:PersistentLevel.LevelInstance_1 @/Game/Maps/Main",
				"/Game/Maps/Far.Far:PersistentLevel @/Game/Maps/Far streamed",
				"/Game/Maps/Far.Far:PersistentLevel.Hut_1 @/Game/Maps/Far",
				Unnamed + ".House:PersistentLevel @" + Unnamed +
					" by /Game/Maps/Main.Main:PersistentLevel.LevelInstance_1",
				Unnamed + ".House:PersistentLevel.Again_1 @" + Unnamed,
				// An instance in a level the game streams in is there only once that level is.
				HutB + ".Hut:PersistentLevel @" + HutB + " by /Game/Maps/Far.Far:PersistentLevel.Hut_1 streamed",
				HutB + ".Hut:PersistentLevel.Door @" + HutB,
			}));
		const std::string Main = ContentFile("Maps/Main.umap");
		EXPECT_EQ(Scene.Notes,
			(std::vector<std::string>{
				Main + ": a World Partition map, but it has no external actor folder " +
					ContentFile("__ExternalActors__/Maps/Main") + "; only the actors the map itself saves are read",
				"the Level Instance /Game/Maps/Main.Main:PersistentLevel.LevelInstance_1 of /Game/Houses/House (or an "
				"instance it lies in) saves no ActorGuid: the game names its level anew each time it runs; shown as " +
					Unnamed,
				"the Level Instance " + Unnamed +
					".House:PersistentLevel.Again_1 of /Game/Houses/House lies inside that level itself; its level is "
					"not read again",
				"the Level Instance /Game/Maps/Main.Main:PersistentLevel.LevelInstance_1 of /Game/Houses/House lies in "
				"the World Partition map " +
					Main +
					": the game moves its actors into the map's own streaming cells; shown in a level of its own",
			}));
	}

	TEST_F(LevelInstances, TheCommandsShowTheInstanceAndTellItsMatchesApartByLevelThroughASnapshotToo)
	{
		WriteMap(TestMap("/Game/Maps/Main",
			{Instancing("LevelInstance_1", "LevelInstance", "/Game/Houses/House.House", GuidA),
				Instancing("LevelInstance_2", "LevelInstance", "/Game/Houses/House.House", GuidB)}));
		WriteMap(TestMap("/Game/Houses/House", {TestActor("Lamp")}));
		const std::string Map = ContentFile("Maps/Main.umap");
		const std::string HouseA = LevelInstancePackageName("/Game/Houses/House", {GuidA});
		const std::string HouseB = LevelInstancePackageName("/Game/Houses/House", {GuidB});

		const FLodexRun Tree = RunLodex({"level", Map});
		ASSERT_EQ(Tree.Exit, 0) << Tree.Err;
		EXPECT_NE(Tree.Out.find("level " + HouseA + " (a Level Instance of /Game/Houses/House, by LevelInstance_1)\n"),
			std::string::npos)
			<< Tree.Out;

		const FLodexRun Json = RunLodex({"level", Map, "--format", "json"});
		ASSERT_EQ(Json.Exit, 0) << Json.Err;
		const std::string Snapshot = Temp.Write("level.json", Json.Out);
		const std::string Tests = Temp.Write("T.cs", "class T { void Run() {\napi.Click(\"//Lamp\");\n} }\n");
		for (const std::string& File : {Map, Snapshot})
		{
			SCOPED_TRACE(File);
			const FLodexRun Lint = RunLodex({"lint", "--scene", File, Tests});
			EXPECT_EQ(Lint.Exit, 1);
			EXPECT_NE(
				Lint.Out.find("match 1 of 2: /*[@name = 'Lamp'] (matches 2 objects: not unique) (in " + HouseA + ")\n"),
				std::string::npos)
				<< Lint.Out;
			EXPECT_NE(Lint.Out.find("(in " + HouseB + ")\n"), std::string::npos) << Lint.Out;
		}
	}
}
