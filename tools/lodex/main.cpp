// Copyright Lodex contributors.
#include "LodexCli.h"

#include <iostream>

int main(int argc, char** argv)
{
	std::vector<std::string> Args;
	for (int Index = 1; Index < argc; ++Index)
	{
		Args.emplace_back(argv[Index]);
	}
	return RunLodexCli(Args, std::cout, std::cerr);
}
