// Copyright Lodex contributors.
#include "LodexDebugger.h"

#include "Framework/Commands/UICommandList.h"
#include "Framework/Docking/WorkspaceItem.h"
#include "Framework/MultiBox/MultiBoxBuilder.h"
#include "ISettingsModule.h"
#include "LevelEditor.h"
#include "LodexDebugger/DetailsView/DetailsTool.h"
#include "LodexDebugger/LodexReplTool/ReplTool.h"
#include "LodexDebugger/MenuTool/MenuTool.h"
#include "LodexDebugger/RecorderTool/RecorderTool.h"
#include "LodexDebugger/TabTool/TabTool.h"
#include "LodexDebuggerCommands.h"
#include "LodexDebugger/Interop/LodexEditorAdapters.h"
#include "LodexDebugger/Interop/LodexInterop.h"
#include "Modules/ModuleManager.h"

/** The pull-down's content calls, made on the engine's menu builder. */
class FLodexPulldownMenuBuilder final : public ILodexMenuBuilder
{
public:
	explicit FLodexPulldownMenuBuilder(FMenuBuilder& InMenuBuilder)
		: MenuBuilder(InMenuBuilder)
	{
	}

	//~ Begin ILodexMenuBuilder Interface
	virtual void BeginSection(const char* ExtensionHook, const char* Heading) override
	{
		MenuBuilder.BeginSection(LodexInterop::ToName(ExtensionHook), LodexInterop::ToText(Heading));
	}

	virtual void AddMenuSeparator(const char* ExtensionHook) override
	{
		MenuBuilder.AddMenuSeparator(LodexInterop::ToName(ExtensionHook));
	}

	virtual void EndSection() override { MenuBuilder.EndSection(); }
	//~ End ILodexMenuBuilder Interface

private:
	FMenuBuilder& MenuBuilder;
};

/**
 * The builders of the module's pull-down. The menu bar extension and the pull-down are bound to this object through
 * shared-pointer delegates: once the module lets it go at shut-down, a menu the editor built earlier finds them
 * unbound.
 */
class FLodexPullDownMenu final : public TSharedFromThis<FLodexPullDownMenu>
{
public:
	void MakePullDownMenu(FMenuBarBuilder& MenuBarBuilder, const FLodexPullDownInfo* PullDown)
	{
		MenuBarBuilder.AddPullDownMenu(LodexInterop::ToText(PullDown->Label), LodexInterop::ToText(PullDown->ToolTip),
			FNewMenuDelegate::CreateSP(AsShared(), &FLodexPullDownMenu::FillPullDownMenu),
			LodexInterop::ToName(PullDown->ExtensionHook), LodexInterop::ToName(PullDown->TutorialHighlightName));
	}

	void FillPullDownMenu(FMenuBuilder& MenuBuilder)
	{
		FLodexPulldownMenuBuilder Builder(MenuBuilder);
		BuildLodexPullDownContent(Builder);
	}
};

/** The editor calls of the module's start-up and shut-down, in the order the shell makes them. */
class FLodexShellHost final : public ILodexShellHost
{
public:
	explicit FLodexShellHost(FLodexDebugger& InModule)
		: Module(InModule)
	{
	}

	//~ Begin ILodexShellHost Interface
	virtual bool IsRunningCommandlet() const override { return ::IsRunningCommandlet(); }

	virtual bool IsModuleLoaded(const char* ModuleName) const override
	{
		return FModuleManager::Get().IsModuleLoaded(LodexInterop::ToName(ModuleName));
	}

	virtual void LoadModule(const char* ModuleName) override
	{
		FModuleManager::Get().LoadModuleChecked(LodexInterop::ToName(ModuleName));
	}

	virtual void CreateMenuExtender() override { Module.MenuExtender = MakeShareable(new FExtender); }

	virtual void CreateMenuBarCommandList() override
	{
		Module.MenuBarCommandList = MakeShareable(new FUICommandList);
		FLodexDebuggerCommands::Register();
	}

	virtual void AddMenuBarExtension(const FLodexPullDownInfo& PullDown) override
	{
		Module.PullDownMenu = MakeShared<FLodexPullDownMenu>();
		Module.MenuExtender->AddMenuBarExtension(LodexInterop::ToName(PullDown.AfterHook), EExtensionHook::After,
			Module.MenuBarCommandList,
			FMenuBarExtensionDelegate::CreateSP(
				Module.PullDownMenu.ToSharedRef(), &FLodexPullDownMenu::MakePullDownMenu, &PullDown));
	}

	virtual void AddMenuExtenderToLevelEditor() override
	{
		GetLevelEditorModule().GetMenuExtensibilityManager()->AddExtender(Module.MenuExtender);
	}

