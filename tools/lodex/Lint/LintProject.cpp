// Copyright Lodex contributors.
// `lodex lint --project`: each test checked against the levels it loads, each level read once, in parallel.
#include "LintProject.h"

#include "CSharpLiterals.h"
#include "Scenes/ContentFiles.h"
#include "Scenes/SceneEvaluation.h"
#include "Scenes/SceneFile.h"

#include "LodexDebugger/Core/Lodestring/LodexBestLocator.h"
#include "LodexDebugger/Core/Lodestring/LodexSceneIndex.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <system_error>
#include <thread>

namespace fs = std::filesystem;

namespace
{
	/** Runs Work(0) to Work(Count - 1) on up to Jobs threads; each index once, in no set order. */
	void RunLintJobs(std::size_t Count, unsigned Jobs, const std::function<void(std::size_t)>& Work)
	{
		std::atomic<std::size_t> Next{0};
		const auto Worker = [&]
		{
			for (std::size_t Index = Next++; Index < Count; Index = Next++)
			{
				Work(Index);
			}
		};
		const std::size_t Threads = std::min<std::size_t>(std::max(1u, Jobs), Count);
		std::vector<std::thread> Started;
		for (std::size_t Thread = 1; Thread < Threads; ++Thread)
		{
			Started.emplace_back(Worker);
		}
		Worker();
		for (std::thread& Thread : Started)
		{
			Thread.join();
		}
	}

	/** A level read and indexed, with what reading it had to tell. */
	struct FLintProjectLevel
	{
		std::string PackagePath;
		std::string File;
		FSceneFile Read;
		std::unique_ptr<FLodexSceneIndex> Index;
		std::unique_ptr<FLodexBestLocatorFinder> Finder;
		std::string Error;
		bool bOk = false;
	};

	/** What a literal of a test file is in a project's run. */
	enum class ELintLiteralRole : std::uint8_t
	{
		/** Not a Lodestring, nor a level. */
		None,
		/** A Lodestring no level is loaded for: checked against the scene, or a `no-level` note. */
		NoLevel,
		/** A Lodestring after a `LoadLevel` the project does not have: not checked. */
		AfterUnknownLevel,
		/** A Lodestring checked against the level of LevelIndex. */
		InLevel,
		/** A `LoadLevel` of a level the project does not have. */
		UnknownLevel,
	};

	struct FLintLiteralPlan
	{
		ELintLiteralRole Role = ELintLiteralRole::None;
		std::size_t Level = 0;
		std::string Why;
	};

	struct FLintFilePlan
	{
		/** The file decoded as C# decodes it, and where each of its bytes lies. */
		std::string Source;
		std::unique_ptr<FCSharpSourceLines> Lines;
		std::vector<FCSharpApiString> Literals;
		std::vector<FLintLiteralPlan> Plans;
	};

	/** "/Game/Maps/Town.Town" names the package "/Game/Maps/Town". */
	std::string LintPackageOfPath(const std::string& Path)
	{
		const std::size_t Slash = Path.rfind('/');
		const std::size_t Dot = Path.find('.', Slash == std::string::npos ? 0 : Slash);
		return Dot == std::string::npos ? Path : Path.substr(0, Dot);
	}
}

FLodexProjectLevels::FLodexProjectLevels(std::string InProject)
	: Project(std::move(InProject))
{
}

void FLodexProjectLevels::FindPlugins()
{
	bPluginsFound = true;
	std::error_code Error;
	fs::recursive_directory_iterator It(fs::path(Project) / "Plugins", Error);
	for (; !Error && It != fs::recursive_directory_iterator(); It.increment(Error))
	{
		if (It->path().extension() == ".uplugin" && It->is_regular_file(Error))
		{
			PluginContent.emplace_back(It->path().stem().string(), PluginContentFolder(It->path()).string());
		}
	}
	// The same plug-in found twice: the first in name order counts, whatever order the folder lists them in.
	std::sort(PluginContent.begin(), PluginContent.end());
}

