// Copyright Lodex contributors.
#pragma once

#include "Packages/SharedTags.h"

#include "SceneClasses.h"

#include "LodexDebugger/Core/Explorer/SnapshotObject.h"
#include "LodexDebugger/Core/Lodestring/LodexObjectGraph.h"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <string>
#include <vector>

/**
 * One object of a scene snapshot file. References to other objects are resolved to pointers. What a level saves of
 * the object (its class name, label, GUID, location, whether only the editor has it) is the FLodexSavedObject it is.
 */
struct FSceneObject : FLodexSavedObject
{
	std::string Id;
	ELodexSnapshotKind Kind = ELodexSnapshotKind::Other;
	std::string Name;
	const FSceneObject* Outer = nullptr;
	const FSceneObject* AttachParent = nullptr;
	const FSceneObject* WidgetParent = nullptr;
	const FSceneObject* RootWidget = nullptr;
	/** The objects whose outer this is, in the scene's order. */
	std::vector<const FSceneObject*> Inners;
	bool bHasTags = false;
	FSharedTags Tags;
	/** The object's class; null in files without reflection. */
	const FSceneClass* Class = nullptr;
	/** Every object read from a level is placed; a snapshot says so in "placed". */
	ELodexPlacement Origin = ELodexPlacement::Unknown;
	/** The package the object was read from (`/Game/Maps/Main`, or an external actor package); empty otherwise. */
	std::string Package;
	/** For a level: the game loads it only when it streams it in (a dynamic streaming level not loaded at start). */
	bool bStreamedOnDemand = false;
	/** For a level loaded as a Level Instance: the id of the actor that instances it; empty otherwise. */
	std::string InstancedBy;
};

/** The references of one object built in code, by index into the same list; NoObject for none. */
struct FSceneObjectLinks
{
	static constexpr std::size_t NoObject = static_cast<std::size_t>(-1);
	std::size_t Outer = NoObject;
	std::size_t AttachParent = NoObject;
};

/**
 * A level described by a JSON file: {"objects": [{"id", "kind", "name", "outer", "attachParent",
 * "widgetParent", "rootWidget", "tags"}, ...]}. It answers the object-graph questions the Lodestring
 * builder asks, the way the editor's objects do. With "classes" (and each object's "class") it also holds the
 * reflection the object explorer reads; FSceneReflection answers for it.
 */
class FSceneSnapshot final : public ILodexObjectGraph
{
public:
	FSceneSnapshot() = default;
	FSceneSnapshot(const FSceneSnapshot&) = delete;
	FSceneSnapshot& operator=(const FSceneSnapshot&) = delete;
	FSceneSnapshot(FSceneSnapshot&&) = default;
	FSceneSnapshot& operator=(FSceneSnapshot&&) = default;

	/**
	 * Parses a snapshot. On failure returns false and sets OutError to one line that starts with
	 * SourceName (and, for malformed JSON, the line and column).
	 */
	static bool Parse(
		const std::string& Text, const std::string& SourceName, FSceneSnapshot& Out, std::string& OutError);

	/**
	 * A scene made in code from objects and their references (Links[i] for Objects[i]; missing rows mean none).
	 * The pointer fields of Objects are ignored and set from Links. Fails, with OutError naming the object by
	 * index and id, on an empty or duplicate id or an index outside the list.
	 */
	static bool FromObjects(std::vector<FSceneObject> Objects, const std::vector<FSceneObjectLinks>& Links,
		FSceneSnapshot& Out, std::string& OutError);

	/**
	 * The scene as a snapshot file: every object, in order, with each field it has (LodexSnapshot::WriteObjects).
	 */
	std::string Write() const;

	/** Reads and parses a snapshot file. */
	static bool LoadFile(const std::string& Path, FSceneSnapshot& Out, std::string& OutError);

	const std::vector<FSceneObject>& GetObjects() const { return Objects; }

	/** The classes of the file's "classes" (see SceneClasses.h); empty for a file without reflection. */
	const std::vector<FSceneClass>& GetClasses() const { return Classes; }

	/**
	 * The object with this id, or else the one object with this name, or else the one object with this editor
	 * label; null and a message otherwise.
	 */
	FLodexObject FindObject(const std::string& IdOrName, std::string& OutError) const;

	static FLodexObject Handle(const FSceneObject& Object) { return FLodexObject(&Object); }
	static const FSceneObject& Resolve(FLodexObject Object) { return *static_cast<const FSceneObject*>(Object.Ptr); }

	//~ Begin ILodexObjectGraph Interface
	bool IsOfClass(FLodexObject Object, ELodexClass Class) const override;
	std::string GetName(FLodexObject Object) const override;
	FLodexObject GetOuter(FLodexObject Object) const override;
	FLodexObject GetAttachParent(FLodexObject Object) const override;
	FLodexObject GetWidgetParent(FLodexObject Object) const override;
	FLodexObject GetRootWidget(FLodexObject Object) const override;
	bool GetTags(FLodexObject Object, std::vector<std::string>& OutTags) const override;
	ELodexPlacement GetPlacement(FLodexObject Object) const override;
	std::string GetActorGuid(FLodexObject Object) const override;
	bool IsEditorOnly(FLodexObject Object) const override;
	std::string GetEditorLabel(FLodexObject Object) const override;
	std::string GetLevelName(FLodexObject Object) const override;
	bool IsInLevelStreamedOnDemand(FLodexObject Object) const override;
	//~ End ILodexObjectGraph Interface

private:
	static bool ReadObjects(
		const nlohmann::json& Root, const std::string& SourceName, FSceneSnapshot& Out, std::string& OutError);

	std::vector<FSceneObject> Objects;
	std::vector<FSceneClass> Classes;
};
