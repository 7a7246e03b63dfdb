// Copyright Lodex contributors.
#include "EditorModel.h"
#include "Repl/EvaluationSession.h"
#include "Explore/ExplorerHost.h"
#include "Cli/HostOutput.h"
#include "Cli/ListSelection.h"
#include "Cli/LodexCli.h"
#include "LodexTool.h"
#include "Record/RecordCommand.h"
#include "SampleData.h"
#include "Scenes/SceneEvaluation.h"
#include "Scenes/SceneSnapshot.h"
#include "Cli/TextTable.h"
#include "Cli/TextTree.h"

#include "LodexDebugger/Core/Paths/LodexBestCopy.h"
#include "LodexDebugger/Core/Lodestring/LodestringEvaluator.h"
#include "LodexDebugger/Core/Lodestring/LodestringProgram.h"
#include "LodexDebugger/Core/Lodestring/LodexMatchNotice.h"
#include "LodexDebugger/Core/Lodestring/Lodestring.h"
#include "LodexDebugger/Core/Text/LodexText.h"
#include "LodexDebugger/Core/Shell/LodexShell.h"
#include "LodexDebugger/Core/Paths/PathCommands.h"

#include <CLI/CLI.hpp>

namespace
{
	std::string ShowText(const std::string& Text)
	{
		return Text.empty() ? "(empty)" : Text;
	}

	void PrintLodestringTable(const FSceneSnapshot& Scene, std::ostream& Out)
	{
		Out << "Lodestrings of every object of the sample level\n\n";
		FTextTable Table({"Object", "Kind", "Absolute", "Relative", "Tag"});
		for (const FSceneObject& Object : Scene.GetObjects())
		{
			const FLodexObject Handle = FSceneSnapshot::Handle(Object);
			Table.AddRow({Object.Name, LodexSnapshot::GetKindName(Object.Kind),
				ShowText(BuildLodestring(Scene, Handle, LodestringModes::Absolute)),
				ShowText(BuildLodestring(Scene, Handle, LodestringModes::Relative)),
				ShowText(BuildLodestring(Scene, Handle, LodestringModes::Tag))});
		}
		Out << Table.Render();
	}

	bool PrintCommandRun(const FSceneSnapshot& Scene, FLodexCliIo& Io)
	{
		const FLodexCommandSetInfo& Set = GetMenuToolCommandSet();
		const FLodexCommandInfo* Command = FindCommandForMode(Set, LodestringModes::Absolute);
		std::vector<FLodexObject> Selection;
		std::vector<std::string> SelectionNames;
		for (const char* Id : {"door", "lamp"})
		{
			std::string Error;
			const FLodexObject Object = Scene.FindObject(Id, Error);
			if (!Object)
			{
				Io.Err << "lodex: the embedded sample level: " << Error << "\n";
				return false;
			}
			SelectionNames.push_back(FSceneSnapshot::Resolve(Object).Name);
			Selection.push_back(Object);
		}

		Io.Out << "\n\"" << Command->Label << "\" (" << Set.ContextName << "." << Command->CommandId
			   << ") on the selection " << LodexText::Join(SelectionNames, ", ") << "\n\n";
		FHostOutput Output(Io.Out, Io.Err, EClipboardTarget::Memory);
		PrintSelectedActorLodestrings(Scene, FListSelection(std::move(Selection)), Output, Command->Mode);
		Io.Out << "\nClipboard: " << Output.GetClipboardText() << "\n";
		return true;
	}

