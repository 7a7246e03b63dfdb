// Copyright Lodex contributors.
#include "ReplToolPanel.h"

#include "LodexDebugger/Interop/LodexInterop.h"
#include "VELTStyle.h"
#include "Widgets/Input/SEditableTextBox.h"
#include "Widgets/Layout/SBorder.h"
#include "Widgets/SBoxPanel.h"
#include "Widgets/Text/STextBlock.h"

ReplToolPanel::ReplToolPanel()
	: Model(Host)
{
}

void ReplToolPanel::Construct(const FArguments& InArgs)
{
	// The first panel made creates the module's style set; later ones find it in place.
	VELTStyle::Initialize();
	Tool = InArgs._Tool;

	// clang-format off
	ChildSlot
	[
		SNew(SVerticalBox)
		+ SVerticalBox::Slot()
		.AutoHeight()
		.Padding(LodexReplLayout::RowMargin)
		[
			SNew(SHorizontalBox)
			+ SHorizontalBox::Slot()
			.FillWidth(LodexReplLayout::LabelFillWidth)
			[
				SNew(STextBlock)
				.Text(LodexInterop::ToText(LodexReplLayout::PathLabel))
			]
			+ SHorizontalBox::Slot()
			.FillWidth(LodexReplLayout::PathBoxFillWidth)
			[
				SAssignNew(PathBox, SEditableTextBox)
				// Enter leaves the focus in the box: one commit, and the focused panel polls for the answer.
				.ClearKeyboardFocusOnCommit(false)
				.OnTextChanged(this, &ReplToolPanel::HandlePathTextChanged)
				.OnTextCommitted(this, &ReplToolPanel::HandlePathTextCommitted)
			]
			+ SHorizontalBox::Slot()
			.FillWidth(LodexReplLayout::CountBoxFillWidth)
			[
				// The border takes the state colour once, here; later state colours are not drawn.
				SNew(SBorder)
				.BorderBackgroundColor(FSlateColor(LodexInterop::ToLinearColor(FLodexReplPanel::GetBorderColor())))
				[
					SAssignNew(CountText, STextBlock)
					.ColorAndOpacity(FSlateColor(LodexInterop::ToLinearColor(LodexReplLayout::CountTextColor)))
				]
			]
		]
	];
	// clang-format on
}

void ReplToolPanel::Tick(const FGeometry& AllottedGeometry, const double InCurrentTime, const float InDeltaTime)
{
	SCompoundWidget::Tick(AllottedGeometry, InCurrentTime, InDeltaTime);
	Model.Tick(HasAnyUserFocusOrFocusedDescendants());
	UpdateCountText();
}

FReply ReplToolPanel::Run()
{
	Model.Run();
	UpdateCountText();
	return FReply::Handled();
}

void ReplToolPanel::HandlePathTextChanged(const FText& Text)
{
	Model.OnPathTextChanged(LodexInterop::ToUtf8(Text.ToString()));
}

void ReplToolPanel::HandlePathTextCommitted(const FText& Text, ETextCommit::Type CommitType)
{
	Model.OnPathTextCommitted(LodexInterop::ToUtf8(Text.ToString()));
	UpdateCountText();
}

void ReplToolPanel::UpdateCountText()
{
	if (Model.GetCountRevision() != ShownCountRevision)
	{
		ShownCountRevision = Model.GetCountRevision();
		CountText->SetText(FText::FromString(LodexInterop::FromUtf8(Model.GetCountText())));
	}
}
