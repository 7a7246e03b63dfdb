// Copyright Lodex contributors.
// The step-by-step evaluation the Lodestring Debugger shows: the same steps as the evaluation, each recorded with
// what it selected, how long it took and a phrase that says what it did.
#include "LodestringEvaluator.h"
#include "LodestringSteps.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <chrono>
#include <string>

namespace LodestringEvaluatorPrivate
{
	std::vector<FLodexMatch> ToMatches(const FSet& Objects)
	{
		std::vector<FLodexMatch> Matches;
		Matches.reserve(Objects.size());
		for (const std::uint32_t Object : Objects)
		{
			Matches.push_back({Object, NoIndex});
		}
		return Matches;
	}

	std::string Quoted(const std::string& Text)
	{
		return "'" + Text + "'";
	}

	std::string SpanText(const FLodestringProgram& Program, FLodexSpan Span)
	{
		return Program.GetText().substr(Span.Begin, Span.End - Span.Begin);
	}

	std::string ContextPhrase(bool bRoot, std::size_t Count)
	{
		return bRoot ? std::string("the scene root") : FormatLodexObjectCount(Count);
	}

	/** "Children named 'Door' of 1 object", "Roots of the scene", ... */
	std::string AxisPhrase(const FLodexStepOp& Op, bool bRoot, std::size_t ContextCount)
	{
		const std::string Named = Op.bAnyName ? std::string() : " named " + Quoted(Op.Name);
		if (Op.Kind == ELodexStepKind::Component)
		{
			if (Op.Axis == ELodexAxis::Child)
			{
				return "Components named " + Quoted(Op.Name) +
					(bRoot ? " at the scene root" : " of " + ContextPhrase(false, ContextCount));
			}
			return bRoot
				? "Components named " + Quoted(Op.Name) + " anywhere in the scene"
				: "Descendant components named " + Quoted(Op.Name) + " of " + ContextPhrase(false, ContextCount);
		}
		if (Op.Axis == ELodexAxis::Child)
		{
			return bRoot ? "Roots" + Named + " of the scene"
						 : "Children" + Named + " of " + ContextPhrase(false, ContextCount);
		}
		return bRoot
			? (Op.bAnyName ? std::string("Every object of the scene") : "Objects" + Named + " anywhere in the scene")
			: "Descendants" + Named + " of " + ContextPhrase(false, ContextCount);
	}
}

