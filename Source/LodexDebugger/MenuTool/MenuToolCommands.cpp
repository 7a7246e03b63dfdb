// Copyright Lodex contributors.
#include "MenuToolCommands.h"

#include "Styling/AppStyle.h"

// The labels and tooltips are the ones of the core's "MenuTool" table (GetMenuToolCommandSet); UI_COMMAND needs
// them as literals. MenuTool checks at registration that both still agree.
#define LOCTEXT_NAMESPACE "MenuTool"

FMenuToolCommands::FMenuToolCommands()
	: TCommands<FMenuToolCommands>(TEXT("MenuTool"), NSLOCTEXT("Contexts", "MenuTool", "Veltrane right click menu"),
		  NAME_None, FAppStyle::GetAppStyleSetName())
{
}

void FMenuToolCommands::RegisterCommands()
{
	UI_COMMAND(MenuCommand1, "Lodestring Relative", "Print the Lodestring to the console",
		EUserInterfaceActionType::Button, FInputChord());
	UI_COMMAND(MenuCommand2, "Lodestring Absolute", "Print the Lodestring to the console",
		EUserInterfaceActionType::Button, FInputChord());
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

#undef LOCTEXT_NAMESPACE
