// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "LodexDebugger/ExampleTabToolBase/ExampleTabToolBase.h"

/** The tab tool of the Input Recorder tab ("RecorderTool"), with its entry in the module's pull-down. */
class RecorderTool : public ExampleTabToolBase
{
public:
	using ExampleTabToolBase::ExampleTabToolBase;

	virtual ~RecorderTool() override = default;

	//~ Begin ExampleTabToolBase Interface
	virtual void OnStartupModule() override;
	virtual void Initialize() override;
	virtual TSharedRef<SDockTab> SpawnTab(const FSpawnTabArgs& TabSpawnArgs) override;
	//~ End ExampleTabToolBase Interface
};
