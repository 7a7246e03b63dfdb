// Copyright Lodex contributors.
// The files a level is made of beyond the game's Content folder: a plug-in's level mounted at its own name, and a
// Git LFS pointer checked out in place of a scene or a level.
#include "LevelContentTest.h"
#include "Scenes/SceneFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace
{
	std::vector<std::string> IdsOf(const FLevelScene& Scene)
	{
		std::vector<std::string> Ids;
		for (const FSceneObject& Object : Scene.Scene.GetObjects())
		{
			Ids.push_back(Object.Id + " @" + Object.Package);
		}
		return Ids;
	}

	const char* const LfsPointer = "version https://git-lfs.github.com/spec/v1\n"
								   "oid sha256:4d7a214614ab2935c943f9e0ff69d22eadbb8f32b1258daaa5e2ca24d17e2393\n"
								   "size 12345\n";

	using LevelFiles = FLevelContentTest;

	TEST_F(LevelFiles, APluginsLevelIsMountedAtThePluginsNameForItsExternalActorsSubLevelsAndBlueprintClasses)
	{
		const std::string Plugin = Temp.Path + "/Plugins/Nature/Rivers";
		WriteTestFile(Plugin, "Rivers.uplugin", "{}");
		const std::string Level = "/Rivers/Maps/Main.Main:PersistentLevel";
		FTestActor Ferry = TestActorOfClass("Ferry", "/Rivers/BP/BP_Ferry.BP_Ferry_C");
		Ferry.Components = {{"Oar", "/Rivers/BP/BP_Oar.BP_Oar_C"}};
		WriteTestFile(Plugin + "/Content", "Maps/Main.umap",
			WriteTestMap(TestMap("/Rivers/Maps/Main", {TestActor("WorldSettings"), Ferry},
				{"/Rivers/Maps/Banks", "/Game/Maps/Town", "/Other/Maps/Far"})));
		// Its actors take default tags and components from Blueprint classes of the plug-in.
		WriteTestFile(Plugin + "/Content", "BP/BP_Ferry.uasset",
			WriteTestBlueprint(
				"/Rivers/BP/BP_Ferry", "BP_Ferry_C", "/Script/Engine.StaticMeshActor", true, {"vessel"}));
		WriteTestFile(Plugin + "/Content", "BP/BP_Oar.uasset",
			WriteTestBlueprint("/Rivers/BP/BP_Oar", "BP_Oar_C", "/Script/Engine.ActorComponent", false, {}));
		WriteTestFile(Plugin + "/Content", "__ExternalActors__/Maps/Main/A/ZZ/First.uasset",
			WriteTestExternalActor(
				"/Rivers/Maps/Main", "/Rivers/__ExternalActors__/Maps/Main/A/ZZ/First", TestActor("Boat")));
		WriteTestFile(
			Plugin + "/Content", "Maps/Banks.umap", WriteTestMap(TestMap("/Rivers/Maps/Banks", {TestActor("Reed")})));
		// A /Game/ package of a plug-in's level is in the project's own Content folder.
		WriteMap(TestMap("/Game/Maps/Town", {TestActor("Well")}));

		std::string Error;
		ASSERT_TRUE(ReadLevelScene(Plugin + "/Content/Maps/Main.umap", FLevelReadOptions(), Scene, Error)) << Error;
		EXPECT_EQ(IdsOf(Scene),
			(std::vector<std::string>{
				Level + " @/Rivers/Maps/Main",
				Level + ".WorldSettings @/Rivers/Maps/Main",
				Level + ".Ferry @/Rivers/Maps/Main",
				Level + ".Ferry.Oar @/Rivers/Maps/Main",
				Level + ".Boat @/Rivers/__ExternalActors__/Maps/Main/A/ZZ/First",
				"/Rivers/Maps/Banks.Banks:PersistentLevel @/Rivers/Maps/Banks",
				"/Rivers/Maps/Banks.Banks:PersistentLevel.Reed @/Rivers/Maps/Banks",
				"/Game/Maps/Town.Town:PersistentLevel @/Game/Maps/Town",
				"/Game/Maps/Town.Town:PersistentLevel.Well @/Game/Maps/Town",
			}));
		EXPECT_EQ(Scene.Scene.GetObjects()[2].Tags.Get(), std::vector<std::string>{"vessel"});
		EXPECT_EQ(Scene.ExternalActorCount, 1u);
		EXPECT_EQ(Scene.SubLevelCount, 2u);
		EXPECT_EQ(Scene.Notes,
			std::vector<std::string>{"the sub-level /Other/Maps/Far is not under " + Plugin + "/Content; left out"});
	}

	TEST_F(LevelFiles, AWorldPartitionMapWithoutActorPackagesSaysSo)
	{
		const std::string Map = ContentFile("Maps/Main.umap");
		const std::string Folder = ContentFile("__ExternalActors__/Maps/Main");
		WriteMap(TestMap("/Game/Maps/Main", {TestActor("WorldSettings", {{"WorldPartition", "WorldPartition"}})}));
		Write("__ExternalActors__/Maps/Main/A/ZZ/readme.txt", "not a package");
		EXPECT_EQ(Read().Notes,
			std::vector<std::string>{Map + ": a World Partition map, but its external actor folder " + Folder +
				" holds no actor packages; only the actors the map itself saves are read"});
		Write("__ExternalActors__/Maps/Main/A/ZZ/First.uasset",
			WriteTestExternalActor(
				"/Game/Maps/Main", "/Game/__ExternalActors__/Maps/Main/A/ZZ/First", TestActor("Boat")));
		EXPECT_EQ(Read().Notes, std::vector<std::string>{});
		// A map without World Partition saves its actors itself: no folder, no note.
		WriteMap(FTestMap());
		std::filesystem::remove_all(ContentFile("__ExternalActors__"));
		EXPECT_EQ(Read().Notes, std::vector<std::string>{});
	}

	TEST_F(LevelFiles, AGitLfsPointerIsOneLineSayingToFetchTheRealFileWhereverItStands)
	{
		const std::string Expected =
			": a Git LFS pointer, not the file itself: fetch the real file from Git LFS first (git lfs pull)";
		// In place of a snapshot or a level named on the command line.
		WriteTestFile(Temp.Path, "scene.json", LfsPointer);
		FSceneFileOptions Options;
		Options.Path = Temp.Path + "/scene.json";
		FSceneFile File;
		std::string Error;
		EXPECT_FALSE(LoadSceneFile(Options, File, Error));
		EXPECT_EQ(Error, Options.Path + Expected);
		Write("Maps/Main.umap", LfsPointer);
		Options.Path = ContentFile("Maps/Main.umap");
		EXPECT_FALSE(LoadSceneFile(Options, File, Error));
		EXPECT_EQ(Error, Options.Path + Expected);

		// In place of a file the level is made of.
		WriteMap(TestMap("/Game/Maps/Main", {TestActor("WorldSettings")}));
		const std::string Actor = "__ExternalActors__/Maps/Main/A/ZZ/First.uasset";
		Write(Actor, LfsPointer);
		// There, as any part of a level that cannot be read, it is a note, and the rest of the level is read.
		EXPECT_EQ(Read().Notes,
			std::vector<std::string>{ContentFile(Actor) + Expected + "; this external actor package is left out"});
	}
}
