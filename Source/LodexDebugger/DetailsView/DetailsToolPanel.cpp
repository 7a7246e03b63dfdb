// Copyright Lodex contributors.
#include "DetailsToolPanel.h"

#include "DetailToolCommands.h"
#include "Editor.h"
#include "EditorStyleSet.h"
#include "Engine/Selection.h"
#include "Framework/Commands/UICommandList.h"
#include "Framework/MultiBox/MultiBoxBuilder.h"
#include "GameFramework/Actor.h"
#include "ISCSEditorUICustomization.h"
#include "Modules/ModuleManager.h"
#include "SSubobjectEditorModule.h"
#include "SSubobjectInstanceEditor.h"
#include "SubobjectData.h"
#include "SubobjectEditorMenuContext.h"
#include "Textures/SlateIcon.h"
#include "ToolMenus.h"
#include "Types/ISlateMetaData.h"
#include "VELTStyle.h"
#include "Widgets/Input/SSearchBox.h"
#include "Widgets/Layout/SBorder.h"
#include "Widgets/Layout/SBox.h"
#include "Widgets/Layout/SScrollBox.h"
#include "Widgets/Layout/SSplitter.h"
#include "Widgets/SBoxPanel.h"
#include "Widgets/Text/STextBlock.h"
#include "Widgets/Views/SListView.h"
#include "Widgets/Views/STableRow.h"

#define LOCTEXT_NAMESPACE "DetailToolA"

namespace DetailsToolPanelPrivate
{
	const FName SubobjectEditorModuleName(TEXT("SubobjectEditor"));

	/** The components tree of the explorer only browses: no adding of components, no Blueprint buttons. */
	class FComponentsTreeCustomization final : public ISCSEditorUICustomization
	{
	public:
		virtual bool HideAddComponentButton() const override { return true; }
		virtual bool HideBlueprintButtons() const override { return true; }
	};

	/** The text as written in the source, whatever the culture the editor shows. */
	FString GetSourceText(const FText& Text)
	{
		const FString* Source = FTextInspector::GetSourceString(Text);
		return Source ? *Source : Text.ToString();
	}

	/**
	 * The components tree's localised texts, by the key the menu table gives them. LOCTEXT needs its texts as
	 * literals; an ensure checks that they still read as the table does.
	 */
	FText GetComponentsTreeText(const char* Key, const char* TableText)
	{
		const FString KeyText = LodexInterop::FromUtf8(Key);
		FText Text;
		if (KeyText == TEXT("VelTrane"))
		{
			Text = LOCTEXT("VelTrane", "VelTrane");
		}
		else if (KeyText == TEXT("Veltrane"))
		{
			Text = LOCTEXT("Veltrane", "Lodestring");
		}
		else if (KeyText == TEXT("Veltrane_Tooltip"))
		{
			Text = LOCTEXT("Veltrane_Tooltip", "Get the Lodestring for the selected component");
		}
		else if (KeyText == TEXT("Lodestring_Relative"))
		{
			Text = LOCTEXT("Lodestring_Relative", "Lodestring Relative");
		}
		else if (KeyText == TEXT("Lodestring_Relative_Tooltip"))
		{
			Text = LOCTEXT("Lodestring_Relative_Tooltip", "Get the Lodestring Relative");
		}
		else if (KeyText == TEXT("Lodestring_Absolute"))
		{
			Text = LOCTEXT("Lodestring_Absolute", "Lodestring Absolute");
		}
		else if (KeyText == TEXT("Lodestring_Absolute_Tooltip"))
		{
			Text = LOCTEXT("Lodestring_Absolute_Tooltip", "Get the Lodestring Absolute");
		}
		ensureMsgf(
			GetSourceText(Text) == LodexInterop::FromUtf8(TableText), TEXT("Text %s differs from its table"), *KeyText);
		return Text;
	}
}

DetailsToolPanel::DetailsToolPanel() = default;

