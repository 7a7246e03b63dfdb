// Copyright Lodex contributors.
#include "LodexDebugger/Core/Text/LodexText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

using namespace LodexText;

TEST(LodexTextFloat, RendersAsTheEngineDoesAloneOrAppendedAndKeepsNonFiniteTextAsPrinted)
{
	struct FRow
	{
		double Value;
		int MinDigits;
		const char* Expected;
	};
	const FRow Rows[] = {
		{2.0, 1, "2.0"},
		{0.016666668, 1, "0.016667"},
		{-3.5, 1, "-3.5"},
		{-0.0, 1, "0.0"},
		{0.0, 0, "0"},
		{2.0, 0, "2"},
		{2.5, 3, "2.500"},
		{1e-7, 1, "0.0"},
		// Rounds to zero when printed but keeps its sign: only a true negative zero is made positive.
		{-1e-7, 1, "-0.0"},
		{100.0, 1, "100.0"},
		{0.1f, 1, "0.1"},
		{1e20, 1, "100000000000000000000.0"},
		{std::numeric_limits<double>::infinity(), 1, "inf"},
		{-std::numeric_limits<double>::infinity(), 1, "-inf"},
	};
	for (const FRow& Row : Rows)
	{
		EXPECT_EQ(SanitizeFloat(Row.Value, Row.MinDigits), Row.Expected) << Row.Value;
		// Appended to existing text, as log lines are built.
		std::string Line = "x=";
		AppendSanitizedFloat(Line, Row.Value, Row.MinDigits);
		EXPECT_EQ(Line, "x=" + std::string(Row.Expected)) << Row.Value;
	}
	// Text that is not a plain decimal is kept as printed.
	const std::string Nan = SanitizeFloat(std::nan(""));
	EXPECT_TRUE(Nan == "nan" || Nan == "-nan") << Nan;
	// The largest double prints all of its 309 integer digits.
	EXPECT_EQ(SanitizeFloat(std::numeric_limits<double>::max()).size(), 311u);
}

