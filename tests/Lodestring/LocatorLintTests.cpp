// Copyright Lodex contributors.
#include "LintLevel.h"
#include "Scenes/SceneEvaluation.h"
#include "Scenes/SceneSnapshot.h"

#include "LodexDebugger/Core/Lodestring/LodexBestLocator.h"
#include "LodexDebugger/Core/Lodestring/LodexLocatorLint.h"

#include <gtest/gtest.h>

#include <memory>

namespace
{
	class LocatorLint : public ::testing::Test
	{
	protected:
		void SetUp() override
		{
			std::string Error;
			ASSERT_TRUE(FSceneSnapshot::Parse(LintLevel::Scene, "lint.json", Scene, Error)) << Error;
			Index = IndexSceneSnapshot(Scene);
			Finder = std::make_unique<FLodexBestLocatorFinder>(*Index);
		}

		FLodexLintResult Lint(const std::string& Lodestring, std::size_t MaxDepth = 5, bool bExpectsOne = true) const
		{
			FLodexLintOptions Options;
			Options.MaxAbsoluteDepth = MaxDepth;
			Options.bExpectsOneObject = bExpectsOne;
			return LintLodestring(*Index, *Finder, Lodestring, Options);
		}

		/** "rule@begin-end: suggestion" for each finding, the part of the text it is about included. */
		std::string Summary(const std::string& Lodestring, std::size_t MaxDepth = 5, bool bExpectsOne = true) const
		{
			std::string Text;
			for (const FLodexLintFinding& Finding : Lint(Lodestring, MaxDepth, bExpectsOne).Findings)
			{
				Text += std::string(Finding.Severity == ELodexLintSeverity::Error ? "E " : "W ") + Finding.Rule + " '" +
					Lodestring.substr(Finding.Span.Begin, Finding.Span.End - Finding.Span.Begin) + "'";
				Text += Finding.Suggestion.empty() ? "\n" : " -> " + Finding.Suggestion + "\n";
			}
			return Text;
		}

		FSceneSnapshot Scene;
		std::unique_ptr<FLodexSceneIndex> Index;
		std::unique_ptr<FLodexBestLocatorFinder> Finder;
	};

	TEST_F(LocatorLint, EachRuleNamesThePartItIsAboutAndTheBestReplacement)
	{
		const struct
		{
			const char* Lodestring;
			const char* Expected;
		} Rows[] = {
			// Sound locators: nothing to say.
			{"//Door", ""},
			{"//*[@tag = 'crate']", ""},
			{"/*[@name = 'House']/*[@name = 'Door']", ""},
			// Generated numbers, wherever a name is tested: bare, compared, a component's.
			{"//Cube_2", "W generated-suffix 'Cube_2' -> //*[@tag = 'crate']\n"},
			{"/*[@name = 'Cube_2']", "W generated-suffix '@name = 'Cube_2'' -> //*[@tag = 'crate']\n"},
			{"//Door/fn:component('Hinge_1')", "W generated-suffix '/fn:component('Hinge_1')'\n"},
			// Nothing stable finds the lamp: the warning stands without a replacement.
			{"//Lamp_3", "W generated-suffix 'Lamp_3'\n"},
			// A tag that another object carries finds the door only because of where it looks.
			{"//House/*[@tag = 'red']", "W shared-tag '[@tag = 'red']' -> //Door\n"},
			{"/*[@name = 'House']/*[@name = 'Door']/*[@tag = 'red']", "W shared-tag '[@tag = 'red']' -> //Knob\n"},
			{"//*[@tag = 'red' and @tag = 'red']/*[@tag = 'red']",
				"W shared-tag '[@tag = 'red' and @tag = 'red']' -> "
				"//Knob\nW shared-tag '[@tag = 'red']' -> //Knob\n"},
			// Errors, with no replacement: the text does not find one object.
			{"//Nobody", "E no-match '//Nobody'\n"},
			{"/*[@nam = 'x']", "E unreadable '@nam'\n"},
			{"//*[@tag = 'pair']", "E ambiguous '//*[@tag = 'pair']'\n"},
			// Both an error and what the text rests on.
			{"//Twin_1", "E no-match '//Twin_1'\nW generated-suffix 'Twin_1'\n"},
		};
		for (const auto& Row : Rows)
		{
			EXPECT_EQ(Summary(Row.Lodestring), Row.Expected) << Row.Lodestring;
		}
	}

