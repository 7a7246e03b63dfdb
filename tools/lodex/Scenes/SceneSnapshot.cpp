// Copyright Lodex contributors.
#include "SceneSnapshot.h"

#include "Cli/JsonErrors.h"
#include "Cli/WholeFile.h"
#include "ContentFiles.h"

#include "LodexDebugger/Core/Explorer/SnapshotWriter.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string_view>
#include <unordered_map>

namespace
{
	using FJson = nlohmann::json;

	const char* JsonTypeName(const FJson& Value)
	{
		return Value.type_name();
	}

	/** Fills each object's Inners from the outers set. */
	void ListInners(std::vector<FSceneObject>& Objects)
	{
		for (FSceneObject& Object : Objects)
		{
			if (Object.Outer != nullptr)
			{
				Objects[static_cast<std::size_t>(Object.Outer - Objects.data())].Inners.push_back(&Object);
			}
		}
	}

	/** A number as the JSON library writes it: the shortest text that reads back as the same double. */
	void AppendJsonNumber(std::string& Out, double Value)
	{
		Out += FJson(Value).dump();
	}

	std::string DescribeObject(std::size_t Index, const std::string& Id)
	{
		std::string Text = "objects[" + std::to_string(Index) + "]";
		if (!Id.empty())
		{
			Text += " (id '" + Id + "')";
		}
		return Text;
	}
}

bool FSceneSnapshot::Parse(
	const std::string& Text, const std::string& SourceName, FSceneSnapshot& Out, std::string& OutError)
{
	if (IsGitLfsPointer(Text))
	{
		OutError = GitLfsPointerError(SourceName);
		return false;
	}
	FJson Root;
	if (!ParseJsonFile(Text, SourceName, "", Root, OutError))
	{
		return false;
	}
	try
	{
		return ReadObjects(Root, SourceName, Out, OutError);
	}
	catch (const FJson::exception& Error)
	{
		OutError = SourceName + ": " + DescribeJsonParseReason(Error.what());
		return false;
	}
}

