// Copyright Lodex contributors.
#include "LintCommand.h"

#include "CSharpLiterals.h"
#include "Cli/AtomicFile.h"
#include "Cli/LodexCli.h"
#include "Diff/DiffCommand.h"
#include "LintBaseline.h"
#include "LintFix.h"
#include "LodexTool.h"
#include "Scenes/SceneEvaluation.h"
#include "Scenes/SceneFile.h"
#include "Cli/WholeFile.h"

#include "LodexDebugger/Core/Lodestring/LodexBestLocator.h"
#include "LodexDebugger/Core/Lodestring/LodexSceneIndex.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace
{
	const char* SeverityText(ELodexLintSeverity Severity)
	{
		return Severity == ELodexLintSeverity::Error  ? "error"
			: Severity == ELodexLintSeverity::Warning ? "warning"
													  : "note";
	}

	std::string Counted(std::size_t Count, const char* One, const char* Many)
	{
		return std::to_string(Count) + " " + (Count == 1 ? One : Many);
	}
}

void LintCSharpSource(const FLodexSceneIndex& Index, const FLodexBestLocatorFinder& Finder, const std::string& FileName,
	const std::string& Source, const FLodexLintOptions& Options, FLodexLintReport& Report,
	ILodexLintLiteralCheck* LiteralCheck)
{
	++Report.Files;
	for (const FCSharpApiString& Literal : FindApiStringArguments(Source))
	{
		if (Literal.Value.empty() || Literal.Value[0] != '/')
		{
			continue; // not a Lodestring: a method name, a value
		}
		++Report.Checked;
		FLodexLintOptions CallOptions = Options;
		CallOptions.bExpectsOneObject = LodexLintExpectsOneObject(Literal.Method);
		FLodexLintResult Result = LintLodestring(Index, Finder, Literal.Value, CallOptions);
		FLodexLintFinding Changed;
		if (LiteralCheck != nullptr && LiteralCheck->Check(FileName, Literal, CallOptions.bExpectsOneObject, Changed))
		{
			std::vector<FLodexLintFinding>& Findings = Result.Findings;
			Findings.erase(std::remove_if(Findings.begin(), Findings.end(),
							   [](const FLodexLintFinding& Finding)
							   {
								   const std::string Rule = Finding.Rule;
								   return Rule == LodexLintRules::NoMatch || Rule == LodexLintRules::Ambiguous ||
									   Rule == LodexLintRules::NotInLevel;
							   }),
				Findings.end());
			Findings.insert(Findings.begin(), std::move(Changed));
		}
		for (const FLodexLintFinding& Finding : Result.Findings)
		{
			FLodexLintDiagnostic Diagnostic;
			Diagnostic.File = FileName;
			// Where the part of the locator it is about begins in the file (an escape: where the escape begins).
			if (Finding.Span.Begin < Literal.ValueOffsets.size())
			{
				const FCSharpPosition Position =
					GetCSharpSourcePosition(Source, Literal.ValueOffsets[Finding.Span.Begin]);
				Diagnostic.Line = Position.Line;
				Diagnostic.Column = Position.Column;
			}
			else
			{
				Diagnostic.Line = Literal.Line;
				Diagnostic.Column = Literal.Column;
			}
			Diagnostic.Severity = Finding.Severity;
			Diagnostic.Rule = Finding.Rule;
			Diagnostic.Message = Finding.Message;
			Diagnostic.Lodestring = ShowLodestringOnOneLine(Literal.Value);
			Diagnostic.Method = Literal.Method;
			Diagnostic.MatchCount = Result.MatchCount;
			Diagnostic.Suggestion = ShowLodestringOnOneLine(Finding.Suggestion);
			Diagnostic.Notes = Finding.Notes;
			(Finding.Severity == ELodexLintSeverity::Error            ? Report.Errors
					: Finding.Severity == ELodexLintSeverity::Warning ? Report.Warnings
																	  : Report.Notes) += 1;
			Report.Diagnostics.push_back(std::move(Diagnostic));
		}
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
		Text += Where + SeverityText(Diagnostic.Severity) + ": " + Diagnostic.Message;
		if (!Diagnostic.Suggestion.empty())
		{
			Text += "; suggested: " + Diagnostic.Suggestion;
		}
		Text += " [" + Diagnostic.Rule + "]\n";
		for (const std::string& Note : Diagnostic.Notes)
		{
			Text += Where + "note: " + Note + "\n";
		}
	}
	Text += "Checked " + Counted(Report.Checked, "Lodestring", "Lodestrings") + " in " +
		Counted(Report.Files, "file", "files") + ": ";
	const std::string Notes = Report.Notes > 0 ? ", " + Counted(Report.Notes, "note", "notes") : std::string();
	if (Report.Errors == 0 && Report.Warnings == 0)
	{
		Text += "no errors, no warnings" + Notes + "\n";
		return Text;
	}
	Text += Counted(Report.Errors, "error", "errors") + ", " + Counted(Report.Warnings, "warning", "warnings") + Notes;
	Text += bStrict && Report.Warnings > 0 ? " (warnings fail with --strict)\n" : "\n";
	return Text;
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
		Item["matches"] = Diagnostic.MatchCount;
		Item["suggestion"] =
			Diagnostic.Suggestion.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(Diagnostic.Suggestion);
		Item["notes"] = Diagnostic.Notes;
		Diagnostics.push_back(std::move(Item));
	}
	nlohmann::ordered_json Json;
	Json["files"] = Report.Files;
	Json["checked"] = Report.Checked;
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
	struct FTestFile
	{
		std::string Path;
		std::string Text;
	};

	/** The files named, and the ".cs" files under the folders named (in name order); false on the first unreadable one.
	 */
	bool ReadTestFiles(const std::vector<std::string>& Paths, std::vector<FTestFile>& OutFiles, std::string& OutError)
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
			if (!ReadWholeFile(Path, Text, OutError))
			{
				return false;
			}
			OutFiles.push_back({Path, std::move(Text)});
		}
		return true;
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

	class FLintCommand final : public ILodexCommand
	{
	public:
		CLI::App* Register(CLI::App& Parent) override
		{
			CLI::App* Sub = Parent.add_subcommand("lint",
				"Check the Lodestrings that C# tests pass to api calls: each must match exactly one object of the "
				"scene");
			Sub->add_option("--scene", SceneFile.Path, "Scene file: a snapshot (JSON) or a level (.umap)")->required();
			Sub->add_flag("--no-sublevels", SceneFile.bNoSubLevels, LodexNoSubLevelsHelp);
			Sub->add_option("tests", Tests, "C# files, or folders searched for .cs files")->required();
			Sub->add_flag("--strict", bStrict, "Warnings fail the run as errors do");
			Sub->add_option("--max-depth", Options.MaxAbsoluteDepth,
				   "The most steps from the root, before any //, a locator may name without a warning")
				->check(CLI::PositiveNumber)
				->default_val(Options.MaxAbsoluteDepth);
			Sub->add_option("--format", Format, "text (file:line:col: lines) or json")
				->check(CLI::IsMember({"text", "json"}))
				->default_val(Format);
			// lint against the level before (docs/diff.md)
			Sub->add_option("--baseline", Baseline,
				"The level before the change (a file, or REV:PATH): a Lodestring that found one object on it and "
				"finds none or several now is the error broken-by-change");
			Sub->add_option("--fix", Fix,
				   "With --baseline: repair each broken Lodestring whose object is still in the level, as a unified "
				   "diff on standard output (--fix) or in the files themselves (--fix=write)")
				->expected(0, 1)
				->default_str("diff")
				->check(CLI::IsMember({"diff", "write"}));
			return Sub;
		}

		int Run(FLodexCliIo& Io) override
		{
			FSceneFile SceneRead;
			if (!LoadSceneFileFor(SceneFile, SceneRead, Io.Err))
			{
				return LodexExitFailure;
			}
			const FSceneSnapshot& Scene = SceneRead.Scene;
			// A level holds what is saved: an object spawned at play time is not in it.
			Options.bSceneHoldsOnlyPlaced = SceneRead.bIsLevel;
			std::string Error;
			std::vector<FTestFile> Files;
			if (!ReadTestFiles(Tests, Files, Error))
			{
				Io.Err << "lodex: " << Error << "\n";
				return LodexExitFailure;
			}

			const std::unique_ptr<FLodexSceneIndex> Index = IndexSceneSnapshot(Scene);
			const FLodexBestLocatorFinder Finder(*Index);
			// lint against the level before (docs/diff.md)
			if (!Fix.empty() && Baseline.empty())
			{
				Io.Err << "lodex: --fix needs --baseline: the level before the change\n";
				return LodexExitUsage;
			}
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
				BaselineCheck =
					std::make_unique<FLintBaselineCheck>(BaselineRead.Scene, *BaselineIndex, Scene, *Index, Finder);
			}
			FLodexLintReport Report;
			for (const FTestFile& File : Files)
			{
				LintCSharpSource(*Index, Finder, File.Path, File.Text, Options, Report, BaselineCheck.get());
			}
			const std::string Shown =
				Format == "json" ? FormatLintReportJson(Report, bStrict) : FormatLintReportText(Report, bStrict);
			if (!Fix.empty() && !WriteRepairs(*BaselineCheck, Files, Io))
			{
				Io.Err << Shown;
				return LodexExitFailure;
			}
			(Fix == "diff" ? Io.Err : Io.Out) << Shown;
			return LintReportFails(Report, bStrict) ? LodexExitFailure : LodexExitOk;
		}

	private:
		/** --fix: the patch on standard output, or each file rewritten at once; false when a file cannot be. */
		bool WriteRepairs(const FLintBaselineCheck& Check, const std::vector<FTestFile>& Files, FLodexCliIo& Io)
		{
			std::vector<std::string> Paths;
			std::vector<std::string> Texts;
			for (const FTestFile& File : Files)
			{
				Paths.push_back(File.Path);
				Texts.push_back(File.Text);
			}
			std::string Patch;
			std::vector<FStagedFile> Staged;
			std::vector<std::string> Written;
			for (const FLintFileRepair& Repair : RepairLintFiles(Check.GetBroken(), Paths, Texts))
			{
				for (const std::string& Skipped : Repair.Skipped)
				{
					Io.Err << "lodex: note: " << Skipped << "\n";
				}
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
		FSceneFileOptions SceneFile;
		std::vector<std::string> Tests;
		bool bStrict = false;
		FLodexLintOptions Options;
		std::string Format = "text";
	};
}

std::unique_ptr<ILodexCommand> MakeLintCommand()
{
	return std::make_unique<FLintCommand>();
}
