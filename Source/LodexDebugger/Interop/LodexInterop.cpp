// Copyright Lodex contributors.
#include "LodexInterop.h"

#include "Blueprint/UserWidget.h"
#include "Blueprint/WidgetTree.h"
#include "Components/ActorComponent.h"
#include "Components/PanelWidget.h"
#include "Components/Widget.h"
#include "Containers/StringConv.h"
#include "Editor.h"
#include "Engine/World.h"
#include "GameFramework/Actor.h"
#include "Input/Events.h"
#include "UObject/Class.h"
#include "UObject/UnrealType.h"

#include "LodexDebugger/Core/Text/LodexText.h"

namespace LodexInterop
{
	std::string ToUtf8(const FString& Text)
	{
		const FTCHARToUTF8 Converted(*Text, Text.Len());
		return std::string(Converted.Get(), static_cast<size_t>(Converted.Length()));
	}

	FString FromUtf8(const std::string& Text)
	{
		// The core's reader, not FUTF8ToTCHAR: that one turns U+FFFE and U+FFFF into '?', and the evaluator's
		// 8-bit bytes 0xFE and 0xFF read as exactly those characters (LodexText::FromAnsi).
		FString Result;
		Result.Reserve(static_cast<int32>(Text.size()));
		LodexText::ForEachUtf16Unit(Text, [&Result](char16_t Unit) { Result.AppendChar(static_cast<TCHAR>(Unit)); });
		return Result;
	}

	FString FromUtf8(std::string_view Text)
	{
		return FromUtf8(std::string(Text));
	}

	FString FromUtf8(const char* Text)
	{
		return Text ? FromUtf8(std::string(Text)) : FString();
	}

	FText ToText(const char* Text)
	{
		return FText::FromString(FromUtf8(Text));
	}

	FName ToName(const char* Text)
	{
		return (Text && *Text) ? FName(*FromUtf8(Text)) : FName(NAME_None);
	}

	FLodexObject ToLodexObject(const UObject* Object)
	{
		return FLodexObject(Object);
	}

	UObject* ToUObject(FLodexObject Object)
	{
		return const_cast<UObject*>(static_cast<const UObject*>(Object.Ptr));
	}

	FLinearColor ToLinearColor(const FLodexStyleColor& Color)
	{
		switch (Color.Kind)
		{
			case ELodexColorKind::Color8:
				return FLinearColor(FColor(static_cast<uint8>(Color.R), static_cast<uint8>(Color.G),
					static_cast<uint8>(Color.B), static_cast<uint8>(Color.A)));
			case ELodexColorKind::Linear:
				return FLinearColor(Color.R, Color.G, Color.B, Color.A);
			case ELodexColorKind::UseForeground:
				break;
		}
		return FLinearColor::White;
	}

	FSlateColor ToSlateColor(const FLodexStyleColor& Color)
	{
		return Color.Kind == ELodexColorKind::UseForeground ? FSlateColor::UseForeground()
															: FSlateColor(ToLinearColor(Color));
	}

	FVector2D ToVector2D(const FLodexVector2& Vector)
	{
		return FVector2D(Vector.X, Vector.Y);
	}

	EExtensionHook::Position ToExtensionHookPosition(ELodexExtensionPosition Position)
	{
		switch (Position)
		{
			case ELodexExtensionPosition::Before:
				return EExtensionHook::Before;
			case ELodexExtensionPosition::After:
				return EExtensionHook::After;
			case ELodexExtensionPosition::First:
				return EExtensionHook::First;
		}
		return EExtensionHook::Before;
	}

	FLodexKeyInput ToKeyInput(const FKeyEvent& Event)
	{
		FLodexKeyInput Input;
		Input.Key = ToUtf8(Event.GetKey().GetFName().ToString());
		return Input;
	}

	FLodexKeyInput ToAnalogInput(const FAnalogInputEvent& Event)
	{
		FLodexKeyInput Input = ToKeyInput(Event);
		Input.AnalogValue = Event.GetAnalogValue();
		return Input;
	}

	FLodexPointerInput ToPointerInput(const FPointerEvent& Event)
	{
		FLodexPointerInput Input;
		const FVector2D Position = Event.GetScreenSpacePosition();
		Input.ScreenX = Position.X;
		Input.ScreenY = Position.Y;
		const FKey Button = Event.GetEffectingButton();
		if (Button.IsValid())
		{
			Input.Button = ToUtf8(Button.ToString());
		}
		return Input;
	}

	FLodexPointerInput ToWheelInput(const FPointerEvent& Event)
	{
		FLodexPointerInput Input = ToPointerInput(Event);
		Input.WheelDelta = Event.GetWheelDelta();
		return Input;
	}
}

