// Copyright Lodex contributors.
#include "EvaluatorTestHost.h"

#include "LodexDebugger/Core/Evaluation/LodexReplPanel.h"

#include <gtest/gtest.h>

namespace
{
	/** A REPL with a known, non-initial past: a failure shown, a request pending, the panel busy. */
	struct FReplFixture
	{
		FReplFixture()
		{
			Host.Publish(9, "earlier failure");
			Panel.PollEvaluator();
			Host.Publish(2, "");
			Panel.PollEvaluator();
			Host.Block.command = 1;
		}
		FTestEvaluatorHost Host;
		FLodexReplPanel Panel{Host};
	};

	TEST(ReplPanelPoll, EveryStatusAsTheTableSays)
	{
		struct FRow
		{
			std::int32_t Status;
			const char* Result;
			bool bReady;
			bool bError;
			FLodexColor Color;
			/** Colour changes by the poll itself. */
			int ColorChanges;
			const char* Count;
			std::int32_t StatusAfter;
			std::int32_t CommandAfter;
		};
		const FLodexColor Error = LodexReplColors::Error;
		const FRow Rows[] = {
			{0, "", true, true, Error, 0, "0", 0, 1},
			{1, "", false, true, Error, 0, "0", 1, 0},
			{2, "", false, true, Error, 0, "0", 2, 0},
			{3, "1", false, false, LodexReplColors::Cleared, 1, "1", 0, 0},
			{3, "2", false, false, LodexReplColors::Several, 2, "2", 0, 0},
			{3, "abc", false, false, LodexReplColors::Cleared, 1, "0", 0, 0},
			{3, "12 apples", false, false, LodexReplColors::Several, 2, "12", 0, 0},
			{3, "  -4", false, false, LodexReplColors::Cleared, 1, "-4", 0, 0},
			{5, "", false, false, LodexReplColors::Neutral, 1, "0", 0, 0},
			{5, "0", false, true, LodexReplColors::Message, 1, "0", 0, 0},
			{5, "1 object left", false, true, LodexReplColors::Message, 1, "1", 0, 0},
			{5, "3 objects left", false, true, LodexReplColors::Several, 2, "3", 0, 0},
			{8, "<VELT.Highlight>/a</>/b", false, false, Error, 0, "0", 0, 0},
			{8, "7", false, false, Error, 0, "7", 0, 0},
			{9, "broken", false, true, Error, 1, "0", 0, 0},
			{4, "5", false, true, Error, 0, "0", 4, 1},
		};
		for (const FRow& Row : Rows)
		{
			FReplFixture Fixture;
			const int ChangesBefore = Fixture.Panel.GetStateColorChanges();
			Fixture.Host.Publish(Row.Status, Row.Result);
			EXPECT_EQ(Fixture.Panel.PollEvaluator(), Row.Status);
			const std::string Where = "status " + std::to_string(Row.Status) + ", result '" + Row.Result + "'";
			EXPECT_EQ(Fixture.Panel.IsReady(), Row.bReady) << Where;
			EXPECT_EQ(Fixture.Panel.HasError(), Row.bError) << Where;
			EXPECT_EQ(Fixture.Panel.GetStateColor(), Row.Color) << Where;
			EXPECT_EQ(Fixture.Panel.GetStateColorChanges() - ChangesBefore, Row.ColorChanges) << Where;
			EXPECT_EQ(Fixture.Panel.GetCountText(), Row.Count) << Where;
			EXPECT_EQ(Fixture.Host.Block.status, Row.StatusAfter) << Where;
			EXPECT_EQ(Fixture.Host.Block.command, Row.CommandAfter) << Where;
		}
	}

	TEST(ReplPanelPoll, OnlyAFocusedPanelPollsAndAWaitingResultShowsOnFocus)
	{
		FTestEvaluatorHost Host;
		FLodexReplPanel Panel(Host);
		Host.Publish(3, "2");
		EXPECT_FALSE(Panel.Tick(false));
		EXPECT_EQ(Host.Block.status, 3) << "an unfocused panel leaves the result in the block";
		EXPECT_EQ(Panel.GetCountText(), "");
		EXPECT_TRUE(Panel.Tick(true));
		EXPECT_EQ(Panel.GetCountText(), "2");
		EXPECT_EQ(Host.Block.status, 0);
	}

	TEST(ReplPanelPoll, NullTextFieldsReadAsEmpty)
	{
		FTestEvaluatorHost Host;
		FLodexReplPanel Panel(Host);
		for (const std::int32_t Status : {3, 5, 8})
		{
			Host.Block.resultText = nullptr;
			Host.Block.contextText = nullptr;
			Host.Block.stackText = nullptr;
			Host.Block.status = Status;
			Panel.PollEvaluator();
			EXPECT_EQ(Panel.GetCountText(), "0") << Status;
			EXPECT_EQ(Host.Block.status, 0);
		}
		EXPECT_FALSE(Panel.HasError()) << "a null message is an empty one";
	}

