// Copyright Lodex contributors.
#pragma once

#include "PackageCursor.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/** The versions of the package format Lodex reads: those Unreal Engine 5.0 loads. */
namespace UnrealPackageVersions
{
	constexpr std::uint32_t Tag = 0x9E2A83C1;
	constexpr std::int32_t LegacyFileVersion = -8;
	constexpr std::int32_t FileVersionUE4 = 522;
	/** VER_UE4_OLDEST_LOADABLE_PACKAGE: the oldest package Unreal Engine 5.0 loads. */
	constexpr std::int32_t OldestFileVersionUE4 = 214;
	constexpr std::int32_t OldestFileVersionUE5 = 1000;
	constexpr std::int32_t NamesReferencedFromExportData = 1001;
	constexpr std::int32_t PayloadToc = 1002;
	constexpr std::int32_t OptionalResources = 1003;
	constexpr std::int32_t NewestFileVersionUE5 = 1004;
	/** From this version on, vectors are saved with double components (large world coordinates). */
	constexpr std::int32_t LargeWorldCoordinates = 1004;

	/** The UE4 versions from which the fields the package tables and property tags hold are saved. */
	namespace UE4Version
	{
		constexpr std::int32_t WorldLevelInfo = 224;
		constexpr std::int32_t ChunkId = 278;
		constexpr std::int32_t ArrayPropertyInnerTags = 282;
		constexpr std::int32_t ChunkIdArray = 326;
		constexpr std::int32_t EngineVersionObject = 336;
		constexpr std::int32_t LoadForEditorGame = 365;
		constexpr std::int32_t SoftPackageReferences = 384;
		constexpr std::int32_t StructGuidInPropertyTag = 441;
		constexpr std::int32_t CompatibleEngineVersion = 444;
		constexpr std::int32_t GatherableText = 459;
		constexpr std::int32_t CookedAssetsInEditor = 485;
		constexpr std::int32_t PropertyGuidInPropertyTag = 503;
		constexpr std::int32_t NameHashes = 504;
		constexpr std::int32_t PreloadDependencies = 507;
		constexpr std::int32_t TemplateIndex = 508;
		constexpr std::int32_t SetMapPropertyTags = 509;
		constexpr std::int32_t SearchableNames = 510;
		constexpr std::int32_t WideExportSerialSizes = 511;
		constexpr std::int32_t SoftObjectPath = 514;
		constexpr std::int32_t LocalizationId = 516;
		constexpr std::int32_t PackageOwner = 518;
		constexpr std::int32_t NonOuterPackageImport = 520;
	}

	/** The compression flags the engine knows (format, options and purpose masks); others refuse the package. */
	constexpr std::uint32_t KnownCompressionFlags = 0xFFF;

	/** FReleaseObjectVersion, and its version from which a level saves its actors as a plain array. */
	constexpr std::uint32_t ReleaseObjectVersionKey[4] = {0x9C54D522, 0xA8264FBE, 0x94210746, 0x61B482D0};
	constexpr std::int32_t LevelTransArrayConvertedToTArray = 3;

	constexpr std::uint32_t PackageFlagCooked = 0x00000200;
	constexpr std::uint32_t PackageFlagUnversionedProperties = 0x00002000;
	constexpr std::uint32_t PackageFlagFilterEditorOnly = 0x80000000;

	/** An object flag: the object is a default subobject, made by its outer's constructor (a component). */
	constexpr std::uint32_t ObjectFlagDefaultSubObject = 0x00040000;

	/** Which versions Lodex reads: those Unreal Engine 5.0 loads, from UE4 214 (legacy version -7 or older) on. */
	const char* Describe();
}

/** A name as a package stores it: an entry of its name map and an instance number (0: none, N: "_N-1"). */
struct FPackageName
{
	std::int32_t Index = 0;
	std::int32_t Number = 0;
};

/** An entry of the import map: an object of another package (or a package itself, when it has no outer). */
struct FPackageImport
{
	std::size_t Offset = 0;
	FPackageName ClassPackage;
	FPackageName ClassName;
	std::int32_t OuterIndex = 0;
	FPackageName ObjectName;
};

/** An entry of the export map: an object this package holds, and where its data lies. */
struct FPackageExport
{
	std::size_t Offset = 0;
	std::int32_t ClassIndex = 0;
	std::int32_t SuperIndex = 0;
	std::int32_t OuterIndex = 0;
	FPackageName ObjectName;
	/** Where the entry holds the object's name (16 bytes in, 12 before UE4 508 saved a template index). */
	std::size_t NameOffset = 0;
	std::size_t SerialOffset = 0;
	std::size_t SerialSize = 0;
	/** The object's saved flags (`RF_Load` of them: `RF_DefaultSubObject`, `RF_ClassDefaultObject`, ...). */
	std::uint32_t ObjectFlags = 0;
	/** Whether neither a game client nor a server loads the object: only the editor has it. */
	bool bNotForClient = false;
	bool bNotForServer = false;
};

