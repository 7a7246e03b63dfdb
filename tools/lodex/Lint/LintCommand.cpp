// Copyright Lodex contributors.
#include "LintCommand.h"

#include "CSharpLiterals.h"
#include "Cli/AtomicFile.h"
#include "Cli/LodexCli.h"
#include "Cli/TextTable.h"
#include "Cli/WholeFile.h"
#include "Diff/DiffCommand.h"
#include "LintBaseline.h"
#include "LintFix.h"
#include "LintGithub.h"
#include "LintJunit.h"
#include "LintProject.h"
#include "LintSarif.h"
#include "LodexTool.h"
#include "Scenes/SceneEvaluation.h"
#include "Scenes/SceneOptions.h"

#include "LodexDebugger/Core/Lodestring/LodexBestLocator.h"
#include "LodexDebugger/Core/Lodestring/LodexSceneIndex.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <system_error>
#include <thread>

namespace
{
	const char* SeverityText(ELodexLintSeverity Severity)
	{
		return GetLodexLintSeverityText(Severity);
	}

	std::string Counted(std::size_t Count, const char* One, const char* Many)
	{
		return std::to_string(Count) + " " + (Count == 1 ? One : Many);
	}
}

bool LintReportFails(const FLodexLintReport& Report, bool bStrict)
{
	return Report.Errors > 0 || (bStrict && Report.Warnings > 0);
}

std::string FormatLintReportText(const FLodexLintReport& Report, bool bStrict)
{
	std::string Text;
	for (const FLodexLintDiagnostic& Diagnostic : Report.Diagnostics)
	{
		const std::string Where =
			Diagnostic.File + ":" + std::to_string(Diagnostic.Line) + ":" + std::to_string(Diagnostic.Column) + ": ";
		Text += Where + SeverityText(Diagnostic.Severity) + ": " + GetLintMessageWithSuggestion(Diagnostic) + " [" +
			Diagnostic.Rule + "]\n";
		for (const std::string& Note : Diagnostic.Notes)
		{
			Text += Where + "note: " + Note + "\n";
		}
	}
	return Text + FormatLintSummary(Report, bStrict);
}

std::string FormatLintSummary(const FLodexLintReport& Report, bool bStrict)
{
	std::string Text = "Checked " + Counted(Report.Checked, "Lodestring", "Lodestrings") + " in " +
		Counted(Report.Files, "file", "files") +
		(Report.bCountsLevels ? " against " + Counted(Report.Levels, "level", "levels") : std::string()) + ": ";
	const std::string Notes = Report.Notes > 0 ? ", " + Counted(Report.Notes, "note", "notes") : std::string();
	if (Report.Errors == 0 && Report.Warnings == 0)
	{
		return Text + "no errors, no warnings" + Notes + "\n";
	}
	Text += Counted(Report.Errors, "error", "errors") + ", " + Counted(Report.Warnings, "warning", "warnings") + Notes;
	return Text + (bStrict && Report.Warnings > 0 ? " (warnings fail with --strict)\n" : "\n");
}

std::string FormatLintRuleList()
{
	FTextTable Table({"rule", "severity", "summary"});
	for (const FLodexLintRule& Rule : GetLodexLintRules())
	{
		Table.AddRow({Rule.Id, SeverityText(Rule.Severity), Rule.Summary});
	}
	return Table.Render();
}

std::string GetLintRelativePath(const std::string& File, const std::string& Root)
{
	std::error_code Error;
	const std::filesystem::path Base = std::filesystem::absolute(Root.empty() ? "." : Root, Error).lexically_normal();
	const std::filesystem::path Path = std::filesystem::absolute(File, Error).lexically_normal();
	const std::filesystem::path Relative = Path.lexically_relative(Base);
	const std::string Shown = Relative.generic_string();
	if (Error || Relative.empty() || Shown == ".." || Shown.rfind("../", 0) == 0)
	{
		return std::filesystem::path(File).generic_string(); // not under the root: as given
	}
	return Shown;
}

