// Copyright Lodex contributors.
#include "LodexScriptedEvaluator.h"

#include "LodexEvaluatorBridge.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace
{
	struct FCannedRequestKeyword
	{
		const char* Keyword;
		ELodexCannedRequest Request;
	};

	const FCannedRequestKeyword CannedRequestKeywords[] = {
		{"run", ELodexCannedRequest::Run},
		{"load", ELodexCannedRequest::Load},
		{"into", ELodexCannedRequest::StepInto},
		{"over", ELodexCannedRequest::StepOver},
		{"step", ELodexCannedRequest::Step},
		{"any", ELodexCannedRequest::Any},
	};

	struct FCannedNullField
	{
		const char* Name;
		unsigned Flag;
	};

	const FCannedNullField CannedNullFields[] = {
		{"context", FLodexEvaluatorAnswer::NullContext},
		{"result", FLodexEvaluatorAnswer::NullResult},
		{"operation", FLodexEvaluatorAnswer::NullOperation},
		{"node-type", FLodexEvaluatorAnswer::NullNodeType},
		{"stack", FLodexEvaluatorAnswer::NullStack},
		{"path", FLodexEvaluatorAnswer::NullPath},
	};

	/**
	 * Text of the file as a message quotes it: control characters and bytes that are not UTF-8 written as \xHH,
	 * the file's own escape, so that the message stays one line of text.
	 */
	std::string ShowCannedText(const std::string& Text)
	{
		return LodexText::EscapeControlsAndIllFormed(Text);
	}

	/** Resolves \\ \r \n \t and \xHH; false with a message on any other escape. */
	bool UnescapeCannedText(const std::string& Text, std::string& Out, std::string& OutError)
	{
		Out.clear();
		for (std::size_t Index = 0; Index < Text.size(); ++Index)
		{
			const char Char = Text[Index];
			if (Char != '\\')
			{
				Out += Char;
				continue;
			}
			if (Index + 1 >= Text.size())
			{
				OutError = "a '\\' ends the line; write '\\\\' for a backslash";
				return false;
			}
			const char Escape = Text[++Index];
			switch (Escape)
			{
				case '\\':
					Out += '\\';
					break;
				case 'r':
					Out += '\r';
					break;
				case 'n':
					Out += '\n';
					break;
				case 't':
					Out += '\t';
					break;
				case 'x':
				{
					const int High = Index + 1 < Text.size() ? LodexText::HexDigitValue(Text[Index + 1]) : -1;
					const int Low = Index + 2 < Text.size() ? LodexText::HexDigitValue(Text[Index + 2]) : -1;
					if (High < 0 || Low < 0)
					{
						OutError = "'\\x' needs two hexadecimal digits";
						return false;
					}
					Out += static_cast<char>(High * 16 + Low);
					Index += 2;
					break;
				}
				default:
				{
					const std::size_t Length = LodexText::Utf8SequenceLength(Text, Index);
					OutError = "unknown escape '\\" + ShowCannedText(Text.substr(Index, Length > 0 ? Length : 1)) +
						"'; known: \\\\ \\r \\n \\t \\xHH";
					return false;
				}
			}
		}
		return true;
	}

	bool ParseCannedInt(const std::string& Text, std::int32_t& Out)
	{
		if (Text.empty() || std::isspace(static_cast<unsigned char>(Text[0])))
		{
			return false;
		}
		char* End = nullptr;
		errno = 0;
		const long Value = std::strtol(Text.c_str(), &End, 10);
		if (errno != 0 || End != Text.c_str() + Text.size() || Value < INT32_MIN || Value > INT32_MAX)
		{
			return false;
		}
		Out = static_cast<std::int32_t>(Value);
		return true;
	}

	bool ParseCannedDouble(const std::string& Text, double& Out)
	{
		if (Text.empty() || std::isspace(static_cast<unsigned char>(Text[0])))
		{
			return false;
		}
		char* End = nullptr;
		const double Value = std::strtod(Text.c_str(), &End);
		if (End != Text.c_str() + Text.size())
		{
			return false;
		}
		Out = Value;
		return true;
	}

	bool IsCannedBlank(const std::string& Line)
	{
		for (const char Char : Line)
		{
			if (Char != ' ' && Char != '\t')
			{
				return false;
			}
		}
		return true;
	}

	bool IsCannedComment(const std::string& Line)
	{
		const std::size_t First = Line.find_first_not_of(" \t");
		return First != std::string::npos && Line[First] == '#';
	}

	bool CannedRequestMatches(ELodexCannedRequest Request, std::int32_t Command)
	{
		switch (Request)
		{
			case ELodexCannedRequest::Run:
				return Command == static_cast<std::int32_t>(EEvaluatorCommand::Run);
			case ELodexCannedRequest::Load:
				return Command == static_cast<std::int32_t>(EEvaluatorCommand::Load);
			case ELodexCannedRequest::StepInto:
				return Command == static_cast<std::int32_t>(EEvaluatorCommand::StepInto);
			case ELodexCannedRequest::StepOver:
				return Command == static_cast<std::int32_t>(EEvaluatorCommand::StepOver);
			case ELodexCannedRequest::Step:
				return Command == static_cast<std::int32_t>(EEvaluatorCommand::StepInto) ||
					Command == static_cast<std::int32_t>(EEvaluatorCommand::StepOver);
			case ELodexCannedRequest::Any:
				return true;
		}
		return false;
	}

	bool IsCannedStepRequest(ELodexCannedRequest Request)
	{
		return Request == ELodexCannedRequest::StepInto || Request == ELodexCannedRequest::StepOver ||
			Request == ELodexCannedRequest::Step;
	}
}

