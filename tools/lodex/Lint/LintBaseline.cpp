// Copyright Lodex contributors.
// lint --baseline: the Lodestrings an edit of the level broke, what broke each, and the repair when the object is
// still there (docs/diff.md).
#include "LintBaseline.h"

#include "CSharpLiterals.h"

#include "LodexDebugger/Core/Lodestring/LodestringEvaluator.h"
#include "LodexDebugger/Core/Lodestring/LodexBestLocator.h"
#include "LodexDebugger/Core/Lodestring/LodexMatchNotice.h"
#include "LodexDebugger/Core/Lodestring/LodexSceneIndex.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <algorithm>
#include <cstdio>

namespace
{
	constexpr std::size_t MaxCandidates = 5;

	const FSceneObject* OwningActor(const FSceneObject* Object)
	{
		for (; Object != nullptr; Object = Object->Outer)
		{
			if (Object->Kind == ELodexSnapshotKind::Actor)
			{
				return Object;
			}
		}
		return nullptr;
	}

	std::string NameOrNothing(const FSceneObject* Actor)
	{
		return Actor != nullptr ? Actor->Name : std::string("nothing");
	}

	std::string FormatScore(double Score)
	{
		char Text[16];
		std::snprintf(Text, sizeof(Text), "%.2f", Score);
		return Text;
	}

	/** Evaluates a literal; false when it cannot be read. */
	bool Evaluate(
		const FLodexSceneIndex& Index, const std::string& Text, FLodestringProgram& Program, FLodexEvaluation& Out)
	{
		FLodexPathError Error;
		if (!CompileLodestring(Text, Program, Error))
		{
			return false;
		}
		Out = EvaluateLodestring(Index, Program);
		return Out.bOk;
	}
}

FLintBaselineCheck::FLintBaselineCheck(const FSceneSnapshot& InOld, const FLodexSceneIndex& InOldIndex,
	const FSceneSnapshot& InNew, const FLodexSceneIndex& InNewIndex, const FLodexBestLocatorFinder& InNewFinder)
	: OldIndex(InOldIndex)
	, New(InNew)
	, NewIndex(InNewIndex)
	, NewFinder(InNewFinder)
	, Diff(DiffLevelScenes(InOld, InNew))
{
	for (std::size_t Index = 0; Index < Diff.Changes.size(); ++Index)
	{
		if (Diff.Changes[Index].Old != nullptr)
		{
			ChangesOf[Diff.Changes[Index].Old].push_back(Index);
		}
	}
}

std::vector<std::string> FLintBaselineCheck::Causes(const FSceneObject& Object, const FSceneObject* NewObject) const
{
	std::vector<std::string> Out;
	const FSceneObject* Actor = OwningActor(&Object);
	if (Actor != nullptr && &Object != Actor && Diff.NewOf(Actor) != nullptr && NewObject == nullptr)
	{
		Out.push_back("component '" + Object.Name + "' was removed from " + Diff.NewOf(Actor)->Name);
	}
	// The actor's own changes, then those of the actors it is attached to, nearest first.
	for (const FSceneObject* Step = Actor; Step != nullptr; Step = Step->AttachParent)
	{
		const FSceneObject* Now = Diff.NewOf(Step);
		if (Now == nullptr)
		{
			Out.push_back(Step->Name + " was removed from the level");
			continue;
		}
		const auto Changed = ChangesOf.find(Step);
		if (Changed == ChangesOf.end())
		{
			continue;
		}
		for (const std::size_t Index : Changed->second)
		{
			const FLevelChangeEntry& Change = Diff.Changes[Index];
			switch (Change.Kind)
			{
				case ELevelChange::Renamed:
					Out.push_back(Step->Name + " was renamed " + Now->Name);
					break;
				case ELevelChange::Reattached:
					Out.push_back(Step->Name + " was re-attached from " + NameOrNothing(Step->AttachParent) + " to " +
						NameOrNothing(Now->AttachParent));
					break;
				case ELevelChange::Retagged:
					for (const std::string& Tag : Change.Removed)
					{
						Out.push_back("tag '" + Tag + "' was removed from " + Step->Name);
					}
					for (const std::string& Tag : Change.Added)
					{
						Out.push_back("tag '" + Tag + "' was added to " + Step->Name);
					}
					break;
				case ELevelChange::ClassChanged:
					Out.push_back(
						"the class of " + Step->Name + " changed from " + Change.Before + " to " + Change.After);
					break;
				default:
					break;
			}
		}
	}
	return Out;
}

std::string FLintBaselineCheck::DescribeOthers(const std::vector<const FSceneObject*>& Others) const
{
	std::vector<std::string> Parts;
	for (const FSceneObject* Other : Others)
	{
		const FSceneObject* Actor = OwningActor(Other);
		const FSceneObject* Before = Actor != nullptr ? Diff.OldOf(Actor) : nullptr;
		std::string What = "added";
		if (Before != nullptr)
		{
			std::vector<std::string> Kinds;
			const auto Changed = ChangesOf.find(Before);
			for (std::size_t Index = 0; Changed != ChangesOf.end() && Index < Changed->second.size(); ++Index)
			{
				Kinds.emplace_back(LevelChangeName(Diff.Changes[Changed->second[Index]].Kind));
			}
			What = Kinds.empty() ? "there before" : LodexText::Join(Kinds, ", ");
		}
		Parts.push_back(Other->Name + " (" + What + ")");
	}
	return (Others.size() == 1 ? "a second object now matches: "
							   : std::to_string(Others.size()) + " more objects now match: ") +
		LodexText::Join(Parts, ", ");
}

