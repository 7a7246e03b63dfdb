// Copyright Lodex contributors.
#include "LevelPackage.h"

#include "TaggedProperties.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace
{
	/** The exports held directly by each export (by outer), in export order, without a list per export. */
	class FExportChildren
	{
	public:
		explicit FExportChildren(const FUnrealPackage& Package)
		{
			const std::vector<FPackageExport>& Exports = Package.GetExports();
			Start.assign(Exports.size() + 2, 0);
			for (const FPackageExport& Export : Exports)
			{
				if (Export.OuterIndex > 0)
				{
					++Start[static_cast<std::size_t>(Export.OuterIndex) + 1];
				}
			}
			for (std::size_t Index = 1; Index < Start.size(); ++Index)
			{
				Start[Index] += Start[Index - 1];
			}
			Items.resize(Start.back());
			std::vector<std::size_t> Next(Start.begin(), Start.end() - 1);
			for (std::size_t Index = 0; Index < Exports.size(); ++Index)
			{
				if (Exports[Index].OuterIndex > 0)
				{
					Items[Next[static_cast<std::size_t>(Exports[Index].OuterIndex)]++] =
						static_cast<std::int32_t>(Index + 1);
				}
			}
		}

		template<typename TFunction>
		void ForEach(std::int32_t Outer, TFunction&& Function) const
		{
			for (std::size_t Item = Start[static_cast<std::size_t>(Outer)];
				 Item < Start[static_cast<std::size_t>(Outer) + 1]; ++Item)
			{
				Function(Items[Item]);
			}
		}

	private:
		std::vector<std::size_t> Start;
		std::vector<std::int32_t> Items;
	};

	bool EndsWith(const std::string& Text, const char* Suffix)
	{
		const std::string Tail(Suffix);
		return Text.size() >= Tail.size() && Text.compare(Text.size() - Tail.size(), Tail.size(), Tail) == 0;
	}

	/** An object's name never holds '.' or ':', which separate the names of an object path. */
	bool CheckObjectName(const std::string& Name, std::size_t Offset, const std::string& What, FPackageError& OutError)
	{
		const std::size_t Separator = Name.find_first_of(".:");
		if (Separator == std::string::npos)
		{
			return true;
		}
		OutError.Offset = Offset;
		OutError.Reason = What + " holds '" + Name[Separator] + "', which no object name holds";
		return false;
	}

	/** Names, labels and tags end up in one-line texts: a control character in one is an error at Offset. */
	bool CheckOneLine(const std::string& Text, std::size_t Offset, const std::string& What, FPackageError& OutError)
	{
		const std::string Control = LodexText::FindControlCharacter(Text);
		if (Control.empty())
		{
			return true;
		}
		OutError.Offset = Offset;
		OutError.Reason = What + " holds the control character " + Control;
		return false;
	}

	bool IsExport(std::int32_t Index)
	{
		return Index > 0;
	}

	/** The deepest a component lies: package, world, level, actor, component, and a few subobjects more. */
	constexpr std::size_t AttachDepthLimit = 8;

	/** How many objects the outer chain from Index holds (Index and the package included), counted up to Limit + 1. */
	std::size_t ChainDepth(const FUnrealPackage& Package, std::int32_t Index, std::size_t Limit)
	{
		std::size_t Depth = 0;
		std::int32_t Last = Index;
		for (std::int32_t Current = Index; Current != 0 && Depth <= Limit; Current = Package.OuterOf(Current))
		{
			++Depth;
			Last = Current;
		}
		return Depth + (IsExport(Last) ? 1 : 0); // an export without outer lies in this package
	}

	/**
	 * The object path of an actor's class. The engine keeps every class at the top of its package
	 * (`/Script/Engine.StaticMeshActor`, `/Game/BP/BP_Door.BP_Door_C`); a class object nested deeper is no class a
	 * package can be looked up for, and its path (as long as its outer chain) is not built.
	 */
	std::string ClassPathOf(const FUnrealPackage& Package, std::int32_t Class)
	{
		return Class != 0 && ChainDepth(Package, Class, 2) == 2 ? Package.ObjectPath(Class) : std::string();
	}

	/** What neither a game client nor a server loads (FObjectExport's bNotForClient and bNotForServer). */
	bool IsEditorOnlyExport(const FPackageExport& Export)
	{
		return Export.bNotForClient && Export.bNotForServer;
	}

	/** How many classes up from an object's class its super classes are followed within the package. */
	constexpr std::size_t SuperDepthLimit = 16;

	/**
	 * Whether an object the actor holds, and no list of the actor names, is a component: a default subobject (made
	 * by the actor's constructor: `NewSceneCaptureComponent2D` of a SceneCapture2D), or of a class that is
	 * `ActorComponent` or is named as components are (`...Component`, `...Component_C`), or derives from one as the
	 * package shows (a Blueprint class it holds, up its supers to the first class it imports).
	 */
	bool IsComponentObject(const FUnrealPackage& Package, std::int32_t Object)
	{
		const FPackageExport& Export = Package.GetExports()[static_cast<std::size_t>(Object - 1)];
		if ((Export.ObjectFlags & UnrealPackageVersions::ObjectFlagDefaultSubObject) != 0)
		{
			return true;
		}
		std::int32_t Class = Export.ClassIndex;
		for (std::size_t Depth = 0; Class != 0 && Depth < SuperDepthLimit; ++Depth)
		{
			const std::string Name = Package.ObjectName(Class);
			if (Name == "ActorComponent" || EndsWith(Name, "Component") || EndsWith(Name, "Component_C"))
			{
				return true;
			}
			Class = IsExport(Class) ? Package.GetExports()[static_cast<std::size_t>(Class - 1)].SuperIndex : 0;
		}
		return false;
	}

	/**
	 * The object path of the object's class when it is a Blueprint class another package holds (an import at the top
	 * of a package outside `/Script/`), whose supers only that package shows; empty otherwise.
	 */
	std::string BlueprintClassOfAnotherPackage(const FUnrealPackage& Package, std::int32_t Object)
	{
		const std::int32_t Class = Package.GetExports()[static_cast<std::size_t>(Object - 1)].ClassIndex;
		if (Class >= 0)
		{
			return std::string();
		}
		const std::string Path = ClassPathOf(Package, Class);
		return Path.rfind("/Script/", 0) == 0 ? std::string() : Path;
	}

	/** Adds to Out the components the actor's root lists as attached to it (`AttachChildren`) that the actor holds. */
	bool ReadAttachChildren(const FUnrealPackage& Package, std::int32_t Actor, std::int32_t Root,
		std::vector<std::int32_t>& Out, FPackageError& OutError)
	{
		if (!IsExport(Root) || Package.OuterOf(Root) != Actor)
		{
			return true;
		}
		FObjectProperties Properties;
		if (!ReadObjectProperties(Package, Root, Properties, OutError))
		{
			return false;
		}
		const FTaggedProperty* Children = Properties.Find(Package, "AttachChildren");
		std::vector<std::int32_t> List;
		if (Children != nullptr && !PropertyValues::ReadObjectArray(Package, *Children, List, OutError))
		{
			return false;
		}
		for (const std::int32_t Child : List)
		{
			if (IsExport(Child) && Package.OuterOf(Child) == Actor)
			{
				Out.push_back(Child);
			}
		}
		return true;
	}

	/** Reads one actor's saved data, and its components'. */
	bool ReadActor(const FUnrealPackage& Package, const FExportChildren& Children, std::int32_t ActorIndex,
		FLevelActor& Out, FPackageError& OutError)
	{
		const FPackageExport& Export = Package.GetExports()[static_cast<std::size_t>(ActorIndex - 1)];
		Out.Offset = Export.NameOffset;
		Out.Path = Package.ObjectPath(ActorIndex);
		Out.Name = Package.ObjectName(ActorIndex);
		Out.ClassName = Package.ClassNameOf(ActorIndex);
		Out.ClassPath = ClassPathOf(Package, Export.ClassIndex);
		Out.bEditorOnly = IsEditorOnlyExport(Export);
		if (!CheckOneLine(Out.Name, Export.NameOffset, "the name of actor '" + Out.Name + "'", OutError) ||
			!CheckObjectName(Out.Name, Export.NameOffset, "the name of actor '" + Out.Name + "'", OutError) ||
			!CheckOneLine(Out.ClassName, Export.Offset, "the class of actor '" + Out.Name + "'", OutError))
		{
			return false;
		}
		FObjectProperties Properties;
		if (!ReadObjectProperties(Package, ActorIndex, Properties, OutError))
		{
			return false;
		}
		if (const FTaggedProperty* Label = Properties.Find(Package, "ActorLabel"))
		{
			// The editor lets a label hold a tab or a line break: read as it is, shown escaped.
			if (!PropertyValues::ReadString(Package, *Label, Out.Label, OutError))
			{
				return false;
			}
		}
		if (const FTaggedProperty* Tags = Properties.Find(Package, "Tags"))
		{
			Out.bHasTags = true;
			std::vector<std::string> OwnTags;
			if (!PropertyValues::ReadNameArray(Package, *Tags, OwnTags, OutError))
			{
				return false;
			}
			Out.Tags = std::move(OwnTags);
			for (const std::string& Tag : Out.Tags)
			{
				if (!CheckOneLine(Tag, Tags->ValueOffset, "a tag of actor '" + Out.Name + "'", OutError))
				{
					return false;
				}
			}
		}
		if (const FTaggedProperty* Guid = Properties.Find(Package, "ActorGuid"))
		{
			if (!PropertyValues::ReadGuid(Package, *Guid, Out.Guid, OutError))
			{
				return false;
			}
		}
		const FTaggedProperty* World = Properties.Find(Package, "WorldAsset");
		if (World != nullptr && Package.NameIs(World->Type, "SoftObjectProperty"))
		{
			if (!PropertyValues::ReadSoftObjectPath(Package, *World, Out.InstancedWorld, OutError))
			{
				return false;
			}
			if (Out.InstancedWorld == "None")
			{
				Out.InstancedWorld.clear();
			}
		}
		std::int32_t RootComponent = 0;
		if (const FTaggedProperty* Root = Properties.Find(Package, "RootComponent"))
		{
			if (!PropertyValues::ReadObject(Package, *Root, RootComponent, OutError))
			{
				return false;
			}
		}
		std::vector<std::int32_t> Listed;
		for (const char* ListName : {"InstanceComponents", "BlueprintCreatedComponents"})
		{
			std::vector<std::int32_t> List;
			const FTaggedProperty* ListProperty = Properties.Find(Package, ListName);
			if (ListProperty != nullptr && !PropertyValues::ReadObjectArray(Package, *ListProperty, List, OutError))
			{
				return false;
			}
			Listed.insert(Listed.end(), List.begin(), List.end());
		}
		Listed.push_back(RootComponent);
		if (!ReadAttachChildren(Package, ActorIndex, RootComponent, Listed, OutError))
		{
			return false;
		}
		std::sort(Listed.begin(), Listed.end()); // looked up once per object the actor holds

		// The components: the objects the actor holds that are components, by their class or by the actor's lists.
		std::int32_t AttachedComponent = 0;
		std::int32_t AttachParent = 0;
		std::size_t AttachParentOffset = 0;
		std::vector<std::size_t> ComponentOffsets;
		bool bFailed = false;
		Children.ForEach(ActorIndex,
			[&](std::int32_t Child)
			{
				const std::string ClassName = Package.ClassNameOf(Child);
				const bool bListed = std::binary_search(Listed.begin(), Listed.end(), Child);
				const std::string ClassToCheck = bListed || IsComponentObject(Package, Child)
					? std::string()
					: BlueprintClassOfAnotherPackage(Package, Child);
				if (bFailed || (!bListed && !IsComponentObject(Package, Child) && ClassToCheck.empty()))
				{
					return;
				}
				FLevelComponent Component;
				Component.Name = Package.ObjectName(Child);
				Component.Path = Out.Path + "." + Component.Name;
				Component.ClassName = ClassName;
				const FPackageExport& ChildExport = Package.GetExports()[static_cast<std::size_t>(Child - 1)];
				Component.bEditorOnly = Out.bEditorOnly || IsEditorOnlyExport(ChildExport);
				Component.ClassToCheck = ClassToCheck;
				FObjectProperties ComponentProperties;
				if (!CheckOneLine(Component.Name, ChildExport.NameOffset,
						"the name of component '" + Component.Name + "'", OutError) ||
					!CheckObjectName(Component.Name, ChildExport.NameOffset,
						"the name of component '" + Component.Name + "'", OutError) ||
					!CheckOneLine(
						ClassName, ChildExport.Offset, "the class of component '" + Component.Name + "'", OutError) ||
					!ReadObjectProperties(Package, Child, ComponentProperties, OutError))
				{
					bFailed = true;
					return;
				}
				// The actor's attachment is its root component's; without a saved root, that of the one component
				// attached outside the actor (the others attach inside it).
				const FTaggedProperty* Parent = ComponentProperties.Find(Package, "AttachParent");
				std::int32_t ParentIndex = 0;
				if (Parent != nullptr && !PropertyValues::ReadObject(Package, *Parent, ParentIndex, OutError))
				{
					bFailed = true;
					return;
				}
				if (Child == RootComponent)
				{
					Out.bHasLocation = true;
					const FTaggedProperty* Location = ComponentProperties.Find(Package, "RelativeLocation");
					if (Location != nullptr && !PropertyValues::ReadVector(Package, *Location, Out.Location, OutError))
					{
						bFailed = true;
						return;
					}
				}
				const bool bInside = IsExport(ParentIndex) && Package.OuterOf(ParentIndex) == ActorIndex;
				if (ParentIndex != 0 &&
					(Child == RootComponent || (RootComponent == 0 && !bInside && AttachedComponent == 0)))
				{
					AttachedComponent = Child;
					AttachParent = ParentIndex;
					AttachParentOffset = Parent->ValueOffset;
				}
				Out.Components.push_back(std::move(Component));
				ComponentOffsets.push_back(ChildExport.NameOffset);
			});
		if (bFailed)
		{
			return false;
		}
		// Two objects of one outer never share a name; their paths would be one.
		std::vector<std::pair<const std::string*, std::size_t>> Names;
		for (std::size_t Index = 0; Index < Out.Components.size(); ++Index)
		{
			Names.emplace_back(&Out.Components[Index].Name, ComponentOffsets[Index]);
		}
		std::sort(Names.begin(), Names.end(),
			[](const auto& Left, const auto& Right)
			{ return *Left.first != *Right.first ? *Left.first < *Right.first : Left.second < Right.second; });
		for (std::size_t Index = 1; Index < Names.size(); ++Index)
		{
			if (*Names[Index].first == *Names[Index - 1].first)
			{
				OutError.Offset = Names[Index].second;
				OutError.Reason =
					"actor '" + Out.Name + "' holds a second component named '" + *Names[Index].first + "'";
				return false;
			}
		}
		if (AttachParent != 0 && ChainDepth(Package, AttachParent, AttachDepthLimit) > AttachDepthLimit)
		{
			OutError.Offset = AttachParentOffset;
			OutError.Reason = "actor '" + Out.Name + "' is attached to object " + std::to_string(AttachParent) +
				", which lies more than " + std::to_string(AttachDepthLimit) +
				" objects deep in its package: no component does";
			return false;
		}
		Out.AttachParentPath = AttachParent != 0 ? Package.ObjectPath(AttachParent) : std::string();
		return true;
	}

	std::int32_t FindTopLevelExportOfClass(const FUnrealPackage& Package, const char* ClassName)
	{
		const std::vector<FPackageExport>& Exports = Package.GetExports();
		for (std::size_t Index = 0; Index < Exports.size(); ++Index)
		{
			const std::int32_t Object = static_cast<std::int32_t>(Index + 1);
			if (Exports[Index].OuterIndex == 0 && Package.ClassNameOf(Object) == ClassName)
			{
				return Object;
			}
		}
		return 0;
	}

	/** The classes of the package's top-level objects, for the message about a package that is no level. */
	std::string DescribeTopLevelObjects(const FUnrealPackage& Package)
	{
		std::string Text;
		std::size_t Count = 0;
		const std::vector<FPackageExport>& Exports = Package.GetExports();
		for (std::size_t Index = 0; Index < Exports.size() && Count < 3; ++Index)
		{
			if (Exports[Index].OuterIndex == 0)
			{
				const std::int32_t Object = static_cast<std::int32_t>(Index + 1);
				Text +=
					(Count++ > 0 ? ", " : "") + Package.ObjectName(Object) + " (" + Package.ClassNameOf(Object) + ")";
			}
		}
		return Count == 0 ? "no object" : Text;
	}

	/**
	 * What a world saved before UE4 449 holds after its persistent level: four editor viewports (a float vector and
	 * rotator and a float zoom each), and before UE4 410 a reference to a save game summary.
	 */
	bool SkipOldWorldFields(const FUnrealPackage& Package, FPackageCursor& Cursor)
	{
		const std::int32_t UE4 = Package.GetSummary().FileVersionUE4;
		constexpr std::int32_t EditorViewsAdded = 449;
		constexpr std::int32_t SaveGameSummaryRemoved = 410;
		return Cursor.Skip(UE4 < EditorViewsAdded ? 4 * 28 : 0) && Cursor.Skip(UE4 < SaveGameSummaryRemoved ? 4 : 0);
	}

	/** A level saved before its actors became a plain array keeps them in a transaction array: its owner first. */
	bool SkipOldActorsOwner(const FUnrealPackage& Package, FPackageCursor& Cursor)
	{
		using namespace UnrealPackageVersions;
		return Package.GetSummary().CustomVersion(ReleaseObjectVersionKey) >= LevelTransArrayConvertedToTArray ||
			Cursor.Skip(4);
	}

	/** Reads an array of object references at Cursor: a count, then the indices, each checked. */
	bool ReadObjectList(
		const FUnrealPackage& Package, FPackageCursor& Cursor, const char* What, std::vector<std::int32_t>& Out)
	{
		const std::size_t Start = Cursor.Tell();
		std::int32_t Count = 0;
		if (!Cursor.ReadInt32(Count))
		{
			return false;
		}
		if (Count < 0 || static_cast<std::size_t>(Count) > Cursor.Remaining() / 4)
		{
			return Cursor.Fail(Start,
				std::string(What) + " has a count of " + std::to_string(Count) +
					", past the end of the object's data at byte " + std::to_string(Cursor.GetEnd()));
		}
		Out.resize(static_cast<std::size_t>(Count));
		for (std::size_t Entry = 0; Entry < Out.size(); ++Entry)
		{
			const std::size_t EntryOffset = Cursor.Tell();
			Cursor.ReadInt32(Out[Entry]);
			if (!Cursor.HasFailed() && !Package.IsObjectIndex(Out[Entry]))
			{
				return Cursor.Fail(EntryOffset,
					std::string(What) + "[" + std::to_string(Entry) + "] is object " + std::to_string(Out[Entry]) +
						", which the package does not list");
			}
		}
		return !Cursor.HasFailed();
	}

	/** Where an object's own data begins: past its tagged properties and its object GUID. */
	bool SkipToNativeData(
		const FUnrealPackage& Package, std::int32_t Object, std::size_t& OutOffset, FPackageError& OutError)
	{
		FObjectProperties Properties;
		if (!ReadObjectProperties(Package, Object, Properties, OutError))
		{
			return false;
		}
		OutOffset = Properties.End;
		return SkipObjectGuid(Package, Object, OutOffset, OutError);
	}

	FPackageCursor NativeDataCursor(const FUnrealPackage& Package, std::int32_t Object, std::size_t Offset)
	{
		const FPackageExport& Export = Package.GetExports()[static_cast<std::size_t>(Object - 1)];
		return FPackageCursor(Package.GetBytes(), Offset, Export.SerialOffset + Export.SerialSize,
			"the data of export " + std::to_string(Object - 1) + " '" + Package.ObjectName(Object) + "'");
	}

	bool ReadRedirector(
		const FUnrealPackage& Package, std::int32_t Redirector, FLevelPackageContents& Out, FPackageError& OutError)
	{
		std::size_t Offset = 0;
		if (!SkipToNativeData(Package, Redirector, Offset, OutError))
		{
			return false;
		}
		FPackageCursor Cursor = NativeDataCursor(Package, Redirector, Offset);
		std::int32_t Destination = 0;
		if (!Cursor.ReadInt32(Destination))
		{
			OutError = Cursor.GetError();
			return false;
		}
		if (Destination == 0 || !Package.IsObjectIndex(Destination))
		{
			OutError.Offset = Offset;
			OutError.Reason = "the redirector '" + Package.ObjectName(Redirector) + "' leads to object " +
				std::to_string(Destination) + ", which the package does not list";
			return false;
		}
		Out.RedirectTarget = Package.ObjectPath(Destination);
		return true;
	}

	/**
	 * Whether a streaming level leaves its sub-level unloaded at start: a `LevelStreamingDynamic` loads it at start
	 * only when it saves `bInitiallyLoaded` true (ULevelStreamingDynamic::PostLoad; the flag defaults to false).
	 * Other streaming classes (`LevelStreamingAlwaysLoaded`, a project's own) are taken as loading it.
	 */
	bool IsLoadedOnDemand(const FUnrealPackage& Package, std::int32_t Level, const FObjectProperties& Properties)
	{
		if (Package.ClassNameOf(Level) != "LevelStreamingDynamic")
		{
			return false;
		}
		const FTaggedProperty* Loaded = Properties.Find(Package, "bInitiallyLoaded");
		return Loaded == nullptr || !Package.NameIs(Loaded->Type, "BoolProperty") || !Loaded->bBoolValue;
	}

	/**
	 * The world's own data: its persistent level, the extra referenced objects, then the streaming levels; each
	 * streaming level's `WorldAsset` names a sub-level's package.
	 */
	bool ReadWorld(const FUnrealPackage& Package, std::int32_t World, std::int32_t& OutLevel,
		FLevelPackageContents& Out, FPackageError& OutError)
	{
		std::size_t Offset = 0;
		if (!SkipToNativeData(Package, World, Offset, OutError))
		{
			return false;
		}
		FPackageCursor Cursor = NativeDataCursor(Package, World, Offset);
		const std::size_t LevelOffset = Cursor.Tell();
		std::vector<std::int32_t> Extra;
		std::vector<std::int32_t> Streaming;
		if (!Cursor.ReadInt32(OutLevel) || !SkipOldWorldFields(Package, Cursor) ||
			!ReadObjectList(Package, Cursor, "the world's ExtraReferencedObjects", Extra) ||
			!ReadObjectList(Package, Cursor, "the world's StreamingLevels", Streaming))
		{
			OutError = Cursor.GetError();
			return false;
		}
		if (!Package.IsObjectIndex(OutLevel) || !IsExport(OutLevel) || Package.OuterOf(OutLevel) != World ||
			Package.ClassNameOf(OutLevel) != "Level")
		{
			OutError.Offset = LevelOffset;
			OutError.Reason =
				"the world's persistent level is object " + std::to_string(OutLevel) + ", not a level the world holds";
			return false;
		}
		if (Package.ObjectName(OutLevel) != "PersistentLevel")
		{
			OutError.Offset = Package.GetExports()[static_cast<std::size_t>(OutLevel - 1)].NameOffset;
			OutError.Reason =
				"the world's persistent level is named '" + Package.ObjectName(OutLevel) + "', not PersistentLevel";
			return false;
		}
		std::vector<bool> bRead(Package.GetExports().size() + 1, false);
		std::vector<std::string> OnDemand;
		std::vector<std::string> AtStart;
		for (const std::int32_t Level : Streaming)
		{
			FObjectProperties Properties;
			// A streaming level the list names again is read once.
			if (!IsExport(Level) || bRead[static_cast<std::size_t>(Level)])
			{
				continue;
			}
			bRead[static_cast<std::size_t>(Level)] = true;
			if (!ReadObjectProperties(Package, Level, Properties, OutError))
			{
				return false;
			}
			const FTaggedProperty* Asset = Properties.Find(Package, "WorldAsset");
			std::string Path;
			if (Asset == nullptr)
			{
				continue;
			}
			if (!PropertyValues::ReadSoftObjectPath(Package, *Asset, Path, OutError))
			{
				return false;
			}
			const std::size_t Dot = Path.find('.');
			if (Path != "None" && !Path.empty())
			{
				Out.StreamingLevelPackages.push_back(Dot == std::string::npos ? Path : Path.substr(0, Dot));
				(IsLoadedOnDemand(Package, Level, Properties) ? OnDemand : AtStart)
					.push_back(Out.StreamingLevelPackages.back());
			}
		}
		// A sub-level another streaming level loads at start is loaded at start.
		for (const std::string& Path : OnDemand)
		{
			if (std::find(AtStart.begin(), AtStart.end(), Path) == AtStart.end() &&
				std::find(Out.OnDemandLevelPackages.begin(), Out.OnDemandLevelPackages.end(), Path) ==
					Out.OnDemandLevelPackages.end())
			{
				Out.OnDemandLevelPackages.push_back(Path);
			}
		}
		return true;
	}
}

