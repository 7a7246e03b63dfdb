// Copyright Lodex contributors.
#include "LodexBlockEvaluator.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <cstdint>
#include <cstring>
#include <thread>
#include <utility>

#if defined(_MSC_VER) && !defined(__clang__)
#include <intrin.h>
#endif

/**
 * The block's words are plain fields shared with a panel on another thread: `command` is taken with an
 * atomic swap, `status` read with acquire and written with release semantics, the pointer fields and
 * the duration stored atomically so that a panel's read never sees half a pointer.
 */
namespace LodexBlockEvaluatorPrivate
{
	const char EmptyText[] = "";

#if defined(_MSC_VER) && !defined(__clang__)
	static_assert(sizeof(long) == sizeof(std::int32_t), "The interlocked intrinsics work on 32-bit longs");

	std::int32_t LoadAcquire(std::int32_t& Word)
	{
		return _InterlockedOr(reinterpret_cast<volatile long*>(&Word), 0);
	}
	void StoreRelease(std::int32_t& Word, std::int32_t Value)
	{
		_InterlockedExchange(reinterpret_cast<volatile long*>(&Word), Value);
	}
	std::int32_t TakeWord(std::int32_t& Word)
	{
		return _InterlockedExchange(reinterpret_cast<volatile long*>(&Word), 0);
	}
	template<typename FPointer>
	void StorePointer(FPointer& Field, FPointer Value)
	{
		static_assert(sizeof(FPointer) == sizeof(void*), "The block's text fields are plain pointers");
		void* volatile* Target = reinterpret_cast<void* volatile*>(reinterpret_cast<std::uintptr_t>(&Field));
		_InterlockedExchangePointer(Target, const_cast<void*>(static_cast<const void*>(Value)));
	}
	void StoreDouble(double& Field, double Value)
	{
		long long Bits = 0;
		std::memcpy(&Bits, &Value, sizeof(Bits));
		_InterlockedExchange64(reinterpret_cast<volatile long long*>(&Field), Bits);
	}
#else
	std::int32_t LoadAcquire(std::int32_t& Word)
	{
		return __atomic_load_n(&Word, __ATOMIC_ACQUIRE);
	}
	void StoreRelease(std::int32_t& Word, std::int32_t Value)
	{
		__atomic_store_n(&Word, Value, __ATOMIC_RELEASE);
	}
	std::int32_t TakeWord(std::int32_t& Word)
	{
		return __atomic_exchange_n(&Word, 0, __ATOMIC_ACQ_REL);
	}
	template<typename FPointer>
	void StorePointer(FPointer& Field, FPointer Value)
	{
		__atomic_store_n(&Field, Value, __ATOMIC_RELAXED);
	}
	void StoreDouble(double& Field, double Value)
	{
		__atomic_store(&Field, &Value, __ATOMIC_RELAXED);
	}
#endif

	/** Every text field of the block pointing at the empty text. */
	void StoreEmptyTexts(FLodexEvaluatorBlock& Block)
	{
		StorePointer(Block.contextText, static_cast<const char*>(EmptyText));
		StorePointer(Block.resultText, static_cast<const char*>(EmptyText));
		StorePointer(Block.operationText, static_cast<const char*>(EmptyText));
		StorePointer(Block.nodeTypeText, static_cast<const char*>(EmptyText));
		StorePointer(Block.stackText, static_cast<const char*>(EmptyText));
	}

	double MillisecondsSince(std::chrono::steady_clock::time_point Start)
	{
		return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - Start).count();
	}
}

FLodexBlockEvaluator::FLodexBlockEvaluator(const FLodexSceneIndex& InIndex, FLodexBlockEvaluatorOptions InOptions)
	: Index(InIndex)
	, Options(InOptions)
	, PathBuffer(InOptions.PathCapacity > 0 ? InOptions.PathCapacity : 1, '\0')
{
}

FLodexBlockEvaluator::~FLodexBlockEvaluator()
{
	Detach();
}

void FLodexBlockEvaluator::Attach(FLodexEvaluatorBlock& InBlock)
{
	using namespace LodexBlockEvaluatorPrivate;
	Block = &InBlock;
	Buffers[0] = FTexts();
	Buffers[1] = FTexts();
	Published = 0;
	Session = FSession();
	StorePointer(Block->pathText, PathBuffer.data());
	StoreEmptyTexts(*Block);
	StoreDouble(Block->durationMs, 0.0);
	StoreRelease(Block->command, 0);
	StoreRelease(Block->status, 0);
}

