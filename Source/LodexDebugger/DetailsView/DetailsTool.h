// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "LodexDebugger/ExampleTabToolBase/ExampleTabToolBase.h"

/** The tab tool of the Object Explorer tab ("DetailsTool"), with its entry in the module's pull-down. */
class DetailsTool : public ExampleTabToolBase
{
public:
	virtual ~DetailsTool() override = default;

	//~ Begin ExampleTabToolBase Interface
	virtual void OnStartupModule() override;
	virtual void Initialize() override;
	virtual TSharedRef<SDockTab> SpawnTab(const FSpawnTabArgs& TabSpawnArgs) override;
	//~ End ExampleTabToolBase Interface
};
