// Copyright Lodex contributors.
#pragma once

#include <string>

/** Verbosities the module writes at, named as the engine's log names them. */
enum class ELodexLogVerbosity
{
	Log,
	Warning,
};

/** The log category every line of the module goes to. */
inline constexpr const char* LodexLogCategory = "LogTemp";

/** Where the module's text for the user goes: the editor log and the system clipboard. */
class ILodexOutput
{
public:
	virtual ~ILodexOutput() = default;

	/** Writes one line to the log category "LogTemp". */
	virtual void Log(ELodexLogVerbosity Verbosity, const std::string& Message) = 0;

	/** Replaces the clipboard's content with the text. A failure to write it is not reported. */
	virtual void CopyToClipboard(const std::string& Text) = 0;
};

/** The line as the engine's log renders it: "LogTemp: " then, above Log verbosity, "Warning: ", then the message. */
std::string FormatLodexLogLine(ELodexLogVerbosity Verbosity, const std::string& Message);
