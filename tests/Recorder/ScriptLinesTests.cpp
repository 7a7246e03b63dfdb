// Copyright Lodex contributors.
#include "RecorderFixture.h"

#include "LodexDebugger/Core/Recorder/LodexScriptLines.h"

namespace
{
	using namespace LodexScriptLines;

	// Each line format byte for byte, where no session test pins it already.
	TEST(ScriptLines, LineFormatsByteForByte)
	{
		// 30 frames at 60 frames a second: 0.5 seconds; 7 frames: 0.11666667 seconds, rendered "0.116667".
		const FDuration Half = MakeDuration(30, 0.016666668f);
		const FDuration Seven = MakeDuration(7, 0.016666668f);
		const FLodexVRPose Pose{{10.5, -2.0, 130.25}, {0.0, 0.70710677, -0.0, 0.70710677}};
		const std::pair<std::string, const char*> Rows[] = {
			{MakeKeyPlaceholderLine("W"), "//put the W event here"},
			{MakeAnalogPlaceholderLine("Gamepad_LeftX"), "//Put  Gamepad_LeftX here"},
			{MakeClickLine(1, 0, 720, EDurationForm::Fps, Half),
				"api.Click(MouseButtons.RIGHT, new Vector2(0, 720), (int)(api.GetLastFPS() * 0.5)); "},
			{MakeDragLine(0, 300, 260, 200, 200, EDurationForm::Fps, Half),
				"api.MouseDrag(MouseButtons.LEFT, new Vector2( 300, 260) , (int)(api.GetLastFPS() * 0.5), new "
				"Vector2( 200, 200));"},
			{MakeMoveLine(520, 332, 400, 300, EDurationForm::Fps, Seven),
				"api.MouseMoveToPoint(new Vector2( 520, 332) , (int)(api.GetLastFPS() * 0.116667), new Vector2( "
				"400, 300));"},
			{MakeVRPoseLine(ELodexVRDevice::Hmd, Pose),
				"api.VRInput(\"\", new Vector3(10.5f, -2.0f, 130.25f), new Quaternion(0.0f, 0.707107f, 0.0f, "
				"0.707107f), 0); "},
			{MakeVRPoseLine(ELodexVRDevice::RightAim, Pose),
				"api.VRInput(\"Aim\", new Vector3(10.5f,-2.0f,130.25f), new Quaternion(0.0f, 0.707107f, 0.0f, "
				"0.707107f), 2);"},
		};
		for (const auto& Row : Rows)
		{
			EXPECT_EQ(Row.first, Row.second);
		}
	}

	TEST(ScriptLines, SecondsAreFramesTimesTheFloatDeltaAsTheEngineRendersThem)
	{
		// The product is a 32-bit float: 3 * 0.1f is 0.3000000119..., printed "0.300000", trimmed to "0.3".
		EXPECT_EQ(MakeDuration(3, 0.1f).Seconds, 3.0f * 0.1f);
		EXPECT_EQ(MakeKeyPressLine("A", EDurationForm::Frames, MakeDuration(3, 0.1f)),
			"api.KeyPress(new KeyCode[] { KeyCode.A}, 3); // api.GetLastFPS() * 0.3");
		// Whole seconds keep one fractional digit; no duration is 0.0; tiny ones round to zero in "%f".
		EXPECT_EQ(MakeKeyPressLine("A", EDurationForm::Fps, MakeDuration(120, 0.0166666675f)),
			"api.KeyPress(new KeyCode[] { KeyCode.A}, (int)(api.GetLastFPS() * 2.0));");
		EXPECT_EQ(MakeKeyPressLine("A", EDurationForm::Fps, MakeDuration(0, 0.0166666675f)),
			"api.KeyPress(new KeyCode[] { KeyCode.A}, (int)(api.GetLastFPS() * 0.0));");
		EXPECT_EQ(MakeKeyPressLine("A", EDurationForm::Fps, MakeDuration(1, 0.0000001f)),
			"api.KeyPress(new KeyCode[] { KeyCode.A}, (int)(api.GetLastFPS() * 0.0));");
	}

	TEST(MouseButtons, NamesGiveCodesIgnoringCaseAndCodesGiveScriptNames)
	{
		const struct
		{
			const char* KeyName;
			std::int32_t Code;
			const char* ScriptName;
		} Rows[] = {
			// The exact names of the three buttons: the session tests.
			{"leftmousebutton", 0, "LEFT"},
			{"CentreMouseButton", 2, "CENTER"},
			{"ThumbMouseButton", -1, "Unknown"},
			{"LeftMouseButtonX", -1, "Unknown"},
			{"LeftMouse", -1, "Unknown"},
			{"", -1, "Unknown"},
		};
		for (const auto& Row : Rows)
		{
			EXPECT_EQ(GetLodexMouseButtonCode(Row.KeyName), Row.Code) << Row.KeyName;
			EXPECT_STREQ(GetLodexMouseButtonScriptName(Row.Code), Row.ScriptName) << Row.KeyName;
		}
		EXPECT_STREQ(GetLodexMouseButtonScriptName(99), "Unknown");
	}

	TEST(EventRecord, TheConstructorZeroesAllButItsFiveArgumentsInTheirOrder)
	{
		EXPECT_EQ(DescribeRecord(FLodexEventRecord(1234, ELodexEventKind::Drag, 2, -5, 7)),
			"kind 4, frames 1234-0, code 2, from -5,7 to 0,0");
	}

	TEST(EventRecord, TheArrayKeepsOrderAndSequenceNumbersAcrossRemovalsFromTheFront)
	{
		FLodexRecordArray Array;
		std::vector<std::uint64_t> Sequences;
		for (std::uint32_t Frame = 0; Frame < 1000; ++Frame)
		{
			Sequences.push_back(Array.Add(FLodexEventRecord(Frame, ELodexEventKind::KeyDown, 1, 0, 0)));
		}
		for (int Removed = 0; Removed < 700; ++Removed)
		{
			Array.RemoveFront();
		}
		ASSERT_EQ(Array.Num(), 300u);
		EXPECT_EQ(Array.Front().Frame, 700u);
		EXPECT_EQ(Array[299].Frame, 999u);
		EXPECT_EQ(Array.FindBySequence(Sequences[699]), nullptr);
		ASSERT_NE(Array.FindBySequence(Sequences[700]), nullptr);
		EXPECT_EQ(Array.FindBySequence(Sequences[850])->Frame, 850u);
		const std::uint64_t Next = Array.Add(FLodexEventRecord(5000, ELodexEventKind::KeyDown, 1, 0, 0));
		EXPECT_EQ(Next, Sequences.back() + 1);
		EXPECT_EQ(Array.FindBySequence(Next)->Frame, 5000u);
		Array.Empty();
		EXPECT_TRUE(Array.IsEmpty());
		EXPECT_EQ(Array.FindBySequence(Next), nullptr);
	}
}
