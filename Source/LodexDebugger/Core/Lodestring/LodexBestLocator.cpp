// Copyright Lodex contributors.
#include "LodexBestLocator.h"

#include "LodestringEvaluator.h"

#include <algorithm>
#include <vector>

namespace LodexBestLocatorPrivate
{
	/**
	 * The form of a candidate: a node part, then (for a component) the component steps down to it; or, for the
	 * last two forms, an anchor and one step to the component among its descendants.
	 */
	enum class ENodeForm : std::uint8_t
	{
		/** A tag no other node has. */
		Tag,
		/** `//Name` */
		Name,
		/** `/Name` */
		RootName,
		/** `//Anchor//Name` */
		AnchorDescendant,
		/** `//Parent/Name` */
		AnchorChild,
		/** The tag step of an ancestor's tag that no other node has, then `//Name` */
		TagAnchorDescendant,
		/** Nothing: the component steps start at the root. */
		Empty,
		/** `//Anchor//fn:component('C')`: the anchor the component's node or one of its ancestors */
		AnchorComponent,
		/** The tag step of a tag only the component's node or an ancestor has, then `//fn:component('C')` */
		TagAnchorComponent,
	};

	/** One locator considered for an object: what it rests on, and its length, its text made only when needed. */
	struct FCandidate
	{
		ENodeForm Form;
		ELodexLocatorEvidence Evidence;
		/**
		 * What the generated names it writes cost (capped): each name with a generated instance number costs 1 when
		 * its object was saved with its level, LodexBestLocatorPrivate::UnsavedNameCost otherwise; 0 for a stable
		 * locator.
		 */
		std::uint8_t GeneratedNames;
		/** Tag forms: the tag id; anchor forms: the anchor's object index. */
		std::uint32_t Id;
		std::size_t Length;
	};

	/** The ranking without the text: fewer generated names (stable first), then by evidence, then shorter. */
	bool RanksBefore(const FCandidate& A, const FCandidate& B)
	{
		if (A.GeneratedNames != B.GeneratedNames)
		{
			return A.GeneratedNames < B.GeneratedNames;
		}
		if (A.Evidence != B.Evidence)
		{
			return A.Evidence < B.Evidence;
		}
		return A.Length < B.Length;
	}

	bool RanksEqual(const FCandidate& A, const FCandidate& B)
	{
		return A.GeneratedNames == B.GeneratedNames && A.Evidence == B.Evidence && A.Length == B.Length;
	}
}

namespace
{
	constexpr std::uint32_t NoObject = FLodexSceneIndex::None;

	/** How many nodes may share a name for it to be tried as "//Name" before component steps, or as an anchor. */
	constexpr std::size_t SharedNameLimit = 64;

	/** How many objects a candidate's first steps may select for the rest of it to be worked out on the index. */
	constexpr std::size_t SelectionLimit = 4096;

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

	/**
	 * Appends the objects of Named (sorted) that lie below one of the Anchors (sorted), each once: the anchors'
	 * subtrees are ranges of the document order. False, as soon as it is known, when more than Wanted would be.
	 */
	bool AppendNamedBelowAnchors(const FLodexSceneIndex& Index, FLodexIndexRange Anchors, FLodexIndexRange Named,
		std::size_t Wanted, std::vector<std::uint32_t>& Selected)
	{
		std::uint32_t Covered = 0;
		for (const std::uint32_t Anchor : Anchors)
		{
			const std::uint32_t First = std::max(Anchor + 1, Covered);
			const std::uint32_t Last = Index.GetSubtreeEnd(Anchor);
			if (First >= Last)
			{
				continue;
			}
			Covered = Last;
			const std::uint32_t* Begin = std::lower_bound(Named.begin(), Named.end(), First);
			const std::uint32_t* End = std::lower_bound(Begin, Named.end(), Last);
			if (Selected.size() + static_cast<std::size_t>(End - Begin) > Wanted)
			{
				return false;
			}
			Selected.insert(Selected.end(), Begin, End);
		}
		return true;
	}

