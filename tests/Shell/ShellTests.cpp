// Copyright Lodex contributors.
#include "LodexDebugger/Core/Shell/LodexMenuModel.h"
#include "LodexDebugger/Core/Shell/LodexShell.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace
{
	using FLines = std::vector<std::string>;

	using FCallLog = std::vector<std::string>;

	/** A tab tool recording its calls in the shared list. */
	class FRecordingTabTool final : public ILodexTabTool
	{
	public:
		FRecordingTabTool(FCallLog& InCalls, FLodexTabSpawnerRegistry& InSpawners, FLodexTabFields InFields)
			: Calls(InCalls)
			, Spawners(InSpawners)
			, Fields(std::move(InFields))
		{
		}

		void Initialize() override { Calls.push_back("Initialize " + Fields.TabName); }
		void RegisterNomadTabSpawner(const char* Group) override
		{
			Calls.push_back("RegisterNomadTabSpawner " + Fields.TabName + " in " + Group);
			Spawners.Register({Fields.TabName, Fields.TabDisplayName, Fields.ToolTipText, Group});
		}
		void UnregisterNomadTabSpawner() override
		{
			Calls.push_back("UnregisterNomadTabSpawner " + Fields.TabName);
			EXPECT_TRUE(Spawners.Unregister(Fields.TabName)) << "no spawner under " << Fields.TabName;
		}
		void AddMenuExtension(const char* Hook, ELodexExtensionPosition Position) override
		{
			Calls.push_back(std::string("AddMenuExtension ") + GetLodexExtensionPositionName(Position) + " " + Hook);
		}

	private:
		FCallLog& Calls;
		FLodexTabSpawnerRegistry& Spawners;
		FLodexTabFields Fields;
	};

	/**
	 * The editor as the shell sees it, recording every call in one list, log lines included, so that the order
	 * of start-up and shut-down is checked as a whole. Tab tools run for real on it.
	 */
	class FRecordingShellHost final
		: public ILodexShellHost
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
		void LoadModule(const char* Name) override
		{
			Note(std::string("LoadModule ") + Name);
			Loaded.insert(Name);
		}
		void CreateMenuExtender() override { Note("CreateMenuExtender"); }
		void CreateMenuBarCommandList() override { Note("CreateMenuBarCommandList"); }
		void AddMenuBarExtension(const FLodexPullDownInfo& P) override
		{
			Note(std::string("AddMenuBarExtension after ") + P.AfterHook + ": " + P.Label + " (" + P.ToolTip +
				") hook " + P.ExtensionHook + ", highlight " + P.TutorialHighlightName);
		}
		void AddMenuExtenderToLevelEditor() override { Note("AddMenuExtenderToLevelEditor"); }
		void RemoveMenuExtenderFromLevelEditor() override { Note("RemoveMenuExtenderFromLevelEditor"); }
		void ReleaseMenuExtender() override { Note("ReleaseMenuExtender"); }
		void AddModuleListeners() override
		{
			Note("AddModuleListeners");
			if (bModuleAddsListeners)
			{
				Shell.AddModuleListeners(*this);
			}
		}
		void CreateListener(const FLodexListenerInfo& L) override
		{
			Note(std::string("CreateListener ") + L.Name);
			if (L.Tab != nullptr)
			{
				Tools[L.Name] = std::make_unique<FRecordingTabTool>(
					Calls, Spawners, FLodexTabFields{L.Tab->TabName, L.Tab->DisplayName, L.Tab->ToolTip});
			}
		}
		void StartListener(const FLodexListenerInfo& L) override
		{
			Note(std::string("StartListener ") + L.Name);
			L.Tab != nullptr ? StartLodexTabTool(*Tools.at(L.Name), *L.Tab) : void();
		}
		void StopListener(const FLodexListenerInfo& L) override
		{
			Note(std::string("StopListener ") + L.Name);
			L.Tab != nullptr ? StopLodexTabTool(*Tools.at(L.Name)) : void();
		}
		void DestroyListeners() override
		{
			Note("DestroyListeners");
			Tools.clear();
		}
		void UnregisterSettings(const FLodexSettingsSectionInfo& S) override
		{
			Note(std::string("UnregisterSettings ") + S.Container + "/" + S.Category + "/" + S.Section);
		}
		void Log(ELodexLogVerbosity Verbosity, const std::string& Message) override
		{
			Note("Log " + FormatLodexLogLine(Verbosity, Message));
		}
		void CopyToClipboard(const std::string& Text) override { ADD_FAILURE() << "copied to the clipboard: " << Text; }

		FLines TakeCalls() { return std::exchange(Calls, {}); }

		bool bCommandlet = false;
		bool bModuleAddsListeners = true;
		/** The module's shell, which the module's AddModuleListeners calls back into, as the module holds its own. */
		FLodexShell Shell;
		std::set<std::string> Loaded;
		FLodexTabSpawnerRegistry Spawners;
		std::map<std::string, std::unique_ptr<FRecordingTabTool>> Tools;
		mutable FCallLog Calls;
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

	TEST(LodexShell, StartupRunsEveryStepThroughTheModulesAddModuleListenersAndShutdownTakesItAllBackInOrder)
	{
		FRecordingShellHost Host;
		Host.Shell.StartupModule(Host);
		EXPECT_EQ(Host.TakeCalls(),
			(FLines{"IsRunningCommandlet", "LoadModule LevelEditor", "CreateMenuExtender", "CreateMenuBarCommandList",
				"AddMenuBarExtension after Window: VELT Lode String Debugger (Open the Lode String Debugger menu) hook "
				"Veltrane, highlight Veltrane",
				"AddMenuExtenderToLevelEditor", "AddModuleListeners", "CreateListener MenuTool",
				"CreateListener TabTool", "CreateListener RecorderTool", "CreateListener ReplTool",
				"CreateListener DetailsTool", "StartListener MenuTool", "StartListener TabTool", "Initialize TabTool",
				"RegisterNomadTabSpawner TabTool in Menu Root", "AddMenuExtension Before LODEX",
				"StartListener RecorderTool", "Initialize RecorderTool",
				"RegisterNomadTabSpawner RecorderTool in Menu Root", "AddMenuExtension Before RECORDER_TOOL",
				"StartListener ReplTool", "Initialize ReplTool", "RegisterNomadTabSpawner ReplTool in Menu Root",
				"AddMenuExtension Before REPL_TOOL", "StartListener DetailsTool", "Initialize DetailsTool",
				"RegisterNomadTabSpawner DetailsTool in Menu Root", "AddMenuExtension Before DETAILS_TOOL"}));

		// Shut down: the listeners stopped in order, then everything the editor holds taken back.
		Host.Loaded.insert({"PropertyEditor", "Settings"});
		Host.Shell.ShutdownModule(Host, Host);
		EXPECT_EQ(Host.TakeCalls(),
			(FLines{ShutdownLogged, "IsModuleLoaded PropertyEditor", "LoadModule PropertyEditor",
				"IsModuleLoaded Settings", SettingsRemoved, "StopListener MenuTool", "StopListener TabTool",
				"UnregisterNomadTabSpawner TabTool", "StopListener RecorderTool",
				"UnregisterNomadTabSpawner RecorderTool", "StopListener ReplTool", "UnregisterNomadTabSpawner ReplTool",
				"StopListener DetailsTool", "UnregisterNomadTabSpawner DetailsTool", "IsModuleLoaded LevelEditor",
				"RemoveMenuExtenderFromLevelEditor", "ReleaseMenuExtender", "DestroyListeners"}));
		EXPECT_TRUE(Host.Spawners.GetSpawners().empty());
		EXPECT_TRUE(Host.Tools.empty());
		EXPECT_TRUE(Host.Shell.GetModuleListeners().empty());

		// Loaded again (a live reload): the five listeners once, not ten; a level editor unloaded first keeps
		// nothing of the module, so only the module's own references are let go.
		Host.Shell.StartupModule(Host);
		EXPECT_EQ(Host.Shell.GetModuleListeners().size(), 5u);
		EXPECT_EQ(Host.Spawners.GetSpawners().size(), 4u);
		Host.Loaded.erase("LevelEditor");
		Host.TakeCalls();
		Host.Shell.ShutdownModule(Host, Host);
		const FLines Calls = Host.TakeCalls();
		EXPECT_EQ(FLines(Calls.end() - 3, Calls.end()),
			(FLines{"IsModuleLoaded LevelEditor", "ReleaseMenuExtender", "DestroyListeners"}));

		// A module whose AddModuleListeners adds nothing has nothing started.
		FRecordingShellHost Bare;
		Bare.bModuleAddsListeners = false;
		Bare.Shell.StartupModule(Bare);
		EXPECT_EQ(Bare.TakeCalls().back(), "AddModuleListeners");
		EXPECT_TRUE(Bare.Shell.GetModuleListeners().empty());
	}

	TEST(LodexShell, UnderACommandletAddsNothingAndShutdownRemovesTheSettingsSectionOnlyWhenLoaded)
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
			// Under a commandlet no menu, listener or spawner is added, so only the module steps show.
			FRecordingShellHost Host;
			Host.bCommandlet = true;
			Host.Loaded = Loaded;
			Host.Shell.StartupModule(Host);
			EXPECT_EQ(Host.TakeCalls(), (FLines{"IsRunningCommandlet"}));
			EXPECT_TRUE(Host.Shell.GetModuleListeners().empty());
			Host.Shell.ShutdownModule(Host, Host);
			EXPECT_EQ(Host.TakeCalls(), Expected);
		}
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

	TEST(LodexTabs, AreFoundByTheirExactNameCaseIncluded)
	{
		for (const FLodexTabInfo& Tab : GetLodexTabs())
		{
			EXPECT_EQ(FindLodexTab(Tab.TabName), &Tab) << Tab.TabName;
		}
		// Near misses: another case, a prefix, a longer name, blanks, the listener without a tab, a panel's name.
		for (const char* Name : {"tabtool", "TABTOOL", "Tabtool", "recorderTool", "TabToo", "TabTool ", " TabTool",
				 "TabToolPanel", "ReplTools", "", "MenuTool", "Lodestring Debugger"})
		{
			EXPECT_EQ(FindLodexTab(Name), nullptr) << '"' << Name << '"';
		}
	}
}
