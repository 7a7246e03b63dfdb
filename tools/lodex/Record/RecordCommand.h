// Copyright Lodex contributors.
#pragma once

#include "Cli/LodexCli.h"

class FSceneSnapshot;

/** `lodex demo`'s recorded session: the embedded sample input log replayed on the sample level, and its script. */
bool PrintRecordedSessionDemo(const FSceneSnapshot& Scene, FLodexCliIo& Io);
