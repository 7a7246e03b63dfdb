// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Framework/MultiBox/MultiBoxExtender.h"
#include "Modules/ModuleInterface.h"
#include "ModuleListenerInterface.h"

class FMenuBarBuilder;
class FMenuBuilder;
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

	/** Fills ModuleListeners, in start-up order. */
	virtual void AddModuleListeners();

	/** The loaded module. */
	static FLodexDebugger& Get();

	/** Adds a menu extension to the module's menu extender, when there is one. */
	void AddMenuExtension(const FMenuExtensionDelegate& ExtensionDelegate, FName ExtensionHook,
		const TSharedPtr<FUICommandList>& CommandList = nullptr,
		EExtensionHook::Position Position = EExtensionHook::Before);

	/** The workspace group of every tab spawner of the module. */
	TSharedRef<FWorkspaceItem> GetMenuRoot() { return MenuRoot; }

protected:
	TArray<TSharedRef<IModuleListenerInterface>> ModuleListeners;
	TSharedPtr<FExtender> MenuExtender;

	static TSharedRef<FWorkspaceItem> MenuRoot;

private:
	void MakePulldownMenu(FMenuBarBuilder& MenuBarBuilder);
	void FillPulldownMenu(FMenuBuilder& MenuBuilder);
};