bool FSceneSnapshot::ReadObjects(
	const nlohmann::json& Root, const std::string& SourceName, FSceneSnapshot& Out, std::string& OutError)
{
	auto Fail = [&](const std::string& Message)
	{
		OutError = SourceName + ": " + Message;
		return false;
	};

	if (!Root.is_object())
	{
		return Fail(std::string("expected a JSON object at the top, found ") + JsonTypeName(Root));
	}
	const auto ObjectsIt = Root.find("objects");
	if (ObjectsIt == Root.end())
	{
		return Fail("missing field 'objects'");
	}
	if (!ObjectsIt->is_array())
	{
		return Fail(std::string("field 'objects' must be an array, found ") + JsonTypeName(*ObjectsIt));
	}

	const FJson& Entries = *ObjectsIt;
	FSceneSnapshot Scene;
	Scene.Objects.resize(Entries.size());
	std::unordered_map<std::string, std::size_t> IndexById;

	// First pass: the plain fields and the ids.
	for (std::size_t Index = 0; Index < Entries.size(); ++Index)
	{
		const FJson& Entry = Entries[Index];
		FSceneObject& Object = Scene.Objects[Index];
		if (!Entry.is_object())
		{
			return Fail(DescribeObject(Index, "") + ": expected an object, found " + JsonTypeName(Entry));
		}
		auto ReadString = [&](const char* Field, std::string& OutValue, bool bRequired, bool bOneLine = true)
		{
			const auto It = Entry.find(Field);
			if (It == Entry.end())
			{
				return !bRequired ? true : Fail(DescribeObject(Index, Object.Id) + ": missing field '" + Field + "'");
			}
			if (!It->is_string())
			{
				return Fail(DescribeObject(Index, Object.Id) + ": field '" + Field + "' must be a string, found " +
					JsonTypeName(*It));
			}
			OutValue = It->get<std::string>();
			const std::string ControlCharacter = bOneLine ? LodexText::FindControlCharacter(OutValue) : std::string();
			if (!ControlCharacter.empty())
			{
				OutValue.clear();
				return Fail(DescribeObject(Index, Object.Id) + ": field '" + Field +
					"' must be one line of text: it holds the control character " + ControlCharacter);
			}
			return true;
		};
		std::string Kind;
		if (!ReadString("id", Object.Id, true) || !ReadString("kind", Kind, true) ||
			!ReadString("name", Object.Name, true) || !ReadString("label", Object.Label, false, false) ||
			!ReadString("className", Object.ClassName, false) || !ReadString("package", Object.Package, false))
		{
			return false;
		}
		const auto PlacedIt = Entry.find("placed");
		if (PlacedIt != Entry.end() && !PlacedIt->is_null())
		{
			if (!PlacedIt->is_boolean())
			{
				return Fail(DescribeObject(Index, Object.Id) + ": field 'placed' must be true or false, found " +
					JsonTypeName(*PlacedIt));
			}
			Object.Origin = PlacedIt->get<bool>() ? ELodexPlacement::Placed : ELodexPlacement::Spawned;
		}
		auto ReadFlag = [&](const char* Field, bool& bOutValue)
		{
			const auto It = Entry.find(Field);
			if (It == Entry.end() || It->is_null())
			{
				return true;
			}
			if (!It->is_boolean())
			{
				return Fail(DescribeObject(Index, Object.Id) + ": field '" + Field + "' must be true or false, found " +
					JsonTypeName(*It));
			}
			bOutValue = It->get<bool>();
			return true;
		};
		if (!ReadString("guid", Object.Guid, false) || !ReadFlag("editorOnly", Object.bEditorOnly) ||
			!ReadFlag("streamedOnDemand", Object.bStreamedOnDemand) ||
			!ReadString("instancedBy", Object.InstancedBy, false))
		{
			return false;
		}
		if (!Object.Guid.empty() || Entry.find("guid") != Entry.end())
		{
			const bool bHex = Object.Guid.size() == 32 &&
				std::all_of(Object.Guid.begin(), Object.Guid.end(),
					[](char Digit) { return std::isxdigit(static_cast<unsigned char>(Digit)) != 0; });
			if (!bHex)
			{
				return Fail(DescribeObject(Index, Object.Id) + ": field 'guid' must be 32 hex digits, found '" +
					Object.Guid + "'");
			}
			std::transform(Object.Guid.begin(), Object.Guid.end(), Object.Guid.begin(),
				[](char Digit) { return static_cast<char>(std::toupper(static_cast<unsigned char>(Digit))); });
		}
		const auto LocationIt = Entry.find("location");
		if (LocationIt != Entry.end() && !LocationIt->is_null())
		{
			if (!LocationIt->is_array() || LocationIt->size() != 3 ||
				!std::all_of(
					LocationIt->begin(), LocationIt->end(), [](const FJson& Value) { return Value.is_number(); }))
			{
				return Fail(DescribeObject(Index, Object.Id) + ": field 'location' must be an array of 3 numbers");
			}
			Object.bHasLocation = true;
			for (std::size_t Axis = 0; Axis < 3; ++Axis)
			{
				Object.Location[Axis] = (*LocationIt)[Axis].get<double>();
			}
		}
		if (Object.Id.empty())
		{
			return Fail(DescribeObject(Index, "") + ": field 'id' must not be empty");
		}
		if (!LodexSnapshot::FindKind(Kind, Object.Kind))
		{
			return Fail(DescribeObject(Index, Object.Id) + ": field 'kind': unknown kind '" + Kind +
				"' (expected actor, widgetTree, widget, userWidget, component or other)");
		}
		if (!IndexById.emplace(Object.Id, Index).second)
		{
			return Fail(DescribeObject(Index, Object.Id) + ": field 'id': duplicate id, first used by objects[" +
				std::to_string(IndexById[Object.Id]) + "]");
		}
		const auto TagsIt = Entry.find("tags");
		if (TagsIt != Entry.end())
		{
			if (!TagsIt->is_array())
			{
				return Fail(DescribeObject(Index, Object.Id) + ": field 'tags' must be an array of strings, found " +
					JsonTypeName(*TagsIt));
			}
			Object.bHasTags = true;
			std::vector<std::string> Tags;
			Tags.reserve(TagsIt->size());
			for (std::size_t TagIndex = 0; TagIndex < TagsIt->size(); ++TagIndex)
			{
				const FJson& Tag = (*TagsIt)[TagIndex];
				if (!Tag.is_string())
				{
					return Fail(DescribeObject(Index, Object.Id) + ": field 'tags'[" + std::to_string(TagIndex) +
						"] must be a string, found " + JsonTypeName(Tag));
				}
				const std::string ControlCharacter = LodexText::FindControlCharacter(Tag.get_ref<const std::string&>());
				if (!ControlCharacter.empty())
				{
					return Fail(DescribeObject(Index, Object.Id) + ": field 'tags'[" + std::to_string(TagIndex) +
						"] must be one line of text: it holds the control character " + ControlCharacter);
				}
				Tags.push_back(Tag.get<std::string>());
			}
			Object.Tags = std::move(Tags);
		}
	}

	// Second pass: references, now that every id is known.
	struct FReferenceField
	{
		const char* Name;
		const FSceneObject* FSceneObject::*Member;
	};
	static const FReferenceField ReferenceFields[] = {
		{"outer", &FSceneObject::Outer},
		{"attachParent", &FSceneObject::AttachParent},
		{"widgetParent", &FSceneObject::WidgetParent},
		{"rootWidget", &FSceneObject::RootWidget},
	};
	for (std::size_t Index = 0; Index < Entries.size(); ++Index)
	{
		const FJson& Entry = Entries[Index];
		FSceneObject& Object = Scene.Objects[Index];
		for (const FReferenceField& Field : ReferenceFields)
		{
			const auto It = Entry.find(Field.Name);
			if (It == Entry.end() || It->is_null())
			{
				continue;
			}
			if (!It->is_string())
			{
				return Fail(DescribeObject(Index, Object.Id) + ": field '" + Field.Name +
					"' must be the id of an object (a string), found " + JsonTypeName(*It));
			}
			const std::string Target = It->get<std::string>();
			const auto Found = IndexById.find(Target);
			if (Found == IndexById.end() && !LodexText::FindControlCharacter(Target).empty())
			{
				return Fail(DescribeObject(Index, Object.Id) + ": field '" + Field.Name +
					"' must be one line of text: it holds the control character " +
					LodexText::FindControlCharacter(Target));
			}
			if (Found == IndexById.end())
			{
				return Fail(DescribeObject(Index, Object.Id) + ": field '" + Field.Name + "': no object has the id '" +
					Target + "'");
			}
			Object.*(Field.Member) = &Scene.Objects[Found->second];
		}
	}
	ListInners(Scene.Objects);

	// Reflection: the classes and each object's class.
	std::string ReflectionError;
	std::vector<const FSceneClass*> ObjectClasses;
	if (!ParseSceneReflection(Root, Entries, Scene.Classes, ObjectClasses, ReflectionError))
	{
		return Fail(ReflectionError);
	}
	for (std::size_t Index = 0; Index < Scene.Objects.size() && Index < ObjectClasses.size(); ++Index)
	{
		Scene.Objects[Index].Class = ObjectClasses[Index];
	}

	Out = std::move(Scene);
	return true;
}

