// Copyright Lodex contributors.
#include "ExplorerHost.h"

#include "Cli/ListSelection.h"
#include "Cli/TextTable.h"
#include "Cli/TextTree.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <algorithm>
#include <cstdlib>

namespace
{
	/** The line's words; a word in double quotes may hold blanks. */
	std::vector<std::string> SplitWords(const std::string& Text)
	{
		std::vector<std::string> Words;
		std::size_t Index = 0;
		while (Index < Text.size())
		{
			if (Text[Index] == ' ' || Text[Index] == '\t')
			{
				++Index;
				continue;
			}
			std::string Word;
			if (Text[Index] == '"')
			{
				const std::size_t Close = Text.find('"', Index + 1);
				const std::size_t End = Close == std::string::npos ? Text.size() : Close;
				Word = Text.substr(Index + 1, End - Index - 1);
				Index = End + 1;
			}
			else
			{
				while (Index < Text.size() && Text[Index] != ' ' && Text[Index] != '\t')
				{
					Word += Text[Index++];
				}
			}
			Words.push_back(Word);
		}
		return Words;
	}

	/** The first word, and the rest of the line after the blank that follows it. */
	void SplitFirstWord(const std::string& Text, std::string& OutWord, std::string& OutRest)
	{
		const std::size_t Blank = Text.find(' ');
		OutWord = Text.substr(0, Blank);
		OutRest = Blank == std::string::npos ? std::string() : Text.substr(Blank + 1);
	}

	bool ParseListName(const std::string& Word, ELodexExplorerList& OutList)
	{
		if (Word == "properties" || Word == "property")
		{
			OutList = ELodexExplorerList::Properties;
			return true;
		}
		if (Word == "methods" || Word == "method")
		{
			OutList = ELodexExplorerList::Methods;
			return true;
		}
		return false;
	}

	std::string Quote(const std::string& Text)
	{
		return "\"" + Text + "\"";
	}

	void AddMenuEntries(FTextTreeNode& Parent, const FLodexMenuInfo& Menu)
	{
		for (const FLodexMenuEntryInfo& Entry : Menu.Entries)
		{
			std::string Line = Quote(Entry.Label);
			if (Entry.CommandId != nullptr)
			{
				Line += std::string(" (") + Menu.CommandSet + "." + Entry.CommandId + ")";
			}
			Parent.Add(Line + ", tooltip " + Quote(Entry.Tooltip));
		}
	}
}

FHeadlessExplorer::FHeadlessExplorer(const FSceneSnapshot& InScene, std::ostream& InOut)
	: Scene(InScene)
	, Reflection(InScene)
	, Out(InOut)
{
	std::string Ignored;
	OpenTab(Ignored);
}

FHeadlessExplorer::~FHeadlessExplorer() = default;

bool FHeadlessExplorer::RunAction(const std::string& InLine, std::string& OutError)
{
	std::string Line = InLine;
	while (!Line.empty() && (Line.back() == '\r' || Line.back() == '\n'))
	{
		Line.pop_back();
	}
	const std::size_t First = Line.find_first_not_of(" \t");
	if (First == std::string::npos || Line[First] == '#')
	{
		return true;
	}
	Line.erase(0, First);

	std::string Action;
	std::string Rest;
	SplitFirstWord(Line, Action, Rest);
	const std::uint64_t CopiesBefore = Copies;
	bool bDone = false;
	if (Action == "open")
	{
		bDone = OpenTab(OutError);
	}
	else if (Action == "close")
	{
		bDone = CloseTab(OutError);
	}
	else if (Action == "select")
	{
		bDone = Select(SplitWords(Rest), OutError);
	}
	else if (Action == "help")
	{
		Out << "Actions, one a line:\n"
			   "  select [OBJECT...]              the editor's selection becomes these objects (ids or names)\n"
			   "  tree [NODE...]                  select nodes of the components tree (none: deselect all)\n"
			   "  search properties|methods TEXT  the search box's text becomes TEXT (may be empty)\n"
			   "  pick property|method NAME|#ROW  click a row of the list (nothing: clear the list's selection)\n"
			   "  menu properties|methods|tree    right-click the list or the components tree\n"
			   "  choose LABEL                    choose an entry of the open menu, e.g. Lodestring Absolute\n"
			   "  show                            print what the panel shows\n"
			   "  close, open                     close the Object Explorer tab, open it again\n";
		bDone = true;
	}
	else if (Panel == nullptr)
	{
		OutError = "the Object Explorer tab is closed (\"open\" opens it)";
	}
	else if (Action == "show")
	{
		Show();
		bDone = true;
	}
	else if (Action == "tree")
	{
		bDone = SelectTreeNodes(SplitWords(Rest), OutError);
	}
	else if (Action == "search" || Action == "pick")
	{
		std::string ListWord;
		std::string Text;
		SplitFirstWord(Rest, ListWord, Text);
		ELodexExplorerList List = ELodexExplorerList::Properties;
		if (!ParseListName(ListWord, List))
		{
			OutError = Action + ": expected \"properties\" or \"methods\", found \"" + ListWord + "\"";
		}
		else
		{
			bDone = Action == "search" ? Search(List, Text, OutError) : Pick(List, Text, OutError);
		}
	}
	else if (Action == "menu")
	{
		bDone = OpenMenu(Rest, OutError);
	}
	else if (Action == "choose")
	{
		bDone = Choose(Rest, OutError);
	}
	else
	{
		OutError = "unknown action \"" + Action +
			"\" (expected select, tree, search, pick, menu, choose, show, open, close or help)";
	}
	TickListViews();
	if (Copies != CopiesBefore)
	{
		Out << "Clipboard: " << Clipboard << "\n";
	}
	return bDone;
}

