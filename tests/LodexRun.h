// Copyright Lodex contributors.
#pragma once

#include "LodexTool.h"
#include "TempDir.h"

#include <optional>
#include <sstream>
#include <string>
#include <vector>

/** What one run of the tool printed, and its exit code. */
struct FLodexRun
{
	int Exit = -1;
	std::string Out;
	std::string Err;
};

/**
 * Runs the tool in this process on its arguments: with no standard input at all, or its standard input holding Input
 * as a pipe or a file would.
 */
inline FLodexRun RunLodex(const std::vector<std::string>& Args, const std::optional<std::string>& Input = std::nullopt)
{
	std::istringstream In(Input.value_or(""));
	std::ostringstream Out;
	std::ostringstream Err;
	FLodexRun Run;
	Run.Exit = Input ? RunLodexCli(Args, In, Out, Err) : RunLodexCli(Args, Out, Err);
	Run.Out = Out.str();
	Run.Err = Err.str();
	return Run;
}

/** What a run printed: a quiet success's output; otherwise the exit code, then standard error, then standard output. */
template<typename TRun>
std::string Printed(const TRun& Run)
{
	return Run.Exit == 0 && Run.Err.empty() ? Run.Out : "exit " + std::to_string(Run.Exit) + ": " + Run.Err + Run.Out;
}

inline bool Contains(const std::string& Text, const std::string& Part)
{
	return Text.find(Part) != std::string::npos;
}

/** How many times Part occurs in Text. */
inline int CountOf(const std::string& Text, const std::string& Part)
{
	int Count = 0;
	for (std::size_t At = Text.find(Part); At != std::string::npos; At = Text.find(Part, At + 1))
	{
		++Count;
	}
	return Count;
}
