// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "LodexDebugger/ExampleTabToolBase/ExampleTabToolBase.h"

/** The tab tool of the Lodex REPL tab ("ReplTool"), with its entry in the module's pull-down. */
class ReplTool : public ExampleTabToolBase
{
public:
	using ExampleTabToolBase::ExampleTabToolBase;

	virtual ~ReplTool() override = default;

	//~ Begin ExampleTabToolBase Interface
	virtual void OnStartupModule() override;
	virtual void Initialize() override;
	virtual TSharedRef<SDockTab> SpawnTab(const FSpawnTabArgs& TabSpawnArgs) override;
	//~ End ExampleTabToolBase Interface
};