TEST(LodexTextInt, PlainDecimal)
{
	EXPECT_EQ(FormatInt(0), "0");
	EXPECT_EQ(FormatInt(42), "42");
	EXPECT_EQ(FormatInt(-7), "-7");
	EXPECT_EQ(FormatInt(INT32_MIN), "-2147483648");
	EXPECT_EQ(FormatInt(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

TEST(LodexTextLines, JoinAndSplit)
{
	EXPECT_EQ(Join({}, LineSeparator), "");
	EXPECT_EQ(Join({"a"}, LineSeparator), "a");
	EXPECT_EQ(Join({"a", "", "b"}, LineSeparator), "a\r\n\r\nb");

	EXPECT_EQ(SplitDroppingEmpty("A\r\n\r\nB\r\n", LineSeparator), (std::vector<std::string>{"A", "B"}));
	EXPECT_EQ(SplitDroppingEmpty("", LineSeparator), std::vector<std::string>{});
	EXPECT_EQ(SplitDroppingEmpty("\r\n\r\n", LineSeparator), std::vector<std::string>{});
	// A lone carriage return or line feed is part of a line, not a separator.
	EXPECT_EQ(SplitDroppingEmpty("a\nb\rc\r\nd", LineSeparator), (std::vector<std::string>{"a\nb\rc", "d"}));
}

TEST(LodexTextCount, LeadingIntegerAsAtoiReadsIt)
{
	struct FRow
	{
		const char* Text;
		std::int32_t Expected;
	};
	const FRow Rows[] = {
		{"abc", 0},
		{"12 items", 12},
		{"  \t42", 42},
		{"-5", -5},
		{"+7x", 7},
		{"", 0},
		{"- 5", 0},
		{"0012", 12},
		{"99999999999", INT32_MAX},
		{"-99999999999", INT32_MIN},
	};
	for (const FRow& Row : Rows)
	{
		EXPECT_EQ(ParseLeadingInt(Row.Text), Row.Expected) << Row.Text;
	}
}

TEST(LodexTextUtf8, WellFormedSequencesOnly)
{
	struct FRow
	{
		std::string Text;
		std::size_t Index;
		std::size_t Length;
		std::uint32_t CodePoint;
		bool bUtf8;
	};
	const FRow Rows[] = {
		{"", 0, 0, 0, true},
		{std::string("\0x", 2), 0, 1, 0, true},
		{"T\xC3\xBCr", 0, 1, 'T', true},
		{"T\xC3\xBCr", 1, 2, 0xFC, true},
		{"T\xC3\xBCr", 2, 0, 0, true}, // a continuation byte starts nothing
		{"\xE7\x94\xA8", 0, 3, 0x7528, true},
		{"\xF0\x9F\x98\x80", 0, 4, 0x1F600, true},
		{"\xF4\x8F\xBF\xBF", 0, 4, 0x10FFFF, true},
		{"\xF4\x90\x80\x80", 0, 0, 0, false}, // past U+10FFFF
		{"\xC0\x80", 0, 0, 0, false}, // overlong NUL
		{"\xE0\x80\xAF", 0, 0, 0, false}, // overlong '/'
		{"\xED\xA0\x80", 0, 0, 0, false}, // a surrogate
		{"\xC3", 0, 0, 0, false}, // cut short by the end
		{"\xE7\x41\xA8", 0, 0, 0, false}, // cut short by a plain byte
		{"\xC3\xC3", 0, 0, 0, false}, // cut short by a lead byte
		{"\x80", 0, 0, 0, false}, // a stray continuation byte
		{"\xFF", 0, 0, 0, false},
		{"ok\xFF", 0, 1, 'o', false},
	};
	for (const FRow& Row : Rows)
	{
		SCOPED_TRACE(Row.Text + " at " + std::to_string(Row.Index));
		EXPECT_EQ(Utf8SequenceLength(Row.Text, Row.Index), Row.Length);
		EXPECT_EQ(IsUtf8(Row.Text), Row.bUtf8);
		if (Row.Index < Row.Text.size())
		{
			std::uint32_t CodePoint = 0;
			EXPECT_EQ(Utf8SequenceLength(Row.Text, Row.Index, CodePoint), Row.Length);
			EXPECT_EQ(CodePoint, Row.CodePoint);
		}
	}
}

TEST(LodexTextAnsi, EightBitTextReadsAsTheEngineWidensItsSignedCharacters)
{
	EXPECT_EQ(FromAnsi(nullptr), "");
	EXPECT_EQ(FromAnsi(""), "");
	// 0xFC is not 'ü' (U+00FC) but U+FFFC: the engine casts a signed char to its 16-bit character.
	EXPECT_EQ(FromAnsi("T\xFCr"), "T\xEF\xBF\xBCr");

	// Every byte, twice and then before ASCII text, against the engine's own widening of an 8-bit character (a
	// signed char cast to a 16-bit unit), through the wide text the editor shows: the ASCII runs copied whole and
	// the bytes above ASCII between them keep their order.
	std::string Ansi;
	std::u16string EngineUnits;
	for (int Byte = 1; Byte <= 0xFF; ++Byte)
	{
		const char16_t EngineUnit = static_cast<char16_t>(static_cast<signed char>(Byte));
		Ansi += {static_cast<char>(Byte), static_cast<char>(Byte), 'z'};
		EngineUnits += {EngineUnit, EngineUnit, u'z'};
	}
	const std::string Utf8 = FromAnsi(Ansi.c_str());
	EXPECT_TRUE(IsUtf8(Utf8));
	EXPECT_EQ(Utf8ToUtf16(Utf8), EngineUnits);
}

TEST(LodexTextUtf16, EditorWideTextKeepsEveryCharacterAndMarksBadBytesAndAnsiTextMarksEveryUnitAboveAscii)
{
	const struct
	{
		const char* Utf8;
		std::u16string Units;
		const char* Ansi;
	} Cases[] = {
		{"", u"", ""},
		{"//Door", u"//Door", "//Door"},
		{"T\xC3\xBCr", u"T\u00FCr", "T?r"},
		{"\xE7\x94\xA8\xE6\x88\xB7", u"\u7528\u6237", "??"},
		{"a\xF0\x9F\x98\x80z", u"a\xD83D\xDE00z", "a??z"},
		{"\xEF\xBF\xBE\xEF\xBF\xBF", u"\xFFFE\xFFFF", "??"},
		// Each byte that begins no well-formed sequence is one '?'; the text after it is read on.
		{"a\xFFz", u"a?z", "a?z"},
		{"a\xC3", u"a?", "a?"},
		{"\xED\xA0\x80", u"???", "???"},
		{"\xC0\xAFx", u"??x", "??x"},
	};
	for (const auto& Case : Cases)
	{
		EXPECT_EQ(Utf8ToUtf16(Case.Utf8), Case.Units) << Case.Utf8;
		EXPECT_EQ(ToAnsi(Case.Utf8), Case.Ansi) << Case.Utf8;
	}
}

TEST(LodexTextHex, DigitsOfEitherCaseAndNothingAroundThem)
{
	std::string Digits;
	for (int Char = 1; Char < 256; ++Char)
	{
		const int Value = HexDigitValue(static_cast<char>(Char));
		if (Value >= 0)
		{
			Digits += static_cast<char>(Char);
			EXPECT_EQ(Value, Char <= '9' ? Char - '0' : (Char | 0x20) - 'a' + 10) << Char;
		}
	}
	EXPECT_EQ(Digits, "0123456789ABCDEFabcdef");
	EXPECT_EQ(HexDigitValue('\0'), -1);
}

TEST(LodexTextCase, AsciiCaseOnly)
{
	EXPECT_TRUE(EqualsIgnoreCase("VOID", "void"));
	EXPECT_FALSE(EqualsIgnoreCase("void", "voi"));
	EXPECT_FALSE(EqualsIgnoreCase("\xC3\x84", "\xC3\xA4"));

	EXPECT_TRUE(ContainsIgnoreCase("RelativeLocation", "loc"));
	EXPECT_TRUE(ContainsIgnoreCase("RelativeLocation", ""));
	EXPECT_TRUE(ContainsIgnoreCase("abcABC", "cab"));
	EXPECT_FALSE(ContainsIgnoreCase("loc", "location"));
	EXPECT_FALSE(ContainsIgnoreCase("Rotation", "loc"));
}

namespace
{
	/** The units as bytes in the given order. */
	std::string Utf16Bytes(const std::vector<std::uint32_t>& Units, EUtf16ByteOrder Order)
	{
		std::string Bytes;
		for (const std::uint32_t Unit : Units)
		{
			const char Low = static_cast<char>(Unit & 0xFF);
			const char High = static_cast<char>(Unit >> 8);
			Bytes += Order == EUtf16ByteOrder::LittleEndian ? std::string{Low, High} : std::string{High, Low};
		}
		return Bytes;
	}

	const std::string Replacement = "\xEF\xBF\xBD";
}

TEST(LodexTextUtf16Decode, PairsJoinAndLoneSurrogatesAndAnOddLastByteAreReplaced)
{
	struct FRow
	{
		const char* Name;
		std::vector<std::uint32_t> Units;
		std::string Expected;
	};
	const FRow Rows[] = {
		{"ascii", {'a', 'b'}, "ab"},
		{"nul is a character", {'a', 0, 'b'}, std::string("a\0b", 3)},
		{"two and three bytes", {0xFC, 0x20AC}, "\xC3\xBC\xE2\x82\xAC"},
		{"byte order mark kept", {0xFEFF, 'a'},
			"\xEF\xBB\xBF"
			"a"},
		{"U+FFFF kept", {0xFFFF}, "\xEF\xBF\xBF"},
		{"pair", {0xD83D, 0xDE00}, "\xF0\x9F\x98\x80"},
		{"highest pair", {0xDBFF, 0xDFFF}, "\xF4\x8F\xBF\xBF"},
		{"high at the end", {'a', 0xD83D}, "a" + Replacement},
		{"high before a character", {0xD83D, 'a'}, Replacement + "a"},
		{"high before a high and its pair", {0xD83D, 0xD83D, 0xDE00}, Replacement + "\xF0\x9F\x98\x80"},
		{"low alone", {'a', 0xDE00, 'b'}, "a" + Replacement + "b"},
		{"low before high", {0xDE00, 0xD83D}, Replacement + Replacement},
		{"pair then low", {0xD83D, 0xDE00, 0xDE00}, "\xF0\x9F\x98\x80" + Replacement},
	};
	for (const FRow& Row : Rows)
	{
		for (const EUtf16ByteOrder Order : {EUtf16ByteOrder::LittleEndian, EUtf16ByteOrder::BigEndian})
		{
			const std::string Bytes = Utf16Bytes(Row.Units, Order);
			std::string Out = "<";
			AppendUtf16AsUtf8(Out, Bytes.data(), Bytes.size(), Order);
			EXPECT_EQ(Out, "<" + Row.Expected) << Row.Name;
		}
		// One unit at a time, as escapes give them: a high surrogate is held until the next unit.
		std::string Out;
		FUtf16Decoder Decoder(Out);
		for (const std::uint32_t Unit : Row.Units)
		{
			Decoder.Unit(Unit);
			EXPECT_EQ(Decoder.IsHolding(), Unit >= 0xD800 && Unit <= 0xDBFF) << Row.Name;
		}
		Decoder.Flush();
		EXPECT_FALSE(Decoder.IsHolding());
		EXPECT_EQ(Out, Row.Expected) << Row.Name;
	}

	// An odd last byte is one more replacement, after a high surrogate it cut short too.
	const auto Decode = [](const std::string& Bytes, EUtf16ByteOrder Order)
	{
		std::string Out;
		AppendUtf16AsUtf8(Out, Bytes.data(), Bytes.size(), Order);
		return Out;
	};
	EXPECT_EQ(Decode(std::string("a\0b", 3), EUtf16ByteOrder::LittleEndian), "a" + Replacement);
	EXPECT_EQ(Decode("x", EUtf16ByteOrder::BigEndian), Replacement);
	EXPECT_EQ(Decode(std::string("\xD8\x3D\x00", 3), EUtf16ByteOrder::BigEndian), Replacement + Replacement);
}
