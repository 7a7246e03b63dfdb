// Copyright Lodex contributors.
#include "FuzzProperties.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <algorithm>

namespace LodexFuzz
{
	namespace
	{
		bool IsContinuation(
			const std::string& Text, std::size_t Index, unsigned char Low = 0x80, unsigned char High = 0xBF)
		{
			if (Index >= Text.size())
			{
				return false;
			}
			const unsigned char Byte = static_cast<unsigned char>(Text[Index]);
			return Byte >= Low && Byte <= High;
		}

		bool IsJsonBlank(char Char)
		{
			return Char == ' ' || Char == '\t' || Char == '\n' || Char == '\r';
		}

		/** Reads the decimal number at At (at least one digit); At moves past it. */
		bool ReadNumber(const std::string& Text, std::size_t& At, std::size_t& Out)
		{
			const std::size_t Start = At;
			Out = 0;
			while (At < Text.size() && Text[At] >= '0' && Text[At] <= '9' && At - Start < 12)
			{
				Out = Out * 10 + static_cast<std::size_t>(Text[At] - '0');
				++At;
			}
			return At > Start;
		}

		std::size_t CountCharacters(const std::string& Text)
		{
			return static_cast<std::size_t>(std::count_if(
				Text.begin(), Text.end(), [](char Char) { return (static_cast<unsigned char>(Char) & 0xC0) != 0x80; }));
		}
	}

	std::size_t Utf8SequenceLength(const std::string& Text, std::size_t Index)
	{
		const unsigned char Lead = static_cast<unsigned char>(Text[Index]);
		if (Lead < 0x80)
		{
			return 1;
		}
		if (Lead >= 0xC2 && Lead <= 0xDF)
		{
			return IsContinuation(Text, Index + 1) ? 2 : 0;
		}
		if (Lead >= 0xE0 && Lead <= 0xEF)
		{
			const unsigned char Low = Lead == 0xE0 ? 0xA0 : 0x80;
			const unsigned char High = Lead == 0xED ? 0x9F : 0xBF;
			return IsContinuation(Text, Index + 1, Low, High) && IsContinuation(Text, Index + 2) ? 3 : 0;
		}
		if (Lead >= 0xF0 && Lead <= 0xF4)
		{
			const unsigned char Low = Lead == 0xF0 ? 0x90 : 0x80;
			const unsigned char High = Lead == 0xF4 ? 0x8F : 0xBF;
			return IsContinuation(Text, Index + 1, Low, High) && IsContinuation(Text, Index + 2) &&
					IsContinuation(Text, Index + 3)
				? 4
				: 0;
		}
		return 0;
	}

	std::string Shown(const std::string& Text)
	{
		return LodexText::EscapeControlsAndIllFormed(Text, 300);
	}

	std::vector<std::string> SplitLines(const std::string& Text)
	{
		std::vector<std::string> Lines;
		std::size_t Start = 0;
		for (;;)
		{
			const std::size_t End = Text.find('\n', Start);
			Lines.push_back(Text.substr(Start, End == std::string::npos ? std::string::npos : End - Start));
			if (End == std::string::npos)
			{
				return Lines;
			}
			Start = End + 1;
		}
	}

	std::string CheckOneLine(const std::string& Message)
	{
		if (Message.empty())
		{
			return "the message is empty";
		}
		for (std::size_t Index = 0; Index < Message.size();)
		{
			const std::size_t Length = Utf8SequenceLength(Message, Index);
			if (Length == 0)
			{
				return "the message is not UTF-8 text: " + Shown(Message);
			}
			if (static_cast<unsigned char>(Message[Index]) < 0x20)
			{
				return "the message holds a control character: " + Shown(Message);
			}
			Index += Length;
		}
		return std::string();
	}

	std::string CheckFileError(
		const std::string& Error, const std::string& SourceName, const std::string& Input, bool bLineAlone)
	{
		const std::string NotOneLine = CheckOneLine(Error);
		if (!NotOneLine.empty())
		{
			return NotOneLine;
		}
		if (Error.compare(0, SourceName.size() + 1, SourceName + ":") != 0)
		{
			return "the error does not start with the file's name: " + Shown(Error);
		}
		std::size_t At = SourceName.size() + 1;
		std::size_t Line = 0;
		std::size_t Column = 0;
		bool bHasColumn = false;
		if (ReadNumber(Error, At, Line))
		{
			if (At >= Error.size() || Error[At] != ':')
			{
				return "the error's line is not followed by ':': " + Shown(Error);
			}
			++At;
			bHasColumn = ReadNumber(Error, At, Column);
			if (bHasColumn && (At >= Error.size() || Error[At] != ':'))
			{
				return "the error's column is not followed by ':': " + Shown(Error);
			}
			At += bHasColumn ? 1 : 0;
			if (!bHasColumn && !bLineAlone)
			{
				return "the error gives a line without a column: " + Shown(Error);
			}
			// The line's bytes, found without copying the input's lines.
			std::size_t LineStart = 0;
			std::size_t LineCount = 1;
			for (std::size_t Break = Input.find('\n'); Break != std::string::npos; Break = Input.find('\n', Break + 1))
			{
				LineStart = LineCount < Line ? Break + 1 : LineStart;
				++LineCount;
			}
			if (Line < 1 || Line > LineCount)
			{
				return "the error's line " + std::to_string(Line) + " is not one of the input's " +
					std::to_string(LineCount) + ": " + Shown(Error);
			}
			const std::size_t LineEnd = Input.find('\n', LineStart);
			const std::size_t Characters = CountCharacters(
				Input.substr(LineStart, LineEnd == std::string::npos ? std::string::npos : LineEnd - LineStart));
			if (bHasColumn && (Column < 1 || Column > Characters + 1))
			{
				return "the error's column " + std::to_string(Column) + " is outside line " + std::to_string(Line) +
					" (" + std::to_string(Characters) + " characters): " + Shown(Error);
			}
		}
		if (Error.compare(At, 1, " ") != 0 || At + 1 >= Error.size())
		{
			return "the error gives no reason after the file's name and position: " + Shown(Error);
		}
		return std::string();
	}

	std::string CheckOneInsertion(const std::string& Before, const std::string& After)
	{
		const std::size_t Shorter = std::min(Before.size(), After.size());
		std::size_t Prefix = 0;
		while (Prefix < Shorter && Before[Prefix] == After[Prefix])
		{
			++Prefix;
		}
		std::size_t Suffix = 0;
		while (Suffix < Shorter - Prefix && Before[Before.size() - 1 - Suffix] == After[After.size() - 1 - Suffix])
		{
			++Suffix;
		}
		const std::string Removed = Before.substr(Prefix, Before.size() - Prefix - Suffix);
		if (!std::all_of(Removed.begin(), Removed.end(), IsJsonBlank))
		{
			return "bytes other than blanks were changed at byte " + std::to_string(Prefix) + ": '" + Shown(Removed) +
				"' became '" + Shown(After.substr(Prefix, After.size() - Prefix - Suffix)) + "'";
		}
		if (After.size() - Prefix - Suffix == 0)
		{
			return "nothing was put in";
		}
		return std::string();
	}
}
