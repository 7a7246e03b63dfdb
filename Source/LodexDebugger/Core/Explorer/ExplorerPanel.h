// Copyright Lodex contributors.
#pragma once

#include "ExplorerReference.h"
#include "LodexReflection.h"
#include "LodexDebugger/Core/Paths/PathCommands.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/** The two lists of the object explorer. */
enum class ELodexExplorerList
{
	Properties,
	Methods,
};

/** The kinds of node of the components tree, numbered as the engine's tree numbers them. */
enum class ELodexTreeNodeKind
{
	Component = 0,
	Actor = 1,
	/** Separators and anything else that is neither the actor nor a component. */
	Other = 2,
};

/** One node the components tree reports as selected. */
struct FLodexTreeNodeSelection
{
	ELodexTreeNodeKind Kind = ELodexTreeNodeKind::Other;
	/** For a component node: its component instance found in the explored actor, or null when there is none. */
	FLodexObject ComponentInExploredActor;
};

/** A row of the Properties list: the property's type text (fill width 0.3) and its name (0.7). */
struct FLodexPropertyRow
{
	std::string Type;
	std::string Name;
};

/** A row of the Methods list: the return type (fill width 0.2) and the signature (0.8). */
struct FLodexMethodRow
{
	std::string ReturnType;
	std::string Signature;
};

/** The widgets the panel drives: the components tree, the two search boxes and the two list views. */
class ILodexExplorerView
{
public:
	virtual ~ILodexExplorerView() = default;

	/** Regenerates the components tree for the explored actor (`UpdateTree` with regeneration). */
	virtual void UpdateComponentsTree() = 0;

	/** Sets the text of the list's search box to empty. */
	virtual void ClearSearchBox(ELodexExplorerList List) = 0;

	/** Tells the list view that its items changed; read them with GetFilteredItems (and GetNames). */
	virtual void RefreshList(ELodexExplorerList List) = 0;
};

/** The editor calls the explorer panel makes when it is constructed. */
class ILodexExplorerPanelHost
{
public:
	virtual ~ILodexExplorerPanelHost() = default;
	/** Creates the panel's command list. */
	virtual void CreateCommandList() = 0;
	/** Registers the "DetailToolA" command set (kept until the module shuts down). */
	virtual void RegisterCommandSet(const FLodexCommandSetInfo& Set) = 0;
	/** Maps a command on the panel's list to the panel's `PrintReference` with the given mode. */
	virtual void MapPrintReference(const FLodexCommandInfo& Command, const std::string& Mode) = 0;
	/** Extends the components tree's context menu with the menu's section (removed with the panel). */
	virtual void ExtendComponentsTreeMenu(const FLodexMenuInfo& Menu) = 0;
};

/**
 * The object explorer panel (`DetailsToolPanel`) without its widgets: what it explores, its two lists and their
 * filters, the picked property and method, and `PrintReference`. The host forwards the editor's events to the
 * Handle... calls and draws the lists from GetFilteredItems and the rows.
 */
class FLodexExplorerPanel
{
public:
	FLodexExplorerPanel(const ILodexObjectGraph& InGraph, const ILodexReflection& InReflection, ILodexOutput& InOutput);

	/** The widgets to drive; null (the default) drives none. */
	void SetView(ILodexExplorerView* InView) { View = InView; }

	/** Registers the command set, maps its two commands and extends the components tree's menu, in that order. */
	static void RegisterWithEditor(ILodexExplorerPanelHost& Host);

	/** Construction: with at least one actor selected in the editor, the first becomes `SelectedActor`. */
	void Construct(const ILodexActorSelection& EditorSelectedActors);

	/**
	 * The editor's selection changed. SelectionSet is null when the event's object is no selection set. A set of
	 * one object replaces what the panel explores: an actor (the tree follows it), a component (its owner becomes
	 * the explored actor, the tree is left alone, the target returns to Object) or anything else (logged as
	 * "Unhandled thing clicked : NAME();", the lists stay empty). Then both search boxes are cleared. A set of
	 * several objects, or of none, is ignored.
	 */
	void HandleSelectionChanged(const ILodexActorSelection* SelectionSet);

