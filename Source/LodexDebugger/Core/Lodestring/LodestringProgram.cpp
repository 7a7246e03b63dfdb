// Copyright Lodex contributors.
#include "LodestringProgram.h"

#include <algorithm>
#include <map>
#include <utility>

namespace LodestringProgramPrivate
{
	/** A predicate edge between text positions, before the graph is numbered. */
	struct FRawEdge
	{
		ELodexPredicateEdgeKind Kind = ELodexPredicateEdgeKind::Comparison;
		ELodexAttribute Attribute = ELodexAttribute::Name;
		std::size_t From = 0;
		std::size_t To = 0;
		/** Comparison: where the quoted value's bytes lie in the text. */
		std::size_t ValueBegin = 0;
		std::size_t ValueLength = 0;
		FLodexSpan Span;
		bool bStandard = false;

		bool SameAs(const FRawEdge& Other) const { return Kind == Other.Kind && From == Other.From && To == Other.To; }
	};

	/** The reading graph of one predicate: every way to read the text after one "[". */
	struct FRawPredicate
	{
		std::size_t Open = 0;
		std::size_t Start = 0;
		std::vector<FRawEdge> Edges;
		/** Positions of the "]" that can close it. */
		std::vector<std::size_t> Closes;
		bool bEmptyCloses = false;
	};

	class FCompiler
	{
	public:
		explicit FCompiler(const std::string& InText)
			: T(InText)
			, N(InText.size())
		{
			for (std::size_t Pos = 0; Pos < N; ++Pos)
			{
				if (T[Pos] == '\'')
				{
					Quotes.push_back(Pos);
				}
				if (T[Pos] == '/' || T[Pos] == '[')
				{
					NameEnds.push_back(Pos);
				}
			}
			NameEnds.push_back(N);
		}

		bool ParseStandard(std::vector<FLodexStepOp>& OutOps, FLodexPathError& OutError);
		bool ParseAllReadings(std::vector<FLodexStepOp>& OutOps);

	private:
		char At(std::size_t Pos) const { return Pos < N ? T[Pos] : '\0'; }
		bool StartsWith(std::size_t Pos, const char* Literal) const
		{
			for (std::size_t Index = 0; Literal[Index] != '\0'; ++Index)
			{
				if (Pos + Index >= N || T[Pos + Index] != Literal[Index])
				{
					return false;
				}
			}
			return true;
		}
		std::size_t SkipBlanks(std::size_t Pos) const
		{
			while (Pos < N && (T[Pos] == ' ' || T[Pos] == '\t'))
			{
				++Pos;
			}
			return Pos;
		}
		std::size_t NextOf(std::size_t Pos, const char* Set) const
		{
			while (Pos < N)
			{
				for (const char* Item = Set; *Item != '\0'; ++Item)
				{
					if (T[Pos] == *Item)
					{
						return Pos;
					}
				}
				++Pos;
			}
			return N;
		}
		bool IsBoundary(std::size_t Pos) const { return Pos == N || T[Pos] == '/'; }
		/** A boundary from which the rest of the text reads, once that is known (while other readings are collected).
		 */
		bool EndsWell(std::size_t Pos) const { return IsBoundary(Pos) && (Viable == nullptr || (*Viable)[Pos] != 0); }

		/** A span that lies inside the text and, unless the text is empty, holds at least one byte. */
		FLodexSpan Span(std::size_t Begin, std::size_t End) const
		{
			End = std::min(End, N);
			Begin = std::min(Begin, End);
			if (Begin == End && N > 0)
			{
				Begin = std::min(Begin, N - 1);
				End = Begin + 1;
			}
			return {static_cast<std::uint32_t>(Begin), static_cast<std::uint32_t>(End)};
		}
		bool Fail(FLodexPathError& OutError, const char* Message, std::size_t Begin, std::size_t End) const
		{
			OutError.Message = Message;
			OutError.Span = Span(Begin, End);
			return false;
		}

