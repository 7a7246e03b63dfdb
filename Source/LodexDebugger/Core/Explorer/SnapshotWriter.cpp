// Copyright Lodex contributors.
#include "SnapshotWriter.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <cstdint>
#include <unordered_map>
#include <unordered_set>

namespace SnapshotWriterPrivate
{
	const char* KindOf(const ILodexObjectGraph& Graph, FLodexObject Object)
	{
		if (Graph.IsOfClass(Object, ELodexClass::Actor))
		{
			return "actor";
		}
		if (Graph.IsOfClass(Object, ELodexClass::WidgetTree))
		{
			return "widgetTree";
		}
		if (Graph.IsOfClass(Object, ELodexClass::UserWidget))
		{
			return "userWidget";
		}
		if (Graph.IsOfClass(Object, ELodexClass::Widget))
		{
			return "widget";
		}
		if (Graph.IsOfClass(Object, ELodexClass::ActorComponent))
		{
			return "component";
		}
		return "other";
	}

	/** Unique texts made from names: the name itself, else the name with "#2", "#3", ... */
	class FUniqueNames
	{
	public:
		std::string Make(const std::string& Name)
		{
			const std::string Base = Name.empty() ? std::string("object") : Name;
			std::string Candidate = Base;
			for (int Suffix = 2; Used.count(Candidate) > 0; ++Suffix)
			{
				Candidate = Base + "#" + LodexText::FormatInt(Suffix);
			}
			Used.insert(Candidate);
			return Candidate;
		}

	private:
		std::unordered_set<std::string> Used;
	};

	void AppendField(std::string& Out, const char* Name, const std::string& Value)
	{
		Out += ", ";
		LodexSnapshot::AppendJsonString(Out, Name);
		Out += ": ";
		LodexSnapshot::AppendJsonString(Out, Value);
	}

	void AppendFlags(std::string& Out, std::uint64_t Flags)
	{
		struct FFlagName
		{
			std::uint64_t Flag;
			const char* Name;
		};
		static const FFlagName FlagNames[] = {
			{LodexPropertyFlags::Parm, "parm"},
			{LodexPropertyFlags::OutParm, "out"},
			{LodexPropertyFlags::ReturnParm, "return"},
		};
		Out += ", \"flags\": [";
		bool bFirst = true;
		for (const FFlagName& Entry : FlagNames)
		{
			if ((Flags & Entry.Flag) != 0)
			{
				Out += bFirst ? "\"" : ", \"";
				Out += Entry.Name;
				Out += "\"";
				bFirst = false;
			}
		}
		Out += "]";
	}

	void AppendClass(std::string& Out, const ILodexReflection& Reflection, FLodexClass Class, const std::string& Name,
		const std::string* SuperName)
	{
		Out += "    {\"name\": ";
		LodexSnapshot::AppendJsonString(Out, Name);
		if (SuperName != nullptr)
		{
			AppendField(Out, "super", *SuperName);
		}

		std::vector<FLodexFunction> Functions;
		Reflection.GetOwnFunctions(Class, Functions);
		Out += ",\n      \"functions\": [";
		for (std::size_t Index = 0; Index < Functions.size(); ++Index)
		{
			Out += Index == 0 ? "\n        {\"name\": " : ",\n        {\"name\": ";
			LodexSnapshot::AppendJsonString(Out, Reflection.GetFunctionName(Functions[Index]));
			Out += ", \"properties\": [";
			std::vector<FLodexProperty> Properties;
			Reflection.GetFunctionProperties(Functions[Index], Properties);
			for (std::size_t PropertyIndex = 0; PropertyIndex < Properties.size(); ++PropertyIndex)
			{
				const FLodexProperty Property = Properties[PropertyIndex];
				Out += PropertyIndex == 0 ? "{\"name\": " : ", {\"name\": ";
				LodexSnapshot::AppendJsonString(Out, Reflection.GetPropertyName(Property));
				AppendField(Out, "type", Reflection.GetPropertyType(Property));
				AppendFlags(Out, Reflection.GetPropertyFlags(Property));
				Out += "}";
			}
			Out += "]}";
		}
		Out += Functions.empty() ? "]" : "\n      ]";

		std::vector<FLodexProperty> Properties;
		Reflection.GetOwnProperties(Class, Properties);
		Out += ",\n      \"properties\": [";
		for (std::size_t Index = 0; Index < Properties.size(); ++Index)
		{
			Out += Index == 0 ? "\n        {\"name\": " : ",\n        {\"name\": ";
			LodexSnapshot::AppendJsonString(Out, Reflection.GetPropertyName(Properties[Index]));
			AppendField(Out, "type", Reflection.GetPropertyType(Properties[Index]));
			Out += "}";
		}
		Out += Properties.empty() ? "]}" : "\n      ]}";
	}
}

