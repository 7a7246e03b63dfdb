// Copyright Lodex contributors.
#include "AtomicFile.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace
{
	namespace fs = std::filesystem;

	std::string DescribeErrno(int Error)
	{
		return std::strerror(Error);
	}

	/** Where a path's chain of links ends (the path itself when it is no link); the end may not exist. */
	fs::path FollowLinks(fs::path Path)
	{
		std::error_code Code;
		for (int Hops = 0; Hops < 40 && fs::is_symlink(fs::symlink_status(Path, Code)); ++Hops)
		{
			const fs::path Next = fs::read_symlink(Path, Code);
			if (Code)
			{
				break;
			}
			Path = Next.is_absolute() ? Next : Path.parent_path() / Next;
		}
		return Path;
	}

	bool WriteAll(int Handle, const std::string& Text)
	{
		std::size_t Written = 0;
		while (Written < Text.size())
		{
			const ssize_t Count = write(Handle, Text.data() + Written, Text.size() - Written);
			if (Count < 0)
			{
				if (errno == EINTR)
				{
					continue;
				}
				return false;
			}
			Written += static_cast<std::size_t>(Count);
		}
		return true;
	}

	void SyncFolder(const fs::path& Folder)
	{
		const int Handle = open(Folder.empty() ? "." : Folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
		if (Handle >= 0)
		{
			fsync(Handle);
			close(Handle);
		}
	}

	mode_t CurrentUmask()
	{
		const mode_t Mask = umask(0);
		umask(Mask);
		return Mask;
	}
}

FStagedFile::FStagedFile(FStagedFile&& Other) noexcept
	: Target(std::move(Other.Target))
	, ResolvedTarget(std::move(Other.ResolvedTarget))
	, Temporary(std::exchange(Other.Temporary, std::string()))
	, Stream(std::exchange(Other.Stream, -1))
	, StreamText(std::move(Other.StreamText))
{
}

FStagedFile& FStagedFile::operator=(FStagedFile&& Other) noexcept
{
	if (this != &Other)
	{
		Discard();
		Target = std::move(Other.Target);
		ResolvedTarget = std::move(Other.ResolvedTarget);
		Temporary = std::exchange(Other.Temporary, std::string());
		Stream = std::exchange(Other.Stream, -1);
		StreamText = std::move(Other.StreamText);
	}
	return *this;
}

FStagedFile::~FStagedFile()
{
	Discard();
}

bool FStagedFile::Stage(
	const std::string& InTarget, const std::string& Text, const FAtomicFileOptions& Options, std::string& OutError)
{
	Discard();
	Target = InTarget;
	// A stream is found by the system's own lookup, which follows links that name no path (/dev/stdout leads to
	// /proc/self/fd/1, and that to "pipe:[...]").
	struct stat Followed;
	if (Options.bFollowLinks && stat(Target.c_str(), &Followed) == 0 &&
		(S_ISFIFO(Followed.st_mode) || S_ISCHR(Followed.st_mode)))
	{
		ResolvedTarget = Target;
		return OpenStream(Text, OutError);
	}
	const fs::path Resolved = Options.bFollowLinks ? FollowLinks(Target) : fs::path(Target);
	ResolvedTarget = Resolved.string();

	struct stat Existing;
	const bool bExists = lstat(ResolvedTarget.c_str(), &Existing) == 0;
	if (bExists && S_ISDIR(Existing.st_mode))
	{
		OutError = Target + ": is a folder, not a file; nothing was written";
		return false;
	}
	if (bExists && (S_ISFIFO(Existing.st_mode) || S_ISCHR(Existing.st_mode)))
	{
		return OpenStream(Text, OutError);
	}
	if (bExists && !S_ISREG(Existing.st_mode) && !S_ISLNK(Existing.st_mode))
	{
		OutError = Target + ": is " + (S_ISBLK(Existing.st_mode) ? "a block device" : "a socket") +
			", not a file; nothing was written";
		return false;
	}
	const bool bKeepMode = bExists && S_ISREG(Existing.st_mode);

	// A hidden name in the target's folder, so that the rename cannot cross file systems.
	const fs::path Folder = Resolved.parent_path();
	std::string Pattern = (Folder / ("." + Resolved.filename().string() + ".lodex-XXXXXX")).string();
	const int Handle = mkostemp(Pattern.data(), O_CLOEXEC);
	if (Handle < 0)
	{
		OutError = Target + ": cannot write the file (" + DescribeErrno(errno) + ")";
		return false;
	}
	Temporary = Pattern;

	auto Fail = [&](const std::string& Message)
	{
		OutError = Message;
		close(Handle);
		Discard();
		return false;
	};
	const mode_t Mode = bKeepMode ? (Existing.st_mode & 07777) : (0666 & ~CurrentUmask());
	if (fchmod(Handle, Mode) != 0)
	{
		return Fail(Target + ": cannot set the file's permissions (" + DescribeErrno(errno) + ")");
	}
	if (bKeepMode && (Existing.st_uid != geteuid() || Existing.st_gid != getegid()) &&
		fchown(Handle, Existing.st_uid, Existing.st_gid) != 0 && Options.bKeepOwner)
	{
		return Fail(Target + ": cannot keep the file's owner (" + DescribeErrno(errno) + "); nothing was written");
	}
	if (!WriteAll(Handle, Text) || fsync(Handle) != 0)
	{
		return Fail(Target + ": cannot write the file (" + DescribeErrno(errno) + ")");
	}
	if (close(Handle) != 0)
	{
		OutError = Target + ": cannot write the file (" + DescribeErrno(errno) + ")";
		Discard();
		return false;
	}
	return true;
}

bool FStagedFile::OpenStream(const std::string& Text, std::string& OutError)
{
	// Not waiting: a FIFO that nobody reads from would hold the command up for ever.
	const int Handle = open(ResolvedTarget.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
	if (Handle < 0)
	{
		OutError = Target +
			(errno == ENXIO ? std::string(": a FIFO that nobody reads from; nothing was written")
							: ": cannot write the file (" + DescribeErrno(errno) + ")");
		return false;
	}
	struct stat Opened;
	const int Flags = fcntl(Handle, F_GETFL);
	if (fstat(Handle, &Opened) != 0 || !(S_ISFIFO(Opened.st_mode) || S_ISCHR(Opened.st_mode)) || Flags < 0 ||
		fcntl(Handle, F_SETFL, Flags & ~O_NONBLOCK) != 0)
	{
		close(Handle);
		OutError = Target + ": changed while it was opened; nothing was written";
		return false;
	}
	Stream = Handle;
	StreamText = Text;
	return true;
}

bool FStagedFile::Commit(std::string& OutError)
{
	if (Stream >= 0)
	{
		const bool bWritten = WriteAll(Stream, StreamText);
		const int WriteError = errno;
		close(Stream);
		Stream = -1;
		StreamText.clear();
		if (!bWritten)
		{
			OutError = Target + ": cannot write the file (" + DescribeErrno(WriteError) + ")";
			return false;
		}
		return true;
	}
	if (Temporary.empty())
	{
		OutError = Target + ": nothing staged";
		return false;
	}
	struct stat Existing;
	if (lstat(ResolvedTarget.c_str(), &Existing) == 0 && !S_ISREG(Existing.st_mode) && !S_ISLNK(Existing.st_mode))
	{
		// Something else took the target's place since it was staged: never renamed over.
		OutError = Target + ": is no longer a regular file; nothing was written";
		return false;
	}
	if (std::rename(Temporary.c_str(), ResolvedTarget.c_str()) != 0)
	{
		// Kept staged: the rename may have failed because a folder on its way is gone for now (a link replaced by
		// a file), and the owner removes it once the folders are put back.
		OutError = Target + ": cannot replace the file (" + DescribeErrno(errno) + ")";
		return false;
	}
	Temporary.clear();
	SyncFolder(fs::path(ResolvedTarget).parent_path());
	return true;
}

void FStagedFile::Discard()
{
	if (Stream >= 0)
	{
		close(Stream);
		Stream = -1;
		StreamText.clear();
	}
	if (!Temporary.empty())
	{
		unlink(Temporary.c_str());
		Temporary.clear();
	}
}

bool WriteFileAtomically(
	const std::string& Path, const std::string& Text, std::string& OutError, const FAtomicFileOptions& Options)
{
	FStagedFile File;
	return File.Stage(Path, Text, Options, OutError) && File.Commit(OutError);
}
