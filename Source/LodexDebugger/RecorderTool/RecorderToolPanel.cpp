// Copyright Lodex contributors.
#include "RecorderToolPanel.h"

#include "DesktopPlatformModule.h"
#include "Framework/Application/SlateApplication.h"
#include "Framework/Notifications/NotificationManager.h"
#include "HAL/PlatformProcess.h"
#include "IDesktopPlatform.h"
#include "Misc/Paths.h"
#include "Widgets/Images/SImage.h"
#include "Widgets/Input/SButton.h"
#include "Widgets/Input/SCheckBox.h"
#include "Widgets/Input/SComboBox.h"
#include "Widgets/Layout/SBox.h"
#include "Widgets/Layout/SScrollBox.h"
#include "Widgets/Notifications/SNotificationList.h"
#include "Widgets/SBoxPanel.h"
#include "Widgets/Text/SMultiLineEditableText.h"
#include "Widgets/Text/STextBlock.h"

#include "LodexDebugger/Interop/LodexInterop.h"
#include "RecorderInputProcessor.h"
#include "VELTStyle.h"

#define LOCTEXT_NAMESPACE "RecorderTool"

void RecorderToolPanel::Construct(const FArguments& InArgs)
{
	// The first panel made creates the module's style set; later ones find it in place.
	VELTStyle::Initialize();
	Tool = InArgs._Tool;

	for (const std::string& Mode : FLodexRecorderPanel::GetPathModes())
	{
		PathModes.Add(MakeShared<FString>(LodexInterop::FromUtf8(Mode)));
	}
	const ISlateStyle& Style = VELTStyle::Get();
	auto StaticBrush = [&Style](const FLodexIconButtonInfo& Info)
	{
		return TAttribute<const FSlateBrush*>(Style.GetBrush(LodexInterop::ToName(Info.Brush)));
	};
	auto StaticToolTip = [](const FLodexIconButtonInfo& Info)
	{
		return TAttribute<FText>(LodexInterop::ToText(Info.ToolTip));
	};

	TSharedRef<SHorizontalBox> QuickInsertRow = SNew(SHorizontalBox);
	for (const FLodexQuickInsertInfo& Button : FLodexRecorderPanel::GetQuickInserts())
	{
		// clang-format off
		QuickInsertRow->AddSlot()
		.AutoWidth()
		[
			SNew(SButton)
			.Text(LodexInterop::ToText(Button.Label))
			.OnClicked(this, &RecorderToolPanel::HandleQuickInsertClicked, Button.Button)
		];
		// clang-format on
	}

	// clang-format off
	ChildSlot
	[
		SNew(SVerticalBox)
		+ SVerticalBox::Slot()
		.AutoHeight()
		[
			SNew(SHorizontalBox)
			+ SHorizontalBox::Slot()
			.AutoWidth()
			[
				MakeIconButton(TAttribute<const FSlateBrush*>(this, &RecorderToolPanel::GetRecordBrush),
					TAttribute<FText>(this, &RecorderToolPanel::GetRecordToolTip),
					FOnClicked::CreateSP(this, &RecorderToolPanel::HandleRecordClicked))
			]
			+ SHorizontalBox::Slot()
			.AutoWidth()
			[
				MakeIconButton(StaticBrush(FLodexRecorderPanel::GetDownloadButton()),
					StaticToolTip(FLodexRecorderPanel::GetDownloadButton()),
					FOnClicked::CreateSP(this, &RecorderToolPanel::HandleDownloadClicked))
			]
			+ SHorizontalBox::Slot()
			.AutoWidth()
			.VAlign(VAlign_Center)
			[
				SNew(STextBlock)
				.Text(LodexInterop::ToText(FLodexRecorderPanel::GetPathModeLabel()))
			]
			+ SHorizontalBox::Slot()
			.AutoWidth()
			[
				SNew(SComboBox<TSharedPtr<FString>>)
				.OptionsSource(&PathModes)
				.InitiallySelectedItem(PathModes[0])
				.OnGenerateWidget(this, &RecorderToolPanel::HandleGeneratePathMode)
				.OnSelectionChanged(this, &RecorderToolPanel::HandlePathModeChanged)
				[
					SNew(STextBlock)
					.Text(this, &RecorderToolPanel::GetPathModeText)
				]
			]
			+ SHorizontalBox::Slot()
			.AutoWidth()
			[
				MakeIconButton(StaticBrush(FLodexRecorderPanel::GetInfoButton()),
					StaticToolTip(FLodexRecorderPanel::GetInfoButton()),
					FOnClicked::CreateSP(this, &RecorderToolPanel::HandleInfoClicked))
			]
			+ SHorizontalBox::Slot()
			.AutoWidth()
			[
				MakeIconButton(StaticBrush(FLodexRecorderPanel::GetResetButton()),
					StaticToolTip(FLodexRecorderPanel::GetResetButton()),
					FOnClicked::CreateSP(this, &RecorderToolPanel::HandleResetClicked))
			]
		]
		+ SVerticalBox::Slot()
		.AutoHeight()
		[
			QuickInsertRow
		]
		+ SVerticalBox::Slot()
		.AutoHeight()
		[
			SNew(SHorizontalBox)
			+ SHorizontalBox::Slot()
			.AutoWidth()
			.VAlign(VAlign_Center)
			[
				SNew(STextBlock)
				.Text(LodexInterop::ToText(FLodexRecorderPanel::GetUseFpsLabel()))
			]
			+ SHorizontalBox::Slot()
			.AutoWidth()
			[
				SNew(SCheckBox)
				.IsChecked(this, &RecorderToolPanel::GetUseFpsState)
				.OnCheckStateChanged(this, &RecorderToolPanel::HandleUseFpsChanged)
			]
		]
		+ SVerticalBox::Slot()
		.FillHeight(1.0f)
		[
			SAssignNew(ScrollBox, SScrollBox)
			+ SScrollBox::Slot()
			[
				SAssignNew(OutputText, SMultiLineEditableText)
			]
		]
	];
	// clang-format on
	ShownRefreshCount = Model.GetRefreshCount();
}

