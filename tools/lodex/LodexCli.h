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
	std::istream* In = nullptr;
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
std::unique_ptr<ILodexCommand> MakeExploreCommand();

/** Runs the tool on its arguments (without the program name); returns the exit code. */
int RunLodexCli(const std::vector<std::string>& Args, std::ostream& Out, std::ostream& Err);

/** The same, with the stream that commands reading user actions (explore) read from; the other form uses stdin. */
int RunLodexCli(const std::vector<std::string>& Args, std::istream& In, std::ostream& Out, std::ostream& Err);
