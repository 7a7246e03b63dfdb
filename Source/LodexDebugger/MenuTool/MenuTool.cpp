// Copyright Lodex contributors.
#include "MenuTool.h"

#include "Framework/Commands/UICommandList.h"
#include "Framework/MultiBox/MultiBoxBuilder.h"
#include "Framework/MultiBox/MultiBoxExtender.h"
#include "LevelEditor.h"
#include "LodexDebugger.h"
#include "LodexEditorAdapters.h"
#include "LodexInterop.h"
#include "MenuToolCommands.h"
#include "Modules/ModuleManager.h"
#include "Textures/SlateIcon.h"

namespace MenuToolPrivate
{
	const FName LevelEditorModuleName(TEXT("LevelEditor"));
}

void MenuTool::OnStartupModule()
{
	StartMenuTool(*this);
}

void MenuTool::OnShutdownModule()
{
	if (ViewportContextMenuExtenderHandle.IsValid() &&
		FModuleManager::Get().IsModuleLoaded(MenuToolPrivate::LevelEditorModuleName))
	{
		FLevelEditorModule& LevelEditorModule =
			FModuleManager::GetModuleChecked<FLevelEditorModule>(MenuToolPrivate::LevelEditorModuleName);
		const FDelegateHandle Handle = ViewportContextMenuExtenderHandle;
		LevelEditorModule.GetAllLevelViewportContextMenuExtenders().RemoveAll(
			[Handle](const FLevelEditorModule::FLevelViewportMenuExtender_SelectedActors& Extender)
			{ return Extender.GetHandle() == Handle; });
	}
	ViewportContextMenuExtenderHandle.Reset();
	FMenuToolCommands::Unregister();
}

void MenuTool::CreateCommandList()
{
	CommandList = MakeShareable(new FUICommandList);
}

void MenuTool::RegisterCommandSet(const FLodexCommandSetInfo& Set)
{
	FMenuToolCommands::Register();
	LodexEditor::EnsureCommandSetMatches(
		FMenuToolCommands::Get(), Set, [](FName CommandId) { return FMenuToolCommands::Get().FindCommand(CommandId); });
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
	FLodexDebugger::Get().AddMenuExtension(FMenuExtensionDelegate::CreateSP(this, &MenuTool::MakeMenuSection, &Menu),
		LodexInterop::ToName(Menu.ExtensionHook), CommandList, EExtensionHook::Before);
}

void MenuTool::AddViewportContextMenuExtender(const FLodexMenuInfo& Menu)
{
	FLevelEditorModule& LevelEditorModule =
		FModuleManager::LoadModuleChecked<FLevelEditorModule>(MenuToolPrivate::LevelEditorModuleName);
	const FLevelEditorModule::FLevelViewportMenuExtender_SelectedActors Extender =
		FLevelEditorModule::FLevelViewportMenuExtender_SelectedActors::CreateSP(
			this, &MenuTool::HandleViewportContextMenu, &Menu);
	ViewportContextMenuExtenderHandle = Extender.GetHandle();
	LevelEditorModule.GetAllLevelViewportContextMenuExtenders().Add(Extender);
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
