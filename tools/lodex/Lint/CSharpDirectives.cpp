// Copyright Lodex contributors.
#include "CSharpDirectives.h"

namespace
{
	constexpr int CSharpConditionDepthLimit = 64;

	bool IsDirectiveBlank(char Char)
	{
		return Char == ' ' || Char == '\t' || Char == '\v' || Char == '\f';
	}

	bool IsSymbolChar(char Char)
	{
		return (Char >= 'a' && Char <= 'z') || (Char >= 'A' && Char <= 'Z') || (Char >= '0' && Char <= '9') ||
			Char == '_' || static_cast<unsigned char>(Char) >= 0x80;
	}

	/** Reads a condition by recursive descent, its depth bounded; any fault makes it false. */
	class FConditionReader
	{
	public:
		FConditionReader(std::string_view InText, const std::set<std::string, std::less<>>& InSymbols)
			: Text(InText)
			, Symbols(InSymbols)
		{
		}

		bool Read()
		{
			const bool bValue = Or(0);
			SkipBlanks();
			return !bFailed && Pos == Text.size() && bValue;
		}

	private:
		void SkipBlanks()
		{
			while (Pos < Text.size() && IsDirectiveBlank(Text[Pos]))
			{
				++Pos;
			}
		}
		bool Take(std::string_view Token)
		{
			SkipBlanks();
			if (Text.substr(Pos, Token.size()) == Token)
			{
				Pos += Token.size();
				return true;
			}
			return false;
		}
		bool Or(int Depth)
		{
			bool bValue = And(Depth);
			while (!bFailed && Take("||"))
			{
				bValue = And(Depth) || bValue;
			}
			return bValue;
		}
		bool And(int Depth)
		{
			bool bValue = Equality(Depth);
			while (!bFailed && Take("&&"))
			{
				bValue = Equality(Depth) && bValue;
			}
			return bValue;
		}
		bool Equality(int Depth)
		{
			bool bValue = Unary(Depth);
			for (;;)
			{
				if (Take("=="))
				{
					bValue = bValue == Unary(Depth);
				}
				else if (Take("!="))
				{
					bValue = bValue != Unary(Depth);
				}
				else
				{
					return bValue;
				}
			}
		}
		bool Unary(int Depth)
		{
			if (Depth > CSharpConditionDepthLimit)
			{
				bFailed = true;
				return false;
			}
			SkipBlanks();
			if (Pos < Text.size() && Text[Pos] == '!' && Text.substr(Pos, 2) != "!=")
			{
				++Pos;
				return !Unary(Depth + 1);
			}
			if (Take("("))
			{
				const bool bValue = Or(Depth + 1);
				if (!Take(")"))
				{
					bFailed = true;
				}
				return bValue;
			}
			const std::size_t Start = Pos;
			while (Pos < Text.size() && IsSymbolChar(Text[Pos]))
			{
				++Pos;
			}
			const std::string_view Symbol = Text.substr(Start, Pos - Start);
			if (Symbol.empty())
			{
				bFailed = true;
				return false;
			}
			return Symbol == "true" || (Symbol != "false" && Symbols.find(Symbol) != Symbols.end());
		}

		std::string_view Text;
		const std::set<std::string, std::less<>>& Symbols;
		std::size_t Pos = 0;
		bool bFailed = false;
	};

	/** The directive's text without a trailing single-line comment and blanks. */
	std::string_view WithoutComment(std::string_view Text)
	{
		const std::size_t Comment = Text.find("//");
		Text = Text.substr(0, Comment);
		while (!Text.empty() && IsDirectiveBlank(Text.back()))
		{
			Text.remove_suffix(1);
		}
		return Text;
	}
}

bool FCSharpDirectives::Evaluate(std::string_view Condition) const
{
	return FConditionReader(WithoutComment(Condition), Symbols).Read();
}

void FCSharpDirectives::Apply(std::string_view Text)
{
	std::size_t Pos = 0;
	while (Pos < Text.size() && IsDirectiveBlank(Text[Pos]))
	{
		++Pos;
	}
	std::size_t End = Pos;
	while (End < Text.size() && Text[End] >= 'a' && Text[End] <= 'z')
	{
		++End;
	}
	const std::string_view Name = Text.substr(Pos, End - Pos);
	const std::string_view Rest = Text.substr(End);
	if (Name == "if")
	{
		FSection Section;
		Section.bParentActive = IsActive();
		Section.bActive = Section.bParentActive && Evaluate(Rest);
		Section.bTaken = Section.bActive;
		Sections.push_back(Section);
	}
	else if (Name == "elif" && !Sections.empty())
	{
		FSection& Section = Sections.back();
		Section.bActive = Section.bParentActive && !Section.bTaken && Evaluate(Rest);
		Section.bTaken = Section.bTaken || Section.bActive;
	}
	else if (Name == "else" && !Sections.empty())
	{
		FSection& Section = Sections.back();
		Section.bActive = Section.bParentActive && !Section.bTaken;
		Section.bTaken = true;
	}
	else if (Name == "endif" && !Sections.empty())
	{
		Sections.pop_back();
	}
	else if ((Name == "define" || Name == "undef") && IsActive())
	{
		const std::string_view Symbol = WithoutComment(Rest);
		std::size_t First = 0;
		while (First < Symbol.size() && IsDirectiveBlank(Symbol[First]))
		{
			++First;
		}
		if (First < Symbol.size())
		{
			const std::string Defined(Symbol.substr(First));
			Name == "define" ? static_cast<void>(Symbols.insert(Defined)) : static_cast<void>(Symbols.erase(Defined));
		}
	}
}
