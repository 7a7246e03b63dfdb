// Copyright Lodex contributors.
#include "ExplorerPanel.h"

namespace ExplorerPanelPrivate
{
	const ELodexExplorerList BothLists[] = {ELodexExplorerList::Properties, ELodexExplorerList::Methods};

	/**
	 * The text with ASCII letters in upper case and every other byte as it is: two texts so folded contain one
	 * another exactly when the originals do ignoring case as the engine's `FString::Find` does (ASCII letters only).
	 */
	std::string FoldCase(const std::string& Text)
	{
		std::string Folded = Text;
		for (char& Char : Folded)
		{
			if (Char >= 'a' && Char <= 'z')
			{
				Char = static_cast<char>(Char - 'a' + 'A');
			}
		}
		return Folded;
	}

	/** The class and its super classes, nearest first; a class met twice ends the chain. */
	std::vector<FLodexClass> GetClassChain(const ILodexReflection& Reflection, FLodexClass Class)
	{
		std::vector<FLodexClass> Chain;
		for (; Class; Class = Reflection.GetSuperClass(Class))
		{
			for (const FLodexClass Seen : Chain)
			{
				if (Seen == Class)
				{
					return Chain;
				}
			}
			Chain.push_back(Class);
		}
		return Chain;
	}
}

FLodexExplorerPanel::FLodexExplorerPanel(
	const ILodexObjectGraph& InGraph, const ILodexReflection& InReflection, ILodexOutput& InOutput)
	: Graph(InGraph)
	, Reflection(InReflection)
	, Output(InOutput)
{
}

void FLodexExplorerPanel::RegisterWithEditor(ILodexExplorerPanelHost& Host)
{
	const FLodexCommandSetInfo& Set = GetDetailToolCommandSet();
	Host.CreateCommandList();
	Host.RegisterCommandSet(Set);
	for (const FLodexCommandInfo& Command : Set.Commands)
	{
		Host.MapPrintReference(Command, Command.Mode);
	}
	Host.ExtendComponentsTreeMenu(GetComponentsTreeMenu());
}

void FLodexExplorerPanel::Construct(const ILodexActorSelection& EditorSelectedActors)
{
	if (EditorSelectedActors.Num() >= 1)
	{
		Selection.SelectedActor = EditorSelectedActors.GetSelectedObject(0);
	}
}

void FLodexExplorerPanel::HandleSelectionChanged(const ILodexActorSelection* SelectionSet)
{
	// Only a selection of exactly one object is followed; an emptied selection leaves the panel as it is.
	if (SelectionSet == nullptr || SelectionSet->Num() != 1)
	{
		return;
	}
	const FLodexObject Object = SelectionSet->GetSelectedObject(0);
	Selection.SelectedActor = FLodexObject();
	Selection.SelectedComponent = FLodexObject();
	Selection.SelectedProperty = FLodexProperty();
	Selection.SelectedFunction = FLodexFunction();
	EmptyLists();

	if (Object && Graph.IsOfClass(Object, ELodexClass::Actor))
	{
		ExploredActor = Object;
		Selection.SelectedActor = Object;
		FillLists(Object);
		if (View != nullptr)
		{
			View->UpdateComponentsTree();
		}
	}
	else if (Object && Graph.IsOfClass(Object, ELodexClass::ActorComponent))
	{
		const FLodexObject Owner = Reflection.GetComponentOwner(Object);
		ExploredActor = Owner;
		Selection.SelectedActor = Owner;
		Selection.SelectedComponent = Object;
		FillLists(Object);
		Selection.ReferenceTarget = static_cast<std::uint32_t>(ELodexReferenceTarget::Object);
	}
	else
	{
		Output.Log(ELodexLogVerbosity::Log,
			"Unhandled thing clicked : " + (Object ? Graph.GetName(Object) : std::string("None")) + "();");
	}

	ClearSearchBoxes();
	for (const ELodexExplorerList List : ExplorerPanelPrivate::BothLists)
	{
		Refilter(List);
	}
}

