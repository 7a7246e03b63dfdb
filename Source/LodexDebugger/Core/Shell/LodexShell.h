// Copyright Lodex contributors.
#pragma once

#include "LodexDebugger/Core/Text/LodexOutput.h"

#include <cstddef>
#include <string>
#include <vector>

/** The module's name, as the module manager knows it. */
inline constexpr const char* LodexModuleName = "LodexDebugger";

/** The process-wide workspace group of the tab manager that holds every tab spawner of the module. */
inline constexpr const char* LodexMenuRootGroupName = "Menu Root";

/** The line the module writes to "LogTemp" at Warning verbosity when it shuts down. */
inline constexpr const char* LodexShutdownMessage = "ShutdownModule() called";

/** Engine modules the shell loads or looks for. */
namespace LodexShellModules
{
	inline constexpr const char* LevelEditor = "LevelEditor";
	inline constexpr const char* PropertyEditor = "PropertyEditor";
	inline constexpr const char* Settings = "Settings";
}

/** The module listeners, in the order the module creates, starts and stops them. */
enum class ELodexListener
{
	MenuTool,
	TabTool,
	RecorderTool,
	ReplTool,
	DetailsTool,
};

/** One tab tool: its tab's identity and texts, where its pull-down entry goes, and the panel a tab holds. */
struct FLodexTabInfo
{
	ELodexListener Listener;
	/** The tab's identifier (`TabName`), which is also the tool's name. */
	const char* TabName;
	/** `TabDisplayName`: the tab's label and its pull-down entry's label. */
	const char* DisplayName;
	/** `ToolTipText`: the tooltip of the tab's pull-down entry. */
	const char* ToolTip;
	/** The pull-down separator hook the tool's entry is placed before. */
	const char* MenuHook;
	/** The panel widget class a new tab of the tool holds. */
	const char* PanelName;
};

/** One module listener: its name and, for the four tab tools, its tab. */
struct FLodexListenerInfo
{
	ELodexListener Listener;
	const char* Name;
	/** Null for `MenuTool`, which owns no tab. */
	const FLodexTabInfo* Tab;
};

/** The five listeners: `MenuTool`, `TabTool`, `RecorderTool`, `ReplTool`, `DetailsTool`. */
const std::vector<FLodexListenerInfo>& GetLodexListeners();

const FLodexListenerInfo& GetLodexListener(ELodexListener Listener);

/** The four tab tools, in listener order. */
const std::vector<FLodexTabInfo>& GetLodexTabs();

/** The tab tool with the given `TabName` (compared exactly), or null. */
const FLodexTabInfo* FindLodexTab(const std::string& TabName);

/** The pull-down the module adds to the level editor's main menu bar. */
struct FLodexPullDownInfo
{
	/** The menu-bar hook the pull-down is placed after. */
	const char* AfterHook;
	const char* Label;
	const char* ToolTip;
	const char* ExtensionHook;
	const char* TutorialHighlightName;
};

const FLodexPullDownInfo& GetLodexPullDown();

/** The content of the pull-down, built each time it opens: one section holding four separators. */
struct FLodexPullDownContentInfo
{
	const char* SectionHook;
	const char* SectionHeading;
	/** The separators' extension hooks, top to bottom. */
	std::vector<const char*> SeparatorHooks;
};

const FLodexPullDownContentInfo& GetLodexPullDownContent();

/** The settings section the module removes at shut-down (it never registers it). */
struct FLodexSettingsSectionInfo
{
	const char* Container;
	const char* Category;
	const char* Section;
};

const FLodexSettingsSectionInfo& GetLodexExampleSettingsSection();

/** Where an extension goes relative to its hook, as the engine's `EExtensionHook` names it. */
enum class ELodexExtensionPosition
{
	Before,
	After,
	First,
};

const char* GetLodexExtensionPositionName(ELodexExtensionPosition Position);

/** The calls of a menu builder that the pull-down's content uses (the engine's `FMenuBuilder`). */
class ILodexMenuBuilder
{
public:
	virtual ~ILodexMenuBuilder() = default;
	virtual void BeginSection(const char* ExtensionHook, const char* Heading) = 0;
	virtual void AddMenuSeparator(const char* ExtensionHook) = 0;
	virtual void EndSection() = 0;
};

