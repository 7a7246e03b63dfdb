// Copyright Lodex contributors.
// Fuzz target plugin_descriptor: a plug-in descriptor read and updated as `lodex install` does, in memory. The
// install either refuses with one line, leaves a descriptor that lists the module as it is, or adds the module's
// entry once, keeping every other byte.
#include "Install/DescriptorText.h"
#include "FuzzProperties.h"

#include "LodexDebugger/Core/Shell/LodexShell.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <nlohmann/json.hpp>

#include <string>

namespace
{
	using FOrderedJson = nlohmann::ordered_json;

	/** The descriptor as the JSON library reads it on its own: discarded when it is not JSON. */
	FOrderedJson ReadDescriptorJson(const std::string& Text)
	{
		// The library stops at a NUL byte; such a file is no JSON text.
		if (Text.find('\0') != std::string::npos)
		{
			return FOrderedJson(FOrderedJson::value_t::discarded);
		}
		return FOrderedJson::parse(Text, nullptr, false);
	}

	bool ListsTheModule(const FOrderedJson& Module)
	{
		const auto Name = Module.is_object() ? Module.find("Name") : Module.end();
		return Name != Module.end() && Name->is_string() &&
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

	/** Whether the install may use the descriptor, and whether it lists the module already. */
	struct FDescriptorFacts
	{
		bool bUsable = false;
		bool bListed = false;
	};

	FDescriptorFacts GetDescriptorFacts(const FOrderedJson& Descriptor)
	{
		FDescriptorFacts Facts;
		if (!Descriptor.is_object())
		{
			return Facts;
		}
		const auto Modules = Descriptor.find("Modules");
		Facts.bUsable = Modules == Descriptor.end() || Modules->is_array();
		if (Facts.bUsable && Modules != Descriptor.end())
		{
			for (const FOrderedJson& Module : *Modules)
			{
				Facts.bListed = Facts.bListed || ListsTheModule(Module);
			}
		}
		return Facts;
	}

	/** The new text holds the old descriptor with the entry at the end of "Modules", and nothing else new. */
	std::string CheckUpdatedDescriptor(const FOrderedJson& Before, const std::string& NewText)
	{
		const FOrderedJson After = ReadDescriptorJson(NewText);
		if (After.is_discarded() || !After.is_object())
		{
			return "the updated descriptor is not a JSON object: " + LodexFuzz::Shown(NewText);
		}
		const auto Modules = After.find("Modules");
		if (Modules == After.end() || !Modules->is_array() || Modules->empty())
		{
			return "the updated descriptor has no \"Modules\" list: " + LodexFuzz::Shown(NewText);
		}
		std::size_t Listed = 0;
		for (const FOrderedJson& Module : *Modules)
		{
			Listed += ListsTheModule(Module) ? 1 : 0;
		}
		if (Listed != 1 || Modules->back() != ModuleEntryJson())
		{
			return "the updated descriptor lists the module " + std::to_string(Listed) +
				" times, or not as the last entry: " + LodexFuzz::Shown(NewText);
		}
		FOrderedJson ExpectedModules = Before.contains("Modules") ? Before["Modules"] : FOrderedJson::array();
		ExpectedModules.push_back(ModuleEntryJson());
		FOrderedJson OtherBefore = Before;
		FOrderedJson OtherAfter = After;
		OtherBefore.erase("Modules");
		OtherAfter.erase("Modules");
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
		if (Facts.bUsable)
		{
			return "a usable descriptor was refused: " + LodexFuzz::Shown(Error);
		}
		return LodexFuzz::CheckFileError(Error, Source, Input, false);
	}
	if (!Facts.bUsable)
	{
		return "a descriptor the install cannot use was accepted";
	}
	if (Facts.bListed != !Update.NewText.has_value())
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

	const std::string Changed = CheckUpdatedDescriptor(Descriptor, *Update.NewText);
	if (!Changed.empty())
	{
		return Changed;
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
