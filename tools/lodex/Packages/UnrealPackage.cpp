// Copyright Lodex contributors.
#include "UnrealPackage.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>

namespace
{
	/** The smallest sizes of the table entries, to tell a count that cannot fit in the file. */
	constexpr std::size_t SmallestNameEntry = 8; // an empty text's count, then two 16-bit hashes
	constexpr std::size_t NameSizeLimit = 1024; // the engine's longest name, NUL included

	std::string ObjectWord(std::int32_t Index)
	{
		const std::int64_t Wide = Index;
		return Wide > 0 ? "export " + std::to_string(Wide - 1) : "import " + std::to_string(-Wide - 1);
	}
}

const char* UnrealPackageVersions::Describe()
{
	return "package file versions UE4 214 to 522 and UE5 1000 to 1004 (legacy versions -2 to -8), as Unreal Engine 5.0 "
		   "loads them";
}

bool FUnrealPackage::Read(std::string InBytes, std::string InPackagePath, FUnrealPackage& Out, FPackageError& OutError)
{
	FUnrealPackage Package;
	Package.Bytes = std::move(InBytes);
	Package.PackagePath = std::move(InPackagePath);
	FPackageCursor Cursor(Package.Bytes, 0, Package.Bytes.size(), "the package summary");
	if (!Package.ReadSummary(Cursor) || !Package.ReadNames(Cursor) || !Package.ReadImports(Cursor) ||
		!Package.ReadExports(Cursor) || !Package.CheckOuterChains(Cursor))
	{
		OutError = Cursor.GetError();
		return false;
	}
	Out = std::move(Package);
	return true;
}

bool FUnrealPackage::ReadName(FPackageCursor& Cursor, FPackageName& Out, const char* What)
{
	const std::size_t Start = Cursor.Tell();
	if (!Cursor.ReadInt32(Out.Index) || !Cursor.ReadInt32(Out.Number))
	{
		return false;
	}
	if (!IsNameIndex(Out.Index))
	{
		return Cursor.Fail(Start,
			std::string(What) + ": name " + std::to_string(Out.Index) + " is not in the name map (" +
				std::to_string(Names.size()) + " names)");
	}
	return true;
}

namespace
{
	/** Keeps the first failure of a cursor over a part of the file in the package's main cursor. */
	bool KeepFailure(FPackageCursor& Main, const FPackageCursor& Part)
	{
		return Main.Fail(Part.GetError().Offset, Part.GetError().Reason);
	}

	/** Checks a table's count and offset against the file; Entry is the smallest size of one entry. */
	bool CheckTable(FPackageCursor& Cursor, const char* Table, std::int32_t Count, std::int32_t Offset,
		std::size_t CountField, std::size_t Entry)
	{
		const std::size_t Size = Cursor.GetBytes().size();
		if (Count < 0)
		{
			return Cursor.Fail(
				CountField, std::string("the ") + Table + "'s count is negative (" + std::to_string(Count) + ")");
		}
		if (Count == 0)
		{
			return true;
		}
		if (Offset < 0 || static_cast<std::size_t>(Offset) > Size)
		{
			return Cursor.Fail(CountField + 4,
				std::string("the ") + Table + "'s offset " + std::to_string(Offset) + " is outside the file (" +
					std::to_string(Size) + " bytes)");
		}
		if (static_cast<std::size_t>(Count) > (Size - static_cast<std::size_t>(Offset)) / Entry)
		{
			return Cursor.Fail(CountField,
				std::string("the ") + Table + "'s count " + std::to_string(Count) +
					" does not fit in the file: " + std::to_string(Entry) + " bytes or more each from byte " +
					std::to_string(Offset) + ", in " + std::to_string(Size) + " bytes");
		}
		return true;
	}
}

