// Copyright Lodex contributors.
#include "LodexShell.h"

const std::vector<FLodexTabInfo>& GetLodexTabs()
{
	// Display names and tooltips are the editor's texts as they stand, "componenets" included.
	static const std::vector<FLodexTabInfo> Tabs{
		{ELodexListener::TabTool, "TabTool", "Lodestring Debugger", "Lodestring Debugger Window", "LODEX",
			"TabToolPanel"},
		{ELodexListener::RecorderTool, "RecorderTool", "Input Recorder", "Record User Input", "RECORDER_TOOL",
			"RecorderToolPanel"},
		{ELodexListener::ReplTool, "ReplTool", "Lodex REPL",
			"Quickly test your Lodestring queries in a REPL (Read, Examine, Print, Loop)", "REPL_TOOL",
			"ReplToolPanel"},
		{ELodexListener::DetailsTool, "DetailsTool", "Object Explorer",
			"Explore the values, componenets, and available methods in selected objects", "DETAILS_TOOL",
			"DetailsToolPanel"},
	};
	return Tabs;
}

const FLodexTabInfo* FindLodexTab(const std::string& TabName)
{
	for (const FLodexTabInfo& Tab : GetLodexTabs())
	{
		if (TabName == Tab.TabName)
		{
			return &Tab;
		}
	}
	return nullptr;
}

const std::vector<FLodexListenerInfo>& GetLodexListeners()
{
	static const std::vector<FLodexListenerInfo> Listeners = []
	{
		std::vector<FLodexListenerInfo> List{{ELodexListener::MenuTool, "MenuTool", nullptr}};
		for (const FLodexTabInfo& Tab : GetLodexTabs())
		{
			List.push_back({Tab.Listener, Tab.TabName, &Tab});
		}
		return List;
	}();
	return Listeners;
}

const FLodexListenerInfo& GetLodexListener(ELodexListener Listener)
{
	const std::vector<FLodexListenerInfo>& Listeners = GetLodexListeners();
	for (const FLodexListenerInfo& Info : Listeners)
	{
		if (Info.Listener == Listener)
		{
			return Info;
		}
	}
	return Listeners.front();
}

const FLodexPullDownInfo& GetLodexPullDown()
{
	static const FLodexPullDownInfo PullDown{
		"Window", "VELT Lode String Debugger", "Open the Lode String Debugger menu", "Veltrane", "Veltrane"};
	return PullDown;
}

const FLodexPullDownContentInfo& GetLodexPullDownContent()
{
	static const FLodexPullDownContentInfo Content{
		"Veltrane", "Veltrane", {"LODEX", "RECORDER_TOOL", "REPL_TOOL", "DETAILS_TOOL"}};
	return Content;
}

const FLodexSettingsSectionInfo& GetLodexExampleSettingsSection()
{
	static const FLodexSettingsSectionInfo Section{"Project", "ExampleCategory", "ExampleSettings"};
	return Section;
}

const char* GetLodexExtensionPositionName(ELodexExtensionPosition Position)
{
	switch (Position)
	{
		case ELodexExtensionPosition::Before:
			return "Before";
		case ELodexExtensionPosition::After:
			return "After";
		case ELodexExtensionPosition::First:
			return "First";
	}
	return "Before";
}

void BuildLodexPullDownContent(ILodexMenuBuilder& Builder)
{
	const FLodexPullDownContentInfo& Content = GetLodexPullDownContent();
	Builder.BeginSection(Content.SectionHook, Content.SectionHeading);
	for (const char* Hook : Content.SeparatorHooks)
	{
		Builder.AddMenuSeparator(Hook);
	}
	Builder.EndSection();
}

void FLodexShell::StartupModule(ILodexShellHost& Host)
{
	if (Host.IsRunningCommandlet())
	{
		return;
	}
	Host.LoadModule(LodexShellModules::LevelEditor);
	Host.CreateMenuExtender();
	Host.CreateMenuBarCommandList();
	Host.AddMenuBarExtension(GetLodexPullDown());
	Host.AddMenuExtenderToLevelEditor();
	bMenuExtenderAdded = true;

	Host.AddModuleListeners();
	for (const ELodexListener Listener : ModuleListeners)
	{
		Host.StartListener(GetLodexListener(Listener));
	}
}

void FLodexShell::ShutdownModule(ILodexShellHost& Host, ILodexOutput& Output)
{
	Output.Log(ELodexLogVerbosity::Warning, LodexShutdownMessage);
	if (Host.IsModuleLoaded(LodexShellModules::PropertyEditor))
	{
		// Fetched and left alone, as the module always has.
		Host.LoadModule(LodexShellModules::PropertyEditor);
	}
	if (Host.IsModuleLoaded(LodexShellModules::Settings))
	{
		Host.UnregisterSettings(GetLodexExampleSettingsSection());
	}
	for (const ELodexListener Listener : ModuleListeners)
	{
		Host.StopListener(GetLodexListener(Listener));
	}
	if (bMenuExtenderAdded)
	{
		if (Host.IsModuleLoaded(LodexShellModules::LevelEditor))
		{
			Host.RemoveMenuExtenderFromLevelEditor();
		}
		Host.ReleaseMenuExtender();
		bMenuExtenderAdded = false;
	}
	if (!ModuleListeners.empty())
	{
		Host.DestroyListeners();
		ModuleListeners.clear();
	}
}

void FLodexShell::AddModuleListeners(ILodexShellHost& Host)
{
	for (const FLodexListenerInfo& Listener : GetLodexListeners())
	{
		Host.CreateListener(Listener);
		ModuleListeners.push_back(Listener.Listener);
	}
}

void StartLodexTabToolBase(ILodexTabTool& Tool)
{
	Tool.Initialize();
	Tool.RegisterNomadTabSpawner(LodexMenuRootGroupName);
}

void AddLodexTabMenuEntry(ILodexTabTool& Tool, const FLodexTabInfo& Tab)
{
	Tool.AddMenuExtension(Tab.MenuHook, ELodexExtensionPosition::Before);
}

void StartLodexTabTool(ILodexTabTool& Tool, const FLodexTabInfo& Tab)
{
	StartLodexTabToolBase(Tool);
	AddLodexTabMenuEntry(Tool, Tab);
}

void StopLodexTabTool(ILodexTabTool& Tool)
{
	Tool.UnregisterNomadTabSpawner();
}

void StartLodexPullDownCommand(ILodexPullDownCommandHost& Host, const FLodexPullDownCommandInfo& Command)
{
	Host.AddPullDownEntry(Command);
	Host.RegisterConsoleCommand(Command);
}

void StopLodexPullDownCommand(ILodexPullDownCommandHost& Host, const FLodexPullDownCommandInfo& Command)
{
	Host.UnregisterConsoleCommand(Command);
}
