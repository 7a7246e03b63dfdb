// Copyright Lodex contributors.
#include "LodexCli.h"
#include "TempDir.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <map>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
	namespace fs = std::filesystem;

	const std::string Descriptor = "{\n"
								   "\t\"FileVersion\": 3,\n"
								   "\t\"Version\": 1,\n"
								   "\t\"VersionName\": \"1.23\",\n"
								   "\t\"FriendlyName\": \"UnrealCLR\",\n"
								   "\t\"Description\": \"Intégration .NET\",\n"
								   "\t\"EnabledByDefault\": true,\n"
								   "\t\"Modules\": [\n"
								   "\t\t{\n"
								   "\t\t\t\"Name\": \"UnrealCLR\",\n"
								   "\t\t\t\"Type\": \"Runtime\",\n"
								   "\t\t\t\"LoadingPhase\": \"PreLoadingScreen\",\n"
								   "\t\t\t\"WhitelistPlatforms\": [\n"
								   "\t\t\t\t\"Win64\",\n"
								   "\t\t\t\t\"Linux\"\n"
								   "\t\t\t]\n"
								   "\t\t}\n"
								   "\t]\n"
								   "}";

	const std::string InstalledDescriptor = "{\n"
											"\t\"FileVersion\": 3,\n"
											"\t\"Version\": 1,\n"
											"\t\"VersionName\": \"1.23\",\n"
											"\t\"FriendlyName\": \"UnrealCLR\",\n"
											"\t\"Description\": \"Intégration .NET\",\n"
											"\t\"EnabledByDefault\": true,\n"
											"\t\"Modules\": [\n"
											"\t\t{\n"
											"\t\t\t\"Name\": \"UnrealCLR\",\n"
											"\t\t\t\"Type\": \"Runtime\",\n"
											"\t\t\t\"LoadingPhase\": \"PreLoadingScreen\",\n"
											"\t\t\t\"WhitelistPlatforms\": [\n"
											"\t\t\t\t\"Win64\",\n"
											"\t\t\t\t\"Linux\"\n"
											"\t\t\t]\n"
											"\t\t},\n"
											"\t\t{\n"
											"\t\t\t\"Name\": \"LodexDebugger\",\n"
											"\t\t\t\"Type\": \"Editor\",\n"
											"\t\t\t\"LoadingPhase\": \"PostEngineInit\"\n"
											"\t\t}\n"
											"\t]\n"
											"}";

	const char* const Icons[] = {
		"Download_icon.png", "Info_icon.png", "Record_icon.png", "Reset_icon.png", "Stop_icon.png"};

	struct FRun
	{
		int Exit = -1;
		std::string Out;
		std::string Err;
	};

	/** Every file under a folder, by its path relative to it, with its bytes. */
	std::map<std::string, std::string> Snapshot(const std::string& Root)
	{
		std::map<std::string, std::string> Files;
		for (const fs::directory_entry& Entry : fs::recursive_directory_iterator(Root))
		{
			const std::string Relative = Entry.path().lexically_relative(Root).generic_string();
			Files[Relative] = Entry.is_regular_file() ? FTempDir::Read(Entry.path().string()) : std::string("<dir>");
		}
		return Files;
	}

	/** A game project with the UnrealCLR plug-in, and a small Lodex source tree beside it. */
	class LodexInstall : public ::testing::Test
	{
	protected:
		void SetUp() override
		{
			ASSERT_FALSE(Dir.Path.empty());
			Project = Dir.Path + "/Game";
			Source = Dir.Path + "/lodex";
			Plugin = Project + "/Plugins/UnrealCLR";
			Write(Project + "/Game.uproject", "{\"FileVersion\": 3}");
			Write(Plugin + "/UnrealCLR.uplugin", Descriptor);
			Write(Source + "/Source/LodexDebugger/LodexDebugger.Build.cs", "// rules\n");
			Write(Source + "/Source/LodexDebugger/Core/LodexShell.cpp", "// shell\n");
			Write(Source + "/Source/LodexDebugger/Private/LodexDebugger.cpp", "// module\n");
			Write(Source + "/Source/LodexDebugger/Binaries/Linux/libLodex.so", "build output");
			Write(Source + "/Source/LodexDebugger/Intermediate/Build/x.o", "build output");
			Write(Source + "/Source/LodexDebugger/.vs/state", "editor state");
			for (const char* Icon : Icons)
			{
				Write(Source + "/Resources/" + Icon, std::string("png ") + Icon);
			}
			Write(Source + "/Resources/Unused.png", "not an icon of the module");
		}

		static void Write(const std::string& Path, const std::string& Text)
		{
			fs::create_directories(fs::path(Path).parent_path());
			std::ofstream Out(Path, std::ios::binary);
			Out << Text;
		}

		FRun Install(std::vector<std::string> Extra = {}) const
		{
			std::vector<std::string> Args{"install", "--project", Project, "--source", Source};
			Args.insert(Args.end(), Extra.begin(), Extra.end());
			std::ostringstream Out;
			std::ostringstream Err;
			FRun Run;
			Run.Exit = RunLodexCli(Args, Out, Err);
			Run.Out = Out.str();
			Run.Err = Err.str();
			return Run;
		}

		std::map<std::string, std::string> ProjectFiles() const { return Snapshot(Project); }

		FTempDir Dir;
		std::string Project;
		std::string Source;
		std::string Plugin;
	};

	TEST_F(LodexInstall, FreshInstallCopiesTheSourcesAndIconsAndAddsTheModuleKeepingEverythingElse)
	{
		const FRun Run = Install();
		ASSERT_EQ(Run.Exit, 0) << Run.Err;
		EXPECT_EQ(Run.Err, "");
		EXPECT_EQ(Run.Out,
			"Installing LodexDebugger from " + Source + " into " + Plugin +
				"\n"
				"  copied Source/LodexDebugger/Core/LodexShell.cpp\n"
				"  copied Source/LodexDebugger/LodexDebugger.Build.cs\n"
				"  copied Source/LodexDebugger/Private/LodexDebugger.cpp\n"
				"  copied Resources/Record_icon.png\n"
				"  copied Resources/Download_icon.png\n"
				"  copied Resources/Stop_icon.png\n"
				"  copied Resources/Info_icon.png\n"
				"  copied Resources/Reset_icon.png\n"
				"  added {\"Name\":\"LodexDebugger\",\"Type\":\"Editor\",\"LoadingPhase\":\"PostEngineInit\"} to "
				"\"Modules\" of UnrealCLR.uplugin (the descriptor as it was is in UnrealCLR.uplugin.bak)\n"
				"Done: 8 file(s) copied, 0 replaced, 0 already up to date; UnrealCLR.uplugin now lists "
				"LodexDebugger.\n");

		std::map<std::string, std::string> Expected{
			{"Game.uproject", "{\"FileVersion\": 3}"},
			{"Plugins", "<dir>"},
			{"Plugins/UnrealCLR", "<dir>"},
			{"Plugins/UnrealCLR/UnrealCLR.uplugin", InstalledDescriptor},
			{"Plugins/UnrealCLR/UnrealCLR.uplugin.bak", Descriptor},
			{"Plugins/UnrealCLR/Resources", "<dir>"},
			{"Plugins/UnrealCLR/Source", "<dir>"},
			{"Plugins/UnrealCLR/Source/LodexDebugger", "<dir>"},
			{"Plugins/UnrealCLR/Source/LodexDebugger/Core", "<dir>"},
			{"Plugins/UnrealCLR/Source/LodexDebugger/Private", "<dir>"},
			{"Plugins/UnrealCLR/Source/LodexDebugger/LodexDebugger.Build.cs", "// rules\n"},
			{"Plugins/UnrealCLR/Source/LodexDebugger/Core/LodexShell.cpp", "// shell\n"},
			{"Plugins/UnrealCLR/Source/LodexDebugger/Private/LodexDebugger.cpp", "// module\n"},
		};
		for (const char* Icon : Icons)
		{
			Expected[std::string("Plugins/UnrealCLR/Resources/") + Icon] = std::string("png ") + Icon;
		}
		EXPECT_EQ(ProjectFiles(), Expected);
	}

	TEST_F(LodexInstall, SecondRunChangesNothingAndSaysSo)
	{
		ASSERT_EQ(Install().Exit, 0);
		const std::map<std::string, std::string> Before = ProjectFiles();
		const FRun Run = Install();
		EXPECT_EQ(Run.Exit, 0) << Run.Err;
		EXPECT_EQ(Run.Err, "");
		EXPECT_EQ(
			Run.Out, "LodexDebugger is already installed in " + Plugin + " and up to date; nothing was changed.\n");
		EXPECT_EQ(ProjectFiles(), Before);
	}

	TEST_F(LodexInstall, DryRunListsWhatItWouldDoAndChangesNothing)
	{
		const std::map<std::string, std::string> Before = ProjectFiles();
		const FRun Run = Install({"--dry-run"});
		EXPECT_EQ(Run.Exit, 0) << Run.Err;
		EXPECT_EQ(Run.Out,
			"Dry run: installing LodexDebugger from " + Source + " into " + Plugin +
				" would\n"
				"  copy Source/LodexDebugger/Core/LodexShell.cpp\n"
				"  copy Source/LodexDebugger/LodexDebugger.Build.cs\n"
				"  copy Source/LodexDebugger/Private/LodexDebugger.cpp\n"
				"  copy Resources/Record_icon.png\n"
				"  copy Resources/Download_icon.png\n"
				"  copy Resources/Stop_icon.png\n"
				"  copy Resources/Info_icon.png\n"
				"  copy Resources/Reset_icon.png\n"
				"  add {\"Name\":\"LodexDebugger\",\"Type\":\"Editor\",\"LoadingPhase\":\"PostEngineInit\"} to "
				"\"Modules\" of UnrealCLR.uplugin (the descriptor as it was is kept in UnrealCLR.uplugin.bak)\n"
				"Nothing was changed.\n");
		EXPECT_EQ(ProjectFiles(), Before);
	}

	TEST_F(LodexInstall, DryRunAfterAnInstallSaysThereIsNothingToDo)
	{
		ASSERT_EQ(Install().Exit, 0);
		const FRun Run = Install({"--dry-run"});
		EXPECT_EQ(Run.Exit, 0) << Run.Err;
		EXPECT_EQ(Run.Out,
			"Dry run: installing LodexDebugger from " + Source + " into " + Plugin +
				" would\n"
				"  change nothing: the module is installed and up to date\n"
				"Nothing was changed.\n");
	}

	TEST_F(LodexInstall, ChangedSourcesAreReplacedAndTheDescriptorIsLeftAlone)
	{
		ASSERT_EQ(Install().Exit, 0);
		Write(Source + "/Source/LodexDebugger/Core/LodexShell.cpp", "// shell, changed\n");
		Write(Source + "/Source/LodexDebugger/Core/LodexStyle.cpp", "// style\n");
		const FRun Run = Install();
		EXPECT_EQ(Run.Exit, 0) << Run.Err;
		EXPECT_EQ(Run.Out,
			"Installing LodexDebugger from " + Source + " into " + Plugin +
				"\n"
				"  replaced Source/LodexDebugger/Core/LodexShell.cpp\n"
				"  copied Source/LodexDebugger/Core/LodexStyle.cpp\n"
				"Done: 1 file(s) copied, 1 replaced, 7 already up to date; UnrealCLR.uplugin already listed "
				"LodexDebugger.\n");
		EXPECT_EQ(FTempDir::Read(Plugin + "/Source/LodexDebugger/Core/LodexShell.cpp"), "// shell, changed\n");
		EXPECT_EQ(FTempDir::Read(Plugin + "/UnrealCLR.uplugin"), InstalledDescriptor);
		EXPECT_EQ(FTempDir::Read(Plugin + "/UnrealCLR.uplugin.bak"), Descriptor);
	}

	TEST_F(LodexInstall, FilesTheSourceNoLongerHasAreReportedAndKept)
	{
		Write(Plugin + "/Source/LodexDebugger/Old/Gone.cpp", "// old\n");
		Write(Plugin + "/Source/LodexDebugger/Intermediate/Build/y.o", "build output");
		const FRun Run = Install();
		EXPECT_EQ(Run.Exit, 0) << Run.Err;
		EXPECT_NE(Run.Out.find("  keep Source/LodexDebugger/Old/Gone.cpp (not in the source tree; remove it by hand if "
							   "it is not wanted)\n"),
			std::string::npos)
			<< Run.Out;
		EXPECT_EQ(Run.Out.find("y.o"), std::string::npos) << Run.Out;
		EXPECT_TRUE(FTempDir::Exists(Plugin + "/Source/LodexDebugger/Old/Gone.cpp"));
	}

	TEST_F(LodexInstall, ADescriptorThatAlreadyListsTheModuleIsNotTouched)
	{
		struct FRow
		{
			const char* Type;
			std::string Note;
		};
		const std::vector<FRow> Rows{
			{"Editor", ""},
			{"Runtime",
				"note: " + Plugin +
					"/UnrealCLR.uplugin already lists LodexDebugger with Type \"Runtime\"; it is left as it is\n"},
		};
		for (const FRow& Row : Rows)
		{
			const std::string Listed = std::string("{\"Modules\": [{\"Name\": \"LodexDebugger\", \"Type\": \"") +
				Row.Type + "\", \"LoadingPhase\": \"Default\"}]}";
			Write(Plugin + "/UnrealCLR.uplugin", Listed);
			fs::remove(Plugin + "/UnrealCLR.uplugin.bak");
			const FRun Run = Install();
			EXPECT_EQ(Run.Exit, 0) << Run.Err;
			EXPECT_EQ(FTempDir::Read(Plugin + "/UnrealCLR.uplugin"), Listed);
			EXPECT_FALSE(FTempDir::Exists(Plugin + "/UnrealCLR.uplugin.bak"));
			if (Row.Note.empty())
			{
				EXPECT_EQ(Run.Out.find("note:"), std::string::npos) << Run.Out;
			}
			else
			{
				EXPECT_NE(Run.Out.find(Row.Note), std::string::npos) << Run.Out;
			}
		}
	}

	TEST_F(LodexInstall, KeepsTheDescriptorsLineEndsFinalNewlineAndByteOrderMark)
	{
		struct FRow
		{
			const char* What;
			std::string Original;
			std::string Expected;
		};
		const std::string Entry = "{\n\t\"Name\": \"LodexDebugger\",\n\t\"Type\": \"Editor\",\n\t\"LoadingPhase\": "
								  "\"PostEngineInit\"\n}";
		const std::vector<FRow> Rows{
			{"no Modules", "{\"FileVersion\": 3}",
				"{\n\t\"FileVersion\": 3,\n\t\"Modules\": [\n\t\t{\n\t\t\t\"Name\": "
				"\"LodexDebugger\",\n\t\t\t\"Type\": "
				"\"Editor\",\n\t\t\t\"LoadingPhase\": \"PostEngineInit\"\n\t\t}\n\t]\n}"},
			{"final newline", "{\"Modules\": []}\n",
				"{\n\t\"Modules\": [\n\t\t{\n\t\t\t\"Name\": \"LodexDebugger\",\n\t\t\t\"Type\": "
				"\"Editor\",\n\t\t\t\"LoadingPhase\": \"PostEngineInit\"\n\t\t}\n\t]\n}\n"},
			{"CRLF", "{\r\n\"Modules\": []\r\n}\r\n",
				"{\r\n\t\"Modules\": [\r\n\t\t{\r\n\t\t\t\"Name\": \"LodexDebugger\",\r\n\t\t\t\"Type\": "
				"\"Editor\",\r\n\t\t\t\"LoadingPhase\": \"PostEngineInit\"\r\n\t\t}\r\n\t]\r\n}\r\n"},
			{"BOM", "\xEF\xBB\xBF{\"Modules\": []}",
				"\xEF\xBB\xBF{\n\t\"Modules\": [\n\t\t{\n\t\t\t\"Name\": \"LodexDebugger\",\n\t\t\t\"Type\": "
				"\"Editor\",\n\t\t\t\"LoadingPhase\": \"PostEngineInit\"\n\t\t}\n\t]\n}"},
		};
		for (const FRow& Row : Rows)
		{
			Write(Plugin + "/UnrealCLR.uplugin", Row.Original);
			const FRun Run = Install();
			EXPECT_EQ(Run.Exit, 0) << Row.What << ": " << Run.Err;
			EXPECT_EQ(FTempDir::Read(Plugin + "/UnrealCLR.uplugin"), Row.Expected) << Row.What;
			EXPECT_EQ(FTempDir::Read(Plugin + "/UnrealCLR.uplugin.bak"), Row.Original) << Row.What;
		}
	}

	struct FRefusalRow
	{
		const char* What;
		std::function<void()> Break;
		/** The one line on standard error; "{project}", "{plugin}" and "{source}" stand for the folders. */
		std::string Expected;
	};

	std::string Expand(std::string Text, const std::map<std::string, std::string>& Names)
	{
		for (const auto& [Name, Value] : Names)
		{
			for (std::size_t At = Text.find(Name); At != std::string::npos; At = Text.find(Name, At + Value.size()))
			{
				Text.replace(At, Name.size(), Value);
			}
		}
		return Text;
	}

	class LodexInstallRefusal : public LodexInstall
	{
	public:
		void RunRow(const FRefusalRow& Row)
		{
			SCOPED_TRACE(Row.What);
			Row.Break();
			const std::map<std::string, std::string> Before = fs::exists(Project) ? ProjectFiles() : decltype(Before)();
			const FRun Run = Install();
			EXPECT_EQ(Run.Exit, 1);
			EXPECT_EQ(Run.Out, "");
			EXPECT_EQ(
				Run.Err, Expand(Row.Expected, {{"{project}", Project}, {"{plugin}", Plugin}, {"{source}", Source}}));
			if (fs::exists(Project))
			{
				EXPECT_EQ(ProjectFiles(), Before);
			}
		}
	};

	TEST_F(LodexInstallRefusal, NoProjectFolder)
	{
		RunRow({"no folder", [this] { fs::remove_all(Project); }, "lodex: {project}: no such folder\n"});
	}

	TEST_F(LodexInstallRefusal, NoUproject)
	{
		RunRow({"no .uproject", [this] { fs::remove(Project + "/Game.uproject"); },
			"lodex: {project}: no .uproject file in the folder; give the game project's folder\n"});
	}

	TEST_F(LodexInstallRefusal, NoPluginDescriptor)
	{
		RunRow({"no UnrealCLR.uplugin", [this] { fs::remove(Plugin + "/UnrealCLR.uplugin"); },
			"lodex: {plugin}/UnrealCLR.uplugin: not found; the project needs the UnrealCLR plug-in in "
			"Plugins/UnrealCLR first\n"});
	}

	TEST_F(LodexInstallRefusal, MalformedDescriptorNamesLineAndColumn)
	{
		RunRow({"malformed",
			[this] { Write(Plugin + "/UnrealCLR.uplugin", "{\n\t\"Modules\": [\n\t\t{\"Name\": \"Tür\",}\n\t]\n}"); },
			"lodex: {plugin}/UnrealCLR.uplugin:3:18: not valid JSON: syntax error while parsing object key - "
			"unexpected '}'; expected string literal\n"});
	}

	TEST_F(LodexInstallRefusal, DescriptorOfTheWrongShape)
	{
		RunRow({"array", [this] { Write(Plugin + "/UnrealCLR.uplugin", "[1, 2]"); },
			"lodex: {plugin}/UnrealCLR.uplugin: the descriptor is a JSON array, not an object\n"});
		RunRow({"Modules not a list", [this] { Write(Plugin + "/UnrealCLR.uplugin", "{\"Modules\": \"UnrealCLR\"}"); },
			"lodex: {plugin}/UnrealCLR.uplugin: \"Modules\" is a JSON string, not a list\n"});
	}

	TEST_F(LodexInstallRefusal, SourceTreeWithoutTheModuleOrAnIcon)
	{
		RunRow({"no module rules", [this] { fs::remove(Source + "/Source/LodexDebugger/LodexDebugger.Build.cs"); },
			"lodex: {source}: not a Lodex source tree (no Source/LodexDebugger/LodexDebugger.Build.cs); give one with "
			"--source\n"});
		RunRow({"no icon",
			[this]
			{
				Write(Source + "/Source/LodexDebugger/LodexDebugger.Build.cs", "// rules\n");
				fs::remove(Source + "/Resources/Stop_icon.png");
			},
			"lodex: {source}/Resources/Stop_icon.png: icon not found in the source tree\n"});
	}

	TEST_F(LodexInstallRefusal, AFileWhereTheModuleFolderMustGo)
	{
		RunRow({"Source is a file", [this] { Write(Plugin + "/Source", "not a folder"); },
			"lodex: {plugin}/Source: is a file where the install needs a folder\n"});
	}

	/** Whether the process can write the file in spite of its permissions (as root can). */
	bool CanWriteAnyway(const std::string& Path)
	{
		const int Handle = open(Path.c_str(), O_WRONLY);
		if (Handle < 0)
		{
			return false;
		}
		close(Handle);
		return true;
	}

	TEST_F(LodexInstallRefusal, ReadOnlyDescriptor)
	{
		const std::string Path = Plugin + "/UnrealCLR.uplugin";
		ASSERT_EQ(chmod(Path.c_str(), 0444), 0);
		if (CanWriteAnyway(Path))
		{
			GTEST_SKIP() << "this process can write a read-only file (it runs as root), so the descriptor is not "
							"read-only to it";
		}
		RunRow({"read-only", [] {},
			"lodex: {plugin}/UnrealCLR.uplugin: the descriptor is read-only; nothing was changed\n"});
	}

	TEST_F(LodexInstall, ReadOnlyDescriptorWritableByThisProcessKeepsItsPermissions)
	{
		const std::string Path = Plugin + "/UnrealCLR.uplugin";
		ASSERT_EQ(chmod(Path.c_str(), 0444), 0);
		if (!CanWriteAnyway(Path))
		{
			GTEST_SKIP() << "only a process that can write read-only files (root) installs into this descriptor";
		}
		const FRun Run = Install();
		EXPECT_EQ(Run.Exit, 0) << Run.Err;
		EXPECT_EQ(FTempDir::Read(Path), InstalledDescriptor);
		struct stat Info;
		ASSERT_EQ(stat(Path.c_str(), &Info), 0);
		EXPECT_EQ(Info.st_mode & 0777, 0444u);
	}

	TEST_F(LodexInstall, TakesTheModuleFromTheTreeLodexWasBuiltFromByDefault)
	{
		std::ostringstream Out;
		std::ostringstream Err;
		ASSERT_EQ(RunLodexCli({"install", "--project", Project}, Out, Err), 0) << Err.str();
		const std::string Relative = "/Source/LodexDebugger/Core/LodexShell.h";
		EXPECT_EQ(FTempDir::Read(Plugin + Relative), FTempDir::Read(LODEX_SOURCE_DIR + Relative));
		EXPECT_EQ(FTempDir::Read(Plugin + "/Resources/Info_icon.png"),
			FTempDir::Read(std::string(LODEX_SOURCE_DIR) + "/Resources/Info_icon.png"));
		EXPECT_EQ(FTempDir::Read(Plugin + "/UnrealCLR.uplugin"), InstalledDescriptor);
	}

	TEST_F(LodexInstall, WithoutProjectIsAUsageError)
	{
		std::ostringstream Out;
		std::ostringstream Err;
		EXPECT_EQ(RunLodexCli({"install"}, Out, Err), 2);
		EXPECT_NE(Err.str().find("--project is required"), std::string::npos) << Err.str();
	}
}
