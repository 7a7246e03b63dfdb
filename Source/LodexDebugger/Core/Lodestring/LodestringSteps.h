// Copyright Lodex contributors.
#pragma once

// The evaluator's working parts, shared by the evaluation (LodestringEvaluator.cpp) and the step-by-step trace
// (LodestringTrace.cpp): a step's selection over the scene index, predicates, and the sets at each step boundary.
// Nothing else includes it.

#include "LodestringEvaluator.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace LodestringEvaluatorPrivate
{
	using FSet = std::vector<std::uint32_t>;
	inline constexpr std::uint32_t NoIndex = FLodexSceneIndex::None;

	/** Predicate states: bit (G * 2 + R), G: an "or" group already held; R: the current "and" run holds. */
	inline constexpr std::uint8_t StateStart = 1u << 1;
	inline constexpr std::uint8_t StatesAccepting = (1u << 1) | (1u << 2) | (1u << 3);

	inline double MillisecondsSince(std::chrono::steady_clock::time_point Start)
	{
		return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - Start).count();
	}

	inline FSet UnionOf(const FSet& A, const FSet& B)
	{
		if (A.empty())
		{
			return B;
		}
		FSet Out;
		Out.reserve(A.size() + B.size());
		std::set_union(A.begin(), A.end(), B.begin(), B.end(), std::back_inserter(Out));
		return Out;
	}

	inline std::uint32_t Log2Ceil(std::size_t Value)
	{
		std::uint32_t Bits = 1;
		while (Value > 1)
		{
			Value >>= 1;
			++Bits;
		}
		return Bits;
	}

	/** One step's predicate with the ids its comparisons look for, resolved once per evaluation. */
	struct FResolvedPredicate
	{
		const FLodexPredicate* Predicate = nullptr;
		std::vector<std::vector<std::uint32_t>> Ids;
	};

	class FEvaluator
	{
	public:
		FEvaluator(const FLodexSceneIndex& InIndex, const FLodestringProgram& InProgram,
			const FLodexEvaluationOptions& InOptions)
			: Index(InIndex)
			, Program(InProgram)
			, Options(InOptions)
		{
		}

		/** The ids of the names (or tags) a written text stands for: usually one or none. */
		std::vector<std::uint32_t> Resolve(const std::string& Text, ELodexAttribute Attribute) const
		{
			std::vector<std::uint32_t> Ids;
			const bool bWildcards = Options.bAnsiWildcards && Text.find('?') != std::string::npos &&
				std::all_of(
					Text.begin(), Text.end(), [](char Char) { return static_cast<unsigned char>(Char) < 0x80; });
			const bool bName = Attribute == ELodexAttribute::Name;
			if (bWildcards)
			{
				const std::uint32_t Count = bName ? Index.NumNames() : Index.NumTags();
				for (std::uint32_t Id = 0; Id < Count; ++Id)
				{
					if (LodexText::ToAnsi(bName ? Index.GetNameText(Id) : Index.GetTagText(Id)) == Text)
					{
						Ids.push_back(Id);
					}
				}
				return Ids;
			}
			const std::uint32_t Id = bName ? Index.FindNameId(Text) : Index.FindTagId(Text);
			if (Id != NoIndex)
			{
				Ids.push_back(Id);
			}
			return Ids;
		}

		FResolvedPredicate ResolvePredicate(const FLodexPredicate& Predicate) const
		{
			FResolvedPredicate Resolved;
			Resolved.Predicate = &Predicate;
			Resolved.Ids.resize(Predicate.Edges.size());
			for (std::size_t Edge = 0; Edge < Predicate.Edges.size(); ++Edge)
			{
				if (Predicate.Edges[Edge].Kind == ELodexPredicateEdgeKind::Comparison)
				{
					Resolved.Ids[Edge] = Resolve(Predicate.Edges[Edge].Value, Predicate.Edges[Edge].Attribute);
				}
			}
			return Resolved;
		}

		bool Compare(ELodexAttribute Attribute, const std::vector<std::uint32_t>& Ids, std::uint32_t Object) const
		{
			if (Ids.empty())
			{
				return false;
			}
			if (Attribute == ELodexAttribute::Name)
			{
				return std::find(Ids.begin(), Ids.end(), Index.GetNameId(Object)) != Ids.end();
			}
			for (const std::uint32_t Tag : Index.GetTagIds(Object))
			{
				if (std::find(Ids.begin(), Ids.end(), Tag) != Ids.end())
				{
					return true;
				}
			}
			return false;
		}

		bool Holds(const FResolvedPredicate& Resolved, std::uint32_t Object) const
		{
			const FLodexPredicate& Predicate = *Resolved.Predicate;
			if (Predicate.bEmpty)
			{
				return false;
			}
			const std::vector<FLodexPredicateEdge>& Edges = Predicate.Edges;
			if (!Predicate.bHasAnd)
			{
				// Every comparison lies on a complete reading, so one that holds decides.
				for (std::size_t Edge = 0; Edge < Edges.size(); ++Edge)
				{
					if (Edges[Edge].Kind == ELodexPredicateEdgeKind::Comparison &&
						Compare(Edges[Edge].Attribute, Resolved.Ids[Edge], Object))
					{
						return true;
					}
				}
				return false;
			}
			std::uint8_t Small[32] = {};
			std::vector<std::uint8_t> Large;
			std::uint8_t* States = Small;
			if (Predicate.NodeCount > 32)
			{
				Large.assign(Predicate.NodeCount, 0);
				States = Large.data();
			}
			States[Predicate.StartNode] = StateStart;
			for (std::size_t Edge = 0; Edge < Edges.size(); ++Edge)
			{
				const std::uint8_t In = States[Edges[Edge].From];
				if (In == 0)
				{
					continue;
				}
				std::uint8_t Out = In;
				switch (Edges[Edge].Kind)
				{
					case ELodexPredicateEdgeKind::Comparison:
						if (!Compare(Edges[Edge].Attribute, Resolved.Ids[Edge], Object))
						{
							Out = static_cast<std::uint8_t>(((In & 0x3) != 0 ? 0x1 : 0) | ((In & 0xC) != 0 ? 0x4 : 0));
						}
						break;
					case ELodexPredicateEdgeKind::Or:
						Out = static_cast<std::uint8_t>(((In & 0x1) != 0 ? 0x2 : 0) | ((In & 0xE) != 0 ? 0x8 : 0));
						break;
					case ELodexPredicateEdgeKind::And:
						break;
				}
				States[Edges[Edge].To] |= Out;
			}
			return (States[Predicate.AcceptNode] & StatesAccepting) != 0;
		}

		/** What a step's node test, or a component step, selects on its axis, before any predicate. */
		struct FTest
		{
			bool bNodes = true;
			bool bNamed = false;
			std::vector<std::uint32_t> NameIds;
		};

		FTest MakeTest(const FLodexStepOp& Op) const
		{
			FTest Test;
			Test.bNodes = Op.Kind == ELodexStepKind::Node;
			Test.bNamed = !(Test.bNodes && Op.bAnyName);
			if (Test.bNamed)
			{
				Test.NameIds = Resolve(Op.Name, ELodexAttribute::Name);
			}
			return Test;
		}

		bool Passes(const FTest& Test, std::uint32_t Object) const
		{
			if (Index.IsNode(Object) != Test.bNodes)
			{
				return false;
			}
			return !Test.bNamed ||
				std::find(Test.NameIds.begin(), Test.NameIds.end(), Index.GetNameId(Object)) != Test.NameIds.end();
		}

		/** The descendants of the context as sorted, disjoint ranges [first, last). */
		std::vector<std::pair<std::uint32_t, std::uint32_t>> DescendantRanges(const FSet& Context) const
		{
			std::vector<std::pair<std::uint32_t, std::uint32_t>> Ranges;
			for (const std::uint32_t Object : Context)
			{
				const std::uint32_t Cycle = Index.GetCycle(Object);
				if (Cycle == NoIndex)
				{
					Ranges.emplace_back(Object + 1, Index.GetSubtreeEnd(Object));
					continue;
				}
				// On a loop, every member of the loop (the object itself included) lies below the object.
				for (const std::uint32_t Member : Index.GetCycleMembers(Cycle))
				{
					Ranges.emplace_back(Member, Index.GetSubtreeEnd(Member));
				}
			}
			std::sort(Ranges.begin(), Ranges.end());
			std::vector<std::pair<std::uint32_t, std::uint32_t>> Merged;
			for (const auto& Range : Ranges)
			{
				if (Range.first >= Range.second)
				{
					continue;
				}
				if (!Merged.empty() && Range.first <= Merged.back().second)
				{
					Merged.back().second = std::max(Merged.back().second, Range.second);
				}
				else
				{
					Merged.push_back(Range);
				}
			}
			return Merged;
		}

		static bool InRanges(const std::vector<std::pair<std::uint32_t, std::uint32_t>>& Ranges, std::uint32_t Object)
		{
			auto It = std::upper_bound(Ranges.begin(), Ranges.end(), Object,
				[](std::uint32_t Value, const std::pair<std::uint32_t, std::uint32_t>& Range)
				{ return Value < Range.first; });
			return It != Ranges.begin() && Object < std::prev(It)->second;
		}

		/**
		 * The objects on the step's axis that pass Accept. Candidates, when given, are sorted and already
		 * pass the node test: the index's list of a name or of the predicate's values. The cheaper of
		 * walking the axis and checking the candidates is taken.
		 */
		template<typename FAcceptWalked, typename FAcceptCandidate>
		FSet SelectOnAxis(const FLodexStepOp& Op, bool bRoot, const FSet& Context, const FTest& Test,
			const FLodexIndexRange* Candidates, FAcceptWalked&& AcceptWalked, FAcceptCandidate&& AcceptCandidate) const
		{
			FSet Out;
			if (Op.Axis == ELodexAxis::Child)
			{
				if (bRoot)
				{
					if (Candidates != nullptr)
					{
						for (const std::uint32_t Object : *Candidates)
						{
							if (Index.IsRoot(Object) && AcceptCandidate(Object))
							{
								Out.push_back(Object);
							}
						}
						return Out;
					}
					for (const std::uint32_t Object : Test.bNodes ? Index.GetNodeRoots() : Index.GetComponentRoots())
					{
						if (Passes(Test, Object) && AcceptWalked(Object))
						{
							Out.push_back(Object);
						}
					}
					return Out;
				}
				std::size_t WalkCost = 0;
				for (const std::uint32_t Object : Context)
				{
					WalkCost +=
						(Test.bNodes ? Index.GetNodeChildren(Object) : Index.GetComponentChildren(Object)).size();
				}
				if (Candidates != nullptr && Candidates->size() * Log2Ceil(Context.size()) < WalkCost)
				{
					for (const std::uint32_t Object : *Candidates)
					{
						const std::uint32_t Parent = Index.GetParent(Object);
						if (Parent != NoIndex && std::binary_search(Context.begin(), Context.end(), Parent) &&
							AcceptCandidate(Object))
						{
							Out.push_back(Object);
						}
					}
					return Out;
				}
				for (const std::uint32_t Parent : Context)
				{
					for (const std::uint32_t Object :
						Test.bNodes ? Index.GetNodeChildren(Parent) : Index.GetComponentChildren(Parent))
					{
						if (Passes(Test, Object) && AcceptWalked(Object))
						{
							Out.push_back(Object);
						}
					}
				}
				std::sort(Out.begin(), Out.end());
				return Out;
			}

			if (bRoot)
			{
				if (Candidates != nullptr)
				{
					for (const std::uint32_t Object : *Candidates)
					{
						if (AcceptCandidate(Object))
						{
							Out.push_back(Object);
						}
					}
					return Out;
				}
				for (std::uint32_t Object = 0; Object < Index.Num(); ++Object)
				{
					if (Passes(Test, Object) && AcceptWalked(Object))
					{
						Out.push_back(Object);
					}
				}
				return Out;
			}
			const std::vector<std::pair<std::uint32_t, std::uint32_t>> Ranges = DescendantRanges(Context);
			std::size_t ScanCost = 0;
			for (const auto& Range : Ranges)
			{
				ScanCost += Range.second - Range.first;
			}
			if (Candidates != nullptr && Candidates->size() * Log2Ceil(Ranges.size()) < ScanCost)
			{
				for (const std::uint32_t Object : *Candidates)
				{
					if (InRanges(Ranges, Object) && AcceptCandidate(Object))
					{
						Out.push_back(Object);
					}
				}
				return Out;
			}
			for (const auto& Range : Ranges)
			{
				for (std::uint32_t Object = Range.first; Object < Range.second; ++Object)
				{
					if (Passes(Test, Object) && AcceptWalked(Object))
					{
						Out.push_back(Object);
					}
				}
			}
			return Out;
		}

		/** The index's candidates for a step: the objects with its name, or with one of its predicate's values. */
		bool Candidates(const FLodexStepOp& Op, const FTest& Test, const FResolvedPredicate* Predicate, FSet& Storage,
			FLodexIndexRange& OutRange, bool& bOutPassPredicate) const
		{
			std::vector<FLodexIndexRange> Lists;
			bOutPassPredicate = false;
			if (Test.bNamed)
			{
				for (const std::uint32_t Id : Test.NameIds)
				{
					Lists.push_back(Test.bNodes ? Index.GetNodesNamed(Id) : Index.GetComponentsNamed(Id));
				}
			}
			else if (Predicate != nullptr && Op.Kind == ELodexStepKind::Node)
			{
				const std::vector<FLodexPredicateEdge>& Edges = Predicate->Predicate->Edges;
				for (std::size_t Edge = 0; Edge < Edges.size(); ++Edge)
				{
					for (const std::uint32_t Id : Predicate->Ids[Edge])
					{
						Lists.push_back(Edges[Edge].Attribute == ELodexAttribute::Name ? Index.GetNodesNamed(Id)
																					   : Index.GetNodesTagged(Id));
					}
				}
				bOutPassPredicate = !Predicate->Predicate->bHasAnd;
			}
			else
			{
				return false;
			}
			if (Lists.size() == 1)
			{
				OutRange = Lists.front();
				return true;
			}
			for (const FLodexIndexRange& List : Lists)
			{
				Storage.insert(Storage.end(), List.begin(), List.end());
			}
			std::sort(Storage.begin(), Storage.end());
			Storage.erase(std::unique(Storage.begin(), Storage.end()), Storage.end());
			OutRange = {Storage.data(), Storage.data() + Storage.size()};
			return true;
		}

		/** A node or component step, the fast way. */
		FSet Select(const FLodexStepOp& Op, bool bRoot, const FSet& Context) const
		{
			const FTest Test = MakeTest(Op);
			if (Test.bNamed && Test.NameIds.empty())
			{
				return {};
			}
			FResolvedPredicate Resolved;
			const FResolvedPredicate* Predicate = nullptr;
			if (Op.Predicate != nullptr)
			{
				if (Op.Predicate->bEmpty)
				{
					return {};
				}
				Resolved = ResolvePredicate(*Op.Predicate);
				Predicate = &Resolved;
			}
			FSet Storage;
			FLodexIndexRange Range;
			bool bPassPredicate = false;
			const bool bHaveCandidates = Candidates(Op, Test, Predicate, Storage, Range, bPassPredicate);
			auto AcceptWalked = [&](std::uint32_t Object)
			{
				return Predicate == nullptr || Holds(*Predicate, Object);
			};
			if (!bHaveCandidates)
			{
				return SelectOnAxis(Op, bRoot, Context, Test, nullptr, AcceptWalked, AcceptWalked);
			}
			// A name's list passes the node test; a predicate's lists pass the predicate when it has no "and".
			auto AcceptCandidate = [&](std::uint32_t Object)
			{
				if (Test.bNamed)
				{
					return AcceptWalked(Object);
				}
				return Passes(Test, Object) && (bPassPredicate || AcceptWalked(Object));
			};
			return SelectOnAxis(Op, bRoot, Context, Test, &Range, AcceptWalked, AcceptCandidate);
		}

		const FLodexSceneIndex& Index;
		const FLodestringProgram& Program;
		const FLodexEvaluationOptions& Options;
	};

	/** The sets of objects at each step boundary, filled as the steps run in text order. */
	struct FBoundarySets
	{
		std::map<std::uint32_t, FSet> Sets;
		FSet AtEnd;
		std::vector<FLodexMatch> Properties;
		const FSet Empty{};

		const FSet& At(std::uint32_t Position) const
		{
			const auto Found = Sets.find(Position);
			return Found == Sets.end() ? Empty : Found->second;
		}
		void Add(std::uint32_t Position, std::uint32_t End, FSet&& Objects)
		{
			if (Objects.empty())
			{
				return;
			}
			FSet& Target = Position == End ? AtEnd : Sets[Position];
			if (Target.empty())
			{
				Target = std::move(Objects);
				return;
			}
			Target = UnionOf(Target, Objects);
		}
		std::vector<FLodexMatch> Result() const
		{
			std::vector<FLodexMatch> Matches;
			Matches.reserve(AtEnd.size() + Properties.size());
			for (const std::uint32_t Object : AtEnd)
			{
				Matches.push_back({Object, NoIndex});
			}
			if (Properties.empty())
			{
				return Matches; // the objects at the end are already sorted and distinct
			}
			Matches.insert(Matches.end(), Properties.begin(), Properties.end());
			std::sort(Matches.begin(), Matches.end());
			Matches.erase(std::unique(Matches.begin(), Matches.end()), Matches.end());
			return Matches;
		}
	};
}