		static bool IsWordChar(char Char)
		{
			return (Char >= 'a' && Char <= 'z') || (Char >= 'A' && Char <= 'Z') || (Char >= '0' && Char <= '9') ||
				Char == '_';
		}
		/** The length of the word "or" or "and" at Pos, standing alone; 0 when neither stands there. */
		std::size_t JoinWordAt(std::size_t Pos) const
		{
			if (StartsWith(Pos, "or") && !IsWordChar(At(Pos + 2)))
			{
				return 2;
			}
			if (StartsWith(Pos, "and") && !IsWordChar(At(Pos + 3)))
			{
				return 3;
			}
			return 0;
		}
		/**
		 * After the "'" at Pos - 1: whether the standard reading ends a predicate's value there, that is
		 * whether "]" or the word "or" or "and" follows.
		 */
		bool EndsPredicateValue(std::size_t Pos) const
		{
			const std::size_t After = SkipBlanks(Pos);
			return At(After) == ']' || JoinWordAt(After) != 0;
		}
		/** The attribute named after the "@" at Pos; the position after its name, or 0 when unknown. */
		std::size_t ReadAttribute(std::size_t Pos, ELodexAttribute& OutAttribute) const
		{
			std::size_t End = Pos + 1;
			while (End < N &&
				((T[End] >= 'a' && T[End] <= 'z') || (T[End] >= 'A' && T[End] <= 'Z') ||
					(T[End] >= '0' && T[End] <= '9') || T[End] == '_' || T[End] == '-' || T[End] == ':'))
			{
				++End;
			}
			const std::size_t Length = End - Pos - 1;
			if (Length == 4 && T.compare(Pos + 1, Length, "name") == 0)
			{
				OutAttribute = ELodexAttribute::Name;
				return End;
			}
			if (Length == 3 && T.compare(Pos + 1, Length, "tag") == 0)
			{
				OutAttribute = ELodexAttribute::Tag;
				return End;
			}
			return 0;
		}
		std::size_t AttributeTextEnd(std::size_t Pos) const
		{
			std::size_t End = Pos + 1;
			while (End < N && T[End] != ' ' && T[End] != '\t' && T[End] != '=' && T[End] != ']' && T[End] != '\'')
			{
				++End;
			}
			return End;
		}

		bool ParseStandardStep(std::size_t Begin, FLodexStepOp& OutOp, FLodexPathError& OutError);
		bool ParseStandardPredicate(std::size_t Open, FRawPredicate& OutPredicate, FLodexPathError& OutError);
		bool ExpectStepEnd(std::size_t Pos, FLodexPathError& OutError) const
		{
			if (IsBoundary(Pos))
			{
				return true;
			}
			return Fail(OutError, "Expected / or the end of the path after the step", Pos, NextOf(Pos, "/"));
		}

		/** The steps from the boundary at Begin that end where the rest of the text reads; counted with no list. */
		void CollectSteps(std::size_t Begin, std::vector<FLodexStepOp>* OutOps);
		/** The node steps whose test is Head's with the name at NameBegin, ending at After or at a "]" after it. */
		void CollectNodeSteps(
			const FLodexStepOp& Head, std::size_t NameBegin, std::size_t After, std::vector<FLodexStepOp>* OutOps);
		const std::vector<std::shared_ptr<const FLodexPredicate>>& CollectPredicates(std::size_t Open);

		/** A predicate's edges ordered by where they begin, then where they end; what its start reaches. */
		struct FPredicateGraph
		{
			std::vector<const FRawEdge*> Sorted;
			/** By text position: whether a path from the start reaches it. */
			std::vector<std::uint8_t> Forward;
		};
		FPredicateGraph MakeGraph(const FRawPredicate& Raw) const;
		/** The predicate that ends at the "]" at Close: the edges of the graph on a path from its start to Close. */
		FLodexPredicate MakePredicate(const FRawPredicate& Raw, const FPredicateGraph& Graph, std::size_t Close);
		/** MakePredicate's working lists, kept from one predicate to the next so that they are allocated once. */
		struct FPredicateScratch
		{
			std::vector<std::uint8_t> Backward;
			/** By text position: 1 for a node of the predicate, then its number. */
			std::vector<std::uint32_t> Nodes;
			std::vector<const FRawEdge*> Kept;
		};
		FPredicateScratch Scratch;