	virtual void RemoveMenuExtenderFromLevelEditor() override
	{
		if (Module.MenuExtender.IsValid())
		{
			GetLevelEditorModule().GetMenuExtensibilityManager()->RemoveExtender(Module.MenuExtender);
		}
	}

	virtual void ReleaseMenuExtender() override
	{
		Module.MenuExtender.Reset();
		Module.MenuBarCommandList.Reset();
		Module.PullDownMenu.Reset();
	}

	virtual void AddModuleListeners() override
	{
		// The module's own version (a module may override it); it calls back into the shell to create the listeners.
		Module.AddModuleListeners();
	}

	virtual void CreateListener(const FLodexListenerInfo& Listener) override
	{
		// Each tool is handed the module's menus when it is made, so that no tool reaches back into the module.
		const FLodexModuleMenus Menus{Module.MenuExtender, FLodexDebugger::MenuRoot};
		switch (Listener.Listener)
		{
			case ELodexListener::MenuTool:
				Module.ModuleListeners.Add(MakeShareable(new MenuTool(Menus)));
				break;
			case ELodexListener::TabTool:
				Module.ModuleListeners.Add(MakeShareable(new TabTool(Menus)));
				break;
			case ELodexListener::RecorderTool:
				Module.ModuleListeners.Add(MakeShareable(new RecorderTool(Menus)));
				break;
			case ELodexListener::ReplTool:
				Module.ModuleListeners.Add(MakeShareable(new ReplTool(Menus)));
				break;
			case ELodexListener::DetailsTool:
				Module.ModuleListeners.Add(MakeShareable(new DetailsTool(Menus)));
				break;
		}
	}

	virtual void StartListener(const FLodexListenerInfo& Listener) override
	{
		if (const TSharedPtr<IModuleListenerInterface> ModuleListener = Module.FindModuleListener(Listener.Listener))
		{
			ModuleListener->OnStartupModule();
		}
	}

	virtual void StopListener(const FLodexListenerInfo& Listener) override
	{
		if (const TSharedPtr<IModuleListenerInterface> ModuleListener = Module.FindModuleListener(Listener.Listener))
		{
			ModuleListener->OnShutdownModule();
		}
	}

	virtual void DestroyListeners() override { Module.ModuleListeners.Empty(); }

	virtual void UnregisterSettings(const FLodexSettingsSectionInfo& Section) override
	{
		if (ISettingsModule* SettingsModule =
				FModuleManager::GetModulePtr<ISettingsModule>(LodexInterop::ToName(LodexShellModules::Settings)))
		{
			SettingsModule->UnregisterSettings(LodexInterop::ToName(Section.Container),
				LodexInterop::ToName(Section.Category), LodexInterop::ToName(Section.Section));
		}
	}
	//~ End ILodexShellHost Interface

private:
	static FLevelEditorModule& GetLevelEditorModule()
	{
		return FModuleManager::LoadModuleChecked<FLevelEditorModule>(
			LodexInterop::ToName(LodexShellModules::LevelEditor));
	}

	FLodexDebugger& Module;
};

TSharedRef<FWorkspaceItem> FLodexDebugger::MenuRoot =
	FWorkspaceItem::NewGroup(LodexInterop::ToText(LodexMenuRootGroupName));

void FLodexDebugger::StartupModule()
{
	FLodexShellHost Host(*this);
	Shell.StartupModule(Host);
}

void FLodexDebugger::ShutdownModule()
{
	FLodexShellHost Host(*this);
	FLodexEditorOutput Output;
	Shell.ShutdownModule(Host, Output);
	if (FLodexDebuggerCommands::IsRegistered())
	{
		FLodexDebuggerCommands::Unregister();
	}
}

void FLodexDebugger::AddModuleListeners()
{
	FLodexShellHost Host(*this);
	Shell.AddModuleListeners(Host);
}

FLodexDebugger& FLodexDebugger::Get()
{
	return FModuleManager::LoadModuleChecked<FLodexDebugger>(LodexInterop::ToName(LodexModuleName));
}

TSharedPtr<IModuleListenerInterface> FLodexDebugger::FindModuleListener(ELodexListener Listener) const
{
	const std::vector<ELodexListener>& Listeners = Shell.GetModuleListeners();
	for (int32 Index = 0; Index < ModuleListeners.Num() && Index < static_cast<int32>(Listeners.size()); ++Index)
	{
		if (Listeners[static_cast<size_t>(Index)] == Listener)
		{
			return ModuleListeners[Index];
		}
	}
	return nullptr;
}

IMPLEMENT_MODULE(FLodexDebugger, LodexDebugger)
