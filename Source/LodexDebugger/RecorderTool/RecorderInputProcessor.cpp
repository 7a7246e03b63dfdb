// Copyright Lodex contributors.
#include "RecorderInputProcessor.h"

#include "Input/Events.h"
#include "LodexDebugger/Interop/LodexInterop.h"
#include "RecorderEditorAdapters.h"

#include "LodexDebugger/Core/Recorder/LodexInputRecorder.h"

FRecorderInputProcessor::FRecorderInputProcessor(FLodexInputRecorder& InRecorder)
	: Recorder(&InRecorder)
{
}

void FRecorderInputProcessor::Tick(const float DeltaTime, FSlateApplication& SlateApp, TSharedRef<ICursor> Cursor)
{
	if (Recorder)
	{
		Recorder->Tick();
	}
}

bool FRecorderInputProcessor::HandleKeyDownEvent(FSlateApplication& SlateApp, const FKeyEvent& InKeyEvent)
{
	return Recorder && Recorder->HandleKeyDown(LodexInterop::ToKeyInput(InKeyEvent));
}

bool FRecorderInputProcessor::HandleKeyUpEvent(FSlateApplication& SlateApp, const FKeyEvent& InKeyEvent)
{
	return Recorder && Recorder->HandleKeyUp(LodexInterop::ToKeyInput(InKeyEvent));
}

bool FRecorderInputProcessor::HandleAnalogInputEvent(
	FSlateApplication& SlateApp, const FAnalogInputEvent& InAnalogInputEvent)
{
	return Recorder && Recorder->HandleAnalogInput(LodexInterop::ToAnalogInput(InAnalogInputEvent));
}

bool FRecorderInputProcessor::HandleMouseMoveEvent(FSlateApplication& SlateApp, const FPointerEvent& MouseEvent)
{
	return Recorder && Recorder->HandleMouseMove(LodexInterop::ToPointerInput(MouseEvent));
}

bool FRecorderInputProcessor::HandleMouseButtonDownEvent(FSlateApplication& SlateApp, const FPointerEvent& MouseEvent)
{
	return Recorder && Recorder->HandleMouseButtonDown(LodexInterop::ToPointerInput(MouseEvent));
}

bool FRecorderInputProcessor::HandleMouseButtonUpEvent(FSlateApplication& SlateApp, const FPointerEvent& MouseEvent)
{
	return Recorder && Recorder->HandleMouseButtonUp(LodexInterop::ToPointerInput(MouseEvent));
}

bool FRecorderInputProcessor::HandleMouseButtonDoubleClickEvent(
	FSlateApplication& SlateApp, const FPointerEvent& MouseEvent)
{
	return Recorder && Recorder->HandleMouseButtonDoubleClick(LodexInterop::ToPointerInput(MouseEvent));
}

bool FRecorderInputProcessor::HandleMouseWheelOrGestureEvent(
	FSlateApplication& SlateApp, const FPointerEvent& InWheelEvent, const FPointerEvent* InGestureEvent)
{
	return Recorder && Recorder->HandleMouseWheel(LodexInterop::ToWheelInput(InWheelEvent));
}

bool FRecorderInputProcessor::HandleMotionDetectedEvent(FSlateApplication& SlateApp, const FMotionEvent& MotionEvent)
{
	return Recorder && Recorder->HandleMotionDetected();
}

const TCHAR* FRecorderInputProcessor::GetDebugName() const
{
	return TEXT("VELTInput");
}

int32 FRecorderInputProcessor::GetEventRecordFieldCount() const
{
	return FLodexInputRecorder::GetEventRecordFieldCount();
}

void FRecorderInputProcessor::Detach()
{
	Recorder = nullptr;
}
