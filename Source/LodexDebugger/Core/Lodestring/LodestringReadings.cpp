// Copyright Lodex contributors.
// Every reading of a Lodestring that reads in more than one way: the predicates' reading graphs and the steps
// collected from each boundary.
#include "LodestringCompiler.h"

#include <algorithm>
#include <utility>

namespace LodestringProgramPrivate
{
	FCompiler::FPredicateGraph FCompiler::MakeGraph(const FRawPredicate& Raw) const
	{
		FPredicateGraph Graph;
		Graph.Sorted.reserve(Raw.Edges.size());
		for (const FRawEdge& Edge : Raw.Edges)
		{
			Graph.Sorted.push_back(&Edge);
		}
		std::sort(Graph.Sorted.begin(), Graph.Sorted.end(),
			[](const FRawEdge* A, const FRawEdge* B)
			{ return A->From != B->From ? A->From < B->From : A->To < B->To; });
		// Every edge leads forward, so one pass in text order reaches every position that can be reached.
		Graph.Forward.assign(N + 1, 0);
		Graph.Forward[Raw.Start] = 1;
		for (const FRawEdge* Edge : Graph.Sorted)
		{
			Graph.Forward[Edge->To] |= Graph.Forward[Edge->From];
		}
		return Graph;
	}

	FLodexPredicate FCompiler::MakePredicate(const FRawPredicate& Raw, const FPredicateGraph& Graph, std::size_t Close)
	{
		FLodexPredicate Predicate;
		Predicate.Span = Span(Raw.Open, Close + 1);
		if (Raw.bEmptyCloses && Close == Raw.Start)
		{
			Predicate.bEmpty = true;
			return Predicate;
		}

		// Keep the edges on a path from the start to this "]": reached from the start, and reaching the "]" (one
		// pass against text order).
		std::vector<std::uint8_t>& Backward = Scratch.Backward;
		Backward.assign(N + 1, 0);
		Backward[Close] = 1;
		for (auto It = Graph.Sorted.rbegin(); It != Graph.Sorted.rend(); ++It)
		{
			Backward[(*It)->From] |= Backward[(*It)->To];
		}
		std::vector<std::uint32_t>& Nodes = Scratch.Nodes;
		std::vector<const FRawEdge*>& Kept = Scratch.Kept;
		Nodes.assign(N + 1, 0);
		Kept.clear();
		for (const FRawEdge* Edge : Graph.Sorted)
		{
			if (Graph.Forward[Edge->From] != 0 && Backward[Edge->To] != 0)
			{
				Kept.push_back(Edge);
				Nodes[Edge->From] = 1;
				Nodes[Edge->To] = 1;
			}
		}
		Nodes[Raw.Start] = 1;
		Nodes[Close] = 1;
		// The graph's nodes are numbered in text order.
		std::uint32_t NodeCount = 0;
		for (std::uint32_t& Node : Nodes)
		{
			if (Node != 0)
			{
				Node = NodeCount++;
			}
		}

		Predicate.NodeCount = NodeCount;
		Predicate.StartNode = Nodes[Raw.Start];
		Predicate.AcceptNode = Nodes[Close];
		Predicate.Edges.reserve(Kept.size());
		for (const FRawEdge* Edge : Kept)
		{
			FLodexPredicateEdge& Out = Predicate.Edges.emplace_back();
			Out.Kind = Edge->Kind;
			Out.Attribute = Edge->Attribute;
			Out.From = Nodes[Edge->From];
			Out.To = Nodes[Edge->To];
			if (Edge->Kind == ELodexPredicateEdgeKind::Comparison)
			{
				Out.Value.assign(T, Edge->ValueBegin, Edge->ValueLength);
			}
			Out.Span = Edge->Span;
			Out.bStandard = Edge->bStandard;
			Predicate.bHasAnd = Predicate.bHasAnd || Edge->Kind == ELodexPredicateEdgeKind::And;
		}
		return Predicate;
	}

