// Copyright Lodex contributors.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/**
 * Where the engine mounts a content folder: a plug-in's content (the `Content` folder beside its `NAME.uplugin`)
 * is mounted at `/NAME/`, the game's own at `/Game/`.
 */
std::filesystem::path PluginContentFolder(const std::filesystem::path& Descriptor);

/** The plug-in whose content folder Content is: NAME when Content's parent folder holds NAME.uplugin, else "". */
std::string PluginOfContentFolder(const std::filesystem::path& Content);

/** Whether Bytes begin as a Git LFS pointer file does (`version https://git-lfs.github.com/spec/...`). */
bool IsGitLfsPointer(std::string_view Bytes);

/** The one line for a Git LFS pointer found where a scene or level was expected; Shown names the file. */
std::string GitLfsPointerError(const std::string& Shown);
