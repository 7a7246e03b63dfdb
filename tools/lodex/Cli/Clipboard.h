// Copyright Lodex contributors.
#pragma once

#include <string>

/**
 * Copies text to the desktop's clipboard through the first reachable clipboard tool (wl-copy on Wayland,
 * xclip or xsel on X11, pbcopy on macOS, clip.exe under WSL), trying the next when one fails. Returns false
 * when none is reachable (OutFailure empty) or every one tried failed (OutFailure says how the last did).
 * A tool that quits before reading the text does not stop the caller.
 */
bool CopyToSystemClipboard(const std::string& Text, std::string& OutFailure);
