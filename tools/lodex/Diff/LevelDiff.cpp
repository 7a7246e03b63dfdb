// Copyright Lodex contributors.
// Pairs the actors of two versions of a level and lists what changed of each (docs/diff.md).
#include "LevelDiff.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <set>
#include <string_view>

namespace
{
	using namespace LodexDiffRules;

	/** The map's own name from an actor's object path (`/Game/Maps/Main.Main:PersistentLevel.A` gives `Main`). */
	std::string MapNameOf(const FSceneObject& Actor)
	{
		const std::size_t Colon = Actor.Id.find(':');
		if (Colon == std::string::npos)
		{
			return std::string();
		}
		const std::size_t Dot = Actor.Id.rfind('.', Colon);
		return Dot == std::string::npos ? std::string() : Actor.Id.substr(Dot + 1, Colon - Dot - 1);
	}

	bool IsLevelScriptActor(const FSceneObject& Actor)
	{
		const std::string Map = MapNameOf(Actor);
		return !Map.empty() && LevelClassOf(Actor) == Map + "_C";
	}

	const FSceneObject* OwnerActorOf(const FSceneObject& Component)
	{
		for (const FSceneObject* Outer = Component.Outer; Outer != nullptr; Outer = Outer->Outer)
		{
			if (Outer->Kind == ELodexSnapshotKind::Actor)
			{
				return Outer;
			}
		}
		return nullptr;
	}

	/** The actors of a scene in its order, and the names of each one's components. */
	struct FActorSet
	{
		std::vector<const FSceneObject*> Actors;
		std::unordered_map<const FSceneObject*, std::vector<std::string>> Components;

		explicit FActorSet(const FSceneSnapshot& Scene)
		{
			Components.reserve(Scene.GetObjects().size() / 2);
			for (const FSceneObject& Object : Scene.GetObjects())
			{
				if (Object.Kind == ELodexSnapshotKind::Actor)
				{
					Actors.push_back(&Object);
				}
				else if (Object.Kind == ELodexSnapshotKind::Component)
				{
					if (const FSceneObject* Owner = OwnerActorOf(Object))
					{
						Components[Owner].push_back(Object.Name);
					}
				}
			}
		}
	};

	bool SameLocation(const FSceneObject& Old, const FSceneObject& New)
	{
		if (!Old.bHasLocation || !New.bHasLocation)
		{
			return Old.bHasLocation == New.bHasLocation;
		}
		const double X = Old.Location[0] - New.Location[0];
		const double Y = Old.Location[1] - New.Location[1];
		const double Z = Old.Location[2] - New.Location[2];
		return std::sqrt(X * X + Y * Y + Z * Z) <= MoveTolerance;
	}

	std::string ParentName(const FSceneObject& Actor)
	{
		return Actor.AttachParent != nullptr ? Actor.AttachParent->Name : std::string();
	}

	std::string FormatNumber(double Value)
	{
		char Text[64];
		std::snprintf(Text, sizeof(Text), "%.2f", Value);
		std::string Shown = Text;
		while (!Shown.empty() && Shown.back() == '0')
		{
			Shown.pop_back();
		}
		if (!Shown.empty() && Shown.back() == '.')
		{
			Shown.pop_back();
		}
		return Shown == "-0" ? "0" : Shown;
	}

	std::string FormatLocation(const FSceneObject& Actor)
	{
		return "(" + FormatNumber(Actor.Location[0]) + ", " + FormatNumber(Actor.Location[1]) + ", " +
			FormatNumber(Actor.Location[2]) + ")";
	}

	/** What is in Left and not in Right, counting repeats, in Left's order. */
	std::vector<std::string> Missing(const std::vector<std::string>& Left, const std::vector<std::string>& Right)
	{
		if (Left == Right)
		{
			return {}; // the common case, without a set
		}
		std::multiset<std::string> Pool(Right.begin(), Right.end());
		std::vector<std::string> Out;
		for (const std::string& Item : Left)
		{
			const auto Found = Pool.find(Item);
			if (Found == Pool.end())
			{
				Out.push_back(Item);
			}
			else
			{
				Pool.erase(Found);
			}
		}
		return Out;
	}

	bool SameTags(const FSceneObject& Old, const FSceneObject& New)
	{
		return Old.Tags == New.Tags || (Missing(Old.Tags, New.Tags).empty() && Missing(New.Tags, Old.Tags).empty());
	}

