// Copyright Lodex contributors.
#include "DetailToolCommands.h"

#include "Styling/AppStyle.h"

// The labels and tooltips are the ones of the core's "DetailToolA" table (GetDetailToolCommandSet); UI_COMMAND needs
// them as literals.
#define LOCTEXT_NAMESPACE "DetailToolA"

FDetailToolCommands::FDetailToolCommands()
	: TCommands<FDetailToolCommands>(TEXT("DetailToolA"),
		  NSLOCTEXT("Contexts", "DetailToolA", "Veltrane right click menu"), NAME_None, FAppStyle::GetAppStyleSetName())
{
}

void FDetailToolCommands::RegisterCommands()
{
	UI_COMMAND(DetailCommand1, "Lodestring Relative", "Print the Lodestring to the console",
		EUserInterfaceActionType::Button, FInputChord());
	UI_COMMAND(DetailCommand2, "Lodestring Absolute", "Print the Lodestring to the console",
		EUserInterfaceActionType::Button, FInputChord());
}

TSharedPtr<FUICommandInfo> FDetailToolCommands::FindCommand(FName CommandId) const
{
	for (const TSharedPtr<FUICommandInfo>& Command : {DetailCommand1, DetailCommand2})
	{
		if (Command.IsValid() && Command->GetCommandName() == CommandId)
		{
			return Command;
		}
	}
	return nullptr;
}

#undef LOCTEXT_NAMESPACE
