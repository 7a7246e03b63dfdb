// Copyright Lodex contributors.
// Every list of the lint rules is the one table: the rules table of docs/lodex.md, and `lodex lint --list-rules`.
#include "LodexRun.h"
#include "TempDir.h"

#include "LodexDebugger/Core/Lodestring/LodexLintRuleTable.h"

#include <gtest/gtest.h>

#include <sstream>

namespace
{
	TEST(LintRuleTable, TheDocsTableAndListRulesAreTheRuleTable)
	{
		std::string Expected;
		const FLodexRun Run = RunLodex({"lint", "--list-rules"});
		EXPECT_EQ(Run.Exit, 0);
		std::istringstream Listed(Run.Out);
		std::string Line;
		std::getline(Listed, Line);
		EXPECT_EQ(Line.rfind("rule ", 0), 0u);
		std::getline(Listed, Line); // the rule under the header
		for (const FLodexLintRule& Rule : GetLodexLintRules())
		{
			Expected += std::string("| `") + Rule.Id + "` | " + GetLodexLintSeverityText(Rule.Severity) + " | " +
				Rule.Help + " |\n";
			// Each rule once on the list: its id, its severity, its summary.
			ASSERT_TRUE(std::getline(Listed, Line));
			std::istringstream Words(Line);
			std::string Id;
			std::string Severity;
			Words >> Id >> Severity;
			EXPECT_EQ(Id, Rule.Id);
			EXPECT_EQ(Severity, GetLodexLintSeverityText(Rule.Severity));
			EXPECT_EQ(Line.substr(Line.size() - std::string(Rule.Summary).size()), Rule.Summary);
		}
		EXPECT_FALSE(std::getline(Listed, Line));
		// The rows of the table that follows "### Rules" in the document.
		const std::string Document = FTempDir::Read(LODEX_SOURCE_DIR "/docs/lodex.md");
		std::istringstream In(Document.substr(std::min(Document.find("\n### Rules\n"), Document.size())));
		std::string Documented;
		bool bInTable = false;
		while (std::getline(In, Line) && (!bInTable || Line.rfind("|", 0) == 0))
		{
			bInTable = bInTable || Line.rfind("|", 0) == 0;
			Documented += Line.rfind("| `", 0) == 0 ? Line + "\n" : "";
		}
		EXPECT_EQ(Documented, Expected);
	}
}
