// Copyright Lodex contributors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/** A string literal passed, as a whole argument, to a call on `api`. */
struct FCSharpApiString
{
	/** The literal's value, escapes decoded, as UTF-8. */
	std::string Value;
	/** Where the literal begins: 1-based line, and 1-based column counted in characters. */
	std::size_t Line = 0;
	std::size_t Column = 0;
	/** The method called on `api`, as "CallMethod". */
	std::string Method;
	/**
	 * For each byte of Value, the source offset (in bytes) of the character or escape it was read from; a raw
	 * literal's bytes all point at the literal.
	 */
	std::vector<std::uint32_t> ValueOffsets;
	/** The literal in the source, in bytes: from its first character (`@`, or a quote) to past its closing quotes. */
	std::size_t Offset = 0;
	std::size_t End = 0;
};

/** A place in C# source: 1-based line, and 1-based column counted in characters (a byte order mark is none). */
struct FCSharpPosition
{
	std::size_t Line = 1;
	std::size_t Column = 1;
	/** The column counted in UTF-16 code units, as editors and code-scanning tools count it. */
	std::size_t Utf16Column = 1;
};

/**
 * Where each byte of a C# source lies: built once in time linear in the source, then each lookup takes a time
 * bounded by the log of the line count (and a constant), however long the line. Lines end as C# ends them (CR LF,
 * CR, LF, U+0085, U+2028, U+2029).
 */
class FCSharpSourceLines
{
public:
	explicit FCSharpSourceLines(const std::string& Source);

	/** The line and column of a byte offset of the source, counted as the literals' own are. */
	FCSharpPosition PositionOf(std::size_t Offset) const;

	const std::string& GetSource() const { return Source; }

private:
	/** Characters and UTF-16 code units before a byte offset. */
	struct FCount
	{
		std::size_t Characters = 0;
		std::size_t Utf16Units = 0;
	};
	/** The counts before every CountStride-th byte, so that a column is counted in a short run. */
	static constexpr std::size_t CountStride = 64;
	FCount CountBefore(std::size_t Offset) const;

	const std::string& Source;
	std::vector<std::size_t> LineStarts;
	std::vector<FCount> Counts;
	FCount Total;
};

/**
 * A C# file's bytes as UTF-8 text, decoded as the compiler decodes them: a file that begins with a UTF-16 byte order
 * mark (FF FE little-endian, FE FF big-endian) is UTF-16, its mark dropped, an unpaired surrogate or odd last byte
 * becoming U+FFFD; any other file is taken as it is (UTF-8, with or without its mark).
 */
std::string DecodeCSharpSourceBytes(const std::string& Bytes);

/**
 * Finds the string literals that C# source passes to methods of `api` (`api.Click("...")`,
 * `api.CallMethod<int>(@"...", "F", new object[]{})`, `api?.Find(path: "...")`, `api!.Click("...")`,
 * `api.CallMethod<(int, int)>("...")`): each argument that is one
 * regular ("..."), verbatim (@"...") or raw ("""...""") literal, in source order. Comments, character
 * literals and interpolated strings ($"...", whose holes may call `api` themselves) are read as C# reads
 * them; an argument that is not one literal alone (a concatenation, an interpolation, an expression) is
 * left out. Never fails: text that is not valid C# is scanned as far as it goes.
 */
std::vector<FCSharpApiString> FindApiStringArguments(const std::string& Source);
