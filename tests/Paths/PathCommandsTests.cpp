// Copyright Lodex contributors.
#include "TestGraph.h"
#include "TestReflection.h"

#include "LodexDebugger/Core/Paths/PathCommands.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
	TEST(PrintSelectedActorLodestrings, EveryActorLogsAndCopiesItsLodestringNullEntriesAreSkipped)
	{
		struct FRow
		{
			std::vector<int> Selected;
			const char* Mode;
			std::vector<std::string> Copies;
		};
		// The selected actors by index: 0 for null, 1 for A (attached to Parent), 2 for B.
		const FRow Rows[] = {
			{{2, 1}, "Absolute", {"/*[@name = 'B']", "/*[@name = 'Parent']/*[@name = 'A']"}},
			{{0, 1, 0}, "Relative", {"//A"}},
			{{}, "Absolute", {}},
			{{0}, "Absolute", {}},
			// An empty Lodestring is still logged and copied.
			{{1}, "Tag ", {""}},
		};
		for (const FRow& Row : Rows)
		{
			FTestGraph Graph;
			FTestGraph::FNode& Parent = Graph.Actor("Parent");
			const FTestGraph::FNode* const Nodes[] = {nullptr, &Graph.Actor("A", &Parent), &Graph.Actor("B")};
			FTestSelection Selection;
			for (const int Index : Row.Selected)
			{
				Selection.Objects.push_back(FLodexObject(Nodes[Index]));
			}
			FRecordingOutput Output;
			PrintSelectedActorLodestrings(Graph, Selection, Output, Row.Mode);
			std::vector<std::string> Messages;
			for (const std::string& Copy : Row.Copies)
			{
				Messages.push_back("Lodestring : " + Copy + " ");
			}
			EXPECT_EQ(Output.Messages(), Messages) << Row.Mode << " " << Row.Selected.size();
			EXPECT_EQ(Output.Copies, Row.Copies) << Row.Mode << " " << Row.Selected.size();
			for (const FRecordingOutput::FLine& Line : Output.Lines)
			{
				EXPECT_EQ(Line.Verbosity, ELodexLogVerbosity::Log);
			}
		}
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