	/**
	 * The components tree reports its selected nodes. An actor node ends the walk and explores the actor; component
	 * nodes found in the explored actor explore that component, the last one winning. The target returns to Object,
	 * the lists are refilled (left empty when no node gave an object) and both search boxes are cleared. With no
	 * node selected, or no explored actor, only the search boxes are cleared.
	 */
	void HandleTreeSelectionUpdated(const std::vector<FLodexTreeNodeSelection>& Nodes);

	/** The text of a search box changed: it becomes the list's filter and the list is filtered again. */
	void HandleFilterTextChanged(ELodexExplorerList List, const std::string& Text);

	/**
	 * The list view's selection changed to Item (null when the selection was cleared). A null item clears the
	 * picked property or method; otherwise the first entry whose name equals the item's text exactly is picked,
	 * and when none does the pick is left as it was.
	 */
	void HandleListSelectionChanged(ELodexExplorerList List, const std::string* Item);

	/** The list's context menu opens: the target becomes Property or Method. Returns the menu to show. */
	const FLodexMenuInfo& OpenListContextMenu(ELodexExplorerList List);

	/** The components tree's context menu section (its entries do not change the target). */
	static const FLodexMenuInfo& GetComponentsTreeMenu();

	/**
	 * Forgets what the panel explores: the four selected references, the explored actor and both lists; the
	 * search boxes are cleared and the target returns to Object. The editor calls it when an object the panel
	 * refers to has been destroyed, so that nothing reads freed memory.
	 */
	void Reset();

	/** Logs and copies what the target describes (see LodexExplorer::PrintReference). */
	void PrintReference(const LodestringMode& Mode);

	const FLodexExplorerSelection& GetSelection() const { return Selection; }
	FLodexObject GetExploredActor() const { return ExploredActor; }
	std::uint32_t GetReferenceTarget() const { return Selection.ReferenceTarget; }
	void SetReferenceTarget(std::uint32_t Target) { Selection.ReferenceTarget = Target; }

	/** The names of the listed functions (object names) or properties ("None" for a nameless one). */
	const std::vector<std::string>& GetNames(ELodexExplorerList List) const;
	/** The positions in GetNames of the items the list view shows, in order. */
	const std::vector<std::size_t>& GetFilteredItems(ELodexExplorerList List) const;
	/** The last text typed into the list's search box. */
	const std::string& GetFilterText(ELodexExplorerList List) const;
	/** Counts the fillings of the list: a host that keeps items per name knows when to make new ones. */
	std::uint64_t GetListGeneration(ELodexExplorerList List) const;

	const std::vector<FLodexFunction>& GetMethodFunctions() const { return MethodFunctions; }
	const std::vector<FLodexProperty>& GetPropertyFields() const { return PropertyFields; }

	/** The row of the property at a position of GetNames(Properties). */
	FLodexPropertyRow GetPropertyRow(std::size_t Index) const;
	/** The row of the function at a position of GetNames(Methods). */
	FLodexMethodRow GetMethodRow(std::size_t Index) const;

private:
	struct FListState
	{
		std::vector<std::string> Names;
		/** The names with ASCII letters in upper case: the filter compares these with its text folded alike. */
		std::vector<std::string> FoldedNames;
		std::vector<std::size_t> Filtered;
		std::string FilterText;
		std::uint64_t Generation = 0;
	};

	FListState& GetList(ELodexExplorerList List);
	const FListState& GetList(ELodexExplorerList List) const;

	void EmptyLists();
	void FillLists(FLodexObject Object);
	void Refilter(ELodexExplorerList List);
	void ClearSearchBox(ELodexExplorerList List);
	void ClearSearchBoxes();

	const ILodexObjectGraph& Graph;
	const ILodexReflection& Reflection;
	ILodexOutput& Output;
	ILodexExplorerView* View = nullptr;

	FLodexExplorerSelection Selection;
	FLodexObject ExploredActor;
	FListState Properties;
	FListState Methods;
	std::vector<FLodexFunction> MethodFunctions;
	std::vector<FLodexProperty> PropertyFields;
};