void FLodexExplorerPanel::HandleTreeSelectionUpdated(const std::vector<FLodexTreeNodeSelection>& Nodes)
{
	if (Nodes.empty())
	{
		ClearSearchBoxes();
		return;
	}
	Selection.SelectedComponent = FLodexObject();
	if (!ExploredActor)
	{
		ClearSearchBoxes();
		return;
	}

	FLodexObject FillFrom;
	for (const FLodexTreeNodeSelection& Node : Nodes)
	{
		if (Node.Kind == ELodexTreeNodeKind::Actor)
		{
			// The actor's node wins over any component picked before it, as in the editor's details panel.
			Selection.SelectedComponent = FLodexObject();
			FillFrom = ExploredActor;
			break;
		}
		if (Node.Kind == ELodexTreeNodeKind::Component && Node.ComponentInExploredActor)
		{
			Selection.SelectedComponent = Node.ComponentInExploredActor;
			FillFrom = Node.ComponentInExploredActor;
		}
	}

	Selection.ReferenceTarget = static_cast<std::uint32_t>(ELodexReferenceTarget::Object);
	EmptyLists();
	if (FillFrom)
	{
		FillLists(FillFrom);
	}
	for (const ELodexExplorerList List : ExplorerPanelPrivate::BothLists)
	{
		Refilter(List);
	}
	ClearSearchBoxes();
}

void FLodexExplorerPanel::HandleFilterTextChanged(ELodexExplorerList List, const std::string& Text)
{
	GetList(List).FilterText = Text;
	Refilter(List);
}

void FLodexExplorerPanel::HandleListSelectionChanged(ELodexExplorerList List, const std::string* Item)
{
	const std::vector<std::string>& Names = GetList(List).Names;
	if (Item == nullptr)
	{
		if (List == ELodexExplorerList::Properties)
		{
			Selection.SelectedProperty = FLodexProperty();
		}
		else
		{
			Selection.SelectedFunction = FLodexFunction();
		}
		return;
	}
	for (std::size_t Index = 0; Index < Names.size(); ++Index)
	{
		if (Names[Index] == *Item)
		{
			if (List == ELodexExplorerList::Properties)
			{
				Selection.SelectedProperty = PropertyFields[Index];
			}
			else
			{
				Selection.SelectedFunction = MethodFunctions[Index];
			}
			return;
		}
	}
}

const FLodexMenuInfo& FLodexExplorerPanel::OpenListContextMenu(ELodexExplorerList List)
{
	Selection.ReferenceTarget = static_cast<std::uint32_t>(
		List == ELodexExplorerList::Properties ? ELodexReferenceTarget::Property : ELodexReferenceTarget::Method);
	return GetLodexContextMenu(ELodexMenuKind::ExplorerList);
}

const FLodexMenuInfo& FLodexExplorerPanel::GetComponentsTreeMenu()
{
	return GetLodexContextMenu(ELodexMenuKind::ComponentsTree);
}

void FLodexExplorerPanel::Reset()
{
	Selection = FLodexExplorerSelection();
	ExploredActor = FLodexObject();
	EmptyLists();
	for (const ELodexExplorerList List : ExplorerPanelPrivate::BothLists)
	{
		Refilter(List);
	}
	ClearSearchBoxes();
}

void FLodexExplorerPanel::PrintReference(const LodestringMode& Mode)
{
	LodexExplorer::PrintReference(Selection, Graph, Reflection, Output, Mode);
}

const std::vector<std::string>& FLodexExplorerPanel::GetNames(ELodexExplorerList List) const
{
	return GetList(List).Names;
}

const std::vector<std::size_t>& FLodexExplorerPanel::GetFilteredItems(ELodexExplorerList List) const
{
	return GetList(List).Filtered;
}

const std::string& FLodexExplorerPanel::GetFilterText(ELodexExplorerList List) const
{
	return GetList(List).FilterText;
}

