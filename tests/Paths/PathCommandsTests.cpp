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

	TEST(CommandSets, LocalisationKeysFollowTheEngineAndCommandsAreFoundByExactIdOrMode)
	{
		const FLodexCommandSetInfo& Set = GetMenuToolCommandSet();
		const FLodexCommandInfo* Absolute = FindCommandById(Set, "MenuCommand2");
		ASSERT_NE(Absolute, nullptr);
		EXPECT_STREQ(Absolute->Label, "Lodestring Absolute");
		EXPECT_EQ(FindCommandById(Set, "menuCommand2"), nullptr);
		EXPECT_EQ(FindCommandById(GetDetailToolCommandSet(), "MenuCommand2"), nullptr);
		EXPECT_EQ(FindCommandForMode(Set, "Absolute"), Absolute);
		EXPECT_EQ(FindCommandForMode(Set, "absolute"), nullptr);

		const FLodexCommandKeys Keys = MakeCommandKeys(Set.ContextName, *Absolute);
		EXPECT_EQ((std::vector<std::string>{Keys.Namespace, Keys.LabelKey, Keys.TooltipKey, Keys.DotName}),
			(std::vector<std::string>{"MenuTool", "MenuCommand2", "MenuCommand2_ToolTip", ".MenuCommand2"}));
		const FLodexCommandKeys Module = MakeCommandKeys(LodexModuleLocNamespace, GetModuleTestCommand());
		EXPECT_EQ((std::vector<std::string>{Module.Namespace, Module.LabelKey, Module.TooltipKey, Module.DotName}),
			(std::vector<std::string>{"FLodexDebugger", "TestCommand", "TestCommand_ToolTip", ".TestCommand"}));
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
		void RemoveViewportContextMenuExtender(const FLodexMenuInfo& Menu) override
		{
			Calls.push_back(std::string("RemoveViewportContextMenuExtender ") + Menu.ExtensionHook);
		}
		void UnregisterCommandSet(const FLodexCommandSetInfo& Set) override
		{
			Calls.push_back(std::string("UnregisterCommandSet ") + Set.ContextName);
		}
		std::vector<std::string> Calls;
	};

	TEST(MenuToolStartup, RegistersInOrderAndShutdownTakesBackWhatTheLevelEditorHolds)
	{
		FRecordingMenuToolHost Host;
		StartMenuTool(Host);
		StopMenuTool(Host);
		EXPECT_EQ(Host.Calls,
			(std::vector<std::string>{
				"CreateCommandList",
				"RegisterCommandSet MenuTool",
				"MapPrintAction MenuCommand1 Relative",
				"MapPrintAction MenuCommand2 Absolute",
				"AddModuleMenuExtension LevelEditor.SceneOutlinerContextMenu",
				"AddViewportContextMenuExtender ActorType",
				"RemoveViewportContextMenuExtender ActorType",
				"UnregisterCommandSet MenuTool",
			}));
	}
}
