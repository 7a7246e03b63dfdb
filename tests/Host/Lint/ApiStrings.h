// Copyright Lodex contributors.
#pragma once

#include "Lint/CSharpLiterals.h"

#include <string>

/** The api calls' string arguments found in C# source, a line each: "line:column Method [value]". */
inline std::string FoundApiStrings(const std::string& Source)
{
	std::string Text;
	for (const FCSharpApiString& Literal : FindApiStringArguments(Source))
	{
		Text += std::to_string(Literal.Line) + ":" + std::to_string(Literal.Column) + " " + Literal.Method + " [" +
			Literal.Value + "]\n";
	}
	return Text;
}

/** Text as UTF-16 bytes after their byte order mark, little-endian or big-endian. */
inline std::string EncodeUtf16(const std::u16string& Text, bool bLittle)
{
	std::string Bytes = bLittle ? "\xFF\xFE" : "\xFE\xFF";
	for (const char16_t Unit : Text)
	{
		const char Low = static_cast<char>(Unit & 0xFF);
		const char High = static_cast<char>(Unit >> 8);
		Bytes += bLittle ? std::string{Low, High} : std::string{High, Low};
	}
	return Bytes;
}
