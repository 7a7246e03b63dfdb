// Copyright Lodex contributors.
#include "RecorderFixture.h"

namespace
{
	const char* const Burst = "api.WaitForEmptyInput();";

	TEST_F(RecorderTest, WithoutAPlaySessionNothingIsRecordedAndEveryEventGoesOnToTheGame)
	{
		StartRecording();
		Host.SetPlaying(false);
		FLodexInputRecorder& Rec = Recorder();
		At(1001);
		FLodexPointerInput Wheel = Pointer(10, 10);
		Wheel.WheelDelta = 1.0f;
		// Every handler returns false, playing or not: the game receives every event.
		const auto AnyHandled = [&Rec, &Wheel]()
		{
			return Rec.HandleKeyDown(Key("A")) || Rec.HandleKeyUp(Key("B")) ||
				Rec.HandleAnalogInput(Key("Gamepad_LeftX", 1.0f)) || Rec.HandleMouseMove(Pointer(10, 10)) ||
				Rec.HandleMouseButtonDown(Pointer(10, 10, "LeftMouseButton")) ||
				Rec.HandleMouseButtonUp(Pointer(10, 10, "LeftMouseButton")) ||
				Rec.HandleMouseButtonDoubleClick(Pointer(10, 10, "LeftMouseButton")) || Rec.HandleMouseWheel(Wheel) ||
				Rec.HandleMotionDetected();
		};
		EXPECT_FALSE(AnyHandled());
		TickThrough(1200);
		EXPECT_EQ(Rec.GetRecords().Num(), 0u);
		EXPECT_EQ(Rec.GetOpenGestures().Num(), 0u);
		EXPECT_EQ(Rec.GetHeldKeys().Num(), 0u);
		EXPECT_EQ(Written(), FLines{}) << "not even the \"ended here\" comment of the key-up";
		Host.SetPlaying(true);
		EXPECT_FALSE(AnyHandled());
	}

	TEST_F(RecorderTest, AClickIsWrittenOnceItsAgeExceeds62FramesThenTheBurstEnds)
	{
		StartRecording();
		Click(1012, 520.9, 332.7);
		TickThrough(1080);
		EXPECT_EQ(Written(), FLines{}) << "age 62 is not above 3.1 x 20";
		TickThrough(1081);
		EXPECT_EQ(Written(), (FLines{"api.Click(MouseButtons.LEFT, new Vector2(520, 332), 6); ", Burst}));
	}

	TEST_F(RecorderTest, PositionsAreScreenMinusTheViewportCornerTruncatedTowardZero)
	{
		Host.SetViewport(FLodexViewportRect{100.75, 50.5, 1280, 720});
		StartRecording();
		bAutoTick = false;
		FLodexPointerInput Press;
		Press.ScreenX = 100.25; // -0.5 after the corner: truncated to 0, inside
		Press.ScreenY = 1000.0; // 949.5: 949
		Press.Button = "RightMouseButton";
		At(1001);
		Recorder().HandleMouseButtonDown(Press);
		const FLodexEventRecord* Open = Recorder().GetOpenGestures().Find(LodexMouseButton::Right);
		ASSERT_NE(Open, nullptr);
		EXPECT_EQ(DescribeRecord(*Open), "kind 1, frames 1001-0, code 1, from 0,949 to 0,0");
	}

	TEST_F(RecorderTest, PressesOutsideTheViewportAreDroppedWithoutALine)
	{
		StartRecording();
		Click(1000, 1281, 10); // beyond the width: dropped
		Click(1010, 1280, 720); // on the far edges: inside
		Click(1030, 5, -1); // above the top: dropped
		TickThrough(1200);
		EXPECT_EQ(Written(), (FLines{Burst, "api.Click(MouseButtons.LEFT, new Vector2(1280, 720), 6); ", Burst}))
			<< "a tick that empties the array ends a burst, even when it only dropped presses";
	}

