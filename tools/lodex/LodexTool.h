// Copyright Lodex contributors.
#pragma once

// The lodex tool: its command table and how it runs. Each command lives in a folder of its own and is made by one
// function declared here; Cli/ holds what every command shares.

#include "Cli/LodexCli.h"

#include <istream>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

std::unique_ptr<ILodexCommand> MakePathCommand();
std::unique_ptr<ILodexCommand> MakeCopyCommand();
std::unique_ptr<ILodexCommand> MakeDemoCommand();
std::unique_ptr<ILodexCommand> MakeInstallCommand();
std::unique_ptr<ILodexCommand> MakeRecordCommand();
std::unique_ptr<ILodexCommand> MakeReplCommand();
std::unique_ptr<ILodexCommand> MakeDebugCommand();
std::unique_ptr<ILodexCommand> MakeLintCommand();
std::unique_ptr<ILodexCommand> MakeExploreCommand();
std::unique_ptr<ILodexCommand> MakeLevelCommand();
std::unique_ptr<ILodexCommand> MakeDiffCommand();

/** Runs the tool on its arguments (without the program name); returns the exit code. */
int RunLodexCli(const std::vector<std::string>& Args, std::ostream& Out, std::ostream& Err);

/** The same, with lines to read (`lodex repl`, `lodex debug`, `lodex explore`); bInteractive when In is a terminal. */
int RunLodexCli(
	const std::vector<std::string>& Args, std::istream& In, bool bInteractive, std::ostream& Out, std::ostream& Err);

/** The same, with lines to read from a pipe or a file. */
int RunLodexCli(const std::vector<std::string>& Args, std::istream& In, std::ostream& Out, std::ostream& Err);
