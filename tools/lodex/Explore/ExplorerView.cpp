// Copyright Lodex contributors.
// The headless explorer's models of the editor widgets the panel drives (the components tree, the search boxes, the
// list views, as the engine's behave) and what the panel shows.
#include "ExplorerHost.h"

#include "Cli/TextTable.h"
#include "Cli/TextTree.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <algorithm>

namespace
{
	/**
	 * The component of the actor that a tree node's component stands for, as the engine's components tree finds
	 * it: the component itself when the actor has it, otherwise the actor's component of the same name.
	 */
	FLodexObject FindMatchingComponent(
		const ILodexObjectGraph& Graph, const std::vector<FLodexObject>& Components, FLodexObject Component)
	{
		FLodexObject SameName;
		const std::string Name = Graph.GetName(Component);
		for (const FLodexObject Candidate : Components)
		{
			if (Candidate == Component)
			{
				return Candidate;
			}
			if (Graph.GetName(Candidate) == Name)
			{
				SameName = Candidate;
			}
		}
		return SameName;
	}
}

const char* FHeadlessExplorer::ListTitle(ELodexExplorerList List)
{
	return List == ELodexExplorerList::Properties ? "Properties" : "Methods";
}

void FHeadlessExplorer::Show()
{
	if (Panel == nullptr)
	{
		Out << "(the Object Explorer tab is closed)\n";
		return;
	}
	Out << "Object Explorer\n\nComponents tree\n";
	if (TreeNodes.empty())
	{
		Out << "(empty)\n";
	}
	else
	{
		auto Label = [this](std::size_t Index)
		{
			const bool bSelected = std::find(TreeSelection.begin(), TreeSelection.end(), Index) != TreeSelection.end();
			return FSceneSnapshot::Resolve(TreeNodes[Index].Object).Name + (bSelected ? "  (selected)" : "");
		};
		FTextTreeNode Root{Label(0), {}};
		for (std::size_t Index = 1; Index < TreeNodes.size(); ++Index)
		{
			Root.Add(Label(Index));
		}
		Out << RenderTextTree(Root);
	}

	for (const ELodexExplorerList List : {ELodexExplorerList::Properties, ELodexExplorerList::Methods})
	{
		const FListView& View = GetListView(List);
		const std::string& Box = GetSearchBox(List);
		Out << "\n"
			<< ListTitle(List) << "  [" << (Box.empty() ? "Search Properties" : Box) << "]"
			<< (Box.empty() ? " (hint)" : "") << "\n";
		const bool bProperties = List == ELodexExplorerList::Properties;
		FTextTable Table({"", bProperties ? "Type" : "Return type", bProperties ? "Name" : "Signature"});
		for (const std::size_t Index : View.Items)
		{
			const bool bSelected =
				View.bHasSelection && View.SelectedGeneration == View.Generation && View.SelectedIndex == Index;
			if (bProperties)
			{
				const FLodexPropertyRow Row = Panel->GetPropertyRow(Index);
				Table.AddRow({bSelected ? ">" : "", Row.Type, Row.Name});
			}
			else
			{
				const FLodexMethodRow Row = Panel->GetMethodRow(Index);
				Table.AddRow({bSelected ? ">" : "", Row.ReturnType, Row.Signature});
			}
		}
		Out << Table.Render();
	}

	const FLodexExplorerSelection& Selection = Panel->GetSelection();
	auto ObjectName = [](FLodexObject Object)
	{
		return Object ? FSceneSnapshot::Resolve(Object).Name : std::string("(none)");
	};
	// Members of the same name in a class and its super class are told apart by the class that declares them.
	auto DeclaredBy = [this](const void* Member)
	{
		for (const FSceneClass& Class : Scene.GetClasses())
		{
			for (const FSceneFunction& Function : Class.Functions)
			{
				if (&Function == Member)
				{
					return " (declared by " + Class.Name + ")";
				}
			}
			for (const FSceneProperty& Property : Class.Properties)
			{
				if (&Property == Member)
				{
					return " (declared by " + Class.Name + ")";
				}
			}
		}
		return std::string();
	};
	const std::string PropertyText = Selection.SelectedProperty
		? LodexExplorer::GetPropertyName(Reflection, Selection.SelectedProperty) +
			DeclaredBy(Selection.SelectedProperty.Ptr)
		: std::string("(none)");
	const std::string FunctionText = Selection.SelectedFunction
		? Reflection.GetFunctionName(Selection.SelectedFunction) + DeclaredBy(Selection.SelectedFunction.Ptr)
		: std::string("(none)");
	static const char* const TargetNames[] = {"Object", "Method", "Property"};
	const std::uint32_t Target = Selection.ReferenceTarget;
	Out << "\nSelectedActor: " << ObjectName(Selection.SelectedActor)
		<< "\nSelectedComponent: " << ObjectName(Selection.SelectedComponent) << "\nSelectedProperty: " << PropertyText
		<< "\nSelectedFunction: " << FunctionText << "\nReferenceTarget: " << Target << " ("
		<< (Target < 3 ? TargetNames[Target] : "unknown") << ")\n";
}