	const std::vector<std::shared_ptr<const FLodexPredicate>>& FCompiler::CollectPredicates(std::size_t Open)
	{
		const auto Known = PredicatesByOpen.find(Open);
		if (Known != PredicatesByOpen.end())
		{
			return Known->second;
		}

		FRawPredicate Raw;
		Raw.Open = Open;
		Raw.Start = SkipBlanks(Open + 1);
		if (At(Raw.Start) == ']')
		{
			Raw.bEmptyCloses = true;
			Raw.Closes.push_back(Raw.Start);
		}
		std::vector<std::size_t> Starts;
		if (At(Raw.Start) == '@')
		{
			Starts.push_back(Raw.Start);
		}
		bool bCapped = false;
		for (std::size_t Next = 0; Next < Starts.size() && !bCapped; ++Next)
		{
			const std::size_t Pos = Starts[Next];
			ELodexAttribute Attribute = ELodexAttribute::Name;
			std::size_t Cursor = ReadAttribute(Pos, Attribute);
			if (Cursor == 0)
			{
				continue;
			}
			Cursor = SkipBlanks(Cursor);
			if (At(Cursor) != '=')
			{
				continue;
			}
			const std::size_t Quote = SkipBlanks(Cursor + 1);
			if (At(Quote) != '\'')
			{
				continue;
			}
			for (auto It = std::upper_bound(Quotes.begin(), Quotes.end(), Quote); It != Quotes.end() && Spend(); ++It)
			{
				const std::size_t Close = *It;
				const std::size_t After = SkipBlanks(Close + 1);
				FRawEdge Join;
				if (At(After) == ']')
				{
					if (std::find(Raw.Closes.begin(), Raw.Closes.end(), After) == Raw.Closes.end())
					{
						Raw.Closes.push_back(After);
					}
				}
				else if (StartsWith(After, "or") && At(SkipBlanks(After + 2)) == '@')
				{
					Join.Kind = ELodexPredicateEdgeKind::Or;
					Join.To = SkipBlanks(After + 2);
				}
				else if (StartsWith(After, "and") && At(SkipBlanks(After + 3)) == '@')
				{
					Join.Kind = ELodexPredicateEdgeKind::And;
					Join.To = SkipBlanks(After + 3);
				}
				else
				{
					continue;
				}
				FRawEdge Comparison;
				Comparison.Attribute = Attribute;
				Comparison.From = Pos;
				Comparison.To = After;
				Comparison.ValueBegin = Quote + 1;
				Comparison.ValueLength = Close - Quote - 1;
				Comparison.Span = Span(Pos, Close + 1);
				Raw.Edges.push_back(Comparison);
				if (At(After) != ']')
				{
					Join.From = After;
					Raw.Edges.push_back(Join);
					if (std::find(Starts.begin(), Starts.end(), Join.To) == Starts.end())
					{
						Starts.push_back(Join.To);
					}
				}
				if (Raw.Edges.size() > LodestringLimits::MaxPredicateEdges)
				{
					bCapped = true;
					break;
				}
			}
		}

		// The standard reading's edges are always there, flagged, whatever the limit dropped.
		if (bCapped)
		{
			Raw.Edges.clear();
			Raw.Closes.clear();
		}
		const auto Standard = StandardPredicates.find(Open);
		if (Standard != StandardPredicates.end())
		{
			for (const FRawEdge& StandardEdge : Standard->second.Edges)
			{
				auto Same = std::find_if(Raw.Edges.begin(), Raw.Edges.end(),
					[&](const FRawEdge& Edge) { return Edge.SameAs(StandardEdge); });
				if (Same != Raw.Edges.end())
				{
					Same->bStandard = true;
				}
				else
				{
					Raw.Edges.push_back(StandardEdge);
				}
			}
			for (const std::size_t Close : Standard->second.Closes)
			{
				if (std::find(Raw.Closes.begin(), Raw.Closes.end(), Close) == Raw.Closes.end())
				{
					Raw.Closes.push_back(Close);
				}
			}
			Raw.bEmptyCloses = Raw.bEmptyCloses || Standard->second.bEmptyCloses;
		}

		std::vector<std::shared_ptr<const FLodexPredicate>>& Out = PredicatesByOpen[Open];
		std::sort(Raw.Closes.begin(), Raw.Closes.end());
		const FPredicateGraph Graph = MakeGraph(Raw);
		Out.reserve(Raw.Closes.size());
		for (const std::size_t Close : Raw.Closes)
		{
			Out.push_back(std::make_shared<const FLodexPredicate>(MakePredicate(Raw, Graph, Close)));
		}
		return Out;
	}

	void FCompiler::CollectNodeSteps(
		const FLodexStepOp& Head, std::size_t NameBegin, std::size_t After, std::vector<FLodexStepOp>* OutOps)
	{
		// Head has no name: the name is set on each step made, so that no copy of it is made for nothing.
		const std::size_t NameLength = Head.bAnyName ? 0 : After - NameBegin;
		if (EndsWell(After))
		{
			if (FLodexStepOp* const Op = AddStep(Head, OutOps))
			{
				Op->Name.assign(T, NameBegin, NameLength);
				Op->To = static_cast<std::uint32_t>(After);
				Op->TestSpan = Op->Span = Span(Head.From, After);
			}
		}
		else if (T[After] == '[')
		{
			for (const std::shared_ptr<const FLodexPredicate>& Predicate : CollectPredicates(After))
			{
				const std::size_t End = Predicate->Span.End;
				FLodexStepOp* const Op = EndsWell(End) ? AddStep(Head, OutOps) : nullptr;
				if (Op != nullptr)
				{
					Op->Name.assign(T, NameBegin, NameLength);
					Op->To = static_cast<std::uint32_t>(End);
					Op->TestSpan = Span(Head.From, After);
					Op->Span = Span(Head.From, End);
					Op->Predicate = Predicate;
				}
			}
		}
	}

