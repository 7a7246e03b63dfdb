// Copyright Lodex contributors.
#include "SnapshotWriter.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <unordered_map>
#include <unordered_set>

namespace SnapshotWriterPrivate
{
	ELodexSnapshotKind KindOf(const ILodexObjectGraph& Graph, FLodexObject Object)
	{
		if (Graph.IsOfClass(Object, ELodexClass::Actor))
		{
			return ELodexSnapshotKind::Actor;
		}
		if (Graph.IsOfClass(Object, ELodexClass::WidgetTree))
		{
			return ELodexSnapshotKind::WidgetTree;
		}
		if (Graph.IsOfClass(Object, ELodexClass::UserWidget))
		{
			return ELodexSnapshotKind::UserWidget;
		}
		if (Graph.IsOfClass(Object, ELodexClass::Widget))
		{
			return ELodexSnapshotKind::Widget;
		}
		if (Graph.IsOfClass(Object, ELodexClass::ActorComponent))
		{
			return ELodexSnapshotKind::Component;
		}
		return ELodexSnapshotKind::Other;
	}

	/** How the objects of a snapshot are laid out (see LodexSnapshot::Write and WriteObjects). */
	enum class ELayout : std::uint8_t
	{
		/** Each object on a line of its own, its fields separated by ", ": the editor's export. */
		ObjectPerLine,
		/** Each field and each array element on a line of its own, indented one blank a level: `lodex level`. */
		ValuePerLine,
	};

	/**
	 * At Text[Index], a byte of 0x80 or more: the length of the well-formed UTF-8 sequence there (bOutWellFormed),
	 * or else of its ill-formed part: the bytes before the first one that cannot continue it, at least one.
	 */
	std::size_t MeasureUtf8Sequence(const std::string& Text, std::size_t Index, bool& bOutWellFormed)
	{
		const unsigned char Lead = static_cast<unsigned char>(Text[Index]);
		std::size_t Length = 0;
		unsigned char Low = 0x80;
		unsigned char High = 0xBF;
		if (Lead >= 0xC2 && Lead <= 0xDF)
		{
			Length = 2;
		}
		else if (Lead >= 0xE0 && Lead <= 0xEF)
		{
			Length = 3;
			Low = Lead == 0xE0 ? 0xA0 : 0x80; // no overlong form
			High = Lead == 0xED ? 0x9F : 0xBF; // no surrogate
		}
		else if (Lead >= 0xF0 && Lead <= 0xF4)
		{
			Length = 4;
			Low = Lead == 0xF0 ? 0x90 : 0x80; // no overlong form
			High = Lead == 0xF4 ? 0x8F : 0xBF; // nothing past U+10FFFF
		}
		else
		{
			bOutWellFormed = false;
			return 1;
		}
		std::size_t Read = 1;
		for (; Read < Length && Index + Read < Text.size(); ++Read)
		{
			const unsigned char Next = static_cast<unsigned char>(Text[Index + Read]);
			if (Next < (Read == 1 ? Low : 0x80) || Next > (Read == 1 ? High : 0xBF))
			{
				break;
			}
		}
		bOutWellFormed = Read == Length;
		return Read;
	}

	/**
	 * Appends the text as a JSON string literal, quotes included, as Layout writes text: ObjectPerLine with one U+FFFD
	 * for each byte that is not part of well-formed UTF-8; ValuePerLine with the short escapes `\b` and `\f` too and
	 * one U+FFFD for each ill-formed part of a sequence (see WriteObjects).
	 */
	void AppendJsonText(std::string& Out, const std::string& Text, ELayout Layout)
	{
		static const char HexDigits[] = "0123456789abcdef";
		const bool bValuePerLine = Layout == ELayout::ValuePerLine;
		Out += '"';
		std::size_t Index = 0;
		while (Index < Text.size())
		{
			const unsigned char Char = static_cast<unsigned char>(Text[Index]);
			if (Char >= 0x80)
			{
				bool bWellFormed = false;
				std::uint32_t CodePoint = 0;
				const std::size_t Length = bValuePerLine ? MeasureUtf8Sequence(Text, Index, bWellFormed)
														 : LodexText::Utf8SequenceLength(Text, Index, CodePoint);
				bWellFormed = bValuePerLine ? bWellFormed : Length != 0;
				if (bWellFormed)
				{
					Out.append(Text, Index, Length);
				}
				else
				{
					Out += "\xEF\xBF\xBD";
				}
				Index += Length == 0 ? 1 : Length;
				continue;
			}
			++Index;
			const char* Escape = Char == '"'    ? "\\\""
				: Char == '\\'                  ? "\\\\"
				: Char == '\n'                  ? "\\n"
				: Char == '\r'                  ? "\\r"
				: Char == '\t'                  ? "\\t"
				: Char == '\b' && bValuePerLine ? "\\b"
				: Char == '\f' && bValuePerLine ? "\\f"
												: nullptr;
			if (Escape != nullptr)
			{
				Out += Escape;
			}
			else if (Char < 0x20)
			{
				Out += "\\u00";
				Out += HexDigits[Char >> 4];
				Out += HexDigits[Char & 0x0F];
			}
			else
			{
				Out += static_cast<char>(Char);
			}
		}
		Out += '"';
	}

