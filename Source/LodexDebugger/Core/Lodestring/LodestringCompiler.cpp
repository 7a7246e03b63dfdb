// Copyright Lodex contributors.
// The compiler (declared in LodestringProgram.h): the standard reading of a Lodestring, then every other reading.
#include "LodestringProgram.h"
#include "LodestringCompiler.h"

#include <algorithm>
#include <utility>

namespace LodestringProgramPrivate
{
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
