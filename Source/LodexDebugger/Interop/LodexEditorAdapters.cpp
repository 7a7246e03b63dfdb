// Copyright Lodex contributors.
#include "LodexEditorAdapters.h"

#include "Editor.h"
#include "Editor/EditorEngine.h"
#include "Engine/Selection.h"
#include "Framework/Commands/Commands.h"
#include "Framework/Commands/UICommandInfo.h"
#include "HAL/PlatformApplicationMisc.h"
#include "Internationalization/Internationalization.h"
#include "LodexInterop.h"

FLodexEditorActorSelection::FLodexEditorActorSelection()
	: Selection(GEditor ? GEditor->GetSelectedActors() : nullptr)
{
}

FLodexEditorActorSelection::FLodexEditorActorSelection(USelection* InSelection)
	: Selection(InSelection)
{
}

std::size_t FLodexEditorActorSelection::Num() const
{
	return Selection ? static_cast<std::size_t>(Selection->Num()) : 0;
}

FLodexObject FLodexEditorActorSelection::GetSelectedObject(std::size_t Index) const
{
	return LodexInterop::ToLodexObject(Selection ? Selection->GetSelectedObject(static_cast<int32>(Index)) : nullptr);
}

void FLodexEditorOutput::Log(ELodexLogVerbosity Verbosity, const std::string& Message)
{
	const FString Line = LodexInterop::FromUtf8(Message);
	switch (Verbosity)
	{
		case ELodexLogVerbosity::Log:
			UE_LOG(LogTemp, Log, TEXT("%s"), *Line);
			break;
		case ELodexLogVerbosity::Warning:
			UE_LOG(LogTemp, Warning, TEXT("%s"), *Line);
			break;
	}
}

void FLodexEditorOutput::CopyToClipboard(const std::string& Text)
{
	FPlatformApplicationMisc::ClipboardCopy(*LodexInterop::FromUtf8(Text));
}

namespace LodexEditor
{
	FText MakeContextDescription(const char* ContextName)
	{
		return FInternationalization::ForUseOnlyByLocMacroAndGraphNodeTextLiterals_CreateText(
			*LodexInterop::FromUtf8(LodexCommandContextDescription), TEXT("Contexts"),
			*LodexInterop::FromUtf8(ContextName));
	}

	void MakeCommandFromTable(FBindingContext& Context, TSharedPtr<FUICommandInfo>& OutCommand,
		const char* LocNamespace, const FLodexCommandInfo& Command)
	{
		const FLodexCommandKeys Keys = MakeCommandKeys(LocNamespace, Command);
		MakeUICommand_InternalUseOnly(&Context, OutCommand, *LodexInterop::FromUtf8(Keys.Namespace),
			*LodexInterop::FromUtf8(Keys.LabelKey), *LodexInterop::FromUtf8(Keys.TooltipKey), Keys.DotName.c_str(),
			*LodexInterop::FromUtf8(Command.Label), *LodexInterop::FromUtf8(Command.Tooltip),
			EUserInterfaceActionType::Button, FInputChord());
	}

	void MakeCommandFromTable(FBindingContext& Context, TSharedPtr<FUICommandInfo>& OutCommand,
		const FLodexCommandSetInfo& Set, FName CommandId)
	{
		const FLodexCommandInfo* Command = FindCommandById(Set, LodexInterop::ToUtf8(CommandId.ToString()));
		if (ensureMsgf(Command, TEXT("The command set %s has no command %s"), *LodexInterop::FromUtf8(Set.ContextName),
				*CommandId.ToString()))
		{
			MakeCommandFromTable(Context, OutCommand, Set.ContextName, *Command);
		}
	}
}
