// Copyright Lodex contributors.
#include "LodexCli.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>

namespace
{
	/** The usage of the deepest subcommand the parser reached, named with its parents ("lodex copy"). */
	std::string UsageOfDeepestParsed(const CLI::App& App, const std::string& Parents = std::string())
	{
		for (const CLI::App* Sub : App.get_subcommands())
		{
			return UsageOfDeepestParsed(*Sub, Parents.empty() ? App.get_name() : Parents + " " + App.get_name());
		}
		return App.help(Parents);
	}
}

int RunLodexCli(const std::vector<std::string>& Args, std::ostream& Out, std::ostream& Err)
{
	return RunLodexCli(Args, std::cin, Out, Err);
}

int RunLodexCli(const std::vector<std::string>& Args, std::istream& In, std::ostream& Out, std::ostream& Err)
{
	CLI::App App{"lodex: Lodestrings, editor menus and the module's other texts, headless", "lodex"};
	App.require_subcommand(1);
	App.set_version_flag("--version", "lodex 0.1.0");

	std::vector<std::unique_ptr<ILodexCommand>> Commands;
	Commands.push_back(MakePathCommand());
	Commands.push_back(MakeCopyCommand());
	Commands.push_back(MakeDemoCommand());
	Commands.push_back(MakeInstallCommand());
	Commands.push_back(MakeExploreCommand());
	std::vector<CLI::App*> Subcommands;
	for (const std::unique_ptr<ILodexCommand>& Command : Commands)
	{
		Subcommands.push_back(Command->Register(App));
	}

	// CLI11 wants the arguments in reverse order.
	std::vector<std::string> Reversed(Args.rbegin(), Args.rend());
	try
	{
		App.parse(Reversed);
	}
	catch (const CLI::CallForHelp&)
	{
		Out << UsageOfDeepestParsed(App);
		return LodexExitOk;
	}
	catch (const CLI::CallForAllHelp&)
	{
		Out << App.help("", CLI::AppFormatMode::All);
		return LodexExitOk;
	}
	catch (const CLI::CallForVersion&)
	{
		Out << "lodex 0.1.0\n";
		return LodexExitOk;
	}
	catch (const CLI::ParseError& Error)
	{
		Err << "lodex: " << Error.what() << "\n" << UsageOfDeepestParsed(App);
		return LodexExitUsage;
	}

	FLodexCliIo Io{Out, Err, &In};
	for (std::size_t Index = 0; Index < Commands.size(); ++Index)
	{
		if (Subcommands[Index]->parsed())
		{
			return Commands[Index]->Run(Io);
		}
	}
	Err << App.help();
	return LodexExitUsage;
}
