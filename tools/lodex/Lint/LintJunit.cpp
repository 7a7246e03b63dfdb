// Copyright Lodex contributors.
#include "LintJunit.h"

#include "LintCommand.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <map>

namespace
{
	/** Text as XML 1.0 character data or an attribute value: markup escaped, what XML cannot hold replaced. */
	std::string EscapeJunitXml(const std::string& Text)
	{
		std::string Out;
		std::size_t Index = 0;
		while (Index < Text.size())
		{
			const std::size_t Length = LodexText::Utf8SequenceLength(Text, Index);
			const char Char = Text[Index];
			if (Length == 0)
			{
				Out += "\xEF\xBF\xBD"; // a byte that is not UTF-8: U+FFFD
				++Index;
				continue;
			}
			switch (Char)
			{
				case '&':
					Out += "&amp;";
					break;
				case '<':
					Out += "&lt;";
					break;
				case '>':
					Out += "&gt;";
					break;
				case '"':
					Out += "&quot;";
					break;
				case '\n':
					Out += "&#10;";
					break;
				case '\t':
					Out += "&#9;";
					break;
				default:
					if (static_cast<unsigned char>(Char) < 0x20)
					{
						Out += "\xEF\xBF\xBD"; // no control character but tab and line feed is XML
					}
					else
					{
						Out.append(Text, Index, Length);
					}
			}
			Index += Length;
		}
		return Out;
	}

	/** "tests/Door/DoorTests.cs" as a class name: "tests.Door.DoorTests". */
	std::string JunitClassName(const std::string& RelativePath)
	{
		std::string Name = RelativePath;
		const std::size_t Dot = Name.rfind('.');
		if (Dot != std::string::npos && Name.find('/', Dot) == std::string::npos && Dot > 0)
		{
			Name.erase(Dot);
		}
		for (char& Char : Name)
		{
			Char = Char == '/' ? '.' : Char;
		}
		return Name;
	}

	std::string JunitFindingLine(const FLodexLintDiagnostic& Diagnostic)
	{
		std::string Line = Diagnostic.File + ":" + std::to_string(Diagnostic.Line) + ":" +
			std::to_string(Diagnostic.Column) + ": " + GetLodexLintSeverityText(Diagnostic.Severity) + ": " +
			GetLintMessageWithSuggestion(Diagnostic) + " [" + Diagnostic.Rule + "]\n";
		for (const std::string& Note : Diagnostic.Notes)
		{
			Line += "  note: " + Note + "\n";
		}
		return Line;
	}

	struct FJunitSuite
	{
		std::string File;
		std::size_t Tests = 0;
		std::size_t Failures = 0;
		std::string Cases;
	};
}

std::string FormatLintReportJunit(const FLodexLintReport& Report, const FLodexLintFormatOptions& Options)
{
	// One suite a file, in the order the files were checked; a file with no Lodestring is a suite of no test.
	std::vector<FJunitSuite> Suites;
	std::map<std::string, std::size_t> SuiteOfFile;
	for (const std::string& File : Report.CheckedFiles)
	{
		if (SuiteOfFile.emplace(File, Suites.size()).second)
		{
			Suites.push_back({File, 0, 0, std::string()});
		}
	}
	for (const FLodexLintCheck& Check : Report.Checks)
	{
		const auto Found = SuiteOfFile.emplace(Check.File, Suites.size());
		if (Found.second)
		{
			Suites.push_back({Check.File, 0, 0, std::string()});
		}
		FJunitSuite* Suite = &Suites[Found.first->second];
		const std::string Relative = GetLintRelativePath(Check.File, Options.Root);
		std::string Failing;
		std::string FirstFailure;
		std::string FirstRule;
		std::string Passing;
		for (std::size_t Index = Check.FirstDiagnostic; Index < Check.FirstDiagnostic + Check.DiagnosticCount; ++Index)
		{
			const FLodexLintDiagnostic& Diagnostic = Report.Diagnostics[Index];
			if (IsFailingLintDiagnostic(Diagnostic, Options.bStrict))
			{
				if (FirstFailure.empty())
				{
					FirstFailure = GetLintMessageWithSuggestion(Diagnostic);
					FirstRule = Diagnostic.Rule;
				}
				Failing += JunitFindingLine(Diagnostic);
			}
			else
			{
				Passing += JunitFindingLine(Diagnostic);
			}
		}
		++Suite->Tests;
		std::string& Out = Suite->Cases;
		Out += "    <testcase classname=\"" + EscapeJunitXml(JunitClassName(Relative)) + "\" name=\"" +
			EscapeJunitXml(std::to_string(Check.Line) + ":" + std::to_string(Check.Column) + " " + Check.Lodestring) +
			"\" file=\"" + EscapeJunitXml(Relative) + "\" line=\"" + std::to_string(Check.Line) + "\"";
		if (Failing.empty() && Passing.empty())
		{
			Out += "/>\n";
			continue;
		}
		Out += ">\n";
		if (!Failing.empty())
		{
			++Suite->Failures;
			Out += "      <failure message=\"" + EscapeJunitXml(FirstFailure) + "\" type=\"" +
				EscapeJunitXml(FirstRule) + "\">" + EscapeJunitXml(Failing) + "</failure>\n";
		}
		if (!Passing.empty())
		{
			Out += "      <system-out>" + EscapeJunitXml(Passing) + "</system-out>\n";
		}
		Out += "    </testcase>\n";
	}
	std::size_t Tests = 0;
	std::size_t Failures = 0;
	std::string Body;
	for (const FJunitSuite& Suite : Suites)
	{
		Tests += Suite.Tests;
		Failures += Suite.Failures;
		Body += "  <testsuite name=\"" + EscapeJunitXml(GetLintRelativePath(Suite.File, Options.Root)) + "\" tests=\"" +
			std::to_string(Suite.Tests) + "\" failures=\"" + std::to_string(Suite.Failures) +
			"\" errors=\"0\" skipped=\"0\"";
		Body += Suite.Cases.empty() ? "/>\n" : ">\n" + Suite.Cases + "  </testsuite>\n";
	}
	return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"lodex lint\" tests=\"" +
		std::to_string(Tests) + "\" failures=\"" + std::to_string(Failures) + "\" errors=\"0\">\n" + Body +
		"</testsuites>\n";
}