	/** Appends the node (or component) children of each holder that have the name. */
	template<typename THolders>
	void AppendChildrenNamed(const FLodexSceneIndex& Index, const THolders& Holders, bool bNodes, std::uint32_t NameId,
		std::vector<std::uint32_t>& Out)
	{
		for (const std::uint32_t Holder : Holders)
		{
			for (const std::uint32_t Child :
				bNodes ? Index.GetNodeChildren(Holder) : Index.GetComponentChildren(Holder))
			{
				if (Index.GetNameId(Child) == NameId)
				{
					Out.push_back(Child);
				}
			}
		}
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

/** What one object's search works with: its node, its component steps, and the candidates. */
struct FLodexBestLocatorFinder::FSearch
{
	std::uint32_t Object = NoObject;
	/** The node the locator rests on, or NoObject for a component that no node holds. */
	std::uint32_t Node = NoObject;
	/** The components from the node down to the object, the object last. */
	std::vector<std::uint32_t> Components;
	std::size_t ComponentLength = 0;
	/** What the components' generated names cost; what the object's own name costs (see FCandidate). */
	std::size_t ComponentGeneratedNames = 0;
	std::size_t LeafGeneratedCost = 0;
	/** No component name holds a "'": the steps read one way only, and the index can count what they select. */
	bool bComponentsPlain = true;
	/** The components lead up to a node or to a root (not round a loop). */
	bool bChainComplete = true;
	std::vector<LodexBestLocatorPrivate::FCandidate> Candidates;
	/** Scratch lists of the index-side count. */
	std::vector<std::uint32_t> Selected;
	std::vector<std::uint32_t> Next;
};

FLodexBestLocatorFinder::FLodexBestLocatorFinder(const FLodexSceneIndex& InIndex)
	: Index(InIndex)
{
	for (std::uint32_t Object = 0; Object < Index.Num(); ++Object)
	{
		if (Index.GetCycle(Object) != NoObject)
		{
			bHasLoops = true;
			break;
		}
	}
}

std::size_t FLodexBestLocatorFinder::GeneratedNameCost(std::uint32_t ObjectIndex) const
{
	if (!HasGeneratedInstanceSuffix(Index.GetName(ObjectIndex)))
	{
		return 0;
	}
	return Index.GetGraph().GetPlacement(Index.GetObject(ObjectIndex)) == ELodexPlacement::Placed
		? 1
		: LodexBestLocatorPrivate::UnsavedNameCost;
}

std::size_t FLodexBestLocatorFinder::AbsoluteLength(std::uint32_t ObjectIndex) const
{
	// The absolute Lodestring has a step for the object and each of its ancestors on the index.
	std::size_t Length = 0;
	for (std::uint32_t Object = ObjectIndex; Object != NoObject; Object = Index.GetParent(Object))
	{
		Length += Index.GetName(Object).size() + (Index.IsNode(Object) ? 14 : 17);
	}
	return Length;
}

std::string FLodexBestLocatorFinder::MakeText(const FSearch& Search, std::size_t Which) const
{
	using LodexBestLocatorPrivate::ENodeForm;
	const LodexBestLocatorPrivate::FCandidate& Candidate = Search.Candidates[Which];
	std::string Text;
	Text.reserve(Candidate.Length);
	const auto NodeName = [this, &Search]() -> const std::string&
	{
		return Index.GetName(Search.Node);
	};
	switch (Candidate.Form)
	{
		case ENodeForm::Tag:
			Text += "//*[@tag = '";
			Text += Index.GetTagText(Candidate.Id);
			Text += "']";
			break;
		case ENodeForm::Name:
			Text += "//";
			Text += NodeName();
			break;
		case ENodeForm::RootName:
			Text += "/";
			Text += NodeName();
			break;
		case ENodeForm::AnchorDescendant:
		case ENodeForm::AnchorChild:
			Text += "//";
			Text += Index.GetName(Candidate.Id);
			Text += Candidate.Form == ENodeForm::AnchorChild ? "/" : "//";
			Text += NodeName();
			break;
		case ENodeForm::TagAnchorDescendant:
			Text += "//*[@tag = '";
			Text += Index.GetTagText(Candidate.Id);
			Text += "']//";
			Text += NodeName();
			break;
		case ENodeForm::Empty:
			break;
		case ENodeForm::AnchorComponent:
		case ENodeForm::TagAnchorComponent:
			if (Candidate.Form == ENodeForm::AnchorComponent)
			{
				Text += "//";
				Text += Index.GetName(Candidate.Id);
			}
			else
			{
				Text += "//*[@tag = '";
				Text += Index.GetTagText(Candidate.Id);
				Text += "']";
			}
			// One step to the component among the anchor's descendants, the components between skipped.
			Text += "//fn:component('";
			Text += Index.GetName(Search.Object);
			Text += "')";
			return Text;
	}
	for (const std::uint32_t Component : Search.Components)
	{
		Text += "/fn:component('";
		Text += Index.GetName(Component);
		Text += "')";
	}
	return Text;
}

bool FLodexBestLocatorFinder::MaySelectOnlyTheObject(
	FSearch& Search, const LodexBestLocatorPrivate::FCandidate& Candidate) const
{
	using LodexBestLocatorPrivate::ENodeForm;
	if (bHasLoops || !Search.bComponentsPlain)
	{
		// Loops put objects below themselves, and a name with a "'" reads in more than one way: only the
		// evaluator knows what such a candidate selects.
		return true;
	}
	// The nodes the node part selects, on the index; a list too long to be worth working out is left to the
	// evaluator unless it alone already rules the candidate out.
	std::vector<std::uint32_t>& Selected = Search.Selected;
	Selected.clear();
	const bool bComponents = !Search.Components.empty();
	const std::size_t Wanted = bComponents ? SelectionLimit : 1;
	const std::uint32_t NameId = Search.Node == NoObject ? NoObject : Index.GetNameId(Search.Node);
	switch (Candidate.Form)
	{
		case ENodeForm::Tag:
		{
			const FLodexIndexRange Tagged = Index.GetNodesTagged(Candidate.Id);
			if (Tagged.size() > Wanted)
			{
				return false;
			}
			Selected.assign(Tagged.begin(), Tagged.end());
			break;
		}
		case ENodeForm::Name:
		{
			const FLodexIndexRange Named = Index.GetNodesNamed(NameId);
			if (Named.size() > Wanted)
			{
				return false;
			}
			Selected.assign(Named.begin(), Named.end());
			break;
		}
		case ENodeForm::RootName:
			for (const std::uint32_t Named : Index.GetNodesNamed(NameId))
			{
				if (Index.IsRoot(Named))
				{
					Selected.push_back(Named);
					if (Selected.size() > Wanted)
					{
						return false;
					}
				}
			}
			break;
		case ENodeForm::AnchorDescendant:
			// The anchors' subtrees are ranges of the document order, as is the sorted list of the name.
			if (!AppendNamedBelowAnchors(Index, Index.GetNodesNamed(Index.GetNameId(Candidate.Id)),
					Index.GetNodesNamed(NameId), Wanted, Selected))
			{
				return false;
			}
			break;
		case ENodeForm::TagAnchorDescendant:
			if (!AppendNamedBelowAnchors(
					Index, Index.GetNodesTagged(Candidate.Id), Index.GetNodesNamed(NameId), Wanted, Selected))
			{
				return false;
			}
			break;
		case ENodeForm::AnchorComponent:
		case ENodeForm::TagAnchorComponent:
		{
			// The components of the object's name below the anchors: the object alone, or the candidate is out.
			const FLodexIndexRange Anchors = Candidate.Form == ENodeForm::AnchorComponent
				? Index.GetNodesNamed(Index.GetNameId(Candidate.Id))
				: Index.GetNodesTagged(Candidate.Id);
			return AppendNamedBelowAnchors(
					   Index, Anchors, Index.GetComponentsNamed(Index.GetNameId(Search.Object)), 1, Selected) &&
				Selected.size() == 1 && Selected[0] == Search.Object;
		}
		case ENodeForm::AnchorChild:
		{
			const std::uint32_t AnchorNameId = Index.GetNameId(Candidate.Id);
			const FLodexIndexRange Named = Index.GetNodesNamed(NameId);
			if (Named.size() <= SelectionLimit)
			{
				for (const std::uint32_t Child : Named)
				{
					const std::uint32_t Parent = Index.GetParent(Child);
					if (Parent != NoObject && Index.IsNode(Parent) && Index.GetNameId(Parent) == AnchorNameId)
					{
						Selected.push_back(Child);
					}
				}
			}
			else
			{
				AppendChildrenNamed(Index, Index.GetNodesNamed(AnchorNameId), true, NameId, Selected);
				std::sort(Selected.begin(), Selected.end());
			}
			if (Selected.size() > Wanted)
			{
				return false;
			}
			break;
		}
		case ENodeForm::Empty:
			break;
	}

	if (!bComponents)
	{
		return Selected.size() == 1 && Selected[0] == Search.Object;
	}
	// Each component step: the components of that name held by what the step before selected.
	std::vector<std::uint32_t>& Next = Search.Next;
	for (std::size_t Step = 0; Step < Search.Components.size(); ++Step)
	{
		const std::uint32_t ComponentNameId = Index.GetNameId(Search.Components[Step]);
		Next.clear();
		if (Candidate.Form == ENodeForm::Empty && Step == 0)
		{
			for (const std::uint32_t Component : Index.GetComponentsNamed(ComponentNameId))
			{
				if (Index.IsRoot(Component))
				{
					Next.push_back(Component);
				}
			}
		}
		else
		{
			AppendChildrenNamed(Index, Selected, false, ComponentNameId, Next);
		}
		if (Next.size() > SelectionLimit)
		{
			return false;
		}
		Selected.swap(Next);
	}
	std::sort(Selected.begin(), Selected.end());
	Selected.erase(std::unique(Selected.begin(), Selected.end()), Selected.end());
	return Selected.size() == 1 && Selected[0] == Search.Object;
}

bool FLodexBestLocatorFinder::FindsOnlyTheObject(const std::string& Lodestring, std::uint32_t ObjectIndex) const
{
	const FLodexEvaluation Evaluation = EvaluateLodestring(Index, Lodestring);
	return Evaluation.bOk && Evaluation.Matches.size() == 1 && Evaluation.Matches[0].Object == ObjectIndex &&
		Evaluation.Matches[0].Property == NoObject;
}

FLodexBestLocator FLodexBestLocatorFinder::Find(std::uint32_t ObjectIndex) const
{
	FLodexBestLocator Result;
	if (ObjectIndex >= Index.Num())
	{
		return Result;
	}
	FSearch Search;
	Search.Object = ObjectIndex;
	Search.Node = ObjectIndex;
	while (Search.Node != NoObject && Index.IsComponent(Search.Node))
	{
		const std::string& Name = Index.GetName(Search.Node);
		Search.Components.push_back(Search.Node);
		Search.ComponentLength += Name.size() + 17;
		Search.ComponentGeneratedNames += GeneratedNameCost(Search.Node);
		Search.bComponentsPlain = Search.bComponentsPlain && IsPlainQuotedValue(Name);
		Search.Node = Index.GetParent(Search.Node);
		if (Search.Node != NoObject && Index.GetCycle(Search.Node) != NoObject && Index.IsComponent(Search.Node))
		{
			Search.bChainComplete = false; // Components holding each other in a loop: no chain to write down.
			break;
		}
	}
	std::reverse(Search.Components.begin(), Search.Components.end());
	Search.LeafGeneratedCost = Search.Components.empty() ? 0 : GeneratedNameCost(ObjectIndex);

	if (Search.bChainComplete)
	{
		GatherCandidates(Search);
	}
	std::sort(Search.Candidates.begin(), Search.Candidates.end(), LodexBestLocatorPrivate::RanksBefore);
	const std::size_t Limit = bHasLoops ? Index.GetAbsoluteLodestring(ObjectIndex).size() : AbsoluteLength(ObjectIndex);

	for (std::size_t First = 0; First < Search.Candidates.size();)
	{
		// Candidates that rank alike are told apart by their text.
		std::size_t Last = First + 1;
		while (Last < Search.Candidates.size() &&
			LodexBestLocatorPrivate::RanksEqual(Search.Candidates[First], Search.Candidates[Last]))
		{
			++Last;
		}
		std::vector<std::string> Texts;
		for (std::size_t Which = First; Which < Last; ++Which)
		{
			if (Search.Candidates[Which].Length <= Limit && MaySelectOnlyTheObject(Search, Search.Candidates[Which]))
			{
				Texts.push_back(MakeText(Search, Which));
			}
		}
		std::sort(Texts.begin(), Texts.end());
		for (std::string& Text : Texts)
		{
			if (!Text.empty() && FindsOnlyTheObject(Text, ObjectIndex))
			{
				Result.Lodestring = std::move(Text);
				Result.MatchCount = 1;
				Result.Evidence = Search.Candidates[First].Evidence;
				Result.bStable = Search.Candidates[First].GeneratedNames == 0;
				return Result;
			}
		}
		First = Last;
	}
	// Nothing shorter singles the object out: its absolute Lodestring, with what it matches.
	Result.Lodestring = Index.GetAbsoluteLodestring(ObjectIndex);
	const FLodexEvaluation Evaluation = EvaluateLodestring(Index, Result.Lodestring);
	Result.MatchCount = Evaluation.bOk ? Evaluation.Matches.size() : 0;
	Result.Evidence = ELodexLocatorEvidence::Absolute;
	Result.bStable = false;
	return Result;
}

void FLodexBestLocatorFinder::GatherCandidates(FSearch& Search) const
{
	using LodexBestLocatorPrivate::ENodeForm;
	const bool bComponents = !Search.Components.empty();
	const ELodexLocatorEvidence Floor = bComponents ? ELodexLocatorEvidence::Component : ELodexLocatorEvidence::Tag;
	const auto Generated = [](std::size_t Count)
	{
		return static_cast<std::uint8_t>(std::min<std::size_t>(Count, 255));
	};
	// A node part, then the component steps down to the object.
	const auto Consider = [&](ENodeForm Form, ELodexLocatorEvidence Evidence, std::size_t GeneratedNames,
							  std::uint32_t Id, std::size_t NodeLength)
	{
		Search.Candidates.push_back({Form, std::max(Evidence, Floor),
			Generated(GeneratedNames + Search.ComponentGeneratedNames), Id, NodeLength + Search.ComponentLength});
	};
	// An anchor, then one step to the component among its descendants: `//fn:component('C')`, 16 + 2 characters.
	const auto ConsiderComponentBelow =
		[&](ENodeForm Form, std::size_t AnchorGeneratedNames, std::uint32_t Id, std::size_t AnchorLength)
	{
		const std::size_t Leaf = Index.GetName(Search.Object).size();
		Search.Candidates.push_back({Form, ELodexLocatorEvidence::Component,
			Generated(AnchorGeneratedNames + Search.LeafGeneratedCost), Id, AnchorLength + 18 + Leaf});
	};
	const std::uint32_t Node = Search.Node;
	if (Node == NoObject)
	{
		// A component held by no node: only a step from the root reaches it.
		Consider(ENodeForm::Empty, ELodexLocatorEvidence::Component, 0, NoObject, 0);
		return;
	}
	// A tag other nodes share is weak evidence (and, without component steps, cannot find the node alone).
	const auto IsUniqueTag = [this](std::uint32_t TagId)
	{
		return Index.GetNodesTagged(TagId).size() == 1 && IsPlainQuotedValue(Index.GetTagText(TagId));
	};
	for (const std::uint32_t TagId : Index.GetTagIds(Node))
	{
		if (IsUniqueTag(TagId))
		{
			const std::size_t TagLength = Index.GetTagText(TagId).size() + 14;
			Consider(ENodeForm::Tag, ELodexLocatorEvidence::Tag, 0, TagId, TagLength);
			if (bComponents)
			{
				ConsiderComponentBelow(ENodeForm::TagAnchorComponent, 0, TagId, TagLength);
			}
		}
	}
	const std::string& Name = Index.GetName(Node);
	// A node's name is written only when it reads one way; a component's anchors do not write it.
	const bool bNamePlain = IsPlainBareName(Name);
	const std::size_t NameGenerated = GeneratedNameCost(Node);
	// A name many nodes share is not worth trying; one other node's is, when component steps follow.
	const std::size_t Namesakes = Index.GetNodesNamed(Index.GetNameId(Node)).size();
	if (bNamePlain && (Namesakes == 1 || (bComponents && Namesakes <= SharedNameLimit)))
	{
		Consider(ENodeForm::Name, ELodexLocatorEvidence::Name, NameGenerated, NoObject, Name.size() + 2);
		if (bComponents)
		{
			ConsiderComponentBelow(ENodeForm::AnchorComponent, NameGenerated, Node, Name.size() + 2);
		}
	}
	if (bNamePlain && Index.IsRoot(Node))
	{
		Consider(ENodeForm::RootName, ELodexLocatorEvidence::Name, NameGenerated, NoObject, Name.size() + 1);
	}
	// The nearest ancestors with a plain name that few nodes share, or with a tag no other node has, each as an
	// anchor: of a relative step to the node, and of a component step to a component below it.
	std::uint32_t Ancestor = Index.GetParent(Node);
	for (int Depth = 0; Ancestor != NoObject && Depth < 8; ++Depth)
	{
		const std::string& AncestorName = Index.GetName(Ancestor);
		if (Index.IsNode(Ancestor) && IsPlainBareName(AncestorName) &&
			Index.GetNodesNamed(Index.GetNameId(Ancestor)).size() <= SharedNameLimit)
		{
			const std::size_t AncestorGenerated = GeneratedNameCost(Ancestor);
			if (bNamePlain)
			{
				const std::size_t Length = AncestorName.size() + Name.size() + 2;
				Consider(ENodeForm::AnchorDescendant, ELodexLocatorEvidence::Anchor, AncestorGenerated + NameGenerated,
					Ancestor, Length + 2);
				if (Index.GetParent(Node) == Ancestor)
				{
					Consider(ENodeForm::AnchorChild, ELodexLocatorEvidence::Anchor, AncestorGenerated + NameGenerated,
						Ancestor, Length + 1);
				}
			}
			if (bComponents)
			{
				ConsiderComponentBelow(
					ENodeForm::AnchorComponent, AncestorGenerated, Ancestor, AncestorName.size() + 2);
			}
		}
		for (const std::uint32_t TagId : Index.GetTagIds(Ancestor))
		{
			if (!Index.IsNode(Ancestor) || !IsUniqueTag(TagId))
			{
				continue;
			}
			const std::size_t TagLength = Index.GetTagText(TagId).size() + 14;
			if (bNamePlain)
			{
				Consider(ENodeForm::TagAnchorDescendant, ELodexLocatorEvidence::Anchor, NameGenerated, TagId,
					TagLength + 2 + Name.size());
			}
			if (bComponents)
			{
				ConsiderComponentBelow(ENodeForm::TagAnchorComponent, 0, TagId, TagLength);
			}
		}
		if (Index.GetCycle(Ancestor) != NoObject)
		{
			break;
		}
		Ancestor = Index.GetParent(Ancestor);
	}
}
