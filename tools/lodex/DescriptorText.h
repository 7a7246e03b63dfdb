// Copyright Lodex contributors.
#pragma once

#include <string>
#include <utility>
#include <vector>

/** The fields of a JSON object whose values are all strings, in order. */
using FJsonStringFields = std::vector<std::pair<std::string, std::string>>;

/**
 * The text of a JSON object (a plug-in descriptor) with one more element at the end of its "Modules" list (made
 * when the object has none). Every other byte stays as it was: key order, number text (1.50), escapes, blanks,
 * line ends, a byte-order mark. The new text follows its neighbours: on lines of its own, indented like the
 * list's other entries (or one step deeper than the "Modules" key), when they are on lines of their own; on the
 * same line otherwise. Text must parse as a JSON object whose "Modules", if any, is a list.
 */
std::string AddToDescriptorModules(const std::string& Text, const FJsonStringFields& Entry);
