// Copyright Lodex contributors.
#include "EngineJson.h"

#include "Cli/JsonErrors.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <cstdint>

namespace
{
	bool IsEngineJsonBlank(char Char)
	{
		return Char == ' ' || Char == '\t' || Char == '\n' || Char == '\r';
	}

	bool IsEngineJsonNumberChar(char Char)
	{
		return (Char >= '0' && Char <= '9') || Char == '-' || Char == '.' || Char == '+' || Char == 'e' || Char == 'E';
	}

	/**
	 * The levels whose members are kept: the root's, its values' (the modules) and theirs (a module's fields).
	 * Deeper values are read and checked, and dropped, so that memory stays a small multiple of those levels.
	 */
	constexpr std::size_t KeptDepth = 3;

	/** A recursive-descent reader over the text, stopping at the first fault. */
	class FEngineJsonParser
	{
	public:
		explicit FEngineJsonParser(const std::string& InText)
			: Text(InText)
		{
		}

		bool ReadRoot(FEngineJsonValue& Out)
		{
			At = Text.rfind("\xEF\xBB\xBF", 0) == 0 ? 3 : 0;
			SkipBlanks();
			if (At >= Text.size() || (Text[At] != '{' && Text[At] != '['))
			{
				return Fail("expected '{' or '[' to begin the text");
			}
			if (!ReadValue(Out, 0))
			{
				return false;
			}
			SkipBlanks();
			return At == Text.size() || Fail("more text after the end of the root value");
		}

		std::size_t FaultAt = 0;
		std::string Reason;
		bool bTooDeep = false;

	private:
		bool Fail(const std::string& InReason)
		{
			FaultAt = At;
			Reason = InReason;
			return false;
		}

		void SkipBlanks()
		{
			while (At < Text.size() && IsEngineJsonBlank(Text[At]))
			{
				++At;
			}
		}

		bool ReadValue(FEngineJsonValue& Out, std::size_t Depth)
		{
			SkipBlanks();
			if (At >= Text.size())
			{
				return Fail("the text ends where a value should be");
			}
			Out.Begin = At;
			const char Char = Text[At];
			bool bRead = false;
			if (Char == '{' || Char == '[')
			{
				if (Depth >= LodexMaxDescriptorDepth)
				{
					bTooDeep = true;
					return Fail("");
				}
				bRead = Char == '{' ? ReadObject(Out, Depth + 1) : ReadArray(Out, Depth + 1);
			}
			else if (Char == '"')
			{
				Out.Kind = FEngineJsonValue::EKind::String;
				bRead = ReadString(Out.Text);
			}
			else if (IsEngineJsonNumberChar(Char))
			{
				Out.Kind = FEngineJsonValue::EKind::Number;
				bRead = ReadNumber();
			}
			else if ((Char >= 'a' && Char <= 'z') || (Char >= 'A' && Char <= 'Z'))
			{
				bRead = ReadWord(Out);
			}
			else
			{
				return Fail("expected a value");
			}
			Out.End = At;
			return bRead;
		}

		bool ReadObject(FEngineJsonValue& Out, std::size_t Depth)
		{
			Out.Kind = FEngineJsonValue::EKind::Object;
			++At;
			SkipBlanks();
			if (At < Text.size() && Text[At] == '}')
			{
				++At;
				return true;
			}
			for (;;)
			{
				SkipBlanks();
				if (At >= Text.size() || Text[At] != '"')
				{
					return Fail("expected a string to name the member");
				}
				FEngineJsonMember Member;
				Member.KeyAt = At;
				if (!ReadString(Member.Key))
				{
					return false;
				}
				SkipBlanks();
				if (At >= Text.size() || Text[At] != ':')
				{
					return Fail("expected ':' after the member's name");
				}
				++At;
				if (!ReadValue(Member.Value, Depth))
				{
					return false;
				}
				if (Depth <= KeptDepth)
				{
					Out.Members.push_back(std::move(Member));
				}
				SkipBlanks();
				if (At < Text.size() && Text[At] == ',')
				{
					++At;
					continue;
				}
				if (At < Text.size() && Text[At] == '}')
				{
					++At;
					return true;
				}
				return Fail("expected ',' or '}' after the member");
			}
		}

