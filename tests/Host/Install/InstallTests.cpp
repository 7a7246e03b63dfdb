// Copyright Lodex contributors.
#include "InstallProject.h"

#include <climits>

namespace
{
	using namespace LodexInstallTesting;
	namespace fs = std::filesystem;

	class LodexInstall
		: public ::testing::Test
		, public FProject
	{
	};

	TEST_F(LodexInstall, FreshInstallCopiesTheModuleAndIconsAndAddsOnlyTheModuleEntryToTheDescriptorAsTheDryRunSaid)
	{
		const auto Before = ProjectFiles();
		EXPECT_EQ(Printed(Install({"--dry-run"})),
			"Dry run: installing LodexDebugger from " + Source + " into " + Plugin + " would\n" + Listed("copy") +
				"  add " + AddedEntry + "kept in UnrealCLR.uplugin.bak)\nNothing was changed.\n");
		EXPECT_EQ(ProjectFiles(), Before);
		EXPECT_EQ(Printed(Install()),
			"Installing LodexDebugger from " + Source + " into " + Plugin + "\n" + Listed("copied") + "  added " +
				AddedEntry + "in UnrealCLR.uplugin.bak)\n" +
				"Done: 8 files copied, 0 replaced, 0 already up to date; "
				"UnrealCLR.uplugin now lists LodexDebugger.\n");
		std::map<std::string, std::string> Expected{{"Game.uproject", "{\"FileVersion\": 3}"}, {"Plugins", "(folder)"},
			{"Plugins/UnrealCLR", "(folder)"}, {"Plugins/UnrealCLR/UnrealCLR.uplugin", InstalledDescriptor},
			{"Plugins/UnrealCLR/UnrealCLR.uplugin.bak", Descriptor}};
		for (const auto& [Relative, Text] : ModuleFiles)
		{
			Expected["Plugins/UnrealCLR/" + Relative] = Text;
			for (fs::path Folder = fs::path(Relative).parent_path(); !Folder.empty(); Folder = Folder.parent_path())
			{
				Expected["Plugins/UnrealCLR/" + Folder.generic_string()] = "(folder)";
			}
		}
		EXPECT_EQ(ProjectFiles(), Expected);
	}

	TEST_F(LodexInstall, SecondRunAndDryRunAfterAnInstallChangeNothingAndSaySoUntilTheDescriptorLosesTheEntry)
	{
		ASSERT_EQ(Install().Exit, 0);
		const auto Before = ProjectFiles();
		EXPECT_EQ(Printed(Install()),
			"LodexDebugger is already installed in " + Plugin + " and up to date; nothing was changed.\n");
		EXPECT_EQ(Printed(Install({"--dry-run"})),
			"Dry run: installing LodexDebugger from " + Source + " into " + Plugin +
				" would\n  change nothing: the module is installed and up to date\nNothing was changed.\n");
		EXPECT_EQ(ProjectFiles(), Before);
		Write(Plugin + "/UnrealCLR.uplugin", Descriptor);
		EXPECT_EQ(Printed(Install({"--dry-run"})),
			"Dry run: installing LodexDebugger from " + Source + " into " + Plugin + " would\n  add " + AddedEntry +
				"kept in UnrealCLR.uplugin.bak)\n  leave 8 files already up to date\nNothing was changed.\n");
	}

