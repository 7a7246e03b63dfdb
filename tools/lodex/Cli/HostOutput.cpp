// Copyright Lodex contributors.
#include "HostOutput.h"

#include "AtomicFile.h"
#include "Clipboard.h"

#include <utility>

FHostOutput::FHostOutput(
	std::ostream& InLogStream, std::ostream& InErrStream, EClipboardTarget InTarget, std::string InClipboardFile)
	: LogStream(InLogStream)
	, ErrStream(InErrStream)
	, Target(InTarget)
	, ClipboardFile(std::move(InClipboardFile))
{
}

void FHostOutput::Log(ELodexLogVerbosity Verbosity, const std::string& Message)
{
	LogStream << FormatLodexLogLine(Verbosity, Message) << "\n";
}

void FHostOutput::CopyToClipboard(const std::string& Text)
{
	ClipboardText = Text;
	bHasClipboardText = true;
	switch (Target)
	{
		case EClipboardTarget::File:
		{
			std::string Error;
			if (!WriteFileAtomically(ClipboardFile, Text, Error))
			{
				bAllCopiesSucceeded = false;
				if (!bNoticeShown)
				{
					ErrStream << "lodex: " << Error << "\n";
					bNoticeShown = true;
				}
			}
			break;
		}
		case EClipboardTarget::System:
		{
			std::string Failure;
			if (!CopyToSystemClipboard(Text, Failure) && !bNoticeShown)
			{
				ErrStream << "lodex: not copied to the clipboard: "
						  << (Failure.empty()
									 ? "no clipboard tool is reachable (tried wl-copy, xclip, xsel, pbcopy, clip.exe)"
									 : Failure)
						  << "; use --clipboard FILE to keep the copied text\n";
				bNoticeShown = true;
			}
			break;
		}
		case EClipboardTarget::Memory:
			break;
	}
}
