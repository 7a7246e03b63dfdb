// Copyright Lodex contributors.
#include "WholeFile.h"

#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
	const char* DescribeFileKind(mode_t Mode)
	{
		return S_ISCHR(Mode) ? "a character device"
			: S_ISBLK(Mode)  ? "a block device"
			: S_ISFIFO(Mode) ? "a FIFO"
			: S_ISSOCK(Mode) ? "a socket"
							 : "not a file";
	}

	std::string DescribeRefusedKind(const std::string& Path, mode_t Mode, const FInputFileRules& Rules)
	{
		return Path + ": is " + DescribeFileKind(Mode) + ", not a regular file" + (Rules.bStream ? " or a pipe" : "");
	}

	std::string DescribeTooLarge(const std::string& Path, const FInputFileRules& Rules)
	{
		return Path + ": larger than " + DescribeByteLimit(Rules.MaxBytes) + ", the most lodex reads of " +
			Rules.LimitOf;
	}

	class FInputHandle
	{
	public:
		explicit FInputHandle(int InHandle)
			: Handle(InHandle)
		{
		}
		~FInputHandle()
		{
			if (Handle >= 0)
			{
				close(Handle);
			}
		}
		FInputHandle(const FInputHandle&) = delete;
		FInputHandle& operator=(const FInputHandle&) = delete;

		const int Handle;
	};
}

std::string DescribeByteLimit(std::size_t Bytes)
{
	if (Bytes >= (std::size_t(1) << 20) && Bytes % (std::size_t(1) << 20) == 0)
	{
		return std::to_string(Bytes >> 20) + " MiB";
	}
	if (Bytes >= 1024 && Bytes % 1024 == 0)
	{
		return std::to_string(Bytes >> 10) + " KiB";
	}
	return std::to_string(Bytes) + (Bytes == 1 ? " byte" : " bytes");
}

bool ReadWholeFile(const std::string& Path, std::string& OutBytes, std::string& OutError, const FInputFileRules& Rules)
{
	// What the path names is looked at before it is opened: opening a FIFO waits for a writer.
	struct stat Named;
	if (stat(Path.c_str(), &Named) != 0)
	{
		OutError = Path + ": cannot open the file";
		return false;
	}
	const bool bPipe = S_ISFIFO(Named.st_mode) && Rules.bStream;
	if (!S_ISREG(Named.st_mode) && !S_ISDIR(Named.st_mode) && !bPipe)
	{
		OutError = DescribeRefusedKind(Path, Named.st_mode, Rules);
		return false;
	}
	// Not a pipe: opened without waiting, and checked again, in case it changed in between.
	const FInputHandle File(open(Path.c_str(), O_RDONLY | O_CLOEXEC | (bPipe ? 0 : O_NONBLOCK)));
	struct stat Opened;
	if (File.Handle < 0 || fstat(File.Handle, &Opened) != 0)
	{
		OutError = Path + ": cannot open the file";
		return false;
	}
	if (S_ISDIR(Opened.st_mode))
	{
		OutError = Path + ": cannot read the file";
		return false;
	}
	if (!S_ISREG(Opened.st_mode) && !(S_ISFIFO(Opened.st_mode) && Rules.bStream))
	{
		OutError = DescribeRefusedKind(Path, Opened.st_mode, Rules);
		return false;
	}
	if (S_ISREG(Opened.st_mode) && static_cast<std::uint64_t>(Opened.st_size) > Rules.MaxBytes)
	{
		OutError = DescribeTooLarge(Path, Rules);
		return false;
	}

	std::string Bytes;
	if (S_ISREG(Opened.st_mode))
	{
		Bytes.reserve(static_cast<std::size_t>(Opened.st_size));
	}
	char Block[65536];
	for (;;)
	{
		const ssize_t Count = read(File.Handle, Block, sizeof(Block));
		if (Count < 0 && errno == EINTR)
		{
			continue;
		}
		if (Count < 0)
		{
			OutError = Path + ": cannot read the file";
			return false;
		}
		if (Count == 0)
		{
			break;
		}
		if (Bytes.size() + static_cast<std::size_t>(Count) > Rules.MaxBytes)
		{
			OutError = DescribeTooLarge(Path, Rules); // a file that grew, or a pipe
			return false;
		}
		Bytes.append(Block, static_cast<std::size_t>(Count));
	}
	OutBytes = std::move(Bytes);
	return true;
}
