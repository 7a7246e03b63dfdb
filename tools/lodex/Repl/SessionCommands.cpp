// Copyright Lodex contributors.
#include "EvaluationSession.h"
#include "Cli/LodexCli.h"
#include "LodexTool.h"

#include <CLI/CLI.hpp>

#include <sstream>

namespace
{
	/** `lodex repl` and `lodex debug`: the same options and evaluator, each driving its own panel's session. */
	class FSessionCommand final : public ILodexCommand
	{
	public:
		using FRunSession = int (*)(ILodexEvaluator& Evaluator, bool bGameRunning, FLodexSessionIo& Io);

		FSessionCommand(const char* InName, const char* InDescription, FRunSession InRunSession)
			: Name(InName)
			, Description(InDescription)
			, RunSession(InRunSession)
		{
		}

		CLI::App* Register(CLI::App& Parent) override
		{
			CLI::App* Sub = Parent.add_subcommand(Name, Description);
			AddLodexEvaluationOptions(*Sub, Options);
			return Sub;
		}

		int Run(FLodexCliIo& Io) override
		{
			std::unique_ptr<ILodexEvaluator> Evaluator = MakeLodexEvaluator(Options, Io.Err);
			if (!Evaluator)
			{
				return LodexExitFailure;
			}
			std::istringstream NoInput;
			FLodexSessionIo Session{Io.In != nullptr ? *Io.In : NoInput, Io.Out, Io.Err, !Io.bInteractive};
			return RunSession(*Evaluator, !Options.bGameNotRunning, Session);
		}

	private:
		const char* Name;
		const char* Description;
		FRunSession RunSession;
		FLodexSessionOptions Options;
	};
}

std::unique_ptr<ILodexCommand> MakeReplCommand()
{
	return std::make_unique<FSessionCommand>("repl",
		"The Lodex REPL: each line of standard input is a Lodestring committed in its path box; prints the count "
		"and state after each",
		&RunLodexReplSession);
}

std::unique_ptr<ILodexCommand> MakeDebugCommand()
{
	return std::make_unique<FSessionCommand>("debug",
		"The Lodestring Debugger: each line of standard input is a button (run, into, over, reset) or a path "
		"committed in its path box; prints the panel's texts after each",
		&RunLodexDebugSession);
}
