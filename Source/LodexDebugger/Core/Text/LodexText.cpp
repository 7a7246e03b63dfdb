// Copyright Lodex contributors.
#include "LodexText.h"

#include <climits>
#include <cstdio>
#include <cstring>

namespace LodexText
{
	std::string FormatInt(std::int64_t Value)
	{
		char Buffer[24];
		char* At = Buffer + sizeof(Buffer);
		// Digits from the lowest up; the mirrored table handles negative remainders, as the engine's does.
		static const char DigitToChar[] = "9876543210123456789";
		const bool bNegative = Value < 0;
		do
		{
			*--At = DigitToChar[9 + Value % 10];
			Value /= 10;
		} while (Value != 0);
		if (bNegative)
		{
			*--At = '-';
		}
		return std::string(At, static_cast<std::size_t>(Buffer + sizeof(Buffer) - At));
	}

	namespace
	{
		/** The engine's `FCString::IsNumeric`: an optional sign, then digits with at most one point. */
		bool IsPlainDecimal(const char* Text)
		{
			if (*Text == '-' || *Text == '+')
			{
				++Text;
			}
			bool bHasDot = false;
			for (; *Text != '\0'; ++Text)
			{
				if (*Text == '.')
				{
					if (bHasDot)
					{
						return false;
					}
					bHasDot = true;
				}
				else if (*Text < '0' || *Text > '9')
				{
					return false;
				}
			}
			return true;
		}
	}

	void AppendSanitizedFloat(std::string& Out, double Value, int MinFractionalDigits)
	{
		// Adding a positive zero turns a negative zero into a positive one and changes nothing else.
		Value += 0.0;
		// "%f" of the largest double has 309 integer digits and 6 fractional ones.
		char Buffer[330];
		const int Written = std::snprintf(Buffer, sizeof(Buffer), "%f", Value);
		if (Written <= 0 || static_cast<std::size_t>(Written) >= sizeof(Buffer))
		{
			return;
		}
		if (!IsPlainDecimal(Buffer))
		{
			Out.append(Buffer, static_cast<std::size_t>(Written));
			return;
		}

		// Trim the fractional part's trailing zeros, up to and including the point.
		int TrimIndex = -1;
		int PointIndex = -1;
		for (int Index = Written - 1; Index >= 0; --Index)
		{
			const char Char = Buffer[Index];
			if (Char == '.')
			{
				PointIndex = Index;
				TrimIndex = TrimIndex > PointIndex ? TrimIndex : PointIndex;
				break;
			}
			if (TrimIndex == -1 && Char != '0')
			{
				TrimIndex = Index + 1;
			}
		}
		if (PointIndex < 0)
		{
			// "%f" always prints a point; keep the text whole should a platform not.
			Out.append(Buffer, static_cast<std::size_t>(Written));
			return;
		}
		const std::size_t Start = Out.size();
		Out.append(Buffer, static_cast<std::size_t>(TrimIndex));

		if (MinFractionalDigits > 0)
		{
			if (TrimIndex == PointIndex)
			{
				Out.push_back('.');
			}
			const int FractionalDigits = static_cast<int>(Out.size() - Start) - PointIndex - 1;
			for (int Pad = FractionalDigits; Pad < MinFractionalDigits; ++Pad)
			{
				Out.push_back('0');
			}
		}
	}

	std::string SanitizeFloat(double Value, int MinFractionalDigits)
	{
		std::string Result;
		AppendSanitizedFloat(Result, Value, MinFractionalDigits);
		return Result;
	}

	std::string Join(const std::vector<std::string>& Parts, const char* Separator)
	{
		const std::size_t SeparatorLength = std::strlen(Separator);
		std::size_t Total = 0;
		for (const std::string& Part : Parts)
		{
			Total += Part.size() + SeparatorLength;
		}
		std::string Result;
		Result.reserve(Total);
		for (std::size_t Index = 0; Index < Parts.size(); ++Index)
		{
			if (Index > 0)
			{
				Result.append(Separator, SeparatorLength);
			}
			Result += Parts[Index];
		}
		return Result;
	}

