// Copyright Lodex contributors.
// Packages saved by the engines before 5.0 that 5.0 loads (UE4 214 on, legacy versions -2 to -8), each field read
// from the version that saves it; the summary read to its end; and the notes on parts of a level that cannot be
// read, as the commands sum them up.
#include "LevelContentTest.h"
#include "LodexRun.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

namespace
{
	/** Two actors, one attached to the other, with a label, two tags and a soft sub-level reference. */
	FTestMap OlderMap()
	{
		FTestMap Map = SmallTestMap();
		Map.Actors[0].Tags.push_back("old");
		return Map;
	}

	struct FVersions
	{
		std::int32_t Legacy, UE4, UE5, ReleaseObjectVersion;
	};

	TEST(OlderPackages, EveryVersionTheEngineLoadsGivesTheSameLevelAndNamesTheByteOfAnError)
	{
		FLevelScene Expected;
		std::string Error;
		ASSERT_TRUE(ReadLevelSceneBytes(WriteTestMap(OlderMap()), "level.umap", "/Game/Maps/Main", Expected, Error))
			<< Error;
		ASSERT_EQ(DescribeObjects(Expected.Scene).size(), 5u);
		// Each row crosses a version where a field of the summary, the tables or the tags comes or goes.
		const FVersions Rows[] = {
			{-8, 522, 1000, 40}, // 5.0 before large world coordinates
			{-7, 522, 0, 40}, // 5.0 Early Access, 4.26, 4.27
			{-7, 517, 0, 30}, // 4.21: no package name in imports, one more owner GUID
			{-7, 513, 0, 20}, // soft object paths as one string, no localization ID
			{-7, 510, 0, 10}, // 32-bit export sizes, no template index
			{-6, 506, 0, 3}, // no dependency counts, texture allocations in the summary
			{-6, 502, 0, 2}, // no property GUIDs, no name hashes; the level's actors in a transaction array
			{-5, 440, 0, -1}, // no struct GUIDs, no gatherable text; custom versions with friendly names
			{-4, 335, 0, -1}, // no UE3 version; an engine changelist, no engine version; four editor viewports
			{-3, 281, 0, -1}, // arrays without element types, a single chunk ID
			{-3, 214, 0, -1}, // the oldest the engine loads
		};
		std::vector<FVersions> Versions(std::begin(Rows), std::end(Rows));
		for (std::int32_t UE4 = 214; UE4 <= 522; ++UE4) // every UE4 version, so that each gate is crossed exactly
		{
			Versions.push_back({-7, UE4, 0, 40});
		}
		for (const FVersions& Row : Versions)
		{
			FTestPackage Package("/Game/Maps/Main");
			Package.SetVersions(Row.Legacy, Row.UE4, Row.UE5, Row.ReleaseObjectVersion);
			FLevelScene Scene;
			EXPECT_TRUE(
				ReadLevelSceneBytes(WriteTestMap(OlderMap(), &Package), "level.umap", "/Game/Maps/Main", Scene, Error))
				<< Row.UE4 << ": " << Error;
			EXPECT_EQ(DescribeObjects(Scene.Scene), DescribeObjects(Expected.Scene))
				<< "UE4 " << Row.UE4 << ", legacy " << Row.Legacy;
			// An error in an export entry names its byte, with a template index (UE4 508 on) or without.
			FTestMap Bad = OlderMap();
			Bad.Actors[1].Name = "Bad.Cube";
			FTestPackage BadPackage("/Game/Maps/Main");
			BadPackage.SetVersions(Row.Legacy, Row.UE4, Row.UE5, Row.ReleaseObjectVersion);
			std::string BadError;
			EXPECT_FALSE(
				ReadLevelSceneBytes(WriteTestMap(Bad, &BadPackage), "level.umap", "/Game/Maps/Main", Scene, BadError));
			EXPECT_EQ(BadError,
				"level.umap: byte " + std::to_string(BadPackage.Layout.ExportEntries[5] + (Row.UE4 >= 508 ? 16 : 12)) +
					": the name of actor 'Bad.Cube' holds '.', which no object name holds")
				<< Row.UE4;
		}
	}

	TEST(OlderPackages, TheSummaryIsReadToItsEndAndCompressionRefusedAsTheEngineRefusesIt)
	{
		const std::string Whole = " compressed chunks: a package compressed as a whole (cooked by an old engine), "
								  "which the editor does not load";
		const struct
		{
			std::uint32_t Flags;
			std::int32_t Chunks;
			std::size_t After; // the error's byte, after the compression flags' field
			std::string Error; // empty: it reads
		} Rows[] = {
			{0x00000001, 0, 0, ""}, // zlib: a flag the engine knows, with nothing compressed
			{0x00000FFF, 0, 0, ""},
			{0x00001000, 0, 0, "compression flags 0x00001000 the engine does not know (it knows 0x00000FFF)"},
			{0x80000000, 0, 0, "compression flags 0x80000000 the engine does not know (it knows 0x00000FFF)"},
			{0x00000000, 1, 4, "1" + Whole},
			{0x00000001, 2, 4, "2" + Whole},
		};
		for (const auto& Row : Rows)
		{
			FTestPackage Package("/Game/Maps/Main");
			Package.CompressionFlags = Row.Flags;
			Package.CompressedChunks = Row.Chunks;
			const std::string Bytes = WriteTestMap(OlderMap(), &Package);
			FLevelScene Scene;
			std::string Error;
			EXPECT_EQ(ReadLevelSceneBytes(Bytes, "level.umap", "/Game/Maps/Main", Scene, Error), Row.Error.empty())
				<< Row.Flags << " " << Row.Chunks;
			const std::size_t Byte = Package.Layout.CompressionFlagsField + Row.After;
			EXPECT_EQ(Error, Row.Error.empty() ? "" : "level.umap: byte " + std::to_string(Byte) + ": " + Row.Error);
		}
	}

	using OlderProject = FLevelContentTest;

	TEST_F(OlderProject, CommandsSumUpNotesOfAKindAndListThemWithVerbose)
	{
		FTestMap Map;
		for (const std::string Class : {"BP_A", "BP_B", "BP_C"})
		{
			Map.Actors.push_back(TestActorOfClass(Class + "_C_0", "/Game/BP/" + Class + "." + Class + "_C"));
			Write("BP/" + Class + ".uasset", "\xC1\x83\x2A\x9E");
		}
		WriteMap(Map);
		const std::string Cut = ": byte 4: the file ends at byte 4, inside the package summary";
		const FLodexRun Summed = RunLodex({"path", "--scene", ContentFile("Maps/Main.umap"), "BP_B_C_0"});
		EXPECT_EQ(Summed.Exit, 0);
		EXPECT_EQ(Summed.Out, "/*[@name = 'BP_B_C_0']\n");
		EXPECT_EQ(Summed.Err,
			"lodex: note: 3 Blueprint classes could not be read and are left out; the first: " +
				ContentFile("BP/BP_A.uasset") + Cut + "; this Blueprint class is left out; --verbose lists them all\n");
		const FLodexRun Listed = RunLodex({"path", "--scene", ContentFile("Maps/Main.umap"), "--verbose", "BP_B_C_0"});
		EXPECT_EQ(Listed.Exit, 0);
		std::string Lines;
		for (const std::string Class : {"BP_A", "BP_B", "BP_C"})
		{
			Lines +=
				"lodex: note: " + ContentFile("BP/" + Class + ".uasset") + Cut + "; this Blueprint class is left out\n";
		}
		EXPECT_EQ(Listed.Err, Lines);
	}
}
