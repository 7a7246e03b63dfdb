// Copyright Lodex contributors.
#include "Record/InputLogReplay.h"
#include "RecorderFixture.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>

namespace
{
	using namespace LodexInputLog;

	TEST(InputLog, EveryLineOfTheContract)
	{
		const std::string Door = "Door";
		const std::string Mode = "Relative";
		const std::string Path = "//Door";
		const float Wheel = -1.0f;
		const FLodexVRPose Pose{{1.5, -2.0, 3.0}, {0.0, 0.0, 0.0, 1.0}};
		const std::pair<std::string, const char*> Rows[] = {
			{MakeSessionLine("rig-3", nullptr, nullptr), R"({"lodexInputLog": 1, "host": "rig-3"})"},
			{MakeKeyLine(7, "keyDown", "SpaceBar"), R"({"frame": 7, "type": "keyDown", "key": "SpaceBar"})"},
			{MakeKeyLine(8, "keyUp", "SpaceBar"), R"({"frame": 8, "type": "keyUp", "key": "SpaceBar"})"},
			{MakeAnalogLine(9, "Gamepad_LeftX", 0.25f),
				R"({"frame": 9, "type": "analog", "key": "Gamepad_LeftX", "value": 0.25})"},
			{MakePointerLine(10, "mouseDown", 620.5, 382.0, "LeftMouseButton", nullptr),
				R"({"frame": 10, "type": "mouseDown", "x": 620.5, "y": 382, "button": "LeftMouseButton"})"},
			{MakePointerLine(11, "move", 0.1, -3.0, "", nullptr),
				R"({"frame": 11, "type": "move", "x": 0.1, "y": -3})"},
			{MakePointerLine(12, "wheel", 640.0, 360.0, "", &Wheel),
				R"({"frame": 12, "type": "wheel", "x": 640, "y": 360, "delta": -1})"},
			{MakeTickLine(13, 0.016666668f), R"({"frame": 13, "type": "tick", "delta": 0.016666668})"},
			{MakePieLine(14, nullptr), R"({"frame": 14, "type": "pie", "running": false})"},
			{MakeButtonLine(18, "ClickObject", &Door, &Mode, &Path),
				R"({"frame": 18, "type": "button", "name": "ClickObject", "object": "Door", "mode": "Relative", "lodestring": "//Door"})"},
			{MakeVRLine(19, true, "OpenXR"), R"({"frame": 19, "type": "vr", "tracking": true, "system": "OpenXR"})"},
			{MakePoseLine(20, ELodexVRDevice::Hmd, Pose),
				R"({"frame": 20, "type": "pose", "device": "hmd", "position": [1.5, -2, 3], "rotation": [0, 0, 0, 1]})"},
			{MakePoseLine(21, ELodexVRDevice::RightAim, Pose),
				R"({"frame": 21, "type": "pose", "device": "aim", "hand": 2, "position": [1.5, -2, 3], "rotation": [0, 0, 0, 1]})"},
			{MakePoseLine(22, ELodexVRDevice::LeftGrip, Pose),
				R"({"frame": 22, "type": "pose", "device": "grip", "hand": 1, "position": [1.5, -2, 3], "rotation": [0, 0, 0, 1]})"},
		};
		for (const auto& Row : Rows)
		{
			EXPECT_EQ(Row.first, Row.second);
		}
		EXPECT_EQ(MakeFileName(2024, 5, 1, 9, 3, 7), "RecordedInput-20240501-090307.jsonl");
	}

	TEST(InputLog, TextIsQuotedAndNumbersReadBackExactly)
	{
		EXPECT_EQ(QuoteJson("a\"b\\c\nd\te\x01 Tür 用户"), "\"a\\\"b\\\\c\\nd\\te\\u0001 Tür 用户\"");
		EXPECT_EQ(
			nlohmann::json::parse(QuoteJson("a\"b\\c\nd\te\x01 Tür")).get<std::string>(), "a\"b\\c\nd\te\x01 Tür");
		for (const double Value : {0.1, 1.0 / 3.0, -1234.5678901234567, 1e-300, 6.02214076e23, 512.0, -0.0})
		{
			const std::string Text = FormatJsonDouble(Value);
			EXPECT_EQ(nlohmann::json::parse(Text).get<double>(), Value) << Text;
		}
		EXPECT_EQ(FormatJsonDouble(0.1), "0.1");
		EXPECT_EQ(FormatJsonDouble(1.0 / 3.0), "0.3333333333333333");
		for (const float Value : {0.016666668f, 0.1f, 1.0f / 3.0f, 0.0083333f})
		{
			const std::string Text = FormatJsonFloat(Value);
			EXPECT_EQ(static_cast<float>(nlohmann::json::parse(Text).get<double>()), Value) << Text;
		}
		EXPECT_EQ(FormatJsonFloat(0.1f), "0.1");
		EXPECT_EQ(FormatJsonDouble(std::numeric_limits<double>::infinity()), "0");
	}

	TEST_F(RecorderTest, ReplayingTheLogOfASessionThatTouchesEveryKindOfLineGivesTheScriptThePanelHeld)
	{
		FMemoryInputLog Log;
		Host.SetLevelPath("/Game/Maps/Castle");
		Panel.SetUseFps(true);
		StartRecording(&Log);
		Move(1000, 400.5, 300.25);
		Move(1004, 430, 308);
		Click(1010, 430, 308);
		Wheel(1020, 10, 10, 1.5f);
		KeyDown(1025, "E");
		KeyUp(1040, "E");
		Panel.SetUseFps(false);
		Click(1050, 20, 20, 4);
		DoubleClick(1058, 20, 20);
		Up(1060, 20, 20);
		Analog(1062, "Gamepad_LeftX");
		Analog(1063, "Gamepad_LeftX");
		At(1064);
		Panel.InsertQuickLine(ELodexQuickInsert::LoadScene);
		Down(1070, 100, 100, "RightMouseButton");
		Up(1090, 300, 200, "RightMouseButton");
		KeyUp(1095, "Z");
		TickThrough(1100);
		Host.SetPlaying(false); // the play session ends...
		TickThrough(1120);
		Host.SetViewport(FLodexViewportRect{50.0, 30.0, 1024, 600}); // ...and comes back elsewhere
		Click(1130, 30, 40);
		KeyDown(1140, "W");
		At(1150);
		Host.SetVR(true, "OpenXR");
		Host.SetPose(ELodexVRDevice::Hmd, FLodexVRPose{{1.0, 2.0, 3.0}, {0.0, 0.0, 0.0, 1.0}});
		Host.SetPose(ELodexVRDevice::RightAim, FLodexVRPose{{4.0, 5.0, 6.0}, {0.0, 0.0, 0.0, 1.0}});
		TickThrough(1152);
		KeyDown(1153, "A");
		KeyUp(1155, "W");
		Host.SetPose(ELodexVRDevice::Hmd, FLodexVRPose{{1.0, 2.5, 3.0}, {0.0, 0.0, 0.0, 1.0}});
		TickThrough(1160);
		Host.SetVR(false, "");
		Click(1170, 50, 60);
		At(1175);
		ASSERT_TRUE(Panel.Stop());
		const std::string Live = Panel.GetScriptText();
		// Both clicks after the play session came back are in, at their places in the moved viewport.
		EXPECT_NE(Live.find("api.Click(MouseButtons.LEFT, new Vector2(80, 60), 6); "), std::string::npos) << Live;
		EXPECT_NE(Live.find("api.Click(MouseButtons.LEFT, new Vector2(100, 80), 6); "), std::string::npos) << Live;
		EXPECT_GE(Log.FlushCount, 175) << "the log is flushed at every tick";

		FInputLogReplay Replay;
		std::string Error;
		ASSERT_TRUE(ReplayInputLog(Log.Text(), "live.jsonl", FInputLogReplayOptions(), Replay, Error)) << Error;
		EXPECT_EQ(Replay.Script, Live);
		EXPECT_EQ(Replay.HostName, "rig-3");

		// The log holds every event and tick, and each change of what the recorder read, where it happened.
		const auto Count = [&Log](const char* Fragment)
		{
			return std::count_if(Log.Lines.begin(), Log.Lines.end(),
				[Fragment](const std::string& Line) { return Line.find(Fragment) != std::string::npos; });
		};
		EXPECT_EQ(Log.Lines.front(),
			R"({"lodexInputLog": 1, "host": "rig-3", "viewport": {"left": 100, "top": 50, "width": 1280, "height": 720}, "level": "/Game/Maps/Castle"})");
		EXPECT_EQ(Log.Lines[1], R"({"frame": 1000, "type": "useFps", "value": true})");
		EXPECT_EQ(Count(R"("type": "tick")"), 175);
		EXPECT_EQ(Count(R"("type": "pie", "running": false)"), 1);
		EXPECT_EQ(
			Count(
				R"("type": "pie", "running": true, "viewport": {"left": 50, "top": 30, "width": 1024, "height": 600})"),
			1);
		EXPECT_EQ(Count(R"("type": "vr")"), 2);
		EXPECT_EQ(Count(R"("type": "pose", "device": "hmd")"), 2);
		EXPECT_EQ(Count(R"("type": "pose", "device": "aim", "hand": 2)"), 1);
		EXPECT_EQ(Count(R"("type": "useFps")"), 2);
		EXPECT_EQ(Count(R"({"frame": 1064, "type": "button", "name": "LoadScene"})"), 1);
		EXPECT_EQ(Count(R"({"frame": 1000, "type": "move", "x": 500.5, "y": 350.25})"), 1);
	}

	struct FBadLog
	{
		const char* Text;
		const char* Error;
	};

	void ExpectReplayFails(const std::string& Text, const char* Expected)
	{
		FInputLogReplay Replay;
		std::string Error;
		EXPECT_FALSE(ReplayInputLog(Text, "log.jsonl", FInputLogReplayOptions(), Replay, Error)) << Text;
		EXPECT_EQ(Error, Expected) << Text;
	}

	TEST(InputLogReplay, AMalformedLogIsOneLineNamingTheLineAndWhatIsWrong)
	{
		const std::string Session = R"({"lodexInputLog": 1, "host": "h", "note": "an unknown field"})"
									"\n";
		const FBadLog Rows[] = {
			{"", "log.jsonl: no session line: the log is empty"},
			{"\n  \n", "log.jsonl: no session line: the log is empty"},
			{R"({"frame": 1, "type": "tick", "delta": 0.1})",
				"log.jsonl:1: the first line must be the session line, {\"lodexInputLog\": 1, ...}"},
			{R"({"lodexInputLog": 2, "host": "h"})",
				"log.jsonl:1: input log version 2 is not known (this lodex reads 1)"},
			{R"({"lodexInputLog": 1})", "log.jsonl:1: missing field 'host'"},
			{R"({"lodexInputLog": 1, "host": "h", "viewport": {"left": 0, "top": 0, "width": -5, "height": 1}})",
				"log.jsonl:1: field 'viewport': field 'width' must be an unsigned integer, found number"},
			{"[1, 2]", "log.jsonl:1: expected a JSON object, found array"},
			{R"({"lodexInputLog": 1, "host": "rig\n3"})",
				"log.jsonl:1: field 'host' must be one line of text: it holds the control character U+000A"},
		};
		for (const FBadLog& Row : Rows)
		{
			ExpectReplayFails(Row.Text, Row.Error);
		}

		const FBadLog EventRows[] = {
			{R"({"frame": 5, "type": "jump"})", "log.jsonl:2: unknown type 'jump'"},
			{R"({"type": "tick", "delta": 0.1})", "log.jsonl:2: missing field 'frame'"},
			{R"({"frame": 5})", "log.jsonl:2: missing field 'type'"},
			{R"({"frame": -5, "type": "tick", "delta": 0.1})",
				"log.jsonl:2: field 'frame' must be an unsigned integer, found number"},
			{R"({"frame": 4294967296, "type": "tick", "delta": 0.1})", "log.jsonl:2: field 'frame' is too large"},
			{R"({"frame": 5, "type": "keyDown"})", "log.jsonl:2: missing field 'key'"},
			{R"({"frame": 5, "type": "keyUp", "key": 7})", "log.jsonl:2: field 'key' must be a string, found number"},
			{R"({"frame": 5, "type": "wheel", "x": 1, "y": 2})", "log.jsonl:2: missing field 'delta'"},
			{R"({"frame": 5, "type": "move", "x": "1", "y": 2})",
				"log.jsonl:2: field 'x' must be a number, found string"},
			{R"({"frame": 5, "type": "tick"})", "log.jsonl:2: missing field 'delta'"},
			{R"({"frame": 5, "type": "tick", "delta": 3600.001})",
				"log.jsonl:2: field 'delta' must be a frame time of 0 to 3600 seconds"},
			{R"({"frame": 5, "type": "tick", "delta": -0.016})",
				"log.jsonl:2: field 'delta' must be a frame time of 0 to 3600 seconds"},
			{R"({"frame": 5, "type": "pie", "running": 1})",
				"log.jsonl:2: field 'running' must be true or false, found number"},
			{R"({"frame": 5, "type": "useFps"})", "log.jsonl:2: missing field 'value'"},
			{R"({"frame": 5, "type": "button", "name": "Jump"})",
				"log.jsonl:2: unknown button 'Jump' (LoadScene, ClickObject, GetObjectPosition, SetObjectPosition or "
				"WaitForObject)"},
			{R"({"frame": 5, "type": "button", "name": "ClickObject", "object": "door", "mode": "Relative"})",
				"log.jsonl:2: button 'ClickObject' needs --scene FILE to find its object (or a 'lodestring' field)"},
			{R"({"frame": 5, "type": "vr", "tracking": true})", "log.jsonl:2: missing field 'system'"},
			{R"({"frame": 5, "type": "pose", "device": "hand", "position": [0, 0, 0], "rotation": [0, 0, 0, 1]})",
				"log.jsonl:2: field 'device' must be \"hmd\", \"grip\" or \"aim\""},
			{R"({"frame": 5, "type": "pose", "device": "grip", "hand": 0, "position": [0, 0, 0], "rotation": [0, 0, 0, 1]})",
				"log.jsonl:2: field 'hand' must be 1 or 2"},
			{R"({"frame": 5, "type": "pose", "device": "aim", "hand": 1, "position": [0, 0], "rotation": [0, 0, 0, 1]})",
				"log.jsonl:2: field 'position' must be an array of 3 numbers"},
			{R"({"frame": 5, "type": "pose", "device": "hmd", "position": [0, 0, 0], "rotation": [0, 0, "0", 1]})",
				"log.jsonl:2: field 'rotation' must be an array of 4 numbers"},
			{R"({"frame": 5, "type": "tick", "delta": 0.1)",
				"log.jsonl:2:42: syntax error while parsing object - unexpected end of input; expected '}'"},
			// Frames may repeat but never decrease; blank lines, CRLF line ends and unknown fields pass.
			{"{\"frame\": 5, \"type\": \"tick\", \"delta\": 0.1, \"extra\": [1, 2]}\n\n"
			 "{\"frame\": 5, \"type\": \"tick\", \"delta\": 0.1}\r\n{\"frame\": 4, \"type\": \"tick\", \"delta\": 0.1}",
				"log.jsonl:5: frame 4 comes after frame 5: frames must never decrease"},
			// Text fields are one line: each ends up in a script line or in this one-line message.
			{R"({"frame": 5, "type": "keyDown", "key": "A\r\nB"})",
				"log.jsonl:2: field 'key' must be one line of text: it holds the control character U+000D"},
			{R"({"frame": 5, "type": "button", "name": "ClickObject", "lodestring": "//Door\u0000"})",
				"log.jsonl:2: field 'lodestring' must be one line of text: it holds the control character U+0000"},
		};
		for (const FBadLog& Row : EventRows)
		{
			ExpectReplayFails(Session + Row.Text + "\n", Row.Error);
		}
	}
}
