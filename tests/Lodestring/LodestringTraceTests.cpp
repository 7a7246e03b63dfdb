// Copyright Lodex contributors.
#include "Evaluation/EvaluationFixture.h"

#include "LodexDebugger/Core/Lodestring/LodestringEvaluator.h"
#include "LodexDebugger/Core/Lodestring/LodestringProgram.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <gtest/gtest.h>

namespace
{
	FLodexTrace Trace(const FCasesScene& Cases, const char* Path, FLodestringProgram& Program)
	{
		FLodexPathError Error;
		EXPECT_TRUE(CompileLodestring(Path, Program, Error)) << Error.Message;
		return TraceLodestring(*Cases.Index, Program);
	}

	/** One row a step: depth, highlighted text, operation, node type, stack, context ids. */
	std::string Describe(const FCasesScene& Cases, const FLodestringProgram& Program, const FLodexTraceStep& Step)
	{
		return LodexText::FormatInt(Step.Depth) + " | " +
			Program.GetText().substr(Step.Span.Begin, Step.Span.End - Step.Span.Begin) + " | " + Step.Operation +
			" | " + Step.NodeType + " | " + LodexText::Join(Step.Stack, " > ") + " | " + Cases.Ids(Step.Context);
	}

	TEST(LodestringTrace, StepsThroughEveryPartOfTheStandardReadingIntoOrOverEach)
	{
		const FCasesScene Cases;
		FLodestringProgram Program;
		const FLodexTrace Result = Trace(Cases, "/*[@name = 'House']/*[@name = 'Door']", Program);
		ASSERT_TRUE(Result.bOk);
		const std::string Roots = "house shed owned a a1 a0 panel w emptyTree bob gate cycA cycB self";
		const std::string Step1 = "Path > Step 1 of 2: /*[@name = 'House']";
		const std::string Step2 = "Path > Step 2 of 2: /*[@name = 'Door']";
		const std::vector<std::string> Expected = {
			"0 | /*[@name = 'House']/*[@name = 'Door'] | Start at the scene root | Path | Path | ",
			"1 | /* | Roots of the scene: 14 found | NodeTest | " + Step1 + " > Node test: /* | " + Roots,
			"2 | @name = 'House' | @name = 'House': 1 of 14 hold | Comparison | " + Step1 +
				" > Predicate: [@name = 'House'] > Comparison: @name = 'House' | house",
			"1 | [@name = 'House'] | Keep the objects the predicate holds for: 1 of 14 | Predicate | " + Step1 +
				" > Predicate: [@name = 'House'] | house",
			"0 | /*[@name = 'House'] | Step 1 of 2: 1 object | Step | " + Step1 + " | house",
			"1 | /* | Children of 1 object: 1 found | NodeTest | " + Step2 + " > Node test: /* | door",
			"2 | @name = 'Door' | @name = 'Door': 1 of 1 hold | Comparison | " + Step2 +
				" > Predicate: [@name = 'Door'] > Comparison: @name = 'Door' | door",
			"1 | [@name = 'Door'] | Keep the objects the predicate holds for: 1 of 1 | Predicate | " + Step2 +
				" > Predicate: [@name = 'Door'] | door",
			"0 | /*[@name = 'Door'] | Step 2 of 2: 1 object | Step | " + Step2 + " | door",
			"0 | /*[@name = 'House']/*[@name = 'Door'] | Result: 1 object | Path | Path | door",
		};
		ASSERT_EQ(Result.Steps.size(), Expected.size());
		for (std::size_t Step = 0; Step < Expected.size(); ++Step)
		{
			EXPECT_EQ(Describe(Cases, Program, Result.Steps[Step]), Expected[Step]) << "step " << Step;
		}

		// Step into visits every step; step over passes the parts.
		const std::size_t End = Result.Steps.size();
		struct FRow
		{
			std::size_t From;
			bool bStepOver;
			std::size_t To;
		};
		const FRow Rows[] = {
			{0, false, 1},
			{0, true, 4}, // from the start: into the node test, or over the whole first step
			{1, false, 2},
			{1, true, 3}, // from a node test: into the comparison, or over it to the predicate
			{3, true, 4},
			{4, true, 8},
			{4, false, 5},
			{8, true, 9},
			{9, true, End},
			{9, false, End},
			{End, false, End},
		};
		for (const FRow& Row : Rows)
		{
			EXPECT_EQ(NextLodexTraceStep(Result, Row.From, Row.bStepOver), Row.To)
				<< Row.From << (Row.bStepOver ? " over" : " into");
		}
	}

