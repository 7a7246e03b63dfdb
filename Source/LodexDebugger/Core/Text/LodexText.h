// Copyright Lodex contributors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/**
 * The module's text routines: one for each kind of value that generated text holds, so that every line
 * the module writes renders its numbers and separators the same way.
 */
namespace LodexText
{
	/** The separator of script lines and of the evaluator's line lists. */
	inline constexpr const char* LineSeparator = "\r\n";

	/** An integer in plain decimal, no padding, as the engine's `FString::AppendInt` writes it. */
	std::string FormatInt(std::int64_t Value);

	/**
	 * A floating value as the engine's `FString::SanitizeFloat(Value, MinFractionalDigits)` renders it:
	 * printed with "%f" (negative zero made positive first), then, when the result is a plain decimal
	 * number, trailing zeros of the fractional part trimmed (the point too when nothing is left after
	 * it) and fractional zeros padded back up to MinFractionalDigits. Text that is not a plain decimal
	 * number ("inf", "-nan") is returned as printed.
	 */
	std::string SanitizeFloat(double Value, int MinFractionalDigits = 1);

	/** Appends `SanitizeFloat(Value, MinFractionalDigits)` to Out without a temporary string. */
	void AppendSanitizedFloat(std::string& Out, double Value, int MinFractionalDigits = 1);

	/** The parts joined with Separator between each two. */
	std::string Join(const std::vector<std::string>& Parts, const char* Separator);

	/** The text cut at every Separator, empty pieces dropped (the engine's `ParseIntoArray` with culling). */
	std::vector<std::string> SplitDroppingEmpty(const std::string& Text, const char* Separator);

	/**
	 * C `atoi` semantics without its undefined overflow: leading blanks skipped, an optional sign, then
	 * the digits up to the first non-digit; text without leading digits gives 0. A value beyond the range
	 * of a 32-bit integer is clamped to it.
	 */
	std::int32_t ParseLeadingInt(const std::string& Text);

	/**
	 * The length of the well-formed UTF-8 sequence at Text[Index] (Index inside the text), with its code point in
	 * OutCodePoint; 0, and OutCodePoint untouched, when the bytes there are not one: a stray continuation byte, a
	 * sequence cut short, an overlong form, a surrogate or a value beyond U+10FFFF.
	 */
	std::size_t Utf8SequenceLength(const std::string& Text, std::size_t Index, std::uint32_t& OutCodePoint);

	/**
	 * The number of bytes of the well-formed UTF-8 sequence at Text[Index], or 0 when none starts there (an
	 * overlong form, a surrogate, a code point past U+10FFFF, a cut or stray byte).
	 */
	std::size_t Utf8SequenceLength(const std::string& Text, std::size_t Index);

	/**
	 * Appends the code point's UTF-8 bytes as they are (a surrogate gives its three bytes, which are not
	 * well-formed UTF-8: callers that must write text replace it first). CodePoint is at most 0x1FFFFF.
	 */
	void AppendUtf8(std::string& Out, std::uint32_t CodePoint);

	/** Whether the whole text is well-formed UTF-8. */
	bool IsUtf8(const std::string& Text);

	/**
	 * Text as a one-line message quotes it: every control character and every byte that begins no well-formed
	 * UTF-8 sequence written as \xHH; writing stops once MaxBytes are written.
	 */
	std::string EscapeControlsAndIllFormed(const std::string& Text, std::size_t MaxBytes = std::string::npos);

	/**
	 * The first control character (U+0000 to U+001F) of a text, as "U+000A"; empty when it has none. Names and other
	 * texts that end up in generated lines or in messages must be one line of text.
	 */
	std::string FindControlCharacter(const std::string& Text);

	/**
	 * UTF-8 text converted to 8-bit text as the engine's TCHAR-to-ANSI conversion does it: the text is
	 * taken as UTF-16 code units, and every unit above 0x7F becomes '?'. So "Tür" gives "T?r", and a
	 * character outside the Basic Multilingual Plane (two units) gives "??". A byte that is not part of a
	 * well-formed UTF-8 sequence counts as one unit and gives one '?'.
	 */
	std::string ToAnsi(const std::string& Utf8);