std::string FLodexProjectLevels::FindLevelFile(const std::string& PackagePath, std::string& OutWhy)
{
	const std::string Package = LintPackageOfPath(PackagePath);
	const std::size_t MountEnd = Package.find('/', 1);
	if (Package.size() < 2 || Package[0] != '/' || MountEnd == std::string::npos || MountEnd + 1 >= Package.size() ||
		Package.find("..") != std::string::npos || Package.find('\\') != std::string::npos ||
		Package.find("//") != std::string::npos)
	{
		OutWhy = "it is not a package path such as /Game/Maps/Town";
		return std::string();
	}
	const std::string Mount = Package.substr(1, MountEnd - 1);
	const std::string Rest = Package.substr(MountEnd + 1) + ".umap";
	fs::path Content;
	if (Mount == "Game")
	{
		Content = fs::path(Project) / "Content";
	}
	else
	{
		if (!bPluginsFound)
		{
			FindPlugins();
		}
		const auto Plugin = std::find_if(PluginContent.begin(), PluginContent.end(),
			[&Mount](const std::pair<std::string, std::string>& Entry) { return Entry.first == Mount; });
		if (Plugin == PluginContent.end())
		{
			OutWhy = "the project has no plug-in " + Mount + " (no " + Mount + ".uplugin under " +
				(fs::path(Project) / "Plugins").generic_string() + ")";
			return std::string();
		}
		Content = Plugin->second;
	}
	const fs::path File = Content / Rest;
	std::error_code Error;
	if (!fs::is_regular_file(File, Error))
	{
		OutWhy = "no file " + File.generic_string();
		return std::string();
	}
	return File.string();
}

