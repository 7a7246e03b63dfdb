// Copyright Lodex contributors.
#include "Evaluation/EvaluationFixture.h"

#include "LodexDebugger/Core/Lodestring/LodestringEvaluator.h"
#include "LodexDebugger/Core/Lodestring/LodestringProgram.h"

#include <gtest/gtest.h>

namespace
{
	struct FMatchRow
	{
		const char* Path;
		/** Ids of the objects found, in document order. */
		const char* Expected;
	};

	/** Over the LodestringCases scene; document order is the file's order with each subtree after its root. */
	const FMatchRow MatchRows[] = {
		// The builder's forms.
		{"/*[@name = 'House']", "house"}, {"/*[@name = 'House']/*[@name = 'Door']", "door"},
		{"/*[@name = 'House']/*[@name = 'Door']/fn:component('Hinge')", "hinge"},
		{"//Door/fn:component('Hinge')", "hinge"}, {"//Door", "door"}, {"/*[@tag = 'bldg']", "house"},
		{"/*[@tag = 't1' or @tag = 't2' or @tag = 't3']", "a a1"}, {"/*[]", ""},
		{"/*[@name = 'A']/fn:component('Arm')/fn:component('Hand')", "hand"}, // through an object of no kind
		{"//A/fn:component('Arm')/fn:component('Hand')", "hand"},
		{"/*[@name = 'A']/fn:component('Comp')", "comp notLevelComp"},
		{"/fn:component('Comp')", "levelComp"}, // a component directly in the level is a root
		{"/fn:component('Template')", "template"}, // its walk ends at a package
		{"/*[@name = 'Owned']", "owned"}, // an actor's outer is never its parent
		{"/*[@name = 'Panel']/*[@name = 'UserWidget']", "user"},
		{"/*[@name = 'Panel']/*[@name = 'UserWidget']/*[@name = 'Inner']", "inner"},
		{"/*[@name = 'Panel']/*[@name = 'WidgetTree']", "tree"}, // a widget tree's parent is its root widget
		{"/*[@name = 'W']", "w"}, // a plain widget always ends the walk
		{"/*[@name = 'Bob's']", "bob"}, {"//Bob's", "bob"}, {"/*[@name = 'Bob's']/fn:component('a]b[c')/')", "odd"},
		{"//Bob's/fn:component('a]b[c')/')", "odd"}, {"//Tür_用户_2", "gate"}, {"/*[@tag = '用户']", "gate"},
		{"/*[@tag = 'with blank']", "gate"},
		// Malformed graphs: every member of a loop is also a root.
		{"/*[@name = 'CycB']/*[@name = 'CycA']", "cycA"}, {"/*[@name = 'CycA']/*[@name = 'CycB']", "cycB"},
		{"/*[@name = 'Self']", "self"}, {"/*[@name = 'Self']/*", "self"}, {"/*[@name = 'CycA']//*", "cycA cycB"},
		{"/fn:component('C2')/fn:component('C1')", "c1"},
		// General forms.
		{"/*", "house shed owned a a1 a0 panel w emptyTree bob gate cycA cycB self"},
		{"//*[@tag = 'locked']", "door shedDoor"}, {"/*[@tag = 'locked']", ""},
		{"/*[@tag = 't1' and @tag = 't2']", "a"},
		{"/*[@tag = 't1' and @tag = 'nope' or @name = 'A0']", "a0"}, // "and" binds closer than "or"
		{"/*[@name = 'House' or @name = 'Shed']", "house shed"}, {"/*[ @name='House' ]", "house"},
		{"/*[@name = 'House']//*", "door"}, {"/*[@name = 'House']//fn:component('Hinge')", "hinge"},
		{"//fn:component('Comp')", "comp notLevelComp levelComp"}, {"//*[@name = 'Door']", "door"},
		{"/House/Door", "door"}, {"/Panel/UserWidget/Inner", "inner"}, {"//UserWidget/*", "inner"},
		{"//Door[@tag = 'red']", "door"}, {"//Door[@tag = 'blue']", ""}, {"/*[@name = 'House']/@Tags", "house/@Tags"},
		{"//Door/fn:component('Hinge')/@Angle", "hinge/@Angle"}, {"/@Tags", ""}, // the scene root has no properties
		{"//Nobody", ""}, {"/*[@name = 'House']/*[@name = 'Nobody']/fn:component('Hinge')", ""},
		{"//door", ""}, // names compare exactly
	};

