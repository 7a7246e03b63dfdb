// Copyright Lodex contributors.
#include "EditorModel.h"
#include "LodexCli.h"

#include "LodexDebugger/Core/LodexExamplePanel.h"
#include "LodexDebugger/Core/LodexMenuModel.h"
#include "LodexDebugger/Core/LodexShell.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace
{
	/**
	 * The editor as the shell sees it, recording every call in one list, log lines included, so that
	 * the order of start-up and shut-down can be checked as a whole. Tab tools run for real on it.
	 */
	class FRecordingShellHost final
		: public ILodexShellHost
		, public ILodexTabHost
		, public ILodexOutput
	{
	public:
		bool IsRunningCommandlet() const override
		{
			Calls.push_back("IsRunningCommandlet");
			return bCommandlet;
		}
		bool IsModuleLoaded(const char* ModuleName) const override
		{
			Calls.push_back(std::string("IsModuleLoaded ") + ModuleName);
			return LoadedModules.count(ModuleName) > 0;
		}
		void LoadModule(const char* ModuleName) override
		{
			Calls.push_back(std::string("LoadModule ") + ModuleName);
			LoadedModules.insert(ModuleName);
		}
		void CreateMenuExtender() override
		{
			Calls.push_back("CreateMenuExtender");
			bHasExtender = true;
		}
		void CreateMenuBarCommandList() override { Calls.push_back("CreateMenuBarCommandList"); }
		void AddMenuBarExtension(const FLodexPullDownInfo& PullDown) override
		{
			Calls.push_back(std::string("AddMenuBarExtension after ") + PullDown.AfterHook + ": " + PullDown.Label);
			++MenuBarExtensions;
		}
		void AddMenuExtenderToLevelEditor() override { Calls.push_back("AddMenuExtenderToLevelEditor"); }
		void CreateListener(const FLodexListenerInfo& Listener) override
		{
			Calls.push_back(std::string("CreateListener ") + Listener.Name);
		}
		void StartListener(const FLodexListenerInfo& Listener) override
		{
			Calls.push_back(std::string("StartListener ") + Listener.Name);
			if (Listener.Tab != nullptr)
			{
				StartLodexTabTool(*this, *Listener.Tab);
			}
		}
		void StopListener(const FLodexListenerInfo& Listener) override
		{
			Calls.push_back(std::string("StopListener ") + Listener.Name);
			if (Listener.Tab != nullptr)
			{
				StopLodexTabTool(*this, *Listener.Tab);
			}
		}
		void UnregisterSettings(const FLodexSettingsSectionInfo& Section) override
		{
			Calls.push_back(std::string("UnregisterSettings ") + Section.Container + "/" + Section.Category + "/" +
				Section.Section);
		}

		void RegisterNomadTabSpawner(const FLodexTabInfo& Tab, const char* GroupName) override
		{
			Calls.push_back(std::string("RegisterNomadTabSpawner ") + Tab.TabName);
			Spawners.Register({Tab.TabName, Tab.DisplayName, Tab.ToolTip, GroupName});
		}
		void UnregisterNomadTabSpawner(const char* TabName) override
		{
			Calls.push_back(std::string("UnregisterNomadTabSpawner ") + TabName);
			EXPECT_TRUE(Spawners.Unregister(TabName)) << "no spawner under " << TabName;
		}
		void AddMenuExtension(const char* Hook, ELodexExtensionPosition Position, const FLodexTabInfo& Tab) override
		{
			Calls.push_back(std::string("AddMenuExtension ") + GetLodexExtensionPositionName(Position) + " " + Hook +
				" " + Tab.TabName);
			if (bHasExtender)
			{
				Extender.AddMenuExtension(Hook, Position, Tab.TabName);
			}
		}

		void Log(ELodexLogVerbosity Verbosity, const std::string& Message) override
		{
			Calls.push_back("Log " + FormatLodexLogLine(Verbosity, Message));
		}
		void CopyToClipboard(const std::string& Text) override
		{
			ADD_FAILURE() << "the shell copied to the clipboard: " << Text;
		}

		std::vector<std::string> TakeCalls()
		{
			std::vector<std::string> Taken;
			Taken.swap(Calls);
			return Taken;
		}

		bool bCommandlet = false;
		bool bHasExtender = false;
		int MenuBarExtensions = 0;
		std::set<std::string> LoadedModules;
		FLodexTabSpawnerRegistry Spawners;
		FLodexMenuExtender Extender;
		mutable std::vector<std::string> Calls;
	};

	const std::vector<std::string> PullDownLabels{
		"Lodestring Debugger", "Input Recorder", "Lodex REPL", "Object Explorer"};

	std::vector<std::string> EntryLabels(const std::vector<FLodexMenuItem>& Items)
	{
		std::vector<std::string> Labels;
		for (const FLodexMenuItem& Item : GetLodexMenuEntries(Items))
		{
			Labels.push_back(Item.Text);
		}
		return Labels;
	}

	/** Items as "heading Text", "entry Text -> Id", "separator Id". */
	std::vector<std::string> DescribeItems(const std::vector<FLodexMenuItem>& Items)
	{
		std::vector<std::string> Lines;
		for (const FLodexMenuItem& Item : Items)
		{
			switch (Item.Kind)
			{
				case ELodexMenuItemKind::Heading:
					Lines.push_back("heading " + Item.Text);
					break;
				case ELodexMenuItemKind::Entry:
					Lines.push_back("entry " + Item.Text + " -> " + Item.Id);
					break;
				case ELodexMenuItemKind::Separator:
					Lines.push_back("separator " + Item.Id);
					break;
			}
		}
		return Lines;
	}

	TEST(LodexShellStartup, RunsEveryStepInOrder)
	{
		FRecordingShellHost Host;
		FLodexShell Shell;
		Shell.StartupModule(Host);
		EXPECT_EQ(Host.TakeCalls(),
			(std::vector<std::string>{
				"IsRunningCommandlet",
				"LoadModule LevelEditor",
				"CreateMenuExtender",
				"CreateMenuBarCommandList",
				"AddMenuBarExtension after Window: VELT Lode String Debugger",
				"AddMenuExtenderToLevelEditor",
				"CreateListener MenuTool",
				"CreateListener TabTool",
				"CreateListener RecorderTool",
				"CreateListener ReplTool",
				"CreateListener DetailsTool",
				"StartListener MenuTool",
				"StartListener TabTool",
				"RegisterNomadTabSpawner TabTool",
				"AddMenuExtension Before LODEX TabTool",
				"StartListener RecorderTool",
				"RegisterNomadTabSpawner RecorderTool",
				"AddMenuExtension Before RECORDER_TOOL RecorderTool",
				"StartListener ReplTool",
				"RegisterNomadTabSpawner ReplTool",
				"AddMenuExtension Before REPL_TOOL ReplTool",
				"StartListener DetailsTool",
				"RegisterNomadTabSpawner DetailsTool",
				"AddMenuExtension Before DETAILS_TOOL DetailsTool",
			}));
		EXPECT_EQ(Shell.GetModuleListeners(),
			(std::vector<ELodexListener>{ELodexListener::MenuTool, ELodexListener::TabTool,
				ELodexListener::RecorderTool, ELodexListener::ReplTool, ELodexListener::DetailsTool}));
	}

	TEST(LodexShellShutdown, LogsThenStopsEveryListenerInListOrderAndUnregistersTheSpawnersByTabName)
	{
		FRecordingShellHost Host;
		Host.LoadedModules = {"PropertyEditor", "Settings"};
		FLodexShell Shell;
		Shell.StartupModule(Host);
		Host.TakeCalls();
		Shell.ShutdownModule(Host, Host);
		EXPECT_EQ(Host.TakeCalls(),
			(std::vector<std::string>{
				"Log LogTemp: Warning: ShutdownModule() called",
				"IsModuleLoaded PropertyEditor",
				"LoadModule PropertyEditor",
				"IsModuleLoaded Settings",
				"UnregisterSettings Project/ExampleCategory/ExampleSettings",
				"StopListener MenuTool",
				"StopListener TabTool",
				"UnregisterNomadTabSpawner TabTool",
				"StopListener RecorderTool",
				"UnregisterNomadTabSpawner RecorderTool",
				"StopListener ReplTool",
				"UnregisterNomadTabSpawner ReplTool",
				"StopListener DetailsTool",
				"UnregisterNomadTabSpawner DetailsTool",
			}));
		EXPECT_TRUE(Host.Spawners.GetSpawners().empty());
	}

	struct FShutdownModulesRow
	{
		bool bPropertyEditorLoaded;
		bool bSettingsLoaded;
		std::vector<std::string> Expected;
	};

	TEST(LodexShellShutdown, FetchesPropertyEditorAndRemovesTheSettingsSectionOnlyWhenLoaded)
	{
		const std::string Logged = "Log LogTemp: Warning: ShutdownModule() called";
		const std::vector<FShutdownModulesRow> Rows{
			{false, false, {Logged, "IsModuleLoaded PropertyEditor", "IsModuleLoaded Settings"}},
			{true, false,
				{Logged, "IsModuleLoaded PropertyEditor", "LoadModule PropertyEditor", "IsModuleLoaded Settings"}},
			{false, true,
				{Logged, "IsModuleLoaded PropertyEditor", "IsModuleLoaded Settings",
					"UnregisterSettings Project/ExampleCategory/ExampleSettings"}},
			{true, true,
				{Logged, "IsModuleLoaded PropertyEditor", "LoadModule PropertyEditor", "IsModuleLoaded Settings",
					"UnregisterSettings Project/ExampleCategory/ExampleSettings"}},
		};
		for (const FShutdownModulesRow& Row : Rows)
		{
			// A shell that never started: no listeners to stop, so only the module steps show.
			FRecordingShellHost Host;
			if (Row.bPropertyEditorLoaded)
			{
				Host.LoadedModules.insert("PropertyEditor");
			}
			if (Row.bSettingsLoaded)
			{
				Host.LoadedModules.insert("Settings");
			}
			FLodexShell Shell;
			Shell.ShutdownModule(Host, Host);
			EXPECT_EQ(Host.TakeCalls(), Row.Expected)
				<< "PropertyEditor " << Row.bPropertyEditorLoaded << ", Settings " << Row.bSettingsLoaded;
		}
	}

	TEST(LodexShellCommandlet, AddsNoMenuNoListenerNoSpawnerAndStillLogsAtShutdown)
	{
		FRecordingShellHost Host;
		Host.bCommandlet = true;
		FLodexShell Shell;
		Shell.StartupModule(Host);
		EXPECT_EQ(Host.TakeCalls(), (std::vector<std::string>{"IsRunningCommandlet"}));
		EXPECT_TRUE(Shell.GetModuleListeners().empty());
		EXPECT_EQ(Host.MenuBarExtensions, 0);
		EXPECT_TRUE(Host.Spawners.GetSpawners().empty());

		Shell.ShutdownModule(Host, Host);
		EXPECT_EQ(Host.TakeCalls(),
			(std::vector<std::string>{"Log LogTemp: Warning: ShutdownModule() called", "IsModuleLoaded PropertyEditor",
				"IsModuleLoaded Settings"}));
	}

	TEST(LodexShellCommandlet, TheEditorModelKeepsNothingEither)
	{
		FEditorModel Editor(true);
		FLodexShell Shell;
		Shell.StartupModule(Editor);
		EXPECT_TRUE(Editor.GetMenuBarPullDowns().empty());
		EXPECT_FALSE(Editor.IsExtenderInLevelEditor());
		EXPECT_TRUE(Editor.GetTabSpawners().GetSpawners().empty());
		EXPECT_TRUE(Editor.GetCreatedListeners().empty());
		EXPECT_TRUE(Editor.GetRegisteredCommandSets().empty());
		EXPECT_TRUE(Editor.GetExtendedContextMenus().empty());
	}

	TEST(LodexPullDown, ListsTheFourToolsInHookOrderWhateverTheStartOrder)
	{
		std::vector<const FLodexTabInfo*> Order;
		for (const FLodexTabInfo& Tab : GetLodexTabs())
		{
			Order.push_back(&Tab);
		}
		std::sort(Order.begin(), Order.end());
		int Permutations = 0;
		do
		{
			FRecordingShellHost Host;
			Host.bHasExtender = true;
			std::string Started;
			for (const FLodexTabInfo* Tab : Order)
			{
				StartLodexTabTool(Host, *Tab);
				Started += std::string(Tab->TabName) + " ";
			}
			EXPECT_EQ(EntryLabels(BuildLodexPullDownModel(Host.Extender, Host.Spawners)), PullDownLabels)
				<< "started in the order " << Started;
			++Permutations;
		} while (std::next_permutation(Order.begin(), Order.end()));
		EXPECT_EQ(Permutations, 24);
	}

	TEST(LodexPullDown, ShowsTheHeadingThenEachEntryBeforeItsSeparator)
	{
		FEditorModel Editor;
		FLodexShell Shell;
		Shell.StartupModule(Editor);
		EXPECT_EQ(DescribeItems(Editor.OpenPullDown()),
			(std::vector<std::string>{
				"heading Veltrane",
				"entry Lodestring Debugger -> TabTool",
				"separator LODEX",
				"entry Input Recorder -> RecorderTool",
				"separator RECORDER_TOOL",
				"entry Lodex REPL -> ReplTool",
				"separator REPL_TOOL",
				"entry Object Explorer -> DetailsTool",
				"separator DETAILS_TOOL",
			}));
		const std::vector<FLodexMenuItem> Entries = GetLodexMenuEntries(Editor.OpenPullDown());
		ASSERT_EQ(Entries.size(), 4u);
		EXPECT_EQ(Entries[2].ToolTip, "Quickly test your Lodestring queries in a REPL (Read, Examine, Print, Loop)");
	}

	TEST(LodexPullDown, OpenedAfterShutdownHasNoEntries)
	{
		FEditorModel Editor;
		FLodexShell Shell;
		Shell.StartupModule(Editor);
		FRecordingShellHost Log;
		Shell.ShutdownModule(Editor, Log);
		EXPECT_TRUE(Editor.GetTabSpawners().GetSpawners().empty());
		EXPECT_TRUE(GetLodexMenuEntries(Editor.OpenPullDown()).empty());
	}

	struct FHookRow
	{
		const char* Hook;
		ELodexExtensionPosition Position;
		std::vector<std::string> Expected;
	};

	TEST(LodexMenuModelBuilder, AppliesExtensionsAtTheEngineHookPoints)
	{
		const std::vector<FHookRow> Rows{
			{"Veltrane", ELodexExtensionPosition::Before,
				{"entry Lodex REPL -> ReplTool", "heading Veltrane", "separator LODEX", "separator RECORDER_TOOL",
					"separator REPL_TOOL", "separator DETAILS_TOOL"}},
			{"Veltrane", ELodexExtensionPosition::First,
				{"heading Veltrane", "entry Lodex REPL -> ReplTool", "separator LODEX", "separator RECORDER_TOOL",
					"separator REPL_TOOL", "separator DETAILS_TOOL"}},
			{"Veltrane", ELodexExtensionPosition::After,
				{"heading Veltrane", "separator LODEX", "separator RECORDER_TOOL", "separator REPL_TOOL",
					"separator DETAILS_TOOL", "entry Lodex REPL -> ReplTool"}},
			{"LODEX", ELodexExtensionPosition::After,
				{"heading Veltrane", "separator LODEX", "entry Lodex REPL -> ReplTool", "separator RECORDER_TOOL",
					"separator REPL_TOOL", "separator DETAILS_TOOL"}},
			{"DETAILS_TOOL", ELodexExtensionPosition::Before,
				{"heading Veltrane", "separator LODEX", "separator RECORDER_TOOL", "separator REPL_TOOL",
					"entry Lodex REPL -> ReplTool", "separator DETAILS_TOOL"}},
			{"NoSuchHook", ELodexExtensionPosition::Before,
				{"heading Veltrane", "separator LODEX", "separator RECORDER_TOOL", "separator REPL_TOOL",
					"separator DETAILS_TOOL"}},
		};
		FLodexTabSpawnerRegistry Spawners;
		Spawners.Register({"ReplTool", "Lodex REPL", "tip", "Menu Root"});
		for (const FHookRow& Row : Rows)
		{
			FLodexMenuExtender Extender;
			Extender.AddMenuExtension(Row.Hook, Row.Position, "ReplTool");
			EXPECT_EQ(DescribeItems(BuildLodexPullDownModel(Extender, Spawners)), Row.Expected)
				<< Row.Hook << " " << GetLodexExtensionPositionName(Row.Position);
		}
	}

	TEST(LodexMenuModelBuilder, KeepsTheOrderOfAdditionAtOneHookAndSkipsUnregisteredTabs)
	{
		FLodexTabSpawnerRegistry Spawners;
		Spawners.Register({"B", "Bee", "", "Menu Root"});
		Spawners.Register({"A", "Ay", "", "Menu Root"});
		FLodexMenuExtender Extender;
		Extender.AddMenuExtension("LODEX", ELodexExtensionPosition::Before, "A");
		Extender.AddMenuExtension("LODEX", ELodexExtensionPosition::Before, "Gone");
		Extender.AddMenuExtension("LODEX", ELodexExtensionPosition::Before, "B");
		EXPECT_EQ(EntryLabels(BuildLodexPullDownModel(Extender, Spawners)), (std::vector<std::string>{"Ay", "Bee"}));
	}

	TEST(LodexTabSpawnerRegistry, ReplacesASpawnerRegisteredTwiceUnderOneName)
	{
		FLodexTabSpawnerRegistry Spawners;
		Spawners.Register({"TabTool", "Old", "", "Menu Root"});
		Spawners.Register({"TabTool", "New", "", "Menu Root"});
		ASSERT_EQ(Spawners.GetSpawners().size(), 1u);
		EXPECT_EQ(Spawners.GetSpawners()[0].DisplayName, "New");
		EXPECT_TRUE(Spawners.Unregister("TabTool"));
		EXPECT_FALSE(Spawners.Unregister("TabTool"));
	}

	struct FTabRow
	{
		ELodexListener Listener;
		const char* TabName;
		const char* DisplayName;
		const char* ToolTip;
		const char* MenuHook;
		const char* PanelName;
	};

	TEST(LodexTabs, MatchTheEditorTexts)
	{
		const std::vector<FTabRow> Expected{
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
		const std::vector<FLodexTabInfo>& Tabs = GetLodexTabs();
		ASSERT_EQ(Tabs.size(), Expected.size());
		for (std::size_t Index = 0; Index < Tabs.size(); ++Index)
		{
			SCOPED_TRACE(Expected[Index].TabName);
			EXPECT_EQ(Tabs[Index].Listener, Expected[Index].Listener);
			EXPECT_STREQ(Tabs[Index].TabName, Expected[Index].TabName);
			EXPECT_STREQ(Tabs[Index].DisplayName, Expected[Index].DisplayName);
			EXPECT_STREQ(Tabs[Index].ToolTip, Expected[Index].ToolTip);
			EXPECT_STREQ(Tabs[Index].MenuHook, Expected[Index].MenuHook);
			EXPECT_STREQ(Tabs[Index].PanelName, Expected[Index].PanelName);
			EXPECT_EQ(FindLodexTab(Expected[Index].TabName), &Tabs[Index]);
		}
		EXPECT_EQ(FindLodexTab("MenuTool"), nullptr);
		EXPECT_EQ(FindLodexTab("tabtool"), nullptr);
	}

	TEST(LodexTabs, EachMenuHookIsASeparatorOfThePullDownInTheSameOrder)
	{
		std::vector<std::string> Hooks;
		for (const FLodexTabInfo& Tab : GetLodexTabs())
		{
			Hooks.push_back(Tab.MenuHook);
		}
		const FLodexPullDownContentInfo& Content = GetLodexPullDownContent();
		EXPECT_EQ(std::vector<std::string>(Content.SeparatorHooks.begin(), Content.SeparatorHooks.end()), Hooks);
		EXPECT_STREQ(Content.SectionHook, "Veltrane");
		EXPECT_STREQ(Content.SectionHeading, "Veltrane");
	}

	TEST(LodexListeners, AreTheFiveToolsInOrderWithTheirTabs)
	{
		std::vector<std::string> Names;
		for (const FLodexListenerInfo& Listener : GetLodexListeners())
		{
			Names.push_back(Listener.Name);
			if (Listener.Listener == ELodexListener::MenuTool)
			{
				EXPECT_EQ(Listener.Tab, nullptr);
			}
			else
			{
				ASSERT_NE(Listener.Tab, nullptr) << Listener.Name;
				EXPECT_STREQ(Listener.Tab->TabName, Listener.Name);
			}
			EXPECT_EQ(&GetLodexListener(Listener.Listener), &Listener);
		}
		EXPECT_EQ(Names, (std::vector<std::string>{"MenuTool", "TabTool", "RecorderTool", "ReplTool", "DetailsTool"}));
	}

	TEST(LodexPullDown, IsTheVeltMenuAfterWindow)
	{
		const FLodexPullDownInfo& PullDown = GetLodexPullDown();
		EXPECT_STREQ(PullDown.AfterHook, "Window");
		EXPECT_STREQ(PullDown.Label, "VELT Lode String Debugger");
		EXPECT_STREQ(PullDown.ToolTip, "Open the Lode String Debugger menu");
		EXPECT_STREQ(PullDown.ExtensionHook, "Veltrane");
		EXPECT_STREQ(PullDown.TutorialHighlightName, "Veltrane");
	}

	TEST(LodexTabTool, BaseRegistersOnlyTheSpawnerAndToolsAddTheirEntryBeforeTheirHook)
	{
		const FLodexTabInfo& Tab = *FindLodexTab("RecorderTool");
		FRecordingShellHost Host;
		RegisterLodexTabSpawner(Host, Tab);
		EXPECT_EQ(Host.TakeCalls(), (std::vector<std::string>{"RegisterNomadTabSpawner RecorderTool"}));
		const FLodexTabSpawnerEntry* Spawner = Host.Spawners.Find("RecorderTool");
		ASSERT_NE(Spawner, nullptr);
		EXPECT_EQ(Spawner->DisplayName, "Input Recorder");
		EXPECT_EQ(Spawner->ToolTip, "Record User Input");
		EXPECT_EQ(Spawner->GroupName, "Menu Root");

		StopLodexTabTool(Host, Tab);
		StartLodexTabTool(Host, Tab);
		EXPECT_EQ(Host.TakeCalls(),
			(std::vector<std::string>{"UnregisterNomadTabSpawner RecorderTool", "RegisterNomadTabSpawner RecorderTool",
				"AddMenuExtension Before RECORDER_TOOL RecorderTool"}));
	}

	TEST(LodexEditorModel, StartupLeavesTheFourSpawnersInMenuRootAndTheMenuToolExtensions)
	{
		FEditorModel Editor;
		FLodexShell Shell;
		Shell.StartupModule(Editor);
		ASSERT_EQ(Editor.GetMenuBarPullDowns().size(), 1u);
		EXPECT_EQ(Editor.GetMenuBarPullDowns()[0], &GetLodexPullDown());
		EXPECT_TRUE(Editor.IsExtenderInLevelEditor());
		std::vector<std::string> Spawners;
		for (const FLodexTabSpawnerEntry& Spawner : Editor.GetTabSpawners().GetSpawners())
		{
			Spawners.push_back(Spawner.TabName + " in " + Spawner.GroupName);
		}
		EXPECT_EQ(Spawners,
			(std::vector<std::string>{"TabTool in Menu Root", "RecorderTool in Menu Root", "ReplTool in Menu Root",
				"DetailsTool in Menu Root"}));
		EXPECT_EQ(Editor.GetRegisteredCommandSets(), (std::vector<std::string>{"MenuTool"}));
		ASSERT_EQ(Editor.GetExtendedContextMenus().size(), 2u);
		EXPECT_EQ(Editor.GetExtendedContextMenus()[0]->Kind, ELodexMenuKind::SceneOutlinerActor);
		EXPECT_EQ(Editor.GetExtendedContextMenus()[1]->Kind, ELodexMenuKind::LevelViewportActor);
	}

	TEST(LodexExamplePanel, HoldsItsFixedTree)
	{
		const FLodexExamplePanelInfo& Panel = GetLodexExamplePanel();
		EXPECT_EQ(Panel.ScrollSlotPadding, 5.0f);
		EXPECT_EQ(Panel.BorderColor.Kind, ELodexColorKind::Color8);
		EXPECT_EQ(
			(std::vector<float>{Panel.BorderColor.R, Panel.BorderColor.G, Panel.BorderColor.B, Panel.BorderColor.A}),
			(std::vector<float>{192.0f, 192.0f, 192.0f, 255.0f}));
		EXPECT_EQ(Panel.BorderPadding, 15.0f);
		EXPECT_STREQ(Panel.Text, "This is a tab example.");
	}
	TEST(LodexDemo, ShowsThePullDownTheTabsAndTheContextMenusInOrder)
	{
		std::ostringstream Out;
		std::ostringstream Err;
		ASSERT_EQ(RunLodexCli({"demo"}, Out, Err), 0) << Err.str();
		const std::string Text = Out.str();
		const std::vector<std::string> InOrder{
			"What the module adds to the level editor\n",
			"│   └── \"VELT Lode String Debugger\", after \"Window\" (tooltip \"Open the Lode String Debugger "
			"menu\")\n",
			"│       └── section \"Veltrane\"\n",
			"│           ├── \"Lodestring Debugger\" opens the tab TabTool (tooltip \"Lodestring Debugger Window\")\n",
			"│           ├── ──── separator LODEX\n",
			"│           ├── \"Input Recorder\" opens the tab RecorderTool (tooltip \"Record User Input\")\n",
			"│           ├── \"Lodex REPL\" opens the tab ReplTool",
			"│           ├── \"Object Explorer\" opens the tab DetailsTool (tooltip \"Explore the values, componenets, "
			"and available methods in selected objects\")\n",
			"│           └── ──── separator DETAILS_TOOL\n",
			"├── Tabs (nomad tab spawners)\n",
			"│   ├── TabTool: \"Lodestring Debugger\"\n",
			"│   ├── RecorderTool: \"Input Recorder\"\n",
			"│   ├── ReplTool: \"Lodex REPL\"\n",
			"│   └── DetailsTool: \"Object Explorer\"\n",
			"└── Context menus\n",
			"    ├── Scene outliner actor menu (before the hook \"LevelEditor.SceneOutlinerContextMenu\")\n",
			"    │       └── sub-menu \"Lodestring\" (tooltip \"Print the Lodestring reference for use in Veltrane "
			"tests.\")\n",
			"    ├── Level viewport actor menu (before the hook \"ActorType\")\n",
			"    ├── Components tree menu of the object explorer (extends the tool menu "
			"\"Kismet.SCSEditorContextMenu\")\n",
			"    │           └── section \"VelTrane\"\n",
			"    └── Lists of the object explorer (built by the list's context-menu handler)\n",
			"                ├── \"Lodestring Relative\" (DetailToolA.DetailCommand1) prints the Relative Lodestring "
			"(tooltip \"Print the Lodestring to the console\")\n",
			"LogTemp: Warning: ShutdownModule() called\n",
			"Tab spawners left: 0\n",
		};
		std::size_t From = 0;
		for (const std::string& Expected : InOrder)
		{
			const std::size_t At = Text.find(Expected, From);
			ASSERT_NE(At, std::string::npos) << "missing, or out of order: " << Expected << "\n" << Text;
			From = At + Expected.size();
		}
	}
}
