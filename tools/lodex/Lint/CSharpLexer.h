// Copyright Lodex contributors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/** What a token of C# source is, as far as finding calls and their literal arguments needs to know. */
enum class ECSharpToken
{
	Identifier,
	Punctuation,
	String,
	/** Numbers, character literals, interpolated strings: nothing the finder looks into. */
	Other,
};

/** One token: its kind, its text (a string literal's value), and where it begins. */
struct FCSharpToken
{
	ECSharpToken Kind = ECSharpToken::Other;
	std::string Text;
	std::size_t Line = 0;
	std::size_t Column = 0;
	/** Where the token begins in the source, in bytes. */
	std::size_t Offset = 0;
	/** Strings: for each byte of Text, the source offset of the character or escape it was read from. */
	std::vector<std::uint32_t> Offsets;
	/** Strings: where the literal ends (past its closing quotes, before a "u8" suffix), in bytes. */
	std::size_t End = 0;
};

/**
 * Reads C# source into tokens, as C# reads it: blanks, comments and a byte order mark are passed over; each
 * punctuation character is a token of its own; regular, verbatim and raw string literals become String tokens
 * holding their values, escapes decoded, as UTF-8 (a "u8" suffix is passed over); an interpolated string is one
 * Other token followed by the tokens of its holes' code (a raw one's holes are not looked into). Never fails:
 * text that is not valid C# is read as far as it goes.
 */
std::vector<FCSharpToken> ScanCSharpTokens(const std::string& Source);
