// Copyright Lodex contributors.
// lodex diff: what changed between two versions of a level or a snapshot, as a reviewer reads it, or as JSON.
#include "DiffCommand.h"

#include "LevelDiff.h"
#include "LodexTool.h"
#include "RevisionScene.h"
#include "Scenes/SceneOptions.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <thread>

namespace
{
	/** A label or tag, quoted and on one line: a label may hold a tab or a line break, which the engine allows. */
	std::string Quoted(const std::string& Text)
	{
		return "'" + LodexText::EscapeControlsAndIllFormed(Text) + "'";
	}

	/** Each name quoted after the prefix, added to Out. */
	void AddQuotedNames(std::vector<std::string>& Out, const std::vector<std::string>& Names, const char* Prefix)
	{
		for (const std::string& Name : Names)
		{
			Out.push_back(Prefix + Quoted(Name));
		}
	}

	std::string JoinPlain(const std::vector<std::string>& Names)
	{
		std::string Out;
		for (const std::string& Name : Names)
		{
			Out += (Out.empty() ? "" : ", ") + Name;
		}
		return Out;
	}

	std::string OrNothing(const std::string& Text)
	{
		return Text.empty() ? "nothing" : Text;
	}

	std::string ChangeLine(const FLevelChangeEntry& Change)
	{
		const FSceneObject& Actor = Change.New != nullptr ? *Change.New : *Change.Old;
		switch (Change.Kind)
		{
			case ELevelChange::Added:
			case ELevelChange::Removed:
				return DescribeLevelActor(Actor) +
					(LevelClassOf(Actor).empty() ? "" : " [" + LevelClassOf(Actor) + "]");
			case ELevelChange::Renamed:
				return DescribeLevelActor(*Change.Old) + " -> " + Change.After;
			case ELevelChange::Relabelled:
				return Change.New->Name + ": " + (Change.Before.empty() ? "no label" : Quoted(Change.Before)) + " -> " +
					(Change.After.empty() ? "no label" : Quoted(Change.After));
			case ELevelChange::Reattached:
				return DescribeLevelActor(Actor) + ": " + OrNothing(Change.Before) + " -> " + OrNothing(Change.After);
			case ELevelChange::Retagged:
			{
				std::vector<std::string> Tags;
				AddQuotedNames(Tags, Change.Removed, "-");
				AddQuotedNames(Tags, Change.Added, "+");
				return DescribeLevelActor(Actor) + ": " + LodexText::Join(Tags, " ");
			}
			case ELevelChange::ClassChanged:
			case ELevelChange::Moved:
				return DescribeLevelActor(Actor) + ": " + Change.Before + " -> " + Change.After;
			case ELevelChange::ComponentsAdded:
				return DescribeLevelActor(Actor) + ": " + JoinPlain(Change.Added);
			case ELevelChange::ComponentsRemoved:
				return DescribeLevelActor(Actor) + ": " + JoinPlain(Change.Removed);
		}
		return std::string();
	}

	std::string PairingSummary(const FLevelDiff& Diff)
	{
		std::size_t Counts[3] = {0, 0, 0};
		for (const FLevelActorPair& Pair : Diff.Pairs)
		{
			++Counts[static_cast<int>(Pair.By)];
		}
		return std::to_string(Diff.Pairs.size()) + " of " + std::to_string(Diff.OldActors) +
			" actors paired: " + std::to_string(Counts[0]) + " by GUID, " + std::to_string(Counts[1]) +
			" by level script class, " + std::to_string(Counts[2]) + " by fingerprint";
	}

	nlohmann::ordered_json ActorJson(const FSceneObject* Actor)
	{
		if (Actor == nullptr)
		{
			return nullptr;
		}
		nlohmann::ordered_json Json;
		Json["id"] = Actor->Id;
		Json["name"] = Actor->Name;
		Json["label"] = Actor->Label;
		Json["class"] = LevelClassOf(*Actor);
		Json["guid"] = Actor->Guid.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(Actor->Guid);
		return Json;
	}
}

std::string FormatLevelDiffText(const FLevelDiff& Diff, const std::string& OldName, const std::string& NewName)
{
	std::string Text = OldName + " -> " + NewName + ": ";
	if (!Diff.HasChanges())
	{
		Text += "no changes";
	}
	else
	{
		std::vector<std::string> Counts;
		for (std::size_t Index = 0; Index < Diff.Changes.size();)
		{
			std::size_t End = Index;
			while (End < Diff.Changes.size() && Diff.Changes[End].Kind == Diff.Changes[Index].Kind)
			{
				++End;
			}
			Counts.push_back(std::to_string(End - Index) + " " + LevelChangeName(Diff.Changes[Index].Kind));
			Index = End;
		}
		Text += LodexText::Join(Counts, ", ");
	}
	Text += " (" + PairingSummary(Diff) + ")\n";
	if (Diff.bNoSharedGuid)
	{
		Text += "note: the two versions share no actor GUID (a copy of the level saved under another name?): actors "
				"were paired by their fingerprint\n";
	}
	ELevelChange Current = ELevelChange::Added;
	bool bFirst = true;
	for (const FLevelChangeEntry& Change : Diff.Changes)
	{
		if (bFirst || Change.Kind != Current)
		{
			Text += std::string(LevelChangeName(Change.Kind)) + ":\n";
			Current = Change.Kind;
			bFirst = false;
		}
		Text += "  " + ChangeLine(Change) + "\n";
	}
	return Text;
}

