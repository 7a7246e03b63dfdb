// Copyright Lodex contributors.
// lint --baseline on pairs of levels built in code: each edit that breaks a Lodestring named as the reviewer reads
// it, the repairs as a patch git applies and as files rewritten in place, and a law over generated pairs: every
// repair finds, on the new level, exactly the object of the same GUID.
#include "Host/Scenes/TestPackageWriter.h"
#include "LodexRun.h"
#include "TempDir.h"
#include "Lint/CSharpLiterals.h"
#include "Lint/LintBaseline.h"
#include "Lint/LintFix.h"
#include "Scenes/LevelScene.h"
#include "Scenes/SceneEvaluation.h"

#include "LodexDebugger/Core/Lodestring/LodestringEvaluator.h"
#include "LodexDebugger/Core/Lodestring/LodexBestLocator.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>

namespace
{
	FTestActor Actor(const std::string& Name, const std::string& Guid, std::vector<std::string> Tags = {})
	{
		FTestActor Made = TestActor(Name, {{"Root", "SceneComponent"}}, "Root");
		Made.Guid = Guid;
		Made.Label = Name;
		Made.bTags = true;
		Made.Tags = std::move(Tags);
		return Made;
	}

	std::string Guid(int Number)
	{
		char Text[40];
		std::snprintf(Text, sizeof(Text), "%032X", Number);
		return Text;
	}

	FTestMap Before()
	{
		FTestMap Map;
		FTestActor FrontDoor = Actor("FrontDoor", Guid(2));
		FrontDoor.Components = {{"Root", "SceneComponent", "House.Root"}};
		Map.Actors = {Actor("House", Guid(1)), FrontDoor, Actor("Door_2", Guid(3)), Actor("Gate", Guid(4), {"exit"}),
			Actor("Crate_1", Guid(5), {"crate"}), Actor("Lamp_2", Guid(6)), Actor("House_A", Guid(7))};
		return Map;
	}

	FTestMap After()
	{
		FTestMap Map = Before();
		Map.Actors[1].Components = {{"Root", "SceneComponent", "House_A.Root"}}; // FrontDoor re-attached
		Map.Actors[2].Name = "Door_3"; // renamed, same GUID
		Map.Actors[3].Tags = {}; // tag removed
		Map.Actors.erase(Map.Actors.begin() + 5); // Lamp_2 deleted
		Map.Actors.push_back(Actor("Crate_7", Guid(8), {"crate"})); // a duplicate: a new GUID
		return Map;
	}

	const char* const Tests = "class T\r\n{\r\n  void Run(Api api)\r\n  {\r\n"
							  "    api.Click(\"//*[@name = 'Door_2']\");\r\n"
							  "    api.Click(@\"/*[@name = 'House']/*[@name = 'FrontDoor']\");\r\n"
							  "    api.Click(\"\"\"//*[@tag = 'exit']\"\"\");\r\n"
							  "    api.Click(\"//*[@tag = 'crate']\");\r\n"
							  "    api.Click(\"//*[@name = 'Lamp_2']\");\r\n"
							  "    api.Click(\"//*[@name = 'House']\");\r\n"
							  "  }\r\n}";

	class LintBaseline : public ::testing::Test
	{
	protected:
		void SetUp() override
		{
			WriteTestFile(Dir.Path, "old/Content/Maps/Main.umap", WriteTestMap(Before()));
			WriteTestFile(Dir.Path, "new/Content/Maps/Main.umap", WriteTestMap(After()));
			WriteTestFile(Dir.Path, "Tests.cs", Tests);
		}

		std::vector<std::string> Args(std::vector<std::string> More)
		{
			std::vector<std::string> All = {"lint", "--scene", Dir.Path + "/new/Content/Maps/Main.umap", "--baseline",
				Dir.Path + "/old/Content/Maps/Main.umap"};
			All.insert(All.end(), More.begin(), More.end());
			return All;
		}

		FTempDir Dir;
	};