FLodexTrace TraceLodestring(
	const FLodexSceneIndex& Index, const FLodestringProgram& Program, const FLodexEvaluationOptions& Options)
{
	using namespace LodestringEvaluatorPrivate;
	using FClock = std::chrono::steady_clock;
	const FEvaluator Evaluator(Index, Program, Options);
	const std::string& Text = Program.GetText();
	const FLodexSpan Whole{0, static_cast<std::uint32_t>(Text.size())};
	const std::uint32_t End = Whole.End;
	const std::string StepCount = LodexText::FormatInt(Program.GetStandardStepCount());

	FLodexTrace Trace;
	Trace.Steps.push_back({Whole, 0, "Start at the scene root", "Path", {"Path"}, {}, 0.0});

	FBoundarySets Sets;
	const std::vector<FLodexStepOp>& Ops = Program.GetOps();
	for (std::size_t OpIndex = 0; OpIndex < Ops.size(); ++OpIndex)
	{
		const FLodexStepOp& Op = Ops[OpIndex];
		const bool bRoot = Op.From == 0;
		const bool bStandard = Op.StandardStep != 0;
		const FSet& Context = Sets.At(Op.From);
		if (!bStandard && !bRoot && Context.empty())
		{
			continue;
		}
		const std::vector<std::string> StepStack{"Path",
			(bStandard ? "Step " + LodexText::FormatInt(Op.StandardStep) + " of " + StepCount + ": "
					   : std::string("Other reading: ")) +
				SpanText(Program, Op.Span)};
		const FClock::time_point StepStart = FClock::now();
		std::vector<FLodexTraceStep> Parts;
		std::vector<FLodexMatch> Yield;
		std::string Operation;
		const char* NodeType = "Step";
		FSet Objects;

		if (Op.Kind == ELodexStepKind::Property)
		{
			if (!bRoot)
			{
				for (const std::uint32_t Object : Context)
				{
					Yield.push_back({Object, static_cast<std::uint32_t>(OpIndex)});
				}
			}
			NodeType = "PropertyStep";
			Operation = "Property " + Quoted(Op.Name) + " of " + ContextPhrase(bRoot, Context.size()) + ": " +
				LodexText::FormatInt(static_cast<std::int64_t>(Yield.size())) +
				(Yield.size() == 1 ? " reference" : " references");
		}
		else if (Op.Kind == ELodexStepKind::Component || !bStandard)
		{
			Objects = Evaluator.Select(Op, bRoot, Context);
			if (Op.Kind == ELodexStepKind::Component)
			{
				NodeType = "ComponentStep";
				Operation = AxisPhrase(Op, bRoot, Context.size()) + ": " +
					LodexText::FormatInt(static_cast<std::int64_t>(Objects.size())) + " found";
			}
			else
			{
				Operation = "Other reading of the path: " + FormatLodexObjectCount(Objects.size());
			}
		}
		else
		{
			// The node test, then each comparison and the predicate over what the node test selected.
			const FEvaluator::FTest Test = Evaluator.MakeTest(Op);
			const auto AcceptAll = [](std::uint32_t)
			{
				return true;
			};
			FClock::time_point PartStart = FClock::now();
			const FSet OnAxis = Test.bNamed && Test.NameIds.empty()
				? FSet()
				: Evaluator.SelectOnAxis(Op, bRoot, Context, Test, nullptr, AcceptAll, AcceptAll);
			std::vector<std::string> Stack = StepStack;
			Stack.push_back("Node test: " + SpanText(Program, Op.TestSpan));
			Parts.push_back({Op.TestSpan, 1,
				AxisPhrase(Op, bRoot, Context.size()) + ": " +
					LodexText::FormatInt(static_cast<std::int64_t>(OnAxis.size())) + " found",
				"NodeTest", Stack, ToMatches(OnAxis), MillisecondsSince(PartStart)});
			Objects = OnAxis;

			if (Op.Predicate != nullptr)
			{
				const FLodexPredicate& StepPredicate = *Op.Predicate;
				const FResolvedPredicate Resolved = Evaluator.ResolvePredicate(StepPredicate);
				std::vector<std::string> PredicateStack = StepStack;
				PredicateStack.push_back("Predicate: " + SpanText(Program, StepPredicate.Span));
				const std::string Of = " of " + LodexText::FormatInt(static_cast<std::int64_t>(OnAxis.size()));
				for (const bool bStandardEdges : {true, false})
				{
					for (std::size_t Edge = 0; Edge < StepPredicate.Edges.size(); ++Edge)
					{
						const FLodexPredicateEdge& Comparison = StepPredicate.Edges[Edge];
						if (Comparison.Kind != ELodexPredicateEdgeKind::Comparison ||
							Comparison.bStandard != bStandardEdges)
						{
							continue;
						}
						PartStart = FClock::now();
						FSet Holding;
						for (const std::uint32_t Object : OnAxis)
						{
							if (Evaluator.Compare(Comparison.Attribute, Resolved.Ids[Edge], Object))
							{
								Holding.push_back(Object);
							}
						}
						if (!bStandardEdges && Holding.empty())
						{
							continue;
						}
						std::vector<std::string> ComparisonStack = PredicateStack;
						ComparisonStack.push_back("Comparison: " + SpanText(Program, Comparison.Span));
						Parts.push_back({Comparison.Span, 2,
							SpanText(Program, Comparison.Span) + ": " +
								LodexText::FormatInt(static_cast<std::int64_t>(Holding.size())) + Of + " hold",
							"Comparison", ComparisonStack, ToMatches(Holding), MillisecondsSince(PartStart)});
					}
				}
				PartStart = FClock::now();
				FSet Kept;
				for (const std::uint32_t Object : OnAxis)
				{
					if (Evaluator.Holds(Resolved, Object))
					{
						Kept.push_back(Object);
					}
				}
				Parts.push_back({StepPredicate.Span, 1,
					"Keep the objects the predicate holds for: " +
						LodexText::FormatInt(static_cast<std::int64_t>(Kept.size())) + Of,
					"Predicate", PredicateStack, ToMatches(Kept), MillisecondsSince(PartStart)});
				Objects = std::move(Kept);
			}
			Operation = "Step " + LodexText::FormatInt(Op.StandardStep) + " of " + StepCount + ": " +
				FormatLodexObjectCount(Objects.size());
		}

		if (Op.Kind != ELodexStepKind::Property)
		{
			Yield = ToMatches(Objects);
		}
		if (!bStandard && Yield.empty())
		{
			continue;
		}
		for (FLodexTraceStep& Part : Parts)
		{
			Trace.Steps.push_back(std::move(Part));
		}
		Trace.Steps.push_back({Op.Span, 0, Operation, NodeType, StepStack, Yield, MillisecondsSince(StepStart)});
		if (Op.Kind == ELodexStepKind::Property)
		{
			Sets.Properties.insert(Sets.Properties.end(), Yield.begin(), Yield.end());
		}
		else
		{
			Sets.Add(Op.To, End, std::move(Objects));
		}
	}

	Trace.Result = Sets.Result();
	Trace.Steps.push_back(
		{Whole, 0, "Result: " + FormatLodexObjectCount(Trace.Result.size()), "Path", {"Path"}, Trace.Result, 0.0});
	Trace.bOk = !(Trace.Result.empty() && Program.HasStandardError());
	if (!Trace.bOk)
	{
		Trace.Error = Program.GetStandardError();
	}
	return Trace;
}

std::size_t NextLodexTraceStep(const FLodexTrace& Trace, std::size_t Current, bool bStepOver)
{
	const std::size_t Count = Trace.Steps.size();
	if (Current >= Count)
	{
		return Count;
	}
	const int Depth = Trace.Steps[Current].Depth;
	for (std::size_t Next = Current + 1; Next < Count; ++Next)
	{
		if (!bStepOver || Trace.Steps[Next].Depth <= Depth)
		{
			return Next;
		}
	}
	return Count;
}