void FLintBaselineCheck::FindCandidates(const FSceneObject& Actor, std::vector<FLintRepairCandidate>& Out) const
{
	std::vector<std::pair<double, const FSceneObject*>> Scored;
	for (const FSceneObject& Candidate : New.GetObjects())
	{
		if (Candidate.Kind != ELodexSnapshotKind::Actor || Diff.OldOf(&Candidate) != nullptr)
		{
			continue; // an actor paired with another is that one
		}
		const double Score = ScoreLevelActors(Actor, Candidate);
		if (Score >= LodexDiffRules::Threshold - LodexDiffRules::Margin)
		{
			Scored.emplace_back(Score, &Candidate);
		}
	}
	std::stable_sort(
		Scored.begin(), Scored.end(), [](const auto& Left, const auto& Right) { return Left.first > Right.first; });
	for (std::size_t Item = 0; Item < Scored.size() && Out.size() < MaxCandidates; ++Item)
	{
		const FLodexBestLocator Best = NewFinder.Find(NewIndex.FindIndex(FSceneSnapshot::Handle(*Scored[Item].second)));
		if (!Best.Lodestring.empty())
		{
			Out.push_back({Best.Lodestring, Scored[Item].first});
		}
	}
}

bool FLintBaselineCheck::Check(
	const std::string& FileName, const FCSharpApiString& Literal, bool bExpectsOneObject, FLodexLintFinding& OutFinding)
{
	FLodestringProgram OldProgram;
	FLodexEvaluation Before;
	if (!Evaluate(OldIndex, Literal.Value, OldProgram, Before) || Before.Matches.size() != 1)
	{
		return false; // it did not find one object before: today's rules
	}
	FLodestringProgram NewProgram;
	FLodexEvaluation Now;
	if (!Evaluate(NewIndex, Literal.Value, NewProgram, Now))
	{
		return false;
	}
	const std::size_t Count = Now.Matches.size();
	if (Count == 1 || (Count > 1 && !bExpectsOneObject))
	{
		return false;
	}
	const FLodexMatch& Match = Before.Matches.front();
	const FSceneObject& Object = FSceneSnapshot::Resolve(OldIndex.GetObject(Match.Object));
	const FSceneObject* Actor = OwningActor(&Object);
	const FSceneObject* NewActor = Actor != nullptr ? Diff.NewOf(Actor) : nullptr;
	const FSceneObject* NewObject = nullptr;
	if (NewActor != nullptr && Actor == &Object)
	{
		NewObject = NewActor;
	}
	else if (NewActor != nullptr)
	{
		for (const FSceneObject& Candidate : New.GetObjects())
		{
			NewObject = NewObject == nullptr && Candidate.Outer == NewActor && Candidate.Name == Object.Name
				? &Candidate
				: NewObject;
		}
	}

	std::vector<std::string> Causes = FLintBaselineCheck::Causes(Object, NewObject);
	if (Count > 1)
	{
		std::vector<const FSceneObject*> Others;
		for (const FLodexMatch& Found : Now.Matches)
		{
			const FSceneObject& Other = FSceneSnapshot::Resolve(NewIndex.GetObject(Found.Object));
			if (&Other != NewObject)
			{
				Others.push_back(&Other);
			}
		}
		Causes.push_back(DescribeOthers(Others));
	}
	if (Causes.empty())
	{
		Causes.push_back("no change of " + Object.Name + " itself explains it");
	}
	const std::string Shown = ShowLodestringOnOneLine(Literal.Value);
	OutFinding = FLodexLintFinding();
	OutFinding.Severity = ELodexLintSeverity::Error;
	OutFinding.Rule = LodexLintRules::BrokenByChange;
	OutFinding.Span = {0, static_cast<std::uint32_t>(Literal.Value.size())};
	OutFinding.Message = Shown + " found " + Object.Name + " on the baseline and now " + DescribeLodexMatchCount(Count);
	for (std::size_t Index = 0; Index < Causes.size(); ++Index)
	{
		OutFinding.Message += (Index == 0 ? ": " : "; ") + Causes[Index];
	}

	FLintBrokenLiteral Entry;
	Entry.File = FileName;
	Entry.Offset = Literal.Offset;
	Entry.End = Literal.End;
	Entry.Line = Literal.Line;
	Entry.Value = Literal.Value;
	if (NewObject != nullptr)
	{
		FLodexBestLocator Best = NewFinder.Find(NewIndex.FindIndex(FSceneSnapshot::Handle(*NewObject)));
		if (Match.Property != FLodexSceneIndex::None && !Best.Lodestring.empty())
		{
			Best.Lodestring += "/@" + OldProgram.GetOps()[Match.Property].Name;
		}
		if (Best.MatchCount == 1 && !Best.Lodestring.empty())
		{
			Entry.Repair = Best.Lodestring;
			OutFinding.Suggestion = Best.Lodestring;
		}
	}
	if (Entry.Repair.empty() && Actor != nullptr)
	{
		FindCandidates(*Actor, Entry.Candidates);
		for (const FLintRepairCandidate& Candidate : Entry.Candidates)
		{
			OutFinding.Notes.push_back("candidate: " + ShowLodestringOnOneLine(Candidate.Lodestring) + " (score " +
				FormatScore(Candidate.Score) + ")");
		}
		if (Entry.Candidates.empty())
		{
			OutFinding.Notes.push_back("no actor of the new level comes close to " + Actor->Name);
		}
	}
	Broken.push_back(std::move(Entry));
	return true;
}
