// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "ModuleListenerInterface.h"

#include "LodexDebugger/Core/Shell/LodexShell.h"

class FMenuBuilder;
class FSpawnTabArgs;
class SDockTab;

/**
 * A module listener that owns one dockable tab: it registers the tab's nomad spawner in the module's "Menu Root" group
 * at start-up and unregisters it at shut-down.
 */
class ExampleTabToolBase
	: public IModuleListenerInterface
	, public TSharedFromThis<ExampleTabToolBase>
{
public:
	//~ Begin IModuleListenerInterface Interface
	virtual void OnStartupModule() override;
	virtual void OnShutdownModule() override;
	//~ End IModuleListenerInterface Interface

	/** Sets TabName, TabDisplayName and ToolTipText; does nothing here. */
	virtual void Initialize();

	/** Makes a new tab; an empty one here. */
	virtual TSharedRef<SDockTab> SpawnTab(const FSpawnTabArgs& TabSpawnArgs);

	/** Adds the tab's spawner entry to the menu. */
	virtual void MakeMenuEntry(FMenuBuilder& MenuBuilder);

	virtual ~ExampleTabToolBase() = default;

protected:
	/** Takes the tool's row of the tab table: TabName, TabDisplayName and ToolTipText come from it. */
	void InitializeFromTabTable(ELodexListener Listener);

	/** The base start-up (Initialize, the tab spawner), then the tool's pull-down entry before its menu hook. */
	void StartupWithMenuEntry();

	FName TabName;
	FText TabDisplayName;
	FText ToolTipText;

private:
	/** The tool's row of the tab table; null until a tool's Initialize takes one. */
	const FLodexTabInfo* TabInfo = nullptr;
};
