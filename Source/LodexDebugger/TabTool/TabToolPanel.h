// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Widgets/DeclarativeSyntaxSupport.h"
#include "Widgets/SCompoundWidget.h"

class ExampleTabToolBase;

/** The Lodestring Debugger tab's content: runs a Lodestring whole or step by step through the evaluator. */
class TabToolPanel : public SCompoundWidget
{
public:
	SLATE_BEGIN_ARGS(TabToolPanel) {}
	/** The tab tool that made the panel. */
	SLATE_ARGUMENT(TWeakPtr<ExampleTabToolBase>, Tool)
	SLATE_END_ARGS()

	void Construct(const FArguments& InArgs);

protected:
	TWeakPtr<ExampleTabToolBase> Tool;
};
