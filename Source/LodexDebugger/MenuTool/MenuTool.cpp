// Copyright Lodex contributors.
#include "MenuTool.h"

#include "Framework/Commands/UICommandList.h"
#include "Framework/MultiBox/MultiBoxBuilder.h"
#include "Framework/MultiBox/MultiBoxExtender.h"
#include "LevelEditor.h"
#include "LodexDebugger/Interop/LodexInterop.h"
#include "LodexDebugger/Interop/LodexWorldEvaluation.h"
#include "MenuToolCommands.h"
#include "Modules/ModuleManager.h"
#include "Textures/SlateIcon.h"

void MenuTool::OnStartupModule()
{
	StartMenuTool(*this);
}

void MenuTool::OnShutdownModule()
{
	StopMenuTool(*this);
}

void MenuTool::CreateCommandList()
{
	CommandList = MakeShareable(new FUICommandList);
}

void MenuTool::RegisterCommandSet(const FLodexCommandSetInfo& Set)
{
	// FMenuToolCommands takes its context, labels and tooltips from the same table (GetMenuToolCommandSet).
	FMenuToolCommands::Register();
}

void MenuTool::UnregisterCommandSet(const FLodexCommandSetInfo& Set)
{
	if (FMenuToolCommands::IsRegistered())
	{
		FMenuToolCommands::Unregister();
	}
	CommandList.Reset();
}

void MenuTool::MapPrintAction(const FLodexCommandInfo& Command, const std::string& Mode)
{
	const TSharedPtr<FUICommandInfo> CommandInfo =
		FMenuToolCommands::Get().FindCommand(LodexInterop::ToName(Command.CommandId));
	if (ensure(CommandInfo.IsValid() && CommandList.IsValid()))
	{
		CommandList->MapAction(CommandInfo,
			FExecuteAction::CreateSP(this, &MenuTool::HandlePrintLodestrings, LodexInterop::FromUtf8(Mode)));
	}
}

void MenuTool::AddModuleMenuExtension(const FLodexMenuInfo& Menu)
{
	Menus.AddMenuExtension(FMenuExtensionDelegate::CreateSP(this, &MenuTool::MakeMenuSection, &Menu),
		LodexInterop::ToName(Menu.ExtensionHook), CommandList, EExtensionHook::Before);
}

void MenuTool::AddViewportContextMenuExtender(const FLodexMenuInfo& Menu)
{
	FLevelEditorModule& LevelEditorModule =
		FModuleManager::LoadModuleChecked<FLevelEditorModule>(LodexInterop::ToName(LodexShellModules::LevelEditor));
	const FLevelEditorModule::FLevelViewportMenuExtender_SelectedActors Extender =
		FLevelEditorModule::FLevelViewportMenuExtender_SelectedActors::CreateSP(
			this, &MenuTool::HandleViewportContextMenu, &Menu);
	ViewportContextMenuExtenderHandle = Extender.GetHandle();
	LevelEditorModule.GetAllLevelViewportContextMenuExtenders().Add(Extender);
}

void MenuTool::RemoveViewportContextMenuExtender(const FLodexMenuInfo& Menu)
{
	const FName LevelEditorName = LodexInterop::ToName(LodexShellModules::LevelEditor);
	if (ViewportContextMenuExtenderHandle.IsValid() && FModuleManager::Get().IsModuleLoaded(LevelEditorName))
	{
		FLevelEditorModule& LevelEditorModule = FModuleManager::GetModuleChecked<FLevelEditorModule>(LevelEditorName);
		const FDelegateHandle Handle = ViewportContextMenuExtenderHandle;
		LevelEditorModule.GetAllLevelViewportContextMenuExtenders().RemoveAll(
			[Handle](const FLevelEditorModule::FLevelViewportMenuExtender_SelectedActors& Extender)
			{ return Extender.GetHandle() == Handle; });
	}
	ViewportContextMenuExtenderHandle.Reset();
}

void MenuTool::MakeMenuSection(FMenuBuilder& MenuBuilder, const FLodexMenuInfo* Menu)
{
	MenuBuilder.BeginSection(LodexInterop::ToName(Menu->SectionName), LodexInterop::ToText(Menu->SectionHeading));
	MenuBuilder.AddSubMenu(LodexInterop::ToText(Menu->SubMenuLabel), LodexInterop::ToText(Menu->SubMenuTooltip),
		FNewMenuDelegate::CreateSP(this, &MenuTool::FillLodestringSubMenu, Menu),
		/*bInOpenSubMenuOnClick*/ false, FSlateIcon(), /*bInShouldCloseWindowAfterMenuSelection*/ true);
	MenuBuilder.EndSection();
}

void MenuTool::FillLodestringSubMenu(FMenuBuilder& MenuBuilder, const FLodexMenuInfo* Menu)
{
	for (const FLodexMenuEntryInfo& Entry : Menu->Entries)
	{
		const TSharedPtr<FUICommandInfo> CommandInfo =
			FMenuToolCommands::Get().FindCommand(LodexInterop::ToName(Entry.CommandId));
		if (CommandInfo.IsValid())
		{
			MenuBuilder.AddMenuEntry(CommandInfo);
		}
	}
}

TSharedRef<FExtender> MenuTool::HandleViewportContextMenu(const TSharedRef<FUICommandList> ViewportCommandList,
	const TArray<AActor*> SelectedActors, const FLodexMenuInfo* Menu)
{
	TSharedRef<FExtender> Extender = MakeShareable(new FExtender);
	Extender->AddMenuExtension(LodexInterop::ToName(Menu->ExtensionHook), EExtensionHook::Before, CommandList,
		FMenuExtensionDelegate::CreateSP(this, &MenuTool::MakeMenuSection, Menu));
	return Extender;
}

void MenuTool::HandlePrintLodestrings(FString Mode)
{
	LodexEditor::PrintSelectedActorLodestrings(Mode);
}
