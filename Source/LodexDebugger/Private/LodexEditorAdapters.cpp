// Copyright Lodex contributors.
#include "LodexEditorAdapters.h"

#include "Editor.h"
#include "Editor/EditorEngine.h"
#include "Engine/Selection.h"
#include "Framework/Commands/UICommandInfo.h"
#include "HAL/PlatformApplicationMisc.h"
#include "LodexInterop.h"
#include "LodexWorldEvaluation.h"

#include "LodexDebugger/Core/Evaluation/LodexMatchNotice.h"

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

namespace LodexEditorAdaptersPrivate
{
	/** The text as written in the source, whatever the culture the editor shows. */
	FString GetSourceText(const FText& Text)
	{
		const FString* Source = FTextInspector::GetSourceString(Text);
		return Source ? *Source : Text.ToString();
	}
}

namespace LodexEditor
{
	void PrintSelectedActorLodestrings(const FString& Mode)
	{
		const FLodexUObjectGraph Graph;
		const FLodexEditorActorSelection Selection;
		FLodexEditorOutput Output;
		FLodexClipboardCapture Capture(Output);
		::PrintSelectedActorLodestrings(Graph, Selection, Capture, LodexInterop::ToUtf8(Mode));
		// Logged and copied as before; then how many objects of the editor's world each one matches.
		NotifyLodestringMatches(Capture.GetCopiedTexts());
	}

	void EnsureCommandSetMatches(const FBindingContext& Context, const FLodexCommandSetInfo& Set,
		TFunctionRef<TSharedPtr<FUICommandInfo>(FName)> FindCommand)
	{
		ensureMsgf(Context.GetContextName() == LodexInterop::ToName(Set.ContextName) &&
				LodexEditorAdaptersPrivate::GetSourceText(Context.GetContextDesc()) ==
					LodexInterop::FromUtf8(Set.ContextDescription),
			TEXT("Command set %s differs from its table"), *Context.GetContextName().ToString());
		for (const FLodexCommandInfo& Command : Set.Commands)
		{
			const TSharedPtr<FUICommandInfo> Info = FindCommand(LodexInterop::ToName(Command.CommandId));
			ensureMsgf(Info.IsValid() &&
					LodexEditorAdaptersPrivate::GetSourceText(Info->GetLabel()) ==
						LodexInterop::FromUtf8(Command.Label) &&
					LodexEditorAdaptersPrivate::GetSourceText(Info->GetDescription()) ==
						LodexInterop::FromUtf8(Command.Tooltip),
				TEXT("Command %s differs from its table"), *LodexInterop::FromUtf8(Command.CommandId));
		}
	}
}
