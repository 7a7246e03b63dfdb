// Copyright Lodex contributors.
#include "EditorModel.h"

#include "LodexDebugger/Core/Paths/LodexBestCopy.h"

#include <algorithm>

FEditorModelTabTool::FEditorModelTabTool(FEditorModel& InEditor, const FLodexTabInfo& InTab)
	: Editor(InEditor)
	, Tab(InTab)
{
}

void FEditorModelTabTool::Initialize()
{
	Fields = {Tab.TabName, Tab.DisplayName, Tab.ToolTip};
}

void FEditorModelTabTool::RegisterNomadTabSpawner(const char* GroupName)
{
	Editor.RegisterNomadTabSpawner({Fields.TabName, Fields.TabDisplayName, Fields.ToolTipText, GroupName});
}

void FEditorModelTabTool::UnregisterNomadTabSpawner()
{
	Editor.UnregisterNomadTabSpawner(Fields.TabName);
}

void FEditorModelTabTool::AddMenuExtension(const char* Hook, ELodexExtensionPosition Position)
{
	Editor.AddTabMenuExtension(Hook, Position, Fields.TabName);
}

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

void FEditorModel::ReleaseMenuExtender()
{
	bHasMenuExtender = false;
	MenuExtender = FLodexMenuExtender();
	MenuBarPullDowns.clear();
	ModuleExtenderMenus.clear();
}

void FEditorModel::AddModuleListeners()
{
	Shell.AddModuleListeners(*this);
}

void FEditorModel::CreateListener(const FLodexListenerInfo& Listener)
{
	Listeners.emplace_back(
		Listener.Name, Listener.Tab != nullptr ? std::make_unique<FEditorModelTabTool>(*this, *Listener.Tab) : nullptr);
}

void FEditorModel::StartListener(const FLodexListenerInfo& Listener)
{
	for (const auto& [Name, TabTool] : Listeners)
	{
		if (Name != Listener.Name)
		{
			continue;
		}
		if (TabTool)
		{
			StartLodexTabTool(*TabTool, TabTool->GetTab());
			if (Listener.Listener == ELodexListener::DetailsTool)
			{
				LodexSnapshot::StartExport(*this);
				StartLodexPullDownCommand(*this, GetLodexBestCopyCommand());
			}
		}
		else
		{
			StartMenuTool(*this);
		}
	}
}

void FEditorModel::StopListener(const FLodexListenerInfo& Listener)
{
	for (const auto& [Name, TabTool] : Listeners)
	{
		if (Name != Listener.Name)
		{
			continue;
		}
		if (TabTool)
		{
			if (Listener.Listener == ELodexListener::DetailsTool)
			{
				StopLodexPullDownCommand(*this, GetLodexBestCopyCommand());
				LodexSnapshot::StopExport(*this);
			}
			StopLodexTabTool(*TabTool);
		}
		else
		{
			StopMenuTool(*this);
		}
	}
}

void FEditorModel::DestroyListeners()
{
	Listeners.clear();
}

std::vector<std::string> FEditorModel::GetListeners() const
{
	std::vector<std::string> Names;
	for (const auto& Listener : Listeners)
	{
		Names.push_back(Listener.first);
	}
	return Names;
}

void FEditorModel::UnregisterSettings(const FLodexSettingsSectionInfo&)
{
	// The module never registers the section; removing an absent one is a no-op in the editor too.
}

void FEditorModel::RegisterNomadTabSpawner(const FLodexTabSpawnerEntry& Entry)
{
	TabSpawners.Register(Entry);
}

void FEditorModel::UnregisterNomadTabSpawner(const std::string& TabName)
{
	TabSpawners.Unregister(TabName);
}

void FEditorModel::AddTabMenuExtension(const char* Hook, ELodexExtensionPosition Position, const std::string& TabName)
{
	// The module's AddMenuExtension adds only when its extender exists.
	if (bHasMenuExtender)
	{
		MenuExtender.AddMenuExtension(Hook, Position, TabName);
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
		ModuleExtenderMenus.push_back(&Menu);
	}
}

void FEditorModel::AddViewportContextMenuExtender(const FLodexMenuInfo& Menu)
{
	ViewportMenuExtenders.push_back(&Menu);
}

void FEditorModel::RemoveViewportContextMenuExtender(const FLodexMenuInfo& Menu)
{
	ViewportMenuExtenders.erase(
		std::remove(ViewportMenuExtenders.begin(), ViewportMenuExtenders.end(), &Menu), ViewportMenuExtenders.end());
}

void FEditorModel::UnregisterCommandSet(const FLodexCommandSetInfo& Set)
{
	RegisteredCommandSets.erase(
		std::remove(RegisteredCommandSets.begin(), RegisteredCommandSets.end(), std::string(Set.ContextName)),
		RegisteredCommandSets.end());
}

std::size_t FEditorModel::CountLevelEditorExtenders() const
{
	return (bExtenderInLevelEditor ? 1 : 0) + ViewportMenuExtenders.size();
}

std::vector<FLodexMenuItem> FEditorModel::OpenPullDown() const
{
	return BuildLodexPullDownModel(MenuExtender, TabSpawners);
}

void FEditorModel::AddPullDownEntry(const FLodexPullDownCommandInfo& Command)
{
	// Added through the module's AddMenuExtension, which adds only when its extender exists.
	if (bHasMenuExtender)
	{
		MenuExtender.AddMenuEntry(
			Command.MenuHook, Command.MenuPosition, Command.MenuLabel, Command.MenuToolTip, Command.ConsoleCommand);
	}
}

void FEditorModel::RegisterConsoleCommand(const FLodexPullDownCommandInfo& Command)
{
	ConsoleCommands.push_back(Command.ConsoleCommand);
}

void FEditorModel::UnregisterConsoleCommand(const FLodexPullDownCommandInfo& Command)
{
	ConsoleCommands.erase(
		std::remove(ConsoleCommands.begin(), ConsoleCommands.end(), std::string(Command.ConsoleCommand)),
		ConsoleCommands.end());
}
