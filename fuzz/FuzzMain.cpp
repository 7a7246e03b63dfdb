// Copyright Lodex contributors.
// The libFuzzer entry point of one fuzz target: LODEX_FUZZ_CHECK names its check function (FuzzChecks.h).
#include "FuzzChecks.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

std::string LODEX_FUZZ_CHECK(const std::string& Input);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
	const std::string Failure = LODEX_FUZZ_CHECK(std::string(reinterpret_cast<const char*>(Data), Size));
	if (!Failure.empty())
	{
		std::fprintf(stderr, "lodex_fuzz_%s: %s\n", LODEX_FUZZ_NAME, Failure.c_str());
		std::abort();
	}
	return 0;
}
