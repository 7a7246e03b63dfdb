// Copyright Lodex contributors.
#include "DescriptorText.h"

#include "LodexDebugger/Core/Shell/LodexShell.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <nlohmann/json.hpp>

#include <cstddef>

namespace
{
	/** Where the text's lines begin and what indents them. */
	class FJsonTextWalker
	{
	public:
		explicit FJsonTextWalker(const std::string& InText)
			: Text(InText)
		{
		}

		/** The blanks before At on its line when nothing else stands before it there; false otherwise. */
		bool LeadsItsLine(std::size_t At, std::string& OutIndent) const
		{
			std::size_t Start = At;
			while (Start > 0 && (Text[Start - 1] == ' ' || Text[Start - 1] == '\t'))
			{
				--Start;
			}
			if (Start > 0 && Text[Start - 1] != '\n')
			{
				return false;
			}
			OutIndent = Text.substr(Start, At - Start);
			return true;
		}

		const std::string& Text;
	};

	std::string QuoteJson(const std::string& Value)
	{
		return nlohmann::json(Value).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
	}

	/** The entry on one line, or on lines of its own with the given indent and the indent of its fields. */
	std::string RenderEntry(
		const FJsonStringFields& Entry, const std::string* Indent, const std::string& Unit, const std::string& NewLine)
	{
		std::string Out = "{";
		for (std::size_t Index = 0; Index < Entry.size(); ++Index)
		{
			if (Indent)
			{
				Out += NewLine + *Indent + Unit;
			}
			else if (Index > 0)
			{
				Out += " ";
			}
			Out += QuoteJson(Entry[Index].first) + ": " + QuoteJson(Entry[Index].second);
			Out += Index + 1 < Entry.size() ? "," : "";
		}
		Out += Indent ? NewLine + *Indent + "}" : "}";
		return Out;
	}
}

std::string AddToDescriptorModules(
	const std::string& Text, const FEngineJsonValue& Descriptor, const FJsonStringFields& Entry)
{
	const FJsonTextWalker Walker(Text);
	const std::string NewLine = Text.find("\r\n") != std::string::npos ? "\r\n" : "\n";
	const bool bMultiLine = Text.find('\n') != std::string::npos;

	const std::size_t ObjectAt = Descriptor.Begin;
	const std::size_t ObjectEnd = Descriptor.End - 1; // the closing brace
	const std::vector<FEngineJsonMember>& Members = Descriptor.Members;
	const FEngineJsonMember* Modules = Descriptor.FindMember("Modules");

	std::string Result = Text;
	if (Modules != nullptr)
	{
		std::string KeyIndent;
		const bool bKeyLeads = Walker.LeadsItsLine(Modules->KeyAt, KeyIndent);
		// The list's last element, after which the entry goes (before a comma that ends the list, if any).
		const FEngineJsonValue& List = Modules->Value;
		const std::size_t ValueAt = List.Begin;
		const std::size_t ListEnd = List.End - 1; // the closing bracket
		const std::size_t LastAt = List.Members.empty() ? std::string::npos : List.Members.back().Value.Begin;
		const std::size_t LastEnd = List.Members.empty() ? std::string::npos : List.Members.back().Value.End;
		if (LastAt != std::string::npos)
		{
			std::string Indent;
			if (Walker.LeadsItsLine(LastAt, Indent))
			{
				const std::string Unit =
					bKeyLeads && Indent.size() > KeyIndent.size() && Indent.compare(0, KeyIndent.size(), KeyIndent) == 0
					? Indent.substr(KeyIndent.size())
					: std::string("\t");
				Result.insert(LastEnd, "," + NewLine + Indent + RenderEntry(Entry, &Indent, Unit, NewLine));
			}
			else
			{
				Result.insert(LastEnd, ", " + RenderEntry(Entry, nullptr, "", NewLine));
			}
		}
		else if (bKeyLeads && bMultiLine)
		{
			const std::string Unit = KeyIndent.empty() ? std::string("\t") : KeyIndent;
			const std::string Indent = KeyIndent + Unit;
			Result.replace(ValueAt + 1, ListEnd - ValueAt - 1,
				NewLine + Indent + RenderEntry(Entry, &Indent, Unit, NewLine) + NewLine + KeyIndent);
		}
		else
		{
			Result.replace(ValueAt + 1, ListEnd - ValueAt - 1, RenderEntry(Entry, nullptr, "", NewLine));
		}
		return Result;
	}

	// No "Modules": a new member after the last one.
	if (!Members.empty())
	{
		const FEngineJsonMember& Last = Members.back();
		std::string Indent;
		if (Walker.LeadsItsLine(Last.KeyAt, Indent))
		{
			const std::string Unit = Indent.empty() ? std::string("\t") : Indent;
			const std::string EntryIndent = Indent + Unit;
			Result.insert(Last.Value.End,
				"," + NewLine + Indent + "\"Modules\": [" + NewLine + EntryIndent +
					RenderEntry(Entry, &EntryIndent, Unit, NewLine) + NewLine + Indent + "]");
		}
		else
		{
			Result.insert(Last.Value.End, ", \"Modules\": [" + RenderEntry(Entry, nullptr, "", NewLine) + "]");
		}
		return Result;
	}
	if (bMultiLine)
	{
		const std::string Indent = "\t\t";
		Result.replace(ObjectAt + 1, ObjectEnd - ObjectAt - 1,
			NewLine + "\t\"Modules\": [" + NewLine + Indent + RenderEntry(Entry, &Indent, "\t", NewLine) + NewLine +
				"\t]" + NewLine);
	}
	else
	{
		Result.replace(
			ObjectAt + 1, ObjectEnd - ObjectAt - 1, "\"Modules\": [" + RenderEntry(Entry, nullptr, "", NewLine) + "]");
	}
	return Result;
}

