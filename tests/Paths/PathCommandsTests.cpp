// Copyright Lodex contributors.
#include "TestGraph.h"
#include "TestReflection.h"

#include "LodexDebugger/Core/Lodestring/LodestringEvaluator.h"
#include "LodexDebugger/Core/Paths/LodexBestCopy.h"
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

	TEST(MenuToolStartup, RegistersInOrderAndShutdownTakesBackWhatTheLevelEditorHolds)
	{
		FRecordingCommandHost Host;
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

	TEST(BestCopy, LogsEachSelectedActorsBestLodestringWithItsCountAndCopiesThemAllOneALineOrNothingWhenNoneIsFound)
	{
		FListedTestGraph Scene;
		FTestGraph::FNode& House = Scene.Listed(Scene.Actor("House", nullptr, {"bldg"}));
		FTestGraph::FNode& Door = Scene.Listed(Scene.Actor("Door", &House));
		Scene.Listed(Scene.Add(FTestGraph::EKind::Component, "Hinge", &Door));
		// Two untagged cubes at the root: nothing tells them apart.
		FTestGraph::FNode& Cube = Scene.Listed(Scene.Actor("Cube"));
		Scene.Listed(Scene.Actor("Cube"));
		// An actor of another level, which the scene does not hold.
		FTestGraph::FNode& Elsewhere = Scene.Actor("Elsewhere");
		const FLodexSceneIndex Index(Scene, Scene);

		const FTestSelection Selection{&Door, nullptr, &Cube, &Elsewhere};
		FRecordingOutput Output;
		const std::vector<std::string> Copied = PrintSelectedBestLodestrings(Index, Selection, Output);

		ASSERT_EQ(Copied.size(), 2u);
		const std::string& DoorBest = Copied[0];
		const std::string& CubeBest = Copied[1];
		// What is copied finds what it says it finds.
		EXPECT_EQ(EvaluateLodestring(Index, DoorBest).Matches.size(), 1u) << DoorBest;
		EXPECT_EQ(EvaluateLodestring(Index, CubeBest).Matches.size(), 2u) << CubeBest;

		EXPECT_EQ(Output.Messages(),
			(std::vector<std::string>{"Best Lodestring : " + DoorBest + " (matches 1 object)",
				"Best Lodestring : " + CubeBest + " (matches 2 objects): no Lodestring tells them apart",
				"Best Lodestring : Elsewhere is not in the level: no Lodestring finds it"}));
		ASSERT_EQ(Output.Lines.size(), 3u);
		EXPECT_EQ(Output.Lines[1].Verbosity, ELodexLogVerbosity::Log);
		EXPECT_EQ(Output.Lines[2].Verbosity, ELodexLogVerbosity::Warning);
		// One copy, every Lodestring on a line of its own, so that the clipboard holds them all.
		EXPECT_EQ(Output.Copies, std::vector<std::string>{DoorBest + "\r\n" + CubeBest});

		// An empty selection logs nothing; one of nothing but strangers copies nothing: the clipboard keeps its text.
		EXPECT_TRUE(PrintSelectedBestLodestrings(Index, FTestSelection{}, Output).empty());
		EXPECT_TRUE(PrintSelectedBestLodestrings(Index, FTestSelection{&Elsewhere, nullptr}, Output).empty());
		EXPECT_EQ(Output.Lines.size(), 4u);
		EXPECT_EQ(Output.Copies.size(), 1u);
	}
}
