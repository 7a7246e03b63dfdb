// Copyright Lodex contributors.
// Fuzz target csharp_tests: a C# test file scanned for the string literals passed to `api` calls, as `lodex lint`
// scans one, then linted against the embedded sample level in memory.
#include "Lint/CSharpLexer.h"
#include "Lint/CSharpLiterals.h"
#include "FuzzProperties.h"
#include "FuzzSample.h"
#include "Lint/LintCommand.h"
#include "Lint/LintGithub.h"
#include "Lint/LintSarif.h"

#include "LodexDebugger/Core/Lodestring/LodexBestLocator.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace
{
	using LodexFuzz::Shown;

	bool IsUtf8(const std::string& Text)
	{
		for (std::size_t Index = 0; Index < Text.size();)
		{
			const std::size_t Length = LodexFuzz::Utf8SequenceLength(Text, Index);
			if (Length == 0)
			{
				return false;
			}
			Index += Length;
		}
		return true;
	}

	/** The text with each of C#'s line breaks (CR LF, CR, LF, U+0085, U+2028, U+2029) made one LF. */
	std::string WithLineFeeds(const std::string& Source)
	{
		std::string Text;
		Text.reserve(Source.size());
		for (std::size_t At = 0; At < Source.size();)
		{
			const std::size_t Break = CSharpLineBreakAt(Source, At);
			Text += Break > 0 ? '\n' : Source[At];
			At += Break > 0 ? Break : 1;
		}
		return Text;
	}

	/**
	 * The literal begins at its 1-based line and 1-based column, counted in characters: the bytes that are no UTF-8
	 * continuation byte (a byte-order mark is no character).
	 */
	std::string CheckLiteralPosition(
		const FCSharpApiString& Literal, const std::vector<std::string>& Lines, const std::string& Where)
	{
		if (Literal.Line < 1 || Literal.Line > Lines.size())
		{
			return Where + " is on line " + std::to_string(Literal.Line) + " of " + std::to_string(Lines.size());
		}
		const std::string& Line = Lines[Literal.Line - 1];
		std::size_t Byte = Literal.Line == 1 && Line.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
		for (std::size_t Characters = 0; Byte < Line.size(); ++Byte)
		{
			Characters += (static_cast<unsigned char>(Line[Byte]) & 0xC0) != 0x80 ? 1 : 0;
			if (Characters == Literal.Column)
			{
				break;
			}
		}
		if (Literal.Column < 1 || Byte >= Line.size() || (Line[Byte] != '"' && Line[Byte] != '@'))
		{
			return Where + " is said to begin at " + std::to_string(Literal.Line) + ":" +
				std::to_string(Literal.Column) + ", where no literal begins: " + Shown(Line);
		}
		return std::string();
	}
}