	std::vector<std::string> SplitDroppingEmpty(const std::string& Text, const char* Separator)
	{
		std::vector<std::string> Pieces;
		const std::size_t SeparatorLength = std::strlen(Separator);
		if (SeparatorLength == 0)
		{
			if (!Text.empty())
			{
				Pieces.push_back(Text);
			}
			return Pieces;
		}
		std::size_t Start = 0;
		while (Start <= Text.size())
		{
			std::size_t At = Text.find(Separator, Start, SeparatorLength);
			if (At == std::string::npos)
			{
				At = Text.size();
			}
			if (At > Start)
			{
				Pieces.emplace_back(Text, Start, At - Start);
			}
			Start = At + SeparatorLength;
		}
		return Pieces;
	}

	std::int32_t ParseLeadingInt(const std::string& Text)
	{
		std::size_t Index = 0;
		while (Index < Text.size() &&
			(Text[Index] == ' ' || Text[Index] == '\t' || Text[Index] == '\n' || Text[Index] == '\v' ||
				Text[Index] == '\f' || Text[Index] == '\r'))
		{
			++Index;
		}
		bool bNegative = false;
		if (Index < Text.size() && (Text[Index] == '+' || Text[Index] == '-'))
		{
			bNegative = Text[Index] == '-';
			++Index;
		}
		std::int64_t Value = 0;
		for (; Index < Text.size() && Text[Index] >= '0' && Text[Index] <= '9'; ++Index)
		{
			if (Value <= static_cast<std::int64_t>(INT32_MAX) + 1)
			{
				Value = Value * 10 + (Text[Index] - '0');
			}
		}
		if (bNegative)
		{
			Value = -Value;
		}
		if (Value > INT32_MAX)
		{
			return INT32_MAX;
		}
		if (Value < INT32_MIN)
		{
			return INT32_MIN;
		}
		return static_cast<std::int32_t>(Value);
	}

	std::size_t Utf8SequenceLength(const std::string& Text, std::size_t Index, std::uint32_t& OutCodePoint)
	{
		const unsigned char Lead = static_cast<unsigned char>(Text[Index]);
		std::size_t Length = 0;
		std::uint32_t CodePoint = 0;
		std::uint32_t Minimum = 0;
		if (Lead < 0x80)
		{
			OutCodePoint = Lead;
			return 1;
		}
		if ((Lead & 0xE0) == 0xC0)
		{
			Length = 2;
			CodePoint = Lead & 0x1F;
			Minimum = 0x80;
		}
		else if ((Lead & 0xF0) == 0xE0)
		{
			Length = 3;
			CodePoint = Lead & 0x0F;
			Minimum = 0x800;
		}
		else if ((Lead & 0xF8) == 0xF0)
		{
			Length = 4;
			CodePoint = Lead & 0x07;
			Minimum = 0x10000;
		}
		else
		{
			return 0;
		}
		if (Index + Length > Text.size())
		{
			return 0;
		}
		for (std::size_t Offset = 1; Offset < Length; ++Offset)
		{
			const unsigned char Next = static_cast<unsigned char>(Text[Index + Offset]);
			if ((Next & 0xC0) != 0x80)
			{
				return 0;
			}
			CodePoint = (CodePoint << 6) | (Next & 0x3F);
		}
		if (CodePoint < Minimum || CodePoint > 0x10FFFF || (CodePoint >= 0xD800 && CodePoint <= 0xDFFF))
		{
			return 0;
		}
		OutCodePoint = CodePoint;
		return Length;
	}

