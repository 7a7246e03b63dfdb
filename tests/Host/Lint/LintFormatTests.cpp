// Copyright Lodex contributors.
// The reports CI systems read: SARIF for code scanning, JUnit XML for test reports, GitHub workflow commands; -o.
#include "Lint/LintGithub.h"
#include "LodexRun.h"
#include "TempDir.h"

#include "LodexDebugger/Core/Lodestring/LodexLintRuleTable.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>

namespace
{
	using FJson = nlohmann::json;

	/** Cube_2 (tag crate) and Lamp_3 saved with the level, two Twins sharing a tag. */
	const char* const FormatScene = R"({"objects": [
  {"id": "lvl", "kind": "other", "name": "PersistentLevel"},
  {"id": "cube", "kind": "actor", "name": "Cube_2", "outer": "lvl", "tags": ["crate"]},
  {"id": "lamp", "kind": "actor", "name": "Lamp_3", "outer": "lvl", "placed": true},
  {"id": "twin1", "kind": "actor", "name": "Twin", "outer": "lvl", "tags": ["pair"]},
  {"id": "twin2", "kind": "actor", "name": "Twin", "outer": "lvl", "tags": ["pair"]}
]})";

	/**
	 * Line 2 has "Tür 用户 😀" before the literal: 9 UTF-16 units, 8 characters, 15 bytes. The finding on Cube_2 begins
	 * at UTF-16 column 35 and ends before 41.
	 */
	const char* const FormatTest =
		"// Crates\n"
		"var s = \"T\xC3\xBCr \xE7\x94\xA8\xE6\x88\xB7 \xF0\x9F\x98\x80\"; api.Click(\"//Cube_2\");\n"
		"api.Click(@\"//Tw\"\"in\");\n"
		"api.Click(\"//Lamp_3\");\n";

	/** The messages of the warning on Cube_2 and of the note on Lamp_3. */
	const std::string Generated =
		"the name 'Cube_2' ends in a generated instance number, which can change from one run "
		"to the next; suggested: //*[@tag = 'crate']";
	const std::string Placed = "the name 'Lamp_3' ends in an instance number saved with the level: it is the same on "
							   "every run, but an edit of the level may renumber it; a tag on the object, or on an "
							   "ancestor, would not";

	class LintFormats : public ::testing::Test
	{
	protected:
		void SetUp() override
		{
			ASSERT_FALSE(Dir.Path.empty());
			ASSERT_EQ(mkdir(Dir.File("tests").c_str(), 0755), 0);
			Scene = Dir.Write("scene.json", FormatScene);
		}

		FLodexRun Lint(const std::string& Format, const std::string& Source, std::vector<std::string> More = {})
		{
			const std::string File = Dir.Write("tests/Crate Tests.cs", Source);
			std::vector<std::string> Args = {"lint", "--scene", Scene, "--format", Format, "--root", Dir.Path, File};
			Args.insert(Args.end(), More.begin(), More.end());
			return RunLodex(Args);
		}

		FJson Sarif(const std::string& Source)
		{
			const FLodexRun Run = Lint("sarif", Source);
			EXPECT_EQ(Run.Exit, 1);
			return FJson::parse(Run.Out);
		}

		FTempDir Dir;
		std::string Scene;
	};

	TEST(LintGithub, EscapesAsTheActionsToolkitDoes)
	{
		struct FRow
		{
			const char* Text;
			const char* Data;
			const char* Property;
		};
		const FRow Rows[] = {
			{"plain text", "plain text", "plain text"},
			{"100%", "100%25", "100%25"},
			{"a\nb\r\nc", "a%0Ab%0D%0Ac", "a%0Ab%0D%0Ac"},
			{"C:\\x, y", "C:\\x, y", "C%3A\\x%2C y"},
			{"%0A", "%250A", "%250A"},
			{"::error::", "::error::", "%3A%3Aerror%3A%3A"},
		};
		for (const FRow& Row : Rows)
		{
			EXPECT_EQ(EscapeGithubCommandData(Row.Text), Row.Data) << Row.Text;
			EXPECT_EQ(EscapeGithubCommandProperty(Row.Text), Row.Property) << Row.Text;
		}
	}

	TEST_F(LintFormats, GithubWritesOneWorkflowCommandAFinding)
	{
		const FLodexRun Run = Lint("github", FormatTest);
		EXPECT_EQ(Run.Exit, 1);
		EXPECT_EQ(Run.Out,
			"::warning file=tests/Crate Tests.cs,line=2,col=35,endColumn=40,title=lodex generated-suffix::" +
				Generated +
				"\n::error file=tests/Crate Tests.cs,line=3,col=13,endColumn=20,title=lodex no-match:://Tw\"in "
				"matches no object\n::notice file=tests/Crate Tests.cs,line=4,col=14,endColumn=19,title=lodex "
				"placed-generated-suffix::" +
				Placed + "\n");
		// The summary stays off standard output, which is the workflow's log.
		EXPECT_EQ(Run.Err, "Checked 3 Lodestrings in 1 file: 1 error, 1 warning, 1 note\n");
		// A region over two lines has no columns.
		EXPECT_EQ(Lint("github", "api.Click(@\"//Nobody\n\");").Out,
			"::error file=tests/Crate Tests.cs,line=1,endLine=2,title=lodex no-match:://Nobody\\n matches no object\n");
	}

	TEST_F(LintFormats, SarifHasWhatCodeScanningReads)
	{
		const FJson Log = Sarif(FormatTest);
		EXPECT_EQ(Log["version"], "2.1.0");
		EXPECT_EQ(Log["$schema"], "https://json.schemastore.org/sarif-2.1.0.json");
		ASSERT_EQ(Log["runs"].size(), 1u);
		const FJson& Run = Log["runs"][0];
		EXPECT_EQ(Run["columnKind"], "utf16CodeUnits");
		const FJson& Driver = Run["tool"]["driver"];
		EXPECT_EQ(Driver["name"], "lodex");
		EXPECT_EQ(Driver["version"], "0.1.0");
		EXPECT_EQ(Driver["informationUri"].get<std::string>().rfind("https://", 0), 0u);
		// Every rule of the table, in its order, with its texts and default level.
		const FLodexLintRuleList Rules = GetLodexLintRules();
		ASSERT_EQ(Driver["rules"].size(), Rules.Count);
		EXPECT_EQ(Driver["rules"][1], FJson::parse(R"({"id": "no-match", "name": "NoMatch",
				"shortDescription": {"text": "The Lodestring matches no object"},
				"fullDescription": {"text": "it matches no object of the scene"},
				"help": {"text": "it matches no object of the scene", "markdown": "it matches no object of the scene"},
				"defaultConfiguration": {"level": "error"}})"));
		for (std::size_t Index = 0; Index < Rules.Count; ++Index)
		{
			EXPECT_EQ(Driver["rules"][Index]["id"], Rules.Rules[Index].Id);
			EXPECT_EQ(Driver["rules"][Index]["defaultConfiguration"]["level"],
				GetLodexLintSeverityText(Rules.Rules[Index].Severity));
		}

		const FJson& Results = Run["results"];
		ASSERT_EQ(Results.size(), 3u);
		FJson Warning = Results[0];
		ASSERT_TRUE(Warning["partialFingerprints"].contains("lodexFinding/v1"));
		Warning.erase("partialFingerprints");
		// The region is the name with the generated number; the fix replaces the literal's content.
		EXPECT_EQ(Warning,
			FJson::parse(R"({"ruleId": "generated-suffix", "ruleIndex": 3, "level": "warning",
			"message": {"text": ")" +
				Generated + R"("},
			"locations": [{"physicalLocation": {"artifactLocation": {"uri": "tests/Crate%20Tests.cs"},
				"region": {"startLine": 2, "startColumn": 35, "endLine": 2, "endColumn": 41}}}],
			"fixes": [{"description": {"text": "Use //*[@tag = 'crate']"}, "artifactChanges": [{
				"artifactLocation": {"uri": "tests/Crate%20Tests.cs"},
				"replacements": [{"deletedRegion": {"startLine": 2, "startColumn": 33, "endLine": 2, "endColumn": 41},
					"insertedContent": {"text": "//*[@tag = 'crate']"}}]}]}]})"));
		// An error, its region as SarifRegionsSpanThePartAtFaultAsWritten has it.
		EXPECT_EQ(Results[1]["ruleId"], "no-match");
		EXPECT_EQ(Results[1]["level"], "error");
		EXPECT_EQ(Results[1]["message"]["text"], "//Tw\"in matches no object");
		// A note is a result of level note.
		EXPECT_EQ(Results[2]["ruleId"], "placed-generated-suffix");
		EXPECT_EQ(Results[2]["level"], "note");
	}

	TEST_F(LintFormats, SarifFingerprintsFollowTheLodestringNotTheLine)
	{
		const auto Fingerprints = [this](const std::string& Source)
		{
			std::vector<std::string> Out;
			const FJson Log = Sarif(Source);
			for (const FJson& Result : Log["runs"][0]["results"])
			{
				Out.push_back(Result["partialFingerprints"]["lodexFinding/v1"]);
			}
			return Out;
		};
		const std::vector<std::string> Before = Fingerprints(FormatTest);
		ASSERT_EQ(Before.size(), 3u);
		EXPECT_EQ(Fingerprints(std::string("using System;\n\n// moved down\n") + FormatTest), Before);
		// Another Lodestring for the crate is another finding.
		std::string Edited = FormatTest;
		Edited.replace(Edited.find("//Cube_2"), 8, "/*[@name = 'Cube_2']");
		const std::vector<std::string> After = Fingerprints(Edited);
		ASSERT_EQ(After.size(), 3u);
		EXPECT_NE(After[0], Before[0]);
		EXPECT_EQ(After[1], Before[1]);
		// The same finding twice in a file: two fingerprints.
		const std::vector<std::string> Twice =
			Fingerprints("api.Click(\"//Nobody\");\napi.Click(\"//Nobody\");\napi.Click(\"//Tw\\\"in\");\n");
		ASSERT_EQ(Twice.size(), 3u);
		// The hash, then the count of such findings so far in the file: 1 for the first.
		EXPECT_EQ(Twice[0].substr(Twice[0].size() - 2), ":1");
		EXPECT_EQ(Twice[1], Twice[0].substr(0, Twice[0].size() - 2) + ":2");
		EXPECT_EQ(Twice[2], Before[1]); // a regular literal or a verbatim one: the same Lodestring
	}

	TEST_F(LintFormats, SarifRegionsSpanThePartAtFaultAsWritten)
	{
		struct FRow
		{
			const char* Source;
			const char* Region;
			/** The literal's content a fix replaces, or null when there is no fix. */
			const char* FixRegion;
		};
		const FRow Rows[] = {
			// An escape stands for its character: the region begins or ends where the escape does.
			{R"(api.Click("\u002F/Cube_2");)", "1:19-1:25", "1:12-1:25"},
			{R"(api.Click("//Cube\u005F2");)", "1:14-1:25", "1:12-1:25"},
			{R"(api.Click("//Tw\x22");)", "1:12-1:20", nullptr},
			{R"(api.Click(@"//Tw""");)", "1:13-1:19", nullptr},
			// A raw literal's findings are at its opening quotes, and it takes no fix.
			{R"(api.Click("""//Cube_2""");)", "1:11-1:14", nullptr},
			// What is missing at the end: the place before the closing quote.
			{R"(api.Click("//A[");)", "1:15-1:16", nullptr},
			// A verbatim literal's line break: the region ends on the next line, or lies there.
			{"api.Click(@\"//Nobody\n\");", "1:13-2:1", nullptr},
			{"api.Click(@\"/*[@name = 'X\n' or @name = 'Cube_2']\");", "2:6-2:22", "1:13-2:23"},
		};
		const auto Shown = [](const FJson& Region)
		{
			return std::to_string(Region["startLine"].get<int>()) + ":" +
				std::to_string(Region["startColumn"].get<int>()) + "-" + std::to_string(Region["endLine"].get<int>()) +
				":" + std::to_string(Region["endColumn"].get<int>());
		};
		for (const FRow& Row : Rows)
		{
			const FJson Log = FJson::parse(Lint("sarif", Row.Source).Out);
			const FJson& Results = Log["runs"][0]["results"];
			ASSERT_EQ(Results.size(), 1u) << Row.Source;
			EXPECT_EQ(Shown(Results[0]["locations"][0]["physicalLocation"]["region"]), Row.Region) << Row.Source;
			if (Row.FixRegion == nullptr)
			{
				EXPECT_FALSE(Results[0].contains("fixes")) << Row.Source;
				continue;
			}
			const FJson& Replacement = Results[0]["fixes"][0]["artifactChanges"][0]["replacements"][0];
			EXPECT_EQ(Shown(Replacement["deletedRegion"]), Row.FixRegion) << Row.Source;
			EXPECT_EQ(Replacement["insertedContent"]["text"], "//*[@tag = 'crate']") << Row.Source;
		}
	}

	/** An element and what it holds as lines indented by depth: name, attributes in order, then text, if any. */
	void ShowXmlElement(xmlNode* Node, const std::string& Indent, std::string& Out)
	{
		Out += Indent + reinterpret_cast<const char*>(Node->name);
		for (xmlAttr* Attribute = Node->properties; Attribute != nullptr; Attribute = Attribute->next)
		{
			xmlChar* Value = xmlNodeListGetString(Node->doc, Attribute->children, 1);
			Out += std::string(" ") + reinterpret_cast<const char*>(Attribute->name) + "=[" +
				reinterpret_cast<const char*>(Value) + "]";
			xmlFree(Value);
		}
		Out += "\n";
		for (xmlNode* Child = Node->children; Child != nullptr; Child = Child->next)
		{
			if (Child->type == XML_ELEMENT_NODE)
			{
				ShowXmlElement(Child, Indent + "  ", Out);
			}
			else if (Child->type == XML_TEXT_NODE && Node->children->next == nullptr)
			{
				Out += Indent + "  [" + reinterpret_cast<const char*>(Child->content) + "]\n";
			}
		}
	}

	/** The document as libxml2 reads it, strictly: a malformed one fails the test. */
	std::string ReadJunit(const std::string& Text)
	{
		xmlDoc* Document = xmlReadMemory(Text.data(), static_cast<int>(Text.size()), "junit.xml", nullptr,
			XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
		EXPECT_NE(Document, nullptr) << Text;
		std::string Shown;
		if (Document != nullptr)
		{
			ShowXmlElement(xmlDocGetRootElement(Document), "", Shown);
			xmlFreeDoc(Document);
		}
		return Shown;
	}

	TEST_F(LintFormats, JunitIsASuiteAFileAndACaseALodestring)
	{
		Dir.Write("tests/Empty.cs", "// no api call\n");
		const std::string TestFile = Dir.Write("tests/Crate Tests.cs", FormatTest);
		const auto Junit = [&](bool bStrict)
		{
			std::vector<std::string> Args = {
				"lint", "--scene", Scene, "--format", "junit", "--root", Dir.Path, Dir.File("tests")};
			if (bStrict)
			{
				Args.push_back("--strict");
			}
			const FLodexRun Run = RunLodex(Args);
			EXPECT_EQ(Run.Exit, 1);
			return ReadJunit(Run.Out);
		};
		// A warning passes, its line in the case's output; an error fails with its message; a note never fails.
		const auto Expected = [&](const std::string& Failures, const std::string& CubeOutput)
		{
			return "testsuites name=[lodex lint] tests=[3] failures=[" + Failures +
				"] errors=[0]\n  testsuite name=[tests/Crate Tests.cs] tests=[3] failures=[" + Failures +
				"] errors=[0] skipped=[0]\n"
				"    testcase classname=[tests.Crate Tests] name=[2:31 //Cube_2] file=[tests/Crate Tests.cs] "
				"line=[2]\n" +
				CubeOutput + "        [" + TestFile + ":2:34: warning: " + Generated + " [generated-suffix]\n]\n" +
				"    testcase classname=[tests.Crate Tests] name=[3:11 //Tw\"in] file=[tests/Crate Tests.cs] line=[3]\n"
				"      failure message=[//Tw\"in matches no object] type=[no-match]\n        [" +
				TestFile + ":3:13: error: //Tw\"in matches no object [no-match]\n]\n" +
				"    testcase classname=[tests.Crate Tests] name=[4:11 //Lamp_3] file=[tests/Crate Tests.cs] line=[4]\n"
				"      system-out\n        [" +
				TestFile + ":4:14: note: " + Placed + " [placed-generated-suffix]\n]\n" +
				"  testsuite name=[tests/Empty.cs] tests=[0] failures=[0] errors=[0] skipped=[0]\n";
		};
		EXPECT_EQ(Junit(false), Expected("1", "      system-out\n"));
		EXPECT_EQ(Junit(true), Expected("2", "      failure message=[" + Generated + "] type=[generated-suffix]\n"));
	}

	TEST_F(LintFormats, OutputGoesToTheFileWholeAndTheSummaryToStandardError)
	{
		const std::string Report = Dir.File("report.sarif");
		const FLodexRun Run = Lint("sarif", FormatTest, {"-o", Report});
		EXPECT_EQ(Run.Exit, 1);
		EXPECT_EQ(Run.Out, "");
		EXPECT_EQ(Run.Err, "Checked 3 Lodestrings in 1 file: 1 error, 1 warning, 1 note\n");
		EXPECT_EQ(FJson::parse(FTempDir::Read(Report))["runs"][0]["results"].size(), 3u);

		// Text to a file: all of it there, the summary on standard error as well.
		const FLodexRun Text = Lint("text", "api.Click(\"//Twin\");\n", {"-o", Report});
		EXPECT_EQ(Text.Out, "");
		EXPECT_EQ(FTempDir::Read(Report), Lint("text", "api.Click(\"//Twin\");\n").Out);
		EXPECT_EQ(Text.Err, "Checked 1 Lodestring in 1 file: 1 error, 0 warnings\n");

		// A file that cannot be written: one line, and nothing left behind.
		const FLodexRun Failed = Lint("junit", FormatTest, {"-o", Dir.File("missing/report.xml")});
		EXPECT_EQ(Failed.Exit, 1);
		EXPECT_EQ(Failed.Out, "");
		EXPECT_EQ(Failed.Err.rfind("lodex: " + Dir.File("missing/report.xml") + ": ", 0), 0u) << Failed.Err;
		EXPECT_EQ(std::count(Failed.Err.begin(), Failed.Err.end(), '\n'), 1);
		EXPECT_FALSE(FTempDir::Exists(Dir.File("missing")));
	}
}
