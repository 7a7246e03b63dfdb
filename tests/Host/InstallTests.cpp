// Copyright Lodex contributors.
#include "LodexCli.h"
#include "TempDir.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <map>
#include <sstream>
#include <unistd.h>
#include <utility>

namespace
{
	namespace fs = std::filesystem;

	// The plug-in's descriptor: keys out of alphabetical order, a key after "Modules", and a non-ASCII letter.
	const std::string DescriptorStart =
		"{\n\t\"FileVersion\": 3,\n\t\"VersionName\": \"1.23\",\n\t\"Description\": \"Intégration .NET\",\n\t"
		"\"Modules\": [\n\t\t{\n\t\t\t\"Name\": \"UnrealCLR\",\n\t\t\t\"Type\": \"Runtime\",\n\t\t\t\"LoadingPhase\": "
		"\"PreLoadingScreen\",\n\t\t\t\"WhitelistPlatforms\": [\n\t\t\t\t\"Win64\",\n\t\t\t\t\"Linux\"\n\t\t\t]\n\t\t}";
	const std::string DescriptorEnd = "\n\t],\n\t\"CanContainContent\": false\n}";
	const std::string LodexEntry = "{\n\t\t\t\"Name\": \"LodexDebugger\",\n\t\t\t\"Type\": \"Editor\",\n\t\t\t"
								   "\"LoadingPhase\": \"PostEngineInit\"\n\t\t}";
	const std::string Descriptor = DescriptorStart + DescriptorEnd;
	const std::string InstalledDescriptor = DescriptorStart + ",\n\t\t" + LodexEntry + DescriptorEnd;
	const std::string AddedEntry =
		"{\"Name\":\"LodexDebugger\",\"Type\":\"Editor\",\"LoadingPhase\":\"PostEngineInit\"} to \"Modules\" of "
		"UnrealCLR.uplugin (the descriptor as it was is ";

	/** The files an install puts into the plug-in folder, in the order it reports them, with their text. */
	const std::vector<std::pair<std::string, std::string>> ModuleFiles{
		{"Source/LodexDebugger/Core/LodexShell.cpp", "// shell\n"},
		{"Source/LodexDebugger/LodexDebugger.Build.cs", "// rules\n"},
		{"Source/LodexDebugger/Private/LodexDebugger.cpp", "// module\n"}, {"Resources/Record_icon.png", "Record"},
		{"Resources/Download_icon.png", "Download"}, {"Resources/Stop_icon.png", "Stop"},
		{"Resources/Info_icon.png", "Info"}, {"Resources/Reset_icon.png", "Reset"}};

	std::string Listed(const std::string& Verb)
	{
		std::string Lines;
		for (const auto& File : ModuleFiles)
		{
			Lines += "  " + Verb + " " + File.first + "\n";
		}
		return Lines;
	}

	struct FRun
	{
		int Exit = -1;
		std::string Out;
		std::string Err;

		/** The output of a quiet success; otherwise the exit code, then standard error, then standard output. */
		std::string Printed() const
		{
			return Exit == 0 && Err.empty() ? Out : "exit " + std::to_string(Exit) + ": " + Err + Out;
		}
	};

