// Copyright Lodex contributors.
#pragma once

#include <string>
#include <vector>

/**
 * A fuzz target's check: runs one input through the code under test, the way `lodex` runs a file, and returns what
 * went wrong, or an empty string when every property the target asserts held. The fuzzers and the tests call the
 * same functions, so that a saved input replays exactly what was fuzzed.
 */
using FLodexFuzzCheck = std::string (*)(const std::string& Input);

struct FLodexFuzzTarget
{
	/** The target's name: the fuzzer lodex_fuzz_NAME, its inputs in fuzz/corpus/NAME and fuzz/regressions/NAME. */
	const char* Name;
	FLodexFuzzCheck Check;
};

/** Every fuzz target, in the order fuzz/CMakeLists.txt declares them. */
const std::vector<FLodexFuzzTarget>& GetLodexFuzzTargets();