/** Builds the pull-down's content: the "Veltrane" section with its four separator hooks in order. */
void BuildLodexPullDownContent(ILodexMenuBuilder& Builder);

/** The editor calls the module's start-up and shut-down make, in the order the shell makes them. */
class ILodexShellHost
{
public:
	virtual ~ILodexShellHost() = default;

	/** Whether the editor runs as a commandlet. */
	virtual bool IsRunningCommandlet() const = 0;
	/** Whether the module manager has the named module loaded. */
	virtual bool IsModuleLoaded(const char* ModuleName) const = 0;
	/** Loads the named module, or fetches it when it is loaded already (`LoadModuleChecked`). */
	virtual void LoadModule(const char* ModuleName) = 0;

	/** Creates the module's menu extender (`MenuExtender`). */
	virtual void CreateMenuExtender() = 0;
	/** Creates the command list of the menu bar. */
	virtual void CreateMenuBarCommandList() = 0;
	/**
	 * Adds a menu-bar extension to `MenuExtender` after the pull-down's hook, with the menu bar's command
	 * list, whose builder adds the pull-down; the pull-down's content comes from BuildLodexPullDownContent.
	 */
	virtual void AddMenuBarExtension(const FLodexPullDownInfo& PullDown) = 0;
	/** Adds `MenuExtender` to the level editor's menu extensibility manager. */
	virtual void AddMenuExtenderToLevelEditor() = 0;
	/** Removes `MenuExtender` from the level editor's menu extensibility manager. */
	virtual void RemoveMenuExtenderFromLevelEditor() = 0;
	/**
	 * Lets go of `MenuExtender`, the menu bar's command list and what the pull-down's builders are bound to, so
	 * that a menu built earlier finds its builders unbound instead of pointing into an unloaded module.
	 */
	virtual void ReleaseMenuExtender() = 0;

	/**
	 * The module's own `AddModuleListeners`, which a module may override; the module's version calls back into the
	 * shell it holds, `Shell.AddModuleListeners(Host)`, to create the five listeners.
	 */
	virtual void AddModuleListeners() = 0;
	/** Creates the listener and appends it to the module's list (`ModuleListeners`). */
	virtual void CreateListener(const FLodexListenerInfo& Listener) = 0;
	/** Calls the listener's `OnStartupModule`. */
	virtual void StartListener(const FLodexListenerInfo& Listener) = 0;
	/** Calls the listener's `OnShutdownModule`. */
	virtual void StopListener(const FLodexListenerInfo& Listener) = 0;
	/** Empties the module's list (`ModuleListeners`), so that the stopped tools are destroyed. */
	virtual void DestroyListeners() = 0;

	/** Removes a section from the "Settings" module (`ISettingsModule::UnregisterSettings`). */
	virtual void UnregisterSettings(const FLodexSettingsSectionInfo& Section) = 0;
};

/** The module's start-up and shut-down, and its list of listeners in between. */
class FLodexShell
{
public:
	/**
	 * Unless the editor runs as a commandlet: loads "LevelEditor", creates the menu extender and the menu
	 * bar's command list, adds the pull-down after "Window", hands the extender to the level editor, then
	 * calls the module's `AddModuleListeners` and starts the listeners in list order.
	 */
	void StartupModule(ILodexShellHost& Host);

	/**
	 * Logs "ShutdownModule() called" at Warning, fetches "PropertyEditor" when it is loaded, removes the
	 * example settings section when "Settings" is loaded, stops the listeners in list order; then takes the
	 * menu extender back from the level editor (when it is still loaded) and lets go of the menus and the
	 * listeners, so that nothing the editor keeps points into the unloaded module.
	 */
	void ShutdownModule(ILodexShellHost& Host, ILodexOutput& Output);

	/** Creates the five listeners, in list order, and appends them to the list. */
	void AddModuleListeners(ILodexShellHost& Host);

