// Copyright Lodex contributors.
#include "PackageCursor.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <utility>

std::string FPackageError::Describe(const std::string& SourceName) const
{
	return SourceName + ": byte " + std::to_string(Offset) + ": " + LodexText::EscapeControlsAndIllFormed(Reason);
}

FPackageCursor::FPackageCursor(const std::string& InBytes, std::size_t Begin, std::size_t InEnd, std::string InWhat)
	: Bytes(InBytes)
	, Position(Begin)
	, End(InEnd)
	, What(std::move(InWhat))
{
	if (End > Bytes.size())
	{
		End = Bytes.size();
	}
	if (Position > End)
	{
		Fail(Begin, What + " starts past the end of the file (" + std::to_string(Bytes.size()) + " bytes)");
		Position = End;
	}
}

bool FPackageCursor::Fail(std::size_t Offset, const std::string& Reason)
{
	if (!bFailed)
	{
		bFailed = true;
		Error.Offset = Offset;
		Error.Reason = Reason;
	}
	return false;
}

bool FPackageCursor::Need(std::size_t Count)
{
	if (bFailed)
	{
		return false;
	}
	if (Count > End - Position)
	{
		if (End == Bytes.size())
		{
			return Fail(Position, "the file ends at byte " + std::to_string(Bytes.size()) + ", inside " + What);
		}
		return Fail(Position, "a value runs past the end of " + What + " at byte " + std::to_string(End));
	}
	return true;
}

bool FPackageCursor::Seek(std::size_t Offset)
{
	if (bFailed)
	{
		return false;
	}
	if (Offset > End)
	{
		return Fail(
			Position, What + ": offset " + std::to_string(Offset) + " is past its end at byte " + std::to_string(End));
	}
	Position = Offset;
	return true;
}

std::uint64_t FPackageCursor::ReadLittleEndian(std::size_t Count)
{
	std::uint64_t Value = 0;
	for (std::size_t Index = 0; Index < Count; ++Index)
	{
		Value |= static_cast<std::uint64_t>(static_cast<unsigned char>(Bytes[Position + Index])) << (8 * Index);
	}
	Position += Count;
	return Value;
}

bool FPackageCursor::ReadUInt8(std::uint8_t& Out)
{
	if (!Need(1))
	{
		return false;
	}
	Out = static_cast<std::uint8_t>(ReadLittleEndian(1));
	return true;
}

bool FPackageCursor::ReadUInt16(std::uint16_t& Out)
{
	if (!Need(2))
	{
		return false;
	}
	Out = static_cast<std::uint16_t>(ReadLittleEndian(2));
	return true;
}

bool FPackageCursor::ReadUInt32(std::uint32_t& Out)
{
	if (!Need(4))
	{
		return false;
	}
	Out = static_cast<std::uint32_t>(ReadLittleEndian(4));
	return true;
}

bool FPackageCursor::ReadInt32(std::int32_t& Out)
{
	std::uint32_t Value = 0;
	if (!ReadUInt32(Value))
	{
		return false;
	}
	Out = static_cast<std::int32_t>(Value);
	return true;
}

bool FPackageCursor::ReadInt64(std::int64_t& Out)
{
	if (!Need(8))
	{
		return false;
	}
	Out = static_cast<std::int64_t>(ReadLittleEndian(8));
	return true;
}

bool FPackageCursor::ReadBool32(bool& Out)
{
	const std::size_t Start = Position;
	std::uint32_t Value = 0;
	if (!ReadUInt32(Value))
	{
		return false;
	}
	if (Value > 1)
	{
		return Fail(Start, "a boolean in " + What + " holds " + std::to_string(Value) + ", not 0 or 1");
	}
	Out = Value == 1;
	return true;
}

bool FPackageCursor::Skip(std::size_t Count)
{
	if (!Need(Count))
	{
		return false;
	}
	Position += Count;
	return true;
}

bool FPackageCursor::ReadString(std::string& Out)
{
	const std::size_t Start = Position;
	std::int32_t Count = 0;
	if (!ReadInt32(Count))
	{
		return false;
	}
	Out.clear();
	if (Count == 0)
	{
		return true;
	}
	const bool bWide = Count < 0;
	const std::uint64_t Characters =
		bWide ? static_cast<std::uint64_t>(-static_cast<std::int64_t>(Count)) : static_cast<std::uint64_t>(Count);
	const std::uint64_t Size = bWide ? Characters * 2 : Characters;
	if (Size > Remaining())
	{
		return Fail(Start,
			"a text in " + What + " of " + std::to_string(Characters) + " characters runs past the end of " +
				(End == Bytes.size() ? std::string("the file") : What) + " at byte " + std::to_string(End));
	}
	if (!bWide)
	{
		for (std::uint64_t Index = 0; Index + 1 < Characters; ++Index)
		{
			LodexText::AppendUtf8(Out, static_cast<unsigned char>(Bytes[Position + Index]));
		}
		Position += static_cast<std::size_t>(Size);
		return true;
	}
	// The characters, then the terminating NUL.
	LodexText::AppendUtf16AsUtf8(
		Out, Bytes.data() + Position, static_cast<std::size_t>(Size) - 2, LodexText::EUtf16ByteOrder::LittleEndian);
	Position += static_cast<std::size_t>(Size);
	return true;
}
