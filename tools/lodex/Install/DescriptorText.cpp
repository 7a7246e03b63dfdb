// Copyright Lodex contributors.
#include "DescriptorText.h"

#include "Cli/JsonErrors.h"

#include "LodexDebugger/Core/Shell/LodexShell.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <nlohmann/json.hpp>

#include <cstddef>

namespace
{
	/** A walk over JSON text already known to be valid, keeping byte offsets. */
	class FJsonTextWalker
	{
	public:
		explicit FJsonTextWalker(const std::string& InText)
			: Text(InText)
		{
		}

		std::size_t SkipBlanks(std::size_t At) const
		{
			while (At < Text.size() && (Text[At] == ' ' || Text[At] == '\t' || Text[At] == '\n' || Text[At] == '\r'))
			{
				++At;
			}
			return At;
		}

		/** The offset just past the value that starts at At. */
		std::size_t SkipValue(std::size_t At) const
		{
			if (At >= Text.size())
			{
				return At;
			}
			if (Text[At] == '"')
			{
				return SkipString(At);
			}
			if (Text[At] == '{' || Text[At] == '[')
			{
				int Depth = 0;
				while (At < Text.size())
				{
					const char Char = Text[At];
					if (Char == '"')
					{
						At = SkipString(At);
						continue;
					}
					Depth += (Char == '{' || Char == '[') ? 1 : (Char == '}' || Char == ']') ? -1 : 0;
					++At;
					if (Depth == 0)
					{
						break;
					}
				}
				return At;
			}
			while (At < Text.size() && Text[At] != ',' && Text[At] != '}' && Text[At] != ']' && Text[At] != ' ' &&
				Text[At] != '\t' && Text[At] != '\n' && Text[At] != '\r')
			{
				++At;
			}
			return At;
		}