	TEST_F(LintBaseline, EachBreakSaysWhatChanged)
	{
		const FLodexRun Run = RunLodex(Args({Dir.Path + "/Tests.cs"}));
		EXPECT_EQ(Run.Exit, 1);
		const std::string File = Dir.Path + "/Tests.cs:";
		const std::string Expected = File +
			"5:16: error: //*[@name = 'Door_2'] found Door_2 on the baseline and now matches no object: Door_2 was "
			"renamed Door_3; suggested: /Door_3 [broken-by-change]\n" +
			File +
			"5:20: warning: the name 'Door_2' ends in a generated instance number, which can change from one run to "
			"the next [generated-suffix]\n" +
			File +
			"6:17: error: /*[@name = 'House']/*[@name = 'FrontDoor'] found FrontDoor on the baseline and now matches "
			"no "
			"object: FrontDoor was re-attached from House to House_A; suggested: //FrontDoor "
			"[broken-by-change]\n" +
			File +
			"7:15: error: //*[@tag = 'exit'] found Gate on the baseline and now matches no object: tag 'exit' was "
			"removed from Gate; suggested: /Gate [broken-by-change]\n" +
			File +
			"8:16: error: //*[@tag = 'crate'] found Crate_1 on the baseline and now matches 2 objects: not unique: a "
			"second object now matches: Crate_7 (added); suggested: /Crate_1 [broken-by-change]\n" +
			File +
			"9:16: error: //*[@name = 'Lamp_2'] found Lamp_2 on the baseline and now matches no object: Lamp_2 was "
			"removed from the level [broken-by-change]\n" +
			File + "9:16: note: no actor of the new level comes close to Lamp_2\n" + File +
			"9:20: warning: the name 'Lamp_2' ends in a generated instance number, which can change from one run to "
			"the next [generated-suffix]\nChecked 6 Lodestrings in 1 file: 5 errors, 2 warnings\n";
		EXPECT_EQ(Run.Out, Expected);
	}

	TEST_F(LintBaseline, TheRepairsRewriteOnlyTheLiteralsAsAPatchGitAppliesOrInPlace)
	{
		std::string Expected = Tests;
		for (const auto& Edit : std::vector<std::pair<std::string, std::string>>{
				 {"//*[@name = 'Door_2']", "/Door_3"},
				 {"/*[@name = 'House']/*[@name = 'FrontDoor']", "//FrontDoor"},
				 {"//*[@tag = 'exit']", "/Gate"},
				 {"//*[@tag = 'crate']", "/Crate_1"},
			 })
		{
			Expected.replace(Expected.find(Edit.first), Edit.first.size(), Edit.second);
		}
		const std::string Patch = Dir.Path + "/fix.patch";
		const std::string Command = "cd '" + Dir.Path +
			"' && '" LODEX_BINARY "' lint --scene new/Content/Maps/Main.umap "
			"--baseline old/Content/Maps/Main.umap --fix \"$PWD/Tests.cs\" >fix.patch 2>/dev/null";
		EXPECT_NE(std::system(Command.c_str()), 0); // the lint itself still fails
		EXPECT_EQ(FTempDir::Read(Patch).rfind("--- a/Tests.cs\n+++ b/Tests.cs\n@@ -2,", 0), 0u)
			<< FTempDir::Read(Patch);
		ASSERT_EQ(std::system(("cd '" + Dir.Path + "' && git init -q . && git apply fix.patch").c_str()), 0);
		EXPECT_EQ(FTempDir::Read(Dir.Path + "/Tests.cs"), Expected);
		const FLodexRun Again = RunLodex(Args({Dir.Path + "/Tests.cs"}));
		// Only the removed lamp is left.
		EXPECT_NE(Again.Out.find("Checked 6 Lodestrings in 1 file: 1 error,"), std::string::npos) << Again.Out;
		EXPECT_NE(Again.Out.find("Lamp_2 was removed from the level"), std::string::npos) << Again.Out;

		WriteTestFile(Dir.Path, "Tests.cs", Tests);
		const FLodexRun Run = RunLodex(Args({"--fix=write", Dir.Path + "/Tests.cs"}));
		EXPECT_EQ(Run.Exit, 1);
		EXPECT_NE(Run.Err.find("lodex: repaired 4 Lodestrings in " + Dir.Path + "/Tests.cs\n"), std::string::npos)
			<< Run.Err;
		EXPECT_EQ(FTempDir::Read(Dir.Path + "/Tests.cs"), Expected);
		EXPECT_EQ(RunLodex(Args({"--fix", Dir.Path + "/missing.cs"})).Exit, 1);
		EXPECT_EQ(
			RunLodex({"lint", "--scene", Dir.Path + "/new/Content/Maps/Main.umap", "--fix", Dir.Path + "/Tests.cs"})
				.Exit,
			2);
	}

