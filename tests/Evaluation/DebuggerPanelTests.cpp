// Copyright Lodex contributors.
#include "EvaluatorTestHost.h"

#include "LodexDebugger/Core/Evaluation/LodexDebuggerPanel.h"

#include <gtest/gtest.h>

#include <sstream>

namespace
{
	/** Everything the panel shows and keeps, one field a line. */
	std::string RenderDebugger(const FLodexDebuggerPanel& Panel)
	{
		std::ostringstream Out;
		Out << "path display: " << Panel.GetPathDisplay() << "\n"
			<< "message: " << Panel.GetMessageText() << "\n"
			<< "operation: " << Panel.GetOperationText() << "\n"
			<< "node type: " << Panel.GetNodeTypeText() << "\n"
			<< Panel.GetStackHeader() << ":";
		for (const std::string& Item : Panel.GetStackItems())
		{
			Out << " [" << Item << "]";
		}
		Out << "\n" << Panel.GetContextHeader() << ":";
		for (const std::string& Item : Panel.GetContextItems())
		{
			Out << " [" << Item << "]";
		}
		Out << "\n"
			<< Panel.GetDurationText() << "\n"
			<< "error " << Panel.HasError() << ", idle " << Panel.IsIdle() << ", colour " << Panel.GetStateColor()
			<< "\n";
		return Out.str();
	}

	/**
	 * A debugger with a known past: the path /a/b loaded and stepped once, then a failure shown, then
	 * Step Into pressed (the panel busy, Step Into pending).
	 */
	struct FDebuggerFixture
	{
		FDebuggerFixture()
		{
			Panel.OnPathTextCommitted("/a/b");
			Host.Publish(8, "<VELT.Highlight>/a</>/b", "c1", "s1\r\ns2", "op", "nt", 1.5);
			Panel.PollEvaluator();
			Host.Publish(9, "bad", "/a<VELT.Highlight>/b</>");
			Panel.PollEvaluator();
			Panel.OnStepIntoClicked();
		}
		FTestEvaluatorHost Host;
		FLodexDebuggerPanel Panel{Host};
	};

	const char* const FixtureView = "path display: /a<VELT.Highlight>/b</>\n"
									"message: \n"
									"operation: op\n"
									"node type: nt\n"
									"Stack (2): [s1] [s2]\n"
									"Context (1): [c1]\n"
									"Duration:1.5 (ms)\n"
									"error 1, idle 0, colour (1, 0, 0, 1)\n";

	TEST(DebuggerPanelPoll, EveryStatusAsTheTableSays)
	{
		struct FRow
		{
			std::int32_t Status;
			const char* Result;
			const char* Context;
			const char* Stack;
			double DurationMs;
			const char* View;
			std::int32_t StatusAfter;
			std::int32_t CommandAfter;
		};
		// Working and Received: the lists emptied, their headers kept.
		const char* const BusyView =
			"path display: /a<VELT.Highlight>/b</>\nmessage: \noperation: op\nnode type: nt\n"
			"Stack (2):\nContext (1):\nDuration:1.5 (ms)\nerror 1, idle 0, colour (1, 0, 0, 1)\n";
		const FRow Rows[] = {
			{0, "", "", "", 0.0,
				"path display: /a<VELT.Highlight>/b</>\nmessage: \noperation: op\nnode type: nt\n"
				"Stack (2): [s1] [s2]\nContext (1): [c1]\nDuration:1.5 (ms)\nerror 1, idle 1, colour (1, 0, 0, 1)\n",
				0, 5},
			{1, "", "", "", 0.0, BusyView, 1, 0},
			{2, "", "", "", 0.0, BusyView, 2, 0},
			// A Run finding nothing: "Context(0)" without a blank, as after every Run.
			{3, "0", "", "s9", 12.0,
				"path display: /a/b\nmessage: 0 objects found\noperation: \nnode type: \n"
				"Stack:\nContext(0):\nDuration:12.0 (ms)\nerror 0, idle 0, colour (1, 1, 1, 1)\n",
				0, 0},
			// A line, an empty line, a line and a trailing separator: two items.
			{3, "2", "A\r\n\r\nB\r\n", "", 0.25,
				"path display: /a/b\nmessage: 2 objects found\noperation: \nnode type: \n"
				"Stack:\nContext(2): [A] [B]\nDuration:0.25 (ms)\nerror 0, idle 0, colour (1, 1, 1, 1)\n",
				0, 0},
			// The end of a step-by-step evaluation: the lists and the duration stay.
			{5, "", "ignored", "ignored", 99.0,
				"path display: /a/b\nmessage: \noperation: \nnode type: \n"
				"Stack (2): [s1] [s2]\nContext (1): [c1]\nDuration:1.5 (ms)\nerror 0, idle 0, colour (1, 1, 1, 1)\n",
				0, 0},
			{5, "stopped at a limit", "", "", 0.0,
				"path display: /a/b\nmessage: stopped at a limit\noperation: \nnode type: \n"
				"Stack (2): [s1] [s2]\nContext (1): [c1]\nDuration:1.5 (ms)\nerror 1, idle 0, colour (1, 0, 0, 1)\n",
				0, 0},
			// A step with an empty stack: "Stack (0)".
			{8, "/a<VELT.Highlight>/b</>", "x\r\ny", "", 3.0,
				"path display: /a<VELT.Highlight>/b</>\nmessage: \noperation: OP\nnode type: NT\n"
				"Stack (0):\nContext (2): [x] [y]\nDuration:3.0 (ms)\nerror 0, idle 0, colour (1, 0, 0, 1)\n",
				0, 0},
			{9, "no such attribute", "<VELT.Highlight>/a</>/b", "", 0.0,
				"path display: <VELT.Highlight>/a</>/b\nmessage: no such attribute\noperation: op\nnode type: nt\n"
				"Stack (2): [s1] [s2]\nContext (1): [c1]\nDuration:1.5 (ms)\nerror 1, idle 0, colour (1, 0, 0, 1)\n",
				0, 0},
			{4, "x", "x", "x", 7.0, FixtureView, 4, 5},
		};
		for (const FRow& Row : Rows)
		{
			FDebuggerFixture Fixture;
			Fixture.Host.Publish(Row.Status, Row.Result, Row.Context, Row.Stack, "OP", "NT", Row.DurationMs);
			EXPECT_EQ(Fixture.Panel.PollEvaluator(), Row.Status);
			EXPECT_EQ(RenderDebugger(Fixture.Panel), Row.View) << "status " << Row.Status;
			EXPECT_EQ(Fixture.Host.Block.status, Row.StatusAfter) << "status " << Row.Status;
			EXPECT_EQ(Fixture.Host.Block.command, Row.CommandAfter) << "status " << Row.Status;
		}
	}