	void AppendUtf8(std::string& Out, std::uint32_t CodePoint)
	{
		if (CodePoint < 0x80)
		{
			Out += static_cast<char>(CodePoint);
		}
		else if (CodePoint < 0x800)
		{
			Out += static_cast<char>(0xC0 | (CodePoint >> 6));
			Out += static_cast<char>(0x80 | (CodePoint & 0x3F));
		}
		else if (CodePoint < 0x10000)
		{
			Out += static_cast<char>(0xE0 | (CodePoint >> 12));
			Out += static_cast<char>(0x80 | ((CodePoint >> 6) & 0x3F));
			Out += static_cast<char>(0x80 | (CodePoint & 0x3F));
		}
		else
		{
			Out += static_cast<char>(0xF0 | (CodePoint >> 18));
			Out += static_cast<char>(0x80 | ((CodePoint >> 12) & 0x3F));
			Out += static_cast<char>(0x80 | ((CodePoint >> 6) & 0x3F));
			Out += static_cast<char>(0x80 | (CodePoint & 0x3F));
		}
	}

	void FUtf16Decoder::Unit(std::uint32_t Value)
	{
		if (High != 0 && Value >= 0xDC00 && Value <= 0xDFFF)
		{
			AppendUtf8(Out, 0x10000 + ((High - 0xD800) << 10) + (Value - 0xDC00));
			High = 0;
			return;
		}
		Flush();
		if (Value >= 0xD800 && Value <= 0xDBFF)
		{
			High = Value;
			return;
		}
		AppendUtf8(Out, Value >= 0xDC00 && Value <= 0xDFFF ? 0xFFFD : Value);
	}

	void FUtf16Decoder::Flush()
	{
		if (High != 0)
		{
			AppendUtf8(Out, 0xFFFD);
			High = 0;
		}
	}

	void AppendUtf16AsUtf8(std::string& Out, const char* Bytes, std::size_t Size, EUtf16ByteOrder Order)
	{
		const bool bLittle = Order == EUtf16ByteOrder::LittleEndian;
		FUtf16Decoder Decoder(Out);
		std::size_t At = 0;
		for (; At + 1 < Size; At += 2)
		{
			const std::uint32_t First = static_cast<unsigned char>(Bytes[At]);
			const std::uint32_t Second = static_cast<unsigned char>(Bytes[At + 1]);
			Decoder.Unit(bLittle ? First | (Second << 8) : (First << 8) | Second);
		}
		Decoder.Flush();
		if (At < Size)
		{
			AppendUtf8(Out, 0xFFFD); // an odd last byte
		}
	}

	std::size_t Utf8SequenceLength(const std::string& Text, std::size_t Index)
	{
		std::uint32_t CodePoint = 0;
		return Index < Text.size() ? Utf8SequenceLength(Text, Index, CodePoint) : 0;
	}

	bool IsUtf8(const std::string& Text)
	{
		for (std::size_t Index = 0; Index < Text.size();)
		{
			const std::size_t Length = Utf8SequenceLength(Text, Index);
			if (Length == 0)
			{
				return false;
			}
			Index += Length;
		}
		return true;
	}

	std::string FindControlCharacter(const std::string& Text)
	{
		for (const char Char : Text)
		{
			const unsigned char Byte = static_cast<unsigned char>(Char);
			if (Byte < 0x20)
			{
				static const char Hex[] = "0123456789ABCDEF";
				return std::string("U+00") + Hex[Byte >> 4] + Hex[Byte & 0xF];
			}
		}
		return std::string();
	}

	std::string EscapeControlsAndIllFormed(const std::string& Text, std::size_t MaxBytes)
	{
		static const char Hex[] = "0123456789ABCDEF";
		std::string Out;
		for (std::size_t Index = 0; Index < Text.size() && Out.size() < MaxBytes;)
		{
			const unsigned char Byte = static_cast<unsigned char>(Text[Index]);
			const std::size_t Length = Utf8SequenceLength(Text, Index);
			if (Length == 0 || Byte < 0x20)
			{
				Out += std::string("\\x") + Hex[Byte >> 4] + Hex[Byte & 0xF];
				++Index;
				continue;
			}
			Out.append(Text, Index, Length);
			Index += Length;
		}
		return Out;
	}

