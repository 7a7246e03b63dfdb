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

	/** The names the locator's node steps and name comparisons test, with where they stand. */
	std::vector<std::pair<std::string, FLodexSpan>> LintTestedNames(const std::vector<const FLodexStepOp*>& Steps)
	{
		std::vector<std::pair<std::string, FLodexSpan>> Names;
		for (const FLodexStepOp* Step : Steps)
		{
			if (Step->Kind == ELodexStepKind::Node && !Step->bAnyName)
			{
				const std::uint32_t NameBegin = Step->TestSpan.Begin + (Step->Axis == ELodexAxis::Descendant ? 2 : 1);
				Names.emplace_back(Step->Name, FLodexSpan{NameBegin, Step->TestSpan.End});
			}
			if (Step->Predicate == nullptr)
			{
				continue;
			}
			for (const FLodexPredicateEdge& Edge : Step->Predicate->Edges)
			{
				if (Edge.bStandard && Edge.Kind == ELodexPredicateEdgeKind::Comparison &&
					Edge.Attribute == ELodexAttribute::Name)
				{
					Names.emplace_back(Edge.Value, Edge.Span);
				}
			}
		}
		return Names;
	}

	/**
	 * For a locator that matches nothing: the first name it tests that is no object's name but is the editor label
	 * of exactly one object. Returns whether one was found, with its finding (the label named, the object's name
	 * given, its best locator suggested).
	 */
	bool FindEditorLabelFinding(const FLodexSceneIndex& Index, const FLodexBestLocatorFinder& Finder,
		const std::vector<const FLodexStepOp*>& Steps, FLodexLintFinding& Out)
	{
		const ILodexObjectGraph& Graph = Index.GetGraph();
		for (const auto& Tested : LintTestedNames(Steps))
		{
			if (Tested.first.empty() || Index.FindNameId(Tested.first) != FLodexSceneIndex::None)
			{
				continue;
			}
			std::uint32_t Labelled = FLodexSceneIndex::None;
			std::size_t Count = 0;
			for (std::uint32_t Object = 0; Object < Index.Num(); ++Object)
			{
				if (Index.IsNode(Object) && Graph.GetEditorLabel(Index.GetObject(Object)) == Tested.first)
				{
					Labelled = Object;
					++Count;
				}
			}
			if (Count != 1)
			{
				continue;
			}
			Out = MakeLintFinding(LodexLintRules::EditorLabel,
				"'" + ShowLodestringOnOneLine(Tested.first) + "' is the editor label of " +
					ShowLodestringOnOneLine(Graph.GetName(Index.GetObject(Labelled))) +
					"; the game knows it by its name",
				Tested.second);
			const FLodexBestLocator Best = Finder.Find(Labelled);
			if (Best.MatchCount == 1)
			{
				Out.Suggestion = Best.Lodestring;
			}
			return true;
		}
		return false;
	}

	/** The level a match lies in, for the notes of an ambiguous locator: " (in /Game/Maps/Sub)", or nothing. */
	std::string DescribeLintMatchLevel(const FLodexSceneIndex& Index, std::uint32_t Object)
	{
		const std::string Level = Index.GetGraph().GetLevelName(Index.GetObject(Object));
		return Level.empty() ? std::string() : " (in " + ShowLodestringOnOneLine(Level) + ")";
	}

	/** Whether the matches lie in more than one level (a map and its sub-levels). */
	bool LintMatchesSpanLevels(const FLodexSceneIndex& Index, const FLodexEvaluation& Evaluation)
	{
		const ILodexObjectGraph& Graph = Index.GetGraph();
		const std::string First = Graph.GetLevelName(Index.GetObject(Evaluation.Matches.front().Object));
		return std::any_of(Evaluation.Matches.begin(), Evaluation.Matches.end(),
			[&](const FLodexMatch& Match) { return Graph.GetLevelName(Index.GetObject(Match.Object)) != First; });
	}

	/** Whether every match satisfies Test (false when there is none). */
	template<typename TTest>
	bool LintAllMatchesAre(const FLodexSceneIndex& Index, const FLodexEvaluation& Evaluation, TTest&& Test)
	{
		return !Evaluation.Matches.empty() &&
			std::all_of(Evaluation.Matches.begin(), Evaluation.Matches.end(),
				[&](const FLodexMatch& Match) { return Test(Index.GetObject(Match.Object)); });
	}

	/** The findings about what the game has: only editor-only objects, or objects only in a streamed-in level. */
	void CheckWhatTheGameHas(const FLodexSceneIndex& Index, const std::string& Shown,
		const FLodexEvaluation& Evaluation, FLodexSpan Span, std::vector<FLodexLintFinding>& Out)
	{
		const ILodexObjectGraph& Graph = Index.GetGraph();
		if (LintAllMatchesAre(Index, Evaluation, [&Graph](FLodexObject Object) { return Graph.IsEditorOnly(Object); }))
		{
			Out.push_back(MakeLintFinding(LodexLintRules::EditorOnly,
				Shown +
					" finds only editor-only objects (saved not-for-client and not-for-server): the game does "
					"not have them",
				Span));
		}
		if (LintAllMatchesAre(
				Index, Evaluation, [&Graph](FLodexObject Object) { return Graph.IsInLevelStreamedOnDemand(Object); }))
		{
			std::vector<std::string> Levels;
			for (const FLodexMatch& Match : Evaluation.Matches)
			{
				const std::string Level = Graph.GetLevelName(Index.GetObject(Match.Object));
				if (std::find(Levels.begin(), Levels.end(), Level) == Levels.end())
				{
					Levels.push_back(Level);
				}
			}
			std::string Names;
			for (const std::string& Level : Levels)
			{
				Names += (Names.empty() ? "" : ", ") + ShowLodestringOnOneLine(Level);
			}
			Out.push_back(MakeLintFinding(LodexLintRules::StreamedLevel,
				Shown + " finds objects only in " + Names + ", which the game loads only when it streams " +
					(Levels.size() == 1 ? "it" : "them") + " in: it depends on " +
					(Levels.size() == 1 ? "that level" : "those levels") + " being streamed in",
				Span));
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
	const std::vector<const FLodexStepOp*> Steps = StandardSteps(Program);
	FLodexLintFinding Label;
	if (Count == 0 && Options.bSceneHoldsOnlyPlaced && !Program.HasStandardError() &&
		FindEditorLabelFinding(Index, Finder, Steps, Label))
	{
		// A label is no name the game knows: the locator finds nothing in the game, spawned objects aside.
		Result.Findings.push_back(std::move(Label));
	}
	else if (Count == 0)
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
		const bool bNameLevels = LintMatchesSpanLevels(Index, Evaluation);
		for (std::size_t Item = 0; Item < Count && Item < MaxListedMatches; ++Item)
		{
			const FLodexBestLocator Best = BestOfMatch(Finder, Program, Evaluation.Matches[Item]);
			Finding.Notes.push_back("match " + std::to_string(Item + 1) + " of " + std::to_string(Count) + ": " +
				ShowLodestringOnOneLine(Best.Lodestring) +
				(Best.MatchCount == 1 ? std::string() : " (" + DescribeLodexMatchCount(Best.MatchCount) + ")") +
				(bNameLevels ? DescribeLintMatchLevel(Index, Evaluation.Matches[Item].Object) : std::string()));
		}
		Result.Findings.push_back(std::move(Finding));
	}

	// The warnings: what the text rests on, as the standard reading shows it.
	std::vector<FLodexLintFinding> Warnings;
	CheckWhatTheGameHas(Index, Shown, Evaluation, WholeSpan(Lodestring), Warnings);
	if (Program.HasStandardError() || Steps.empty())
	{
		Result.Findings.insert(Result.Findings.end(), Warnings.begin(), Warnings.end());
		return Result;
	}
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
			const std::string Rule = Warning.Rule;
			// Another locator of the same object finds what the game has no more than this one.
			if (Rule == LodexLintRules::EditorOnly || Rule == LodexLintRules::StreamedLevel)
			{
				continue;
			}
			// A replacement that rests on generated names too is no cure for these rules' findings.
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