RecorderToolPanel::~RecorderToolPanel()
{
	StopRecording();
}

void RecorderToolPanel::HandleTabClosed(TSharedRef<SDockTab> ClosedTab)
{
	StopRecording();
}

void RecorderToolPanel::Tick(const FGeometry& AllottedGeometry, const double InCurrentTime, const float InDeltaTime)
{
	SCompoundWidget::Tick(AllottedGeometry, InCurrentTime, InDeltaTime);
	// However many lines came this frame, the text is set once.
	if (ShownRefreshCount != Model.GetRefreshCount())
	{
		ShownRefreshCount = Model.GetRefreshCount();
		OutputText->SetText(FText::FromString(LodexInterop::FromUtf8(Model.GetOutputText())));
		ScrollBox->ScrollToEnd();
	}
}

TSharedRef<SWidget> RecorderToolPanel::MakeIconButton(
	TAttribute<const FSlateBrush*> Brush, TAttribute<FText> ToolTip, FOnClicked OnClicked) const
{
	// clang-format off
	return SNew(SBox)
		[
			SNew(SButton)
			.ToolTipText(ToolTip)
			.OnClicked(OnClicked)
			[
				SNew(SImage)
				.Image(Brush)
			]
		];
	// clang-format on
}

FReply RecorderToolPanel::HandleRecordClicked()
{
	Model.IsRecording() ? StopRecording() : StartRecording();
	return FReply::Handled();
}

void RecorderToolPanel::StartRecording()
{
	if (Model.IsRecording() || !FSlateApplication::IsInitialized())
	{
		return;
	}
	FString InputLogPath;
	InputLog = FRecorderInputLogFile::Create(InputLogPath);
	if (!InputLog)
	{
		Notify(FText::Format(LOCTEXT("LogNotCreated", "The input log {0} could not be created; recording without it."),
				   FText::FromString(InputLogPath)),
			false);
	}
	Model.Record(InputLog.Get());
	Processor = MakeShared<FRecorderInputProcessor>(*Model.GetRecorder());
	if (!FSlateApplication::Get().RegisterInputPreProcessor(Processor, -1))
	{
		Notify(LOCTEXT("NotRegistered", "The Input Recorder could not start capturing input."), false);
		StopRecording();
	}
}

void RecorderToolPanel::StopRecording()
{
	if (Processor)
	{
		Processor->Detach();
		if (FSlateApplication::IsInitialized())
		{
			FSlateApplication::Get().UnregisterInputPreProcessor(Processor);
		}
		Processor.Reset();
	}
	Model.Stop();
	if (InputLog)
	{
		const bool bLogFailed = InputLog->HasFailed();
		InputLog.Reset();
		if (bLogFailed)
		{
			Notify(LOCTEXT("LogIncomplete", "The input log could not be written whole (is the disk full?)."), false);
		}
	}
}

