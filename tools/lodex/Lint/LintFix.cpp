// Copyright Lodex contributors.
// lint --fix: a repaired literal written in its own kind, the files' new texts, and the patch a person applies.
#include "LintFix.h"

#include <algorithm>
#include <cstdio>
#include <map>

namespace
{
	std::size_t LongestQuoteRun(const std::string& Text)
	{
		std::size_t Longest = 0;
		std::size_t Run = 0;
		for (const char Character : Text)
		{
			Run = Character == '"' ? Run + 1 : 0;
			Longest = std::max(Longest, Run);
		}
		return Longest;
	}

	std::string EscapeRegular(const std::string& Value)
	{
		std::string Out;
		for (const char Character : Value)
		{
			const unsigned char Byte = static_cast<unsigned char>(Character);
			switch (Character)
			{
				case '\\':
					Out += "\\\\";
					break;
				case '"':
					Out += "\\\"";
					break;
				case '\n':
					Out += "\\n";
					break;
				case '\r':
					Out += "\\r";
					break;
				case '\t':
					Out += "\\t";
					break;
				case '\0':
					Out += "\\0";
					break;
				default:
					if (Byte < 0x20)
					{
						char Code[8];
						std::snprintf(Code, sizeof(Code), "\\u%04X", static_cast<unsigned>(Byte));
						Out += Code;
					}
					else
					{
						Out += Character;
					}
			}
		}
		return Out;
	}

	/** The file's lines, each with its line ending. */
	std::vector<std::string> SplitLines(const std::string& Text)
	{
		std::vector<std::string> Lines;
		std::size_t Start = 0;
		while (Start < Text.size())
		{
			const std::size_t End = Text.find('\n', Start);
			const std::size_t Next = End == std::string::npos ? Text.size() : End + 1;
			Lines.push_back(Text.substr(Start, Next - Start));
			Start = Next;
		}
		return Lines;
	}

	void AppendDiffLine(std::string& Out, char Mark, const std::string& Line)
	{
		Out += Mark;
		Out += Line;
		if (Line.empty() || Line.back() != '\n')
		{
			Out += "\n\\ No newline at end of file\n";
		}
	}
}

bool RewriteCSharpLiteral(const std::string& LiteralText, const std::string& Value, std::string& Out)
{
	if (LiteralText.rfind("@\"", 0) == 0)
	{
		Out = "@\"";
		for (const char Character : Value)
		{
			Out += Character == '"' ? std::string("\"\"") : std::string(1, Character);
		}
		Out += "\"";
		return true;
	}
	std::size_t Quotes = 0;
	while (Quotes < LiteralText.size() && LiteralText[Quotes] == '"')
	{
		++Quotes;
	}
	if (Quotes >= 3)
	{
		if (LiteralText.find('\n') != std::string::npos || Value.find('\n') != std::string::npos ||
			(!Value.empty() && (Value.front() == '"' || Value.back() == '"')))
		{
			return false;
		}
		const std::string Fence(std::max(Quotes, LongestQuoteRun(Value) + 1), '"');
		Out = Fence + Value + Fence;
		return true;
	}
	Out = "\"" + EscapeRegular(Value) + "\"";
	return true;
}

std::vector<FLintFileRepair> RepairLintFiles(const std::vector<FLintBrokenLiteral>& Broken,
	const std::vector<std::string>& Files, const std::vector<std::string>& Texts)
{
	std::map<std::string, std::vector<const FLintBrokenLiteral*>> ByFile;
	for (const FLintBrokenLiteral& Literal : Broken)
	{
		if (!Literal.Repair.empty())
		{
			ByFile[Literal.File].push_back(&Literal);
		}
	}
	std::vector<FLintFileRepair> Out;
	for (std::size_t Index = 0; Index < Files.size(); ++Index)
	{
		const auto Found = ByFile.find(Files[Index]);
		if (Found == ByFile.end())
		{
			continue;
		}
		std::vector<const FLintBrokenLiteral*> Literals = Found->second;
		std::sort(Literals.begin(), Literals.end(),
			[](const FLintBrokenLiteral* Left, const FLintBrokenLiteral* Right)
			{ return Left->Offset < Right->Offset; });
		FLintFileRepair Repair;
		Repair.File = Files[Index];
		Repair.Before = Texts[Index];
		std::size_t Copied = 0;
		for (const FLintBrokenLiteral* Literal : Literals)
		{
			std::string Written;
			if (Literal->Offset < Copied || Literal->End > Repair.Before.size() ||
				!RewriteCSharpLiteral(
					Repair.Before.substr(Literal->Offset, Literal->End - Literal->Offset), Literal->Repair, Written))
			{
				Repair.Skipped.push_back(Repair.File + ":" + std::to_string(Literal->Line) +
					": the repair is not written: a raw literal over several lines, or one its value cannot sit in");
				continue;
			}
			Repair.After.append(Repair.Before, Copied, Literal->Offset - Copied);
			Repair.After += Written;
			Copied = Literal->End;
			++Repair.Repairs;
		}
		Repair.After.append(Repair.Before, Copied, std::string::npos);
		Out.push_back(std::move(Repair));
	}
	return Out;
}