bool FHeadlessExplorer::OpenTab(std::string& OutError)
{
	if (Panel != nullptr)
	{
		OutError = "the Object Explorer tab is open already";
		return false;
	}
	// A new tab constructs a new panel, with widgets of its own.
	TreeActor = FLodexObject();
	TreeNodes.clear();
	TreeSelection.clear();
	PropertySearchBox.clear();
	MethodSearchBox.clear();
	PropertyListView = FListView();
	MethodListView = FListView();
	OpenContextMenu = nullptr;

	Panel = std::make_unique<FLodexExplorerPanel>(Scene, Reflection, *this);
	Panel->SetView(this);
	FLodexExplorerPanel::RegisterWithEditor(*this);
	std::vector<FLodexObject> SelectedActors;
	for (const FLodexObject Object : EditorSelection)
	{
		if (Scene.IsOfClass(Object, ELodexClass::Actor))
		{
			SelectedActors.push_back(Object);
		}
	}
	Panel->Construct(FListSelection(std::move(SelectedActors)));
	return true;
}

bool FHeadlessExplorer::CloseTab(std::string& OutError)
{
	if (Panel == nullptr)
	{
		OutError = "the Object Explorer tab is closed already";
		return false;
	}
	// The panel leaves the selection event, its command list and its tree menu section behind it.
	Panel.reset();
	CommandList.clear();
	TreeMenuExtension = nullptr;
	OpenContextMenu = nullptr;
	return true;
}

bool FHeadlessExplorer::Select(const std::vector<std::string>& Names, std::string& OutError)
{
	std::vector<FLodexObject> Objects;
	for (const std::string& Name : Names)
	{
		std::string Error;
		const FLodexObject Object = Scene.FindObject(Name, Error);
		if (!Object)
		{
			OutError = "select: " + Error;
			return false;
		}
		Objects.push_back(Object);
	}
	EditorSelection = Objects;
	OpenContextMenu = nullptr;
	if (Panel != nullptr)
	{
		const FListSelection SelectionSet(std::move(Objects));
		Panel->HandleSelectionChanged(&SelectionSet);
	}
	return true;
}

bool FHeadlessExplorer::SelectTreeNodes(const std::vector<std::string>& Names, std::string& OutError)
{
	std::vector<std::size_t> Picked;
	for (const std::string& Name : Names)
	{
		std::size_t Found = TreeNodes.size();
		for (std::size_t Index = 0; Index < TreeNodes.size() && Found == TreeNodes.size(); ++Index)
		{
			if (FSceneSnapshot::Resolve(TreeNodes[Index].Object).Id == Name)
			{
				Found = Index;
			}
		}
		for (std::size_t Index = 0; Index < TreeNodes.size() && Found == TreeNodes.size(); ++Index)
		{
			if (FSceneSnapshot::Resolve(TreeNodes[Index].Object).Name == Name)
			{
				Found = Index;
			}
		}
		if (Found == TreeNodes.size())
		{
			OutError = "tree: the components tree shows no node \"" + Name + "\"";
			return false;
		}
		Picked.push_back(Found);
	}
	OpenContextMenu = nullptr;
	if (Picked.empty())
	{
		// Every node deselected.
		if (!TreeSelection.empty())
		{
			TreeSelection.clear();
			SignalTreeSelection();
		}
		return true;
	}
	// A click on the first node, then a control-click on each further one: every click reports the selection.
	TreeSelection.clear();
	for (const std::size_t Node : Picked)
	{
		if (std::find(TreeSelection.begin(), TreeSelection.end(), Node) == TreeSelection.end())
		{
			TreeSelection.push_back(Node);
		}
		SignalTreeSelection();
	}
	return true;
}

bool FHeadlessExplorer::Search(ELodexExplorerList List, const std::string& Text, std::string& OutError)
{
	(void)OutError;
	std::string& Box = GetSearchBox(List);
	if (Box != Text)
	{
		Box = Text;
		Panel->HandleFilterTextChanged(List, Text);
	}
	return true;
}

