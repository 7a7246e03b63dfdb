// Copyright Lodex contributors.
#include "LodexCli.h"

#include "LodexDebugger/Core/Shell/LodexExamplePanel.h"
#include "LodexDebugger/Core/Shell/LodexMenuModel.h"
#include "LodexDebugger/Core/Shell/LodexShell.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace
{
	using FLines = std::vector<std::string>;

	/**
	 * The editor as the shell sees it, recording every call in one list, log lines included, so that the order
	 * of start-up and shut-down is checked as a whole. Tab tools run for real on it.
	 */
	class FRecordingShellHost final
		: public ILodexShellHost
		, public ILodexTabHost
		, public ILodexOutput
	{
	public:
		bool Note(const std::string& Call, bool Result = true) const
		{
			Calls.push_back(Call);
			return Result;
		}

		bool IsRunningCommandlet() const override { return Note("IsRunningCommandlet", bCommandlet); }
		bool IsModuleLoaded(const char* Name) const override
		{
			return Note(std::string("IsModuleLoaded ") + Name, Loaded.count(Name) > 0);
		}
		void LoadModule(const char* Name) override { Note(std::string("LoadModule ") + Name); }
		void CreateMenuExtender() override { Note("CreateMenuExtender"); }
		void CreateMenuBarCommandList() override { Note("CreateMenuBarCommandList"); }
		void AddMenuBarExtension(const FLodexPullDownInfo& P) override
		{
			Note(std::string("AddMenuBarExtension after ") + P.AfterHook + ": " + P.Label + " (" + P.ToolTip +
				") hook " + P.ExtensionHook + ", highlight " + P.TutorialHighlightName);
		}
		void AddMenuExtenderToLevelEditor() override { Note("AddMenuExtenderToLevelEditor"); }
		void CreateListener(const FLodexListenerInfo& L) override { Note(std::string("CreateListener ") + L.Name); }
		void StartListener(const FLodexListenerInfo& L) override
		{
			Note(std::string("StartListener ") + L.Name);
			L.Tab != nullptr ? StartLodexTabTool(*this, *L.Tab) : void();
		}
		void StopListener(const FLodexListenerInfo& L) override
		{
			Note(std::string("StopListener ") + L.Name);
			L.Tab != nullptr ? StopLodexTabTool(*this, *L.Tab) : void();
		}
		void UnregisterSettings(const FLodexSettingsSectionInfo& S) override
		{
			Note(std::string("UnregisterSettings ") + S.Container + "/" + S.Category + "/" + S.Section);
		}
		void RegisterNomadTabSpawner(const FLodexTabInfo& Tab, const char* Group) override
		{
			Note(std::string("RegisterNomadTabSpawner ") + Tab.TabName + " in " + Group);
			Spawners.Register({Tab.TabName, Tab.DisplayName, Tab.ToolTip, Group});
		}
		void UnregisterNomadTabSpawner(const char* TabName) override
		{
			Note(std::string("UnregisterNomadTabSpawner ") + TabName);
			EXPECT_TRUE(Spawners.Unregister(TabName)) << "no spawner under " << TabName;
		}
		void AddMenuExtension(const char* Hook, ELodexExtensionPosition Position, const FLodexTabInfo& Tab) override
		{
			Note(std::string("AddMenuExtension ") + GetLodexExtensionPositionName(Position) + " " + Hook);
			Extender.AddMenuExtension(Hook, Position, Tab.TabName);
		}
		void Log(ELodexLogVerbosity Verbosity, const std::string& Message) override
		{
			Note("Log " + FormatLodexLogLine(Verbosity, Message));
		}
		void CopyToClipboard(const std::string& Text) override { ADD_FAILURE() << "copied to the clipboard: " << Text; }

		FLines TakeCalls() { return std::exchange(Calls, {}); }

		bool bCommandlet = false;
		std::set<std::string> Loaded;
		FLodexTabSpawnerRegistry Spawners;
		FLodexMenuExtender Extender;
		mutable FLines Calls;
	};

	/** A built menu, one item a line: "heading Text", "entry Text -> Id", "separator Id". */
	FLines DescribeItems(const std::vector<FLodexMenuItem>& Items)
	{
		FLines Lines;
		for (const FLodexMenuItem& Item : Items)
		{
			Lines.push_back(Item.Kind == ELodexMenuItemKind::Heading ? "heading " + Item.Text
					: Item.Kind == ELodexMenuItemKind::Entry         ? "entry " + Item.Text + " -> " + Item.Id
																	 : "separator " + Item.Id);
		}
		return Lines;
	}

	const std::string ShutdownLogged = "Log LogTemp: Warning: ShutdownModule() called";
	const std::string SettingsRemoved = "UnregisterSettings Project/ExampleCategory/ExampleSettings";

	TEST(LodexShell, StartupRunsEveryStepInOrder)
	{
		FRecordingShellHost Host;
		FLodexShell Shell;
		Shell.StartupModule(Host);
		EXPECT_EQ(Host.TakeCalls(),
			(FLines{"IsRunningCommandlet", "LoadModule LevelEditor", "CreateMenuExtender", "CreateMenuBarCommandList",
				"AddMenuBarExtension after Window: VELT Lode String Debugger (Open the Lode String Debugger menu) hook "
				"Veltrane, highlight Veltrane",
				"AddMenuExtenderToLevelEditor", "CreateListener MenuTool", "CreateListener TabTool",
				"CreateListener RecorderTool", "CreateListener ReplTool", "CreateListener DetailsTool",
				"StartListener MenuTool", "StartListener TabTool", "RegisterNomadTabSpawner TabTool in Menu Root",
				"AddMenuExtension Before LODEX", "StartListener RecorderTool",
				"RegisterNomadTabSpawner RecorderTool in Menu Root", "AddMenuExtension Before RECORDER_TOOL",
				"StartListener ReplTool", "RegisterNomadTabSpawner ReplTool in Menu Root",
				"AddMenuExtension Before REPL_TOOL", "StartListener DetailsTool",
				"RegisterNomadTabSpawner DetailsTool in Menu Root", "AddMenuExtension Before DETAILS_TOOL"}));
	}

	TEST(LodexShell, ShutdownLogsThenStopsTheListenersInOrderAndUnregistersTheSpawnersByTabName)
	{
		FRecordingShellHost Host;
		Host.Loaded = {"PropertyEditor", "Settings"};
		FLodexShell Shell;
		Shell.StartupModule(Host);
		Host.TakeCalls();
		Shell.ShutdownModule(Host, Host);
		EXPECT_EQ(Host.TakeCalls(),
			(FLines{ShutdownLogged, "IsModuleLoaded PropertyEditor", "LoadModule PropertyEditor",
				"IsModuleLoaded Settings", SettingsRemoved, "StopListener MenuTool", "StopListener TabTool",
				"UnregisterNomadTabSpawner TabTool", "StopListener RecorderTool",
				"UnregisterNomadTabSpawner RecorderTool", "StopListener ReplTool", "UnregisterNomadTabSpawner ReplTool",
				"StopListener DetailsTool", "UnregisterNomadTabSpawner DetailsTool"}));
		EXPECT_TRUE(Host.Spawners.GetSpawners().empty());
	}

	TEST(LodexShell, ShutdownFetchesPropertyEditorAndRemovesTheSettingsSectionOnlyWhenLoaded)
	{
		const std::string PropertyEditor = "IsModuleLoaded PropertyEditor";
		const std::string Settings = "IsModuleLoaded Settings";
		const std::pair<std::set<std::string>, FLines> Rows[] = {
			{{}, {ShutdownLogged, PropertyEditor, Settings}},
			{{"PropertyEditor"}, {ShutdownLogged, PropertyEditor, "LoadModule PropertyEditor", Settings}},
			{{"Settings"}, {ShutdownLogged, PropertyEditor, Settings, SettingsRemoved}},
		};
		for (const auto& [Loaded, Expected] : Rows)
		{
			// A shell that never started: no listeners to stop, so only the module steps show.
			FRecordingShellHost Host;
			Host.Loaded = Loaded;
			FLodexShell().ShutdownModule(Host, Host);
			EXPECT_EQ(Host.TakeCalls(), Expected);
		}
	}

	TEST(LodexShell, UnderACommandletAddsNoMenuNoListenerNoSpawnerAndShutdownStillLogs)
	{
		FRecordingShellHost Host;
		Host.bCommandlet = true;
		FLodexShell Shell;
		Shell.StartupModule(Host);
		EXPECT_EQ(Host.TakeCalls(), (FLines{"IsRunningCommandlet"}));
		EXPECT_TRUE(Shell.GetModuleListeners().empty());
		Shell.ShutdownModule(Host, Host);
		EXPECT_EQ(
			Host.TakeCalls(), (FLines{ShutdownLogged, "IsModuleLoaded PropertyEditor", "IsModuleLoaded Settings"}));
	}

	TEST(LodexPullDown, ShowsEachToolBeforeItsSeparatorWhateverTheStartOrder)
	{
		const FLines Expected{"heading Veltrane", "entry Lodestring Debugger -> TabTool", "separator LODEX",
			"entry Input Recorder -> RecorderTool", "separator RECORDER_TOOL", "entry Lodex REPL -> ReplTool",
			"separator REPL_TOOL", "entry Object Explorer -> DetailsTool", "separator DETAILS_TOOL"};
		std::vector<std::size_t> Order{0, 1, 2, 3};
		int Orders = 0;
		do
		{
			FRecordingShellHost Host;
			std::string Started;
			for (const std::size_t Index : Order)
			{
				StartLodexTabTool(Host, GetLodexTabs()[Index]);
				Started += std::string(GetLodexTabs()[Index].TabName) + " ";
			}
			EXPECT_EQ(DescribeItems(BuildLodexPullDownModel(Host.Extender, Host.Spawners)), Expected) << Started;
			++Orders;
		} while (std::next_permutation(Order.begin(), Order.end()));
		EXPECT_EQ(Orders, 24);
	}

	TEST(LodexMenuModelBuilder, AppliesExtensionsAtTheEngineHookPointsInTheOrderAdded)
	{
		struct FRow
		{
			const char* Hook;
			ELodexExtensionPosition Position;
			FLines Expected;
		};
		const std::string A = "entry Ay -> A";
		const std::string Head = "heading Veltrane";
		const std::string S1 = "separator LODEX", S2 = "separator RECORDER_TOOL", S3 = "separator REPL_TOOL",
						  S4 = "separator DETAILS_TOOL";
		const std::vector<FRow> Rows{
			{"Veltrane", ELodexExtensionPosition::Before, {A, Head, S1, S2, S3, S4}},
			{"Veltrane", ELodexExtensionPosition::First, {Head, A, S1, S2, S3, S4}},
			{"Veltrane", ELodexExtensionPosition::After, {Head, S1, S2, S3, S4, A}},
			{"LODEX", ELodexExtensionPosition::After, {Head, S1, A, S2, S3, S4}},
			{"DETAILS_TOOL", ELodexExtensionPosition::Before, {Head, S1, S2, S3, A, S4}},
			{"NoSuchHook", ELodexExtensionPosition::Before, {Head, S1, S2, S3, S4}},
		};
		FLodexTabSpawnerRegistry Spawners;
		Spawners.Register({"A", "Old", "", "Menu Root"});
		Spawners.Register({"A", "Ay", "", "Menu Root"}); // registered again under one name: replaced
		ASSERT_EQ(Spawners.GetSpawners().size(), 1u);
		for (const FRow& Row : Rows)
		{
			FLodexMenuExtender Extender;
			Extender.AddMenuExtension(Row.Hook, Row.Position, "A");
			EXPECT_EQ(DescribeItems(BuildLodexPullDownModel(Extender, Spawners)), Row.Expected)
				<< Row.Hook << " " << GetLodexExtensionPositionName(Row.Position);
		}

		// Several at one hook keep the order they were added in; a tab without a spawner adds nothing.
		Spawners.Register({"B", "Bee", "", "Menu Root"});
		FLodexMenuExtender Extender;
		for (const char* Tab : {"B", "Gone", "A"})
		{
			Extender.AddMenuExtension("LODEX", ELodexExtensionPosition::Before, Tab);
		}
		EXPECT_EQ(DescribeItems(BuildLodexPullDownModel(Extender, Spawners)),
			(FLines{Head, "entry Bee -> B", A, S1, S2, S3, S4}));
	}

	TEST(LodexTabs, AreTheFourToolsWithTheEditorTextsAsTheyStand)
	{
		FLines Rows;
		for (const FLodexTabInfo& Tab : GetLodexTabs())
		{
			Rows.push_back(std::string(Tab.TabName) + " | " + Tab.DisplayName + " | " + Tab.ToolTip + " | " +
				Tab.MenuHook + " | " + Tab.PanelName);
			EXPECT_EQ(GetLodexListener(Tab.Listener).Tab, &Tab) << Tab.TabName;
			EXPECT_EQ(FindLodexTab(Tab.TabName), &Tab);
		}
		EXPECT_EQ(Rows,
			(FLines{"TabTool | Lodestring Debugger | Lodestring Debugger Window | LODEX | TabToolPanel",
				"RecorderTool | Input Recorder | Record User Input | RECORDER_TOOL | RecorderToolPanel",
				"ReplTool | Lodex REPL | Quickly test your Lodestring queries in a REPL (Read, Examine, Print, Loop) | "
				"REPL_TOOL | ReplToolPanel",
				"DetailsTool | Object Explorer | Explore the values, componenets, and available methods in selected "
				"objects | DETAILS_TOOL | DetailsToolPanel"}));
		EXPECT_EQ(FindLodexTab("MenuTool"), nullptr);
		EXPECT_EQ(FindLodexTab("tabtool"), nullptr);
	}

	TEST(LodexExamplePanel, HoldsItsFixedTree)
	{
		const FLodexExamplePanelInfo& Panel = GetLodexExamplePanel();
		const FLodexStyleColor& Grey = Panel.BorderColor;
		EXPECT_EQ((std::vector<float>{Panel.ScrollSlotPadding, Grey.R, Grey.G, Grey.B, Grey.A, Panel.BorderPadding}),
			(std::vector<float>{5.0f, 192.0f, 192.0f, 192.0f, 255.0f, 15.0f}));
		EXPECT_EQ(Grey.Kind, ELodexColorKind::Color8);
		EXPECT_STREQ(Panel.Text, "This is a tab example.");
	}

	TEST(LodexDemo, ShowsThePullDownTheTabsAndTheContextMenusThenUnloads)
	{
		std::ostringstream Out;
		std::ostringstream Err;
		ASSERT_EQ(RunLodexCli({"demo"}, Out, Err), 0) << Err.str();
		const std::string Text = Out.str();
		const FLines InOrder{"│   └── \"VELT Lode String Debugger\", after \"Window\" (tooltip \"Open the Lode String "
							 "Debugger menu\")\n",
			"│       └── section \"Veltrane\"\n",
			"│           ├── \"Lodestring Debugger\" opens the tab TabTool (tooltip \"Lodestring Debugger Window\")\n",
			"│           ├── ──── separator LODEX\n", "│           ├── ──── separator DETAILS_TOOL\n",
			"│           └── \"Export Scene Snapshot\" runs the console command Lodex.ExportSnapshot (tooltip "
			"\"Write the level, with the reflection of its classes, as a scene snapshot for the lodex tool\")\n",
			"├── Tabs (nomad tab spawners)\n", "│   ├── TabTool: \"Lodestring Debugger\"\n",
			"│   └── DetailsTool: \"Object Explorer\"\n", "└── Context menus\n",
			"    ├── Scene outliner actor menu (before the hook \"LevelEditor.SceneOutlinerContextMenu\")\n",
			"    ├── Level viewport actor menu (before the hook \"ActorType\")\n",
			"    ├── Components tree menu of the object explorer (extends the tool menu "
			"\"Kismet.SubobjectEditorContextMenu\")\n",
			"    └── Lists of the object explorer (built by the list's context-menu handler)\n",
			"LogTemp: Warning: ShutdownModule() called\n", "Tab spawners left: 0\n", "Console commands left: 0\n"};
		std::size_t From = 0;
		for (const std::string& Expected : InOrder)
		{
			const std::size_t At = Text.find(Expected, From);
			ASSERT_NE(At, std::string::npos) << "missing, or out of order: " << Expected << "\n" << Text;
			From = At + Expected.size();
		}
	}
}
