// Copyright Lodex contributors.
#include "CSharpLexer.h"

#include "LodexDebugger/Core/Text/LodexText.h"

namespace
{
	bool IsIdentifierChar(char Char)
	{
		const unsigned char Byte = static_cast<unsigned char>(Char);
		return (Char >= 'a' && Char <= 'z') || (Char >= 'A' && Char <= 'Z') || (Char >= '0' && Char <= '9') ||
			Char == '_' || Byte >= 0x80;
	}

	/** UTF-16 code units from escapes, with surrogate pairs joined; a lone surrogate becomes U+FFFD. */
	class FUtf16Joiner
	{
	public:
		explicit FUtf16Joiner(std::string& InOut)
			: Out(InOut)
		{
		}
		void Unit(std::uint32_t Value)
		{
			if (Value >= 0xDC00 && Value <= 0xDFFF && High != 0)
			{
				LodexText::AppendUtf8(Out, 0x10000 + ((High - 0xD800) << 10) + (Value - 0xDC00));
				High = 0;
				return;
			}
			Flush();
			if (Value >= 0xD800 && Value <= 0xDBFF)
			{
				High = Value;
				return;
			}
			LodexText::AppendUtf8(Out, (Value >= 0xDC00 && Value <= 0xDFFF) ? 0xFFFD : Value);
		}
		bool IsHolding() const { return High != 0; }
		void Flush()
		{
			if (High != 0)
			{
				LodexText::AppendUtf8(Out, 0xFFFD);
				High = 0;
			}
		}

	private:
		std::string& Out;
		std::uint32_t High = 0;
	};

	class FCSharpScanner
	{
	public:
		explicit FCSharpScanner(const std::string& InSource)
			: S(InSource)
			, N(InSource.size())
		{
			if (S.compare(0, 3, "\xEF\xBB\xBF") == 0)
			{
				Pos = LineStart = 3;
			}
		}

		std::vector<FCSharpToken> Run()
		{
			while (Pos < N)
			{
				ScanOne();
			}
			return std::move(Tokens);
		}

