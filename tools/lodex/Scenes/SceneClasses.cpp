// Copyright Lodex contributors.
#include "SceneClasses.h"

#include "Cli/JsonErrors.h"

#include "LodexDebugger/Core/Explorer/LodexReflection.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <nlohmann/json.hpp>

#include <unordered_map>

namespace
{
	using FJson = nlohmann::json;

	/** "classes[2] (name 'Actor')": an element of an array, with its name when it has one. */
	std::string DescribeElement(const std::string& Array, std::size_t Index, const char* Key, const std::string& Value)
	{
		std::string Text = Array + "[" + std::to_string(Index) + "]";
		if (!Value.empty())
		{
			Text += std::string(" (") + Key + " '" + Value + "')";
		}
		return Text;
	}

	/** Reads a JSON array's elements one by one, with the path of each for messages. */
	class FReflectionReader
	{
	public:
		explicit FReflectionReader(std::string& InMessage)
			: Message(InMessage)
		{
		}

		bool Fail(const std::string& Where, const std::string& What)
		{
			Message = Where + ": " + What;
			return false;
		}

		/** An optional array field; absent or null gives an empty array. */
		bool ReadArray(const FJson& Owner, const char* Field, const std::string& Where, const FJson*& OutArray)
		{
			static const FJson Empty = FJson::array();
			OutArray = &Empty;
			const auto It = Owner.find(Field);
			if (It == Owner.end() || It->is_null())
			{
				return true;
			}
			if (!It->is_array())
			{
				return Fail(Where, std::string("field '") + Field + "' must be an array, found " + It->type_name());
			}
			OutArray = &*It;
			return true;
		}

		bool ReadString(
			const FJson& Owner, const char* Field, const std::string& Where, bool bRequired, std::string& OutValue)
		{
			const auto It = Owner.find(Field);
			if (It == Owner.end() || (!bRequired && It->is_null()))
			{
				return !bRequired || Fail(Where, std::string("missing field '") + Field + "'");
			}
			if (!It->is_string())
			{
				return Fail(Where, std::string("field '") + Field + "' must be a string, found " + It->type_name());
			}
			OutValue = It->get<std::string>();
			return CheckOneLine(Where, std::string("'") + Field + "'", OutValue);
		}

		/** Names and type texts end up in log lines and snippets: each is one line of text. */
		bool CheckOneLine(const std::string& Where, const std::string& Field, const std::string& Value)
		{
			const std::string ControlCharacter = LodexText::FindControlCharacter(Value);
			return ControlCharacter.empty() ||
				Fail(Where,
					"field " + Field + " must be one line of text: it holds the control character " + ControlCharacter);
		}

		bool ExpectObject(const FJson& Element, const std::string& Where)
		{
			return Element.is_object() || Fail(Where, std::string("expected an object, found ") + Element.type_name());
		}

		/** A property of a class (no flags) or of a function (with its flags). */
		bool ReadProperty(
			const FJson& Element, const std::string& Array, std::size_t Index, bool bWithFlags, FSceneProperty& Out)
		{
			const std::string Bare = DescribeElement(Array, Index, "name", "");
			if (!ExpectObject(Element, Bare) || !ReadString(Element, "name", Bare, true, Out.Name))
			{
				return false;
			}
			const std::string Where = DescribeElement(Array, Index, "name", Out.Name);
			if (!ReadString(Element, "type", Where, true, Out.Type))
			{
				return false;
			}
			if (!bWithFlags)
			{
				return true;
			}
			const FJson* Flags = nullptr;
			if (!ReadArray(Element, "flags", Where, Flags))
			{
				return false;
			}
			for (std::size_t FlagIndex = 0; FlagIndex < Flags->size(); ++FlagIndex)
			{
				const FJson& Flag = (*Flags)[FlagIndex];
				const std::string FlagWhere = Where + ": field 'flags'[" + std::to_string(FlagIndex) + "]";
				if (!Flag.is_string())
				{
					return Fail(FlagWhere, std::string("must be a string, found ") + Flag.type_name());
				}
				const std::string Name = Flag.get<std::string>();
				if (!CheckOneLine(Where, "'flags'[" + std::to_string(FlagIndex) + "]", Name))
				{
					return false;
				}
				if (Name == "parm")
				{
					Out.Flags |= LodexPropertyFlags::Parm;
				}
				else if (Name == "out")
				{
					Out.Flags |= LodexPropertyFlags::OutParm;
				}
				else if (Name == "return")
				{
					Out.Flags |= LodexPropertyFlags::ReturnParm;
				}
				else
				{
					return Fail(FlagWhere, "unknown flag '" + Name + "' (expected parm, out or return)");
				}
			}
			return true;
		}

