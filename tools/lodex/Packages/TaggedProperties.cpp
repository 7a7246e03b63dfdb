// Copyright Lodex contributors.
#include "TaggedProperties.h"

#include <cstdio>
#include <cstring>

namespace
{
	bool ReadTagName(const FUnrealPackage& Package, FPackageCursor& Cursor, FPackageName& Name, const char* What)
	{
		const std::size_t Start = Cursor.Tell();
		if (!Cursor.ReadInt32(Name.Index) || !Cursor.ReadInt32(Name.Number))
		{
			return false;
		}
		if (!Package.IsNameIndex(Name.Index))
		{
			return Cursor.Fail(
				Start, std::string(What) + ": name " + std::to_string(Name.Index) + " is not in the name map");
		}
		return true;
	}

	bool ReadTagName(const FUnrealPackage& Package, FPackageCursor& Cursor, std::string& Out, const char* What)
	{
		FPackageName Name;
		if (!ReadTagName(Package, Cursor, Name, What))
		{
			return false;
		}
		Out = Package.NameText(Name);
		return true;
	}

	std::string DescribeExport(const FUnrealPackage& Package, std::int32_t ExportIndex)
	{
		return "the data of export " + std::to_string(ExportIndex - 1) + " '" + Package.ObjectName(ExportIndex) + "'";
	}

	std::string DescribeValue(const FUnrealPackage& Package, const FTaggedProperty& Property)
	{
		return "the value of property '" + Package.NameText(Property.Name) + "'";
	}

	bool WrongType(const FUnrealPackage& Package, const FTaggedProperty& Property, const std::string& Expected,
		FPackageError& OutError)
	{
		const bool bInner = !Package.NameIs(Property.InnerType, "None");
		OutError.Offset = Property.TagOffset;
		OutError.Reason = "property '" + Package.NameText(Property.Name) + "' is a " + Package.NameText(Property.Type) +
			(bInner ? " of " + Package.NameText(Property.InnerType) : "") + "; Lodex reads it as " + Expected;
		return false;
	}

	/** Whether an array's elements are of Type; a package saved before arrays named it is taken at its word. */
	bool InnerIs(const FUnrealPackage& Package, const FTaggedProperty& Property, const char* Type)
	{
		return Package.NameIs(Property.InnerType, Type) ||
			(Package.GetSummary().FileVersionUE4 < UnrealPackageVersions::UE4Version::ArrayPropertyInnerTags &&
				Package.NameIs(Property.InnerType, "None"));
	}

	/** A cursor over the property's value alone. */
	FPackageCursor ValueCursor(const FUnrealPackage& Package, const FTaggedProperty& Property)
	{
		return FPackageCursor(Package.GetBytes(), Property.ValueOffset, Property.ValueOffset + Property.ValueSize,
			DescribeValue(Package, Property));
	}

	bool Finish(const FPackageCursor& Cursor, FPackageError& OutError)
	{
		if (Cursor.HasFailed())
		{
			OutError = Cursor.GetError();
			return false;
		}
		return true;
	}

	bool ReadObjectIndex(const FUnrealPackage& Package, FPackageCursor& Cursor, std::int32_t& Out)
	{
		const std::size_t Start = Cursor.Tell();
		if (!Cursor.ReadInt32(Out))
		{
			return false;
		}
		if (!Package.IsObjectIndex(Out))
		{
			return Cursor.Fail(Start,
				"an object reference (" + std::to_string(Out) + ") outside the import map (" +
					std::to_string(Package.GetImports().size()) + " imports) and the export map (" +
					std::to_string(Package.GetExports().size()) + " exports)");
		}
		return true;
	}