bool ReadLevelPackage(const FUnrealPackage& Package, FLevelPackageContents& Out, FPackageError& OutError)
{
	Out = FLevelPackageContents();
	const std::int32_t World = FindTopLevelExportOfClass(Package, "World");
	if (World == 0)
	{
		const std::int32_t Redirector = FindTopLevelExportOfClass(Package, "ObjectRedirector");
		if (Redirector != 0)
		{
			return ReadRedirector(Package, Redirector, Out, OutError);
		}
		// The export map, or, when it is empty, the summary's count of exports.
		OutError.Offset =
			Package.GetExports().empty() ? Package.GetSummary().ExportCountOffset : Package.GetExports()[0].Offset;
		OutError.Reason = "not a level: the package holds no World but " + DescribeTopLevelObjects(Package);
		return false;
	}
	Out.WorldPath = Package.ObjectPath(World);
	if (!CheckOneLine(Package.ObjectName(World), Package.GetExports()[static_cast<std::size_t>(World - 1)].NameOffset,
			"the name of the world", OutError))
	{
		return false;
	}
	std::int32_t Level = 0;
	if (!ReadWorld(Package, World, Level, Out, OutError))
	{
		return false;
	}

	// The level's data: its tagged properties, its object GUID, then the Actors array.
	std::size_t Offset = 0;
	if (!SkipToNativeData(Package, Level, Offset, OutError))
	{
		return false;
	}
	FPackageCursor Cursor = NativeDataCursor(Package, Level, Offset);
	std::vector<std::int32_t> Actors;
	if (!SkipOldActorsOwner(Package, Cursor) || !ReadObjectList(Package, Cursor, "the level's Actors", Actors))
	{
		OutError = Cursor.GetError();
		return false;
	}
	const FExportChildren Children(Package);
	Out.Actors.reserve(Actors.size());
	std::vector<bool> Listed(Package.GetExports().size() + 1, false);
	for (std::size_t Entry = 0; Entry < Actors.size(); ++Entry)
	{
		const std::int32_t Actor = Actors[Entry];
		if (IsExport(Actor) && Package.OuterOf(Actor) != Level)
		{
			OutError.Offset = Offset + 4 + 4 * Entry;
			OutError.Reason = "the level's Actors[" + std::to_string(Entry) + "] is export " +
				std::to_string(Actor - 1) + " '" + Package.ObjectName(Actor) + "', which the level does not hold";
			return false;
		}
		// Null entries are deleted actors; imports are actors kept in packages of their own (World Partition). An
		// actor the array names again is the same actor.
		if (!IsExport(Actor) || Listed[static_cast<std::size_t>(Actor)])
		{
			continue;
		}
		Listed[static_cast<std::size_t>(Actor)] = true;
		FLevelActor Read;
		if (!ReadActor(Package, Children, Actor, Read, OutError))
		{
			return false;
		}
		Out.Actors.push_back(std::move(Read));
	}
	return true;
}

