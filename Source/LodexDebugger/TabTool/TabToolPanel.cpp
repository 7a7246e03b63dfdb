// Copyright Lodex contributors.
#include "TabToolPanel.h"

#include "EditorStyleSet.h"
#include "LodexDebugger/Interop/LodexInterop.h"
#include "VELTStyle.h"
#include "Widgets/Images/SImage.h"
#include "Widgets/Input/SButton.h"
#include "Widgets/Input/SEditableTextBox.h"
#include "Widgets/Layout/SScrollBox.h"
#include "Widgets/SBoxPanel.h"
#include "Widgets/SToolTip.h"
#include "Widgets/Text/SRichTextBlock.h"
#include "Widgets/Text/STextBlock.h"
#include "Widgets/Views/STableRow.h"

namespace LodexTabToolPanel
{
	FText ToDisplayText(const std::string& Text)
	{
		return FText::FromString(LodexInterop::FromUtf8(Text));
	}

	/** The list's item source rebuilt from the model's items: one new shared string a line. */
	void CopyItems(const std::vector<std::string>& From, TArray<TSharedPtr<FString>>& To)
	{
		To.Reset(static_cast<int32>(From.size()));
		for (const std::string& Item : From)
		{
			To.Add(MakeShared<FString>(LodexInterop::FromUtf8(Item)));
		}
	}
}

TabToolPanel::TabToolPanel()
	: Model(Host)
{
}

void TabToolPanel::Construct(const FArguments& InArgs)
{
	// The first panel made creates the module's style set; later ones find it in place.
	VELTStyle::Initialize();
	Tool = InArgs._Tool;

	using namespace LodexDebuggerLayout;
	const auto Label = [](const char* Text)
	{
		return SNew(STextBlock).Text(LodexInterop::ToText(Text));
	};
	const auto Button = [this](const char* Text, FReply (TabToolPanel::*Handler)())
	{
		return SNew(SButton)
			.Text(LodexInterop::ToText(Text))
			.IsEnabled(this, &TabToolPanel::AreButtonsEnabled)
			.OnClicked(this, Handler);
	};

	// clang-format off
	ChildSlot
	[
		SNew(SVerticalBox)
		+ SVerticalBox::Slot()
		.AutoHeight()
		.Padding(RowMargin)
		[
			SNew(SHorizontalBox)
			+ SHorizontalBox::Slot().FillWidth(LabelFillWidth)[Label(PathLabel)]
			+ SHorizontalBox::Slot()
			.FillWidth(ValueFillWidth)
			[
				SAssignNew(PathBox, SEditableTextBox)
				// Enter leaves the focus in the box: one commit, and the focused panel polls for the answer.
				.ClearKeyboardFocusOnCommit(false)
				.OnTextChanged(this, &TabToolPanel::HandlePathTextChanged)
				.OnTextCommitted(this, &TabToolPanel::HandlePathTextCommitted)
			]
		]
		+ SVerticalBox::Slot()
		.AutoHeight()
		.Padding(RowMargin)
		[
			SNew(SHorizontalBox)
			+ SHorizontalBox::Slot().FillWidth(LabelFillWidth)[Label(EvaluationLabel)]
			+ SHorizontalBox::Slot()
			.AutoWidth()
			[
				SNew(SImage)
				.Image(this, &TabToolPanel::GetErrorIconBrush)
				.ToolTip(SNew(SToolTip)[SAssignNew(MessageText, STextBlock)])
			]
			+ SHorizontalBox::Slot()
			.FillWidth(ValueFillWidth)
			[
				SAssignNew(PathDisplay, SRichTextBlock)
				.DecoratorStyleSet(&VELTStyle::Get())
				.TextStyle(&VELTStyle::Get(), PathDisplayTextStyle)
			]
		]
		+ SVerticalBox::Slot()
		.AutoHeight()
		.Padding(RowMargin)
		[
			SNew(SHorizontalBox)
			+ SHorizontalBox::Slot().AutoWidth()[Button(RunButton, &TabToolPanel::HandleRunClicked)]
			+ SHorizontalBox::Slot().AutoWidth()[Button(StepIntoButton, &TabToolPanel::HandleStepIntoClicked)]
			+ SHorizontalBox::Slot().AutoWidth()[Button(StepOverButton, &TabToolPanel::HandleStepOverClicked)]
			+ SHorizontalBox::Slot().AutoWidth()[Button(ResetButton, &TabToolPanel::HandleResetClicked)]
		]
		+ SVerticalBox::Slot()
		.AutoHeight()
		.Padding(RowMargin)
		[
			SNew(SHorizontalBox)
			+ SHorizontalBox::Slot().FillWidth(LabelFillWidth)[Label(OperationLabel)]
			+ SHorizontalBox::Slot().FillWidth(ValueFillWidth)[SAssignNew(OperationValue, STextBlock)]
		]
		+ SVerticalBox::Slot()
		.AutoHeight()
		.Padding(RowMargin)
		[
			SNew(SHorizontalBox)
			+ SHorizontalBox::Slot().FillWidth(LabelFillWidth)[Label(NodeTypeLabel)]
			+ SHorizontalBox::Slot().FillWidth(ValueFillWidth)[SAssignNew(NodeTypeValue, STextBlock)]
		]
		+ SVerticalBox::Slot()
		.FillHeight(1.0f)
		.Padding(RowMargin)
		[
			SNew(SHorizontalBox)
			+ SHorizontalBox::Slot()
			.FillWidth(StackColumnFillWidth)
			[
				SNew(SVerticalBox)
				+ SVerticalBox::Slot()
				.AutoHeight()
				[
					SAssignNew(StackHeader, STextBlock)
					.Text(LodexInterop::ToText(LodexDebuggerLayout::StackHeader))
				]
				+ SVerticalBox::Slot()
				.FillHeight(1.0f)
				[
					SNew(SScrollBox)
					+ SScrollBox::Slot()
					[
						SAssignNew(StackList, SListView<TSharedPtr<FString>>)
						.ListItemsSource(&StackItems)
						.OnGenerateRow(this, &TabToolPanel::HandleGenerateRow)
					]
				]
			]
			+ SHorizontalBox::Slot()
			.FillWidth(ContextColumnFillWidth)
			[
				SNew(SVerticalBox)
				+ SVerticalBox::Slot()
				.AutoHeight()
				[
					SAssignNew(ContextHeader, STextBlock)
					.Text(LodexInterop::ToText(LodexDebuggerLayout::ContextHeader))
				]
				+ SVerticalBox::Slot()
				.FillHeight(1.0f)
				[
					SNew(SScrollBox)
					+ SScrollBox::Slot()
					[
						SAssignNew(ContextList, SListView<TSharedPtr<FString>>)
						.ListItemsSource(&ContextItems)
						.OnGenerateRow(this, &TabToolPanel::HandleGenerateRow)
					]
				]
			]
		]
		+ SVerticalBox::Slot()
		.AutoHeight()
		.Padding(DurationMargin)
		[
			SAssignNew(DurationText, STextBlock)
			.Text(LodexInterop::ToText(InitialDuration))
		]
	];
	// clang-format on
}

