// Copyright Lodex contributors.
#pragma once

#include "LintFormats.h"

#include <string>

/** The report as a SARIF 2.1.0 log, as GitHub code scanning reads it (docs/lodex.md#sarif). */
std::string FormatLintReportSarif(const FLodexLintReport& Report, const FLodexLintFormatOptions& Options);
