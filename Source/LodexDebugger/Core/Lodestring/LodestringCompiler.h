// Copyright Lodex contributors.
#pragma once

// The Lodestring compiler's working state, shared by its two halves: the standard reading
// (LodestringCompiler.cpp, with CompileLodestring) and every other reading (LodestringReadings.cpp). Nothing else
// includes it.

#include "LodestringProgram.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

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
}