		bool ReadClassProperties(const FJson& Array, const std::string& Where, FSceneClass& Class)
		{
			std::unordered_map<std::string, std::size_t> FirstIndex;
			for (std::size_t Index = 0; Index < Array.size(); ++Index)
			{
				FSceneProperty Property;
				if (!ReadProperty(Array[Index], Where + ": properties", Index, false, Property))
				{
					return false;
				}
				const auto Inserted = FirstIndex.emplace(Property.Name, Index);
				if (!Inserted.second)
				{
					return Fail(Where + ": " + DescribeElement("properties", Index, "name", Property.Name),
						"field 'name': duplicate name, first used by properties[" +
							std::to_string(Inserted.first->second) + "]");
				}
				Class.Properties.push_back(std::move(Property));
			}
			return true;
		}

		bool ReadFunctions(const FJson& Array, const std::string& Where, FSceneClass& Class)
		{
			std::unordered_map<std::string, std::size_t> FirstIndex;
			for (std::size_t Index = 0; Index < Array.size(); ++Index)
			{
				const FJson& Element = Array[Index];
				FSceneFunction Function;
				const std::string Bare = Where + ": " + DescribeElement("functions", Index, "name", "");
				if (!ExpectObject(Element, Bare) || !ReadString(Element, "name", Bare, true, Function.Name))
				{
					return false;
				}
				if (Function.Name.empty())
				{
					return Fail(Bare, "field 'name' must not be empty");
				}
				const std::string FunctionWhere =
					Where + ": " + DescribeElement("functions", Index, "name", Function.Name);
				const auto Inserted = FirstIndex.emplace(Function.Name, Index);
				if (!Inserted.second)
				{
					return Fail(FunctionWhere,
						"field 'name': duplicate name, first used by functions[" +
							std::to_string(Inserted.first->second) + "]");
				}
				const FJson* Properties = nullptr;
				if (!ReadArray(Element, "properties", FunctionWhere, Properties))
				{
					return false;
				}
				for (std::size_t PropertyIndex = 0; PropertyIndex < Properties->size(); ++PropertyIndex)
				{
					FSceneProperty Property;
					if (!ReadProperty((*Properties)[PropertyIndex], FunctionWhere + ": properties", PropertyIndex, true,
							Property))
					{
						return false;
					}
					Function.Properties.push_back(std::move(Property));
				}
				Class.Functions.push_back(std::move(Function));
			}
			return true;
		}

	private:
		std::string& Message;
	};

	/** "objects[3] (id 'door')", as the snapshot's other messages name objects. */
	std::string DescribeSceneObject(std::size_t Index, const std::string& Id)
	{
		return DescribeElement("objects", Index, "id", Id);
	}
}