bool ParseLodexCannedAnswers(const std::string& Text, FLodexCannedAnswers& Out, FLodexParseError& OutError)
{
	Out.Answers.clear();
	int LineNumber = 0;
	std::size_t Start = 0;
	while (Start < Text.size())
	{
		std::size_t End = Text.find('\n', Start);
		if (End == std::string::npos)
		{
			End = Text.size();
		}
		std::string Line = Text.substr(Start, End - Start);
		Start = End + 1;
		++LineNumber;
		if (!Line.empty() && Line.back() == '\r')
		{
			Line.pop_back();
		}
		if (IsCannedBlank(Line) || IsCannedComment(Line))
		{
			continue;
		}

		const std::size_t Blank = Line.find(' ');
		const std::string Keyword = Line.substr(0, Blank);
		const bool bHasValue = Blank != std::string::npos;
		const std::string Written = bHasValue ? Line.substr(Blank + 1) : std::string();
		std::string Value;
		std::string Error;
		if (!UnescapeCannedText(Written, Value, Error))
		{
			OutError = {LineNumber, Error};
			return false;
		}
		const auto Fail = [&OutError, LineNumber](const std::string& Message)
		{
			OutError = {LineNumber, Message};
			return false;
		};

		bool bIsRequest = false;
		for (const FCannedRequestKeyword& Request : CannedRequestKeywords)
		{
			if (Keyword == Request.Keyword)
			{
				FLodexCannedAnswer Answer;
				Answer.Request = Request.Request;
				Answer.bHasPath = bHasValue;
				Answer.Path = Value;
				Answer.Line = LineNumber;
				Out.Answers.push_back(std::move(Answer));
				bIsRequest = true;
				break;
			}
		}
		if (bIsRequest)
		{
			continue;
		}
		static const char* const FieldKeywords[] = {
			"status", "result", "context", "stack", "operation", "node-type", "duration", "null"};
		bool bIsField = false;
		for (const char* Field : FieldKeywords)
		{
			bIsField = bIsField || Keyword == Field;
		}
		if (!bIsField)
		{
			return Fail("unknown keyword '" + ShowCannedText(Keyword) +
				"'; known: run, load, into, over, step, any, status, result, context, stack, operation, node-type, "
				"duration, null");
		}
		if (Out.Answers.empty())
		{
			return Fail("'" + Keyword + "' before any answer: start one with run, load, into, over, step or any");
		}
		FLodexCannedAnswer& Answer = Out.Answers.back();
		if (Keyword == "status")
		{
			if (!ParseCannedInt(Value, Answer.Answer.Status))
			{
				return Fail("'status' needs a whole number, not '" + ShowCannedText(Written) + "'");
			}
			Answer.bHasStatus = true;
		}
		else if (Keyword == "result")
		{
			Answer.Answer.ResultText = Value;
			Answer.bHasResult = true;
		}
		else if (Keyword == "context")
		{
			Answer.ContextLines.push_back(Value);
		}
		else if (Keyword == "stack")
		{
			Answer.StackLines.push_back(Value);
		}
		else if (Keyword == "operation")
		{
			Answer.Answer.OperationText = Value;
		}
		else if (Keyword == "node-type")
		{
			Answer.Answer.NodeTypeText = Value;
		}
		else if (Keyword == "duration")
		{
			if (!ParseCannedDouble(Value, Answer.Answer.DurationMs))
			{
				return Fail("'duration' needs a number of milliseconds, not '" + ShowCannedText(Written) + "'");
			}
		}
		else
		{
			bool bKnown = false;
			for (const FCannedNullField& Field : CannedNullFields)
			{
				if (Value == Field.Name)
				{
					Answer.Answer.NullFields |= Field.Flag;
					bKnown = true;
				}
			}
			if (!bKnown)
			{
				return Fail("'null' takes context, result, operation, node-type, stack or path, not '" +
					ShowCannedText(Written) + "'");
			}
		}
	}
	return true;
}

