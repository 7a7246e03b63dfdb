// Copyright Lodex contributors.
#include "JsonErrors.h"

#include <algorithm>

std::string DescribeJsonPosition(const std::string& Text, std::size_t ByteOffset)
{
	std::size_t Line = 1;
	std::size_t Column = 1;
	const std::size_t End = ByteOffset > 0 ? std::min(ByteOffset - 1, Text.size()) : 0;
	for (std::size_t Index = 0; Index < End; ++Index)
	{
		if (Text[Index] == '\n')
		{
			++Line;
			Column = 1;
		}
		else if ((static_cast<unsigned char>(Text[Index]) & 0xC0) != 0x80)
		{
			++Column; // continuation bytes (10xxxxxx) do not start a character
		}
	}
	return std::to_string(Line) + ":" + std::to_string(Column);
}

std::string DescribeJsonParseReason(const std::string& ParserMessage)
{
	const std::size_t ColumnWord = ParserMessage.find("column ");
	const std::size_t Colon =
		ColumnWord != std::string::npos ? ParserMessage.find(": ", ColumnWord) : std::string::npos;
	if (Colon != std::string::npos)
	{
		return ParserMessage.substr(Colon + 2);
	}
	const std::size_t Bracket = ParserMessage.find("] ");
	return Bracket != std::string::npos ? ParserMessage.substr(Bracket + 2) : ParserMessage;
}

namespace
{
	/** The length of the valid UTF-8 sequence starting at Index, or 0. */
	std::size_t JsonErrorsUtf8SequenceLength(const std::string& Text, std::size_t Index)
	{
		const unsigned char Lead = static_cast<unsigned char>(Text[Index]);
		const std::size_t Length = Lead < 0x80 ? 1
			: (Lead >> 5) == 0x6               ? 2
			: (Lead >> 4) == 0xE               ? 3
			: (Lead >> 3) == 0x1E              ? 4
											   : 0;
		if (Length == 0 || Index + Length > Text.size())
		{
			return 0;
		}
		for (std::size_t Next = 1; Next < Length; ++Next)
		{
			if ((static_cast<unsigned char>(Text[Index + Next]) & 0xC0) != 0x80)
			{
				return 0;
			}
		}
		return Length;
	}

	/** The text with every byte that starts no valid UTF-8 sequence written as \xNN, so that a message stays text. */
	std::string EscapeInvalidUtf8(const std::string& Text)
	{
		static const char Hex[] = "0123456789ABCDEF";
		std::string Escaped;
		for (std::size_t Index = 0; Index < Text.size();)
		{
			const std::size_t Length = JsonErrorsUtf8SequenceLength(Text, Index);
			if (Length == 0)
			{
				const unsigned char Byte = static_cast<unsigned char>(Text[Index]);
				Escaped += std::string("\\x") + Hex[Byte >> 4] + Hex[Byte & 0xF];
				++Index;
				continue;
			}
			Escaped.append(Text, Index, Length);
			Index += Length;
		}
		return Escaped;
	}

	/** A parse that builds nothing and keeps the parser's first complaint with its position. */
	template<typename TJson>
	class TJsonErrorFinder final : public nlohmann::json_sax<TJson>
	{
	public:
		using FInteger = typename TJson::number_integer_t;
		using FUnsigned = typename TJson::number_unsigned_t;
		using FFloat = typename TJson::number_float_t;
		using FString = typename TJson::string_t;
		using FBinary = typename TJson::binary_t;

		bool null() override { return true; }
		bool boolean(bool) override { return true; }
		bool number_integer(FInteger) override { return true; }
		bool number_unsigned(FUnsigned) override { return true; }
		bool number_float(FFloat, const FString&) override { return true; }
		bool string(FString&) override { return true; }
		bool binary(FBinary&) override { return true; }
		bool start_object(std::size_t) override { return true; }
		bool key(FString&) override { return true; }
		bool end_object() override { return true; }
		bool start_array(std::size_t) override { return true; }
		bool end_array() override { return true; }

		bool parse_error(
			std::size_t Position, const std::string& LastToken, const typename TJson::exception& Exception) override
		{
			bFound = true;
			Error.ByteOffset = Position;
			if (Exception.id == 406)
			{
				// A number that does not fit a double: point at its first character, and keep a long one short.
				Error.ByteOffset = Position >= LastToken.size() ? Position - LastToken.size() + 1 : Position;
				const std::string Shown = LastToken.size() <= 40
					? LastToken
					: LastToken.substr(0, 20) + "... (" + std::to_string(LastToken.size()) + " characters)";
				Error.Reason = "number out of the range of a double: " + Shown;
			}
			else
			{
				Error.Reason = DescribeJsonParseReason(Exception.what());
			}
			return false;
		}

		bool bFound = false;
		FJsonTextError Error;
	};
}

template<typename TJson>
bool FindJsonTextError(const std::string& Text, FJsonTextError& OutError)
{
	// The parser takes a NUL byte for the end of the text and would ignore whatever follows it.
	const std::size_t Nul = Text.find('\0');
	TJsonErrorFinder<TJson> Finder;
	try
	{
		TJson::sax_parse(Text.substr(0, Nul), &Finder);
	}
	catch (const typename TJson::exception& Exception)
	{
		Finder.bFound = true;
		Finder.Error = {0, DescribeJsonParseReason(Exception.what())};
	}
	if (Nul != std::string::npos && (!Finder.bFound || Finder.Error.ByteOffset >= Nul))
	{
		Finder.bFound = true;
		Finder.Error = {Nul + 1, "a NUL byte; the file must be UTF-8 text"};
	}
	if (Finder.bFound)
	{
		OutError = {Finder.Error.ByteOffset, EscapeInvalidUtf8(Finder.Error.Reason)};
	}
	return Finder.bFound;
}

template bool FindJsonTextError<nlohmann::json>(const std::string&, FJsonTextError&);
template bool FindJsonTextError<nlohmann::ordered_json>(const std::string&, FJsonTextError&);
