// Copyright Lodex contributors.
#pragma once

#include "LodexDebugger/Core/Text/LodexOutput.h"

#include <ostream>
#include <string>

/** Where the tool puts clipboard text. */
enum class EClipboardTarget
{
	/** A file, written whole each time, so that it ends holding the last text copied. */
	File,
	/** The desktop's clipboard when a clipboard tool is reachable, otherwise a notice. */
	System,
	/** Kept in memory only (the demo shows it). */
	Memory,
};

/** The editor's log and clipboard for the tool: log lines rendered as the engine's log renders them. */
class FHostOutput final : public ILodexOutput
{
public:
	FHostOutput(std::ostream& InLogStream, std::ostream& InErrStream, EClipboardTarget InTarget,
		std::string InClipboardFile = std::string());

	//~ Begin ILodexOutput Interface
	void Log(ELodexLogVerbosity Verbosity, const std::string& Message) override;
	void CopyToClipboard(const std::string& Text) override;
	//~ End ILodexOutput Interface

	/** Whether every copy reached its target. */
	bool AllCopiesSucceeded() const { return bAllCopiesSucceeded; }
	bool HasClipboardText() const { return bHasClipboardText; }
	const std::string& GetClipboardText() const { return ClipboardText; }

private:
	std::ostream& LogStream;
	std::ostream& ErrStream;
	EClipboardTarget Target;
	std::string ClipboardFile;
	std::string ClipboardText;
	bool bHasClipboardText = false;
	bool bAllCopiesSucceeded = true;
	bool bNoticeShown = false;
};