	TEST(LodestringEvaluator, FindsWhatEachPathNames)
	{
		const FCasesScene Cases;
		for (const FMatchRow& Row : MatchRows)
		{
			FLodestringProgram Program;
			FLodexPathError Error;
			ASSERT_TRUE(CompileLodestring(Row.Path, Program, Error)) << Row.Path << ": " << Error.Message;
			const FLodexEvaluation Evaluation = EvaluateLodestring(*Cases.Index, Program);
			EXPECT_TRUE(Evaluation.bOk) << Row.Path << ": " << Evaluation.Error.Message;
			EXPECT_EQ(Cases.Ids(Evaluation, &Program), Row.Expected) << Row.Path;

			// Step by step gives the same result.
			const FLodexTrace Trace = TraceLodestring(*Cases.Index, Program);
			EXPECT_EQ(Cases.Ids(Trace.Result), Cases.Ids(Evaluation.Matches)) << Row.Path;
		}
	}

	struct FErrorRow
	{
		const char* Path;
		const char* Message;
		std::uint32_t Begin;
		std::uint32_t End;
	};

	const FErrorRow ErrorRows[] = {
		{"", "The path is empty", 0, 0}, {"House", "A Lodestring begins with /", 0, 5},
		{"House/Door", "A Lodestring begins with /", 0, 5},
		{"/", "Expected *, a name, fn:component('name') or @property after /", 0, 1},
		{"//", "Expected *, a name, fn:component('name') or @property after //", 0, 2},
		{"///x", "Expected *, a name, fn:component('name') or @property after //", 0, 3},
		{"/A/", "Expected *, a name, fn:component('name') or @property after /", 2, 3},
		{"/[@name = 'A']", "Expected *, a name, fn:component('name') or @property after /", 0, 2},
		{"/*[@name = 'A'", "The quoted value is not closed: it ends at a ' followed by ], or or and", 11, 14},
		{"/*[@nam = 'A']", "Unknown attribute: only @name and @tag can be compared", 3, 7},
		{"/*[@nam\t= 'A']", "Unknown attribute: only @name and @tag can be compared", 3, 7},
		{"/*[@name 'A']", "Expected = after @name", 9, 10},
		{"/*[@tag == 'A']", "Expected a quoted value after =", 9, 10},
		{"/*[@name = A]", "Expected a quoted value after =", 11, 12},
		{"/*[x]", "Expected @name or @tag in the predicate", 3, 4},
		{"/*[", "The predicate is not closed: ] is missing", 2, 3},
		{"/*[@name = 'A' or ]", "Expected @name or @tag in the predicate", 18, 19},
		{"/*[@name = 'A' and", "The predicate is not closed: ] is missing", 2, 18},
		{"/*x", "Expected [, / or the end of the path after *", 2, 3},
		{"/*[@name = 'A']x", "Expected / or the end of the path after the step", 15, 16},
		{"/fn:comp('A')", "Unknown function: only fn:component('name') is known", 1, 9},
		{"/fn:component(A)", "Expected a quoted name: fn:component('name')", 1, 15},
		{"/fn:component('A'", "The quoted name is not closed: it ends at a ' followed by )", 14, 17},
		{"/fn:component('A')x", "Expected / or the end of the path after the step", 18, 19},
		{"/@", "Expected a property name after @", 1, 2},
		{"/*[@name = 'Nobody']/@Tags/*", "A property reference (/@Name) ends the path", 26, 28},
		{"/*[@name = 'A']/@Tags/*", "A property reference (/@Name) ends the path", 21, 23}, // no reading either
	};

	TEST(LodestringEvaluator, PathsOutsideTheGrammarFailWithTheirSpan)
	{
		const FCasesScene Cases;
		for (const FErrorRow& Row : ErrorRows)
		{
			const FLodexEvaluation Evaluation = EvaluateLodestring(*Cases.Index, std::string(Row.Path));
			EXPECT_FALSE(Evaluation.bOk) << Row.Path;
			EXPECT_EQ(Evaluation.Error.Message, Row.Message) << Row.Path;
			EXPECT_EQ(Evaluation.Error.Span.Begin, Row.Begin) << Row.Path;
			EXPECT_EQ(Evaluation.Error.Span.End, Row.End) << Row.Path;
			EXPECT_TRUE(Evaluation.Matches.empty());
		}
	}

