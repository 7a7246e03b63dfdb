// Copyright Lodex contributors.
#include "LodexCli.h"

#include <csignal>
#include <iostream>

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
	return RunLodexCli(Args, std::cout, std::cerr);
}
