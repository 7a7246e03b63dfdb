// Copyright Lodex contributors.
#pragma once

#include <cstddef>
#include <string>

/** The most a command reads of a scene snapshot or a level file (and of each package a level is made of). */
inline constexpr std::size_t LodexMaxSceneFileBytes = std::size_t(512) << 20;
/** The most a command reads of a C# test file, an input log or an evaluator's answers. */
inline constexpr std::size_t LodexMaxTextFileBytes = std::size_t(64) << 20;

/** What a command takes as one of its input files, and how much of it it reads. */
struct FInputFileRules
{
	/** Past this many bytes the file is refused, whatever it is. */
	std::size_t MaxBytes = LodexMaxTextFileBytes;
	/** What the limit is stated for in the error: "a scene or level file". */
	const char* LimitOf = "a text file";
	/**
	 * Whether a pipe (`<(cat level.json)`, `/dev/stdin` fed by a pipe, a named FIFO) is read to its end, once. A
	 * named FIFO then waits for its writer, as every reader of a pipe does. Otherwise only a regular file is read.
	 */
	bool bStream = false;
};

/** How a command reads a scene: a regular file or a pipe, up to LodexMaxSceneFileBytes. */
inline constexpr FInputFileRules LodexSceneFileRules{LodexMaxSceneFileBytes, "a scene or level file", true};

/**
 * The bytes of a whole input file, read once. On failure returns false with one line naming the file in OutError,
 * and OutBytes left as it was:
 * - "<Path>: cannot open the file" when it does not exist or cannot be opened;
 * - "<Path>: cannot read the file" when it opens but reading fails (a folder, an I/O error);
 * - "<Path>: is a character device, not a regular file" (a FIFO, a socket, a block device) for what the rules do
 *   not take; nothing is opened then, so a FIFO nobody writes to cannot hold the command up;
 * - "<Path>: larger than 64 MiB, the most lodex reads of a text file" past Rules.MaxBytes: a regular file by its
 *   size before anything is read, a pipe once that much has come through it.
 */
bool ReadWholeFile(const std::string& Path, std::string& OutBytes, std::string& OutError,
	const FInputFileRules& Rules = FInputFileRules());

/** "64 MiB", "1 KiB", "17 bytes": a size limit as the messages state it. */
std::string DescribeByteLimit(std::size_t Bytes);