	/**
	 * 8-bit text from a foreign buffer turned into UTF-8 as the engine's FString constructor from 8-bit
	 * text reads it: bytes up to 0x7F as they are; the engine's 8-bit character is signed and is widened
	 * with its sign, so each byte B above 0x7F becomes the character U+FF00 + B (0xFC gives U+FFFC, not
	 * 'ü'). A null pointer reads as the empty text.
	 */
	std::string FromAnsi(const char* Text);

	/**
	 * UTF-8 text as UTF-16 code units, the editor's wide characters: a character outside the Basic
	 * Multilingual Plane as a surrogate pair, every character of the plane as it is (U+FFFE and U+FFFF
	 * included, which the engine's own UTF-8 reader would turn into '?'), and each byte that begins no
	 * well-formed sequence as one '?', as the engine's reader gives it.
	 */
	std::u16string Utf8ToUtf16(const std::string& Utf8);

	/** Calls Unit with each UTF-16 code unit `Utf8ToUtf16` gives, in order, without making the string. */
	template<typename FUnit>
	void ForEachUtf16Unit(const std::string& Utf8, FUnit&& Unit)
	{
		std::size_t Index = 0;
		while (Index < Utf8.size())
		{
			std::uint32_t CodePoint = 0;
			const std::size_t Length = Utf8SequenceLength(Utf8, Index, CodePoint);
			if (Length == 0)
			{
				Unit(u'?');
				++Index;
				continue;
			}
			if (CodePoint >= 0x10000)
			{
				const std::uint32_t Offset = CodePoint - 0x10000;
				Unit(static_cast<char16_t>(0xD800 | (Offset >> 10)));
				Unit(static_cast<char16_t>(0xDC00 | (Offset & 0x3FF)));
			}
			else
			{
				Unit(static_cast<char16_t>(CodePoint));
			}
			Index += Length;
		}
	}

	/**
	 * UTF-16 code units turned into UTF-8 as they come, appended to the text given: a surrogate pair gives its
	 * character, and a surrogate without its other half gives U+FFFD (a high one once the unit after it, or
	 * Flush, shows it alone). Every other unit, U+0000 included, gives its character.
	 */
	class FUtf16Decoder
	{
	public:
		explicit FUtf16Decoder(std::string& InOut)
			: Out(InOut)
		{
		}

		/** Takes one code unit (0 to 0xFFFF). */
		void Unit(std::uint32_t Value);

		/** Whether a high surrogate waits for the unit after it. */
		bool IsHolding() const { return High != 0; }

		/** Ends a run of units: a high surrogate still waiting gives U+FFFD. */
		void Flush();

	private:
		std::string& Out;
		std::uint32_t High = 0;
	};

	/** The order of the two bytes of each UTF-16 code unit. */
	enum class EUtf16ByteOrder
	{
		LittleEndian,
		BigEndian
	};

	/**
	 * Appends Size bytes of UTF-16 to Out as UTF-8, decoded as FUtf16Decoder decodes them and flushed at the
	 * end; an odd last byte gives one more U+FFFD. A byte order mark is not looked for: it is a character.
	 */
	void AppendUtf16AsUtf8(std::string& Out, const char* Bytes, std::size_t Size, EUtf16ByteOrder Order);

	/** The value of a hexadecimal digit (0-9, a-f, A-F), or -1 for any other character. */
	int HexDigitValue(char Char);

	/** Whether two texts are equal ignoring ASCII case (the engine's case-insensitive compare of names). */
	bool EqualsIgnoreCase(const std::string& A, const std::string& B);

	/** Whether Needle occurs in Haystack ignoring ASCII case; the empty needle occurs everywhere. */
	bool ContainsIgnoreCase(const std::string& Haystack, const std::string& Needle);
}