	/** Pairs by fingerprint among the actors left: best pairs first, each only without a close rival. */
	void PairByFingerprint(const std::vector<const FSceneObject*>& Olds, const std::vector<const FSceneObject*>& News,
		bool bGuidsDecide, FLevelDiff& Diff)
	{
		std::multimap<std::string, const FSceneObject*> ByName;
		std::multimap<std::string, const FSceneObject*> ByLabel;
		for (const FSceneObject* New : News)
		{
			ByName.emplace(New->Name, New);
			if (!New->Label.empty())
			{
				ByLabel.emplace(New->Label, New);
			}
		}
		struct FCandidate
		{
			const FSceneObject* Old;
			const FSceneObject* New;
			double Score;
		};
		std::vector<FCandidate> Candidates;
		std::map<const FSceneObject*, std::vector<double>> ScoresOf;
		for (const FSceneObject* Old : Olds)
		{
			std::set<const FSceneObject*> Seen;
			auto Consider = [&](const FSceneObject* New)
			{
				// Two actors that both keep a GUID are two actors: their GUIDs say so.
				if (!Seen.insert(New).second || (bGuidsDecide && !Old->Guid.empty() && !New->Guid.empty()))
				{
					return;
				}
				const double Score = ScoreLevelActors(*Old, *New);
				Candidates.push_back({Old, New, Score});
				ScoresOf[Old].push_back(Score);
				ScoresOf[New].push_back(Score);
			};
			for (auto Range = ByName.equal_range(Old->Name); Range.first != Range.second; ++Range.first)
			{
				Consider(Range.first->second);
			}
			if (!Old->Label.empty())
			{
				for (auto Range = ByLabel.equal_range(Old->Label); Range.first != Range.second; ++Range.first)
				{
					Consider(Range.first->second);
				}
			}
		}
		std::stable_sort(Candidates.begin(), Candidates.end(),
			[](const FCandidate& Left, const FCandidate& Right) { return Left.Score > Right.Score; });
		auto HasRival = [&](const FSceneObject* Actor, double Score)
		{
			std::size_t Close = 0;
			for (const double Other : ScoresOf[Actor])
			{
				Close += Other >= Score - Margin ? 1 : 0;
			}
			return Close > 1; // the pair itself is one
		};
		for (const FCandidate& Candidate : Candidates)
		{
			if (Candidate.Score < Threshold || Diff.OldToNew.count(Candidate.Old) != 0 ||
				Diff.NewToOld.count(Candidate.New) != 0)
			{
				continue;
			}
			if (HasRival(Candidate.Old, Candidate.Score) || HasRival(Candidate.New, Candidate.Score))
			{
				++Diff.CloseCalls;
				continue;
			}
			Diff.Pairs.push_back({Candidate.Old, Candidate.New, ELevelMatch::Fingerprint, Candidate.Score});
			Diff.OldToNew[Candidate.Old] = Candidate.New;
			Diff.NewToOld[Candidate.New] = Candidate.Old;
		}
	}

	void AddChange(FLevelDiff& Diff, ELevelChange Kind, const FSceneObject* Old, const FSceneObject* New,
		std::string Before = std::string(), std::string After = std::string())
	{
		FLevelChangeEntry Entry;
		Entry.Kind = Kind;
		Entry.Old = Old;
		Entry.New = New;
		Entry.Before = std::move(Before);
		Entry.After = std::move(After);
		Diff.Changes.push_back(std::move(Entry));
	}
}

std::string LevelClassOf(const FSceneObject& Object)
{
	if (!Object.ClassName.empty())
	{
		return Object.ClassName;
	}
	return Object.Class != nullptr ? Object.Class->Name : std::string();
}

std::string DescribeLevelActor(const FSceneObject& Actor)
{
	// A label may hold a tab or a line break, which the engine allows: shown escaped, on one line.
	return Actor.Label.empty() || Actor.Label == Actor.Name
		? Actor.Name
		: LodexText::EscapeControlsAndIllFormed(Actor.Label) + " (" + Actor.Name + ")";
}

