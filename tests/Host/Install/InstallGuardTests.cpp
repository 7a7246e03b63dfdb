// Copyright Lodex contributors.
// The install under odd trees and descriptors and under signals: nothing written through a folder link, the
// descriptor read as the engine reads it, and a signal at any step leaving the project as it was.
#include "Install/DescriptorText.h"
#include "InstallProject.h"

namespace
{
	using namespace LodexInstallTesting;

	TEST(LodexInstallGuard, AFolderOfThePlugInThatIsALinkIsRefusedAndNothingIsWrittenThroughIt)
	{
		for (const std::string Relative :
			{"", "/Source", "/Source/LodexDebugger", "/Source/LodexDebugger/Private", "/Resources"})
		{
			FProject Project;
			const std::string Outside = Project.Dir.Path + "/Outside";
			const std::string Linked = Project.Plugin + Relative;
			if (Relative.empty())
			{
				fs::create_directories(Outside);
				fs::rename(Project.Plugin, Outside + "/UnrealCLR");
			}
			else
			{
				Write(Outside + "/UnrealCLR" + Relative + "/Info_icon.png", "not the module's");
				Write(Outside + "/UnrealCLR" + Relative + "/LodexDebugger.cpp", "not the module's");
				fs::create_directories(fs::path(Linked).parent_path());
			}
			fs::create_directory_symlink(Outside + "/UnrealCLR" + Relative, Linked);
			const auto OutsideBefore = TreeFiles(Outside);
			const std::string Said = Linked.substr(Project.Dir.Path.size() + 1) + ": is a link (to " + Outside +
				"/UnrealCLR" + Relative + "); the install writes nothing through a link; nothing was changed";
			Project.ExpectRefusal(Said);
			Project.ExpectRefusal(Said, {"--dry-run"});
			EXPECT_EQ(TreeFiles(Outside), OutsideBefore) << Relative;
		}
	}

	/**
	 * Runs the install in a child told to stop at Step and wait; sends Signal once it says it has stopped there.
	 * A child that never stops at the step runs to its end.
	 */
	FProcessRun InstallSignalledAt(const FProject& Project, const std::string& Step, int Signal)
	{
		const std::string Paused = "lodex: paused at " + Step + "\n";
		return ChildProcess::RunLodex(Project.Arguments(), {{"LODEX_INSTALL_PAUSE_AT", Step}}, {},
			[&](pid_t Child, int ErrPipe, std::string& Err)
			{
				char Buffer[4096];
				ssize_t Count = 0;
				while (Err.find(Paused) == std::string::npos && (Count = read(ErrPipe, Buffer, sizeof(Buffer))) > 0)
				{
					Err.append(Buffer, static_cast<std::size_t>(Count));
				}
				if (Err.find(Paused) != std::string::npos)
				{
					kill(Child, Signal);
				}
			});
	}

	TEST(LodexInstallGuard, ASignalAtAnyStepPutsTheProjectBackByteForByteAndEndsWithItsStatus)
	{
		// Nine changes: five new module files and icons, a file and a link replaced, the backup replaced; new
		// folders on the way. The descriptor goes last.
		const struct
		{
			const char* Step;
			int Signal;
			const char* Status;
			int Exit;
			const char* Outcome;
		} Rows[] = {
			{"planned", SIGINT, "SIGINT", 130, "nothing was changed"},
			{"staged:1", SIGTERM, "SIGTERM", 143, "nothing was changed"},
			{"staged:9", SIGHUP, "SIGHUP", 129, "nothing was changed"},
			{"staged:descriptor", SIGINT, "SIGINT", 130, "nothing was changed"},
			{"moved:1", SIGTERM, "SIGTERM", 143, "the project was put back as it was"},
			{"moved:4", SIGHUP, "SIGHUP", 129, "the project was put back as it was"},
			{"moved:9", SIGINT, "SIGINT", 130, "the project was put back as it was"},
		};
		for (const auto& Row : Rows)
		{
			FProject Project;
			const std::string Outside = Project.Dir.Path + "/Outside/Info.png";
			Write(Outside, "an icon elsewhere");
			Write(Project.Plugin + "/Resources/Stop_icon.png", "an older Stop icon");
			fs::create_symlink(Outside, Project.Plugin + "/Resources/Info_icon.png");
			Write(Project.Plugin + "/UnrealCLR.uplugin.bak", "an older backup");
			const auto Before = Project.ProjectFiles();

			const FProcessRun Run = InstallSignalledAt(Project, Row.Step, Row.Signal);
			EXPECT_EQ(Printed(Run),
				"exit " + std::to_string(Row.Exit) + ": lodex: paused at " + Row.Step + "\nlodex: interrupted by " +
					Row.Status + "; " + Row.Outcome + "\n")
				<< Row.Step;
			EXPECT_EQ(Project.ProjectFiles(), Before) << Row.Step;
			EXPECT_EQ(FTempDir::Read(Outside), "an icon elsewhere") << Row.Step;
		}
	}

