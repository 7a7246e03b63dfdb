// Copyright Lodex contributors.
#pragma once

#include "LintCommand.h"

#include "Diff/LevelDiff.h"

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

class FLodexBestLocatorFinder;
class FLodexSceneIndex;

/** An object of the new level a broken Lodestring may be meant to find, for a person to choose. */
struct FLintRepairCandidate
{
	std::string Lodestring;
	double Score = 0;
};

/** A literal that broke with the change, where it lies, and its repair when there is one. */
struct FLintBrokenLiteral
{
	std::string File;
	/** The literal in the file's bytes, quotes (and `@`) included. */
	std::size_t Offset = 0;
	std::size_t End = 0;
	std::size_t Line = 0;
	std::string Value;
	/** The new level's best Lodestring of the same object; empty when there is no repair. */
	std::string Repair;
	std::vector<FLintRepairCandidate> Candidates;
};

/**
 * `lint --baseline`: a Lodestring that found exactly one object on the old level and finds none, or several where
 * the call expects one, on the new level is the error `broken-by-change`, which names the change that broke it
 * ("Door_2 was renamed Door_3", "Lamp_2 was removed from the level"). When the object is still in the new level (the
 * pairing of `lodex diff`: the same GUID, or a fingerprint above the threshold with no close rival), the new level's
 * best Lodestring for it is the repair; otherwise the candidates are listed with their scores.
 */
class FLintBaselineCheck final : public ILodexLintLiteralCheck
{
public:
	/** The scenes and indices must outlive the check. */
	FLintBaselineCheck(const FSceneSnapshot& InOld, const FLodexSceneIndex& InOldIndex, const FSceneSnapshot& InNew,
		const FLodexSceneIndex& InNewIndex, const FLodexBestLocatorFinder& InNewFinder);

	bool Check(const std::string& FileName, const FCSharpApiString& Literal, bool bExpectsOneObject,
		FLodexLintFinding& OutFinding) override;

	/** Every literal found broken so far, in the order checked. */
	const std::vector<FLintBrokenLiteral>& GetBroken() const { return Broken; }
	const FLevelDiff& GetDiff() const { return Diff; }

private:
	std::vector<std::string> Causes(const FSceneObject& Object, const FSceneObject* NewObject) const;
	std::string DescribeOthers(const std::vector<const FSceneObject*>& Others) const;
	void FindCandidates(const FSceneObject& Actor, std::vector<FLintRepairCandidate>& Out) const;

	const FLodexSceneIndex& OldIndex;
	const FSceneSnapshot& New;
	const FLodexSceneIndex& NewIndex;
	const FLodexBestLocatorFinder& NewFinder;
	FLevelDiff Diff;
	/** Each old actor's changes, by index into Diff.Changes. */
	std::unordered_map<const FSceneObject*, std::vector<std::size_t>> ChangesOf;
	std::vector<FLintBrokenLiteral> Broken;
};
