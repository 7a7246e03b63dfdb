// Copyright Lodex contributors.
#include "CSharpLiterals.h"
#include "LodestringCases.h"
#include "LodexCli.h"
#include "LodexRun.h"
#include "TempDir.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{
	std::string Found(const std::string& Source)
	{
		std::string Text;
		for (const FCSharpApiString& Literal : FindApiStringArguments(Source))
		{
			Text += std::to_string(Literal.Line) + ":" + std::to_string(Literal.Column) + " " + Literal.Method + " [" +
				Literal.Value + "]\n";
		}
		return Text;
	}

	TEST(CSharpLiterals, FindsTheLiteralsPassedToApiCalls)
	{
		struct FRow
		{
			const char* Source;
			const char* Expected;
		};
		const FRow Rows[] = {
			{R"(api.Click("/*[@name = 'Door']");)", "1:11 Click [/*[@name = 'Door']]\n"},
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
		};
		for (const FRow& Row : Rows)
		{
			EXPECT_EQ(Found(Row.Source), Row.Expected) << Row.Source;
		}
	}

	TEST(CSharpLiterals, BrokenSourceIsScannedAsFarAsItGoes)
	{
		for (const char* Source : {"api.Find(", "api.Find(\"", "api.", "$\"{", "@\"", "\"\"\"", "/*", "'", "api.Find<",
				 "api.Find(@\"x\"", "$@\"{api.Find(\"//x\")"})
		{
			EXPECT_NO_FATAL_FAILURE(FindApiStringArguments(Source)) << Source;
		}
		EXPECT_EQ(Found("api.Find(\"//Door\""), "");
	}

	class LodexLint : public ::testing::Test
	{
	protected:
		void SetUp() override
		{
			ASSERT_FALSE(Dir.Path.empty());
			ScenePath = Dir.Write("scene.json", LodestringCases::Scene);
		}
		FTempDir Dir;
		std::string ScenePath;
	};

	TEST_F(LodexLint, ReportsEachLodestringThatIsNotUniqueWithItsFileAndLine)
	{
		const std::string Good = Dir.Write("Good.cs",
			"api.Click(\"/*[@name = 'House']/*[@name = 'Door']\");\napi.CallMethod(\"//Bob's\", \"Wave\", new "
			"object[]{});\n");
		const std::string Bad = Dir.Write("Bad.cs",
			"// api.Click(\"//Nobody\") in a comment is not a call\n"
			"api.Click(\"//Nobody\");\n"
			"api.Click(@\"//*[@tag = 't1']\");\n"
			"api.Click(\"/*[@nam = 'A']\");\n"
			"api.Click(\"//A\");\n");
		const FLodexRun Run = RunLodex({"lint", "--scene", ScenePath, Good, Bad});
		EXPECT_EQ(Run.Exit, 1);
		EXPECT_EQ(Run.Err, "");
		EXPECT_EQ(Run.Out,
			Bad + ":2: //Nobody matches no object\n" + Bad + ":3: //*[@tag = 't1'] matches 2 objects: not unique\n" +
				Bad + ":4: /*[@nam = 'A'] cannot be read: Unknown attribute: only @name and @tag can be compared\n" +
				"Checked 6 Lodestrings in 2 files: 3 do not match exactly one object\n");

		const FLodexRun Clean = RunLodex({"lint", "--scene", ScenePath, Good});
		EXPECT_EQ(Clean.Exit, 0);
		EXPECT_EQ(Clean.Out, "Checked 2 Lodestrings in 1 file: each matches exactly one object\n");
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
			Dir.File("tests") + "/a/First.cs:1: //Ghost matches no object\n" + Dir.File("tests") +
				"/b/Second.cs:1: //Nobody matches no object\nChecked 2 Lodestrings in 2 files: 2 do not match exactly "
				"one object\n");
	}

	TEST_F(LodexLint, EachProblemIsOneLineOfText)
	{
		// Control characters are shown as C# escapes; a literal whose bytes are not UTF-8 cannot name an object.
		const std::string Odd = Dir.Write("Odd.cs",
			"api.Click(@\"//Door\nwith a line break\");\n"
			"api.Click(\"//Door\\t\\0\\u0001\\r\");\n"
			"api.Click(\"//T\xFCr\");\n"
			"api.Click(\"/*[@name = 'House']/*[@name = 'Door']\");\n");
		const FLodexRun Run = RunLodex({"lint", "--scene", ScenePath, Odd});
		EXPECT_EQ(Run.Exit, 1);
		EXPECT_EQ(Run.Out,
			Odd + ":1: //Door\\nwith a line break matches no object\n" + Odd +
				":3: //Door\\t\\0\\u0001\\r matches no object\n" + Odd +
				":4: the Lodestring is not UTF-8 text; save the file as UTF-8\n"
				"Checked 4 Lodestrings in 1 file: 3 do not match exactly one object\n");
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

		const FLodexRun Usage = RunLodex({"lint", "--scene", ScenePath});
		EXPECT_EQ(Usage.Exit, 2);
		EXPECT_NE(Usage.Err.find("Usage:"), std::string::npos);
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
