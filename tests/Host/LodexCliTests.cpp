// Copyright Lodex contributors.
#include "LodestringCases.h"
#include "LodexCli.h"
#include "TempDir.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <sstream>
#include <sys/wait.h>

namespace
{
	struct FRun
	{
		int Exit = -1;
		std::string Out;
		std::string Err;
	};

	FRun RunLodex(const std::vector<std::string>& Args)
	{
		std::ostringstream Out;
		std::ostringstream Err;
		FRun Run;
		Run.Exit = RunLodexCli(Args, Out, Err);
		Run.Out = Out.str();
		Run.Err = Err.str();
		return Run;
	}

	int CountLines(const std::string& Text)
	{
		int Lines = 0;
		for (const char Char : Text)
		{
			Lines += Char == '\n' ? 1 : 0;
		}
		return Lines;
	}

	class LodexCli : public ::testing::Test
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

	TEST_F(LodexCli, PathPrintsEveryShapeExactly)
	{
		for (const LodestringCases::FRow& Row : LodestringCases::Rows)
		{
			const FRun Run = RunLodex({"path", "--scene", ScenePath, "--mode", Row.Mode, Row.Object});
			EXPECT_EQ(Run.Exit, 0) << Run.Err;
			EXPECT_EQ(Run.Out, std::string(Row.Expected) + "\n") << Row.Object << ", \"" << Row.Mode << "\"";
			EXPECT_EQ(Run.Err, "");
		}
	}

	TEST_F(LodexCli, PathTakesSeveralObjectsByIdOrNameAndDefaultsToAbsolute)
	{
		const FRun Run = RunLodex({"path", "--scene", ScenePath, "hinge", "Fog", "House"});
		EXPECT_EQ(Run.Exit, 0) << Run.Err;
		EXPECT_EQ(Run.Out, "/*[@name = 'House']/*[@name = 'Door']/fn:component('Hinge')\n\n/*[@name = 'House']\n");
		const FRun Empty = RunLodex({"path", "--scene", ScenePath, "--mode", "", "door"});
		EXPECT_EQ(Empty.Exit, 0) << Empty.Err;
		EXPECT_EQ(Empty.Out, "\n");
	}

	TEST_F(LodexCli, PathRefusesUnknownAndAmbiguousObjects)
	{
		const FRun Unknown = RunLodex({"path", "--scene", ScenePath, "door", "Nobody"});
		EXPECT_EQ(Unknown.Exit, 1);
		EXPECT_EQ(Unknown.Out, "") << "nothing is printed when one object is wrong";
		EXPECT_EQ(Unknown.Err, "lodex: " + ScenePath + ": no object has the id or name 'Nobody'\n");
		const FRun Ambiguous = RunLodex({"path", "--scene", ScenePath, "Comp"});
		EXPECT_EQ(Ambiguous.Exit, 1);
		EXPECT_EQ(Ambiguous.Err, "lodex: " + ScenePath + ": 3 objects are named 'Comp'; name one by its id\n");
	}

	TEST_F(LodexCli, CopyLogsEveryActorAndLeavesTheLastOnTheClipboard)
	{
		const std::string Clipboard = Dir.File("clipboard.txt");
		const FRun Run =
			RunLodex({"copy", "--scene", ScenePath, "--mode", "Absolute", "--clipboard", Clipboard, "a", "bob"});
		EXPECT_EQ(Run.Exit, 0) << Run.Err;
		EXPECT_EQ(Run.Out, "LogTemp: Lodestring : /*[@name = 'A'] \nLogTemp: Lodestring : /*[@name = 'Bob's'] \n");
		EXPECT_EQ(FTempDir::Read(Clipboard), "/*[@name = 'Bob's']");
		EXPECT_FALSE(FTempDir::Exists(Clipboard + ".lodex-tmp"));

		const FRun Relative =
			RunLodex({"copy", "--scene", ScenePath, "--mode", "Relative", "--clipboard", Clipboard, "door"});
		EXPECT_EQ(Relative.Out, "LogTemp: Lodestring : //Door \n");
		EXPECT_EQ(FTempDir::Read(Clipboard), "//Door");
	}

	TEST_F(LodexCli, CopyWithEmptySelectionLeavesTheClipboardUntouched)
	{
		const std::string Clipboard = Dir.Write("clipboard.txt", "earlier text\n");
		const FRun Run = RunLodex({"copy", "--scene", ScenePath, "--mode", "Absolute", "--clipboard", Clipboard});
		EXPECT_EQ(Run.Exit, 0) << Run.Err;
		EXPECT_EQ(Run.Out, "");
		EXPECT_EQ(Run.Err, "");
		EXPECT_EQ(FTempDir::Read(Clipboard), "earlier text\n");
	}

	TEST_F(LodexCli, CopyToAnUnwritableClipboardKeepsTheLogAndFails)
	{
		const std::string Clipboard = Dir.File("missing-folder/clipboard.txt");
		const FRun Run = RunLodex({"copy", "--scene", ScenePath, "--mode", "Relative", "--clipboard", Clipboard, "a"});
		EXPECT_EQ(Run.Exit, 1);
		EXPECT_EQ(Run.Out, "LogTemp: Lodestring : //A \n");
		EXPECT_EQ(CountLines(Run.Err), 1) << Run.Err;
		EXPECT_NE(Run.Err.find(Clipboard), std::string::npos) << Run.Err;
	}