void FLodexBlockEvaluator::Detach()
{
	using namespace LodexBlockEvaluatorPrivate;
	if (Block == nullptr)
	{
		return;
	}
	StorePointer(Block->pathText, static_cast<char*>(nullptr));
	StoreEmptyTexts(*Block);
	Block = nullptr;
}

ELodexBlockPoll FLodexBlockEvaluator::PollOnce()
{
	using namespace LodexBlockEvaluatorPrivate;
	if (Block == nullptr)
	{
		return ELodexBlockPoll::Idle;
	}
	if (LoadAcquire(Block->status) != 0)
	{
		return ELodexBlockPoll::Waiting;
	}
	const std::int32_t Command = TakeWord(Block->command);
	if (Command == 0)
	{
		return ELodexBlockPoll::Idle;
	}
	LastRequest = Command;

	std::string Path;
	if (!ReadPath(Path))
	{
		FLodexPathError Error;
		Error.Message = "The path is longer than the evaluator's buffer of " +
			LodexText::FormatInt(static_cast<std::int64_t>(PathBuffer.size() - 1)) + " bytes";
		Error.Span = {0, static_cast<std::uint32_t>(Path.size())};
		PublishFailure(Path, Error);
		return ELodexBlockPoll::Answered;
	}
	switch (static_cast<EEvaluatorCommand>(Command))
	{
		case EEvaluatorCommand::Run:
			Run(Path);
			break;
		case EEvaluatorCommand::Load:
			Load(Path);
			break;
		case EEvaluatorCommand::StepInto:
			Step(Path, false);
			break;
		case EEvaluatorCommand::StepOver:
			Step(Path, true);
			break;
		case EEvaluatorCommand::None:
		default:
		{
			FLodexPathError Error;
			Error.Message = "Unknown request " + LodexText::FormatInt(Command) +
				": the evaluator answers 1 (Run), 4 (Load), 5 (Step Into) and 6 (Step Over)";
			Error.Span = {0, static_cast<std::uint32_t>(Path.size())};
			PublishFailure(Path, Error);
			break;
		}
	}
	return ELodexBlockPoll::Answered;
}

void FLodexBlockEvaluator::Serve(const std::atomic<bool>& bStop, std::chrono::microseconds IdleWait)
{
	while (!bStop.load(std::memory_order_acquire))
	{
		if (PollOnce() != ELodexBlockPoll::Answered)
		{
			std::this_thread::sleep_for(IdleWait);
		}
	}
}

bool FLodexBlockEvaluator::ReadPath(std::string& OutPath) const
{
	const void* Nul = std::memchr(PathBuffer.data(), '\0', PathBuffer.size());
	if (Nul == nullptr)
	{
		OutPath.assign(PathBuffer.data(), PathBuffer.size());
		return false;
	}
	OutPath.assign(PathBuffer.data(), static_cast<const char*>(Nul));
	return true;
}

void FLodexBlockEvaluator::Run(const std::string& Path)
{
	const auto Start = std::chrono::steady_clock::now();
	FLodestringProgram Program;
	FLodexPathError Error;
	if (!CompileLodestring(Path, Program, Error))
	{
		PublishFailure(Path, Error);
		return;
	}
	FLodexEvaluationOptions EvaluationOptions;
	EvaluationOptions.bAnsiWildcards = Options.bAnsiWildcards;
	const FLodexEvaluation Evaluation = EvaluateLodestring(Index, Program, EvaluationOptions);
	const double Duration = LodexBlockEvaluatorPrivate::MillisecondsSince(Start);
	if (!Evaluation.bOk)
	{
		PublishFailure(Path, Evaluation.Error);
		return;
	}
	FTexts Texts;
	Texts.Result = LodexText::FormatInt(static_cast<std::int64_t>(Evaluation.Matches.size()));
	Texts.Context = ContextLines(Program, Evaluation.Matches);
	Publish(std::move(Texts), Duration, EEvaluatorStatus::Evaluated);
}