std::string FormatLevelDiffJson(const FLevelDiff& Diff, const std::string& OldName, const std::string& NewName)
{
	static const char* const MatchNames[] = {"guid", "levelScript", "fingerprint"};
	nlohmann::ordered_json Json;
	Json["old"] = OldName;
	Json["new"] = NewName;
	Json["changed"] = Diff.HasChanges();
	Json["sharedGuids"] = !Diff.bNoSharedGuid;
	nlohmann::ordered_json Pairs = nlohmann::ordered_json::array();
	for (const FLevelActorPair& Pair : Diff.Pairs)
	{
		nlohmann::ordered_json Entry;
		Entry["old"] = Pair.Old->Id;
		Entry["new"] = Pair.New->Id;
		Entry["by"] = MatchNames[static_cast<int>(Pair.By)];
		Entry["score"] = Pair.Score;
		Pairs.push_back(std::move(Entry));
	}
	nlohmann::ordered_json Changes = nlohmann::ordered_json::array();
	for (const FLevelChangeEntry& Change : Diff.Changes)
	{
		nlohmann::ordered_json Entry;
		Entry["kind"] = LevelChangeName(Change.Kind);
		Entry["old"] = ActorJson(Change.Old);
		Entry["new"] = ActorJson(Change.New);
		if (!Change.Before.empty() || !Change.After.empty())
		{
			Entry["before"] = Change.Before;
			Entry["after"] = Change.After;
		}
		if (!Change.Removed.empty() || !Change.Added.empty())
		{
			Entry["removed"] = Change.Removed;
			Entry["added"] = Change.Added;
		}
		Changes.push_back(std::move(Entry));
	}
	Json["changes"] = std::move(Changes);
	Json["pairs"] = std::move(Pairs);
	return Json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

namespace
{
	/** Both scenes are positionals of diff's own (a file, or REV:PATH): only how a level is read is declared. */
	constexpr FSceneOptionLayout DiffSceneLayout{nullptr, nullptr, 0};

	class FDiffCommand final : public ILodexCommand
	{
	public:
		CLI::App* Register(CLI::App& Parent) override
		{
			CLI::App* Sub = Parent.add_subcommand("diff",
				"What changed between two versions of a level or a snapshot: actors added, removed, renamed, "
				"re-labelled, re-attached, re-tagged, of another class, moved; components added or removed");
			Sub->add_option("old", Old.Path, "The earlier version: a file, or REV:PATH (the file at a git revision)")
				->required();
			Sub->add_option("new", New.Path, "The later version: a file, or REV:PATH")->required();
			LevelFlags.Declare(*Sub);
			Sub->add_flag("--exit-code", bExitCode, "Exit with 1 when something changed, as git diff --exit-code does");
			Sub->add_option("--format", Format, "text (one line per change, grouped by kind) or json")
				->check(CLI::IsMember({"text", "json"}))
				->default_val(Format);
			return Sub;
		}

		int Run(FLodexCliIo& Io) override
		{
			Old.bNoSubLevels = LevelFlags.bNoSubLevels;
			New.bNoSubLevels = LevelFlags.bNoSubLevels;
			FSceneFile OldScene;
			FSceneFile NewScene;
			std::string Error;
			if (!LoadScenePair(Old, New, OldScene, NewScene, Error))
			{
				Io.Err << "lodex: " << Error << "\n";
				return LodexExitFailure;
			}
			WriteLodexNotes(OldScene.Notes, Io.Err);
			WriteLodexNotes(NewScene.Notes, Io.Err);
			const FLevelDiff Diff = DiffLevelScenes(OldScene.Scene, NewScene.Scene);
			Io.Out << (Format == "json" ? FormatLevelDiffJson(Diff, Old.Path, New.Path)
										: FormatLevelDiffText(Diff, Old.Path, New.Path));
			return bExitCode && Diff.HasChanges() ? LodexExitFailure : LodexExitOk;
		}

	private:
		FSceneFileOptions Old;
		FSceneFileOptions New;
		FCommandSceneOptions LevelFlags{DiffSceneLayout};
		bool bExitCode = false;
		std::string Format = "text";
	};
}

bool LoadScenePair(const FSceneFileOptions& OldOptions, const FSceneFileOptions& NewOptions, FSceneFile& OutOld,
	FSceneFile& OutNew, std::string& OutError)
{
	std::string OldError;
	bool bOldRead = false;
	std::thread OldReader([&] { bOldRead = LoadSceneAtRevision(OldOptions, OutOld, OldError); });
	std::string NewError;
	const bool bNewRead = LoadSceneAtRevision(NewOptions, OutNew, NewError);
	OldReader.join();
	OutError = !bOldRead ? OldError : NewError;
	return bOldRead && bNewRead;
}

bool LoadSceneSideFor(const FSceneFileOptions& Options, FSceneFile& Out, std::ostream& Err)
{
	std::string Error;
	if (!LoadSceneAtRevision(Options, Out, Error))
	{
		Err << "lodex: " << Error << "\n";
		return false;
	}
	WriteLodexNotes(Out.Notes, Err);
	return true;
}

std::unique_ptr<ILodexCommand> MakeDiffCommand()
{
	return std::make_unique<FDiffCommand>();
}
