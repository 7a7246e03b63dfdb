// Copyright Lodex contributors.
#pragma once

#include <cstddef>
#include <string>

class FLodexSceneIndex;

/** What `lodex lint` found in the files checked so far. */
struct FLodexLintCounts
{
	std::size_t Checked = 0;
	std::size_t Problems = 0;
};

/**
 * Checks the Lodestrings one C# file passes to `api` calls against an indexed scene, as `lodex lint` does: appends
 * "FILE:LINE: ..." and a line break to Report for each one that does not match exactly one object.
 */
void LintCSharpSource(const FLodexSceneIndex& Index, const std::string& FileName, const std::string& Source,
	FLodexLintCounts& Counts, std::string& Report);
