// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Widgets/DeclarativeSyntaxSupport.h"
#include "Widgets/SCompoundWidget.h"

class ExampleTabToolBase;

/** The Object Explorer tab's content: the selected object's components, properties and methods. */
class DetailsToolPanel : public SCompoundWidget
{
public:
	SLATE_BEGIN_ARGS(DetailsToolPanel) {}
	/** The tab tool that made the panel. */
	SLATE_ARGUMENT(TWeakPtr<ExampleTabToolBase>, Tool)
	SLATE_END_ARGS()

	void Construct(const FArguments& InArgs);

protected:
	TWeakPtr<ExampleTabToolBase> Tool;
};