const char* LevelChangeName(ELevelChange Kind)
{
	switch (Kind)
	{
		case ELevelChange::Added:
			return "added";
		case ELevelChange::Removed:
			return "removed";
		case ELevelChange::Renamed:
			return "renamed";
		case ELevelChange::Relabelled:
			return "re-labelled";
		case ELevelChange::Reattached:
			return "re-attached";
		case ELevelChange::Retagged:
			return "re-tagged";
		case ELevelChange::ClassChanged:
			return "class changed";
		case ELevelChange::Moved:
			return "moved";
		case ELevelChange::ComponentsAdded:
			return "components added";
		case ELevelChange::ComponentsRemoved:
			return "components removed";
	}
	return "";
}

double ScoreLevelActors(const FSceneObject& Old, const FSceneObject& New)
{
	double Score = 0;
	Score += Old.Name == New.Name ? NameWeight : 0;
	Score += LevelClassOf(Old) == LevelClassOf(New) ? ClassWeight : 0;
	Score += !Old.Label.empty() && Old.Label == New.Label ? LabelWeight : 0; // no label is no evidence
	Score += SameTags(Old, New) ? TagsWeight : 0;
	Score += ParentName(Old) == ParentName(New) ? ParentWeight : 0;
	Score += SameLocation(Old, New) ? LocationWeight : 0;
	return Score;
}

const FSceneObject* FLevelDiff::NewOf(const FSceneObject* Old) const
{
	const auto Found = OldToNew.find(Old);
	return Found == OldToNew.end() ? nullptr : Found->second;
}

const FSceneObject* FLevelDiff::OldOf(const FSceneObject* New) const
{
	const auto Found = NewToOld.find(New);
	return Found == NewToOld.end() ? nullptr : Found->second;
}