	std::string Nested(std::size_t Depth)
	{
		return "{\"Modules\": [], \"Deep\": " + std::string(Depth, '[') + std::string(Depth, ']') + "}";
	}

	TEST(LodexDescriptorDialect, TheEntryIsWrittenAsItsNeighboursAndKeysAndNamesMatchIgnoringCaseAsTheEngineReadsThem)
	{
		const std::string& Entry = CompactEntry;
		const std::string Bom = "\xEF\xBB\xBF";
		const struct
		{
			std::string Text;
			std::optional<std::string> Updated;
			std::string Note;
		} Rows[] = {
			// The entry is added into the text as its neighbours are written, and nothing else changes.
			{"{\"FileVersion\": 3}", "{\"FileVersion\": 3, \"Modules\": [" + Entry + "]}", ""},
			{"{}", "{\"Modules\": [" + Entry + "]}", ""},
			{Bom + "{\"Modules\": []}\n", Bom + "{\"Modules\": [" + Entry + "]}\n", ""},
			{"{\"Modules\": [{\"Name\": \"A\"}, {\"Name\": \"B\"}], \"N\": 0.10}",
				"{\"Modules\": [{\"Name\": \"A\"}, {\"Name\": \"B\"}, " + Entry + "], \"N\": 0.10}", ""},
			{"{\n\t\"Version\": 1.50,\n\t\"Big\": 1e2\n}\n",
				"{\n\t\"Version\": 1.50,\n\t\"Big\": 1e2,\n\t\"Modules\": [\n\t\t" + LodexEntry + "\n\t]\n}\n", ""},
			{"{\r\n\t\"Modules\": [ ]\r\n}\r\n",
				"{\r\n\t\"Modules\": [\r\n\t\t{\r\n\t\t\t\"Name\": \"LodexDebugger\",\r\n\t\t\t\"Type\": "
				"\"Editor\",\r\n\t\t\t\"LoadingPhase\": \"PostEngineInit\"\r\n\t\t}\r\n\t]\r\n}\r\n",
				""},
			{"{\n  \"Modules\": [\n    {\"Name\": \"UnrealCLR\"}\n  ]\n}",
				"{\n  \"Modules\": [\n    {\"Name\": \"UnrealCLR\"},\n    {\n      \"Name\": \"LodexDebugger\",\n      "
				"\"Type\": \"Editor\",\n      \"LoadingPhase\": \"PostEngineInit\"\n    }\n  ]\n}",
				""},
			// The engine's field map takes "modules" for "Modules".
			{"{\"modules\": [{\"Name\": \"UnrealCLR\"}]}", "{\"modules\": [{\"Name\": \"UnrealCLR\"}, " + Entry + "]}",
				""},
			// A later key of the same name, in any case, replaces an earlier one.
			{"{\"Modules\": [], \"MODULES\": [{\"Name\": \"UnrealCLR\"}]}",
				"{\"Modules\": [], \"MODULES\": [{\"Name\": \"UnrealCLR\"}, " + Entry + "]}", ""},
			{"{\"Modules\": [{\"Name\": \"LodexDebugger\"}], \"modules\": []}",
				"{\"Modules\": [{\"Name\": \"LodexDebugger\"}], \"modules\": [" + Entry + "]}", ""},
			{"{\"Modules\": [{\"name\": \"LodexDebugger\", \"TYPE\": \"editor\"}]}", std::nullopt, ""},
			{"{\"Modules\": [{\"NAME\": \"lodexdebugger\", \"type\": \"Runtime\"}]}", std::nullopt,
				"note: U already lists \"lodexdebugger\" with Type \"Runtime\"; it is left as it is"},
			{"{\"Modules\": [{\"Name\": \"LodexDebugger\", \"Type\": true}]}", std::nullopt,
				"note: U already lists \"LodexDebugger\" with Type true; it is left as it is"},
			// A comma after a list's last element, words in any case, control characters inside strings.
			{"{\"Modules\": [{\"Name\": \"UnrealCLR\"},]}",
				"{\"Modules\": [{\"Name\": \"UnrealCLR\"}, " + Entry + ",]}", ""},
			{"{\"A\": True, \"B\": NULL, \"C\": fAlSe, \"D\": [1, -0.5e+2,], \"Modules\": []}",
				"{\"A\": True, \"B\": NULL, \"C\": fAlSe, \"D\": [1, -0.5e+2,], \"Modules\": [" + Entry + "]}", ""},
			{"{\"Description\": \"a\tb\nc\x01\", \"Size\": -1e999}",
				"{\"Description\": \"a\tb\nc\x01\", \"Size\": -1e999, \"Modules\": [" + Entry + "]}", ""},
			{Nested(LodexMaxDescriptorDepth - 1), Nested(LodexMaxDescriptorDepth - 1).insert(13, Entry), ""},
		};
		for (const auto& Row : Rows)
		{
			FDescriptorUpdate Update;
			std::string Error;
			ASSERT_TRUE(PlanDescriptorUpdate(Row.Text, "U", Update, Error)) << Row.Text << ": " << Error;
			EXPECT_EQ(Update.NewText, Row.Updated) << Row.Text;
			EXPECT_EQ(Update.ExistingEntryNote, Row.Note) << Row.Text;
		}
	}

