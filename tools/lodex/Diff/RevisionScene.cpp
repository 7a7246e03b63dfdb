// Copyright Lodex contributors.
// A scene read from a revision of a git repository: the files it is made of are checked out through a temporary
// index into a temporary folder as the reader asks for them, read as any level is, and the folder's name is put back
// as `REV:` in messages.
#include "RevisionScene.h"

#include "Scenes/ContentFiles.h"
#include "Scenes/LevelScene.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <vector>

extern char** environ;

namespace
{
	namespace fs = std::filesystem;

	constexpr int GitNotRun = -2;

	/**
	 * Runs git with Arguments in Folder (and, when given, a temporary index file); its standard output in Out, its
	 * standard error dropped. posix_spawn, not fork: the two sides of a diff are read on two threads.
	 */
	int RunGitIn(const std::string& Folder, const std::vector<std::string>& Arguments, const std::string& IndexFile,
		std::string& Out)
	{
		Out.clear();
		std::vector<std::string> Full = {"git", "-C", Folder};
		Full.insert(Full.end(), Arguments.begin(), Arguments.end());
		std::vector<char*> Argv;
		for (std::string& Argument : Full)
		{
			Argv.push_back(Argument.data());
		}
		Argv.push_back(nullptr);
		std::vector<std::string> Environment;
		for (char** Entry = environ; *Entry != nullptr; ++Entry)
		{
			if (std::string(*Entry).rfind("GIT_INDEX_FILE=", 0) != 0)
			{
				Environment.push_back(*Entry);
			}
		}
		if (!IndexFile.empty())
		{
			Environment.push_back("GIT_INDEX_FILE=" + IndexFile);
		}
		std::vector<char*> Envp;
		for (std::string& Entry : Environment)
		{
			Envp.push_back(Entry.data());
		}
		Envp.push_back(nullptr);

		int Pipe[2];
		if (pipe2(Pipe, O_CLOEXEC) != 0)
		{
			return -1;
		}
		posix_spawn_file_actions_t Actions;
		posix_spawn_file_actions_init(&Actions);
		posix_spawn_file_actions_adddup2(&Actions, Pipe[1], STDOUT_FILENO);
		posix_spawn_file_actions_addopen(&Actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
		pid_t Child = 0;
		const int Spawned = posix_spawnp(&Child, "git", &Actions, nullptr, Argv.data(), Envp.data());
		posix_spawn_file_actions_destroy(&Actions);
		close(Pipe[1]);
		if (Spawned != 0)
		{
			close(Pipe[0]);
			return GitNotRun;
		}
		char Buffer[4096];
		for (ssize_t Read; (Read = read(Pipe[0], Buffer, sizeof(Buffer))) != 0;)
		{
			if (Read < 0)
			{
				if (errno == EINTR)
				{
					continue;
				}
				break;
			}
			Out.append(Buffer, static_cast<std::size_t>(Read));
		}
		close(Pipe[0]);
		int Status = 0;
		while (waitpid(Child, &Status, 0) < 0 && errno == EINTR)
		{
		}
		return WIFEXITED(Status) ? WEXITSTATUS(Status) : -1;
	}

	std::string TrimLine(std::string Text)
	{
		while (!Text.empty() && (Text.back() == '\n' || Text.back() == '\r'))
		{
			Text.pop_back();
		}
		return Text;
	}

	void ReplaceAll(std::string& Text, const std::string& From, const std::string& To)
	{
		for (std::size_t At = Text.find(From); At != std::string::npos; At = Text.find(From, At + To.size()))
		{
			Text.replace(At, From.size(), To);
		}
	}

	/**
	 * The files of a revision, brought out of git only as the level reader asks for them (the map, its external
	 * actors' folder, each sub-level and Blueprint class it names), through a temporary index of the revision's tree:
	 * a Content folder of many gigabytes is not checked out for the few packages a level is made of.
	 */
	class FRevisionFiles final : public ILevelFileSource
	{
	public:
		FRevisionFiles(std::string InTop, std::string InIndex, std::string InTreeRoot)
			: Top(std::move(InTop))
			, Index(std::move(InIndex))
			, TreeRoot(std::move(InTreeRoot))
		{
		}

		//~ Begin ILevelFileSource Interface
		void FetchFile(const std::string& Path) override
		{
			const std::string InTree = InTreePath(Path);
			if (!InTree.empty() && Fetched.insert(InTree).second)
			{
				CheckOut({InTree});
			}
		}

		void FetchFolder(const std::string& Path) override
		{
			const std::string InTree = InTreePath(Path);
			std::string Listed;
			if (InTree.empty() || !Fetched.insert(InTree + "/").second ||
				RunGitIn(Top, {"ls-files", "-z", "--", InTree + "/"}, Index, Listed) != 0)
			{
				return;
			}
			std::vector<std::string> Files;
			for (std::size_t At = 0; At < Listed.size();)
			{
				const std::size_t End = std::min(Listed.find('\0', At), Listed.size());
				Files.push_back(Listed.substr(At, End - At));
				At = End + 1;
			}
			CheckOut(Files);
		}
		//~ End ILevelFileSource Interface

		/** Checks the files (paths in the tree) out below the tree's root, a few hundred to a call of git. */
		bool CheckOut(const std::vector<std::string>& Files) const
		{
			constexpr std::size_t Batch = 256;
			bool bAll = true;
			for (std::size_t First = 0; First < Files.size(); First += Batch)
			{
				std::vector<std::string> Arguments = {"checkout-index", "-q", "--prefix=" + TreeRoot, "--"};
				const std::size_t Last = std::min(Files.size(), First + Batch);
				Arguments.insert(Arguments.end(), Files.begin() + static_cast<std::ptrdiff_t>(First),
					Files.begin() + static_cast<std::ptrdiff_t>(Last));
				std::string Ignored;
				bAll = RunGitIn(Top, Arguments, Index, Ignored) == 0 && bAll;
			}
			return bAll;
		}

	private:
		/** The path below the tree's root, as the index names it; empty for a path outside it. */
		std::string InTreePath(const std::string& Path) const
		{
			const std::string Normal = fs::path(Path).lexically_normal().generic_string();
			if (Normal.size() <= TreeRoot.size() || Normal.compare(0, TreeRoot.size(), TreeRoot) != 0)
			{
				return std::string();
			}
			return Normal.substr(TreeRoot.size());
		}

		const std::string Top;
		const std::string Index;
		const std::string TreeRoot;
		std::set<std::string> Fetched;
	};

	/** A temporary folder, removed with everything in it when this goes. */
	struct FScratchFolder
	{
		std::string Path;
		FScratchFolder()
		{
			std::error_code Code;
			std::string Pattern = (fs::temp_directory_path(Code) / "lodex-rev-XXXXXX").string();
			if (mkdtemp(Pattern.data()) != nullptr)
			{
				Path = Pattern;
			}
		}
		~FScratchFolder()
		{
			std::error_code Code;
			if (!Path.empty())
			{
				fs::remove_all(Path, Code);
			}
		}
	};
}

bool SplitRevisionPath(const std::string& Argument, FRevisionPath& Out)
{
	std::error_code Code;
	if (fs::exists(Argument, Code))
	{
		return false;
	}
	const std::size_t Colon = Argument.find(':');
	if (Colon == std::string::npos || Colon == 0 || Colon + 1 == Argument.size())
	{
		return false;
	}
	Out.Revision = Argument.substr(0, Colon);
	Out.Path = Argument.substr(Colon + 1);
	return true;
}

bool LoadSceneAtRevision(const FSceneFileOptions& Options, FSceneFile& Out, std::string& OutError)
{
	FRevisionPath Split;
	if (!SplitRevisionPath(Options.Path, Split))
	{
		return LoadSceneFile(Options, Out, OutError);
	}
	const std::string& Shown = Options.Path;
	// The repository: the one that holds the nearest folder of PATH that exists in the work tree.
	std::error_code Code;
	fs::path Absolute = fs::absolute(fs::path(Split.Path), Code).lexically_normal();
	fs::path Folder = Absolute.parent_path();
	while (!Folder.empty() && !fs::is_directory(Folder, Code) && Folder != Folder.parent_path())
	{
		Folder = Folder.parent_path();
	}
	std::string Top;
	const int Found = RunGitIn(Folder.string(), {"rev-parse", "--show-toplevel"}, "", Top);
	if (Found == GitNotRun)
	{
		OutError = Shown + ": git could not be run to read the revision";
		return false;
	}
	if (Found != 0)
	{
		OutError = Shown + ": " + Folder.string() + " is not in a git repository";
		return false;
	}
	Top = TrimLine(Top);
	const fs::path TopPath = fs::weakly_canonical(fs::path(Top), Code);
	const fs::path Real = fs::weakly_canonical(Absolute, Code);
	const std::string InRepo = Real.lexically_relative(TopPath).generic_string();
	if (InRepo.empty() || InRepo.rfind("..", 0) == 0)
	{
		OutError = Shown + ": " + Split.Path + " is not inside the repository at " + Top;
		return false;
	}
	std::string Ignored;
	if (RunGitIn(Top, {"rev-parse", "--verify", "--quiet", Split.Revision + "^{commit}"}, "", Ignored) != 0)
	{
		OutError = Shown + ": no revision '" + Split.Revision + "' in the repository at " + Top;
		return false;
	}
	if (RunGitIn(Top, {"cat-file", "-e", Split.Revision + ":" + InRepo}, "", Ignored) != 0)
	{
		OutError = Shown + ": no file " + InRepo + " at revision " + Split.Revision;
		return false;
	}
	// What the reader may ask for: the Content folder that holds the file, of which only what a level reads from it is
	// checked out; or the file's own folder.
	std::string Root = fs::path(InRepo).parent_path().generic_string();
	const std::string Marker = "Content/";
	for (std::size_t At = InRepo.rfind(Marker); At != std::string::npos;
		 At = At == 0 ? std::string::npos : InRepo.rfind(Marker, At - 1))
	{
		if (At == 0 || InRepo[At - 1] == '/')
		{
			Root = InRepo.substr(0, At + Marker.size() - 1);
			break;
		}
	}
	FScratchFolder Scratch;
	if (Scratch.Path.empty())
	{
		OutError = Shown + ": cannot make a temporary folder to read the revision into";
		return false;
	}
	const std::string Index = Scratch.Path + "/index";
	const std::string Tree = Scratch.Path + "/tree/";
	const std::string TreeRoot = Tree + (Root.empty() ? std::string() : Root + "/");
	FRevisionFiles Files(Top, Index, TreeRoot);
	const std::string MapInTree = Root.empty() ? InRepo : InRepo.substr(Root.size() + 1);
	if (RunGitIn(Top, {"read-tree", Split.Revision + ":" + Root}, Index, Ignored) != 0 || !Files.CheckOut({MapInTree}))
	{
		OutError = Shown + ": git could not check out " + (Root.empty() ? std::string(".") : Root) + " at revision " +
			Split.Revision;
		return false;
	}
	FSceneFileOptions AtRevision = Options;
	AtRevision.Path = Tree + InRepo;
	AtRevision.Files = &Files;
	std::ifstream Head(AtRevision.Path, std::ios::binary);
	std::string Start(40, '\0');
	Start.resize(static_cast<std::size_t>(Head.read(&Start[0], 40).gcount()));
	if (IsGitLfsPointer(Start))
	{
		OutError = GitLfsPointerError(Shown);
		return false;
	}
	const bool bRead = LoadSceneFile(AtRevision, Out, OutError);
	const std::string RevisionPrefix = Split.Revision + ":";
	ReplaceAll(OutError, Tree, RevisionPrefix);
	for (std::string& Note : Out.Notes)
	{
		ReplaceAll(Note, Tree, RevisionPrefix);
	}
	return bRead;
}
