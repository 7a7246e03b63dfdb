// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Widgets/DeclarativeSyntaxSupport.h"
#include "Widgets/SCompoundWidget.h"

#include "LodexDebugger/Core/Evaluation/LodexReplPanel.h"
#include "LodexDebugger/Interop/LodexEvaluatorHost.h"

class ExampleTabToolBase;
class SEditableTextBox;
class STextBlock;

/** The Lodex REPL tab's content: counts the objects a typed Lodestring finds in the running game. */
class ReplToolPanel : public SCompoundWidget
{
public:
	SLATE_BEGIN_ARGS(ReplToolPanel) {}
	/** The tab tool that made the panel. */
	SLATE_ARGUMENT(TWeakPtr<ExampleTabToolBase>, Tool)
	SLATE_END_ARGS()

	ReplToolPanel();

	void Construct(const FArguments& InArgs);

	//~ Begin SWidget Interface
	virtual void Tick(const FGeometry& AllottedGeometry, const double InCurrentTime, const float InDeltaTime) override;
	/** A click anywhere in the panel gives it the focus, so that it polls and shows an answer that waited. */
	virtual bool SupportsKeyboardFocus() const override { return true; }
	//~ End SWidget Interface

	/** The path box (for the editor's automation tests, which type into it). */
	TSharedPtr<SEditableTextBox> GetPathBox() const { return PathBox; }
	/** The panel's state and the requests it made. */
	const FLodexReplPanel& GetModel() const { return Model; }

	/** A commit of the current path, marking the panel busy first; no control is bound to it. */
	FReply Run();

protected:
	void HandlePathTextChanged(const FText& Text);
	void HandlePathTextCommitted(const FText& Text, ETextCommit::Type CommitType);
	/** Shows the model's count text when it changed. */
	void UpdateCountText();

	TWeakPtr<ExampleTabToolBase> Tool;
	FLodexEngineEvaluatorHost Host;
	FLodexReplPanel Model;
	TSharedPtr<SEditableTextBox> PathBox;
	TSharedPtr<STextBlock> CountText;
	uint64 ShownCountRevision = 0;
};
