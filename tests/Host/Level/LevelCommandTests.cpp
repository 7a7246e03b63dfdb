// Copyright Lodex contributors.
// lodex level, and the other commands on a level file: a level laid out by the test package writer in a
// temporary Content folder.
#include "LodexRun.h"
#include "Scenes/SceneSnapshot.h"
#include "TempDir.h"
#include "Host/Scenes/TestPackageWriter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
	/**
	 * Content/Maps/Main.umap: a tagged warehouse (label "Main Warehouse"), a crate attached to it, a lamp with a
	 * generated name and a label of its own, and a Tür whose name is not ASCII and whose label holds a tab and a line
	 * break, as the editor lets a label do.
	 */
	class LevelCommand : public ::testing::Test
	{
	protected:
		void SetUp() override
		{
			FTestMap Map;
			FTestActor Warehouse = TestActor("Warehouse", {{"Root", "SceneComponent"}}, "Root");
			Warehouse.Label = "Main Warehouse";
			Warehouse.bTags = true;
			Warehouse.Tags = {"store"};
			FTestActor Crate = TestActor("Crate_3", {{"Mesh", "StaticMeshComponent", "Warehouse.Root"}}, "Mesh");
			Crate.Label = "Crate";
			FTestActor Lamp = TestActor("PointLight_7");
			Lamp.Class = "PointLight";
			Lamp.Label = "Lamp";
			FTestActor Door = TestActor("Tür");
			Door.Label = "Front\tdoor\nwest";
			Map.Actors = {Warehouse, Crate, Lamp, Door};
			WriteTestFile(Temp.Path + "/Content", "Maps/Main.umap", WriteTestMap(Map));
			MapFile = Temp.Path + "/Content/Maps/Main.umap";
		}

		/** A C# test file holding one api.Click per Lodestring. */
		std::string WriteTests(const std::vector<std::string>& Lodestrings)
		{
			std::string Source = "class T { void Run() {\n";
			for (const std::string& Lodestring : Lodestrings)
			{
				Source += "api.Click(\"" + Lodestring + "\");\n";
			}
			return Temp.Write("Test.cs", Source + "} }\n");
		}

		FTempDir Temp;
		std::string MapFile;
	};

	TEST_F(LevelCommand, ShowsEachActorWithItsEscapedLabelClassTagsAttachmentAndBestLodestringItsComponentsBelow)
	{
		EXPECT_EQ(Printed(RunLodex({"level", MapFile})),
			MapFile +
				"\n"
				"└── level /Game/Maps/Main\n"
				"    ├── Warehouse (label \"Main Warehouse\"; class StaticMeshActor; tags store)  //*[@tag = 'store']\n"
				"    │   └── Root (SceneComponent)\n"
				"    ├── Crate_3 (label \"Crate\"; class StaticMeshActor; attached to Warehouse)  //Crate_3\n"
				"    │   └── Mesh (StaticMeshComponent)\n"
				"    ├── PointLight_7 (label \"Lamp\"; class PointLight)  /PointLight_7\n"
				"    └── Tür (label \"Front\\x09door\\x0Awest\"; class StaticMeshActor)  /Tür\n");
	}

	TEST_F(LevelCommand, AsJsonIsASceneSnapshotThatGivesTheSameLodestringsAsTheLevelForNamesAndLabels)
	{
		const FLodexRun Json = RunLodex({"level", MapFile, "--format", "json"});
		ASSERT_EQ(Json.Exit, 0) << Json.Err;
		FSceneSnapshot Snapshot;
		std::string Error;
		ASSERT_TRUE(FSceneSnapshot::Parse(Json.Out, "level.json", Snapshot, Error)) << Error;
		const FSceneObject* Crate = nullptr;
		for (const FSceneObject& Object : Snapshot.GetObjects())
		{
			EXPECT_EQ(Object.Origin, ELodexPlacement::Placed) << Object.Id;
			Crate = Object.Name == "Crate_3" ? &Object : Crate;
		}
		ASSERT_NE(Crate, nullptr);
		EXPECT_EQ(Crate->ClassName, "StaticMeshActor");
		EXPECT_EQ(Crate->Package, "/Game/Maps/Main");

		const std::string SnapshotFile = Temp.Write("level.json", Json.Out);
		for (const char* Mode : {"Absolute", "Relative", "best"})
		{
			const auto Paths = [&](const std::string& Scene)
			{
				return Printed(RunLodex({"path", "--scene", Scene, "--mode", Mode, "Crate", "Lamp", "Main Warehouse",
					"Tür", "Mesh", "Front\tdoor\nwest"}));
			};
			EXPECT_EQ(Paths(MapFile), Paths(SnapshotFile)) << Mode;
		}
	}

	TEST_F(LevelCommand, LintSaysWhatTheGameDoesNotHaveAndWhereAmbiguousMatchesLie)
	{
		FTestMap Map;
		FTestActor Statue = TestActor("StaticMeshActor_9");
		Statue.Label = "SM_Gargoyle_Statue";
		FTestActor Brush = TestActor("Brush_0");
		Brush.Class = "Brush";
		Brush.bEditorOnly = true;
		Map.Actors = {Statue, Brush, TestActor("Twin")};
		Map.SubLevels = {"/Game/Maps/Cave"};
		WriteTestFile(Temp.Path + "/Content", "Maps/Main.umap", WriteTestMap(Map));
		FTestMap Cave;
		Cave.PackagePath = "/Game/Maps/Cave";
		Cave.Actors = {TestActor("Twin"), TestActor("Bat")};
		WriteTestFile(Temp.Path + "/Content", "Maps/Cave.umap", WriteTestMap(Cave));
		const std::string Tests = WriteTests({"//SM_Gargoyle_Statue", "//Brush_0", "//Bat", "//Twin"});
		const FLodexRun Run = RunLodex({"lint", "--scene", MapFile, Tests});
		EXPECT_EQ(Run.Exit, 1) << Run.Err;
		EXPECT_EQ(Run.Out,
			Tests +
				":2:14: warning: 'SM_Gargoyle_Statue' is the editor label of StaticMeshActor_9; the game knows it by "
				"its name; suggested: /StaticMeshActor_9 [editor-label]\n" +
				Tests +
				":3:12: warning: //Brush_0 finds only editor-only objects (saved not-for-client and not-for-server): "
				"the game does not have them [editor-only]\n" +
				Tests +
				":3:14: note: the name 'Brush_0' ends in an instance number saved with the level: it is the "
				"same on every run, but an edit of the level may renumber it; a tag on the object, or on an "
				"ancestor, would not [placed-generated-suffix]\n" +
				Tests +
				":4:12: note: //Bat finds objects only in /Game/Maps/Cave, which the game loads only when it streams "
				"it in: it depends on that level being streamed in [streamed-level]\n" +
				Tests + ":5:12: error: //Twin matches 2 objects: not unique [ambiguous]\n" + Tests +
				":5:12: note: match 1 of 2: /*[@name = 'Twin'] (matches 2 objects: not unique) (in /Game/Maps/Main)\n" +
				Tests +
				":5:12: note: match 2 of 2: /*[@name = 'Twin'] (matches 2 objects: not unique) (in /Game/Maps/Cave)\n" +
				"Checked 4 Lodestrings in 1 file: 1 error, 2 warnings, 2 notes\n");

		// The tree says what the game does not have, and which level it streams in.
		const FLodexRun Tree = RunLodex({"level", MapFile});
		EXPECT_NE(Tree.Out.find("Brush_0 (class Brush; editor only)"), std::string::npos) << Tree.Out;
		EXPECT_NE(Tree.Out.find("level /Game/Maps/Cave (streamed in at play time)\n"), std::string::npos) << Tree.Out;
		EXPECT_NE(Tree.Out.find("level /Game/Maps/Main\n"), std::string::npos) << Tree.Out;

		// The level as a snapshot keeps both marks, and lint reads them back.
		const FLodexRun Json = RunLodex({"level", MapFile, "--format", "json"});
		ASSERT_EQ(Json.Exit, 0) << Json.Err;
		EXPECT_NE(Json.Out.find("\"editorOnly\": true"), std::string::npos);
		EXPECT_NE(Json.Out.find("\"streamedOnDemand\": true"), std::string::npos);
		const std::string Snapshot = Temp.Write("level.json", Json.Out);
		const FLodexRun FromJson = RunLodex({"lint", "--scene", Snapshot, WriteTests({"//Brush_0", "//Bat"})});
		EXPECT_NE(FromJson.Out.find("[editor-only]"), std::string::npos) << FromJson.Out;
		EXPECT_NE(FromJson.Out.find("[streamed-level]"), std::string::npos) << FromJson.Out;
	}

	TEST_F(LevelCommand, LintOnASnapshotKeepsGeneratedNamesOfSpawnedObjectsAsWarningsAndSavedOnesAsNotes)
	{
		const std::string Scene = Temp.Write("scene.json",
			R"({"objects": [
				{"id": "a", "kind": "actor", "name": "Crate_3", "placed": true},
				{"id": "b", "kind": "actor", "name": "Bullet_3", "placed": false},
				{"id": "c", "kind": "actor", "name": "Barrel_3"}]})");
		const FLodexRun Run = RunLodex(
			{"lint", "--strict", "--scene", Scene, WriteTests({"//Crate_3", "//Bullet_3", "//Barrel_3", "//Gone_1"})});
		EXPECT_EQ(Run.Exit, 1);
		EXPECT_NE(Run.Out.find(":2:14: note: the name 'Crate_3'"), std::string::npos) << Run.Out;
		EXPECT_NE(Run.Out.find(":3:14: warning: the name 'Bullet_3'"), std::string::npos) << Run.Out;
		EXPECT_NE(Run.Out.find(":4:14: warning: the name 'Barrel_3'"), std::string::npos) << Run.Out;
		// On a snapshot a locator that matches nothing stays an error; a saved generated name never fails a run.
		EXPECT_NE(Run.Out.find(":5:12: error: //Gone_1 matches no object [no-match]"), std::string::npos) << Run.Out;
		EXPECT_EQ(RunLodex({"lint", "--strict", "--scene", Scene, WriteTests({"//Crate_3"})}).Exit, 0);
	}

	TEST_F(LevelCommand, RefusesWhatIsNotALevelAndReadsLevelsWhateverTheirName)
	{
		const std::string Snapshot = Temp.Write("scene.json", R"({"objects": []})");
		EXPECT_EQ(Printed(RunLodex({"level", Snapshot})),
			"exit 1: lodex: " + Snapshot +
				": not a level saved by Unreal Engine (a scene snapshot, or another kind of file); lodex level reads "
				".umap files\n");
		// A level under another name is still a level.
		const std::string Renamed = Temp.Write("level.txt", FTempDir::Read(MapFile));
		const FLodexRun Run = RunLodex({"path", "--scene", Renamed, "Lamp"});
		EXPECT_EQ(Run.Exit, 0) << Run.Err;
		EXPECT_EQ(Run.Out, "/*[@name = 'PointLight_7']\n");
	}
}
