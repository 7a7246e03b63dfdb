// Copyright Lodex contributors.
#include "LodexDebugger/Core/Evaluation/LodexScriptedEvaluator.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace
{
	FLodexScriptedEvaluator MakeScripted(const std::string& Text)
	{
		FLodexCannedAnswers Answers;
		FLodexParseError Error;
		EXPECT_TRUE(ParseLodexCannedAnswers(Text, Answers, Error)) << Error.Line << ": " << Error.Message;
		return FLodexScriptedEvaluator(std::move(Answers));
	}

	FLodexEvaluatorAnswer Ask(FLodexScriptedEvaluator& Evaluator, std::int32_t Command, const std::string& Path)
	{
		return Evaluator.AnswerRequest(FLodexEvaluatorRequest{Command, Path});
	}

	TEST(ScriptedEvaluatorFormat, ErrorsNameTheLine)
	{
		struct FRow
		{
			std::string Text;
			int Line;
			std::string Message;
		};
		const std::string Known = "; known: run, load, into, over, step, any, status, result, context, stack, "
								  "operation, node-type, duration, "
								  "null";
		const FRow Rows[] = {
			{"# comment\nresult 3\n", 2,
				"'result' before any answer: start one with run, load, into, over, step or any"},
			{"run /a\nstatus three\n", 2, "'status' needs a whole number, not 'three'"},
			{"run /a\nstatus 3 \n", 2, "'status' needs a whole number, not '3 '"},
			{"run /a\nstatus 99999999999\n", 2, "'status' needs a whole number, not '99999999999'"},
			{"run /a\r\n\r\nduration 1,5\r\n", 3, "'duration' needs a number of milliseconds, not '1,5'"},
			{"run /a\nnull everything\n", 2,
				"'null' takes context, result, operation, node-type, stack or path, not 'everything'"},
			{"run /a\ncontext a\\qb\n", 2, "unknown escape '\\q'; known: \\\\ \\r \\n \\t \\xHH"},
			{"run /a\\\n", 1, "a '\\' ends the line; write '\\\\' for a backslash"},
			{"run /a\ncontext \\x4\n", 2, "'\\x' needs two hexadecimal digits"},
			{"run /a\n  result 3\n", 2, "unknown keyword ''" + Known},
			{"walk /a\n", 1, "unknown keyword 'walk'" + Known},
			// A message quotes the line as written, control characters and bytes that are not UTF-8 as \xHH.
			{std::string("wa\0lk /a\n", 9), 1, "unknown keyword 'wa\\x00lk'" + Known},
			{"run /a\nstatus 3\\n\n", 2, "'status' needs a whole number, not '3\\n'"},
			{"run /a\nstatus \v3\n", 2, "'status' needs a whole number, not '\\x0B3'"},
			{"run /a\nduration T\xC3\xBCr\xFF\x01\n", 2,
				"'duration' needs a number of milliseconds, not 'T\xC3\xBCr\\xFF\\x01'"},
			{"run /a\nnull\tcontext\n", 2, "unknown keyword 'null\\x09context'" + Known},
			{"run /a\ncontext \\\x01\n", 2, "unknown escape '\\\\x01'; known: \\\\ \\r \\n \\t \\xHH"},
			{"run /a\ncontext \\\xC3\xBC\n", 2, "unknown escape '\\\xC3\xBC'; known: \\\\ \\r \\n \\t \\xHH"},
		};
		for (const FRow& Row : Rows)
		{
			FLodexCannedAnswers Answers;
			FLodexParseError Error;
			EXPECT_FALSE(ParseLodexCannedAnswers(Row.Text, Answers, Error)) << Row.Text;
			EXPECT_EQ(Error.Line, Row.Line) << Row.Text;
			EXPECT_EQ(Error.Message, Row.Message) << Row.Text;
		}
	}

	TEST(ScriptedEvaluatorFormat, FieldsEscapesAndDefaults)
	{
		FLodexScriptedEvaluator Evaluator = MakeScripted("  # a comment\n"
														 "\n"
														 "run /*[@name = 'T\xC3\xBCr']\n"
														 "context a\\tb\n"
														 "context \n"
														 "context \\xFC\\\\\n"
														 "duration -0.5\n"
														 "step\n"
														 "result <VELT.Highlight>/a</>\n"
														 "operation op\n"
														 "node-type nt\n"
														 "stack s1\n"
														 "stack s2\r\n");
		// The panel sends the path converted to 8 bits: "Tür" arrives as "T?r" and matches.
		const FLodexEvaluatorAnswer Run = Ask(Evaluator, 1, "/*[@name = 'T?r']");
		EXPECT_EQ(Run.Status, 3);
		EXPECT_EQ(Run.ResultText, "2") << "without a result line, a Run answers the items a panel lists";
		EXPECT_EQ(Run.ContextText, "a\tb\r\n\r\n\xFC\\");
		EXPECT_EQ(Run.DurationMs, -0.5);

		const FLodexEvaluatorAnswer Step = Ask(Evaluator, 6, "/anything");
		EXPECT_EQ(Step.Status, 8);
		EXPECT_EQ(Step.ResultText, "<VELT.Highlight>/a</>");
		EXPECT_EQ(Step.OperationText, "op");
		EXPECT_EQ(Step.NodeTypeText, "nt");
		EXPECT_EQ(Step.StackText, "s1\r\ns2");
		EXPECT_EQ(Step.ContextText, "");
	}

	TEST(ScriptedEvaluatorAnswers, InFileOrderThenTheLastAgainLoadStartsSteppingAnewAndNoMatchFails)
	{
		FLodexScriptedEvaluator Evaluator = MakeScripted("load /p\nresult loaded\n"
														 "into /p\nresult first\n"
														 "step /p\nresult second\n"
														 "over /p\nresult over\n"
														 "step /p\nstatus 5\nresult\n"
														 "run\nresult any run\n");
		EXPECT_EQ(Ask(Evaluator, 4, "/p").ResultText, "loaded");
		EXPECT_EQ(Ask(Evaluator, 5, "/p").ResultText, "first");
		EXPECT_EQ(Ask(Evaluator, 5, "/p").ResultText, "second");
		const FLodexEvaluatorAnswer End = Ask(Evaluator, 5, "/p");
		EXPECT_EQ(End.Status, 5);
		EXPECT_EQ(End.ResultText, "");
		EXPECT_EQ(Ask(Evaluator, 5, "/p").Status, 5) << "every match used: the last matching answer again";
		EXPECT_EQ(Ask(Evaluator, 6, "/p").ResultText, "over");
		EXPECT_EQ(Ask(Evaluator, 6, "/p").Status, 5);
		EXPECT_EQ(Ask(Evaluator, 4, "/p").ResultText, "loaded");
		EXPECT_EQ(Ask(Evaluator, 6, "/p").ResultText, "second") << "Load made the step answers unused again";
		EXPECT_EQ(Ask(Evaluator, 1, "/elsewhere").ResultText, "any run");
		EXPECT_EQ(Ask(Evaluator, 1, "/p").ResultText, "any run");
		const FLodexEvaluatorAnswer Missing = Ask(Evaluator, 5, "/q");
		EXPECT_EQ(Missing.Status, 9);
		EXPECT_EQ(Missing.ResultText, "No scripted answer for StepInto of '/q'");
		EXPECT_EQ(Missing.ContextText, "/q");

		FLodexScriptedEvaluator Anything = MakeScripted("any\nstatus 42\n");
		EXPECT_EQ(Ask(Anything, 4, "/x").Status, 42);
		EXPECT_EQ(Ask(Anything, 2, "/x").Status, 42) << "any answers codes no panel sends";
	}

	TEST(ScriptedEvaluatorServe, TakesTheRequestAndPublishesThroughTheBlock)
	{
		FLodexScriptedEvaluator Evaluator = MakeScripted("run /a\ncontext x\ncontext y\nduration 2\n"
														 "run /quiet\nstatus 0\n"
														 "run /broken\nstatus 8\nnull result\nnull stack\nnull path\n");
		FLodexEvaluatorBlock Block{};
		Evaluator.Attach(Block);
		EXPECT_EQ(Evaluator.Serve(Block), 0);

		std::strcpy(Block.pathText, "/a");
		Block.command = 1;
		ASSERT_EQ(Evaluator.Serve(Block), 1);
		EXPECT_EQ(Block.command, 0);
		EXPECT_EQ(Block.status, 3);
		EXPECT_STREQ(Block.resultText, "2");
		EXPECT_STREQ(Block.contextText, "x\r\ny");
		EXPECT_EQ(Block.durationMs, 2.0);

		Block.status = 0;
		std::strcpy(Block.pathText, "/quiet");
		Block.command = 1;
		ASSERT_EQ(Evaluator.Serve(Block), 1);
		EXPECT_EQ(Block.command, 0) << "taken";
		EXPECT_EQ(Block.status, 0) << "and dropped";

		std::strcpy(Block.pathText, "/broken");
		Block.command = 1;
		ASSERT_EQ(Evaluator.Serve(Block), 1);
		EXPECT_EQ(Block.status, 8);
		EXPECT_EQ(Block.resultText, nullptr);
		EXPECT_EQ(Block.stackText, nullptr);
		EXPECT_EQ(Block.pathText, nullptr);
		EXPECT_STREQ(Block.contextText, "");
		EXPECT_EQ(Evaluator.GetPathCapacity(), FLodexEvaluatorSide::DefaultPathCapacity);
	}
}