DetailsToolPanel::~DetailsToolPanel()
{
	// Nothing that outlives the panel may point at it: the selection event, the tree menu's section.
	USelection::SelectionChangedEvent.RemoveAll(this);
	UToolMenus::UnregisterOwner(this);
	if (Explorer.IsValid())
	{
		Explorer->SetView(nullptr);
	}
}

void DetailsToolPanel::Construct(const FArguments& InArgs)
{
	using namespace DetailsToolPanelPrivate;

	// The first panel made creates the module's style set; later ones find it in place.
	VELTStyle::Initialize();
	Tool = InArgs._Tool;

	Explorer = MakeUnique<FLodexExplorerPanel>(Graph, Reflection, Output);
	FLodexExplorerPanel::RegisterWithEditor(*this);

	USelection::SelectionChangedEvent.AddSP(this, &DetailsToolPanel::HandleSelectionChanged);
	Explorer->Construct(FLodexEditorActorSelection());
	CaptureGuards();

	FModuleManager::LoadModuleChecked<FSubobjectEditorModule>(SubobjectEditorModuleName);
	ChildSlot[SNew(SBorder)
				  .BorderImage(FEditorStyle::GetBrush("NoBorder"))
				  .AddMetaData<FTagMetaData>(FTagMetaData(TEXT("BlueprintInspector")))[SNew(SVerticalBox) +
					  SVerticalBox::Slot()[SNew(SSplitter).Style(FEditorStyle::Get(), "SplitterDark") +
						  SSplitter::Slot()[SNew(
							  SBox)[SAssignNew(ComponentsTree, SSubobjectInstanceEditor)
										.ObjectContext(this, &DetailsToolPanel::GetExploredActorContext)
										.AllowEditing(false)
										.OnSelectionUpdated(this, &DetailsToolPanel::HandleTreeSelectionUpdated)]] +
						  SSplitter::Slot()[MakeListSection(ELodexExplorerList::Properties)] +
						  SSplitter::Slot()[MakeListSection(ELodexExplorerList::Methods)]]]];
	ComponentsTree->SetUICustomization(MakeShared<FComponentsTreeCustomization>());

	// The widgets exist: from now on the core drives them.
	Explorer->SetView(this);
}

void DetailsToolPanel::PrintReference(FString Mode)
{
	ForgetDestroyedObjects();
	Explorer->PrintReference(LodexInterop::ToUtf8(Mode));
}

void DetailsToolPanel::UpdateComponentsTree()
{
	// The core has just chosen the actor the tree shows, which the tree reads through the guard.
	CaptureGuards();
	if (ComponentsTree.IsValid())
	{
		ComponentsTree->UpdateTree(/*bRegenerateTreeNodes*/ true);
	}
}

void DetailsToolPanel::ClearSearchBox(ELodexExplorerList List)
{
	const FListItems& Items = GetListItems(List);
	if (Items.SearchBox.IsValid())
	{
		Items.SearchBox->SetText(FText::GetEmpty());
	}
}

void DetailsToolPanel::RefreshList(ELodexExplorerList List)
{
	FListItems& Items = GetListItems(List);
	const uint64 Generation = Explorer->GetListGeneration(List);
	if (Generation != Items.Generation)
	{
		// A new filling: new shared strings, so that the list view lets go of items it had selected.
		Items.Generation = Generation;
		const std::vector<std::string>& Names = Explorer->GetNames(List);
		Items.Names.Reset(static_cast<int32>(Names.size()));
		for (const std::string& Name : Names)
		{
			Items.Names.Add(MakeShared<FString>(LodexInterop::FromUtf8(Name)));
		}
		if (List == ELodexExplorerList::Methods)
		{
			MethodGuards.Reset(static_cast<int32>(Names.size()));
			for (const FLodexFunction Function : Explorer->GetMethodFunctions())
			{
				MethodGuards.Add(LodexInterop::ToUFunction(Function));
			}
		}
		else
		{
			PropertyGuards.Reset(static_cast<int32>(Names.size()));
			for (const FLodexProperty Property : Explorer->GetPropertyFields())
			{
				PropertyGuards.Add(TWeakFieldPtr<FProperty>(LodexInterop::ToFProperty(Property)));
			}
		}
	}
	Items.Filtered.Reset();
	for (const std::size_t Index : Explorer->GetFilteredItems(List))
	{
		Items.Filtered.Add(Items.Names[static_cast<int32>(Index)]);
	}
	if (Items.ListView.IsValid())
	{
		Items.ListView->RequestListRefresh();
	}
}

