// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Widgets/DeclarativeSyntaxSupport.h"
#include "Widgets/SCompoundWidget.h"

class ExampleTabToolBase;

/** An example tab content: one fixed line of text in a grey border. */
class debugPanel : public SCompoundWidget
{
public:
	SLATE_BEGIN_ARGS(debugPanel) {}
	/** The tab tool that made the panel. */
	SLATE_ARGUMENT(TWeakPtr<ExampleTabToolBase>, Tool)
	SLATE_END_ARGS()

	void Construct(const FArguments& InArgs);

protected:
	TWeakPtr<ExampleTabToolBase> Tool;
};