bool FUnrealPackage::ReadNames(FPackageCursor& Cursor)
{
	if (!CheckTable(Cursor, "name map", Summary.NameCount, Summary.NameOffset, NameCountField, SmallestNameEntry))
	{
		return false;
	}
	FPackageCursor Table(
		Bytes, Summary.NameCount > 0 ? static_cast<std::size_t>(Summary.NameOffset) : 0, Bytes.size(), "the name map");
	Names.reserve(static_cast<std::size_t>(Summary.NameCount));
	const bool bHashes = Summary.FileVersionUE4 >= UnrealPackageVersions::UE4Version::NameHashes;
	for (std::int32_t Index = 0; Index < Summary.NameCount; ++Index)
	{
		const std::size_t Start = Table.Tell();
		std::int32_t Length = 0;
		if (!Table.ReadInt32(Length) || !Table.Seek(Start))
		{
			return KeepFailure(Cursor, Table);
		}
		if (Length > static_cast<std::int32_t>(NameSizeLimit) || Length < -static_cast<std::int32_t>(NameSizeLimit) ||
			Length == 0)
		{
			return Cursor.Fail(Start,
				"the name map's entry " + std::to_string(Index) + " has a length of " + std::to_string(Length) +
					" (a name holds 1 to 1024 characters with its NUL)");
		}
		std::string Name;
		if (!Table.ReadString(Name) || !Table.Skip(bHashes ? 4 : 0))
		{
			return KeepFailure(Cursor, Table);
		}
		if (Name.empty())
		{
			return Cursor.Fail(Start, "the name map's entry " + std::to_string(Index) + " is empty");
		}
		if (NoneName.Index < 0 && Name == "None")
		{
			NoneName.Index = Index;
		}
		Names.push_back(std::move(Name));
	}
	NameMapEnd = Table.Tell();
	return true;
}

bool FUnrealPackage::ReadImports(FPackageCursor& Cursor)
{
	using namespace UnrealPackageVersions;
	const bool bOptional = Summary.FileVersionUE5 >= OptionalResources;
	// The package name from UE4 520 on, in packages with editor data (a cooked one is refused before).
	const bool bPackageName = Summary.FileVersionUE4 >= UE4Version::NonOuterPackageImport;
	const std::size_t EntrySize = 28 + (bPackageName ? 8 : 0) + (bOptional ? 4 : 0);
	if (!CheckTable(Cursor, "import map", Summary.ImportCount, Summary.ImportOffset, ImportCountField, EntrySize))
	{
		return false;
	}
	FPackageCursor Table(Bytes, Summary.ImportCount > 0 ? static_cast<std::size_t>(Summary.ImportOffset) : 0,
		Bytes.size(), "the import map");
	Imports.resize(static_cast<std::size_t>(Summary.ImportCount));
	for (FPackageImport& Import : Imports)
	{
		FPackageName PackageName;
		bool bImportOptional = false;
		Import.Offset = Table.Tell();
		if (!ReadName(Table, Import.ClassPackage, "an import's class package") ||
			!ReadName(Table, Import.ClassName, "an import's class") || !Table.ReadInt32(Import.OuterIndex) ||
			!ReadName(Table, Import.ObjectName, "an import's name") ||
			(bPackageName && !ReadName(Table, PackageName, "an import's package")) ||
			(bOptional && !Table.ReadBool32(bImportOptional)))
		{
			return KeepFailure(Cursor, Table);
		}
	}
	ImportMapEnd = Table.Tell();
	return true;
}

