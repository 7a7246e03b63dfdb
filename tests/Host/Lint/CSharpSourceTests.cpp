// Copyright Lodex contributors.
// C# source read as the compiler reads it: pre-processing directives, line breaks, UTF-16 files, and the calls on
// `api` written with the null-forgiving operator or tuple type arguments.
#include "Lint/CSharpLexer.h"
#include "ApiStrings.h"
#include "Lint/CSharpLiterals.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
	struct FSourceRow
	{
		std::string Source;
		std::string Expected;
	};

	TEST(CSharpSource, LinesAConditionLeavesOutAndDirectiveTextAreNotCode)
	{
		const FSourceRow Rows[] = {
			{"#if false\napi.Find(\"//Hidden\");\n#else\napi.Find(\"//Shown\");\n#endif\n", "4:10 Find [//Shown]\n"},
			{"#if true // a comment\napi.Find(\"//A\");\n#elif true\napi.Find(\"//B\");\n#else\napi.Find(\"//C\");\n"
			 "#endif",
				"2:10 Find [//A]\n"},
			// Symbols: those the file defines; any other is not defined.
			{"#define SMOKE\n#if SMOKE && !(DEBUG || false) && SMOKE == true\napi.Find(\"//A\");\n#endif\n"
			 "#undef SMOKE\n#if SMOKE != false\napi.Find(\"//B\");\n#elif !SMOKE\napi.Find(\"//C\");\n#endif",
				"3:10 Find [//A]\n9:10 Find [//C]\n"},
			// Nested sections in a section left out are left out whatever they say.
			{"#if false\n#if true\napi.Find(\"//A\");\n#else\napi.Find(\"//B\");\n#endif\n  #define X\n#endif\n"
			 "#if X\napi.Find(\"//C\");\n#endif\napi.Find(\"//D\");",
				"12:10 Find [//D]\n"},
			// A string that would run over lines is not read in a section left out.
			{"#if false\nvar s = @\"\n#else\napi.Find(\"//A\");\n#endif", "4:10 Find [//A]\n"},
			{"#region api.Find(\"//InRegion\")\napi.Find(\"//X\");\n#endregion api.Find(\"//Y\")\n"
			 "  #pragma warning disable CS0168 // api.Find(\"//Z\")\n",
				"2:10 Find [//X]\n"},
			// A '#' that does not begin its line is no directive; an unreadable condition is false.
			{"api.Find(\"//A\"); #if false\napi.Find(\"//B\");", "1:10 Find [//A]\n2:10 Find [//B]\n"},
			{"#if (true\napi.Find(\"//A\");\n#endif\n#if " + std::string(100, '(') + "true" + std::string(100, ')') +
					"\napi.Find(\"//B\");\n#endif\napi.Find(\"//C\");",
				"7:10 Find [//C]\n"},
			{"#if !!true\napi.Find(\"//A\");\n#endif", "2:10 Find [//A]\n"},
		};
		for (const FSourceRow& Row : Rows)
		{
			EXPECT_EQ(FoundApiStrings(Row.Source), Row.Expected) << Row.Source;
		}
	}

	TEST(CSharpSource, NullForgivingCallsAndTupleTypeArgumentsAreCalls)
	{
		const FSourceRow Rows[] = {
			{"api!.Click(\"//A\");", "1:12 Click [//A]\n"},
			{"api!?.Find(\"//A\");", "1:12 Find [//A]\n"},
			{"api.CallMethod<(int, int)>(\"//A\", \"F\");", "1:28 CallMethod [//A]\n1:35 CallMethod [F]\n"},
			{"api.Get<Dictionary<string, (int X, List<int> Y)>>(\"//A\");", "1:51 Get [//A]\n"},
			// No identifier is longer than 512 characters: the compiler refuses the call, and lint passes it over.
			{"api." + std::string(512, 'M') + "(\"//A\"); api." + std::string(513, 'M') + "(\"//B\");",
				"1:518 " + std::string(512, 'M') + " [//A]\n"},
			// A comparison is no type argument list.
			{"if (api.Count < 3) api.Click(\"//A\");", "1:30 Click [//A]\n"},
			{"bool b = api.Count < x && y > (z); api.Click(\"//A\");", "1:46 Click [//A]\n"},
		};
		for (const FSourceRow& Row : Rows)
		{
			EXPECT_EQ(FoundApiStrings(Row.Source), Row.Expected) << Row.Source;
		}
	}

	TEST(CSharpSource, EveryLineBreakOfCSharpEndsALine)
	{
		// CR alone, U+0085, U+2028 and U+2029 end a line as LF and CR LF do: a comment, a string, a directive.
		for (const std::string Break : {"\n", "\r\n", "\r", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"})
		{
			const std::string Source = "// a comment" + Break + "api.Find(\"//A\");" + Break + "#if false" + Break +
				"api.Find(\"//B\");" + Break + "#endif" + Break + "  api.Find(\"//C" + Break + ", \"//D\");";
			EXPECT_EQ(FoundApiStrings(Source), "2:10 Find [//A]\n6:12 Find [//C]\n7:3 Find [//D]\n") << Source;
		}
	}

	TEST(CSharpSource, AFileWithAUtf16ByteOrderMarkIsUtf16)
	{
		const std::string Tuer = "api.Find(\"//T\xC3\xBCr\xF0\x9F\x98\x80\");";
		const struct
		{
			std::string Bytes;
			std::string Text;
		} Rows[] = {
			{EncodeUtf16(u"api.Find(\"//T\u00FCr\U0001F600\");", true), Tuer},
			{EncodeUtf16(u"api.Find(\"//T\u00FCr\U0001F600\");", false), Tuer},
			{EncodeUtf16(u"a", true) + "b", "a\xEF\xBF\xBD"}, // an odd last byte
			{EncodeUtf16(std::u16string(u"a") + char16_t(0xD800) + u"b" + char16_t(0xDC00), true),
				"a\xEF\xBF\xBD"
				"b\xEF\xBF\xBD"},
			{"\xEF\xBB\xBF" + Tuer, "\xEF\xBB\xBF" + Tuer}, // UTF-8, with its mark or without, as it is
			{"\xFF" + Tuer, "\xFF" + Tuer},
		};
		for (const auto& Row : Rows)
		{
			EXPECT_EQ(DecodeCSharpSourceBytes(Row.Bytes), Row.Text) << Row.Text;
		}
	}

	TEST(CSharpSource, PositionsAreThoseACountFromTheStartGives)
	{
		// Lines of every break, many-byte characters, lines longer than the lookup's steps.
		std::string Source = "\xEF\xBB\xBF";
		const char* const Pieces[] = {"abc", "\xC3\xBC", "\xF0\x9F\x98\x80", "\r\n", "\r", "\n", "\xC2\x85",
			"\xE2\x80\xA8", "\xE2\x80\xA9", "\xE2\x82\xAC"};
		for (std::size_t Index = 0; Index < 400; ++Index)
		{
			Source += Pieces[(Index * 7 + Index / 13) % 10];
			Source += std::string(Index % 90, 'x');
		}
		// Walked character by character: a break starts the next line, any other character takes one column.
		const FCSharpSourceLines Lines(Source);
		FCSharpPosition Expected;
		for (std::size_t At = 3; At <= Source.size();)
		{
			const FCSharpPosition Position = Lines.PositionOf(At);
			ASSERT_EQ(Position.Line, Expected.Line) << At;
			ASSERT_EQ(Position.Column, Expected.Column) << At;
			if (At == Source.size())
			{
				break;
			}
			const std::size_t Break = CSharpLineBreakAt(Source, At);
			const unsigned char Lead = static_cast<unsigned char>(Source[At]);
			At += Break > 0 ? Break : (Lead < 0x80 ? 1 : Lead < 0xE0 ? 2 : Lead < 0xF0 ? 3 : 4);
			Expected.Line += Break > 0 ? 1 : 0;
			Expected.Column = Break > 0 ? 1 : Expected.Column + 1;
		}
		EXPECT_GT(Expected.Line, 200u); // the walk met breaks of every kind
	}
}
