// Copyright Lodex contributors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

/** Little-endian bytes, as a package holds them. */
class FTestBytes
{
public:
	void Int32(std::int32_t Value) { Raw(static_cast<std::uint32_t>(Value), 4); }
	void UInt32(std::uint32_t Value) { Raw(Value, 4); }
	void UInt16(std::uint16_t Value) { Raw(Value, 2); }
	void UInt8(std::uint8_t Value) { Raw(Value, 1); }
	void Int64(std::int64_t Value) { Raw(static_cast<std::uint64_t>(Value), 8); }
	void Zeros(std::size_t Count) { Text.append(Count, '\0'); }
	/** An FString: 8-bit when every character is ASCII, else UTF-16 (a negative count). */
	void String(const std::string& Utf8);
	void Append(const std::string& Bytes) { Text += Bytes; }
	std::size_t Size() const { return Text.size(); }

	std::string Text;

private:
	void Raw(std::uint64_t Value, std::size_t Count);
};

/**
 * A package laid out as Unreal Engine 5.0 saves one: the summary, the name map, the import map, the export map and
 * each export's data. Names are added to the name map as they are used; a name ending in "_N" is stored as the
 * engine does, as its base and the number N + 1.
 */
class FTestPackage
{
public:
	/** What one export's data is made of: tagged properties, then the object GUID flag and the class's own data. */
	class FData
	{
	public:
		FData& Object(const std::string& Name, std::int32_t Index);
		FData& ObjectArray(const std::string& Name, const std::vector<std::int32_t>& Indices);
		FData& NameArray(const std::string& Name, const std::vector<std::string>& Names);
		FData& String(const std::string& Name, const std::string& Value);
		FData& SoftObject(const std::string& Name, const std::string& Path);
		FData& Bool(const std::string& Name, bool bValue);
		/** A struct value the reader must skip by its size, with a property GUID in its tag. */
		FData& Struct(const std::string& Name, const std::string& StructName, std::size_t Size);
		/** A Guid struct from 32 hex digits (A, B, C, D as `FGuid::ToString()` writes them). */
		FData& Guid(const std::string& Name, const std::string& Digits);
		/** A Vector struct: doubles, or floats for a package saved before large world coordinates. */
		FData& Vector(const std::string& Name, double X, double Y, double Z, bool bDoubles = true);
		/** A property with any tag and value bytes (for wrong types and sizes). */
		FData& Raw(const std::string& Name, const std::string& Type, const std::string& Value, std::int32_t Size,
			const std::string& InnerType = "");
		/** After the properties' "None": the object GUID flag (0) and these bytes. */
		FData& Native(std::function<void(FTestPackage&, FTestBytes&)> Writer);
		/** Drops the "None" that ends the properties and everything after it (a truncated object). */
		FData& WithoutEnd();

	private:
		friend class FTestPackage;
		std::vector<std::function<void(FTestPackage&, FTestBytes&)>> Properties;
		std::function<void(FTestPackage&, FTestBytes&)> NativeWriter;
		bool bEnd = true;
	};

	/** Versions and flags the summary states; the defaults are those of Unreal Engine 5.0.3. */
	std::int32_t LegacyFileVersion = -8;
	std::int32_t FileVersionUE4 = 522;
	std::int32_t FileVersionUE5 = 1004;
	std::uint32_t PackageFlags = 0;
	/** The FReleaseObjectVersion listed among the custom versions; -1: none listed (a level's actors are then an
	 * owner and an array, as before version 3). */
	std::int32_t ReleaseObjectVersion = 40;
	std::uint32_t CompressionFlags = 0;
	/** Compressed chunks, all zero, listed in the summary. */
	std::int32_t CompressedChunks = 0;
	std::uint16_t EngineMajor = 5, EngineMinor = 0, EnginePatch = 3;
	std::string EngineBranch = "++UE5+Release-5.0";

	/** Sets the versions the summary states. */
	void SetVersions(std::int32_t Legacy, std::int32_t UE4, std::int32_t UE5, std::int32_t Release)
	{
		LegacyFileVersion = Legacy;
		FileVersionUE4 = UE4;
		FileVersionUE5 = UE5;
		ReleaseObjectVersion = Release;
	}