	TEST(LintBaselineCandidates, TwoCloseCandidatesAreListedForAPersonNotRepaired)
	{
		FTestMap OldMap;
		FTestActor Crate = Actor("Crate_1", "", {"crate"});
		Crate.Label = "Crate";
		OldMap.Actors = {Crate, Actor("House", Guid(1))};
		FTestMap NewMap = OldMap;
		NewMap.Actors[0].Name = "Crate_8";
		FTestActor Second = NewMap.Actors[0];
		Second.Name = "Crate_9";
		NewMap.Actors.push_back(Second);
		FLevelScene Old;
		FLevelScene New;
		std::string Error;
		ASSERT_TRUE(ReadLevelSceneBytes(WriteTestMap(OldMap), "old.umap", OldMap.PackagePath, Old, Error)) << Error;
		ASSERT_TRUE(ReadLevelSceneBytes(WriteTestMap(NewMap), "new.umap", NewMap.PackagePath, New, Error)) << Error;
		const auto OldIndex = IndexSceneSnapshot(Old.Scene);
		const auto NewIndex = IndexSceneSnapshot(New.Scene);
		const FLodexBestLocatorFinder Finder(*NewIndex);
		FLintBaselineCheck Check(Old.Scene, *OldIndex, New.Scene, *NewIndex, Finder);
		FCSharpApiString Literal;
		Literal.Value = "//Crate_1";
		FLodexLintFinding Finding;
		ASSERT_TRUE(Check.Check("t.cs", Literal, true, Finding));
		EXPECT_EQ(Finding.Message,
			"//Crate_1 found Crate_1 on the baseline and now matches no object: Crate_1 was removed from the level");
		EXPECT_EQ(Finding.Suggestion, "");
		EXPECT_EQ(Check.GetBroken().back().Repair, "");
		EXPECT_EQ(Finding.Notes,
			(std::vector<std::string>{"candidate: /Crate_8 (score 0.70)", "candidate: /Crate_9 (score 0.70)"}));
	}

