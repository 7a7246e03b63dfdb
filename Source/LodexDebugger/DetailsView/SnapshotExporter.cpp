// Copyright Lodex contributors.
#include "SnapshotExporter.h"

#include "Blueprint/UserWidget.h"
#include "Blueprint/WidgetTree.h"
#include "Components/ActorComponent.h"
#include "DesktopPlatformModule.h"
#include "Editor.h"
#include "Editor/EditorEngine.h"
#include "Engine/Level.h"
#include "Engine/World.h"
#include "Framework/Application/SlateApplication.h"
#include "Framework/Notifications/NotificationManager.h"
#include "GameFramework/Actor.h"
#include "HAL/FileManager.h"
#include "IDesktopPlatform.h"
#include "LodexDebugger/Interop/LodexEditorAdapters.h"
#include "LodexDebugger/Interop/LodexInterop.h"
#include "LodexDebugger/Interop/LodexUObjectReflection.h"
#include "Misc/FileHelper.h"
#include "Misc/Paths.h"
#include "UObject/UObjectIterator.h"
#include "Widgets/Notifications/SNotificationList.h"

#include "LodexDebugger/Core/Explorer/SnapshotWriter.h"

namespace SnapshotExporterPrivate
{
	/** Every actor of the world's levels with its components, then the world's user widgets with their widgets. */
	std::vector<FLodexObject> GatherObjects(UWorld& World)
	{
		std::vector<FLodexObject> Objects;
		for (ULevel* Level : World.GetLevels())
		{
			if (Level == nullptr)
			{
				continue;
			}
			for (AActor* Actor : Level->Actors)
			{
				if (!IsValid(Actor))
				{
					continue;
				}
				Objects.push_back(LodexInterop::ToLodexObject(Actor));
				TInlineComponentArray<UActorComponent*> Components;
				Actor->GetComponents(Components);
				for (UActorComponent* Component : Components)
				{
					Objects.push_back(LodexInterop::ToLodexObject(Component));
				}
			}
		}
		for (TObjectIterator<UUserWidget> It; It; ++It)
		{
			UUserWidget* Widget = *It;
			if (!IsValid(Widget) || Widget->GetWorld() != &World)
			{
				continue;
			}
			Objects.push_back(LodexInterop::ToLodexObject(Widget));
			if (UWidgetTree* Tree = Widget->WidgetTree)
			{
				Objects.push_back(LodexInterop::ToLodexObject(Tree));
				Tree->ForEachWidget(
					[&Objects](UWidget* Child) { Objects.push_back(LodexInterop::ToLodexObject(Child)); });
			}
		}
		return Objects;
	}

	void Report(bool bWritten, const std::string& Message)
	{
		FLodexEditorOutput Output;
		Output.Log(bWritten ? ELodexLogVerbosity::Log : ELodexLogVerbosity::Warning, Message);
		if (FSlateApplication::IsInitialized())
		{
			FNotificationInfo Info(FText::FromString(LodexInterop::FromUtf8(Message)));
			Info.ExpireDuration = bWritten ? 4.0f : 8.0f;
			const TSharedPtr<SNotificationItem> Item = FSlateNotificationManager::Get().AddNotification(Info);
			if (Item.IsValid())
			{
				Item->SetCompletionState(bWritten ? SNotificationItem::CS_Success : SNotificationItem::CS_Fail);
			}
		}
	}
}

namespace LodexSnapshotExporter
{
	UWorld* GetWorldToExport()
	{
		if (GEditor == nullptr)
		{
			return nullptr;
		}
		if (GEditor->PlayWorld != nullptr)
		{
			return GEditor->PlayWorld;
		}
		return GEditor->GetEditorWorldContext().World();
	}

	FString GetDefaultFile(const UWorld& World)
	{
		const FLodexSnapshotExportInfo& Export = GetLodexSnapshotExport();
		return FPaths::ProjectSavedDir() / LodexInterop::FromUtf8(Export.DefaultFolder) /
			LodexInterop::FromUtf8(LodexSnapshot::MakeDefaultFileName(LodexInterop::ToUtf8(World.GetName())));
	}

