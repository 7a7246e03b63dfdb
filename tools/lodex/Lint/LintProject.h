// Copyright Lodex contributors.
#pragma once

#include "LintCommand.h"

#include <string>
#include <vector>

/** A C# test file read whole. */
struct FLodexLintTestFile
{
	std::string Path;
	std::string Text;
};

/** Where a game project keeps its levels: `/Game/X` in `Content/`, `/Plugin/X` in the plug-in's `Content/`. */
class FLodexProjectLevels
{
public:
	explicit FLodexProjectLevels(std::string InProject);

	/**
	 * The level file of a package path (`/Game/Maps/Town` is `PROJECT/Content/Maps/Town.umap`), or empty with
	 * OutWhy saying what is missing.
	 */
	std::string FindLevelFile(const std::string& PackagePath, std::string& OutWhy);

private:
	/** The plug-ins' Content folders by plug-in name (a `.uplugin` file's name), found on first use. */
	void FindPlugins();

	std::string Project;
	bool bPluginsFound = false;
	std::vector<std::pair<std::string, std::string>> PluginContent;
};

struct FLodexLintProjectOptions
{
	std::string Project;
	/** For each level: leave out its streaming sub-levels. */
	bool bNoSubLevels = false;
	/** Each unreadable part of a level in a note of its own. */
	bool bVerbose = false;
	/** How many levels (and files) are read and checked at once; at least 1. */
	unsigned Jobs = 1;
	FLodexLintOptions Lint;
};

/**
 * Checks each file's Lodestrings against the level its `api.LoadLevel("...")` calls name, from one call to the next:
 * each level read once, levels read and files checked `Jobs` at a time. Lodestrings before any `LoadLevel` are
 * checked against Scene when given, else reported as `no-level`; a `LoadLevel` of a level the project does not have
 * is `unknown-level`. The report holds the files in the order given. On a level that cannot be read returns false with
 * one line naming it in OutError. OutNotes receives what reading the levels has to tell, one line each.
 */
bool LintProjectFiles(const std::vector<FLodexLintTestFile>& Files, const FLodexLintProjectOptions& Options,
	const FLodexLintTarget* Scene, FLodexLintReport& Report, std::vector<std::string>& OutNotes, std::string& OutError);
