// Copyright Lodex contributors.
#include "LodexWorldEvaluation.h"

#include "Editor.h"
#include "Editor/EditorEngine.h"
#include "Engine/Level.h"
#include "Engine/World.h"
#include "Framework/Notifications/NotificationManager.h"
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

namespace LodexEditor
{
	void NotifyLodestringMatches(const std::vector<std::string>& Lodestrings)
	{
		if (Lodestrings.empty() || GEditor == nullptr)
		{
			return;
		}
		UWorld* World = GEditor->GetEditorWorldContext().World();
		if (World == nullptr)
		{
			return;
		}
		const FLodexUObjectGraph Graph;
		const FLodexSceneIndex Index(Graph, FLodexWorldObjects(World));
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
