// Copyright Lodex contributors.
#include "PlatformDll.h"
#include "TempDir.h"

#include "LodexDebugger/Core/LodexDllImport.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <sys/stat.h>

#include <string>
#include <vector>

namespace
{
	/** The platform loader, with every file check and load attempt recorded. */
	class FWatchedDllHost final : public ILodexDllHost
	{
	public:
		explicit FWatchedDllHost(const std::string& ProjectDir)
			: Platform(ProjectDir)
		{
		}
		std::string GetProjectDir() const override { return Platform.GetProjectDir(); }
		bool FileExists(const std::string& Path) const override
		{
			Checked.push_back(Path);
			return Platform.FileExists(Path);
		}
		bool GetDllHandle(const std::string& Path) override
		{
			Loaded.push_back(Path);
			return Platform.GetDllHandle(Path);
		}

		FPlatformDllHost Platform;
		mutable std::vector<std::string> Checked;
		std::vector<std::string> Loaded;
	};

	/** A project folder with the test library copied in under the names a test asks for. */
	class ImportDll : public ::testing::Test
	{
	protected:
		void SetUp() override
		{
			ASSERT_FALSE(Dir.Path.empty());
			Library = FTempDir::Read(LODEX_TEST_LIBRARY);
			ASSERT_FALSE(Library.empty()) << LODEX_TEST_LIBRARY;
			ProjectDir = Dir.Path + "/";
		}

		std::string PlaceLibrary(const std::string& Relative)
		{
			std::string Folder = Dir.Path;
			std::size_t Start = 0;
			for (std::size_t Slash = Relative.find('/'); Slash != std::string::npos; Slash = Relative.find('/', Start))
			{
				Folder += "/" + Relative.substr(Start, Slash - Start);
				mkdir(Folder.c_str(), 0755);
				Start = Slash + 1;
			}
			return Dir.Write(Relative, Library);
		}

		/** Whether the process has the library at the path loaded (asked without loading it). */
		static bool IsLoaded(const std::string& Path)
		{
			void* Handle = dlopen(Path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
			if (Handle == nullptr)
			{
				return false;
			}
			dlclose(Handle);
			return true;
		}

		FTempDir Dir;
		std::string Library;
		std::string ProjectDir;
	};

	TEST_F(ImportDll, PresentLibraryInBinariesLoadsAndStaysLoaded)
	{
		const std::string Path = PlaceLibrary("Binaries/x.dll");
		FWatchedDllHost Host(ProjectDir);
		EXPECT_TRUE(ImportLodexDll(Host, "Binaries", "x.dll"));
		EXPECT_EQ(Host.Loaded, (std::vector<std::string>{ProjectDir + "Binaries/x.dll"}));
		EXPECT_TRUE(IsLoaded(Path));
		void* Handle = dlopen(Path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
		ASSERT_NE(Handle, nullptr);
		auto* Answer = reinterpret_cast<int (*)()>(dlsym(Handle, "LodexTestLibraryAnswer"));
		ASSERT_NE(Answer, nullptr);
		EXPECT_EQ(Answer(), 42);
		dlclose(Handle);
	}

	TEST_F(ImportDll, AbsentFileGivesFalseWithoutALoad)
	{
		FWatchedDllHost Host(ProjectDir);
		EXPECT_FALSE(ImportLodexDll(Host, "Binaries", "x.dll"));
		EXPECT_EQ(Host.Checked, (std::vector<std::string>{ProjectDir + "Binaries/x.dll"}));
		EXPECT_TRUE(Host.Loaded.empty());
	}

	TEST_F(ImportDll, AFolderAtThePathIsNoFileAndIsNotLoaded)
	{
		PlaceLibrary("Binaries/x.dll/inner.so");
		FWatchedDllHost Host(ProjectDir);
		EXPECT_FALSE(ImportLodexDll(Host, "Binaries", "x.dll"));
		EXPECT_TRUE(Host.Loaded.empty());
	}

	TEST_F(ImportDll, NameWithARelativePathIsAppendedAsGiven)
	{
		PlaceLibrary("Binaries/sub/x.dll");
		FWatchedDllHost Host(ProjectDir);
		EXPECT_TRUE(ImportLodexDll(Host, "Binaries", "sub/x.dll"));
		EXPECT_EQ(Host.Loaded, (std::vector<std::string>{ProjectDir + "Binaries/sub/x.dll"}));
	}

	TEST_F(ImportDll, EmptyFolderGivesADoubleSlash)
	{
		PlaceLibrary("x.dll");
		FWatchedDllHost Host(ProjectDir);
		EXPECT_TRUE(ImportLodexDll(Host, "", "x.dll"));
		EXPECT_EQ(Host.Loaded, (std::vector<std::string>{ProjectDir + "/x.dll"}));
	}

	TEST_F(ImportDll, AFileThatIsNoLibraryIsTriedOnceAndGivesFalse)
	{
		Dir.Write("notes.txt", "not a library");
		FWatchedDllHost Host(ProjectDir);
		EXPECT_FALSE(ImportLodexDll(Host, ".", "notes.txt"));
		EXPECT_EQ(Host.Loaded, (std::vector<std::string>{ProjectDir + "./notes.txt"}));
	}

	TEST_F(ImportDll, NoExtensionIsAdded)
	{
		PlaceLibrary("Binaries/x.dll");
		FWatchedDllHost Host(ProjectDir);
		EXPECT_FALSE(ImportLodexDll(Host, "Binaries", "x"));
		EXPECT_EQ(Host.Checked, (std::vector<std::string>{ProjectDir + "Binaries/x"}));
		EXPECT_TRUE(Host.Loaded.empty());
	}

	TEST_F(ImportDll, LoadingTheSameLibraryTwiceSucceedsTwice)
	{
		PlaceLibrary("Binaries/twice.so");
		FWatchedDllHost Host(ProjectDir);
		EXPECT_TRUE(ImportLodexDll(Host, "Binaries", "twice.so"));
		EXPECT_TRUE(ImportLodexDll(Host, "Binaries", "twice.so"));
		EXPECT_EQ(Host.Loaded.size(), 2u);
	}

	TEST(ImportDllPath, IsProjectFolderFolderSlashNameWithNothingNormalised)
	{
		struct FRow
		{
			const char* ProjectDir;
			const char* Folder;
			const char* Name;
			const char* Expected;
		};
		const FRow Rows[] = {
			{"../../Game/", "Binaries", "x.dll", "../../Game/Binaries/x.dll"},
			{"/p/", "Binaries", "sub/x.dll", "/p/Binaries/sub/x.dll"},
			{"/p/", "", "x.dll", "/p//x.dll"},
			{"/p/", "Binaries/", "x.dll", "/p/Binaries//x.dll"},
			{"/p/", "/abs", "x.dll", "/p//abs/x.dll"},
			{"/p/", "Binaries/../Other", "x.dll", "/p/Binaries/../Other/x.dll"},
			{"/p/", "Binaries", "", "/p/Binaries/"},
			{"/p/", "Bin aries", "Tür.dll", "/p/Bin aries/Tür.dll"},
			{"C:/Game/", "Binaries\\Win64", "x.dll", "C:/Game/Binaries\\Win64/x.dll"},
		};
		for (const FRow& Row : Rows)
		{
			EXPECT_EQ(MakeImportDllPath(Row.ProjectDir, Row.Folder, Row.Name), Row.Expected);
		}
	}
}