void DetailsToolPanel::CreateCommandList()
{
	CommandList = MakeShareable(new FUICommandList);
}

void DetailsToolPanel::RegisterCommandSet(const FLodexCommandSetInfo& Set)
{
	// The set's commands are made from the same table (FDetailToolCommands::RegisterCommands). Registered once
	// for the editor run; the module removes it when it shuts down.
	check(FCStringAnsi::Strcmp(Set.ContextName, GetDetailToolCommandSet().ContextName) == 0);
	FDetailToolCommands::Register();
}

void DetailsToolPanel::MapPrintReference(const FLodexCommandInfo& Command, const std::string& Mode)
{
	const TSharedPtr<FUICommandInfo> CommandInfo =
		FDetailToolCommands::Get().FindCommand(LodexInterop::ToName(Command.CommandId));
	if (ensure(CommandInfo.IsValid() && CommandList.IsValid()))
	{
		CommandList->MapAction(CommandInfo,
			FExecuteAction::CreateSP(this, &DetailsToolPanel::PrintReference, LodexInterop::FromUtf8(Mode)));
	}
}

void DetailsToolPanel::ExtendComponentsTreeMenu(const FLodexMenuInfo& Menu)
{
	// Owned by the panel: its destructor removes it (UToolMenus::UnregisterOwner). The dynamic section adds the
	// "VelTrane" section when the menu opens; its own name is the panel's, so that panels never share one.
	static int32 PanelNumber = 0;
	FToolMenuOwnerScoped OwnerScoped(this);
	UToolMenu* ToolMenu = UToolMenus::Get()->ExtendMenu(LodexInterop::ToName(Menu.AddedThrough));
	ToolMenu->AddDynamicSection(FName(TEXT("LodexObjectExplorer"), ++PanelNumber),
		FNewToolMenuDelegate::CreateSP(this, &DetailsToolPanel::FillComponentsTreeSection, &Menu));
}

void DetailsToolPanel::HandleSelectionChanged(UObject* Object)
{
	ForgetDestroyedObjects();
	if (USelection* Selection = Cast<USelection>(Object))
	{
		const FLodexEditorActorSelection SelectionSet(Selection);
		Explorer->HandleSelectionChanged(&SelectionSet);
	}
	else
	{
		Explorer->HandleSelectionChanged(nullptr);
	}
	CaptureGuards();
}

void DetailsToolPanel::HandleTreeSelectionUpdated(const TArray<TSharedPtr<FSubobjectEditorTreeNode>>& SelectedNodes)
{
	ForgetDestroyedObjects();
	const AActor* ExploredActor = Cast<AActor>(GetExploredActorContext());
	std::vector<FLodexTreeNodeSelection> Nodes;
	for (const TSharedPtr<FSubobjectEditorTreeNode>& Node : SelectedNodes)
	{
		FLodexTreeNodeSelection Selected;
		if (Node.IsValid() && Node->IsRootActorNode())
		{
			Selected.Kind = ELodexTreeNodeKind::Actor;
		}
		else if (Node.IsValid() && Node->IsComponentNode())
		{
			Selected.Kind = ELodexTreeNodeKind::Component;
			const FSubobjectData* Data = Node->GetDataSource();
			if (Data != nullptr && ExploredActor != nullptr)
			{
				Selected.ComponentInExploredActor =
					LodexInterop::ToLodexObject(Data->FindComponentInstanceInActor(ExploredActor));
			}
		}
		Nodes.push_back(Selected);
	}
	Explorer->HandleTreeSelectionUpdated(Nodes);
	CaptureGuards();
}

void DetailsToolPanel::HandlePropertySearchTextChanged(const FText& Text)
{
	HandleSearchTextChanged(ELodexExplorerList::Properties, Text);
}