	explicit FTestPackage(std::string InPackagePath = "/Game/Maps/Main")
		: PackagePath(std::move(InPackagePath))
	{
	}

	/** An import; returns its index (negative). */
	std::int32_t Import(
		const std::string& ClassPackage, const std::string& ClassName, std::int32_t Outer, const std::string& Name);
	/** Imports an object by its path (`/Script/Engine.StaticMeshActor`, `/Game/M.M:PersistentLevel.A.B`), with its
	 * outers. */
	std::int32_t ImportPath(const std::string& Path, const std::string& ClassName);
	/** An export; returns its index (positive). Data may be filled in later with GetData. */
	std::int32_t Export(std::int32_t Class, std::int32_t Outer, const std::string& Name, std::int32_t Super = 0);
	FData& GetData(std::int32_t Export) { return Exports[static_cast<std::size_t>(Export - 1)].Data; }
	/** The export's saved object flags (`RF_DefaultSubObject` is 0x00040000). */
	void SetObjectFlags(std::int32_t Export, std::uint32_t Flags)
	{
		Exports[static_cast<std::size_t>(Export - 1)].ObjectFlags = Flags;
	}
	/** Saves the export not-for-client and not-for-server, as the editor saves an editor-only object. */
	void SetEditorOnly(std::int32_t Export) { Exports[static_cast<std::size_t>(Export - 1)].bEditorOnly = true; }

	/** A struct tag's GUID, saved from UE4 441 on. */
	void StructGuid(FTestBytes& Out) const { Out.Zeros(FileVersionUE4 >= 441 ? 16 : 0); }
	/** A tag's "no property GUID" flag, saved from UE4 503 on. */
	void NoPropertyGuid(FTestBytes& Out) const { Out.Zeros(FileVersionUE4 >= 503 ? 1 : 0); }

	/** Writes a name (index and number) for Text, adding it to the name map. */
	void Name(FTestBytes& Out, const std::string& Text);

	/** The file. Layout then says where its parts went. */
	std::string Build();

	struct FLayout
	{
		std::size_t NameCountField = 0;
		std::size_t ExportCountField = 0;
		std::size_t ImportCountField = 0;
		std::size_t CompressionFlagsField = 0;
		std::size_t NameOffset = 0;
		std::size_t ImportOffset = 0;
		std::size_t ExportOffset = 0;
		std::vector<std::size_t> ExportEntries;
		std::vector<std::size_t> ExportData;
	} Layout;

	const std::string PackagePath;

private:
	struct FImport
	{
		std::string ClassPackage, ClassName, Name;
		std::int32_t Outer = 0;
	};
	struct FExport
	{
		std::int32_t Class = 0, Super = 0, Outer = 0;
		std::string Name;
		FData Data;
		std::uint32_t ObjectFlags = 0;
		bool bEditorOnly = false;
	};
	std::int32_t NameIndex(const std::string& Base);
	/** Writes the summary; At receives where its count and flag fields went. */
	void WriteSummary(FTestBytes& Out, FLayout& At, std::size_t TotalHeader);

	std::vector<std::string> Names;
	std::vector<FImport> Imports;
	std::vector<FExport> Exports;
};

/** A component of a test actor. AttachParent: "Actor.Component" in the same map, or an object path elsewhere. */
struct FTestComponent
{
	FTestComponent(std::string InName, std::string InClass = "StaticMeshComponent", std::string InAttachParent = "")
		: Name(std::move(InName))
		, Class(std::move(InClass))
		, AttachParent(std::move(InAttachParent))
	{
	}

	std::string Name;
	std::string Class;
	std::string AttachParent;
	/** Saved as a default subobject of the actor (RF_DefaultSubObject). */
	bool bDefaultSubObject = false;
	/** Saved not-for-client and not-for-server. */
	bool bEditorOnly = false;
};

