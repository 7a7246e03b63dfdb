// Copyright Lodex contributors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/** What a token of C# source is, as far as finding calls and their literal arguments needs to know. */
enum class ECSharpToken : std::uint8_t
{
	Identifier,
	Punctuation,
	String,
	/** Numbers, character literals, interpolated strings: nothing the finder looks into. */
	Other,
};

/**
 * One token, kept small (a file may hold millions): its kind, where it begins in the source and how many bytes it
 * takes there. An identifier's text is those bytes; a punctuation token is one character; a string literal's value
 * is in FCSharpTokens::Strings.
 */
struct FCSharpToken
{
	ECSharpToken Kind = ECSharpToken::Other;
	/** Punctuation: the character. */
	char Character = '\0';
	std::uint32_t Offset = 0;
	std::uint32_t Length = 0;
	/** String: the index of its value in FCSharpTokens::Strings. */
	std::uint32_t Value = 0;
};

/** A string literal's value, escapes decoded, as UTF-8, and for each byte the source offset it was read from. */
struct FCSharpStringValue
{
	std::string Text;
	std::vector<std::uint32_t> Offsets;
	/** Strings: where the literal ends (past its closing quotes, before a "u8" suffix), in bytes. */
	std::size_t End = 0;
};

struct FCSharpTokens
{
	std::vector<FCSharpToken> Tokens;
	std::vector<FCSharpStringValue> Strings;
};

/** The length in bytes of the line break at Offset of Text: CR LF, CR, LF, U+0085, U+2028 or U+2029; 0 for none. */
std::size_t CSharpLineBreakAt(const std::string& Text, std::size_t Offset);

/**
 * Reads C# source (UTF-8) into tokens, as C# reads it: blanks, line breaks (all of C#'s), comments and a byte order
 * mark are passed over; pre-processing directives are applied (FCSharpDirectives) and the lines a condition leaves
 * out are not read; each punctuation character is a token of its own; regular, verbatim and raw string literals
 * become String tokens, escapes decoded (a "u8" suffix is passed over); an interpolated string is one Other token
 * followed by the tokens of its holes' code (a raw one's holes are not looked into). Time and memory are linear in
 * the source's size. Never fails: text that is not valid C# is read as far as it goes. Offsets are 32-bit: a source
 * is read up to its first 4 GiB.
 */
FCSharpTokens ScanCSharpTokens(const std::string& Source);
