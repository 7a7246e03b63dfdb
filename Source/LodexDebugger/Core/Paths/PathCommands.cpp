// Copyright Lodex contributors.
#include "PathCommands.h"

namespace PathCommandsPrivate
{
	const char* const ContextDescription = LodexCommandContextDescription;
	const char* const PrintTooltip = "Print the Lodestring to the console";
	const char* const SectionHook = "Veltrane";
	const char* const SectionHeading = "VelTrane";
	const char* const SubMenuLabel = "Lodestring";

	std::vector<FLodexMenuEntryInfo> CommandEntries(const FLodexCommandSetInfo& Set)
	{
		std::vector<FLodexMenuEntryInfo> Entries;
		for (const FLodexCommandInfo& Command : Set.Commands)
		{
			Entries.push_back(
				{Command.CommandId, Command.CommandId, Command.Label, Command.Tooltip, "", "", Command.Mode});
		}
		return Entries;
	}
}

const FLodexCommandSetInfo& GetMenuToolCommandSet()
{
	using namespace PathCommandsPrivate;
	static const FLodexCommandSetInfo Set{"MenuTool", ContextDescription,
		{
			{"MenuCommand1", "Lodestring Relative", PrintTooltip, LodestringModes::Relative},
			{"MenuCommand2", "Lodestring Absolute", PrintTooltip, LodestringModes::Absolute},
		}};
	return Set;
}

const FLodexCommandSetInfo& GetDetailToolCommandSet()
{
	using namespace PathCommandsPrivate;
	static const FLodexCommandSetInfo Set{"DetailToolA", ContextDescription,
		{
			{"DetailCommand1", "Lodestring Relative", PrintTooltip, LodestringModes::Relative},
			{"DetailCommand2", "Lodestring Absolute", PrintTooltip, LodestringModes::Absolute},
		}};
	return Set;
}

const FLodexCommandInfo& GetModuleTestCommand()
{
	static const FLodexCommandInfo Command{"TestCommand", "TestCommand", "This is test command", ""};
	return Command;
}

FLodexCommandKeys MakeCommandKeys(const char* Namespace, const FLodexCommandInfo& Command)
{
	FLodexCommandKeys Keys;
	Keys.Namespace = Namespace;
	Keys.LabelKey = Command.CommandId;
	Keys.TooltipKey = std::string(Command.CommandId) + "_ToolTip";
	Keys.DotName = std::string(".") + Command.CommandId;
	return Keys;
}

const FLodexCommandInfo* FindCommandById(const FLodexCommandSetInfo& Set, const std::string& CommandId)
{
	for (const FLodexCommandInfo& Command : Set.Commands)
	{
		if (CommandId == Command.CommandId)
		{
			return &Command;
		}
	}
	return nullptr;
}

const FLodexCommandInfo* FindCommandForMode(const FLodexCommandSetInfo& Set, const std::string& Mode)
{
	for (const FLodexCommandInfo& Command : Set.Commands)
	{
		if (Mode == Command.Mode)
		{
			return &Command;
		}
	}
	return nullptr;
}

const std::vector<FLodexMenuInfo>& GetLodexContextMenus()
{
	using namespace PathCommandsPrivate;
	static const std::vector<FLodexMenuInfo> Menus{
		{ELodexMenuKind::SceneOutlinerActor, "Scene outliner actor menu", "the module's menu extender",
			"LevelEditor.SceneOutlinerContextMenu", SectionHook, SectionHeading, "", SubMenuLabel,
			"Print the Lodestring reference for use in Veltrane tests.", "MenuTool", "", false,
			CommandEntries(GetMenuToolCommandSet())},
		{ELodexMenuKind::LevelViewportActor, "Level viewport actor menu",
			"the level editor's viewport context-menu extenders", "ActorType", SectionHook, SectionHeading, "",
			SubMenuLabel, "Print the Lodestring reference for use in Veltrane tests.", "MenuTool", "", false,
			CommandEntries(GetMenuToolCommandSet())},
		{ELodexMenuKind::ComponentsTree, "Components tree menu of the object explorer",
			"Kismet.SubobjectEditorContextMenu", "", "VelTrane", "VelTrane", "Veltrane", SubMenuLabel,
			"Get the Lodestring for the selected component", "DetailToolA", "VelTrane", true,
			{
				{"Lodestring Relative", nullptr, "Lodestring Relative", "Get the Lodestring Relative",
					"Lodestring_Relative", "Lodestring_Relative_Tooltip", LodestringModes::Relative},
				{"Lodestring Absolute", nullptr, "Lodestring Absolute", "Get the Lodestring Absolute",
					"Lodestring_Absolute", "Lodestring_Absolute_Tooltip", LodestringModes::Absolute},
			}},
		{ELodexMenuKind::ExplorerList, "Lists of the object explorer", "the list's context-menu handler", "",
			SectionHook, SectionHeading, "", SubMenuLabel, "Print the Lodestring reference", "DetailToolA", "", false,
			CommandEntries(GetDetailToolCommandSet())},
	};
	return Menus;
}

const FLodexMenuInfo& GetLodexContextMenu(ELodexMenuKind Kind)
{
	const std::vector<FLodexMenuInfo>& Menus = GetLodexContextMenus();
	for (const FLodexMenuInfo& Menu : Menus)
	{
		if (Menu.Kind == Kind)
		{
			return Menu;
		}
	}
	return Menus.front();
}

void StartMenuTool(IMenuToolHost& Host)
{
	const FLodexCommandSetInfo& Set = GetMenuToolCommandSet();
	Host.CreateCommandList();
	Host.RegisterCommandSet(Set);
	for (const FLodexCommandInfo& Command : Set.Commands)
	{
		Host.MapPrintAction(Command, Command.Mode);
	}
	Host.AddModuleMenuExtension(GetLodexContextMenu(ELodexMenuKind::SceneOutlinerActor));
	Host.AddViewportContextMenuExtender(GetLodexContextMenu(ELodexMenuKind::LevelViewportActor));
}

void StopMenuTool(IMenuToolHost& Host)
{
	Host.RemoveViewportContextMenuExtender(GetLodexContextMenu(ELodexMenuKind::LevelViewportActor));
	Host.UnregisterCommandSet(GetMenuToolCommandSet());
}

std::string FormatLodestringLogMessage(const std::string& Lodestring)
{
	std::string Message = "Lodestring : ";
	Message += Lodestring;
	Message += " ";
	return Message;
}

void PrintSelectedActorLodestrings(const ILodexObjectGraph& Graph, const ILodexActorSelection& Selection,
	ILodexOutput& Output, const LodestringMode& Mode)
{
	const std::size_t Count = Selection.Num();
	for (std::size_t Index = 0; Index < Count; ++Index)
	{
		const FLodexObject Actor = Selection.GetSelectedObject(Index);
		if (!Actor)
		{
			continue;
		}
		const std::string Lodestring = BuildLodestring(Graph, Actor, Mode);
		Output.Log(ELodexLogVerbosity::Log, FormatLodestringLogMessage(Lodestring));
		Output.CopyToClipboard(Lodestring);
	}
}
