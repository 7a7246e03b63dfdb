// Copyright Lodex contributors.
#pragma once

#include "LodexDebugger/Core/Lodestring/LodexBestLocator.h"
#include "LodexDebugger/Core/Lodestring/LodexSceneIndex.h"
#include "LodexDebugger/Core/Paths/PathCommands.h"
#include "LodexDebugger/Core/Shell/LodexShell.h"
#include "LodexDebugger/Core/Text/LodexOutput.h"

#include <string>
#include <vector>

/** "Copy Best Lodestring" in the module's pull-down, and the console command "Lodex.CopyBestLodestring". */
const FLodexPullDownCommandInfo& GetLodexBestCopyCommand();

/**
 * The log message of one best Lodestring: "Best Lodestring : " + text + " (matches N object[s])", and, when
 * no Lodestring tells the object from others, ": no Lodestring tells them apart" after the count.
 */
std::string FormatBestLodestringLogMessage(const FLodexBestLocator& Best);

/**
 * Logs the best Lodestring of every non-null selected actor, in selection order, with the number of objects it
 * matches, and copies them all to the clipboard, one a line (joined with "\r\n"). An actor that is not in the
 * scene is logged as a warning and copied as nothing. An empty selection does nothing. Returns the Lodestrings
 * copied, in order.
 */
std::vector<std::string> PrintSelectedBestLodestrings(
	const FLodexSceneIndex& Index, const ILodexActorSelection& Selection, ILodexOutput& Output);
