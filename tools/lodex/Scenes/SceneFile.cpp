// Copyright Lodex contributors.
#include "SceneFile.h"

#include "Cli/LodexCli.h"
#include "Cli/WholeFile.h"
#include "LevelScene.h"

#include <filesystem>
#include <sys/stat.h>

namespace
{
	/**
	 * A scene that comes through a pipe, read once and then told apart by its bytes. A level read this way has no
	 * folder around it: only the level itself is read, and a note says so.
	 */
	bool LoadScenePipe(const FSceneFileOptions& Options, FSceneFile& Out, std::string& OutError)
	{
		std::string Bytes;
		if (!ReadWholeFile(Options.Path, Bytes, OutError, LodexSceneFileRules))
		{
			return false;
		}
		if (!IsUnrealPackageBytes(Bytes))
		{
			return FSceneSnapshot::Parse(Bytes, Options.Path, Out.Scene, OutError);
		}
		FLevelScene Level;
		const std::string PackagePath = "/Game/" + std::filesystem::path(Options.Path).stem().generic_string();
		if (!ReadLevelSceneBytes(std::move(Bytes), Options.Path, PackagePath, Level, OutError))
		{
			return false;
		}
		Out.Scene = std::move(Level.Scene);
		Out.bIsLevel = true;
		Out.Notes.push_back(Options.Path +
			": a level read from a pipe: only the level itself, not its external actors, sub-levels or Blueprint "
			"classes");
		return true;
	}
}

bool LoadSceneFile(const FSceneFileOptions& Options, FSceneFile& Out, std::string& OutError)
{
	Out = FSceneFile();
	// Only a regular file is looked into before it is read: a pipe is read once, and what is neither (a folder, a
	// device, a terminal) is refused unread.
	struct stat Named;
	const bool bNamed = stat(Options.Path.c_str(), &Named) == 0;
	if (bNamed && S_ISFIFO(Named.st_mode))
	{
		return LoadScenePipe(Options, Out, OutError);
	}
	if (bNamed && !S_ISREG(Named.st_mode))
	{
		return FSceneSnapshot::LoadFile(Options.Path, Out.Scene, OutError);
	}
	if (!IsUnrealPackageFile(Options.Path))
	{
		return FSceneSnapshot::LoadFile(Options.Path, Out.Scene, OutError);
	}
	FLevelReadOptions LevelOptions;
	LevelOptions.bSubLevels = !Options.bNoSubLevels;
	LevelOptions.Files = Options.Files;
	LevelOptions.bVerbose = Options.bVerbose;
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
	WriteLodexNotes(Out.Notes, Err);
	return true;
}