bool FSceneSnapshot::FromObjects(std::vector<FSceneObject> Objects, const std::vector<FSceneObjectLinks>& Links,
	FSceneSnapshot& Out, std::string& OutError)
{
	FSceneSnapshot Scene;
	Scene.Objects = std::move(Objects);
	std::unordered_map<std::string_view, std::size_t> IndexById; // views of the ids, which stay where they are
	IndexById.reserve(Scene.Objects.size());
	for (std::size_t Index = 0; Index < Scene.Objects.size(); ++Index)
	{
		FSceneObject& Object = Scene.Objects[Index];
		if (Object.Id.empty())
		{
			OutError = DescribeObject(Index, "") + ": the id is empty";
			return false;
		}
		const auto Inserted = IndexById.emplace(Object.Id, Index);
		if (!Inserted.second)
		{
			OutError = DescribeObject(Index, Object.Id) + ": duplicate id, first used by objects[" +
				std::to_string(Inserted.first->second) + "]";
			return false;
		}
		Object.Outer = nullptr;
		Object.AttachParent = nullptr;
		Object.WidgetParent = nullptr;
		Object.RootWidget = nullptr;
		Object.Class = nullptr;
		Object.Inners.clear();
		if (Index >= Links.size())
		{
			continue;
		}
		const FSceneObjectLinks& Link = Links[Index];
		for (const std::size_t Target : {Link.Outer, Link.AttachParent})
		{
			if (Target != FSceneObjectLinks::NoObject && Target >= Scene.Objects.size())
			{
				OutError = DescribeObject(Index, Object.Id) + ": refers to objects[" + std::to_string(Target) +
					"] of " + std::to_string(Scene.Objects.size());
				return false;
			}
		}
		Object.Outer = Link.Outer == FSceneObjectLinks::NoObject ? nullptr : &Scene.Objects[Link.Outer];
		Object.AttachParent =
			Link.AttachParent == FSceneObjectLinks::NoObject ? nullptr : &Scene.Objects[Link.AttachParent];
	}
	ListInners(Scene.Objects);
	Out = std::move(Scene);
	return true;
}