	/** The listeners created, in list order; empty under a commandlet and after shut-down. */
	const std::vector<ELodexListener>& GetModuleListeners() const { return ModuleListeners; }

private:
	std::vector<ELodexListener> ModuleListeners;
	bool bMenuExtenderAdded = false;
};

/** The three fields of a tab tool that its `Initialize` sets. */
struct FLodexTabFields
{
	std::string TabName;
	std::string TabDisplayName;
	std::string ToolTipText;
};

/**
 * One tab tool (`ExampleTabToolBase`) as the shell drives it. The tool's `Initialize` sets its `TabName`,
 * `TabDisplayName` and `ToolTipText`; the spawner is registered from those fields, whatever they hold.
 */
class ILodexTabTool
{
public:
	virtual ~ILodexTabTool() = default;

	/** The tool's `Initialize`. */
	virtual void Initialize() = 0;
	/**
	 * Registers a nomad tab spawner with the global tab manager under the tool's `TabName`, whose spawn
	 * function calls the tool's `SpawnTab`, and sets on it the group (the module's `GetMenuRoot()`, named
	 * GroupName), `TabDisplayName` and `ToolTipText`; no icon.
	 */
	virtual void RegisterNomadTabSpawner(const char* GroupName) = 0;
	/** Removes the nomad tab spawner registered under the tool's `TabName`. */
	virtual void UnregisterNomadTabSpawner() = 0;
	/** Asks the module to add a menu extension at the hook with the tool's `MakeMenuEntry`, no command list. */
	virtual void AddMenuExtension(const char* Hook, ELodexExtensionPosition Position) = 0;
};

/** The tab tool base's start-up: `Initialize`, then the spawner from the fields it set, in "Menu Root". */
void StartLodexTabToolBase(ILodexTabTool& Tool);

/** What a tab tool adds to the base start-up: its pull-down entry before its menu hook. */
void AddLodexTabMenuEntry(ILodexTabTool& Tool, const FLodexTabInfo& Tab);

/** A tab tool's start-up: the base start-up, then its pull-down entry. */
void StartLodexTabTool(ILodexTabTool& Tool, const FLodexTabInfo& Tab);

/** The tab tool base's shut-down: unregisters the spawner of its `TabName`. */
void StopLodexTabTool(ILodexTabTool& Tool);

/** The module's own commands, each a console command with an entry in the module's pull-down. */
enum class ELodexPullDownCommand
{
	/** "Lodex.ExportSnapshot": the editor's world as a scene snapshot. */
	ExportSnapshot,
	/** "Lodex.CopyBestLodestring": the best Lodestring of each selected actor, logged and copied. */
	CopyBestLodestring,
};

/** A command of the module's own: a console command, and an entry in the module's pull-down that runs it. */
struct FLodexPullDownCommandInfo
{
	ELodexPullDownCommand Command;
	/** The console command's name and help. */
	const char* ConsoleCommand;
	const char* ConsoleHelp;
	/** The pull-down entry, placed relative to a separator hook of the module's pull-down. */
	const char* MenuHook;
	ELodexExtensionPosition MenuPosition;
	const char* MenuLabel;
	const char* MenuToolTip;
};

/** The editor calls that install and remove a command of the module's own. */
class ILodexPullDownCommandHost
{
public:
	virtual ~ILodexPullDownCommandHost() = default;
	/** Adds the command's entry to the module's pull-down. */
	virtual void AddPullDownEntry(const FLodexPullDownCommandInfo& Command) = 0;
	/** Registers the console command with the console manager. */
	virtual void RegisterConsoleCommand(const FLodexPullDownCommandInfo& Command) = 0;
	/** Removes the console command. */
	virtual void UnregisterConsoleCommand(const FLodexPullDownCommandInfo& Command) = 0;
};

/** Installs a command: the pull-down entry, then the console command. */
void StartLodexPullDownCommand(ILodexPullDownCommandHost& Host, const FLodexPullDownCommandInfo& Command);

/** Removes the console command (the pull-down entry goes with the module's menu extender). */
void StopLodexPullDownCommand(ILodexPullDownCommandHost& Host, const FLodexPullDownCommandInfo& Command);