	bool ExportWorld(UWorld& World, const FString& InFile)
	{
		using namespace SnapshotExporterPrivate;
		const FString File = FPaths::ConvertRelativePathToFull(FPaths::ProjectDir(), InFile);
		const std::string FileText = LodexInterop::ToUtf8(File);

		const FLodexUObjectGraph Graph;
		const FLodexUObjectReflection Reflection;
		FLodexSnapshotCounts Counts;
		const std::string Text = LodexSnapshot::Write(Graph, Reflection, GatherObjects(World), &Counts);
		if (Text.size() > static_cast<size_t>(MAX_int32))
		{
			Report(false, LodexSnapshot::FormatFailedMessage(FileText, "the snapshot is larger than 2 GB"));
			return false;
		}

		IFileManager& FileManager = IFileManager::Get();
		const FString Temporary = File + LodexInterop::FromUtf8(GetLodexSnapshotExport().TemporarySuffix);
		FileManager.MakeDirectory(*FPaths::GetPath(File), /*Tree*/ true);
		const TArrayView<const uint8> Bytes(
			reinterpret_cast<const uint8*>(Text.data()), static_cast<int32>(Text.size()));
		if (!FFileHelper::SaveArrayToFile(Bytes, *Temporary))
		{
			FileManager.Delete(*Temporary, /*RequireExists*/ false, /*EvenReadOnly*/ false, /*Quiet*/ true);
			Report(
				false, LodexSnapshot::FormatFailedMessage(FileText, "cannot write " + LodexInterop::ToUtf8(Temporary)));
			return false;
		}
		if (!FileManager.Move(*File, *Temporary, /*Replace*/ true, /*EvenIfReadOnly*/ false, /*Attributes*/ false,
				/*bDoNotRetryOrError*/ true))
		{
			FileManager.Delete(*Temporary, /*RequireExists*/ false, /*EvenReadOnly*/ false, /*Quiet*/ true);
			Report(false,
				LodexSnapshot::FormatFailedMessage(
					FileText, "cannot replace it with " + LodexInterop::ToUtf8(Temporary) + ", which was removed"));
			return false;
		}
		Report(true, LodexSnapshot::FormatWrittenMessage(FileText, Counts));
		return true;
	}

	void HandleConsoleCommand(const TArray<FString>& Arguments)
	{
		UWorld* World = GetWorldToExport();
		std::vector<std::string> Pieces;
		for (const FString& Argument : Arguments)
		{
			Pieces.push_back(LodexInterop::ToUtf8(Argument));
		}
		const LodexSnapshot::FExportRequest Request = LodexSnapshot::ParseConsoleArguments(Pieces);
		if (World == nullptr)
		{
			SnapshotExporterPrivate::Report(false,
				LodexSnapshot::FormatFailedMessage(
					Request.bUseDefaultFile ? std::string("Saved/Lodex/<world>.json") : Request.File,
					"the editor has no world to export"));
			return;
		}
		ExportWorld(*World, Request.bUseDefaultFile ? GetDefaultFile(*World) : LodexInterop::FromUtf8(Request.File));
	}

	void ExportWithDialog()
	{
		UWorld* World = GetWorldToExport();
		IDesktopPlatform* DesktopPlatform = FDesktopPlatformModule::Get();
		if (World == nullptr || DesktopPlatform == nullptr || !FSlateApplication::IsInitialized())
		{
			return;
		}
		const FString DefaultFile = GetDefaultFile(*World);
		TArray<FString> Files;
		const bool bChosen =
			DesktopPlatform->SaveFileDialog(FSlateApplication::Get().FindBestParentWindowHandleForDialogs(nullptr),
				LodexInterop::FromUtf8(GetLodexSnapshotExport().Command.MenuLabel), FPaths::GetPath(DefaultFile),
				FPaths::GetCleanFilename(DefaultFile), TEXT("Scene snapshot (*.json)|*.json"), EFileDialogFlags::None,
				Files);
		if (bChosen && Files.Num() == 1)
		{
			ExportWorld(*World, Files[0]);
		}
	}
}