	void FCompiler::CollectSteps(std::size_t Begin, std::vector<FLodexStepOp>* OutOps)
	{
		FLodexStepOp Head;
		const bool bDescendant = At(Begin + 1) == '/';
		const std::size_t Test = Begin + (bDescendant ? 2 : 1);
		Head.From = static_cast<std::uint32_t>(Begin);
		Head.Axis = bDescendant ? ELodexAxis::Descendant : ELodexAxis::Child;
		if (Test >= N)
		{
			return;
		}

		if (T[Test] == '*')
		{
			Head.bAnyName = true;
			CollectNodeSteps(Head, Test, Test + 1, OutOps);
			Head.bAnyName = false;
		}
		// A bare name may run to any later "/" or "[", or to the end.
		for (auto It = std::upper_bound(NameEnds.begin(), NameEnds.end(), Test); It != NameEnds.end(); ++It)
		{
			if (!Spend())
			{
				return;
			}
			if (*It < N && T[*It] == '[' ? false : !EndsWell(*It))
			{
				continue;
			}
			if (*It == Test + 1 && T[Test] == '*')
			{
				continue; // the star finds every object the name "*" would
			}
			CollectNodeSteps(Head, Test, *It, OutOps);
		}
		if (StartsWith(Test, "fn:component("))
		{
			const std::size_t Quote = SkipBlanks(Test + 13);
			if (At(Quote) == '\'')
			{
				for (auto It = std::upper_bound(Quotes.begin(), Quotes.end(), Quote); It != Quotes.end() && Spend();
					 ++It)
				{
					const std::size_t Paren = SkipBlanks(*It + 1);
					FLodexStepOp* const Op = At(Paren) == ')' && EndsWell(Paren + 1) ? AddStep(Head, OutOps) : nullptr;
					if (Op != nullptr)
					{
						Op->Kind = ELodexStepKind::Component;
						Op->Name.assign(T, Quote + 1, *It - Quote - 1);
						Op->To = static_cast<std::uint32_t>(Paren + 1);
						Op->Span = Op->TestSpan = Span(Begin, Paren + 1);
					}
				}
			}
		}
		FLodexStepOp* const Property =
			T[Test] == '@' && Test + 1 < N && T.find('/', Test) == std::string::npos ? AddStep(Head, OutOps) : nullptr;
		if (Property != nullptr)
		{
			Property->Kind = ELodexStepKind::Property;
			Property->Name.assign(T, Test + 1, std::string::npos);
			Property->To = static_cast<std::uint32_t>(N);
			Property->Span = Property->TestSpan = Span(Begin, N);
		}
	}

	bool FCompiler::ParseAllReadings(std::vector<FLodexStepOp>& OutOps)
	{
		if (N == 0 || T[0] != '/')
		{
			return true;
		}
		// From the end backwards: a boundary is viable when some step from it reaches a viable boundary.
		std::vector<std::uint8_t> bViable(N, 0);
		bViable.push_back(1); // the end of the text
		Viable = &bViable;
		// Counted first: a text whose readings pass the limits is given up before any step is made.
		bCounting = true;
		std::size_t Total = 0;
		for (std::size_t Begin = N; Begin-- > 0;)
		{
			if (T[Begin] != '/')
			{
				continue;
			}
			Counted = 0;
			CollectSteps(Begin, nullptr);
			if (bOverBudget)
			{
				return false;
			}
			bViable[Begin] = Counted == 0 ? 0 : 1;
			Total += Counted;
			if (Total > LodestringLimits::MaxAlternativeSteps)
			{
				return false;
			}
		}
		bCounting = false;
		// Forwards from the start: make the steps a reading can reach (the same candidates as counted, since a
		// boundary's viability depends only on the boundaries after it).
		std::vector<std::uint8_t> bReached(N, 0);
		bReached.push_back(0);
		bReached[0] = 1;
		OutOps.reserve(Total);
		for (std::size_t Begin = 0; Begin < N; ++Begin)
		{
			if (T[Begin] != '/' || bReached[Begin] == 0)
			{
				continue;
			}
			const std::size_t First = OutOps.size();
			CollectSteps(Begin, &OutOps);
			for (std::size_t Item = First; Item < OutOps.size(); ++Item)
			{
				bReached[OutOps[Item].To] = 1;
			}
		}
		return true;
	}
}
