// Copyright Lodex contributors.
#include "TestPackageWriter.h"

#include <algorithm>
#include <cstring>

namespace
{
	/** "Cube_2" is stored as "Cube" and 3; "Cube", "Cube_02" and "_2" as they are, with 0. */
	void SplitNumber(const std::string& Text, std::string& OutBase, std::int32_t& OutNumber)
	{
		OutBase = Text;
		OutNumber = 0;
		const std::size_t Underscore = Text.rfind('_');
		if (Underscore == std::string::npos || Underscore == 0 || Underscore + 1 == Text.size() ||
			Text.size() - Underscore > 9 || (Text[Underscore + 1] == '0' && Underscore + 2 != Text.size()) ||
			!std::all_of(
				Text.begin() + Underscore + 1, Text.end(), [](char Digit) { return Digit >= '0' && Digit <= '9'; }))
		{
			return;
		}
		OutBase = Text.substr(0, Underscore);
		OutNumber = std::stoi(Text.substr(Underscore + 1)) + 1;
	}

	using FWriter = std::function<void(FTestPackage&, FTestBytes&)>;

	/** A property tag (with the type-specific fields) and its value. */
	FWriter MakeProperty(std::string Name, std::string Type, std::function<void(FTestPackage&, FTestBytes&)> Extra,
		std::function<void(FTestPackage&, FTestBytes&)> Value, std::int32_t ForcedSize = -1)
	{
		return [=](FTestPackage& Package, FTestBytes& Out)
		{
			FTestBytes ValueBytes;
			if (Value)
			{
				Value(Package, ValueBytes);
			}
			Package.Name(Out, Name);
			Package.Name(Out, Type);
			Out.Int32(ForcedSize >= 0 ? ForcedSize : static_cast<std::int32_t>(ValueBytes.Size()));
			Out.Int32(0); // array index
			if (Extra)
			{
				Extra(Package, Out);
			}
			Package.NoPropertyGuid(Out);
			Out.Append(ValueBytes.Text);
		};
	}

	FWriter InnerType(const std::string& Type)
	{
		return [=](FTestPackage& Package, FTestBytes& Out)
		{
			if (Package.FileVersionUE4 >= 282) // arrays name their elements' type from UE4 282 on
			{
				Package.Name(Out, Type);
			}
		};
	}

	/** A struct property's tag fields: the struct's name and GUID. */
	FWriter StructType(const std::string& StructName)
	{
		return [=](FTestPackage& Package, FTestBytes& Out)
		{
			Package.Name(Out, StructName);
			Package.StructGuid(Out);
		};
	}
}

void FTestBytes::Raw(std::uint64_t Value, std::size_t Count)
{
	for (std::size_t Index = 0; Index < Count; ++Index)
	{
		Text += static_cast<char>((Value >> (8 * Index)) & 0xFF);
	}
}

void FTestBytes::String(const std::string& Utf8)
{
	if (std::all_of(Utf8.begin(), Utf8.end(), [](char Byte) { return static_cast<unsigned char>(Byte) < 0x80; }))
	{
		Int32(Utf8.empty() ? 0 : static_cast<std::int32_t>(Utf8.size() + 1));
		Text += Utf8.empty() ? std::string() : Utf8 + '\0';
		return;
	}
	std::vector<std::uint16_t> Units;
	for (std::size_t Index = 0; Index < Utf8.size();)
	{
		const unsigned char Lead = static_cast<unsigned char>(Utf8[Index]);
		const std::size_t Length = Lead < 0x80 ? 1 : Lead < 0xE0 ? 2 : Lead < 0xF0 ? 3 : 4;
		std::uint32_t Point = Length == 1 ? Lead : Lead & (0xFFu >> (Length + 1));
		for (std::size_t More = 1; More < Length && Index + More < Utf8.size(); ++More)
		{
			Point = (Point << 6) | (static_cast<unsigned char>(Utf8[Index + More]) & 0x3F);
		}
		Index += Length;
		if (Point >= 0x10000)
		{
			Units.push_back(static_cast<std::uint16_t>(0xD800 + ((Point - 0x10000) >> 10)));
			Point = 0xDC00 + ((Point - 0x10000) & 0x3FF);
		}
		Units.push_back(static_cast<std::uint16_t>(Point));
	}
	Int32(-static_cast<std::int32_t>(Units.size() + 1));
	for (const std::uint16_t Unit : Units)
	{
		UInt16(Unit);
	}
	UInt16(0);
}

