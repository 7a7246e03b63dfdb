// Copyright Lodex contributors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/** A part of a Lodestring: the bytes Begin .. End (End excluded) of its UTF-8 text. */
struct FLodexSpan
{
	std::uint32_t Begin = 0;
	std::uint32_t End = 0;

	bool operator==(const FLodexSpan& Other) const { return Begin == Other.Begin && End == Other.End; }
};

/** Why a Lodestring cannot be evaluated, and the part of it that failed (always inside the text). */
struct FLodexPathError
{
	std::string Message;
	FLodexSpan Span;
};

enum class ELodexAxis : std::uint8_t
{
	/** "/": the children of each context object (the roots at the start of the path). */
	Child,
	/** "//": the descendants of each context object (every object at the start of the path). */
	Descendant,
};

enum class ELodexStepKind : std::uint8_t
{
	/** "*" or a name, optionally with a predicate: actors, widget trees and widgets. */
	Node,
	/** "fn:component('C')": components. */
	Component,
	/** "@Prop", the last step only: a property of each context object. */
	Property,
};

enum class ELodexAttribute : std::uint8_t
{
	Name,
	Tag,
};

enum class ELodexPredicateEdgeKind : std::uint8_t
{
	/** "@name = 'X'" or "@tag = 'X'". */
	Comparison,
	Or,
	And,
};

/**
 * One edge of a predicate's reading graph. A predicate is a chain of comparisons joined by "or" and
 * "and" ("and" binding closer); where a quoted value could end at more than one "'", each way is an
 * alternative path through the graph, and the predicate holds when it holds along any path.
 */
struct FLodexPredicateEdge
{
	ELodexPredicateEdgeKind Kind = ELodexPredicateEdgeKind::Comparison;
	ELodexAttribute Attribute = ELodexAttribute::Name;
	/** Graph nodes, numbered in text order: every edge leads forward. */
	std::uint32_t From = 0;
	std::uint32_t To = 0;
	/** Comparison: the quoted value, exactly as written between the quotes. */
	std::string Value;
	/** Comparison: the text of the whole comparison. */
	FLodexSpan Span;
	/** Whether the edge belongs to the standard reading (each value ends at its first possible "'"). */
	bool bStandard = false;
};

struct FLodexPredicate
{
	/** "[]": no comparison at all, which no object satisfies. */
	bool bEmpty = false;
	/** Whether any path holds an "and" (otherwise one true comparison on any path decides). */
	bool bHasAnd = false;
	std::uint32_t NodeCount = 0;
	/** Where paths start (0) and where they must end (the closing "]"). */
	std::uint32_t StartNode = 0;
	std::uint32_t AcceptNode = 0;
	/** Only edges on complete paths, ordered by From. */
	std::vector<FLodexPredicateEdge> Edges;
	/** From "[" to "]" included. */
	FLodexSpan Span;
};

/**
 * One way to read one step of the path, from a step boundary (the "/" that begins it) to the next
 * boundary or the end of the text.
 */
struct FLodexStepOp
{
	std::uint32_t From = 0;
	std::uint32_t To = 0;
	ELodexAxis Axis = ELodexAxis::Child;
	ELodexStepKind Kind = ELodexStepKind::Node;
	/** Node steps: "*" rather than a name. */
	bool bAnyName = false;
	/** The node test's name, the component's name, or the property's name. */
	std::string Name;
	/** The step's predicate, or null; shared by the readings of the text that end at the same "]". */
	std::shared_ptr<const FLodexPredicate> Predicate;
	/** The whole step, from its "/". */
	FLodexSpan Span;
	/** The axis and the node test without the predicate (as "//Door"); the whole step for other kinds. */
	FLodexSpan TestSpan;
	/** Its place in the standard reading, from 1; 0 for a step only another reading has. */
	std::uint32_t StandardStep = 0;
};

/**
 * A Lodestring compiled once: every reading of the text as a graph of steps over the text's step
 * boundaries, ordered by where each step begins. Names hold any character and the path builder quotes
 * nothing, so a text may read in more than one way; the standard reading ends every quoted value at its
 * first "'" that a "]", "or", "and" or ")" follows, and every bare name at its first "/" or "[". A path
 * matches the objects any reading matches.
 */
class FLodestringProgram
{
public:
	const std::string& GetText() const { return Text; }
	const std::vector<FLodexStepOp>& GetOps() const { return Ops; }
	/** The number of steps of the standard reading; 0 when only other readings exist. */
	std::uint32_t GetStandardStepCount() const { return StandardStepCount; }
	/**
	 * Why the text does not follow the standard grammar, when it does not. Such a text is still evaluated
	 * by its other readings; when they find nothing, this is the error reported.
	 */
	bool HasStandardError() const { return bHasStandardError; }
	const FLodexPathError& GetStandardError() const { return StandardError; }

private:
	friend bool CompileLodestring(const std::string& Text, FLodestringProgram& Out, FLodexPathError& OutError);

	std::string Text;
	std::vector<FLodexStepOp> Ops;
	std::uint32_t StandardStepCount = 0;
	bool bHasStandardError = false;
	FLodexPathError StandardError;
};

/**
 * Compiles a Lodestring. Returns false, with the error of the standard grammar, when no reading of the
 * text exists; never fails otherwise, and never crashes on any text.
 */
bool CompileLodestring(const std::string& Text, FLodestringProgram& Out, FLodexPathError& OutError);

/** Limits that keep a pathological text from costing more than a long one. */
namespace LodestringLimits
{
	/** Beyond this many steps of other readings, only the standard reading is kept. */
	inline constexpr std::size_t MaxAlternativeSteps = 4096;
	/** Beyond this many comparisons in one predicate's graph, its other readings are dropped. */
	inline constexpr std::size_t MaxPredicateEdges = 1024;
}