bool ReadExternalActorPackage(const FUnrealPackage& Package, const std::string& LevelPath,
	std::vector<FLevelActor>& Out, std::string& OutLevelPath, FPackageError& OutError)
{
	Out.clear();
	OutLevelPath.clear();
	const FExportChildren Children(Package);
	const std::vector<FPackageExport>& Exports = Package.GetExports();
	// The level's path is built once for each import naming a level, and only for a level at the top of a world
	// (package, world, level): any other is not LevelPath.
	std::int32_t PathOuter = 0;
	bool bPathOuterIsLevel = false;
	std::int32_t OtherLevel = 0;
	for (std::size_t Index = 0; Index < Exports.size(); ++Index)
	{
		const std::int32_t Outer = Exports[Index].OuterIndex;
		if (Outer >= 0 || Package.ClassNameOf(Outer) != "Level")
		{
			continue;
		}
		if (Outer != PathOuter)
		{
			PathOuter = Outer;
			bPathOuterIsLevel = ChainDepth(Package, Outer, 3) == 3 && Package.ObjectPath(Outer) == LevelPath;
		}
		if (!bPathOuterIsLevel)
		{
			OtherLevel = Outer;
			continue;
		}
		FLevelActor Actor;
		if (!ReadActor(Package, Children, static_cast<std::int32_t>(Index + 1), Actor, OutError))
		{
			return false;
		}
		Out.push_back(std::move(Actor));
	}
	OutLevelPath = OtherLevel != 0 ? Package.ObjectPath(OtherLevel) : std::string();
	return true;
}

