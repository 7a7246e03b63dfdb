// Copyright Lodex contributors.
#include "LodexWorldEvaluation.h"

#include "Editor.h"
#include "Editor/EditorEngine.h"
#include "Engine/Level.h"
#include "Engine/World.h"
#include "Framework/Notifications/NotificationManager.h"
#include "LodexDebugger/Core/Paths/LodexBestCopy.h"
#include "LodexEditorAdapters.h"
#include "LodexInterop.h"
#include "Styling/AppStyle.h"
#include "UObject/UObjectHash.h"
#include "Widgets/Notifications/SNotificationList.h"

FLodexWorldObjects::FLodexWorldObjects(UWorld* InWorld)
	: World(InWorld)
{
}

void FLodexWorldObjects::GetAllObjects(std::vector<FLodexObject>& OutObjects) const
{
	if (World == nullptr)
	{
		return;
	}
	TArray<UObject*> Objects;
	for (ULevel* Level : World->GetLevels())
	{
		if (Level == nullptr)
		{
			continue;
		}
		Objects.Reset();
		GetObjectsWithOuter(Level, Objects, /*bIncludeNestedObjects*/ true);
		OutObjects.reserve(OutObjects.size() + static_cast<size_t>(Objects.Num()));
		for (UObject* Object : Objects)
		{
			OutObjects.push_back(LodexInterop::ToLodexObject(Object));
		}
	}
}

namespace LodexWorldEvaluationPrivate
{
	UWorld* GetEditorWorld()
	{
		return GEditor != nullptr ? GEditor->GetEditorWorldContext().World() : nullptr;
	}

	void ShowMatchNotice(const FLodexSceneIndex& Index, const std::vector<std::string>& Lodestrings)
	{
		const FLodexMatchNotice Notice = MakeLodestringMatchNotice(Index, Lodestrings);
		if (Notice.Text.empty())
		{
			return;
		}
		const bool bWarning = Notice.Severity == ELodexNoticeSeverity::Warning;
		FNotificationInfo Info(FText::FromString(LodexInterop::FromUtf8(Notice.Text)));
		Info.Image = FAppStyle::Get().GetBrush(bWarning ? "Icons.WarningWithColor" : "Icons.SuccessWithColor");
		Info.bUseSuccessFailIcons = false;
		Info.bUseLargeFont = false;
		Info.bFireAndForget = true;
		Info.ExpireDuration = bWarning ? 8.0f : 4.0f;
		FSlateNotificationManager::Get().AddNotification(Info);
	}
}

namespace LodexEditor
{
	void NotifyLodestringMatches(const std::vector<std::string>& Lodestrings)
	{
		UWorld* World = LodexWorldEvaluationPrivate::GetEditorWorld();
		if (Lodestrings.empty() || World == nullptr)
		{
			return;
		}
		const FLodexUObjectGraph Graph;
		const FLodexSceneIndex Index(Graph, FLodexWorldObjects(World));
		LodexWorldEvaluationPrivate::ShowMatchNotice(Index, Lodestrings);
	}

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

	void CopyBestLodestringsOfSelection()
	{
		UWorld* World = LodexWorldEvaluationPrivate::GetEditorWorld();
		const FLodexEditorActorSelection Selection;
		if (World == nullptr || Selection.Num() == 0)
		{
			return;
		}
		const FLodexUObjectGraph Graph;
		const FLodexSceneIndex Index(Graph, FLodexWorldObjects(World));
		FLodexEditorOutput Output;
		LodexWorldEvaluationPrivate::ShowMatchNotice(Index, PrintSelectedBestLodestrings(Index, Selection, Output));
	}
}
