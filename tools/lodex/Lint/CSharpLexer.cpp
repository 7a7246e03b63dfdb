// Copyright Lodex contributors.
#include "CSharpLexer.h"

#include "CSharpDirectives.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <limits>

namespace
{
	bool IsIdentifierChar(char Char)
	{
		const unsigned char Byte = static_cast<unsigned char>(Char);
		return (Char >= 'a' && Char <= 'z') || (Char >= 'A' && Char <= 'Z') || (Char >= '0' && Char <= '9') ||
			Char == '_' || Byte >= 0x80;
	}

	/** How deep interpolated strings nest in holes before the holes are passed over unread. */
	constexpr std::size_t CSharpHoleDepthLimit = 256;

	class FCSharpScanner
	{
	public:
		explicit FCSharpScanner(const std::string& InSource)
			: S(InSource)
			, N(std::min<std::size_t>(InSource.size(), std::numeric_limits<std::uint32_t>::max()))
		{
			if (S.compare(0, 3, "\xEF\xBB\xBF") == 0)
			{
				Pos = 3;
			}
		}

		FCSharpTokens Run()
		{
			while (Pos < N)
			{
				ScanOne();
			}
			return std::move(Out);
		}

	private:
		char At(std::size_t Offset = 0) const { return Pos + Offset < N ? S[Pos + Offset] : '\0'; }
		void Advance(std::size_t Count = 1) { Pos = Pos + Count < N ? Pos + Count : N; }
		std::size_t BreakAt(std::size_t Offset) const { return Offset < N ? CSharpLineBreakAt(S, Offset) : 0; }
		/** Passes over the rest of the line, its line break included. */
		void SkipLine()
		{
			while (Pos < N && BreakAt(Pos) == 0)
			{
				++Pos;
			}
			Advance(BreakAt(Pos));
		}
		FCSharpToken& Push(ECSharpToken Kind)
		{
			bLineStart = false;
			FCSharpToken Token;
			Token.Kind = Kind;
			Token.Offset = static_cast<std::uint32_t>(Pos);
			Out.Tokens.push_back(Token);
			return Out.Tokens.back();
		}
		FCSharpStringValue& PushString()
		{
			FCSharpToken& Token = Push(ECSharpToken::String);
			Token.Value = static_cast<std::uint32_t>(Out.Strings.size());
			Out.Strings.emplace_back();
			return Out.Strings.back();
		}
		/** The string literal just read ends here: past its closing quotes, before a "u8" suffix. */
		void EndStringToken()
		{
			FCSharpToken& Token = Out.Tokens.back();
			Token.Length = static_cast<std::uint32_t>(Pos - Token.Offset);
		}
		std::size_t QuotesAt(std::size_t From) const
		{
			std::size_t Count = 0;
			while (From + Count < N && S[From + Count] == '"')
			{
				++Count;
			}
			return Count;
		}

		/** A directive at Pos ('#'): applies it, then passes over the lines a condition leaves out. */
		void ScanDirective()
		{
			for (;;)
			{
				const std::size_t Begin = Pos + 1;
				std::size_t End = Begin;
				while (End < N && BreakAt(End) == 0)
				{
					++End;
				}
				Pos = End + BreakAt(End);
				Directives.Apply(std::string_view(S).substr(Begin, End - Begin));
				if (Directives.IsActive())
				{
					bLineStart = true;
					return;
				}
				// Left out: only the next directive line counts.
				for (;;)
				{
					while (Pos < N && (At() == ' ' || At() == '\t' || At() == '\v' || At() == '\f'))
					{
						++Pos;
					}
					if (Pos >= N || At() == '#')
					{
						break;
					}
					SkipLine();
				}
				if (Pos >= N)
				{
					return;
				}
			}
		}

