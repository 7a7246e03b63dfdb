// Copyright Lodex contributors.
#include "EvaluatorTestHost.h"

#include "Repl/EvaluatorRunner.h"
#include "LodexDebugger/Core/Evaluation/LodexBlockAccess.h"
#include "LodexDebugger/Core/Evaluation/LodexDebuggerPanel.h"
#include "LodexDebugger/Core/Evaluation/LodexEvaluator.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>

namespace
{
	TEST(EvaluatorBridge, GameRunsAtTheFirstPlayInEditorOrGameWorld)
	{
		struct FRow
		{
			std::vector<std::int32_t> Types;
			bool bRunning;
			int Queries;
		};
		const FRow Rows[] = {
			{{}, false, 0},
			{{2}, false, 1},
			{{2, 4, 5, 6, 7, 0}, false, 6},
			{{3}, true, 1},
			{{1}, true, 1},
			{{2, 3, 1, 2}, true, 2},
			{{2, 9, -1, 3}, true, 4},
		};
		for (const FRow& Row : Rows)
		{
			FTestEvaluatorHost Host;
			Host.WorldTypes = Row.Types;
			EXPECT_EQ(IsLodexGameRunning(Host), Row.bRunning) << ::testing::PrintToString(Row.Types);
			EXPECT_EQ(Host.WorldTypeQueries, Row.Queries) << ::testing::PrintToString(Row.Types);
		}
	}

	TEST(EvaluatorBridge, BlockTextsReadAsTheEngineReadsEightBitTextAndNullAsEmpty)
	{
		const char* Field = nullptr;
		EXPECT_EQ(ReadEvaluatorText(Field), "");
		Field = "T?r";
		EXPECT_EQ(ReadEvaluatorText(Field), "T?r");
		Field = "T\xFCr";
		EXPECT_EQ(ReadEvaluatorText(Field), "T\xEF\xBF\xBCr");
	}

	TEST(EvaluatorSide, TakesARequestOnlyFromAnIdleBlockAndKeepsTheTextsOfTheAnswerBefore)
	{
		FLodexEvaluatorBlock Block{};
		FLodexEvaluatorSide Side(16);
		Side.Attach(Block);
		ASSERT_NE(Block.pathText, nullptr);
		EXPECT_STREQ(Block.contextText, "");
		EXPECT_STREQ(Block.stackText, "");

		FLodexEvaluatorRequest Request;
		EXPECT_FALSE(Side.TakeRequest(Block, Request)) << "no command";
		std::memcpy(Block.pathText, "/a\0", 3);
		Block.command = 5;
		Block.status = 8;
		EXPECT_FALSE(Side.TakeRequest(Block, Request)) << "an answer is not yet consumed";
		EXPECT_EQ(Block.command, 5);
		Block.status = 0;
		ASSERT_TRUE(Side.TakeRequest(Block, Request));
		EXPECT_EQ(Request.Command, 5);
		EXPECT_EQ(Request.Path, "/a");
		EXPECT_EQ(Block.command, 0) << "the evaluator clears the command it takes";

		// A path without NUL within the buffer is cut at the buffer's end.
		std::memset(Block.pathText, 'p', 16);
		Block.command = 1;
		ASSERT_TRUE(Side.TakeRequest(Block, Request));
		EXPECT_EQ(Request.Path, std::string(16, 'p'));

		// The texts of the answer before stay readable while the next is published.
		FLodexEvaluatorAnswer First;
		First.Status = 8;
		First.ContextText = "first context";
		Side.Publish(Block, First);
		const char* const Earlier = Block.contextText;
		Block.status = 0;
		FLodexEvaluatorAnswer Second;
		Second.Status = 8;
		Second.ContextText = "second, and longer, context";
		Side.Publish(Block, Second);
		EXPECT_STREQ(Earlier, "first context");
		EXPECT_STREQ(Block.contextText, "second, and longer, context");

		Block.status = 0;
		FLodexEvaluatorAnswer Faulty;
		Faulty.Status = 8;
		Faulty.NullFields =
			FLodexEvaluatorAnswer::NullContext | FLodexEvaluatorAnswer::NullStack | FLodexEvaluatorAnswer::NullPath;
		Side.Publish(Block, Faulty);
		EXPECT_EQ(Block.contextText, nullptr);
		EXPECT_EQ(Block.stackText, nullptr);
		EXPECT_EQ(Block.pathText, nullptr);
		EXPECT_STREQ(Block.resultText, "");

		// Status 0 publishes no text and no status, but still takes the path buffer away when asked to.
		Side.Attach(Block);
		FLodexEvaluatorAnswer Withdrawn;
		Withdrawn.NullFields = FLodexEvaluatorAnswer::NullPath | FLodexEvaluatorAnswer::NullContext;
		Side.Publish(Block, Withdrawn);
		EXPECT_EQ(Block.pathText, nullptr);
		EXPECT_STREQ(Block.contextText, "");
		EXPECT_EQ(Block.status, 0);
	}

