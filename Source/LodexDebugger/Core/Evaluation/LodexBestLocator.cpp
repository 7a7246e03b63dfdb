// Copyright Lodex contributors.
#include "LodexBestLocator.h"

#include "LodestringEvaluator.h"

#include <algorithm>
#include <vector>

namespace
{
	/** One locator considered for an object, with what it rests on. */
	struct FBestCandidate
	{
		std::string Lodestring;
		ELodexLocatorEvidence Evidence;
		bool bStable;
	};

	/** How many nodes may share a name for "//Name" and component steps to be tried. */
	constexpr std::size_t SharedNameLimit = 64;

	/** Whether a value can stand between quotes with one reading only: no "'" in it. */
	bool IsPlainQuotedValue(const std::string& Text)
	{
		return !Text.empty() && Text.find('\'') == std::string::npos;
	}

	/** Whether a name can stand as a bare name step with one reading only. */
	bool IsPlainBareName(const std::string& Name)
	{
		return !Name.empty() && Name.find_first_of("/['") == std::string::npos && Name != "*" &&
			Name.rfind("fn:", 0) != 0 && Name[0] != '@';
	}

	/** The candidates' order: stable first, then by evidence, then shorter, then by text. */
	bool IsBetterCandidate(const FBestCandidate& A, const FBestCandidate& B)
	{
		if (A.bStable != B.bStable)
		{
			return A.bStable;
		}
		if (A.Evidence != B.Evidence)
		{
			return A.Evidence < B.Evidence;
		}
		if (A.Lodestring.size() != B.Lodestring.size())
		{
			return A.Lodestring.size() < B.Lodestring.size();
		}
		return A.Lodestring < B.Lodestring;
	}
}

bool HasGeneratedInstanceSuffix(std::string_view Name)
{
	const std::size_t Underscore = Name.rfind('_');
	if (Underscore == std::string_view::npos || Underscore == 0 || Underscore + 1 >= Name.size())
	{
		return false;
	}
	const std::string_view Digits = Name.substr(Underscore + 1);
	if (Digits.size() > 10 || (Digits.size() > 1 && Digits[0] == '0'))
	{
		return false;
	}
	return std::all_of(Digits.begin(), Digits.end(), [](char Char) { return Char >= '0' && Char <= '9'; });
}

FLodexBestLocatorFinder::FLodexBestLocatorFinder(const FLodexSceneIndex& InIndex)
	: Index(InIndex)
{
}

