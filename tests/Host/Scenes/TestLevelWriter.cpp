// Copyright Lodex contributors.
// The packages a level is made of, laid out with FTestPackage: maps, external actor packages, redirectors and
// Blueprint classes.
#include "TestPackageWriter.h"

#include <filesystem>
#include <fstream>
#include <map>

namespace
{
	std::string ShortName(const std::string& PackagePath)
	{
		return PackagePath.substr(PackagePath.rfind('/') + 1);
	}

	std::int32_t ClassOf(FTestPackage& Package, const std::string& Class)
	{
		const std::size_t Dot = Class.find('.');
		if (Class.rfind('/', 0) == 0 && Dot != std::string::npos) // a Blueprint class of /Game/ or of a plug-in
		{
			return Package.ImportPath(Class, "BlueprintGeneratedClass");
		}
		return Package.Import("/Script/CoreUObject", "Class",
			Package.Import("/Script/CoreUObject", "Package", 0, "/Script/Engine"), Class);
	}

	/** Writes an actor and its components as exports of Package under Outer; returns the actor's index. */
	std::int32_t WriteActor(FTestPackage& Package, std::int32_t Outer, const FTestActor& Actor)
	{
		const std::int32_t Class = Actor.ClassIndex != 0 ? Actor.ClassIndex : ClassOf(Package, Actor.Class);
		const std::int32_t Index = Package.Export(Class, Outer, Actor.Name);
		if (Actor.bEditorOnly)
		{
			Package.SetEditorOnly(Index);
		}
		std::vector<std::int32_t> Components;
		for (const FTestComponent& Component : Actor.Components)
		{
			Components.push_back(Package.Export(ClassOf(Package, Component.Class), Index, Component.Name));
			if (Component.bDefaultSubObject)
			{
				Package.SetObjectFlags(Components.back(), 0x00040000);
			}
			if (Component.bEditorOnly)
			{
				Package.SetEditorOnly(Components.back());
			}
		}
		// The exports of the components with these names, in the names' order.
		const auto Named = [&Actor, &Components](const std::vector<std::string>& Names)
		{
			std::vector<std::int32_t> Found;
			for (const std::string& Name : Names)
			{
				for (std::size_t Slot = 0; Slot < Actor.Components.size(); ++Slot)
				{
					if (Actor.Components[Slot].Name == Name)
					{
						Found.push_back(Components[Slot]);
					}
				}
			}
			return Found;
		};
		FTestPackage::FData& Data = Package.GetData(Index);
		if (Actor.FirstProperties)
		{
			Actor.FirstProperties(Data);
		}
		if (!Actor.Guid.empty())
		{
			Data.Guid("ActorGuid", Actor.Guid);
		}
		Data.Struct("PivotOffset", "Vector", 24); // read by nobody: skipped by its size
		for (const std::int32_t Root : Named({Actor.Root}))
		{
			Data.Object("RootComponent", Root);
		}
		const std::vector<std::int32_t> Instanced = Named(Actor.InstanceComponents);
		if (!Instanced.empty())
		{
			Data.ObjectArray("InstanceComponents", Instanced);
		}
		if (!Actor.Label.empty())
		{
			Data.String("ActorLabel", Actor.Label);
		}
		if (Actor.bTags)
		{
			Data.NameArray("Tags", Actor.Tags);
		}
		Data.Bool("bHidden", false);
		for (std::size_t Slot = 0; Slot < Actor.Components.size(); ++Slot)
		{
			const FTestComponent& Component = Actor.Components[Slot];
			FTestPackage::FData& ComponentData = Package.GetData(Components[Slot]);
			if (Component.Name == Actor.Root && Actor.bLocation)
			{
				ComponentData.Vector(
					"RelativeLocation", Actor.Location[0], Actor.Location[1], Actor.Location[2], !Actor.bFloatVectors);
			}
			ComponentData.Struct("RelativeScale3D", "Vector", 24);
			const std::vector<std::int32_t> Children =
				Named(Component.Name == Actor.Root ? Actor.AttachChildren : std::vector<std::string>());
			if (!Children.empty())
			{
				ComponentData.ObjectArray("AttachChildren", Children);
			}
			// A path names an object of another package; "Actor.Component" is resolved by the caller.
			if (Component.AttachParent.rfind('/', 0) == 0)
			{
				ComponentData.Object("AttachParent", Package.ImportPath(Component.AttachParent, "SceneComponent"));
			}
		}
		return Index;
	}

