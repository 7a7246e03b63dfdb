// Copyright Lodex contributors.
#include "DetailsToolPanel.h"

#include "VELTStyle.h"

void DetailsToolPanel::Construct(const FArguments& InArgs)
{
	// The first panel made creates the module's style set; later ones find it in place.
	VELTStyle::Initialize();
	Tool = InArgs._Tool;
}
