// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "LodexDebugger/ExampleTabToolBase/ExampleTabToolBase.h"

#include "LodexDebugger/Core/Explorer/SnapshotWriter.h"

class IConsoleObject;

/**
 * The tab tool of the Object Explorer tab ("DetailsTool"), with its entry in the module's pull-down, and the export
 * of the editor's world as a scene snapshot: the pull-down entry after the tool entries and the console command
 * "Lodex.ExportSnapshot".
 */
class DetailsTool
	: public ExampleTabToolBase
	, public ILodexSnapshotExportHost
{
public:
	virtual ~DetailsTool() override = default;

	//~ Begin ExampleTabToolBase Interface
	virtual void OnStartupModule() override;
	virtual void OnShutdownModule() override;
	virtual void Initialize() override;
	virtual TSharedRef<SDockTab> SpawnTab(const FSpawnTabArgs& TabSpawnArgs) override;
	//~ End ExampleTabToolBase Interface

	//~ Begin ILodexSnapshotExportHost Interface
	virtual void AddPullDownEntry(const FLodexSnapshotExportInfo& Export) override;
	virtual void RegisterConsoleCommand(const FLodexSnapshotExportInfo& Export) override;
	virtual void UnregisterConsoleCommand(const FLodexSnapshotExportInfo& Export) override;
	//~ End ILodexSnapshotExportHost Interface

private:
	void MakeExportMenuEntry(FMenuBuilder& MenuBuilder, const FLodexSnapshotExportInfo* Export);

	/** The registered console command, until shut-down removes it. */
	IConsoleObject* ExportCommand = nullptr;
};