	private:
		char At(std::size_t Offset = 0) const { return Pos + Offset < N ? S[Pos + Offset] : '\0'; }
		void Advance(std::size_t Count = 1)
		{
			for (; Count > 0 && Pos < N; --Count, ++Pos)
			{
				if (S[Pos] == '\n')
				{
					++Line;
					LineStart = Pos + 1;
				}
			}
		}
		std::size_t Column() const
		{
			std::size_t Characters = 0;
			for (std::size_t At = LineStart; At < Pos; ++At)
			{
				Characters += (static_cast<unsigned char>(S[At]) & 0xC0) != 0x80 ? 1 : 0;
			}
			return Characters + 1;
		}
		FCSharpToken& Push(ECSharpToken Kind)
		{
			Tokens.push_back({Kind, std::string(), Line, Column(), Pos, {}});
			return Tokens.back();
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

		void ScanOne()
		{
			const char Char = At();
			if (Char == ' ' || Char == '\t' || Char == '\r' || Char == '\n' || Char == '\f' || Char == '\v')
			{
				Advance();
			}
			else if (Char == '/' && At(1) == '/')
			{
				while (Pos < N && S[Pos] != '\n')
				{
					Advance();
				}
			}
			else if (Char == '/' && At(1) == '*')
			{
				Advance(2);
				while (Pos < N && !(At() == '*' && At(1) == '/'))
				{
					Advance();
				}
				Advance(2);
			}
			else if (Char == '"')
			{
				FCSharpToken& Token = Push(ECSharpToken::String);
				if (QuotesAt(Pos) >= 3)
				{
					// Each byte of a raw literal's value points at the literal: its lines lose their indentation.
					Token.Text = ReadRaw();
					Token.Offsets.assign(Token.Text.size(), static_cast<std::uint32_t>(Token.Offset));
				}
				else
				{
					Token.Text = ReadRegular(Token.Offsets);
				}
				Token.End = Pos;
				SkipUtf8Suffix();
			}
			else if (Char == '@' && At(1) == '"')
			{
				FCSharpToken& Token = Push(ECSharpToken::String);
				Advance();
				Token.Text = ReadVerbatim(Token.Offsets);
				Token.End = Pos;
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
				while (Pos < N && At() != '\'' && At() != '\n')
				{
					Advance(At() == '\\' ? 2 : 1);
				}
				Advance();
			}
			else if (IsIdentifierChar(Char) && !(Char >= '0' && Char <= '9'))
			{
				FCSharpToken& Token = Push(ECSharpToken::Identifier);
				while (Pos < N && IsIdentifierChar(At()))
				{
					Token.Text += At();
					Advance();
				}
			}
			else if (Char == '@' && IsIdentifierChar(At(1)))
			{
				Advance(); // a verbatim identifier: @class is the identifier class
			}
			else if (Char >= '0' && Char <= '9')
			{
				Push(ECSharpToken::Other);
				while (Pos < N && (IsIdentifierChar(At()) || At() == '.'))
				{
					Advance();
				}
			}
			else
			{
				Push(ECSharpToken::Punctuation).Text = std::string(1, Char);
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
			FUtf16Joiner Joiner(Value);
			Advance();
			// A surrogate pair's bytes come out with its second half: they point at the first.
			constexpr std::size_t NoPending = static_cast<std::size_t>(-1);
			std::size_t Pending = NoPending;
			while (Pos < N && At() != '"' && At() != '\n')
			{
				const std::size_t From = Pos;
				const std::size_t Origin = Pending != NoPending ? Pending : From;
				if (At() != '\\')
				{
					Joiner.Flush();
					Value += At();
					Advance();
					MarkFrom(Value, Offsets, Origin);
					Pending = NoPending;
					continue;
				}
				const char Escape = At(1);
				Advance(2);
				switch (Escape)
				{
					case '\'':
					case '"':
					case '\\':
						Joiner.Unit(static_cast<unsigned char>(Escape));
						break;
					case '0':
						Joiner.Unit(0);
						break;
					case 'a':
						Joiner.Unit(7);
						break;
					case 'b':
						Joiner.Unit(8);
						break;
					case 'e':
						Joiner.Unit(27);
						break;
					case 'f':
						Joiner.Unit(12);
						break;
					case 'n':
						Joiner.Unit(10);
						break;
					case 'r':
						Joiner.Unit(13);
						break;
					case 't':
						Joiner.Unit(9);
						break;
					case 'v':
						Joiner.Unit(11);
						break;
					case 'x':
					case 'u':
					case 'U':
					{
						const std::size_t MaxDigits = Escape == 'x' ? 4 : (Escape == 'u' ? 4 : 8);
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
							Joiner.Flush();
							LodexText::AppendUtf8(Value, Code <= 0x10FFFF ? Code : 0xFFFD);
						}
						else
						{
							Joiner.Unit(Code);
						}
						break;
					}
					default:
						// Not C#; kept as written.
						Joiner.Flush();
						Value += '\\';
						Value += Escape;
						break;
				}
				MarkFrom(Value, Offsets, Origin);
				Pending = Joiner.IsHolding() ? From : NoPending;
			}
			Joiner.Flush();
			MarkFrom(Value, Offsets, Pending != NoPending ? Pending : Pos);
			Advance(); // the closing quote
			return Value;
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
			const std::string Content = S.substr(Begin, End - Begin);
			const std::size_t FirstBreak = Content.find('\n');
			if (FirstBreak == std::string::npos)
			{
				return Content;
			}
			std::vector<std::string> Lines;
			std::size_t From = FirstBreak + 1;
			for (;;)
			{
				const std::size_t Break = Content.find('\n', From);
				std::string LineText =
					Content.substr(From, Break == std::string::npos ? std::string::npos : Break - From);
				if (!LineText.empty() && LineText.back() == '\r')
				{
					LineText.pop_back();
				}
				Lines.push_back(LineText);
				if (Break == std::string::npos)
				{
					break;
				}
				From = Break + 1;
			}
			const std::string Indent = Lines.back();
			Lines.pop_back();
			std::string Value;
			for (std::size_t Index = 0; Index < Lines.size(); ++Index)
			{
				const std::string& LineText = Lines[Index];
				Value += Index > 0 ? "\n" : "";
				Value += LineText.compare(0, Indent.size(), Indent) == 0 ? LineText.substr(Indent.size()) : LineText;
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
					Advance(2);
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
				else if (Char == '\n' && !bVerbatim)
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
			int Depth = 0;
			while (Pos < N)
			{
				if (At() == '}' && Depth == 0)
				{
					Advance();
					return;
				}
				const std::size_t Before = Tokens.size();
				ScanOne();
				if (Tokens.size() > Before && Tokens.back().Kind == ECSharpToken::Punctuation)
				{
					Depth += Tokens.back().Text == "{" ? 1 : 0;
					Depth -= Tokens.back().Text == "}" ? 1 : 0;
				}
			}
		}

		const std::string& S;
		std::size_t N;
		std::size_t Pos = 0;
		std::size_t Line = 1;
		std::size_t LineStart = 0;
		std::vector<FCSharpToken> Tokens;
	};
}

std::vector<FCSharpToken> ScanCSharpTokens(const std::string& Source)
{
	return FCSharpScanner(Source).Run();
}