std::string MakeUnifiedDiff(const std::string& Path, const std::string& Before, const std::string& After)
{
	const std::vector<std::string> Old = SplitLines(Before);
	const std::vector<std::string> New = SplitLines(After);
	// The edits only change lines in place of lines: the common head and tail frame each changed run.
	struct FRun
	{
		std::size_t OldBegin, OldEnd, NewBegin, NewEnd;
	};
	std::vector<FRun> Runs;
	std::size_t OldAt = 0;
	std::size_t NewAt = 0;
	while (OldAt < Old.size() && NewAt < New.size())
	{
		if (Old[OldAt] == New[NewAt])
		{
			++OldAt;
			++NewAt;
			continue;
		}
		// A changed run ends where the rest of both files line up again at the same distance from the end.
		std::size_t OldEnd = OldAt + 1;
		std::size_t NewEnd = NewAt + 1;
		while (OldEnd < Old.size() && NewEnd < New.size() && Old[OldEnd] != New[NewEnd])
		{
			++OldEnd;
			++NewEnd;
		}
		Runs.push_back({OldAt, OldEnd, NewAt, NewEnd});
		OldAt = OldEnd;
		NewAt = NewEnd;
	}
	if (OldAt < Old.size() || NewAt < New.size())
	{
		Runs.push_back({OldAt, Old.size(), NewAt, New.size()});
	}
	if (Runs.empty())
	{
		return std::string();
	}
	constexpr std::size_t Context = 3;
	std::string Out = "--- a/" + Path + "\n+++ b/" + Path + "\n";
	for (std::size_t First = 0; First < Runs.size();)
	{
		std::size_t Last = First;
		while (Last + 1 < Runs.size() && Runs[Last + 1].OldBegin - Runs[Last].OldEnd <= 2 * Context)
		{
			++Last;
		}
		const std::size_t OldBegin = Runs[First].OldBegin - std::min(Context, Runs[First].OldBegin);
		const std::size_t NewBegin = Runs[First].NewBegin - (Runs[First].OldBegin - OldBegin);
		const std::size_t OldEnd = std::min(Old.size(), Runs[Last].OldEnd + Context);
		const std::size_t NewEnd = Runs[Last].NewEnd + (OldEnd - Runs[Last].OldEnd);
		Out += "@@ -" + std::to_string(OldBegin + (OldEnd > OldBegin ? 1 : 0)) + "," +
			std::to_string(OldEnd - OldBegin) + " +" + std::to_string(NewBegin + (NewEnd > NewBegin ? 1 : 0)) + "," +
			std::to_string(NewEnd - NewBegin) + " @@\n";
		std::size_t At = OldBegin;
		for (std::size_t Run = First; Run <= Last; ++Run)
		{
			for (; At < Runs[Run].OldBegin; ++At)
			{
				AppendDiffLine(Out, ' ', Old[At]);
			}
			for (std::size_t Line = Runs[Run].OldBegin; Line < Runs[Run].OldEnd; ++Line)
			{
				AppendDiffLine(Out, '-', Old[Line]);
			}
			for (std::size_t Line = Runs[Run].NewBegin; Line < Runs[Run].NewEnd; ++Line)
			{
				AppendDiffLine(Out, '+', New[Line]);
			}
			At = Runs[Run].OldEnd;
		}
		for (; At < OldEnd; ++At)
		{
			AppendDiffLine(Out, ' ', Old[At]);
		}
		First = Last + 1;
	}
	return Out;
}
