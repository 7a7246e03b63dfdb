// Copyright Lodex contributors.
// lodex level: what a level holds, as a tree or as a scene snapshot.
#include "Cli/LodexCli.h"
#include "Cli/TextTree.h"
#include "LodexTool.h"
#include "Scenes/SceneEvaluation.h"
#include "Scenes/SceneOptions.h"

#include "LodexDebugger/Core/Lodestring/LodexBestLocator.h"
#include "LodexDebugger/Core/Lodestring/LodexMatchNotice.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <CLI/CLI.hpp>

namespace
{
	/** One actor's line: its name, then what the level says of it, then its best Lodestring. */
	std::string DescribeLevelActor(
		const FSceneObject& Actor, const FLodexSceneIndex& Index, const FLodexBestLocatorFinder& Finder)
	{
		std::string Line = Actor.Name;
		std::vector<std::string> Facts;
		if (!Actor.Label.empty() && Actor.Label != Actor.Name)
		{
			Facts.push_back("label \"" + LodexText::EscapeControlsAndIllFormed(Actor.Label) + "\"");
		}
		if (!Actor.ClassName.empty())
		{
			Facts.push_back("class " + Actor.ClassName);
		}
		if (!Actor.Tags.empty())
		{
			Facts.push_back("tags " + LodexText::Join(Actor.Tags.Get(), ", "));
		}
		if (Actor.AttachParent != nullptr)
		{
			Facts.push_back("attached to " + Actor.AttachParent->Name);
		}
		if (Actor.bEditorOnly)
		{
			Facts.push_back("editor only");
		}
		if (!Facts.empty())
		{
			Line += " (" + LodexText::Join(Facts, "; ") + ")";
		}
		const std::uint32_t Object = Index.FindIndex(FSceneSnapshot::Handle(Actor));
		if (Object != FLodexSceneIndex::None)
		{
			const FLodexBestLocator Best = Finder.Find(Object);
			Line += "  " + Best.Lodestring;
			if (Best.MatchCount != 1)
			{
				Line += " (" + DescribeLodexMatchCount(Best.MatchCount) + ")";
			}
		}
		return Line;
	}

	/** The level as a tree: each level read, its actors in order, each actor's components below it. */
	std::string RenderLevelTree(const std::string& Path, const FSceneSnapshot& Scene)
	{
		const std::unique_ptr<FLodexSceneIndex> Index = IndexSceneSnapshot(Scene);
		const FLodexBestLocatorFinder Finder(*Index);
		FTextTreeNode Root{Path, {}};
		for (const FSceneObject& Level : Scene.GetObjects())
		{
			if (Level.Kind != ELodexSnapshotKind::Other || Level.Outer != nullptr)
			{
				continue;
			}
			std::vector<std::string> LevelFacts;
			if (!Level.InstancedBy.empty())
			{
				LevelFacts.push_back("a Level Instance of " + Level.Package + ", by " +
					Level.InstancedBy.substr(Level.InstancedBy.rfind('.') + 1));
			}
			if (Level.bStreamedOnDemand)
			{
				LevelFacts.push_back("streamed in at play time");
			}
			FTextTreeNode& LevelNode = Root.Add("level " +
				(!Level.InstancedBy.empty()     ? Level.Id.substr(0, Level.Id.find_first_of(".:"))
						: Level.Package.empty() ? Level.Name
												: Level.Package) +
				(LevelFacts.empty() ? "" : " (" + LodexText::Join(LevelFacts, "; ") + ")"));
			for (const FSceneObject* Actor : Level.Inners)
			{
				if (Actor->Kind != ELodexSnapshotKind::Actor)
				{
					continue;
				}
				FTextTreeNode& ActorNode = LevelNode.Add(DescribeLevelActor(*Actor, *Index, Finder));
				for (const FSceneObject* Component : Actor->Inners)
				{
					if (Component->Kind != ELodexSnapshotKind::Component)
					{
						continue;
					}
					std::vector<std::string> ComponentFacts;
					if (!Component->ClassName.empty())
					{
						ComponentFacts.push_back(Component->ClassName);
					}
					if (Component->bEditorOnly)
					{
						ComponentFacts.push_back("editor only");
					}
					ActorNode.Add(Component->Name +
						(ComponentFacts.empty() ? "" : " (" + LodexText::Join(ComponentFacts, "; ") + ")"));
				}
			}
		}
		return RenderTextTree(Root);
	}

	constexpr FSceneOptionLayout LevelSceneLayout{
		"level", "A level saved by Unreal Engine 5.0 (.umap)", SceneRequired | SceneVerboseNotes};

	class FLevelCommand final : public ILodexCommand
	{
	public:
		CLI::App* Register(CLI::App& Parent) override
		{
			CLI::App* Sub = Parent.add_subcommand("level",
				"Show what a level holds: each actor with its label, class, tags and best Lodestring, its components "
				"below it (--format json: the level as a scene snapshot)");
			SceneFile.Declare(*Sub);
			Sub->add_option("--format", Format, "text (a tree) or json (a scene snapshot)")
				->check(CLI::IsMember({"text", "json"}))
				->default_val(Format);
			return Sub;
		}

		int Run(FLodexCliIo& Io) override
		{
			FSceneFile Read;
			if (!SceneFile.Load(Read, Io.Err))
			{
				return LodexExitFailure;
			}
			if (!Read.bIsLevel)
			{
				Io.Err << "lodex: " << SceneFile.Path << ": not a level saved by Unreal Engine (a scene snapshot, or "
					   << "another kind of file); lodex level reads .umap files\n";
				return LodexExitFailure;
			}
			Io.Out << (Format == "json" ? Read.Scene.Write() : RenderLevelTree(SceneFile.Path, Read.Scene));
			return LodexExitOk;
		}

	private:
		FCommandSceneOptions SceneFile{LevelSceneLayout};
		std::string Format = "text";
	};
}

std::unique_ptr<ILodexCommand> MakeLevelCommand()
{
	return std::make_unique<FLevelCommand>();
}
