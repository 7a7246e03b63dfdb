// Copyright Lodex contributors.
#pragma once

#include "LodexDebugger/Core/Lodestring/Lodestring.h"
#include "LodexDebugger/Core/Lodestring/LodexObjectGraph.h"
#include "LodexDebugger/Core/Text/LodexOutput.h"

#include <cstddef>
#include <string>
#include <vector>

/** One push-button command of a command set; none has a default key chord. */
struct FLodexCommandInfo
{
	const char* CommandId;
	const char* Label;
	const char* Tooltip;
	/** The mode the command's action hands to its Lodestring printer. */
	const char* Mode;
};

/** A binding context: no parent context, the editor's application style set. */
struct FLodexCommandSetInfo
{
	const char* ContextName;
	const char* ContextDescription;
	std::vector<FLodexCommandInfo> Commands;
};

/** The localisation keys of a command, in the namespace of its context (or of the module for TestCommand). */
struct FLodexCommandKeys
{
	std::string Namespace;
	std::string LabelKey;
	std::string TooltipKey;
	std::string DotName;
};

/** How every command set of the module describes itself. */
inline constexpr const char* LodexCommandContextDescription = "Veltrane right click menu";

/** The scene outliner's and level viewport's command set, "MenuTool". */
const FLodexCommandSetInfo& GetMenuToolCommandSet();

/** The object explorer's command set, "DetailToolA". */
const FLodexCommandSetInfo& GetDetailToolCommandSet();

/** The module's own command, registered by the module and used by no menu. */
const FLodexCommandInfo& GetModuleTestCommand();

/** The localisation namespace of the module's own command. */
inline constexpr const char* LodexModuleLocNamespace = "FLodexDebugger";

FLodexCommandKeys MakeCommandKeys(const char* Namespace, const FLodexCommandInfo& Command);

/** The command of a set with the given id (compared exactly), or null. */
const FLodexCommandInfo* FindCommandById(const FLodexCommandSetInfo& Set, const std::string& CommandId);

/** The command of a set whose action prints in the given mode, or null. */
const FLodexCommandInfo* FindCommandForMode(const FLodexCommandSetInfo& Set, const std::string& Mode);

enum class ELodexMenuKind
{
	SceneOutlinerActor,
	LevelViewportActor,
	ComponentsTree,
	ExplorerList,
};

/** An entry of a "Lodestring" sub-menu: a command of a set, or (components tree) a plain entry with its own action. */
struct FLodexMenuEntryInfo
{
	const char* Name;
	/** The command the entry shows, or null for a plain entry. */
	const char* CommandId;
	const char* Label;
	const char* Tooltip;
	const char* LabelLocKey;
	const char* TooltipLocKey;
	const char* Mode;
};

/** Where and how one kind of context menu gets the module's section and "Lodestring" sub-menu. */
struct FLodexMenuInfo
{
	ELodexMenuKind Kind;
	const char* Where;
	/** How the module reaches the menu: an extender hook, or the tool menu's name for the components tree. */
	const char* AddedThrough;
	/** The extension hook the section is placed before; empty when the menu is not extended by hook. */
	const char* ExtensionHook;
	const char* SectionName;
	const char* SectionHeading;
	/** The sub-menu entry's name; empty where the sub-menu is added by label only. */
	const char* SubMenuName;
	const char* SubMenuLabel;
	const char* SubMenuTooltip;
	/** The command set whose list the entries run on. */
	const char* CommandSet;
	/** The section inside the sub-menu (components tree only; it has no heading). */
	const char* InnerSectionName;
	/** Whether labels are localisable texts (namespace "DetailToolA") rather than texts made from strings. */
	bool bLocalized;
	std::vector<FLodexMenuEntryInfo> Entries;
};

/** The four context menus, in the order scene outliner, level viewport, components tree, explorer lists. */
const std::vector<FLodexMenuInfo>& GetLodexContextMenus();

const FLodexMenuInfo& GetLodexContextMenu(ELodexMenuKind Kind);

/** The localisation namespace of the components-tree entries. */
inline constexpr const char* ComponentsTreeLocNamespace = "DetailToolA";

/** The editor calls through which the context-menu tool registers itself. */
class IMenuToolHost
{
public:
	virtual ~IMenuToolHost() = default;
	/** Creates the tool's command list. */
	virtual void CreateCommandList() = 0;
	/** Registers a command set with the editor's bindings. */
	virtual void RegisterCommandSet(const FLodexCommandSetInfo& Set) = 0;
	/** Maps a command on the tool's list to the printer of selected actors with the given mode. */
	virtual void MapPrintAction(const FLodexCommandInfo& Command, const std::string& Mode) = 0;
	/** Asks the module to add the menu's section before the menu's extension hook, with the tool's list. */
	virtual void AddModuleMenuExtension(const FLodexMenuInfo& Menu) = 0;
	/** Adds a level-viewport context-menu extender for the selected actors to the level editor's list. */
	virtual void AddViewportContextMenuExtender(const FLodexMenuInfo& Menu) = 0;
	/** Removes the extender that AddViewportContextMenuExtender added (by its delegate handle), if any. */
	virtual void RemoveViewportContextMenuExtender(const FLodexMenuInfo& Menu) = 0;
	/** Unregisters the command set and lets go of the tool's command list. */
	virtual void UnregisterCommandSet(const FLodexCommandSetInfo& Set) = 0;
};

/** Starts the context-menu tool: command list, command set, mappings, outliner extension, viewport extender. */
void StartMenuTool(IMenuToolHost& Host);

/**
 * Stops the context-menu tool: the viewport extender leaves the level editor's list and the command set is
 * unregistered. (The outliner extension lives in the module's menu extender, which the module removes.)
 */
void StopMenuTool(IMenuToolHost& Host);

/** The editor's actor selection, in selection order; an entry may be null. */
class ILodexActorSelection
{
public:
	virtual ~ILodexActorSelection() = default;
	virtual std::size_t Num() const = 0;
	virtual FLodexObject GetSelectedObject(std::size_t Index) const = 0;
};

/** The log message for one printed Lodestring: "Lodestring : " + path + " ". */
std::string FormatLodestringLogMessage(const std::string& Lodestring);

/**
 * Logs the Lodestring of every non-null selected actor, in selection order, and copies each to the
 * clipboard in turn, so that the clipboard ends with the last one. An empty selection does nothing.
 */
void PrintSelectedActorLodestrings(const ILodexObjectGraph& Graph, const ILodexActorSelection& Selection,
	ILodexOutput& Output, const LodestringMode& Mode);
