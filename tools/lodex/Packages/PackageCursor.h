// Copyright Lodex contributors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/** Where and why a package file could not be read: the byte offset in the file, and the reason. */
struct FPackageError
{
	std::size_t Offset = 0;
	std::string Reason;

	/** "FILE: byte N: reason", the one line the commands print. */
	std::string Describe(const std::string& SourceName) const;
};

/**
 * Reads the little-endian values of an Unreal package from a byte range of a file held in memory. Every read is
 * checked against the range's end; the first failure is kept in an FPackageError with the offset where the value
 * starts, and every later read fails too, so a sequence of reads can be checked once at its end.
 */
class FPackageCursor
{
public:
	/** A cursor over Bytes[Begin, End); What names the range in messages ("the export map", "property 'Tags'"). */
	FPackageCursor(const std::string& InBytes, std::size_t Begin, std::size_t InEnd, std::string InWhat);

	bool ReadUInt8(std::uint8_t& Out);
	bool ReadUInt16(std::uint16_t& Out);
	bool ReadInt32(std::int32_t& Out);
	bool ReadUInt32(std::uint32_t& Out);
	bool ReadInt64(std::int64_t& Out);
	/** A bool the archive stores as a 32-bit 0 or 1; anything else is corrupt. */
	bool ReadBool32(bool& Out);
	bool Skip(std::size_t Count);
	/**
	 * An FString: a count of characters with the terminating NUL, positive for 8-bit (Latin-1) text, negative for
	 * UTF-16. Out is UTF-8 without the NUL; unpaired surrogates become U+FFFD.
	 */
	bool ReadString(std::string& Out);

	/** Fails with Reason at Offset (the start of the value that was wrong), unless an earlier failure is kept. */
	bool Fail(std::size_t Offset, const std::string& Reason);

	std::size_t Tell() const { return Position; }
	std::size_t GetEnd() const { return End; }
	std::size_t Remaining() const { return End - Position; }
	bool Seek(std::size_t Offset);
	bool HasFailed() const { return bFailed; }
	const FPackageError& GetError() const { return Error; }
	const std::string& GetBytes() const { return Bytes; }

private:
	bool Need(std::size_t Count);
	std::uint64_t ReadLittleEndian(std::size_t Count);

	const std::string& Bytes;
	std::size_t Position;
	std::size_t End;
	std::string What;
	bool bFailed = false;
	FPackageError Error;
};
