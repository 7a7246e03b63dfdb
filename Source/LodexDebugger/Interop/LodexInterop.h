// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Framework/MultiBox/MultiBoxExtender.h"
#include "Styling/SlateColor.h"

#include "LodexDebugger/Core/Lodestring/Lodestring.h"
#include "LodexDebugger/Core/Lodestring/LodexObjectGraph.h"
#include "LodexDebugger/Core/Recorder/LodexInputRecorder.h"
#include "LodexDebugger/Core/Shell/LodexShell.h"
#include "LodexDebugger/Core/Shell/LodexStyle.h"

#include <string>
#include <string_view>

class UObject;
struct FAnalogInputEvent;
struct FKeyEvent;
struct FPointerEvent;

/** The conversions between the engine's types and the core's: UTF-8 text and object handles. */
namespace LodexInterop
{
	/** The engine string as UTF-8 bytes; every character survives, "Tür" and "用户" included. */
	std::string ToUtf8(const FString& Text);

	/** The UTF-8 text as an engine string. */
	FString FromUtf8(const std::string& Text);
	FString FromUtf8(std::string_view Text);
	FString FromUtf8(const char* Text);

	/** A display text made from the UTF-8 string as it stands (not localised). */
	FText ToText(const char* Text);

	/** A name made from the UTF-8 text; an empty or null text gives NAME_None. */
	FName ToName(const char* Text);

	FLodexObject ToLodexObject(const UObject* Object);
	UObject* ToUObject(FLodexObject Object);

	/** A linear or 8-bit colour as a linear colour; the foreground colour has none and gives white. */
	FLinearColor ToLinearColor(const FLodexStyleColor& Color);

	/** A style colour as a Slate colour: the widget's foreground, or the colour itself. */
	FSlateColor ToSlateColor(const FLodexStyleColor& Color);

	FVector2D ToVector2D(const FLodexVector2& Vector);

	EExtensionHook::Position ToExtensionHookPosition(ELodexExtensionPosition Position);

	/** The engine's input events as the recorder reads them: the key's name, the pointer, the button, the wheel. */
	FLodexKeyInput ToKeyInput(const FKeyEvent& Event);
	FLodexKeyInput ToAnalogInput(const FAnalogInputEvent& Event);
	FLodexPointerInput ToPointerInput(const FPointerEvent& Event);
	FLodexPointerInput ToWheelInput(const FPointerEvent& Event);
}

/** The core's object-graph view answered by the engine's reflected objects. */
class FLodexUObjectGraph final : public ILodexObjectGraph
{
public:
	//~ Begin ILodexObjectGraph Interface
	virtual bool IsOfClass(FLodexObject Object, ELodexClass Class) const override;
	virtual std::string GetName(FLodexObject Object) const override;
	virtual FLodexObject GetOuter(FLodexObject Object) const override;
	virtual FLodexObject GetAttachParent(FLodexObject Object) const override;
	virtual FLodexObject GetWidgetParent(FLodexObject Object) const override;
	virtual FLodexObject GetRootWidget(FLodexObject Object) const override;
	virtual bool GetTags(FLodexObject Object, std::vector<std::string>& OutTags) const override;
	/**
	 * In the editor's world every actor is saved with its level. In a game world an actor was loaded with its level
	 * when the level marked it a network start-up actor as it initialised (`AActor::IsNetStartupActor`), or, in
	 * play-in-editor, when the editor's world holds the actor it was copied from; any other was spawned at play
	 * time. A component counts as its owner does.
	 */
	virtual ELodexPlacement GetPlacement(FLodexObject Object) const override;
	/** An actor's `AActor::GetActorGuid`, as `FGuid::ToString()` writes it; empty for other objects and invalid GUIDs.
	 */
	virtual std::string GetActorGuid(FLodexObject Object) const override;
	//~ End ILodexObjectGraph Interface
};

/** The Lodestring of a non-null object in the given mode ("Absolute", "Relative", "Tag"), as the core builds it. */
FString BuildLodestring(UObject* Object, const FString& Mode);
