// Copyright Lodex contributors.
#include "ChildProcess.h"
#include "LodexRun.h"
#include "TempDir.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace
{
	const std::string SourceDir = LODEX_SOURCE_DIR;
	const std::string SampleLog = SourceDir + "/samples/session.jsonl";
	const std::string SampleScene = SourceDir + "/samples/level.json";

	std::string SampleScript()
	{
		return LodexText::Join(
			LodexText::SplitDroppingEmpty(FTempDir::Read(SourceDir + "/tests/fixtures/recorder/session.txt"), "\n"),
			"\r\n");
	}

	TEST(LodexRecord, AButtonThatTakesAnObjectFindsItInTheSceneGiven)
	{
		FTempDir Dir;
		const std::string Log = Dir.Write("click.jsonl",
			FTempDir::Read(SampleLog).substr(0, FTempDir::Read(SampleLog).find('\n') + 1) +
				R"({"frame": 1017, "type": "button", "name": "ClickObject", "object": "knob", "mode": "Relative"})"
				"\n");
		const FLodexRun Run = RunLodex({"record", "--input", Log, "--scene", SampleScene});
		EXPECT_EQ(Run.Exit, 0) << Run.Err;
		EXPECT_NE(Run.Out.find("api.ClickObject(MouseButtons.LEFT, \"//Knob\", 10);"), std::string::npos) << Run.Out;
	}

	TEST(LodexRecord, FpsWritesEveryDurationInTheFpsForm)
	{
		const FLodexRun Run = RunLodex({"record", "--fps", "--input", SampleLog});
		EXPECT_EQ(Run.Exit, 0) << Run.Err;
		EXPECT_NE(Run.Out.find("api.KeyPress(new KeyCode[] { KeyCode.SpaceBar}, (int)(api.GetLastFPS() * 0.25));"),
			std::string::npos)
			<< Run.Out;
		EXPECT_NE(Run.Out.find("api.Click(MouseButtons.LEFT, new Vector2(520, 332), (int)(api.GetLastFPS() * 0.1)); "),
			std::string::npos)
			<< Run.Out;
		EXPECT_EQ(Run.Out.find("); // api.GetLastFPS()"), std::string::npos) << Run.Out;
	}

	TEST(LodexRecord, PrintsTheScriptExactlyAsThePanelHoldsItAfterStopOrSavesItWholeWhereAFailedSaveLeavesWhatWasThere)
	{
		EXPECT_EQ(Printed(RunLodex({"record", "--input", SampleLog, "--scene", SampleScene})), SampleScript())
			<< "lines joined with \"\\r\\n\", nothing added at the end";
		FTempDir Dir;
		const std::string Target = Dir.Write("RecordedInput.txt", "an older script");
		EXPECT_EQ(Printed(RunLodex({"record", "--input", SampleLog, "--out", Target})), "");
		EXPECT_EQ(FTempDir::Read(Target), SampleScript());
		EXPECT_EQ(FTempDir::List(Dir.Path), std::set<std::string>{"RecordedInput.txt"})
			<< "the file written first was renamed over the target";

		// A folder where the file should go: refused before anything is written beside it. The other failures of a
		// write are the clipboard file's tests', which go through the same routine.
		ASSERT_EQ(mkdir(Dir.File("Taken").c_str(), 0755), 0);
		Dir.Write("Taken/keep.txt", "kept");
		EXPECT_EQ(Printed(RunLodex({"record", "--input", SampleLog, "--out", Dir.File("Taken")})),
			"exit 1: lodex: " + Dir.File("Taken") + ": is a folder, not a file; nothing was written\n");
		EXPECT_EQ(FTempDir::Read(Dir.File("Taken") + "/keep.txt"), "kept");
		EXPECT_EQ(FTempDir::List(Dir.Path), (std::set<std::string>{"RecordedInput.txt", "Taken"}))
			<< "nothing was left beside the folder";
	}

	TEST(LodexRecord, ABadLogOrSceneIsOneLineOnStandardErrorAndNothingOnStandardOutput)
	{
		FTempDir Dir;
		const std::string Broken = Dir.Write("broken.jsonl",
			"{\"lodexInputLog\": 1, \"host\": \"h\"}\n{\"frame\": 3, \"type\": \"tick\", \"delta\": 0.1}\n"
			"{\"frame\": 2, \"type\": \"tick\", \"delta\": 0.1}\n");
		const std::string BadScene = Dir.Write("bad.json", "{\"objects\": 3}");
		const std::pair<std::vector<std::string>, std::string> Rows[] = {
			// What the log reader says of a bad line is the input log tests' to pin; here it is one line, exit 1.
			{{"record", "--input", Broken},
				"lodex: " + Broken + ":3: frame 2 comes after frame 3: frames must never decrease\n"},
			{{"record", "--input", SampleLog, "--scene", BadScene},
				"lodex: " + BadScene + ": field 'objects' must be an array, found number\n"},
		};
		for (const auto& [Args, Error] : Rows)
		{
			EXPECT_EQ(Printed(RunLodex(Args)), "exit 1: " + Error);
		}
		const std::string Out = Dir.File("never.txt");
		EXPECT_EQ(RunLodex({"record", "--input", Broken, "--out", Out}).Exit, 1);
		EXPECT_FALSE(FTempDir::Exists(Out)) << "nothing is written for a bad log";
	}

	/**
	 * Whatever a log line holds, in any field (one Lodex ignores included), the binary ends with one line naming the
	 * file, the line and the column: never with the JSON library's exception, never reading past a NUL byte.
	 */
	TEST(LodexRecord, WhatTheJsonLibraryRejectsIsOneLineNamingTheLineAndColumn)
	{
		FTempDir Dir;
		const std::string Start =
			"{\"lodexInputLog\": 1, \"host\": \"h\"}\n{\"frame\": 1, \"type\": \"tick\", \"delta\": 0.1, \"x\": ";
		const std::pair<std::string, std::string> Rows[] = {
			// The scene reader's test covers the other rejections: the same routine words them.
			{"1e999}", "2:49: number out of the range of a double: 1e999"},
			{std::string("0}\0{\"frame\": 0}", 15), "2:51: a NUL byte; the file must be UTF-8 text"},
		};
		for (const auto& [Value, Error] : Rows)
		{
			const std::string Log = Dir.Write("log.jsonl", Start + Value + "\n");
			EXPECT_EQ(Printed(ChildProcess::RunLodex({"record", "--input", Log})),
				"exit 1: lodex: " + Log + ":" + Error + "\n")
				<< Value;
		}
	}
}