bool ReadClassDefaults(const FUnrealPackage& Package, const std::string& ClassName, bool& bOutHasTags,
	FSharedTags& OutTags, std::string& OutSuperClassPath, FPackageError& OutError)
{
	bOutHasTags = false;
	OutTags = FSharedTags();
	OutSuperClassPath.clear();
	const std::int32_t Class = Package.FindExport(0, ClassName);
	if (Class != 0)
	{
		const std::int32_t Super = Package.GetExports()[static_cast<std::size_t>(Class - 1)].SuperIndex;
		OutSuperClassPath = Super != 0 ? Package.ObjectPath(Super) : std::string();
	}
	const std::int32_t Defaults = Package.FindExport(0, "Default__" + ClassName);
	if (Defaults == 0)
	{
		return true;
	}
	FObjectProperties Properties;
	if (!ReadObjectProperties(Package, Defaults, Properties, OutError))
	{
		return false;
	}
	const FTaggedProperty* Tags = Properties.Find(Package, "Tags");
	if (Tags == nullptr)
	{
		return true;
	}
	bOutHasTags = true;
	std::vector<std::string> DefaultTags;
	if (!PropertyValues::ReadNameArray(Package, *Tags, DefaultTags, OutError))
	{
		return false;
	}
	for (const std::string& Tag : DefaultTags)
	{
		if (!CheckOneLine(Tag, Tags->ValueOffset, "a default tag of class '" + ClassName + "'", OutError))
		{
			return false;
		}
	}
	OutTags = std::move(DefaultTags);
	return true;
}
