// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Widgets/DeclarativeSyntaxSupport.h"
#include "Widgets/SCompoundWidget.h"

class ExampleTabToolBase;

/** The Input Recorder tab's content: records play-in-editor input as test script lines. */
class RecorderToolPanel : public SCompoundWidget
{
public:
	SLATE_BEGIN_ARGS(RecorderToolPanel) {}
	/** The tab tool that made the panel. */
	SLATE_ARGUMENT(TWeakPtr<ExampleTabToolBase>, Tool)
	SLATE_END_ARGS()

	void Construct(const FArguments& InArgs);

protected:
	TWeakPtr<ExampleTabToolBase> Tool;
};
