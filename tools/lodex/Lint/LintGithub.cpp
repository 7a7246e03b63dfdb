// Copyright Lodex contributors.
#include "LintGithub.h"

#include "LintCommand.h"

namespace
{
	std::string EscapeGithubCommand(const std::string& Text, bool bProperty)
	{
		std::string Out;
		for (const char Char : Text)
		{
			switch (Char)
			{
				case '%':
					Out += "%25";
					break;
				case '\r':
					Out += "%0D";
					break;
				case '\n':
					Out += "%0A";
					break;
				case ':':
					Out += bProperty ? "%3A" : ":";
					break;
				case ',':
					Out += bProperty ? "%2C" : ",";
					break;
				default:
					Out += Char;
			}
		}
		return Out;
	}
}

std::string EscapeGithubCommandData(const std::string& Text)
{
	return EscapeGithubCommand(Text, false);
}

std::string EscapeGithubCommandProperty(const std::string& Text)
{
	return EscapeGithubCommand(Text, true);
}

std::string FormatLintReportGithub(const FLodexLintReport& Report, const FLodexLintFormatOptions& Options)
{
	std::string Out;
	for (const FLodexLintDiagnostic& Diagnostic : Report.Diagnostics)
	{
		const FLodexLintRegion& Region = Diagnostic.Region;
		const char* Command = Diagnostic.Severity == ELodexLintSeverity::Error ? "error"
			: Diagnostic.Severity == ELodexLintSeverity::Warning               ? "warning"
																			   : "notice";
		std::string Message = GetLintMessageWithSuggestion(Diagnostic);
		for (const std::string& Note : Diagnostic.Notes)
		{
			Message += "\n" + Note;
		}
		// The end column is the last character's (GitHub's annotations end on a character, not after it); GitHub takes
		// columns only on a region of one line.
		const std::size_t EndColumn =
			Region.Utf16EndColumn > Region.Utf16Column ? Region.Utf16EndColumn - 1 : Region.Utf16Column;
		const std::string Place = Region.EndLine != Region.Line
			? ",endLine=" + std::to_string(Region.EndLine)
			: ",col=" + std::to_string(Region.Utf16Column) + ",endColumn=" + std::to_string(EndColumn);
		Out += "::" + std::string(Command) +
			" file=" + EscapeGithubCommandProperty(GetLintRelativePath(Diagnostic.File, Options.Root)) +
			",line=" + std::to_string(Region.Line) + Place +
			",title=" + EscapeGithubCommandProperty("lodex " + Diagnostic.Rule) +
			"::" + EscapeGithubCommandData(Message) + "\n";
	}
	return Out;
}