	TEST(DebuggerPanelPoll, ListsAreRefreshedOncePerRebuildAndNotOnIdleTicks)
	{
		FDebuggerFixture Fixture;
		const std::uint64_t Stack = Fixture.Panel.GetStackItemsRevision();
		const std::uint64_t Context = Fixture.Panel.GetContextItemsRevision();
		const std::uint64_t Texts = Fixture.Panel.GetTextsRevision();
		Fixture.Host.Publish(0, "");
		for (int Tick = 0; Tick < 10; ++Tick)
		{
			Fixture.Panel.Tick(true);
		}
		EXPECT_EQ(Fixture.Panel.GetStackItemsRevision(), Stack);
		EXPECT_EQ(Fixture.Panel.GetContextItemsRevision(), Context);
		EXPECT_EQ(Fixture.Panel.GetTextsRevision(), Texts);
		Fixture.Host.Publish(8, "", "c", "s");
		Fixture.Panel.PollEvaluator();
		EXPECT_EQ(Fixture.Panel.GetStackItemsRevision(), Stack + 1);
		EXPECT_EQ(Fixture.Panel.GetContextItemsRevision(), Context + 1);
	}

	TEST(DebuggerPanelPoll, NullTextFieldsReadAsEmpty)
	{
		FTestEvaluatorHost Host;
		FLodexDebuggerPanel Panel(Host);
		Host.Block.resultText = nullptr;
		Host.Block.contextText = nullptr;
		Host.Block.stackText = nullptr;
		Host.Block.operationText = nullptr;
		Host.Block.nodeTypeText = nullptr;
		for (const std::int32_t Status : {8, 3, 9, 5, 1, 0})
		{
			Host.Block.status = Status;
			Panel.PollEvaluator();
		}
		EXPECT_EQ(RenderDebugger(Panel),
			"path display: \nmessage: \noperation: \nnode type: \nStack:\nContext(0):\nDuration:0.0 (ms)\n"
			"error 0, idle 1, colour (1, 1, 1, 1)\n");
	}

	TEST(DebuggerPanelPoll, AStatusThatNeverComesBackKeepsTheButtonsDisabled)
	{
		FTestEvaluatorHost Host;
		FLodexDebuggerPanel Panel(Host);
		Panel.OnPathTextChanged("/a");
		Panel.OnRunClicked();
		EXPECT_FALSE(Panel.AreButtonsEnabled());
		Host.Block.status = 2;
		for (int Tick = 0; Tick < 1000; ++Tick)
		{
			Panel.Tick(true);
		}
		EXPECT_FALSE(Panel.AreButtonsEnabled());
		EXPECT_EQ(Host.Block.command, 0);
		Host.Block.status = 0;
		Panel.Tick(false);
		EXPECT_FALSE(Panel.AreButtonsEnabled()) << "only a focused tick sees the idle status";
		Panel.Tick(true);
		EXPECT_TRUE(Panel.AreButtonsEnabled());
	}

