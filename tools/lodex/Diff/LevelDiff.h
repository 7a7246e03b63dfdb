// Copyright Lodex contributors.
#pragma once

#include "Scenes/SceneSnapshot.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

/** How actors of two versions of a level are paired, and what counts as a move (docs/diff.md). */
namespace LodexDiffRules
{
	/** The fingerprint's weights: the same name, class, label, tags, attach parent, location. They add up to 1. */
	inline constexpr double NameWeight = 0.3;
	inline constexpr double ClassWeight = 0.2;
	inline constexpr double LabelWeight = 0.2;
	inline constexpr double TagsWeight = 0.1;
	inline constexpr double ParentWeight = 0.1;
	inline constexpr double LocationWeight = 0.1;
	/** A pair scoring below this is a removal and an addition. */
	inline constexpr double Threshold = 0.6;
	/** A pair is made only when no rival of either actor scores within this of it. */
	inline constexpr double Margin = 0.15;
	/** A location that changed by more than this (in engine units, centimetres) is a move. */
	inline constexpr double MoveTolerance = 0.5;
}

/** How a pair of actors was made. */
enum class ELevelMatch
{
	/** The same ActorGuid on both sides. */
	Guid,
	/** The level script actor (class `<Map>_C`), which gets a new GUID whenever the level Blueprint is compiled. */
	LevelScript,
	/** The fingerprint, above the threshold and with no rival within the margin. */
	Fingerprint,
};

/** An actor of the old level and the actor of the new one it became. */
struct FLevelActorPair
{
	const FSceneObject* Old = nullptr;
	const FSceneObject* New = nullptr;
	ELevelMatch By = ELevelMatch::Guid;
	double Score = 1.0;
};

/** The kinds of change, in the order the report groups them. */
enum class ELevelChange
{
	Added,
	Removed,
	Renamed,
	Relabelled,
	Reattached,
	Retagged,
	ClassChanged,
	Moved,
	ComponentsAdded,
	ComponentsRemoved,
};

/** One change of one actor. */
struct FLevelChangeEntry
{
	ELevelChange Kind = ELevelChange::Added;
	/** The actor before and after; Old is null for an addition, New for a removal. */
	const FSceneObject* Old = nullptr;
	const FSceneObject* New = nullptr;
	/** What it was and what it is, as text: names, labels, parents, classes, locations; tags and components. */
	std::string Before;
	std::string After;
	/** Re-tagged: the tags removed and added. Components: their names. */
	std::vector<std::string> Removed;
	std::vector<std::string> Added;
};

/** What changed from one version of a level (or snapshot) to another. */
struct FLevelDiff
{
	std::vector<FLevelActorPair> Pairs;
	std::vector<FLevelChangeEntry> Changes;
	std::size_t OldActors = 0;
	std::size_t NewActors = 0;
	/** Both sides have GUIDs and share none: a copy saved under another name; actors were paired by fingerprint. */
	bool bNoSharedGuid = false;
	/** For a candidate that was close but not taken: both actors, kept apart (a removal and an addition). */
	std::size_t CloseCalls = 0;

	/** The new actor an old one became, or null. */
	const FSceneObject* NewOf(const FSceneObject* Old) const;
	/** The old actor a new one was, or null. */
	const FSceneObject* OldOf(const FSceneObject* New) const;
	bool HasChanges() const { return !Changes.empty(); }

	std::unordered_map<const FSceneObject*, const FSceneObject*> OldToNew;
	std::unordered_map<const FSceneObject*, const FSceneObject*> NewToOld;
};

/** Pairs the actors of two scenes (GUID, level script class, then fingerprint) and lists their changes. */
FLevelDiff DiffLevelScenes(const FSceneSnapshot& Old, const FSceneSnapshot& New);

/** The fingerprint score of two actors (0 to 1), as the pairing computes it. */
double ScoreLevelActors(const FSceneObject& Old, const FSceneObject& New);

/** An actor as the report names it: "Label (Name)", or its name alone when it has no other label. */
std::string DescribeLevelActor(const FSceneObject& Actor);

/** "renamed", "re-labelled", ... as the report and its JSON name the kinds. */
const char* LevelChangeName(ELevelChange Kind);

/** The class name an object shows: its className, else its reflected class's name; empty when unknown. */
std::string LevelClassOf(const FSceneObject& Object);
