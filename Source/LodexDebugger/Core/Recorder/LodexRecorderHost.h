// Copyright Lodex contributors.
#pragma once

#include "LodexDebugger/Core/Lodestring/LodexObjectGraph.h"

#include <cstdint>
#include <string>

/** The play-in-editor viewport on the screen: its top-left corner in screen space and its size in pixels. */
struct FLodexViewportRect
{
	double Left = 0.0;
	double Top = 0.0;
	std::int32_t Width = 0;
	std::int32_t Height = 0;

	bool operator==(const FLodexViewportRect& Other) const
	{
		return Left == Other.Left && Top == Other.Top && Width == Other.Width && Height == Other.Height;
	}
	bool operator!=(const FLodexViewportRect& Other) const { return !(*this == Other); }
};

struct FLodexVector3
{
	double X = 0.0;
	double Y = 0.0;
	double Z = 0.0;

	bool operator==(const FLodexVector3& Other) const { return X == Other.X && Y == Other.Y && Z == Other.Z; }
	bool operator!=(const FLodexVector3& Other) const { return !(*this == Other); }
};

struct FLodexQuat
{
	double X = 0.0;
	double Y = 0.0;
	double Z = 0.0;
	double W = 1.0;

	bool operator==(const FLodexQuat& Other) const
	{
		return X == Other.X && Y == Other.Y && Z == Other.Z && W == Other.W;
	}
	bool operator!=(const FLodexQuat& Other) const { return !(*this == Other); }
};

/** The pose of one tracked device. */
struct FLodexVRPose
{
	FLodexVector3 Position;
	FLodexQuat Rotation;

	bool operator==(const FLodexVRPose& Other) const
	{
		return Position == Other.Position && Rotation == Other.Rotation;
	}
	bool operator!=(const FLodexVRPose& Other) const { return !(*this == Other); }
};

/**
 * The poses the recorder samples in VR mode, in the order it writes them: the head-mounted display, then the grip
 * and aim poses of controller 1 (the left hand) and of controller 2 (the right hand).
 */
enum class ELodexVRDevice
{
	Hmd,
	LeftGrip,
	LeftAim,
	RightGrip,
	RightAim,
};

inline constexpr int LodexVRDeviceCount = 5;

/**
 * Everything the recorder reads from the editor. The editor implements it over the engine (GEditor, GEngine's XR
 * tracking system, the UnrealCLR host's key conversions); the command-line tool over an input log; the tests over
 * plain values with a manual clock.
 */
class ILodexRecorderHost
{
public:
	virtual ~ILodexRecorderHost() = default;

	/** Whether a play-in-editor viewport exists (`UEditorEngine::GetPIEViewport`); if so, its rectangle. */
	virtual bool GetPlayViewport(FLodexViewportRect& OutViewport) const = 0;

	/** The engine's frame number (`GFrameNumber`). */
	virtual std::uint32_t GetFrameNumber() const = 0;

	/** The world's last frame delta time in seconds. */
	virtual float GetWorldDeltaSeconds() const = 0;

	/** VR mode: the engine has an XR tracking system and it reports the head-mounted display (device 0) tracked. */
	virtual bool IsVRTracking() const = 0;

	/** The name the XR tracking system reports for itself; empty without one. */
	virtual std::string GetTrackingSystemName() const = 0;

	/** The current pose of a device; false when the device gives none. */
	virtual bool GetVRPose(ELodexVRDevice Device, FLodexVRPose& OutPose) const = 0;

	/** The UnrealCLR host's integer value of the engine key of that name (`getEKeyIntValue`). */
	virtual std::int32_t GetKeyCode(const std::string& KeyName) const = 0;

	/** The name of the engine key of a code (`getEKeyForIntValue`, `FKey::GetFName`, `FName::ToString`). */
	virtual std::string GetKeyName(std::int32_t KeyCode) const = 0;

	/** The local machine's host name. */
	virtual std::string GetHostName() const = 0;

	/** The path name of the editor world's current level as "LoadScene" writes it; false without an editor world. */
	virtual bool GetCurrentLevelPath(std::string& OutPath) const = 0;

	/** The object selected in the editor, or null. */
	virtual FLodexObject GetSelectedObject() const = 0;

	/** The object graph the selected object belongs to, for its Lodestring. */
	virtual const ILodexObjectGraph& GetObjectGraph() const = 0;
};