	TEST_F(RecorderTest, APressReleasedRPixelsAwayOrMoreIsADragAndTheWaitCoversTheGapBetweenGestures)
	{
		StartRecording();
		Down(1000, 100, 100); // released 19 pixels away: a click
		Up(1006, 119, 100);
		Down(1010, 300, 300, "MiddleMouseButton"); // released 20 pixels away: a drag
		Up(1040, 320, 300, "MiddleMouseButton");
		TickThrough(1200);
		EXPECT_EQ(Written(),
			(FLines{"api.Click(MouseButtons.LEFT, new Vector2(100, 100), 6); ", "api.Wait(166); ",
				"api.MouseDrag(MouseButtons.CENTER, new Vector2( 320, 300) , 30, new Vector2( 300, 300));"}))
			<< "no end of burst after a drag";
	}

	TEST_F(RecorderTest, ADoubleClickTakesThePlaceOfItsFirstClickAndIsWrittenAfterTwentyFrames)
	{
		StartRecording();
		Click(1200, 700, 400, 4);
		DoubleClick(1212, 700, 400);
		Up(1215, 700, 400);
		EXPECT_EQ(
			DescribeRecords(Recorder().GetRecords()), FLines{"kind 2, frames 1212-1232, code 0, from 700,400 to 0,0"});
		TickThrough(1231);
		EXPECT_EQ(Written(), FLines{});
		TickThrough(1232);
		EXPECT_EQ(Written(), (FLines{"api.DoubleClick(MouseButtons.LEFT, 700, 400, 20); ", Burst}));
	}

	TEST_F(RecorderTest, ADoubleClickWhoseFirstClickWasWrittenStandsAlone)
	{
		StartRecording();
		Click(1000, 10, 20);
		TickThrough(1070);
		DoubleClick(1080, 10, 20, "RightMouseButton");
		TickThrough(1100);
		EXPECT_EQ(Written(),
			(FLines{"api.Click(MouseButtons.LEFT, new Vector2(10, 20), 6); ", Burst,
				"api.DoubleClick(MouseButtons.RIGHT, 10, 20, 20); ", Burst}));
	}

	/** One event of a wheel session: a wheel turn, a pointer move, a click or a key press, at a viewport position. */
	struct FWheelSessionEvent
	{
		char Kind; // 'w' wheel, 'm' move, 'c' click, 'k' key press and release
		std::uint32_t Frame;
		double X;
		double Y;
		float WheelDelta;
	};

