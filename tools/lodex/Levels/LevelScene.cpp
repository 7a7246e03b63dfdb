// Copyright Lodex contributors.
#include "LevelScene.h"

#include "LoadedLevel.h"
#include "UnrealPackage.h"

#include <fstream>
#include <unordered_map>
#include <utility>

namespace
{
	/** The object path one step up: `/Game/M.M:PersistentLevel.A.B` gives `/Game/M.M:PersistentLevel.A`. */
	std::string OuterPathOf(const std::string& Path)
	{
		const std::size_t Cut = Path.find_last_of(".:");
		return Cut == std::string::npos ? std::string() : Path.substr(0, Cut);
	}
}

bool IsUnrealPackageBytes(const std::string& Bytes)
{
	static const char Tag[] = {'\xC1', '\x83', '\x2A', '\x9E'};
	static const char Swapped[] = {'\x9E', '\x2A', '\x83', '\xC1'};
	return Bytes.size() >= 4 &&
		(Bytes.compare(0, 4, Tag, 4) == 0 || Bytes.compare(0, 4, Swapped, 4) == 0);
}

bool IsUnrealPackageFile(const std::string& Path)
{
	std::ifstream In(Path, std::ios::binary);
	char Head[4] = {};
	return In.read(Head, 4) && IsUnrealPackageBytes(std::string(Head, 4));
}

bool BuildLevelScene(const std::vector<FLoadedLevel>& Levels, FLevelScene& Out, std::string& OutError)
{
	std::vector<FSceneObject> Objects;
	std::vector<FSceneObjectLinks> Links;
	std::unordered_map<std::string, std::size_t> IndexByPath;
	std::vector<std::pair<std::size_t, const FLoadedActor*>> Attached;
	std::size_t Count = 0;
	for (const FLoadedLevel& Level : Levels)
	{
		Count += 1;
		for (const FLoadedActor& Loaded : Level.Actors)
		{
			Count += 1 + Loaded.Actor.Components.size();
		}
	}
	Objects.reserve(Count);
	Links.reserve(Count);
	IndexByPath.reserve(Count);

	auto Add = [&](FSceneObject Object, std::size_t Outer, const std::string& File)
	{
		const auto Inserted = IndexByPath.emplace(Object.Id, Objects.size());
		if (!Inserted.second)
		{
			OutError = File + ": the object '" + Object.Id + "' is read twice";
			return false;
		}
		FSceneObjectLinks Link;
		Link.Outer = Outer;
		Objects.push_back(std::move(Object));
		Links.push_back(Link);
		return true;
	};

	for (const FLoadedLevel& Level : Levels)
	{
		FSceneObject LevelObject;
		LevelObject.Id = Level.WorldPath + ":PersistentLevel";
		LevelObject.Kind = "other";
		LevelObject.Name = "PersistentLevel";
		LevelObject.ClassName = "Level";
		LevelObject.Origin = "placed";
		LevelObject.Package = Level.PackagePath;
		const std::size_t LevelIndex = Objects.size();
		if (!Add(std::move(LevelObject), FSceneObjectLinks::NoObject, Level.File))
		{
			return false;
		}
		for (const FLoadedActor& Loaded : Level.Actors)
		{
			const FLevelActor& Actor = Loaded.Actor;
			FSceneObject Object;
			Object.Id = Actor.Path;
			Object.Kind = "actor";
			Object.Name = Actor.Name;
			Object.ClassName = Actor.ClassName;
			Object.Label = Actor.Label;
			Object.bHasTags = true;
			Object.Tags = Actor.Tags;
			Object.Origin = "placed";
			Object.Package = Loaded.Package;
			const std::size_t ActorIndex = Objects.size();
			if (!Add(std::move(Object), LevelIndex, Level.File))
			{
				return false;
			}
			if (!Actor.AttachParentPath.empty())
			{
				Attached.emplace_back(ActorIndex, &Loaded);
			}
			for (const FLevelComponent& Component : Actor.Components)
			{
				FSceneObject Child;
				Child.Id = Component.Path;
				Child.Kind = "component";
				Child.Name = Component.Name;
				Child.ClassName = Component.ClassName;
				Child.Origin = "placed";
				Child.Package = Loaded.Package;
				if (!Add(std::move(Child), ActorIndex, Level.File))
				{
					return false;
				}
			}
		}
	}

	// An actor's attach parent is the owner of the component its root is attached to: the nearest actor up the
	// component's object path.
	for (const auto& Entry : Attached)
	{
		const std::string& ParentPath = Entry.second->Actor.AttachParentPath;
		std::size_t Parent = FSceneObjectLinks::NoObject;
		for (std::string Path = ParentPath; !Path.empty() && Parent == FSceneObjectLinks::NoObject;
			 Path = OuterPathOf(Path))
		{
			const auto Found = IndexByPath.find(Path);
			if (Found != IndexByPath.end() && Objects[Found->second].Kind == "actor")
			{
				Parent = Found->second;
			}
		}
		if (Parent == FSceneObjectLinks::NoObject)
		{
			Out.Notes.push_back(OneLineText(Entry.second->Package + ": actor '" + Entry.second->Actor.Name +
				"' is attached to '" + ParentPath + "', which is not among the objects read; it is shown unattached"));
		}
		else if (Parent != Entry.first)
		{
			Links[Entry.first].AttachParent = Parent;
		}
	}
	return FSceneSnapshot::FromObjects(std::move(Objects), Links, Out.Scene, OutError);
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
		OutError = SourceName + ": a redirector to " + OneLineText(Contents.RedirectTarget) + ", not a level";
		return false;
	}
	std::vector<FLoadedLevel> Levels(1);
	Levels[0].PackagePath = PackagePath;
	Levels[0].WorldPath = Contents.WorldPath;
	Levels[0].File = SourceName;
	for (FLevelActor& Actor : Contents.Actors)
	{
		Levels[0].Actors.push_back(FLoadedActor{std::move(Actor), PackagePath});
	}
	Out.Files.push_back(SourceName);
	return BuildLevelScene(Levels, Out, OutError);
}
