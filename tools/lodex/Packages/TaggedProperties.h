// Copyright Lodex contributors.
#pragma once

#include "UnrealPackage.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/**
 * One tagged property of an object's data, as the editor saves them: its name and type, and where its value lies.
 * Values are not interpreted here: the readers below decode the few kinds Lodex needs, and every other value is
 * skipped by its size.
 */
struct FTaggedProperty
{
	/** Names of the package's name map (FUnrealPackage::NameText renders them); no text is copied. */
	FPackageName Name;
	FPackageName Type;
	/** The element type of an ArrayProperty, SetProperty or MapProperty (the key's, for a map); None otherwise. */
	FPackageName InnerType;
	/** The struct type of a StructProperty (`Guid`, `Vector`); None otherwise. */
	FPackageName StructName;
	std::int32_t ArrayIndex = 0;
	/** Where the tag starts, and its value (after the tag), in the file. */
	std::size_t TagOffset = 0;
	std::size_t ValueOffset = 0;
	std::size_t ValueSize = 0;
	/** A BoolProperty's value, kept in the tag. */
	bool bBoolValue = false;
};

/** An object's data: its tagged properties, in order, and the byte after the "None" that ends them. */
struct FObjectProperties
{
	std::vector<FTaggedProperty> Properties;
	std::size_t End = 0;

	/** The first property named Name at index 0, or null. */
	const FTaggedProperty* Find(const FUnrealPackage& Package, const char* Name) const;
};

/**
 * Reads the tagged properties at the start of an export's data (export index ExportIndex, from 1). Fails when a
 * tag or a value runs past the export's data, or a name is not in the name map.
 */
bool ReadObjectProperties(
	const FUnrealPackage& Package, std::int32_t ExportIndex, FObjectProperties& Out, FPackageError& OutError);

/**
 * After an object's tagged properties, the object's optional GUID (a 32-bit flag, then the GUID when set); Offset
 * moves past it. This is where a class's own data begins (a level's actors, a redirector's destination).
 */
bool SkipObjectGuid(
	const FUnrealPackage& Package, std::int32_t ExportIndex, std::size_t& Offset, FPackageError& OutError);

/** The value readers: each checks the property's type and reads inside its value only. */
namespace PropertyValues
{
	/** An ObjectProperty (or a subclass of it): an object index of the package, checked. */
	bool ReadObject(
		const FUnrealPackage& Package, const FTaggedProperty& Property, std::int32_t& Out, FPackageError& OutError);
	/** An ArrayProperty of ObjectProperty: object indices, checked. */
	bool ReadObjectArray(const FUnrealPackage& Package, const FTaggedProperty& Property, std::vector<std::int32_t>& Out,
		FPackageError& OutError);
	/** An ArrayProperty of NameProperty: the names as the engine renders them. */
	bool ReadNameArray(const FUnrealPackage& Package, const FTaggedProperty& Property, std::vector<std::string>& Out,
		FPackageError& OutError);
	/** A StrProperty: UTF-8 text. */
	bool ReadString(
		const FUnrealPackage& Package, const FTaggedProperty& Property, std::string& Out, FPackageError& OutError);
	/** A SoftObjectProperty: the object path it holds (`/Game/Maps/Sub.Sub`), its sub-path after a ":" if any. */
	bool ReadSoftObjectPath(
		const FUnrealPackage& Package, const FTaggedProperty& Property, std::string& Out, FPackageError& OutError);
	/**
	 * A StructProperty of struct Guid: its four 32-bit parts A, B, C, D, written as `FGuid::ToString()` writes
	 * them (32 upper-case hex digits). An all-zero GUID (not valid to the engine) is read as the empty text.
	 */
	bool ReadGuid(
		const FUnrealPackage& Package, const FTaggedProperty& Property, std::string& Out, FPackageError& OutError);
	/**
	 * A StructProperty of struct Vector: X, Y, Z as doubles in a package of the large-world format (UE5 version
	 * 1004 and later), as floats before it.
	 */
	bool ReadVector(
		const FUnrealPackage& Package, const FTaggedProperty& Property, double (&Out)[3], FPackageError& OutError);
}
