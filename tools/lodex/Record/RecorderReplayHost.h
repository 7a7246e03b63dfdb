// Copyright Lodex contributors.
#pragma once

#include "Scenes/SceneSnapshot.h"

#include "LodexDebugger/Core/Recorder/LodexRecorderHost.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

/**
 * The editor as the recorder reads it, held as plain values that an input log (or a test) sets: a manual frame
 * clock, the play viewport, VR mode and poses, the selection. Key names get codes in the order they are first met.
 */
class FRecorderReplayHost final : public ILodexRecorderHost
{
public:
	void SetFrame(std::uint32_t InFrame) { Frame = InFrame; }
	void AdvanceFrames(std::uint32_t Count) { Frame += Count; }
	void SetDeltaSeconds(float InDeltaSeconds) { DeltaSeconds = InDeltaSeconds; }
	void SetViewport(const FLodexViewportRect& InViewport)
	{
		bHasViewport = true;
		Viewport = InViewport;
	}
	/** The play session ends (false) or comes back with the last viewport (true). */
	void SetPlaying(bool bPlaying) { bHasViewport = bPlaying; }
	void SetVR(bool bTracking, const std::string& SystemName)
	{
		bVR = bTracking;
		TrackingSystemName = SystemName;
	}
	void SetPose(ELodexVRDevice Device, const FLodexVRPose& Pose) { Poses[static_cast<std::size_t>(Device)] = Pose; }
	void SetHostName(const std::string& Name) { HostName = Name; }
	void SetLevelPath(const std::string& Path) { LevelPath = Path; }
	/** The selection and the graph it belongs to; a null object empties the selection. */
	void SetSelection(FLodexObject Object, const ILodexObjectGraph* Graph)
	{
		Selected = Object;
		SelectionGraph = Graph;
	}

	//~ Begin ILodexRecorderHost Interface
	bool GetPlayViewport(FLodexViewportRect& OutViewport) const override;
	std::uint32_t GetFrameNumber() const override { return Frame; }
	float GetWorldDeltaSeconds() const override { return DeltaSeconds; }
	bool IsVRTracking() const override { return bVR; }
	std::string GetTrackingSystemName() const override { return TrackingSystemName; }
	bool GetVRPose(ELodexVRDevice Device, FLodexVRPose& OutPose) const override;
	std::int32_t GetKeyCode(const std::string& KeyName) const override;
	std::string GetKeyName(std::int32_t KeyCode) const override;
	std::string GetHostName() const override { return HostName; }
	bool GetCurrentLevelPath(std::string& OutPath) const override;
	FLodexObject GetSelectedObject() const override { return Selected; }
	const ILodexObjectGraph& GetObjectGraph() const override;
	//~ End ILodexRecorderHost Interface

private:
	std::uint32_t Frame = 0;
	float DeltaSeconds = 0.0f;
	bool bHasViewport = false;
	FLodexViewportRect Viewport;
	bool bVR = false;
	std::string TrackingSystemName;
	std::array<std::optional<FLodexVRPose>, LodexVRDeviceCount> Poses;
	std::string HostName;
	std::optional<std::string> LevelPath;
	FLodexObject Selected;
	const ILodexObjectGraph* SelectionGraph = nullptr;
	/** Key codes by name, and names by code (code N is Names[N - 1]). */
	mutable std::map<std::string, std::int32_t> Codes;
	mutable std::vector<std::string> Names;
	FSceneSnapshot EmptyScene;
};
