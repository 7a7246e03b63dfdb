// Copyright Lodex contributors.
#include "Evaluation/EvaluationFixture.h"

#include "LodexDebugger/Core/Evaluation/LodexBlockAccess.h"
#include "LodexDebugger/Core/Evaluation/LodexBlockEvaluator.h"
#include "LodexDebugger/Core/Evaluation/LodexEvaluatorBridge.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <memory>
#include <string>
#include <thread>

namespace
{
	/** What a panel does with the block: write the path and the request, read a result and give it back. */
	struct FPanelSide
	{
		struct FResult
		{
			int Status = 0;
			std::string Context;
			std::string Result;
			std::string Operation;
			std::string NodeType;
			std::string Stack;
			double DurationMs = -1.0;
		};

		void Request(const std::string& Path, EEvaluatorCommand Command)
		{
			std::memcpy(LodexBlock::LoadPointer(Block.pathText), Path.c_str(), Path.size() + 1);
			LodexBlock::StoreCommand(Block, static_cast<std::int32_t>(Command));
		}

		int Status() const { return LodexBlock::LoadStatus(Block); }
		int Command() const { return LodexBlock::LoadCommand(Block); }

		/** Reads every field (the status first, with acquire), then writes 0 to status and command. */
		FResult Consume()
		{
			const FResult Result{Status(), ReadEvaluatorText(Block.contextText), ReadEvaluatorText(Block.resultText),
				ReadEvaluatorText(Block.operationText), ReadEvaluatorText(Block.nodeTypeText),
				ReadEvaluatorText(Block.stackText), LodexBlock::LoadDouble(Block.durationMs)};
			LodexBlock::StoreStatus(Block, 0);
			LodexBlock::StoreCommand(Block, 0);
			return Result;
		}

		FLodexEvaluatorBlock& Block;
	};

	class LodexBlockEvaluator : public ::testing::Test
	{
	protected:
		void SetUp() override { Start(FLodexBlockEvaluatorOptions()); }

		void Start(const FLodexBlockEvaluatorOptions& Options)
		{
			Block = FLodexEvaluatorBlock();
			Evaluator = std::make_unique<FLodexBlockEvaluator>(*Cases.Index, Options);
			Evaluator->Attach(Block);
		}

		/** A request answered on this thread. */
		FPanelSide::FResult Answer(const std::string& Path, EEvaluatorCommand Command)
		{
			Panel.Request(Path, Command);
			EXPECT_EQ(Evaluator->PollOnce(), ELodexBlockPoll::Answered);
			EXPECT_EQ(Panel.Command(), 0) << "the evaluator takes the request";
			return Panel.Consume();
		}

		FCasesScene Cases;
		FLodexEvaluatorBlock Block{};
		FPanelSide Panel{Block};
		std::unique_ptr<FLodexBlockEvaluator> Evaluator;
	};

	TEST_F(LodexBlockEvaluator, AttachingPreparesTheBlockAndDetachingLeavesNoRequestPossible)
	{
		EXPECT_NE(Block.pathText, nullptr);
		for (const char* Text :
			{Block.contextText, Block.resultText, Block.operationText, Block.nodeTypeText, Block.stackText})
		{
			ASSERT_NE(Text, nullptr);
			EXPECT_STREQ(Text, "");
		}
		EXPECT_EQ(Block.command, 0);
		EXPECT_EQ(Block.status, 0);
		EXPECT_EQ(Block.durationMs, 0.0);
		EXPECT_EQ(Evaluator->PollOnce(), ELodexBlockPoll::Idle);

		Evaluator.reset();
		EXPECT_EQ(Block.pathText, nullptr);
		ASSERT_NE(Block.contextText, nullptr);
		EXPECT_STREQ(Block.contextText, "");
	}

