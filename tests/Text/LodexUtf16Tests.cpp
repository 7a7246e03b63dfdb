// Copyright Lodex contributors.
#include "LodexDebugger/Core/Text/LodexText.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace LodexText;

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

TEST(LodexTextUtf16Decode, PairsJoinAndLoneSurrogatesAreReplaced)
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
		// One unit at a time, as escapes give them.
		std::string Out;
		FUtf16Decoder Decoder(Out);
		for (const std::uint32_t Unit : Row.Units)
		{
			Decoder.Unit(Unit);
		}
		Decoder.Flush();
		EXPECT_EQ(Out, Row.Expected) << Row.Name;
	}
}

TEST(LodexTextUtf16Decode, OddLastByteIsOneMoreReplacement)
{
	struct FRow
	{
		std::string Bytes;
		EUtf16ByteOrder Order;
		std::string Expected;
	};
	const FRow Rows[] = {
		{std::string("a\0b", 3), EUtf16ByteOrder::LittleEndian, "a" + Replacement},
		{"x", EUtf16ByteOrder::BigEndian, Replacement},
		// A high surrogate cut short by the odd byte is replaced too.
		{std::string("\xD8\x3D\x00", 3), EUtf16ByteOrder::BigEndian, Replacement + Replacement},
		{"", EUtf16ByteOrder::BigEndian, ""},
	};
	for (const FRow& Row : Rows)
	{
		std::string Out;
		AppendUtf16AsUtf8(Out, Row.Bytes.data(), Row.Bytes.size(), Row.Order);
		EXPECT_EQ(Out, Row.Expected) << Row.Bytes.size();
	}
}

TEST(LodexTextUtf16Decode, DecoderHoldsAHighSurrogateUntilTheNextUnit)
{
	std::string Out;
	FUtf16Decoder Decoder(Out);
	Decoder.Unit(0xD83D);
	EXPECT_TRUE(Decoder.IsHolding());
	EXPECT_EQ(Out, "");
	Decoder.Unit(0xDE00);
	EXPECT_FALSE(Decoder.IsHolding());
	EXPECT_EQ(Out, "\xF0\x9F\x98\x80");
	// What the caller appends itself comes after the replaced half it flushed first.
	Decoder.Unit(0xD83D);
	Decoder.Flush();
	EXPECT_FALSE(Decoder.IsHolding());
	Out += 'z';
	Decoder.Flush();
	EXPECT_EQ(Out, "\xF0\x9F\x98\x80" + Replacement + "z");
}
