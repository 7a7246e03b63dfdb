// Copyright Lodex contributors.
#pragma once

#include "SceneSnapshot.h"

#include <string>
#include <vector>

/**
 * Where the files of a level come from when they are not on disk beforehand (a revision of a git repository, whose
 * files are brought out only as the reader asks for them): told of each file and folder before the reader looks at it.
 */
class ILevelFileSource
{
public:
	virtual ~ILevelFileSource() = default;
	/** Brings out the file at Path, when the source has it. */
	virtual void FetchFile(const std::string& Path) = 0;
	/** Brings out every file below the folder at Path. */
	virtual void FetchFolder(const std::string& Path) = 0;
};

/** What to read besides the map itself. */
struct FLevelReadOptions
{
	/** Read the streaming sub-levels the level names that lie under the same Content folder. */
	bool bSubLevels = true;
	/** Where the files come from; null: they are on disk. */
	ILevelFileSource* Files = nullptr;
	/** List every part that could not be read in its own note, rather than summing up three or more of a kind. */
	bool bVerbose = false;
};

/** A level read as a scene, and what the caller may want to tell the user about it. */
struct FLevelScene
{
	/**
	 * The objects of every level read, each level's in turn (the map's, its sub-levels', then the levels of its
	 * Level Instances, one level for each instance, named as the game names it): the level
	 * ("PersistentLevel", kind Other), the actors of its `Actors` array in order, then its external actors;
	 * each actor followed by its components. A level's Inners are its actors, an actor's its components. Ids are
	 * object paths, unique across levels; every object's Origin is Placed, its Package the package it was read
	 * from.
	 */
	FSceneSnapshot Scene;
	/**
	 * One line each, meant to be printed as they are: a redirector followed, a sub-level or a Blueprint class
	 * that could not be found, sub-levels left out, external actor packages of another level.
	 */
	std::vector<std::string> Notes;
	/** The files read, in order: the map (after any redirector), its external actor packages, its sub-levels. */
	std::vector<std::string> Files;
	std::size_t ExternalActorCount = 0;
	std::size_t SubLevelCount = 0;
	std::size_t LevelInstanceCount = 0;
};

/** Whether Bytes start like an Unreal package (its tag, in either byte order), whatever the file's name. */
bool IsUnrealPackageBytes(const std::string& Bytes);

/** Whether the file at Path starts like an Unreal package; false when it cannot be read. */
bool IsUnrealPackageFile(const std::string& Path);

/**
 * Reads the level saved in the map file at Path (a .umap saved by Unreal Engine 5.0, see docs/levels.md) into a
 * scene. The map's package name comes from where it lies under its project's Content folder; from there the
 * reader finds World Partition external actors (`Content/__ExternalActors__/<map path>/`), streaming sub-levels,
 * the map a redirector leads to, and the Blueprint classes whose default tags an actor inherits.
 *
 * On failure returns false with OutError set to one line naming the file and the byte offset:
 * `Main.umap: byte 1180: the name map's count 99999 does not fit in the file: ...`.
 */
bool ReadLevelScene(const std::string& Path, const FLevelReadOptions& Options, FLevelScene& Out, std::string& OutError);

/**
 * The same on a package's bytes held in memory: SourceName names it in messages and PackagePath is its package
 * name (`/Game/Maps/Main`). Nothing else is looked up (no external actors, sub-levels, redirectors or classes).
 */
bool ReadLevelSceneBytes(std::string Bytes, const std::string& SourceName, const std::string& PackagePath,
	FLevelScene& Out, std::string& OutError);
