// Copyright Lodex contributors.
#pragma once

#include <string>

/** The sample input log embedded in the tool (samples/session.jsonl): a short session on the sample level. */
std::string GetSampleInputLog();
