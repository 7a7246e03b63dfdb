// Copyright Lodex contributors.
#pragma once

#include "LodexDebugger/Core/Lodestring/LodestringEvaluator.h"
#include "LodexDebugger/Core/Lodestring/LodestringProgram.h"
#include "LodexEvaluatorBlock.h"
#include "LodexDebugger/Core/Lodestring/LodexSceneIndex.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

struct FLodexBlockEvaluatorOptions
{
	/** Bytes of the buffer behind `pathText`, its terminating NUL included. The panels copy without a bound. */
	std::size_t PathCapacity = 64 * 1024;
	/** Lines of `contextText` at most; past them one last line says how many more objects there are. */
	std::size_t MaxContextLines = 10000;
	/** Read "?" in names and tags as the panels' 8-bit conversion wrote it (see `FLodexEvaluationOptions`). */
	bool bAnsiWildcards = true;
};

/** What one look at the block found. */
enum class ELodexBlockPoll
{
	/** No request pending (or no block attached). */
	Idle,
	/** A result is published and no panel has consumed it yet; a pending request waits for that. */
	Waiting,
	/** A request was taken and answered. */
	Answered,
};

/**
 * The native evaluator behind the evaluator block: it answers the panels' requests with evaluations of
 * the Lodestring over an indexed scene.
 *
 * - Run (1): `resultText` the number of objects found, `contextText` one line per object (its "Absolute"
 *   Lodestring), `durationMs`, then status 3 (Evaluated).
 * - Load (4): compiles and evaluates the path step by step and publishes the first step (the start at the
 *   scene root) with status 8 (Stepped). Step Into (5) and Step Over (6) publish the next step with 8, and
 *   once past the last step status 5 (Finished) with an empty `resultText`. A step request for a path other
 *   than the loaded one, or with nothing loaded, loads that path first.
 * - A path that cannot be read: `contextText` the path with the failing part marked up, `resultText` the
 *   message, status 9 (Failed). So does an unknown request code.
 *
 * A request is taken by swapping `command` with 0 and the path copied from the evaluator's own buffer at
 * once. Requests wait while a result is published and not consumed (`status` not 0). Results are written
 * into buffers the evaluator owns, two sets used in turn so that the set a panel may still be reading is
 * never written; `status` is written last, with release semantics. Texts written to the block are 8-bit:
 * every character beyond ASCII becomes "?", as in the panels' own conversion.
 *
 * The evaluator runs on one thread of the host's choosing, which calls `PollOnce` (or `Serve`); the scene
 * index must stay unchanged while it does.
 */
class FLodexBlockEvaluator
{
public:
	explicit FLodexBlockEvaluator(const FLodexSceneIndex& InIndex, FLodexBlockEvaluatorOptions InOptions = {});
	/** Detaches from the block. */
	~FLodexBlockEvaluator();

	FLodexBlockEvaluator(const FLodexBlockEvaluator&) = delete;
	FLodexBlockEvaluator& operator=(const FLodexBlockEvaluator&) = delete;

	/**
	 * Makes the block this evaluator's: `pathText` points at its buffer, every other text at an empty
	 * string, `durationMs`, `command` and `status` are 0. Call before any panel uses the block.
	 */
	void Attach(FLodexEvaluatorBlock& InBlock);

	/**
	 * Leaves the block with a null `pathText` (the panels then write no request) and every text pointing
	 * at a static empty string.
	 */
	void Detach();

	/** Looks at the block once and answers the pending request, if any. Never blocks. */
	ELodexBlockPoll PollOnce();

	/** The request code the last answered poll took (an `EEvaluatorCommand` value), 0 before any. */
	std::int32_t GetLastRequest() const { return LastRequest; }

	/** Bytes of the buffer behind `pathText`, its terminating NUL included. */
	std::size_t GetPathCapacity() const { return PathBuffer.size(); }

	/** Polls until bStop is true, sleeping IdleWait after each poll that answered nothing. */
	void Serve(const std::atomic<bool>& bStop, std::chrono::microseconds IdleWait = std::chrono::microseconds(200));

private:
	struct FTexts
	{
		std::string Context;
		std::string Result;
		std::string Operation;
		std::string NodeType;
		std::string Stack;
	};

	struct FSession
	{
		bool bActive = false;
		std::string Path;
		FLodestringProgram Program;
		FLodexTrace Trace;
		std::size_t Current = 0;
	};

	bool ReadPath(std::string& OutPath) const;
	void Run(const std::string& Path);
	void Load(const std::string& Path);
	void Step(const std::string& Path, bool bStepOver);
	void PublishStep();
	void PublishFailure(const std::string& Path, const FLodexPathError& Error);
	void Publish(FTexts&& Texts, double DurationMs, EEvaluatorStatus Status);
	std::string ContextLines(const FLodestringProgram& Program, const std::vector<FLodexMatch>& Matches) const;

	const FLodexSceneIndex& Index;
	FLodexBlockEvaluatorOptions Options;
	FLodexEvaluatorBlock* Block = nullptr;
	std::vector<char> PathBuffer;
	FTexts Buffers[2];
	int Published = 0;
	std::int32_t LastRequest = 0;
	FSession Session;
};
