// Copyright Lodex contributors.
#include "LodexLocatorLint.h"

#include "LodestringEvaluator.h"
#include "LodexBestLocator.h"
#include "LodexMatchNotice.h"
#include "LodexSceneIndex.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <algorithm>

namespace
{
	/** How many of an ambiguous locator's matches are listed with their own best locator. */
	constexpr std::size_t MaxListedMatches = 5;

	FLodexSpan WholeSpan(const std::string& Text)
	{
		return {0, static_cast<std::uint32_t>(Text.size())};
	}

	/** A finding of the rule, with the severity its row gives it. */
	FLodexLintFinding MakeLintFinding(const char* Rule, std::string Message, FLodexSpan Span)
	{
		FLodexLintFinding Finding;
		const FLodexLintRule* Row = FindLodexLintRule(Rule);
		Finding.Severity = Row != nullptr ? Row->Severity : ELodexLintSeverity::Error;
		Finding.Rule = Rule;
		Finding.Message = std::move(Message);
		Finding.Span = Span;
		return Finding;
	}

	/** The best locator of a match: its object's, then the property step when the match is a property. */
	FLodexBestLocator BestOfMatch(
		const FLodexBestLocatorFinder& Finder, const FLodestringProgram& Program, const FLodexMatch& Match)
	{
		FLodexBestLocator Best = Finder.Find(Match.Object);
		if (Match.Property != FLodexSceneIndex::None && !Best.Lodestring.empty())
		{
			Best.Lodestring += "/@" + Program.GetOps()[Match.Property].Name;
		}
		return Best;
	}

	/** The steps of the standard reading, in order. */
	std::vector<const FLodexStepOp*> StandardSteps(const FLodestringProgram& Program)
	{
		std::vector<const FLodexStepOp*> Steps(Program.GetStandardStepCount(), nullptr);
		for (const FLodexStepOp& Op : Program.GetOps())
		{
			if (Op.StandardStep > 0 && Op.StandardStep <= Steps.size())
			{
				Steps[Op.StandardStep - 1] = &Op;
			}
		}
		Steps.erase(std::remove(Steps.begin(), Steps.end(), nullptr), Steps.end());
		return Steps;
	}

	std::string GeneratedSuffixMessage(const std::string& Name)
	{
		return "the name '" + ShowLodestringOnOneLine(Name) +
			"' ends in a generated instance number, which can change from one run to the next";
	}

	std::string PlacedGeneratedSuffixMessage(const std::string& Name)
	{
		return "the name '" + ShowLodestringOnOneLine(Name) +
			"' ends in an instance number saved with the level: it is the same on every run, but an edit of the "
			"level may renumber it";
	}

	/**
	 * The finding for a name with a generated instance number: a note when every node (or component) of that name
	 * was saved with its level, else a warning.
	 */
	FLodexLintFinding MakeGeneratedSuffixFinding(
		const FLodexSceneIndex& Index, const std::string& Name, bool bComponent, FLodexSpan Span)
	{
		const std::uint32_t NameId = Index.FindNameId(Name);
		bool bAllPlaced = NameId != FLodexSceneIndex::None;
		if (bAllPlaced)
		{
			const FLodexIndexRange Named = bComponent ? Index.GetComponentsNamed(NameId) : Index.GetNodesNamed(NameId);
			bAllPlaced = !Named.empty() &&
				std::all_of(Named.begin(), Named.end(),
					[&Index](std::uint32_t Object)
					{ return Index.GetGraph().GetPlacement(Index.GetObject(Object)) == ELodexPlacement::Placed; });
		}
		if (!bAllPlaced)
		{
			return MakeLintFinding(LodexLintRules::GeneratedSuffix, GeneratedSuffixMessage(Name), Span);
		}
		return MakeLintFinding(LodexLintRules::PlacedGeneratedSuffix, PlacedGeneratedSuffixMessage(Name), Span);
	}

