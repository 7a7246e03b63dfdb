// Copyright Lodex contributors.
// Fuzz target plugin_descriptor: a plug-in descriptor read and updated as `lodex install` does, in memory. The
// install either refuses with one line, leaves a descriptor that lists the module as it is, or adds the module's
// entry once, keeping every other byte. Where the text is strict JSON, the JSON library's reading (its keys
// matched ignoring case, as the engine matches them) says which of these it must be.
#include "Install/DescriptorText.h"
#include "FuzzProperties.h"

#include "LodexDebugger/Core/Shell/LodexShell.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace
{
	using FOrderedJson = nlohmann::ordered_json;

	/**
	 * The descriptor as the JSON library reads it on its own, strictly: discarded when it is not strict JSON (the
	 * engine reads more, and for that text the check knows less).
	 */
	FOrderedJson ReadDescriptorJson(const std::string& Text)
	{
		// The library stops at a NUL byte; such a file is no JSON text.
		if (Text.find('\0') != std::string::npos)
		{
			return FOrderedJson(FOrderedJson::value_t::discarded);
		}
		return FOrderedJson::parse(Text, nullptr, false);
	}

	/** The keys of an object that name Key ignoring case, as the engine finds fields. */
	std::vector<std::string> KeysLike(const FOrderedJson& Object, const std::string& Key)
	{
		std::vector<std::string> Keys;
		for (const auto& Member : Object.items())
		{
			if (LodexText::EqualsIgnoreCase(Member.key(), Key))
			{
				Keys.push_back(Member.key());
			}
		}
		return Keys;
	}

	/** Whether an entry names the module: unknown (nullopt) when it has "Name" under several spellings. */
	std::optional<bool> ListsTheModule(const FOrderedJson& Module)
	{
		const std::vector<std::string> Names =
			Module.is_object() ? KeysLike(Module, "Name") : std::vector<std::string>();
		if (Names.size() > 1)
		{
			return std::nullopt;
		}
		const FOrderedJson* Name = Names.empty() ? nullptr : &Module[Names[0]];
		return Name != nullptr && Name->is_string() &&
			LodexText::EqualsIgnoreCase(Name->get<std::string>(), LodexModuleName);
	}

	FOrderedJson ModuleEntryJson()
	{
		FOrderedJson Entry = FOrderedJson::object();
		for (const auto& [Key, Value] : GetLodexModuleEntry())
		{
			Entry[Key] = Value;
		}
		return Entry;
	}

	/**
	 * What the strict reading says of the descriptor: whether it can be judged at all (strict JSON, one spelling
	 * of "Modules", nesting within the limit), whether the install may use it, and whether it lists the module.
	 */
	struct FDescriptorFacts
	{
		bool bKnown = false;
		bool bUsable = false;
		bool bListed = false;
		/** The spelling of "Modules" it has, if any. */
		std::string ModulesKey;
	};

	FDescriptorFacts GetDescriptorFacts(const FOrderedJson& Descriptor)
	{
		FDescriptorFacts Facts;
		if (Descriptor.is_discarded())
		{
			return Facts;
		}
		Facts.bKnown = true;
		if (!Descriptor.is_object())
		{
			return Facts;
		}
		const std::vector<std::string> Keys = KeysLike(Descriptor, "Modules");
		if (Keys.size() > 1)
		{
			Facts.bKnown = false;
			return Facts;
		}
		Facts.ModulesKey = Keys.empty() ? std::string() : Keys[0];
		const FOrderedJson* Modules = Keys.empty() ? nullptr : &Descriptor[Keys[0]];
		Facts.bUsable = Modules == nullptr || Modules->is_array();
		if (Facts.bUsable && Modules != nullptr)
		{
			for (const FOrderedJson& Module : *Modules)
			{
				const std::optional<bool> Lists = ListsTheModule(Module);
				Facts.bKnown = Facts.bKnown && Lists.has_value();
				Facts.bListed = Facts.bListed || Lists.value_or(false);
			}
		}
		return Facts;
	}

	/** The new text holds the old descriptor with the entry at the end of "Modules", and nothing else new. */
	std::string CheckUpdatedDescriptor(
		const FOrderedJson& Before, const std::string& ModulesKey, const std::string& NewText)
	{
		const FOrderedJson After = ReadDescriptorJson(NewText);
		if (After.is_discarded() || !After.is_object())
		{
			return "the updated descriptor is not a JSON object: " + LodexFuzz::Shown(NewText);
		}
		const std::string Key = ModulesKey.empty() ? std::string("Modules") : ModulesKey;
		const auto Modules = After.find(Key);
		if (Modules == After.end() || !Modules->is_array() || Modules->empty())
		{
			return "the updated descriptor has no \"Modules\" list: " + LodexFuzz::Shown(NewText);
		}
		std::size_t Listed = 0;
		for (const FOrderedJson& Module : *Modules)
		{
			Listed += ListsTheModule(Module).value_or(false) ? 1 : 0;
		}
		if (Listed != 1 || Modules->back() != ModuleEntryJson())
		{
			return "the updated descriptor lists the module " + std::to_string(Listed) +
				" times, or not as the last entry: " + LodexFuzz::Shown(NewText);
		}
		FOrderedJson ExpectedModules = Before.contains(Key) ? Before[Key] : FOrderedJson::array();
		ExpectedModules.push_back(ModuleEntryJson());
		FOrderedJson OtherBefore = Before;
		FOrderedJson OtherAfter = After;
		OtherBefore.erase(Key);
		OtherAfter.erase(Key);
		if (*Modules != ExpectedModules || OtherBefore != OtherAfter)
		{
			return "the updated descriptor changed more than \"Modules\": " + LodexFuzz::Shown(NewText);
		}
		return std::string();
	}
}

