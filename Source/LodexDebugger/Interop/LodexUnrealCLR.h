// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "InputCoreTypes.h"

#include "LodexDebugger/Core/Evaluation/LodexEvaluatorBlock.h"

/**
 * The module's one way into the UnrealCLR host plug-in: its key conversions and the block shared with
 * its hosted .NET evaluator. Nothing else in the module includes the host's header.
 */
namespace LodexUnrealCLR
{
	/** The host's integer value of an engine key (`UnrealCLR::getEKeyIntValue`). */
	int32 GetKeyCode(const FKey& Key);

	/** The name of the engine key of one of the host's integer values (`UnrealCLR::getEKeyForIntValue`). */
	FString GetKeyNameForCode(int32 Code);

	/** The host's evaluator block (`UnrealCLR::debugMem`), seen through the core's layout of it. */
	FLodexEvaluatorBlock& GetEvaluatorBlock();
}