	TEST_F(LocatorLint, DepthCountsTheStepsFromTheRootBeforeAnyDescendantStep)
	{
		const std::string Seven =
			"/*[@name = 'L1']/*[@name = 'L2']/*[@name = 'L3']/*[@name = 'L4']/*[@name = 'L5']/*[@name = "
			"'L6']/*[@name = 'L7']";
		EXPECT_EQ(Summary(Seven, 7), "");
		EXPECT_EQ(Summary(Seven, 6), "W deep-absolute '" + Seven + "' -> //L7\n");
		// "//" ends the run from the root; a property is no level.
		EXPECT_EQ(Summary("/*[@name = 'L1']/*[@name = 'L2']//L7", 1),
			"W deep-absolute '/*[@name = 'L1']/*[@name = 'L2']' -> //L7\n");
		EXPECT_EQ(Summary("//L1/*[@name = 'L2']/*[@name = 'L3']/*[@name = 'L4']", 1), "");
		EXPECT_EQ(Summary("/*[@name = 'L1']/@Mobility", 1), "");
		EXPECT_EQ(Summary("/*[@name = 'L1']/*[@name = 'L2']/@Mobility", 1),
			"W deep-absolute '/*[@name = 'L1']/*[@name = 'L2']' -> //L2/@Mobility\n");
	}

	TEST_F(LocatorLint, ACallThatTakesSeveralObjectsAcceptsSeveral)
	{
		EXPECT_EQ(Summary("//*[@tag = 'pair']", 5, false), "");
		EXPECT_EQ(Summary("//House/*[@tag = 'red']", 5, false), "");
		EXPECT_EQ(Summary("//Nobody", 5, false), "E no-match '//Nobody'\n");
		for (const char* Method : {"GetAllObjects", "FindObjects", "GetObjectList", "GetObjectCount", "FindAll"})
		{
			EXPECT_FALSE(LodexLintExpectsOneObject(Method)) << Method;
		}
		for (const char* Method : {"Click", "CallMethod", "WaitForObject", "Allow", "Install", "Counter", "Listen"})
		{
			EXPECT_TRUE(LodexLintExpectsOneObject(Method)) << Method;
		}
	}

	TEST_F(LocatorLint, AnAmbiguousLocatorListsEachMatchWithTheLocatorThatFindsItAlone)
	{
		const FLodexLintResult Result = Lint("//*[@tag = 'red' or @tag = 'pair']");
		EXPECT_EQ(Result.MatchCount, 4u);
		ASSERT_EQ(Result.Findings.size(), 1u);
		EXPECT_EQ(Result.Findings[0].Message, "//*[@tag = 'red' or @tag = 'pair'] matches 4 objects: not unique");
		const std::vector<std::string> Notes = {"match 1 of 4: //Door", "match 2 of 4: //Knob",
			"match 3 of 4: /*[@name = 'Twin'] (matches 2 objects: not unique)",
			"match 4 of 4: /*[@name = 'Twin'] (matches 2 objects: not unique)"};
		EXPECT_EQ(Result.Findings[0].Notes, Notes);
	}

	TEST_F(LocatorLint, TextThatIsNotUtf8OrHasControlCharactersIsReportedOnOneLine)
	{
		const FLodexLintResult NotText = Lint("//T\xFCr");
		ASSERT_EQ(NotText.Findings.size(), 1u);
		EXPECT_EQ(NotText.Findings[0].Message, "the Lodestring is not UTF-8 text; save the file as UTF-8");
		const FLodexLintResult Broken = Lint(std::string("//Do\tor\n\x01\r\0", 11));
		ASSERT_EQ(Broken.Findings.size(), 1u);
		EXPECT_EQ(Broken.Findings[0].Message, "//Do\\tor\\n\\u0001\\r\\0 matches no object");
	}
}
