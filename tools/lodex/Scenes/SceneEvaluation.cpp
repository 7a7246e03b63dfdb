// Copyright Lodex contributors.
#include "SceneEvaluation.h"

#include "LodexDebugger/Core/Evaluation/LodexBlockEvaluator.h"

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

namespace
{
	/** The scene, its index and the block evaluator over them, kept together for as long as a session runs. */
	class FSceneBlockEvaluator final : public ILodexEvaluator
	{
	public:
		explicit FSceneBlockEvaluator(FSceneSnapshot&& InScene)
			: Scene(std::move(InScene))
			, Index(IndexSceneSnapshot(Scene))
			, Evaluator(*Index)
		{
		}

		//~ Begin ILodexEvaluator Interface
		void Attach(FLodexEvaluatorBlock& Block) override { Evaluator.Attach(Block); }

		std::int32_t Serve(FLodexEvaluatorBlock&) override
		{
			return Evaluator.PollOnce() == ELodexBlockPoll::Answered ? Evaluator.GetLastRequest() : 0;
		}

		std::size_t GetPathCapacity() const override { return Evaluator.GetPathCapacity(); }

		void Detach() override { Evaluator.Detach(); }
		//~ End ILodexEvaluator Interface

	private:
		FSceneSnapshot Scene;
		std::unique_ptr<FLodexSceneIndex> Index;
		FLodexBlockEvaluator Evaluator;
	};
}

std::unique_ptr<ILodexEvaluator> MakeLodexSceneEvaluator(const FSceneFileOptions& SceneFile, std::ostream& Err)
{
	FSceneFile Read;
	if (!LoadSceneFileFor(SceneFile, Read, Err))
	{
		return nullptr;
	}
	return std::make_unique<FSceneBlockEvaluator>(std::move(Read.Scene));
}
