// Copyright Lodex contributors.
#include "LoadedLevel.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <string_view>
#include <unordered_map>
#include <utility>

bool BuildLevelScene(std::vector<FLoadedLevel> Levels, FLevelScene& Out, std::string& OutError)
{
	std::size_t Count = 0;
	for (const FLoadedLevel& Level : Levels)
	{
		Count += 1;
		for (const FLoadedActor& Loaded : Level.Actors)
		{
			Count += 1 + Loaded.Actor.Components.size();
		}
	}
	std::vector<FSceneObject> Objects;
	std::vector<FSceneObjectLinks> Links;
	Objects.reserve(Count); // never reallocated: the views below point into the ids
	Links.reserve(Count);
	struct FAttached
	{
		std::size_t Actor;
		const FActorSource* Source;
		std::string ParentPath;
	};
	std::vector<FAttached> Attached;
	std::unordered_map<std::string_view, std::size_t> ActorByPath;
	std::vector<const FActorSource*> SourceOf(Count, nullptr);

	auto Add = [&](FSceneObject&& Object, std::size_t Outer)
	{
		FSceneObjectLinks Link;
		Link.Outer = Outer;
		Object.Origin = ELodexPlacement::Placed;
		Objects.push_back(std::move(Object));
		Links.push_back(Link);
		return Objects.size() - 1;
	};

	for (FLoadedLevel& Level : Levels)
	{
		FSceneObject LevelObject;
		LevelObject.Id = Level.WorldPath + ":PersistentLevel";
		LevelObject.Kind = ELodexSnapshotKind::Other;
		LevelObject.Name = "PersistentLevel";
		LevelObject.ClassName = "Level";
		LevelObject.Package = Level.Sources.front().Package; // a Level Instance is loaded as another package
		LevelObject.bStreamedOnDemand = Level.bStreamedOnDemand;
		LevelObject.InstancedBy = std::move(Level.InstanceActor);
		const std::size_t LevelIndex = Add(std::move(LevelObject), FSceneObjectLinks::NoObject);
		ActorByPath.reserve(ActorByPath.size() + Level.Actors.size());
		for (FLoadedActor& Loaded : Level.Actors)
		{
			FLevelActor& Actor = Loaded.Actor;
			const FActorSource& Source = Level.Sources[Loaded.Source];
			FSceneObject Object;
			static_cast<FLodexSavedObject&>(Object) = std::move(Actor); // what the level saves of it, as it is
			Object.Id = std::move(Actor.Path);
			Object.Kind = ELodexSnapshotKind::Actor;
			Object.Name = std::move(Actor.Name);
			Object.bHasTags = true;
			Object.Tags = std::move(Actor.Tags);
			Object.Package = Source.Package;
			const std::size_t ActorIndex = Add(std::move(Object), LevelIndex);
			SourceOf[ActorIndex] = &Source;
			const auto Inserted = ActorByPath.emplace(Objects[ActorIndex].Id, ActorIndex);
			if (!Inserted.second)
			{
				OutError = Source.File + ": byte " + std::to_string(Actor.Offset) + ": the actor '" +
					LodexText::EscapeControlsAndIllFormed(Objects[ActorIndex].Id) +
					"' is read a second time (first from " + SourceOf[Inserted.first->second]->File + ")";
				return false;
			}
			if (!Actor.AttachParentPath.empty())
			{
				Attached.push_back(FAttached{ActorIndex, &Source, std::move(Actor.AttachParentPath)});
			}
			for (FLevelComponent& Component : Actor.Components)
			{
				if (!Component.ClassToCheck.empty())
				{
					continue; // a class no package here shows to be a component's
				}
				FSceneObject Child;
				static_cast<FLodexSavedObject&>(Child) = std::move(Component);
				Child.Id = std::move(Component.Path);
				Child.Kind = ELodexSnapshotKind::Component;
				Child.Name = std::move(Component.Name);
				Child.Package = Source.Package;
				Add(std::move(Child), ActorIndex);
			}
		}
	}

	// An actor's attach parent is the owner of the component its root is attached to: the nearest actor up the
	// component's object path.
	for (const FAttached& Entry : Attached)
	{
		std::size_t Parent = FSceneObjectLinks::NoObject;
		for (std::string_view Path = Entry.ParentPath; !Path.empty() && Parent == FSceneObjectLinks::NoObject;)
		{
			const auto Found = ActorByPath.find(Path);
			if (Found != ActorByPath.end())
			{
				Parent = Found->second;
			}
			const std::size_t Cut = Path.find_last_of(".:");
			Path = Cut == std::string_view::npos ? std::string_view() : Path.substr(0, Cut);
		}
		if (Parent == FSceneObjectLinks::NoObject)
		{
			Out.Notes.push_back(LodexText::EscapeControlsAndIllFormed(Entry.Source->Package + ": actor '" +
				Objects[Entry.Actor].Name + "' is attached to '" + Entry.ParentPath +
				"', which is not among the objects read; it is shown unattached"));
		}
		else if (Parent != Entry.Actor)
		{
			Links[Entry.Actor].AttachParent = Parent;
		}
	}
	std::string SceneError;
	if (!FSceneSnapshot::FromObjects(std::move(Objects), Links, Out.Scene, SceneError))
	{
		OutError = (Levels.empty() ? std::string("level") : Levels[0].File) + ": " +
			LodexText::EscapeControlsAndIllFormed(SceneError);
		return false;
	}
	return true;
}