		const std::string& T;
		std::size_t N;
		std::vector<std::size_t> Quotes;
		/** Every "/" and "[", then the end: where a bare name may end. */
		std::vector<std::size_t> NameEnds;
		/** The standard reading's predicates, by the position of their "[". */
		std::map<std::size_t, FRawPredicate> StandardPredicates;
		std::map<std::size_t, std::vector<std::shared_ptr<const FLodexPredicate>>> PredicatesByOpen;
		/**
		 * Candidates looked at while counting other readings; past the limit they are given up. Making the steps
		 * afterwards walks the same candidates again and spends nothing.
		 */
		bool Spend()
		{
			if (!bCounting)
			{
				return true;
			}
			if (++Budget > 2000000)
			{
				bOverBudget = true;
			}
			return !bOverBudget;
		}
		std::size_t Budget = 0;
		bool bOverBudget = false;
		const std::vector<std::uint8_t>* Viable = nullptr;

		/**
		 * With no list, counts a step (the steps of every reading are counted before any is made, so that a text
		 * past the limits costs no copies); otherwise adds a copy of Head to the list and returns it.
		 */
		FLodexStepOp* AddStep(const FLodexStepOp& Head, std::vector<FLodexStepOp>* OutOps)
		{
			if (OutOps == nullptr)
			{
				++Counted;
				return nullptr;
			}
			return &OutOps->emplace_back(Head);
		}
		bool bCounting = false;
		std::size_t Counted = 0;
	};

	bool FCompiler::ParseStandard(std::vector<FLodexStepOp>& OutOps, FLodexPathError& OutError)
	{
		if (N == 0)
		{
			return Fail(OutError, "The path is empty", 0, 0);
		}
		if (T[0] != '/')
		{
			return Fail(OutError, "A Lodestring begins with /", 0, NextOf(0, "/"));
		}
		std::size_t Pos = 0;
		while (Pos < N)
		{
			FLodexStepOp Op;
			if (!ParseStandardStep(Pos, Op, OutError))
			{
				return false;
			}
			Op.StandardStep = static_cast<std::uint32_t>(OutOps.size() + 1);
			Pos = Op.To;
			OutOps.push_back(std::move(Op));
		}
		return true;
	}

