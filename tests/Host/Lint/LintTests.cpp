// Copyright Lodex contributors.
#include "ApiStrings.h"
#include "Lint/CSharpLiterals.h"
#include "LintLevel.h"
#include "LodestringCases.h"
#include "Cli/LodexCli.h"
#include "LodexRun.h"
#include "TempDir.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>

namespace
{
	TEST(CSharpLiterals, FindsTheLiteralsPassedToApiCalls)
	{
		struct FRow
		{
			const char* Source;
			std::string Expected;
		};
		const FRow Rows[] = {
			{R"(api.Click("/*[@name = 'Door']");)", "1:11 Click [/*[@name = 'Door']]\n"},
			{R"(api.Find("\0\r");)", std::string("1:10 Find [\0\r]\n", 15)},
			{"api.CallMethod(\"//Door\", \"Open\", new object[]{});\nint x = api.CallMethod<int>(\"//Lamp\", \"Dim\", "
			 "new object[]{ 2 });",
				"1:16 CallMethod [//Door]\n1:26 CallMethod [Open]\n2:29 CallMethod [//Lamp]\n2:39 CallMethod [Dim]\n"},
			{R"(api.Find(@"/*[@name = 'Say ""hi""']");)", "1:10 Find [/*[@name = 'Say \"hi\"']]\n"},
			{R"(api.Find("a\"b\\c\t\u00FC\x41\U0001F600\uD83D\uDE00");)",
				"1:10 Find [a\"b\\c\t\xC3\xBC"
				"A\xF0\x9F\x98\x80\xF0\x9F\x98\x80]\n"},
			{R"(api?.Find(path: "//Door", timeout: 5);)", "1:17 Find [//Door]\n"},
			{R"(api.Get<List<int>, string>("//Door");)", "1:28 Get [//Door]\n"},
			{"api.Find(\"\"\"//Bob's \"Sign\" x\"\"\");", "1:10 Find [//Bob's \"Sign\" x]\n"},
			{"api.Find(\n    \"\"\"\n    //Door\n    \"\"\");", "2:5 Find [//Door]\n"},
			{"var s = \"//Door\"u8; api.Find(\"//Lamp\"u8);", "1:30 Find [//Lamp]\n"},
			{"/* api.Find(\"//Hidden\"); */ api.Find(\"//Shown\"); // api.Find(\"//Hidden\")", "1:38 Find [//Shown]\n"},
			{"char q = '\"'; api.Find(\"//Door\");", "1:24 Find [//Door]\n"},
			{"\xEF\xBB\xBF"
			 "api.Find(\"//T\xC3\xBCr\"); api.Find(\"//X\");",
				"1:10 Find [//T\xC3\xBCr]\n1:29 Find [//X]\n"},
			// Arguments that are not one literal alone are left out; calls inside them are found.
			{R"(api.Find("//Door" + suffix); api.Find($"//{name}"); api.Find(Paths.Door);)", ""},
			{R"(api.Click(api.Find("//Door"));)", "1:20 Find [//Door]\n"},
			{R"(api.Click(api.Find("//Door"), "//Lamp");)",
				"1:20 Find [//Door]\n1:31 Click [//Lamp]\n"}, // in source order
			{R"(Log($"found {api.Find("//Door")} at {x:N2}"); api.Find("//Lamp");)",
				"1:23 Find [//Door]\n1:56 Find [//Lamp]\n"},
			{R"(Log($@"a ""quoted"" {api.Find(@"//Door")}"); myapi.Find("//No"); api.Find;)", "1:31 Find [//Door]\n"},
			{R"(api.Find("unterminated)", ""}, // the literal runs to the end of its line
			// "\x" takes one to four hex digits, as many as stand there: "\x2F" and "\x002F" are both "/".
			{R"(api.Find("\x2F", "\x002F", "\x2F/", "\x9/");)",
				"1:10 Find [/]\n1:18 Find [/]\n1:28 Find [//]\n1:37 Find [\t/]\n"},
			{R"(api.Find("\x00412");)", "1:10 Find [A2]\n"}, // a fifth digit is a character of its own
			{R"(api.Find("\x2Fa");)", "1:10 Find [\xCB\xBA]\n"}, // three digits: U+02FA
			{R"(api.Find("\x41BCz");)", "1:10 Find [\xE4\x86\xBCz]\n"}, // four digits: U+41BC
			{R"(api.Find("\x4g\xe9\xE9");)", "1:10 Find [\x04g\xC3\xA9\xC3\xA9]\n"},
			{"$@\"{api.Find(\"//x\")", "1:14 Find [//x]\n"}, // broken source is scanned as far as it goes
		};
		for (const FRow& Row : Rows)
		{
			EXPECT_EQ(FoundApiStrings(Row.Source), Row.Expected) << Row.Source;
		}
		for (const char* Broken : {"api.Find(\"//Door\"", "api.Find(", "api.Find(\"", "api.", "'", "$\"{", "@\"",
				 "\"\"\"", "/*", "api.Find<", "api.Find(@\"x\""})
		{
			EXPECT_EQ(FoundApiStrings(Broken), "") << Broken;
		}
	}

	const char* const BrittleTests = "public class DoorTests\n"
									 "{\n"
									 "    public void Opens()\n"
									 "    {\n"
									 "        api.Click(\"//Cube_2\");\n"
									 "        api.Click(\"//House/*[@tag = 'red']\");\n"
									 "        api.Click(\"/*[@name = 'L1']/*[@name = 'L2']/*[@name = 'L3']/*[@name = "
									 "'L4']/*[@name = 'L5']/*[@name = 'L6']\");\n"
									 "        api.Click(\"//*[@tag = 'pair']\");\n"
									 "        var Twins = api.GetAllObjects(\"//*[@tag = 'pair']\");\n"
									 "        api.Click(\"//Door\");\n"
									 "    }\n"
									 "}\n";

	/**
	 * The scene of every Lodestring shape (ScenePath), the level of every kind of brittleness (LevelPath), and a test
	 * class that passes a locator of each kind of brittleness to `api`, and one that is sound (Tests).
	 */
	class LodexLint : public ::testing::Test
	{
	protected:
		void SetUp() override
		{
			ASSERT_FALSE(Dir.Path.empty());
			ScenePath = Dir.Write("scene.json", LodestringCases::Scene);
			LevelPath = Dir.Write("level.json", LintLevel::Scene);
			Tests = Dir.Write("DoorTests.cs", BrittleTests);
		}
		FTempDir Dir;
		std::string ScenePath;
		std::string LevelPath;
		std::string Tests;
	};

	TEST_F(LodexLint, ReportsEachLodestringThatIsNotUniqueWithItsFileAndLine)
	{
		// The level a LoadLevel names is no Lodestring; what follows it is checked against the scene.
		const std::string Good = Dir.Write("Good.cs",
			"api.LoadLevel(\"/Game/Maps/Town\");\napi.Click(\"/*[@name = 'House']/*[@name = 'Door']\");\n"
			"api.CallMethod(\"//Bob's\", \"Wave\", new object[]{});\n");
		const std::string Bad = Dir.Write("Bad.cs",
			"// api.Click(\"//Nobody\") in a comment is not a call\n"
			"api.Click(\"//Nobody\");\n"
			"api.Click(@\"//*[@tag = 't1']\");\n"
			"api.Click(\"/*[@nam = 'A']\");\n"
			"api.Click(\"//A\");\n");
		const FLodexRun Run = RunLodex({"lint", "--scene", ScenePath, Good, Bad});
		EXPECT_EQ(Run.Exit, 1);
		EXPECT_EQ(Run.Err, "");
		// The column is where the part of the locator at fault begins: the locator, or the unknown attribute.
		EXPECT_EQ(Run.Out,
			Bad + ":2:12: error: //Nobody matches no object [no-match]\n" + Bad +
				":3:13: error: //*[@tag = 't1'] matches 2 objects: not unique [ambiguous]\n" + Bad +
				":3:13: note: match 1 of 2: /A\n" + Bad + ":3:13: note: match 2 of 2: /A1\n" + Bad +
				":4:15: error: /*[@nam = 'A'] cannot be read: Unknown attribute: only @name and @tag can be compared "
				"[unreadable]\n"
				"Checked 6 Lodestrings in 2 files: 3 errors, 0 warnings\n");

		const FLodexRun Clean = RunLodex({"lint", "--scene", ScenePath, Good});
		EXPECT_EQ(Clean.Exit, 0);
		EXPECT_EQ(Clean.Out, "Checked 2 Lodestrings in 1 file: no errors, no warnings\n");
	}

	TEST_F(LodexLint, FoldersAreSearchedForCSharpFilesInNameOrder)
	{
		ASSERT_EQ(std::system(("mkdir -p '" + Dir.File("tests/a") + "' '" + Dir.File("tests/b") + "'").c_str()), 0);
		Dir.Write("tests/b/Second.cs", "api.Click(\"//Nobody\");");
		Dir.Write("tests/a/First.cs", "api.Click(\"//Ghost\");");
		Dir.Write("tests/Notes.txt", "api.Click(\"//Ignored\");");
		const FLodexRun Run = RunLodex({"lint", "--scene", ScenePath, Dir.File("tests")});
		EXPECT_EQ(Run.Exit, 1);
		EXPECT_EQ(Run.Out,
			Dir.File("tests") + "/a/First.cs:1:12: error: //Ghost matches no object [no-match]\n" + Dir.File("tests") +
				"/b/Second.cs:1:12: error: //Nobody matches no object [no-match]\nChecked 2 Lodestrings in 2 files: 2 "
				"errors, 0 warnings\n");
	}

	TEST_F(LodexLint, AUtf16FileIsReadAsTheCompilerReadsIt)
	{
		// UTF-16 little-endian with its mark, a line ending in U+2028: positions are counted in the decoded text.
		const std::string Utf16 = Dir.Write(
			"Utf16.cs", EncodeUtf16(u"/* T\u00FCr */ api.Click(\"//Nobody\");\u2028api.Click(\"//A\");", true));
		const FLodexRun Run = RunLodex({"lint", "--scene", ScenePath, Utf16});
		EXPECT_EQ(Run.Exit, 1);
		EXPECT_EQ(Run.Out,
			Utf16 +
				":1:22: error: //Nobody matches no object [no-match]\n"
				"Checked 2 Lodestrings in 1 file: 1 error, 0 warnings\n");
	}

	TEST_F(LodexLint, AnUnreadableFileStopsWithOneLineAndNoReport)
	{
		const std::string Good = Dir.Write("Good.cs", "api.Click(\"//Nobody\");");
		const FLodexRun Run = RunLodex({"lint", "--scene", ScenePath, Good, Dir.File("Absent.cs")});
		EXPECT_EQ(Run.Exit, 1);
		EXPECT_EQ(Run.Out, "");
		EXPECT_EQ(Run.Err, "lodex: " + Dir.File("Absent.cs") + ": cannot open the file\n");

		const FLodexRun NoScene = RunLodex({"lint", "--scene", Dir.File("absent.json"), Good});
		EXPECT_EQ(NoScene.Exit, 1);
		EXPECT_EQ(NoScene.Err, "lodex: " + Dir.File("absent.json") + ": cannot open the file\n");
	}

	TEST_F(LodexLint, StrictFlagsEachRuleWithItsSuggestionAndFails)
	{
		const FLodexRun Run = RunLodex({"lint", "--scene", LevelPath, "--strict", Tests});
		EXPECT_EQ(Run.Exit, 1);
		EXPECT_EQ(Run.Err, "");
		EXPECT_EQ(Run.Out,
			Tests +
				":5:22: warning: the name 'Cube_2' ends in a generated instance number, which can change from one run "
				"to the next; suggested: //*[@tag = 'crate'] [generated-suffix]\n" +
				Tests +
				":6:29: warning: the predicate [@tag = 'red'] matches 2 objects of the scene: the path finds one only "
				"by where it looks; suggested: //Door [shared-tag]\n" +
				Tests +
				":7:20: warning: the path names 6 levels from the root (more than 5): re-attaching any of them "
				"breaks it; suggested: //L6 [deep-absolute]\n" +
				Tests + ":8:20: error: //*[@tag = 'pair'] matches 2 objects: not unique [ambiguous]\n" + Tests +
				":8:20: note: match 1 of 2: /*[@name = 'Twin'] (matches 2 objects: not unique)\n" + Tests +
				":8:20: note: match 2 of 2: /*[@name = 'Twin'] (matches 2 objects: not unique)\n"
				"Checked 6 Lodestrings in 1 file: 1 error, 3 warnings (warnings fail with --strict)\n");
	}

	TEST_F(LodexLint, WarningsAloneFailOnlyWithStrict)
	{
		const std::string Warned = Dir.Write("Warned.cs", "api.Click(\"//Cube_2\");");
		const FLodexRun Lenient = RunLodex({"lint", "--scene", LevelPath, Warned});
		EXPECT_EQ(Lenient.Exit, 0);
		EXPECT_EQ(
			Lenient.Out.substr(Lenient.Out.rfind("Checked")), "Checked 1 Lodestring in 1 file: 0 errors, 1 warning\n");
		EXPECT_EQ(RunLodex({"lint", "--scene", LevelPath, "--strict", Warned}).Exit, 1);

		// The depth allowed is the user's to set.
		const FLodexRun Deeper = RunLodex({"lint", "--scene", LevelPath, "--strict", "--max-depth", "6",
			Dir.Write("Deep.cs",
				"api.Click(\"/*[@name = 'L1']/*[@name = 'L2']/*[@name = 'L3']/*[@name = "
				"'L4']/*[@name = 'L5']/*[@name = 'L6']\");")});
		EXPECT_EQ(Deeper.Exit, 0) << Deeper.Out;

		for (const std::vector<std::string>& Bad : {std::vector<std::string>{"--max-depth", "0"},
				 {"--max-depth", "deep"}, {"--format", "xml"}, {"--jobs", "0"}})
		{
			std::vector<std::string> Args = {"lint", "--scene", LevelPath, Warned};
			Args.insert(Args.end(), Bad.begin(), Bad.end());
			const FLodexRun Usage = RunLodex(Args);
			EXPECT_EQ(Usage.Exit, 2) << Bad[0] << " " << Bad[1];
			EXPECT_NE(Usage.Err.find("Usage:"), std::string::npos) << Usage.Err;
		}
	}

	TEST_F(LodexLint, JsonListsTheSameFindingsForTools)
	{
		const FLodexRun Run = RunLodex({"lint", "--scene", LevelPath, "--format", "json", Tests});
		EXPECT_EQ(Run.Exit, 1);
		nlohmann::json Json = nlohmann::json::parse(Run.Out);
		ASSERT_EQ(Json["diagnostics"].size(), 4u);
		EXPECT_EQ(Json["diagnostics"][0], nlohmann::json::parse(R"({"file": ")" + Tests + R"(", "line": 5, "column": 22,
			"severity": "warning", "rule": "generated-suffix", "lodestring": "//Cube_2", "method": "Click", "matches": 1,
			"message": "the name 'Cube_2' ends in a generated instance number, which can change from one run to the next",
			"suggestion": "//*[@tag = 'crate']", "notes": []})"));
		const nlohmann::json& Ambiguous = Json["diagnostics"][3];
		EXPECT_EQ(Ambiguous["rule"], "ambiguous");
		EXPECT_TRUE(Ambiguous["suggestion"].is_null());
		EXPECT_EQ(Ambiguous["notes"].size(), 2u);
		EXPECT_EQ(Ambiguous["matches"], 2);
		Json.erase("diagnostics");
		EXPECT_EQ(Json,
			nlohmann::json::parse(
				R"({"files": 1, "checked": 6, "errors": 1, "warnings": 3, "notes": 0, "strict": false, "passed": false})"));
	}

	TEST_F(LodexLint, CopyTellsOnStandardErrorHowManyObjectsEachCopiedLodestringMatches)
	{
		const std::string Clipboard = Dir.File("clipboard.txt");
		const FLodexRun Run = RunLodex(
			{"copy", "--scene", ScenePath, "--mode", "Relative", "--clipboard", Clipboard, "door", "comp", "cycA"});
		EXPECT_EQ(Run.Exit, 0) << Run.Err;
		EXPECT_EQ(Run.Out,
			"LogTemp: Lodestring : //Door \nLogTemp: Lodestring : //A/fn:component('Comp') \nLogTemp: "
			"Lodestring : //CycA \n");
		EXPECT_EQ(FTempDir::Read(Clipboard), "//CycA");
		EXPECT_EQ(Run.Err,
			"//Door matches 1 object\n//A/fn:component('Comp') matches 2 objects: not unique\n//CycA "
			"matches 1 object\n");
	}
}
