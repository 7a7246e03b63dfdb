// Copyright Lodex contributors.
#include "debugPanel.h"

#include "LodexDebugger/Core/Shell/LodexExamplePanel.h"
#include "LodexDebugger/Interop/LodexInterop.h"
#include "Widgets/Layout/SBorder.h"
#include "Widgets/Layout/SScrollBox.h"
#include "Widgets/Text/STextBlock.h"

void debugPanel::Construct(const FArguments& InArgs)
{
	Tool = InArgs._Tool;

	const FLodexExamplePanelInfo& Panel = GetLodexExamplePanel();
	// clang-format off
	ChildSlot
	[
		SNew(SScrollBox)
		+ SScrollBox::Slot()
		.Padding(Panel.ScrollSlotPadding)
		[
			SNew(SBorder)
			.BorderBackgroundColor(LodexInterop::ToSlateColor(Panel.BorderColor))
			.Padding(Panel.BorderPadding)
			[
				SNew(STextBlock)
				.Text(LodexInterop::ToText(Panel.Text))
			]
		]
	];
	// clang-format on
}