		bool ReadArray(FEngineJsonValue& Out, std::size_t Depth)
		{
			Out.Kind = FEngineJsonValue::EKind::Array;
			++At;
			SkipBlanks();
			if (At < Text.size() && Text[At] == ']')
			{
				++At;
				return true;
			}
			for (;;)
			{
				FEngineJsonMember Element;
				Element.KeyAt = At;
				if (!ReadValue(Element.Value, Depth))
				{
					return false;
				}
				if (Depth <= KeptDepth)
				{
					Out.Members.push_back(std::move(Element));
				}
				SkipBlanks();
				if (At < Text.size() && Text[At] == ',')
				{
					++At;
					SkipBlanks();
					if (At < Text.size() && Text[At] == ']')
					{
						++At; // a comma after the last element, which the engine allows
						return true;
					}
					continue;
				}
				if (At < Text.size() && Text[At] == ']')
				{
					++At;
					return true;
				}
				return Fail("expected ',' or ']' after the element");
			}
		}

		bool ReadString(std::string& OutText)
		{
			const std::size_t Start = At;
			++At;
			while (At < Text.size())
			{
				const char Char = Text[At];
				if (Char == '"')
				{
					++At;
					return true;
				}
				if (Char != '\\')
				{
					// Any character stands for itself, a control character too.
					OutText += Char;
					++At;
					continue;
				}
				if (At + 1 >= Text.size())
				{
					break;
				}
				const char Escaped = Text[At + 1];
				const char Decoded = Escaped == '"' || Escaped == '\\' || Escaped == '/' ? Escaped
					: Escaped == 'b'                                                     ? '\b'
					: Escaped == 'f'                                                     ? '\f'
					: Escaped == 'n'                                                     ? '\n'
					: Escaped == 'r'                                                     ? '\r'
					: Escaped == 't'                                                     ? '\t'
																						 : '\0';
				if (Decoded != '\0')
				{
					OutText += Decoded;
					At += 2;
					continue;
				}
				if (Escaped != 'u')
				{
					return Fail("a backslash before a character that has no escape");
				}
				std::uint32_t CodeUnit = 0;
				for (std::size_t Digit = 2; Digit < 6; ++Digit)
				{
					const int Value = At + Digit < Text.size() ? LodexText::HexDigitValue(Text[At + Digit]) : -1;
					if (Value < 0)
					{
						At += Digit;
						return Fail("a \\u escape needs four hexadecimal digits");
					}
					CodeUnit = CodeUnit * 16 + static_cast<std::uint32_t>(Value);
				}
				LodexText::AppendUtf8(OutText, CodeUnit);
				At += 6;
			}
			At = Start;
			return Fail("the text ends inside this string");
		}

		bool ReadNumber()
		{
			// The engine's automaton for a JSON number: -?(0|[1-9][0-9]*)(\.[0-9]+)?([eE][-+]?[0-9]+)?
			const std::size_t Start = At;
			int State = 0;
			while (At < Text.size() && IsEngineJsonNumberChar(Text[At]))
			{
				const char Char = Text[At];
				const bool bDigit = Char >= '0' && Char <= '9';
				const int Next = State == 0 ? (Char == '-'          ? 1
													  : Char == '0' ? 2
													  : bDigit      ? 3
																	: -1)
					: State == 1            ? (Char == '0'     ? 2
													  : bDigit ? 3
															   : -1)
					: State == 2            ? (Char == '.'                           ? 4
													  : (Char == 'e' || Char == 'E') ? 5
																					 : -1)
					: State == 3            ? (bDigit                                ? 3
													  : Char == '.'                  ? 4
													  : (Char == 'e' || Char == 'E') ? 5
																					 : -1)
					: State == 4            ? (bDigit ? 6 : -1)
					: State == 5            ? ((Char == '-' || Char == '+') ? 7
													  : bDigit              ? 8
																			: -1)
					: State == 6            ? (bDigit                                ? 6
													  : (Char == 'e' || Char == 'E') ? 5
																					 : -1)
											: (bDigit ? 8 : -1);
				if (Next < 0)
				{
					At = Start;
					return Fail("not a JSON number");
				}
				State = Next;
				++At;
			}
			if (State == 2 || State == 3 || State == 6 || State == 8)
			{
				return true;
			}
			At = Start;
			return Fail("not a JSON number");
		}

