// Copyright Lodex contributors.
#include "JsonErrors.h"

#include <algorithm>

std::string DescribeJsonPosition(const std::string& Text, std::size_t ByteOffset)
{
	std::size_t Line = 1;
	std::size_t Column = 1;
	const std::size_t End = ByteOffset > 0 ? std::min(ByteOffset - 1, Text.size()) : 0;
	for (std::size_t Index = 0; Index < End; ++Index)
	{
		if (Text[Index] == '\n')
		{
			++Line;
			Column = 1;
		}
		else if ((static_cast<unsigned char>(Text[Index]) & 0xC0) != 0x80)
		{
			++Column; // continuation bytes (10xxxxxx) do not start a character
		}
	}
	return std::to_string(Line) + ":" + std::to_string(Column);
}

std::string DescribeJsonParseReason(const std::string& ParserMessage)
{
	const std::size_t ColumnWord = ParserMessage.find("column ");
	const std::size_t Colon =
		ColumnWord != std::string::npos ? ParserMessage.find(": ", ColumnWord) : std::string::npos;
	if (Colon != std::string::npos)
	{
		return ParserMessage.substr(Colon + 2);
	}
	const std::size_t Bracket = ParserMessage.find("] ");
	return Bracket != std::string::npos ? ParserMessage.substr(Bracket + 2) : ParserMessage;
}
