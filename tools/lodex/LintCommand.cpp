// Copyright Lodex contributors.
#include "LintCommand.h"

#include "CSharpLiterals.h"
#include "LodexCli.h"
#include "SceneEvaluation.h"
#include "SceneSnapshot.h"
#include "WholeFile.h"

#include "LodexDebugger/Core/Evaluation/LodestringEvaluator.h"
#include "LodexDebugger/Core/Evaluation/LodexMatchNotice.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace
{
	/** A Lodestring as the report shows it: control characters as C# escapes, so that each report is one line. */
	std::string ShowLintedLodestring(const std::string& Lodestring)
	{
		static const char Hex[] = "0123456789ABCDEF";
		std::string Shown;
		for (const char Char : Lodestring)
		{
			const unsigned char Byte = static_cast<unsigned char>(Char);
			if (Byte >= 0x20)
			{
				Shown += Char;
			}
			else if (Char == '\0' || Char == '\t' || Char == '\n' || Char == '\r')
			{
				Shown += Char == '\0' ? "\\0" : (Char == '\t' ? "\\t" : (Char == '\n' ? "\\n" : "\\r"));
			}
			else
			{
				Shown += std::string("\\u00") + Hex[Byte >> 4] + Hex[Byte & 0xF];
			}
		}
		return Shown;
	}
}

void LintCSharpSource(const FLodexSceneIndex& Index, const std::string& FileName, const std::string& Source,
	FLodexLintCounts& Counts, std::string& Report)
{
	for (const FCSharpApiString& Literal : FindApiStringArguments(Source))
	{
		if (Literal.Value.empty() || Literal.Value[0] != '/')
		{
			continue; // not a Lodestring: a method name, a value
		}
		++Counts.Checked;
		const std::string Where = FileName + ":" + std::to_string(Literal.Line) + ": ";
		if (!LodexText::IsUtf8(Literal.Value))
		{
			++Counts.Problems;
			Report += Where + "the Lodestring is not UTF-8 text; save the file as UTF-8\n";
			continue;
		}
		const FLodexEvaluation Evaluation = EvaluateLodestring(Index, Literal.Value);
		if (!IsUniqueLodestringMatch(Evaluation))
		{
			++Counts.Problems;
			Report += Where + DescribeLodestringCheck(ShowLintedLodestring(Literal.Value), Evaluation) + "\n";
		}
	}
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

	class FLintCommand final : public ILodexCommand
	{
	public:
		CLI::App* Register(CLI::App& Parent) override
		{
			CLI::App* Sub = Parent.add_subcommand("lint",
				"Check the Lodestrings that C# tests pass to api calls: each must match exactly one object of the "
				"scene");
			Sub->add_option("--scene", ScenePath, "Scene snapshot file (JSON)")->required();
			Sub->add_option("tests", Tests, "C# files, or folders searched for .cs files")->required();
			return Sub;
		}

		int Run(FLodexCliIo& Io) override
		{
			FSceneSnapshot Scene;
			std::string Error;
			if (!FSceneSnapshot::LoadFile(ScenePath, Scene, Error))
			{
				Io.Err << "lodex: " << Error << "\n";
				return LodexExitFailure;
			}
			std::vector<FTestFile> Files;
			if (!ReadTestFiles(Tests, Files, Error))
			{
				Io.Err << "lodex: " << Error << "\n";
				return LodexExitFailure;
			}

			const std::unique_ptr<FLodexSceneIndex> Index = IndexSceneSnapshot(Scene);
			FLodexLintCounts Counts;
			std::string Report;
			for (const FTestFile& File : Files)
			{
				LintCSharpSource(*Index, File.Path, File.Text, Counts, Report);
			}
			const std::size_t Checked = Counts.Checked;
			const std::size_t Problems = Counts.Problems;
			Report += "Checked " + std::to_string(Checked) + (Checked == 1 ? " Lodestring" : " Lodestrings") + " in " +
				std::to_string(Files.size()) + (Files.size() == 1 ? " file: " : " files: ");
			if (Problems == 0)
			{
				Report += "each matches exactly one object\n";
			}
			else
			{
				Report += std::to_string(Problems) +
					(Problems == 1 ? " does not match exactly one object\n" : " do not match exactly one object\n");
			}
			Io.Out << Report;
			return Problems == 0 ? LodexExitOk : LodexExitFailure;
		}

	private:
		std::string ScenePath;
		std::vector<std::string> Tests;
	};
}

std::unique_ptr<ILodexCommand> MakeLintCommand()
{
	return std::make_unique<FLintCommand>();
}
