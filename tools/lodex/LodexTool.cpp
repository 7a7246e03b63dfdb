// Copyright Lodex contributors.
#include "LodexTool.h"

#include "LodexDebugger/Core/Text/LodexText.h"

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

static int RunLodexCliWithInput(
	const std::vector<std::string>& Args, std::istream* In, bool bInteractive, std::ostream& Out, std::ostream& Err);

int RunLodexCli(const std::vector<std::string>& Args, std::ostream& Out, std::ostream& Err)
{
	return RunLodexCliWithInput(Args, nullptr, false, Out, Err);
}

int RunLodexCli(
	const std::vector<std::string>& Args, std::istream& In, bool bInteractive, std::ostream& Out, std::ostream& Err)
{
	return RunLodexCliWithInput(Args, &In, bInteractive, Out, Err);
}

int RunLodexCli(const std::vector<std::string>& Args, std::istream& In, std::ostream& Out, std::ostream& Err)
{
	return RunLodexCliWithInput(Args, &In, false, Out, Err);
}

static int RunLodexCliWithInput(
	const std::vector<std::string>& Args, std::istream* In, bool bInteractive, std::ostream& Out, std::ostream& Err)
{
	CLI::App App{"lodex: Lodestrings, editor menus and the module's other texts, headless", "lodex"};
	App.require_subcommand(1);
	App.set_version_flag("--version", std::string("lodex ") + LodexVersion);

	std::vector<std::unique_ptr<ILodexCommand>> Commands;
	Commands.push_back(MakePathCommand());
	Commands.push_back(MakeCopyCommand());
	Commands.push_back(MakeDemoCommand());
	Commands.push_back(MakeInstallCommand());
	Commands.push_back(MakeRecordCommand());
	Commands.push_back(MakeReplCommand());
	Commands.push_back(MakeDebugCommand());
	Commands.push_back(MakeLintCommand());
	Commands.push_back(MakeExploreCommand());
	Commands.push_back(MakeLevelCommand());
	Commands.push_back(MakeDiffCommand());
	std::vector<CLI::App*> Subcommands;
	for (const std::unique_ptr<ILodexCommand>& Command : Commands)
	{
		Subcommands.push_back(Command->Register(App));
	}

	if (!Args.empty() && !Args.front().empty() && Args.front()[0] != '-' &&
		std::none_of(Subcommands.begin(), Subcommands.end(),
			[&](const CLI::App* Sub) { return Sub->get_name() == Args.front(); }))
	{
		std::vector<std::string> Names;
		for (const CLI::App* Sub : Subcommands)
		{
			Names.push_back(Sub->get_name());
		}
		Err << "lodex: unknown command '" << Args.front() << "' (the commands are " << LodexText::Join(Names, ", ")
			<< ")\n"
			<< App.help();
		return LodexExitUsage;
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
		Out << "lodex " << LodexVersion << "\n";
		return LodexExitOk;
	}
	catch (const CLI::ParseError& Error)
	{
		Err << "lodex: " << Error.what() << "\n" << UsageOfDeepestParsed(App);
		return LodexExitUsage;
	}

	FLodexCliIo Io{Out, Err, In, bInteractive};
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