	TEST_F(RecorderTest, AWheelEventMergesWithThePendingWheelRecordWhateverLiesBetweenAndWhateverItsDelta)
	{
		const struct
		{
			const char* Name;
			std::vector<FWheelSessionEvent> Events;
			FLines Expected;
		} Rows[] = {
			{"the same way, the delta truncated",
				{{'w', 1000, 640, 360, -1.0f}, {'w', 1002, 640, 360, -1.0f}, {'w', 1004, 600, 300, -1.9f}},
				{"api.Scroll(0,-1, 3); "}},
			{"back and forth: the first delta, and every event counted",
				{{'w', 1000, 640, 360, 1.0f}, {'w', 1002, 640, 360, -1.0f}, {'w', 1004, 640, 360, 1.0f}},
				{"api.Scroll(0,1, 3); "}},
			{"different deltas: the first one", {{'w', 1000, 640, 360, 1.0f}, {'w', 1002, 640, 360, 3.0f}},
				{"api.Scroll(0,1, 2); "}},
			{"deltas past a 32-bit integer: clamped, never summed",
				{{'w', 1000, 640, 360, 3.0e9f}, {'w', 1002, 640, 360, 3.0e9f}}, {"api.Scroll(0,2147483647, 2); "}},
			{"a move between: the wheel line first, where the first turn was",
				{{'w', 1000, 640, 360, 1.0f}, {'m', 1002, 400, 300, 0.0f}, {'m', 1003, 420, 300, 0.0f},
					{'w', 1006, 640, 360, 1.0f}},
				{"api.Scroll(0,1, 2); ", "api.MouseMoveToPoint(new Vector2( 420, 300) , 1, new Vector2( 400, 300));"}},
			{"a click and a key between, and the other way",
				{{'w', 1000, 640, 360, 2.0f}, {'c', 1004, 10, 20, 0.0f}, {'k', 1012, 0, 0, 0.0f},
					{'w', 1020, 640, 360, -1.0f}},
				{"api.Scroll(0,2, 2); ", "api.Click(MouseButtons.LEFT, new Vector2(10, 20), 6); ", "api.Wait(133); ",
					"api.KeyPress(new KeyCode[] { KeyCode.E}, 3); // api.GetLastFPS() * 0.05", Burst}},
			{"over another part of the editor: not recorded, not merged",
				{{'w', 1000, 640, 360, 1.0f}, {'w', 1002, 2000, 10, 5.0f}, {'w', 1004, 640, 360, 1.0f}},
				{"api.Scroll(0,1, 2); "}},
			{"a wheel record already written: a new one",
				{{'w', 1000, 640, 360, 1.0f}, {'w', 1100, 640, 360, -1.0f}, {'w', 1102, 640, 360, -1.0f}},
				{"api.Scroll(0,1, 1); ", "api.Scroll(0,-1, 2); "}},
		};
		for (const auto& Row : Rows)
		{
			Panel.Reset();
			LastTicked = 1000;
			StartRecording();
			for (const FWheelSessionEvent& Event : Row.Events)
			{
				switch (Event.Kind)
				{
					case 'w':
						Wheel(Event.Frame, Event.X, Event.Y, Event.WheelDelta);
						break;
					case 'm':
						Move(Event.Frame, Event.X, Event.Y);
						break;
					case 'c':
						Click(Event.Frame, Event.X, Event.Y);
						break;
					default:
						KeyDown(Event.Frame, "E");
						KeyUp(Event.Frame + 3, "E");
						break;
				}
			}
			TickThrough(1300);
			ASSERT_TRUE(Panel.Stop());
			EXPECT_EQ(Written(), Row.Expected) << Row.Name;
		}
	}

	TEST_F(RecorderTest, KeyPressesWaitForTheirReleaseAndAutoRepeatIsIgnored)
	{
		StartRecording();
		KeyDown(1000, "SpaceBar");
		KeyDown(1010, "SpaceBar");
		KeyUp(1030, "SpaceBar");
		KeyUp(1040, "W"); // a release without a recorded press
		EXPECT_EQ(Written(), FLines{"//Wended here"}) << "the placeholder is not kept outside VR mode";
		TickThrough(1200);
		EXPECT_EQ(Written(),
			(FLines{"//Wended here", "api.KeyPress(new KeyCode[] { KeyCode.SpaceBar}, 30); // api.GetLastFPS() * 0.5",
				Burst}));
		EXPECT_EQ(Recorder().GetHeldKeys().Num(), 0u);
	}

	TEST_F(RecorderTest, UseFpsWritesKeysInTheFirstFpsFormAndAnalogBurstsInTheSecond)
	{
		StartRecording();
		Panel.SetUseFps(true);
		KeyDown(1000, "A");
		KeyUp(1030, "A");
		for (std::uint32_t Frame = 1040; Frame <= 1045; ++Frame)
		{
			Analog(Frame, "Gamepad_LeftX");
		}
		TickThrough(1200);
		EXPECT_EQ(Written(),
			(FLines{"api.KeyPress(new KeyCode[] { KeyCode.A}, (int)(api.GetLastFPS() * 0.5));", "api.Wait(666); ",
				"api.KeyPress(new KeyCode[] { KeyCode.Gamepad_LeftX},  (int)(api.GetLastFPS() * 0.083333));"}))
			<< "no end of burst after an analog line";
	}

