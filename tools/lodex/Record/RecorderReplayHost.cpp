// Copyright Lodex contributors.
#include "RecorderReplayHost.h"

bool FRecorderReplayHost::GetPlayViewport(FLodexViewportRect& OutViewport) const
{
	if (bHasViewport)
	{
		OutViewport = Viewport;
	}
	return bHasViewport;
}

bool FRecorderReplayHost::GetVRPose(ELodexVRDevice Device, FLodexVRPose& OutPose) const
{
	const std::optional<FLodexVRPose>& Pose = Poses[static_cast<std::size_t>(Device)];
	if (Pose)
	{
		OutPose = *Pose;
	}
	return Pose.has_value();
}

std::int32_t FRecorderReplayHost::GetKeyCode(const std::string& KeyName) const
{
	const auto Found = Codes.find(KeyName);
	if (Found != Codes.end())
	{
		return Found->second;
	}
	Names.push_back(KeyName);
	const std::int32_t Code = static_cast<std::int32_t>(Names.size());
	Codes.emplace(KeyName, Code);
	return Code;
}

std::string FRecorderReplayHost::GetKeyName(std::int32_t KeyCode) const
{
	if (KeyCode < 1 || static_cast<std::size_t>(KeyCode) > Names.size())
	{
		// The engine's invalid key.
		return "None";
	}
	return Names[static_cast<std::size_t>(KeyCode) - 1];
}

bool FRecorderReplayHost::GetCurrentLevelPath(std::string& OutPath) const
{
	if (LevelPath)
	{
		OutPath = *LevelPath;
	}
	return LevelPath.has_value();
}

const ILodexObjectGraph& FRecorderReplayHost::GetObjectGraph() const
{
	return SelectionGraph != nullptr ? *SelectionGraph : EmptyScene;
}