bool FUnrealPackage::ReadExports(FPackageCursor& Cursor)
{
	using namespace UnrealPackageVersions;
	const std::int32_t UE4 = Summary.FileVersionUE4;
	const bool bOptional = Summary.FileVersionUE5 >= OptionalResources;
	const bool bTemplate = UE4 >= UE4Version::TemplateIndex;
	TemplateField = bTemplate ? 4 : 0;
	const bool bWideSerial = UE4 >= UE4Version::WideExportSerialSizes;
	// After the serial size and offset: three flags, the package GUID and flags, then a flag from each of these
	// versions on, and the five dependency counts.
	const std::size_t FlagsSize = 12 + 16 + 4 + (UE4 >= UE4Version::LoadForEditorGame ? 4 : 0) +
		(UE4 >= UE4Version::CookedAssetsInEditor ? 4 : 0) + (bOptional ? 4 : 0) +
		(UE4 >= UE4Version::PreloadDependencies ? 20 : 0);
	const std::size_t EntrySize = 24 + (bTemplate ? 4 : 0) + (bWideSerial ? 16 : 8) + FlagsSize;
	if (!CheckTable(Cursor, "export map", Summary.ExportCount, Summary.ExportOffset, ExportCountField, EntrySize))
	{
		return false;
	}
	FPackageCursor Table(Bytes, Summary.ExportCount > 0 ? static_cast<std::size_t>(Summary.ExportOffset) : 0,
		Bytes.size(), "the export map");
	Exports.resize(static_cast<std::size_t>(Summary.ExportCount));
	for (std::size_t Index = 0; Index < Exports.size(); ++Index)
	{
		FPackageExport& Export = Exports[Index];
		Export.Offset = Table.Tell();
		Export.NameOffset = Export.Offset + 12 + TemplateField;
		std::int32_t TemplateIndex = 0;
		std::int64_t SerialSize = 0;
		std::int64_t SerialOffset = 0;
		if (!Table.ReadInt32(Export.ClassIndex) || !Table.ReadInt32(Export.SuperIndex) ||
			(bTemplate && !Table.ReadInt32(TemplateIndex)) || !Table.ReadInt32(Export.OuterIndex) ||
			!ReadName(Table, Export.ObjectName, "an export's name") || !Table.ReadUInt32(Export.ObjectFlags))
		{
			return KeepFailure(Cursor, Table);
		}
		const std::size_t SerialField = Table.Tell();
		if (bWideSerial)
		{
			Table.ReadInt64(SerialSize);
			Table.ReadInt64(SerialOffset);
		}
		else
		{
			std::int32_t NarrowSize = 0;
			std::int32_t NarrowOffset = 0;
			Table.ReadInt32(NarrowSize);
			Table.ReadInt32(NarrowOffset);
			SerialSize = NarrowSize;
			SerialOffset = NarrowOffset;
		}
		// bForcedExport, bNotForClient, bNotForServer (each a 32-bit bool), then the rest of the flags.
		std::uint32_t ForcedExport = 0;
		std::uint32_t NotForClient = 0;
		std::uint32_t NotForServer = 0;
		if (!Table.ReadUInt32(ForcedExport) || !Table.ReadUInt32(NotForClient) || !Table.ReadUInt32(NotForServer) ||
			!Table.Skip(FlagsSize - 12))
		{
			return KeepFailure(Cursor, Table);
		}
		const std::size_t Size = Bytes.size();
		if (SerialSize < 0 || SerialOffset < 0 || static_cast<std::uint64_t>(SerialOffset) > Size ||
			static_cast<std::uint64_t>(SerialSize) > Size - static_cast<std::uint64_t>(SerialOffset))
		{
			return Cursor.Fail(SerialField,
				"export " + std::to_string(Index) + " '" + NameText(Export.ObjectName) + "': its data (" +
					std::to_string(SerialSize) + " bytes at byte " + std::to_string(SerialOffset) +
					") lies outside the file (" + std::to_string(Size) + " bytes)");
		}
		Export.SerialOffset = static_cast<std::size_t>(SerialOffset);
		Export.SerialSize = static_cast<std::size_t>(SerialSize);
		Export.bNotForClient = NotForClient != 0;
		Export.bNotForServer = NotForServer != 0;
	}
	if (!CheckExportDataApart(Cursor, Table.Tell()))
	{
		return false;
	}
	for (std::size_t Index = 0; Index < Imports.size(); ++Index)
	{
		if (!CheckObjectIndex(Cursor, Imports[Index].Offset + 16, Imports[Index].OuterIndex,
				"import " + std::to_string(Index) + "'s outer"))
		{
			return false;
		}
	}
	for (std::size_t Index = 0; Index < Exports.size(); ++Index)
	{
		const FPackageExport& Export = Exports[Index];
		const std::string What = "export " + std::to_string(Index) + "'s ";
		if (!CheckObjectIndex(Cursor, Export.Offset, Export.ClassIndex, What + "class") ||
			!CheckObjectIndex(Cursor, Export.Offset + 4, Export.SuperIndex, What + "super") ||
			!CheckObjectIndex(Cursor, Export.Offset + 8 + TemplateField, Export.OuterIndex, What + "outer"))
		{
			return false;
		}
	}
	return true;
}

