// Copyright Lodex contributors.
#include "ExplorerHost.h"
#include "Cli/LodexCli.h"
#include "LodexTool.h"
#include "Scenes/SceneOptions.h"

#include <CLI/CLI.hpp>

#include <iostream>

namespace
{
	constexpr FSceneOptionLayout ExploreSceneLayout{"--scene",
		"Scene file: a snapshot (JSON) with classes, or a level (.umap, which holds no classes)",
		SceneRequired | SceneVerboseNotes};

	class FExploreCommand final : public ILodexCommand
	{
	public:
		CLI::App* Register(CLI::App& Parent) override
		{
			CLI::App* Sub = Parent.add_subcommand("explore",
				"Open the Object Explorer on a scene: user actions from standard input, one a line (\"help\" lists "
				"them); what the panel shows, its log lines and the clipboard on standard output");
			SceneFile.Declare(*Sub);
			return Sub;
		}

		int Run(FLodexCliIo& Io) override
		{
			FSceneFile SceneRead;
			if (!SceneFile.Load(SceneRead, Io.Err))
			{
				return LodexExitFailure;
			}
			const FSceneSnapshot& Scene = SceneRead.Scene;
			std::string Error;
			std::istream& In = Io.In != nullptr ? *Io.In : std::cin;
			FHeadlessExplorer Explorer(Scene, Io.Out);
			bool bAllDone = true;
			std::string Line;
			for (std::size_t LineNumber = 1; std::getline(In, Line); ++LineNumber)
			{
				if (!Line.empty() && Line.back() == '\r')
				{
					Line.pop_back();
				}
				if (Line.find_first_not_of(" \t") != std::string::npos)
				{
					Io.Out << "> " << Line << "\n";
				}
				if (!Explorer.RunAction(Line, Error))
				{
					// A line that cannot be carried out changes nothing; the session goes on.
					Io.Out.flush();
					Io.Err << "lodex: line " << LineNumber << ": " << Error << "\n";
					bAllDone = false;
				}
				Io.Out.flush();
			}
			return bAllDone ? LodexExitOk : LodexExitFailure;
		}

	private:
		FCommandSceneOptions SceneFile{ExploreSceneLayout};
	};
}

std::unique_ptr<ILodexCommand> MakeExploreCommand()
{
	return std::make_unique<FExploreCommand>();
}
