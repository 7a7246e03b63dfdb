// Copyright Lodex contributors.
#pragma once

#include "LodexDebugger/Core/Lodestring/LodestringEvaluator.h"
#include "LodexDebugger/Core/Lodestring/LodexBestLocator.h"
#include "LodexDebugger/Core/Lodestring/LodexSceneIndex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

/**
 * The best locator's round-trip law for one object: its match count is what the evaluator finds, the object is
 * among the matches, it is never longer than the object's absolute Lodestring, and it is unique whenever that one
 * is. Failures name Where (a scene's seed or file). Returns the locator checked.
 */
inline FLodexBestLocator ExpectBestLocatorLaw(const FLodexSceneIndex& Index, const FLodexBestLocatorFinder& Finder,
	std::uint32_t Object, const std::string& Where)
{
	const FLodexBestLocator Best = Finder.Find(Object);
	const std::string Absolute = Index.GetAbsoluteLodestring(Object);
	const FLodexEvaluation Found = EvaluateLodestring(Index, Best.Lodestring);
	EXPECT_TRUE(Found.bOk) << Where << ": " << Best.Lodestring;
	EXPECT_EQ(Best.MatchCount, Found.Matches.size()) << Where << ": " << Best.Lodestring;
	EXPECT_TRUE(std::any_of(Found.Matches.begin(), Found.Matches.end(),
		[Object](const FLodexMatch& Match) { return Match.Object == Object; }))
		<< Where << ": " << Best.Lodestring;
	EXPECT_LE(Best.Lodestring.size(), Absolute.size()) << Where << ": " << Best.Lodestring;
	if (EvaluateLodestring(Index, Absolute).Matches.size() == 1)
	{
		EXPECT_EQ(Best.MatchCount, 1u) << Where << ": " << Best.Lodestring << " for " << Absolute;
	}
	return Best;
}