	/** An evaluator for the threaded tests: answers every request with texts made from its path. */
	class FEchoEvaluator final : public ILodexEvaluator
	{
	public:
		/** bAcknowledge: publish Working (2) and wait a little before the answer, as a slow evaluator does. */
		explicit FEchoEvaluator(bool bInAcknowledge)
			: bAcknowledge(bInAcknowledge)
		{
		}

		void Attach(FLodexEvaluatorBlock& Block) override { Side.Attach(Block); }

		std::int32_t Serve(FLodexEvaluatorBlock& Block) override
		{
			FLodexEvaluatorRequest Request;
			if (!Side.TakeRequest(Block, Request))
			{
				return 0;
			}
			if (bAcknowledge)
			{
				FLodexEvaluatorSide::PublishStatus(Block, 2);
				std::this_thread::sleep_for(std::chrono::microseconds(50));
			}
			FLodexEvaluatorAnswer Answer;
			Answer.Status = Request.Command == 1 ? 3 : 8;
			Answer.ResultText = Request.Command == 1 ? Request.Path : "<VELT.Highlight>" + Request.Path + "</>";
			Answer.ContextText = Request.Path + "\r\n" + LodexText::FormatInt(Request.Command);
			Answer.StackText = Request.Path;
			Answer.OperationText = "op " + Request.Path;
			Answer.DurationMs = static_cast<double>(Request.Path.size());
			Side.Publish(Block, Answer);
			return Request.Command;
		}

		std::size_t GetPathCapacity() const override { return Side.GetPathCapacity(); }

	private:
		bool bAcknowledge;
		FLodexEvaluatorSide Side;
	};

	/** Ticks the focused panel until the condition holds; false after ten seconds. */
	bool TickUntil(const std::function<void()>& Tick, const std::function<bool()>& Done)
	{
		const auto Deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
		while (std::chrono::steady_clock::now() < Deadline)
		{
			Tick();
			if (Done())
			{
				return true;
			}
			std::this_thread::yield();
		}
		return false;
	}

	TEST(EvaluatorHandshake, DebuggerStepsAnsweredOnAnotherThreadShowTheirOwnTexts)
	{
		for (const bool bAcknowledge : {false, true})
		{
			FTestEvaluatorHost Host;
			FEchoEvaluator Evaluator(bAcknowledge);
			FLodexEvaluatorRunner Runner(Evaluator, Host.Block);
			FLodexDebuggerPanel Panel(Host);
			std::vector<std::int32_t> Sent;
			for (int Index = 0; Index < 200; ++Index)
			{
				const std::string Path = "/step" + LodexText::FormatInt(Index);
				Panel.OnPathTextChanged(Path);
				const FLodexRequest Request = Index % 3 == 0 ? Panel.OnStepIntoClicked()
					: Index % 3 == 1                         ? Panel.OnStepOverClicked()
															 : Panel.OnRunClicked();
				ASSERT_EQ(Request.Outcome, ELodexRequestOutcome::Sent);
				Sent.push_back(static_cast<std::int32_t>(Request.Command));
				const std::string Code = LodexText::FormatInt(static_cast<std::int32_t>(Request.Command));
				ASSERT_TRUE(TickUntil([&Panel] { Panel.Tick(true); },
					[&Panel, &Path, &Code] {
						return Panel.IsIdle() && Panel.GetContextItems() == std::vector<std::string>{Path, Code};
					}))
					<< "request " << Index;
				if (Request.Command == EEvaluatorCommand::Run)
				{
					EXPECT_EQ(Panel.GetMessageText(), Path + " objects found");
					EXPECT_EQ(Panel.GetContextHeader(), "Context(2)");
				}
				else
				{
					EXPECT_EQ(Panel.GetPathDisplay(), "<VELT.Highlight>" + Path + "</>");
					EXPECT_EQ(Panel.GetOperationText(), "op " + Path);
					EXPECT_EQ(Panel.GetStackItems(), std::vector<std::string>{Path});
					EXPECT_EQ(Panel.GetContextHeader(), "Context (2)");
				}
				EXPECT_EQ(Panel.GetDurationText(), "Duration:" + LodexText::FormatInt(Path.size()) + ".0 (ms)");
			}
			EXPECT_TRUE(Runner.WaitUntilQuiet(std::chrono::seconds(10)));
			EXPECT_EQ(Runner.TakeTakenCommands(), Sent);
			EXPECT_EQ(LodexBlock::LoadStatus(Host.Block), 0);
			EXPECT_EQ(LodexBlock::LoadCommand(Host.Block), 0);
		}
	}
}
