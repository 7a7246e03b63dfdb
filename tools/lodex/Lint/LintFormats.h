// Copyright Lodex contributors.
#pragma once

#include <string>

struct FLodexLintDiagnostic;
struct FLodexLintReport;

/** What the CI formats need besides the report. */
struct FLodexLintFormatOptions
{
	/** Warnings fail the run. */
	bool bStrict = false;
	/** The folder file paths are given relative to (the repository's root); empty for the current folder. */
	std::string Root;
};

/** The file's path relative to Root (or the current folder), with forward slashes; as given when not under it. */
std::string GetLintRelativePath(const std::string& File, const std::string& Root);

/** A finding's message with its suggestion: "MESSAGE; suggested: LODESTRING". */
std::string GetLintMessageWithSuggestion(const FLodexLintDiagnostic& Diagnostic);

/** Whether the finding fails the run: an error, or a warning with --strict. */
bool IsFailingLintDiagnostic(const FLodexLintDiagnostic& Diagnostic, bool bStrict);