	// The wait is the gap in frames times the frame time, multiplied in 32-bit floats as the engine does, then in
	// milliseconds, truncated. At 80 frames a second the double product, 175.0000026, would be a millisecond off.
	TEST_F(RecorderTest, TheWaitIsTheFloatProductOfTheGapAndTheFrameTimeInMillisecondsTruncated)
	{
		Host.SetDeltaSeconds(0.0125f);
		StartRecording();
		Click(1000, 10, 10);
		Click(1014, 200, 200);
		TickThrough(1300);
		EXPECT_EQ(Written(),
			(FLines{"api.Click(MouseButtons.LEFT, new Vector2(10, 10), 6); ", "api.Wait(174); ",
				"api.Click(MouseButtons.LEFT, new Vector2(200, 200), 6); ", Burst}));
	}

	TEST_F(RecorderTest, AnalogEventsOnConsecutiveFramesMakeOneRecordAndAPauseStartsAnother)
	{
		StartRecording();
		bAutoTick = false;
		Analog(1040, "Gamepad_LeftX");
		Analog(1041, "Gamepad_LeftX");
		Analog(1041, "Gamepad_LeftY");
		Analog(1042, "Gamepad_LeftX");
		Analog(1044, "Gamepad_LeftX"); // one frame without it is a pause
		EXPECT_EQ(DescribeRecords(Recorder().GetRecords()),
			(FLines{"kind 7, frames 1040-1042, code 1, from 0,0 to 0,0",
				"kind 7, frames 1041-1041, code 2, from 0,0 to 0,0",
				"kind 7, frames 1044-1044, code 1, from 0,0 to 0,0"}));
	}

	TEST_F(RecorderTest, APointerMoveStretchesItsOpenRecordUntilAPressOrTheStopClosesIt)
	{
		StartRecording();
		Move(1000, 400, 300);
		Move(1004, 430, 308);
		Move(1008, 520, 332);
		Move(1009, 1500, 300); // outside the viewport: not recorded
		const FLodexEventRecord* Open = Recorder().GetOpenGestures().Find(LodexMouseButton::None);
		ASSERT_NE(Open, nullptr);
		EXPECT_EQ(DescribeRecord(*Open), "kind 3, frames 1000-1008, code -1, from 400,300 to 520,332");
		EXPECT_EQ(Recorder().GetRecords().Num(), 0u);

		Down(1010, 520, 332);
		EXPECT_EQ(Recorder().GetRecords().Num(), 1u) << "the press's preparatory step closed the move";
		Move(1012, 600, 400); // during the press: the press carries the gesture
		EXPECT_EQ(Recorder().GetOpenGestures().Num(), 1u);
		Up(1014, 600, 400);
		TickThrough(1200);
		EXPECT_EQ(Written(),
			(FLines{"api.MouseMoveToPoint(new Vector2( 520, 332) , 8, new Vector2( 400, 300));", "api.Wait(166); ",
				"api.MouseDrag(MouseButtons.LEFT, new Vector2( 600, 400) , 4, new Vector2( 520, 332));"}));

		// A move still open when the recording stops is written with the rest.
		Move(1210, 600, 400);
		Move(1216, 640, 420);
		ASSERT_TRUE(Panel.Stop());
		EXPECT_EQ(Written().size(), 4u);
		EXPECT_EQ(Written().back(), "api.MouseMoveToPoint(new Vector2( 640, 420) , 6, new Vector2( 600, 400));");
	}

	TEST_F(RecorderTest, AMoveWithAButtonAndNoPressIsADragRecordWrittenAsAMove)
	{
		StartRecording();
		Move(1000, 10, 10, "RightMouseButton");
		Move(1003, 40, 50, "RightMouseButton");
		const FLodexEventRecord* Open = Recorder().GetOpenGestures().Find(LodexMouseButton::Right);
		ASSERT_NE(Open, nullptr);
		EXPECT_EQ(Open->Kind, ELodexEventKind::Drag);
		Up(1004, 40, 50, "RightMouseButton"); // the release's preparatory step closes it; there is no press to end
		EXPECT_EQ(Recorder().GetRecords().Num(), 1u);
		EXPECT_EQ(Recorder().GetOpenGestures().Num(), 0u);
		TickThrough(1200);
		EXPECT_EQ(Written(), FLines{"api.MouseMoveToPoint(new Vector2( 40, 50) , 3, new Vector2( 10, 10));"})
			<< "no end of burst after a drag record";
	}