	bool FCompiler::ParseStandardStep(std::size_t Begin, FLodexStepOp& Op, FLodexPathError& OutError)
	{
		const bool bDescendant = At(Begin + 1) == '/';
		const std::size_t Test = Begin + (bDescendant ? 2 : 1);
		Op.From = static_cast<std::uint32_t>(Begin);
		Op.Axis = bDescendant ? ELodexAxis::Descendant : ELodexAxis::Child;
		const char* const ExpectTest = bDescendant ? "Expected *, a name, fn:component('name') or @property after //"
												   : "Expected *, a name, fn:component('name') or @property after /";
		if (Test >= N || T[Test] == '/' || T[Test] == '[')
		{
			return Fail(OutError, ExpectTest, Begin, Test + 1);
		}

		std::size_t After = 0;
		if (T[Test] == '@')
		{
			const std::size_t NameEnd = NextOf(Test, "/");
			if (NameEnd == Test + 1)
			{
				return Fail(OutError, "Expected a property name after @", Test, Test + 1);
			}
			if (NameEnd < N)
			{
				return Fail(OutError, "A property reference (/@Name) ends the path", NameEnd, N);
			}
			Op.Kind = ELodexStepKind::Property;
			Op.Name = T.substr(Test + 1, NameEnd - Test - 1);
			Op.To = static_cast<std::uint32_t>(N);
			Op.Span = Op.TestSpan = Span(Begin, N);
			return true;
		}
		if (StartsWith(Test, "fn:"))
		{
			if (!StartsWith(Test, "fn:component("))
			{
				const std::size_t Paren = NextOf(Test, "(/");
				return Fail(OutError, "Unknown function: only fn:component('name') is known", Test,
					At(Paren) == '(' ? Paren + 1 : Paren);
			}
			const std::size_t Quote = SkipBlanks(Test + 13);
			if (At(Quote) != '\'')
			{
				return Fail(OutError, "Expected a quoted name: fn:component('name')", Test, Quote + 1);
			}
			for (std::size_t Close = Quote + 1; Close < N; ++Close)
			{
				if (T[Close] == '\'' && At(SkipBlanks(Close + 1)) == ')')
				{
					Op.Kind = ELodexStepKind::Component;
					Op.Name = T.substr(Quote + 1, Close - Quote - 1);
					After = SkipBlanks(Close + 1) + 1;
					Op.To = static_cast<std::uint32_t>(After);
					Op.Span = Op.TestSpan = Span(Begin, After);
					return ExpectStepEnd(After, OutError);
				}
			}
			return Fail(OutError, "The quoted name is not closed: it ends at a ' followed by )", Quote, N);
		}

		if (T[Test] == '*')
		{
			Op.bAnyName = true;
			After = Test + 1;
			if (!IsBoundary(After) && T[After] != '[')
			{
				return Fail(OutError, "Expected [, / or the end of the path after *", After, NextOf(After, "/["));
			}
		}
		else
		{
			After = NextOf(Test, "/[");
			Op.Name = T.substr(Test, After - Test);
		}
		Op.TestSpan = Span(Begin, After);
		Op.To = static_cast<std::uint32_t>(After);
		if (At(After) == '[')
		{
			FRawPredicate Raw;
			if (!ParseStandardPredicate(After, Raw, OutError))
			{
				return false;
			}
			const std::size_t Close = Raw.Closes.front();
			Op.Predicate = std::make_shared<const FLodexPredicate>(MakePredicate(Raw, MakeGraph(Raw), Close));
			StandardPredicates[After] = std::move(Raw);
			Op.To = static_cast<std::uint32_t>(Close + 1);
		}
		Op.Span = Span(Begin, Op.To);
		return ExpectStepEnd(Op.To, OutError);
	}

