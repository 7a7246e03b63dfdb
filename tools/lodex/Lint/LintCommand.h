// Copyright Lodex contributors.
#pragma once

#include "LodexDebugger/Core/Lodestring/LodexLocatorLint.h"

#include <cstddef>
#include <string>
#include <vector>

class FLodexBestLocatorFinder;
class FLodexSceneIndex;
class FCSharpSourceLines;
struct FCSharpApiString;

/**
 * A stretch of a C# file: 1-based lines; columns 1-based, the end one past the last character, counted both in
 * characters (as editors count them) and in UTF-16 code units (as SARIF and GitHub count them).
 */
struct FLodexLintRegion
{
	std::size_t Line = 0;
	std::size_t Column = 0;
	std::size_t EndLine = 0;
	std::size_t EndColumn = 0;
	std::size_t Utf16Column = 0;
	std::size_t Utf16EndColumn = 0;
};

/** One finding of `lodex lint`, placed in its file. */
struct FLodexLintDiagnostic
{
	std::string File;
	/** Where the part of the literal at fault begins (Line, Column are Region's, kept for the text output). */
	std::size_t Line = 0;
	std::size_t Column = 0;
	FLodexLintRegion Region;
	ELodexLintSeverity Severity = ELodexLintSeverity::Error;
	std::string Rule;
	std::string Message;
	/** The locator as written (control characters escaped), and the `api` method it is passed to. */
	std::string Lodestring;
	std::string Method;
	/** The level's package path it was checked against with --project; else empty. */
	std::string Level;
	std::size_t MatchCount = 0;
	/** Empty when there is none. */
	std::string Suggestion;
	/** The suggestion as the literal's own kind writes it, to replace FixRegion (the literal's content); or empty. */
	std::string FixText;
	FLodexLintRegion FixRegion;
	std::vector<std::string> Notes;
};

/** One Lodestring checked (or one level a test loads, with --project), and its findings. */
struct FLodexLintCheck
{
	std::string File;
	std::size_t Line = 0;
	std::size_t Column = 0;
	/** The literal shown on one line, and the `api` method it is passed to. */
	std::string Lodestring;
	std::string Method;
	/** Its findings: Report.Diagnostics[FirstDiagnostic, FirstDiagnostic + DiagnosticCount). */
	std::size_t FirstDiagnostic = 0;
	std::size_t DiagnosticCount = 0;
};

/** What `lodex lint` found in the files checked so far. */
struct FLodexLintReport
{
	std::size_t Files = 0;
	/** The files checked, in order. */
	std::vector<std::string> CheckedFiles;
	std::size_t Checked = 0;
	std::size_t Errors = 0;
	std::size_t Warnings = 0;
	/** Findings that never fail a run, even with --strict. */
	std::size_t Notes = 0;
	/** With --project: how many levels were read (the summary then says so). */
	bool bCountsLevels = false;
	std::size_t Levels = 0;
	std::vector<FLodexLintDiagnostic> Diagnostics;
	std::vector<FLodexLintCheck> Checks;
};

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

/** A scene Lodestrings are checked against. */
struct FLodexLintTarget
{
	const FLodexSceneIndex* Index = nullptr;
	const FLodexBestLocatorFinder* Finder = nullptr;
	/** Read from a level's files: it holds only what the level saves. */
	bool bHoldsOnlyPlaced = false;
	/** The level's package path, with --project. */
	std::string Level;
	/** A check run on each literal besides the rules (`lint --baseline`), or null. */
	ILodexLintLiteralCheck* LiteralCheck = nullptr;
};

/** Whether an `api` call's literal is a Lodestring to check: it begins with '/', and is no `LoadLevel` path. */
bool IsLintedApiString(const FCSharpApiString& Literal);

/** Checks one literal against the target, adding one check and its findings to the report. */
void LintApiString(const FLodexLintTarget& Target, const std::string& FileName, const FCSharpSourceLines& Lines,
	const FCSharpApiString& Literal, const FLodexLintOptions& Options, FLodexLintReport& Report);

/**
 * Adds one check of the literal with one finding of the rule (its severity from the rule's row) spanning the whole
 * literal: how the tool reports what it finds about a call rather than about a Lodestring.
 */
void AddLintLiteralFinding(const std::string& FileName, const FCSharpSourceLines& Lines,
	const FCSharpApiString& Literal, const char* Rule, const std::string& Message, FLodexLintReport& Report);

/** Appends what another report found (the files, checks and findings of files checked apart). */
void AppendLintReport(FLodexLintReport& Into, FLodexLintReport&& From);

/**
 * Checks the Lodestrings one C# file passes to `api` calls against an indexed scene, as `lodex lint` does, and adds
 * what it finds to the report. Options.bExpectsOneObject is set for each call from the method's name. Bytes are the
 * file's, decoded as C# decodes them (DecodeCSharpSourceBytes).
 */
void LintCSharpSource(const FLodexSceneIndex& Index, const FLodexBestLocatorFinder& Finder, const std::string& FileName,
	const std::string& Bytes, const FLodexLintOptions& Options, FLodexLintReport& Report,
	ILodexLintLiteralCheck* LiteralCheck = nullptr);

/** The last line of the text output: "Checked N Lodestrings in M files: ...". */
std::string FormatLintSummary(const FLodexLintReport& Report, bool bStrict);

/** "FILE:LINE:COL: error: MESSAGE [rule]" lines (and "note:" lines), then the summary. */
std::string FormatLintReportText(const FLodexLintReport& Report, bool bStrict);

/** The report as one JSON object, for tools. */
std::string FormatLintReportJson(const FLodexLintReport& Report, bool bStrict);

/** The rules, one a line: id, severity and summary in columns. */
std::string FormatLintRuleList();

/** Whether the report fails the run: any error, or any warning when warnings are errors. */
bool LintReportFails(const FLodexLintReport& Report, bool bStrict);