	/** A number with all the digits a double needs to read back the same; `null` for one that is not finite. */
	void AppendNumberPrinted(std::string& Out, double Value)
	{
		if (!std::isfinite(Value))
		{
			Out += "null";
			return;
		}
		char Buffer[32];
		std::snprintf(Buffer, sizeof(Buffer), "%.17g", Value);
		Out += Buffer;
	}

	/** The fields of one object, in one layout: the object at two levels of nesting, its arrays at three. */
	class FObjectText
	{
	public:
		FObjectText(std::string& InOut, ELayout InLayout, FLodexAppendNumber InAppendNumber)
			: Out(InOut)
			, Layout(InLayout)
			, AppendNumber(InAppendNumber != nullptr ? InAppendNumber : &AppendNumberPrinted)
		{
			Out += "{";
		}

		void String(const char* Name, const std::string& Value)
		{
			Key(Name);
			Text(Value);
		}

		void Bool(const char* Name, bool bValue)
		{
			Key(Name);
			Out += bValue ? "true" : "false";
		}

		void Strings(const char* Name, const std::vector<std::string>& Values)
		{
			Key(Name);
			Out += "[";
			for (std::size_t Index = 0; Index < Values.size(); ++Index)
			{
				Element(Index);
				Text(Values[Index]);
			}
			EndArray(Values.size());
		}

		void Numbers(const char* Name, const double* Values, std::size_t Count)
		{
			Key(Name);
			Out += "[";
			for (std::size_t Index = 0; Index < Count; ++Index)
			{
				Element(Index);
				AppendNumber(Out, Values[Index]);
			}
			EndArray(Count);
		}

		void End() { Out += Layout == ELayout::ObjectPerLine ? "}" : "\n  }"; }

	private:
		void Key(const char* Name)
		{
			if (Layout == ELayout::ObjectPerLine)
			{
				Out += bFirst ? "" : ", ";
			}
			else
			{
				Out += bFirst ? "\n   " : ",\n   ";
			}
			bFirst = false;
			Text(Name);
			Out += ": ";
		}

		void Element(std::size_t Index)
		{
			if (Layout == ELayout::ObjectPerLine)
			{
				Out += Index == 0 ? "" : ", ";
			}
			else
			{
				Out += Index == 0 ? "\n    " : ",\n    ";
			}
		}

		void EndArray(std::size_t Count) { Out += Layout == ELayout::ObjectPerLine || Count == 0 ? "]" : "\n   ]"; }

		void Text(const std::string& Value) { AppendJsonText(Out, Value, Layout); }

		std::string& Out;
		ELayout Layout;
		FLodexAppendNumber AppendNumber;
		bool bFirst = true;
	};