	void CheckGeneratedSuffixes(const FLodexSceneIndex& Index, const std::vector<const FLodexStepOp*>& Steps,
		std::vector<FLodexLintFinding>& Out)
	{
		for (const FLodexStepOp* Step : Steps)
		{
			if (Step->Kind == ELodexStepKind::Node && !Step->bAnyName && HasGeneratedInstanceSuffix(Step->Name))
			{
				const std::uint32_t NameBegin = Step->TestSpan.Begin + (Step->Axis == ELodexAxis::Descendant ? 2 : 1);
				Out.push_back(MakeGeneratedSuffixFinding(Index, Step->Name, false, {NameBegin, Step->TestSpan.End}));
			}
			if (Step->Kind == ELodexStepKind::Component && HasGeneratedInstanceSuffix(Step->Name))
			{
				Out.push_back(MakeGeneratedSuffixFinding(Index, Step->Name, true, Step->Span));
			}
			if (Step->Predicate == nullptr)
			{
				continue;
			}
			for (const FLodexPredicateEdge& Edge : Step->Predicate->Edges)
			{
				if (Edge.bStandard && Edge.Kind == ELodexPredicateEdgeKind::Comparison &&
					Edge.Attribute == ELodexAttribute::Name && HasGeneratedInstanceSuffix(Edge.Value))
				{
					Out.push_back(MakeGeneratedSuffixFinding(Index, Edge.Value, false, Edge.Span));
				}
			}
		}
	}

	void CheckDepth(
		const std::vector<const FLodexStepOp*>& Steps, std::size_t MaxDepth, std::vector<FLodexLintFinding>& Out)
	{
		std::size_t Depth = 0;
		while (Depth < Steps.size() && Steps[Depth]->Axis == ELodexAxis::Child &&
			Steps[Depth]->Kind != ELodexStepKind::Property)
		{
			++Depth;
		}
		if (Depth > MaxDepth)
		{
			Out.push_back(MakeLintFinding(LodexLintRules::DeepAbsolute,
				"the path names " + std::to_string(Depth) + " levels from the root (more than " +
					std::to_string(MaxDepth) + "): re-attaching any of them breaks it",
				{Steps.front()->Span.Begin, Steps[Depth - 1]->Span.End}));
		}
	}

	void CheckSharedTags(const FLodexSceneIndex& Index, const FLodestringProgram& Program,
		const std::vector<const FLodexStepOp*>& Steps, std::vector<FLodexLintFinding>& Out)
	{
		for (const FLodexStepOp* Step : Steps)
		{
			if (Step->Predicate == nullptr)
			{
				continue;
			}
			const std::vector<FLodexPredicateEdge>& Edges = Step->Predicate->Edges;
			const bool bTestsTags = std::any_of(Edges.begin(), Edges.end(),
				[](const FLodexPredicateEdge& Edge)
				{
					return Edge.bStandard && Edge.Kind == ELodexPredicateEdgeKind::Comparison &&
						Edge.Attribute == ELodexAttribute::Tag;
				});
			if (!bTestsTags)
			{
				continue;
			}
			// What the predicate alone selects anywhere in the scene.
			const FLodexSpan Span = Step->Predicate->Span;
			const std::string Predicate = Program.GetText().substr(Span.Begin, Span.End - Span.Begin);
			const FLodexEvaluation Everywhere = EvaluateLodestring(Index, "//*" + Predicate);
			if (Everywhere.bOk && Everywhere.Matches.size() > 1)
			{
				Out.push_back(MakeLintFinding(LodexLintRules::SharedTag,
					"the predicate " + ShowLodestringOnOneLine(Predicate) + " matches " +
						FormatLodexObjectCount(Everywhere.Matches.size()) +
						" of the scene: the path finds one only by where it looks",
					Span));
			}
		}
	}
}