void DetailsToolPanel::HandleMethodSearchTextChanged(const FText& Text)
{
	HandleSearchTextChanged(ELodexExplorerList::Methods, Text);
}

void DetailsToolPanel::HandlePropertySelectionChanged(FItem Item, ESelectInfo::Type SelectInfo)
{
	HandleListSelectionChanged(ELodexExplorerList::Properties, Item);
}

void DetailsToolPanel::HandleMethodSelectionChanged(FItem Item, ESelectInfo::Type SelectInfo)
{
	HandleListSelectionChanged(ELodexExplorerList::Methods, Item);
}

TSharedPtr<SWidget> DetailsToolPanel::HandlePropertyContextMenuOpening()
{
	return MakeListContextMenu(ELodexExplorerList::Properties);
}

TSharedPtr<SWidget> DetailsToolPanel::HandleMethodContextMenuOpening()
{
	return MakeListContextMenu(ELodexExplorerList::Methods);
}

TSharedRef<ITableRow> DetailsToolPanel::HandleGeneratePropertyRow(
	FItem Item, const TSharedRef<STableViewBase>& OwnerTable)
{
	return MakeRow(ELodexExplorerList::Properties, Item, OwnerTable);
}

TSharedRef<ITableRow> DetailsToolPanel::HandleGenerateMethodRow(
	FItem Item, const TSharedRef<STableViewBase>& OwnerTable)
{
	return MakeRow(ELodexExplorerList::Methods, Item, OwnerTable);
}

UObject* DetailsToolPanel::GetExploredActorContext() const
{
	// Read through the weak reference: the tree asks every frame, also after the actor was destroyed.
	return ExploredActorGuard.Get();
}

TSharedRef<SWidget> DetailsToolPanel::MakeListSection(ELodexExplorerList List)
{
	FListItems& Items = GetListItems(List);
	const bool bProperties = List == ELodexExplorerList::Properties;
	// The methods box reuses the properties box's hint and tooltip.
	return SNew(SVerticalBox) +
		SVerticalBox::Slot().AutoHeight()[SNew(SHorizontalBox) +
			SHorizontalBox::Slot().AutoWidth().VAlign(
				VAlign_Center)[SNew(STextBlock)
								   .Text(FText::FromString(bProperties ? TEXT("Properties") : TEXT("Methods")))
								   .TextStyle(&VELTStyle::Get().GetWidgetStyle<FTextBlockStyle>("VELT.Bold"))] +
			SHorizontalBox::Slot().FillWidth(
				1.0f)[SAssignNew(Items.SearchBox, SSearchBox)
						  .HintText(LOCTEXT("FilterSearchHint", "Search Properties"))
						  .ToolTipText(LOCTEXT("FilterSearchToolTip", "Type here to search the properties"))
						  .OnTextChanged(this,
							  bProperties ? &DetailsToolPanel::HandlePropertySearchTextChanged
										  : &DetailsToolPanel::HandleMethodSearchTextChanged)]] +
		SVerticalBox::Slot().FillHeight(1.0f)[SNew(SScrollBox) +
			SScrollBox::Slot()[SAssignNew(Items.ListView, SListView<FItem>)
								   .ListItemsSource(&Items.Filtered)
								   .SelectionMode(ESelectionMode::Single)
								   .OnGenerateRow(this,
									   bProperties ? &DetailsToolPanel::HandleGeneratePropertyRow
												   : &DetailsToolPanel::HandleGenerateMethodRow)
								   .OnSelectionChanged(this,
									   bProperties ? &DetailsToolPanel::HandlePropertySelectionChanged
												   : &DetailsToolPanel::HandleMethodSelectionChanged)
								   .OnContextMenuOpening(this,
									   bProperties ? &DetailsToolPanel::HandlePropertyContextMenuOpening
												   : &DetailsToolPanel::HandleMethodContextMenuOpening)]];
}

