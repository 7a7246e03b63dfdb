// Copyright Lodex contributors.
// Checking the literals of one C# file, and placing each finding in the file: where the part of the literal at fault
// begins and ends, in characters and in UTF-16 code units, and the literal's content a replacement would take.
#include "CSharpLiterals.h"
#include "LintCommand.h"

#include "LodexDebugger/Core/Lodestring/LodexBestLocator.h"
#include "LodexDebugger/Core/Lodestring/LodexSceneIndex.h"

#include <algorithm>
#include <cctype>
#include <iterator>

namespace
{
	/** How a literal is written, as far as writing a replacement into it needs to know. */
	enum class ELintLiteralKind
	{
		Regular,
		Verbatim,
		/** Raw ("""..."""), or not known: its findings point at its start and it takes no replacement. */
		Other,
	};

	ELintLiteralKind KindOfLintLiteral(const std::string& Source, const FCSharpApiString& Literal)
	{
		if (Literal.ValueOffsets.empty())
		{
			return ELintLiteralKind::Other;
		}
		const std::size_t First = Literal.ValueOffsets.front();
		if (First == 0 || First > Source.size() || Source[First - 1] != '"')
		{
			return ELintLiteralKind::Other;
		}
		return First >= 2 && Source[First - 2] == '@' ? ELintLiteralKind::Verbatim : ELintLiteralKind::Regular;
	}

	std::size_t LintHexDigitsAt(const std::string& Source, std::size_t At, std::size_t Most)
	{
		std::size_t Count = 0;
		while (
			Count < Most && At + Count < Source.size() && std::isxdigit(static_cast<unsigned char>(Source[At + Count])))
		{
			++Count;
		}
		return Count;
	}

	/** Where the source of the character or escape at Offset ends. */
	std::size_t EndOfLintSourceCharacter(const std::string& Source, std::size_t Offset, ELintLiteralKind Kind)
	{
		if (Offset >= Source.size())
		{
			return Source.size();
		}
		if (Kind == ELintLiteralKind::Regular && Source[Offset] == '\\' && Offset + 1 < Source.size())
		{
			const char Escape = Source[Offset + 1];
			const std::size_t Digits = Escape == 'x' ? LintHexDigitsAt(Source, Offset + 2, 4)
				: Escape == 'u'                      ? LintHexDigitsAt(Source, Offset + 2, 4)
				: Escape == 'U'                      ? LintHexDigitsAt(Source, Offset + 2, 8)
													 : 0;
			return Offset + 2 + Digits;
		}
		if (Kind == ELintLiteralKind::Verbatim && Source[Offset] == '"')
		{
			return Offset + 2; // a doubled quote
		}
		const unsigned char Lead = static_cast<unsigned char>(Source[Offset]);
		const std::size_t Length = Lead >= 0xF0 ? 4 : Lead >= 0xE0 ? 3 : Lead >= 0xC0 ? 2 : 1;
		return std::min(Source.size(), Offset + Length);
	}

	FLodexLintRegion LintRegionOfOffsets(const FCSharpSourceLines& Lines, std::size_t Begin, std::size_t End)
	{
		FLodexLintRegion Region;
		const FCSharpPosition Start = Lines.PositionOf(Begin);
		const FCSharpPosition Stop = Lines.PositionOf(End);
		Region.Line = Start.Line;
		Region.Column = Start.Column;
		Region.EndLine = Stop.Line;
		Region.EndColumn = Stop.Column;
		Region.Utf16Column = Start.Utf16Column;
		Region.Utf16EndColumn = Stop.Utf16Column;
		return Region;
	}

	/** The source offsets the value's bytes [Begin, End) were read from; a raw literal's are its opening quotes. */
	void LintSourceRange(const std::string& Source, const FCSharpApiString& Literal, std::size_t Begin, std::size_t End,
		std::size_t& OutBegin, std::size_t& OutEnd)
	{
		const std::vector<std::uint32_t>& Offsets = Literal.ValueOffsets;
		const ELintLiteralKind Kind = KindOfLintLiteral(Source, Literal);
		if (Offsets.empty() || Kind == ELintLiteralKind::Other)
		{
			OutBegin = Offsets.empty() ? 0 : Offsets.front();
			OutEnd = OutBegin;
			while (OutEnd < Source.size() && Source[OutEnd] == '"')
			{
				++OutEnd;
			}
			return;
		}
		const std::size_t ValueEnd = EndOfLintSourceCharacter(Source, Offsets.back(), Kind);
		OutBegin = Begin < Offsets.size() ? Offsets[Begin] : ValueEnd;
		OutEnd = End < Offsets.size() ? Offsets[End] : ValueEnd;
		OutEnd = std::max(OutBegin, OutEnd);
	}