	TEST_F(LodexBlockEvaluator, RunAnswersWithTheCountTheEightBitObjectsAndTheDuration)
	{
		const FPanelSide::FResult Result = Answer("//*[@tag = 'locked']", EEvaluatorCommand::Run);
		EXPECT_EQ(Result.Status, 3);
		EXPECT_EQ(Result.Result, "2");
		EXPECT_EQ(Result.Context, "/*[@name = 'House']/*[@name = 'Door']\r\n/*[@name = 'Shed']/*[@name = 'ShedDoor']");
		EXPECT_GE(Result.DurationMs, 0.0);
		EXPECT_LT(Result.DurationMs, 1000.0);

		const FPanelSide::FResult None = Answer("//Nobody", EEvaluatorCommand::Run);
		EXPECT_EQ(None.Status, 3);
		EXPECT_EQ(None.Result, "0");
		EXPECT_EQ(None.Context, "");

		// Texts are 8-bit: the panels' conversion turns "Tür_用户_2" into "T?r_??_2", which matches the object.
		const FPanelSide::FResult Converted = Answer("//T?r_??_2", EEvaluatorCommand::Run);
		EXPECT_EQ(Converted.Result, "1");
		EXPECT_EQ(Converted.Context, "/*[@name = 'T?r_??_2']");
	}

	TEST_F(LodexBlockEvaluator, FailuresShowTheMarkedUpPathAndTheMessage)
	{
		struct FRow
		{
			const char* Path;
			EEvaluatorCommand Command;
			const char* Context;
			const char* Message;
		};
		const FRow Rows[] = {
			{"/*[@nam = 'A']", EEvaluatorCommand::Run, "/*[<VELT.Highlight>@nam</> = 'A']",
				"Unknown attribute: only @name and @tag can be compared"},
			{"/*[@nam = 'A']", EEvaluatorCommand::Load, "/*[<VELT.Highlight>@nam</> = 'A']",
				"Unknown attribute: only @name and @tag can be compared"},
			{"", EEvaluatorCommand::Run, "<VELT.Highlight></>", "The path is empty"},
			{"//a<b[x]", EEvaluatorCommand::Run, "//a&lt;b[<VELT.Highlight>x</>]",
				"Expected @name or @tag in the predicate"},
			{"//Door", static_cast<EEvaluatorCommand>(7), "<VELT.Highlight>//Door</>",
				"Unknown request 7: the evaluator answers 1 (Run), 4 (Load), 5 (Step Into) and 6 (Step Over)"},
		};
		for (const FRow& Row : Rows)
		{
			const FPanelSide::FResult Result = Answer(Row.Path, Row.Command);
			EXPECT_EQ(Result.Status, 9) << Row.Path;
			EXPECT_EQ(Result.Context, Row.Context) << Row.Path;
			EXPECT_EQ(Result.Result, Row.Message) << Row.Path;
		}
	}

