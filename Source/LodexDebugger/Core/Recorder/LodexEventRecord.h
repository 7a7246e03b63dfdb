// Copyright Lodex contributors.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/** The kind of a captured input event, the third field of its record. */
enum class ELodexEventKind : std::uint32_t
{
	KeyDown = 0,
	ButtonDown = 1,
	DoubleClick = 2,
	Move = 3,
	Drag = 4,
	Wheel = 5,
	Analog = 7,
};

/**
 * One captured input event: eight 32-bit fields in this order, 32 bytes. Kept by value, copied between the
 * open-gesture map, the held-keys map and the record array.
 */
struct FLodexEventRecord
{
	/** The engine frame number at which the event arrived. */
	std::uint32_t Frame;
	/** For a double click frame + 20; otherwise 0 at creation, filled by the handler that ends the gesture. */
	std::uint32_t EndFrame;
	ELodexEventKind Kind;
	/** Pointer position in viewport pixels (0 for keys); for a wheel record its first event's truncated delta. */
	std::int32_t X;
	/** Pointer position in viewport pixels (0 for keys); for a wheel record the number of wheel events merged. */
	std::int32_t Y;
	/** Where a drag or move ended, in viewport pixels; zero at creation. */
	std::int32_t EndX;
	std::int32_t EndY;
	/** Key code (the UnrealCLR host's value of the key) or mouse-button code. */
	std::int32_t Code;

	/** A zeroed record with the given frame, kind, code and position. */
	FLodexEventRecord(
		std::uint32_t InFrame, ELodexEventKind InKind, std::int32_t InCode, std::int32_t InX, std::int32_t InY)
		: Frame(InFrame)
		, EndFrame(0)
		, Kind(InKind)
		, X(InX)
		, Y(InY)
		, EndX(0)
		, EndY(0)
		, Code(InCode)
	{
	}

	bool operator==(const FLodexEventRecord& Other) const
	{
		return Frame == Other.Frame && EndFrame == Other.EndFrame && Kind == Other.Kind && X == Other.X &&
			Y == Other.Y && EndX == Other.EndX && EndY == Other.EndY && Code == Other.Code;
	}
};

static_assert(sizeof(ELodexEventKind) == 4, "the kind is a 32-bit field");
static_assert(sizeof(FLodexEventRecord) == 32, "eight 32-bit fields");
static_assert(offsetof(FLodexEventRecord, Frame) == 0, "frame");
static_assert(offsetof(FLodexEventRecord, EndFrame) == 4, "end frame");
static_assert(offsetof(FLodexEventRecord, Kind) == 8, "kind");
static_assert(offsetof(FLodexEventRecord, X) == 12, "x");
static_assert(offsetof(FLodexEventRecord, Y) == 16, "y");
static_assert(offsetof(FLodexEventRecord, EndX) == 20, "end x");
static_assert(offsetof(FLodexEventRecord, EndY) == 24, "end y");
static_assert(offsetof(FLodexEventRecord, Code) == 28, "code");

/** Mouse-button codes; every other button is -1. */
namespace LodexMouseButton
{
	inline constexpr std::int32_t None = -1;
	inline constexpr std::int32_t Left = 0;
	inline constexpr std::int32_t Right = 1;
	inline constexpr std::int32_t Middle = 2;
	/** The code of every wheel record. */
	inline constexpr std::int32_t WheelCode = 99;
}

/**
 * The mouse-button code of an engine key name, compared ignoring case: "LeftMouseButton" 0, "RightMouseButton" 1,
 * "MiddleMouseButton" or "CentreMouseButton" 2, anything else -1.
 */
std::int32_t GetLodexMouseButtonCode(const std::string& KeyName);

/** The script name of a mouse-button code: "LEFT", "RIGHT", "CENTER", or "Unknown" for any other code. */
const char* GetLodexMouseButtonScriptName(std::int32_t Code);

/**
 * The completed records, in order of completion. Appended at the end and taken from the front in O(1)
 * (amortised), whatever the session's length. Each record added gets a sequence number that stays valid,
 * through FindBySequence, for as long as the record is in the array.
 */
class FLodexRecordArray
{
public:
	std::size_t Num() const { return Records.size() - Head; }
	bool IsEmpty() const { return Head == Records.size(); }

	const FLodexEventRecord& operator[](std::size_t Index) const { return Records[Head + Index]; }
	FLodexEventRecord& operator[](std::size_t Index) { return Records[Head + Index]; }
	const FLodexEventRecord& Front() const { return Records[Head]; }
	FLodexEventRecord& Back() { return Records.back(); }
	const FLodexEventRecord& Back() const { return Records.back(); }

	/** Appends a copy; returns its sequence number. */
	std::uint64_t Add(const FLodexEventRecord& Record);

	/** Removes the first record. The array must not be empty. */
	void RemoveFront();

	/** The record with this sequence number, or null once it has left the array. */
	FLodexEventRecord* FindBySequence(std::uint64_t Sequence);

	void Empty();

private:
	std::vector<FLodexEventRecord> Records;
	/** Records[0, Head) have left the array; they are dropped in one go once they are the larger part. */
	std::size_t Head = 0;
	/** The sequence number of Records[0]. */
	std::uint64_t FirstSequence = 0;
};

/** Open gestures by mouse-button code (-1 for a move without a button, 0 to 2 for the buttons): one record each. */
class FLodexGestureMap
{
public:
	FLodexEventRecord* Find(std::int32_t Code);
	const FLodexEventRecord* Find(std::int32_t Code) const;
	/** Puts the record under the code, replacing what was there. Codes outside -1..2 are not kept. */
	void Set(std::int32_t Code, const FLodexEventRecord& Record);
	void Remove(std::int32_t Code);
	/** Whether a button-down record is open under any code. */
	bool HasOpenPress() const;
	std::size_t Num() const;
	void Empty();

private:
	static constexpr std::int32_t FirstCode = -1;
	std::array<std::optional<FLodexEventRecord>, 4> Slots;
};

/** Key presses whose release has not come yet: key code to its key-down record. Few keys are held at once. */
class FLodexHeldKeys
{
public:
	FLodexEventRecord* Find(std::int32_t Code);
	void Add(const FLodexEventRecord& Record);
	void Remove(std::int32_t Code);
	std::size_t Num() const { return Keys.size(); }
	void Empty() { Keys.clear(); }

private:
	std::vector<FLodexEventRecord> Keys;
};
