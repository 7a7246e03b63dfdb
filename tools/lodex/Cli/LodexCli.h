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

/** The tool's version, as `lodex --version` and the reports that name the tool give it. */
inline constexpr const char* LodexVersion = LODEX_VERSION;

/** Exit codes of the lodex tool. */
enum ELodexExit : int
{
	LodexExitOk = 0,
	LodexExitFailure = 1,
	LodexExitUsage = 2,
};

/** Each note as a "lodex: note: ..." line on Err. */
inline void WriteLodexNotes(const std::vector<std::string>& Notes, std::ostream& Err)
{
	for (const std::string& Note : Notes)
	{
		Err << "lodex: note: " << Note << "\n";
	}
}

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
