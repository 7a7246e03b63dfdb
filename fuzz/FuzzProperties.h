// Copyright Lodex contributors.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

/** The properties the fuzz targets assert, shared by their checks. Each returns what is wrong, or empty. */
namespace LodexFuzz
{
	/** The length of the well-formed UTF-8 sequence at Index (no overlong form, no surrogate), or 0. */
	std::size_t Utf8SequenceLength(const std::string& Text, std::size_t Index);

	/** Text for a failure message: control characters and bytes that are not UTF-8 as \xNN, cut at 300 bytes. */
	std::string Shown(const std::string& Text);

	/** The text's lines, split at "\n" (a line keeps a "\r" before it); "a\n" is "a" and "". */
	std::vector<std::string> SplitLines(const std::string& Text);

	/** Message is one line of text: not empty, well-formed UTF-8, no control character. */
	std::string CheckOneLine(const std::string& Message);

	/**
	 * Error is the one-line error of a file named SourceName that holds Input: "SourceName: reason",
	 * "SourceName:LINE:COLUMN: reason" or, with bLineAlone, "SourceName:LINE: reason", where the line and column
	 * lie inside Input: lines from 1, columns in characters from 1 and at most one past the line's end.
	 */
	std::string CheckFileError(
		const std::string& Error, const std::string& SourceName, const std::string& Input, bool bLineAlone);

	/**
	 * After is Before with text put in at one place, where at most blanks (JSON whitespace) were taken out: every
	 * other byte kept, in order.
	 */
	std::string CheckOneInsertion(const std::string& Before, const std::string& After);
}