std::string CheckPluginDescriptorInput(const std::string& Input)
{
	const char* const Source = "UnrealCLR.uplugin";
	const FOrderedJson Descriptor = ReadDescriptorJson(Input);
	const FDescriptorFacts Facts = GetDescriptorFacts(Descriptor);

	FDescriptorUpdate Update;
	std::string Error;
	if (!PlanDescriptorUpdate(Input, Source, Update, Error))
	{
		const bool bTooDeep = Error.find(": nested deeper than ") != std::string::npos;
		if (Facts.bKnown && Facts.bUsable && !bTooDeep)
		{
			return "a usable descriptor was refused: " + LodexFuzz::Shown(Error);
		}
		return LodexFuzz::CheckFileError(Error, Source, Input, false);
	}
	if (Facts.bKnown && !Facts.bUsable)
	{
		return "a descriptor the install cannot use was accepted";
	}
	if (Facts.bKnown && Facts.bListed != !Update.NewText.has_value())
	{
		return Facts.bListed ? "a descriptor that lists the module was changed"
							 : "a descriptor that does not list the module was left as it is";
	}
	if (!Update.NewText)
	{
		// Listed already: nothing changes, at most a one-line note says how the entry differs.
		const std::string NotOneLine =
			Update.ExistingEntryNote.empty() ? std::string() : LodexFuzz::CheckOneLine(Update.ExistingEntryNote);
		return NotOneLine.empty() ? std::string() : "the note: " + NotOneLine;
	}
	if (!Update.ExistingEntryNote.empty())
	{
		return "a note about an existing entry came with a change: " + LodexFuzz::Shown(Update.ExistingEntryNote);
	}

	if (Facts.bKnown)
	{
		const std::string Changed = CheckUpdatedDescriptor(Descriptor, Facts.ModulesKey, *Update.NewText);
		if (!Changed.empty())
		{
			return Changed;
		}
	}
	const std::string Kept = LodexFuzz::CheckOneInsertion(Input, *Update.NewText);
	if (!Kept.empty())
	{
		return "the update changed the input outside the insertion: " + Kept;
	}
	// Run again, the install finds the module listed and changes nothing.
	FDescriptorUpdate Again;
	if (!PlanDescriptorUpdate(*Update.NewText, Source, Again, Error) || Again.NewText)
	{
		return "the updated descriptor is not taken as listing the module: " + LodexFuzz::Shown(*Update.NewText);
	}
	return std::string();
}