std::string FSceneSnapshot::Write() const
{
	std::vector<FLodexSnapshotObject> Written(Objects.size());
	const FSceneObject* const First = Objects.data();
	auto IndexOf = [First](const FSceneObject* Target)
	{
		return Target != nullptr ? static_cast<std::size_t>(Target - First) : FLodexSnapshotObject::NoObject;
	};
	for (std::size_t Index = 0; Index < Objects.size(); ++Index)
	{
		const FSceneObject& Object = Objects[Index];
		FLodexSnapshotObject& Entry = Written[Index];
		Entry.Id = Object.Id;
		Entry.Kind = Object.Kind;
		Entry.Name = Object.Name;
		Entry.Outer = IndexOf(Object.Outer);
		Entry.AttachParent = IndexOf(Object.AttachParent);
		Entry.WidgetParent = IndexOf(Object.WidgetParent);
		Entry.RootWidget = IndexOf(Object.RootWidget);
		Entry.Tags = Object.bHasTags ? &Object.Tags.Get() : nullptr;
		Entry.Placement = Object.Origin;
		Entry.Saved = &Object;
		Entry.bStreamedOnDemand = Object.bStreamedOnDemand;
		Entry.InstancedBy = Object.InstancedBy;
		Entry.Package = Object.Package;
	}
	return LodexSnapshot::WriteObjects(Written, &AppendJsonNumber);
}

bool FSceneSnapshot::LoadFile(const std::string& Path, FSceneSnapshot& Out, std::string& OutError)
{
	std::error_code Code;
	if (std::filesystem::is_directory(Path, Code))
	{
		OutError = Path + ": is a folder, not a scene file";
		return false;
	}
	std::string Text;
	if (!ReadWholeFile(Path, Text, OutError, LodexSceneFileRules))
	{
		return false;
	}
	return Parse(Text, Path, Out, OutError);
}

FLodexObject FSceneSnapshot::FindObject(const std::string& IdOrName, std::string& OutError) const
{
	const FSceneObject* ByName = nullptr;
	std::size_t NameMatches = 0;
	for (const FSceneObject& Object : Objects)
	{
		if (Object.Id == IdOrName)
		{
			return Handle(Object);
		}
		if (Object.Name == IdOrName)
		{
			ByName = ByName ? ByName : &Object;
			++NameMatches;
		}
	}
	if (NameMatches == 1)
	{
		return Handle(*ByName);
	}
	if (NameMatches > 1)
	{
		OutError = std::to_string(NameMatches) + " objects are named '" + IdOrName + "'; name one by its id";
		return FLodexObject();
	}
	// Last, an editor label, as levels give them: only a label that one object has alone names it.
	const FSceneObject* ByLabel = nullptr;
	std::size_t LabelMatches = 0;
	for (const FSceneObject& Object : Objects)
	{
		if (!Object.Label.empty() && Object.Label == IdOrName)
		{
			ByLabel = ByLabel ? ByLabel : &Object;
			++LabelMatches;
		}
	}
	if (LabelMatches == 1)
	{
		return Handle(*ByLabel);
	}
	OutError = LabelMatches == 0
		? "no object has the id, name or label '" + IdOrName + "'"
		: std::to_string(LabelMatches) + " objects have the label '" + IdOrName + "'; name one by its id or name";
	return FLodexObject();
}

