// Copyright Lodex contributors.
#include "RecorderEditorAdapters.h"

#include "Editor.h"
#include "Editor/EditorEngine.h"
#include "Engine/Engine.h"
#include "Engine/Level.h"
#include "Engine/World.h"
#include "GameFramework/Pawn.h"
#include "GameFramework/PlayerController.h"
#include "HAL/FileManager.h"
#include "HAL/PlatformProcess.h"
#include "HeadMountedDisplayTypes.h"
#include "Input/Events.h"
#include "IXRTrackingSystem.h"
#include "Misc/DateTime.h"
#include "Misc/FileHelper.h"
#include "Misc/Paths.h"
#include "Slate/SceneViewport.h"
#include "UnrealClient.h"

#include "LodexDebugger/Interop/LodexEditorAdapters.h"
#include "LodexDebugger/Interop/LodexUnrealCLR.h"

#include "LodexDebugger/Core/Recorder/LodexRecorderPanel.h"

#define LOCTEXT_NAMESPACE "RecorderTool"

namespace RecorderEditorAdaptersPrivate
{
	IXRTrackingSystem* GetTrackingSystem()
	{
		return (GEngine && GEngine->XRSystem.IsValid()) ? GEngine->XRSystem.Get() : nullptr;
	}

	/** The first local player's pawn in the play session, whose motion controllers the recorder samples. */
	APawn* GetPlayerPawn()
	{
		if (!GEngine || !GEditor || !GEditor->GameViewport)
		{
			return nullptr;
		}
		FWorldContext* Context = GEngine->GetWorldContextFromGameViewport(GEditor->GameViewport);
		UWorld* World = Context ? Context->World() : nullptr;
		APlayerController* Controller = World ? GEngine->GetFirstLocalPlayerController(World) : nullptr;
		return Controller ? Controller->K2_GetPawn() : nullptr;
	}

	FLodexVRPose ToPose(const FVector& Position, const FQuat& Rotation)
	{
		FLodexVRPose Pose;
		Pose.Position = FLodexVector3{Position.X, Position.Y, Position.Z};
		Pose.Rotation = FLodexQuat{Rotation.X, Rotation.Y, Rotation.Z, Rotation.W};
		return Pose;
	}
}

bool FRecorderEditorHost::GetPlayViewport(FLodexViewportRect& OutViewport) const
{
	FViewport* Viewport = GEditor ? GEditor->GetPIEViewport() : nullptr;
	if (!Viewport)
	{
		return false;
	}
	const FIntPoint Size = Viewport->GetSizeXY();
	// The top-left corner in Slate's screen space, where pointer events are; a play viewport is a scene viewport.
	static const FName SceneViewportType(TEXT("SceneViewport"));
	FVector2D TopLeft;
	if (Viewport->GetViewportType() == SceneViewportType)
	{
		TopLeft = static_cast<FSceneViewport*>(Viewport)->GetCachedGeometry().GetAbsolutePosition();
	}
	else
	{
		const FIntPoint Corner = Viewport->ViewportToVirtualDesktopPixel(FVector2D(0.0, 0.0));
		TopLeft = FVector2D(Corner.X, Corner.Y);
	}
	OutViewport.Left = TopLeft.X;
	OutViewport.Top = TopLeft.Y;
	OutViewport.Width = Size.X;
	OutViewport.Height = Size.Y;
	return true;
}

std::uint32_t FRecorderEditorHost::GetFrameNumber() const
{
	return GFrameNumber;
}

float FRecorderEditorHost::GetWorldDeltaSeconds() const
{
	// The play world while a session runs (GWorld is the editor world between the play world's ticks).
	UWorld* World = (GEditor && GEditor->PlayWorld) ? GEditor->PlayWorld.Get() : GWorld.GetReference();
	return World ? World->GetDeltaSeconds() : 0.0f;
}

bool FRecorderEditorHost::IsVRTracking() const
{
	IXRTrackingSystem* TrackingSystem = RecorderEditorAdaptersPrivate::GetTrackingSystem();
	return TrackingSystem && TrackingSystem->IsTracking(IXRTrackingSystem::HMDDeviceId);
}

std::string FRecorderEditorHost::GetTrackingSystemName() const
{
	IXRTrackingSystem* TrackingSystem = RecorderEditorAdaptersPrivate::GetTrackingSystem();
	return TrackingSystem ? LodexInterop::ToUtf8(TrackingSystem->GetSystemName().ToString()) : std::string();
}

