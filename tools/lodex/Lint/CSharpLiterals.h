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
};

/** The line and column of a byte offset of the source, counted as the literals' own are. */
FCSharpPosition GetCSharpSourcePosition(const std::string& Source, std::size_t Offset);

/**
 * Finds the string literals that C# source passes to methods of `api` (`api.Click("...")`,
 * `api.CallMethod<int>(@"...", "F", new object[]{})`, `api?.Find(path: "...")`): each argument that is one
 * regular ("..."), verbatim (@"...") or raw ("""...""") literal, in source order. Comments, character
 * literals and interpolated strings ($"...", whose holes may call `api` themselves) are read as C# reads
 * them; an argument that is not one literal alone (a concatenation, an interpolation, an expression) is
 * left out. Never fails: text that is not valid C# is scanned as far as it goes.
 */
std::vector<FCSharpApiString> FindApiStringArguments(const std::string& Source);