	TEST(DebuggerPanelCommit, WhileAResultWaitsNothingIsSentAndNothingChangesThenAnIdleBlockLoads)
	{
		FDebuggerFixture Fixture;
		Fixture.Host.Publish(8, "/x", "c", "s");
		const std::size_t Loads = Fixture.Host.LoadedModules.size();
		const FLodexRequest Pending = Fixture.Panel.OnPathTextCommitted("/other");
		EXPECT_EQ(Pending.Outcome, ELodexRequestOutcome::ResultPending);
		EXPECT_EQ(Pending.PendingStatus, 8);
		EXPECT_EQ(RenderDebugger(Fixture.Panel), FixtureView);
		EXPECT_EQ(Fixture.Host.Block.command, 5);
		EXPECT_EQ(Fixture.Host.Block.status, 8);
		EXPECT_EQ(Fixture.Host.WrittenPath(), "/a/b");
		EXPECT_EQ(Fixture.Host.LoadedModules.size(), Loads);
		EXPECT_EQ(Fixture.Panel.GetPathText(), "/other") << "the box's text is kept all the same";

		Fixture.Host.Block.status = 0;
		Fixture.Host.Block.command = 0;
		const FLodexRequest Request = Fixture.Panel.OnPathTextCommitted("/T\xC3\xBCr/\xF0\x9F\x98\x80");
		EXPECT_EQ(Request.Outcome, ELodexRequestOutcome::Sent);
		EXPECT_EQ(Request.Command, EEvaluatorCommand::Load);
		EXPECT_EQ(Fixture.Host.Block.command, 4);
		EXPECT_EQ(Fixture.Host.WrittenPath(), "/T?r/??");
		EXPECT_TRUE(Fixture.Panel.GetStackItems().empty());
		EXPECT_TRUE(Fixture.Panel.GetContextItems().empty());
		EXPECT_FALSE(Fixture.Panel.IsIdle()) << "a commit leaves IsIdle as it was";
	}

	TEST(DebuggerPanelButtons, EachButtonWritesThePathThenItsCodeOrSaysWhyItCannot)
	{
		struct FRow
		{
			FLodexRequest (FLodexDebuggerPanel::*Click)();
			std::int32_t Command;
			const char* Message;
			/** Run leaves the error icon as it is when the game is not running. */
			bool bErrorWithoutTheGame;
		};
		const FRow Rows[] = {
			{&FLodexDebuggerPanel::OnRunClicked, 1, "kept", false},
			{&FLodexDebuggerPanel::OnStepIntoClicked, 5, "", true},
			{&FLodexDebuggerPanel::OnStepOverClicked, 6, "", true},
		};
		for (const FRow& Row : Rows)
		{
			const std::string Where = "command " + std::to_string(Row.Command);
			FTestEvaluatorHost Host;
			FLodexDebuggerPanel Panel(Host);
			Host.Publish(5, "kept");
			Panel.PollEvaluator();
			Panel.OnPathTextChanged("/typed");
			Host.Block.status = 8;
			Host.Block.command = 4;
			const FLodexRequest Request = (Panel.*Row.Click)();
			EXPECT_EQ(Request.Outcome, ELodexRequestOutcome::Sent);
			EXPECT_EQ(Host.Block.command, Row.Command) << "buttons overwrite whatever the block holds";
			EXPECT_EQ(Host.WrittenPath(), "/typed");
			EXPECT_EQ(Host.LoadedModules, std::vector<std::string>{"UnrealCLR"});
			EXPECT_FALSE(Panel.IsIdle());
			EXPECT_EQ(Panel.GetMessageText(), Row.Message) << Where;

			FTestEvaluatorHost Stopped;
			FLodexDebuggerPanel StoppedPanel(Stopped);
			Stopped.Publish(8, "<VELT.Highlight>/a</>");
			StoppedPanel.PollEvaluator();
			Stopped.StopGame();
			EXPECT_EQ((StoppedPanel.*Row.Click)().Outcome, ELodexRequestOutcome::GameNotRunning);
			EXPECT_EQ(StoppedPanel.HasError(), Row.bErrorWithoutTheGame) << Where;
			EXPECT_EQ(StoppedPanel.GetStateColor(), LodexDebuggerColors::Error);
			EXPECT_EQ(StoppedPanel.GetMessageText(), "Start the game in the editor to run Lodex");
			EXPECT_EQ(StoppedPanel.GetPathDisplay(), "");
			EXPECT_TRUE(StoppedPanel.IsIdle());
			EXPECT_EQ(Stopped.Block.command, 0);
			EXPECT_TRUE(Stopped.LoadedModules.empty());

			FTestEvaluatorHost Unavailable;
			FLodexDebuggerPanel UnavailablePanel(Unavailable);
			UnavailablePanel.OnPathTextChanged("/a");
			Unavailable.Block.pathText = nullptr;
			EXPECT_EQ((UnavailablePanel.*Row.Click)().Outcome, ELodexRequestOutcome::EvaluatorUnavailable) << Where;
			EXPECT_EQ(Unavailable.Block.command, 0);
			EXPECT_EQ(RenderDebugger(UnavailablePanel),
				"path display: \nmessage: The Lodex evaluator is not available\noperation: \nnode type: \n"
				"Stack:\nContext:\n...\nerror 1, idle 1, colour (1, 0, 0, 1)\n")
				<< "nothing was sent, so nothing is awaited";
		}
	}