	TEST(LintFix, LiteralsKeepTheirKindAndQuoting)
	{
		const struct
		{
			const char* Literal;
			const char* Value;
			const char* Expected;
		} Rows[] = {
			{R"("//*[@name = 'A']")", R"(//*[@name = 'B"\C'])", R"("//*[@name = 'B\"\\C']")"},
			{R"(@"//*[@name = 'A']")", R"(//*[@name = 'B"\C'])", R"(@"//*[@name = 'B""\C']")"},
			{R"("""//*[@name = 'A']""")", R"(//*[@name = 'B"""C'])", R"(""""//*[@name = 'B"""C']"""")"},
			{R"("""//*[@name = 'A']""")", R"(//*[@name = 'B'])", R"("""//*[@name = 'B']""")"},
		};
		for (const auto& Row : Rows)
		{
			std::string Out;
			ASSERT_TRUE(RewriteCSharpLiteral(Row.Literal, Row.Value, Out)) << Row.Literal;
			EXPECT_EQ(Out, Row.Expected);
		}
		std::string Out;
		EXPECT_FALSE(RewriteCSharpLiteral("\"\"\"\n  //*[@name = 'A']\n  \"\"\"", "//B", Out));
		EXPECT_FALSE(RewriteCSharpLiteral("\"\"\"//A\"\"\"", "//B\"", Out));
	}

	TEST(LintFix, UnifiedDiffHunksAndAMissingFinalNewline)
	{
		const std::string Before = "1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n12";
		std::string After = Before;
		After.replace(After.find("2\n"), 1, "two");
		After.replace(After.rfind("12"), 2, "twelve");
		EXPECT_EQ(MakeUnifiedDiff("f.cs", Before, After),
			"--- a/f.cs\n+++ b/f.cs\n@@ -1,5 +1,5 @@\n 1\n-2\n+two\n 3\n 4\n 5\n@@ -9,4 +9,4 @@\n 9\n 10\n 11\n-12\n"
			"\\ No newline at end of file\n+twelve\n\\ No newline at end of file\n");
	}

	/** Over generated pairs of levels: every repair finds, on the new level, exactly the object of the same GUID. */
	TEST(LintBaselineLaw, EveryRepairFindsTheObjectOfTheSameGuid)
	{
		std::mt19937 Random(20260);
		std::size_t Repairs = 0;
		for (int Round = 0; Round < 40; ++Round)
		{
			FTestMap Old;
			const int Count = 4 + static_cast<int>(Random() % 8);
			for (int Index = 0; Index < Count; ++Index)
			{
				FTestActor Made = Actor("A_" + std::to_string(Index + 1), Guid(Index + 1),
					{Random() % 3 == 0 ? std::string("t") + std::to_string(Random() % 3) : std::string("u")});
				Made.Label = Random() % 4 == 0 ? "Same" : Made.Name;
				if (Index > 0 && Random() % 3 == 0)
				{
					Made.Components = {
						{"Root", "SceneComponent", "A_" + std::to_string(Random() % Index + 1) + ".Root"}};
				}
				Old.Actors.push_back(Made);
			}
			FTestMap New = Old;
			for (FTestActor& Each : New.Actors)
			{
				switch (Random() % 6)
				{
					case 0:
						Each.Name += "_9";
						break;
					case 1:
						Each.Tags = {"t" + std::to_string(Random() % 3)};
						break;
					case 2:
						Each.Components = {{"Root", "SceneComponent"}};
						break;
					default:
						break;
				}
			}
			if (Random() % 2 == 0)
			{
				New.Actors.erase(New.Actors.begin() + static_cast<long>(Random() % New.Actors.size()));
			}
			FTestActor Copy = New.Actors[Random() % New.Actors.size()];
			Copy.Name += "_copy";
			Copy.Guid = Guid(100 + Round);
			New.Actors.push_back(Copy);

			FLevelScene OldScene;
			FLevelScene NewScene;
			std::string Error;
			ASSERT_TRUE(ReadLevelSceneBytes(WriteTestMap(Old), "old.umap", Old.PackagePath, OldScene, Error)) << Error;
			ASSERT_TRUE(ReadLevelSceneBytes(WriteTestMap(New), "new.umap", New.PackagePath, NewScene, Error)) << Error;
			const auto OldIndex = IndexSceneSnapshot(OldScene.Scene);
			const auto NewIndex = IndexSceneSnapshot(NewScene.Scene);
			const FLodexBestLocatorFinder OldFinder(*OldIndex);
			const FLodexBestLocatorFinder NewFinder(*NewIndex);
			FLintBaselineCheck Check(OldScene.Scene, *OldIndex, NewScene.Scene, *NewIndex, NewFinder);
			for (const FSceneObject& Object : OldScene.Scene.GetObjects())
			{
				if (Object.Kind != ELodexSnapshotKind::Actor)
				{
					continue;
				}
				FCSharpApiString Literal;
				Literal.Value = OldFinder.Find(OldIndex->FindIndex(FSceneSnapshot::Handle(Object))).Lodestring;
				FLodexLintFinding Finding;
				if (!Check.Check("t.cs", Literal, true, Finding) || Check.GetBroken().back().Repair.empty())
				{
					continue;
				}
				const FLodexEvaluation Found = EvaluateLodestring(*NewIndex, Check.GetBroken().back().Repair);
				ASSERT_EQ(Found.Matches.size(), 1u) << Check.GetBroken().back().Repair;
				EXPECT_EQ(FSceneSnapshot::Resolve(NewIndex->GetObject(Found.Matches[0].Object)).Guid, Object.Guid)
					<< Literal.Value << " -> " << Check.GetBroken().back().Repair;
				++Repairs;
			}
		}
		EXPECT_GT(Repairs, 20u);
	}
}
