// Copyright Lodex contributors.
#include "CSharpLiterals.h"

#include "CSharpLexer.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <algorithm>

namespace
{
	/** The longest identifier the C# compiler accepts (a longer one is error CS0645), in bytes here. */
	constexpr std::uint32_t CSharpIdentifierLimit = 512;

	bool IsPunctuation(const FCSharpToken& Token, char Character)
	{
		return Token.Kind == ECSharpToken::Punctuation && Token.Character == Character;
	}

	bool IsOpening(const FCSharpToken& Token)
	{
		return IsPunctuation(Token, '(') || IsPunctuation(Token, '[') || IsPunctuation(Token, '{');
	}

	bool IsClosing(const FCSharpToken& Token)
	{
		return IsPunctuation(Token, ')') || IsPunctuation(Token, ']') || IsPunctuation(Token, '}');
	}

	/** Whether Token may stand in a type argument list: names, `.`, `,`, `?`, `*`, `::`, brackets, tuple types. */
	bool MayBeInTypeArguments(const FCSharpToken& Token)
	{
		if (Token.Kind == ECSharpToken::Identifier)
		{
			return true;
		}
		if (Token.Kind != ECSharpToken::Punctuation)
		{
			return false;
		}
		const char Character = Token.Character;
		return Character == '<' || Character == '>' || Character == '.' || Character == ',' || Character == '?' ||
			Character == '*' || Character == ':' || Character == '(' || Character == ')' || Character == '[' ||
			Character == ']';
	}

	/**
	 * For each opening bracket, the token that closes it: the next closing bracket of its depth (of any kind), or a
	 * ';' met first (a call's arguments never run past the end of a statement); Count when nothing does. For each
	 * '<', the '>' that closes it when only what a type argument list holds lies between; Count otherwise. One pass.
	 */
	void MatchBrackets(const std::vector<FCSharpToken>& Tokens, std::vector<std::uint32_t>& OutClose,
		std::vector<std::uint32_t>& OutAngleClose)
	{
		const std::size_t Count = Tokens.size();
		OutClose.assign(Count, static_cast<std::uint32_t>(Count));
		OutAngleClose.assign(Count, static_cast<std::uint32_t>(Count));
		std::vector<std::uint32_t> Open;
		std::vector<std::uint32_t> Angles;
		for (std::size_t Index = 0; Index < Count; ++Index)
		{
			const FCSharpToken& Token = Tokens[Index];
			const std::uint32_t Here = static_cast<std::uint32_t>(Index);
			if (IsOpening(Token))
			{
				Open.push_back(Here);
			}
			else if (IsClosing(Token) && !Open.empty())
			{
				OutClose[Open.back()] = Here;
				Open.pop_back();
			}
			else if (IsPunctuation(Token, ';'))
			{
				for (const std::uint32_t Opening : Open)
				{
					OutClose[Opening] = Here;
				}
				Open.clear();
			}
			if (!MayBeInTypeArguments(Token))
			{
				Angles.clear(); // a '<' still open is a comparison
			}
			else if (IsPunctuation(Token, '<'))
			{
				Angles.push_back(Here);
			}
			else if (IsPunctuation(Token, '>') && !Angles.empty())
			{
				OutAngleClose[Angles.back()] = Here;
				Angles.pop_back();
			}
		}
	}

	bool IsApi(const std::string& Source, const FCSharpToken& Token)
	{
		return Token.Kind == ECSharpToken::Identifier && Token.Length == 3 &&
			Source.compare(Token.Offset, 3, "api") == 0;
	}
}

