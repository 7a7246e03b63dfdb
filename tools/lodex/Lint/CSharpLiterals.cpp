// Copyright Lodex contributors.
#include "CSharpLiterals.h"

#include "CSharpLexer.h"

#include <algorithm>

namespace
{
	bool IsPunctuation(const FCSharpToken& Token, const char* Text)
	{
		return Token.Kind == ECSharpToken::Punctuation && Token.Text == Text;
	}
}

std::vector<FCSharpApiString> FindApiStringArguments(const std::string& Source)
{
	const std::vector<FCSharpToken> Tokens = ScanCSharpTokens(Source);
	const std::size_t Count = Tokens.size();
	std::vector<FCSharpApiString> Found;
	for (std::size_t Start = 0; Start < Count; ++Start)
	{
		if (Tokens[Start].Kind != ECSharpToken::Identifier || Tokens[Start].Text != "api")
		{
			continue;
		}
		std::size_t At = Start + 1;
		if (At < Count && IsPunctuation(Tokens[At], "?"))
		{
			++At;
		}
		if (At + 1 >= Count || !IsPunctuation(Tokens[At], ".") || Tokens[At + 1].Kind != ECSharpToken::Identifier)
		{
			continue;
		}
		const std::string Method = Tokens[At + 1].Text;
		At += 2;
		if (At < Count && IsPunctuation(Tokens[At], "<"))
		{
			int Angles = 0;
			for (; At < Count; ++At)
			{
				Angles += IsPunctuation(Tokens[At], "<") ? 1 : 0;
				Angles -= IsPunctuation(Tokens[At], ">") ? 1 : 0;
				if (Angles == 0 || IsPunctuation(Tokens[At], "(") || IsPunctuation(Tokens[At], ";"))
				{
					break;
				}
			}
			if (Angles != 0)
			{
				continue; // a "<" never closed is a comparison, not type arguments: no call
			}
			++At;
		}
		if (At >= Count || !IsPunctuation(Tokens[At], "("))
		{
			continue;
		}

		// The arguments: split at the commas outside any bracket, up to the closing parenthesis.
		int Depth = 0;
		std::size_t ArgumentStart = At + 1;
		for (std::size_t Index = At + 1; Index < Count; ++Index)
		{
			const FCSharpToken& Token = Tokens[Index];
			const bool bOpen = IsPunctuation(Token, "(") || IsPunctuation(Token, "[") || IsPunctuation(Token, "{");
			const bool bClose = IsPunctuation(Token, ")") || IsPunctuation(Token, "]") || IsPunctuation(Token, "}");
			if (bOpen)
			{
				++Depth;
				continue;
			}
			const bool bEnd = bClose && Depth == 0;
			if (bClose && !bEnd)
			{
				--Depth;
				continue;
			}
			if (bEnd || (Depth == 0 && IsPunctuation(Token, ",")))
			{
				std::size_t First = ArgumentStart;
				if (Index - First == 3 && Tokens[First].Kind == ECSharpToken::Identifier &&
					IsPunctuation(Tokens[First + 1], ":"))
				{
					First += 2; // a named argument
				}
				if (Index - First == 1 && Tokens[First].Kind == ECSharpToken::String)
				{
					Found.push_back({Tokens[First].Text, Tokens[First].Line, Tokens[First].Column, Method,
						Tokens[First].Offsets, Tokens[First].Offset, Tokens[First].End});
				}
				ArgumentStart = Index + 1;
				if (bEnd)
				{
					break;
				}
			}
			if (IsPunctuation(Token, ";"))
			{
				break; // never past the end of a statement
			}
		}
	}
	// A call is met before the calls inside its arguments, whose literals may come first.
	std::stable_sort(Found.begin(), Found.end(),
		[](const FCSharpApiString& Left, const FCSharpApiString& Right)
		{ return Left.Line != Right.Line ? Left.Line < Right.Line : Left.Column < Right.Column; });
	return Found;
}

FCSharpPosition GetCSharpSourcePosition(const std::string& Source, std::size_t Offset)
{
	FCSharpPosition Position;
	std::size_t LineStart = Source.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
	const std::size_t End = std::min(Offset, Source.size());
	for (std::size_t At = LineStart; At < End; ++At)
	{
		if (Source[At] == '\n')
		{
			++Position.Line;
			LineStart = At + 1;
		}
	}
	for (std::size_t At = LineStart; At < End; ++At)
	{
		Position.Column += (static_cast<unsigned char>(Source[At]) & 0xC0) != 0x80 ? 1 : 0;
	}
	return Position;
}
