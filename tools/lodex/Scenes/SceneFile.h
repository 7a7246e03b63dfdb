// Copyright Lodex contributors.
#pragma once

#include "SceneSnapshot.h"

#include <ostream>
#include <string>
#include <vector>

class ILevelFileSource;

/** What a command reads as its scene: a snapshot file (JSON) or a level saved by the engine. */
struct FSceneFileOptions
{
	std::string Path;
	/** For a level: leave out the streaming sub-levels it names. */
	bool bNoSubLevels = false;
	/** For a level: where its files come from, when not from disk (a revision of a git repository). */
	ILevelFileSource* Files = nullptr;
	/** For a level: a note for each part that could not be read, rather than one line for three or more of a kind. */
	bool bVerbose = false;
};

/** A scene read from a file, and what the reading has to tell the user. */
struct FSceneFile
{
	FSceneSnapshot Scene;
	/** Whether the file was a level (its objects are all placed), not a snapshot. */
	bool bIsLevel = false;
	/** One line each: a redirector followed, a sub-level or class not found, ... (levels only). */
	std::vector<std::string> Notes;
};

/**
 * Reads a scene file, told apart by its content, not its name: a file that starts like an Unreal package is read
 * as a level (docs/levels.md), any other as a scene snapshot (docs/scene-snapshot.md). On failure returns false
 * with one line naming the file (and the line and column, or the byte offset) in OutError.
 */
bool LoadSceneFile(const FSceneFileOptions& Options, FSceneFile& Out, std::string& OutError);

/**
 * LoadSceneFile for a command: its notes go to Err as "lodex: note: ..." lines, a failure as "lodex: ..." and
 * false.
 */
bool LoadSceneFileFor(const FSceneFileOptions& Options, FSceneFile& Out, std::ostream& Err);