FTestPackage::FData& FTestPackage::FData::Object(const std::string& Name, std::int32_t Index)
{
	Properties.push_back(
		MakeProperty(Name, "ObjectProperty", nullptr, [=](FTestPackage&, FTestBytes& Out) { Out.Int32(Index); }));
	return *this;
}

FTestPackage::FData& FTestPackage::FData::ObjectArray(const std::string& Name, const std::vector<std::int32_t>& Indices)
{
	Properties.push_back(MakeProperty(Name, "ArrayProperty", InnerType("ObjectProperty"),
		[=](FTestPackage&, FTestBytes& Out)
		{
			Out.Int32(static_cast<std::int32_t>(Indices.size()));
			for (const std::int32_t Index : Indices)
			{
				Out.Int32(Index);
			}
		}));
	return *this;
}

FTestPackage::FData& FTestPackage::FData::NameArray(const std::string& Name, const std::vector<std::string>& Values)
{
	Properties.push_back(MakeProperty(Name, "ArrayProperty", InnerType("NameProperty"),
		[=](FTestPackage& Package, FTestBytes& Out)
		{
			Out.Int32(static_cast<std::int32_t>(Values.size()));
			for (const std::string& Value : Values)
			{
				Package.Name(Out, Value);
			}
		}));
	return *this;
}

FTestPackage::FData& FTestPackage::FData::String(const std::string& Name, const std::string& Value)
{
	Properties.push_back(
		MakeProperty(Name, "StrProperty", nullptr, [=](FTestPackage&, FTestBytes& Out) { Out.String(Value); }));
	return *this;
}

FTestPackage::FData& FTestPackage::FData::SoftObject(const std::string& Name, const std::string& Path)
{
	Properties.push_back(MakeProperty(Name, "SoftObjectProperty", nullptr,
		[=](FTestPackage& Package, FTestBytes& Out)
		{
			if (Package.FileVersionUE4 < 514) // before soft object paths, the path is one string
			{
				Out.String(Path);
				return;
			}
			Package.Name(Out, Path);
			Out.String("");
		}));
	return *this;
}

FTestPackage::FData& FTestPackage::FData::Bool(const std::string& Name, bool bValue)
{
	// The value is in the tag; the property's size is 0.
	Properties.push_back(MakeProperty(
		Name, "BoolProperty", [=](FTestPackage&, FTestBytes& Out) { Out.UInt8(bValue ? 1 : 0); }, nullptr));
	return *this;
}

FTestPackage::FData& FTestPackage::FData::Guid(const std::string& Name, const std::string& Digits)
{
	Properties.push_back(MakeProperty(Name, "StructProperty", StructType("Guid"),
		[=](FTestPackage&, FTestBytes& Out)
		{
			for (std::size_t Part = 0; Part < 4; ++Part)
			{
				Out.UInt32(static_cast<std::uint32_t>(std::stoul(Digits.substr(Part * 8, 8), nullptr, 16)));
			}
		}));
	return *this;
}

FTestPackage::FData& FTestPackage::FData::Vector(const std::string& Name, double X, double Y, double Z, bool bDoubles)
{
	Properties.push_back(MakeProperty(Name, "StructProperty", StructType("Vector"),
		[=](FTestPackage&, FTestBytes& Out)
		{
			for (const double Value : {X, Y, Z})
			{
				const float Single = static_cast<float>(Value);
				std::uint64_t Double = 0;
				std::uint32_t Float = 0;
				std::memcpy(&Double, &Value, 8);
				std::memcpy(&Float, &Single, 4);
				bDoubles ? Out.Int64(static_cast<std::int64_t>(Double)) : Out.UInt32(Float);
			}
		}));
	return *this;
}