/** An actor of a test map. Class is a native class name, or a Blueprint class's object path (`/Game/BP/B.B_C`). */
struct FTestActor
{
	std::string Name;
	std::string Class = "StaticMeshActor";
	/** The class as an object of the package (an import or an export), in place of Class, when not 0. */
	std::int32_t ClassIndex = 0;
	std::string Label;
	bool bTags = false;
	std::vector<std::string> Tags;
	std::vector<FTestComponent> Components;
	/** The root component's name; empty for none saved. */
	std::string Root;
	/** Component names listed in InstanceComponents. */
	std::vector<std::string> InstanceComponents;
	/** Properties the actor's data starts with (for values a reader must reject). */
	std::function<void(FTestPackage::FData&)> FirstProperties;
	/** Whether the level's Actors array names the actor (an unlisted one is an object of the level all the same). */
	bool bListed = true;
	/** The saved ActorGuid (32 hex digits); empty: none saved. */
	std::string Guid;
	/** The root component's saved RelativeLocation, when bLocation. */
	bool bLocation = false;
	double Location[3] = {0, 0, 0};
	/** Whether vectors are saved as floats (a package saved before large world coordinates). */
	bool bFloatVectors = false;
	/** Saved not-for-client and not-for-server. */
	bool bEditorOnly = false;
	/** Component names the root component lists in AttachChildren. */
	std::vector<std::string> AttachChildren;
};

/** An actor of class StaticMeshActor with these components and this root component. */
FTestActor TestActor(
	const std::string& Name, std::vector<FTestComponent> Components = {}, const std::string& Root = "");

/** An actor of this class (a native class name or a Blueprint class's object path), without components. */
FTestActor TestActorOfClass(const std::string& Name, const std::string& Class);

/** A map package: a world, its persistent level and the level's Actors array, and streaming sub-levels. */
struct FTestMap
{
	std::string PackagePath = "/Game/Maps/Main";
	std::vector<FTestActor> Actors;
	/** Packages of streaming sub-levels (`/Game/Maps/Sub`), each named by a LevelStreamingDynamic that saves no
	 * bInitiallyLoaded (the game streams it in). */
	std::vector<std::string> SubLevels;
	/** Packages named after those by a LevelStreamingDynamic that saves bInitiallyLoaded true. */
	std::vector<std::string> LoadedSubLevels;
	/** Actors kept in packages of their own that the Actors array names (as imports), and a null entry. */
	std::vector<std::string> ImportedActors;
	bool bNullActor = false;
	/** The Actors array's order as indices into Actors, when not theirs. */
	std::vector<std::size_t> Order;
};

/** A map of this package with these actors, naming these sub-levels as streamed in at play time. */
FTestMap TestMap(
	const std::string& PackagePath, std::vector<FTestActor> Actors, std::vector<std::string> SubLevels = {});

/**
 * A small map: actor Base (label "Base", tag "anchor") with a root component, actor Cube_2 whose mesh is attached
 * to it, and the sub-level /Game/Maps/Sub.
 */
FTestMap SmallTestMap();

/** The map's package, laid out; Package (when given) receives the writer, to corrupt a known part. */
std::string WriteTestMap(const FTestMap& Map, FTestPackage* Package = nullptr);

/** Sets up a package's writer before it writes (its versions, flags). */
using FTestPackageSetup = std::function<void(FTestPackage&)>;

/** An external actor package of MapPackage's level (World Partition). */
std::string WriteTestExternalActor(const std::string& MapPackage, const std::string& ActorPackage,
	const FTestActor& Actor, const FTestPackageSetup& Setup = nullptr);

/** A map that is only a redirector to the world of TargetPackage. */
std::string WriteTestRedirector(const std::string& PackagePath, const std::string& TargetPackage);

/**
 * A Blueprint class package: the class ClassName (`BP_Door_C`) deriving from SuperPath, and its default object,
 * which saves Tags when bTags.
 */
std::string WriteTestBlueprint(const std::string& PackagePath, const std::string& ClassName,
	const std::string& SuperPath, bool bTags, const std::vector<std::string>& Tags,
	const FTestPackageSetup& Setup = nullptr);

/** Writes Bytes to Root/RelativePath, making its folders. */
void WriteTestFile(const std::string& Root, const std::string& RelativePath, const std::string& Bytes);
