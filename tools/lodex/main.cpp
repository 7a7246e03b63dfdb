// Copyright Lodex contributors.
#include "LodexCli.h"

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
	std::vector<std::string> Args;
	for (int Index = 1; Index < argc; ++Index)
	{
		Args.emplace_back(argv[Index]);
	}
	return RunLodexCli(Args, std::cin, LODEX_STDIN_IS_TERMINAL(), std::cout, std::cerr);
}