	/** Appends one object: every field it has, in the order snapshots write them. */
	void AppendObject(std::string& Out, const std::vector<FLodexSnapshotObject>& Objects, std::size_t Index,
		ELayout Layout, FLodexAppendNumber AppendNumber)
	{
		const FLodexSnapshotObject& Object = Objects[Index];
		FObjectText Text(Out, Layout, AppendNumber);
		Text.String("id", Object.Id);
		Text.String("kind", LodexSnapshot::GetKindName(Object.Kind));
		Text.String("name", Object.Name);
		struct FReference
		{
			const char* Field;
			std::size_t Target;
		};
		const FReference References[] = {
			{"outer", Object.Outer},
			{"attachParent", Object.AttachParent},
			{"widgetParent", Object.WidgetParent},
			{"rootWidget", Object.RootWidget},
		};
		for (const FReference& Reference : References)
		{
			if (Reference.Target != FLodexSnapshotObject::NoObject)
			{
				Text.String(Reference.Field, Objects[Reference.Target].Id);
			}
		}
		if (Object.Tags != nullptr)
		{
			Text.Strings("tags", *Object.Tags);
		}
		static const FLodexSavedObject Nothing;
		const FLodexSavedObject& Saved = Object.Saved != nullptr ? *Object.Saved : Nothing;
		if (!Saved.ClassName.empty())
		{
			Text.String("className", Saved.ClassName);
		}
		if (!Saved.Label.empty())
		{
			Text.String("label", Saved.Label);
		}
		if (Object.Placement != ELodexPlacement::Unknown)
		{
			Text.Bool("placed", Object.Placement == ELodexPlacement::Placed);
		}
		if (!Saved.Guid.empty())
		{
			Text.String("guid", Saved.Guid);
		}
		if (Saved.bHasLocation)
		{
			Text.Numbers("location", Saved.Location, 3);
		}
		if (Saved.bEditorOnly)
		{
			Text.Bool("editorOnly", true);
		}
		if (Object.bStreamedOnDemand)
		{
			Text.Bool("streamedOnDemand", true);
		}
		if (!Object.InstancedBy.empty())
		{
			Text.String("instancedBy", Object.InstancedBy);
		}
		if (!Object.Package.empty())
		{
			Text.String("package", Object.Package);
		}
		if (!Object.Class.empty())
		{
			Text.String("class", Object.Class);
		}
		Text.End();
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
		SnapshotWriterPrivate::AppendJsonText(Out, Text, SnapshotWriterPrivate::ELayout::ObjectPerLine);
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

		std::vector<FLodexSnapshotObject> Records(Written.size());
		std::vector<std::vector<std::string>> Tags(Written.size());
		std::vector<FLodexSavedObject> Saved(Written.size());
		auto IndexOrNone = [&](FLodexObject Target)
		{
			return Target ? IndexOf[Target.Ptr] : FLodexSnapshotObject::NoObject;
		};
		for (std::size_t Index = 0; Index < Written.size(); ++Index)
		{
			const FLodexObject Object = Written[Index];
			FLodexSnapshotObject& Record = Records[Index];
			Record.Id = Ids[Index];
			Record.Kind = KindOf(Graph, Object);
			Record.Name = Graph.GetName(Object);
			Record.Outer = IndexOrNone(Graph.GetOuter(Object));
			Record.AttachParent = IndexOrNone(Graph.GetAttachParent(Object));
			Record.WidgetParent = IndexOrNone(Graph.GetWidgetParent(Object));
			Record.RootWidget = IndexOrNone(Graph.GetRootWidget(Object));
			Record.Tags = Graph.GetTags(Object, Tags[Index]) ? &Tags[Index] : nullptr;
			Record.Placement = Graph.GetPlacement(Object);
			Saved[Index].Guid = Graph.GetActorGuid(Object);
			Record.Saved = &Saved[Index];
			if (ObjectClasses[Index])
			{
				Record.Class = ClassNames[ClassIndexOf[ObjectClasses[Index].Ptr]];
			}
		}

		std::string Out = "{\n  \"objects\": [";
		for (std::size_t Index = 0; Index < Records.size(); ++Index)
		{
			Out += Index == 0 ? "\n    " : ",\n    ";
			AppendObject(Out, Records, Index, ELayout::ObjectPerLine, nullptr);
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

	std::string WriteObjects(const std::vector<FLodexSnapshotObject>& Objects, FLodexAppendNumber AppendNumber)
	{
		using namespace SnapshotWriterPrivate;
		std::string Out = "{\n \"objects\": [";
		for (std::size_t Index = 0; Index < Objects.size(); ++Index)
		{
			Out += Index == 0 ? "\n  " : ",\n  ";
			AppendObject(Out, Objects, Index, ELayout::ValuePerLine, AppendNumber);
		}
		Out += Objects.empty() ? "]\n}\n" : "\n ]\n}\n";
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