TSharedPtr<SWidget> DetailsToolPanel::MakeListContextMenu(ELodexExplorerList List)
{
	// Opening the menu sets what PrintReference describes: the property or the method.
	const FLodexMenuInfo& Menu = Explorer->OpenListContextMenu(List);
	FMenuBuilder MenuBuilder(/*bInShouldCloseWindowAfterMenuSelection*/ true, CommandList);
	MenuBuilder.BeginSection(LodexInterop::ToName(Menu.SectionName), LodexInterop::ToText(Menu.SectionHeading));
	MenuBuilder.AddSubMenu(LodexInterop::ToText(Menu.SubMenuLabel), LodexInterop::ToText(Menu.SubMenuTooltip),
		FNewMenuDelegate::CreateSP(this, &DetailsToolPanel::FillListContextSubMenu, &Menu),
		/*bInOpenSubMenuOnClick*/ false, FSlateIcon(), /*bInShouldCloseWindowAfterMenuSelection*/ true);
	MenuBuilder.EndSection();
	return MenuBuilder.MakeWidget();
}

void DetailsToolPanel::FillListContextSubMenu(FMenuBuilder& MenuBuilder, const FLodexMenuInfo* Menu)
{
	for (const FLodexMenuEntryInfo& Entry : Menu->Entries)
	{
		const TSharedPtr<FUICommandInfo> CommandInfo =
			FDetailToolCommands::Get().FindCommand(LodexInterop::ToName(Entry.CommandId));
		if (CommandInfo.IsValid())
		{
			MenuBuilder.AddMenuEntry(CommandInfo);
		}
	}
}

void DetailsToolPanel::FillComponentsTreeSection(UToolMenu* Menu, const FLodexMenuInfo* MenuInfo)
{
	using namespace DetailsToolPanelPrivate;
	// The menu is shared by every components tree of the editor; the section belongs in this panel's only.
	const USubobjectEditorMenuContext* Context = Menu->FindContext<USubobjectEditorMenuContext>();
	const TSharedPtr<SSubobjectEditor> MenuTree = Context ? Context->SubobjectEditor.Pin() : nullptr;
	if (!MenuTree.IsValid() || !ComponentsTree.IsValid() ||
		MenuTree.Get() != static_cast<SSubobjectEditor*>(ComponentsTree.Get()))
	{
		return;
	}
	FToolMenuSection& Section = Menu->AddSection(
		LodexInterop::ToName(MenuInfo->SectionName), GetComponentsTreeText("VelTrane", MenuInfo->SectionHeading));
	Section.AddSubMenu(LodexInterop::ToName(MenuInfo->SubMenuName),
		GetComponentsTreeText("Veltrane", MenuInfo->SubMenuLabel),
		GetComponentsTreeText("Veltrane_Tooltip", MenuInfo->SubMenuTooltip),
		FNewToolMenuDelegate::CreateSP(this, &DetailsToolPanel::FillComponentsTreeSubMenu, MenuInfo),
		/*bInOpenSubMenuOnClick*/ false, FSlateIcon(), /*bShouldCloseWindowAfterMenuSelection*/ true);
}

void DetailsToolPanel::FillComponentsTreeSubMenu(UToolMenu* Menu, const FLodexMenuInfo* MenuInfo)
{
	using namespace DetailsToolPanelPrivate;
	FToolMenuSection& Section = Menu->AddSection(LodexInterop::ToName(MenuInfo->InnerSectionName));
	for (const FLodexMenuEntryInfo& Entry : MenuInfo->Entries)
	{
		Section.AddMenuEntry(LodexInterop::ToName(Entry.Name), GetComponentsTreeText(Entry.LabelLocKey, Entry.Label),
			GetComponentsTreeText(Entry.TooltipLocKey, Entry.Tooltip), FSlateIcon(),
			FUIAction(
				FExecuteAction::CreateSP(this, &DetailsToolPanel::PrintReference, LodexInterop::FromUtf8(Entry.Mode))));
	}
}

void DetailsToolPanel::HandleSearchTextChanged(ELodexExplorerList List, const FText& Text)
{
	const std::string Filter = LodexInterop::ToUtf8(Text.ToString());
	// Clearing a box from the core calls back here with the text the core holds already.
	if (Filter != Explorer->GetFilterText(List))
	{
		Explorer->HandleFilterTextChanged(List, Filter);
	}
}

