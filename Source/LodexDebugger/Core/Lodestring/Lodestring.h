// Copyright Lodex contributors.
#pragma once

#include "LodexObjectGraph.h"

#include <string>
#include <vector>

/**
 * Selects the form of a Lodestring's node steps. "Absolute", "Relative" and "Tag" have a meaning and
 * are compared exactly; any other text is accepted and produces no node steps.
 */
using LodestringMode = std::string;

namespace LodestringModes
{
	inline constexpr const char* Absolute = "Absolute";
	inline constexpr const char* Relative = "Relative";
	inline constexpr const char* Tag = "Tag";
}

/** Classifies an object by its class, the first match winning: actor, widget tree, widget, component, other. */
ELodexObjectKind ClassifyLodexObject(const ILodexObjectGraph& Graph, FLodexObject Object);

/**
 * The next object of a Lodestring walk: an actor's attach parent, a widget tree's root widget, a user
 * widget's parent panel; null for any other widget; the outer of anything else, unless that outer is
 * the level "PersistentLevel".
 */
FLodexObject GetLodestringParent(const ILodexObjectGraph& Graph, FLodexObject Object);

/** The object's tag names in order; empty when it has no "Tags" array. */
std::vector<std::string> GetTagStrings(const ILodexObjectGraph& Graph, FLodexObject Object);

/**
 * The Lodestring of a non-null object in the given mode. Never fails: an object for which no step
 * applies yields the empty string. A malformed graph whose walk loops back onto itself ends the walk at
 * the first object met again.
 */
std::string BuildLodestring(const ILodexObjectGraph& Graph, FLodexObject Object, const LodestringMode& Mode);