bool FUnrealPackage::CheckExportDataApart(FPackageCursor& Cursor, std::size_t ExportMapEnd)
{
	// The engine writes each object's data once, after the tables: data that two exports share, or that lies in a
	// table, would be read again for each (and is no package the engine saves).
	struct FRange
	{
		std::size_t Begin = 0;
		std::size_t End = 0;
		/** The export, or -1 for a table. */
		std::int64_t Export = -1;
		const char* Table = "";
	};
	std::vector<FRange> Ranges;
	Ranges.reserve(Exports.size() + 4);
	Ranges.push_back({0, SummaryEnd, -1, "the package summary"});
	Ranges.push_back(
		{static_cast<std::size_t>(Summary.NameCount > 0 ? Summary.NameOffset : 0), NameMapEnd, -1, "the name map"});
	Ranges.push_back({static_cast<std::size_t>(Summary.ImportCount > 0 ? Summary.ImportOffset : 0), ImportMapEnd, -1,
		"the import map"});
	Ranges.push_back({static_cast<std::size_t>(Summary.ExportCount > 0 ? Summary.ExportOffset : 0), ExportMapEnd, -1,
		"the export map"});
	for (std::size_t Index = 0; Index < Exports.size(); ++Index)
	{
		const FPackageExport& Export = Exports[Index];
		Ranges.push_back(
			{Export.SerialOffset, Export.SerialOffset + Export.SerialSize, static_cast<std::int64_t>(Index), ""});
	}
	Ranges.erase(
		std::remove_if(Ranges.begin(), Ranges.end(), [](const FRange& Range) { return Range.Begin == Range.End; }),
		Ranges.end());
	std::sort(Ranges.begin(), Ranges.end(),
		[](const FRange& Left, const FRange& Right)
		{ return Left.Begin != Right.Begin ? Left.Begin < Right.Begin : Left.Export < Right.Export; });
	auto Describe = [&](const FRange& Range)
	{
		if (Range.Export < 0)
		{
			return std::string(Range.Table);
		}
		return "the data of export " + std::to_string(Range.Export) + " '" +
			NameText(Exports[static_cast<std::size_t>(Range.Export)].ObjectName) + "'";
	};
	// Sorted by where they begin, two ranges overlap when one begins before the furthest end seen so far.
	std::size_t Furthest = 0;
	for (std::size_t Index = 1; Index < Ranges.size(); ++Index)
	{
		if (Ranges[Index - 1].End > Ranges[Furthest].End)
		{
			Furthest = Index - 1;
		}
		if (Ranges[Index].Begin >= Ranges[Furthest].End)
		{
			continue;
		}
		// Name an export that overlaps: the later one, or the one lying in a table.
		if (Ranges[Index].Export < 0 && Ranges[Furthest].Export < 0)
		{
			continue; // tables that share bytes are read as they are; no object's data is read twice
		}
		const FRange& Other = Ranges[Index].Export >= 0 ? Ranges[Furthest] : Ranges[Index];
		const FRange& Export = Ranges[Index].Export >= 0 ? Ranges[Index] : Ranges[Furthest];
		const FPackageExport& Entry = Exports[static_cast<std::size_t>(Export.Export)];
		return Cursor.Fail(Entry.Offset + 24 + TemplateField,
			"export " + std::to_string(Export.Export) + " '" + NameText(Entry.ObjectName) + "': its data (" +
				std::to_string(Entry.SerialSize) + " bytes at byte " + std::to_string(Entry.SerialOffset) +
				") overlaps " + Describe(Other) + " (bytes " + std::to_string(Other.Begin) + " to " +
				std::to_string(Other.End - 1) + ")");
	}
	return true;
}

bool FUnrealPackage::IsObjectIndex(std::int32_t Index) const
{
	if (Index >= 0)
	{
		return static_cast<std::size_t>(Index) <= Exports.size();
	}
	return static_cast<std::size_t>(-static_cast<std::int64_t>(Index)) <= Imports.size();
}

bool FUnrealPackage::CheckObjectIndex(
	FPackageCursor& Cursor, std::size_t Offset, std::int32_t Index, const std::string& What)
{
	if (IsObjectIndex(Index))
	{
		return true;
	}
	return Cursor.Fail(Offset,
		What + " is " + ObjectWord(Index) + ", outside the " +
			(Index > 0 ? "export map (" + std::to_string(Exports.size()) + " exports)"
					   : "import map (" + std::to_string(Imports.size()) + " imports)"));
}