bool FRecorderEditorHost::GetVRPose(ELodexVRDevice Device, FLodexVRPose& OutPose) const
{
	IXRTrackingSystem* TrackingSystem = RecorderEditorAdaptersPrivate::GetTrackingSystem();
	if (!TrackingSystem)
	{
		return false;
	}
	if (Device == ELodexVRDevice::Hmd)
	{
		FQuat Rotation;
		FVector Position;
		if (!TrackingSystem->GetCurrentPose(IXRTrackingSystem::HMDDeviceId, Rotation, Position))
		{
			return false;
		}
		OutPose = RecorderEditorAdaptersPrivate::ToPose(Position, Rotation);
		return true;
	}
	APawn* Pawn = RecorderEditorAdaptersPrivate::GetPlayerPawn();
	if (!Pawn)
	{
		return false;
	}
	const bool bLeft = Device == ELodexVRDevice::LeftGrip || Device == ELodexVRDevice::LeftAim;
	FXRMotionControllerData Data;
	TrackingSystem->GetMotionControllerData(Pawn, bLeft ? EControllerHand::Left : EControllerHand::Right, Data);
	if (!Data.bValid)
	{
		return false;
	}
	const bool bGrip = Device == ELodexVRDevice::LeftGrip || Device == ELodexVRDevice::RightGrip;
	OutPose = bGrip ? RecorderEditorAdaptersPrivate::ToPose(Data.GripPosition, Data.GripRotation)
					: RecorderEditorAdaptersPrivate::ToPose(Data.AimPosition, Data.AimRotation);
	return true;
}

std::int32_t FRecorderEditorHost::GetKeyCode(const std::string& KeyName) const
{
	return LodexUnrealCLR::GetKeyCode(FKey(FName(*LodexInterop::FromUtf8(KeyName))));
}

std::string FRecorderEditorHost::GetKeyName(std::int32_t KeyCode) const
{
	return LodexInterop::ToUtf8(LodexUnrealCLR::GetKeyNameForCode(KeyCode));
}

std::string FRecorderEditorHost::GetHostName() const
{
	return LodexInterop::ToUtf8(FString(FPlatformProcess::ComputerName()));
}

bool FRecorderEditorHost::GetCurrentLevelPath(std::string& OutPath) const
{
	if (!GEditor)
	{
		return false;
	}
	UWorld* World = GEditor->GetEditorWorldContext().World();
	if (!World)
	{
		return false;
	}
	const ULevel* CurrentLevel = World->GetCurrentLevel();
	for (const ULevel* Level : World->GetLevels())
	{
		if (Level && Level == CurrentLevel)
		{
			// The package that holds the level: the map's path, as the game's level loading takes it.
			OutPath = LodexInterop::ToUtf8(Level->GetOutermost()->GetPathName());
			return true;
		}
	}
	return false;
}

FLodexObject FRecorderEditorHost::GetSelectedObject() const
{
	const FLodexEditorActorSelection Selection;
	return Selection.Num() > 0 ? Selection.GetSelectedObject(0) : FLodexObject();
}

const ILodexObjectGraph& FRecorderEditorHost::GetObjectGraph() const
{
	return Graph;
}

TUniquePtr<FRecorderInputLogFile> FRecorderInputLogFile::Create(FString& OutPath)
{
	const FDateTime Now = FDateTime::Now();
	const FString Folder = FPaths::ProjectSavedDir() / LodexInterop::FromUtf8(LodexInputLog::FolderName);
	OutPath = FPaths::ConvertRelativePathToFull(Folder /
		LodexInterop::FromUtf8(LodexInputLog::MakeFileName(
			Now.GetYear(), Now.GetMonth(), Now.GetDay(), Now.GetHour(), Now.GetMinute(), Now.GetSecond())));
	IFileManager::Get().MakeDirectory(*Folder, true);
	FArchive* Writer = IFileManager::Get().CreateFileWriter(*OutPath, FILEWRITE_AllowRead);
	return Writer ? MakeUnique<FRecorderInputLogFile>(Writer) : nullptr;
}

FRecorderInputLogFile::FRecorderInputLogFile(FArchive* InArchive)
	: Archive(InArchive)
{
}

FRecorderInputLogFile::~FRecorderInputLogFile()
{
	if (Archive)
	{
		Archive->Close();
	}
}

void FRecorderInputLogFile::WriteLine(const std::string& Line)
{
	Archive->Serialize(const_cast<char*>(Line.data()), static_cast<int64>(Line.size()));
	char LineEnd = '\n';
	Archive->Serialize(&LineEnd, 1);
}

void FRecorderInputLogFile::Flush()
{
	Archive->Flush();
	bFailed = bFailed || Archive->IsError();
}

bool SaveRecordedScript(const FString& Path, const FString& Text, FText& OutError)
{
	// A name of its own beside the target, so that neither another save nor an existing file is overwritten.
	const FString Temporary = FPaths::CreateTempFilename(
		*FPaths::GetPath(Path), *(FPaths::GetCleanFilename(Path) + TEXT(".")), TEXT(".saving"));
	if (!FFileHelper::SaveStringToFile(Text, *Temporary, FFileHelper::EEncodingOptions::ForceUTF8WithoutBOM))
	{
		IFileManager::Get().Delete(*Temporary, false, false, true);
		OutError = FText::Format(
			LOCTEXT("SaveFailed", "The recorded input could not be saved to {0}."), FText::FromString(Path));
		return false;
	}
	if (!IFileManager::Get().Move(*Path, *Temporary, true, false, false, true))
	{
		OutError = FText::Format(LOCTEXT("ReplaceFailed", "{0} could not be replaced; the recorded input is in {1}."),
			FText::FromString(Path), FText::FromString(Temporary));
		return false;
	}
	return true;
}

#undef LOCTEXT_NAMESPACE
