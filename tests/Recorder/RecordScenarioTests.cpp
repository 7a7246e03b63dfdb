// Copyright Lodex contributors.
#include "Record/InputLogReplay.h"
#include "Scenes/SceneSnapshot.h"
#include "TempDir.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <gtest/gtest.h>

namespace
{
	struct FScenario
	{
		const char* Log;
		const char* Golden;
	};

	/** Small input logs and the scripts they give, line by line (each traced by hand from the rules). */
	const FScenario Scenarios[] = {
		// The sample session of `lodex demo`: every desktop gesture, both duration forms, the buttons, with no scene:
		// the log carries their Lode Strings.
		{"samples/session.jsonl", "tests/fixtures/recorder/session.txt"},
		// VR mode: the device once, the poses that moved, key presses at once, back to the desktop.
		{"tests/fixtures/recorder/vr.jsonl", "tests/fixtures/recorder/vr.txt"},
		// The play session ends before Stop: Stop still writes what was waiting; the Escape that ended it is not.
		{"tests/fixtures/recorder/play-ends.jsonl", "tests/fixtures/recorder/play-ends.txt"},
	};

	std::string ReadSourceFile(const std::string& Relative)
	{
		return FTempDir::Read(std::string(LODEX_SOURCE_DIR) + "/" + Relative);
	}

	TEST(RecordScenario, EachLogGivesItsGoldenScript)
	{
		for (const FScenario& Scenario : Scenarios)
		{
			FInputLogReplay Replay;
			std::string Error;
			ASSERT_TRUE(
				ReplayInputLog(ReadSourceFile(Scenario.Log), Scenario.Log, FInputLogReplayOptions(), Replay, Error))
				<< Error;
			const std::vector<std::string> Golden =
				LodexText::SplitDroppingEmpty(ReadSourceFile(Scenario.Golden), "\n");
			ASSERT_FALSE(Golden.empty()) << Scenario.Golden;
			EXPECT_EQ(Replay.Script, LodexText::Join(Golden, "\r\n")) << Scenario.Log;
		}
	}

	TEST(RecordScenario, ASceneDecidesTheButtonsLodestringsWhenGiven)
	{
		// The log says "//Door" for the door in the relative kind; a scene where the door hangs elsewhere wins.
		FSceneSnapshot Scene;
		std::string Error;
		ASSERT_TRUE(FSceneSnapshot::Parse(
			R"({"objects": [{"id": "door", "kind": "actor", "name": "Gate"}]})", "scene", Scene, Error));
		const std::string Log = "{\"lodexInputLog\": 1, \"host\": \"h\"}\n"
								"{\"frame\": 1, \"type\": \"button\", \"name\": \"ClickObject\", \"object\": \"door\", "
								"\"mode\": \"Absolute\", \"lodestring\": \"//Door\"}\n"
								"{\"frame\": 2, \"type\": \"button\", \"name\": \"GetObjectPosition\", \"object\": "
								"\"nobody\", \"mode\": \"Absolute\"}\n";
		FInputLogReplayOptions Options;
		Options.Scene = &Scene;
		FInputLogReplay Replay;
		EXPECT_FALSE(ReplayInputLog(Log, "log", Options, Replay, Error));
		EXPECT_EQ(Error, "log:3: the scene: no object has the id, name or label 'nobody'");
		ASSERT_TRUE(ReplayInputLog(Log.substr(0, Log.rfind("{\"frame\": 2")), "log", Options, Replay, Error));
		EXPECT_EQ(Replay.Script,
			" api = new velt.unreal_api.ApiClient();\r\napi.Connect(\"h\");\r\n"
			"api.ClickObject(MouseButtons.LEFT, \"/*[@name = 'Gate']\", 10); ");
	}
}
