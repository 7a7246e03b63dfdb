// Copyright Lodex contributors.
#include "EvaluatorRunner.h"

FLodexEvaluatorRunner::FLodexEvaluatorRunner(ILodexEvaluator& InEvaluator, FLodexEvaluatorBlock& InBlock)
	: Evaluator(InEvaluator)
	, Block(InBlock)
{
	Evaluator.Attach(Block);
	Thread = std::thread([this] { RunLoop(); });
}

FLodexEvaluatorRunner::~FLodexEvaluatorRunner()
{
	{
		std::lock_guard<std::mutex> Lock(Mutex);
		bStop = true;
	}
	Changed.notify_all();
	Thread.join();
	// The block belongs to the session and goes before the evaluator does.
	Evaluator.Detach();
}

void FLodexEvaluatorRunner::SetHeld(bool bInHeld)
{
	std::unique_lock<std::mutex> Lock(Mutex);
	bHeld = bInHeld;
	Changed.notify_all();
	// Once held, the evaluator is not in the middle of a look either: what is written next waits.
	Changed.wait(Lock, [this] { return !bServing; });
}

bool FLodexEvaluatorRunner::IsHeld() const
{
	std::lock_guard<std::mutex> Lock(Mutex);
	return bHeld;
}

bool FLodexEvaluatorRunner::WaitUntilQuiet(std::chrono::milliseconds Timeout)
{
	std::unique_lock<std::mutex> Lock(Mutex);
	if (bHeld)
	{
		return true;
	}
	// The round under way may have begun before this call: a quiet round counts from the one after it.
	const std::uint64_t Wanted = Rounds + 2;
	Changed.notify_all();
	return Changed.wait_for(Lock, Timeout, [this, Wanted] { return LastQuietRound >= Wanted || bHeld; });
}

std::vector<std::int32_t> FLodexEvaluatorRunner::TakeTakenCommands()
{
	std::lock_guard<std::mutex> Lock(Mutex);
	std::vector<std::int32_t> Taken;
	Taken.swap(TakenCommands);
	return Taken;
}

void FLodexEvaluatorRunner::RunLoop()
{
	std::unique_lock<std::mutex> Lock(Mutex);
	while (!bStop)
	{
		if (bHeld)
		{
			Changed.wait(Lock, [this] { return bStop || !bHeld; });
			continue;
		}
		bServing = true;
		Lock.unlock();
		const std::int32_t Taken = Evaluator.Serve(Block);
		const bool bTook = Taken != 0;
		Lock.lock();
		bServing = false;
		++Rounds;
		if (bTook)
		{
			TakenCommands.push_back(Taken);
		}
		else
		{
			LastQuietRound = Rounds;
		}
		Changed.notify_all();
		if (!bTook)
		{
			// Idle: look again soon, or at once when someone waits for a quiet round.
			Changed.wait_for(Lock, std::chrono::microseconds(500));
		}
	}
}
