// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Widgets/DeclarativeSyntaxSupport.h"
#include "Widgets/SCompoundWidget.h"

#include "LodexDebugger/Core/Evaluation/LodexReplPanel.h"
#include "LodexEvaluatorHost.h"

class ExampleTabToolBase;
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
	//~ End SWidget Interface

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
	TSharedPtr<STextBlock> CountText;
	uint64 ShownCountRevision = 0;
};