	TEST_F(LodexInstall, ChangedBytesOfTheSameLengthAreReplacedNewFilesCopiedAndFilesNoLongerInTheSourceKept)
	{
		ASSERT_EQ(Install().Exit, 0);
		Write(Source + "/Source/LodexDebugger/Core/LodexShell.cpp", "// SHELL\n"); // same length, other bytes
		Write(Source + "/Source/LodexDebugger/Core/LodexStyle.cpp", "// style\n");
		Write(Plugin + "/Source/LodexDebugger/Old/Gone.cpp", "// old\n");
		Write(Plugin + "/Source/LodexDebugger/Intermediate/Build/y.o", "build output");
		const std::string Keep = "  keep Source/LodexDebugger/Old/Gone.cpp (not in the source tree; "
								 "remove it by hand if it is not wanted)\n";
		EXPECT_EQ(Printed(Install({"--dry-run"})),
			"Dry run: installing LodexDebugger from " + Source + " into " + Plugin +
				" would\n"
				"  replace Source/LodexDebugger/Core/LodexShell.cpp\n"
				"  copy Source/LodexDebugger/Core/LodexStyle.cpp\n"
				"  leave 7 files already up to date\n" +
				Keep + "Nothing was changed.\n");
		EXPECT_EQ(Printed(Install()),
			"Installing LodexDebugger from " + Source + " into " + Plugin +
				"\n"
				"  replaced Source/LodexDebugger/Core/LodexShell.cpp\n"
				"  copied Source/LodexDebugger/Core/LodexStyle.cpp\n" +
				Keep +
				"Done: 1 file copied, 1 replaced, 7 already up to date; "
				"UnrealCLR.uplugin already listed LodexDebugger.\n");
		EXPECT_EQ(FTempDir::Read(Plugin + "/Source/LodexDebugger/Core/LodexShell.cpp"), "// SHELL\n");
		EXPECT_TRUE(FTempDir::Exists(Plugin + "/Source/LodexDebugger/Old/Gone.cpp"));
		EXPECT_EQ(FTempDir::Read(Plugin + "/UnrealCLR.uplugin"), InstalledDescriptor);
		EXPECT_EQ(FTempDir::Read(Plugin + "/UnrealCLR.uplugin.bak"), Descriptor);
	}

	TEST_F(LodexInstall, ADescriptorThatListsTheModuleIsNotTouchedAndANoteSaysHowItListsItWhenNotAsTheInstallWould)
	{
		// How the descriptor lists the module otherwise, in any case, is the descriptor dialect's tests' to pin.
		const std::string Listed =
			"{\"Modules\": [{\"Name\": \"LodexDebugger\", \"Type\": \"Runtime\", \"LoadingPhase\": "
			"\"Default\"}], \"Version\": 1.50}";
		Write(Plugin + "/UnrealCLR.uplugin", Listed);
		const FProcessRun Run = Install();
		EXPECT_EQ(Run.Exit, 0) << Run.Err;
		EXPECT_TRUE(Contains(Run.Out,
			"note: " + Plugin +
				"/UnrealCLR.uplugin already lists \"LodexDebugger\" with Type \"Runtime\"; it is left as it is\n"))
			<< Run.Out;
		EXPECT_EQ(FTempDir::Read(Plugin + "/UnrealCLR.uplugin"), Listed);
		EXPECT_FALSE(FTempDir::Exists(Plugin + "/UnrealCLR.uplugin.bak"));
	}

	TEST_F(LodexInstall, TakesTheModuleFromTheTreeLodexWasBuiltFromByDefault)
	{
		const FLodexRun Run = RunLodex({"install", "--project", Project});
		ASSERT_EQ(Run.Exit, 0) << Run.Err;
		for (const std::string Relative : {"/Source/LodexDebugger/Core/Shell/LodexShell.h", "/Resources/Info_icon.png"})
		{
			EXPECT_EQ(FTempDir::Read(Plugin + Relative), FTempDir::Read(LODEX_SOURCE_DIR + Relative)) << Relative;
		}
		EXPECT_EQ(FTempDir::Read(Plugin + "/UnrealCLR.uplugin"), InstalledDescriptor);
	}

