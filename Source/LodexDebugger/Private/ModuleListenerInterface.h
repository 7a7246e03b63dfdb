// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Framework/Docking/WorkspaceItem.h"
#include "Framework/MultiBox/MultiBoxExtender.h"

/**
 * What the module hands each tool it creates: the menu extender its pull-down is built from, and "Menu Root", the
 * workspace group of every tab spawner of the module. The tools hold the extender weakly: once the module lets it go
 * at shut-down, an extension asked for later adds nothing.
 */
struct FLodexModuleMenus
{
	TWeakPtr<FExtender> MenuExtender;
	TSharedRef<FWorkspaceItem> MenuRoot;

	/** Adds a menu extension to the module's menu extender, while there is one. */
	void AddMenuExtension(const FMenuExtensionDelegate& ExtensionDelegate, FName ExtensionHook,
		const TSharedPtr<FUICommandList>& CommandList = nullptr,
		EExtensionHook::Position Position = EExtensionHook::Before) const
	{
		if (const TSharedPtr<FExtender> Extender = MenuExtender.Pin())
		{
			Extender->AddMenuExtension(ExtensionHook, Position, CommandList, ExtensionDelegate);
		}
	}
};

/**
 * A tool that the module starts at start-up and stops at shut-down, in the module's list order. The module holds its
 * listeners in shared pointers made from the concrete tools, which delete them as what they are.
 */
class IModuleListenerInterface
{
public:
	virtual void OnStartupModule() {}
	virtual void OnShutdownModule() {}

protected:
	~IModuleListenerInterface() = default;
};
