// Copyright Lodex contributors.
#include "LodestringCases.h"
#include "RecorderFixture.h"

#include "LodexDebugger/Core/Text/LodexText.h"

namespace
{
	using EMode = ELodexAddLineMode;

	std::string Joined(const FLines& Lines)
	{
		return LodexText::Join(Lines, "\r\n");
	}

	TEST_F(RecorderTest, RecordWritesTheTwoHeaderLinesAndSwitchesTheButtonToStop)
	{
		EXPECT_EQ(Panel.GetRecordButton().Brush, std::string("Icons.Record"));
		EXPECT_EQ(Panel.GetRecordButton().ToolTip, std::string("Click Record to start capturing input."));
		EXPECT_FALSE(Panel.Stop()) << "Stop while idle does nothing";
		Panel.AddLine("// before", EMode::Append, "");

		ASSERT_TRUE(Panel.Record());
		EXPECT_TRUE(Panel.IsRecording());
		EXPECT_EQ(Panel.GetLines(),
			(FLines{"// before", " api = new velt.unreal_api.ApiClient();", "api.Connect(\"rig-3\");"}));
		EXPECT_EQ(Panel.GetOutputText(), Joined(Panel.GetLines()));
		EXPECT_EQ(Panel.GetRecordButton().Brush, std::string("Icons.Stop"));
		EXPECT_EQ(Panel.GetRecordButton().ToolTip, std::string("Click Stop to stop capturing input."));
		EXPECT_FALSE(Panel.Record()) << "Record while recording does nothing";
		EXPECT_EQ(Panel.GetLines().size(), 3u);

		ASSERT_TRUE(Panel.Stop());
		EXPECT_EQ(Panel.GetRecorder(), nullptr);
		EXPECT_EQ(Panel.GetRecordButton().Brush, std::string("Icons.Record"));
	}

	TEST_F(RecorderTest, OutsideVRModeEveryAddLineRefreshesAndPlaceholdersAreNotKept)
	{
		const std::uint64_t Before = Panel.GetRefreshCount();
		Panel.AddLine("a", EMode::Append, "");
		Panel.AddLine("//put the K event here", EMode::Placeholder, "K");
		Panel.AddLine("k", EMode::KeyLine, "K");
		EXPECT_EQ(Panel.GetLines(), (FLines{"a", "k"}));
		EXPECT_TRUE(Panel.GetPlaceholders().empty());
		EXPECT_EQ(Panel.GetOutputText(), "a\r\nk");
		EXPECT_EQ(Panel.GetRefreshCount(), Before + 3) << "a placeholder still scrolls to the end";
	}

	TEST_F(RecorderTest, InVRModeAFinishedLineGoesBeforeItsPlaceholderAndTheTextWaitsForTheNextRefresh)
	{
		Panel.AddLine("first", EMode::Append, "");
		const std::uint64_t Refreshes = Panel.GetRefreshCount();
		Host.SetVR(true, "OpenXR");
		Panel.AddLine("//Put  A here", EMode::Placeholder, "A"); // enters the map at index 1
		Panel.AddLine("//Put  B here", EMode::Placeholder, "B"); // index 2
		Panel.AddLine("between", EMode::Append, "");
		EXPECT_EQ(Panel.GetPlaceholders(), (std::map<std::string, std::size_t>{{"A", 1}, {"B", 2}}));
		Panel.AddLine("a done", EMode::KeyLine, "A"); // before A's placeholder; B's moves down with it
		Panel.AddLine("b done", EMode::KeyLine, "B");
		EXPECT_EQ(Panel.GetLines(), (FLines{"first", "a done", "//Put  A here", "b done", "//Put  B here", "between"}));
		EXPECT_TRUE(Panel.GetPlaceholders().empty()) << "each key leaves the map once its line is in";
		EXPECT_EQ(Panel.GetRefreshCount(), Refreshes);
		EXPECT_EQ(Panel.GetOutputText(), "first") << "the output text is as the last refresh left it";
		EXPECT_EQ(Panel.GetScriptText(), Joined(Panel.GetLines())) << "the script holds every stored line";

		// A finished line with no placeholder waiting enters as one, and the next goes before it though it is the
		// last line; Reset forgets what waits; a stale index appends.
		Panel.AddLine("c done", EMode::KeyLine, "C");
		Panel.AddLine("c again", EMode::KeyLine, "C");
		Panel.AddLine("e done", EMode::KeyLine, "E");
		EXPECT_EQ(Panel.GetLines(),
			(FLines{"first", "a done", "//Put  A here", "b done", "//Put  B here", "between", "c again", "c done",
				"e done"}));
		Panel.Reset();
		EXPECT_TRUE(Panel.GetPlaceholders().empty());
		Panel.AddLine("//Put  D here", EMode::Placeholder, "D");
		Host.SetVR(false, "");
		Panel.Reset();
		Host.SetVR(true, "OpenXR");
		Panel.AddLine("x", EMode::Append, "");
		Panel.AddLine("d done", EMode::KeyLine, "D");
		EXPECT_EQ(Panel.GetLines(), (FLines{"x", "d done"}));

		Host.SetVR(false, "");
		Panel.AddLine("after", EMode::Append, "");
		EXPECT_EQ(Panel.GetOutputText(), "x\r\nd done\r\nafter") << "the next refresh outside VR mode shows them all";
	}