FReply RecorderToolPanel::HandleDownloadClicked()
{
	IDesktopPlatform* DesktopPlatform = FDesktopPlatformModule::Get();
	if (!DesktopPlatform)
	{
		return FReply::Handled();
	}
	const FLodexSaveDialogInfo Dialog = FLodexRecorderPanel::GetSaveDialog();
	TArray<FString> Files;
	const void* ParentWindow = FSlateApplication::Get().FindBestParentWindowHandleForDialogs(AsShared());
	if (!DesktopPlatform->SaveFileDialog(ParentWindow, LodexInterop::FromUtf8(Dialog.Title), FPaths::ProjectDir(),
			LodexInterop::FromUtf8(Dialog.DefaultFileName), LodexInterop::FromUtf8(Dialog.FileTypes),
			EFileDialogFlags::None, Files) ||
		Files.Num() == 0)
	{
		// Cancelled: nothing is written.
		return FReply::Handled();
	}
	// The text the output area shows, the user's edits included; a recording under way goes on.
	const FString Shown = OutputText.IsValid() ? OutputText->GetText().ToString() : FString();
	const std::string Text = FLodexRecorderPanel::MakeDownloadText(LodexInterop::ToUtf8(Shown));
	FText Error;
	if (SaveRecordedScript(Files[0], LodexInterop::FromUtf8(Text), Error))
	{
		Notify(FText::Format(LOCTEXT("Saved", "Recorded input saved to {0}"), FText::FromString(Files[0])), true);
	}
	else
	{
		Notify(Error, false);
	}
	return FReply::Handled();
}

FReply RecorderToolPanel::HandleInfoClicked()
{
	FPlatformProcess::LaunchURL(*LodexInterop::FromUtf8(FLodexRecorderPanel::GetSupportUrl()), nullptr, nullptr);
	return FReply::Handled();
}

FReply RecorderToolPanel::HandleResetClicked()
{
	Model.Reset();
	return FReply::Handled();
}

FReply RecorderToolPanel::HandleQuickInsertClicked(ELodexQuickInsert Button)
{
	Model.InsertQuickLine(Button);
	return FReply::Handled();
}

const FSlateBrush* RecorderToolPanel::GetRecordBrush() const
{
	return VELTStyle::Get().GetBrush(LodexInterop::ToName(Model.GetRecordButton().Brush));
}

FText RecorderToolPanel::GetRecordToolTip() const
{
	return LodexInterop::ToText(Model.GetRecordButton().ToolTip);
}

TSharedRef<SWidget> RecorderToolPanel::HandleGeneratePathMode(TSharedPtr<FString> Mode) const
{
	return SNew(STextBlock).Text(FText::FromString(Mode.IsValid() ? *Mode : FString()));
}

void RecorderToolPanel::HandlePathModeChanged(TSharedPtr<FString> Mode, ESelectInfo::Type SelectInfo)
{
	if (Mode.IsValid())
	{
		Model.SetPathMode(LodexInterop::ToUtf8(*Mode));
	}
}

FText RecorderToolPanel::GetPathModeText() const
{
	return FText::FromString(LodexInterop::FromUtf8(Model.GetPathMode()));
}

ECheckBoxState RecorderToolPanel::GetUseFpsState() const
{
	return Model.IsUsingFps() ? ECheckBoxState::Checked : ECheckBoxState::Unchecked;
}

void RecorderToolPanel::HandleUseFpsChanged(ECheckBoxState State)
{
	Model.SetUseFps(State == ECheckBoxState::Checked);
}

void RecorderToolPanel::Notify(const FText& Message, bool bSuccess)
{
	if (!FSlateApplication::IsInitialized())
	{
		return;
	}
	FNotificationInfo Info(Message);
	Info.ExpireDuration = bSuccess ? 4.0f : 10.0f;
	TSharedPtr<SNotificationItem> Item = FSlateNotificationManager::Get().AddNotification(Info);
	if (Item.IsValid())
	{
		Item->SetCompletionState(bSuccess ? SNotificationItem::CS_Success : SNotificationItem::CS_Fail);
	}
}

#undef LOCTEXT_NAMESPACE