	std::string ToAnsi(const std::string& Utf8)
	{
		// One '?' per UTF-16 code unit above ASCII: two for a character outside the Basic Multilingual Plane.
		std::string Result;
		Result.reserve(Utf8.size());
		ForEachUtf16Unit(
			Utf8, [&Result](char16_t Unit) { Result.push_back(Unit < 0x80 ? static_cast<char>(Unit) : '?'); });
		return Result;
	}

	std::u16string Utf8ToUtf16(const std::string& Utf8)
	{
		std::u16string Result;
		Result.reserve(Utf8.size());
		ForEachUtf16Unit(Utf8, [&Result](char16_t Unit) { Result.push_back(Unit); });
		return Result;
	}

	std::string FromAnsi(const char* Text)
	{
		std::string Result;
		if (Text == nullptr)
		{
			return Result;
		}
		const std::size_t Length = std::strlen(Text);
		Result.reserve(Length);
		const char* const End = Text + Length;
		while (Text != End)
		{
			// Runs of ASCII are copied whole; each byte above becomes three.
			const char* Run = Text;
			while (Run != End && static_cast<unsigned char>(*Run) < 0x80)
			{
				++Run;
			}
			Result.append(Text, static_cast<std::size_t>(Run - Text));
			Text = Run;
			if (Text != End)
			{
				// The engine widens a signed 8-bit character: byte B becomes the 16-bit unit 0xFF00 + B
				// (0xFC gives U+FFFC, not U+00FC), three bytes in UTF-8.
				const std::uint32_t Unit = 0xFF00u | static_cast<unsigned char>(*Text++);
				Result.push_back(static_cast<char>(0xE0 | (Unit >> 12)));
				Result.push_back(static_cast<char>(0x80 | ((Unit >> 6) & 0x3F)));
				Result.push_back(static_cast<char>(0x80 | (Unit & 0x3F)));
			}
		}
		return Result;
	}

	namespace
	{
		char ToUpperAscii(char Char)
		{
			return (Char >= 'a' && Char <= 'z') ? static_cast<char>(Char - 32) : Char;
		}
	}

	int HexDigitValue(char Char)
	{
		if (Char >= '0' && Char <= '9')
		{
			return Char - '0';
		}
		if (Char >= 'a' && Char <= 'f')
		{
			return Char - 'a' + 10;
		}
		if (Char >= 'A' && Char <= 'F')
		{
			return Char - 'A' + 10;
		}
		return -1;
	}

	bool EqualsIgnoreCase(const std::string& A, const std::string& B)
	{
		if (A.size() != B.size())
		{
			return false;
		}
		for (std::size_t Index = 0; Index < A.size(); ++Index)
		{
			if (ToUpperAscii(A[Index]) != ToUpperAscii(B[Index]))
			{
				return false;
			}
		}
		return true;
	}

	bool ContainsIgnoreCase(const std::string& Haystack, const std::string& Needle)
	{
		if (Needle.empty())
		{
			return true;
		}
		if (Needle.size() > Haystack.size())
		{
			return false;
		}
		const char First = ToUpperAscii(Needle[0]);
		const std::size_t Last = Haystack.size() - Needle.size();
		for (std::size_t Start = 0; Start <= Last; ++Start)
		{
			if (ToUpperAscii(Haystack[Start]) != First)
			{
				continue;
			}
			std::size_t Offset = 1;
			while (Offset < Needle.size() && ToUpperAscii(Haystack[Start + Offset]) == ToUpperAscii(Needle[Offset]))
			{
				++Offset;
			}
			if (Offset == Needle.size())
			{
				return true;
			}
		}
		return false;
	}
}