	TEST(LodestringEvaluator, StandardReadingEndsValuesAtTheFirstFittingQuote)
	{
		struct FRow
		{
			const char* Path;
			const char* Steps; // the standard reading: one line per step, "kind:name[values]"
		};
		const FRow Rows[] = {
			{"/*[@name = 'House']/*[@name = 'Door']", "*[House]|*[Door]"},
			{"/*[@name = 'Bob's Sign']", "*[Bob's Sign]"},
			{"/*[@tag = 'x' or @tag = 'y']", "*[x,y]"},
			{"//Bob's Sign/fn:component('Hinge')", "Bob's Sign|c:Hinge"},
			{"/fn:component('a)')", "c:a)"},
			{"/*[@name = 'A']/@Prop", "*[A]|@:Prop"},
			// "or" and "and" are words only when no letter, digit or "_" follows.
			{"/*[@name = 'a' order']", "*[a' order]"},
			{"/*[@name = 'a' or2' or @name = 'b']", "*[a' or2,b]"},
			{"/*[@name = 'a' andy' and @tag = 'b']", "*[a' andy,b]"},
			{"/*[@name = 'a' and_']", "*[a' and_]"},
			{"/*[@name = 'a' or\t@name = 'b' and @tag = 'c']", "*[a,b,c]"},
			// A tab is a blank wherever one may stand; a bare name keeps its own.
			{"/*[\t@name\t=\t'A'\t]", "*[A]"},
			{"/fn:component(\t'Hinge'\t)", "c:Hinge"},
			{"//Bob's\tSign", "Bob's\tSign"},
		};
		for (const FRow& Row : Rows)
		{
			FLodestringProgram Program;
			FLodexPathError Error;
			ASSERT_TRUE(CompileLodestring(Row.Path, Program, Error)) << Row.Path;
			ASSERT_FALSE(Program.HasStandardError()) << Row.Path << ": " << Program.GetStandardError().Message;
			std::string Steps;
			for (const FLodexStepOp& Op : Program.GetOps())
			{
				if (Op.StandardStep == 0)
				{
					continue;
				}
				Steps += Steps.empty() ? "" : "|";
				Steps += Op.Kind == ELodexStepKind::Component ? "c:" : Op.Kind == ELodexStepKind::Property ? "@:" : "";
				Steps += Op.bAnyName ? "*" : Op.Name;
				if (Op.Predicate != nullptr)
				{
					std::string Values;
					for (const FLodexPredicateEdge& Edge : Op.Predicate->Edges)
					{
						if (Edge.bStandard && Edge.Kind == ELodexPredicateEdgeKind::Comparison)
						{
							Values += (Values.empty() ? "" : ",") + Edge.Value;
						}
					}
					Steps += "[" + Values + "]";
				}
			}
			EXPECT_EQ(Steps, Row.Steps) << Row.Path;
			EXPECT_EQ(Program.GetStandardStepCount(),
				static_cast<std::uint32_t>(std::count(Steps.begin(), Steps.end(), '|') + 1));
		}
	}

	TEST(LodestringEvaluator, AnsiWildcardsStandForCharactersBeyondAscii)
	{
		const FCasesScene Cases;
		FLodexEvaluationOptions Wildcards;
		Wildcards.bAnsiWildcards = true;
		const auto Ids = [&](const std::string& Path, const FLodexEvaluationOptions& Options)
		{
			return Cases.Ids(EvaluateLodestring(*Cases.Index, Path, Options));
		};
		EXPECT_EQ(Ids("//T?r_??_2", Wildcards), "gate");
		EXPECT_EQ(Ids("/*[@tag = '?\?']", Wildcards), "gate");
		EXPECT_EQ(Ids("//T?r_?_2", Wildcards), "");
		// Without the option a "?" is only itself; text in UTF-8 is always matched exactly.
		EXPECT_EQ(Ids("//T?r_??_2", {}), "");
		EXPECT_EQ(Ids("//Tür_用户_2", Wildcards), "gate");
	}

	TEST(LodestringEvaluator, MatchesAreShownByTheirAbsoluteLodestring)
	{
		const FCasesScene Cases;
		FLodestringProgram Program;
		FLodexPathError Error;
		ASSERT_TRUE(CompileLodestring("//Door/fn:component('Hinge')/@Angle", Program, Error));
		const FLodexEvaluation Evaluation = EvaluateLodestring(*Cases.Index, Program);
		ASSERT_EQ(Evaluation.Matches.size(), 1u);
		EXPECT_EQ(DescribeLodexMatch(*Cases.Index, Program, Evaluation.Matches[0]),
			"/*[@name = 'House']/*[@name = 'Door']/fn:component('Hinge')/@Angle");
	}

	TEST(LodestringEvaluator, MarkUpWrapsTheSpanAndEscapesTheRichTextsCharacters)
	{
		EXPECT_EQ(MarkUpLodestring("/*[@name = 'A']", {2, 15}), "/*<VELT.Highlight>[@name = 'A']</>");
		EXPECT_EQ(MarkUpLodestring("", {0, 0}), "<VELT.Highlight></>");
		EXPECT_EQ(MarkUpLodestring("//a<b>&c", {0, 2}), "<VELT.Highlight>//</>a&lt;b&gt;&amp;c");
		EXPECT_EQ(MarkUpLodestring("//A", {1, 99}), "/<VELT.Highlight>/A</>");
	}
}