	void Write(const std::string& Path, const std::string& Text)
	{
		fs::create_directories(fs::path(Path).parent_path());
		std::ofstream(Path, std::ios::binary) << Text;
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

		FRun Install(std::vector<std::string> Extra = {}) const
		{
			std::vector<std::string> Args{"install", "--project", Project, "--source", Source};
			Args.insert(Args.end(), Extra.begin(), Extra.end());
			std::ostringstream Out;
			std::ostringstream Err;
			const int Exit = RunLodexCli(Args, Out, Err);
			return {Exit, Out.str(), Err.str()};
		}

		/** Every file under the project folder, by its path relative to it, with its bytes. */
		std::map<std::string, std::string> ProjectFiles() const
		{
			std::map<std::string, std::string> Files;
			for (const fs::directory_entry& Entry : fs::recursive_directory_iterator(Project))
			{
				if (Entry.is_regular_file())
				{
					Files[Entry.path().lexically_relative(Project).generic_string()] = FTempDir::Read(Entry.path());
				}
			}
			return Files;
		}

		/** Runs the install: it says "lodex: " and the path under the temporary folder, and changes nothing. */
		void ExpectRefusal(const std::string& PathAndText) const
		{
			const bool bProject = fs::exists(Project);
			const auto Before = bProject ? ProjectFiles() : std::map<std::string, std::string>();
			EXPECT_EQ(Install().Printed(), "exit 1: lodex: " + Dir.Path + "/" + PathAndText + "\n");
			EXPECT_EQ(bProject ? ProjectFiles() : Before, Before);
		}

		FTempDir Dir;
		std::string Project = Dir.Path + "/Game";
		std::string Source = Dir.Path + "/lodex";
		std::string Plugin = Project + "/Plugins/UnrealCLR";
	};

	class LodexInstall
		: public ::testing::Test
		, public FProject
	{
	};

	TEST_F(LodexInstall, FreshInstallCopiesTheModuleAndIconsAndAddsTheModuleKeepingTheRestOfTheDescriptor)
	{
		EXPECT_EQ(Install().Printed(),
			"Installing LodexDebugger from " + Source + " into " + Plugin + "\n" + Listed("copied") + "  added " +
				AddedEntry + "in UnrealCLR.uplugin.bak)\n" +
				"Done: 8 file(s) copied, 0 replaced, 0 already up to date; "
				"UnrealCLR.uplugin now lists LodexDebugger.\n");
		std::map<std::string, std::string> Expected{{"Game.uproject", "{\"FileVersion\": 3}"},
			{"Plugins/UnrealCLR/UnrealCLR.uplugin", InstalledDescriptor},
			{"Plugins/UnrealCLR/UnrealCLR.uplugin.bak", Descriptor}};
		for (const auto& [Relative, Text] : ModuleFiles)
		{
			Expected["Plugins/UnrealCLR/" + Relative] = Text;
		}
		EXPECT_EQ(ProjectFiles(), Expected);
	}

	TEST_F(LodexInstall, DryRunListsWhatItWouldDoAndChangesNothing)
	{
		const auto Before = ProjectFiles();
		EXPECT_EQ(Install({"--dry-run"}).Printed(),
			"Dry run: installing LodexDebugger from " + Source + " into " + Plugin + " would\n" + Listed("copy") +
				"  add " + AddedEntry + "kept in UnrealCLR.uplugin.bak)\nNothing was changed.\n");
		EXPECT_EQ(ProjectFiles(), Before);
	}

	TEST_F(LodexInstall, SecondRunAndDryRunAfterAnInstallChangeNothingAndSaySo)
	{
		ASSERT_EQ(Install().Exit, 0);
		const auto Before = ProjectFiles();
		EXPECT_EQ(Install().Printed(),
			"LodexDebugger is already installed in " + Plugin + " and up to date; nothing was changed.\n");
		EXPECT_EQ(Install({"--dry-run"}).Printed(),
			"Dry run: installing LodexDebugger from " + Source + " into " + Plugin +
				" would\n  change nothing: the module is installed and up to date\nNothing was changed.\n");
		EXPECT_EQ(ProjectFiles(), Before);
	}

