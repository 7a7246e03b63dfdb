// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Delegates/IDelegateInstance.h"
#include "ModuleListenerInterface.h"

#include "LodexDebugger/Core/Paths/PathCommands.h"

class AActor;
class FExtender;
class FMenuBuilder;
class FUICommandList;

/**
 * The context-menu tool: the "MenuTool" commands in the scene outliner's and the level viewport's actor menus,
 * printing the Lodestrings of the selected actors.
 */
class MenuTool
	: public IModuleListenerInterface
	, public IMenuToolHost
	, public TSharedFromThis<MenuTool>
{
public:
	explicit MenuTool(const FLodexModuleMenus& InMenus)
		: Menus(InMenus)
	{
	}

	virtual ~MenuTool() override = default;

	//~ Begin IModuleListenerInterface Interface
	virtual void OnStartupModule() override;
	virtual void OnShutdownModule() override;
	//~ End IModuleListenerInterface Interface

	//~ Begin IMenuToolHost Interface
	virtual void CreateCommandList() override;
	virtual void RegisterCommandSet(const FLodexCommandSetInfo& Set) override;
	virtual void MapPrintAction(const FLodexCommandInfo& Command, const std::string& Mode) override;
	virtual void AddModuleMenuExtension(const FLodexMenuInfo& Menu) override;
	virtual void AddViewportContextMenuExtender(const FLodexMenuInfo& Menu) override;
	virtual void RemoveViewportContextMenuExtender(const FLodexMenuInfo& Menu) override;
	virtual void UnregisterCommandSet(const FLodexCommandSetInfo& Set) override;
	//~ End IMenuToolHost Interface

private:
	/** Adds the "Veltrane" section with the "Lodestring" sub-menu. */
	void MakeMenuSection(FMenuBuilder& MenuBuilder, const FLodexMenuInfo* Menu);
	void FillLodestringSubMenu(FMenuBuilder& MenuBuilder, const FLodexMenuInfo* Menu);

	TSharedRef<FExtender> HandleViewportContextMenu(const TSharedRef<FUICommandList> ViewportCommandList,
		const TArray<AActor*> SelectedActors, const FLodexMenuInfo* Menu);
	void HandlePrintLodestrings(FString Mode);

	/** The module's menu extender, as the module handed it over. */
	const FLodexModuleMenus Menus;
	TSharedPtr<FUICommandList> CommandList;
	FDelegateHandle ViewportContextMenuExtenderHandle;
};
