// Copyright Lodex contributors.
#pragma once

#include <string>

/** Writes the text to a file, all or nothing: a temporary file beside it is renamed over it. */
bool WriteFileAtomically(const std::string& Path, const std::string& Text, std::string& OutError);

/**
 * Copies text to the desktop's clipboard through the first reachable clipboard tool (wl-copy on Wayland,
 * xclip or xsel on X11, pbcopy on macOS, clip.exe under WSL). Returns false when none is reachable or the
 * tool failed.
 */
bool CopyToSystemClipboard(const std::string& Text);
