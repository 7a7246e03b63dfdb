// Copyright Lodex contributors.
#pragma once

#include "Packages/LevelPackage.h"
#include "LevelScene.h"

#include <cstddef>
#include <string>
#include <vector>

/** A package a level's actors were read from. */
struct FActorSource
{
	std::string File;
	std::string Package;
};

/** An actor read from a package, with the package it came from (an index into its level's Sources). */
struct FLoadedActor
{
	FLevelActor Actor;
	std::size_t Source = 0;
};

/** One level as read from its files, before it becomes part of a scene. */
struct FLoadedLevel
{
	std::string PackagePath;
	/** `/Game/Maps/Main.Main` */
	std::string WorldPath;
	/** The file the level was read from, for messages. */
	std::string File;
	/** The actors of the level's Actors array, then those of its external actor packages. */
	std::vector<FLoadedActor> Actors;
	/** The map (first), then each external actor package. */
	std::vector<FActorSource> Sources;
	/** Whether the game loads the level only when it streams it in. */
	bool bStreamedOnDemand = false;
	/** Whether the level is a World Partition map's (it saves a WorldPartition object). */
	bool bWorldPartition = false;
	/**
	 * For a Level Instance's level: the id and ActorGuid of the actor that instances it, and the index (in the
	 * levels read) of the level that actor lies in. PackagePath is then the package the game loads the level as.
	 */
	std::string InstanceActor;
	std::string InstanceGuid;
	std::size_t InstanceHost = 0;
};

/**
 * Makes the scene of the levels, in order (see FLevelScene). Attach parents are found by object path, across
 * levels and packages; one that is not among the objects read is left out, with a note.
 */
bool BuildLevelScene(std::vector<FLoadedLevel> Levels, FLevelScene& Out, std::string& OutError);
