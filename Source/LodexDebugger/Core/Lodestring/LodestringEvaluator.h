// Copyright Lodex contributors.
#pragma once

#include "LodestringProgram.h"
#include "LodexSceneIndex.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

struct FLodexEvaluationOptions
{
	/**
	 * Read a "?" in a name or tag as the panels' 8-bit conversion leaves it: "?" itself, or any one UTF-16
	 * unit beyond ASCII (so "T?r" finds "Tür", and "??" a character beyond the Basic Multilingual Plane).
	 * For paths that come through the evaluator block; text typed in UTF-8 is matched exactly.
	 */
	bool bAnsiWildcards = false;
};

/** A found object; for a path ending in "/@Prop", a property of one ("Property" names the step). */
struct FLodexMatch
{
	std::uint32_t Object = 0;
	/** The index of the property step among the program's ops, or None for the object itself. */
	std::uint32_t Property = FLodexSceneIndex::None;

	bool operator==(const FLodexMatch& Other) const { return Object == Other.Object && Property == Other.Property; }
	bool operator<(const FLodexMatch& Other) const
	{
		return Object != Other.Object ? Object < Other.Object : Property < Other.Property;
	}
};

struct FLodexEvaluation
{
	bool bOk = false;
	FLodexPathError Error;
	/** In document order, each once. */
	std::vector<FLodexMatch> Matches;
};

/**
 * Evaluates a compiled Lodestring over an indexed scene: the objects any reading of the text matches.
 * A text outside the standard grammar whose other readings find nothing fails with the grammar's error.
 */
FLodexEvaluation EvaluateLodestring(
	const FLodexSceneIndex& Index, const FLodestringProgram& Program, const FLodexEvaluationOptions& Options = {});

/** Compiles and evaluates; a text with no reading fails with the grammar's error. */
FLodexEvaluation EvaluateLodestring(
	const FLodexSceneIndex& Index, const std::string& Path, const FLodexEvaluationOptions& Options = {});

/** How a match is shown: its object's "Absolute" Lodestring, then "/@" and the property's name for a property. */
std::string DescribeLodexMatch(
	const FLodexSceneIndex& Index, const FLodestringProgram& Program, const FLodexMatch& Match);

namespace LodexHighlight
{
	/** The markup the debugger's path display draws in the highlight style. */
	inline constexpr const char* Open = "<VELT.Highlight>";
	inline constexpr const char* Close = "</>";
}

/**
 * The path with the span wrapped in the highlight markup. "&", "<" and ">" of the path are written as
 * "&amp;", "&lt;" and "&gt;", which the rich text block shows as the characters themselves.
 */
std::string MarkUpLodestring(const std::string& Path, FLodexSpan Span);

/** One step of a step-by-step evaluation, as the debugger shows it. */
struct FLodexTraceStep
{
	/** The part of the path this step evaluated. */
	FLodexSpan Span;
	/** 0: the path and its steps; 1: the node test and the predicate of a step; 2: one comparison. */
	int Depth = 0;
	std::string Operation;
	std::string NodeType;
	/** Outermost first. */
	std::vector<std::string> Stack;
	/** What this step yields. */
	std::vector<FLodexMatch> Context;
	double DurationMs = 0.0;
};

struct FLodexTrace
{
	bool bOk = false;
	FLodexPathError Error;
	/**
	 * The start, then each step of the standard reading after its parts (node test, comparisons, predicate),
	 * steps of other readings where they find something, and the result.
	 */
	std::vector<FLodexTraceStep> Steps;
	std::vector<FLodexMatch> Result;
};

/** Evaluates step by step, recording every step; the result is the one `EvaluateLodestring` gives. */
FLodexTrace TraceLodestring(
	const FLodexSceneIndex& Index, const FLodestringProgram& Program, const FLodexEvaluationOptions& Options = {});

/**
 * The step after Current: "step into" goes to the next one; "step over" to the next one no deeper than
 * Current, so that from the start or a step it passes the parts of the next step (node test, comparisons,
 * predicate) and stops at that step's result. Returns Steps.size() past the last step.
 */
std::size_t NextLodexTraceStep(const FLodexTrace& Trace, std::size_t Current, bool bStepOver);

/** "1 object", "3 objects". */
std::string FormatLodexObjectCount(std::size_t Count);