	bool FCompiler::ParseStandardPredicate(std::size_t Open, FRawPredicate& Raw, FLodexPathError& OutError)
	{
		Raw.Open = Open;
		Raw.Start = SkipBlanks(Open + 1);
		std::size_t Pos = Raw.Start;
		if (At(Pos) == ']')
		{
			Raw.bEmptyCloses = true;
			Raw.Closes.push_back(Pos);
			return true;
		}
		for (;;)
		{
			if (Pos >= N)
			{
				return Fail(OutError, "The predicate is not closed: ] is missing", Open, N);
			}
			if (T[Pos] != '@')
			{
				return Fail(OutError, "Expected @name or @tag in the predicate", Pos, Pos + 1);
			}
			FRawEdge Comparison;
			Comparison.From = Pos;
			Comparison.bStandard = true;
			std::size_t Cursor = ReadAttribute(Pos, Comparison.Attribute);
			if (Cursor == 0)
			{
				return Fail(
					OutError, "Unknown attribute: only @name and @tag can be compared", Pos, AttributeTextEnd(Pos));
			}
			Cursor = SkipBlanks(Cursor);
			if (At(Cursor) != '=')
			{
				return Fail(OutError,
					Comparison.Attribute == ELodexAttribute::Name ? "Expected = after @name" : "Expected = after @tag",
					Cursor < N ? Cursor : Pos, Cursor + 1);
			}
			const std::size_t Quote = SkipBlanks(Cursor + 1);
			if (At(Quote) != '\'')
			{
				return Fail(OutError, "Expected a quoted value after =", Quote < N ? Quote : Cursor, Quote + 1);
			}
			std::size_t Close = Quote + 1;
			while (Close < N && !(T[Close] == '\'' && EndsPredicateValue(Close + 1)))
			{
				++Close;
			}
			if (Close >= N)
			{
				return Fail(
					OutError, "The quoted value is not closed: it ends at a ' followed by ], or or and", Quote, N);
			}
			Comparison.ValueBegin = Quote + 1;
			Comparison.ValueLength = Close - Quote - 1;
			Comparison.Span = Span(Pos, Close + 1);
			Comparison.To = SkipBlanks(Close + 1);
			Raw.Edges.push_back(Comparison);

			const std::size_t Next = Comparison.To;
			if (T[Next] == ']')
			{
				Raw.Closes.push_back(Next);
				return true;
			}
			FRawEdge Join;
			const std::size_t Word = JoinWordAt(Next);
			Join.Kind = Word == 2 ? ELodexPredicateEdgeKind::Or : ELodexPredicateEdgeKind::And;
			Join.From = Next;
			Join.To = SkipBlanks(Next + Word);
			Join.bStandard = true;
			Raw.Edges.push_back(Join);
			Pos = Join.To;
		}
	}

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

bool CompileLodestring(const std::string& Text, FLodestringProgram& Out, FLodexPathError& OutError)
{
	using namespace LodestringProgramPrivate;
	Out = FLodestringProgram();
	Out.Text = Text;

	FCompiler Compiler(Text);
	std::vector<FLodexStepOp> Standard;
	FLodexPathError StandardError;
	const bool bStandard = Compiler.ParseStandard(Standard, StandardError);

	std::vector<FLodexStepOp> All;
	if (!Compiler.ParseAllReadings(All))
	{
		All.clear();
	}

	// The standard reading's steps are found among the others; mark them, or add them where a limit
	// dropped the others.
	if (bStandard)
	{
		// The readings found are ordered by where each step begins.
		const std::size_t Found = All.size();
		for (FLodexStepOp& StandardOp : Standard)
		{
			const auto FoundEnd = All.begin() + static_cast<std::ptrdiff_t>(Found);
			auto Same = std::lower_bound(All.begin(), FoundEnd, StandardOp.From,
				[](const FLodexStepOp& Op, std::uint32_t From) { return Op.From < From; });
			while (Same != FoundEnd && Same->From == StandardOp.From &&
				!(Same->To == StandardOp.To && Same->Axis == StandardOp.Axis && Same->Kind == StandardOp.Kind &&
					Same->bAnyName == StandardOp.bAnyName && Same->Name == StandardOp.Name &&
					(Same->Predicate != nullptr) == (StandardOp.Predicate != nullptr)))
			{
				++Same;
			}
			if (Same != FoundEnd && Same->From != StandardOp.From)
			{
				Same = FoundEnd; // none of the steps from there is the standard one
			}
			if (Same != FoundEnd)
			{
				Same->StandardStep = StandardOp.StandardStep;
			}
			else
			{
				All.push_back(std::move(StandardOp));
			}
		}
		Out.StandardStepCount = static_cast<std::uint32_t>(Standard.size());
	}
	else
	{
		Out.bHasStandardError = true;
		Out.StandardError = StandardError;
	}

	if (All.empty())
	{
		OutError = StandardError;
		return false;
	}
	// Ordered by where each step begins, the standard reading's first, then by where each ends; steps alike stay in
	// the order they were found. Sorted as keys, then moved once.
	std::vector<std::pair<std::uint64_t, std::uint64_t>> Order(All.size());
	for (std::size_t Index = 0; Index < All.size(); ++Index)
	{
		const FLodexStepOp& Op = All[Index];
		Order[Index] = {(static_cast<std::uint64_t>(Op.From) << 1) | (Op.StandardStep != 0 ? 0u : 1u),
			(static_cast<std::uint64_t>(Op.To) << 32) | Index};
	}
	std::sort(Order.begin(), Order.end());
	Out.Ops.reserve(All.size());
	for (const auto& Key : Order)
	{
		Out.Ops.push_back(std::move(All[static_cast<std::uint32_t>(Key.second)]));
	}
	return true;
}
