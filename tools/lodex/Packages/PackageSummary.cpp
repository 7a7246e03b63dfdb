// Copyright Lodex contributors.
// The package summary: the versions a package was saved with, where its tables lie, and the fields after them,
// each read from the version that saves it, as Unreal Engine 5.0 reads them.
#include "UnrealPackage.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace
{
	std::string HexBytes(const std::string& Bytes, std::size_t Count)
	{
		std::string Text;
		for (std::size_t Index = 0; Index < Count && Index < Bytes.size(); ++Index)
		{
			char Hex[4];
			std::snprintf(Hex, sizeof(Hex), "%02X", static_cast<unsigned char>(Bytes[Index]));
			Text += (Index > 0 ? " " : "") + std::string(Hex);
		}
		return Text;
	}

	std::string HexFlags(std::uint32_t Flags)
	{
		char Hex[16];
		std::snprintf(Hex, sizeof(Hex), "0x%08X", Flags);
		return Hex;
	}

	/** An FEngineVersion: major, minor, patch, changelist (its top bit: a licensee build) and branch. */
	std::string ReadEngineVersion(FPackageCursor& Cursor)
	{
		std::uint16_t Major = 0, Minor = 0, Patch = 0;
		std::uint32_t Changelist = 0;
		std::string Branch;
		Cursor.ReadUInt16(Major);
		Cursor.ReadUInt16(Minor);
		Cursor.ReadUInt16(Patch);
		Cursor.ReadUInt32(Changelist);
		Cursor.ReadString(Branch);
		return std::to_string(Major) + "." + std::to_string(Minor) + "." + std::to_string(Patch) + "-" +
			std::to_string(Changelist & 0x7FFFFFFFu) + (Branch.empty() ? "" : "+" + Branch);
	}
}

bool FUnrealPackage::ReadSummary(FPackageCursor& Cursor)
{
	using namespace UnrealPackageVersions;
	std::uint32_t FileTag = 0;
	if (Bytes.size() < 4 || !Cursor.ReadUInt32(FileTag) || FileTag != Tag)
	{
		if (Bytes.size() >= 4 && FileTag == 0xC1832A9E)
		{
			return Cursor.Fail(
				0, "a byte-swapped (big-endian) package; Lodex reads the editor's little-endian packages");
		}
		return Cursor.Fail(0,
			"not an Unreal package: it starts with " +
				(Bytes.empty() ? std::string("nothing (the file is empty)") : HexBytes(Bytes, 4)) +
				", not the package tag C1 83 2A 9E");
	}
	Cursor.ReadInt32(Summary.LegacyFileVersion);
	const std::int32_t Legacy = Summary.LegacyFileVersion;
	if (Cursor.HasFailed())
	{
		return false;
	}
	if (Legacy >= 0 || Legacy < LegacyFileVersion)
	{
		const std::string Era = Legacy >= 0 ? "saved by Unreal Engine 3 or older" : "saved by an engine newer than 5.0";
		return Cursor.Fail(4, Era + " (legacy file version " + std::to_string(Legacy) + "); Lodex reads " + Describe());
	}
	std::int32_t LegacyUE3Version = 0;
	std::int32_t Licensee = 0;
	if (Legacy != -4)
	{
		Cursor.ReadInt32(LegacyUE3Version);
	}
	const std::size_t VersionOffset = Cursor.Tell();
	Cursor.ReadInt32(Summary.FileVersionUE4);
	if (Legacy <= -8)
	{
		Cursor.ReadInt32(Summary.FileVersionUE5);
	}
	Cursor.ReadInt32(Licensee);
	if (Legacy <= -2 && !SkipCustomVersions(Cursor, Legacy))
	{
		return false;
	}
	if (Cursor.HasFailed())
	{
		return false;
	}
	if (Summary.FileVersionUE4 == 0 && Summary.FileVersionUE5 == 0 && Licensee == 0)
	{
		return Cursor.Fail(VersionOffset,
			"an unversioned package (cooked for a game); Lodex reads uncooked "
			"packages saved by the editor, with their versions: " +
				std::string(Describe()));
	}
	const std::int32_t UE4 = Summary.FileVersionUE4;
	const std::int32_t UE5 = Summary.FileVersionUE5;
	// The engine reads the summary past the depends offset only for the versions it loads.
	const bool bReadable = UE4 >= OldestFileVersionUE4 && UE4 <= FileVersionUE4 && UE5 <= NewestFileVersionUE5 &&
		(UE5 == 0 || UE5 >= OldestFileVersionUE5);
	std::string FolderName;
	std::string LocalizationId;
	std::int32_t TotalHeaderSize = 0;
	Cursor.ReadInt32(TotalHeaderSize);
	Cursor.ReadString(FolderName);
	const std::size_t FlagsOffset = Cursor.Tell();
	Cursor.ReadUInt32(Summary.PackageFlags);
	const bool bFilterEditorOnly = (Summary.PackageFlags & PackageFlagFilterEditorOnly) != 0;
	NameCountField = Cursor.Tell();
	Cursor.ReadInt32(Summary.NameCount);
	Cursor.ReadInt32(Summary.NameOffset);
	if (!bFilterEditorOnly && UE4 >= UE4Version::LocalizationId)
	{
		Cursor.ReadString(LocalizationId);
	}
	std::int32_t Ignored = 0;
	if (UE4 >= UE4Version::GatherableText)
	{
		Cursor.ReadInt32(Ignored); // gatherable text data: count and offset
		Cursor.ReadInt32(Ignored);
	}
	ExportCountField = Cursor.Tell();
	Summary.ExportCountOffset = ExportCountField;
	Cursor.ReadInt32(Summary.ExportCount);
	Cursor.ReadInt32(Summary.ExportOffset);
	ImportCountField = Cursor.Tell();
	Cursor.ReadInt32(Summary.ImportCount);
	Cursor.ReadInt32(Summary.ImportOffset);
	Cursor.ReadInt32(Ignored); // depends offset
	if (Cursor.HasFailed())
	{
		return false;
	}
	if (bReadable && !ReadSummaryTail(Cursor, Legacy))
	{
		return false;
	}
	if (!bReadable)
	{
		std::string Versions = "package file version UE4 " + std::to_string(UE4);
		if (Legacy <= -8)
		{
			Versions += " and UE5 " + std::to_string(UE5);
		}
		Versions += ", legacy version " + std::to_string(Legacy);
		const std::string Older = UE4 < OldestFileVersionUE4 ? " (older than Unreal Engine 5.0 loads)" : "";
		return Cursor.Fail(VersionOffset, "saved with " + Versions + Older + "; Lodex reads " + Describe());
	}
	if ((Summary.PackageFlags & (PackageFlagCooked | PackageFlagFilterEditorOnly | PackageFlagUnversionedProperties)) !=
		0)
	{
		return Cursor.Fail(FlagsOffset,
			"a cooked package (package flags " + HexFlags(Summary.PackageFlags) +
				"); Lodex reads the editor's uncooked packages, as they sit in a project's Content folder");
	}
	SummaryEnd = Cursor.Tell();
	return true;
}

