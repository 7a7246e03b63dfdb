// Copyright Lodex contributors.
#pragma once

#include <cstddef>
#include <cstdint>

/** Requests a panel writes to the block's `command` word. Values 2 and 3 are never sent. */
enum class EEvaluatorCommand : std::int32_t
{
	None = 0,
	Run = 1,
	Load = 4,
	StepInto = 5,
	StepOver = 6,
};

/** States and results the evaluator writes to the block's `status` word. 4, 6, 7 and others are ignored. */
enum class EEvaluatorStatus : std::int32_t
{
	Idle = 0,
	Accepted = 1,
	Working = 2,
	Evaluated = 3,
	Finished = 5,
	Stepped = 8,
	Failed = 9,
};

/**
 * The first 64 bytes of the memory the hosted .NET evaluator shares with the panels, in native byte
 * order with 64-bit pointers. Every text is 8-bit and NUL-terminated; line lists are separated by "\r\n".
 * The evaluator owns the block and every buffer it points at; the panels write only the bytes behind
 * `pathText` and the two code words.
 */
struct FLodexEvaluatorBlock
{
	/** The buffer a panel copies the Lodestring to evaluate into (the evaluator sets the pointer). */
	char* pathText;
	/** Evaluated: the found objects; Stepped: the context lines; Failed: the marked-up path. */
	const char* contextText;
	/** Evaluated: the count in decimal; Finished: a message; Stepped: the marked-up path; Failed: the error. */
	const char* resultText;
	/** Stepped: the operation of this step. */
	const char* operationText;
	/** Stepped: the type of the path node under evaluation. */
	const char* nodeTypeText;
	/** Stepped: the evaluator's stack, one entry a line. */
	const char* stackText;
	/** Evaluated and Stepped: how long the evaluation took, in milliseconds. */
	double durationMs;
	/** The pending request, an `EEvaluatorCommand`; the panels write it, both sides clear it. */
	std::int32_t command;
	/** The evaluator's state or result, an `EEvaluatorStatus`; panels write 0 once they consumed a result. */
	std::int32_t status;
};

static_assert(sizeof(void*) == 8, "The evaluator block is laid out for 64-bit pointers");
static_assert(sizeof(double) == 8, "durationMs is an IEEE double");
static_assert(sizeof(FLodexEvaluatorBlock) == 64, "The evaluator block is 64 bytes");
static_assert(offsetof(FLodexEvaluatorBlock, pathText) == 0x00, "pathText at 0x00");
static_assert(offsetof(FLodexEvaluatorBlock, contextText) == 0x08, "contextText at 0x08");
static_assert(offsetof(FLodexEvaluatorBlock, resultText) == 0x10, "resultText at 0x10");
static_assert(offsetof(FLodexEvaluatorBlock, operationText) == 0x18, "operationText at 0x18");
static_assert(offsetof(FLodexEvaluatorBlock, nodeTypeText) == 0x20, "nodeTypeText at 0x20");
static_assert(offsetof(FLodexEvaluatorBlock, stackText) == 0x28, "stackText at 0x28");
static_assert(offsetof(FLodexEvaluatorBlock, durationMs) == 0x30, "durationMs at 0x30");
static_assert(offsetof(FLodexEvaluatorBlock, command) == 0x38, "command at 0x38");
static_assert(offsetof(FLodexEvaluatorBlock, status) == 0x3C, "status at 0x3C");
