// Copyright Lodex contributors.
#pragma once

#include "LodestringCases.h"
#include "Scenes/SceneEvaluation.h"
#include "Scenes/SceneSnapshot.h"

#include "LodexDebugger/Core/Lodestring/LodestringEvaluator.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

/** The scene of every Lodestring shape (LodestringCases), indexed; results named by the objects' ids. */
class FCasesScene
{
public:
	FCasesScene()
	{
		std::string Error;
		bLoaded = FSceneSnapshot::Parse(LodestringCases::Scene, "cases", Scene, Error);
		EXPECT_TRUE(bLoaded) << Error;
		Index = IndexSceneSnapshot(Scene);
	}

	/** The ids of the matched objects in result order, joined with blanks; a property as id/@Name. */
	std::string Ids(const FLodexEvaluation& Evaluation, const FLodestringProgram* Program = nullptr) const
	{
		std::string Text;
		for (const FLodexMatch& Match : Evaluation.Matches)
		{
			Text += Text.empty() ? "" : " ";
			Text += FSceneSnapshot::Resolve(Index->GetObject(Match.Object)).Id;
			if (Match.Property != FLodexSceneIndex::None && Program != nullptr)
			{
				Text += "/@" + Program->GetOps()[Match.Property].Name;
			}
		}
		return Text;
	}

	std::string Ids(const std::vector<FLodexMatch>& Matches) const
	{
		FLodexEvaluation Evaluation;
		Evaluation.Matches = Matches;
		return Ids(Evaluation);
	}

	bool bLoaded = false;
	FSceneSnapshot Scene;
	std::unique_ptr<FLodexSceneIndex> Index;
};