bool FHeadlessExplorer::Pick(ELodexExplorerList List, const std::string& Row, std::string& OutError)
{
	FListView& View = GetListView(List);
	const std::vector<std::string>& Names = Panel->GetNames(List);
	if (Row.empty())
	{
		if (View.bHasSelection)
		{
			View.bHasSelection = false;
			Panel->HandleListSelectionChanged(List, nullptr);
		}
		return true;
	}
	std::size_t Position = View.Items.size();
	if (Row.size() > 1 && Row[0] == '#' && Row.find_first_not_of("0123456789", 1) == std::string::npos)
	{
		const long Number = std::strtol(Row.c_str() + 1, nullptr, 10);
		if (Number >= 1 && static_cast<std::size_t>(Number) <= View.Items.size())
		{
			Position = static_cast<std::size_t>(Number - 1);
		}
	}
	else
	{
		for (std::size_t Index = 0; Index < View.Items.size() && Position == View.Items.size(); ++Index)
		{
			if (View.Generation == Panel->GetListGeneration(List) && Names[View.Items[Index]] == Row)
			{
				Position = Index;
			}
		}
	}
	if (Position == View.Items.size())
	{
		OutError = std::string("pick: the ") + ListTitle(List) + " list shows no row \"" + Row + "\"";
		return false;
	}
	View.bHasSelection = true;
	View.SelectedGeneration = View.Generation;
	View.SelectedIndex = View.Items[Position];
	const std::string Item = Names[View.SelectedIndex];
	Panel->HandleListSelectionChanged(List, &Item);
	return true;
}

bool FHeadlessExplorer::OpenMenu(const std::string& Which, std::string& OutError)
{
	ELodexExplorerList List = ELodexExplorerList::Properties;
	FTextTreeNode Root;
	const FLodexMenuInfo* Menu = nullptr;
	if (ParseListName(Which, List))
	{
		Menu = &Panel->OpenListContextMenu(List);
		Root.Text = std::string("Context menu of the ") + ListTitle(List) + " list";
	}
	else if (Which == "tree")
	{
		if (TreeSelection.empty())
		{
			// The components tree offers its menu only over selected nodes.
			OpenContextMenu = nullptr;
			Out << "(no context menu: no node of the components tree is selected)\n";
			return true;
		}
		Menu = TreeMenuExtension;
		Root.Text = "Context menu of the components tree, after the editor's own entries";
	}
	else
	{
		OutError = "menu: expected \"properties\", \"methods\" or \"tree\", found \"" + Which + "\"";
		return false;
	}
	OpenContextMenu = Menu;
	if (Menu == nullptr)
	{
		Root.Add("(the editor's own entries only)");
	}
	else
	{
		FTextTreeNode& Section = Root.Add("section " + Quote(Menu->SectionName) +
			(*Menu->SectionHeading ? ", heading " + Quote(Menu->SectionHeading) : ""));
		FTextTreeNode& SubMenu = Section.Add(
			"sub-menu " + Quote(Menu->SubMenuLabel) + ", tooltip " + Quote(Menu->SubMenuTooltip) + ", opens on hover");
		if (*Menu->InnerSectionName != '\0')
		{
			AddMenuEntries(SubMenu.Add("section " + Quote(Menu->InnerSectionName)), *Menu);
		}
		else
		{
			AddMenuEntries(SubMenu, *Menu);
		}
	}
	Out << RenderTextTree(Root);
	return true;
}

bool FHeadlessExplorer::Choose(const std::string& Label, std::string& OutError)
{
	if (OpenContextMenu == nullptr)
	{
		OutError = "choose: no context menu is open (\"menu properties\", \"menu methods\" or \"menu tree\" opens one)";
		return false;
	}
	const FLodexMenuInfo& Menu = *OpenContextMenu;
	for (const FLodexMenuEntryInfo& Entry : Menu.Entries)
	{
		if (Label != Entry.Label)
		{
			continue;
		}
		std::string Mode = Entry.Mode;
		if (Entry.CommandId != nullptr)
		{
			const auto Mapped = CommandList.find(Entry.CommandId);
			if (Mapped == CommandList.end())
			{
				OutError = std::string("choose: the command ") + Entry.CommandId + " is not mapped";
				return false;
			}
			Mode = Mapped->second;
		}
		// The menu closes after a choice.
		OpenContextMenu = nullptr;
		Panel->PrintReference(Mode);
		return true;
	}
	std::vector<std::string> Labels;
	for (const FLodexMenuEntryInfo& Entry : Menu.Entries)
	{
		Labels.push_back(Quote(Entry.Label));
	}
	OutError = "choose: the open menu has no entry \"" + Label + "\" (it has " + LodexText::Join(Labels, ", ") + ")";
	return false;
}

void FHeadlessExplorer::CreateCommandList()
{
	CommandList.clear();
}

void FHeadlessExplorer::RegisterCommandSet(const FLodexCommandSetInfo&)
{
	bCommandSetRegistered = true;
}

void FHeadlessExplorer::MapPrintReference(const FLodexCommandInfo& Command, const std::string& Mode)
{
	CommandList[Command.CommandId] = Mode;
}

void FHeadlessExplorer::ExtendComponentsTreeMenu(const FLodexMenuInfo& Menu)
{
	TreeMenuExtension = &Menu;
}

void FHeadlessExplorer::Log(ELodexLogVerbosity Verbosity, const std::string& Message)
{
	Out << FormatLodexLogLine(Verbosity, Message) << "\n";
}

void FHeadlessExplorer::CopyToClipboard(const std::string& Text)
{
	Clipboard = Text;
	++Copies;
}
