// Copyright Lodex contributors.
#include "RecorderFixture.h"

namespace
{
	using EMode = ELodexAddLineMode;

	TEST_F(RecorderTest, InVRModeAKeyLineGoesBeforeItsPlaceholderEvenWhenThePlaceholderIsTheLastLine)
	{
		Host.SetVR(true, "OpenXR");
		Panel.AddLine("//put the K event here", EMode::Placeholder, "K"); // the only line
		Panel.AddLine("k", EMode::KeyLine, "K");
		EXPECT_EQ(Panel.GetLines(), (FLines{"k", "//put the K event here"}));
		Panel.AddLine("//Put  A here", EMode::Placeholder, "A"); // the last line
		Panel.AddLine("a", EMode::KeyLine, "A");
		EXPECT_EQ(Panel.GetLines(), (FLines{"k", "//put the K event here", "a", "//Put  A here"}));
		EXPECT_TRUE(Panel.GetPlaceholders().empty());
	}

	// The wait is the gap in frames times the frame time, multiplied in 32-bit floats as the engine does, then in
	// milliseconds, truncated. At 80 and at 20 frames a second the double product would be a millisecond off.
	TEST_F(RecorderTest, TheWaitIsTheFloatProductOfTheGapAndTheFrameTimeInMillisecondsTruncated)
	{
		const struct
		{
			float FrameSeconds;
			std::uint32_t Gap;
			const char* Wait;
		} Rows[] = {
			{0.0125f, 14, "api.Wait(174); "}, // a double product gives 175.0000026
			{0.05f, 7, "api.Wait(349); "}, // a double product gives 350.0000052
		};
		for (const auto& Row : Rows)
		{
			Host.SetDeltaSeconds(Row.FrameSeconds);
			LastTicked = 1000;
			Host.SetFrame(1000);
			StartRecording();
			Click(1000, 10, 10);
			Click(1000 + Row.Gap, 200, 200);
			TickThrough(1300);
			EXPECT_EQ(Written(),
				(FLines{"api.Click(MouseButtons.LEFT, new Vector2(10, 10), 6); ", Row.Wait,
					"api.Click(MouseButtons.LEFT, new Vector2(200, 200), 6); ", "api.WaitForEmptyInput();"}))
				<< Row.FrameSeconds;
			ASSERT_TRUE(Panel.Stop());
			Panel.Reset();
		}
	}
}