FLodexScriptedEvaluator::FLodexScriptedEvaluator(FLodexCannedAnswers InAnswers, std::size_t PathCapacity)
	: Answers(std::move(InAnswers))
	, Used(Answers.Answers.size(), false)
	, Side(PathCapacity)
{
}

void FLodexScriptedEvaluator::Attach(FLodexEvaluatorBlock& Block)
{
	Side.Attach(Block);
}

std::int32_t FLodexScriptedEvaluator::Serve(FLodexEvaluatorBlock& Block)
{
	FLodexEvaluatorRequest Request;
	if (!Side.TakeRequest(Block, Request))
	{
		return 0;
	}
	Side.Publish(Block, AnswerRequest(Request));
	return Request.Command;
}

std::size_t FLodexScriptedEvaluator::GetPathCapacity() const
{
	return Side.GetPathCapacity();
}

FLodexEvaluatorAnswer FLodexScriptedEvaluator::AnswerRequest(const FLodexEvaluatorRequest& Request)
{
	if (Request.Command == static_cast<std::int32_t>(EEvaluatorCommand::Load))
	{
		for (std::size_t Index = 0; Index < Used.size(); ++Index)
		{
			if (IsCannedStepRequest(Answers.Answers[Index].Request))
			{
				Used[Index] = false;
			}
		}
	}

	std::size_t Chosen = Answers.Answers.size();
	std::size_t LastMatching = Answers.Answers.size();
	for (std::size_t Index = 0; Index < Answers.Answers.size(); ++Index)
	{
		const FLodexCannedAnswer& Canned = Answers.Answers[Index];
		if (!CannedRequestMatches(Canned.Request, Request.Command) ||
			(Canned.bHasPath && LodexText::ToAnsi(Canned.Path) != Request.Path))
		{
			continue;
		}
		LastMatching = Index;
		if (!Used[Index])
		{
			Chosen = Index;
			break;
		}
	}
	if (Chosen == Answers.Answers.size())
	{
		Chosen = LastMatching;
	}
	if (Chosen == Answers.Answers.size())
	{
		FLodexEvaluatorAnswer Failure;
		Failure.Status = static_cast<std::int32_t>(EEvaluatorStatus::Failed);
		Failure.ResultText =
			"No scripted answer for " + GetEvaluatorCommandName(Request.Command) + " of '" + Request.Path + "'";
		Failure.ContextText = Request.Path;
		return Failure;
	}

	Used[Chosen] = true;
	const FLodexCannedAnswer& Canned = Answers.Answers[Chosen];
	FLodexEvaluatorAnswer Answer = Canned.Answer;
	if (!Canned.bHasStatus)
	{
		Answer.Status = static_cast<std::int32_t>(Request.Command == static_cast<std::int32_t>(EEvaluatorCommand::Run)
				? EEvaluatorStatus::Evaluated
				: EEvaluatorStatus::Stepped);
	}
	Answer.ContextText = LodexText::Join(Canned.ContextLines, LodexText::LineSeparator);
	Answer.StackText = LodexText::Join(Canned.StackLines, LodexText::LineSeparator);
	if (!Canned.bHasResult && Answer.Status == static_cast<std::int32_t>(EEvaluatorStatus::Evaluated))
	{
		// The number of objects a panel lists: the context's pieces, empty ones dropped.
		Answer.ResultText = LodexText::FormatInt(static_cast<std::int64_t>(
			LodexText::SplitDroppingEmpty(Answer.ContextText, LodexText::LineSeparator).size()));
	}
	return Answer;
}
