// Copyright Lodex contributors.
// Fuzz target lodestring: a Lodestring compiled by the native evaluator, evaluated on the embedded sample level as
// typed and with the panels' "?" wildcards, traced step by step, and sent through the evaluator block as the REPL
// and the debugger send it: Run, then Load and a few Step Into and Step Over requests.
#include "FuzzProperties.h"
#include "FuzzSample.h"

#include "LodexDebugger/Core/Lodestring/LodestringEvaluator.h"
#include "LodexDebugger/Core/Evaluation/LodexBlockAccess.h"
#include "LodexDebugger/Core/Evaluation/LodexBlockEvaluator.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

namespace
{
	using LodexFuzz::Shown;

	std::string DescribeSpan(FLodexSpan Span)
	{
		return "[" + std::to_string(Span.Begin) + ", " + std::to_string(Span.End) + ")";
	}

	/** The span lies inside a text of Size bytes; with bNotEmpty it holds a byte unless the text is empty. */
	std::string CheckSpan(FLodexSpan Span, std::size_t Size, bool bNotEmpty, const std::string& What)
	{
		if (Span.Begin > Span.End || Span.End > Size)
		{
			return What + " span " + DescribeSpan(Span) + " is not inside the " + std::to_string(Size) + " bytes";
		}
		if (bNotEmpty && Size > 0 && Span.Begin == Span.End)
		{
			return What + " span " + DescribeSpan(Span) + " is empty";
		}
		return std::string();
	}

	std::string CheckPathError(const FLodexPathError& Error, const std::string& Path, const std::string& What)
	{
		const std::string NotOneLine = LodexFuzz::CheckOneLine(Error.Message);
		if (!NotOneLine.empty())
		{
			return What + " message: " + NotOneLine;
		}
		return CheckSpan(Error.Span, Path.size(), true, What + " '" + Shown(Error.Message) + "'");
	}

