// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Templates/UniquePtr.h"

#include "LodexDebugger/Interop/LodexInterop.h"
#include "LodexDebugger/Core/Recorder/LodexInputLog.h"
#include "LodexDebugger/Core/Recorder/LodexInputRecorder.h"
#include "LodexDebugger/Core/Recorder/LodexRecorderHost.h"

#include <string>

class FArchive;

/**
 * The editor as the recorder reads it: the play-in-editor viewport, GFrameNumber, the play world's delta time, the XR
 * tracking system and the motion controllers of the first local player's pawn, the UnrealCLR host's key codes, the
 * machine's name, the editor world's current level and the editor's actor selection.
 */
class FRecorderEditorHost final : public ILodexRecorderHost
{
public:
	//~ Begin ILodexRecorderHost Interface
	virtual bool GetPlayViewport(FLodexViewportRect& OutViewport) const override;
	virtual std::uint32_t GetFrameNumber() const override;
	virtual float GetWorldDeltaSeconds() const override;
	virtual bool IsVRTracking() const override;
	virtual std::string GetTrackingSystemName() const override;
	virtual bool GetVRPose(ELodexVRDevice Device, FLodexVRPose& OutPose) const override;
	virtual std::int32_t GetKeyCode(const std::string& KeyName) const override;
	virtual std::string GetKeyName(std::int32_t KeyCode) const override;
	virtual std::string GetHostName() const override;
	virtual bool GetCurrentLevelPath(std::string& OutPath) const override;
	virtual FLodexObject GetSelectedObject() const override;
	virtual const ILodexObjectGraph& GetObjectGraph() const override;
	//~ End ILodexRecorderHost Interface

private:
	FLodexUObjectGraph Graph;
};

/** The raw input log of one recording: a JSON Lines file under the project's Saved/Lodex/InputLogs folder. */
class FRecorderInputLogFile final : public ILodexInputLogSink
{
public:
	/** Creates the file for a recording starting now; null when it cannot be created. OutPath names it either way. */
	static TUniquePtr<FRecorderInputLogFile> Create(FString& OutPath);

	explicit FRecorderInputLogFile(FArchive* InArchive);
	virtual ~FRecorderInputLogFile() override;

	//~ Begin ILodexInputLogSink Interface
	virtual void WriteLine(const std::string& Line) override;
	virtual void Flush() override;
	//~ End ILodexInputLogSink Interface

	/** Whether a write or flush has failed (a full disk): the log then misses lines. */
	bool HasFailed() const { return bFailed; }

private:
	TUniquePtr<FArchive> Archive;
	bool bFailed = false;
};

/**
 * Saves the script as UTF-8 without a byte-order mark: first to a file beside Path, then renamed over Path, so that a
 * failed save leaves an existing file whole. On failure returns false and a sentence for the user.
 */
bool SaveRecordedScript(const FString& Path, const FString& Text, FText& OutError);