	/** Reads an array's element count, checked against the bytes left for elements of at least ElementSize. */
	bool ReadArrayCount(FPackageCursor& Cursor, std::size_t ElementSize, std::size_t& Out)
	{
		const std::size_t Start = Cursor.Tell();
		std::int32_t Count = 0;
		if (!Cursor.ReadInt32(Count))
		{
			return false;
		}
		if (Count < 0 || static_cast<std::size_t>(Count) > Cursor.Remaining() / ElementSize)
		{
			return Cursor.Fail(Start,
				"an array count of " + std::to_string(Count) + " does not fit in its " +
					std::to_string(Cursor.Remaining()) + " bytes");
		}
		Out = static_cast<std::size_t>(Count);
		return true;
	}
}

namespace
{
	/**
	 * The fields a tag holds for its type, each from the version that saves it, then the property GUID. A type name
	 * with an instance number has none of the type's fields, as the engine reads it.
	 */
	void ReadTagTypeFields(const FUnrealPackage& Package, FPackageCursor& Cursor, FTaggedProperty& Property)
	{
		namespace Version = UnrealPackageVersions::UE4Version;
		const std::int32_t UE4 = Package.GetSummary().FileVersionUE4;
		const FPackageName& Type = Property.Type;
		FPackageName Ignored;
		if (Type.Number != 0)
		{
		}
		else if (Package.NameIs(Type, "StructProperty"))
		{
			ReadTagName(Package, Cursor, Property.StructName, "a struct property's struct");
			Cursor.Skip(UE4 >= Version::StructGuidInPropertyTag ? 16 : 0); // the struct's GUID
		}
		else if (Package.NameIs(Type, "BoolProperty"))
		{
			std::uint8_t Value = 0;
			Cursor.ReadUInt8(Value);
			Property.bBoolValue = Value != 0;
		}
		else if (Package.NameIs(Type, "ByteProperty") || Package.NameIs(Type, "EnumProperty"))
		{
			ReadTagName(Package, Cursor, Ignored, "a property's enum");
		}
		else if (Package.NameIs(Type, "ArrayProperty"))
		{
			if (UE4 >= Version::ArrayPropertyInnerTags)
			{
				ReadTagName(Package, Cursor, Property.InnerType, "a property's element type");
			}
		}
		else if (UE4 >= Version::SetMapPropertyTags && Package.NameIs(Type, "SetProperty"))
		{
			ReadTagName(Package, Cursor, Property.InnerType, "a property's element type");
		}
		else if (UE4 >= Version::SetMapPropertyTags && Package.NameIs(Type, "MapProperty"))
		{
			ReadTagName(Package, Cursor, Property.InnerType, "a map property's key type");
			ReadTagName(Package, Cursor, Ignored, "a map property's value type");
		}
		std::uint8_t HasPropertyGuid = 0;
		if (UE4 >= Version::PropertyGuidInPropertyTag && Cursor.ReadUInt8(HasPropertyGuid) && HasPropertyGuid != 0)
		{
			Cursor.Skip(16);
		}
	}
}

const FTaggedProperty* FObjectProperties::Find(const FUnrealPackage& Package, const char* Name) const
{
	for (const FTaggedProperty& Property : Properties)
	{
		if (Property.ArrayIndex == 0 && Package.NameIs(Property.Name, Name))
		{
			return &Property;
		}
	}
	return nullptr;
}