std::vector<FCSharpApiString> FindApiStringArguments(const std::string& Source)
{
	FCSharpTokens Scanned = ScanCSharpTokens(Source);
	const std::vector<FCSharpToken>& Tokens = Scanned.Tokens;
	const std::size_t Count = Tokens.size();
	std::vector<std::uint32_t> Close;
	std::vector<std::uint32_t> AngleClose;
	MatchBrackets(Tokens, Close, AngleClose);
	struct FFound
	{
		std::size_t Token = 0;
		std::size_t Method = 0;
	};
	std::vector<FFound> Found;
	for (std::size_t Start = 0; Start < Count; ++Start)
	{
		if (!IsApi(Source, Tokens[Start]))
		{
			continue;
		}
		std::size_t At = Start + 1;
		if (At < Count && IsPunctuation(Tokens[At], '!'))
		{
			++At; // the null-forgiving operator
		}
		if (At < Count && IsPunctuation(Tokens[At], '?'))
		{
			++At;
		}
		if (At + 1 >= Count || !IsPunctuation(Tokens[At], '.') || Tokens[At + 1].Kind != ECSharpToken::Identifier)
		{
			continue;
		}
		const std::size_t Method = At + 1;
		if (Tokens[Method].Length > CSharpIdentifierLimit)
		{
			continue; // no method the compiler accepts: its identifiers are 512 characters at most
		}
		At += 2;
		if (At < Count && IsPunctuation(Tokens[At], '<'))
		{
			At = AngleClose[At];
			if (At == Count)
			{
				continue; // a "<" never closed is a comparison, not type arguments: no call
			}
			++At;
		}
		if (At >= Count || !IsPunctuation(Tokens[At], '('))
		{
			continue;
		}

		// The arguments: split at the commas outside any bracket, up to the closing parenthesis; a bracket inside
		// is passed over whole, so each token is looked at by the one call whose arguments hold it directly.
		const std::size_t End = Close[At];
		std::size_t ArgumentStart = At + 1;
		for (std::size_t Index = At + 1; Index <= End && Index < Count;)
		{
			const FCSharpToken& Token = Tokens[Index];
			if (Index != End && IsOpening(Token))
			{
				Index = Close[Index];
				if (Index < Count && IsPunctuation(Tokens[Index], ';'))
				{
					break; // never past the end of a statement
				}
				++Index;
				continue;
			}
			const bool bEnd = Index == End;
			if (bEnd || IsPunctuation(Token, ','))
			{
				std::size_t First = ArgumentStart;
				if (Index - First == 3 && Tokens[First].Kind == ECSharpToken::Identifier &&
					IsPunctuation(Tokens[First + 1], ':'))
				{
					First += 2; // a named argument
				}
				if (Index - First == 1 && Tokens[First].Kind == ECSharpToken::String)
				{
					Found.push_back({First, Method});
				}
				ArgumentStart = Index + 1;
			}
			if (bEnd || IsPunctuation(Token, ';'))
			{
				break;
			}
			++Index;
		}
	}
	// A call is met before the calls inside its arguments, whose literals may come first.
	std::stable_sort(Found.begin(), Found.end(),
		[&](const FFound& Left, const FFound& Right)
		{ return Tokens[Left.Token].Offset < Tokens[Right.Token].Offset; });
	std::vector<FCSharpApiString> Literals;
	Literals.reserve(Found.size());
	const FCSharpSourceLines Lines(Source);
	for (const FFound& Entry : Found)
	{
		const FCSharpToken& Token = Tokens[Entry.Token];
		const FCSharpToken& Method = Tokens[Entry.Method];
		FCSharpStringValue& Value = Scanned.Strings[Token.Value];
		const FCSharpPosition Position = Lines.PositionOf(Token.Offset);
		Literals.push_back(
			{std::move(Value.Text), Position.Line, Position.Column, Source.substr(Method.Offset, Method.Length),
				std::move(Value.Offsets), Token.Offset, static_cast<std::size_t>(Token.Offset) + Token.Length});
	}
	return Literals;
}

FCSharpSourceLines::FCSharpSourceLines(const std::string& InSource)
	: Source(InSource)
{
	const std::size_t Size = Source.size();
	LineStarts.push_back(Source.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0);
	Counts.reserve(Size / CountStride + 1);
	FCount Count;
	for (std::size_t At = 0; At < Size;)
	{
		const std::size_t Break = CSharpLineBreakAt(Source, At);
		const std::size_t Length = Break > 0 ? Break : 1;
		for (std::size_t Byte = At; Byte < At + Length && Byte < Size; ++Byte)
		{
			if (Byte % CountStride == 0)
			{
				Counts.push_back(Count);
			}
			const unsigned char Lead = static_cast<unsigned char>(Source[Byte]);
			if ((Lead & 0xC0) != 0x80)
			{
				++Count.Characters;
				// A character past the Basic Multilingual Plane (a four-byte sequence) is two UTF-16 units.
				Count.Utf16Units += Lead >= 0xF0 ? 2 : 1;
			}
		}
		At += Length;
		if (Break > 0)
		{
			LineStarts.push_back(At);
		}
	}
	Total = Count;
}

FCSharpSourceLines::FCount FCSharpSourceLines::CountBefore(std::size_t Offset) const
{
	const std::size_t Checkpoint = Offset / CountStride;
	if (Offset >= Source.size() || Checkpoint >= Counts.size())
	{
		return Total;
	}
	FCount Count = Counts[Checkpoint];
	for (std::size_t Byte = Checkpoint * CountStride; Byte < Offset; ++Byte)
	{
		const unsigned char Lead = static_cast<unsigned char>(Source[Byte]);
		if ((Lead & 0xC0) != 0x80)
		{
			++Count.Characters;
			Count.Utf16Units += Lead >= 0xF0 ? 2 : 1;
		}
	}
	return Count;
}

FCSharpPosition FCSharpSourceLines::PositionOf(std::size_t Offset) const
{
	Offset = std::max(std::min(Offset, Source.size()), LineStarts.front());
	// The last line that starts at or before Offset.
	const auto Line = std::upper_bound(LineStarts.begin(), LineStarts.end(), Offset) - 1;
	FCSharpPosition Position;
	Position.Line = static_cast<std::size_t>(Line - LineStarts.begin()) + 1;
	const FCount Before = CountBefore(Offset);
	const FCount LineStart = CountBefore(std::min(*Line, Offset));
	Position.Column = Before.Characters - LineStart.Characters + 1;
	Position.Utf16Column = Before.Utf16Units - LineStart.Utf16Units + 1;
	return Position;
}

std::string DecodeCSharpSourceBytes(const std::string& Bytes)
{
	const bool bLittle = Bytes.compare(0, 2, "\xFF\xFE") == 0;
	const bool bBig = Bytes.compare(0, 2, "\xFE\xFF") == 0;
	if (!bLittle && !bBig)
	{
		return Bytes;
	}
	std::string Text;
	Text.reserve(Bytes.size() * 3 / 2);
	LodexText::AppendUtf16AsUtf8(Text, Bytes.data() + 2, Bytes.size() - 2,
		bLittle ? LodexText::EUtf16ByteOrder::LittleEndian : LodexText::EUtf16ByteOrder::BigEndian);
	return Text;
}
