// Copyright Lodex contributors.
#include "ChildProcess.h"
#include "LodestringCases.h"
#include "LodexRun.h"
#include "TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

namespace
{
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

	TEST_F(LodexCli, PathPrintsEachObjectsLodestringOrOneLineSayingWhichObjectOrSceneIsWrong)
	{
		const std::string Null = Dir.Write("null.json", R"({"objects": [
			{"id": "h", "kind": "actor", "name": "House", "outer": null, "attachParent": null},
			{"id": "d", "kind": "actor", "name": "Door", "outer": null, "attachParent": "h", "rootWidget": null},
			{"id": "w", "kind": "widget", "name": "W", "widgetParent": null}]})");
		const std::string Dangling =
			Dir.Write("dangling.json", R"({"objects": [{"id": "a", "kind": "actor", "name": "A", "outer": "x"}]})");
		// Warehouse > Shelf_C_4 > Crate_3 with StaticMeshComponent0, the only one of that name in the warehouse.
		const std::string Warehouse = Dir.Write("warehouse.json", R"({"objects": [
			{"id": "level", "kind": "other", "name": "PersistentLevel"},
			{"id": "warehouse", "kind": "actor", "name": "Warehouse", "outer": "level", "tags": []},
			{"id": "shelf", "kind": "actor", "name": "Shelf_C_4", "outer": "level", "attachParent": "warehouse", "tags": []},
			{"id": "crate", "kind": "actor", "name": "Crate_3", "outer": "level", "attachParent": "shelf", "tags": []},
			{"id": "mesh", "kind": "component", "name": "StaticMeshComponent0", "outer": "crate"},
			{"id": "yard", "kind": "actor", "name": "Yard", "outer": "level", "tags": []},
			{"id": "yardmesh", "kind": "component", "name": "StaticMeshComponent0", "outer": "yard"},
			{"id": "twin1", "kind": "actor", "name": "Twin", "outer": "level", "tags": []},
			{"id": "twin2", "kind": "actor", "name": "Twin", "outer": "level", "tags": []}]})");
		const std::string Sample = std::string(LODEX_SOURCE_DIR) + "/samples/level.json";
		const std::pair<std::vector<std::string>, std::string> Rows[] = {
			// Objects by id, name or label, Absolute by default; a mode nobody knows gives no node steps.
			{{"path", "--scene", ScenePath, "hinge", "Fog", "House"},
				"/*[@name = 'House']/*[@name = 'Door']/fn:component('Hinge')\n\n/*[@name = 'House']\n"},
			{{"path", "--scene", ScenePath, "--mode", "", "door"}, "\n"},
			// Nothing is printed when one object is wrong.
			{{"path", "--scene", ScenePath, "door", "Nobody"},
				"exit 1: lodex: " + ScenePath + ": no object has the id, name or label 'Nobody'\n"},
			{{"path", "--scene", ScenePath, "Comp"},
				"exit 1: lodex: " + ScenePath + ": 3 objects are named 'Comp'; name one by its id\n"},
			// The best: the house by its tag, the knob by its name, the hinge below its door; a component below
			// generated names rests on the stable actor above them; of two objects nothing tells apart, the best
			// there is and why it is not unique.
			{{"path", "--scene", Sample, "--mode", "best", "house", "knob", "hinge", "level"},
				"exit 0: lodex: PersistentLevel takes no step in a Lodestring\n"
				"//*[@tag = 'bldg']\n//Knob\n//Door/fn:component('Hinge')\n\n"},
			{{"path", "--scene", Warehouse, "--mode", "best", "mesh", "crate", "twin1"},
				"exit 0: lodex: /*[@name = 'Twin'] matches 2 objects: no Lodestring tells them apart\n"
				"//Warehouse//fn:component('StaticMeshComponent0')\n//Crate_3\n/*[@name = 'Twin']\n"},
			// A null reference means none.
			{{"path", "--scene", Null, "h", "d", "w"},
				"/*[@name = 'House']\n/*[@name = 'House']/*[@name = 'Door']\n/*[@name = 'W']\n"},
			{{"copy", "--scene", Dangling, "--mode", "Absolute", "a"},
				"exit 1: lodex: " + Dangling + ": objects[0] (id 'a'): field 'outer': no object has the id 'x'\n"},
			{{"copy", "--scene", Dir.File("absent.json"), "--mode", "Absolute", "a"},
				"exit 1: lodex: " + Dir.File("absent.json") + ": cannot open the file\n"},
			{{"copy", "--scene", Dir.Path, "--mode", "Absolute", "a"},
				"exit 1: lodex: " + Dir.Path + ": is a folder, not a scene file\n"},
		};
		for (const auto& [Args, Expected] : Rows)
		{
			EXPECT_EQ(Printed(RunLodex(Args)), Expected) << ::testing::PrintToString(Args);
		}
	}

	TEST_F(LodexCli, CopyLogsEveryActorAndLeavesTheLastOrInBestModeAllOnTheClipboardAndNothingSelectedLeavesItAlone)
	{
		const std::string Clipboard = Dir.File("clipboard.txt");
		const FLodexRun Run =
			RunLodex({"copy", "--scene", ScenePath, "--mode", "Absolute", "--clipboard", Clipboard, "a", "bob"});
		EXPECT_EQ(Run.Exit, 0) << Run.Err;
		EXPECT_EQ(Run.Out, "LogTemp: Lodestring : /*[@name = 'A'] \nLogTemp: Lodestring : /*[@name = 'Bob's'] \n");
		EXPECT_EQ(FTempDir::Read(Clipboard), "/*[@name = 'Bob's']");
		EXPECT_EQ(FTempDir::List(Dir.Path), (std::set<std::string>{"clipboard.txt", "scene.json"}));

		const FLodexRun Relative =
			RunLodex({"copy", "--scene", ScenePath, "--mode", "Relative", "--clipboard", Clipboard, "door"});
		EXPECT_EQ(Relative.Out, "LogTemp: Lodestring : //Door \n");
		EXPECT_EQ(FTempDir::Read(Clipboard), "//Door");

		// An empty selection leaves the clipboard untouched.
		const FLodexRun Empty =
			RunLodex({"copy", "--scene", ScenePath, "--mode", "Absolute", "--clipboard", Clipboard});
		EXPECT_EQ(Empty.Exit, 0) << Empty.Err;
		EXPECT_EQ(Empty.Out + Empty.Err, "");
		EXPECT_EQ(FTempDir::Read(Clipboard), "//Door");

		// The best of each: the shortest stable Lodestring that finds it alone, all of them copied.
		EXPECT_EQ(Printed(RunLodex({"copy", "--scene", std::string(LODEX_SOURCE_DIR) + "/samples/level.json", "--mode",
					  "best", "--clipboard", Clipboard, "house", "knob"})),
			"exit 0: //*[@tag = 'bldg'] matches 1 object\n//Knob matches 1 object\n"
			"LogTemp: Best Lodestring : //*[@tag = 'bldg'] (matches 1 object)\n"
			"LogTemp: Best Lodestring : //Knob (matches 1 object)\n");
		EXPECT_EQ(FTempDir::Read(Clipboard), "//*[@tag = 'bldg']\r\n//Knob");
	}

	TEST_F(LodexCli, CopyToAClipboardFileThatCannotBeWrittenKeepsTheLogSaysSoOnceAndLeavesNothingBehind)
	{
		std::filesystem::create_directory(Dir.File("folder"));
		const struct
		{
			std::string Clipboard;
			std::string Error;
		} Rows[] = {
			{Dir.File("missing-folder/clipboard.txt"),
				Dir.File("missing-folder/clipboard.txt") + ": cannot write the file (No such file or directory)"},
			{Dir.File("folder"), Dir.File("folder") + ": is a folder, not a file; nothing was written"},
		};
		for (const auto& Row : Rows)
		{
			const std::set<std::string> Before = FTempDir::List(Dir.Path);
			const FLodexRun Run = RunLodex(
				{"copy", "--scene", ScenePath, "--mode", "Relative", "--clipboard", Row.Clipboard, "a", "door"});
			// The failure once, then how many objects each copied Lodestring matches; the log stands.
			EXPECT_EQ(Printed(Run),
				"exit 1: lodex: " + Row.Error +
					"\n//A matches 1 object\n//Door matches 1 object\n"
					"LogTemp: Lodestring : //A \nLogTemp: Lodestring : //Door \n");
			EXPECT_EQ(FTempDir::List(Dir.Path), Before);
		}
		EXPECT_TRUE(FTempDir::List(Dir.File("folder")).empty());
	}

	TEST_F(LodexCli, UsageErrorsSayWhatIsWrongThenPrintTheWholeCommandsUsageAndExitTwo)
	{
		const struct
		{
			std::vector<std::string> Call;
			std::string FirstLine;
			std::string Usage;
		} Rows[] = {
			{{}, "lodex: A subcommand is required", "Usage: lodex [OPTIONS] SUBCOMMAND"},
			{{"frobnicate", "door"},
				"lodex: unknown command 'frobnicate' (the commands are path, copy, demo, install, record, repl, debug, "
				"lint, explore, level, diff)",
				"Usage: lodex [OPTIONS] SUBCOMMAND"},
			{{"path", "door"}, "lodex: --scene is required", "Usage: lodex path [OPTIONS] objects..."},
			{{"path", "--scene", ScenePath}, "lodex: objects is required", "Usage: lodex path [OPTIONS] objects..."},
			{{"path", "--scene", ScenePath, "--colour", "red", "door"},
				"lodex: The following argument was not expected: --colour", "Usage: lodex path [OPTIONS] objects..."},
			{{"copy", "--scene", ScenePath, "door"}, "lodex: --mode is required",
				"Usage: lodex copy [OPTIONS] [objects...]"},
			{{"copy", "--scene", ScenePath, "--mode", "absolute", "door"},
				"lodex: --mode: absolute not in {Relative,Absolute,best}", "Usage: lodex copy [OPTIONS] [objects...]"},
			{{"copy", "--scene", ScenePath, "--mode", "Relative", "--clipboard", "", "door"},
				"lodex: --clipboard: needs a file name", "Usage: lodex copy [OPTIONS] [objects...]"},
			{{"install"}, "lodex: --project is required", "Usage: lodex install [OPTIONS]"},
			// One evaluator, no more, no less.
			{{"repl"}, "lodex: Exactly 1 option from [--scene,--evaluator] is required", "Usage: lodex repl [OPTIONS]"},
			{{"debug", "--scene", ScenePath, "--evaluator", ScenePath},
				"lodex: Exactly 1 option from [--scene,--evaluator] is required and 2 were given",
				"Usage: lodex debug [OPTIONS]"},
			{{"record", "--fps"}, "lodex: --input is required", "Usage: lodex record [OPTIONS]"},
			{{"lint", "Tests"}, "lodex: --scene (or --project) is required", "Usage: lodex lint [OPTIONS] [tests...]"},
			{{"lint", "--scene", ScenePath}, "lodex: tests is required", "Usage: lodex lint [OPTIONS] [tests...]"},
		};
		for (const auto& Row : Rows)
		{
			const FLodexRun Run = RunLodex(Row.Call);
			EXPECT_EQ(Run.Exit, 2) << ::testing::PrintToString(Row.Call);
			EXPECT_EQ(Run.Out, "");
			EXPECT_EQ(Run.Err.substr(0, Run.Err.find('\n')), Row.FirstLine) << ::testing::PrintToString(Row.Call);
			EXPECT_NE(Run.Err.find("\n" + Row.Usage + "\n"), std::string::npos) << Run.Err;
		}
	}

	TEST_F(LodexCli, VersionAndHelpEverywhere)
	{
		EXPECT_EQ(Printed(RunLodex({"--version"})), "lodex 0.1.0\n");
		for (const std::vector<std::string>& Call : std::vector<std::vector<std::string>>{
				 {"--help"}, {"path", "--help"}, {"copy", "--help"}, {"demo", "--help"}})
		{
			const FLodexRun Run = RunLodex(Call);
			EXPECT_EQ(Run.Exit, 0) << ::testing::PrintToString(Call);
			EXPECT_NE(Run.Out.find("Usage:"), std::string::npos) << Run.Out;
		}
		EXPECT_NE(RunLodex({"copy", "--help"}).Out.find("--clipboard"), std::string::npos);
	}

	/**
	 * Whatever a scene file holds, in any field (one Lodex ignores included), the binary ends with one line naming
	 * the file, and where known the line and column: never with the JSON library's uncaught exception.
	 */
	TEST(LodexBinary, WhatTheJsonLibraryRejectsIsOneLineNamingTheFile)
	{
		FTempDir Dir;
		const std::string Start = "{\"objects\": [{\"id\": \"a\", \"kind\": \"actor\", \"name\": \"A\",\n \"extra\": ";
		const std::pair<std::string, std::string> Rows[] = {
			{"1e999", "2:11: number out of the range of a double: 1e999"},
			{"[0, -1e999]", "2:15: number out of the range of a double: -1e999"},
			{std::string(400, '7'),
				"2:11: number out of the range of a double: 77777777777777777777... (400 characters)"},
			{"\"\\ud800\"",
				"2:18: syntax error while parsing value - invalid string: surrogate U+D800..U+DBFF must be "
				"followed by U+DC00..U+DFFF; last read: '\"\\ud800\"'"},
			{std::string("\"a\0b\"", 5), "2:13: a NUL byte; the file must be UTF-8 text"},
			{"\"\xFF\"",
				"2:12: syntax error while parsing value - invalid string: ill-formed UTF-8 byte; last read: "
				"'\"\\xFF'"},
		};
		for (const auto& [Value, Error] : Rows)
		{
			const std::string Scene = Dir.Write("scene.json", Start + Value + "}]}");
			const std::vector<std::string> Calls[] = {{"path", "--scene", Scene, "a"},
				{"copy", "--scene", Scene, "--mode", "Absolute", "--clipboard", Dir.File("clip"), "a"}};
			for (const std::vector<std::string>& Call : Calls)
			{
				EXPECT_EQ(Printed(ChildProcess::RunLodex(Call)), "exit 1: lodex: " + Scene + ":" + Error + "\n")
					<< Value;
			}
		}
		EXPECT_FALSE(FTempDir::Exists(Dir.File("clip")));
	}

	TEST(LodexBinary, DemoShowsTheSampleAsATableTheCommandRunTheExplorerAndWhatTheModuleAddsFromAnyFolder)
	{
		const FProcessRun Run = ChildProcess::RunLodex({"demo"}, {}, [] { (void)!chdir("/"); });
		ASSERT_EQ(Run.Exit, 0) << Run.Err;
		EXPECT_EQ(Run.Out.substr(0, Run.Out.find("PersistentLevel")),
			"Lodestrings of every object of the sample level\n\n"
			"Object                  Kind        Absolute                                                              "
			"  Relative                                      Tag\n"
			"----------------------  ----------  "
			"----------------------------------------------------------------------  "
			"--------------------------------------------  ------------------------------------------------------\n");
		for (const char* Expected :
			{
				"\nPersistentLevel         other       (empty)                                                        "
				"         (empty)                                       (empty)\n",
				// A name with a non-ASCII letter is padded by characters, not bytes.
				"\nTür                     actor       /*[@name = 'Tür']                                              "
				"         //Tür                                         /*[@tag = '用户']\n",
				"\n\"Lodestring Absolute\" (MenuTool.MenuCommand2) on the selection Door, Lamp_2\n\n"
				"LogTemp: Lodestring : /*[@name = 'House']/*[@name = 'Door'] \nLogTemp: Lodestring : /*[@name = "
				"'Lamp_2'] \n\nClipboard: /*[@name = 'Lamp_2']\n\n",
				"\nWhat the module adds to the level editor\n\nLodexDebugger\n",
				"│   ├── TabTool: \"Lodestring Debugger\"\n│   │   ├── tooltip \"Lodestring Debugger Window\"\n"
				"│   │   ├── group \"Menu Root\"\n│   │   └── holds a new TabToolPanel each time it opens\n",
				"│   │   └── holds a new RecorderToolPanel each time it opens\n",
				"│   │   └── holds a new ReplToolPanel each time it opens\n",
				"│       └── holds a new DetailsToolPanel each time it opens\n",
				R"x(│   └── "VELT Lode String Debugger", after "Window" (tooltip "Open the Lode String Debugger menu")
│       └── section "Veltrane"
│           ├── "Lodestring Debugger" opens the tab TabTool (tooltip "Lodestring Debugger Window")
│           ├── ──── separator LODEX
│           ├── "Input Recorder" opens the tab RecorderTool (tooltip "Record User Input")
│           ├── ──── separator RECORDER_TOOL
│           ├── "Lodex REPL" opens the tab ReplTool (tooltip "Quickly test your Lodestring queries in a REPL (Read, Examine, Print, Loop)")
│           ├── ──── separator REPL_TOOL
│           ├── "Object Explorer" opens the tab DetailsTool (tooltip "Explore the values, componenets, and available methods in selected objects")
│           ├── ──── separator DETAILS_TOOL
│           ├── "Export Scene Snapshot" runs the console command Lodex.ExportSnapshot (tooltip "Write the level, with the reflection of its classes, as a scene snapshot for the lodex tool")
│           └── "Copy Best Lodestring" runs the console command Lodex.CopyBestLodestring (tooltip "Log and copy the shortest, most stable Lodestring that finds each selected actor alone, with its match count")
├── Tabs (nomad tab spawners)
)x",
				"├── Console commands\n│   ├── Lodex.ExportSnapshot [FILE] (",
				"│   └── Lodex.CopyBestLodestring (Logs and copies the best Lodestring of each selected actor",
				R"x(
    ├── Components tree menu of the object explorer (extends the tool menu "Kismet.SubobjectEditorContextMenu"), once an Object Explorer tab has opened
    │   └── section "VelTrane", heading "VelTrane"
    │       └── sub-menu "Lodestring" (tooltip "Get the Lodestring for the selected component")
    │           └── section "VelTrane"
    │               ├── "Lodestring Relative" prints the Relative Lodestring (tooltip "Get the Lodestring Relative")
    │               └── "Lodestring Absolute" prints the Absolute Lodestring (tooltip "Get the Lodestring Absolute")
    └── Lists of the object explorer (built by the list's context-menu handler), once an Object Explorer tab has opened
        └── section "Veltrane", heading "VelTrane"
            └── sub-menu "Lodestring" (tooltip "Print the Lodestring reference")
                ├── "Lodestring Relative" (DetailToolA.DetailCommand1) prints the Relative Lodestring (tooltip "Print the Lodestring to the console")
                └── "Lodestring Absolute" (DetailToolA.DetailCommand2) prints the Absolute Lodestring (tooltip "Print the Lodestring to the console")
)x",
				R"x(
    ├── Scene outliner actor menu (before the hook "LevelEditor.SceneOutlinerContextMenu")
    │   └── section "Veltrane", heading "VelTrane"
    │       └── sub-menu "Lodestring" (tooltip "Print the Lodestring reference for use in Veltrane tests.")
    │           ├── "Lodestring Relative" (MenuTool.MenuCommand1) prints the Relative Lodestring (tooltip "Print the Lodestring to the console")
    │           └── "Lodestring Absolute" (MenuTool.MenuCommand2) prints the Absolute Lodestring (tooltip "Print the Lodestring to the console")
    ├── Level viewport actor menu (before the hook "ActorType")
)x",
				"\nUnloading the module\n\nLogTemp: Warning: ShutdownModule() called\n\nTab spawners left: 0\n"
				"Menu extenders left in the level editor: 0\nConsole commands left: 0\n",
				"/*[@name = 'House']/*[@name = 'Door']/fn:component('Hinge')             //Door/fn:component('Hinge')",
				"LogTemp: Sample usage: bool var = api.CallMethod<bool>(\"/*[@name = 'House']/*[@name = 'Door']\", "
				"\"TryUnlock\", new object[]{& FString, & int32});  //replace types with objects \n",
				"/*[@tag = 'light' or @tag = 'shop'] matches 2 objects: not unique\n  /*[@name = 'Lamp_2']\n  /*[@name "
				"= "
				"'Bob's Sign']\n",
				"\n[10] /*[@name = 'House']/*[@name = 'Door']<VELT.Highlight>/fn:component('Hinge')</>\n    Operation: "
				"Components named 'Hinge' of 1 object: 1 found\n",
				"Step Over from the start stops at 1, 5, 9, 10, 11;",
			})
		{
			EXPECT_NE(Run.Out.find(Expected), std::string::npos) << Expected;
		}
		EXPECT_EQ(CountOf(Run.Out, "group \"Menu Root\"\n"), 4);
		EXPECT_EQ(CountOf(Run.Out, "debugPanel"), 0);
		// The recorded sample session, and its script as the panel holds it after Stop.
		EXPECT_TRUE(Contains(Run.Out,
			"\nA recorded session: the sample input log (samples/session.jsonl), 136 events from frame 1000 to 1450 on "
			"the host \"rig-3\", replayed through the Input Recorder\n\nThe script after Stop, one line a line (`lodex "
			"record` prints it with \"\\r\\n\" between lines):\n\n" +
				FTempDir::Read(std::string(LODEX_SOURCE_DIR) + "/tests/fixtures/recorder/session.txt")));
	}

	/** A folder holding one clipboard tool, a shell script. */
	std::string MakeClipboardTool(const FTempDir& Dir, const char* Name, const std::string& Script)
	{
		const std::string Tool = Dir.Write(Name, "#!/bin/sh\n" + Script + "\n");
		std::filesystem::permissions(Tool, std::filesystem::perms::owner_all);
		return Dir.Path;
	}

	TEST(LodexBinary, ClipboardWithoutAToolOrWithOneThatFailsSaysNotCopiedOnceAndKeepsTheLog)
	{
		FTempDir Dir;
		// The Lodestrings are longer than a pipe holds: a tool that quits without reading breaks the pipe.
		const std::string Long(200000, 'L');
		const std::string Scene = Dir.Write("scene.json",
			"{\"objects\": [{\"id\": \"a\", \"kind\": \"actor\", "
			"\"name\": \"" +
				Long +
				"\"}, {\"id\": \"b\", \"kind\": "
				"\"actor\", \"name\": \"B\"}]}");
		const std::string Log =
			"LogTemp: Lodestring : /*[@name = '" + Long + "'] \nLogTemp: Lodestring : /*[@name = 'B'] \n";
		const std::string Advice = "; use --clipboard FILE to keep the copied text\n";
		FTempDir Failing;
		FTempDir Quitting;
		FTempDir Working;
		const struct
		{
			ChildProcess::FEnvironment Environment;
			std::string Notice;
		} Rows[] = {
			{{{"DISPLAY", std::nullopt}, {"WAYLAND_DISPLAY", std::nullopt}, {"PATH", "/nonexistent"}},
				"lodex: not copied to the clipboard: no clipboard tool is reachable (tried wl-copy, xclip, xsel, "
				"pbcopy, clip.exe)" +
					Advice},
			{{{"DISPLAY", ":99"}, {"WAYLAND_DISPLAY", std::nullopt},
				 {"PATH", MakeClipboardTool(Failing, "xclip", "exit 1")}},
				"lodex: not copied to the clipboard: xclip failed (exit status 1)" + Advice},
			{{{"DISPLAY", ":99"}, {"WAYLAND_DISPLAY", std::nullopt},
				 {"PATH", MakeClipboardTool(Quitting, "xclip", "exit 0")}},
				"lodex: not copied to the clipboard: xclip did not take the text (Broken pipe)" + Advice},
			{{{"DISPLAY", ":99"}, {"WAYLAND_DISPLAY", std::nullopt},
				 {"PATH", MakeClipboardTool(Working, "xsel", "/bin/cat >/dev/null")}},
				""},
		};
		for (const auto& Row : Rows)
		{
			const FProcessRun Run =
				ChildProcess::RunLodex({"copy", "--scene", Scene, "--mode", "Absolute", "a", "b"}, Row.Environment);
			EXPECT_EQ(Run.Signal, 0) << Row.Notice;
			EXPECT_EQ(Run.Exit, 0) << Run.Err;
			EXPECT_TRUE(Run.Out == Log) << Run.Out.size() << " bytes";
			EXPECT_TRUE(Run.Err ==
				Row.Notice + "/*[@name = '" + Long + "'] matches 1 object\n/*[@name = 'B'] matches 1 object\n")
				<< Run.Err.substr(0, 300);
		}
	}

	TEST(LodexBinary, AClipboardFileWriteThatFailsPartWayKeepsTheEarlierFileAndLeavesNothingBehind)
	{
		FTempDir Dir;
		const std::string Scene = Dir.Write("scene.json",
			"{\"objects\": [{\"id\": \"a\", \"kind\": \"actor\", \"name\": \"" + std::string(40000, 'N') + "\"}]}");
		const std::string Clipboard = Dir.Write("clipboard.txt", "earlier text\n");
		const FProcessRun Run =
			ChildProcess::RunLodex({"copy", "--scene", Scene, "--mode", "Relative", "--clipboard", Clipboard, "a"}, {},
				ChildProcess::LimitFileSize(16 * 1024));
		EXPECT_EQ(Run.Exit, 1);
		EXPECT_TRUE(Run.Out == "LogTemp: Lodestring : //" + std::string(40000, 'N') + " \n") << "the log line stands";
		EXPECT_TRUE(Run.Err ==
			"lodex: " + Clipboard + ": cannot write the file (File too large)\n//" + std::string(40000, 'N') +
				" matches 1 object\n")
			<< Run.Err.substr(0, 300);
		EXPECT_EQ(FTempDir::Read(Clipboard), "earlier text\n");
		EXPECT_EQ(FTempDir::List(Dir.Path), (std::set<std::string>{"clipboard.txt", "scene.json"}));
	}
}
