// Copyright Lodex contributors.
#pragma once

#include <cstddef>
#include <string>

/**
 * "LINE:COLUMN" of the byte at ByteOffset (counted from 1, as the JSON parser reports it), with columns in
 * characters so that they match an editor's on lines with non-ASCII text.
 */
std::string DescribeJsonPosition(const std::string& Text, std::size_t ByteOffset);

/** The JSON parser's reason without its "[json.exception...] parse error at line L, column C: " prefix. */
std::string DescribeJsonParseReason(const std::string& ParserMessage);