	/** Whole evaluations, then one path evaluated step by step, as the debugger receives each step. */
	bool PrintEvaluation(const FSceneSnapshot& Scene, FLodexCliIo& Io)
	{
		const std::unique_ptr<FLodexSceneIndex> Index = IndexSceneSnapshot(Scene);
		Io.Out << "\nEvaluating Lodestrings on the sample level\n\n";
		for (const char* Path : {"//Door/fn:component('Hinge')", "/*[@tag = 'light' or @tag = 'shop']",
				 "//*[@tag = 'red']//*", "/*[@name = 'Door']", "/*[@name = 'House']/*[@nam = 'Door']"})
		{
			FLodestringProgram Program;
			FLodexEvaluation Evaluation;
			if (CompileLodestring(Path, Program, Evaluation.Error))
			{
				Evaluation = EvaluateLodestring(*Index, Program);
			}
			Io.Out << DescribeLodestringCheck(Path, Evaluation) << "\n";
			for (const FLodexMatch& Match : Evaluation.Matches)
			{
				Io.Out << "  " << DescribeLodexMatch(*Index, Program, Match) << "\n";
			}
			if (!Evaluation.bOk)
			{
				Io.Out << "  " << MarkUpLodestring(Path, Evaluation.Error.Span) << "\n";
			}
		}

		const std::string Path = "/*[@name = 'House']/*[@name = 'Door']/fn:component('Hinge')";
		FLodestringProgram Program;
		FLodexPathError Error;
		if (!CompileLodestring(Path, Program, Error))
		{
			Io.Err << "lodex: the demo's path: " << Error.Message << "\n";
			return false;
		}
		const FLodexTrace Trace = TraceLodestring(*Index, Program);
		Io.Out << "\nStep by step: " << Path
			   << "\n(each step as Load and Step Into hand it to the debugger; parts of a "
				  "step are indented)\n";
		for (std::size_t Number = 0; Number < Trace.Steps.size(); ++Number)
		{
			const FLodexTraceStep& Step = Trace.Steps[Number];
			const std::string Indent(static_cast<std::size_t>(Step.Depth) * 4, ' ');
			Io.Out << "\n" << Indent << "[" << Number + 1 << "] " << MarkUpLodestring(Path, Step.Span) << "\n";
			Io.Out << Indent << "    Operation: " << Step.Operation << "\n";
			Io.Out << Indent << "    Node type: " << Step.NodeType << "\n";
			Io.Out << Indent << "    Stack:     " << LodexText::Join(Step.Stack, " > ") << "\n";
			std::vector<std::string> Context;
			for (const FLodexMatch& Match : Step.Context)
			{
				Context.push_back(DescribeLodexMatch(*Index, Program, Match));
			}
			Io.Out << Indent
				   << "    Context:   " << (Context.empty() ? std::string("(none)") : LodexText::Join(Context, ", "))
				   << "\n";
		}
		std::vector<std::string> OverStops;
		for (std::size_t Step = 0; Step < Trace.Steps.size(); Step = NextLodexTraceStep(Trace, Step, true))
		{
			OverStops.push_back(std::to_string(Step + 1));
		}
		Io.Out << "\nStep Over from the start stops at " << LodexText::Join(OverStops, ", ")
			   << "; past the last step the evaluation finishes.\n";
		return true;
	}

	std::string Quote(const std::string& Text)
	{
		return "\"" + Text + "\"";
	}

	void AddPullDown(const FEditorModel& Editor, FTextTreeNode& Root)
	{
		FTextTreeNode& MenuBar = Root.Add("Main menu bar of the level editor");
		for (const FLodexPullDownInfo* PullDown : Editor.GetMenuBarPullDowns())
		{
			FTextTreeNode& Menu = MenuBar.Add(Quote(PullDown->Label) + ", after " + Quote(PullDown->AfterHook) +
				" (tooltip " + Quote(PullDown->ToolTip) + ")");
			FTextTreeNode* Section = &Menu;
			for (const FLodexMenuItem& Item : Editor.OpenPullDown())
			{
				switch (Item.Kind)
				{
					case ELodexMenuItemKind::Heading:
						Section = &Menu.Add("section " + Quote(Item.Text));
						break;
					case ELodexMenuItemKind::Entry:
						Section->Add(Quote(Item.Text) +
							(FindLodexTab(Item.Id) != nullptr ? " opens the tab " : " runs the console command ") +
							Item.Id + " (tooltip " + Quote(Item.ToolTip) + ")");
						break;
					case ELodexMenuItemKind::Separator:
						Section->Add("──── separator " + Item.Id);
						break;
				}
			}
		}
	}

	void AddTabs(const FEditorModel& Editor, FTextTreeNode& Root)
	{
		FTextTreeNode& Tabs = Root.Add("Tabs (nomad tab spawners)");
		for (const FLodexTabSpawnerEntry& Spawner : Editor.GetTabSpawners().GetSpawners())
		{
			FTextTreeNode& Tab = Tabs.Add(Spawner.TabName + ": " + Quote(Spawner.DisplayName));
			Tab.Add("tooltip " + Quote(Spawner.ToolTip));
			Tab.Add("group " + Quote(Spawner.GroupName));
			if (const FLodexTabInfo* Info = FindLodexTab(Spawner.TabName))
			{
				Tab.Add(std::string("holds a new ") + Info->PanelName + " each time it opens");
			}
		}
	}

	void AddConsoleCommands(const FEditorModel& Editor, FTextTreeNode& Root)
	{
		FTextTreeNode& Commands = Root.Add("Console commands");
		for (const std::string& Name : Editor.GetConsoleCommands())
		{
			for (const FLodexPullDownCommandInfo* Command :
				{&GetLodexSnapshotExport().Command, &GetLodexBestCopyCommand()})
			{
				if (Name == Command->ConsoleCommand)
				{
					const bool bTakesFile = Command->Command == ELodexPullDownCommand::ExportSnapshot;
					Commands.Add(Name + (bTakesFile ? " [FILE]" : "") + " (" + Command->ConsoleHelp + ")");
				}
			}
		}
	}