namespace LodexSnapshot
{
	void AppendJsonString(std::string& Out, const std::string& Text)
	{
		static const char HexDigits[] = "0123456789abcdef";
		Out += '"';
		std::size_t Index = 0;
		while (Index < Text.size())
		{
			const unsigned char Char = static_cast<unsigned char>(Text[Index]);
			switch (Char)
			{
				case '"':
					Out += "\\\"";
					++Index;
					continue;
				case '\\':
					Out += "\\\\";
					++Index;
					continue;
				case '\n':
					Out += "\\n";
					++Index;
					continue;
				case '\r':
					Out += "\\r";
					++Index;
					continue;
				case '\t':
					Out += "\\t";
					++Index;
					continue;
				default:
					break;
			}
			if (Char < 0x20)
			{
				Out += "\\u00";
				Out += HexDigits[Char >> 4];
				Out += HexDigits[Char & 0x0F];
				++Index;
				continue;
			}
			std::uint32_t CodePoint = 0;
			const std::size_t Length = LodexText::Utf8SequenceLength(Text, Index, CodePoint);
			if (Length == 0)
			{
				Out += "\xEF\xBF\xBD";
				++Index;
				continue;
			}
			Out.append(Text, Index, Length);
			Index += Length;
		}
		Out += '"';
	}

	std::string Write(const ILodexObjectGraph& Graph, const ILodexReflection& Reflection,
		const std::vector<FLodexObject>& Objects, FLodexSnapshotCounts* OutCounts)
	{
		using namespace SnapshotWriterPrivate;

		// The objects given, then whatever they refer to, each once.
		std::vector<FLodexObject> Written;
		std::unordered_map<const void*, std::size_t> IndexOf;
		auto AddObject = [&](FLodexObject Object)
		{
			if (Object && IndexOf.emplace(Object.Ptr, Written.size()).second)
			{
				Written.push_back(Object);
			}
		};
		for (const FLodexObject Object : Objects)
		{
			AddObject(Object);
		}
		for (std::size_t Index = 0; Index < Written.size(); ++Index)
		{
			const FLodexObject Object = Written[Index];
			AddObject(Graph.GetOuter(Object));
			AddObject(Graph.GetAttachParent(Object));
			AddObject(Graph.GetWidgetParent(Object));
			AddObject(Graph.GetRootWidget(Object));
		}

		FUniqueNames ObjectIds;
		std::vector<std::string> Ids;
		Ids.reserve(Written.size());
		for (const FLodexObject Object : Written)
		{
			Ids.push_back(ObjectIds.Make(Graph.GetName(Object)));
		}

		// Every class met, each object's class first and then its super classes.
		FUniqueNames ClassNameMaker;
		std::vector<FLodexClass> Classes;
		std::vector<std::string> ClassNames;
		std::unordered_map<const void*, std::size_t> ClassIndexOf;
		auto AddClass = [&](FLodexClass Class)
		{
			for (; Class; Class = Reflection.GetSuperClass(Class))
			{
				if (!ClassIndexOf.emplace(Class.Ptr, Classes.size()).second)
				{
					return;
				}
				Classes.push_back(Class);
				ClassNames.push_back(ClassNameMaker.Make(Reflection.GetClassName(Class)));
			}
		};
		std::vector<FLodexClass> ObjectClasses;
		ObjectClasses.reserve(Written.size());
		for (const FLodexObject Object : Written)
		{
			const FLodexClass Class = Reflection.GetClass(Object);
			ObjectClasses.push_back(Class);
			AddClass(Class);
		}

		std::string Out = "{\n  \"objects\": [";
		for (std::size_t Index = 0; Index < Written.size(); ++Index)
		{
			const FLodexObject Object = Written[Index];
			Out += Index == 0 ? "\n    {\"id\": " : ",\n    {\"id\": ";
			AppendJsonString(Out, Ids[Index]);
			AppendField(Out, "kind", KindOf(Graph, Object));
			AppendField(Out, "name", Graph.GetName(Object));
			struct FReference
			{
				const char* Field;
				FLodexObject Target;
			};
			const FReference References[] = {
				{"outer", Graph.GetOuter(Object)},
				{"attachParent", Graph.GetAttachParent(Object)},
				{"widgetParent", Graph.GetWidgetParent(Object)},
				{"rootWidget", Graph.GetRootWidget(Object)},
			};
			for (const FReference& Reference : References)
			{
				if (Reference.Target)
				{
					AppendField(Out, Reference.Field, Ids[IndexOf[Reference.Target.Ptr]]);
				}
			}
			std::vector<std::string> Tags;
			if (Graph.GetTags(Object, Tags))
			{
				Out += ", \"tags\": [";
				for (std::size_t TagIndex = 0; TagIndex < Tags.size(); ++TagIndex)
				{
					Out += TagIndex == 0 ? "" : ", ";
					AppendJsonString(Out, Tags[TagIndex]);
				}
				Out += "]";
			}
			const ELodexPlacement Placement = Graph.GetPlacement(Object);
			if (Placement != ELodexPlacement::Unknown)
			{
				Out += Placement == ELodexPlacement::Placed ? ", \"placed\": true" : ", \"placed\": false";
			}
			const std::string Guid = Graph.GetActorGuid(Object);
			if (!Guid.empty())
			{
				AppendField(Out, "guid", Guid);
			}
			if (ObjectClasses[Index])
			{
				AppendField(Out, "class", ClassNames[ClassIndexOf[ObjectClasses[Index].Ptr]]);
			}
			Out += "}";
		}
		Out += Written.empty() ? "],\n" : "\n  ],\n";

		Out += "  \"classes\": [";
		for (std::size_t Index = 0; Index < Classes.size(); ++Index)
		{
			Out += Index == 0 ? "\n" : ",\n";
			const FLodexClass Super = Reflection.GetSuperClass(Classes[Index]);
			const std::string* SuperName = Super ? &ClassNames[ClassIndexOf[Super.Ptr]] : nullptr;
			AppendClass(Out, Reflection, Classes[Index], ClassNames[Index], SuperName);
		}
		Out += Classes.empty() ? "]\n}\n" : "\n  ]\n}\n";

		if (OutCounts != nullptr)
		{
			OutCounts->Objects = Written.size();
			OutCounts->Classes = Classes.size();
		}
		return Out;
	}