	/** The text as a literal of that kind writes it. */
	std::string WriteLintLiteralContent(const std::string& Text, ELintLiteralKind Kind)
	{
		static const char Hex[] = "0123456789ABCDEF";
		std::string Out;
		for (const char Char : Text)
		{
			const unsigned char Byte = static_cast<unsigned char>(Char);
			if (Kind == ELintLiteralKind::Verbatim)
			{
				Out += Char == '"' ? std::string("\"\"") : std::string(1, Char);
			}
			else if (Char == '"' || Char == '\\')
			{
				Out += std::string("\\") + Char;
			}
			else if (Byte < 0x20 || Byte == 0x7F)
			{
				Out += Char == '\n' ? "\\n"
					: Char == '\r'  ? "\\r"
					: Char == '\t'  ? "\\t"
					: Char == '\0'  ? "\\0"
									: std::string("\\u00") + Hex[Byte >> 4] + Hex[Byte & 15];
			}
			else
			{
				Out += Char;
			}
		}
		return Out;
	}

	void CountLintFinding(ELodexLintSeverity Severity, FLodexLintReport& Report)
	{
		(Severity == ELodexLintSeverity::Error            ? Report.Errors
				: Severity == ELodexLintSeverity::Warning ? Report.Warnings
														  : Report.Notes) += 1;
	}

	FLodexLintCheck& AddLintCheck(
		const std::string& FileName, const FCSharpApiString& Literal, FLodexLintReport& Report)
	{
		FLodexLintCheck Check;
		Check.File = FileName;
		Check.Line = Literal.Line;
		Check.Column = Literal.Column;
		Check.Lodestring = ShowLodestringOnOneLine(Literal.Value);
		Check.Method = Literal.Method;
		Check.FirstDiagnostic = Report.Diagnostics.size();
		Report.Checks.push_back(std::move(Check));
		return Report.Checks.back();
	}
}

bool IsLintedApiString(const FCSharpApiString& Literal)
{
	// A method name, a value, or the level a test loads: not a Lodestring.
	return !Literal.Value.empty() && Literal.Value[0] == '/' && Literal.Method != "LoadLevel";
}

void LintApiString(const FLodexLintTarget& Target, const std::string& FileName, const FCSharpSourceLines& Lines,
	const FCSharpApiString& Literal, const FLodexLintOptions& Options, FLodexLintReport& Report)
{
	const std::string& Source = Lines.GetSource();
	++Report.Checked;
	FLodexLintCheck& Check = AddLintCheck(FileName, Literal, Report);
	FLodexLintOptions CallOptions = Options;
	CallOptions.bExpectsOneObject = LodexLintExpectsOneObject(Literal.Method);
	CallOptions.bSceneHoldsOnlyPlaced = Target.bHoldsOnlyPlaced;
	FLodexLintResult Result = LintLodestring(*Target.Index, *Target.Finder, Literal.Value, CallOptions);
	FLodexLintFinding Changed;
	if (Target.LiteralCheck != nullptr &&
		Target.LiteralCheck->Check(FileName, Literal, CallOptions.bExpectsOneObject, Changed))
	{
		// What a change of the level broke takes the place of the errors about how many objects it matches.
		std::vector<FLodexLintFinding>& Findings = Result.Findings;
		Findings.erase(std::remove_if(Findings.begin(), Findings.end(),
						   [](const FLodexLintFinding& Finding)
						   {
							   const std::string Rule = Finding.Rule;
							   return Rule == LodexLintRules::NoMatch || Rule == LodexLintRules::Ambiguous ||
								   Rule == LodexLintRules::NotInLevel || Rule == LodexLintRules::EditorLabel;
						   }),
			Findings.end());
		Findings.insert(Findings.begin(), std::move(Changed));
	}
	const ELintLiteralKind Kind = KindOfLintLiteral(Source, Literal);
	for (const FLodexLintFinding& Finding : Result.Findings)
	{
		FLodexLintDiagnostic Diagnostic;
		Diagnostic.File = FileName;
		// Where the part of the locator it is about lies in the file (an escape: from where the escape begins).
		std::size_t Begin = 0;
		std::size_t End = 0;
		LintSourceRange(Source, Literal, Finding.Span.Begin, Finding.Span.End, Begin, End);
		Diagnostic.Region = LintRegionOfOffsets(Lines, Begin, End);
		Diagnostic.Line = Diagnostic.Region.Line;
		Diagnostic.Column = Diagnostic.Region.Column;
		Diagnostic.Severity = Finding.Severity;
		Diagnostic.Rule = Finding.Rule;
		Diagnostic.Message = Finding.Message;
		Diagnostic.Lodestring = Check.Lodestring;
		Diagnostic.Method = Literal.Method;
		Diagnostic.Level = Target.Level;
		Diagnostic.MatchCount = Result.MatchCount;
		Diagnostic.Suggestion = ShowLodestringOnOneLine(Finding.Suggestion);
		if (!Finding.Suggestion.empty() && Kind != ELintLiteralKind::Other)
		{
			Diagnostic.FixText = WriteLintLiteralContent(Finding.Suggestion, Kind);
			LintSourceRange(Source, Literal, 0, Literal.Value.size(), Begin, End);
			Diagnostic.FixRegion = LintRegionOfOffsets(Lines, Begin, End);
		}
		Diagnostic.Notes = Finding.Notes;
		CountLintFinding(Finding.Severity, Report);
		Report.Diagnostics.push_back(std::move(Diagnostic));
		++Check.DiagnosticCount;
	}
}