		std::size_t SkipString(std::size_t At) const
		{
			for (++At; At < Text.size(); ++At)
			{
				if (Text[At] == '\\')
				{
					++At;
				}
				else if (Text[At] == '"')
				{
					return At + 1;
				}
			}
			return At;
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

	/** A member of an object: where its key starts, where its value starts and ends. */
	struct FJsonMember
	{
		std::string Key;
		std::size_t KeyAt;
		std::size_t ValueAt;
		std::size_t ValueEnd;
	};

	std::string QuoteJson(const std::string& Value)
	{
		return nlohmann::json(Value).dump();
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

std::string AddToDescriptorModules(const std::string& Text, const FJsonStringFields& Entry)
{
	const FJsonTextWalker Walker(Text);
	const std::string NewLine = Text.find("\r\n") != std::string::npos ? "\r\n" : "\n";
	const bool bMultiLine = Text.find('\n') != std::string::npos;

	std::size_t At = Text.rfind("\xEF\xBB\xBF", 0) == 0 ? 3 : 0;
	const std::size_t ObjectAt = Walker.SkipBlanks(At);
	std::vector<FJsonMember> Members;
	At = Walker.SkipBlanks(ObjectAt + 1);
	while (At < Text.size() && Text[At] == '"')
	{
		FJsonMember Member;
		Member.KeyAt = At;
		const std::size_t KeyEnd = Walker.SkipString(At);
		Member.Key = nlohmann::json::parse(Text.substr(At, KeyEnd - At)).get<std::string>();
		Member.ValueAt = Walker.SkipBlanks(Walker.SkipBlanks(KeyEnd) + 1);
		Member.ValueEnd = Walker.SkipValue(Member.ValueAt);
		Members.push_back(Member);
		At = Walker.SkipBlanks(Member.ValueEnd);
		At = (At < Text.size() && Text[At] == ',') ? Walker.SkipBlanks(At + 1) : At;
	}
	const std::size_t ObjectEnd = At; // the closing brace

	const FJsonMember* Modules = nullptr;
	for (const FJsonMember& Member : Members)
	{
		Modules = Member.Key == "Modules" ? &Member : Modules; // the last one counts, as for the parser
	}

	std::string Result = Text;
	if (Modules != nullptr)
	{
		std::string KeyIndent;
		const bool bKeyLeads = Walker.LeadsItsLine(Modules->KeyAt, KeyIndent);
		// The list's elements: the last one's start and end.
		std::size_t LastAt = std::string::npos;
		std::size_t LastEnd = std::string::npos;
		At = Walker.SkipBlanks(Modules->ValueAt + 1);
		while (At < Text.size() && Text[At] != ']')
		{
			LastAt = At;
			LastEnd = Walker.SkipValue(At);
			At = Walker.SkipBlanks(LastEnd);
			At = (At < Text.size() && Text[At] == ',') ? Walker.SkipBlanks(At + 1) : At;
		}
		const std::size_t ListEnd = At;
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
			Result.replace(Modules->ValueAt + 1, ListEnd - Modules->ValueAt - 1,
				NewLine + Indent + RenderEntry(Entry, &Indent, Unit, NewLine) + NewLine + KeyIndent);
		}
		else
		{
			Result.replace(
				Modules->ValueAt + 1, ListEnd - Modules->ValueAt - 1, RenderEntry(Entry, nullptr, "", NewLine));
		}
		return Result;
	}

	// No "Modules": a new member after the last one.
	if (!Members.empty())
	{
		const FJsonMember& Last = Members.back();
		std::string Indent;
		if (Walker.LeadsItsLine(Last.KeyAt, Indent))
		{
			const std::string Unit = Indent.empty() ? std::string("\t") : Indent;
			const std::string EntryIndent = Indent + Unit;
			Result.insert(Last.ValueEnd,
				"," + NewLine + Indent + "\"Modules\": [" + NewLine + EntryIndent +
					RenderEntry(Entry, &EntryIndent, Unit, NewLine) + NewLine + Indent + "]");
		}
		else
		{
			Result.insert(Last.ValueEnd, ", \"Modules\": [" + RenderEntry(Entry, nullptr, "", NewLine) + "]");
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
	using FOrderedJson = nlohmann::ordered_json;
	Out = FDescriptorUpdate();
	FOrderedJson Descriptor;
	if (!ParseJsonFile(Text, SourceName, "not valid JSON: ", Descriptor, OutError))
	{
		return false;
	}
	try
	{
		if (!Descriptor.is_object())
		{
			OutError = SourceName + ": the descriptor is a JSON " + Descriptor.type_name() + ", not an object";
			return false;
		}
		const auto ModulesIt = Descriptor.find("Modules");
		if (ModulesIt != Descriptor.end() && !ModulesIt->is_array())
		{
			OutError = SourceName + ": \"Modules\" is a JSON " + std::string(ModulesIt->type_name()) + ", not a list";
			return false;
		}
		if (ModulesIt != Descriptor.end())
		{
			for (const FOrderedJson& Module : *ModulesIt)
			{
				// The engine compares module names ignoring case.
				const auto NameIt = Module.is_object() ? Module.find("Name") : Module.end();
				if (NameIt == Module.end() || !NameIt->is_string() ||
					!LodexText::EqualsIgnoreCase(NameIt->get<std::string>(), LodexModuleName))
				{
					continue;
				}
				const FOrderedJson Type = Module.value("Type", FOrderedJson());
				if (Type != "Editor" || NameIt->get<std::string>() != LodexModuleName)
				{
					Out.ExistingEntryNote = "note: " + SourceName + " already lists " + NameIt->dump() + " with Type " +
						Type.dump() + "; it is left as it is";
				}
				return true;
			}
		}
	}
	catch (const FOrderedJson::exception& Exception)
	{
		OutError = SourceName + ": " + DescribeJsonParseReason(Exception.what());
		return false;
	}
	Out.NewText = AddToDescriptorModules(Text, GetLodexModuleEntry());
	return true;
}
