// Copyright Lodex contributors.
#include "SceneOptions.h"

#include <CLI/CLI.hpp>

void FCommandSceneOptions::Declare(CLI::App& Command)
{
	DeclareScene(Command);
	DeclareLevelFlags(Command);
}

void FCommandSceneOptions::DeclareScene(CLI::App& Command)
{
	if (Layout.Name == nullptr)
	{
		return;
	}
	CLI::Option* Scene = Command.add_option(Layout.Name, Path, Layout.Help);
	if ((Layout.Flags & SceneRequired) != 0)
	{
		Scene->required();
	}
}

void FCommandSceneOptions::DeclareLevelFlags(CLI::App& Command)
{
	Command.add_flag("--no-sublevels", bNoSubLevels, LodexNoSubLevelsHelp);
	if ((Layout.Flags & SceneVerboseNotes) != 0)
	{
		Command.add_flag("--verbose", bVerbose, LodexVerboseNotesHelp);
	}
}

bool FCommandSceneOptions::Load(FSceneFile& Out, std::ostream& Err) const
{
	return LoadSceneFileFor(*this, Out, Err);
}
