// Copyright Lodex contributors.
#include "EditorModel.h"

FEditorModel::FEditorModel(bool bInCommandlet)
	: bCommandlet(bInCommandlet)
{
	// The editor has these before any plug-in module starts.
	LoadedModules.insert(LodexShellModules::PropertyEditor);
	LoadedModules.insert(LodexShellModules::Settings);
}

bool FEditorModel::IsModuleLoaded(const char* ModuleName) const
{
	return LoadedModules.count(ModuleName) > 0;
}

void FEditorModel::LoadModule(const char* ModuleName)
{
	LoadedModules.insert(ModuleName);
}

void FEditorModel::CreateMenuExtender()
{
	bHasMenuExtender = true;
}

void FEditorModel::AddMenuBarExtension(const FLodexPullDownInfo& PullDown)
{
	MenuBarPullDowns.push_back(&PullDown);
}

void FEditorModel::CreateListener(const FLodexListenerInfo& Listener)
{
	CreatedListeners.push_back(Listener.Name);
}

void FEditorModel::StartListener(const FLodexListenerInfo& Listener)
{
	if (Listener.Tab != nullptr)
	{
		StartLodexTabTool(*this, *Listener.Tab);
		if (Listener.Listener == ELodexListener::DetailsTool)
		{
			LodexSnapshot::StartExport(*this);
		}
	}
	else
	{
		StartMenuTool(*this);
	}
}

void FEditorModel::StopListener(const FLodexListenerInfo& Listener)
{
	if (Listener.Tab != nullptr)
	{
		StopLodexTabTool(*this, *Listener.Tab);
		if (Listener.Listener == ELodexListener::DetailsTool)
		{
			LodexSnapshot::StopExport(*this);
		}
	}
}

void FEditorModel::UnregisterSettings(const FLodexSettingsSectionInfo&)
{
	// The module never registers the section; removing an absent one is a no-op in the editor too.
}

void FEditorModel::RegisterNomadTabSpawner(const FLodexTabInfo& Tab, const char* GroupName)
{
	TabSpawners.Register({Tab.TabName, Tab.DisplayName, Tab.ToolTip, GroupName});
}

void FEditorModel::UnregisterNomadTabSpawner(const char* TabName)
{
	TabSpawners.Unregister(TabName);
}

void FEditorModel::AddMenuExtension(const char* Hook, ELodexExtensionPosition Position, const FLodexTabInfo& Tab)
{
	// The module's AddMenuExtension adds only when its extender exists.
	if (bHasMenuExtender)
	{
		MenuExtender.AddMenuExtension(Hook, Position, Tab.TabName);
	}
}

void FEditorModel::RegisterCommandSet(const FLodexCommandSetInfo& Set)
{
	RegisteredCommandSets.push_back(Set.ContextName);
}

void FEditorModel::MapPrintAction(const FLodexCommandInfo&, const std::string&) {}

void FEditorModel::AddModuleMenuExtension(const FLodexMenuInfo& Menu)
{
	if (bHasMenuExtender)
	{
		ExtendedContextMenus.push_back(&Menu);
	}
}

void FEditorModel::AddViewportContextMenuExtender(const FLodexMenuInfo& Menu)
{
	ExtendedContextMenus.push_back(&Menu);
}

std::vector<FLodexMenuItem> FEditorModel::OpenPullDown() const
{
	return BuildLodexPullDownModel(MenuExtender, TabSpawners);
}

void FEditorModel::AddPullDownEntry(const FLodexSnapshotExportInfo& Export)
{
	// Added through the module's AddMenuExtension, which adds only when its extender exists.
	if (bHasMenuExtender)
	{
		MenuExtender.AddMenuEntry(
			Export.MenuHook, Export.MenuPosition, Export.MenuLabel, Export.MenuToolTip, Export.ConsoleCommand);
	}
}

void FEditorModel::RegisterConsoleCommand(const FLodexSnapshotExportInfo& Export)
{
	ConsoleCommands.push_back(Export.ConsoleCommand);
}

void FEditorModel::UnregisterConsoleCommand(const FLodexSnapshotExportInfo& Export)
{
	for (auto It = ConsoleCommands.begin(); It != ConsoleCommands.end(); ++It)
	{
		if (*It == Export.ConsoleCommand)
		{
			ConsoleCommands.erase(It);
			return;
		}
	}
}
