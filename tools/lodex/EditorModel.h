// Copyright Lodex contributors.
#pragma once

#include "LodexDebugger/Core/Explorer/SnapshotWriter.h"
#include "LodexDebugger/Core/Shell/LodexMenuModel.h"
#include "LodexDebugger/Core/Shell/LodexShell.h"
#include "LodexDebugger/Core/Paths/PathCommands.h"

#include <set>
#include <string>
#include <vector>

/**
 * The editor as far as the module's shell reaches it, over plain data: modules, the menu extender, the
 * main menu bar's extensions, the global tab manager's spawners and the listeners. The module's own
 * start-up and shut-down run on it unchanged, so what it ends up holding is what the editor would show.
 */
class FEditorModel final
	: public ILodexShellHost
	, public ILodexTabHost
	, public IMenuToolHost
	, public ILodexSnapshotExportHost
{
public:
	explicit FEditorModel(bool bInCommandlet = false);

	//~ Begin ILodexShellHost Interface
	bool IsRunningCommandlet() const override { return bCommandlet; }
	bool IsModuleLoaded(const char* ModuleName) const override;
	void LoadModule(const char* ModuleName) override;
	void CreateMenuExtender() override;
	void CreateMenuBarCommandList() override {}
	void AddMenuBarExtension(const FLodexPullDownInfo& PullDown) override;
	void AddMenuExtenderToLevelEditor() override { bExtenderInLevelEditor = true; }
	void CreateListener(const FLodexListenerInfo& Listener) override;
	void StartListener(const FLodexListenerInfo& Listener) override;
	void StopListener(const FLodexListenerInfo& Listener) override;
	void UnregisterSettings(const FLodexSettingsSectionInfo& Section) override;
	//~ End ILodexShellHost Interface

	//~ Begin ILodexTabHost Interface
	void RegisterNomadTabSpawner(const FLodexTabInfo& Tab, const char* GroupName) override;
	void UnregisterNomadTabSpawner(const char* TabName) override;
	void AddMenuExtension(const char* Hook, ELodexExtensionPosition Position, const FLodexTabInfo& Tab) override;
	//~ End ILodexTabHost Interface

	//~ Begin IMenuToolHost Interface
	void CreateCommandList() override {}
	void RegisterCommandSet(const FLodexCommandSetInfo& Set) override;
	void MapPrintAction(const FLodexCommandInfo& Command, const std::string& Mode) override;
	void AddModuleMenuExtension(const FLodexMenuInfo& Menu) override;
	void AddViewportContextMenuExtender(const FLodexMenuInfo& Menu) override;
	//~ End IMenuToolHost Interface

	//~ Begin ILodexSnapshotExportHost Interface
	void AddPullDownEntry(const FLodexSnapshotExportInfo& Export) override;
	void RegisterConsoleCommand(const FLodexSnapshotExportInfo& Export) override;
	void UnregisterConsoleCommand(const FLodexSnapshotExportInfo& Export) override;
	//~ End ILodexSnapshotExportHost Interface

	/** The pull-downs added to the main menu bar (at most one: the module's). */
	const std::vector<const FLodexPullDownInfo*>& GetMenuBarPullDowns() const { return MenuBarPullDowns; }
	/** Whether the module's extender reaches the level editor's menus. */
	bool IsExtenderInLevelEditor() const { return bExtenderInLevelEditor; }
	const FLodexMenuExtender& GetMenuExtender() const { return MenuExtender; }
	const FLodexTabSpawnerRegistry& GetTabSpawners() const { return TabSpawners; }
	/** The context menus the module's tools extend, in the order they asked. */
	const std::vector<const FLodexMenuInfo*>& GetExtendedContextMenus() const { return ExtendedContextMenus; }
	const std::vector<std::string>& GetRegisteredCommandSets() const { return RegisteredCommandSets; }
	const std::vector<std::string>& GetCreatedListeners() const { return CreatedListeners; }
	/** The console commands the module registered and has not removed. */
	const std::vector<std::string>& GetConsoleCommands() const { return ConsoleCommands; }

	/** The module's pull-down as it shows when opened. */
	std::vector<FLodexMenuItem> OpenPullDown() const;

private:
	bool bCommandlet;
	bool bHasMenuExtender = false;
	bool bExtenderInLevelEditor = false;
	std::set<std::string> LoadedModules;
	std::vector<const FLodexPullDownInfo*> MenuBarPullDowns;
	FLodexMenuExtender MenuExtender;
	FLodexTabSpawnerRegistry TabSpawners;
	std::vector<const FLodexMenuInfo*> ExtendedContextMenus;
	std::vector<std::string> RegisteredCommandSets;
	std::vector<std::string> CreatedListeners;
	std::vector<std::string> ConsoleCommands;
};
