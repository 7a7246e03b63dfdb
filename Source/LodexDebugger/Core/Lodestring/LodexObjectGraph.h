// Copyright Lodex contributors.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/**
 * Opaque reference to one object of the host's object graph. The editor wraps a UObject pointer,
 * the headless host an entry of a scene snapshot. A null handle means "no object".
 */
struct FLodexObject
{
	const void* Ptr = nullptr;

	FLodexObject() = default;
	explicit FLodexObject(const void* InPtr)
		: Ptr(InPtr)
	{
	}

	bool IsNull() const { return Ptr == nullptr; }
	explicit operator bool() const { return Ptr != nullptr; }
	bool operator==(const FLodexObject& Other) const { return Ptr == Other.Ptr; }
	bool operator!=(const FLodexObject& Other) const { return Ptr != Other.Ptr; }
};

/** The classes the path builder tests an object against (the class itself or a class derived from it). */
enum class ELodexClass
{
	Actor,
	WidgetTree,
	Widget,
	UserWidget,
	ActorComponent,
};

/** The kind of an object met on a Lodestring walk, from the first class test that matches. */
enum class ELodexObjectKind
{
	Actor,
	WidgetTree,
	Widget,
	Component,
	Other,
};

/**
 * Where an object's name comes from, which says whether the name is the same on every run of the game: an object
 * saved with its level keeps the name it was saved with (an edit of the level may renumber it), an object spawned
 * at play time is named as it is made, and its instance number depends on what was spawned before it.
 */
enum class ELodexPlacement : std::uint8_t
{
	/** The host cannot tell. */
	Unknown,
	/** Saved with its level (placed in the editor, or a component of such an actor). */
	Placed,
	/** Made at play time. */
	Spawned,
};

/**
 * The view of the host's object graph that the Lodestring builder walks. Every call receives a
 * non-null object and must not change it.
 */
class ILodexObjectGraph
{
public:
	virtual ~ILodexObjectGraph() = default;

	/** Whether the object's class is the given class or derives from it. */
	virtual bool IsOfClass(FLodexObject Object, ELodexClass Class) const = 0;

	/** The object's own name as UTF-8 text (never a display label). */
	virtual std::string GetName(FLodexObject Object) const = 0;

	/** The object that contains this one, or null. */
	virtual FLodexObject GetOuter(FLodexObject Object) const = 0;

	/** For an actor: the actor its root component is attached to, or null. */
	virtual FLodexObject GetAttachParent(FLodexObject Object) const = 0;

	/** For a widget: the panel widget that holds it as a child, or null. */
	virtual FLodexObject GetWidgetParent(FLodexObject Object) const = 0;

	/** For a widget tree: its root widget, or null. */
	virtual FLodexObject GetRootWidget(FLodexObject Object) const = 0;

	/**
	 * The elements of the object's "Tags" array in order. Returns false, leaving OutTags empty, when the
	 * object has no array property of that name.
	 */
	virtual bool GetTags(FLodexObject Object, std::vector<std::string>& OutTags) const = 0;

	/** Whether the object was saved with its level or spawned at play time; Unknown when the host cannot tell. */
	virtual ELodexPlacement GetPlacement(FLodexObject /*Object*/) const { return ELodexPlacement::Unknown; }

	/**
	 * For an actor: its `ActorGuid`, the identity it keeps through renames, re-labels and re-attachments, as 32
	 * upper-case hex digits (`FGuid::ToString()`); empty when the host does not know one.
	 */
	virtual std::string GetActorGuid(FLodexObject /*Object*/) const { return std::string(); }

	/**
	 * Whether only the editor has the object: it is saved not-for-client and not-for-server (a sprite or arrow
	 * component, a BSP brush), so the game never loads it. False when the host cannot tell.
	 */
	virtual bool IsEditorOnly(FLodexObject /*Object*/) const { return false; }

	/** For an actor: its editor label (`ActorLabel`), which the game does not have; empty when it has none. */
	virtual std::string GetEditorLabel(FLodexObject /*Object*/) const { return std::string(); }

	/** The package of the level the object lies in (`/Game/Maps/Sub`); empty when the host cannot tell. */
	virtual std::string GetLevelName(FLodexObject /*Object*/) const { return std::string(); }

	/** Whether the object's level is loaded only when the game streams it in (not loaded at start). */
	virtual bool IsInLevelStreamedOnDemand(FLodexObject /*Object*/) const { return false; }
};
