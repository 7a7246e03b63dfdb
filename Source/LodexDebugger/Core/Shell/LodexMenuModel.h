// Copyright Lodex contributors.
#pragma once

#include "LodexShell.h"

#include <string>
#include <vector>

/**
 * A model of the editor's tab spawners and menu extender, for hosts without the editor: the same shell
 * and tab tool calls fill it, and a builder with the engine's `FMenuBuilder` rules renders the pull-down.
 */

/** A registered nomad tab spawner and what was set on it. */
struct FLodexTabSpawnerEntry
{
	std::string TabName;
	std::string DisplayName;
	std::string ToolTip;
	std::string GroupName;
};

/** The global tab manager's nomad spawners, in registration order. */
class FLodexTabSpawnerRegistry
{
public:
	/** Registers a spawner; one already under the same name is replaced, as the engine does. */
	void Register(const FLodexTabSpawnerEntry& Entry);
	/** Removes the spawner of the name; returns whether there was one. */
	bool Unregister(const std::string& TabName);
	const FLodexTabSpawnerEntry* Find(const std::string& TabName) const;
	const std::vector<FLodexTabSpawnerEntry>& GetSpawners() const { return Spawners; }

private:
	std::vector<FLodexTabSpawnerEntry> Spawners;
};

/** One menu extension: at a hook and position, it adds the spawner entry of a tab, or an entry of its own. */
struct FLodexMenuExtensionEntry
{
	std::string Hook;
	ELodexExtensionPosition Position;
	/** The tab whose spawner entry is added; empty for an entry of its own. */
	std::string TabName;
	/** An entry of its own: its label, tooltip and the console command it runs. */
	std::string Label;
	std::string ToolTip;
	std::string Command;
};

/** The module's menu extender (`MenuExtender`): extensions in the order they were added. */
class FLodexMenuExtender
{
public:
	void AddMenuExtension(const std::string& Hook, ELodexExtensionPosition Position, const std::string& TabName);
	/** An extension that adds a plain entry running a console command (its menu item's Id). */
	void AddMenuEntry(const std::string& Hook, ELodexExtensionPosition Position, const std::string& Label,
		const std::string& ToolTip, const std::string& Command);
	const std::vector<FLodexMenuExtensionEntry>& GetExtensions() const { return Extensions; }

private:
	std::vector<FLodexMenuExtensionEntry> Extensions;
};

enum class ELodexMenuItemKind
{
	Heading,
	Entry,
	Separator,
};

/** One line of a built menu. */
struct FLodexMenuItem
{
	ELodexMenuItemKind Kind;
	/** A heading's text, or an entry's label. */
	std::string Text;
	/** An entry's tooltip. */
	std::string ToolTip;
	/** A heading's or separator's extension hook, the tab an entry opens, or the console command it runs. */
	std::string Id;
};

/**
 * A menu builder with the engine's rules: a section's heading appears lazily before its first block,
 * extensions are applied before and after each separator in the order they were added, a separator is
 * never the first block, and a tab's spawner entry is added only when the spawner is registered.
 */
class FLodexMenuModelBuilder final : public ILodexMenuBuilder
{
public:
	FLodexMenuModelBuilder(const FLodexMenuExtender& InExtender, const FLodexTabSpawnerRegistry& InSpawners);

	//~ Begin ILodexMenuBuilder Interface
	void BeginSection(const char* ExtensionHook, const char* Heading) override;
	void AddMenuSeparator(const char* ExtensionHook) override;
	void EndSection() override;
	//~ End ILodexMenuBuilder Interface

	const std::vector<FLodexMenuItem>& GetItems() const { return Items; }

private:
	void ApplyHook(const std::string& Hook, ELodexExtensionPosition Position);
	void ApplySectionBeginning();

	const FLodexMenuExtender& Extender;
	const FLodexTabSpawnerRegistry& Spawners;
	std::vector<FLodexMenuItem> Items;
	std::string CurrentSectionHook;
	std::string CurrentSectionHeading;
	bool bSectionNeedsToBeApplied = false;
};

/** The pull-down's content as the editor shows it, given the module's extender and the registered spawners. */
std::vector<FLodexMenuItem> BuildLodexPullDownModel(
	const FLodexMenuExtender& Extender, const FLodexTabSpawnerRegistry& Spawners);

/** Only the entries of a built menu, top to bottom. */
std::vector<FLodexMenuItem> GetLodexMenuEntries(const std::vector<FLodexMenuItem>& Items);
