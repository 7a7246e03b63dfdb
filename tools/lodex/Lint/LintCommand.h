// Copyright Lodex contributors.
#pragma once

#include "LodexDebugger/Core/Lodestring/LodexLocatorLint.h"

#include <cstddef>
#include <string>
#include <vector>

class FLodexBestLocatorFinder;
class FLodexSceneIndex;

/** One finding of `lodex lint`, placed in its file. */
struct FLodexLintDiagnostic
{
	std::string File;
	/** 1-based; the column counted in characters, as editors count them. */
	std::size_t Line = 0;
	std::size_t Column = 0;
	ELodexLintSeverity Severity = ELodexLintSeverity::Error;
	std::string Rule;
	std::string Message;
	/** The locator as written (control characters escaped), and the `api` method it is passed to. */
	std::string Lodestring;
	std::string Method;
	std::size_t MatchCount = 0;
	/** Empty when there is none. */
	std::string Suggestion;
	std::vector<std::string> Notes;
};

/** What `lodex lint` found in the files checked so far. */
struct FLodexLintReport
{
	std::size_t Files = 0;
	std::size_t Checked = 0;
	std::size_t Errors = 0;
	std::size_t Warnings = 0;
	/** Findings that never fail a run, even with --strict. */
	std::size_t Notes = 0;
	std::vector<FLodexLintDiagnostic> Diagnostics;
};

struct FCSharpApiString;

/**
 * A check run on each Lodestring literal besides the rules (`lint --baseline`): a finding it gives takes the place of
 * the errors about how many objects the literal matches.
 */
class ILodexLintLiteralCheck
{
public:
	virtual ~ILodexLintLiteralCheck() = default;
	virtual bool Check(const std::string& FileName, const FCSharpApiString& Literal, bool bExpectsOneObject,
		FLodexLintFinding& OutFinding) = 0;
};

/**
 * Checks the Lodestrings one C# file passes to `api` calls against an indexed scene, as `lodex lint` does, and adds
 * what it finds to the report. Options.bExpectsOneObject is set for each call from the method's name.
 */
void LintCSharpSource(const FLodexSceneIndex& Index, const FLodexBestLocatorFinder& Finder, const std::string& FileName,
	const std::string& Source, const FLodexLintOptions& Options, FLodexLintReport& Report,
	ILodexLintLiteralCheck* LiteralCheck = nullptr);

/** "FILE:LINE:COL: error: MESSAGE [rule]" lines (and "note:" lines), then the summary. */
std::string FormatLintReportText(const FLodexLintReport& Report, bool bStrict);

/** The report as one JSON object, for tools. */
std::string FormatLintReportJson(const FLodexLintReport& Report, bool bStrict);

/** Whether the report fails the run: any error, or any warning when warnings are errors. */
bool LintReportFails(const FLodexLintReport& Report, bool bStrict);
