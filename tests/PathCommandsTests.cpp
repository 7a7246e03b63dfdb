// Copyright Lodex contributors.
#include "TestGraph.h"

#include "LodexDebugger/Core/PathCommands.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
	class FFakeSelection final : public ILodexActorSelection
	{
	public:
		std::size_t Num() const override { return Objects.size(); }
		FLodexObject GetSelectedObject(std::size_t Index) const override { return Objects[Index]; }
		std::vector<FLodexObject> Objects;
	};

	struct FSelectionScene
	{
		FTestGraph Graph;
		FTestGraph::FNode& Parent = Graph.Actor("Parent");
		FTestGraph::FNode& A = Graph.Actor("A", &Parent);
		FTestGraph::FNode& B = Graph.Actor("B");
		FFakeSelection Selection;
		FRecordingOutput Output;

		void Run(std::vector<FLodexObject> Selected, const std::string& Mode)
		{
			Selection.Objects = std::move(Selected);
			PrintSelectedActorLodestrings(Graph, Selection, Output, Mode);
		}
	};

	TEST(PrintSelectedActorLodestrings, EveryActorLogsAndEachCopyOverwritesTheLast)
	{
		FSelectionScene Scene;
		Scene.Run({FTestGraph::Handle(Scene.B), FTestGraph::Handle(Scene.A)}, "Absolute");
		EXPECT_EQ(Scene.Output.Messages(),
			(std::vector<std::string>{
				"Lodestring : /*[@name = 'B'] ", "Lodestring : /*[@name = 'Parent']/*[@name = 'A'] "}));
		EXPECT_EQ(
			Scene.Output.Copies, (std::vector<std::string>{"/*[@name = 'B']", "/*[@name = 'Parent']/*[@name = 'A']"}));
		for (const FRecordingOutput::FLine& Line : Scene.Output.Lines)
		{
			EXPECT_EQ(Line.Verbosity, ELodexLogVerbosity::Log);
		}
	}

	TEST(PrintSelectedActorLodestrings, RelativeLogsOnlyTheActorsOwnStepAndNullEntriesAreSkipped)
	{
		FSelectionScene Scene;
		Scene.Run({FLodexObject(), FTestGraph::Handle(Scene.A), FLodexObject()}, "Relative");
		EXPECT_EQ(Scene.Output.Messages(), std::vector<std::string>{"Lodestring : //A "});
		EXPECT_EQ(Scene.Output.Copies, std::vector<std::string>{"//A"});
	}

	TEST(PrintSelectedActorLodestrings, NothingSelectedOrOnlyNullDoesNothing)
	{
		for (const std::vector<FLodexObject>& Selected :
			{std::vector<FLodexObject>{}, std::vector<FLodexObject>{FLodexObject()}})
		{
			FSelectionScene Scene;
			Scene.Run(Selected, "Absolute");
			EXPECT_TRUE(Scene.Output.Lines.empty());
			EXPECT_TRUE(Scene.Output.Copies.empty());
		}
	}

	TEST(PrintSelectedActorLodestrings, EmptyLodestringStillLogsAndCopies)
	{
		FSelectionScene Scene;
		Scene.Run({FTestGraph::Handle(Scene.A)}, "Tag ");
		EXPECT_EQ(Scene.Output.Messages(), std::vector<std::string>{"Lodestring :  "});
		EXPECT_EQ(Scene.Output.Copies, std::vector<std::string>{""});
	}

	TEST(LodexLogLine, RenderedAsTheEngineLogShowsIt)
	{
		EXPECT_EQ(FormatLodexLogLine(ELodexLogVerbosity::Log, "Lodestring : //A "), "LogTemp: Lodestring : //A ");
		EXPECT_EQ(FormatLodexLogLine(ELodexLogVerbosity::Warning, "ShutdownModule() called"),
			"LogTemp: Warning: ShutdownModule() called");
	}

	struct FCommandRow
	{
		const char* ContextName;
		const char* CommandId;
		const char* Label;
		const char* Tooltip;
		const char* Mode;
	};

	TEST(CommandSets, TablesAsTheEditorRegistersThem)
	{
		const FCommandRow Expected[] = {
			{"MenuTool", "MenuCommand1", "Lodestring Relative", "Print the Lodestring to the console", "Relative"},
			{"MenuTool", "MenuCommand2", "Lodestring Absolute", "Print the Lodestring to the console", "Absolute"},
			{"DetailToolA", "DetailCommand1", "Lodestring Relative", "Print the Lodestring to the console", "Relative"},
			{"DetailToolA", "DetailCommand2", "Lodestring Absolute", "Print the Lodestring to the console", "Absolute"},
		};
		std::vector<FCommandRow> Actual;
		for (const FLodexCommandSetInfo* Set : {&GetMenuToolCommandSet(), &GetDetailToolCommandSet()})
		{
			EXPECT_STREQ(Set->ContextDescription, "Veltrane right click menu");
			for (const FLodexCommandInfo& Command : Set->Commands)
			{
				Actual.push_back({Set->ContextName, Command.CommandId, Command.Label, Command.Tooltip, Command.Mode});
			}
		}
		ASSERT_EQ(Actual.size(), std::size(Expected));
		for (std::size_t Index = 0; Index < Actual.size(); ++Index)
		{
			EXPECT_STREQ(Actual[Index].ContextName, Expected[Index].ContextName) << Index;
			EXPECT_STREQ(Actual[Index].CommandId, Expected[Index].CommandId) << Index;
			EXPECT_STREQ(Actual[Index].Label, Expected[Index].Label) << Index;
			EXPECT_STREQ(Actual[Index].Tooltip, Expected[Index].Tooltip) << Index;
			EXPECT_STREQ(Actual[Index].Mode, Expected[Index].Mode) << Index;
		}
	}

	TEST(CommandSets, LocalisationKeysFollowTheCommandConvention)
	{
		const FLodexCommandKeys Menu = MakeCommandKeys("MenuTool", GetMenuToolCommandSet().Commands[0]);
		EXPECT_EQ(Menu.Namespace, "MenuTool");
		EXPECT_EQ(Menu.LabelKey, "MenuCommand1");
		EXPECT_EQ(Menu.TooltipKey, "MenuCommand1_ToolTip");
		EXPECT_EQ(Menu.DotName, ".MenuCommand1");
		const FLodexCommandKeys Detail = MakeCommandKeys("DetailToolA", GetDetailToolCommandSet().Commands[1]);
		EXPECT_EQ(Detail.TooltipKey, "DetailCommand2_ToolTip");

		const FLodexCommandInfo& ModuleCommand = GetModuleTestCommand();
		const FLodexCommandKeys TestKeys = MakeCommandKeys(LodexModuleLocNamespace, ModuleCommand);
		EXPECT_EQ(TestKeys.Namespace, "FLodexDebugger");
		EXPECT_STREQ(ModuleCommand.Label, "TestCommand");
		EXPECT_STREQ(ModuleCommand.Tooltip, "This is test command");
	}

	TEST(CommandSets, FindCommandForModeIsExact)
	{
		const FLodexCommandSetInfo& Set = GetMenuToolCommandSet();
		ASSERT_NE(FindCommandForMode(Set, "Absolute"), nullptr);
		EXPECT_STREQ(FindCommandForMode(Set, "Absolute")->CommandId, "MenuCommand2");
		EXPECT_STREQ(FindCommandForMode(Set, "Relative")->CommandId, "MenuCommand1");
		EXPECT_EQ(FindCommandForMode(Set, "absolute"), nullptr);
		EXPECT_EQ(FindCommandForMode(Set, "Tag"), nullptr);
	}

	TEST(ContextMenus, SectionAndSubMenuOfEachKind)
	{
		const std::vector<FLodexMenuInfo>& Menus = GetLodexContextMenus();
		ASSERT_EQ(Menus.size(), 4u);

		const FLodexMenuInfo& Outliner = Menus[0];
		EXPECT_EQ(Outliner.Kind, ELodexMenuKind::SceneOutlinerActor);
		EXPECT_STREQ(Outliner.ExtensionHook, "LevelEditor.SceneOutlinerContextMenu");
		const FLodexMenuInfo& Viewport = Menus[1];
		EXPECT_EQ(Viewport.Kind, ELodexMenuKind::LevelViewportActor);
		EXPECT_STREQ(Viewport.ExtensionHook, "ActorType");
		for (const FLodexMenuInfo* Menu : {&Outliner, &Viewport})
		{
			EXPECT_STREQ(Menu->SectionName, "Veltrane");
			EXPECT_STREQ(Menu->SectionHeading, "VelTrane");
			EXPECT_STREQ(Menu->SubMenuLabel, "Lodestring");
			EXPECT_STREQ(Menu->SubMenuTooltip, "Print the Lodestring reference for use in Veltrane tests.");
			EXPECT_STREQ(Menu->CommandSet, "MenuTool");
			EXPECT_FALSE(Menu->bLocalized);
			ASSERT_EQ(Menu->Entries.size(), 2u);
			EXPECT_STREQ(Menu->Entries[0].CommandId, "MenuCommand1");
			EXPECT_STREQ(Menu->Entries[1].CommandId, "MenuCommand2");
		}

		const FLodexMenuInfo& Tree = Menus[2];
		EXPECT_EQ(Tree.Kind, ELodexMenuKind::ComponentsTree);
		EXPECT_STREQ(Tree.AddedThrough, "Kismet.SCSEditorContextMenu");
		EXPECT_STREQ(Tree.SectionName, "VelTrane");
		EXPECT_STREQ(Tree.SectionHeading, "VelTrane");
		EXPECT_STREQ(Tree.SubMenuName, "Veltrane");
		EXPECT_STREQ(Tree.SubMenuLabel, "Lodestring");
		EXPECT_STREQ(Tree.SubMenuTooltip, "Get the Lodestring for the selected component");
		EXPECT_STREQ(Tree.InnerSectionName, "VelTrane");
		EXPECT_TRUE(Tree.bLocalized);

		const FLodexMenuInfo& Lists = Menus[3];
		EXPECT_EQ(Lists.Kind, ELodexMenuKind::ExplorerList);
		EXPECT_STREQ(Lists.SectionName, "Veltrane");
		EXPECT_STREQ(Lists.SectionHeading, "VelTrane");
		EXPECT_STREQ(Lists.SubMenuTooltip, "Print the Lodestring reference");
		EXPECT_STREQ(Lists.CommandSet, "DetailToolA");
		ASSERT_EQ(Lists.Entries.size(), 2u);
		EXPECT_STREQ(Lists.Entries[0].CommandId, "DetailCommand1");
		EXPECT_STREQ(Lists.Entries[1].CommandId, "DetailCommand2");
	}

	TEST(ContextMenus, ComponentsTreeEntriesArePlainEntriesWithTheirOwnTexts)
	{
		struct FRow
		{
			const char* Name;
			const char* Label;
			const char* Tooltip;
			const char* LabelKey;
			const char* TooltipKey;
			const char* Mode;
		};
		const FRow Expected[] = {
			{"Lodestring Relative", "Lodestring Relative", "Get the Lodestring Relative", "Lodestring_Relative",
				"Lodestring_Relative_Tooltip", "Relative"},
			{"Lodestring Absolute", "Lodestring Absolute", "Get the Lodestring Absolute", "Lodestring_Absolute",
				"Lodestring_Absolute_Tooltip", "Absolute"},
		};
		const FLodexMenuInfo& Tree = GetLodexContextMenu(ELodexMenuKind::ComponentsTree);
		ASSERT_EQ(Tree.Entries.size(), 2u);
		for (std::size_t Index = 0; Index < 2; ++Index)
		{
			const FLodexMenuEntryInfo& Entry = Tree.Entries[Index];
			EXPECT_EQ(Entry.CommandId, nullptr);
			EXPECT_STREQ(Entry.Name, Expected[Index].Name);
			EXPECT_STREQ(Entry.Label, Expected[Index].Label);
			EXPECT_STREQ(Entry.Tooltip, Expected[Index].Tooltip);
			EXPECT_STREQ(Entry.LabelLocKey, Expected[Index].LabelKey);
			EXPECT_STREQ(Entry.TooltipLocKey, Expected[Index].TooltipKey);
			EXPECT_STREQ(Entry.Mode, Expected[Index].Mode);
		}
		EXPECT_STREQ(ComponentsTreeLocNamespace, "DetailToolA");
	}

	class FRecordingMenuToolHost final : public IMenuToolHost
	{
	public:
		void CreateCommandList() override { Calls.push_back("CreateCommandList"); }
		void RegisterCommandSet(const FLodexCommandSetInfo& Set) override
		{
			Calls.push_back(std::string("RegisterCommandSet ") + Set.ContextName);
		}
		void MapPrintAction(const FLodexCommandInfo& Command, const std::string& Mode) override
		{
			Calls.push_back(std::string("MapPrintAction ") + Command.CommandId + " " + Mode);
		}
		void AddModuleMenuExtension(const FLodexMenuInfo& Menu) override
		{
			Calls.push_back(std::string("AddModuleMenuExtension ") + Menu.ExtensionHook);
		}
		void AddViewportContextMenuExtender(const FLodexMenuInfo& Menu) override
		{
			Calls.push_back(std::string("AddViewportContextMenuExtender ") + Menu.ExtensionHook);
		}
		std::vector<std::string> Calls;
	};

	TEST(MenuToolStartup, RegistersInOrder)
	{
		FRecordingMenuToolHost Host;
		StartMenuTool(Host);
		EXPECT_EQ(Host.Calls,
			(std::vector<std::string>{
				"CreateCommandList",
				"RegisterCommandSet MenuTool",
				"MapPrintAction MenuCommand1 Relative",
				"MapPrintAction MenuCommand2 Absolute",
				"AddModuleMenuExtension LevelEditor.SceneOutlinerContextMenu",
				"AddViewportContextMenuExtender ActorType",
			}));
	}
}