	TEST(ReplPanelCommit, CommitAndRunSendRunWithTheConvertedPathWhateverThePendingStateAndOnlyRunMarksBusy)
	{
		FTestEvaluatorHost Host;
		FLodexReplPanel Panel(Host);
		Host.Block.status = 8;
		Host.Block.command = 4;
		const FLodexRequest Request = Panel.OnPathTextCommitted("/*[@name = 'T\xC3\xBCr']");
		EXPECT_EQ(Request.Outcome, ELodexRequestOutcome::Sent);
		EXPECT_EQ(Host.WrittenPath(), "/*[@name = 'T?r']");
		EXPECT_EQ(Host.LoadedModules, std::vector<std::string>{"UnrealCLR"});
		EXPECT_EQ(Host.Block.command, 1) << "the REPL overwrites a pending request";
		EXPECT_EQ(Host.Block.status, 8) << "and does not touch the status";
		EXPECT_TRUE(Panel.IsReady()) << "a commit does not mark the panel busy";
		EXPECT_EQ(Panel.GetPathText(), "/*[@name = 'T\xC3\xBCr']");

		// The same path again by the Run button: a second Run, over whatever the block holds by then, and the panel
		// busy until a focused tick sees the block idle (an evaluator that never answers).
		Host.Block.command = 99;
		Host.Block.status = 0;
		const FLodexRequest Again = Panel.Run();
		EXPECT_EQ(Again.Outcome, ELodexRequestOutcome::Sent);
		EXPECT_EQ(Again.Command, EEvaluatorCommand::Run);
		EXPECT_EQ(Host.Block.command, 1);
		EXPECT_EQ(Host.LoadedModules.size(), 2u);
		EXPECT_FALSE(Panel.IsReady());
		Panel.Tick(true);
		EXPECT_TRUE(Panel.IsReady());
	}

	TEST(ReplPanelCommit, EmptyPathClearsWithoutTouchingTheBlock)
	{
		FReplFixture Fixture;
		const FLodexRequest Request = Fixture.Panel.OnPathTextCommitted("");
		EXPECT_EQ(Request.Outcome, ELodexRequestOutcome::EmptyPath);
		EXPECT_FALSE(Fixture.Panel.HasError());
		EXPECT_EQ(Fixture.Panel.GetStateColor(), LodexReplColors::Neutral);
		EXPECT_EQ(Fixture.Panel.GetCountText(), "");
		EXPECT_EQ(Fixture.Host.Block.command, 1);
		EXPECT_TRUE(Fixture.Host.LoadedModules.empty());
		EXPECT_EQ(Fixture.Host.WrittenPath(), std::string(FTestEvaluatorHost::BufferSize - 1, 'x'));
	}

	TEST(ReplPanelCommit, WithoutAPathBufferOrTheGameNothingIsSentAndTheStateShowsWhy)
	{
		FTestEvaluatorHost Host;
		FLodexReplPanel Panel(Host);
		Host.Block.pathText = nullptr;
		EXPECT_EQ(Panel.OnPathTextCommitted("/a").Outcome, ELodexRequestOutcome::EvaluatorUnavailable);
		EXPECT_EQ(Panel.Run().Outcome, ELodexRequestOutcome::EvaluatorUnavailable);
		EXPECT_EQ(Host.Block.command, 0);
		EXPECT_TRUE(Panel.HasError());
		EXPECT_EQ(Panel.GetStateColor(), LodexReplColors::Error);
		EXPECT_EQ(Panel.GetCountText(), "n/a");
		EXPECT_TRUE(Panel.IsReady()) << "nothing was sent, so the panel is not waiting";

		// Without the game, the state alone records it, silently.
		Host.Publish(3, "5");
		Panel.PollEvaluator();
		Host.StopGame();
		const int Changes = Panel.GetStateColorChanges();
		const std::size_t Loads = Host.LoadedModules.size();
		EXPECT_EQ(Panel.OnPathTextCommitted("/a").Outcome, ELodexRequestOutcome::GameNotRunning);
		EXPECT_TRUE(Panel.HasError());
		EXPECT_EQ(Panel.GetStateColor(), LodexReplColors::Error);
		EXPECT_EQ(Panel.GetStateColorChanges(), Changes + 1);
		EXPECT_EQ(Panel.GetCountText(), "5") << "the count keeps its previous value";
		EXPECT_EQ(Host.Block.command, 0);
		EXPECT_EQ(Host.LoadedModules.size(), Loads);
	}
}
