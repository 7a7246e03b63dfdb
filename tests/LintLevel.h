// Copyright Lodex contributors.
#pragma once

/**
 * A level with a locator of every kind of brittleness: House (bldg) holds Door (red), Door holds Knob (red) and the
 * component Hinge_1; Cube_2 (crate) and Lamp_3 carry generated numbers, only the cube a tag; two actors named Twin
 * share the tag pair; L1 to L7 hang one below the other.
 */
namespace LintLevel
{
	inline const char* const Scene = R"({"objects": [
  {"id": "lvl", "kind": "other", "name": "PersistentLevel"},
  {"id": "house", "kind": "actor", "name": "House", "outer": "lvl", "tags": ["bldg"]},
  {"id": "door", "kind": "actor", "name": "Door", "outer": "lvl", "attachParent": "house", "tags": ["red"]},
  {"id": "knob", "kind": "actor", "name": "Knob", "outer": "lvl", "attachParent": "door", "tags": ["red"]},
  {"id": "hinge", "kind": "component", "name": "Hinge_1", "outer": "door"},
  {"id": "cube", "kind": "actor", "name": "Cube_2", "outer": "lvl", "tags": ["crate"]},
  {"id": "lamp", "kind": "actor", "name": "Lamp_3", "outer": "lvl"},
  {"id": "twin1", "kind": "actor", "name": "Twin", "outer": "lvl", "tags": ["pair"]},
  {"id": "twin2", "kind": "actor", "name": "Twin", "outer": "lvl", "tags": ["pair"]},
  {"id": "l1", "kind": "actor", "name": "L1", "outer": "lvl"},
  {"id": "l2", "kind": "actor", "name": "L2", "outer": "lvl", "attachParent": "l1"},
  {"id": "l3", "kind": "actor", "name": "L3", "outer": "lvl", "attachParent": "l2"},
  {"id": "l4", "kind": "actor", "name": "L4", "outer": "lvl", "attachParent": "l3"},
  {"id": "l5", "kind": "actor", "name": "L5", "outer": "lvl", "attachParent": "l4"},
  {"id": "l6", "kind": "actor", "name": "L6", "outer": "lvl", "attachParent": "l5"},
  {"id": "l7", "kind": "actor", "name": "L7", "outer": "lvl", "attachParent": "l6"}
]})";
}
