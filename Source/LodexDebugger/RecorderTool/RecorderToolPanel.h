// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Framework/SlateDelegates.h"
#include "Input/Reply.h"
#include "Styling/SlateTypes.h"
#include "Types/SlateEnums.h"
#include "Widgets/DeclarativeSyntaxSupport.h"
#include "Widgets/SCompoundWidget.h"

#include "RecorderEditorAdapters.h"
#include "LodexDebugger/Core/Recorder/LodexRecorderPanel.h"

class ExampleTabToolBase;
class FRecorderInputProcessor;
class SDockTab;
class SMultiLineEditableText;
class SScrollBox;
struct FSlateBrush;

/**
 * The Input Recorder tab's content: records play-in-editor input as test script lines. The widgets show the core's
 * panel model (FLodexRecorderPanel) and forward the buttons to it; the output text is set at most once per frame.
 */
class RecorderToolPanel : public SCompoundWidget
{
public:
	SLATE_BEGIN_ARGS(RecorderToolPanel) {}
	/** The tab tool that made the panel. */
	SLATE_ARGUMENT(TWeakPtr<ExampleTabToolBase>, Tool)
	SLATE_END_ARGS()

	void Construct(const FArguments& InArgs);

	/** Stops a recording under way, so that no input processor outlives the panel. */
	virtual ~RecorderToolPanel() override;

	/** The tab is closing: a recording under way stops. */
	void HandleTabClosed(TSharedRef<SDockTab> ClosedTab);

	//~ Begin SWidget Interface
	virtual void Tick(const FGeometry& AllottedGeometry, const double InCurrentTime, const float InDeltaTime) override;
	//~ End SWidget Interface

protected:
	TWeakPtr<ExampleTabToolBase> Tool;

private:
	/** The editor's automation test presses Record and looks at the input processor. */
	friend class FLodexRecorderProcessorTest;

	TSharedRef<SWidget> MakeIconButton(
		TAttribute<const FSlateBrush*> Brush, TAttribute<FText> ToolTip, FOnClicked OnClicked) const;

	FReply HandleRecordClicked();
	FReply HandleDownloadClicked();
	FReply HandleInfoClicked();
	FReply HandleResetClicked();
	FReply HandleQuickInsertClicked(ELodexQuickInsert Button);
	const FSlateBrush* GetRecordBrush() const;
	FText GetRecordToolTip() const;
	TSharedRef<SWidget> HandleGeneratePathMode(TSharedPtr<FString> Mode) const;
	void HandlePathModeChanged(TSharedPtr<FString> Mode, ESelectInfo::Type SelectInfo);
	FText GetPathModeText() const;
	ECheckBoxState GetUseFpsState() const;
	void HandleUseFpsChanged(ECheckBoxState State);

	void StartRecording();
	void StopRecording();
	/** A notification the user sees, for what would otherwise go unnoticed (a file that could not be written). */
	static void Notify(const FText& Message, bool bSuccess);

	FRecorderEditorHost Host;
	FLodexRecorderPanel Model{Host};
	TSharedPtr<FRecorderInputProcessor> Processor;
	TUniquePtr<FRecorderInputLogFile> InputLog;

	TArray<TSharedPtr<FString>> PathModes;
	TSharedPtr<SScrollBox> ScrollBox;
	TSharedPtr<SMultiLineEditableText> OutputText;
	/** The model's refresh the output text shows. */
	uint64 ShownRefreshCount = 0;
};
