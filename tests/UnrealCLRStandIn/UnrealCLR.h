// Copyright Lodex contributors.
// A stand-in for the UnrealCLR host plug-in's public header, holding only the declarations the
// LodexDebugger module uses from it. The engine-side sources include "UnrealCLR.h" as a build inside a
// game's UnrealCLR plug-in does; this folder lets them be type-checked where the host plug-in is absent.
// It is never copied into a game project.
#pragma once

#include "CoreMinimal.h"
#include "InputCoreTypes.h"

#ifndef UNREALCLR_API
#define UNREALCLR_API DLLIMPORT
#endif

namespace UnrealCLR
{
	/** The block the hosted .NET evaluator shares with the editor's Lodestring panels. */
	struct debuggerMemory
	{
		char* pathText;
		const char* contextText;
		const char* resultText;
		const char* operationText;
		const char* nodeTypeText;
		const char* stackText;
		double durationMs;
		int32 command;
		int32 status;
		/** The evaluator's own fields follow; the editor never touches them. */
		void* evaluatorState;
	};

	extern UNREALCLR_API debuggerMemory debugMem;

	/** The host's integer value of an engine key. */
	UNREALCLR_API int32 getEKeyIntValue(FKey Key);

	/** The engine key of one of the host's integer values. */
	UNREALCLR_API FKey getEKeyForIntValue(int32 Value);
}