	/** The Object Explorer on the sample's game class: the panel, then a method's snippet. */
	bool PrintExplorerRun(const FSceneSnapshot& Scene, FLodexCliIo& Io)
	{
		Io.Out << "\nThe Object Explorer on the door (class BP_Door_C, a Blueprint of the game class LockableDoor)\n\n";
		FHeadlessExplorer Explorer(Scene, Io.Out);
		for (const char* Action : {"select door", "search methods lock", "show", "pick method TryUnlock",
				 "menu methods", "choose Lodestring Absolute"})
		{
			Io.Out << "> " << Action << "\n";
			std::string Error;
			if (!Explorer.RunAction(Action, Error))
			{
				Io.Err << "lodex: the embedded sample level: " << Error << "\n";
				return false;
			}
		}
		return true;
	}

	void AddContextMenus(FTextTreeNode& Root)
	{
		FTextTreeNode& Menus = Root.Add("Context menus");
		for (const FLodexMenuInfo& Menu : GetLodexContextMenus())
		{
			std::string Where = Menu.Where;
			if (*Menu.ExtensionHook != '\0')
			{
				Where += std::string(" (before the hook ") + Quote(Menu.ExtensionHook) + ")";
			}
			else if (Menu.Kind == ELodexMenuKind::ComponentsTree)
			{
				Where += std::string(" (extends the tool menu ") + Quote(Menu.AddedThrough) + ")";
			}
			else
			{
				Where += std::string(" (built by ") + Menu.AddedThrough + ")";
			}
			if (std::string(Menu.CommandSet) == GetDetailToolCommandSet().ContextName)
			{
				// Start-up does not add these: the Object Explorer's panel does, when its tab opens.
				Where += ", once an Object Explorer tab has opened";
			}
			FTextTreeNode& Kind = Menus.Add(Where);
			FTextTreeNode& Section =
				Kind.Add("section " + Quote(Menu.SectionName) + ", heading " + Quote(Menu.SectionHeading));
			FTextTreeNode& SubMenu =
				Section.Add("sub-menu " + Quote(Menu.SubMenuLabel) + " (tooltip " + Quote(Menu.SubMenuTooltip) + ")");
			FTextTreeNode* Entries = &SubMenu;
			if (*Menu.InnerSectionName != '\0')
			{
				Entries = &SubMenu.Add("section " + Quote(Menu.InnerSectionName));
			}
			for (const FLodexMenuEntryInfo& Entry : Menu.Entries)
			{
				std::string Line = Quote(Entry.Label);
				if (Entry.CommandId != nullptr)
				{
					Line += std::string(" (") + Menu.CommandSet + "." + Entry.CommandId + ")";
				}
				Entries->Add(Line + " prints the " + Entry.Mode + " Lodestring (tooltip " + Quote(Entry.Tooltip) + ")");
			}
		}
	}

	/** Runs the module's start-up on a model of the editor and shows what it added, then its shut-down. */
	void PrintEditorShell(FLodexCliIo& Io)
	{
		FEditorModel Editor;
		Editor.StartupModule();

		Io.Out << "\nWhat the module adds to the level editor\n\n";
		FTextTreeNode Root{LodexModuleName, {}};
		AddPullDown(Editor, Root);
		AddTabs(Editor, Root);
		AddConsoleCommands(Editor, Root);
		AddContextMenus(Root);
		Io.Out << RenderTextTree(Root);

		Io.Out << "\nUnloading the module\n\n";
		FHostOutput Output(Io.Out, Io.Err, EClipboardTarget::Memory);
		Editor.ShutdownModule(Output);
		Io.Out << "\nTab spawners left: " << Editor.GetTabSpawners().GetSpawners().size()
			   << "\nMenu extenders left in the level editor: " << Editor.CountLevelEditorExtenders()
			   << "\nConsole commands left: " << Editor.GetConsoleCommands().size() << "\n";
	}

	class FDemoCommand final : public ILodexCommand
	{
	public:
		CLI::App* Register(CLI::App& Parent) override
		{
			return Parent.add_subcommand("demo", "Show what the module does, on the embedded sample level");
		}

		int Run(FLodexCliIo& Io) override
		{
			FSceneSnapshot Scene;
			std::string Error;
			if (!FSceneSnapshot::Parse(GetSampleLevelJson(), "the embedded sample level", Scene, Error))
			{
				Io.Err << "lodex: " << Error << "\n";
				return LodexExitFailure;
			}
			PrintLodestringTable(Scene, Io.Out);
			if (!PrintCommandRun(Scene, Io) || !PrintEvaluation(Scene, Io) || !PrintExplorerRun(Scene, Io))
			{
				return LodexExitFailure;
			}
			PrintEditorShell(Io);
			if (!PrintRecordedSessionDemo(Scene, Io) || !PrintLodexEvaluationDemo(Io.Out, Io.Err))
			{
				return LodexExitFailure;
			}
			return LodexExitOk;
		}
	};
}

std::unique_ptr<ILodexCommand> MakeDemoCommand()
{
	return std::make_unique<FDemoCommand>();
}