FLodexLintResult LintLodestring(const FLodexSceneIndex& Index, const FLodexBestLocatorFinder& Finder,
	const std::string& Lodestring, const FLodexLintOptions& Options)
{
	FLodexLintResult Result;
	if (!LodexText::IsUtf8(Lodestring))
	{
		Result.Findings.push_back(MakeLintFinding(LodexLintRules::Unreadable,
			"the Lodestring is not UTF-8 text; save the file as UTF-8", WholeSpan(Lodestring)));
		return Result;
	}
	const std::string Shown = ShowLodestringOnOneLine(Lodestring);
	FLodestringProgram Program;
	FLodexPathError Error;
	if (!CompileLodestring(Lodestring, Program, Error))
	{
		Result.Findings.push_back(
			MakeLintFinding(LodexLintRules::Unreadable, Shown + " cannot be read: " + Error.Message, Error.Span));
		return Result;
	}
	const FLodexEvaluation Evaluation = EvaluateLodestring(Index, Program);
	if (!Evaluation.bOk)
	{
		Result.Findings.push_back(MakeLintFinding(
			LodexLintRules::Unreadable, Shown + " cannot be read: " + Evaluation.Error.Message, Evaluation.Error.Span));
		return Result;
	}
	const std::size_t Count = Evaluation.Matches.size();
	Result.MatchCount = Count;
	if (Count == 0)
	{
		// A level's files hold only what it saves: what the locator names may be spawned at play time.
		Result.Findings.push_back(Options.bSceneHoldsOnlyPlaced
				? MakeLintFinding(LodexLintRules::NotInLevel,
					  Shown + " matches no object the level saves: it may name one spawned at play time",
					  WholeSpan(Lodestring))
				: MakeLintFinding(
					  LodexLintRules::NoMatch, Shown + " " + DescribeLodexMatchCount(0), WholeSpan(Lodestring)));
	}
	else if (Count > 1 && Options.bExpectsOneObject)
	{
		FLodexLintFinding Finding = MakeLintFinding(
			LodexLintRules::Ambiguous, Shown + " " + DescribeLodexMatchCount(Count), WholeSpan(Lodestring));
		for (std::size_t Item = 0; Item < Count && Item < MaxListedMatches; ++Item)
		{
			const FLodexBestLocator Best = BestOfMatch(Finder, Program, Evaluation.Matches[Item]);
			Finding.Notes.push_back("match " + std::to_string(Item + 1) + " of " + std::to_string(Count) + ": " +
				ShowLodestringOnOneLine(Best.Lodestring) +
				(Best.MatchCount == 1 ? std::string() : " (" + DescribeLodexMatchCount(Best.MatchCount) + ")"));
		}
		Result.Findings.push_back(std::move(Finding));
	}

	// The warnings: what the text rests on, as the standard reading shows it.
	const std::vector<const FLodexStepOp*> Steps = StandardSteps(Program);
	if (Program.HasStandardError() || Steps.empty())
	{
		return Result;
	}
	std::vector<FLodexLintFinding> Warnings;
	CheckGeneratedSuffixes(Index, Steps, Warnings);
	CheckDepth(Steps, Options.MaxAbsoluteDepth, Warnings);
	if (Options.bExpectsOneObject && Count == 1)
	{
		CheckSharedTags(Index, Program, Steps, Warnings);
	}
	if (Warnings.empty())
	{
		return Result;
	}
	// Each warning's replacement: the best locator of the one object the text finds.
	if (Count == 1)
	{
		const FLodexBestLocator Best = BestOfMatch(Finder, Program, Evaluation.Matches.front());
		for (FLodexLintFinding& Warning : Warnings)
		{
			// A replacement that rests on generated names too is no cure for these rules' findings.
			const std::string Rule = Warning.Rule;
			if ((Rule == LodexLintRules::GeneratedSuffix || Rule == LodexLintRules::PlacedGeneratedSuffix) &&
				!Best.bStable)
			{
				Warning.Message += Rule == LodexLintRules::PlacedGeneratedSuffix
					? "; a tag on the object, or on an ancestor, would not"
					: "; no stable name or tag in the scene finds the object alone";
				continue;
			}
			if (Best.MatchCount == 1 && Best.Lodestring != Lodestring)
			{
				Warning.Suggestion = Best.Lodestring;
			}
		}
	}
	std::stable_sort(Warnings.begin(), Warnings.end(),
		[](const FLodexLintFinding& A, const FLodexLintFinding& B) { return A.Span.Begin < B.Span.Begin; });
	Result.Findings.insert(Result.Findings.end(), Warnings.begin(), Warnings.end());
	return Result;
}

bool LodexLintExpectsOneObject(std::string_view Method)
{
	// The method's name as words of its camel case: "GetAllObjects" is Get, All, Objects.
	std::size_t Begin = 0;
	while (Begin < Method.size())
	{
		std::size_t End = Begin + 1;
		while (End < Method.size() && !(Method[End] >= 'A' && Method[End] <= 'Z'))
		{
			++End;
		}
		const std::string_view Word = Method.substr(Begin, End - Begin);
		if (Word == "Objects" || Word == "List" || Word == "All" || Word == "Count")
		{
			return false;
		}
		Begin = End;
	}
	return true;
}

std::string ShowLodestringOnOneLine(const std::string& Lodestring)
{
	static const char Hex[] = "0123456789ABCDEF";
	std::string Shown;
	Shown.reserve(Lodestring.size());
	for (const char Char : Lodestring)
	{
		const unsigned char Byte = static_cast<unsigned char>(Char);
		if (Byte >= 0x20)
		{
			Shown += Char;
		}
		else if (Char == '\0' || Char == '\t' || Char == '\n' || Char == '\r')
		{
			Shown += Char == '\0' ? "\\0" : (Char == '\t' ? "\\t" : (Char == '\n' ? "\\n" : "\\r"));
		}
		else
		{
			Shown += std::string("\\u00") + Hex[Byte >> 4] + Hex[Byte & 0xF];
		}
	}
	return Shown;
}
