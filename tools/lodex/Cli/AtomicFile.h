// Copyright Lodex contributors.
#pragma once

#include <string>

/** How a staged file treats what stands at its target. */
struct FAtomicFileOptions
{
	/**
	 * A target that is a link is written where the link points, and the link stays. Otherwise the link itself
	 * is replaced by the file: nothing is ever written through it.
	 */
	bool bFollowLinks = true;
	/** Fail when an existing target's owner and group cannot be kept (otherwise they are kept when possible). */
	bool bKeepOwner = false;
};

/**
 * A file's new content, written whole under a unique temporary name beside its target and synced to disk, then
 * renamed over the target: the target holds either its old bytes or all the new ones, even after a power loss.
 * An existing target keeps its permissions (and, when it can, its owner). Until Commit, nothing at the target
 * has changed; a staged file that is not committed is removed.
 *
 * A target that is a FIFO or a character device (`/dev/stdout`, `/dev/null`) is a stream: it is opened when the
 * file is staged (a FIFO with no reader is refused then) and Commit writes the text into it; nothing is ever
 * renamed over it. A block device or a socket is refused. Nothing is ever renamed over anything but a regular
 * file (or, when links are not followed, a link).
 */
class FStagedFile
{
public:
	FStagedFile() = default;
	FStagedFile(const FStagedFile&) = delete;
	FStagedFile& operator=(const FStagedFile&) = delete;
	FStagedFile(FStagedFile&& Other) noexcept;
	FStagedFile& operator=(FStagedFile&& Other) noexcept;
	~FStagedFile();

	/**
	 * Writes the text beside the target. On failure returns false, leaves nothing behind and sets OutError to
	 * one line that starts with the target as given.
	 */
	bool Stage(
		const std::string& Target, const std::string& Text, const FAtomicFileOptions& Options, std::string& OutError);

	/**
	 * Renames the staged file over its target and syncs the folder. On failure the file stays staged, for Discard or
	 * the destructor to remove.
	 */
	bool Commit(std::string& OutError);

	/** Removes the staged file, if one is staged. */
	void Discard();

	/** The file that Commit replaces: the target, or where the target's links lead. */
	const std::string& GetResolvedTarget() const { return ResolvedTarget; }

private:
	bool OpenStream(const std::string& Text, std::string& OutError);

	std::string Target;
	std::string ResolvedTarget;
	std::string Temporary;
	/** For a stream target: the open stream, and the text Commit writes into it. */
	int Stream = -1;
	std::string StreamText;
};

/** Stages and commits in one go. */
bool WriteFileAtomically(const std::string& Path, const std::string& Text, std::string& OutError,
	const FAtomicFileOptions& Options = FAtomicFileOptions());
