// Copyright Lodex contributors.
#pragma once

#include "Scenes/SceneFile.h"

#include <string>

/** A scene argument split into a git revision and a path: `main:Content/Maps/Main.umap`. */
struct FRevisionPath
{
	std::string Revision;
	std::string Path;
};

/**
 * Whether Argument names a file at a revision (`REV:PATH`) rather than a file: it is not an existing file, and it
 * holds a ':' with text on both sides.
 */
bool SplitRevisionPath(const std::string& Argument, FRevisionPath& Out);

/**
 * LoadSceneFile for a file, or for `REV:PATH` the file at that revision of the git repository that holds PATH
 * (PATH as it would lie in the work tree). A level's Content folder at that revision (its external actors,
 * sub-levels and Blueprint classes) is read through `git` into a temporary folder, removed afterwards; the work
 * tree and the repository's index are never touched. Messages name files as `REV:PATH`. On failure, one line in
 * OutError: a revision or a path that does not exist, or the file's own error.
 */
bool LoadSceneAtRevision(const FSceneFileOptions& Options, FSceneFile& Out, std::string& OutError);
