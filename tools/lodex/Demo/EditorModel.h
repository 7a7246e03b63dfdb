// Copyright Lodex contributors.
#pragma once

#include "LodexDebugger/Core/Explorer/SnapshotWriter.h"
#include "LodexDebugger/Core/Shell/LodexMenuModel.h"
#include "LodexDebugger/Core/Shell/LodexShell.h"
#include "LodexDebugger/Core/Paths/PathCommands.h"

#include <memory>
#include <set>
#include <utility>
#include <string>
#include <vector>

class FEditorModel;

/** A tab tool as the module makes it: its Initialize sets the fields from its row of the tab table. */
class FEditorModelTabTool final : public ILodexTabTool
{
public:
	FEditorModelTabTool(FEditorModel& InEditor, const FLodexTabInfo& InTab);

	//~ Begin ILodexTabTool Interface
	void Initialize() override;
	void RegisterNomadTabSpawner(const char* GroupName) override;
	void UnregisterNomadTabSpawner() override;
	void AddMenuExtension(const char* Hook, ELodexExtensionPosition Position) override;
	//~ End ILodexTabTool Interface

	const FLodexTabInfo& GetTab() const { return Tab; }

private:
	FEditorModel& Editor;
	const FLodexTabInfo& Tab;
	FLodexTabFields Fields;
};

/**
 * The editor as far as the module's shell reaches it, over plain data: modules, the menu extender, the
 * main menu bar's extensions, the global tab manager's spawners and the listeners. The module's own
 * start-up and shut-down run on it unchanged, so what it ends up holding is what the editor would show.
 */
class FEditorModel final
	: public ILodexShellHost
	, public IMenuToolHost
	, public ILodexPullDownCommandHost
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
	void RemoveMenuExtenderFromLevelEditor() override { bExtenderInLevelEditor = false; }
	void ReleaseMenuExtender() override;
	void AddModuleListeners() override;
	void CreateListener(const FLodexListenerInfo& Listener) override;
	void StartListener(const FLodexListenerInfo& Listener) override;
	void StopListener(const FLodexListenerInfo& Listener) override;
	void DestroyListeners() override;
	void UnregisterSettings(const FLodexSettingsSectionInfo& Section) override;
	//~ End ILodexShellHost Interface

	/** The module's start-up and shut-down, run on this editor. */
	void StartupModule() { Shell.StartupModule(*this); }
	void ShutdownModule(ILodexOutput& Output) { Shell.ShutdownModule(*this, Output); }

	/** The global tab manager's registration calls and the module's AddMenuExtension, for the tab tools. */
	void RegisterNomadTabSpawner(const FLodexTabSpawnerEntry& Entry);
	void UnregisterNomadTabSpawner(const std::string& TabName);
	void AddTabMenuExtension(const char* Hook, ELodexExtensionPosition Position, const std::string& TabName);

	//~ Begin IMenuToolHost Interface
	void CreateCommandList() override {}
	void RegisterCommandSet(const FLodexCommandSetInfo& Set) override;
	void MapPrintAction(const FLodexCommandInfo& Command, const std::string& Mode) override;
	void AddModuleMenuExtension(const FLodexMenuInfo& Menu) override;
	void AddViewportContextMenuExtender(const FLodexMenuInfo& Menu) override;
	void RemoveViewportContextMenuExtender(const FLodexMenuInfo& Menu) override;
	void UnregisterCommandSet(const FLodexCommandSetInfo& Set) override;
	//~ End IMenuToolHost Interface

	//~ Begin ILodexPullDownCommandHost Interface
	void AddPullDownEntry(const FLodexPullDownCommandInfo& Command) override;
	void RegisterConsoleCommand(const FLodexPullDownCommandInfo& Command) override;
	void UnregisterConsoleCommand(const FLodexPullDownCommandInfo& Command) override;
	//~ End ILodexPullDownCommandHost Interface

	/** The pull-downs added to the main menu bar (at most one: the module's). */
	const std::vector<const FLodexPullDownInfo*>& GetMenuBarPullDowns() const { return MenuBarPullDowns; }
	const FLodexTabSpawnerRegistry& GetTabSpawners() const { return TabSpawners; }
	/**
	 * The menu extenders the level editor holds from the module: the module's own (with the pull-down and
	 * the scene outliner's section) and the level viewport's context-menu extenders.
	 */
	std::size_t CountLevelEditorExtenders() const;
	const std::vector<std::string>& GetRegisteredCommandSets() const { return RegisteredCommandSets; }
	/** The listeners the module holds, in list order. */
	std::vector<std::string> GetListeners() const;
	/** The console commands the module registered and has not removed. */
	const std::vector<std::string>& GetConsoleCommands() const { return ConsoleCommands; }

	/** The module's pull-down as it shows when opened. */
	std::vector<FLodexMenuItem> OpenPullDown() const;

private:
	/** The module's shell, held by the module as the editor's module holds its own. */
	FLodexShell Shell;
	bool bCommandlet;
	bool bHasMenuExtender = false;
	bool bExtenderInLevelEditor = false;
	std::set<std::string> LoadedModules;
	std::vector<const FLodexPullDownInfo*> MenuBarPullDowns;
	FLodexMenuExtender MenuExtender;
	FLodexTabSpawnerRegistry TabSpawners;
	/** The context menus whose section sits in the module's extender (the scene outliner's). */
	std::vector<const FLodexMenuInfo*> ModuleExtenderMenus;
	/** The level editor's viewport context-menu extenders added by the module. */
	std::vector<const FLodexMenuInfo*> ViewportMenuExtenders;
	std::vector<std::string> RegisteredCommandSets;
	std::vector<std::string> ConsoleCommands;
	/** The module's listeners: the tab tools, and null for MenuTool, which the model runs through its own calls. */
	std::vector<std::pair<std::string, std::unique_ptr<FEditorModelTabTool>>> Listeners;
};
