// Copyright Lodex contributors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/** CityHash64 (version 1.1) of Size bytes, the hash the engine names its level instances' packages with. */
std::uint64_t LevelInstanceCityHash64(const unsigned char* Bytes, std::size_t Size);

/**
 * The package a Level Instance's level is loaded as in the game: the instanced world's package with `/Temp` before it
 * and `_LevelInstance_<hash>_1` after its short name (`/Temp/Game/Houses/House_LevelInstance_9c3a...e1_1`). The hash
 * is the CityHash64 of the GUIDs of the instance actor and of the actors instancing the levels it lies in, nearest
 * first (ActorGuids: 32 hex digits each, as `FGuid::ToString()` writes them). Empty when a GUID is missing or not
 * one: the game then makes up a new one each time it runs, and no name can be told beforehand.
 */
std::string LevelInstancePackageName(const std::string& WorldPackage, const std::vector<std::string>& ActorGuids);