FLodexBestLocator FLodexBestLocatorFinder::Find(std::uint32_t ObjectIndex) const
{
	FLodexBestLocator Result;
	if (ObjectIndex >= Index.Num())
	{
		return Result;
	}
	const std::string Absolute = Index.GetAbsoluteLodestring(ObjectIndex);
	const auto MatchCount = [this](const std::string& Lodestring, std::uint32_t Expected, bool& bOnlyExpected)
	{
		const FLodexEvaluation Evaluation = EvaluateLodestring(Index, Lodestring);
		bOnlyExpected = Evaluation.bOk && Evaluation.Matches.size() == 1 && Evaluation.Matches[0].Object == Expected &&
			Evaluation.Matches[0].Property == FLodexSceneIndex::None;
		return Evaluation.bOk ? Evaluation.Matches.size() : std::size_t{0};
	};

	// The node the locator rests on, and the component steps below it.
	std::uint32_t Node = ObjectIndex;
	std::string ComponentSteps;
	bool bComponentsStable = true;
	while (Node != FLodexSceneIndex::None && Index.IsComponent(Node))
	{
		const std::string& Name = Index.GetName(Node);
		ComponentSteps = "/fn:component('" + Name + "')" + ComponentSteps;
		bComponentsStable = bComponentsStable && !HasGeneratedInstanceSuffix(Name);
		Node = Index.GetParent(Node);
	}
	const ELodexLocatorEvidence Floor =
		ComponentSteps.empty() ? ELodexLocatorEvidence::Tag : ELodexLocatorEvidence::Component;

	std::vector<FBestCandidate> Candidates;
	const auto Consider = [&](std::string NodeLocator, ELodexLocatorEvidence Evidence, bool bStable)
	{
		Candidates.push_back({NodeLocator + ComponentSteps, std::max(Evidence, Floor), bStable && bComponentsStable});
	};
	if (Node == FLodexSceneIndex::None)
	{
		// A component held by no node: only a step from the root reaches it.
		Consider("", ELodexLocatorEvidence::Component, true);
	}
	else
	{
		for (const std::uint32_t TagId : Index.GetTagIds(Node))
		{
			const std::string& Tag = Index.GetTagText(TagId);
			// A tag other nodes share is weak evidence (and, without component steps, cannot find the node alone).
			const bool bShared = Index.GetNodesTagged(TagId).size() > 1;
			if (!bShared && IsPlainQuotedValue(Tag))
			{
				Consider("//*[@tag = '" + Tag + "']", ELodexLocatorEvidence::Tag, true);
			}
		}
		const std::string& Name = Index.GetName(Node);
		const bool bNameStable = !HasGeneratedInstanceSuffix(Name);
		if (IsPlainBareName(Name))
		{
			// A name many nodes share is not worth evaluating; one other node's is, when component steps follow.
			const std::size_t Namesakes = Index.GetNodesNamed(Index.GetNameId(Node)).size();
			if (Namesakes == 1 || (!ComponentSteps.empty() && Namesakes <= SharedNameLimit))
			{
				Consider("//" + Name, ELodexLocatorEvidence::Name, bNameStable);
			}
			if (Index.IsRoot(Node))
			{
				Consider("/" + Name, ELodexLocatorEvidence::Name, bNameStable);
			}
			// The nearest ancestors with a plain name, each as an anchor of a relative step.
			std::uint32_t Ancestor = Index.GetParent(Node);
			for (int Depth = 0; Ancestor != FLodexSceneIndex::None && Depth < 8; ++Depth)
			{
				const std::string& AncestorName = Index.GetName(Ancestor);
				if (Index.IsNode(Ancestor) && IsPlainBareName(AncestorName))
				{
					const bool bAnchorStable = bNameStable && !HasGeneratedInstanceSuffix(AncestorName);
					Consider("//" + AncestorName + "//" + Name, ELodexLocatorEvidence::Anchor, bAnchorStable);
					if (Index.GetParent(Node) == Ancestor)
					{
						Consider("//" + AncestorName + "/" + Name, ELodexLocatorEvidence::Anchor, bAnchorStable);
					}
				}
				if (Index.GetCycle(Ancestor) != FLodexSceneIndex::None)
				{
					break;
				}
				Ancestor = Index.GetParent(Ancestor);
			}
		}
	}
	std::sort(Candidates.begin(), Candidates.end(), IsBetterCandidate);

	for (const FBestCandidate& Candidate : Candidates)
	{
		if (Candidate.Lodestring.empty() || Candidate.Lodestring.size() > Absolute.size())
		{
			continue;
		}
		bool bOnly = false;
		const std::size_t Count = MatchCount(Candidate.Lodestring, ObjectIndex, bOnly);
		if (bOnly && Count == 1)
		{
			Result.Lodestring = Candidate.Lodestring;
			Result.MatchCount = 1;
			Result.Evidence = Candidate.Evidence;
			Result.bStable = Candidate.bStable;
			return Result;
		}
	}
	// Nothing shorter singles the object out: its absolute Lodestring, with what it matches.
	bool bOnly = false;
	Result.Lodestring = Absolute;
	Result.MatchCount = MatchCount(Absolute, ObjectIndex, bOnly);
	Result.Evidence = ELodexLocatorEvidence::Absolute;
	Result.bStable = false;
	return Result;
}