bool FUnrealPackage::SkipCustomVersions(FPackageCursor& Cursor, std::int32_t Legacy)
{
	// Three layouts, by the legacy version: an enum tag and a version (-2), a GUID, a version and a friendly name
	// (-3 to -5), a GUID and a version (-6 on).
	std::int32_t Count = 0;
	const std::size_t CountOffset = Cursor.Tell();
	const std::size_t Smallest = Legacy == -2 ? 8 : Legacy >= -5 ? 24 : 20;
	if (!Cursor.ReadInt32(Count))
	{
		return false;
	}
	if (Count < 0 || static_cast<std::size_t>(Count) > Cursor.Remaining() / Smallest)
	{
		return Cursor.Fail(CountOffset,
			"the count of custom versions " + std::to_string(Count) + " does not fit in the file (" +
				std::to_string(Bytes.size()) + " bytes)");
	}
	std::string FriendlyName;
	for (std::int32_t Index = 0; Index < Count; ++Index)
	{
		FPackageSummary::FCustomVersion Entry;
		if (Legacy == -2)
		{
			Cursor.ReadUInt32(Entry.Key[0]); // an enum tag, no GUID
		}
		else
		{
			for (std::uint32_t& Part : Entry.Key)
			{
				Cursor.ReadUInt32(Part);
			}
		}
		Cursor.ReadInt32(Entry.Version);
		if (Legacy >= -5 && Legacy != -2)
		{
			Cursor.ReadString(FriendlyName);
		}
		if (Cursor.HasFailed())
		{
			return false;
		}
		if (Legacy != -2)
		{
			Summary.CustomVersions.push_back(Entry);
		}
	}
	return true;
}

std::int32_t FPackageSummary::CustomVersion(const std::uint32_t (&Key)[4]) const
{
	for (const FCustomVersion& Entry : CustomVersions)
	{
		if (std::equal(std::begin(Key), std::end(Key), std::begin(Entry.Key)))
		{
			return Entry.Version;
		}
	}
	return -1;
}

