// Copyright Lodex contributors.
#pragma once

// A game project with the UnrealCLR plug-in and a small Lodex source tree beside it, for the install's tests.

#include "ChildProcess.h"
#include "LodexRun.h"
#include "TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace LodexInstallTesting
{
	namespace fs = std::filesystem;

	// The plug-in's descriptor: keys out of alphabetical order, a key after "Modules", numbers and escapes as
	// written by hand, and a non-ASCII letter.
	inline const std::string DescriptorStart =
		"{\n\t\"FileVersion\": 3,\n\t\"Version\": 1.50,\n\t\"VersionName\": \"1.5\",\n\t\"Description\": "
		"\"Int\\u00e9gration .NET, intégration\",\n\t\"Modules\": [\n\t\t{\n\t\t\t\"Name\": \"UnrealCLR\",\n\t\t\t"
		"\"Type\": \"Runtime\",\n\t\t\t\"LoadingPhase\": \"PreLoadingScreen\",\n\t\t\t\"WhitelistPlatforms\": "
		"[\n\t\t\t\t\"Win64\",\n\t\t\t\t\"Linux\"\n\t\t\t]\n\t\t}";
	inline const std::string DescriptorEnd = "\n\t],\n\t\"CanContainContent\": false,\n\t\"Size\": 1E+2\n}";
	inline const std::string LodexEntry = "{\n\t\t\t\"Name\": \"LodexDebugger\",\n\t\t\t\"Type\": \"Editor\",\n\t\t\t"
										  "\"LoadingPhase\": \"PostEngineInit\"\n\t\t}";
	inline const std::string CompactEntry =
		"{\"Name\": \"LodexDebugger\", \"Type\": \"Editor\", \"LoadingPhase\": \"PostEngineInit\"}";
	inline const std::string Descriptor = DescriptorStart + DescriptorEnd;
	inline const std::string InstalledDescriptor = DescriptorStart + ",\n\t\t" + LodexEntry + DescriptorEnd;
	inline const std::string AddedEntry =
		"{\"Name\":\"LodexDebugger\",\"Type\":\"Editor\",\"LoadingPhase\":\"PostEngineInit\"} to \"Modules\" of "
		"UnrealCLR.uplugin (the descriptor as it was is ";

	/** The files an install puts into the plug-in folder, in the order it reports them, with their text. */
	inline const std::vector<std::pair<std::string, std::string>> ModuleFiles{
		{"Source/LodexDebugger/Core/LodexShell.cpp", "// shell\n"},
		{"Source/LodexDebugger/LodexDebugger.Build.cs", "// rules\n"},
		{"Source/LodexDebugger/Private/LodexDebugger.cpp", "// module\n"}, {"Resources/Record_icon.png", "Record"},
		{"Resources/Download_icon.png", "Download"}, {"Resources/Stop_icon.png", "Stop"},
		{"Resources/Info_icon.png", "Info"}, {"Resources/Reset_icon.png", "Reset"}};

	inline std::string Listed(const std::string& Verb)
	{
		std::string Lines;
		for (const auto& File : ModuleFiles)
		{
			Lines += "  " + Verb + " " + File.first + "\n";
		}
		return Lines;
	}

	inline void Write(const std::string& Path, const std::string& Text)
	{
		fs::create_directories(fs::path(Path).parent_path());
		std::ofstream(Path, std::ios::binary) << Text;
	}

	/** Gives a folder and everything in it to another user and group. */
	inline void ChownTree(const std::string& Root, uid_t Id)
	{
		ASSERT_EQ(lchown(Root.c_str(), Id, Id), 0);
		for (const fs::directory_entry& Entry : fs::recursive_directory_iterator(Root))
		{
			ASSERT_EQ(lchown(Entry.path().c_str(), Id, Id), 0) << Entry.path();
		}
	}

	/** Every file and folder under Root, by its path relative to it, with a file's bytes or a link's target. */
	inline std::map<std::string, std::string> TreeFiles(const std::string& Root)
	{
		std::map<std::string, std::string> Files;
		for (const fs::directory_entry& Entry : fs::recursive_directory_iterator(Root))
		{
			Files[Entry.path().lexically_relative(Root).generic_string()] = Entry.is_symlink()
				? "link to " + fs::read_symlink(Entry.path()).string()
				: Entry.is_regular_file() ? FTempDir::Read(Entry.path())
										  : "(folder)";
		}
		return Files;
	}

	/** A game project with the UnrealCLR plug-in, and a small Lodex source tree beside it. */
	struct FProject
	{
		FProject()
		{
			Write(Project + "/Game.uproject", "{\"FileVersion\": 3}");
			Write(Plugin + "/UnrealCLR.uplugin", Descriptor);
			for (const auto& [Relative, Text] : ModuleFiles)
			{
				Write(Source + "/" + Relative, Text);
			}
			// Build outputs, editor state and other resources are not the module's.
			for (const char* Other :
				{"Source/LodexDebugger/Binaries/Linux/libLodex.so", "Source/LodexDebugger/Intermediate/Build/x.o",
					"Source/LodexDebugger/.vs/state", "Resources/Unused.png"})
			{
				Write(Source + "/" + Other, "not the module's");
			}
		}

		std::vector<std::string> Arguments(std::vector<std::string> Extra = {}) const
		{
			std::vector<std::string> Args{"install", "--project", Project, "--source", Source};
			Args.insert(Args.end(), Extra.begin(), Extra.end());
			return Args;
		}

		FProcessRun Install(std::vector<std::string> Extra = {}) const
		{
			const FLodexRun Run = RunLodex(Arguments(std::move(Extra)));
			return {Run.Exit, 0, Run.Out, Run.Err};
		}

		std::map<std::string, std::string> ProjectFiles() const { return TreeFiles(Project); }

		/** Runs the install: it says "lodex: " and the path under the temporary folder, and changes nothing. */
		void ExpectRefusal(const std::string& PathAndText, std::vector<std::string> Extra = {}) const
		{
			const bool bProject = fs::is_directory(Project);
			const auto Before = bProject ? ProjectFiles() : std::map<std::string, std::string>();
			EXPECT_EQ(Printed(Install(std::move(Extra))), "exit 1: lodex: " + Dir.Path + "/" + PathAndText + "\n");
			EXPECT_EQ(bProject ? ProjectFiles() : Before, Before);
		}

		FTempDir Dir;
		std::string Project = Dir.Path + "/Game";
		std::string Source = Dir.Path + "/lodex";
		std::string Plugin = Project + "/Plugins/UnrealCLR";
	};
}