namespace LodexInteropPrivate
{
	UClass* GetEngineClass(ELodexClass Class)
	{
		switch (Class)
		{
			case ELodexClass::Actor:
				return AActor::StaticClass();
			case ELodexClass::WidgetTree:
				return UWidgetTree::StaticClass();
			case ELodexClass::Widget:
				return UWidget::StaticClass();
			case ELodexClass::UserWidget:
				return UUserWidget::StaticClass();
			case ELodexClass::ActorComponent:
				return UActorComponent::StaticClass();
		}
		return nullptr;
	}
}

bool FLodexUObjectGraph::IsOfClass(FLodexObject Object, ELodexClass Class) const
{
	const UObject* Engine = LodexInterop::ToUObject(Object);
	const UClass* Base = LodexInteropPrivate::GetEngineClass(Class);
	return Engine && Base && Engine->GetClass()->IsChildOf(Base);
}

std::string FLodexUObjectGraph::GetName(FLodexObject Object) const
{
	return LodexInterop::ToUtf8(LodexInterop::ToUObject(Object)->GetFName().ToString());
}

FLodexObject FLodexUObjectGraph::GetOuter(FLodexObject Object) const
{
	return LodexInterop::ToLodexObject(LodexInterop::ToUObject(Object)->GetOuter());
}

FLodexObject FLodexUObjectGraph::GetAttachParent(FLodexObject Object) const
{
	const AActor* Actor = Cast<AActor>(LodexInterop::ToUObject(Object));
	return LodexInterop::ToLodexObject(Actor ? Actor->GetAttachParentActor() : nullptr);
}

FLodexObject FLodexUObjectGraph::GetWidgetParent(FLodexObject Object) const
{
	const UWidget* Widget = Cast<UWidget>(LodexInterop::ToUObject(Object));
	return LodexInterop::ToLodexObject(Widget ? Widget->GetParent() : nullptr);
}

FLodexObject FLodexUObjectGraph::GetRootWidget(FLodexObject Object) const
{
	const UWidgetTree* Tree = Cast<UWidgetTree>(LodexInterop::ToUObject(Object));
	return LodexInterop::ToLodexObject(Tree ? Tree->RootWidget.Get() : nullptr);
}

ELodexPlacement FLodexUObjectGraph::GetPlacement(FLodexObject Object) const
{
	UObject* Engine = LodexInterop::ToUObject(Object);
	AActor* Actor = Cast<AActor>(Engine);
	if (Actor == nullptr)
	{
		const UActorComponent* Component = Cast<UActorComponent>(Engine);
		Actor = Component ? Component->GetOwner() : nullptr;
	}
	const UWorld* World = Actor ? Actor->GetWorld() : nullptr;
	if (World == nullptr)
	{
		return ELodexPlacement::Unknown;
	}
	if (!World->IsGameWorld())
	{
		return ELodexPlacement::Placed;
	}
	return Actor->IsNetStartupActor() || EditorUtilities::GetEditorWorldCounterpartActor(Actor) != nullptr
		? ELodexPlacement::Placed
		: ELodexPlacement::Spawned;
}

std::string FLodexUObjectGraph::GetActorGuid(FLodexObject Object) const
{
#if WITH_EDITOR
	const AActor* Actor = Cast<AActor>(LodexInterop::ToUObject(Object));
	if (Actor != nullptr && Actor->GetActorGuid().IsValid())
	{
		return LodexInterop::ToUtf8(Actor->GetActorGuid().ToString());
	}
#endif
	return std::string();
}

bool FLodexUObjectGraph::GetTags(FLodexObject Object, std::vector<std::string>& OutTags) const
{
	OutTags.clear();
	UObject* Engine = LodexInterop::ToUObject(Object);
	const FArrayProperty* TagsProperty =
		CastField<FArrayProperty>(Engine->GetClass()->FindPropertyByName(TEXT("Tags")));
	if (!TagsProperty || !TagsProperty->Inner || !TagsProperty->Inner->IsA<FNameProperty>())
	{
		return false;
	}
	FScriptArrayHelper Tags(TagsProperty, TagsProperty->ContainerPtrToValuePtr<void>(Engine));
	OutTags.reserve(static_cast<size_t>(Tags.Num()));
	for (int32 Index = 0; Index < Tags.Num(); ++Index)
	{
		const FName& Tag = FNameProperty::GetPropertyValue(Tags.GetRawPtr(Index));
		OutTags.push_back(LodexInterop::ToUtf8(Tag.ToString()));
	}
	return true;
}

FString BuildLodestring(UObject* Object, const FString& Mode)
{
	const FLodexUObjectGraph Graph;
	return LodexInterop::FromUtf8(
		BuildLodestring(Graph, LodexInterop::ToLodexObject(Object), LodexInterop::ToUtf8(Mode)));
}