	TEST_F(LodexBlockEvaluator, LoadAndStepsWalkTheEvaluationThenFinish)
	{
		const std::string Path = "/*[@name = 'House']/*[@name = 'Door']";
		struct FRow
		{
			EEvaluatorCommand Command;
			int Status;
			const char* Result;
			const char* Operation;
			const char* NodeType;
			const char* Stack;
			const char* Context;
		};
		const FRow Rows[] = {
			{EEvaluatorCommand::Load, 8, "<VELT.Highlight>/*[@name = 'House']/*[@name = 'Door']</>",
				"Start at the scene root", "Path", "Path", ""},
			{EEvaluatorCommand::StepOver, 8, "<VELT.Highlight>/*[@name = 'House']</>/*[@name = 'Door']",
				"Step 1 of 2: 1 object", "Step", "Path\r\nStep 1 of 2: /*[@name = 'House']", "/*[@name = 'House']"},
			{EEvaluatorCommand::StepInto, 8, "/*[@name = 'House']<VELT.Highlight>/*</>[@name = 'Door']",
				"Children of 1 object: 1 found", "NodeTest", "Path\r\nStep 2 of 2: /*[@name = 'Door']\r\nNode test: /*",
				"/*[@name = 'House']/*[@name = 'Door']"},
			{EEvaluatorCommand::StepInto, 8, "/*[@name = 'House']/*[<VELT.Highlight>@name = 'Door'</>]",
				"@name = 'Door': 1 of 1 hold", "Comparison",
				"Path\r\nStep 2 of 2: /*[@name = 'Door']\r\nPredicate: [@name = 'Door']\r\nComparison: @name = 'Door'",
				"/*[@name = 'House']/*[@name = 'Door']"},
			{EEvaluatorCommand::StepOver, 8, "/*[@name = 'House']/*<VELT.Highlight>[@name = 'Door']</>",
				"Keep the objects the predicate holds for: 1 of 1", "Predicate",
				"Path\r\nStep 2 of 2: /*[@name = 'Door']\r\nPredicate: [@name = 'Door']",
				"/*[@name = 'House']/*[@name = 'Door']"},
			{EEvaluatorCommand::StepOver, 8, "/*[@name = 'House']<VELT.Highlight>/*[@name = 'Door']</>",
				"Step 2 of 2: 1 object", "Step", "Path\r\nStep 2 of 2: /*[@name = 'Door']",
				"/*[@name = 'House']/*[@name = 'Door']"},
			{EEvaluatorCommand::StepInto, 8, "<VELT.Highlight>/*[@name = 'House']/*[@name = 'Door']</>",
				"Result: 1 object", "Path", "Path", "/*[@name = 'House']/*[@name = 'Door']"},
			{EEvaluatorCommand::StepOver, 5, "", "", "", "", ""},
			// Past the end, a step starts over.
			{EEvaluatorCommand::StepInto, 8, "<VELT.Highlight>/*[@name = 'House']/*[@name = 'Door']</>",
				"Start at the scene root", "Path", "Path", ""},
		};
		for (const FRow& Row : Rows)
		{
			const FPanelSide::FResult Result = Answer(Path, Row.Command);
			EXPECT_EQ(Result.Status, Row.Status) << Row.Operation;
			EXPECT_EQ(Result.Result, Row.Result) << Row.Operation;
			EXPECT_EQ(Result.Operation, Row.Operation);
			EXPECT_EQ(Result.NodeType, Row.NodeType) << Row.Operation;
			EXPECT_EQ(Result.Stack, Row.Stack) << Row.Operation;
			EXPECT_EQ(Result.Context, Row.Context) << Row.Operation;
			EXPECT_GE(Result.DurationMs, 0.0);
		}
	}

	TEST_F(LodexBlockEvaluator, AStepForAnotherPathLoadsThatPath)
	{
		EXPECT_EQ(Answer("//Door", EEvaluatorCommand::Load).Status, 8);
		EXPECT_EQ(Answer("//Door", EEvaluatorCommand::StepOver).Operation, "Step 1 of 1: 1 object");
		const FPanelSide::FResult Other = Answer("//Shed", EEvaluatorCommand::StepOver);
		EXPECT_EQ(Other.Operation, "Start at the scene root");
		EXPECT_EQ(Other.Result, "<VELT.Highlight>//Shed</>");
		EXPECT_EQ(Answer("//Shed", EEvaluatorCommand::StepOver).Context, "/*[@name = 'Shed']");
	}