bool FUnrealPackage::ReadSummaryTail(FPackageCursor& Cursor, std::int32_t Legacy)
{
	using namespace UnrealPackageVersions;
	const std::int32_t UE4 = Summary.FileVersionUE4;
	const std::int32_t UE5 = Summary.FileVersionUE5;
	const bool bFilterEditorOnly = (Summary.PackageFlags & PackageFlagFilterEditorOnly) != 0;
	Cursor.Skip((UE4 >= UE4Version::SoftPackageReferences ? 8 : 0) + (UE4 >= UE4Version::SearchableNames ? 4 : 0) + 4 +
		16); // soft references, searchable names, thumbnails, GUID
	if (!bFilterEditorOnly && UE4 >= UE4Version::PackageOwner)
	{
		Cursor.Skip(UE4 < UE4Version::NonOuterPackageImport ? 32 : 16); // persistent GUID (and the owner's)
	}
	std::int32_t Generations = 0;
	const std::size_t GenerationsOffset = Cursor.Tell();
	Cursor.ReadInt32(Generations);
	if (!Cursor.HasFailed() && (Generations < 0 || static_cast<std::size_t>(Generations) > Cursor.Remaining() / 8))
	{
		return Cursor.Fail(GenerationsOffset,
			"the count of generations " + std::to_string(Generations) + " does not fit in the file (" +
				std::to_string(Bytes.size()) + " bytes)");
	}
	Cursor.Skip(static_cast<std::size_t>(Generations) * 8); // export and name counts
	if (UE4 >= UE4Version::EngineVersionObject)
	{
		Summary.SavedByEngineVersion = ReadEngineVersion(Cursor);
	}
	else
	{
		std::int32_t Changelist = 0;
		Cursor.ReadInt32(Changelist);
		Summary.SavedByEngineVersion = Changelist != 0 ? "4.0.0-" + std::to_string(Changelist) : std::string();
	}
	if (UE4 >= UE4Version::CompatibleEngineVersion)
	{
		ReadEngineVersion(Cursor);
	}
	std::uint32_t CompressionFlags = 0;
	const std::size_t CompressionOffset = Cursor.Tell();
	Cursor.ReadUInt32(CompressionFlags);
	if (!Cursor.HasFailed() && (CompressionFlags & ~KnownCompressionFlags) != 0)
	{
		return Cursor.Fail(CompressionOffset,
			"compression flags " + HexFlags(CompressionFlags) + " the engine does not know (it knows " +
				HexFlags(KnownCompressionFlags) + ")");
	}
	std::int32_t CompressedChunks = 0;
	const std::size_t ChunksOffset = Cursor.Tell();
	Cursor.ReadInt32(CompressedChunks);
	if (!Cursor.HasFailed() && CompressedChunks != 0)
	{
		return Cursor.Fail(ChunksOffset,
			std::to_string(CompressedChunks) +
				" compressed chunks: a package compressed as a whole (cooked by an old engine), which the editor "
				"does not load");
	}
	std::uint32_t PackageSource = 0;
	Cursor.ReadUInt32(PackageSource);
	std::int32_t AdditionalPackages = 0;
	const std::size_t AdditionalOffset = Cursor.Tell();
	Cursor.ReadInt32(AdditionalPackages);
	if (!Cursor.HasFailed() &&
		(AdditionalPackages < 0 || static_cast<std::size_t>(AdditionalPackages) > Cursor.Remaining() / 4))
	{
		return Cursor.Fail(AdditionalOffset,
			"the count of additional packages to cook " + std::to_string(AdditionalPackages) +
				" does not fit in the file (" + std::to_string(Bytes.size()) + " bytes)");
	}
	std::string Ignored;
	for (std::int32_t Index = 0; Index < AdditionalPackages && Cursor.ReadString(Ignored); ++Index)
	{
	}
	if (Legacy > -7)
	{
		Cursor.Skip(4); // texture allocations, always none
	}
	Cursor.Skip(4 + 8); // asset registry data, bulk data start
	if (UE4 >= UE4Version::WorldLevelInfo)
	{
		Cursor.Skip(4); // world tile info
	}
	if (UE4 >= UE4Version::ChunkIdArray)
	{
		std::int32_t ChunkIds = 0;
		const std::size_t ChunkIdsOffset = Cursor.Tell();
		Cursor.ReadInt32(ChunkIds);
		if (!Cursor.HasFailed() && (ChunkIds < 0 || static_cast<std::size_t>(ChunkIds) > Cursor.Remaining() / 4))
		{
			return Cursor.Fail(ChunkIdsOffset,
				"the count of chunk IDs " + std::to_string(ChunkIds) + " does not fit in the file (" +
					std::to_string(Bytes.size()) + " bytes)");
		}
		Cursor.Skip(static_cast<std::size_t>(ChunkIds) * 4);
	}
	else if (UE4 >= UE4Version::ChunkId)
	{
		Cursor.Skip(4);
	}
	if (UE4 >= UE4Version::PreloadDependencies)
	{
		Cursor.Skip(8); // preload dependencies: count and offset
	}
	if (UE5 >= NamesReferencedFromExportData)
	{
		Cursor.Skip(4);
	}
	if (UE5 >= PayloadToc)
	{
		Cursor.Skip(8);
	}
	return !Cursor.HasFailed();
}