std::uint64_t FLodexExplorerPanel::GetListGeneration(ELodexExplorerList List) const
{
	return GetList(List).Generation;
}

FLodexPropertyRow FLodexExplorerPanel::GetPropertyRow(std::size_t Index) const
{
	return {LodexExplorer::GetPropertyType(Reflection, PropertyFields[Index]), Properties.Names[Index]};
}

FLodexMethodRow FLodexExplorerPanel::GetMethodRow(std::size_t Index) const
{
	const FLodexMethodDescription Method = LodexExplorer::DescribeMethod(Reflection, MethodFunctions[Index]);
	return {Method.ReturnType, Method.Signature};
}

FLodexExplorerPanel::FListState& FLodexExplorerPanel::GetList(ELodexExplorerList List)
{
	return List == ELodexExplorerList::Properties ? Properties : Methods;
}

const FLodexExplorerPanel::FListState& FLodexExplorerPanel::GetList(ELodexExplorerList List) const
{
	return List == ELodexExplorerList::Properties ? Properties : Methods;
}

void FLodexExplorerPanel::EmptyLists()
{
	Methods.Names.clear();
	Methods.FoldedNames.clear();
	MethodFunctions.clear();
	Properties.Names.clear();
	Properties.FoldedNames.clear();
	PropertyFields.clear();
	++Methods.Generation;
	++Properties.Generation;
}

void FLodexExplorerPanel::FillLists(FLodexObject Object)
{
	const std::vector<FLodexClass> Chain = ExplorerPanelPrivate::GetClassChain(Reflection, Reflection.GetClass(Object));
	// The field iterator's order: the class's own members, then those of each super class.
	for (const FLodexClass Class : Chain)
	{
		Reflection.GetOwnFunctions(Class, MethodFunctions);
	}
	for (const FLodexClass Class : Chain)
	{
		Reflection.GetOwnProperties(Class, PropertyFields);
	}
	Methods.Names.reserve(MethodFunctions.size());
	for (const FLodexFunction Function : MethodFunctions)
	{
		Methods.Names.push_back(Reflection.GetFunctionName(Function));
	}
	Properties.Names.reserve(PropertyFields.size());
	for (const FLodexProperty Property : PropertyFields)
	{
		Properties.Names.push_back(LodexExplorer::GetPropertyName(Reflection, Property));
	}
	for (FListState* State : {&Methods, &Properties})
	{
		State->FoldedNames.reserve(State->Names.size());
		for (const std::string& Name : State->Names)
		{
			State->FoldedNames.push_back(ExplorerPanelPrivate::FoldCase(Name));
		}
	}
	++Methods.Generation;
	++Properties.Generation;
}

void FLodexExplorerPanel::Refilter(ELodexExplorerList List)
{
	// Kept: every name when the text is empty, else the names containing it ignoring case.
	FListState& State = GetList(List);
	State.Filtered.clear();
	const std::string Folded = ExplorerPanelPrivate::FoldCase(State.FilterText);
	for (std::size_t Index = 0; Index < State.Names.size(); ++Index)
	{
		if (Folded.empty() || State.FoldedNames[Index].find(Folded) != std::string::npos)
		{
			State.Filtered.push_back(Index);
		}
	}
	if (View != nullptr)
	{
		View->RefreshList(List);
	}
}

void FLodexExplorerPanel::ClearSearchBox(ELodexExplorerList List)
{
	// A search box reports a change of its text only when the text differs.
	FListState& State = GetList(List);
	if (!State.FilterText.empty())
	{
		State.FilterText.clear();
		Refilter(List);
	}
	if (View != nullptr)
	{
		View->ClearSearchBox(List);
	}
}

void FLodexExplorerPanel::ClearSearchBoxes()
{
	for (const ELodexExplorerList List : ExplorerPanelPrivate::BothLists)
	{
		ClearSearchBox(List);
	}
}
