// Copyright Lodex contributors.
#pragma once

#include "LintFormats.h"

#include <string>

/** Escapes a workflow command's message as the Actions toolkit does: '%', CR and LF. */
std::string EscapeGithubCommandData(const std::string& Text);

/** Escapes a workflow command's property value as the Actions toolkit does: '%', CR, LF, ':' and ','. */
std::string EscapeGithubCommandProperty(const std::string& Text);

/**
 * One GitHub Actions workflow command a finding:
 * `::error file=F,line=L,col=C,endColumn=E,title=lodex RULE::MESSAGE` (`::warning`, `::notice`).
 */
std::string FormatLintReportGithub(const FLodexLintReport& Report, const FLodexLintFormatOptions& Options);