	/** Attaches each component whose AttachParent is "Actor.Component" to that component of these actors (written as
	 * these exports); WriteActor has imported the parents that are object paths. */
	void AttachWithin(
		FTestPackage& Package, const std::vector<FTestActor>& Actors, const std::vector<std::int32_t>& Exported)
	{
		std::map<std::string, std::int32_t> ByName; // "Actor.Component" -> export
		for (std::size_t ActorSlot = 0; ActorSlot < Actors.size(); ++ActorSlot)
		{
			for (std::size_t Slot = 0; Slot < Actors[ActorSlot].Components.size(); ++Slot)
			{
				ByName.emplace(Actors[ActorSlot].Name + "." + Actors[ActorSlot].Components[Slot].Name,
					Exported[ActorSlot] + 1 + static_cast<std::int32_t>(Slot));
			}
		}
		for (std::size_t ActorSlot = 0; ActorSlot < Actors.size(); ++ActorSlot)
		{
			for (std::size_t Slot = 0; Slot < Actors[ActorSlot].Components.size(); ++Slot)
			{
				const auto Found = ByName.find(Actors[ActorSlot].Components[Slot].AttachParent);
				if (Found != ByName.end())
				{
					Package.GetData(Exported[ActorSlot] + 1 + static_cast<std::int32_t>(Slot))
						.Object("AttachParent", Found->second);
				}
			}
		}
	}
}

FTestActor TestActor(const std::string& Name, std::vector<FTestComponent> Components, const std::string& Root)
{
	FTestActor Made;
	Made.Name = Name;
	Made.Components = std::move(Components);
	Made.Root = Root;
	return Made;
}

FTestActor TestActorOfClass(const std::string& Name, const std::string& Class)
{
	FTestActor Made = TestActor(Name);
	Made.Class = Class;
	return Made;
}

FTestMap TestMap(const std::string& PackagePath, std::vector<FTestActor> Actors, std::vector<std::string> SubLevels)
{
	FTestMap Made;
	Made.PackagePath = PackagePath;
	Made.Actors = std::move(Actors);
	Made.SubLevels = std::move(SubLevels);
	return Made;
}

FTestMap SmallTestMap()
{
	FTestMap Map;
	FTestActor Base = TestActor("Base", {{"Root", "SceneComponent"}}, "Root");
	Base.Label = "Base";
	Base.bTags = true;
	Base.Tags = {"anchor"};
	Map.Actors = {Base, TestActor("Cube_2", {{"Mesh", "StaticMeshComponent", "Base.Root"}}, "Mesh")};
	Map.SubLevels = {"/Game/Maps/Sub"};
	return Map;
}

