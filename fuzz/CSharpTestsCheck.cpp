// Copyright Lodex contributors.
// Fuzz target csharp_tests: a C# test file scanned for the string literals passed to `api` calls, as `lodex lint`
// scans one, then linted against the embedded sample level in memory.
#include "CSharpLiterals.h"
#include "FuzzProperties.h"
#include "FuzzSample.h"
#include "LintCommand.h"

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
	const std::vector<FCSharpApiString> Literals = FindApiStringArguments(Input);
	const std::vector<std::string> Lines = LodexFuzz::SplitLines(Input);
	const bool bUtf8 = IsUtf8(Input);
	std::size_t Lodestrings = 0;
	std::size_t NotUtf8 = 0;
	std::vector<bool> bLiteralLines(Lines.size() + 1, false);
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
		bLiteralLines[Literal.Line] = true;
		const bool bLodestring = !Literal.Value.empty() && Literal.Value[0] == '/';
		Lodestrings += bLodestring ? 1 : 0;
		NotUtf8 += bLodestring && !IsUtf8(Literal.Value) ? 1 : 0;
	}

	FLodexLintCounts Counts;
	std::string Report;
	LintCSharpSource(LodexFuzz::GetSampleIndex(), "Test.cs", Input, Counts, Report);
	if (Counts.Checked != Lodestrings || Counts.Problems > Counts.Checked)
	{
		return "lint checked " + std::to_string(Counts.Checked) + " Lodestrings with " +
			std::to_string(Counts.Problems) + " problems; the file passes " + std::to_string(Lodestrings);
	}
	if (!Report.empty() && Report.back() != '\n')
	{
		return "lint's report does not end with a line break: " + Shown(Report);
	}
	std::vector<std::string> ReportLines = LodexFuzz::SplitLines(Report);
	ReportLines.pop_back();
	if (ReportLines.size() != Counts.Problems)
	{
		return "lint reports " + std::to_string(Counts.Problems) + " problems in " +
			std::to_string(ReportLines.size()) + " lines: " + Shown(Report);
	}
	std::size_t NotUtf8Reports = 0;
	for (const std::string& Line : ReportLines)
	{
		const std::string Failure = LodexFuzz::CheckFileError(Line, "Test.cs", Input, true);
		if (!Failure.empty())
		{
			return "lint's report: " + Failure;
		}
		std::size_t LineNumber = 0;
		std::size_t At = 8;
		for (; At < Line.size() && Line[At] >= '0' && Line[At] <= '9'; ++At)
		{
			LineNumber = LineNumber * 10 + static_cast<std::size_t>(Line[At] - '0');
		}
		// A Lodestring begins with "/": what follows "Test.cs:LINE: " tells the reports apart.
		const std::string NotUtf8Report = ": the Lodestring is not UTF-8 text; save the file as UTF-8";
		if (Line.compare(At, std::string::npos, NotUtf8Report) == 0)
		{
			++NotUtf8Reports;
		}
		if (LineNumber == 0 || LineNumber > Lines.size() || !bLiteralLines[LineNumber])
		{
			return "lint reports line " + std::to_string(LineNumber) + ", where no literal begins: " + Shown(Line);
		}
	}
	if (NotUtf8Reports != NotUtf8)
	{
		return "lint reports " + std::to_string(NotUtf8Reports) + " Lodestrings as not UTF-8 text, of " +
			std::to_string(NotUtf8) + ": " + Shown(Report);
	}
	return std::string();
}
