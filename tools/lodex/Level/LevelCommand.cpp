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
#include <nlohmann/json.hpp>

#include <map>

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
		FTextTreeNode* Level = &Root;
		std::map<const FSceneObject*, std::vector<const FSceneObject*>> Components;
		for (const FSceneObject& Object : Scene.GetObjects())
		{
			if (Object.Kind == "component" && Object.Outer != nullptr)
			{
				Components[Object.Outer].push_back(&Object);
			}
		}
		for (const FSceneObject& Object : Scene.GetObjects())
		{
			if (Object.Kind == "other" && Object.Outer == nullptr)
			{
				Level = &Root.Add(Object.InstancedBy.empty()
						? "level " + (Object.Package.empty() ? Object.Name : Object.Package)
						: "level " + Object.Id.substr(0, Object.Id.find_first_of(".:")) + " (a Level Instance of " +
							Object.Package + ", by " + Object.InstancedBy.substr(Object.InstancedBy.rfind('.') + 1) +
							")");
			}
			else if (Object.Kind == "actor")
			{
				FTextTreeNode& Actor = Level->Add(DescribeLevelActor(Object, *Index, Finder));
				for (const FSceneObject* Component : Components[&Object])
				{
					Actor.Add(
						Component->Name + (Component->ClassName.empty() ? "" : " (" + Component->ClassName + ")"));
				}
			}
		}
		return RenderTextTree(Root);
	}

	/** The level as a scene snapshot (docs/scene-snapshot.md), with each object's class name, label and placement. */
	std::string RenderLevelSnapshot(const FSceneSnapshot& Scene)
	{
		nlohmann::ordered_json Objects = nlohmann::ordered_json::array();
		for (const FSceneObject& Object : Scene.GetObjects())
		{
			nlohmann::ordered_json Entry;
			Entry["id"] = Object.Id;
			Entry["kind"] = Object.Kind;
			Entry["name"] = Object.Name;
			if (Object.Outer != nullptr)
			{
				Entry["outer"] = Object.Outer->Id;
			}
			if (Object.AttachParent != nullptr)
			{
				Entry["attachParent"] = Object.AttachParent->Id;
			}
			if (Object.bHasTags)
			{
				Entry["tags"] = Object.Tags.Get();
			}
			if (!Object.ClassName.empty())
			{
				Entry["className"] = Object.ClassName;
			}
			if (!Object.Label.empty())
			{
				Entry["label"] = Object.Label;
			}
			if (!Object.Origin.empty())
			{
				Entry["placed"] = Object.Origin == LodexSceneOrigin::Placed;
			}
			if (!Object.Guid.empty())
			{
				Entry["guid"] = Object.Guid;
			}
			if (Object.bHasLocation)
			{
				Entry["location"] = {Object.Location[0], Object.Location[1], Object.Location[2]};
			}
			if (Object.bEditorOnly)
			{
				Entry["editorOnly"] = true;
			}
			if (Object.bStreamedOnDemand)
			{
				Entry["streamedOnDemand"] = true;
			}
			if (!Object.InstancedBy.empty())
			{
				Entry["instancedBy"] = Object.InstancedBy;
			}
			if (!Object.Package.empty())
			{
				Entry["package"] = Object.Package;
			}
			Objects.push_back(std::move(Entry));
		}
		nlohmann::ordered_json Root;
		Root["objects"] = std::move(Objects);
		// Text is written as it was read: UTF-8 passes through, bytes that are not UTF-8 are replaced.
		return Root.dump(1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
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
			Io.Out << (Format == "json" ? RenderLevelSnapshot(Read.Scene)
										: RenderLevelTree(SceneFile.Path, Read.Scene));
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
