// Copyright Lodex contributors.
// The level_package fuzz target's seeds are maps the test package writer makes. They are kept as files so the
// fuzzer can start from them; LODEX_WRITE_FUZZ_SEEDS=1 writes them again after a change to the writer.
#include "TempDir.h"
#include "TestPackageWriter.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace
{
	struct FSeed
	{
		std::string Name;
		std::string Bytes;
	};

	std::vector<FSeed> MakeSeeds()
	{
		FTestMap Map;
		FTestActor Base = TestActor("Base_3", {{"Root", "SceneComponent"}, {"Mesh"}}, "Root");
		Base.Label = "T\u00fcr";
		Base.bTags = true;
		Base.Tags = {"anchor", "red_1"};
		Base.InstanceComponents = {"Mesh"};
		Base.Guid = "6F1C2A3B4D5E6F708192A3B4C5D6E7F8";
		Base.bLocation = true;
		Base.Location[0] = 120.5;
		Base.Location[2] = -30;
		FTestActor Child = TestActor("BP_Door_C_0", {{"Root", "SceneComponent", "Base_3.Mesh"}}, "Root");
		Child.Class = "/Game/BP/BP_Door.BP_Door_C";
		FTestActor Instance = TestActorOfClass("LevelInstance_2", "LevelInstance");
		Instance.FirstProperties = [](FTestPackage::FData& Data)
		{
			Data.SoftObject("WorldAsset", "/Game/Maps/House.House");
		};
		Map.Actors = {Base, Child, Instance};
		Map.SubLevels = {"/Game/Maps/Sub"};
		Map.ImportedActors = {"/Game/Maps/Main.Main:PersistentLevel.External_UAID_1"};
		Map.bNullActor = true;

		FTestMap Early = Map;
		Early.Actors[0].bFloatVectors = true;
		FTestPackage EarlyPackage(Early.PackagePath);
		EarlyPackage.FileVersionUE5 = 1000;

		FTestActor External = TestActor("Cube_UAID_0A",
			{{"StaticMeshComponent0", "StaticMeshComponent", "/Game/Maps/Main.Main:PersistentLevel.Base_3.Root"}},
			"StaticMeshComponent0");
		External.Guid = "0123456789ABCDEF0123456789ABCDEF";
		FTestPackage OlderPackage(Map.PackagePath); // saved by 4.21: legacy version -7, UE4 517
		OlderPackage.SetVersions(-7, 517, 0, 30);
		return {
			{"level.umap", WriteTestMap(Map)},
			{"level-ue4-517.umap", WriteTestMap(Early, &OlderPackage)},
			{"level-ue5-1000.umap", WriteTestMap(Early, &EarlyPackage)},
			{"redirector.umap", WriteTestRedirector("/Game/Maps/Old", "/Game/Maps/Main")},
			{"external-actor.uasset",
				WriteTestExternalActor("/Game/Maps/Main", "/Game/__ExternalActors__/Maps/Main/0/AB/CD", External)},
			{"blueprint.uasset",
				WriteTestBlueprint("/Game/BP/BP_Door", "BP_Door_C", "/Script/Engine.Actor", true, {"door"})},
		};
	}

	TEST(LevelFuzzSeeds, AreTheMapsTheWriterMakes)
	{
		const std::string Folder = std::string(LODEX_SOURCE_DIR) + "/fuzz/corpus/level_package/";
		const char* Write = std::getenv("LODEX_WRITE_FUZZ_SEEDS");
		for (const FSeed& Seed : MakeSeeds())
		{
			if (Write != nullptr && std::string(Write) == "1")
			{
				std::ofstream(Folder + Seed.Name, std::ios::binary) << Seed.Bytes;
			}
			EXPECT_TRUE(FTempDir::Read(Folder + Seed.Name) == Seed.Bytes) << Seed.Name << " differs from the writer's";
		}
	}
}
