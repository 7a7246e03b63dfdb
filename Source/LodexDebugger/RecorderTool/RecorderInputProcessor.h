// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Framework/Application/IInputProcessor.h"

class FLodexInputRecorder;

/**
 * The Input Recorder's input pre-processor: every handler forwards the event to the recorder's core and returns false,
 * so the event always goes on to the game. The panel registers it at Record and detaches and unregisters it at Stop,
 * or when the panel or its tab goes away while recording; once detached it does nothing.
 */
class FRecorderInputProcessor final : public IInputProcessor
{
public:
	explicit FRecorderInputProcessor(FLodexInputRecorder& InRecorder);
	virtual ~FRecorderInputProcessor() override = default;

	//~ Begin IInputProcessor Interface
	virtual void Tick(const float DeltaTime, FSlateApplication& SlateApp, TSharedRef<ICursor> Cursor) override;
	virtual bool HandleKeyDownEvent(FSlateApplication& SlateApp, const FKeyEvent& InKeyEvent) override;
	virtual bool HandleKeyUpEvent(FSlateApplication& SlateApp, const FKeyEvent& InKeyEvent) override;
	virtual bool HandleAnalogInputEvent(
		FSlateApplication& SlateApp, const FAnalogInputEvent& InAnalogInputEvent) override;
	virtual bool HandleMouseMoveEvent(FSlateApplication& SlateApp, const FPointerEvent& MouseEvent) override;
	virtual bool HandleMouseButtonDownEvent(FSlateApplication& SlateApp, const FPointerEvent& MouseEvent) override;
	virtual bool HandleMouseButtonUpEvent(FSlateApplication& SlateApp, const FPointerEvent& MouseEvent) override;
	virtual bool HandleMouseButtonDoubleClickEvent(
		FSlateApplication& SlateApp, const FPointerEvent& MouseEvent) override;
	virtual bool HandleMouseWheelOrGestureEvent(
		FSlateApplication& SlateApp, const FPointerEvent& InWheelEvent, const FPointerEvent* InGestureEvent) override;
	virtual bool HandleMotionDetectedEvent(FSlateApplication& SlateApp, const FMotionEvent& MotionEvent) override;
	virtual const TCHAR* GetDebugName() const override;
	//~ End IInputProcessor Interface

	/** The number of fields of an event record: 8. */
	virtual int32 GetEventRecordFieldCount() const;

	/** Cuts the processor off from the recorder, which is about to go. */
	void Detach();

private:
	FLodexInputRecorder* Recorder;
};
