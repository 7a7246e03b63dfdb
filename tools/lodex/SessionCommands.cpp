// Copyright Lodex contributors.
#include "EvaluationSession.h"
#include "LodexCli.h"

#include <CLI/CLI.hpp>

#include <sstream>

namespace
{
	class FReplCommand final : public ILodexCommand
	{
	public:
		CLI::App* Register(CLI::App& Parent) override
		{
			CLI::App* Sub = Parent.add_subcommand("repl",
				"The Lodex REPL: each line of standard input is a Lodestring committed in its path box; prints the "
				"count and state after each");
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
			return RunLodexReplSession(*Evaluator, !Options.bGameNotRunning, Session);
		}

	private:
		FLodexSessionOptions Options;
	};
}

std::unique_ptr<ILodexCommand> MakeReplCommand()
{
	return std::make_unique<FReplCommand>();
}