	TEST_F(RecorderTest, ThePlaceholderOfAKeyPressIsReplacedWhereItStoodInVRMode)
	{
		StartRecording();
		KeyDown(1000, "A");
		KeyUp(1010, "A");
		KeyDown(1012, "B");
		Host.SetVR(true, "OpenXR");
		Host.SetPose(ELodexVRDevice::Hmd, FLodexVRPose{{1.0, 2.0, 3.0}, {0.0, 0.0, 0.0, 1.0}});
		Host.SetPose(ELodexVRDevice::LeftGrip, FLodexVRPose{{4.0, 5.0, 6.5}, {0.0, 0.0, 0.0, 1.0}});
		const std::uint64_t Refreshes = Panel.GetRefreshCount();
		Down(1013, 5, 5);
		Move(1013, 9, 9);
		EXPECT_EQ(Recorder().GetOpenGestures().Num(), 0u) << "the mouse records nothing in VR mode";
		KeyDown(1014, "C"); // written at once
		KeyUp(1015, "C");
		KeyUp(1016, "B"); // held since before VR mode: written at its release
		Tick(1017);
		Host.SetPose(ELodexVRDevice::Hmd, FLodexVRPose{{1.0, 2.0, 3.0}, {0.5, 0.0, 0.0, 0.5}}); // turned only
		Tick(1018);
		Host.SetPose(ELodexVRDevice::Hmd, FLodexVRPose{{1.0, 2.0, 3.25}, {0.5, 0.0, 0.0, 0.5}});
		Tick(1019);
		// The tick of frame 1012 is the first in VR mode: the device, the key press waiting at the front whatever its
		// age, the poses. Then C at its press, B at its release, and the display once it has moved.
		EXPECT_EQ(Written(),
			(FLines{" api.CreateInputDevice(\"OpenXR\",\"OpenXR\");",
				"api.KeyPress(new KeyCode[] { KeyCode.A}, 10); // api.GetLastFPS() * 0.166667",
				"api.VRInput(\"\", new Vector3(1.0f, 2.0f, 3.0f), new Quaternion(0.0f, 0.0f, 0.0f, 1.0f), 0); ",
				"api.VRInput(\"Grip\", new Vector3(4.0f,5.0f,6.5f), new Quaternion(0.0f, 0.0f, 0.0f, 1.0f), 1);",
				"api.KeyPress(new KeyCode[] { KeyCode.C}, 0);", "api.KeyPress(new KeyCode[] { KeyCode.B}, 0);",
				"api.VRInput(\"\", new Vector3(1.0f, 2.0f, 3.25f), new Quaternion(0.5f, 0.0f, 0.0f, 0.5f), 0); "}))
			<< "no wait or end of burst in VR mode";
		EXPECT_EQ(Panel.GetRefreshCount(), Refreshes) << "VR mode leaves the output text as it was";
	}

	TEST_F(RecorderTest, InVRModeRIsFiveSoAPressWaitsSixteenFramesAndEachRecordingAnnouncesTheDeviceOnce)
	{
		const std::string Device = " api.CreateInputDevice(\"SteamVR\",\"SteamVR\");";
		const std::string Clicked = "api.Click(MouseButtons.LEFT, new Vector2(10, 10), 6); ";
		StartRecording();
		Click(1000, 10, 10);
		Host.SetVR(true, "SteamVR");
		TickThrough(1021);
		EXPECT_EQ(Written(), FLines{Device});
		TickThrough(1022);
		EXPECT_EQ(Written(), (FLines{Device, Clicked}));
		ASSERT_TRUE(Panel.Stop());
		ASSERT_TRUE(Panel.Record());
		TickThrough(1025);
		EXPECT_EQ(Written(),
			(FLines{Device, Clicked, " api = new velt.unreal_api.ApiClient();", "api.Connect(\"rig-3\");", Device}));
	}
}