bool ReadObjectProperties(
	const FUnrealPackage& Package, std::int32_t ExportIndex, FObjectProperties& Out, FPackageError& OutError)
{
	const FPackageExport& Export = Package.GetExports()[static_cast<std::size_t>(ExportIndex - 1)];
	FPackageCursor Cursor(Package.GetBytes(), Export.SerialOffset, Export.SerialOffset + Export.SerialSize,
		DescribeExport(Package, ExportIndex));
	Out.Properties.clear();
	const FPackageName NoneName = Package.GetNoneName(); // an element type is None for properties without one
	for (;;)
	{
		FTaggedProperty Property;
		Property.TagOffset = Cursor.Tell();
		if (!ReadTagName(Package, Cursor, Property.Name, "a property's name"))
		{
			return Finish(Cursor, OutError);
		}
		if (Package.NameIs(Property.Name, "None"))
		{
			break;
		}
		std::int32_t Size = 0;
		if (!ReadTagName(Package, Cursor, Property.Type, "a property's type"))
		{
			return Finish(Cursor, OutError);
		}
		const std::size_t SizeOffset = Cursor.Tell();
		Cursor.ReadInt32(Size);
		Cursor.ReadInt32(Property.ArrayIndex);
		Property.InnerType = NoneName;
		Property.StructName = NoneName;
		ReadTagTypeFields(Package, Cursor, Property);
		if (Cursor.HasFailed())
		{
			return Finish(Cursor, OutError);
		}
		if (Size < 0 || static_cast<std::size_t>(Size) > Cursor.Remaining())
		{
			Cursor.Fail(SizeOffset,
				"property '" + Package.NameText(Property.Name) + "' has a size of " + std::to_string(Size) +
					" bytes, past the end of " + DescribeExport(Package, ExportIndex) + " at byte " +
					std::to_string(Cursor.GetEnd()));
			return Finish(Cursor, OutError);
		}
		Property.ValueOffset = Cursor.Tell();
		Property.ValueSize = static_cast<std::size_t>(Size);
		Cursor.Skip(Property.ValueSize);
		Out.Properties.push_back(std::move(Property));
	}
	Out.End = Cursor.Tell();
	return true;
}

bool SkipObjectGuid(
	const FUnrealPackage& Package, std::int32_t ExportIndex, std::size_t& Offset, FPackageError& OutError)
{
	const FPackageExport& Export = Package.GetExports()[static_cast<std::size_t>(ExportIndex - 1)];
	FPackageCursor Cursor(
		Package.GetBytes(), Offset, Export.SerialOffset + Export.SerialSize, DescribeExport(Package, ExportIndex));
	bool bHasGuid = false;
	if (Cursor.ReadBool32(bHasGuid) && bHasGuid)
	{
		Cursor.Skip(16);
	}
	Offset = Cursor.Tell();
	return Finish(Cursor, OutError);
}

namespace PropertyValues
{
	bool ReadObject(
		const FUnrealPackage& Package, const FTaggedProperty& Property, std::int32_t& Out, FPackageError& OutError)
	{
		if (!Package.NameIs(Property.Type, "ObjectProperty"))
		{
			return WrongType(Package, Property, "an ObjectProperty", OutError);
		}
		FPackageCursor Cursor = ValueCursor(Package, Property);
		ReadObjectIndex(Package, Cursor, Out);
		return Finish(Cursor, OutError);
	}

	bool ReadObjectArray(const FUnrealPackage& Package, const FTaggedProperty& Property, std::vector<std::int32_t>& Out,
		FPackageError& OutError)
	{
		if (!Package.NameIs(Property.Type, "ArrayProperty") || !InnerIs(Package, Property, "ObjectProperty"))
		{
			return WrongType(Package, Property, "an ArrayProperty of ObjectProperty", OutError);
		}
		FPackageCursor Cursor = ValueCursor(Package, Property);
		std::size_t Count = 0;
		Out.clear();
		if (ReadArrayCount(Cursor, 4, Count))
		{
			Out.resize(Count);
			for (std::size_t Index = 0; Index < Count && ReadObjectIndex(Package, Cursor, Out[Index]); ++Index)
			{
			}
		}
		return Finish(Cursor, OutError);
	}

	bool ReadNameArray(const FUnrealPackage& Package, const FTaggedProperty& Property, std::vector<std::string>& Out,
		FPackageError& OutError)
	{
		if (!Package.NameIs(Property.Type, "ArrayProperty") || !InnerIs(Package, Property, "NameProperty"))
		{
			return WrongType(Package, Property, "an ArrayProperty of NameProperty", OutError);
		}
		FPackageCursor Cursor = ValueCursor(Package, Property);
		std::size_t Count = 0;
		Out.clear();
		if (ReadArrayCount(Cursor, 8, Count))
		{
			Out.resize(Count);
			for (std::size_t Index = 0; Index < Count && ReadTagName(Package, Cursor, Out[Index], "a name"); ++Index)
			{
			}
		}
		return Finish(Cursor, OutError);
	}