	TEST(LodexInstallRefusal, SaysWhyInOneLineAndChangesNothing)
	{
		// A path under the temporary folder, removed (no text), made a folder ("/"), made a link ("->" and its
		// target) or written, and what the install then says.
		const char* const Rows[][3] = {
			{"Game", nullptr, "Game: no such folder"},
			{"Game", "a file", "Game: is a file, not a folder; give the game project's folder"},
			{"Game/Game.uproject", nullptr, "Game: no .uproject file in the folder; give the game project's folder"},
			{"Game/Plugins/UnrealCLR/UnrealCLR.uplugin", nullptr,
				"Game/Plugins/UnrealCLR/UnrealCLR.uplugin: not found; the project needs the UnrealCLR plug-in in "
				"Plugins/UnrealCLR first"},
			{"Game/Plugins/UnrealCLR/UnrealCLR.uplugin", "{\n\t\"Modules\": [\n\t\t{\"Name\": \"Tür\",}\n\t]\n}",
				"Game/Plugins/UnrealCLR/UnrealCLR.uplugin:3:18: not valid JSON: expected a string to name the member"},
			{"Game/Plugins/UnrealCLR/UnrealCLR.uplugin", "{\"Modules\": [], \"Size\": 1.}",
				"Game/Plugins/UnrealCLR/UnrealCLR.uplugin:1:25: not valid JSON: not a JSON number"},
			{"Game/Plugins/UnrealCLR/UnrealCLR.uplugin", "{\"Modules\": \"UnrealCLR\"}",
				"Game/Plugins/UnrealCLR/UnrealCLR.uplugin: \"Modules\" is a JSON string, not a list"},
			{"Game/Plugins/UnrealCLR/UnrealCLR.uplugin.bak/", "",
				"Game/Plugins/UnrealCLR/UnrealCLR.uplugin.bak: is a folder where the install keeps the "
				"descriptor's backup; nothing was changed"},
			{"lodex/Source/LodexDebugger/LodexDebugger.Build.cs", nullptr,
				"lodex: not a Lodex source tree (no Source/LodexDebugger/LodexDebugger.Build.cs); "
				"give one with --source"},
			{"lodex/Resources/Stop_icon.png", nullptr,
				"lodex/Resources/Stop_icon.png: icon not found in the source tree"},
			{"Game/Plugins/UnrealCLR/Source", "a file",
				"Game/Plugins/UnrealCLR/Source: is a file where the install needs a folder"},
			{"Game/Plugins/UnrealCLR/Resources/Info_icon.png/", "",
				"Game/Plugins/UnrealCLR/Resources/Info_icon.png: is a folder where the install needs to put a file; "
				"nothing was changed"},
			{"lodex/Source/LodexDebugger/Private/Dangling.cpp", "->Missing.cpp",
				"lodex/Source/LodexDebugger/Private/Dangling.cpp: is a link to nothing (Missing.cpp); the install "
				"cannot copy it"},
		};
		for (const auto& Row : Rows)
		{
			FProject Project;
			const std::string Path = Project.Dir.Path + "/" + Row[0];
			if (Row[1] == nullptr)
			{
				fs::remove_all(Path);
			}
			else if (Path.back() == '/')
			{
				fs::create_directories(Path);
			}
			else if (std::string(Row[1]).rfind("->", 0) == 0)
			{
				fs::create_symlink(Row[1] + 2, Path);
			}
			else
			{
				fs::remove_all(Path);
				Write(Path, Row[1]);
			}
			Project.ExpectRefusal(Row[2]);
			Project.ExpectRefusal(Row[2], {"--dry-run"});
		}
	}

