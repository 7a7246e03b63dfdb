// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Widgets/DeclarativeSyntaxSupport.h"
#include "Widgets/SCompoundWidget.h"
#include "Widgets/Views/SListView.h"

#include "LodexDebugger/Core/Evaluation/LodexDebuggerPanel.h"
#include "LodexDebugger/Interop/LodexEvaluatorHost.h"

class ExampleTabToolBase;
class ITableRow;
class SEditableTextBox;
class SRichTextBlock;
class STableViewBase;
class STextBlock;
struct FSlateBrush;

/** The Lodestring Debugger tab's content: runs a Lodestring whole or step by step through the evaluator. */
class TabToolPanel : public SCompoundWidget
{
public:
	SLATE_BEGIN_ARGS(TabToolPanel) {}
	/** The tab tool that made the panel. */
	SLATE_ARGUMENT(TWeakPtr<ExampleTabToolBase>, Tool)
	SLATE_END_ARGS()

	TabToolPanel();

	void Construct(const FArguments& InArgs);

	//~ Begin SWidget Interface
	virtual void Tick(const FGeometry& AllottedGeometry, const double InCurrentTime, const float InDeltaTime) override;
	/** A click anywhere in the panel gives it the focus, so that it polls and shows an answer that waited. */
	virtual bool SupportsKeyboardFocus() const override { return true; }
	//~ End SWidget Interface

	/** The path box (for the editor's automation tests, which type into it). */
	TSharedPtr<SEditableTextBox> GetPathBox() const { return PathBox; }
	/** The panel's state and the requests it made. */
	const FLodexDebuggerPanel& GetModel() const { return Model; }

	/** The first highlighted segment of a marked-up path; no control calls it. */
	static FString ExtractHighlight(const FString& MarkedUpPath);

protected:
	void HandlePathTextChanged(const FText& Text);
	void HandlePathTextCommitted(const FText& Text, ETextCommit::Type CommitType);
	FReply HandleRunClicked();
	FReply HandleStepIntoClicked();
	FReply HandleStepOverClicked();
	FReply HandleResetClicked();
	bool AreButtonsEnabled() const;
	const FSlateBrush* GetErrorIconBrush() const;
	TSharedRef<ITableRow> HandleGenerateRow(TSharedPtr<FString> Item, const TSharedRef<STableViewBase>& OwnerTable);

	/** Brings the widgets up to date with the model: texts, lists and path box, each only when it changed. */
	void UpdateFromModel();

	TWeakPtr<ExampleTabToolBase> Tool;
	FLodexEngineEvaluatorHost Host;
	FLodexDebuggerPanel Model;

	TSharedPtr<SEditableTextBox> PathBox;
	TSharedPtr<SRichTextBlock> PathDisplay;
	TSharedPtr<STextBlock> MessageText;
	TSharedPtr<STextBlock> OperationValue;
	TSharedPtr<STextBlock> NodeTypeValue;
	TSharedPtr<STextBlock> StackHeader;
	TSharedPtr<STextBlock> ContextHeader;
	TSharedPtr<SListView<TSharedPtr<FString>>> StackList;
	TSharedPtr<SListView<TSharedPtr<FString>>> ContextList;
	TSharedPtr<STextBlock> DurationText;
	/** The item sources of the two lists. */
	TArray<TSharedPtr<FString>> StackItems;
	TArray<TSharedPtr<FString>> ContextItems;

	uint64 ShownTextsRevision = 0;
	uint64 ShownStackItemsRevision = 0;
	uint64 ShownContextItemsRevision = 0;
	uint64 ShownPathBoxClears = 0;
};
