// Copyright Lodex contributors.
#pragma once

#include "EngineJson.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

/** The fields of a JSON object whose values are all strings, in order. */
using FJsonStringFields = std::vector<std::pair<std::string, std::string>>;

/**
 * The text of a JSON object (a plug-in descriptor), read as Descriptor, with one more element at the end of its
 * "Modules" list (the member the engine takes for it, its name in any case; made when the object has none). Every other
 * byte stays as it was: key order, number text (1.50), escapes, blanks, line ends, a byte-order mark. The new text
 * follows its neighbours: on lines of its own, indented like the list's other entries (or one step deeper than the
 * "Modules" key), when they are on lines of their own; on the same line otherwise. Descriptor must be Text read by
 * ReadEngineJson, an object whose "Modules", if any, is a list.
 */
std::string AddToDescriptorModules(
	const std::string& Text, const FEngineJsonValue& Descriptor, const FJsonStringFields& Entry);

/** The entry `lodex install` lists the module with: an editor module, loaded once the engine has started. */
const FJsonStringFields& GetLodexModuleEntry();

/** What an install does to the plug-in descriptor. */
struct FDescriptorUpdate
{
	/** The descriptor's new text, when the module has to be added; unset when it is listed already. */
	std::optional<std::string> NewText;
	/** Set when the descriptor already lists the module in a form other than the one the install writes. */
	std::string ExistingEntryNote;
};

/**
 * Reads a plug-in descriptor's text as the engine does (ReadEngineJson) and works out the install's change to it,
 * in memory: nothing when "Modules" already lists the module, otherwise the text with GetLodexModuleEntry() added
 * by AddToDescriptorModules. As the engine, it finds "Modules", "Name" and "Type" by their names ignoring case
 * (the last of a name counting), and compares module names and types ignoring case. A descriptor that is not a
 * JSON object, or whose "Modules" is not a list, is refused with one line in OutError that starts with SourceName
 * (for malformed JSON, "SourceName:LINE:COLUMN: not valid JSON: ").
 */
bool PlanDescriptorUpdate(
	const std::string& Text, const std::string& SourceName, FDescriptorUpdate& Out, std::string& OutError);