std::string GetLintMessageWithSuggestion(const FLodexLintDiagnostic& Diagnostic)
{
	return Diagnostic.Suggestion.empty() ? Diagnostic.Message
										 : Diagnostic.Message + "; suggested: " + Diagnostic.Suggestion;
}

bool IsFailingLintDiagnostic(const FLodexLintDiagnostic& Diagnostic, bool bStrict)
{
	return Diagnostic.Severity == ELodexLintSeverity::Error ||
		(bStrict && Diagnostic.Severity == ELodexLintSeverity::Warning);
}

std::string FormatLintReportJson(const FLodexLintReport& Report, bool bStrict)
{
	nlohmann::ordered_json Diagnostics = nlohmann::ordered_json::array();
	for (const FLodexLintDiagnostic& Diagnostic : Report.Diagnostics)
	{
		nlohmann::ordered_json Item;
		Item["file"] = Diagnostic.File;
		Item["line"] = Diagnostic.Line;
		Item["column"] = Diagnostic.Column;
		Item["severity"] = SeverityText(Diagnostic.Severity);
		Item["rule"] = Diagnostic.Rule;
		Item["message"] = Diagnostic.Message;
		Item["lodestring"] = Diagnostic.Lodestring;
		Item["method"] = Diagnostic.Method;
		if (Report.bCountsLevels)
		{
			Item["level"] =
				Diagnostic.Level.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(Diagnostic.Level);
		}
		Item["matches"] = Diagnostic.MatchCount;
		Item["suggestion"] =
			Diagnostic.Suggestion.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(Diagnostic.Suggestion);
		Item["notes"] = Diagnostic.Notes;
		Diagnostics.push_back(std::move(Item));
	}
	nlohmann::ordered_json Json;
	Json["files"] = Report.Files;
	Json["checked"] = Report.Checked;
	if (Report.bCountsLevels)
	{
		Json["levels"] = Report.Levels;
	}
	Json["errors"] = Report.Errors;
	Json["warnings"] = Report.Warnings;
	Json["notes"] = Report.Notes;
	Json["strict"] = bStrict;
	Json["passed"] = !LintReportFails(Report, bStrict);
	Json["diagnostics"] = std::move(Diagnostics);
	// A locator that is not UTF-8 is shown with U+FFFD where its bytes are not text.
	return Json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

namespace
{
	/** The files named, and the ".cs" files under the folders named (in name order); false on the first unreadable one.
	 */
	bool ReadTestFiles(
		const std::vector<std::string>& Paths, std::vector<FLodexLintTestFile>& OutFiles, std::string& OutError)
	{
		std::vector<std::string> Files;
		for (const std::string& Path : Paths)
		{
			std::error_code Error;
			if (!std::filesystem::is_directory(Path, Error))
			{
				Files.push_back(Path);
				continue;
			}
			std::vector<std::string> Found;
			std::filesystem::recursive_directory_iterator It(Path, Error);
			for (; !Error && It != std::filesystem::recursive_directory_iterator(); It.increment(Error))
			{
				if (It->is_regular_file(Error) && It->path().extension() == ".cs")
				{
					Found.push_back(It->path().string());
				}
			}
			if (Error)
			{
				OutError = Path + ": cannot read the folder";
				return false;
			}
			std::sort(Found.begin(), Found.end());
			Files.insert(Files.end(), Found.begin(), Found.end());
		}
		for (const std::string& Path : Files)
		{
			std::string Text;
			if (!ReadWholeFile(Path, Text, OutError, {LodexMaxTextFileBytes, "a C# test file", false}))
			{
				return false;
			}
			OutFiles.push_back({Path, std::move(Text)});
		}
		return true;
	}

	/** The report in one of the formats `--format` names. */
	std::string FormatLintReport(
		const std::string& Format, const FLodexLintReport& Report, const FLodexLintFormatOptions& Options)
	{
		if (Format == "json")
		{
			return FormatLintReportJson(Report, Options.bStrict);
		}
		if (Format == "sarif")
		{
			return FormatLintReportSarif(Report, Options);
		}
		if (Format == "junit")
		{
			return FormatLintReportJunit(Report, Options);
		}
		if (Format == "github")
		{
			return FormatLintReportGithub(Report, Options);
		}
		return FormatLintReportText(Report, Options.bStrict);
	}

	/** A file as a patch names it: relative to the current folder, where `git apply` runs, when it lies below it. */
	std::string PatchPath(const std::string& File)
	{
		std::filesystem::path Path = std::filesystem::path(File).lexically_normal();
		std::error_code Code;
		if (Path.is_absolute())
		{
			const std::filesystem::path Relative = Path.lexically_relative(std::filesystem::current_path(Code));
			if (!Code && !Relative.empty() && *Relative.begin() != "..")
			{
				Path = Relative;
			}
		}
		return Path.generic_string();
	}

	/** The scene is optional: --project names the levels instead. */
	constexpr FSceneOptionLayout LintSceneLayout{"--scene", LodexSceneFileHelp, SceneVerboseNotes};

	class FLintCommand final : public ILodexCommand
	{
	public:
		CLI::App* Register(CLI::App& Parent) override
		{
			CLI::App* Sub = Parent.add_subcommand("lint",
				"Check the Lodestrings that C# tests pass to api calls: each must match exactly one object of the "
				"scene, or of the level the test loads");
			SceneFile.DeclareScene(*Sub);
			Sub->add_option("--project", Project,
				"Game project folder: each test is checked against the levels its api.LoadLevel calls name");
			SceneFile.DeclareLevelFlags(*Sub);
			Sub->add_option("tests", Tests, "C# files, or folders searched for .cs files");
			Sub->add_flag("--strict", bStrict, "Warnings fail the run as errors do");
			Sub->add_option("--max-depth", Options.MaxAbsoluteDepth,
				   "The most steps from the root, before any //, a locator may name without a warning")
				->check(CLI::PositiveNumber)
				->default_val(Options.MaxAbsoluteDepth);
			Sub->add_option("--format", Format,
				   "text (file:line:col: lines), json, sarif (code scanning), junit (test reports) or github "
				   "(workflow commands)")
				->check(CLI::IsMember({"text", "json", "sarif", "junit", "github"}))
				->default_val(Format);
			// lint against the level before (docs/diff.md)
			Sub->add_option("--baseline", Baseline,
				"The level before the change (a file, or REV:PATH): a Lodestring that found one object on it and "
				"finds none or several now is the error broken-by-change");
			// A flag, not an option: "--fix Tests/" names a test folder, never --fix's value.
			Sub->add_flag("--fix{diff}", Fix,
				   "With --baseline: repair each broken Lodestring whose object is still in the level, as a unified "
				   "diff on standard output (--fix) or in the files themselves (--fix=write)")
				->check(CLI::IsMember({"diff", "write"}));
			Sub->add_option(
				"-o,--output", Output, "Write the report to this file (the summary goes to standard error)");
			Sub->add_option("--root", FormatOptions.Root,
				"The folder the paths of sarif, junit and github reports are relative to (default: the current one)");
			Sub->add_option("--jobs", Jobs,
				   "With --project: how many levels and files to read at once (default: the "
				   "machine's cores)")
				->check(CLI::PositiveNumber);
			Sub->add_flag("--list-rules", bListRules, "List the rules, their severity and what they flag, and stop");
			Sub->callback(
				[this]
				{
					if (bListRules)
					{
						return;
					}
					if (!SceneFile.IsGiven() && Project.empty())
					{
						throw CLI::RequiredError("--scene (or --project)");
					}
					if (!Baseline.empty() && !SceneFile.IsGiven())
					{
						throw CLI::ValidationError("--baseline", "needs --scene: the level after the change");
					}
					if (!Fix.empty() && Baseline.empty())
					{
						throw CLI::ValidationError("--fix", "needs --baseline: the level before the change");
					}
					if (Tests.empty())
					{
						throw CLI::RequiredError("tests");
					}
				});
			return Sub;
		}

		int Run(FLodexCliIo& Io) override
		{
			if (bListRules)
			{
				Io.Out << FormatLintRuleList();
				return LodexExitOk;
			}
			FSceneFile SceneRead;
			std::unique_ptr<FLodexSceneIndex> SceneIndex;
			std::unique_ptr<FLodexBestLocatorFinder> SceneFinder;
			FLodexLintTarget SceneTarget;
			if (SceneFile.IsGiven())
			{
				if (!SceneFile.Load(SceneRead, Io.Err))
				{
					return LodexExitFailure;
				}
				SceneIndex = IndexSceneSnapshot(SceneRead.Scene);
				SceneFinder = std::make_unique<FLodexBestLocatorFinder>(*SceneIndex);
				SceneTarget.Index = SceneIndex.get();
				SceneTarget.Finder = SceneFinder.get();
				// A level holds what is saved: an object spawned at play time is not in it.
				SceneTarget.bHoldsOnlyPlaced = SceneRead.bIsLevel;
			}
			std::string Error;
			std::vector<FLodexLintTestFile> Files;
			if (!ReadTestFiles(Tests, Files, Error))
			{
				Io.Err << "lodex: " << Error << "\n";
				return LodexExitFailure;
			}

			// lint against the level before (docs/diff.md)
			FSceneFile BaselineRead;
			std::unique_ptr<FLodexSceneIndex> BaselineIndex;
			std::unique_ptr<FLintBaselineCheck> BaselineCheck;
			if (!Baseline.empty())
			{
				FSceneFileOptions BaselineFile = SceneFile;
				BaselineFile.Path = Baseline;
				if (!LoadSceneSideFor(BaselineFile, BaselineRead, Io.Err))
				{
					return LodexExitFailure;
				}
				BaselineIndex = IndexSceneSnapshot(BaselineRead.Scene);
				BaselineCheck = std::make_unique<FLintBaselineCheck>(
					BaselineRead.Scene, *BaselineIndex, SceneRead.Scene, *SceneIndex, *SceneFinder);
				SceneTarget.LiteralCheck = BaselineCheck.get();
			}
			FLodexLintReport Report;
			if (!Project.empty())
			{
				if (!RunProject(Files, SceneIndex ? &SceneTarget : nullptr, Report, Io))
				{
					return LodexExitFailure;
				}
			}
			else
			{
				Options.bSceneHoldsOnlyPlaced = SceneTarget.bHoldsOnlyPlaced;
				for (const FLodexLintTestFile& File : Files)
				{
					LintCSharpSource(
						*SceneIndex, *SceneFinder, File.Path, File.Text, Options, Report, SceneTarget.LiteralCheck);
				}
			}
			FormatOptions.bStrict = bStrict;
			const std::string Text = FormatLintReport(Format, Report, FormatOptions);
			// With --fix the patch takes standard output: the report goes to standard error (or to -o's file).
			std::ostream& ReportOut = Fix == "diff" ? Io.Err : Io.Out;
			if (!Fix.empty() && !WriteRepairs(*BaselineCheck, Files, Io))
			{
				if (Output.empty())
				{
					Io.Err << Text;
				}
				return LodexExitFailure;
			}
			if (!Output.empty())
			{
				if (!WriteFileAtomically(Output, Text, Error))
				{
					Io.Err << "lodex: " << Error << "\n";
					return LodexExitFailure;
				}
			}
			else
			{
				ReportOut << Text;
			}
			// The summary of a report that is not the text on standard output goes to standard error.
			if (!Output.empty() || Format != "text")
			{
				Io.Err << FormatLintSummary(Report, bStrict);
			}
			return LintReportFails(Report, bStrict) ? LodexExitFailure : LodexExitOk;
		}

	private:
		bool RunProject(const std::vector<FLodexLintTestFile>& Files, const FLodexLintTarget* Scene,
			FLodexLintReport& Report, FLodexCliIo& Io)
		{
			std::error_code Code;
			if (!std::filesystem::is_directory(Project, Code))
			{
				Io.Err << "lodex: " << Project << ": not a project folder\n";
				return false;
			}
			FLodexLintProjectOptions ProjectOptions;
			ProjectOptions.Project = Project;
			ProjectOptions.bNoSubLevels = SceneFile.bNoSubLevels;
			ProjectOptions.bVerbose = SceneFile.bVerbose;
			ProjectOptions.Jobs = Jobs > 0 ? Jobs : std::max(1u, std::thread::hardware_concurrency());
			ProjectOptions.Lint = Options;
			std::vector<std::string> Notes;
			std::string Error;
			const bool bOk = LintProjectFiles(Files, ProjectOptions, Scene, Report, Notes, Error);
			WriteLodexNotes(Notes, Io.Err);
			if (!bOk)
			{
				Io.Err << "lodex: " << Error << "\n";
			}
			return bOk;
		}

		/** --fix: the patch on standard output, or each file rewritten at once; false when a file cannot be. */
		bool WriteRepairs(
			const FLintBaselineCheck& Check, const std::vector<FLodexLintTestFile>& Files, FLodexCliIo& Io)
		{
			std::vector<std::string> Paths;
			std::vector<std::string> Texts;
			for (const FLodexLintTestFile& File : Files)
			{
				if (DecodeCSharpSourceBytes(File.Text) != File.Text)
				{
					// Its findings are placed in its text decoded to UTF-8, not in its bytes.
					Io.Err << "lodex: note: " << File.Path << ": a UTF-16 file: its repairs are not written\n";
					continue;
				}
				Paths.push_back(File.Path);
				Texts.push_back(File.Text);
			}
			std::string Patch;
			std::vector<FStagedFile> Staged;
			std::vector<std::string> Written;
			for (const FLintFileRepair& Repair : RepairLintFiles(Check.GetBroken(), Paths, Texts))
			{
				WriteLodexNotes(Repair.Skipped, Io.Err);
				if (Repair.Repairs == 0)
				{
					continue;
				}
				if (Fix == "diff")
				{
					Patch += MakeUnifiedDiff(PatchPath(Repair.File), Repair.Before, Repair.After);
					continue;
				}
				// Every file is staged before any is replaced: a file that cannot be written leaves all as they were.
				std::string Error;
				Staged.emplace_back();
				if (!Staged.back().Stage(Repair.File, Repair.After, FAtomicFileOptions(), Error))
				{
					Io.Err << "lodex: " << Error << "\n";
					return false;
				}
				Written.push_back("lodex: repaired " + std::to_string(Repair.Repairs) +
					(Repair.Repairs == 1 ? " Lodestring in " : " Lodestrings in ") + Repair.File + "\n");
			}
			for (std::size_t Index = 0; Index < Staged.size(); ++Index)
			{
				std::string Error;
				if (!Staged[Index].Commit(Error))
				{
					Io.Err << "lodex: " << Error << "\n";
					return false;
				}
				Io.Err << Written[Index];
			}
			Io.Out << Patch;
			return true;
		}

		std::string Baseline;
		std::string Fix;
		FCommandSceneOptions SceneFile{LintSceneLayout};
		std::string Project;
		std::vector<std::string> Tests;
		bool bStrict = false;
		bool bListRules = false;
		unsigned Jobs = 0;
		FLodexLintOptions Options;
		std::string Format = "text";
		std::string Output;
		FLodexLintFormatOptions FormatOptions;
	};
}

std::unique_ptr<ILodexCommand> MakeLintCommand()
{
	return std::make_unique<FLintCommand>();
}
