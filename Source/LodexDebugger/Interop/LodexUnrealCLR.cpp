// Copyright Lodex contributors.
#include "LodexUnrealCLR.h"

#include "UnrealCLR.h"

#include <cstddef>

// The core reads the host's block through its own structure: a host whose layout differs must fail to
// build here rather than have the panels write into the wrong bytes.
static_assert(offsetof(UnrealCLR::debuggerMemory, pathText) == offsetof(FLodexEvaluatorBlock, pathText), "pathText");
static_assert(
	offsetof(UnrealCLR::debuggerMemory, contextText) == offsetof(FLodexEvaluatorBlock, contextText), "contextText");
static_assert(
	offsetof(UnrealCLR::debuggerMemory, resultText) == offsetof(FLodexEvaluatorBlock, resultText), "resultText");
static_assert(offsetof(UnrealCLR::debuggerMemory, operationText) == offsetof(FLodexEvaluatorBlock, operationText),
	"operationText");
static_assert(
	offsetof(UnrealCLR::debuggerMemory, nodeTypeText) == offsetof(FLodexEvaluatorBlock, nodeTypeText), "nodeTypeText");
static_assert(offsetof(UnrealCLR::debuggerMemory, stackText) == offsetof(FLodexEvaluatorBlock, stackText), "stackText");
static_assert(
	offsetof(UnrealCLR::debuggerMemory, durationMs) == offsetof(FLodexEvaluatorBlock, durationMs), "durationMs");
static_assert(offsetof(UnrealCLR::debuggerMemory, command) == offsetof(FLodexEvaluatorBlock, command), "command");
static_assert(offsetof(UnrealCLR::debuggerMemory, status) == offsetof(FLodexEvaluatorBlock, status), "status");
static_assert(sizeof(UnrealCLR::debuggerMemory) >= sizeof(FLodexEvaluatorBlock), "the block's first 64 bytes");
static_assert(sizeof(UnrealCLR::debuggerMemory::command) == 4 && sizeof(UnrealCLR::debuggerMemory::status) == 4,
	"command and status are 32-bit words");

namespace LodexUnrealCLR
{
	int32 GetKeyCode(const FKey& Key)
	{
		return UnrealCLR::getEKeyIntValue(Key);
	}

	FString GetKeyNameForCode(int32 Code)
	{
		return UnrealCLR::getEKeyForIntValue(Code).GetFName().ToString();
	}

	FLodexEvaluatorBlock& GetEvaluatorBlock()
	{
		return *reinterpret_cast<FLodexEvaluatorBlock*>(&UnrealCLR::debugMem);
	}
}
