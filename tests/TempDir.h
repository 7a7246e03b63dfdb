// Copyright Lodex contributors.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <unistd.h>

/** A fresh folder under the system's temporary folder, removed with everything in it at the end of the test. */
class FTempDir
{
public:
	FTempDir()
	{
		const char* Base = std::getenv("TMPDIR");
		std::string Template = std::string(Base != nullptr && *Base != '\0' ? Base : "/tmp") + "/lodex-test-XXXXXX";
		if (mkdtemp(Template.data()) != nullptr)
		{
			Path = Template;
		}
	}
	~FTempDir()
	{
		if (!Path.empty())
		{
			const std::string Command = "rm -rf '" + Path + "'";
			[[maybe_unused]] const int Ignored = std::system(Command.c_str());
		}
	}
	FTempDir(const FTempDir&) = delete;
	FTempDir& operator=(const FTempDir&) = delete;

	std::string File(const std::string& Name) const { return Path + "/" + Name; }

	std::string Write(const std::string& Name, const std::string& Text) const
	{
		std::ofstream Out(File(Name), std::ios::binary);
		Out << Text;
		return File(Name);
	}

	static std::string Read(const std::string& FilePath)
	{
		std::ifstream In(FilePath, std::ios::binary);
		std::ostringstream Buffer;
		Buffer << In.rdbuf();
		return Buffer.str();
	}

	static bool Exists(const std::string& FilePath) { return access(FilePath.c_str(), F_OK) == 0; }

	/** The names in a folder. */
	static std::set<std::string> List(const std::string& Folder)
	{
		std::set<std::string> Names;
		for (const std::filesystem::directory_entry& Entry : std::filesystem::directory_iterator(Folder))
		{
			Names.insert(Entry.path().filename().string());
		}
		return Names;
	}

	std::string Path;
};
