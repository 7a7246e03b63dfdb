// Copyright Lodex contributors.
#include "LodexMenuModel.h"

void FLodexTabSpawnerRegistry::Register(const FLodexTabSpawnerEntry& Entry)
{
	for (FLodexTabSpawnerEntry& Existing : Spawners)
	{
		if (Existing.TabName == Entry.TabName)
		{
			Existing = Entry;
			return;
		}
	}
	Spawners.push_back(Entry);
}

bool FLodexTabSpawnerRegistry::Unregister(const std::string& TabName)
{
	for (auto It = Spawners.begin(); It != Spawners.end(); ++It)
	{
		if (It->TabName == TabName)
		{
			Spawners.erase(It);
			return true;
		}
	}
	return false;
}

const FLodexTabSpawnerEntry* FLodexTabSpawnerRegistry::Find(const std::string& TabName) const
{
	for (const FLodexTabSpawnerEntry& Entry : Spawners)
	{
		if (Entry.TabName == TabName)
		{
			return &Entry;
		}
	}
	return nullptr;
}

void FLodexMenuExtender::AddMenuExtension(
	const std::string& Hook, ELodexExtensionPosition Position, const std::string& TabName)
{
	Extensions.push_back({Hook, Position, TabName, std::string(), std::string(), std::string()});
}

void FLodexMenuExtender::AddMenuEntry(const std::string& Hook, ELodexExtensionPosition Position,
	const std::string& Label, const std::string& ToolTip, const std::string& Command)
{
	Extensions.push_back({Hook, Position, std::string(), Label, ToolTip, Command});
}

FLodexMenuModelBuilder::FLodexMenuModelBuilder(
	const FLodexMenuExtender& InExtender, const FLodexTabSpawnerRegistry& InSpawners)
	: Extender(InExtender)
	, Spawners(InSpawners)
{
}

void FLodexMenuModelBuilder::BeginSection(const char* ExtensionHook, const char* Heading)
{
	ApplyHook(ExtensionHook, ELodexExtensionPosition::Before);
	bSectionNeedsToBeApplied = true;
	CurrentSectionHook = ExtensionHook;
	CurrentSectionHeading = Heading;
	ApplyHook(ExtensionHook, ELodexExtensionPosition::First);
}

void FLodexMenuModelBuilder::AddMenuSeparator(const char* ExtensionHook)
{
	ApplySectionBeginning();
	ApplyHook(ExtensionHook, ELodexExtensionPosition::Before);
	if (!Items.empty())
	{
		Items.push_back({ELodexMenuItemKind::Separator, std::string(), std::string(), ExtensionHook});
	}
	ApplyHook(ExtensionHook, ELodexExtensionPosition::After);
}

void FLodexMenuModelBuilder::EndSection()
{
	const std::string SectionHook = CurrentSectionHook;
	CurrentSectionHook.clear();
	CurrentSectionHeading.clear();
	bSectionNeedsToBeApplied = false;
	ApplyHook(SectionHook, ELodexExtensionPosition::After);
}

void FLodexMenuModelBuilder::ApplyHook(const std::string& Hook, ELodexExtensionPosition Position)
{
	if (Hook.empty())
	{
		return;
	}
	for (const FLodexMenuExtensionEntry& Extension : Extender.GetExtensions())
	{
		if (Extension.Hook != Hook || Extension.Position != Position)
		{
			continue;
		}
		if (Extension.TabName.empty())
		{
			ApplySectionBeginning();
			Items.push_back({ELodexMenuItemKind::Entry, Extension.Label, Extension.ToolTip, Extension.Command});
			continue;
		}
		// The tab tool's MakeMenuEntry: the spawner's entry, when the spawner is registered.
		if (const FLodexTabSpawnerEntry* Spawner = Spawners.Find(Extension.TabName))
		{
			ApplySectionBeginning();
			Items.push_back({ELodexMenuItemKind::Entry, Spawner->DisplayName, Spawner->ToolTip, Spawner->TabName});
		}
	}
}

void FLodexMenuModelBuilder::ApplySectionBeginning()
{
	if (!bSectionNeedsToBeApplied)
	{
		return;
	}
	if (!CurrentSectionHeading.empty())
	{
		Items.push_back({ELodexMenuItemKind::Heading, CurrentSectionHeading, std::string(), CurrentSectionHook});
	}
	bSectionNeedsToBeApplied = false;
	CurrentSectionHeading.clear();
}

std::vector<FLodexMenuItem> BuildLodexPullDownModel(
	const FLodexMenuExtender& Extender, const FLodexTabSpawnerRegistry& Spawners)
{
	FLodexMenuModelBuilder Builder(Extender, Spawners);
	BuildLodexPullDownContent(Builder);
	return Builder.GetItems();
}

std::vector<FLodexMenuItem> GetLodexMenuEntries(const std::vector<FLodexMenuItem>& Items)
{
	std::vector<FLodexMenuItem> Entries;
	for (const FLodexMenuItem& Item : Items)
	{
		if (Item.Kind == ELodexMenuItemKind::Entry)
		{
			Entries.push_back(Item);
		}
	}
	return Entries;
}
