// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "UObject/Object.h"
#include "ExampleSettings.generated.h"

/** An example of editor settings kept per user. */
UCLASS(config = EditorUserSettings)
class LODEXDEBUGGER_API UExampleSettings : public UObject
{
	GENERATED_BODY()

public:
	UPROPERTY(Config, EditAnywhere, Category = "Test")
	bool bTest;
};
