// Copyright Lodex contributors.
#include "TabToolPanel.h"

#include "VELTStyle.h"

void TabToolPanel::Construct(const FArguments& InArgs)
{
	// The first panel made creates the module's style set; later ones find it in place.
	VELTStyle::Initialize();
	Tool = InArgs._Tool;
}