bool LintProjectFiles(const std::vector<FLodexLintTestFile>& Files, const FLodexLintProjectOptions& Options,
	const FLodexLintTarget* Scene, FLodexLintReport& Report, std::vector<std::string>& OutNotes, std::string& OutError)
{
	// The literals of every file, found in parallel.
	std::vector<FLintFilePlan> Plans(Files.size());
	RunLintJobs(Files.size(), Options.Jobs,
		[&](std::size_t Index)
		{
			FLintFilePlan& Plan = Plans[Index];
			Plan.Source = DecodeCSharpSourceBytes(Files[Index].Text);
			Plan.Lines = std::make_unique<FCSharpSourceLines>(Plan.Source);
			Plan.Literals = FindApiStringArguments(Plan.Source);
		});

	// Which level each Lodestring is checked against, and which levels to read, in the order first loaded.
	FLodexProjectLevels Project(Options.Project);
	std::vector<FLintProjectLevel> Levels;
	std::map<std::string, std::size_t> LevelOfFile;
	std::map<std::string, std::pair<std::string, std::string>> Resolved; // package path: file, why not
	for (FLintFilePlan& Plan : Plans)
	{
		ELintLiteralRole Stretch = ELintLiteralRole::NoLevel;
		std::size_t Level = 0;
		Plan.Plans.resize(Plan.Literals.size());
		for (std::size_t Index = 0; Index < Plan.Literals.size(); ++Index)
		{
			const FCSharpApiString& Literal = Plan.Literals[Index];
			FLintLiteralPlan& Item = Plan.Plans[Index];
			if (Literal.Method == "LoadLevel")
			{
				auto Found = Resolved.find(Literal.Value);
				if (Found == Resolved.end())
				{
					std::string Why;
					std::string File = Project.FindLevelFile(Literal.Value, Why);
					Found = Resolved.emplace(Literal.Value, std::make_pair(std::move(File), std::move(Why))).first;
				}
				if (Found->second.first.empty())
				{
					Item.Role = ELintLiteralRole::UnknownLevel;
					Item.Why = Found->second.second;
					Stretch = ELintLiteralRole::AfterUnknownLevel;
					continue;
				}
				const auto Known = LevelOfFile.emplace(Found->second.first, Levels.size());
				if (Known.second)
				{
					Levels.emplace_back();
					Levels.back().PackagePath = LintPackageOfPath(Literal.Value);
					Levels.back().File = Found->second.first;
				}
				Stretch = ELintLiteralRole::InLevel;
				Level = Known.first->second;
				continue;
			}
			if (IsLintedApiString(Literal))
			{
				Item.Role = Stretch;
				Item.Level = Level;
			}
		}
	}

	// Each level read and indexed once, in parallel; the first that cannot be read (in load order) fails the run.
	RunLintJobs(Levels.size(), Options.Jobs,
		[&](std::size_t Index)
		{
			FLintProjectLevel& Level = Levels[Index];
			FSceneFileOptions SceneOptions;
			SceneOptions.Path = Level.File;
			SceneOptions.bNoSubLevels = Options.bNoSubLevels;
			SceneOptions.bVerbose = Options.bVerbose;
			if (!LoadSceneFile(SceneOptions, Level.Read, Level.Error))
			{
				return;
			}
			Level.Index = IndexSceneSnapshot(Level.Read.Scene);
			Level.Finder = std::make_unique<FLodexBestLocatorFinder>(*Level.Index);
			Level.bOk = true;
		});
	for (const FLintProjectLevel& Level : Levels)
	{
		if (!Level.bOk)
		{
			OutError = Level.Error;
			return false;
		}
		OutNotes.insert(OutNotes.end(), Level.Read.Notes.begin(), Level.Read.Notes.end());
	}

	// Each file checked on its own, in parallel, then the reports put together in the files' order.
	std::vector<FLodexLintReport> FileReports(Files.size());
	RunLintJobs(Files.size(), Options.Jobs,
		[&](std::size_t FileIndex)
		{
			const FLodexLintTestFile& File = Files[FileIndex];
			const FLintFilePlan& Plan = Plans[FileIndex];
			FLodexLintReport& Out = FileReports[FileIndex];
			++Out.Files;
			Out.CheckedFiles.push_back(File.Path);
			for (std::size_t Index = 0; Index < Plan.Literals.size(); ++Index)
			{
				const FCSharpApiString& Literal = Plan.Literals[Index];
				const FLintLiteralPlan& Item = Plan.Plans[Index];
				switch (Item.Role)
				{
					case ELintLiteralRole::None:
					case ELintLiteralRole::AfterUnknownLevel:
						break;
					case ELintLiteralRole::UnknownLevel:
						AddLintLiteralFinding(File.Path, *Plan.Lines, Literal, LodexLintRules::UnknownLevel,
							"the level " + ShowLodestringOnOneLine(Literal.Value) +
								" is not in the project: " + Item.Why,
							Out);
						break;
					case ELintLiteralRole::NoLevel:
						if (Scene != nullptr)
						{
							LintApiString(*Scene, File.Path, *Plan.Lines, Literal, Options.Lint, Out);
							break;
						}
						AddLintLiteralFinding(File.Path, *Plan.Lines, Literal, LodexLintRules::NoLevel,
							ShowLodestringOnOneLine(Literal.Value) +
								" is not checked: no api.LoadLevel(\"...\") before it names its level",
							Out);
						break;
					case ELintLiteralRole::InLevel:
					{
						const FLintProjectLevel& Level = Levels[Item.Level];
						FLodexLintTarget Target;
						Target.Index = Level.Index.get();
						Target.Finder = Level.Finder.get();
						Target.bHoldsOnlyPlaced = Level.Read.bIsLevel;
						Target.Level = Level.PackagePath;
						LintApiString(Target, File.Path, *Plan.Lines, Literal, Options.Lint, Out);
						break;
					}
				}
			}
		});
	Report.bCountsLevels = true;
	Report.Levels += Levels.size();
	for (FLodexLintReport& FileReport : FileReports)
	{
		AppendLintReport(Report, std::move(FileReport));
	}
	return true;
}