	TEST_F(LodexInstall, ChangedSourcesAreReplacedFilesNoLongerInTheSourceAreKeptAndTheBackupStays)
	{
		ASSERT_EQ(Install().Exit, 0);
		Write(Source + "/Source/LodexDebugger/Core/LodexShell.cpp", "// shell, changed\n");
		Write(Source + "/Source/LodexDebugger/Core/LodexStyle.cpp", "// style\n");
		Write(Plugin + "/Source/LodexDebugger/Old/Gone.cpp", "// old\n");
		Write(Plugin + "/Source/LodexDebugger/Intermediate/Build/y.o", "build output");
		EXPECT_EQ(Install().Printed(),
			"Installing LodexDebugger from " + Source + " into " + Plugin +
				"\n"
				"  replaced Source/LodexDebugger/Core/LodexShell.cpp\n"
				"  copied Source/LodexDebugger/Core/LodexStyle.cpp\n"
				"  keep Source/LodexDebugger/Old/Gone.cpp (not in the source tree; "
				"remove it by hand if it is not wanted)\n"
				"Done: 1 file(s) copied, 1 replaced, 7 already up to date; "
				"UnrealCLR.uplugin already listed LodexDebugger.\n");
		EXPECT_EQ(FTempDir::Read(Plugin + "/Source/LodexDebugger/Core/LodexShell.cpp"), "// shell, changed\n");
		EXPECT_TRUE(FTempDir::Exists(Plugin + "/Source/LodexDebugger/Old/Gone.cpp"));
		EXPECT_EQ(FTempDir::Read(Plugin + "/UnrealCLR.uplugin"), InstalledDescriptor);
		EXPECT_EQ(FTempDir::Read(Plugin + "/UnrealCLR.uplugin.bak"), Descriptor);
	}

	TEST_F(LodexInstall, ADescriptorThatListsTheModuleAlreadyIsNotTouched)
	{
		const std::string Note = "note: " + Plugin +
			"/UnrealCLR.uplugin already lists LodexDebugger with Type \"Runtime\"; it is left as it is\n";
		for (const std::string Type : {"Editor", "Runtime"})
		{
			const std::string Listed = "{\"Modules\": [{\"Name\": \"LodexDebugger\", \"Type\": \"" + Type +
				"\", \"LoadingPhase\": \"Default\"}]}";
			Write(Plugin + "/UnrealCLR.uplugin", Listed);
			const FRun Run = Install();
			EXPECT_EQ(Run.Exit, 0) << Run.Err;
			EXPECT_EQ(Run.Out.find(Note) != std::string::npos, Type == "Runtime") << Run.Out;
			EXPECT_EQ(FTempDir::Read(Plugin + "/UnrealCLR.uplugin"), Listed);
			EXPECT_FALSE(FTempDir::Exists(Plugin + "/UnrealCLR.uplugin.bak"));
		}
	}

	TEST_F(LodexInstall, KeepsTheDescriptorsLineEndsFinalNewlineAndByteOrderMark)
	{
		const std::string Modules = "\t\"Modules\": [\n\t\t" + LodexEntry + "\n\t]";
		std::string Crlf;
		for (const char Char : "{\n" + Modules + "\n}\n")
		{
			Crlf += Char == '\n' ? std::string("\r\n") : std::string(1, Char);
		}
		const std::string Bom = "\xEF\xBB\xBF";
		const std::pair<std::string, std::string> Rows[] = {
			{"{\"FileVersion\": 3}", "{\n\t\"FileVersion\": 3,\n" + Modules + "\n}"},
			{"{\"Modules\": []}\n", "{\n" + Modules + "\n}\n"},
			{"{\r\n\"Modules\": []\r\n}\r\n", Crlf},
			{Bom + "{\"Modules\": []}", Bom + "{\n" + Modules + "\n}"},
		};
		for (const auto& [Original, Expected] : Rows)
		{
			Write(Plugin + "/UnrealCLR.uplugin", Original);
			EXPECT_EQ(Install().Exit, 0) << Original;
			EXPECT_EQ(FTempDir::Read(Plugin + "/UnrealCLR.uplugin"), Expected) << Original;
			EXPECT_EQ(FTempDir::Read(Plugin + "/UnrealCLR.uplugin.bak"), Original);
		}
	}