std::string CheckCSharpTestsInput(const std::string& Input)
{
	// Lines and columns are checked on the text as the compiler decodes it, each line break one LF.
	const std::string Source = DecodeCSharpSourceBytes(Input);
	const std::string LineText = WithLineFeeds(Source);
	const std::vector<FCSharpApiString> Literals = FindApiStringArguments(Source);
	const std::vector<std::string> Lines = LodexFuzz::SplitLines(LineText);
	const bool bUtf8 = IsUtf8(Source);
	std::size_t Lodestrings = 0;
	std::size_t NotUtf8 = 0;
	for (std::size_t Index = 0; Index < Literals.size(); ++Index)
	{
		const FCSharpApiString& Literal = Literals[Index];
		const std::string Where = "literal " + std::to_string(Index) + " '" + Shown(Literal.Value) + "'";
		std::string Failure = CheckLiteralPosition(Literal, Lines, Where);
		if (!Failure.empty())
		{
			return Failure;
		}
		if (Index > 0 &&
			(Literal.Line < Literals[Index - 1].Line ||
				(Literal.Line == Literals[Index - 1].Line && Literal.Column <= Literals[Index - 1].Column)))
		{
			return Where + " is found before the one it follows";
		}
		if (Literal.Method.empty())
		{
			return Where + " is passed to no method";
		}
		if (bUtf8 && !IsUtf8(Literal.Value))
		{
			return Where + " of a UTF-8 file is decoded to text that is not UTF-8";
		}
		const bool bLodestring = IsLintedApiString(Literal);
		Lodestrings += bLodestring ? 1 : 0;
		NotUtf8 += bLodestring && !IsUtf8(Literal.Value) ? 1 : 0;
	}

	static const FLodexBestLocatorFinder Finder(LodexFuzz::GetSampleIndex());
	FLodexLintReport Report;
	LintCSharpSource(LodexFuzz::GetSampleIndex(), Finder, "Test.cs", Input, FLodexLintOptions(), Report);
	if (Report.Checked != Lodestrings)
	{
		return "lint checked " + std::to_string(Report.Checked) + " Lodestrings; the file passes " +
			std::to_string(Lodestrings);
	}
	if (Report.Errors + Report.Warnings != Report.Diagnostics.size())
	{
		return "lint counts " + std::to_string(Report.Errors) + " errors and " + std::to_string(Report.Warnings) +
			" warnings for " + std::to_string(Report.Diagnostics.size()) + " findings";
	}
	const std::string Text = FormatLintReportText(Report, false);
	std::vector<std::string> ReportLines = LodexFuzz::SplitLines(Text);
	if (ReportLines.empty() || !ReportLines.back().empty())
	{
		return "lint's report does not end with a line break: " + Shown(Text);
	}
	ReportLines.pop_back();
	ReportLines.pop_back(); // the summary
	std::size_t Expected = 0;
	std::size_t NotUtf8Reports = 0;
	for (const FLodexLintDiagnostic& Diagnostic : Report.Diagnostics)
	{
		Expected += 1 + Diagnostic.Notes.size();
		NotUtf8Reports += Diagnostic.Message == "the Lodestring is not UTF-8 text; save the file as UTF-8" ? 1 : 0;
		if (Diagnostic.Line < 1 || Diagnostic.Line > Lines.size())
		{
			return "lint reports line " + std::to_string(Diagnostic.Line) + " of " + std::to_string(Lines.size());
		}
		// The region the CI reports give: in the file, and not ending before it begins.
		const FLodexLintRegion& Region = Diagnostic.Region;
		if (Region.EndLine < Region.Line || Region.EndLine > Lines.size() || Region.Utf16Column < Region.Column ||
			(Region.EndLine == Region.Line && Region.Utf16EndColumn < Region.Utf16Column))
		{
			return "lint reports the region " + std::to_string(Region.Line) + ":" + std::to_string(Region.Utf16Column) +
				"-" + std::to_string(Region.EndLine) + ":" + std::to_string(Region.Utf16EndColumn) +
				" for a finding at " + std::to_string(Diagnostic.Line) + ":" + std::to_string(Diagnostic.Column);
		}
	}
	if (ReportLines.size() != Expected)
	{
		return "lint's report has " + std::to_string(ReportLines.size()) + " lines for " + std::to_string(Expected) +
			" findings and notes: " + Shown(Text);
	}
	for (const std::string& Line : ReportLines)
	{
		// Each line names the file, a line and a column of it, then what is wrong.
		const std::string Failure = LodexFuzz::CheckFileError(Line, "Test.cs", LineText, false);
		if (!Failure.empty())
		{
			return "lint's report: " + Failure;
		}
	}
	if (NotUtf8Reports != NotUtf8)
	{
		return "lint reports " + std::to_string(NotUtf8Reports) + " Lodestrings as not UTF-8 text, of " +
			std::to_string(NotUtf8) + ": " + Shown(Text);
	}
	const nlohmann::json Json = nlohmann::json::parse(FormatLintReportJson(Report, false), nullptr, false);
	if (Json.is_discarded() || !Json["diagnostics"].is_array() ||
		Json["diagnostics"].size() != Report.Diagnostics.size())
	{
		return "lint's JSON report does not list its findings: " + Shown(FormatLintReportJson(Report, false));
	}
	const nlohmann::json Sarif = nlohmann::json::parse(FormatLintReportSarif(Report, {}), nullptr, false);
	if (Sarif.is_discarded() || Sarif["runs"][0]["results"].size() != Report.Diagnostics.size())
	{
		return "lint's SARIF report does not list its findings: " + Shown(FormatLintReportSarif(Report, {}));
	}
	const std::string Github = FormatLintReportGithub(Report, {});
	if (static_cast<std::size_t>(std::count(Github.begin(), Github.end(), '\n')) != Report.Diagnostics.size())
	{
		return "lint's workflow commands are not one line a finding: " + Shown(Github);
	}
	return std::string();
}
