// Copyright Lodex contributors.
#pragma once

#include <cstdint>
#include <string>

/** An object's "kind" in a scene snapshot: the first class test it answers (docs/scene-snapshot.md). */
enum class ELodexSnapshotKind : std::uint8_t
{
	Actor,
	WidgetTree,
	Widget,
	/** A widget that is a user widget. */
	UserWidget,
	/** An actor component. */
	Component,
	/** Levels, worlds, assets, plain objects. */
	Other,
};

/**
 * What a level saves of an object besides its name, tags and references: read from the level's package, kept by the
 * scene made of it and written in its snapshot. A field is empty (false) when the object saves none.
 */
struct FLodexSavedObject
{
	/** The class name as text (`StaticMeshActor`, `BP_Door_C`). */
	std::string ClassName;
	/** The editor label (`ActorLabel`); it may hold a tab or a line break. */
	std::string Label;
	/** The actor's `ActorGuid`: 32 upper-case hex digits, as `FGuid::ToString()` writes it. */
	std::string Guid;
	/** The actor's location (its root component's relative location); bHasLocation false when unknown. */
	bool bHasLocation = false;
	double Location[3] = {0, 0, 0};
	/** Only the editor has the object (saved not-for-client and not-for-server): the game does not. */
	bool bEditorOnly = false;
};

namespace LodexSnapshot
{
	/** The kind as snapshots write it: "actor", "widgetTree", "widget", "userWidget", "component", "other". */
	const char* GetKindName(ELodexSnapshotKind Kind);

	/** The kind a snapshot's text names; false for a text that names none. */
	bool FindKind(const std::string& Name, ELodexSnapshotKind& OutKind);
}