void FLodexBlockEvaluator::Load(const std::string& Path)
{
	const auto Start = std::chrono::steady_clock::now();
	Session = FSession();
	FLodexPathError Error;
	if (!CompileLodestring(Path, Session.Program, Error))
	{
		PublishFailure(Path, Error);
		return;
	}
	FLodexEvaluationOptions EvaluationOptions;
	EvaluationOptions.bAnsiWildcards = Options.bAnsiWildcards;
	Session.Trace = TraceLodestring(Index, Session.Program, EvaluationOptions);
	if (!Session.Trace.bOk)
	{
		const FLodexPathError TraceError = Session.Trace.Error;
		Session = FSession();
		PublishFailure(Path, TraceError);
		return;
	}
	Session.bActive = true;
	Session.Path = Path;
	Session.Current = 0;
	Session.Trace.Steps.front().DurationMs = LodexBlockEvaluatorPrivate::MillisecondsSince(Start);
	PublishStep();
}

void FLodexBlockEvaluator::Step(const std::string& Path, bool bStepOver)
{
	if (!Session.bActive || Session.Path != Path)
	{
		Load(Path);
		return;
	}
	const std::size_t Next = NextLodexTraceStep(Session.Trace, Session.Current, bStepOver);
	if (Next >= Session.Trace.Steps.size())
	{
		Session = FSession();
		Publish(FTexts(), 0.0, EEvaluatorStatus::Finished);
		return;
	}
	Session.Current = Next;
	PublishStep();
}

void FLodexBlockEvaluator::PublishStep()
{
	const FLodexTraceStep& Step = Session.Trace.Steps[Session.Current];
	FTexts Texts;
	Texts.Result = LodexText::ToAnsi(MarkUpLodestring(Session.Path, Step.Span));
	Texts.Operation = LodexText::ToAnsi(Step.Operation);
	Texts.NodeType = LodexText::ToAnsi(Step.NodeType);
	Texts.Stack = LodexText::ToAnsi(LodexText::Join(Step.Stack, LodexText::LineSeparator));
	Texts.Context = ContextLines(Session.Program, Step.Context);
	Publish(std::move(Texts), Step.DurationMs, EEvaluatorStatus::Stepped);
}

void FLodexBlockEvaluator::PublishFailure(const std::string& Path, const FLodexPathError& Error)
{
	FTexts Texts;
	Texts.Context = LodexText::ToAnsi(MarkUpLodestring(Path, Error.Span));
	Texts.Result = LodexText::ToAnsi(Error.Message);
	Publish(std::move(Texts), 0.0, EEvaluatorStatus::Failed);
}

void FLodexBlockEvaluator::Publish(FTexts&& Texts, double DurationMs, EEvaluatorStatus Status)
{
	using namespace LodexBlockEvaluatorPrivate;
	if (Block == nullptr)
	{
		return;
	}
	// The set not published now is the one no panel can be reading.
	const int Next = 1 - Published;
	Buffers[Next] = std::move(Texts);
	const FTexts& Out = Buffers[Next];
	StorePointer(Block->contextText, Out.Context.c_str());
	StorePointer(Block->resultText, Out.Result.c_str());
	StorePointer(Block->operationText, Out.Operation.c_str());
	StorePointer(Block->nodeTypeText, Out.NodeType.c_str());
	StorePointer(Block->stackText, Out.Stack.c_str());
	StoreDouble(Block->durationMs, DurationMs);
	Published = Next;
	StoreRelease(Block->status, static_cast<std::int32_t>(Status));
}

std::string FLodexBlockEvaluator::ContextLines(
	const FLodestringProgram& Program, const std::vector<FLodexMatch>& Matches) const
{
	std::string Lines;
	const std::size_t Shown = Matches.size() < Options.MaxContextLines ? Matches.size() : Options.MaxContextLines;
	for (std::size_t Line = 0; Line < Shown; ++Line)
	{
		if (Line > 0)
		{
			Lines += LodexText::LineSeparator;
		}
		Lines += LodexText::ToAnsi(DescribeLodexMatch(Index, Program, Matches[Line]));
	}
	if (Shown < Matches.size())
	{
		if (Shown > 0)
		{
			Lines += LodexText::LineSeparator;
		}
		const std::size_t Hidden = Matches.size() - Shown;
		Lines += "... and " + LodexText::FormatInt(static_cast<std::int64_t>(Hidden)) +
			(Hidden == 1 ? " more object" : " more objects");
	}
	return Lines;
}
