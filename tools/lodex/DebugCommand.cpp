// Copyright Lodex contributors.
#include "EvaluationSession.h"
#include "LodexCli.h"

#include <CLI/CLI.hpp>

#include <sstream>

namespace
{
	class FDebugCommand final : public ILodexCommand
	{
	public:
		CLI::App* Register(CLI::App& Parent) override
		{
			CLI::App* Sub = Parent.add_subcommand("debug",
				"The Lodestring Debugger: each line of standard input is a button (run, into, over, reset) or a path "
				"committed in its path box; prints the panel's texts after each");
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
			return RunLodexDebugSession(*Evaluator, !Options.bGameNotRunning, Session);
		}

	private:
		FLodexSessionOptions Options;
	};
}

std::unique_ptr<ILodexCommand> MakeDebugCommand()
{
	return std::make_unique<FDebugCommand>();
}