bool FUnrealPackage::CheckOuterChains(FPackageCursor& Cursor)
{
	// 0: not seen, 1: on the current walk, 2: known to end. Every object is walked once.
	const std::size_t ImportCount = Imports.size();
	std::vector<std::uint8_t> State(ImportCount + Exports.size() + 1, 0);
	auto Slot = [&](std::int32_t Index)
	{
		return Index < 0 ? static_cast<std::size_t>(-static_cast<std::int64_t>(Index)) - 1
						 : ImportCount + static_cast<std::size_t>(Index);
	};
	std::vector<std::int32_t> Walk;
	for (std::int64_t Start = -static_cast<std::int64_t>(ImportCount);
		 Start <= static_cast<std::int64_t>(Exports.size()); ++Start)
	{
		Walk.clear();
		for (std::int32_t Index = static_cast<std::int32_t>(Start); Index != 0 && State[Slot(Index)] != 2;
			 Index = OuterOf(Index))
		{
			if (State[Slot(Index)] == 1)
			{
				const std::size_t Offset = Index < 0
					? Imports[Slot(Index)].Offset + 16
					: Exports[static_cast<std::size_t>(Index - 1)].Offset + 8 + TemplateField;
				return Cursor.Fail(Offset,
					"the outer chain of " + ObjectWord(Index) + " '" + ObjectName(Index) + "' loops back to it");
			}
			State[Slot(Index)] = 1;
			Walk.push_back(Index);
		}
		for (const std::int32_t Index : Walk)
		{
			State[Slot(Index)] = 2;
		}
	}
	return true;
}

std::string FUnrealPackage::NameText(const FPackageName& Name) const
{
	std::string Text = IsNameIndex(Name.Index) ? Names[static_cast<std::size_t>(Name.Index)] : std::string("None");
	if (Name.Number != 0)
	{
		Text += "_" + std::to_string(static_cast<std::int64_t>(Name.Number) - 1);
	}
	return Text;
}

std::string FUnrealPackage::ObjectName(std::int32_t Index) const
{
	if (Index > 0)
	{
		return NameText(Exports[static_cast<std::size_t>(Index - 1)].ObjectName);
	}
	if (Index < 0)
	{
		return NameText(Imports[static_cast<std::size_t>(-static_cast<std::int64_t>(Index) - 1)].ObjectName);
	}
	return std::string();
}

std::int32_t FUnrealPackage::OuterOf(std::int32_t Index) const
{
	if (Index > 0)
	{
		return Exports[static_cast<std::size_t>(Index - 1)].OuterIndex;
	}
	if (Index < 0)
	{
		return Imports[static_cast<std::size_t>(-static_cast<std::int64_t>(Index) - 1)].OuterIndex;
	}
	return 0;
}

std::string FUnrealPackage::ClassNameOf(std::int32_t Index) const
{
	if (Index > 0)
	{
		return ObjectName(Exports[static_cast<std::size_t>(Index - 1)].ClassIndex);
	}
	if (Index < 0)
	{
		return NameText(Imports[static_cast<std::size_t>(-static_cast<std::int64_t>(Index) - 1)].ClassName);
	}
	return std::string();
}

std::string FUnrealPackage::ObjectPath(std::int32_t Index) const
{
	std::vector<std::int32_t> Chain;
	for (std::int32_t Current = Index; Current != 0; Current = OuterOf(Current))
	{
		Chain.push_back(Current);
	}
	if (Chain.empty())
	{
		return std::string();
	}
	std::string Path;
	std::size_t Depth = Chain.size();
	if (Chain.back() > 0)
	{
		Path = PackagePath; // a top-level export lies in this package
		++Depth;
	}
	for (std::size_t Step = Chain.size(); Step-- > 0;)
	{
		const std::size_t Level = Depth - 1 - Step; // 0: the package, 1: a top-level object, 2 and on: subobjects
		if (Level == 1)
		{
			Path += ".";
		}
		else if (Level == 2)
		{
			Path += ":";
		}
		else if (Level > 2)
		{
			Path += ".";
		}
		Path += ObjectName(Chain[Step]);
	}
	return Path;
}

std::int32_t FUnrealPackage::FindExport(std::int32_t Outer, const std::string& Name) const
{
	for (std::size_t Index = 0; Index < Exports.size(); ++Index)
	{
		if (Exports[Index].OuterIndex == Outer && NameText(Exports[Index].ObjectName) == Name)
		{
			return static_cast<std::int32_t>(Index + 1);
		}
	}
	return 0;
}
