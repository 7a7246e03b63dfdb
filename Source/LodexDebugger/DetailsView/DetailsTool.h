// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "LodexDebugger/ExampleTabToolBase/ExampleTabToolBase.h"

#include "LodexDebugger/Core/Shell/LodexShell.h"

class IConsoleObject;

/**
 * The tab tool of the Object Explorer tab ("DetailsTool"), with its entry in the module's pull-down, and the module's
 * own commands, each a pull-down entry after the tool entries and a console command: the export of the editor's world
 * as a scene snapshot ("Lodex.ExportSnapshot") and the best Lodestring of the selection ("Lodex.CopyBestLodestring").
 */
class DetailsTool
	: public ExampleTabToolBase
	, public ILodexPullDownCommandHost
{
public:
	using ExampleTabToolBase::ExampleTabToolBase;

	virtual ~DetailsTool() override = default;

	//~ Begin ExampleTabToolBase Interface
	virtual void OnStartupModule() override;
	virtual void OnShutdownModule() override;
	virtual void Initialize() override;
	virtual TSharedRef<SDockTab> SpawnTab(const FSpawnTabArgs& TabSpawnArgs) override;
	//~ End ExampleTabToolBase Interface

	//~ Begin ILodexPullDownCommandHost Interface
	virtual void AddPullDownEntry(const FLodexPullDownCommandInfo& Command) override;
	virtual void RegisterConsoleCommand(const FLodexPullDownCommandInfo& Command) override;
	virtual void UnregisterConsoleCommand(const FLodexPullDownCommandInfo& Command) override;
	//~ End ILodexPullDownCommandHost Interface

private:
	void MakePullDownEntry(FMenuBuilder& MenuBuilder, const FLodexPullDownCommandInfo* Command);

	/** The registered console commands, until shut-down removes them. */
	TMap<ELodexPullDownCommand, IConsoleObject*> ConsoleObjects;
};