FTestPackage::FData& FTestPackage::FData::Struct(
	const std::string& Name, const std::string& StructName, std::size_t Size)
{
	Properties.push_back(
		[=](FTestPackage& Package, FTestBytes& Out)
		{
			Package.Name(Out, Name);
			Package.Name(Out, "StructProperty");
			Out.Int32(static_cast<std::int32_t>(Size));
			Out.Int32(0);
			Package.Name(Out, StructName);
			Package.StructGuid(Out);
			if (Package.FileVersionUE4 >= 503)
			{
				Out.UInt8(1); // a property GUID follows
				Out.Zeros(16);
			}
			for (std::size_t Index = 0; Index < Size; ++Index)
			{
				Out.UInt8(0xAB); // looks like nothing the reader knows
			}
		});
	return *this;
}

FTestPackage::FData& FTestPackage::FData::Raw(const std::string& Name, const std::string& Type,
	const std::string& Value, std::int32_t Size, const std::string& Inner)
{
	Properties.push_back(MakeProperty(
		Name, Type, Inner.empty() ? nullptr : InnerType(Inner),
		[=](FTestPackage&, FTestBytes& Out) { Out.Append(Value); }, Size));
	return *this;
}

FTestPackage::FData& FTestPackage::FData::Native(std::function<void(FTestPackage&, FTestBytes&)> Writer)
{
	NativeWriter = std::move(Writer);
	return *this;
}

FTestPackage::FData& FTestPackage::FData::WithoutEnd()
{
	bEnd = false;
	return *this;
}

std::int32_t FTestPackage::NameIndex(const std::string& Base)
{
	if (std::find(Names.begin(), Names.end(), Base) == Names.end())
	{
		Names.push_back(Base);
	}
	return static_cast<std::int32_t>(std::find(Names.begin(), Names.end(), Base) - Names.begin());
}

void FTestPackage::Name(FTestBytes& Out, const std::string& Text)
{
	std::string Base;
	std::int32_t Number = 0;
	SplitNumber(Text, Base, Number);
	Out.Int32(NameIndex(Base));
	Out.Int32(Number);
}

std::int32_t FTestPackage::Import(
	const std::string& ClassPackage, const std::string& ClassName, std::int32_t Outer, const std::string& Name)
{
	const auto Found = std::find_if(Imports.begin(), Imports.end(),
		[&](const FImport& Entry) { return Entry.Name == Name && Entry.Outer == Outer; });
	if (Found != Imports.end())
	{
		return -static_cast<std::int32_t>(Found - Imports.begin() + 1);
	}
	Imports.push_back(FImport{ClassPackage, ClassName, Name, Outer});
	return -static_cast<std::int32_t>(Imports.size());
}

std::int32_t FTestPackage::ImportPath(const std::string& Path, const std::string& ClassName)
{
	const std::size_t Cut = Path.find_last_of(".:");
	if (Cut == std::string::npos)
	{
		return Import("/Script/CoreUObject", "Package", 0, Path);
	}
	const std::string OuterPath = Path.substr(0, Cut);
	const std::string OuterName = OuterPath.substr(OuterPath.find_last_of(".:/") + 1);
	std::string OuterClass = "Actor";
	if (OuterPath.find_first_of(".:") == std::string::npos)
	{
		OuterClass = "Package";
	}
	else if (OuterName == "PersistentLevel")
	{
		OuterClass = "Level";
	}
	else if (OuterPath.find(':') == std::string::npos)
	{
		OuterClass = "World";
	}
	const std::int32_t Outer = ImportPath(OuterPath, OuterClass);
	return Import(
		ClassName == "Package" ? "/Script/CoreUObject" : "/Script/Engine", ClassName, Outer, Path.substr(Cut + 1));
}

std::int32_t FTestPackage::Export(std::int32_t Class, std::int32_t Outer, const std::string& Name, std::int32_t Super)
{
	FExport Entry;
	Entry.Class = Class;
	Entry.Outer = Outer;
	Entry.Super = Super;
	Entry.Name = Name;
	Exports.push_back(std::move(Entry));
	return static_cast<std::int32_t>(Exports.size());
}

