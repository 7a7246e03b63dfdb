// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "UObject/WeakFieldPtr.h"
#include "UObject/WeakObjectPtrTemplates.h"
#include "Widgets/DeclarativeSyntaxSupport.h"
#include "Widgets/SCompoundWidget.h"

#include "LodexDebugger/Core/Explorer/ExplorerPanel.h"
#include "LodexDebugger/Interop/LodexEditorAdapters.h"
#include "LodexDebugger/Interop/LodexInterop.h"
#include "LodexDebugger/Interop/LodexUObjectReflection.h"

class ExampleTabToolBase;
class FSubobjectEditorTreeNode;
class FUICommandList;
class ITableRow;
class SSearchBox;
class SSubobjectInstanceEditor;
class STableViewBase;
class UToolMenu;
template<typename ItemType>
class SListView;

/**
 * The Object Explorer tab's content: the selected object's components tree, its reflected properties and methods in
 * two filtered lists, and `PrintReference` behind the lists' and the tree's context menus. The panel's logic is the
 * core's FLodexExplorerPanel; this widget builds the Slate tree, forwards the editor's events and draws the lists.
 */
class DetailsToolPanel
	: public SCompoundWidget
	, public ILodexExplorerView
	, public ILodexExplorerPanelHost
{
public:
	SLATE_BEGIN_ARGS(DetailsToolPanel) {}
	/** The tab tool that made the panel. */
	SLATE_ARGUMENT(TWeakPtr<ExampleTabToolBase>, Tool)
	SLATE_END_ARGS()

	DetailsToolPanel();
	virtual ~DetailsToolPanel() override;

	void Construct(const FArguments& InArgs);

	/** Logs and copies the Lodestring of the explored object, of the picked property, or the picked method's call. */
	void PrintReference(FString Mode);

	//~ Begin ILodexExplorerView Interface
	virtual void UpdateComponentsTree() override;
	virtual void ClearSearchBox(ELodexExplorerList List) override;
	virtual void RefreshList(ELodexExplorerList List) override;
	//~ End ILodexExplorerView Interface

	//~ Begin ILodexExplorerPanelHost Interface
	virtual void CreateCommandList() override;
	virtual void RegisterCommandSet(const FLodexCommandSetInfo& Set) override;
	virtual void MapPrintReference(const FLodexCommandInfo& Command, const std::string& Mode) override;
	virtual void ExtendComponentsTreeMenu(const FLodexMenuInfo& Menu) override;
	//~ End ILodexExplorerPanelHost Interface

protected:
	TWeakPtr<ExampleTabToolBase> Tool;

private:
	/** The editor's automation test changes the selection and looks at the explored object. */
	friend class FLodexExplorerSelectionTest;

	using FItem = TSharedPtr<FString>;

	/** One list as the list view sees it: a shared string per listed name, and the items shown. */
	struct FListItems
	{
		TArray<FItem> Names;
		TArray<FItem> Filtered;
		uint64 Generation = 0;
		TSharedPtr<SListView<FItem>> ListView;
		TSharedPtr<SSearchBox> SearchBox;
	};

	void HandleSelectionChanged(UObject* Object);
	void HandleTreeSelectionUpdated(const TArray<TSharedPtr<FSubobjectEditorTreeNode>>& SelectedNodes);
	void HandlePropertySearchTextChanged(const FText& Text);
	void HandleMethodSearchTextChanged(const FText& Text);
	void HandlePropertySelectionChanged(FItem Item, ESelectInfo::Type SelectInfo);
	void HandleMethodSelectionChanged(FItem Item, ESelectInfo::Type SelectInfo);
	TSharedPtr<SWidget> HandlePropertyContextMenuOpening();
	TSharedPtr<SWidget> HandleMethodContextMenuOpening();
	TSharedRef<ITableRow> HandleGeneratePropertyRow(FItem Item, const TSharedRef<STableViewBase>& OwnerTable);
	TSharedRef<ITableRow> HandleGenerateMethodRow(FItem Item, const TSharedRef<STableViewBase>& OwnerTable);
	UObject* GetExploredActorContext() const;

	TSharedRef<SWidget> MakeListSection(ELodexExplorerList List);
	TSharedPtr<SWidget> MakeListContextMenu(ELodexExplorerList List);
	void FillListContextSubMenu(class FMenuBuilder& MenuBuilder, const FLodexMenuInfo* Menu);
	void FillComponentsTreeSection(UToolMenu* Menu, const FLodexMenuInfo* MenuInfo);
	void FillComponentsTreeSubMenu(UToolMenu* Menu, const FLodexMenuInfo* MenuInfo);
	void HandleSearchTextChanged(ELodexExplorerList List, const FText& Text);
	void HandleListSelectionChanged(ELodexExplorerList List, FItem Item);
	TSharedRef<ITableRow> MakeRow(ELodexExplorerList List, FItem Item, const TSharedRef<STableViewBase>& OwnerTable);
	FListItems& GetListItems(ELodexExplorerList List);

	/** Takes weak references to what the core refers to, after the core changed it. */
	void CaptureGuards();
	/** When something the core refers to has been destroyed, the core forgets all of it. */
	void ForgetDestroyedObjects();

	FLodexUObjectGraph Graph;
	FLodexUObjectReflection Reflection;
	FLodexEditorOutput Output;
	TUniquePtr<FLodexExplorerPanel> Explorer;
	TSharedPtr<FUICommandList> CommandList;

	FListItems Properties;
	FListItems Methods;
	TSharedPtr<SSubobjectInstanceEditor> ComponentsTree;

	TWeakObjectPtr<UObject> SelectedActorGuard;
	TWeakObjectPtr<UObject> SelectedComponentGuard;
	TWeakObjectPtr<UObject> ExploredActorGuard;
	TWeakObjectPtr<UFunction> SelectedFunctionGuard;
	TWeakFieldPtr<FProperty> SelectedPropertyGuard;
	TArray<TWeakObjectPtr<UFunction>> MethodGuards;
	TArray<TWeakFieldPtr<FProperty>> PropertyGuards;
};