void DetailsToolPanel::HandleListSelectionChanged(ELodexExplorerList List, FItem Item)
{
	ForgetDestroyedObjects();
	if (Item.IsValid())
	{
		const std::string Text = LodexInterop::ToUtf8(*Item);
		Explorer->HandleListSelectionChanged(List, &Text);
	}
	else
	{
		Explorer->HandleListSelectionChanged(List, nullptr);
	}
	CaptureGuards();
}

TSharedRef<ITableRow> DetailsToolPanel::MakeRow(
	ELodexExplorerList List, FItem Item, const TSharedRef<STableViewBase>& OwnerTable)
{
	// A row finds its entry by the position of its string among the names.
	const FListItems& Items = GetListItems(List);
	const int32 Index = Items.Names.IndexOfByKey(Item);
	FText Left;
	FText Right;
	float LeftWidth = 0.3f;
	if (List == ELodexExplorerList::Properties)
	{
		if (Index != INDEX_NONE && PropertyGuards.IsValidIndex(Index) && PropertyGuards[Index].IsValid())
		{
			const FLodexPropertyRow Row = Explorer->GetPropertyRow(static_cast<std::size_t>(Index));
			Left = FText::FromString(LodexInterop::FromUtf8(Row.Type));
			Right = FText::FromString(LodexInterop::FromUtf8(Row.Name));
		}
	}
	else
	{
		LeftWidth = 0.2f;
		if (Index != INDEX_NONE && MethodGuards.IsValidIndex(Index) && MethodGuards[Index].IsValid())
		{
			const FLodexMethodRow Row = Explorer->GetMethodRow(static_cast<std::size_t>(Index));
			Left = FText::FromString(LodexInterop::FromUtf8(Row.ReturnType));
			Right = FText::FromString(LodexInterop::FromUtf8(Row.Signature));
		}
	}
	return SNew(STableRow<FItem>, OwnerTable)[SNew(SHorizontalBox) +
		SHorizontalBox::Slot().FillWidth(LeftWidth).Padding(2.0f)[SNew(STextBlock).Text(Left)] +
		SHorizontalBox::Slot().FillWidth(1.0f - LeftWidth).Padding(2.0f)[SNew(STextBlock).Text(Right)]];
}

DetailsToolPanel::FListItems& DetailsToolPanel::GetListItems(ELodexExplorerList List)
{
	return List == ELodexExplorerList::Properties ? Properties : Methods;
}

void DetailsToolPanel::CaptureGuards()
{
	const FLodexExplorerSelection& Selection = Explorer->GetSelection();
	SelectedActorGuard = LodexInterop::ToUObject(Selection.SelectedActor);
	SelectedComponentGuard = LodexInterop::ToUObject(Selection.SelectedComponent);
	ExploredActorGuard = LodexInterop::ToUObject(Explorer->GetExploredActor());
	SelectedFunctionGuard = LodexInterop::ToUFunction(Selection.SelectedFunction);
	SelectedPropertyGuard = TWeakFieldPtr<FProperty>(LodexInterop::ToFProperty(Selection.SelectedProperty));
}

void DetailsToolPanel::ForgetDestroyedObjects()
{
	bool bDestroyed = SelectedActorGuard.IsStale() || SelectedComponentGuard.IsStale() ||
		ExploredActorGuard.IsStale() || SelectedFunctionGuard.IsStale() || SelectedPropertyGuard.IsStale(true);
	for (int32 Index = 0; Index < MethodGuards.Num() && !bDestroyed; ++Index)
	{
		bDestroyed = MethodGuards[Index].IsStale();
	}
	for (int32 Index = 0; Index < PropertyGuards.Num() && !bDestroyed; ++Index)
	{
		bDestroyed = PropertyGuards[Index].IsStale(true);
	}
	if (bDestroyed)
	{
		Explorer->Reset();
		CaptureGuards();
	}
}

#undef LOCTEXT_NAMESPACE