/** What the summary at the start of a package says, as far as Lodex uses it. */
struct FPackageSummary
{
	std::int32_t LegacyFileVersion = 0;
	std::int32_t FileVersionUE4 = 0;
	std::int32_t FileVersionUE5 = 0;
	std::uint32_t PackageFlags = 0;
	std::int32_t NameCount = 0;
	std::int32_t NameOffset = 0;
	std::int32_t ExportCount = 0;
	std::int32_t ExportOffset = 0;
	std::int32_t ImportCount = 0;
	std::int32_t ImportOffset = 0;
	/** Where the summary keeps the export count, for messages about the exports as a whole. */
	std::size_t ExportCountOffset = 0;
	/** The custom versions the package was saved with: each a GUID (four 32-bit parts) and a version. */
	struct FCustomVersion
	{
		std::uint32_t Key[4] = {0, 0, 0, 0};
		std::int32_t Version = 0;
	};
	std::vector<FCustomVersion> CustomVersions;
	/** The version saved for the custom version Key, or -1 when the package lists none (as the engine reads it). */
	std::int32_t CustomVersion(const std::uint32_t (&Key)[4]) const;
	/** "5.0.3-20979098+++UE5+Release-5.0", empty when the summary does not say. */
	std::string SavedByEngineVersion;
};

/**
 * An uncooked package saved by Unreal Engine 5.0 (a .umap or .uasset file), read down to its tables: the summary,
 * the name map, the import map and the export map. Object data is left in the bytes for the readers that need it.
 * Every index in the tables (names, outers, classes) is checked when the package is read, and so are outer chains
 * (no loops), so the lookups below never fail.
 *
 * Object indices are the package's own: 0 is none, N > 0 the export N - 1, -N the import N - 1.
 */
class FUnrealPackage
{
public:
	/**
	 * Reads the package in Bytes. PackagePath is the package's name in its project (`/Game/Maps/Main`), used for
	 * object paths. On failure returns false with OutError set.
	 */
	static bool Read(std::string Bytes, std::string PackagePath, FUnrealPackage& Out, FPackageError& OutError);

	const std::string& GetBytes() const { return Bytes; }
	const std::string& GetPackagePath() const { return PackagePath; }
	const FPackageSummary& GetSummary() const { return Summary; }
	const std::vector<FPackageImport>& GetImports() const { return Imports; }
	const std::vector<FPackageExport>& GetExports() const { return Exports; }

	/** The name as the engine renders it: the entry, then "_N" for the stored number N + 1. */
	std::string NameText(const FPackageName& Name) const;
	/** The name map's entry, without instance number. */
	const std::string& NameEntry(std::int32_t Index) const { return Names[static_cast<std::size_t>(Index)]; }
	/** The name "None" (index -1 when the name map lacks it), which ends tagged properties. */
	FPackageName GetNoneName() const { return NoneName; }
	/** Whether Name is Text with no instance number. */
	bool NameIs(const FPackageName& Name, const char* Text) const
	{
		return Name.Number == 0 && IsNameIndex(Name.Index) && Names[static_cast<std::size_t>(Name.Index)] == Text;
	}
	/** Whether Index is a name map entry; reading a name checks it. */
	bool IsNameIndex(std::int32_t Index) const { return Index >= 0 && static_cast<std::size_t>(Index) < Names.size(); }

	/** Whether Index is 0 or names an import or an export. */
	bool IsObjectIndex(std::int32_t Index) const;
	/** The object's own name; empty for 0. */
	std::string ObjectName(std::int32_t Index) const;
	/** The object's outer's index. */
	std::int32_t OuterOf(std::int32_t Index) const;
	/** The name of the object's class: an export's class object's name, or an import's ClassName. */
	std::string ClassNameOf(std::int32_t Index) const;
	/**
	 * The object's path as the engine writes it: `/Game/Maps/Main.Main:PersistentLevel.Cube_2`. An import without
	 * outer is a package (its name is the path); an export without outer lies in this package.
	 */
	std::string ObjectPath(std::int32_t Index) const;

	/** The index of the export named Name whose outer is Outer, or 0. */
	std::int32_t FindExport(std::int32_t Outer, const std::string& Name) const;

private:
	bool ReadSummary(FPackageCursor& Cursor);
	bool SkipCustomVersions(FPackageCursor& Cursor, std::int32_t Legacy);
	/** The summary past the depends offset, to its end, each field from the version that saves it. */
	bool ReadSummaryTail(FPackageCursor& Cursor, std::int32_t Legacy);
	bool ReadNames(FPackageCursor& Cursor);
	bool ReadName(FPackageCursor& Cursor, FPackageName& Out, const char* What);
	bool ReadImports(FPackageCursor& Cursor);
	bool ReadExports(FPackageCursor& Cursor);
	bool CheckObjectIndex(FPackageCursor& Cursor, std::size_t Offset, std::int32_t Index, const std::string& What);
	bool CheckOuterChains(FPackageCursor& Cursor);
	/** Each export's data lies apart from the others' and from the tables. */
	bool CheckExportDataApart(FPackageCursor& Cursor, std::size_t ExportMapEnd);

	FPackageName NoneName{-1, 0};
	std::size_t NameCountField = 0;
	std::size_t ExportCountField = 0;
	std::size_t ImportCountField = 0;
	/** The size of an export entry's template index: 4, or 0 before UE4 508. */
	std::size_t TemplateField = 4;
	/** Where the parts of the summary and the tables Lodex reads end. */
	std::size_t SummaryEnd = 0;
	std::size_t NameMapEnd = 0;
	std::size_t ImportMapEnd = 0;
	std::string Bytes;
	std::string PackagePath;
	FPackageSummary Summary;
	std::vector<std::string> Names;
	std::vector<FPackageImport> Imports;
	std::vector<FPackageExport> Exports;
};