	TEST_F(LodexInstall, TakesTheModuleFromTheTreeLodexWasBuiltFromByDefault)
	{
		std::ostringstream Out;
		std::ostringstream Err;
		ASSERT_EQ(RunLodexCli({"install", "--project", Project}, Out, Err), 0) << Err.str();
		for (const std::string Relative : {"/Source/LodexDebugger/Core/Shell/LodexShell.h", "/Resources/Info_icon.png"})
		{
			EXPECT_EQ(FTempDir::Read(Plugin + Relative), FTempDir::Read(LODEX_SOURCE_DIR + Relative)) << Relative;
		}
		EXPECT_EQ(FTempDir::Read(Plugin + "/UnrealCLR.uplugin"), InstalledDescriptor);
	}

	TEST(LodexInstallRefusal, SaysWhyInOneLineAndChangesNothing)
	{
		// A path under the temporary folder, removed (no text) or written, and what the install then says.
		const char* const Rows[][3] = {
			{"Game", nullptr, "Game: no such folder"},
			{"Game/Game.uproject", nullptr, "Game: no .uproject file in the folder; give the game project's folder"},
			{"Game/Plugins/UnrealCLR/UnrealCLR.uplugin", nullptr,
				"Game/Plugins/UnrealCLR/UnrealCLR.uplugin: not found; the project needs the UnrealCLR plug-in in "
				"Plugins/UnrealCLR first"},
			{"Game/Plugins/UnrealCLR/UnrealCLR.uplugin", "{\n\t\"Modules\": [\n\t\t{\"Name\": \"Tür\",}\n\t]\n}",
				"Game/Plugins/UnrealCLR/UnrealCLR.uplugin:3:18: not valid JSON: syntax error while parsing "
				"object key - unexpected '}'; expected string literal"},
			{"Game/Plugins/UnrealCLR/UnrealCLR.uplugin", "[1, 2]",
				"Game/Plugins/UnrealCLR/UnrealCLR.uplugin: the descriptor is a JSON array, not an object"},
			{"Game/Plugins/UnrealCLR/UnrealCLR.uplugin", "{\"Modules\": \"UnrealCLR\"}",
				"Game/Plugins/UnrealCLR/UnrealCLR.uplugin: \"Modules\" is a JSON string, not a list"},
			{"lodex/Source/LodexDebugger/LodexDebugger.Build.cs", nullptr,
				"lodex: not a Lodex source tree (no Source/LodexDebugger/LodexDebugger.Build.cs); "
				"give one with --source"},
			{"lodex/Resources/Stop_icon.png", nullptr,
				"lodex/Resources/Stop_icon.png: icon not found in the source tree"},
			{"Game/Plugins/UnrealCLR/Source", "a file",
				"Game/Plugins/UnrealCLR/Source: is a file where the install needs a folder"},
		};
		for (const auto& Row : Rows)
		{
			FProject Project;
			const std::string Path = Project.Dir.Path + "/" + Row[0];
			Row[1] == nullptr ? static_cast<void>(fs::remove_all(Path)) : Write(Path, Row[1]);
			Project.ExpectRefusal(Row[2]);
		}
	}

	TEST_F(LodexInstall, ReadOnlyDescriptorIsRefusedOrWhenWritableAnywayKeepsItsPermissions)
	{
		const std::string Path = Plugin + "/UnrealCLR.uplugin";
		const fs::perms ReadOnly = fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
		fs::permissions(Path, ReadOnly);
		const int Handle = open(Path.c_str(), O_WRONLY);
		if (Handle < 0)
		{
			ExpectRefusal("Game/Plugins/UnrealCLR/UnrealCLR.uplugin: the descriptor is read-only; nothing was changed");
			return;
		}
		close(Handle);
		ASSERT_EQ(Install().Exit, 0);
		EXPECT_EQ(FTempDir::Read(Path), InstalledDescriptor);
		EXPECT_EQ(fs::status(Path).permissions(), ReadOnly);
		GTEST_SKIP() << "this process writes read-only files (it runs as root): the refusal is not checked";
	}
}