void TabToolPanel::Tick(const FGeometry& AllottedGeometry, const double InCurrentTime, const float InDeltaTime)
{
	SCompoundWidget::Tick(AllottedGeometry, InCurrentTime, InDeltaTime);
	Model.Tick(HasAnyUserFocusOrFocusedDescendants());
	UpdateFromModel();
}

FString TabToolPanel::ExtractHighlight(const FString& MarkedUpPath)
{
	return LodexInterop::FromUtf8(FLodexDebuggerPanel::ExtractHighlight(LodexInterop::ToUtf8(MarkedUpPath)));
}

void TabToolPanel::HandlePathTextChanged(const FText& Text)
{
	Model.OnPathTextChanged(LodexInterop::ToUtf8(Text.ToString()));
}

void TabToolPanel::HandlePathTextCommitted(const FText& Text, ETextCommit::Type CommitType)
{
	Model.OnPathTextCommitted(LodexInterop::ToUtf8(Text.ToString()));
	UpdateFromModel();
}

FReply TabToolPanel::HandleRunClicked()
{
	Model.OnRunClicked();
	UpdateFromModel();
	return FReply::Handled();
}

FReply TabToolPanel::HandleStepIntoClicked()
{
	Model.OnStepIntoClicked();
	UpdateFromModel();
	return FReply::Handled();
}

FReply TabToolPanel::HandleStepOverClicked()
{
	Model.OnStepOverClicked();
	UpdateFromModel();
	return FReply::Handled();
}

FReply TabToolPanel::HandleResetClicked()
{
	Model.OnResetClicked();
	UpdateFromModel();
	return FReply::Handled();
}

bool TabToolPanel::AreButtonsEnabled() const
{
	return Model.AreButtonsEnabled();
}

const FSlateBrush* TabToolPanel::GetErrorIconBrush() const
{
	return Model.HasError() ? FEditorStyle::GetBrush(LodexInterop::ToName(LodexDebuggerLayout::ErrorIconBrush))
							: nullptr;
}

TSharedRef<ITableRow> TabToolPanel::HandleGenerateRow(
	TSharedPtr<FString> Item, const TSharedRef<STableViewBase>& OwnerTable)
{
	// clang-format off
	return SNew(STableRow<TSharedPtr<FString>>, OwnerTable)
		.Padding(LodexDebuggerLayout::ListRowPadding)
		[
			SNew(STextBlock)
			.Text(FText::FromString(Item.IsValid() ? *Item : FString()))
		];
	// clang-format on
}

void TabToolPanel::UpdateFromModel()
{
	if (Model.GetPathBoxClears() != ShownPathBoxClears)
	{
		ShownPathBoxClears = Model.GetPathBoxClears();
		PathBox->SetText(FText::GetEmpty());
	}
	if (Model.GetTextsRevision() != ShownTextsRevision)
	{
		ShownTextsRevision = Model.GetTextsRevision();
		PathDisplay->SetText(LodexTabToolPanel::ToDisplayText(Model.GetPathDisplay()));
		MessageText->SetText(LodexTabToolPanel::ToDisplayText(Model.GetMessageText()));
		OperationValue->SetText(LodexTabToolPanel::ToDisplayText(Model.GetOperationText()));
		NodeTypeValue->SetText(LodexTabToolPanel::ToDisplayText(Model.GetNodeTypeText()));
		StackHeader->SetText(LodexTabToolPanel::ToDisplayText(Model.GetStackHeader()));
		ContextHeader->SetText(LodexTabToolPanel::ToDisplayText(Model.GetContextHeader()));
		DurationText->SetText(LodexTabToolPanel::ToDisplayText(Model.GetDurationText()));
	}
	if (Model.GetStackItemsRevision() != ShownStackItemsRevision)
	{
		ShownStackItemsRevision = Model.GetStackItemsRevision();
		LodexTabToolPanel::CopyItems(Model.GetStackItems(), StackItems);
		StackList->RequestListRefresh();
	}
	if (Model.GetContextItemsRevision() != ShownContextItemsRevision)
	{
		ShownContextItemsRevision = Model.GetContextItemsRevision();
		LodexTabToolPanel::CopyItems(Model.GetContextItems(), ContextItems);
		ContextList->RequestListRefresh();
	}
}
