// Copyright Lodex contributors.
#include "LodexTool.h"

#include <csignal>
#include <iostream>

#ifdef _WIN32
#include <io.h>
#define LODEX_STDIN_IS_TERMINAL() (_isatty(_fileno(stdin)) != 0)
#else
#include <unistd.h>
#define LODEX_STDIN_IS_TERMINAL() (isatty(STDIN_FILENO) != 0)
#endif

int main(int argc, char** argv)
{
	// A write past the file-size limit then fails with an error that lodex reports, cleaning up after itself,
	// instead of ending the process half-way.
	std::signal(SIGXFSZ, SIG_IGN);
	std::vector<std::string> Args;
	for (int Index = 1; Index < argc; ++Index)
	{
		Args.emplace_back(argv[Index]);
	}
	return RunLodexCli(Args, std::cin, LODEX_STDIN_IS_TERMINAL(), std::cout, std::cerr);
}
