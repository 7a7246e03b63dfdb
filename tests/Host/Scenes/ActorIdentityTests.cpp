// Copyright Lodex contributors.
// An actor's identity as levels and snapshots carry it: the saved ActorGuid and the root component's location, in
// the large-world format (doubles) and before it (floats), in the map and in external actor packages.
#include "LevelContentTest.h"
#include "LodexRun.h"
#include "Scenes/SceneReflection.h"

#include "LodexDebugger/Core/Explorer/SnapshotWriter.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace
{
	FTestActor MakeActor(const std::string& Name, const std::string& Guid)
	{
		FTestActor Actor = TestActor(Name, {{"Root", "SceneComponent"}}, "Root");
		Actor.Guid = Guid;
		return Actor;
	}

	TEST(ActorIdentity, LevelsGiveGuidAndRootLocationInBothVectorFormats)
	{
		for (const bool bFloats : {false, true})
		{
			FTestMap Map;
			FTestActor Moved = MakeActor("Door_2", "0A1B2C3D4E5F60718293A4B5C6D7E8F9");
			Moved.bLocation = true;
			Moved.Location[0] = 100.25;
			Moved.Location[1] = -2048.5;
			Moved.Location[2] = 7;
			Moved.bFloatVectors = bFloats;
			FTestActor NoLocation = MakeActor("Lamp", "00000000000000000000000000000001");
			FTestActor NoGuid = MakeActor("Old", "");
			NoGuid.Root.clear();
			Map.Actors = {Moved, NoLocation, NoGuid};
			FTestPackage Package(Map.PackagePath);
			Package.FileVersionUE5 = bFloats ? 1003 : 1004;
			FLevelScene Level;
			std::string Error;
			ASSERT_TRUE(ReadLevelSceneBytes(WriteTestMap(Map, &Package), "level.umap", Map.PackagePath, Level, Error))
				<< Error;
			const std::string Prefix = "/Game/Maps/Main.Main:PersistentLevel.";
			const FSceneObject* Door = FindSceneObject(Level.Scene, Prefix + "Door_2");
			const FSceneObject* Lamp = FindSceneObject(Level.Scene, Prefix + "Lamp");
			const FSceneObject* Old = FindSceneObject(Level.Scene, Prefix + "Old");
			ASSERT_TRUE(Door && Lamp && Old);
			EXPECT_EQ(Door->Guid, "0A1B2C3D4E5F60718293A4B5C6D7E8F9");
			ASSERT_TRUE(Door->bHasLocation);
			EXPECT_EQ(Door->Location[0], 100.25);
			EXPECT_EQ(Door->Location[1], -2048.5);
			EXPECT_EQ(Door->Location[2], 7.0);
			EXPECT_EQ(Lamp->Guid, "00000000000000000000000000000001");
			EXPECT_TRUE(Lamp->bHasLocation); // a root that saves no location is at the origin
			EXPECT_EQ(Lamp->Location[0], 0.0);
			EXPECT_EQ(Old->Guid, "");
			EXPECT_FALSE(Old->bHasLocation);
		}
	}

	using ActorIdentityFiles = FLevelContentTest;

	TEST_F(ActorIdentityFiles, ExternalActorsCarryTheirGuid)
	{
		FTestMap Map;
		Map.ImportedActors = {"/Game/Maps/Main.Main:PersistentLevel.Crate_UAID_1"};
		WriteMap(Map);
		const FTestActor Crate = MakeActor("Crate_UAID_1", "FFEEDDCCBBAA99887766554433221100");
		Write("__ExternalActors__/Maps/Main/1/AB/X.uasset",
			WriteTestExternalActor("/Game/Maps/Main", "/Game/__ExternalActors__/Maps/Main/1/AB/X", Crate));
		Read();
		EXPECT_EQ(Object("/Game/Maps/Main.Main:PersistentLevel.Crate_UAID_1").Guid, "FFEEDDCCBBAA99887766554433221100");

		// lodex level --format json writes both.
		const FLodexRun Run = RunLodex({"level", "--format", "json", ContentFile("Maps/Main.umap")});
		ASSERT_EQ(Run.Exit, 0) << Run.Err;
		const nlohmann::json Json = nlohmann::json::parse(Run.Out);
		const nlohmann::json& Actor = Json["objects"][1];
		EXPECT_EQ(Actor["name"], "Crate_UAID_1");
		EXPECT_EQ(Actor["guid"], "FFEEDDCCBBAA99887766554433221100");
		EXPECT_EQ(Actor["location"], nlohmann::json::array({0.0, 0.0, 0.0}));
	}

	TEST(ActorIdentity, ALocationOfFloatsInALargeWorldPackageIsAnError)
	{
		// A location of 12 bytes in the large-world format runs past its value.
		FTestActor Actor = MakeActor("A", "");
		Actor.bLocation = true;
		Actor.bFloatVectors = true;
		FLevelScene Level;
		std::string Error;
		EXPECT_FALSE(ReadLevelSceneBytes(
			WriteTestMap(TestMap("/Game/Maps/Main", {Actor})), "level.umap", "/Game/Maps/Main", Level, Error));
		EXPECT_NE(Error.find("the value of property 'RelativeLocation'"), std::string::npos) << Error;
	}

	TEST(ActorIdentity, SnapshotsReadGuidAndLocationAndWriteTheGuid)
	{
		FSceneSnapshot Scene;
		std::string Error;
		ASSERT_TRUE(FSceneSnapshot::Parse(R"({"objects": [{"id": "a", "kind": "actor", "name": "A",
			"guid": "0a1b2c3d4e5f60718293a4b5c6d7e8f9", "location": [1, 2.5, -3]}]})",
			"s.json", Scene, Error))
			<< Error;
		const FSceneObject& Read = Scene.GetObjects()[0];
		EXPECT_EQ(Read.Guid, "0A1B2C3D4E5F60718293A4B5C6D7E8F9");
		ASSERT_TRUE(Read.bHasLocation);
		EXPECT_EQ(Read.Location[1], 2.5);
		const FSceneReflection Reflection(Scene);
		const std::string Written = LodexSnapshot::Write(Scene, Reflection, {FSceneSnapshot::Handle(Read)});
		EXPECT_NE(Written.find(R"("name": "A", "guid": "0A1B2C3D4E5F60718293A4B5C6D7E8F9")"), std::string::npos)
			<< Written;
	}
}
