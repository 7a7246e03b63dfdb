// Copyright Lodex contributors.
#include "MenuToolCommands.h"

#include "LodexDebugger/Interop/LodexEditorAdapters.h"
#include "LodexDebugger/Interop/LodexInterop.h"
#include "Styling/AppStyle.h"

// The context, labels and tooltips are those of the core's "MenuTool" table (GetMenuToolCommandSet), localisable under
// the keys the engine's command macro would give them.
FMenuToolCommands::FMenuToolCommands()
	: TCommands<FMenuToolCommands>(LodexInterop::ToName(GetMenuToolCommandSet().ContextName),
		  LodexEditor::MakeContextDescription(GetMenuToolCommandSet().ContextName), NAME_None,
		  FAppStyle::GetAppStyleSetName())
{
}

void FMenuToolCommands::RegisterCommands()
{
	const FLodexCommandSetInfo& Set = GetMenuToolCommandSet();
	LodexEditor::MakeCommandFromTable(
		*this, MenuCommand1, Set, GET_MEMBER_NAME_CHECKED(FMenuToolCommands, MenuCommand1));
	LodexEditor::MakeCommandFromTable(
		*this, MenuCommand2, Set, GET_MEMBER_NAME_CHECKED(FMenuToolCommands, MenuCommand2));
}

TSharedPtr<FUICommandInfo> FMenuToolCommands::FindCommand(FName CommandId) const
{
	for (const TSharedPtr<FUICommandInfo>& Command : {MenuCommand1, MenuCommand2})
	{
		if (Command.IsValid() && Command->GetCommandName() == CommandId)
		{
			return Command;
		}
	}
	return nullptr;
}
