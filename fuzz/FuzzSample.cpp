// Copyright Lodex contributors.
#include "FuzzSample.h"

#include "Demo/SampleData.h"
#include "Scenes/SceneEvaluation.h"

#include <cstdlib>
#include <memory>
#include <string>

namespace LodexFuzz
{
	const FSceneSnapshot& GetSampleScene()
	{
		static const FSceneSnapshot Scene = []
		{
			FSceneSnapshot Parsed;
			std::string Error;
			if (!FSceneSnapshot::Parse(GetSampleLevelJson(), "the sample level", Parsed, Error))
			{
				std::abort(); // the embedded sample is read by `lodex demo` and its tests
			}
			return Parsed;
		}();
		return Scene;
	}

	const FLodexSceneIndex& GetSampleIndex()
	{
		static const std::unique_ptr<FLodexSceneIndex> Index = IndexSceneSnapshot(GetSampleScene());
		return *Index;
	}
}