	TEST_F(LodexBlockEvaluator, ARequestWaitsWhileAResultIsUnconsumedAndNothingPublishedChanges)
	{
		Panel.Request("//Door", EEvaluatorCommand::Run);
		ASSERT_EQ(Evaluator->PollOnce(), ELodexBlockPoll::Answered);
		ASSERT_EQ(Panel.Status(), 3);
		const char* const Published = Block.contextText;

		Panel.Request("//Shed", EEvaluatorCommand::Run); // the REPL writes whatever the status
		EXPECT_EQ(Evaluator->PollOnce(), ELodexBlockPoll::Waiting);
		EXPECT_EQ(Panel.Command(), 1);
		EXPECT_EQ(Panel.Status(), 3);
		EXPECT_EQ(Block.contextText, Published) << "an unconsumed result is left as it is";
		EXPECT_STREQ(Block.contextText, "/*[@name = 'House']/*[@name = 'Door']");

		// A panel consuming the first result writes 0 to status and command, which drops the waiting request.
		EXPECT_EQ(Panel.Consume().Context, "/*[@name = 'House']/*[@name = 'Door']");
		EXPECT_EQ(Evaluator->PollOnce(), ELodexBlockPoll::Idle);
		EXPECT_EQ(Answer("//Shed", EEvaluatorCommand::Run).Context, "/*[@name = 'Shed']");
	}

	TEST_F(LodexBlockEvaluator, LongResultsAndOverlongPathsStayWithinTheirBounds)
	{
		FLodexBlockEvaluatorOptions Options;
		Options.MaxContextLines = 2;
		Options.PathCapacity = 16;
		Start(Options);
		const FPanelSide::FResult Many = Answer("/*[@tag = 't1']", EEvaluatorCommand::Run);
		EXPECT_EQ(Many.Result, "2");
		EXPECT_EQ(Many.Context, "/*[@name = 'A']\r\n/*[@name = 'A1']");
		const FPanelSide::FResult More = Answer("//*", EEvaluatorCommand::Run);
		EXPECT_EQ(More.Result, "19");
		EXPECT_EQ(
			More.Context, "/*[@name = 'House']\r\n/*[@name = 'House']/*[@name = 'Door']\r\n... and 17 more objects");

		std::memset(Block.pathText, 'x', 16); // a panel that wrote past the end leaves no NUL
		LodexBlock::StoreCommand(Block, 1);
		ASSERT_EQ(Evaluator->PollOnce(), ELodexBlockPoll::Answered);
		const FPanelSide::FResult Overlong = Panel.Consume();
		EXPECT_EQ(Overlong.Status, 9);
		EXPECT_EQ(Overlong.Result, "The path is longer than the evaluator's buffer of 15 bytes");
	}

	TEST_F(LodexBlockEvaluator, ServesAPanelOnAnotherThread)
	{
		std::atomic<bool> bStop{false};
		std::thread EvaluatorThread([&] { Evaluator->Serve(bStop, std::chrono::microseconds(20)); });

		struct FRequest
		{
			const char* Path;
			EEvaluatorCommand Command;
			int Status;
			const char* Result;
		};
		const FRequest Requests[] = {
			{"//*[@tag = 'locked']", EEvaluatorCommand::Run, 3, "2"},
			{"/*", EEvaluatorCommand::Run, 3, "14"},
			{"//Door", EEvaluatorCommand::Load, 8, "<VELT.Highlight>//Door</>"},
			{"//Door", EEvaluatorCommand::StepInto, 8, "<VELT.Highlight>//Door</>"},
			{"/*[", EEvaluatorCommand::Run, 9, "The predicate is not closed: ] is missing"},
		};
		int Answered = 0;
		for (int Round = 0; Round < 60; ++Round)
		{
			for (const FRequest& Request : Requests)
			{
				Panel.Request(Request.Path, Request.Command);
				const auto Deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
				while (Panel.Status() == 0 && std::chrono::steady_clock::now() < Deadline)
				{
					std::this_thread::yield();
				}
				const FPanelSide::FResult Result = Panel.Consume();
				ASSERT_EQ(Result.Status, Request.Status) << Request.Path;
				EXPECT_EQ(Result.Result, Request.Result) << Request.Path;
				++Answered;
			}
		}
		bStop.store(true, std::memory_order_release);
		EvaluatorThread.join();
		EXPECT_EQ(Answered, 300);
	}
}