FLevelDiff DiffLevelScenes(const FSceneSnapshot& OldScene, const FSceneSnapshot& NewScene)
{
	FLevelDiff Diff;
	const FActorSet Old(OldScene);
	const FActorSet New(NewScene);
	Diff.OldActors = Old.Actors.size();
	Diff.NewActors = New.Actors.size();
	Diff.OldToNew.reserve(Old.Actors.size());
	Diff.NewToOld.reserve(New.Actors.size());

	// 1. The same GUID, kept by one actor on each side.
	struct FGuidUse
	{
		const FSceneObject* New = nullptr;
		std::uint32_t OldCount = 0;
		std::uint32_t NewCount = 0;
	};
	std::unordered_map<std::string_view, FGuidUse> Guids;
	Guids.reserve(New.Actors.size() + Old.Actors.size() / 8);
	bool bOldGuids = false;
	bool bNewGuids = false;
	for (const FSceneObject* Actor : New.Actors)
	{
		if (!Actor->Guid.empty())
		{
			FGuidUse& Use = Guids[Actor->Guid];
			Use.New = Actor;
			++Use.NewCount;
			bNewGuids = true;
		}
	}
	for (const FSceneObject* Actor : Old.Actors)
	{
		if (!Actor->Guid.empty())
		{
			++Guids[Actor->Guid].OldCount;
			bOldGuids = true;
		}
	}
	for (const FSceneObject* Actor : Old.Actors)
	{
		const auto Found = Actor->Guid.empty() ? Guids.end() : Guids.find(Actor->Guid);
		if (Found == Guids.end() || Found->second.OldCount != 1 || Found->second.NewCount != 1)
		{
			continue;
		}
		const FSceneObject* Match = Found->second.New;
		Diff.Pairs.push_back({Actor, Match, ELevelMatch::Guid, 1.0});
		Diff.OldToNew[Actor] = Match;
		Diff.NewToOld[Match] = Actor;
	}
	Diff.bNoSharedGuid = Diff.Pairs.empty() && bOldGuids && bNewGuids;

	// 2. The level script actor, by its class.
	for (const FSceneObject* Actor : Old.Actors)
	{
		if (Diff.OldToNew.count(Actor) != 0 || !IsLevelScriptActor(*Actor))
		{
			continue;
		}
		const FSceneObject* Match = nullptr;
		std::size_t Count = 0;
		for (const FSceneObject* Candidate : New.Actors)
		{
			if (Diff.NewToOld.count(Candidate) == 0 && LevelClassOf(*Candidate) == LevelClassOf(*Actor))
			{
				Match = Candidate;
				++Count;
			}
		}
		if (Count == 1)
		{
			Diff.Pairs.push_back({Actor, Match, ELevelMatch::LevelScript, 1.0});
			Diff.OldToNew[Actor] = Match;
			Diff.NewToOld[Match] = Actor;
		}
	}

	// 3. The fingerprint, for the rest.
	std::vector<const FSceneObject*> OldLeft;
	std::vector<const FSceneObject*> NewLeft;
	for (const FSceneObject* Actor : Old.Actors)
	{
		if (Diff.OldToNew.count(Actor) == 0)
		{
			OldLeft.push_back(Actor);
		}
	}
	for (const FSceneObject* Actor : New.Actors)
	{
		if (Diff.NewToOld.count(Actor) == 0)
		{
			NewLeft.push_back(Actor);
		}
	}
	PairByFingerprint(OldLeft, NewLeft, !Diff.bNoSharedGuid, Diff);

	// The changes: additions and removals, then each pair's, grouped by kind in the new level's order.
	for (const FSceneObject* Actor : New.Actors)
	{
		if (Diff.NewToOld.count(Actor) == 0)
		{
			AddChange(Diff, ELevelChange::Added, nullptr, Actor);
		}
	}
	for (const FSceneObject* Actor : Old.Actors)
	{
		if (Diff.OldToNew.count(Actor) == 0)
		{
			AddChange(Diff, ELevelChange::Removed, Actor, nullptr);
		}
	}
	static const std::vector<std::string> NoComponents;
	for (const FSceneObject* After : New.Actors)
	{
		const FSceneObject* Before = Diff.OldOf(After);
		if (Before == nullptr)
		{
			continue;
		}
		if (Before->Name != After->Name)
		{
			AddChange(Diff, ELevelChange::Renamed, Before, After, Before->Name, After->Name);
		}
		if (Before->Label != After->Label)
		{
			AddChange(Diff, ELevelChange::Relabelled, Before, After, Before->Label, After->Label);
		}
		const FSceneObject* WasParent = Before->AttachParent;
		const FSceneObject* WasParentNow = WasParent != nullptr ? Diff.NewOf(WasParent) : nullptr;
		if ((WasParent != nullptr || After->AttachParent != nullptr) &&
			(WasParentNow == nullptr || WasParentNow != After->AttachParent))
		{
			AddChange(Diff, ELevelChange::Reattached, Before, After,
				WasParent ? DescribeLevelActor(*WasParent) : std::string(),
				After->AttachParent ? DescribeLevelActor(*After->AttachParent) : std::string());
		}
		if (!SameTags(*Before, *After))
		{
			AddChange(Diff, ELevelChange::Retagged, Before, After);
			Diff.Changes.back().Removed = Missing(Before->Tags, After->Tags);
			Diff.Changes.back().Added = Missing(After->Tags, Before->Tags);
		}
		if (LevelClassOf(*Before) != LevelClassOf(*After))
		{
			AddChange(Diff, ELevelChange::ClassChanged, Before, After, LevelClassOf(*Before), LevelClassOf(*After));
		}
		if (Before->bHasLocation && After->bHasLocation && !SameLocation(*Before, *After))
		{
			AddChange(Diff, ELevelChange::Moved, Before, After, FormatLocation(*Before), FormatLocation(*After));
		}
		const auto OldComponents = Old.Components.find(Before);
		const auto NewComponents = New.Components.find(After);
		const std::vector<std::string>& WasHeld =
			OldComponents == Old.Components.end() ? NoComponents : OldComponents->second;
		const std::vector<std::string>& IsHeld =
			NewComponents == New.Components.end() ? NoComponents : NewComponents->second;
		std::vector<std::string> Gone = Missing(WasHeld, IsHeld);
		std::vector<std::string> Came = Missing(IsHeld, WasHeld);
		if (!Came.empty())
		{
			AddChange(Diff, ELevelChange::ComponentsAdded, Before, After);
			Diff.Changes.back().Added = std::move(Came);
		}
		if (!Gone.empty())
		{
			AddChange(Diff, ELevelChange::ComponentsRemoved, Before, After);
			Diff.Changes.back().Removed = std::move(Gone);
		}
	}
	std::stable_sort(Diff.Changes.begin(), Diff.Changes.end(),
		[](const FLevelChangeEntry& Left, const FLevelChangeEntry& Right) { return Left.Kind < Right.Kind; });
	return Diff;
}
