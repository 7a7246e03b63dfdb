// Copyright Lodex contributors.
#include "FuzzChecks.h"
#include "FuzzProperties.h"
#include "TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

namespace
{
	namespace fs = std::filesystem;

	const std::string FuzzDir = std::string(LODEX_SOURCE_DIR) + "/fuzz";

	/** The input files of a folder (not its hidden files), in name order. */
	std::set<fs::path> InputFiles(const fs::path& Folder)
	{
		std::set<fs::path> Files;
		std::error_code Code;
		for (const fs::directory_entry& Entry : fs::directory_iterator(Folder, Code))
		{
			if (Entry.is_regular_file() && Entry.path().filename().string()[0] != '.')
			{
				Files.insert(Entry.path());
			}
		}
		return Files;
	}

	/**
	 * Every saved input of every fuzz target, the seeds and the inputs that once failed, goes through the target's
	 * own check: the same function the fuzzer runs, asserting the same properties.
	 */
	TEST(FuzzInputs, EverySeedAndEveryRegressionInputPassesItsTargetsCheck)
	{
		ASSERT_GE(GetLodexFuzzTargets().size(), 3u);
		for (const FLodexFuzzTarget& Target : GetLodexFuzzTargets())
		{
			const std::set<fs::path> Seeds = InputFiles(FuzzDir + "/corpus/" + Target.Name);
			EXPECT_GE(Seeds.size(), 3u) << Target.Name << " has a seed corpus";
			EXPECT_TRUE(fs::is_directory(FuzzDir + "/regressions/" + Target.Name)) << Target.Name;
			std::set<fs::path> Inputs = InputFiles(FuzzDir + "/regressions/" + Target.Name);
			Inputs.insert(Seeds.begin(), Seeds.end());
			for (const fs::path& Input : Inputs)
			{
				EXPECT_EQ(Target.Check(FTempDir::Read(Input.string())), "") << Input;
			}
		}
	}

	/** The checks can fail: what a file's error must be, position included. */
	TEST(FuzzProperties, AFileErrorIsOneLineNamingTheFileAndAPlaceInsideIt)
	{
		const std::string Input = "{\n  \"T\u00fcr\": 1x\n}"; // line 2 is 11 characters
		const struct
		{
			std::string Error;
			bool bLineAlone;
			std::string Failure;
		} Rows[] = {
			{"f.json: missing field 'objects'", false, ""},
			{"f.json:2:12: syntax error", false, ""},
			{"f.json:3:1: end", false, ""},
			{"f.json:2: unknown type", true, ""},
			{"f.json:2:13: syntax error", false,
				"the error's column 13 is outside line 2 (11 characters): f.json:2:13: syntax error"},
			{"f.json:4:1: x", false, "the error's line 4 is not one of the input's 3: f.json:4:1: x"},
			{"f.json:0:1: x", false, "the error's line 0 is not one of the input's 3: f.json:0:1: x"},
			{"f.json:2: x", false, "the error gives a line without a column: f.json:2: x"},
			{"f.json:2:", true, "the error gives no reason after the file's name and position: f.json:2:"},
			{"g.json: x", false, "the error does not start with the file's name: g.json: x"},
			{"f.json: unknown type 'a\nb'", false,
				"the message holds a control character: f.json: unknown type 'a\\x0Ab'"},
			{"f.json:1:2: last read: '\"\xC0\x80'", false,
				"the message is not UTF-8 text: f.json:1:2: last read: '\"\\xC0\\x80'"},
			{"", false, "the message is empty"},
		};
		for (const auto& Row : Rows)
		{
			EXPECT_EQ(LodexFuzz::CheckFileError(Row.Error, "f.json", Input, Row.bLineAlone), Row.Failure) << Row.Error;
		}
	}

	TEST(FuzzProperties, AnUpdateOnlyPutsTextInAtOnePlaceWhereAtMostBlanksWereTakenOut)
	{
		const struct
		{
			std::string Before;
			std::string After;
			std::string Failure;
		} Rows[] = {
			{"{\"M\": [1]}", "{\"M\": [1, 2]}", ""},
			{"{\"M\": [ \r\n ]}", "{\"M\": [2]}", ""},
			{"{}", "{\"M\": []}", ""},
			{"{\"M\": [1]}", "{\"M\": [1]}", "nothing was put in"},
			{"{\"M\": [1], \"V\": 1.50}", "{\"M\": [1, 2], \"V\": 1.5}",
				"bytes other than blanks were changed at byte 8: '], \"V\": 1.50' became ', 2], \"V\": 1.5'"},
			{"{\"A\": 1, \"M\": []}", "{\"M\": [2], \"A\": 1}",
				"bytes other than blanks were changed at byte 2: 'A\": 1, \"M\": []' became 'M\": [2], \"A\": 1'"},
		};
		for (const auto& Row : Rows)
		{
			EXPECT_EQ(LodexFuzz::CheckOneInsertion(Row.Before, Row.After), Row.Failure) << Row.Before;
		}
	}
}
