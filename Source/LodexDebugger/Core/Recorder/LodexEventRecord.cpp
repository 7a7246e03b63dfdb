// Copyright Lodex contributors.
#include "LodexEventRecord.h"

namespace
{
	/** Whether the key name equals the ASCII name ignoring case; no temporary string (it runs on every move). */
	bool LodexMouseButtonNameIs(const std::string& KeyName, const char* Name)
	{
		std::size_t Index = 0;
		for (; Name[Index] != '\0'; ++Index)
		{
			if (Index >= KeyName.size())
			{
				return false;
			}
			char Char = KeyName[Index];
			Char = (Char >= 'a' && Char <= 'z') ? static_cast<char>(Char - 32) : Char;
			char Expected = Name[Index];
			Expected = (Expected >= 'a' && Expected <= 'z') ? static_cast<char>(Expected - 32) : Expected;
			if (Char != Expected)
			{
				return false;
			}
		}
		return Index == KeyName.size();
	}
}

std::int32_t GetLodexMouseButtonCode(const std::string& KeyName)
{
	if (LodexMouseButtonNameIs(KeyName, "LeftMouseButton"))
	{
		return LodexMouseButton::Left;
	}
	if (LodexMouseButtonNameIs(KeyName, "RightMouseButton"))
	{
		return LodexMouseButton::Right;
	}
	if (LodexMouseButtonNameIs(KeyName, "MiddleMouseButton") || LodexMouseButtonNameIs(KeyName, "CentreMouseButton"))
	{
		return LodexMouseButton::Middle;
	}
	return LodexMouseButton::None;
}

const char* GetLodexMouseButtonScriptName(std::int32_t Code)
{
	switch (Code)
	{
		case LodexMouseButton::Left:
			return "LEFT";
		case LodexMouseButton::Right:
			return "RIGHT";
		case LodexMouseButton::Middle:
			return "CENTER";
		default:
			return "Unknown";
	}
}

std::uint64_t FLodexRecordArray::Add(const FLodexEventRecord& Record)
{
	Records.push_back(Record);
	return FirstSequence + Records.size() - 1;
}

void FLodexRecordArray::RemoveFront()
{
	++Head;
	if (Head == Records.size())
	{
		FirstSequence += Head;
		Records.clear();
		Head = 0;
	}
	else if (Head >= 64 && Head * 2 >= Records.size())
	{
		Records.erase(Records.begin(), Records.begin() + static_cast<std::ptrdiff_t>(Head));
		FirstSequence += Head;
		Head = 0;
	}
}

FLodexEventRecord* FLodexRecordArray::FindBySequence(std::uint64_t Sequence)
{
	if (Sequence < FirstSequence + Head || Sequence >= FirstSequence + Records.size())
	{
		return nullptr;
	}
	return &Records[static_cast<std::size_t>(Sequence - FirstSequence)];
}

void FLodexRecordArray::Empty()
{
	FirstSequence += Records.size();
	Records.clear();
	Head = 0;
}

FLodexEventRecord* FLodexGestureMap::Find(std::int32_t Code)
{
	if (Code < FirstCode || Code >= FirstCode + static_cast<std::int32_t>(Slots.size()))
	{
		return nullptr;
	}
	std::optional<FLodexEventRecord>& Slot = Slots[static_cast<std::size_t>(Code - FirstCode)];
	return Slot ? &*Slot : nullptr;
}

const FLodexEventRecord* FLodexGestureMap::Find(std::int32_t Code) const
{
	return const_cast<FLodexGestureMap*>(this)->Find(Code);
}

void FLodexGestureMap::Set(std::int32_t Code, const FLodexEventRecord& Record)
{
	if (Code >= FirstCode && Code < FirstCode + static_cast<std::int32_t>(Slots.size()))
	{
		Slots[static_cast<std::size_t>(Code - FirstCode)] = Record;
	}
}

void FLodexGestureMap::Remove(std::int32_t Code)
{
	if (Code >= FirstCode && Code < FirstCode + static_cast<std::int32_t>(Slots.size()))
	{
		Slots[static_cast<std::size_t>(Code - FirstCode)].reset();
	}
}

bool FLodexGestureMap::HasOpenPress() const
{
	for (const std::optional<FLodexEventRecord>& Slot : Slots)
	{
		if (Slot && Slot->Kind == ELodexEventKind::ButtonDown)
		{
			return true;
		}
	}
	return false;
}

std::size_t FLodexGestureMap::Num() const
{
	std::size_t Count = 0;
	for (const std::optional<FLodexEventRecord>& Slot : Slots)
	{
		Count += Slot ? 1 : 0;
	}
	return Count;
}

void FLodexGestureMap::Empty()
{
	for (std::optional<FLodexEventRecord>& Slot : Slots)
	{
		Slot.reset();
	}
}

FLodexEventRecord* FLodexHeldKeys::Find(std::int32_t Code)
{
	for (FLodexEventRecord& Key : Keys)
	{
		if (Key.Code == Code)
		{
			return &Key;
		}
	}
	return nullptr;
}

void FLodexHeldKeys::Add(const FLodexEventRecord& Record)
{
	Keys.push_back(Record);
}

void FLodexHeldKeys::Remove(std::int32_t Code)
{
	for (std::size_t Index = 0; Index < Keys.size(); ++Index)
	{
		if (Keys[Index].Code == Code)
		{
			Keys.erase(Keys.begin() + static_cast<std::ptrdiff_t>(Index));
			return;
		}
	}
}
