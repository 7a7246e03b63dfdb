// Copyright Lodex contributors.
// `lodex lint --project`: each stretch of a test checked against the level its api.LoadLevel names.
#include "LodexRun.h"
#include "TempDir.h"
#include "Host/Scenes/TestPackageWriter.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace
{
	FTestMap ProjectMap(const std::string& PackagePath, const std::vector<std::string>& Actors)
	{
		FTestMap Map;
		Map.PackagePath = PackagePath;
		for (const std::string& Name : Actors)
		{
			FTestActor Actor;
			Actor.Name = Name;
			Map.Actors.push_back(Actor);
		}
		return Map;
	}

	/**
	 * A project with two levels, Town (Door, Well) and Farm (Barn), and the plug-in Inspector's level Lab (Bench),
	 * its plug-in kept in a folder of plug-ins.
	 */
	class LintProject : public ::testing::Test
	{
	protected:
		void SetUp() override
		{
			ASSERT_FALSE(Dir.Path.empty());
			WriteTestFile(
				Dir.Path, "Content/Maps/Town.umap", WriteTestMap(ProjectMap("/Game/Maps/Town", {"Door", "Well"})));
			WriteTestFile(Dir.Path, "Content/Maps/Farm.umap", WriteTestMap(ProjectMap("/Game/Maps/Farm", {"Barn"})));
			WriteTestFile(Dir.Path, "Plugins/Tools/Inspector/Inspector.uplugin", "{}");
			WriteTestFile(Dir.Path, "Plugins/Tools/Inspector/Content/Maps/Lab.umap",
				WriteTestMap(ProjectMap("/Inspector/Maps/Lab", {"Bench"})));
			// A file that loads each level in turn, then one the project does not have.
			WriteTestFile(Dir.Path, "Tests/A_Tour.cs",
				"api.LoadLevel(\"/Game/Maps/Town\");\n"
				"api.Click(\"//Door\");\n"
				"api.Click(\"//Barn\");\n"
				"api.LoadLevel(\"/Game/Maps/Farm\");\n"
				"api.Click(\"//Barn\");\n"
				"api.LoadLevel(\"/Inspector/Maps/Lab\");\n"
				"api.Click(\"//Bench\");\n"
				"api.LoadLevel(\"/Game/Maps/Nowhere\");\n"
				"api.Click(\"//Ghost\");\n");
			// One that goes back to a level it loaded before.
			WriteTestFile(Dir.Path, "Tests/B_Back.cs",
				"api.LoadLevel(\"/Game/Maps/Town\"); api.Click(\"//Well\");\n"
				"api.LoadLevel(\"/Game/Maps/Farm\"); api.Click(\"//Well\");\n"
				"api.LoadLevel(\"/Game/Maps/Town\"); api.Click(\"//Well\");\n");
			// One with no LoadLevel at all.
			WriteTestFile(Dir.Path, "Tests/C_Plain.cs", "api.Click(\"//Door\");\napi.Click(\"//Door\");\n");
		}

		std::string Tests() const { return Dir.File("Tests"); }

		FTempDir Dir;
	};

	TEST_F(LintProject, EachStretchIsCheckedAgainstTheLevelItsLoadLevelNames)
	{
		const FLodexRun Run = RunLodex({"lint", "--project", Dir.Path, Tests()});
		EXPECT_EQ(Run.Exit, 1);
		EXPECT_EQ(Run.Err, "");
		const std::string A = Tests() + "/A_Tour.cs";
		const std::string B = Tests() + "/B_Back.cs";
		const std::string C = Tests() + "/C_Plain.cs";
		EXPECT_EQ(Run.Out,
			A +
				":3:12: warning: //Barn matches no object the level saves: it may name one spawned at play time "
				"[not-in-level]\n" +
				A + ":8:16: error: the level /Game/Maps/Nowhere is not in the project: no file " + Dir.Path +
				"/Content/Maps/Nowhere.umap [unknown-level]\n" + B +
				":2:46: warning: //Well matches no object the level saves: it may name one spawned at play time "
				"[not-in-level]\n" +
				C +
				":1:12: note: //Door is not checked: no api.LoadLevel(\"...\") before it names its level [no-level]\n" +
				C +
				":2:12: note: //Door is not checked: no api.LoadLevel(\"...\") before it names its level [no-level]\n" +
				"Checked 7 Lodestrings in 3 files against 3 levels: 1 error, 2 warnings, 2 notes\n");

		// The same with one job at a time, and as JSON: which level each finding was checked against.
		EXPECT_EQ(RunLodex({"lint", "--project", Dir.Path, "--jobs", "1", Tests()}).Out, Run.Out);
		const nlohmann::json Json =
			nlohmann::json::parse(RunLodex({"lint", "--project", Dir.Path, "--format", "json", Tests()}).Out);
		EXPECT_EQ(Json["levels"], 3);
		EXPECT_EQ(Json["diagnostics"][0]["level"], "/Game/Maps/Town");
		EXPECT_EQ(Json["diagnostics"][1]["level"], nullptr);
		EXPECT_EQ(Json["diagnostics"][2]["level"], "/Game/Maps/Farm");
	}

	TEST_F(LintProject, LodestringsBeforeAnyLevelGoToTheSceneWhenOneIsGiven)
	{
		const std::string Scene = Dir.Write("scene.json",
			R"({"objects": [{"id": "lvl", "kind": "other", "name": "PersistentLevel"},
				{"id": "d", "kind": "actor", "name": "Door", "outer": "lvl"}]})");
		const FLodexRun Run = RunLodex(
			{"lint", "--project", Dir.Path, "--scene", Scene, Tests() + "/C_Plain.cs", Tests() + "/B_Back.cs"});
		EXPECT_EQ(Run.Exit, 0);
		EXPECT_EQ(Run.Out,
			Tests() +
				"/B_Back.cs:2:46: warning: //Well matches no object the level saves: it may name one spawned at play "
				"time [not-in-level]\n"
				"Checked 5 Lodestrings in 2 files against 2 levels: 0 errors, 1 warning\n");
	}

	TEST_F(LintProject, ALevelThatCannotBeReadStopsTheRun)
	{
		// A package cut short.
		WriteTestFile(Dir.Path, "Content/Maps/Broken.umap",
			WriteTestMap(ProjectMap("/Game/Maps/Broken", {"Door"})).substr(0, 100));
		WriteTestFile(Dir.Path, "Tests/D_Broken.cs", "api.LoadLevel(\"/Game/Maps/Broken\"); api.Click(\"//Door\");\n");
		const FLodexRun Run = RunLodex({"lint", "--project", Dir.Path, "--format", "sarif", Tests()});
		EXPECT_EQ(Run.Exit, 1);
		EXPECT_EQ(Run.Out, "");
		EXPECT_EQ(Run.Err.rfind("lodex: " + Dir.Path + "/Content/Maps/Broken.umap: ", 0), 0u) << Run.Err;
		EXPECT_EQ(std::count(Run.Err.begin(), Run.Err.end(), '\n'), 1);
	}
}