	TEST_F(LodexInstall, NothingIsWrittenThroughALinkAndALinkedDescriptorIsReplacedWhereItPointsKeepingItsModeAndOwner)
	{
		// The descriptor lives elsewhere (a shared checkout of the plug-in); an icon's place holds a link to a
		// file of another project.
		const std::string Shared = Dir.Path + "/shared/UnrealCLR.uplugin";
		Write(Shared, Descriptor);
		fs::permissions(Shared, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
		if (geteuid() == 0)
		{
			ASSERT_EQ(chown(Shared.c_str(), ChildProcess::UnprivilegedId, ChildProcess::UnprivilegedId), 0);
		}
		struct stat Before;
		ASSERT_EQ(stat(Shared.c_str(), &Before), 0);
		fs::remove(Plugin + "/UnrealCLR.uplugin");
		fs::create_symlink(Shared, Plugin + "/UnrealCLR.uplugin");
		const std::string Other = Dir.Path + "/other/Info_icon.png";
		Write(Other, "another project's icon");
		Write(Plugin + "/Resources/Record_icon.png", "Record");
		fs::create_directories(Plugin + "/Resources");
		fs::create_symlink(Other, Plugin + "/Resources/Info_icon.png");

		const FProcessRun Run = Install();
		ASSERT_EQ(Run.Exit, 0) << Run.Err;
		EXPECT_NE(Run.Out.find("  replaced Resources/Info_icon.png (a link there becomes a copy of the file)\n"),
			std::string::npos)
			<< Run.Out;
		EXPECT_EQ(FTempDir::Read(Other), "another project's icon");
		EXPECT_FALSE(fs::is_symlink(Plugin + "/Resources/Info_icon.png"));
		EXPECT_EQ(FTempDir::Read(Plugin + "/Resources/Info_icon.png"), "Info");
		EXPECT_TRUE(fs::is_symlink(Plugin + "/UnrealCLR.uplugin"));
		EXPECT_EQ(FTempDir::Read(Shared), InstalledDescriptor);
		EXPECT_EQ(FTempDir::Read(Plugin + "/UnrealCLR.uplugin.bak"), Descriptor);
		EXPECT_EQ(FTempDir::List(Dir.Path + "/shared"), std::set<std::string>{"UnrealCLR.uplugin"})
			<< "left beside the descriptor";
		struct stat After;
		ASSERT_EQ(stat(Shared.c_str(), &After), 0);
		EXPECT_EQ(After.st_mode & 07777, 0640u);
		EXPECT_EQ(After.st_uid, Before.st_uid);
		EXPECT_EQ(After.st_gid, Before.st_gid);
		EXPECT_NE(After.st_ino, Before.st_ino) << "replaced whole, not written in place";
	}

	TEST(LodexInstallUnprivileged, AReadOnlyDescriptorOrFolderOrAnUnreadableSourceFileIsRefusedToAnOrdinaryUser)
	{
		const fs::perms ReadOnlyFolder = fs::perms::owner_read | fs::perms::owner_exec | fs::perms::group_read |
			fs::perms::group_exec | fs::perms::others_read | fs::perms::others_exec;
		const struct
		{
			const char* File;
			fs::perms Permissions;
			const char* Said;
		} Rows[] = {
			{"Game/Plugins/UnrealCLR/UnrealCLR.uplugin",
				fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read,
				": the descriptor is read-only; nothing was changed"},
			{"lodex/Source/LodexDebugger/Private/LodexDebugger.cpp", fs::perms::none,
				": cannot read the file (Permission denied)"},
			{"Game/Plugins/UnrealCLR", ReadOnlyFolder, ": the folder cannot be written; nothing was changed"},
			{"Game/Plugins/UnrealCLR/Source", ReadOnlyFolder, ": cannot be written (read-only?); nothing was changed"},
		};
		for (const auto& Row : Rows)
		{
			FProject Project;
			const std::string Path = Project.Dir.Path + "/" + Row.File;
			std::error_code AFileIsThere; // a folder no install has made yet is made
			fs::create_directories(Path, AFileIsThere);
			fs::permissions(Path, Row.Permissions);
			if (geteuid() == 0)
			{
				ChownTree(Project.Dir.Path, ChildProcess::UnprivilegedId);
			}
			const auto Before = Project.ProjectFiles();
			for (const std::vector<std::string>& Extra : {std::vector<std::string>{"--dry-run"}, {}})
			{
				const FProcessRun Run = ChildProcess::RunUnprivileged([&] { return Project.Install(Extra); });
				EXPECT_EQ(Printed(Run), "exit 1: lodex: " + Path + Row.Said + "\n") << Extra.size();
			}
			EXPECT_EQ(Project.ProjectFiles(), Before);
		}
	}

	TEST(LodexInstallProject, AFolderIsAGameProjectWhenItHoldsAUprojectFile)
	{
		// The files the project folder holds instead of Game.uproject, and whether it is one.
		const std::pair<std::vector<std::string>, bool> Rows[] = {
			{{"Notes.txt", "Game.uproject.bak", "Config/DefaultGame.ini"}, false},
			{{"Game.uproject/Game.uproject"}, false},
			{{"Game.uproject/Game.uproject", "Other.uproject"}, true},
		};
		for (const auto& [Files, bProject] : Rows)
		{
			SCOPED_TRACE(::testing::PrintToString(Files));
			FProject Project;
			fs::remove(Project.Project + "/Game.uproject");
			for (const std::string& File : Files)
			{
				Write(Project.Project + "/" + File, "{\"FileVersion\": 3}");
			}
			if (bProject)
			{
				EXPECT_EQ(Project.Install({"--dry-run"}).Exit, 0);
			}
			else
			{
				Project.ExpectRefusal(
					"Game: no .uproject file in the folder; give the game project's folder", {"--dry-run"});
			}
		}
	}

	/** A link, its folders made first. */
	void Link(const std::string& Path, const std::string& Target)
	{
		fs::create_directories(fs::path(Path).parent_path());
		fs::create_symlink(Target, Path);
	}

	/**
	 * Folders of 200 letters, then one of at least 30: a chain that fits below the module's source folder with a file
	 * in it, but whose last folder does not fit below its place in the plug-in, 17 characters longer.
	 */
	std::string ChainPastTheLongestPath(const FProject& P)
	{
		const std::size_t Length = PATH_MAX - 8 - (P.Source + "/Source/LodexDebugger/x.h").size();
		std::string Chain;
		while (Length - Chain.size() > 230)
		{
			Chain += "/" + std::string(200, 'd');
		}
		return Chain + "/" + std::string(Length - Chain.size() - 1, 'e');
	}

	TEST(LodexInstallFailure, AWriteOrRenameThatFailsAtAnyStepLeavesTheProjectByteForByteAsItWas)
	{
		const struct
		{
			const char* Step;
			std::function<void(FProject&)> Setup;
			/** A file-size limit for the install, or 0. */
			rlim_t SizeLimit;
			/** What it says after "lodex: " and the plug-in's folder. */
			std::string Said;
		} Rows[] = {
			{"writing a module file past the file-size limit",
				[&](FProject& P)
				{ Write(P.Source + "/Source/LodexDebugger/Private/Zz_Large.cpp", std::string(64 * 1024, 'x')); },
				16 * 1024,
				"/Source/LodexDebugger/Private/Zz_Large.cpp: cannot write the file (File too large); nothing was "
				"changed"},
			{"a module file whose temporary name is past the longest name",
				[&](FProject& P)
				{ Write(P.Source + "/Source/LodexDebugger/Private/" + std::string(250, 'n') + ".h", "// long\n"); },
				0,
				"/Source/LodexDebugger/Private/" + std::string(250, 'n') +
					".h: cannot write the file (File name too long); nothing was changed"},
			{"a folder past the longest path",
				[&](FProject& P)
				{ Write(P.Source + "/Source/LodexDebugger" + ChainPastTheLongestPath(P) + "/x.h", "// deep\n"); },
				0,
				"/Source/LodexDebugger" + ChainPastTheLongestPath(FProject()) +
					": cannot make the folder (File name too long); nothing was changed"},
			{"writing the descriptor's backup", {}, 100,
				"/UnrealCLR.uplugin.bak: cannot write the file (File too large); nothing was changed"},
			{"writing the descriptor", {}, Descriptor.size(),
				"/UnrealCLR.uplugin: cannot write the file (File too large); nothing was changed"},
			// A link in the plug-in folder that the install replaces by a file lies on the way to a later change,
			// whose rename then meets a file where a folder was.
			{"renaming the descriptor into place",
				[&](FProject& P)
				{
					Write(P.Source + "/Source/LodexDebugger/Shared", "// shared\n");
					fs::remove(P.Plugin + "/UnrealCLR.uplugin");
					Write(P.Plugin + "/Elsewhere/UnrealCLR.uplugin", Descriptor);
					Link(P.Plugin + "/Source/LodexDebugger/Shared", P.Plugin + "/Elsewhere");
					Link(P.Plugin + "/UnrealCLR.uplugin", P.Plugin + "/Source/LodexDebugger/Shared/UnrealCLR.uplugin");
				},
				0, "/UnrealCLR.uplugin: cannot replace the file (Not a directory); the project was put back as it was"},
		};
		for (const auto& Row : Rows)
		{
			FProject Project;
			Write(Project.Plugin + "/Resources/Stop_icon.png", "an older Stop icon");
			if (Row.Setup)
			{
				Row.Setup(Project);
			}
			const auto Before = Project.ProjectFiles();
			const FProcessRun Run = ChildProcess::RunLodex(Project.Arguments(), {},
				Row.SizeLimit != 0 ? ChildProcess::LimitFileSize(Row.SizeLimit) : std::function<void()>());
			EXPECT_EQ(Printed(Run), "exit 1: lodex: " + Project.Plugin + Row.Said + "\n") << Row.Step;
			EXPECT_EQ(Project.ProjectFiles(), Before) << Row.Step;
		}
	}
}
