// Copyright Lodex contributors.
#pragma once

#include <istream>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace CLI
{
	class App;
}

/** Exit codes of the lodex tool. */
enum ELodexExit : int
{
	LodexExitOk = 0,
	LodexExitFailure = 1,
	LodexExitUsage = 2,
};

/** The streams a command writes to, and the one it reads user actions from. */
struct FLodexCliIo
{
	std::ostream& Out;
	std::ostream& Err;
	/** Standard input, for the commands that read lines from it; null reads as no input. */
	std::istream* In = nullptr;
	/** Whether In is a terminal (a person typing) rather than a pipe or a file. */
	bool bInteractive = false;
};

/** One subcommand of the tool: declares its options, then runs once they are parsed. */
class ILodexCommand
{
public:
	virtual ~ILodexCommand() = default;
	virtual CLI::App* Register(CLI::App& Parent) = 0;
	virtual int Run(FLodexCliIo& Io) = 0;
};

std::unique_ptr<ILodexCommand> MakePathCommand();
std::unique_ptr<ILodexCommand> MakeCopyCommand();
std::unique_ptr<ILodexCommand> MakeDemoCommand();
std::unique_ptr<ILodexCommand> MakeInstallCommand();
std::unique_ptr<ILodexCommand> MakeRecordCommand();
std::unique_ptr<ILodexCommand> MakeReplCommand();
std::unique_ptr<ILodexCommand> MakeDebugCommand();
std::unique_ptr<ILodexCommand> MakeLintCommand();
std::unique_ptr<ILodexCommand> MakeExploreCommand();

/** Runs the tool on its arguments (without the program name); returns the exit code. */
int RunLodexCli(const std::vector<std::string>& Args, std::ostream& Out, std::ostream& Err);

/** The same, with lines to read (`lodex repl`, `lodex debug`, `lodex explore`); bInteractive when In is a terminal. */
int RunLodexCli(
	const std::vector<std::string>& Args, std::istream& In, bool bInteractive, std::ostream& Out, std::ostream& Err);

/** The same, with lines to read from a pipe or a file. */
int RunLodexCli(const std::vector<std::string>& Args, std::istream& In, std::ostream& Out, std::ostream& Err);
