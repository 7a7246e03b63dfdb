// Copyright Lodex contributors.
#pragma once

#include "Scenes/SceneSnapshot.h"

#include "LodexDebugger/Core/Lodestring/LodexSceneIndex.h"

/** The embedded sample level the targets evaluate on, read and indexed once for every input. */
namespace LodexFuzz
{
	/** samples/level.json as `lodex demo` reads it. */
	const FSceneSnapshot& GetSampleScene();

	/** The sample level indexed for evaluating Lodestrings. */
	const FLodexSceneIndex& GetSampleIndex();
}
