// Copyright Lodex contributors.
#pragma once

#include "LintBaseline.h"

#include <cstddef>
#include <string>
#include <vector>

/**
 * The C# literal in LiteralText (regular "...", verbatim @"..." or raw """...""" on one line) written anew with the
 * value Value, in the same kind and with its own quoting: escapes in a regular literal, doubled quotes in a verbatim
 * one, as many quotes as the value needs around a raw one. False for what cannot be written so (a raw literal over
 * several lines, a raw one whose value starts or ends with a quote).
 */
bool RewriteCSharpLiteral(const std::string& LiteralText, const std::string& Value, std::string& Out);

/** One file's repairs: its text before and after, and what could not be written. */
struct FLintFileRepair
{
	std::string File;
	std::string Before;
	std::string After;
	std::size_t Repairs = 0;
	/** "FILE:LINE: ..." lines for repairs left out. */
	std::vector<std::string> Skipped;
};

/**
 * Applies the repairs of the broken literals to the texts of their files (Files and Texts side by side): only each
 * literal's characters change; encoding, line endings and everything else stay as they are. Files without a repair
 * are left out.
 */
std::vector<FLintFileRepair> RepairLintFiles(const std::vector<FLintBrokenLiteral>& Broken,
	const std::vector<std::string>& Files, const std::vector<std::string>& Texts);

/**
 * A unified diff of one file, as `git apply` takes it (`--- a/PATH`, `+++ b/PATH`, hunks with three lines of
 * context, "\ No newline at end of file" where it applies). Path is written as given.
 */
std::string MakeUnifiedDiff(const std::string& Path, const std::string& Before, const std::string& After);