bool FSceneSnapshot::IsOfClass(FLodexObject Object, ELodexClass Class) const
{
	const ELodexSnapshotKind Kind = Resolve(Object).Kind;
	switch (Class)
	{
		case ELodexClass::Actor:
			return Kind == ELodexSnapshotKind::Actor;
		case ELodexClass::WidgetTree:
			return Kind == ELodexSnapshotKind::WidgetTree;
		case ELodexClass::Widget:
			return Kind == ELodexSnapshotKind::Widget || Kind == ELodexSnapshotKind::UserWidget;
		case ELodexClass::UserWidget:
			return Kind == ELodexSnapshotKind::UserWidget;
		case ELodexClass::ActorComponent:
			return Kind == ELodexSnapshotKind::Component;
	}
	return false;
}

std::string FSceneSnapshot::GetName(FLodexObject Object) const
{
	return Resolve(Object).Name;
}

FLodexObject FSceneSnapshot::GetOuter(FLodexObject Object) const
{
	return FLodexObject(Resolve(Object).Outer);
}

FLodexObject FSceneSnapshot::GetAttachParent(FLodexObject Object) const
{
	return FLodexObject(Resolve(Object).AttachParent);
}

FLodexObject FSceneSnapshot::GetWidgetParent(FLodexObject Object) const
{
	return FLodexObject(Resolve(Object).WidgetParent);
}

FLodexObject FSceneSnapshot::GetRootWidget(FLodexObject Object) const
{
	return FLodexObject(Resolve(Object).RootWidget);
}

std::string FSceneSnapshot::GetActorGuid(FLodexObject Object) const
{
	return Resolve(Object).Guid;
}

bool FSceneSnapshot::IsEditorOnly(FLodexObject Object) const
{
	return Resolve(Object).bEditorOnly;
}

std::string FSceneSnapshot::GetEditorLabel(FLodexObject Object) const
{
	return Resolve(Object).Label;
}

namespace
{
	/** The level an object lies in: the outermost object, when it is a level; null otherwise. */
	const FSceneObject* SnapshotLevelOf(const FSceneObject& Object, std::size_t ObjectCount)
	{
		const FSceneObject* Top = &Object;
		for (std::size_t Step = 0; Top->Outer != nullptr && Step <= ObjectCount; ++Step)
		{
			Top = Top->Outer;
		}
		const bool bLevel = Top->Outer == nullptr &&
			(Top->ClassName == "Level" || (Top->Kind == ELodexSnapshotKind::Other && Top->Name == "PersistentLevel"));
		return bLevel ? Top : nullptr;
	}
}

std::string FSceneSnapshot::GetLevelName(FLodexObject Object) const
{
	const FSceneObject* Level = SnapshotLevelOf(Resolve(Object), Objects.size());
	if (Level == nullptr)
	{
		return std::string();
	}
	// The level's package: as read, or from its object path (`/Game/Maps/Sub.Sub:PersistentLevel`); a Level
	// Instance's level by the package the game loads it as, which tells one instance from another.
	return !Level->Package.empty() && Level->InstancedBy.empty() ? Level->Package
																 : Level->Id.substr(0, Level->Id.find_first_of(".:"));
}

bool FSceneSnapshot::IsInLevelStreamedOnDemand(FLodexObject Object) const
{
	const FSceneObject* Level = SnapshotLevelOf(Resolve(Object), Objects.size());
	return Level != nullptr && Level->bStreamedOnDemand;
}

ELodexPlacement FSceneSnapshot::GetPlacement(FLodexObject Object) const
{
	return Resolve(Object).Origin;
}

bool FSceneSnapshot::GetTags(FLodexObject Object, std::vector<std::string>& OutTags) const
{
	const FSceneObject& Scene = Resolve(Object);
	OutTags = Scene.Tags;
	return Scene.bHasTags;
}
