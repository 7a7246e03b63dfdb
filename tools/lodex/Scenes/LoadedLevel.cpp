// Copyright Lodex contributors.
// A level's objects made into a scene (declared in LevelScene.h and LoadedLevel.h).
#include "LevelScene.h"

#include "LoadedLevel.h"
#include "Packages/UnrealPackage.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string_view>
#include <unordered_map>
#include <utility>

bool IsUnrealPackageBytes(const std::string& Bytes)
{
	static const char Tag[] = {'\xC1', '\x83', '\x2A', '\x9E'};
	static const char Swapped[] = {'\x9E', '\x2A', '\x83', '\xC1'};
	return Bytes.size() >= 4 && (Bytes.compare(0, 4, Tag, 4) == 0 || Bytes.compare(0, 4, Swapped, 4) == 0);
}

bool IsUnrealPackageFile(const std::string& Path)
{
	std::ifstream In(Path, std::ios::binary);
	char Head[4] = {};
	return In.read(Head, 4) && IsUnrealPackageBytes(std::string(Head, 4));
}

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
		Object.Origin = LodexSceneOrigin::Placed;
		Objects.push_back(std::move(Object));
		Links.push_back(Link);
		return Objects.size() - 1;
	};

	for (FLoadedLevel& Level : Levels)
	{
		FSceneObject LevelObject;
		LevelObject.Id = Level.WorldPath + ":PersistentLevel";
		LevelObject.Kind = "other";
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
			Object.Id = std::move(Actor.Path);
			Object.Kind = "actor";
			Object.Name = std::move(Actor.Name);
			Object.ClassName = std::move(Actor.ClassName);
			Object.Label = std::move(Actor.Label);
			Object.bHasTags = true;
			Object.Tags = std::move(Actor.Tags);
			Object.Package = Source.Package;
			Object.Guid = std::move(Actor.Guid);
			Object.bHasLocation = Actor.bHasLocation;
			Object.bEditorOnly = Actor.bEditorOnly;
			std::copy(std::begin(Actor.Location), std::end(Actor.Location), std::begin(Object.Location));
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
				Child.Id = std::move(Component.Path);
				Child.Kind = "component";
				Child.Name = std::move(Component.Name);
				Child.ClassName = std::move(Component.ClassName);
				Child.Package = Source.Package;
				Child.bEditorOnly = Component.bEditorOnly;
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

bool ReadLevelSceneBytes(std::string Bytes, const std::string& SourceName, const std::string& PackagePath,
	FLevelScene& Out, std::string& OutError)
{
	Out = FLevelScene();
	FUnrealPackage Package;
	FPackageError Error;
	FLevelPackageContents Contents;
	if (!FUnrealPackage::Read(std::move(Bytes), PackagePath, Package, Error) ||
		!ReadLevelPackage(Package, Contents, Error))
	{
		OutError = Error.Describe(SourceName);
		return false;
	}
	if (!Contents.RedirectTarget.empty())
	{
		OutError = SourceName + ": a redirector to " + LodexText::EscapeControlsAndIllFormed(Contents.RedirectTarget) +
			", not a level";
		return false;
	}
	std::vector<FLoadedLevel> Levels(1);
	Levels[0].PackagePath = PackagePath;
	Levels[0].WorldPath = Contents.WorldPath;
	Levels[0].File = SourceName;
	Levels[0].Sources.push_back(FActorSource{SourceName, PackagePath});
	Levels[0].Actors.reserve(Contents.Actors.size());
	for (FLevelActor& Actor : Contents.Actors)
	{
		Levels[0].Actors.push_back(FLoadedActor{std::move(Actor), 0});
	}
	Out.Files.push_back(SourceName);
	return BuildLevelScene(std::move(Levels), Out, OutError);
}
