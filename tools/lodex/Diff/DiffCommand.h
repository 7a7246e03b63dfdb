// Copyright Lodex contributors.
#pragma once

#include "Scenes/SceneFile.h"

#include <ostream>
#include <string>

struct FLevelDiff;

/** The reviewer's text: a summary line, then one line per change under a heading for each kind. */
std::string FormatLevelDiffText(const FLevelDiff& Diff, const std::string& OldName, const std::string& NewName);

/** The same as one JSON object, for tools. */
std::string FormatLevelDiffJson(const FLevelDiff& Diff, const std::string& OldName, const std::string& NewName);

/**
 * Reads both sides of a diff, each as LoadSceneAtRevision does, the old one on a second thread: one line for the
 * first side that fails (the old one's when both do) in OutError.
 */
bool LoadScenePair(const FSceneFileOptions& OldOptions, const FSceneFileOptions& NewOptions, FSceneFile& OutOld,
	FSceneFile& OutNew, std::string& OutError);

/** LoadSceneAtRevision for a command: notes to Err as "lodex: note: ...", a failure as "lodex: ..." and false. */
bool LoadSceneSideFor(const FSceneFileOptions& Options, FSceneFile& Out, std::ostream& Err);