	TEST(LodestringTrace, StepsOfOtherKindsAndWhereTheStandardReadingFindsNothing)
	{
		const FCasesScene Cases;
		struct FRow
		{
			const char* Path;
			std::vector<std::string> Steps; // depth-0 steps between the start and the result
		};
		const FRow Rows[] = {
			{"//Door/fn:component('Hinge')/@Angle",
				{"0 | //Door | Step 1 of 3: 1 object | Step | Path > Step 1 of 3: //Door | door",
					"0 | /fn:component('Hinge') | Components named 'Hinge' of 1 object: 1 found | ComponentStep | "
					"Path > Step 2 of 3: /fn:component('Hinge') | hinge",
					"0 | /@Angle | Property 'Angle' of 1 object: 1 reference | PropertyStep | Path > Step 3 of 3: "
					"/@Angle | hinge"}},
			// A step after an empty one is still shown, so that the step where the path goes wrong is seen.
			{"/*[@name = 'Nobody']/fn:component('Hinge')",
				{"0 | /*[@name = 'Nobody'] | Step 1 of 2: 0 objects | Step | Path > Step 1 of 2: /*[@name = 'Nobody'] "
				 "| ",
					"0 | /fn:component('Hinge') | Components named 'Hinge' of 0 objects: 0 found | ComponentStep | "
					"Path > Step 2 of 2: /fn:component('Hinge') | "}},
			{"/fn:component('Comp')",
				{"0 | /fn:component('Comp') | Components named 'Comp' at the scene root: 1 found | ComponentStep | "
				 "Path > Step 1 of 1: /fn:component('Comp') | levelComp"}},
		};
		for (const FRow& Row : Rows)
		{
			FLodestringProgram Program;
			const FLodexTrace Result = Trace(Cases, Row.Path, Program);
			std::vector<std::string> Steps;
			for (std::size_t Step = 1; Step + 1 < Result.Steps.size(); ++Step)
			{
				if (Result.Steps[Step].Depth == 0)
				{
					Steps.push_back(Describe(Cases, Program, Result.Steps[Step]));
				}
			}
			EXPECT_EQ(Steps, Row.Steps) << Row.Path;
		}
	}

	TEST(LodestringOtherReadings, FindNamesThatHoldTheGrammarsEndsAndShowOnlyWhereTheyFindSomething)
	{
		// Each text reads both as two steps and as one name holding the separator.
		const char* const Scene = R"({"objects": [
  {"id": "a", "kind": "actor", "name": "A"},
  {"id": "b", "kind": "actor", "name": "B", "attachParent": "a"},
  {"id": "joined", "kind": "actor", "name": "A']/*[@name = 'B"},
  {"id": "slash", "kind": "actor", "name": "A/B"},
  {"id": "tagged", "kind": "actor", "name": "T", "tags": ["x' or @tag = 'y"]},
  {"id": "tx", "kind": "actor", "name": "TX", "tags": ["x"]},
  {"id": "x", "kind": "actor", "name": "X[1"}
]})";
		FCasesScene Cases;
		std::string Error;
		ASSERT_TRUE(FSceneSnapshot::Parse(Scene, "odd", Cases.Scene, Error)) << Error;
		Cases.Index = IndexSceneSnapshot(Cases.Scene);
		const auto Ids = [&](const char* Path)
		{
			return Cases.Ids(EvaluateLodestring(*Cases.Index, std::string(Path)));
		};
		EXPECT_EQ(Ids("/*[@name = 'A']/*[@name = 'B']"), "b joined");
		EXPECT_EQ(Ids("//A/B"), "b slash");
		EXPECT_EQ(Ids("/*[@tag = 'x' or @tag = 'y']"), "tagged tx");
		EXPECT_EQ(Ids("/*[@tag = 'x' and @tag = 'y']"), "");
		// A text outside the grammar: found by another reading, or an error.
		const FLodexEvaluation Found = EvaluateLodestring(*Cases.Index, std::string("//X[1"));
		EXPECT_TRUE(Found.bOk);
		EXPECT_EQ(Cases.Ids(Found), "x");
		const FLodexEvaluation Missing = EvaluateLodestring(*Cases.Index, std::string("//Y[1"));
		EXPECT_FALSE(Missing.bOk);
		EXPECT_EQ(Missing.Error.Message, "Expected @name or @tag in the predicate");
		FLodestringProgram Program;
		const FLodexTrace Result = Trace(Cases, "/*[@name = 'A']/*[@name = 'B']", Program);
		std::vector<std::string> Steps;
		for (const FLodexTraceStep& Step : Result.Steps)
		{
			if (Step.Depth == 0 && Step.NodeType == "Step")
			{
				Steps.push_back(Describe(Cases, Program, Step));
			}
		}
		// Steps are shown in the order they begin in the text, the standard reading's first.
		const std::vector<std::string> Expected = {
			"0 | /*[@name = 'A'] | Step 1 of 2: 1 object | Step | Path > Step 1 of 2: /*[@name = 'A'] | a",
			"0 | /*[@name = 'A']/*[@name = 'B'] | Other reading of the path: 1 object | Step | Path > Other reading: "
			"/*[@name = 'A']/*[@name = 'B'] | joined",
			"0 | /*[@name = 'B'] | Step 2 of 2: 1 object | Step | Path > Step 2 of 2: /*[@name = 'B'] | b",
		};
		EXPECT_EQ(Steps, Expected);
	}
}