	void StartExport(ILodexPullDownCommandHost& Host)
	{
		StartLodexPullDownCommand(Host, GetLodexSnapshotExport().Command);
	}

	void StopExport(ILodexPullDownCommandHost& Host)
	{
		StopLodexPullDownCommand(Host, GetLodexSnapshotExport().Command);
	}

	FExportRequest ParseConsoleArguments(const std::vector<std::string>& Arguments)
	{
		// The console splits its input at blanks; a path with blanks arrives in pieces and is put back together.
		std::string File = LodexText::Join(Arguments, " ");
		if (File.size() >= 2 && File.front() == '"' && File.back() == '"')
		{
			File = File.substr(1, File.size() - 2);
		}
		FExportRequest Request;
		Request.bUseDefaultFile = File.empty();
		Request.File = File;
		return Request;
	}

	std::string MakeDefaultFileName(const std::string& WorldName)
	{
		std::string Name;
		for (const char Char : WorldName)
		{
			const bool bUnfit = static_cast<unsigned char>(Char) < 0x20 || Char == '<' || Char == '>' || Char == ':' ||
				Char == '"' || Char == '/' || Char == '\\' || Char == '|' || Char == '?' || Char == '*';
			Name += bUnfit ? '_' : Char;
		}
		if (Name.empty())
		{
			Name = "World";
		}
		return Name + GetLodexSnapshotExport().FileExtension;
	}

	std::string FormatWrittenMessage(const std::string& Path, const FLodexSnapshotCounts& Counts)
	{
		return "Scene snapshot written to " + Path + ": " +
			LodexText::FormatInt(static_cast<std::int64_t>(Counts.Objects)) + " objects, " +
			LodexText::FormatInt(static_cast<std::int64_t>(Counts.Classes)) + " classes";
	}

	std::string FormatFailedMessage(const std::string& Path, const std::string& Reason)
	{
		return "Could not write the scene snapshot " + Path + ": " + Reason;
	}
}

const FLodexSnapshotExportInfo& GetLodexSnapshotExport()
{
	static const FLodexSnapshotExportInfo Export{
		{ELodexPullDownCommand::ExportSnapshot, "Lodex.ExportSnapshot",
			"Writes the editor world (the play-in-editor world while one runs) with the reflection of its classes as a "
			"scene snapshot for the lodex tool. Lodex.ExportSnapshot [FILE]; without FILE: Saved/Lodex/<world>.json",
			"DETAILS_TOOL", ELodexExtensionPosition::After, "Export Scene Snapshot",
			"Write the level, with the reflection of its classes, as a scene snapshot for the lodex tool"},
		"Lodex",
		".json",
		".tmp",
	};
	return Export;
}