bool ParseSceneReflection(const nlohmann::json& Root, const nlohmann::json& ObjectEntries,
	std::vector<FSceneClass>& OutClasses, std::vector<const FSceneClass*>& OutObjectClasses, std::string& OutMessage)
{
	FReflectionReader Reader(OutMessage);
	std::vector<FSceneClass> Classes;
	static const FJson NoClasses = FJson::array();
	const FJson* Entries = &NoClasses;
	const auto ClassesIt = Root.find("classes");
	if (ClassesIt != Root.end() && !ClassesIt->is_null())
	{
		if (!ClassesIt->is_array())
		{
			OutMessage = std::string("field 'classes' must be an array, found ") + ClassesIt->type_name();
			return false;
		}
		Entries = &*ClassesIt;
	}

	// First pass: names and members; supers are names until every class is known.
	Classes.resize(Entries->size());
	std::vector<std::string> SuperNames(Entries->size());
	std::vector<bool> bHasSuper(Entries->size(), false);
	std::unordered_map<std::string, std::size_t> IndexByName;
	for (std::size_t Index = 0; Index < Entries->size(); ++Index)
	{
		const FJson& Entry = (*Entries)[Index];
		FSceneClass& Class = Classes[Index];
		const std::string Bare = DescribeElement("classes", Index, "name", "");
		if (!Reader.ExpectObject(Entry, Bare) || !Reader.ReadString(Entry, "name", Bare, true, Class.Name))
		{
			return false;
		}
		if (Class.Name.empty())
		{
			return Reader.Fail(Bare, "field 'name' must not be empty");
		}
		const std::string Where = DescribeElement("classes", Index, "name", Class.Name);
		const auto Inserted = IndexByName.emplace(Class.Name, Index);
		if (!Inserted.second)
		{
			return Reader.Fail(Where,
				"field 'name': duplicate name, first used by classes[" + std::to_string(Inserted.first->second) + "]");
		}
		const auto SuperIt = Entry.find("super");
		if (SuperIt != Entry.end() && !SuperIt->is_null())
		{
			if (!SuperIt->is_string())
			{
				return Reader.Fail(Where,
					std::string("field 'super' must be the name of a class (a string), found ") + SuperIt->type_name());
			}
			SuperNames[Index] = SuperIt->get<std::string>();
			bHasSuper[Index] = true;
			if (!Reader.CheckOneLine(Where, "'super'", SuperNames[Index]))
			{
				return false;
			}
		}
		const FJson* Functions = nullptr;
		const FJson* Properties = nullptr;
		if (!Reader.ReadArray(Entry, "functions", Where, Functions) ||
			!Reader.ReadFunctions(*Functions, Where, Class) ||
			!Reader.ReadArray(Entry, "properties", Where, Properties) ||
			!Reader.ReadClassProperties(*Properties, Where, Class))
		{
			return false;
		}
	}

	// Second pass: super classes, which must exist and must not lead back to the class.
	for (std::size_t Index = 0; Index < Classes.size(); ++Index)
	{
		if (!bHasSuper[Index])
		{
			continue;
		}
		const std::string Where = DescribeElement("classes", Index, "name", Classes[Index].Name);
		const auto Found = IndexByName.find(SuperNames[Index]);
		if (Found == IndexByName.end())
		{
			return Reader.Fail(Where, "field 'super': no class has the name '" + SuperNames[Index] + "'");
		}
		Classes[Index].Super = &Classes[Found->second];
	}
	// Each class has one super, so every walk up ends at a root or runs into a loop. Each class is walked once: 0 not
	// seen, 1 on the current walk, 2 done; a loop is reported at its first class in the file.
	std::vector<std::uint8_t> WalkState(Classes.size(), 0);
	std::vector<bool> bOnLoop(Classes.size(), false);
	std::vector<std::size_t> Walk;
	const auto IndexOf = [&](const FSceneClass* Class)
	{
		return static_cast<std::size_t>(Class - Classes.data());
	};
	for (std::size_t Start = 0; Start < Classes.size(); ++Start)
	{
		Walk.clear();
		const FSceneClass* Class = &Classes[Start];
		for (; Class != nullptr && WalkState[IndexOf(Class)] == 0; Class = Class->Super)
		{
			WalkState[IndexOf(Class)] = 1;
			Walk.push_back(IndexOf(Class));
		}
		if (Class != nullptr && WalkState[IndexOf(Class)] == 1)
		{
			for (std::size_t Step = Walk.size(); Step-- > 0;)
			{
				bOnLoop[Walk[Step]] = true;
				if (Walk[Step] == IndexOf(Class))
				{
					break;
				}
			}
		}
		for (const std::size_t Index : Walk)
		{
			WalkState[Index] = 2;
		}
	}
	for (std::size_t Index = 0; Index < Classes.size(); ++Index)
	{
		if (!bOnLoop[Index])
		{
			continue;
		}
		std::string Chain = Classes[Index].Name;
		const FSceneClass* Super = Classes[Index].Super;
		for (; Super != &Classes[Index]; Super = Super->Super)
		{
			Chain += " -> " + Super->Name;
		}
		Chain += " -> " + Super->Name;
		return Reader.Fail(DescribeElement("classes", Index, "name", Classes[Index].Name),
			"field 'super': the class derives from itself (" + Chain + ")");
	}

	// Each object's class.
	std::vector<const FSceneClass*> ObjectClasses(ObjectEntries.size(), nullptr);
	for (std::size_t Index = 0; Index < ObjectEntries.size(); ++Index)
	{
		const FJson& Entry = ObjectEntries[Index];
		const auto It = Entry.find("class");
		if (It == Entry.end() || It->is_null())
		{
			continue;
		}
		const auto IdIt = Entry.find("id");
		const std::string Where =
			DescribeSceneObject(Index, IdIt != Entry.end() && IdIt->is_string() ? IdIt->get<std::string>() : "");
		if (!It->is_string())
		{
			return Reader.Fail(
				Where, std::string("field 'class' must be the name of a class (a string), found ") + It->type_name());
		}
		const std::string Name = It->get<std::string>();
		if (!Reader.CheckOneLine(Where, "'class'", Name))
		{
			return false;
		}
		const auto Found = IndexByName.find(Name);
		if (Found == IndexByName.end())
		{
			return Reader.Fail(Where, "field 'class': no class has the name '" + Name + "'");
		}
		ObjectClasses[Index] = &Classes[Found->second];
	}

	// Moving the vector keeps its elements where they are, so the pointers stay good.
	OutClasses = std::move(Classes);
	OutObjectClasses = std::move(ObjectClasses);
	return true;
}
