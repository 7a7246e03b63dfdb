// Copyright Lodex contributors.
#pragma once

#include "Lint/CSharpLiterals.h"

#include <string>

/** The api calls' string arguments found in C# source, a line each: "line:column Method [value]". */
inline std::string FoundApiStrings(const std::string& Source)
{
	std::string Text;
	for (const FCSharpApiString& Literal : FindApiStringArguments(Source))
	{
		Text += std::to_string(Literal.Line) + ":" + std::to_string(Literal.Column) + " " + Literal.Method + " [" +
			Literal.Value + "]\n";
	}
	return Text;
}
