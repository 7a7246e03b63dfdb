// Copyright Lodex contributors.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <string>
#include <vector>

/** A property of a class, or a parameter or local of a function, in a scene snapshot. */
struct FSceneProperty
{
	std::string Name;
	/** The type text, as the engine's `FProperty::GetCPPType` gives it. */
	std::string Type;
	/** `LodexPropertyFlags` bits: parm, out, return. */
	std::uint64_t Flags = 0;
};

/** A function a class declares, with its properties in declaration order (parameters first, then locals). */
struct FSceneFunction
{
	std::string Name;
	std::vector<FSceneProperty> Properties;
};

/** A class of a scene snapshot: what it declares itself, and the class it derives from. */
struct FSceneClass
{
	std::string Name;
	const FSceneClass* Super = nullptr;
	std::vector<FSceneFunction> Functions;
	std::vector<FSceneProperty> Properties;
};

/**
 * Reads the snapshot's "classes" (absent in files without reflection) and each object's "class": OutObjectClasses
 * holds, for each entry of ObjectEntries, its class among OutClasses (null for none). On failure returns false with one
 * message naming the class, function, property or object and the field ("classes[1] (name 'Actor'): field 'super': no
 * class has the name 'Objet'").
 */
bool ParseSceneReflection(const nlohmann::json& Root, const nlohmann::json& ObjectEntries,
	std::vector<FSceneClass>& OutClasses, std::vector<const FSceneClass*>& OutObjectClasses, std::string& OutMessage);
