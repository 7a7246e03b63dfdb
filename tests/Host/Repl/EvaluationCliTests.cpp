// Copyright Lodex contributors.
#include "LodexRun.h"
#include "TempDir.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
	/** Canned answers for the edge cases of the REPL, the debugger and a faulty evaluator. */
	const char* const EdgeAnswers = "run /one\nresult 1\n"
									"run /two\nresult 2\n"
									"run /lines\ncontext A\\r\\n\\r\\nB\\r\\n\n"
									"load /p\nresult <VELT.Highlight>/p</>\noperation root\nnode-type Step\n"
									"context c1\nduration 12\n"
									"step /p\nstatus 5\nresult\n"
									"run /stuck\nstatus 1\n"
									"run /odd\nstatus 42\n"
									"run /nulls\nstatus 8\nnull result\nnull context\nnull stack\nnull operation\n"
									"null node-type\n"
									"run /nobuffer\nresult 1\nnull path\n";

	const std::string SampleScene = std::string(LODEX_SOURCE_DIR) + "/samples/level.json";

	TEST(EvaluationCliScene, TheNativeEvaluatorAnswersTheReplAndTheDebuggerOnASceneFile)
	{
		const FLodexRun Repl =
			RunLodex({"repl", "--scene", SampleScene}, "//Door\n/*[@tag = 'light' or @tag = 'shop']\n/*[\n");
		EXPECT_EQ(Repl.Exit, 0) << Repl.Err;
		EXPECT_EQ(Repl.Err, "");
		EXPECT_TRUE(Contains(Repl.Out,
			"> //Door\n  request: Run (1)\n  evaluator took: Run (1)\n  poll: Evaluated "
			"(3)\n  Lode String: //Door\n  count: 1\n  StateColor (0, 0, 0, 0)"))
			<< Repl.Out;
		EXPECT_TRUE(Contains(Repl.Out, "count: 2\n  StateColor (235, 164, 52, 0)")) << Repl.Out;
		EXPECT_TRUE(Contains(Repl.Out, "> /*[\n  request: Run (1)\n  evaluator took: Run (1)\n  poll: Failed (9)\n"))
			<< Repl.Out;

		const FLodexRun Debug =
			RunLodex({"debug", "--scene", SampleScene}, "/*[@name = 'House']/*[@name = 'Door']\ninto\nrun\n");
		EXPECT_EQ(Debug.Exit, 0) << Debug.Err;
		EXPECT_TRUE(Contains(Debug.Out, "  evaluator took: Load (4)\n  poll: Stepped (8)\n")) << Debug.Out;
		// After a Run the context header has no blank before its count, after a step it has one.
		EXPECT_TRUE(Contains(Debug.Out, "  Context (7)\n")) << Debug.Out;
		EXPECT_TRUE(Contains(Debug.Out, "  Context(1)\n    /*[@name = 'House']/*[@name = 'Door']\n")) << Debug.Out;
	}

	class EvaluationCli : public ::testing::Test
	{
	protected:
		void SetUp() override
		{
			ASSERT_FALSE(Dir.Path.empty());
			Answers = Dir.Write("answers.txt", EdgeAnswers);
		}
		FLodexRun Repl(const std::string& Input) { return RunLodex({"repl", "--evaluator", Answers}, Input); }
		FLodexRun Debug(const std::string& Input) { return RunLodex({"debug", "--evaluator", Answers}, Input); }
		FTempDir Dir;
		std::string Answers;
	};

	TEST_F(EvaluationCli, ReplTranscriptOfEnterLeavingTheBoxAndComingBack)
	{
		EXPECT_EQ(Printed(Repl("/one\n:blur\n:focus\n\n")),
			// Enter: one request; the box keeps the focus, so the next tick's poll shows the count.
			"> /one\n"
			"  request: Run (1)\n"
			"  evaluator took: Run (1)\n"
			"  poll: Evaluated (3)\n"
			"  Lode String: /one\n"
			"  count: 1\n"
			"  StateColor (0, 0, 0, 0), HasError false, IsReady true\n"
			// The focus goes to the game's viewport: the box commits its text again; the answer waits.
			"> :blur\n"
			"  the path box loses focus and commits its text\n"
			"  request: Run (1)\n"
			"  evaluator took: Run (1)\n"
			"  Lode String: /one\n"
			"  count: 1\n"
			"  StateColor (0, 0, 0, 0), HasError false, IsReady true\n"
			// A click on the panel: it polls again and shows the waiting answer, sending nothing.
			"> :focus\n"
			"  poll: Evaluated (3)\n"
			"  Lode String: /one\n"
			"  count: 1\n"
			"  StateColor (0, 0, 0, 0), HasError false, IsReady true\n"
			"> \n"
			"  no request: the path is empty (cleared)\n"
			"  Lode String: \n"
			"  count: \n"
			"  StateColor (1, 1, 1, 1), HasError false, IsReady true\n");
	}

	TEST_F(EvaluationCli, ReplAnswerThatArrivesWhileHeldAndTheFocusIsElsewhereIsShownOnReturnAndHelpListsDirectives)
	{
		const FLodexRun Run = Repl(":hold\n/two\n:blur\n:release\n:focus\n:help\n:nonsense\n");
		EXPECT_EQ(Run.Exit, 0) << Run.Err;
		EXPECT_TRUE(Contains(Run.Out,
			"> :blur\n  the path box loses focus and commits its text\n  request: Run (1)\n  Lode String: /two\n  "
			"count: \n"))
			<< Run.Out;
		// The two writes of Run were one request to the evaluator; its answer waits until the panel has focus.
		EXPECT_TRUE(Contains(Run.Out, "> :release\n  evaluator took: Run (1)\n  Lode String: /two\n  count: \n"))
			<< Run.Out;
		EXPECT_TRUE(Contains(Run.Out, "> :focus\n  poll: Evaluated (3)\n  Lode String: /two\n  count: 2\n")) << Run.Out;
		EXPECT_EQ(CountOf(Run.Out, "evaluator took"), 1) << Run.Out;
		EXPECT_TRUE(Contains(Run.Out, ":hold     the evaluator takes no request until :release\n")) << Run.Out;
		EXPECT_TRUE(Contains(Run.Out, "  unknown directive ':nonsense'; known: :focus :blur :hold :release :help\n"));
	}

	TEST_F(EvaluationCli, DebuggerRunsAndSteps)
	{
		const FLodexRun Run = Debug("/p\ninto\n/lines\nrun\n\n");
		EXPECT_EQ(Run.Exit, 0) << Run.Err;
		// Enter loads the path: its answer shows the first step.
		EXPECT_TRUE(Contains(Run.Out,
			"> /p\n"
			"  request: Load (4)\n"
			"  evaluator took: Load (4)\n"
			"  poll: Stepped (8)\n"
			"  Lode String: /p\n"
			"  Path Evaluation: <VELT.Highlight>/p</>\n"
			"  highlighted: <VELT.Highlight>/p</>\n"
			"  error icon off, message: \n"
			"  buttons enabled\n"
			"  Operation: root\n"
			"  Node Type: Step\n"
			"  Stack (0)\n"
			"  Context (1)\n"
			"    c1\n"
			"  Duration:12.0 (ms)\n"
			"  StateColor (1, 1, 1, 1)\n"))
			<< Run.Out;
		// The press on Step Into takes the focus from the path box, which commits (Load again: the block is idle);
		// then the click steps. Finished with an empty message: the icon off, the lists as they were.
		EXPECT_TRUE(Contains(Run.Out,
			"> into\n"
			"  the path box loses focus and commits its text\n"
			"  request: Load (4)\n"
			"  evaluator took: Load (4)\n"
			"  poll: Stepped (8)\n"
			"  request: StepInto (5)\n"
			"  evaluator took: StepInto (5)\n"
			"  poll: Finished (5)\n"
			"  Lode String: /p\n"
			"  Path Evaluation: /p\n"
			"  error icon off, message: \n"))
			<< Run.Out;
		// Enter on /lines loads it (no answer: Failed), then Run of it: a line, an empty line, a line and a trailing
		// separator give two items.
		EXPECT_TRUE(Contains(Run.Out,
			"message: 2 objects found\n"
			"  buttons enabled\n"
			"  Operation: \n"
			"  Node Type: \n"
			"  Stack\n"
			"  Context(2)\n"
			"    A\n"
			"    B\n"
			"  Duration:0.0 (ms)\n"))
			<< Run.Out;
		// An empty Enter resets the panel without a request.
		EXPECT_TRUE(Contains(Run.Out,
			"> \n"
			"  no request: the path is empty (reset)\n"
			"  Lode String: \n"
			"  Path Evaluation: \n"))
			<< Run.Out;
	}

	TEST_F(EvaluationCli, TheGameNotRunningIsSaidInBothPanels)
	{
		EXPECT_EQ(Printed(RunLodex({"repl", "--evaluator", Answers, "--game-not-running"}, "/one\n")),
			"> /one\n"
			"  no request: the game is not running\n"
			"  Lode String: /one\n"
			"  count: \n"
			"  StateColor (1, 0, 0, 1), HasError true, IsReady true\n");

		// What each button and Enter then show is the debugger panel's tests' to pin.
		const FLodexRun DebugRun = RunLodex({"debug", "--evaluator", Answers, "--game-not-running"}, "/p\n");
		EXPECT_EQ(DebugRun.Exit, 0) << DebugRun.Err;
		EXPECT_TRUE(Contains(DebugRun.Out,
			"> /p\n  no request: the game is not running\n  Lode String: /p\n  Path Evaluation: \n  error icon on, "
			"message: Start the game in the editor to run Lodex\n"))
			<< DebugRun.Out;
	}

	TEST_F(EvaluationCli, FaultyEvaluatorsNeverBreakThePanels)
	{
		// An evaluator that accepts and never finishes: the status stays 1, so Enter sends nothing.
		const FLodexRun Stuck = Debug("type /stuck\nrun\ninto\n:focus\n/p\n");
		EXPECT_EQ(Stuck.Exit, 0) << Stuck.Err;
		EXPECT_TRUE(Contains(Stuck.Out, "  poll: Accepted (1)\n")) << Stuck.Out;
		EXPECT_TRUE(Contains(Stuck.Out, "> into\n  \"Step Into\" is disabled")) << Stuck.Out;
		EXPECT_EQ(CountOf(Stuck.Out, "  buttons disabled\n"), 4) << Stuck.Out;
		EXPECT_TRUE(Contains(Stuck.Out, "> /p\n  no request: a result waits in the block (Accepted (1))\n"))
			<< Stuck.Out;

		const FLodexRun Odd = Repl("/odd\n/one\n");
		EXPECT_TRUE(Contains(Odd.Out, "  poll: unknown status 42, left alone\n")) << Odd.Out;
		EXPECT_TRUE(Contains(Odd.Out, "> /one\n  request: Run (1)\n  poll: unknown status 42")) << "never taken";

		const FLodexRun Nulls = Debug("type /nulls\nrun\n");
		EXPECT_TRUE(Contains(Nulls.Out, "> type /nulls\n  Lode String: /nulls\n")) << "typing sends nothing";
		EXPECT_TRUE(Contains(Nulls.Out, "  poll: Stepped (8)\n  Lode String: /nulls\n  Path Evaluation: \n"))
			<< Nulls.Out;
		EXPECT_TRUE(Contains(Nulls.Out, "  Stack (0)\n  Context (0)\n")) << Nulls.Out;

		const FLodexRun NoBuffer = Debug("type /nobuffer\nrun\nrun\n");
		EXPECT_TRUE(Contains(NoBuffer.Out,
			"> run\n  no request: the evaluator gives no path buffer\n  Lode String: "
			"/nobuffer\n  Path Evaluation: \n  error icon on, message: The Lodex "
			"evaluator is not available\n  buttons enabled\n"))
			<< NoBuffer.Out;
	}

	TEST_F(EvaluationCli, BadAnswerFilesAreOneLine)
	{
		const std::string Broken = Dir.Write("broken.txt", "run /a\nstatus x\n");
		const std::pair<std::vector<std::string>, std::string> Rows[] = {
			{{"debug", "--evaluator", Broken}, Broken + ":2: 'status' needs a whole number, not 'x'"},
			{{"repl", "--evaluator", Dir.File("absent.txt")}, Dir.File("absent.txt") + ": cannot open the file"},
			{{"repl", "--evaluator", Dir.Path}, Dir.Path + ": cannot read the file"},
			{{"repl", "--scene", Dir.File("absent.json")}, Dir.File("absent.json") + ": cannot open the file"},
		};
		for (const auto& [Args, Error] : Rows)
		{
			EXPECT_EQ(Printed(RunLodex(Args, "/a\n")), "exit 1: lodex: " + Error + "\n");
		}
	}
}
