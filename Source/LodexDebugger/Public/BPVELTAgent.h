// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Kismet/BlueprintFunctionLibrary.h"
#include "BPVELTAgent.generated.h"

/** Blueprint functions of the VELT agent. */
UCLASS()
class LODEXDEBUGGER_API UBPVELTAgent : public UBlueprintFunctionLibrary
{
	GENERATED_BODY()

public:
	/**
	 * Loads the native library at the project folder + folder + "/" + name into the process, where it stays. Returns
	 * false when there is no such file or it cannot be loaded.
	 */
	UFUNCTION(BlueprintCallable, Category = "My DLL Library")
	static bool importDLL(FString folder, FString name);
};
