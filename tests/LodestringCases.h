// Copyright Lodex contributors.
#pragma once

/** A scene with every shape of Lodestring walk, and what each object gives in each mode. */
namespace LodestringCases
{
	inline const char* const Scene = R"({"objects": [
  {"id": "lvl", "kind": "other", "name": "PersistentLevel"},
  {"id": "house", "kind": "actor", "name": "House", "outer": "lvl", "tags": ["bldg"]},
  {"id": "door", "kind": "actor", "name": "Door", "outer": "lvl", "attachParent": "house", "tags": ["locked", "red"]},
  {"id": "hinge", "kind": "component", "name": "Hinge", "outer": "door"},
  {"id": "shed", "kind": "actor", "name": "Shed", "outer": "lvl"},
  {"id": "shedDoor", "kind": "actor", "name": "ShedDoor", "outer": "lvl", "attachParent": "shed", "tags": ["locked"]},
  {"id": "owned", "kind": "actor", "name": "Owned", "outer": "house"},
  {"id": "a", "kind": "actor", "name": "A", "outer": "lvl", "tags": ["t1", "t2", "t3"]},
  {"id": "a1", "kind": "actor", "name": "A1", "outer": "lvl", "tags": ["t1"]},
  {"id": "a0", "kind": "actor", "name": "A0", "outer": "lvl", "tags": []},
  {"id": "comp", "kind": "component", "name": "Comp", "outer": "a"},
  {"id": "arm", "kind": "component", "name": "Arm", "outer": "a"},
  {"id": "armSettings", "kind": "other", "name": "Settings", "outer": "arm"},
  {"id": "hand", "kind": "component", "name": "Hand", "outer": "armSettings"},
  {"id": "levelComp", "kind": "component", "name": "Comp", "outer": "lvl"},
  {"id": "notLevel", "kind": "other", "name": "persistentLevel", "outer": "a"},
  {"id": "notLevelComp", "kind": "component", "name": "Comp", "outer": "notLevel"},
  {"id": "fog", "kind": "other", "name": "Fog", "outer": "lvl"},
  {"id": "pkg", "kind": "other", "name": "/Game/Brick"},
  {"id": "brick", "kind": "other", "name": "Brick", "outer": "pkg"},
  {"id": "template", "kind": "component", "name": "Template", "outer": "brick"},
  {"id": "panel", "kind": "widget", "name": "Panel"},
  {"id": "w", "kind": "widget", "name": "W", "widgetParent": "panel"},
  {"id": "user", "kind": "userWidget", "name": "UserWidget", "widgetParent": "panel"},
  {"id": "inner", "kind": "userWidget", "name": "Inner", "widgetParent": "user"},
  {"id": "tree", "kind": "widgetTree", "name": "WidgetTree", "outer": "user", "rootWidget": "panel"},
  {"id": "emptyTree", "kind": "widgetTree", "name": "EmptyTree"},
  {"id": "bob", "kind": "actor", "name": "Bob's", "outer": "lvl"},
  {"id": "odd", "kind": "component", "name": "a]b[c')/", "outer": "bob"},
  {"id": "gate", "kind": "actor", "name": "Tür_用户_2", "outer": "lvl", "tags": ["用户", "with blank"]},
  {"id": "cycA", "kind": "actor", "name": "CycA", "attachParent": "cycB"},
  {"id": "cycB", "kind": "actor", "name": "CycB", "attachParent": "cycA", "tags": ["b"]},
  {"id": "self", "kind": "actor", "name": "Self", "attachParent": "self"},
  {"id": "c1", "kind": "component", "name": "C1", "outer": "c2"},
  {"id": "c2", "kind": "component", "name": "C2", "outer": "c1"},
  {"id": "o1", "kind": "other", "name": "O1", "outer": "o1"}
]})";

	struct FRow
	{
		const char* Object;
		const char* Mode;
		const char* Expected;
	};

	inline const FRow Rows[] = {
		// Door (locked, red) attached to House (bldg); Door owns Hinge.
		{"hinge", "Absolute", "/*[@name = 'House']/*[@name = 'Door']/fn:component('Hinge')"},
		{"hinge", "Relative", "//Door/fn:component('Hinge')"},
		{"hinge", "Tag", "/*[@tag = 'bldg']"},
		{"door", "Absolute", "/*[@name = 'House']/*[@name = 'Door']"},
		{"door", "Relative", "//Door"},
		{"house", "Tag", "/*[@tag = 'bldg']"},
		{"shedDoor", "Tag", "/*[]"}, // a tagged actor under an untagged one
		{"hinge", "absolute", "/fn:component('Hinge')"},
		// Actors and their components.
		{"a", "Absolute", "/*[@name = 'A']"},
		{"a", "Relative", "//A"},
		{"comp", "Relative", "//A/fn:component('Comp')"},
		{"comp", "Absolute", "/*[@name = 'A']/fn:component('Comp')"},
		{"hand", "Absolute", "/*[@name = 'A']/fn:component('Arm')/fn:component('Hand')"},
		{"hand", "Relative", "//A/fn:component('Arm')/fn:component('Hand')"},
		{"owned", "Absolute", "/*[@name = 'Owned']"}, // an actor's outer is never walked
		{"levelComp", "Absolute", "/fn:component('Comp')"},
		{"levelComp", "Relative", "/fn:component('Comp')"},
		{"levelComp", "Tag", "/fn:component('Comp')"},
		{"levelComp", "", "/fn:component('Comp')"},
		{"notLevelComp", "Absolute", "/*[@name = 'A']/fn:component('Comp')"}, // only "PersistentLevel" stops
		// Tags: the topmost node's expression replaces everything below it.
		{"a", "Tag", "/*[@tag = 't1' or @tag = 't2' or @tag = 't3']"},
		{"a1", "Tag", "/*[@tag = 't1']"},
		{"a0", "Tag", "/*[]"},
		{"comp", "Tag", "/*[@tag = 't1' or @tag = 't2' or @tag = 't3']"},
		{"gate", "Tag", "/*[@tag = '用户' or @tag = 'with blank']"},
		{"w", "Tag", "/*[]"},
		// Widgets.
		{"w", "Absolute", "/*[@name = 'W']"},
		{"w", "Relative", "//W"},
		{"user", "Absolute", "/*[@name = 'Panel']/*[@name = 'UserWidget']"},
		{"user", "Relative", "//UserWidget"},
		{"inner", "Absolute", "/*[@name = 'Panel']/*[@name = 'UserWidget']/*[@name = 'Inner']"},
		{"tree", "Absolute", "/*[@name = 'Panel']/*[@name = 'WidgetTree']"},
		{"emptyTree", "Absolute", "/*[@name = 'EmptyTree']"},
		// Modes are exact: anything else gives component steps only.
		{"comp", "Tag ", "/fn:component('Comp')"},
		{"comp", "relative", "/fn:component('Comp')"},
		{"a", "", ""},
		// Objects that are no node and lie in a level or a package.
		{"fog", "Absolute", ""},
		{"brick", "Absolute", ""},
		{"template", "Absolute", "/fn:component('Template')"},
		// Names go in as they are.
		{"bob", "Absolute", "/*[@name = 'Bob's']"},
		{"odd", "Relative", "//Bob's/fn:component('a]b[c')/')"},
		{"gate", "Absolute", "/*[@name = 'Tür_用户_2']"},
		// Malformed graphs: a loop ends the walk at the first object met again.
		{"cycA", "Absolute", "/*[@name = 'CycB']/*[@name = 'CycA']"},
		{"cycA", "Tag", "/*[@tag = 'b']"},
		{"self", "Absolute", "/*[@name = 'Self']"},
		{"c1", "Relative", "/fn:component('C2')/fn:component('C1')"},
		{"o1", "Absolute", ""},
	};
}