		bool ReadWord(FEngineJsonValue& Out)
		{
			const std::size_t Start = At;
			while (At < Text.size() && ((Text[At] >= 'a' && Text[At] <= 'z') || (Text[At] >= 'A' && Text[At] <= 'Z')))
			{
				++At;
			}
			const std::string Word = Text.substr(Start, At - Start);
			if (LodexText::EqualsIgnoreCase(Word, "true") || LodexText::EqualsIgnoreCase(Word, "false"))
			{
				Out.Kind = FEngineJsonValue::EKind::Boolean;
				return true;
			}
			if (LodexText::EqualsIgnoreCase(Word, "null"))
			{
				Out.Kind = FEngineJsonValue::EKind::Null;
				return true;
			}
			At = Start;
			return Fail("'" + LodexText::EscapeControlsAndIllFormed(Word) + "' is not a value (a name needs quotes)");
		}

		const std::string& Text;
		std::size_t At = 0;
	};
}

const FEngineJsonMember* FEngineJsonValue::FindMember(const std::string& Key) const
{
	const FEngineJsonMember* Found = nullptr;
	if (Kind == EKind::Object)
	{
		for (const FEngineJsonMember& Member : Members)
		{
			Found = LodexText::EqualsIgnoreCase(Member.Key, Key) ? &Member : Found;
		}
	}
	return Found;
}

const char* FEngineJsonValue::KindName() const
{
	switch (Kind)
	{
		case EKind::Object:
			return "object";
		case EKind::Array:
			return "array";
		case EKind::String:
			return "string";
		case EKind::Number:
			return "number";
		case EKind::Boolean:
			return "boolean";
		case EKind::Null:
			break;
	}
	return "null";
}

bool ReadEngineJson(
	const std::string& Text, const std::string& SourceName, FEngineJsonValue& Out, std::string& OutError)
{
	const std::size_t Nul = Text.find('\0');
	const std::size_t Start = Text.rfind("\xEF\xBB\xBF", 0) == 0 ? 3 : 0;
	std::size_t BadUtf8 = std::string::npos;
	for (std::size_t Index = Start; Index < Text.size() && BadUtf8 == std::string::npos;)
	{
		const std::size_t Length = LodexText::Utf8SequenceLength(Text, Index);
		BadUtf8 = Length == 0 ? Index : BadUtf8;
		Index += Length == 0 ? 1 : Length;
	}
	if (Nul != std::string::npos || BadUtf8 != std::string::npos)
	{
		const bool bNul = Nul != std::string::npos && (BadUtf8 == std::string::npos || Nul < BadUtf8);
		OutError = SourceName + ":" + DescribeJsonPosition(Text, (bNul ? Nul : BadUtf8) + 1) +
			": not valid JSON: " + (bNul ? "a NUL byte" : "bytes that are not UTF-8");
		return false;
	}
	FEngineJsonParser Parser(Text);
	FEngineJsonValue Root;
	if (!Parser.ReadRoot(Root))
	{
		OutError = SourceName + ":" + DescribeJsonPosition(Text, Parser.FaultAt + 1) +
			(Parser.bTooDeep ? ": nested deeper than " + std::to_string(LodexMaxDescriptorDepth) +
						" levels, the most lodex reads"
							 : ": not valid JSON: " + Parser.Reason);
		return false;
	}
	Out = std::move(Root);
	return true;
}