	TEST(LodexDescriptorDialect, RefusesWhatTheEngineRefusesAndNestingPastTheLimitHoweverDeepInOneLine)
	{
		const std::pair<std::string, std::string> Rows[] = {
			{"{\"Modules\": [], }", "U:1:17: not valid JSON: expected a string to name the member"},
			{"{\"Modules\": [1,,2]}", "U:1:16: not valid JSON: expected a value"},
			{"{\"Modules\": [,]}", "U:1:14: not valid JSON: expected a value"},
			{"{\"A\": tru}", "U:1:7: not valid JSON: 'tru' is not a value (a name needs quotes)"},
			{"{\"A\": 01}", "U:1:7: not valid JSON: not a JSON number"},
			{"{\"A\": \"\\x\"}", "U:1:8: not valid JSON: a backslash before a character that has no escape"},
			{"{\"A\": \"\\u12G4\"}", "U:1:12: not valid JSON: a \\u escape needs four hexadecimal digits"},
			{"{\"A\": \"open}", "U:1:7: not valid JSON: the text ends inside this string"},
			{"{\"A\": 1} {}", "U:1:10: not valid JSON: more text after the end of the root value"},
			{"\"Modules\"", "U:1:1: not valid JSON: expected '{' or '[' to begin the text"},
			{"[{\"Modules\": []}]", "U: the descriptor is a JSON array, not an object"},
			{"{\"modules\": {}}", "U: \"modules\" is a JSON object, not a list"},
			{"{\"A\": \"\xC3\"}", "U:1:8: not valid JSON: bytes that are not UTF-8"},
			{std::string("{\"A\": \"\0\"}", 10), "U:1:8: not valid JSON: a NUL byte"},
			{Nested(LodexMaxDescriptorDepth),
				"U:1:" + std::to_string(24 + LodexMaxDescriptorDepth) +
					": nested deeper than 256 levels, the most lodex reads"},
			// However deep the text goes, the reading ends at the limit.
			{Nested(70000), "U:1:280: nested deeper than 256 levels, the most lodex reads"},
		};
		for (const auto& [Text, Said] : Rows)
		{
			FDescriptorUpdate Update;
			std::string Error;
			EXPECT_FALSE(PlanDescriptorUpdate(Text, "U", Update, Error)) << Text;
			EXPECT_EQ(Error, Said) << Text;
		}
	}
}