std::string WriteTestMap(const FTestMap& Map, FTestPackage* Given)
{
	FTestPackage Local(Map.PackagePath);
	FTestPackage& Package = Given != nullptr ? *Given : Local;
	const std::int32_t WorldClass = Package.ImportPath("/Script/Engine.World", "Class");
	const std::int32_t LevelClass = Package.ImportPath("/Script/Engine.Level", "Class");
	const std::int32_t World = Package.Export(WorldClass, 0, ShortName(Map.PackagePath));
	const std::int32_t Level = Package.Export(LevelClass, World, "PersistentLevel");
	std::vector<std::int32_t> Streaming;
	for (std::size_t Index = 0; Index < Map.SubLevels.size() + Map.LoadedSubLevels.size(); ++Index)
	{
		const bool bLoaded = Index >= Map.SubLevels.size();
		const std::string& Path = bLoaded ? Map.LoadedSubLevels[Index - Map.SubLevels.size()] : Map.SubLevels[Index];
		const std::int32_t Sub = Package.Export(Package.ImportPath("/Script/Engine.LevelStreamingDynamic", "Class"),
			World, "LevelStreamingDynamic_" + std::to_string(Index));
		FTestPackage::FData& Data = Package.GetData(Sub).SoftObject("WorldAsset", Path + "." + ShortName(Path));
		if (bLoaded)
		{
			Data.Bool("bInitiallyLoaded", true);
		}
		Streaming.push_back(Sub);
	}
	std::vector<std::int32_t> Exported;
	for (const FTestActor& Actor : Map.Actors)
	{
		Exported.push_back(WriteActor(Package, Level, Actor));
	}
	AttachWithin(Package, Map.Actors, Exported);
	std::vector<std::int32_t> Actors;
	for (std::size_t Slot = 0; Slot < Map.Actors.size(); ++Slot)
	{
		const std::size_t Actor = Map.Order.empty() ? Slot : Map.Order[Slot];
		if (Map.Actors[Actor].bListed)
		{
			Actors.push_back(Exported[Actor]);
		}
	}
	for (const std::string& Path : Map.ImportedActors)
	{
		Actors.push_back(Package.ImportPath(Path, "StaticMeshActor"));
	}
	if (Map.bNullActor)
	{
		Actors.push_back(0);
	}
	Package.GetData(World).Native(
		[Level, Streaming](FTestPackage& Written, FTestBytes& Out)
		{
			Out.Int32(Level);
			Out.Zeros(Written.FileVersionUE4 < 449 ? 4 * 28 : 0); // editor viewports
			Out.Zeros(Written.FileVersionUE4 < 410 ? 4 : 0); // a save game summary
			Out.Int32(0); // extra referenced objects
			Out.Int32(static_cast<std::int32_t>(Streaming.size()));
			for (const std::int32_t Sub : Streaming)
			{
				Out.Int32(Sub);
			}
		});
	Package.GetData(Level)
		.Bool("bLocked", false)
		.Native(
			[Actors, Level](FTestPackage& Written, FTestBytes& Out)
			{
				if (Written.ReleaseObjectVersion < 3)
				{
					Out.Int32(Level); // the actors' transaction array's owner
				}
				Out.Int32(static_cast<std::int32_t>(Actors.size()));
				for (const std::int32_t Actor : Actors)
				{
					Out.Int32(Actor);
				}
				Out.Zeros(8); // what a level saves after its actors, unread
			});
	return Package.Build();
}

std::string WriteTestExternalActor(const std::string& MapPackage, const std::string& ActorPackage,
	const FTestActor& Actor, const FTestPackageSetup& Setup)
{
	FTestPackage Package(ActorPackage);
	if (Setup)
	{
		Setup(Package);
	}
	const std::string Short = ShortName(MapPackage);
	const std::int32_t Level = Package.ImportPath(MapPackage + "." + Short + ":PersistentLevel", "Level");
	AttachWithin(Package, {Actor}, {WriteActor(Package, Level, Actor)});
	return Package.Build();
}

std::string WriteTestRedirector(const std::string& PackagePath, const std::string& TargetPackage)
{
	FTestPackage Package(PackagePath);
	const std::int32_t Target = Package.ImportPath(TargetPackage + "." + ShortName(TargetPackage), "World");
	const std::int32_t Redirector =
		Package.Export(Package.ImportPath("/Script/CoreUObject.ObjectRedirector", "Class"), 0, ShortName(PackagePath));
	Package.GetData(Redirector).Native([Target](FTestPackage&, FTestBytes& Out) { Out.Int32(Target); });
	return Package.Build();
}

std::string WriteTestBlueprint(const std::string& PackagePath, const std::string& ClassName,
	const std::string& SuperPath, bool bTags, const std::vector<std::string>& Tags, const FTestPackageSetup& Setup)
{
	FTestPackage Package(PackagePath);
	if (Setup)
	{
		Setup(Package);
	}
	const std::int32_t Super = SuperPath.rfind("/Game/", 0) == 0
		? Package.ImportPath(SuperPath, "BlueprintGeneratedClass")
		: Package.ImportPath(SuperPath, "Class");
	const std::int32_t Class =
		Package.Export(Package.ImportPath("/Script/Engine.BlueprintGeneratedClass", "Class"), 0, ClassName, Super);
	const std::int32_t Defaults = Package.Export(Class, 0, "Default__" + ClassName);
	if (bTags)
	{
		Package.GetData(Defaults).Struct("ActorGuid", "Guid", 16).NameArray("Tags", Tags);
	}
	return Package.Build();
}

void WriteTestFile(const std::string& Root, const std::string& RelativePath, const std::string& Bytes)
{
	const std::filesystem::path Path = std::filesystem::path(Root) / RelativePath;
	std::filesystem::create_directories(Path.parent_path());
	std::ofstream Out(Path, std::ios::binary);
	Out << Bytes;
}
