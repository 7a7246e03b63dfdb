// Copyright Lodex contributors.
// Fuzz target evaluator_answers: a file of canned answers read as `lodex repl --evaluator` reads one, then the
// scripted evaluator serving the block: each request kind for the paths of the first answers, and one unknown code.
#include "FuzzProperties.h"

#include "LodexDebugger/Core/Evaluation/LodexBlockAccess.h"
#include "LodexDebugger/Core/Evaluation/LodexScriptedEvaluator.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <cstring>
#include <set>
#include <string>
#include <vector>

namespace
{
	using LodexFuzz::Shown;

	/** Small, so that no input allocates the megabyte a real session has; longer paths are cut by the panel. */
	constexpr std::size_t FuzzPathCapacity = 256;

	bool AnswersRequest(const FLodexCannedAnswer& Answer, std::int32_t Command, const std::string& Path)
	{
		const bool bStep = Command == static_cast<std::int32_t>(EEvaluatorCommand::StepInto) ||
			Command == static_cast<std::int32_t>(EEvaluatorCommand::StepOver);
		bool bKind = false;
		switch (Answer.Request)
		{
			case ELodexCannedRequest::Run:
				bKind = Command == static_cast<std::int32_t>(EEvaluatorCommand::Run);
				break;
			case ELodexCannedRequest::Load:
				bKind = Command == static_cast<std::int32_t>(EEvaluatorCommand::Load);
				break;
			case ELodexCannedRequest::StepInto:
				bKind = Command == static_cast<std::int32_t>(EEvaluatorCommand::StepInto);
				break;
			case ELodexCannedRequest::StepOver:
				bKind = Command == static_cast<std::int32_t>(EEvaluatorCommand::StepOver);
				break;
			case ELodexCannedRequest::Step:
				bKind = bStep;
				break;
			case ELodexCannedRequest::Any:
				bKind = true;
				break;
		}
		return bKind && (!Answer.bHasPath || LodexText::ToAnsi(Answer.Path) == Path);
	}

	std::string CheckParsed(const FLodexCannedAnswers& Answers, const std::string& Input)
	{
		const int Lines = static_cast<int>(LodexFuzz::SplitLines(Input).size());
		int Previous = 0;
		for (const FLodexCannedAnswer& Answer : Answers.Answers)
		{
			if (Answer.Line <= Previous || Answer.Line > Lines)
			{
				return "an answer starts at line " + std::to_string(Answer.Line) + " (the one before at " +
					std::to_string(Previous) + ", " + std::to_string(Lines) + " lines)";
			}
			Previous = Answer.Line;
		}
		return std::string();
	}

	/** Writes a request as a panel does, lets the evaluator serve it, reads and consumes what it published. */
	std::string Serve(FLodexScriptedEvaluator& Evaluator, FLodexEvaluatorBlock& Block,
		const FLodexCannedAnswers& Answers, std::int32_t Command, const std::string& Path)
	{
		char* const Buffer = LodexBlock::LoadPointer(Block.pathText);
		const std::string Sent = Path.substr(0, std::min(Path.find('\0'), FuzzPathCapacity - 1));
		std::memcpy(Buffer, Sent.c_str(), Sent.size() + 1);
		LodexBlock::StoreCommand(Block, Command);
		const std::int32_t Taken = Evaluator.Serve(Block);
		const std::string What = "request " + std::to_string(Command) + " for '" + Shown(Sent) + "'";
		if (Taken != Command || LodexBlock::LoadCommand(Block) != 0)
		{
			return What + " is not taken: Serve returned " + std::to_string(Taken);
		}

		std::set<std::int32_t> Statuses;
		unsigned MayBeNull = 0;
		for (const FLodexCannedAnswer& Answer : Answers.Answers)
		{
			if (AnswersRequest(Answer, Command, Sent))
			{
				const std::int32_t Default = static_cast<std::int32_t>(
					Command == static_cast<std::int32_t>(EEvaluatorCommand::Run) ? EEvaluatorStatus::Evaluated
																				 : EEvaluatorStatus::Stepped);
				Statuses.insert(Answer.bHasStatus ? Answer.Answer.Status : Default);
				MayBeNull |= Answer.Answer.NullFields;
			}
		}
		const std::int32_t Status = LodexBlock::LoadStatus(Block);
		if (Statuses.empty() ? Status != static_cast<std::int32_t>(EEvaluatorStatus::Failed)
							 : Statuses.count(Status) == 0)
		{
			return What + " is answered with status " + std::to_string(Status) + ", which no matching answer gives";
		}
		const struct
		{
			const char* const* Field;
			unsigned Flag;
		} Texts[] = {
			{&Block.contextText, FLodexEvaluatorAnswer::NullContext},
			{&Block.resultText, FLodexEvaluatorAnswer::NullResult},
			{&Block.operationText, FLodexEvaluatorAnswer::NullOperation},
			{&Block.nodeTypeText, FLodexEvaluatorAnswer::NullNodeType},
			{&Block.stackText, FLodexEvaluatorAnswer::NullStack},
		};
		// Status 0 takes the request and publishes nothing: the texts still hold an earlier answer's.
		for (const auto& Text : Texts)
		{
			if (Status != 0 && LodexBlock::LoadPointer(*Text.Field) == nullptr && (MayBeNull & Text.Flag) == 0)
			{
				return What + " is answered with a null text that no matching answer asks for";
			}
		}
		if (Status == static_cast<std::int32_t>(EEvaluatorStatus::Failed) && Statuses.empty() &&
			std::string(LodexBlock::LoadPointer(Block.resultText)).compare(0, 23, "No scripted answer for ") != 0)
		{
			return What + " matches no answer but fails with '" + Shown(LodexBlock::LoadPointer(Block.resultText)) +
				"'";
		}
		LodexBlock::StoreStatus(Block, 0);
		return std::string();
	}
}

std::string CheckEvaluatorAnswersInput(const std::string& Input)
{
	FLodexCannedAnswers Answers;
	FLodexParseError Error;
	if (!ParseLodexCannedAnswers(Input, Answers, Error))
	{
		// As `lodex repl --evaluator answers.txt` reports it.
		return LodexFuzz::CheckFileError(
			"answers.txt:" + std::to_string(Error.Line) + ": " + Error.Message, "answers.txt", Input, true);
	}
	std::string Failure = CheckParsed(Answers, Input);
	if (!Failure.empty())
	{
		return Failure;
	}

	std::vector<std::string> Paths{"/x"};
	for (std::size_t Index = 0; Index < Answers.Answers.size() && Paths.size() < 4; ++Index)
	{
		if (Answers.Answers[Index].bHasPath)
		{
			Paths.push_back(LodexText::ToAnsi(Answers.Answers[Index].Path));
		}
	}
	FLodexCannedAnswers Canned = Answers;
	FLodexScriptedEvaluator Evaluator(std::move(Canned), FuzzPathCapacity);
	FLodexEvaluatorBlock Block{};
	Evaluator.Attach(Block);
	static const std::int32_t Commands[] = {1, 4, 5, 6, 5, 1, 7};
	for (const std::string& Path : Paths)
	{
		for (const std::int32_t Command : Commands)
		{
			if (LodexBlock::LoadPointer(Block.pathText) == nullptr)
			{
				return std::string(); // "null path": the panels write no more requests
			}
			Failure = Serve(Evaluator, Block, Answers, Command, Path);
			if (!Failure.empty())
			{
				return Failure;
			}
		}
	}
	return std::string();
}
