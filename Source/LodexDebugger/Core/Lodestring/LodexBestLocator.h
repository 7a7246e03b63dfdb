// Copyright Lodex contributors.
#pragma once

#include "LodexSceneIndex.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/** What a suggested Lodestring rests on, most stable first. */
enum class ELodexLocatorEvidence : std::uint8_t
{
	/** The object's own tags. */
	Tag,
	/** The object's own name, which carries no generated instance suffix. */
	Name,
	/** A near ancestor by its name or by a tag only it has, then a relative step to the object. */
	Anchor,
	/** Component steps below a located node, or one component step below an anchor. */
	Component,
	/** No stable evidence is unique: the full chain of names, generated ones included. */
	Absolute,
};

/** The shortest, most stable Lodestring found for one object of a scene. */
struct FLodexBestLocator
{
	/** Empty when the object is not in the tree (it takes no step). */
	std::string Lodestring;
	/** The objects the Lodestring matches on the scene: 1 when it is unique. */
	std::size_t MatchCount = 0;
	ELodexLocatorEvidence Evidence = ELodexLocatorEvidence::Absolute;
	/** No name with a generated instance suffix was needed. */
	bool bStable = false;
};

/**
 * Whether a name ends in an instance number the engine generated (`Cube_2`, `Enemy_C_3`): "_" and a decimal
 * number written without a leading zero, as the engine renders a name's number.
 */
bool HasGeneratedInstanceSuffix(std::string_view Name);

namespace LodexBestLocatorPrivate
{
	struct FCandidate;
	/**
	 * What a generated name of an object not known to be saved with its level costs, against 1 for a saved one: a
	 * locator resting on one such name ranks after any resting on fewer than this many saved generated names.
	 */
	inline constexpr std::size_t UnsavedNameCost = 16;
}

/** Finds the best Lodestring of objects of one indexed scene; the index must outlive it. */
class FLodexBestLocatorFinder
{
public:
	explicit FLodexBestLocatorFinder(const FLodexSceneIndex& InIndex);

	/**
	 * The best locator of the object at this index of the scene. Candidates are ruled out on the index's lists
	 * first; the one returned has been checked with the evaluator, so a test finds what is suggested.
	 */
	FLodexBestLocator Find(std::uint32_t ObjectIndex) const;

private:
	struct FSearch;

	void GatherCandidates(FSearch& Search) const;
	/** False when the index shows that the candidate selects something else; true when it may find the object alone. */
	bool MaySelectOnlyTheObject(FSearch& Search, const LodexBestLocatorPrivate::FCandidate& Candidate) const;
	std::string MakeText(const FSearch& Search, std::size_t Which) const;
	bool FindsOnlyTheObject(const std::string& Lodestring, std::uint32_t ObjectIndex) const;
	/**
	 * 0 when the object's name has no generated instance number; else 1 when the object was saved with its level
	 * (its name is the same on every run), UnsavedNameCost when it was spawned or the scene cannot tell.
	 */
	std::size_t GeneratedNameCost(std::uint32_t ObjectIndex) const;
	/** The length of the object's absolute Lodestring, read off the index (valid when no walk loops). */
	std::size_t AbsoluteLength(std::uint32_t ObjectIndex) const;

	const FLodexSceneIndex& Index;
	/** Whether some walk of the scene loops: then what a step selects is left to the evaluator. */
	bool bHasLoops = false;
};