void FHeadlessExplorer::UpdateComponentsTree()
{
	const FLodexObject Actor = Panel->GetExploredActor();
	if (!Actor)
	{
		return;
	}
	// Regenerating makes new nodes: the old selection is dropped, which the tree reports.
	if (!TreeSelection.empty())
	{
		TreeSelection.clear();
		SignalTreeSelection();
	}
	TreeActor = Actor;
	TreeNodes.clear();
	TreeNodes.push_back({ELodexTreeNodeKind::Actor, Actor});
	std::vector<FLodexObject> Components;
	Reflection.GetComponents(Actor, Components);
	for (const FLodexObject Component : Components)
	{
		TreeNodes.push_back({ELodexTreeNodeKind::Component, Component});
	}
}

void FHeadlessExplorer::ClearSearchBox(ELodexExplorerList List)
{
	GetSearchBox(List).clear();
}

void FHeadlessExplorer::RefreshList(ELodexExplorerList List)
{
	FListView& View = GetListView(List);
	View.Items = Panel->GetFilteredItems(List);
	View.Generation = Panel->GetListGeneration(List);
	View.bRefreshRequested = true;
}

void FHeadlessExplorer::SignalTreeSelection()
{
	if (Panel == nullptr)
	{
		return;
	}
	std::vector<FLodexObject> ExploredComponents;
	const FLodexObject ExploredActor = Panel->GetExploredActor();
	if (ExploredActor)
	{
		Reflection.GetComponents(ExploredActor, ExploredComponents);
	}
	std::vector<FLodexTreeNodeSelection> Nodes;
	for (const std::size_t Index : TreeSelection)
	{
		const FTreeNode& Node = TreeNodes[Index];
		FLodexTreeNodeSelection Selected;
		Selected.Kind = Node.Kind;
		if (Node.Kind == ELodexTreeNodeKind::Component)
		{
			Selected.ComponentInExploredActor = FindMatchingComponent(Scene, ExploredComponents, Node.Object);
		}
		Nodes.push_back(Selected);
	}
	Panel->HandleTreeSelectionUpdated(Nodes);
}

void FHeadlessExplorer::TickListViews()
{
	if (Panel == nullptr)
	{
		return;
	}
	for (const ELodexExplorerList List : {ELodexExplorerList::Properties, ELodexExplorerList::Methods})
	{
		FListView& View = GetListView(List);
		if (!View.bRefreshRequested)
		{
			continue;
		}
		View.bRefreshRequested = false;
		const bool bStillShown = View.SelectedGeneration == View.Generation &&
			std::find(View.Items.begin(), View.Items.end(), View.SelectedIndex) != View.Items.end();
		if (View.bHasSelection && !bStillShown)
		{
			View.bHasSelection = false;
			Panel->HandleListSelectionChanged(List, nullptr);
		}
	}
}

FHeadlessExplorer::FListView& FHeadlessExplorer::GetListView(ELodexExplorerList List)
{
	return List == ELodexExplorerList::Properties ? PropertyListView : MethodListView;
}

std::string& FHeadlessExplorer::GetSearchBox(ELodexExplorerList List)
{
	return List == ELodexExplorerList::Properties ? PropertySearchBox : MethodSearchBox;
}
