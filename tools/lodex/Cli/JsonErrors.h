// Copyright Lodex contributors.
#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <string>

/**
 * "LINE:COLUMN" of the byte at ByteOffset (counted from 1, as the JSON parser reports it), with columns in
 * characters so that they match an editor's on lines with non-ASCII text.
 */
std::string DescribeJsonPosition(const std::string& Text, std::size_t ByteOffset);

/** The JSON library's reason without its "[json.exception...] parse error at line L, column C: " prefix. */
std::string DescribeJsonParseReason(const std::string& ParserMessage);

/** Where and why JSON text fails to parse: the byte the parser stopped at (from 1) and the reason. */
struct FJsonTextError
{
	std::size_t ByteOffset = 0;
	std::string Reason;
};

/** Finds the first error in JSON text without building a document: a NUL byte, bad syntax, a number out of range. */
template<typename TJson>
bool FindJsonTextError(const std::string& Text, FJsonTextError& OutError);

/**
 * Parses a whole JSON file's text. Whatever the JSON library reports (bad syntax, invalid UTF-8 or escapes, NUL
 * bytes, numbers out of the range of a double) becomes one line in OutError: "SOURCE:LINE:COLUMN: " (or
 * "SOURCE: " where no position is known), then ReasonPrefix and the reason.
 */
template<typename TJson>
bool ParseJsonFile(
	const std::string& Text, const std::string& SourceName, const char* ReasonPrefix, TJson& Out, std::string& OutError)
{
	FJsonTextError Error;
	if (FindJsonTextError<TJson>(Text, Error))
	{
		OutError = SourceName + ":" + DescribeJsonPosition(Text, Error.ByteOffset) + ": " + ReasonPrefix + Error.Reason;
		return false;
	}
	try
	{
		Out = TJson::parse(Text);
		return true;
	}
	catch (const typename TJson::exception& Exception)
	{
		OutError = SourceName + ": " + ReasonPrefix + DescribeJsonParseReason(Exception.what());
		return false;
	}
}

extern template bool FindJsonTextError<nlohmann::json>(const std::string&, FJsonTextError&);
extern template bool FindJsonTextError<nlohmann::ordered_json>(const std::string&, FJsonTextError&);
