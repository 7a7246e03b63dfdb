// Copyright Lodex contributors.
#include "SceneEvaluation.h"

void FSceneSnapshotObjects::GetAllObjects(std::vector<FLodexObject>& OutObjects) const
{
	const std::vector<FSceneObject>& Objects = Scene.GetObjects();
	OutObjects.reserve(OutObjects.size() + Objects.size());
	for (const FSceneObject& Object : Objects)
	{
		OutObjects.push_back(FSceneSnapshot::Handle(Object));
	}
}

std::unique_ptr<FLodexSceneIndex> IndexSceneSnapshot(const FSceneSnapshot& Scene)
{
	return std::make_unique<FLodexSceneIndex>(Scene, FSceneSnapshotObjects(Scene));
}
