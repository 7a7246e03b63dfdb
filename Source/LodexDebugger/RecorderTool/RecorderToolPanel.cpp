// Copyright Lodex contributors.
#include "RecorderToolPanel.h"

#include "VELTStyle.h"

void RecorderToolPanel::Construct(const FArguments& InArgs)
{
	// The first panel made creates the module's style set; later ones find it in place.
	VELTStyle::Initialize();
	Tool = InArgs._Tool;
}
