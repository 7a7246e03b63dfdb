// Copyright Lodex contributors.
#pragma once

#include "SharedTags.h"

#include "UnrealPackage.h"

#include "LodexDebugger/Core/Explorer/SnapshotObject.h"

#include <cstdint>
#include <string>
#include <vector>

/**
 * A component of an actor read from a package. Of what the level saves of an object (FLodexSavedObject) it has its
 * class name and, flagged not-for-client and not-for-server (or its actor is), bEditorOnly: only the editor loads it.
 */
struct FLevelComponent : FLodexSavedObject
{
	/** The object path (`/Game/Maps/Main.Main:PersistentLevel.Lamp_2.PointLight`), unique in a project. */
	std::string Path;
	std::string Name;
	/**
	 * For an object only its class can make a component, a Blueprint class of another package
	 * (`/Game/BP/BP_Spinner.BP_Spinner_C`): that class's path, for the reader of the level to follow its supers.
	 * Empty when the package alone shows it is a component; an object left with a path is no component.
	 */
	std::string ClassToCheck;
};

/**
 * An actor read from a package: what the level saves of it. Its class name, editor label (`ActorLabel`), saved
 * `ActorGuid`, location (the root component's saved `RelativeLocation`: (0, 0, 0) when it saves none, unknown without
 * a root) and whether it is flagged not-for-client and not-for-server (a BSP brush, an editor helper) are the
 * FLodexSavedObject it is, which the scene made of the level takes as it is.
 */
struct FLevelActor : FLodexSavedObject
{
	/** Where the export map gives the actor's name, for messages. */
	std::size_t Offset = 0;
	std::string Path;
	std::string Name;
	/** The class's object path (`/Script/Engine.StaticMeshActor`, `/Game/BP/BP_Door.BP_Door_C`). */
	std::string ClassPath;
	/** Whether the level saves the actor's own `Tags` (otherwise they are its class's defaults). */
	bool bHasTags = false;
	FSharedTags Tags;
	std::vector<FLevelComponent> Components;
	/**
	 * The object path of the component the actor's root component is attached to (`AttachParent`); empty when it is
	 * attached to nothing. It may lie in another package (World Partition actors attach across packages).
	 */
	std::string AttachParentPath;
	/**
	 * The world the actor saves as its `WorldAsset` (`/Game/Houses/House.House`), as a Level Instance does
	 * (ALevelInstance::WorldAsset); empty when it saves none. Whether the game loads that world depends on the
	 * actor's class, which the reader of the level tells.
	 */
	std::string InstancedWorld;
};

/** What a map package holds: a level, or a redirector to one. */
struct FLevelPackageContents
{
	/** The object path of the world (`/Game/Maps/Main.Main`); empty for a redirector. */
	std::string WorldPath;
	/** The actors of the level's `Actors` array that the package itself holds, in the array's order. */
	std::vector<FLevelActor> Actors;
	/** The packages the world's streaming levels name (`/Game/Maps/Sub`), in order. */
	std::vector<std::string> StreamingLevelPackages;
	/**
	 * Those of StreamingLevelPackages that no streaming level loads at start: each is named only by a
	 * `LevelStreamingDynamic` that does not save `bInitiallyLoaded` true, and is loaded when the game streams it in.
	 */
	std::vector<std::string> OnDemandLevelPackages;
	/** For a redirector: the object path it leads to (`/Game/Maps/Main.Main`). */
	std::string RedirectTarget;
};

/**
 * Reads a map package: the world, its persistent level's `Actors` array (after the level's tagged properties and
 * object GUID), each actor those entries name, and the world's streaming levels; or, for a redirector, its
 * destination. Fails on a package that holds neither a world nor a redirector.
 */
bool ReadLevelPackage(const FUnrealPackage& Package, FLevelPackageContents& Out, FPackageError& OutError);

/**
 * Reads an external actor package of a World Partition level: the actors in it whose outer is a level (an import
 * from the map). LevelPath is the level they must belong to (`/Game/Maps/Main.Main:PersistentLevel`);
 * OutLevelPath is the one they name, when it is another.
 */
bool ReadExternalActorPackage(const FUnrealPackage& Package, const std::string& LevelPath,
	std::vector<FLevelActor>& Out, std::string& OutLevelPath, FPackageError& OutError);

/**
 * Reads a Blueprint class package's defaults for the class ClassName (`BP_Door_C`): the class default object's
 * `Tags` when it saves them (bOutHasTags), and the object path of the class's super class, to look further up.
 */
bool ReadClassDefaults(const FUnrealPackage& Package, const std::string& ClassName, bool& bOutHasTags,
	FSharedTags& OutTags, std::string& OutSuperClassPath, FPackageError& OutError);
