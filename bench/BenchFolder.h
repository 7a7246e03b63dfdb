// Copyright Lodex contributors.
#pragma once

#include <filesystem>
#include <string>
#include <system_error>
#include <unistd.h>

/** A temporary folder for a benchmark's files, removed with what it holds when the benchmarks end. */
struct FBenchFolder
{
	FBenchFolder() = default;
	FBenchFolder(const FBenchFolder&) = delete;
	FBenchFolder& operator=(const FBenchFolder&) = delete;

	~FBenchFolder()
	{
		std::error_code Code;
		if (!Path.empty())
		{
			std::filesystem::remove_all(Path, Code);
		}
	}

	/** Makes the folder; empty when it cannot be made. */
	std::string Make()
	{
		std::string Made = (std::filesystem::temp_directory_path() / "lodex-bench-XXXXXX").string();
		Path = mkdtemp(Made.data()) != nullptr ? Made : std::string();
		return Path;
	}

	std::string Path;
};