		void ScanOne()
		{
			const char Char = At();
			const std::size_t Break = BreakAt(Pos);
			if (Break > 0)
			{
				Advance(Break);
				bLineStart = HoleDepth == 0;
			}
			else if (Char == ' ' || Char == '\t' || Char == '\f' || Char == '\v')
			{
				Advance();
			}
			else if (Char == '#' && bLineStart)
			{
				ScanDirective();
			}
			else if (Char == '/' && At(1) == '/')
			{
				while (Pos < N && BreakAt(Pos) == 0)
				{
					Advance();
				}
			}
			else if (Char == '/' && At(1) == '*')
			{
				bLineStart = false;
				Advance(2);
				while (Pos < N && !(At() == '*' && At(1) == '/'))
				{
					Advance();
				}
				Advance(2);
			}
			else if (Char == '"')
			{
				const std::size_t Start = Pos;
				FCSharpStringValue& Value = PushString();
				if (QuotesAt(Pos) >= 3)
				{
					// Each byte of a raw literal's value points at the literal: its lines lose their indentation.
					Value.Text = ReadRaw();
					Value.Offsets.assign(Value.Text.size(), static_cast<std::uint32_t>(Start));
				}
				else
				{
					Value.Text = ReadRegular(Value.Offsets);
				}
				EndStringToken();
				SkipUtf8Suffix();
			}
			else if (Char == '@' && At(1) == '"')
			{
				FCSharpStringValue& Value = PushString();
				Advance();
				Value.Text = ReadVerbatim(Value.Offsets);
				EndStringToken();
				SkipUtf8Suffix();
			}
			else if (Char == '$' || (Char == '@' && At(1) == '$'))
			{
				Push(ECSharpToken::Other);
				SkipInterpolated();
			}
			else if (Char == '\'')
			{
				Push(ECSharpToken::Other);
				Advance();
				while (Pos < N && At() != '\'' && BreakAt(Pos) == 0)
				{
					Advance(At() == '\\' ? 2 : 1);
				}
				Advance(BreakAt(Pos) == 0 ? 1 : 0);
			}
			else if (IsIdentifierChar(Char) && !(Char >= '0' && Char <= '9') && BreakAt(Pos) == 0)
			{
				FCSharpToken& Token = Push(ECSharpToken::Identifier);
				while (Pos < N && IsIdentifierChar(At()) && BreakAt(Pos) == 0)
				{
					Advance();
				}
				Token.Length = static_cast<std::uint32_t>(Pos - Token.Offset);
			}
			else if (Char == '@' && IsIdentifierChar(At(1)))
			{
				Advance(); // a verbatim identifier: @class is the identifier class
			}
			else if (Char >= '0' && Char <= '9')
			{
				Push(ECSharpToken::Other);
				while (Pos < N && (IsIdentifierChar(At()) || At() == '.') && BreakAt(Pos) == 0)
				{
					Advance();
				}
			}
			else
			{
				FCSharpToken& Token = Push(ECSharpToken::Punctuation);
				Token.Character = Char;
				Token.Length = 1;
				Advance();
			}
		}

		void SkipUtf8Suffix()
		{
			if ((At() == 'u' || At() == 'U') && At(1) == '8')
			{
				Advance(2);
			}
		}

		/** Gives the bytes added to Value since the last call the source offset From. */
		static void MarkFrom(const std::string& Value, std::vector<std::uint32_t>& Offsets, std::size_t From)
		{
			Offsets.resize(Value.size(), static_cast<std::uint32_t>(From));
		}

		/** "..." with C# escapes; an unterminated literal ends at the end of its line. */
		std::string ReadRegular(std::vector<std::uint32_t>& Offsets)
		{
			std::string Value;
			LodexText::FUtf16Decoder Decoder(Value);
			Advance();
			// A surrogate pair's bytes come out with its second half: they point at the first.
			constexpr std::size_t NoPending = static_cast<std::size_t>(-1);
			std::size_t Pending = NoPending;
			while (Pos < N && At() != '"' && BreakAt(Pos) == 0)
			{
				const std::size_t From = Pos;
				const std::size_t Origin = Pending != NoPending ? Pending : From;
				if (At() != '\\')
				{
					Decoder.Flush();
					Value += At();
					Advance();
					MarkFrom(Value, Offsets, Origin);
					Pending = NoPending;
					continue;
				}
				const char Escape = BreakAt(Pos + 1) == 0 ? At(1) : '\0';
				Advance(Escape != '\0' ? 2 : 1);
				ReadEscape(Escape, Value, Decoder);
				MarkFrom(Value, Offsets, Origin);
				Pending = Decoder.IsHolding() ? From : NoPending;
			}
			Decoder.Flush();
			MarkFrom(Value, Offsets, Pending != NoPending ? Pending : Pos);
			Advance(At() == '"' ? 1 : 0); // the closing quote
			return Value;
		}