	TEST_F(RecorderTest, ResetClearsTheScriptAndTheOutputTextWhileRecordingGoesOn)
	{
		StartRecording();
		Click(1000, 10, 10);
		Panel.Reset();
		EXPECT_TRUE(Panel.GetLines().empty());
		EXPECT_EQ(Panel.GetOutputText(), "");
		EXPECT_TRUE(Panel.IsRecording());
		TickThrough(1100);
		EXPECT_EQ(Panel.GetLines(),
			(FLines{"api.Click(MouseButtons.LEFT, new Vector2(10, 10), 6); ", "api.WaitForEmptyInput();"}));
		EXPECT_EQ(Panel.GetOutputText(), Joined(Panel.GetLines()));
	}

	class RecorderQuickInsertTest : public RecorderTest
	{
	protected:
		void SetUp() override
		{
			std::string Error;
			ASSERT_TRUE(FSceneSnapshot::Parse(LodestringCases::Scene, "scene", Scene, Error)) << Error;
		}
		void Select(const char* Id)
		{
			std::string Error;
			Host.SetSelection(Scene.FindObject(Id, Error), &Scene);
		}
		FSceneSnapshot Scene;
	};

	TEST_F(RecorderQuickInsertTest, TheFiveButtonsWriteTheirLinesWithTheSelectedObjectsLodeString)
	{
		EXPECT_EQ(FLodexRecorderPanel::GetPathModes(), (FLines{"Relative", "Absolute"}));
		EXPECT_EQ(Panel.GetPathMode(), "Relative") << "the combo box starts on its first entry";

		Host.SetLevelPath("/Game/Maps/Village");
		Select("hinge");
		EXPECT_TRUE(Panel.InsertQuickLine(ELodexQuickInsert::LoadScene));
		EXPECT_TRUE(Panel.InsertQuickLine(ELodexQuickInsert::ClickObject));
		Panel.SetPathMode("Absolute");
		EXPECT_TRUE(Panel.InsertQuickLine(ELodexQuickInsert::GetObjectPosition));
		Select("door");
		EXPECT_TRUE(Panel.InsertQuickLine(ELodexQuickInsert::SetObjectPosition));
		Select("gate");
		EXPECT_TRUE(Panel.InsertQuickLine(ELodexQuickInsert::WaitForObject));
		EXPECT_EQ(Panel.GetLines(),
			(FLines{"api.LoadLevel(\"/Game/Maps/Village\"); ",
				"api.ClickObject(MouseButtons.LEFT, \"//Door/fn:component('Hinge')\", 10); ",
				"Vector3 spot = api.GetObjectPosition(\"/*[@name = 'House']/*[@name = "
				"'Door']/fn:component('Hinge')\"); ",
				"api.CallMethod(\"/*[@name = 'House']/*[@name = 'Door']\", \"K2_SetActorLocation\", new object[] {new "
				"Vector3(0, 0, 0)});",
				"api.WaitForObject(\"/*[@name = 'Tür_用户_2']\");"}));
	}

	TEST_F(RecorderQuickInsertTest, WithoutASelectionOrALevelTheButtonsWriteNothing)
	{
		Host.SetSelection(FLodexObject(), nullptr);
		for (const FLodexQuickInsertInfo& Info : FLodexRecorderPanel::GetQuickInserts())
		{
			EXPECT_FALSE(Panel.InsertQuickLine(Info.Button)) << Info.Label;
		}
		EXPECT_TRUE(Panel.GetLines().empty());
		// An object for which no step applies gives the empty Lode String, used as it stands.
		Select("fog");
		Panel.SetPathMode("Absolute");
		EXPECT_TRUE(Panel.InsertQuickLine(ELodexQuickInsert::WaitForObject));
		EXPECT_EQ(Panel.GetLines(), FLines{"api.WaitForObject(\"\");"});
	}

	TEST(RecorderPanel, DownloadSplitsTheShownTextWhereTheTextAreaDoesAndJoinsItsLinesWithCrLf)
	{
		const struct
		{
			const char* Shown;
			const char* Saved;
		} Rows[] = {
			{"a\nb", "a\r\nb"}, // the area's line end on Linux and macOS
			{"a\r\nb", "a\r\nb"}, // on Windows
			{"a\rb", "a\r\nb"},
			{"a\n\rb", "a\r\n\r\nb"}, // LF then CR: two breaks, an empty line between
			{"a\n\nb\n", "a\r\n\r\nb\r\n"}, // empty lines and the empty last line kept
			{"\r\n\r\n", "\r\n\r\n"},
			{"", ""},
			{"x\vy\fz", "x\r\ny\r\nz"},
			{"T\xC3\xBCr\xC2\x85\xE7\x94\xA8\xE6\x88\xB7\xE2\x80\xA8"
			 "e\xE2\x80\xA9"
			 "f",
				"T\xC3\xBCr\r\n\xE7\x94\xA8\xE6\x88\xB7\r\ne\r\nf"}, // NEL, LS, PS; no other character split
			{"\xE2\x80\xA7\xC2\x84\xC2", "\xE2\x80\xA7\xC2\x84\xC2"}, // neighbours of LS and NEL, a cut sequence
			{"api.Wait(10); \t", "api.Wait(10); \t"},
		};
		for (const auto& Row : Rows)
		{
			EXPECT_EQ(FLodexRecorderPanel::MakeDownloadText(Row.Shown), Row.Saved) << Row.Shown;
		}
	}
}