	bool ReadString(
		const FUnrealPackage& Package, const FTaggedProperty& Property, std::string& Out, FPackageError& OutError)
	{
		if (!Package.NameIs(Property.Type, "StrProperty"))
		{
			return WrongType(Package, Property, "a StrProperty", OutError);
		}
		FPackageCursor Cursor = ValueCursor(Package, Property);
		Cursor.ReadString(Out);
		return Finish(Cursor, OutError);
	}

	bool ReadSoftObjectPath(
		const FUnrealPackage& Package, const FTaggedProperty& Property, std::string& Out, FPackageError& OutError)
	{
		if (!Package.NameIs(Property.Type, "SoftObjectProperty"))
		{
			return WrongType(Package, Property, "a SoftObjectProperty", OutError);
		}
		FPackageCursor Cursor = ValueCursor(Package, Property);
		if (Package.GetSummary().FileVersionUE4 < UnrealPackageVersions::UE4Version::SoftObjectPath)
		{
			Cursor.ReadString(Out); // the whole path as one string, before soft object paths held a name
			return Finish(Cursor, OutError);
		}
		std::string SubPath;
		if (ReadTagName(Package, Cursor, Out, "a soft object path") && Cursor.ReadString(SubPath) && !SubPath.empty())
		{
			Out += ":" + SubPath;
		}
		return Finish(Cursor, OutError);
	}

	bool ReadGuid(
		const FUnrealPackage& Package, const FTaggedProperty& Property, std::string& Out, FPackageError& OutError)
	{
		if (!Package.NameIs(Property.Type, "StructProperty") || !Package.NameIs(Property.StructName, "Guid"))
		{
			return WrongType(Package, Property, "a StructProperty of Guid", OutError);
		}
		FPackageCursor Cursor = ValueCursor(Package, Property);
		std::uint32_t Parts[4] = {};
		bool bZero = true;
		for (std::uint32_t& Part : Parts)
		{
			std::int32_t Value = 0;
			Cursor.ReadInt32(Value);
			Part = static_cast<std::uint32_t>(Value);
			bZero = bZero && Part == 0;
		}
		Out.clear();
		if (!Cursor.HasFailed() && !bZero)
		{
			char Text[33];
			std::snprintf(Text, sizeof(Text), "%08X%08X%08X%08X", Parts[0], Parts[1], Parts[2], Parts[3]);
			Out = Text;
		}
		return Finish(Cursor, OutError);
	}

	bool ReadVector(
		const FUnrealPackage& Package, const FTaggedProperty& Property, double (&Out)[3], FPackageError& OutError)
	{
		if (!Package.NameIs(Property.Type, "StructProperty") || !Package.NameIs(Property.StructName, "Vector"))
		{
			return WrongType(Package, Property, "a StructProperty of Vector", OutError);
		}
		const bool bDoubles = Package.GetSummary().FileVersionUE5 >= UnrealPackageVersions::LargeWorldCoordinates;
		FPackageCursor Cursor = ValueCursor(Package, Property);
		for (double& Component : Out)
		{
			std::uint64_t Bits = 0;
			for (std::size_t Byte = 0; Byte < (bDoubles ? 8u : 4u); ++Byte)
			{
				std::uint8_t Value = 0;
				Cursor.ReadUInt8(Value);
				Bits |= static_cast<std::uint64_t>(Value) << (8 * Byte);
			}
			if (bDoubles)
			{
				std::memcpy(&Component, &Bits, sizeof(Component));
			}
			else
			{
				const std::uint32_t Narrow = static_cast<std::uint32_t>(Bits);
				float Single = 0;
				std::memcpy(&Single, &Narrow, sizeof(Single));
				Component = Single;
			}
		}
		return Finish(Cursor, OutError);
	}
}
