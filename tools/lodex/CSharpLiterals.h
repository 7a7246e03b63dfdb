// Copyright Lodex contributors.
#pragma once

#include <cstddef>
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
};

/**
 * Finds the string literals that C# source passes to methods of `api` (`api.Click("...")`,
 * `api.CallMethod<int>(@"...", "F", new object[]{})`, `api?.Find(path: "...")`): each argument that is one
 * regular ("..."), verbatim (@"...") or raw ("""...""") literal, in source order. Comments, character
 * literals and interpolated strings ($"...", whose holes may call `api` themselves) are read as C# reads
 * them; an argument that is not one literal alone (a concatenation, an interpolation, an expression) is
 * left out. Never fails: text that is not valid C# is scanned as far as it goes.
 */
std::vector<FCSharpApiString> FindApiStringArguments(const std::string& Source);
