// Copyright Lodex contributors.
#pragma once

#include "LintFormats.h"

#include <string>

/**
 * The report as JUnit XML: a test suite per test file, a test case per Lodestring checked, failing on its errors
 * (and warnings with --strict) (docs/lodex.md#junit).
 */
std::string FormatLintReportJunit(const FLodexLintReport& Report, const FLodexLintFormatOptions& Options);
