// Copyright Lodex contributors.
#pragma once

#include "Scenes/SceneReflection.h"
#include "Scenes/SceneSnapshot.h"

#include "LodexDebugger/Core/Explorer/ExplorerPanel.h"

#include <cstdint>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

/**
 * The Object Explorer tab of an editor whose level is a scene snapshot. The panel's logic is the module's own
 * (FLodexExplorerPanel); around it stand models of the editor widgets it drives, behaving as the engine's do: the
 * components tree (its nodes are regenerated only on request, and regenerating drops its selection), the two
 * search boxes (they report a change of their text only when it differs) and the two list views (an item that a
 * refresh no longer shows leaves the selection, which the panel hears as a cleared selection). User actions come
 * as lines of text (see docs/lodex.md); what the panel shows, the log lines and the clipboard go to the stream.
 */
class FHeadlessExplorer final
	: public ILodexExplorerView
	, public ILodexExplorerPanelHost
	, public ILodexOutput
{
public:
	FHeadlessExplorer(const FSceneSnapshot& InScene, std::ostream& InOut);
	~FHeadlessExplorer() override;

	FHeadlessExplorer(const FHeadlessExplorer&) = delete;
	FHeadlessExplorer& operator=(const FHeadlessExplorer&) = delete;

	/**
	 * Carries out one line of user actions. Blank lines and lines starting with '#' do nothing. Returns false with
	 * a message when the line cannot be carried out (unknown action, unknown object, no such row); the panel is
	 * then left as it was.
	 */
	bool RunAction(const std::string& Line, std::string& OutError);

	/** Writes what the panel shows: the components tree, both lists with their search boxes, its fields. */
	void Show();

	/** The panel, or null while the tab is closed. */
	const FLodexExplorerPanel* GetPanel() const { return Panel.get(); }
	const std::string& GetClipboard() const { return Clipboard; }

	//~ Begin ILodexExplorerView Interface
	void UpdateComponentsTree() override;
	void ClearSearchBox(ELodexExplorerList List) override;
	void RefreshList(ELodexExplorerList List) override;
	//~ End ILodexExplorerView Interface

	//~ Begin ILodexExplorerPanelHost Interface
	void CreateCommandList() override;
	void RegisterCommandSet(const FLodexCommandSetInfo& Set) override;
	void MapPrintReference(const FLodexCommandInfo& Command, const std::string& Mode) override;
	void ExtendComponentsTreeMenu(const FLodexMenuInfo& Menu) override;
	//~ End ILodexExplorerPanelHost Interface

	//~ Begin ILodexOutput Interface
	void Log(ELodexLogVerbosity Verbosity, const std::string& Message) override;
	void CopyToClipboard(const std::string& Text) override;
	//~ End ILodexOutput Interface

private:
	/** A node of the components tree: the actor (root) or one of its components. */
	struct FTreeNode
	{
		ELodexTreeNodeKind Kind;
		FLodexObject Object;
	};

	/** A list view: the items it shows and the item selected in it, items being positions of one filling. */
	struct FListView
	{
		std::vector<std::size_t> Items;
		std::uint64_t Generation = 0;
		bool bHasSelection = false;
		std::uint64_t SelectedGeneration = 0;
		std::size_t SelectedIndex = 0;
		bool bRefreshRequested = false;
	};

	bool OpenTab(std::string& OutError);
	bool CloseTab(std::string& OutError);
	bool Select(const std::vector<std::string>& Names, std::string& OutError);
	bool SelectTreeNodes(const std::vector<std::string>& Names, std::string& OutError);
	bool Search(ELodexExplorerList List, const std::string& Text, std::string& OutError);
	bool Pick(ELodexExplorerList List, const std::string& Row, std::string& OutError);
	bool OpenMenu(const std::string& Which, std::string& OutError);
	bool Choose(const std::string& Label, std::string& OutError);

	/** The panel's event for the tree's current selection. */
	void SignalTreeSelection();
	/** What the engine's list views do on their next tick: drop a selected item they no longer show. */
	void TickListViews();
	FListView& GetListView(ELodexExplorerList List);
	/** The title of a list, as the panel shows it: "Properties" or "Methods". */
	static const char* ListTitle(ELodexExplorerList List);
	std::string& GetSearchBox(ELodexExplorerList List);

	const FSceneSnapshot& Scene;
	FSceneReflection Reflection;
	std::ostream& Out;

	std::unique_ptr<FLodexExplorerPanel> Panel;
	/** The editor's selection, as the last "select" left it. */
	std::vector<FLodexObject> EditorSelection;

	FLodexObject TreeActor;
	std::vector<FTreeNode> TreeNodes;
	/** Positions in TreeNodes, in the order they were selected. */
	std::vector<std::size_t> TreeSelection;

	std::string PropertySearchBox;
	std::string MethodSearchBox;
	FListView PropertyListView;
	FListView MethodListView;

	/** The command set registered with the editor's bindings (once per editor run). */
	bool bCommandSetRegistered = false;
	/** The panel's command list: command id to the mode its action prints in. */
	std::map<std::string, std::string> CommandList;
	/** The components tree's menu section added by the open panel, or null. */
	const FLodexMenuInfo* TreeMenuExtension = nullptr;
	/** The context menu on screen, or null. */
	const FLodexMenuInfo* OpenContextMenu = nullptr;

	std::string Clipboard;
	std::uint64_t Copies = 0;
};
