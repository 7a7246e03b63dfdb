// Copyright Lodex contributors.
#pragma once

#include "LodexEvaluatorBlock.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

/**
 * An evaluator: the other side of the block. The panels write a path and a request code; an evaluator
 * takes the request, evaluates the path, and publishes its answer with the status written last.
 *
 * Serve is called over and over from the evaluator's own thread (any thread but the panels'); Attach
 * once before, on whichever thread sets things up, before any panel uses the block. An evaluator keeps
 * every text it publishes alive and unchanged until the panel has consumed it (written `status` back to
 * 0); `FLodexEvaluatorSide` does that bookkeeping.
 */
class ILodexEvaluator
{
public:
	virtual ~ILodexEvaluator() = default;

	/**
	 * Makes the block ready: `pathText` points at a writable buffer of GetPathCapacity() bytes that the
	 * evaluator owns, every other text field at a NUL-terminated text, `durationMs`, `command` and
	 * `status` are 0.
	 */
	virtual void Attach(FLodexEvaluatorBlock& Block) = 0;

	/**
	 * One look at the block: when a request is pending and the block is idle (`status` 0), takes it
	 * (clears `command`, copies the path) and publishes its answer, `status` last. Returns the request code
	 * it took (an `EEvaluatorCommand` value), 0 when it took none. Returns promptly: never waits for the
	 * panels.
	 */
	virtual std::int32_t Serve(FLodexEvaluatorBlock& Block) = 0;

	/** The size of the path buffer, its terminating NUL included. */
	virtual std::size_t GetPathCapacity() const = 0;

	/**
	 * Lets go of the block Attach was given, once Serve is no longer called and before the block goes away:
	 * an evaluator that writes to the block after its last Serve (when it is destroyed, say) writes no more.
	 */
	virtual void Detach() {}
};

/** The answer to one request, as an evaluator publishes it. */
struct FLodexEvaluatorAnswer
{
	/**
	 * The status written last: Evaluated (3), Finished (5), Stepped (8), Failed (9), or any other value
	 * (an evaluator under test may publish 1, 2 or unknown values). 0 publishes nothing: the request is
	 * taken and dropped.
	 */
	std::int32_t Status = 0;
	std::string ContextText;
	std::string ResultText;
	std::string OperationText;
	std::string NodeTypeText;
	std::string StackText;
	double DurationMs = 0.0;

	/** Fields published as null pointers instead of their text (to try the panels on a faulty evaluator). */
	enum ENullField : unsigned
	{
		NullContext = 1u << 0,
		NullResult = 1u << 1,
		NullOperation = 1u << 2,
		NullNodeType = 1u << 3,
		NullStack = 1u << 4,
		/** `pathText` is set to null after this answer, and stays so. */
		NullPath = 1u << 5,
	};
	unsigned NullFields = 0;
};

/** A request taken from the block. */
struct FLodexEvaluatorRequest
{
	/** The code as the panel wrote it, an `EEvaluatorCommand` value. */
	std::int32_t Command = 0;
	/** The path's bytes as the panel wrote them (8-bit text, characters beyond ASCII already "?"). */
	std::string Path;
};

/**
 * The evaluator's half of the handshake, for any evaluator: owns the path buffer and the published
 * texts, takes requests and publishes answers in the order the panels rely on.
 *
 * Texts are published from two alternating sets of strings, so the texts of the answer before the
 * current one stay readable while the next one is written.
 */
class FLodexEvaluatorSide
{
public:
	/** A megabyte: more than any path typed into a text box. */
	static constexpr std::size_t DefaultPathCapacity = std::size_t{1} << 20;

	explicit FLodexEvaluatorSide(std::size_t InPathCapacity = DefaultPathCapacity);
	FLodexEvaluatorSide(const FLodexEvaluatorSide&) = delete;
	FLodexEvaluatorSide& operator=(const FLodexEvaluatorSide&) = delete;

	/** `ILodexEvaluator::Attach`: the buffer, empty texts, zeros. */
	void Attach(FLodexEvaluatorBlock& Block);

	/**
	 * When `status` reads 0 and `command` is not 0: writes 0 to `command`, copies the path (up to its NUL,
	 * within the buffer) and returns true. Otherwise false, and the block is left alone.
	 */
	bool TakeRequest(FLodexEvaluatorBlock& Block, FLodexEvaluatorRequest& OutRequest);

	/**
	 * Writes the answer's fields, then its status last with release. Status 0 writes no field and no
	 * status (only a null `pathText` when the answer asks for one).
	 */
	void Publish(FLodexEvaluatorBlock& Block, const FLodexEvaluatorAnswer& Answer);

	/** Writes only `status` (with release): Accepted (1) or Working (2) while an answer is under way. */
	static void PublishStatus(FLodexEvaluatorBlock& Block, std::int32_t Status);

	std::size_t GetPathCapacity() const { return PathCapacity; }

private:
	struct FTextSet
	{
		std::string Context;
		std::string Result;
		std::string Operation;
		std::string NodeType;
		std::string Stack;
	};

	std::size_t PathCapacity;
	std::unique_ptr<char[]> PathBuffer;
	FTextSet Sets[2];
	int NextSet = 0;
};
