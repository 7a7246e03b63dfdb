// Copyright Lodex contributors.
#pragma once

#include "LodestringProgram.h"
#include "LodexLintRuleTable.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class FLodexBestLocatorFinder;
class FLodexSceneIndex;

/** The rules a locator is checked against, by the names the report gives them (their rows: LodexLintRuleTable.h). */
namespace LodexLintRules
{
	/** Error: the text cannot be read, or is not UTF-8. */
	inline constexpr const char* Unreadable = "unreadable";
	/** Error: the locator matches no object. */
	inline constexpr const char* NoMatch = "no-match";
	/** Error: the locator matches more than one object where the call expects one. */
	inline constexpr const char* Ambiguous = "ambiguous";
	/**
	 * Warning: a name it tests ends in a generated instance number (`Cube_2`, `Enemy_C_3`) and names an object
	 * that is not known to be saved with its level: spawned at play time, or a scene that cannot tell.
	 */
	inline constexpr const char* GeneratedSuffix = "generated-suffix";
	/**
	 * Note: a name it tests ends in a generated instance number, and every object of that name was saved with its
	 * level: the name is the same on every run, and only an edit of the level renumbers it.
	 */
	inline constexpr const char* PlacedGeneratedSuffix = "placed-generated-suffix";
	/**
	 * Warning, in place of `no-match` on a scene read from the level's files: the locator matches no object the
	 * level saves, and may name one spawned at play time.
	 */
	inline constexpr const char* NotInLevel = "not-in-level";
	/** Warning: it names more levels from the root than allowed, each a parent that may be re-attached. */
	inline constexpr const char* DeepAbsolute = "deep-absolute";
	/** Warning: the locator finds the one object the call expects, but its tag predicate alone matches several. */
	inline constexpr const char* SharedTag = "shared-tag";
	/** Error, checked by the tool over a project: a test loads a level the project does not have. */
	inline constexpr const char* UnknownLevel = "unknown-level";
	/** Note, checked by the tool over a project: a locator no loaded level can be checked against. */
	inline constexpr const char* NoLevel = "no-level";
	/**
	 * Error, with a baseline (`lint --baseline`): the locator found exactly one object on the level before and finds
	 * none or several now; the message says which change of the level broke it.
	 */
	inline constexpr const char* BrokenByChange = "broken-by-change";
	/** Warning: every object the locator finds exists only in the editor (not-for-client and not-for-server). */
	inline constexpr const char* EditorOnly = "editor-only";
	/**
	 * Warning, in place of `not-in-level`: a name the locator tests is the editor label of an actor of the level,
	 * which the game does not know; the message names the actor by its name.
	 */
	inline constexpr const char* EditorLabel = "editor-label";
	/** Note: every object the locator finds lies in a sub-level the game loads only when it streams it in. */
	inline constexpr const char* StreamedLevel = "streamed-level";
}

struct FLodexLintOptions
{
	/** The most steps from the root, before any "//", that a locator may name without a warning. */
	std::size_t MaxAbsoluteDepth = 5;
	/** Whether the call the locator is passed to acts on one object (a click), not on a list. */
	bool bExpectsOneObject = true;
	/**
	 * Whether the scene holds only what its level saves (it was read from the level's files): an object spawned at
	 * play time is then missing from it, so a locator that matches nothing is a warning, not an error.
	 */
	bool bSceneHoldsOnlyPlaced = false;
};

/** One problem of one locator. */
struct FLodexLintFinding
{
	ELodexLintSeverity Severity = ELodexLintSeverity::Error;
	/** One of `LodexLintRules`. */
	const char* Rule = LodexLintRules::Unreadable;
	/** One line, the locator shown with its control characters escaped. */
	std::string Message;
	/** The part of the locator the finding is about (the whole of it for the errors). */
	FLodexSpan Span;
	/** The best locator of the object it matches, when it matches one and the best one differs; else empty. */
	std::string Suggestion;
	/** More lines: for an ambiguous locator, the best locator of each object it matches (at most five). */
	std::vector<std::string> Notes;
};

/** What checking one locator found, and how many objects it matches. */
struct FLodexLintResult
{
	std::size_t MatchCount = 0;
	std::vector<FLodexLintFinding> Findings;
};

/**
 * Checks one locator against an indexed scene: the errors (it cannot be read, matches no object, matches several
 * where one is expected) and the warnings (a generated instance number in a name it tests, too many levels from
 * the root, a tag predicate that several objects satisfy), each with the best locator of the object it matches as
 * the suggested replacement. The finder must be over the same index.
 */
FLodexLintResult LintLodestring(const FLodexSceneIndex& Index, const FLodexBestLocatorFinder& Finder,
	const std::string& Lodestring, const FLodexLintOptions& Options);

/**
 * Whether a method of the test API acts on one object: all do but those whose name says they take several
 * (holding "Objects", "List", "All" or "Count", as `GetAllObjects` or `GetObjectCount`).
 */
bool LodexLintExpectsOneObject(std::string_view Method);

/** A locator on one line: control characters as C# escapes (`\n`, `\t`, `\0`, else `\u00XX`). */
std::string ShowLodestringOnOneLine(const std::string& Lodestring);
