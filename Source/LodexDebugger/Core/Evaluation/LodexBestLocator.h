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
	/** The nearest uniquely named ancestor, then a relative step to the object. */
	Anchor,
	/** A component step below a located node. */
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

/** Finds the best Lodestring of objects of one indexed scene; the index must outlive it. */
class FLodexBestLocatorFinder
{
public:
	explicit FLodexBestLocatorFinder(const FLodexSceneIndex& InIndex);

	/** The best locator of the object at this index of the scene. */
	FLodexBestLocator Find(std::uint32_t ObjectIndex) const;

private:
	const FLodexSceneIndex& Index;
};