		void ReadEscape(char Escape, std::string& Value, LodexText::FUtf16Decoder& Decoder)
		{
			switch (Escape)
			{
				case '\'':
				case '"':
				case '\\':
					Decoder.Unit(static_cast<unsigned char>(Escape));
					break;
				case '0':
					Decoder.Unit(0);
					break;
				case 'a':
					Decoder.Unit(7);
					break;
				case 'b':
					Decoder.Unit(8);
					break;
				case 'e':
					Decoder.Unit(27);
					break;
				case 'f':
					Decoder.Unit(12);
					break;
				case 'n':
					Decoder.Unit(10);
					break;
				case 'r':
					Decoder.Unit(13);
					break;
				case 't':
					Decoder.Unit(9);
					break;
				case 'v':
					Decoder.Unit(11);
					break;
				case 'x':
				case 'u':
				case 'U':
				{
					const std::size_t MaxDigits = Escape == 'U' ? 8 : 4;
					std::uint32_t Code = 0;
					std::size_t Digits = 0;
					while (Digits < MaxDigits && LodexText::HexDigitValue(At()) >= 0)
					{
						Code = Code * 16 + static_cast<std::uint32_t>(LodexText::HexDigitValue(At()));
						Advance();
						++Digits;
					}
					if (Escape == 'U' && Code > 0xFFFF)
					{
						Decoder.Flush();
						LodexText::AppendUtf8(Value, Code <= 0x10FFFF ? Code : 0xFFFD);
					}
					else
					{
						Decoder.Unit(Code);
					}
					break;
				}
				default:
					// Not C#; kept as written.
					Decoder.Flush();
					Value += '\\';
					if (Escape != '\0')
					{
						Value += Escape;
					}
					break;
			}
		}

		/** @"..." where "" stands for one quote; the opening quote is at Pos. */
		std::string ReadVerbatim(std::vector<std::uint32_t>& Offsets)
		{
			std::string Value;
			Advance();
			while (Pos < N)
			{
				const std::size_t From = Pos;
				if (At() == '"')
				{
					if (At(1) != '"')
					{
						Advance();
						break;
					}
					Advance();
				}
				Value += At();
				Advance();
				MarkFrom(Value, Offsets, From);
			}
			return Value;
		}

		/**
		 * """...""" (three quotes or more). On one line the content is taken as it stands; over several lines
		 * the opening and closing lines go, and the closing line's indentation is taken off every line.
		 */
		std::string ReadRaw()
		{
			const std::size_t Quotes = QuotesAt(Pos);
			Advance(Quotes);
			const std::size_t Begin = Pos;
			std::size_t End = N;
			while (Pos < N)
			{
				const std::size_t Run = QuotesAt(Pos);
				if (Run >= Quotes)
				{
					End = Pos;
					Advance(Run);
					break;
				}
				Advance(Run > 0 ? Run : 1);
			}
			// The content's lines, split at any line break.
			std::vector<std::pair<std::size_t, std::size_t>> Lines;
			std::size_t From = Begin;
			for (std::size_t At = Begin; At < End;)
			{
				const std::size_t Break = BreakAt(At);
				if (Break == 0)
				{
					++At;
					continue;
				}
				Lines.emplace_back(From, At);
				At += Break;
				From = At;
			}
			Lines.emplace_back(From, End);
			if (Lines.size() == 1)
			{
				return S.substr(Begin, End - Begin);
			}
			const std::string_view Source(S);
			const std::string_view Indent = Source.substr(Lines.back().first, Lines.back().second - Lines.back().first);
			std::string Value;
			for (std::size_t Index = 1; Index + 1 < Lines.size(); ++Index)
			{
				std::string_view LineText = Source.substr(Lines[Index].first, Lines[Index].second - Lines[Index].first);
				Value += Index > 1 ? "\n" : "";
				if (LineText.substr(0, Indent.size()) == Indent)
				{
					LineText.remove_prefix(Indent.size());
				}
				Value.append(LineText.data(), LineText.size());
			}
			return Value;
		}

