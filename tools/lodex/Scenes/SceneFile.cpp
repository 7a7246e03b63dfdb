// Copyright Lodex contributors.
#include "SceneFile.h"

#include "LevelScene.h"

bool LoadSceneFile(const FSceneFileOptions& Options, FSceneFile& Out, std::string& OutError)
{
	Out = FSceneFile();
	if (!IsUnrealPackageFile(Options.Path))
	{
		return FSceneSnapshot::LoadFile(Options.Path, Out.Scene, OutError);
	}
	FLevelReadOptions LevelOptions;
	LevelOptions.bSubLevels = !Options.bNoSubLevels;
	FLevelScene Level;
	if (!ReadLevelScene(Options.Path, LevelOptions, Level, OutError))
	{
		return false;
	}
	Out.Scene = std::move(Level.Scene);
	Out.bIsLevel = true;
	Out.Notes = std::move(Level.Notes);
	return true;
}

bool LoadSceneFileFor(const FSceneFileOptions& Options, FSceneFile& Out, std::ostream& Err)
{
	std::string Error;
	if (!LoadSceneFile(Options, Out, Error))
	{
		Err << "lodex: " << Error << "\n";
		return false;
	}
	for (const std::string& Note : Out.Notes)
	{
		Err << "lodex: note: " << Note << "\n";
	}
	return true;
}