void FTestPackage::WriteSummary(FTestBytes& Out, FLayout& At, std::size_t TotalHeader)
{
	const bool bEditorOnlyFiltered = (PackageFlags & 0x80000000u) != 0;
	Out.UInt32(0x9E2A83C1);
	Out.Int32(LegacyFileVersion);
	if (LegacyFileVersion != -4)
	{
		Out.Int32(864);
	}
	Out.Int32(FileVersionUE4);
	if (LegacyFileVersion <= -8)
	{
		Out.Int32(FileVersionUE5);
	}
	Out.Int32(0); // licensee version
	if (ReleaseObjectVersion < 0)
	{
		Out.Int32(0); // no custom versions
	}
	else
	{
		Out.Int32(1); // one custom version: FReleaseObjectVersion
		for (const std::uint32_t Part : {0x9C54D522u, 0xA8264FBEu, 0x94210746u, 0x61B482D0u})
		{
			Out.UInt32(Part);
		}
		Out.Int32(ReleaseObjectVersion);
		if (LegacyFileVersion >= -5)
		{
			Out.String("ReleaseObjectVersion"); // a friendly name, up to legacy version -5
		}
	}
	Out.Int32(static_cast<std::int32_t>(TotalHeader));
	Out.String("None");
	Out.UInt32(PackageFlags);
	At.NameCountField = Out.Size();
	Out.Int32(static_cast<std::int32_t>(Names.size()));
	Out.Int32(static_cast<std::int32_t>(At.NameOffset));
	if (!bEditorOnlyFiltered && FileVersionUE4 >= 516)
	{
		Out.String(""); // localization id
	}
	if (FileVersionUE4 >= 459)
	{
		Out.Zeros(8); // gatherable text data: count and offset
	}
	At.ExportCountField = Out.Size();
	Out.Int32(static_cast<std::int32_t>(Exports.size()));
	Out.Int32(static_cast<std::int32_t>(At.ExportOffset));
	At.ImportCountField = Out.Size();
	Out.Int32(static_cast<std::int32_t>(Imports.size()));
	Out.Int32(static_cast<std::int32_t>(At.ImportOffset));
	Out.Int32(0); // depends offset
	Out.Zeros(FileVersionUE4 >= 384 ? 8 : 0); // soft package references
	Out.Zeros(FileVersionUE4 >= 510 ? 4 : 0); // searchable names
	Out.Int32(0); // thumbnails
	Out.Zeros(16); // GUID
	if (!bEditorOnlyFiltered && FileVersionUE4 >= 518)
	{
		Out.Zeros(FileVersionUE4 < 520 ? 32 : 16); // persistent GUID (and, in two versions, the owner's)
	}
	Out.Int32(1);
	Out.Int32(static_cast<std::int32_t>(Exports.size()));
	Out.Int32(static_cast<std::int32_t>(Names.size()));
	if (FileVersionUE4 < 336)
	{
		Out.Int32(20979098); // the engine's changelist alone
	}
	// The engine version that saved it (from UE4 336 on), and the one it is compatible with (from 444 on).
	const int EngineVersions = FileVersionUE4 >= 444 ? 2 : FileVersionUE4 >= 336 ? 1 : 0;
	for (int Written = 0; Written < EngineVersions; ++Written)
	{
		Out.UInt16(EngineMajor);
		Out.UInt16(EngineMinor);
		Out.UInt16(EnginePatch);
		Out.UInt32(20979098);
		Out.String(EngineBranch);
	}
	At.CompressionFlagsField = Out.Size();
	Out.UInt32(CompressionFlags);
	Out.Int32(CompressedChunks);
	Out.Zeros(static_cast<std::size_t>(CompressedChunks) * 16);
	Out.Zeros(8); // package source, additional packages to cook
	if (LegacyFileVersion > -7)
	{
		Out.Int32(0); // texture allocations
	}
	Out.Zeros(12); // asset registry data, bulk data start
	Out.Zeros(FileVersionUE4 >= 224 ? 4 : 0); // world tile info
	Out.Zeros(FileVersionUE4 >= 278 ? 4 : 0); // chunk ids (a count from 326 on, one ID before)
	Out.Zeros(FileVersionUE4 >= 507 ? 8 : 0); // preload dependencies: count and offset
	if (FileVersionUE5 >= 1001)
	{
		Out.Int32(static_cast<std::int32_t>(Names.size()));
	}
	if (FileVersionUE5 >= 1002)
	{
		Out.Int64(-1); // payload table of contents
	}
}

