// Copyright Lodex contributors.
#pragma once

#include "LodexDebugger/Core/Evaluation/LodexEvaluator.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

/**
 * Runs an evaluator on a thread of its own, as the editor's hosted evaluator runs beside the game
 * thread: the evaluator is attached to the block, then Serve is called in a loop until the runner is
 * destroyed, which detaches it. The panels stay on the caller's thread and meet the evaluator only through the block.
 */
class FLodexEvaluatorRunner
{
public:
	FLodexEvaluatorRunner(ILodexEvaluator& InEvaluator, FLodexEvaluatorBlock& InBlock);
	~FLodexEvaluatorRunner();
	FLodexEvaluatorRunner(const FLodexEvaluatorRunner&) = delete;
	FLodexEvaluatorRunner& operator=(const FLodexEvaluatorRunner&) = delete;

	/**
	 * While held, the evaluator is not called: requests wait in the block. Returns once the evaluator is
	 * between two looks at the block.
	 */
	void SetHeld(bool bInHeld);
	bool IsHeld() const;

	/**
	 * Waits until the evaluator has had a full look at the block that began after this call and took
	 * nothing: everything that was pending is answered, or cannot be taken yet. Returns false on time-out,
	 * and at once (true) while held.
	 */
	bool WaitUntilQuiet(std::chrono::milliseconds Timeout);

	/** The request codes the evaluator took since the last call, in order. */
	std::vector<std::int32_t> TakeTakenCommands();

private:
	void RunLoop();

	ILodexEvaluator& Evaluator;
	FLodexEvaluatorBlock& Block;
	mutable std::mutex Mutex;
	std::condition_variable Changed;
	bool bStop = false;
	bool bHeld = false;
	bool bServing = false;
	std::uint64_t Rounds = 0;
	std::uint64_t LastQuietRound = 0;
	std::vector<std::int32_t> TakenCommands;
	std::thread Thread;
};
