// Copyright Lodex contributors.
#pragma once

#include "SceneSnapshot.h"

#include "LodexDebugger/Core/Evaluation/LodexSceneIndex.h"

#include <memory>
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
