// Copyright Lodex contributors.
#include "LodexOutput.h"

std::string FormatLodexLogLine(ELodexLogVerbosity Verbosity, const std::string& Message)
{
	std::string Line = LodexLogCategory;
	Line += ": ";
	if (Verbosity == ELodexLogVerbosity::Warning)
	{
		Line += "Warning: ";
	}
	Line += Message;
	return Line;
}