void AddLintLiteralFinding(const std::string& FileName, const FCSharpSourceLines& Lines,
	const FCSharpApiString& Literal, const char* Rule, const std::string& Message, FLodexLintReport& Report)
{
	const std::string& Source = Lines.GetSource();
	FLodexLintCheck& Check = AddLintCheck(FileName, Literal, Report);
	FLodexLintDiagnostic Diagnostic;
	Diagnostic.File = FileName;
	std::size_t Begin = 0;
	std::size_t End = 0;
	LintSourceRange(Source, Literal, 0, Literal.Value.size(), Begin, End);
	Diagnostic.Region = LintRegionOfOffsets(Lines, Begin, End);
	Diagnostic.Line = Diagnostic.Region.Line;
	Diagnostic.Column = Diagnostic.Region.Column;
	const FLodexLintRule* Row = FindLodexLintRule(Rule);
	Diagnostic.Severity = Row != nullptr ? Row->Severity : ELodexLintSeverity::Error;
	Diagnostic.Rule = Rule;
	Diagnostic.Message = Message;
	Diagnostic.Lodestring = Check.Lodestring;
	Diagnostic.Method = Literal.Method;
	CountLintFinding(Diagnostic.Severity, Report);
	Report.Diagnostics.push_back(std::move(Diagnostic));
	++Check.DiagnosticCount;
}

void AppendLintReport(FLodexLintReport& Into, FLodexLintReport&& From)
{
	Into.Files += From.Files;
	Into.CheckedFiles.insert(Into.CheckedFiles.end(), From.CheckedFiles.begin(), From.CheckedFiles.end());
	Into.Checked += From.Checked;
	Into.Errors += From.Errors;
	Into.Warnings += From.Warnings;
	Into.Notes += From.Notes;
	const std::size_t Shift = Into.Diagnostics.size();
	for (FLodexLintCheck& Check : From.Checks)
	{
		Check.FirstDiagnostic += Shift;
		Into.Checks.push_back(std::move(Check));
	}
	Into.Diagnostics.insert(Into.Diagnostics.end(), std::make_move_iterator(From.Diagnostics.begin()),
		std::make_move_iterator(From.Diagnostics.end()));
}

void LintCSharpSource(const FLodexSceneIndex& Index, const FLodexBestLocatorFinder& Finder, const std::string& FileName,
	const std::string& Bytes, const FLodexLintOptions& Options, FLodexLintReport& Report,
	ILodexLintLiteralCheck* LiteralCheck)
{
	const std::string Source = DecodeCSharpSourceBytes(Bytes);
	const FCSharpSourceLines Lines(Source);
	++Report.Files;
	Report.CheckedFiles.push_back(FileName);
	FLodexLintTarget Target;
	Target.Index = &Index;
	Target.Finder = &Finder;
	Target.bHoldsOnlyPlaced = Options.bSceneHoldsOnlyPlaced;
	Target.LiteralCheck = LiteralCheck;
	for (const FCSharpApiString& Literal : FindApiStringArguments(Source))
	{
		if (IsLintedApiString(Literal))
		{
			LintApiString(Target, FileName, Lines, Literal, Options, Report);
		}
	}
}