std::string FTestPackage::Build()
{
	// The objects' data first, so that every name they use is in the name map.
	std::vector<FTestBytes> Data(Exports.size());
	for (std::size_t Index = 0; Index < Exports.size(); ++Index)
	{
		const FData& Object = Exports[Index].Data;
		for (const auto& Property : Object.Properties)
		{
			Property(*this, Data[Index]);
		}
		if (Object.bEnd)
		{
			Name(Data[Index], "None");
			Data[Index].UInt32(0); // no object GUID
			if (Object.NativeWriter)
			{
				Object.NativeWriter(*this, Data[Index]);
			}
		}
	}
	FTestBytes Tables;
	auto WriteTables = [&](FLayout& At, std::size_t Base)
	{
		Tables = FTestBytes();
		At.NameOffset = Base;
		for (const std::string& Entry : Names)
		{
			Tables.String(Entry);
			Tables.Zeros(FileVersionUE4 >= 504 ? 4 : 0); // the two hashes
		}
		At.ImportOffset = Base + Tables.Size();
		for (const FImport& Entry : Imports)
		{
			Name(Tables, Entry.ClassPackage);
			Name(Tables, Entry.ClassName);
			Tables.Int32(Entry.Outer);
			Name(Tables, Entry.Name);
			if (FileVersionUE4 >= 520)
			{
				Name(Tables, "None"); // package name
			}
			if (FileVersionUE5 >= 1003)
			{
				Tables.UInt32(0);
			}
		}
	};
	// Names used by the tables themselves join the map before the layout is fixed.
	FLayout At;
	WriteTables(At, 0);
	for (const FExport& Entry : Exports)
	{
		FTestBytes Ignored;
		Name(Ignored, Entry.Name);
	}
	FTestBytes Summary;
	WriteSummary(Summary, At, 0);
	WriteTables(At, Summary.Size());
	At.ExportOffset = Summary.Size() + Tables.Size();
	const std::size_t FlagsSize = 12 + 16 + 4 + (FileVersionUE4 >= 365 ? 4 : 0) + (FileVersionUE4 >= 485 ? 4 : 0) +
		(FileVersionUE5 >= 1003 ? 4 : 0);
	const bool bDependencies = FileVersionUE4 >= 507;
	const std::size_t ExportEntrySize =
		24 + (FileVersionUE4 >= 508 ? 4 : 0) + (FileVersionUE4 >= 511 ? 16 : 8) + FlagsSize + (bDependencies ? 20 : 0);
	const std::size_t DataStart = At.ExportOffset + Exports.size() * ExportEntrySize;
	FTestBytes ExportTable;
	At.ExportEntries.clear();
	At.ExportData.clear();
	std::size_t Next = DataStart;
	for (std::size_t Index = 0; Index < Exports.size(); ++Index)
	{
		const FExport& Entry = Exports[Index];
		At.ExportEntries.push_back(At.ExportOffset + ExportTable.Size());
		At.ExportData.push_back(Next);
		ExportTable.Int32(Entry.Class);
		ExportTable.Int32(Entry.Super);
		if (FileVersionUE4 >= 508)
		{
			ExportTable.Int32(0); // template
		}
		ExportTable.Int32(Entry.Outer);
		Name(ExportTable, Entry.Name);
		ExportTable.UInt32(Entry.ObjectFlags);
		if (FileVersionUE4 >= 511)
		{
			ExportTable.Int64(static_cast<std::int64_t>(Data[Index].Size()));
			ExportTable.Int64(static_cast<std::int64_t>(Next));
		}
		else
		{
			ExportTable.Int32(static_cast<std::int32_t>(Data[Index].Size()));
			ExportTable.Int32(static_cast<std::int32_t>(Next));
		}
		ExportTable.UInt32(0); // forced export
		ExportTable.UInt32(Entry.bEditorOnly ? 1 : 0); // not for client
		ExportTable.UInt32(Entry.bEditorOnly ? 1 : 0); // not for server
		ExportTable.Zeros(FlagsSize - 12);
		if (bDependencies)
		{
			ExportTable.Int32(-1); // first export dependency
			ExportTable.Zeros(16);
		}
		Next += Data[Index].Size();
	}
	FTestBytes File;
	WriteSummary(File, At, DataStart);
	File.Append(Tables.Text);
	File.Append(ExportTable.Text);
	for (const FTestBytes& Bytes : Data)
	{
		File.Append(Bytes.Text);
	}
	Layout = At;
	return File.Text;
}