const FJsonStringFields& GetLodexModuleEntry()
{
	static const FJsonStringFields Entry{
		{"Name", LodexModuleName}, {"Type", "Editor"}, {"LoadingPhase", "PostEngineInit"}};
	return Entry;
}

bool PlanDescriptorUpdate(
	const std::string& Text, const std::string& SourceName, FDescriptorUpdate& Out, std::string& OutError)
{
	Out = FDescriptorUpdate();
	FEngineJsonValue Descriptor;
	if (!ReadEngineJson(Text, SourceName, Descriptor, OutError))
	{
		return false;
	}
	if (Descriptor.Kind != FEngineJsonValue::EKind::Object)
	{
		OutError = SourceName + ": the descriptor is a JSON " + Descriptor.KindName() + ", not an object";
		return false;
	}
	// The engine finds fields by their names ignoring case, the last of a name counting, and compares module
	// names and types ignoring case too.
	const FEngineJsonMember* Modules = Descriptor.FindMember("Modules");
	if (Modules != nullptr && Modules->Value.Kind != FEngineJsonValue::EKind::Array)
	{
		OutError =
			SourceName + ": " + QuoteJson(Modules->Key) + " is a JSON " + Modules->Value.KindName() + ", not a list";
		return false;
	}
	for (const FEngineJsonMember& Module :
		Modules != nullptr ? Modules->Value.Members : std::vector<FEngineJsonMember>())
	{
		const FEngineJsonMember* Name = Module.Value.FindMember("Name");
		if (Name == nullptr || Name->Value.Kind != FEngineJsonValue::EKind::String ||
			!LodexText::EqualsIgnoreCase(Name->Value.Text, LodexModuleName))
		{
			continue;
		}
		const FEngineJsonMember* Type = Module.Value.FindMember("Type");
		const bool bEditor = Type != nullptr && Type->Value.Kind == FEngineJsonValue::EKind::String &&
			LodexText::EqualsIgnoreCase(Type->Value.Text, "Editor");
		if (!bEditor || Name->Value.Text != LodexModuleName)
		{
			const std::string TypeShown = Type == nullptr             ? std::string("null")
				: Type->Value.Kind == FEngineJsonValue::EKind::String ? QuoteJson(Type->Value.Text)
				: Type->Value.Kind == FEngineJsonValue::EKind::Object ||
					Type->Value.Kind == FEngineJsonValue::EKind::Array
				? std::string("a JSON ") + Type->Value.KindName()
				: Text.substr(Type->Value.Begin, Type->Value.End - Type->Value.Begin);
			Out.ExistingEntryNote = "note: " + SourceName + " already lists " + QuoteJson(Name->Value.Text) +
				" with Type " + TypeShown + "; it is left as it is";
		}
		return true;
	}
	Out.NewText = AddToDescriptorModules(Text, Descriptor, GetLodexModuleEntry());
	return true;
}
