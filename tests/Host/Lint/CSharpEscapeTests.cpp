// Copyright Lodex contributors.
#include "Lint/CSharpLiterals.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
	// "\x" takes one to four hex digits, as many as stand there: "\x2F" and "\x002F" are both "/".
	TEST(CSharpLiterals, HexEscapesTakeOneToFourDigits)
	{
		const struct
		{
			const char* Literal;
			std::string Value;
		} Rows[] = {
			{R"("\x2F")", "/"},
			{R"("\x002F")", "/"},
			{R"("\x2F/")", "//"},
			{R"("\x9/")", "\t/"},
			{R"("\x00412")", "A2"}, // a fifth digit is a character of its own
			{R"("\x2Fa")", "\xCB\xBA"}, // three digits: U+02FA
			{R"("\x41BCz")", "\xE4\x86\xBCz"}, // four digits: U+41BC
			{R"("\x4g")", "\x04g"},
			{R"("\xe9\xE9")", "\xC3\xA9\xC3\xA9"},
		};
		for (const auto& Row : Rows)
		{
			const std::vector<FCSharpApiString> Found =
				FindApiStringArguments(std::string("api.Find(") + Row.Literal + ");");
			ASSERT_EQ(Found.size(), 1u) << Row.Literal;
			EXPECT_EQ(Found[0].Value, Row.Value) << Row.Literal;
		}
	}
}