	TEST_F(LodexCli, UsageErrorsPrintTheUsageAndExitTwo)
	{
		const std::vector<std::vector<std::string>> Calls = {
			{},
			{"frobnicate"},
			{"path", "door"},
			{"path", "--scene", ScenePath},
			{"path", "--scene", ScenePath, "--colour", "red", "door"},
			{"copy", "--scene", ScenePath, "door"},
			{"copy", "--scene", ScenePath, "--mode", "absolute", "door"},
			{"copy", "--scene", ScenePath, "--mode", "Tag", "door"},
		};
		for (const std::vector<std::string>& Call : Calls)
		{
			const FRun Run = RunLodex(Call);
			EXPECT_EQ(Run.Exit, 2) << ::testing::PrintToString(Call);
			EXPECT_EQ(Run.Out, "");
			EXPECT_NE(Run.Err.find("Usage:"), std::string::npos) << Run.Err;
		}
	}

	TEST_F(LodexCli, HelpEverywhere)
	{
		for (const std::vector<std::string>& Call : std::vector<std::vector<std::string>>{
				 {"--help"}, {"path", "--help"}, {"copy", "--help"}, {"demo", "--help"}})
		{
			const FRun Run = RunLodex(Call);
			EXPECT_EQ(Run.Exit, 0) << ::testing::PrintToString(Call);
			EXPECT_NE(Run.Out.find("Usage:"), std::string::npos) << Run.Out;
		}
		EXPECT_NE(RunLodex({"copy", "--help"}).Out.find("--clipboard"), std::string::npos);
	}

	TEST_F(LodexCli, BadSceneFilesFailWithOneLineAndNoOutput)
	{
		const std::string Broken =
			Dir.Write("broken.json", "{\"objects\": [\n  {\"id\": \"a\" \"kind\": \"actor\"}\n]}");
		const std::string Dangling =
			Dir.Write("dangling.json", R"({"objects": [{"id": "a", "kind": "actor", "name": "A", "outer": "x"}]})");
		struct FRow
		{
			std::string Path;
			std::string Error;
		};
		const FRow Rows[] = {
			{Broken,
				"lodex: " + Broken +
					":2:19: syntax error while parsing object - unexpected string literal; expected '}'\n"},
			{Dangling, "lodex: " + Dangling + ": objects[0] (id 'a'): field 'outer': no object has the id 'x'\n"},
			{Dir.File("absent.json"), "lodex: " + Dir.File("absent.json") + ": cannot open the file\n"},
		};
		for (const FRow& Row : Rows)
		{
			const FRun Run = RunLodex({"copy", "--scene", Row.Path, "--mode", "Absolute", "a"});
			EXPECT_EQ(Run.Exit, 1);
			EXPECT_EQ(Run.Out, "");
			EXPECT_EQ(Run.Err, Row.Error);
		}
	}

	/** The installed binary, as a user runs it: exit status and the two streams kept apart. */
	FRun RunBinary(const std::string& Arguments, const std::string& Environment = "")
	{
		FTempDir Dir;
		const std::string Command = Environment + " '" LODEX_BINARY "' " + Arguments + " >'" + Dir.File("out") +
			"' 2>'" + Dir.File("err") + "'";
		FRun Run;
		const int Status = std::system(Command.c_str());
		Run.Exit = WIFEXITED(Status) ? WEXITSTATUS(Status) : -1;
		Run.Out = FTempDir::Read(Dir.File("out"));
		Run.Err = FTempDir::Read(Dir.File("err"));
		return Run;
	}

	TEST(LodexBinary, DemoRunsOnTheEmbeddedSampleFromAnyFolder)
	{
		const FRun Run = RunBinary("demo", "cd / &&");
		ASSERT_EQ(Run.Exit, 0) << Run.Err;
		for (const char* Expected : {
				 "LogTemp: Lodestring : /*[@name = 'House']/*[@name = 'Door'] \nLogTemp: Lodestring : /*[@name = "
				 "'Lamp_2'] \n",
				 "Clipboard: /*[@name = 'Lamp_2']\n",
				 " /*[@name = 'House']/*[@name = 'Door']/fn:component('Hinge') ",
				 " //Door/fn:component('Hinge') ",
				 "/*[@name = 'Tür']",
			 })
		{
			EXPECT_NE(Run.Out.find(Expected), std::string::npos) << Expected;
		}
	}

	TEST(LodexBinary, CopyWithoutAClipboardToolSaysSoOnceAndKeepsTheLog)
	{
		const FRun Run = RunBinary(
			std::string("copy --scene '") + LODEX_SOURCE_DIR + "/samples/level.json' --mode Absolute door lamp",
			"env -u DISPLAY -u WAYLAND_DISPLAY PATH=/nonexistent");
		EXPECT_EQ(Run.Exit, 0) << Run.Err;
		EXPECT_EQ(Run.Out,
			"LogTemp: Lodestring : /*[@name = 'House']/*[@name = 'Door'] \nLogTemp: Lodestring : /*[@name = 'Lamp_2'] "
			"\n");
		EXPECT_EQ(CountLines(Run.Err), 1) << Run.Err;
		EXPECT_NE(Run.Err.find("--clipboard"), std::string::npos) << Run.Err;
	}
}
