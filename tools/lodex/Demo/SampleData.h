// Copyright Lodex contributors.
#pragma once

#include <string>

/** The sample level embedded in the tool (samples/level.json). */
std::string GetSampleLevelJson();
