// Copyright Lodex contributors.
#pragma once

#include <string>

/**
 * The bytes of a whole file, as the commands read their inputs. On failure returns false with OutError set to
 * "<Path>: cannot open the file", or "<Path>: cannot read the file" when it opens but reading fails (a folder,
 * an I/O error); OutBytes is then left as it was.
 */
bool ReadWholeFile(const std::string& Path, std::string& OutBytes, std::string& OutError);
