// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Widgets/DeclarativeSyntaxSupport.h"
#include "Widgets/SCompoundWidget.h"

class ExampleTabToolBase;

/** The Lodex REPL tab's content: counts the objects a typed Lodestring finds in the running game. */
class ReplToolPanel : public SCompoundWidget
{
public:
	SLATE_BEGIN_ARGS(ReplToolPanel) {}
	/** The tab tool that made the panel. */
	SLATE_ARGUMENT(TWeakPtr<ExampleTabToolBase>, Tool)
	SLATE_END_ARGS()

	void Construct(const FArguments& InArgs);

protected:
	TWeakPtr<ExampleTabToolBase> Tool;
};
