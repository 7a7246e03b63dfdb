// Copyright Lodex contributors.
#include "TestGraph.h"

#include "LodexDebugger/Core/Paths/PathCommands.h"

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

	std::string JoinFields(std::initializer_list<std::string> Fields)
	{
		std::string Line;
		for (const std::string& Field : Fields)
		{
			Line += (Line.empty() ? "" : "|") + Field;
		}
		return Line;
	}

	TEST(CommandSets, TablesAsTheEditorRegistersThem)
	{
		std::vector<std::string> Rows;
		for (const FLodexCommandSetInfo* Set : {&GetMenuToolCommandSet(), &GetDetailToolCommandSet()})
		{
			for (const FLodexCommandInfo& Command : Set->Commands)
			{
				const FLodexCommandKeys Keys = MakeCommandKeys(Set->ContextName, Command);
				Rows.push_back(JoinFields({Set->ContextName, Set->ContextDescription, Command.CommandId, Command.Label,
					Command.Tooltip, Command.Mode, Keys.Namespace, Keys.LabelKey, Keys.TooltipKey, Keys.DotName}));
			}
		}
		const FLodexCommandInfo& Module = GetModuleTestCommand();
		const FLodexCommandKeys ModuleKeys = MakeCommandKeys(LodexModuleLocNamespace, Module);
		Rows.push_back(JoinFields({Module.CommandId, Module.Label, Module.Tooltip, ModuleKeys.Namespace}));
		const char* const Print = "Veltrane right click menu|";
		EXPECT_EQ(Rows,
			(std::vector<std::string>{
				std::string("MenuTool|") + Print +
					"MenuCommand1|Lodestring Relative|Print the Lodestring to the "
					"console|Relative|MenuTool|MenuCommand1|MenuCommand1_ToolTip|.MenuCommand1",
				std::string("MenuTool|") + Print +
					"MenuCommand2|Lodestring Absolute|Print the Lodestring to the "
					"console|Absolute|MenuTool|MenuCommand2|MenuCommand2_ToolTip|.MenuCommand2",
				std::string("DetailToolA|") + Print +
					"DetailCommand1|Lodestring Relative|Print the Lodestring to "
					"the console|Relative|DetailToolA|DetailCommand1|DetailCommand1_ToolTip|.DetailCommand1",
				std::string("DetailToolA|") + Print +
					"DetailCommand2|Lodestring Absolute|Print the Lodestring to "
					"the console|Absolute|DetailToolA|DetailCommand2|DetailCommand2_ToolTip|.DetailCommand2",
				"TestCommand|TestCommand|This is test command|FLodexDebugger",
			}));
		EXPECT_STREQ(FindCommandForMode(GetMenuToolCommandSet(), "Absolute")->CommandId, "MenuCommand2");
		EXPECT_EQ(FindCommandForMode(GetMenuToolCommandSet(), "absolute"), nullptr);
	}

	TEST(ContextMenus, SectionSubMenuAndEntriesOfEachKind)
	{
		std::vector<std::string> Rows;
		for (const FLodexMenuInfo& Menu : GetLodexContextMenus())
		{
			Rows.push_back(JoinFields({Menu.AddedThrough, Menu.ExtensionHook, Menu.SectionName, Menu.SectionHeading,
				Menu.SubMenuName, Menu.SubMenuLabel, Menu.SubMenuTooltip, Menu.CommandSet, Menu.InnerSectionName,
				Menu.bLocalized ? "localised" : "plain"}));
			for (const FLodexMenuEntryInfo& Entry : Menu.Entries)
			{
				Rows.push_back(JoinFields({"  ", Entry.Name, Entry.CommandId ? Entry.CommandId : "-", Entry.Label,
					Entry.Tooltip, Entry.LabelLocKey, Entry.TooltipLocKey, Entry.Mode}));
			}
		}
		const std::string Outliner = "Print the Lodestring reference for use in Veltrane tests.|MenuTool||plain";
		const std::string MenuEntry = "Print the Lodestring to the console|||";
		EXPECT_EQ(Rows,
			(std::vector<std::string>{
				"the module's menu extender|LevelEditor.SceneOutlinerContextMenu|Veltrane|VelTrane||Lodestring|" +
					Outliner,
				"  |MenuCommand1|MenuCommand1|Lodestring Relative|" + MenuEntry + "Relative",
				"  |MenuCommand2|MenuCommand2|Lodestring Absolute|" + MenuEntry + "Absolute",
				"the level editor's viewport context-menu extenders|ActorType|Veltrane|VelTrane||Lodestring|" +
					Outliner,
				"  |MenuCommand1|MenuCommand1|Lodestring Relative|" + MenuEntry + "Relative",
				"  |MenuCommand2|MenuCommand2|Lodestring Absolute|" + MenuEntry + "Absolute",
				"Kismet.SubobjectEditorContextMenu||VelTrane|VelTrane|Veltrane|Lodestring|Get the Lodestring for the "
				"selected "
				"component|DetailToolA|VelTrane|localised",
				"  |Lodestring Relative|-|Lodestring Relative|Get the Lodestring Relative|Lodestring_Relative|"
				"Lodestring_Relative_Tooltip|Relative",
				"  |Lodestring Absolute|-|Lodestring Absolute|Get the Lodestring Absolute|Lodestring_Absolute|"
				"Lodestring_Absolute_Tooltip|Absolute",
				"the list's context-menu handler||Veltrane|VelTrane||Lodestring|Print the Lodestring "
				"reference|DetailToolA||plain",
				"  |DetailCommand1|DetailCommand1|Lodestring Relative|" + MenuEntry + "Relative",
				"  |DetailCommand2|DetailCommand2|Lodestring Absolute|" + MenuEntry + "Absolute",
			}));
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