	/** Undoes the markup's "&amp;", "&lt;" and "&gt;"; false on any other "&", "<" or ">". */
	bool UnescapeMarkup(const std::string& Text, std::string& Out)
	{
		Out.clear();
		for (std::size_t Index = 0; Index < Text.size(); ++Index)
		{
			const char Char = Text[Index];
			if (Char == '<' || Char == '>')
			{
				return false;
			}
			if (Char != '&')
			{
				Out += Char;
				continue;
			}
			static const struct
			{
				const char* Entity;
				char Char;
			} Entities[] = {{"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}};
			bool bKnown = false;
			for (const auto& Entity : Entities)
			{
				const std::size_t Length = std::strlen(Entity.Entity);
				if (Text.compare(Index, Length, Entity.Entity) == 0)
				{
					Out += Entity.Char;
					Index += Length - 1;
					bKnown = true;
					break;
				}
			}
			if (!bKnown)
			{
				return false;
			}
		}
		return true;
	}

	/** The markup is the path, escaped, with exactly the span's bytes between the highlight's tags. */
	std::string CheckMarkup(const std::string& Path, FLodexSpan Span, const std::string& Markup)
	{
		const std::string Open = LodexHighlight::Open;
		const std::string Close = LodexHighlight::Close;
		const std::size_t OpenAt = Markup.find('<');
		const std::size_t CloseAt = Markup.find('<', OpenAt + Open.size());
		if (OpenAt == std::string::npos || Markup.compare(OpenAt, Open.size(), Open) != 0 ||
			CloseAt == std::string::npos || Markup.compare(CloseAt, Close.size(), Close) != 0)
		{
			return "the markup of span " + DescribeSpan(Span) + " has no highlight: " + Shown(Markup);
		}
		std::string Before;
		std::string Inside;
		std::string After;
		if (!UnescapeMarkup(Markup.substr(0, OpenAt), Before) ||
			!UnescapeMarkup(Markup.substr(OpenAt + Open.size(), CloseAt - OpenAt - Open.size()), Inside) ||
			!UnescapeMarkup(Markup.substr(CloseAt + Close.size()), After))
		{
			return "the markup of span " + DescribeSpan(Span) + " holds an unescaped character: " + Shown(Markup);
		}
		if (Before + Inside + After != Path || Before.size() != Span.Begin || Inside.size() != Span.End - Span.Begin)
		{
			return "the markup of span " + DescribeSpan(Span) +
				" does not wrap that span of the path: " + Shown(Markup);
		}
		return std::string();
	}

	/** Matches in document order, each once, each an object of the sample level (or a property step of it). */
	std::string CheckMatches(
		const std::vector<FLodexMatch>& Matches, const FLodestringProgram& Program, const std::string& What)
	{
		const FLodexSceneIndex& Index = LodexFuzz::GetSampleIndex();
		const std::vector<FSceneObject>& Objects = LodexFuzz::GetSampleScene().GetObjects();
		for (std::size_t Item = 0; Item < Matches.size(); ++Item)
		{
			const FLodexMatch& Match = Matches[Item];
			const std::string Where = What + " match " + std::to_string(Item);
			if (Match.Object >= Index.Num())
			{
				return Where + " is object " + std::to_string(Match.Object) + " of " + std::to_string(Index.Num());
			}
			const FSceneObject* Object = &FSceneSnapshot::Resolve(Index.GetObject(Match.Object));
			if (Object < Objects.data() || Object >= Objects.data() + Objects.size())
			{
				return Where + " is no object of the scene";
			}
			if (Match.Property != FLodexSceneIndex::None &&
				(Match.Property >= Program.GetOps().size() ||
					Program.GetOps()[Match.Property].Kind != ELodexStepKind::Property))
			{
				return Where + " names op " + std::to_string(Match.Property) + ", which is no property step";
			}
			if (Item > 0 && !(Matches[Item - 1] < Match))
			{
				return Where + " (object " + std::to_string(Match.Object) +
					") is not after the one before it: listed twice or out of document order";
			}
		}
		return std::string();
	}

	/** What the evaluator must make of one path with one set of options. */
	struct FExpectation
	{
		bool bCompiled = false;
		FLodexPathError CompileError;
		FLodestringProgram Program;
		FLodexEvaluation Evaluation;
		FLodexTrace Trace;
	};

	/** Compiles the path: a program of readings whose spans lie inside it, or an error with a span inside it. */
	std::string Compile(const std::string& Path, FExpectation& Out)
	{
		Out.bCompiled = CompileLodestring(Path, Out.Program, Out.CompileError);
		if (!Out.bCompiled)
		{
			const FLodexEvaluation Direct = EvaluateLodestring(LodexFuzz::GetSampleIndex(), Path);
			if (Direct.bOk || !(Direct.Error.Span == Out.CompileError.Span) ||
				Direct.Error.Message != Out.CompileError.Message)
			{
				return "a path that does not compile is evaluated without its compile error";
			}
			return CheckPathError(Out.CompileError, Path, "the compile error");
		}
		const FLodestringProgram& Program = Out.Program;
		if (Program.GetText() != Path)
		{
			return "the program's text is not the path";
		}
		if (Program.HasStandardError())
		{
			const std::string Failure = CheckPathError(Program.GetStandardError(), Path, "the grammar's error");
			if (!Failure.empty())
			{
				return Failure;
			}
		}
		for (const FLodexStepOp& Op : Program.GetOps())
		{
			if (Op.From >= Op.To || Op.To > Path.size() || Op.Span.Begin != Op.From)
			{
				return "a step reads from " + std::to_string(Op.From) + " to " + std::to_string(Op.To) + " over span " +
					DescribeSpan(Op.Span);
			}
			const std::string Failure = CheckSpan(Op.Span, Path.size(), true, "a step's");
			const std::string TestFailure = CheckSpan(Op.TestSpan, Path.size(), true, "a step's node test");
			if (!Failure.empty() || !TestFailure.empty())
			{
				return Failure.empty() ? TestFailure : Failure;
			}
		}
		return std::string();
	}

	/**
	 * Evaluates the compiled path: results of the scene, each once. With the wildcards, as the block evaluates, also
	 * traces it: the same result step by step, each step's span marked up.
	 */
	std::string Evaluate(const std::string& Path, bool bAnsiWildcards, FExpectation& Out)
	{
		const FLodexSceneIndex& Index = LodexFuzz::GetSampleIndex();
		const FLodestringProgram& Program = Out.Program;
		FLodexEvaluationOptions Options;
		Options.bAnsiWildcards = bAnsiWildcards;
		Out.Evaluation = EvaluateLodestring(Index, Program, Options);
		const FLodexEvaluation& Evaluation = Out.Evaluation;
		if (!Evaluation.bOk &&
			(!Program.HasStandardError() || !Evaluation.Matches.empty() ||
				Evaluation.Error.Message != Program.GetStandardError().Message ||
				!(Evaluation.Error.Span == Program.GetStandardError().Span)))
		{
			return "a failed evaluation does not give the grammar's error alone";
		}
		std::string Failure = CheckMatches(Evaluation.Matches, Program, "the evaluation's");
		if (!Failure.empty())
		{
			return Failure;
		}

		if (!bAnsiWildcards)
		{
			return std::string(); // traced as the block traces it, with the wildcards
		}
		Out.Trace = TraceLodestring(Index, Program, Options);
		const FLodexTrace& Trace = Out.Trace;
		if (Trace.bOk != Evaluation.bOk || Trace.Result != Evaluation.Matches ||
			(!Trace.bOk && Trace.Error.Message != Evaluation.Error.Message))
		{
			return "the trace's result (" + std::to_string(Trace.Result.size()) + " matches, ok " +
				std::to_string(Trace.bOk) + ") is not the evaluation's (" + std::to_string(Evaluation.Matches.size()) +
				" matches, ok " + std::to_string(Evaluation.bOk) + ")";
		}
		const FLodexSpan Whole{0, static_cast<std::uint32_t>(Path.size())};
		if (Trace.Steps.size() < 2 || !(Trace.Steps.front().Span == Whole) || !(Trace.Steps.back().Span == Whole) ||
			Trace.Steps.back().Context != Trace.Result)
		{
			return "the trace does not start at the whole path and end with its result";
		}
		for (std::size_t Step = 0; Step < Trace.Steps.size(); ++Step)
		{
			const FLodexTraceStep& TraceStep = Trace.Steps[Step];
			const std::string Where = "trace step " + std::to_string(Step) + " (" + Shown(TraceStep.Operation) + ")";
			Failure = CheckSpan(TraceStep.Span, Path.size(), true, Where);
			if (Failure.empty() && (TraceStep.Depth < 0 || TraceStep.Depth > 2))
			{
				Failure = Where + " has depth " + std::to_string(TraceStep.Depth);
			}
			if (Failure.empty() &&
				(TraceStep.Operation.empty() || TraceStep.NodeType.empty() || TraceStep.Stack.empty() ||
					TraceStep.Stack.front() != "Path"))
			{
				Failure = Where + " has no operation, node type or stack";
			}
			if (Failure.empty() && !(TraceStep.DurationMs >= 0.0 && std::isfinite(TraceStep.DurationMs)))
			{
				Failure = Where + " took " + std::to_string(TraceStep.DurationMs) + " ms";
			}
			if (Failure.empty())
			{
				Failure = CheckMatches(TraceStep.Context, Program, Where + "'s");
			}
			if (Failure.empty())
			{
				Failure = CheckMarkup(Path, TraceStep.Span, MarkUpLodestring(Path, TraceStep.Span));
			}
			if (!Failure.empty())
			{
				return Failure;
			}
		}
		return std::string();
	}

	/** The panels' side of the block: a request written, the answer read and consumed. */
	struct FBlockAnswer
	{
		std::int32_t Status = 0;
		std::string Context;
		std::string Result;
		std::string Operation;
		std::string NodeType;
		std::string Stack;
		double DurationMs = 0.0;
	};

	/** The block and the native evaluator serving it, made once: Attach starts every input afresh. */
	struct FBlockServer
	{
		FLodexEvaluatorBlock Block{};
		FLodexBlockEvaluator Evaluator{LodexFuzz::GetSampleIndex()};
	};

	FBlockServer& GetBlockServer()
	{
		static FBlockServer Server;
		return Server;
	}

	std::string Ask(FBlockServer& Server, const std::string& Path, EEvaluatorCommand Command, FBlockAnswer& Out)
	{
		FLodexEvaluatorBlock& Block = Server.Block;
		char* const Buffer = LodexBlock::LoadPointer(Block.pathText);
		const std::size_t Capacity = Server.Evaluator.GetPathCapacity();
		if (Buffer == nullptr || LodexBlock::LoadStatus(Block) != 0)
		{
			return "the block takes no request";
		}
		// As the panels copy: without a bound, but the fuzzer's inputs are shorter than the buffer.
		const std::size_t Copied = Path.size() < Capacity ? Path.size() + 1 : Capacity;
		std::memcpy(Buffer, Path.c_str(), Copied);
		LodexBlock::StoreCommand(Block, static_cast<std::int32_t>(Command));
		if (Server.Evaluator.PollOnce() != ELodexBlockPoll::Answered ||
			Server.Evaluator.GetLastRequest() != static_cast<std::int32_t>(Command) ||
			LodexBlock::LoadCommand(Block) != 0)
		{
			return "request " + std::to_string(static_cast<int>(Command)) + " is not taken and answered";
		}
		Out.Status = LodexBlock::LoadStatus(Block);
		const char* const* Fields[] = {
			&Block.contextText, &Block.resultText, &Block.operationText, &Block.nodeTypeText, &Block.stackText};
		std::string* Texts[] = {&Out.Context, &Out.Result, &Out.Operation, &Out.NodeType, &Out.Stack};
		for (std::size_t Field = 0; Field < 5; ++Field)
		{
			const char* const Text = LodexBlock::LoadPointer(*Fields[Field]);
			if (Text == nullptr)
			{
				return "request " + std::to_string(static_cast<int>(Command)) + " is answered with a null text";
			}
			*Texts[Field] = Text;
			for (const char Char : *Texts[Field])
			{
				if (static_cast<unsigned char>(Char) >= 0x80)
				{
					return "the block's texts are not 8-bit ASCII: " + Shown(*Texts[Field]);
				}
			}
		}
		Out.DurationMs = LodexBlock::LoadDouble(Block.durationMs);
		LodexBlock::StoreStatus(Block, 0);
		if (!(Out.DurationMs >= 0.0 && std::isfinite(Out.DurationMs)))
		{
			return "the block's duration is " + std::to_string(Out.DurationMs);
		}
		return std::string();
	}

	/** The context lines the block shows for matches: each match's text, at most 10000 lines and a last line. */
	std::string ContextText(const FLodestringProgram& Program, const std::vector<FLodexMatch>& Matches)
	{
		const FLodexSceneIndex& Index = LodexFuzz::GetSampleIndex();
		const std::size_t MaxLines = FLodexBlockEvaluatorOptions().MaxContextLines;
		std::vector<std::string> Lines;
		for (std::size_t Item = 0; Item < Matches.size() && Item < MaxLines; ++Item)
		{
			Lines.push_back(LodexText::ToAnsi(DescribeLodexMatch(Index, Program, Matches[Item])));
		}
		if (Matches.size() > MaxLines)
		{
			const std::size_t Hidden = Matches.size() - MaxLines;
			Lines.push_back("... and " + std::to_string(Hidden) + (Hidden == 1 ? " more object" : " more objects"));
		}
		return LodexText::Join(Lines, LodexText::LineSeparator);
	}

	std::string CheckFailure(const FBlockAnswer& Answer, const std::string& Path, const FLodexPathError& Error)
	{
		if (Answer.Status != static_cast<std::int32_t>(EEvaluatorStatus::Failed) ||
			Answer.Result != LodexText::ToAnsi(Error.Message) ||
			Answer.Context != LodexText::ToAnsi(MarkUpLodestring(Path, Error.Span)))
		{
			return "a path that cannot be read is answered with status " + std::to_string(Answer.Status) + ", '" +
				Shown(Answer.Result) + "'";
		}
		return std::string();
	}

	/** The step the debugger must show after Current: the next one, or for Step Over the next one no deeper. */
	std::size_t NextStep(const FLodexTrace& Trace, std::size_t Current, bool bStepOver)
	{
		std::size_t Next = Current + 1;
		while (bStepOver && Next < Trace.Steps.size() && Trace.Steps[Next].Depth > Trace.Steps[Current].Depth)
		{
			++Next;
		}
		return Next;
	}

	/** Run, then Load and steps, with the path as the panels write it: the input up to its first NUL byte. */
	std::string CheckBlock(const std::string& Path, const FExpectation& Expected)
	{
		FBlockServer& Server = GetBlockServer();
		Server.Evaluator.Attach(Server.Block);
		FBlockAnswer Answer;
		std::string Failure = Ask(Server, Path, EEvaluatorCommand::Run, Answer);
		if (!Failure.empty())
		{
			return Failure;
		}
		if (Path.size() >= Server.Evaluator.GetPathCapacity())
		{
			const std::string Overlong = "The path is longer than the evaluator's buffer of " +
				std::to_string(Server.Evaluator.GetPathCapacity() - 1) + " bytes";
			return Answer.Status == static_cast<std::int32_t>(EEvaluatorStatus::Failed) && Answer.Result == Overlong
				? std::string()
				: "a path longer than the buffer is answered with status " + std::to_string(Answer.Status);
		}
		if (!Expected.bCompiled || !Expected.Evaluation.bOk)
		{
			Failure =
				CheckFailure(Answer, Path, Expected.bCompiled ? Expected.Evaluation.Error : Expected.CompileError);
		}
		else if (Answer.Status != static_cast<std::int32_t>(EEvaluatorStatus::Evaluated) ||
			Answer.Result != std::to_string(Expected.Evaluation.Matches.size()) ||
			Answer.Context != ContextText(Expected.Program, Expected.Evaluation.Matches))
		{
			Failure = "Run is answered with status " + std::to_string(Answer.Status) + ", '" + Shown(Answer.Result) +
				"' for " + std::to_string(Expected.Evaluation.Matches.size()) + " matches";
		}
		if (!Failure.empty())
		{
			return Failure;
		}

		static const EEvaluatorCommand Requests[] = {EEvaluatorCommand::Load, EEvaluatorCommand::StepInto,
			EEvaluatorCommand::StepOver, EEvaluatorCommand::StepOver, EEvaluatorCommand::StepInto,
			EEvaluatorCommand::StepOver, EEvaluatorCommand::StepInto, EEvaluatorCommand::StepOver};
		// A path that cannot be loaded is asked twice (Load, then a step that loads it again), a path whose steps
		// end is stepped through once and started again: what the remaining requests would do is done.
		bool bLoaded = false;
		int Loads = 0;
		std::size_t Current = 0;
		for (const EEvaluatorCommand Request : Requests)
		{
			if (!bLoaded && Loads == 2)
			{
				break;
			}
			Failure = Ask(Server, Path, Request, Answer);
			if (!Failure.empty())
			{
				return Failure;
			}
			const std::string What = "request " + std::to_string(static_cast<int>(Request));
			if (Request == EEvaluatorCommand::Load || !bLoaded)
			{
				++Loads;
				if (!Expected.bCompiled || !Expected.Trace.bOk)
				{
					Failure =
						CheckFailure(Answer, Path, Expected.bCompiled ? Expected.Trace.Error : Expected.CompileError);
					if (!Failure.empty())
					{
						return What + ": " + Failure;
					}
					continue;
				}
				bLoaded = true;
				Current = 0;
			}
			else
			{
				Current = NextStep(Expected.Trace, Current, Request == EEvaluatorCommand::StepOver);
				if (Current >= Expected.Trace.Steps.size())
				{
					bLoaded = false;
					if (Answer.Status != static_cast<std::int32_t>(EEvaluatorStatus::Finished) ||
						!Answer.Result.empty())
					{
						return What + " past the last step is answered with status " + std::to_string(Answer.Status);
					}
					continue;
				}
			}
			const FLodexTraceStep& Step = Expected.Trace.Steps[Current];
			const std::string Markup = MarkUpLodestring(Path, Step.Span);
			Failure = CheckMarkup(Path, Step.Span, Markup);
			if (Failure.empty() &&
				(Answer.Status != static_cast<std::int32_t>(EEvaluatorStatus::Stepped) ||
					Answer.Result != LodexText::ToAnsi(Markup) ||
					Answer.Operation != LodexText::ToAnsi(Step.Operation) ||
					Answer.NodeType != LodexText::ToAnsi(Step.NodeType) ||
					Answer.Stack != LodexText::ToAnsi(LodexText::Join(Step.Stack, LodexText::LineSeparator)) ||
					Answer.Context != ContextText(Expected.Program, Step.Context)))
			{
				Failure = "status " + std::to_string(Answer.Status) + ", step '" + Shown(Answer.Operation) +
					"' is not trace step " + std::to_string(Current) + " '" + Shown(Step.Operation) + "'";
			}
			if (!Failure.empty())
			{
				return What + ": " + Failure;
			}
			if (Loads == 2)
			{
				break;
			}
		}
		Server.Evaluator.Detach();
		return std::string();
	}
}

std::string CheckLodestringInput(const std::string& Input)
{
	FExpectation Expected;
	std::string Failure = Compile(Input, Expected);
	if (Failure.empty() && Expected.bCompiled)
	{
		Failure = Evaluate(Input, false, Expected);
	}
	if (!Failure.empty())
	{
		return "as typed: " + Failure;
	}
	// The panels hand the block the text up to its first NUL, and the block reads "?" as a wildcard.
	const std::string BlockPath = Input.substr(0, Input.find('\0'));
	if (BlockPath.size() != Input.size())
	{
		Failure = Compile(BlockPath, Expected);
	}
	if (Failure.empty() && Expected.bCompiled)
	{
		Failure = Evaluate(BlockPath, true, Expected);
	}
	if (Failure.empty())
	{
		Failure = CheckBlock(BlockPath, Expected);
	}
	return Failure.empty() ? std::string() : "through the block: " + Failure;
}
