// Copyright Lodex contributors.
#pragma once

#include "SceneFile.h"

#include "LodexDebugger/Core/Evaluation/LodexEvaluator.h"
#include "LodexDebugger/Core/Lodestring/LodexSceneIndex.h"

#include <memory>
#include <ostream>
#include <string>
#include <vector>

/** Every object of a scene snapshot, in the file's order. */
class FSceneSnapshotObjects final : public ILodexSceneObjects
{
public:
	explicit FSceneSnapshotObjects(const FSceneSnapshot& InScene)
		: Scene(InScene)
	{
	}

	//~ Begin ILodexSceneObjects Interface
	void GetAllObjects(std::vector<FLodexObject>& OutObjects) const override;
	//~ End ILodexSceneObjects Interface

private:
	const FSceneSnapshot& Scene;
};

/** The scene indexed for evaluating Lodestrings; the scene must outlive the index. */
std::unique_ptr<FLodexSceneIndex> IndexSceneSnapshot(const FSceneSnapshot& Scene);

/**
 * The native evaluator over a scene file (a snapshot or a level), as `lodex repl --scene` and `lodex debug --scene` use
 * it: the scene loaded and indexed once, and requests answered on the block. On a file that cannot be read or parsed,
 * one line naming the file on Err, and null.
 */
std::unique_ptr<ILodexEvaluator> MakeLodexSceneEvaluator(const FSceneFileOptions& SceneFile, std::ostream& Err);