		/** $"...", $@"...", @$"...", $"""...""": the text is passed over, the holes are scanned as code. */
		void SkipInterpolated()
		{
			bool bVerbatim = false;
			while (At() == '$' || At() == '@')
			{
				bVerbatim = bVerbatim || At() == '@';
				Advance();
			}
			if (At() != '"')
			{
				return;
			}
			if (QuotesAt(Pos) >= 3)
			{
				ReadRaw(); // holes of raw interpolations are not looked into
				return;
			}
			Advance();
			while (Pos < N)
			{
				const char Char = At();
				if (Char == '\\' && !bVerbatim)
				{
					Advance(BreakAt(Pos + 1) == 0 ? 2 : 1);
				}
				else if (Char == '"')
				{
					if (bVerbatim && At(1) == '"')
					{
						Advance(2);
						continue;
					}
					Advance();
					return;
				}
				else if (BreakAt(Pos) != 0 && !bVerbatim)
				{
					return;
				}
				else if (Char == '{' && At(1) == '{')
				{
					Advance(2);
				}
				else if (Char == '{')
				{
					Advance();
					ScanHole();
				}
				else
				{
					Advance();
				}
			}
		}

		/** The code of an interpolation hole, up to its closing brace. */
		void ScanHole()
		{
			if (HoleDepth >= CSharpHoleDepthLimit)
			{
				// Nested too deep to read: passed over to the brace that closes it.
				for (std::size_t Depth = 0; Pos < N; Advance())
				{
					Depth += At() == '{' ? 1 : 0;
					if (At() == '}' && Depth-- == 0)
					{
						Advance();
						return;
					}
				}
				return;
			}
			++HoleDepth;
			int Depth = 0;
			while (Pos < N)
			{
				if (At() == '}' && Depth == 0)
				{
					Advance();
					break;
				}
				const std::size_t Before = Out.Tokens.size();
				ScanOne();
				if (Out.Tokens.size() > Before && Out.Tokens.back().Kind == ECSharpToken::Punctuation)
				{
					Depth += Out.Tokens.back().Character == '{' ? 1 : 0;
					Depth -= Out.Tokens.back().Character == '}' ? 1 : 0;
				}
			}
			--HoleDepth;
		}

		const std::string& S;
		std::size_t N;
		std::size_t Pos = 0;
		/** Whether only blanks precede Pos on its line, so that a '#' there begins a directive. */
		bool bLineStart = true;
		/** How many interpolation holes Pos is in (a directive is never read in one). */
		std::size_t HoleDepth = 0;
		FCSharpDirectives Directives;
		FCSharpTokens Out;
	};
}

std::size_t CSharpLineBreakAt(const std::string& Text, std::size_t Offset)
{
	const std::size_t Size = Text.size();
	const unsigned char Byte = static_cast<unsigned char>(Text[Offset]);
	if (Byte == '\n')
	{
		return 1;
	}
	if (Byte == '\r')
	{
		return Offset + 1 < Size && Text[Offset + 1] == '\n' ? 2 : 1;
	}
	if (Byte == 0xC2 && Offset + 1 < Size && static_cast<unsigned char>(Text[Offset + 1]) == 0x85)
	{
		return 2;
	}
	if (Byte == 0xE2 && Offset + 2 < Size && static_cast<unsigned char>(Text[Offset + 1]) == 0x80 &&
		(static_cast<unsigned char>(Text[Offset + 2]) == 0xA8 || static_cast<unsigned char>(Text[Offset + 2]) == 0xA9))
	{
		return 3;
	}
	return 0;
}

FCSharpTokens ScanCSharpTokens(const std::string& Source)
{
	return FCSharpScanner(Source).Run();
}