	TEST(DebuggerPanelCommit, WithoutTheGameNothingIsSent)
	{
		FTestEvaluatorHost Host;
		FLodexDebuggerPanel Panel(Host);
		Host.StopGame();
		EXPECT_EQ(Panel.OnPathTextCommitted("/a").Outcome, ELodexRequestOutcome::GameNotRunning);
		EXPECT_EQ(RenderDebugger(Panel),
			"path display: \nmessage: Start the game in the editor to run Lodex\noperation: \nnode type: \n"
			"Stack:\nContext:\n...\nerror 1, idle 1, colour (1, 0, 0, 1)\n");
	}

	TEST(DebuggerPanelButtons, ResetAndAnEmptyCommitAreLocalAndEmptyTheBoxAndPathText)
	{
		for (const bool bCommit : {true, false})
		{
			FDebuggerFixture Fixture;
			Fixture.Host.Publish(8, "/x", "c", "s");
			const std::uint64_t Clears = Fixture.Panel.GetPathBoxClears();
			const std::size_t Loads = Fixture.Host.LoadedModules.size();
			if (bCommit)
			{
				EXPECT_EQ(Fixture.Panel.OnPathTextCommitted("").Outcome, ELodexRequestOutcome::EmptyPath);
			}
			else
			{
				Fixture.Panel.OnResetClicked();
			}
			EXPECT_EQ(RenderDebugger(Fixture.Panel),
				"path display: \nmessage: \noperation: \nnode type: \nStack:\nContext:\nDuration:1.5 (ms)\n"
				"error 1, idle 0, colour (1, 1, 1, 1)\n")
				<< "commit " << bCommit;
			EXPECT_EQ(Fixture.Panel.GetPathText(), "");
			EXPECT_EQ(Fixture.Panel.GetPathBoxClears(), Clears + 1);
			EXPECT_EQ(Fixture.Host.Block.status, 8) << "a waiting result is not cancelled";
			EXPECT_EQ(Fixture.Host.Block.command, 5);
			EXPECT_EQ(Fixture.Host.LoadedModules.size(), Loads);
			// The waiting step result is still shown at the next focused tick.
			Fixture.Panel.Tick(true);
			EXPECT_EQ(Fixture.Panel.GetPathDisplay(), "/x");
			EXPECT_EQ(Fixture.Panel.GetStackHeader(), "Stack (1)");
		}
	}

	TEST(DebuggerPanelHighlight, FirstHighlightedSegment)
	{
		struct FRow
		{
			const char* MarkedUp;
			const char* Expected;
		};
		const FRow Rows[] = {
			{"/a<VELT.Highlight>/b</>/c", "<VELT.Highlight>/b</>"},
			{"<velt.HIGHLIGHT>/a</>", "<velt.HIGHLIGHT>/a</>"},
			{"<VELT.Highlight>/a</>/b<VELT.Highlight>/c</>", "<VELT.Highlight>/a</>"},
			{"<VELT.Highlight></>", "<VELT.Highlight></>"},
			{"/a/b", ""},
			{"", ""},
			{"<VELT.Highlight>/a never closed", ""},
			{"/a</>/b<VELT.Highlight>/c</>", ""},
			{"<VELT.Bold>/a</>", ""},
		};
		for (const FRow& Row : Rows)
		{
			EXPECT_EQ(FLodexDebuggerPanel::ExtractHighlight(Row.MarkedUp), Row.Expected) << Row.MarkedUp;
		}
	}
}
