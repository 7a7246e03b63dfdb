// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "ModuleListenerInterface.h"

#include "LodexDebugger/Core/Shell/LodexShell.h"

class FMenuBuilder;
class FSpawnTabArgs;
class SDockTab;

/**
 * A module listener that owns one dockable tab. At start-up it calls Initialize, then registers a nomad tab spawner
 * under TabName with TabDisplayName and ToolTipText, as Initialize set them, in the module's "Menu Root" group; at
 * shut-down it unregisters the spawner of TabName.
 */
class ExampleTabToolBase
	: public IModuleListenerInterface
	, public TSharedFromThis<ExampleTabToolBase>
{
public:
	explicit ExampleTabToolBase(const FLodexModuleMenus& InMenus)
		: Menus(InMenus)
	{
	}

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
	/** Sets TabName, TabDisplayName and ToolTipText from the tool's row of the module's tab table. */
	void InitializeFromTabTable(ELodexListener Listener);

	/** Asks the module to put MakeMenuEntry before the menu hook of the tool's row of the tab table. */
	void AddMenuEntryFromTabTable(ELodexListener Listener);

	FName TabName;
	FText TabDisplayName;
	FText ToolTipText;

	/** The module's menu extender and "Menu Root", as the module handed them over. */
	const FLodexModuleMenus Menus;

private:
	/** The editor calls of the tool as the core's tab start-up and shut-down make them. */
	class FTabToolCalls;
};
