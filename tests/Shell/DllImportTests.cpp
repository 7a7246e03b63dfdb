// Copyright Lodex contributors.
#include "Cli/PlatformDll.h"
#include "TempDir.h"

#include "LodexDebugger/Core/Shell/LodexDllImport.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <filesystem>
#include <string>
#include <vector>

namespace
{
	using FLines = std::vector<std::string>;

	/** The platform's file check and loader, with every check and load recorded. */
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
		mutable FLines Checked;
		FLines Loaded;
	};

	TEST(ImportDll, ChecksProjectFolderSlashNameThenLoadsTheRealLibraryOnlyWhenThereIsOne)
	{
		struct FRow
		{
			/** Where the test library is copied to under the project folder ("" for nowhere). */
			const char* Placed;
			const char* Folder;
			const char* Name;
			bool bExpected;
			bool bLoadTried;
		};
		const FRow Rows[] = {
			{"Binaries/x.dll", "Binaries", "x.dll", true, true}, {"", "Binaries", "x.dll", false, false},
			{"Binaries/x.dll", "Binaries", "x", false, false}, // no extension added
			{"Binaries/x.dll/inner.so", "Binaries", "x.dll", false, false}, // a folder is no file
			{"Binaries/sub/x.dll", "Binaries/", "sub/x.dll", true, true}, // nothing normalised: "Binaries//sub"
			{"x.dll", "", "x.dll", true, true}, // loaded from "<project>//x.dll"
			{"notes.txt", ".", "notes.txt", false, true}, // the file is text, not a library
		};
		const std::string Library = FTempDir::Read(LODEX_TEST_LIBRARY);
		ASSERT_FALSE(Library.empty()) << LODEX_TEST_LIBRARY;
		for (const FRow& Row : Rows)
		{
			FTempDir Project;
			const std::string Placed = Project.File(Row.Placed);
			if (*Row.Placed != '\0')
			{
				std::filesystem::create_directories(std::filesystem::path(Placed).parent_path());
				Project.Write(Row.Placed, Placed.find(".txt") == std::string::npos ? Library : "not a library");
			}
			const std::string Path = Project.Path + "/" + Row.Folder + "/" + Row.Name;
			FWatchedDllHost Host(Project.Path + "/");
			EXPECT_EQ(ImportLodexDll(Host, Row.Folder, Row.Name), Row.bExpected) << Path;
			EXPECT_EQ(Host.Checked, FLines{Path});
			EXPECT_EQ(Host.Loaded, Row.bLoadTried ? FLines{Path} : FLines{});
			if (Row.bExpected)
			{
				// Loaded for real and left loaded: the library's own function answers.
				void* Handle = dlopen(Placed.c_str(), RTLD_LAZY | RTLD_NOLOAD);
				ASSERT_NE(Handle, nullptr) << Placed << " is not loaded";
				auto* Answer = reinterpret_cast<int (*)()>(dlsym(Handle, "LodexTestLibraryAnswer"));
				ASSERT_NE(Answer, nullptr);
				EXPECT_EQ(Answer(), 42);
				dlclose(Handle);
			}
		}
	}
}
