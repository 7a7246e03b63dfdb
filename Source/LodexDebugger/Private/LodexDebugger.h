// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Framework/MultiBox/MultiBoxExtender.h"
#include "Modules/ModuleInterface.h"
#include "ModuleListenerInterface.h"

#include "LodexDebugger/Core/Shell/LodexShell.h"

class FLodexPullDownMenu;
class FLodexShellHost;
class FUICommandList;
class FWorkspaceItem;

/** The LodexDebugger editor module: the main-menu pull-down and the tools it starts and stops. */
class FLodexDebugger : public IModuleInterface
{
public:
	//~ Begin IModuleInterface Interface
	virtual void StartupModule() override;
	virtual void ShutdownModule() override;
	//~ End IModuleInterface Interface

	/**
	 * Creates the module listeners, in start-up order: MenuTool, TabTool, RecorderTool, ReplTool, DetailsTool. Start-up
	 * calls it before it starts the listeners.
	 */
	virtual void AddModuleListeners();

	/** The loaded module. */
	static FLodexDebugger& Get();

protected:
	TArray<TSharedRef<IModuleListenerInterface>> ModuleListeners;
	TSharedPtr<FExtender> MenuExtender;

	/** "Menu Root": made when the module's library is loaded, kept for the whole process. */
	static TSharedRef<FWorkspaceItem> MenuRoot;

private:
	friend class FLodexShellHost;
	/** The editor's automation test of start-up and shut-down looks at what the module registered. */
	friend class FLodexModuleLifecycleTest;

	/** The listener created for the shell's list entry, or null. */
	TSharedPtr<IModuleListenerInterface> FindModuleListener(ELodexListener Listener) const;

	FLodexShell Shell;
	TSharedPtr<FUICommandList> MenuBarCommandList;
	/** What the pull-down's builders are bound to; released at shut-down, which unbinds them. */
	TSharedPtr<FLodexPullDownMenu> PullDownMenu;
};
