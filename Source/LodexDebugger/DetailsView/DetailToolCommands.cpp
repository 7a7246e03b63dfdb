// Copyright Lodex contributors.
#include "DetailToolCommands.h"

#include "LodexDebugger/Interop/LodexEditorAdapters.h"
#include "LodexDebugger/Interop/LodexInterop.h"
#include "Styling/AppStyle.h"

// The context, labels and tooltips are those of the core's "DetailToolA" table (GetDetailToolCommandSet), localisable
// under the keys the engine's command macro would give them.
FDetailToolCommands::FDetailToolCommands()
	: TCommands<FDetailToolCommands>(LodexInterop::ToName(GetDetailToolCommandSet().ContextName),
		  LodexEditor::MakeContextDescription(GetDetailToolCommandSet().ContextName), NAME_None,
		  FAppStyle::GetAppStyleSetName())
{
}

void FDetailToolCommands::RegisterCommands()
{
	const FLodexCommandSetInfo& Set = GetDetailToolCommandSet();
	LodexEditor::MakeCommandFromTable(
		*this, DetailCommand1, Set, GET_MEMBER_NAME_CHECKED(FDetailToolCommands, DetailCommand1));
	LodexEditor::MakeCommandFromTable(
		*this, DetailCommand2, Set, GET_MEMBER_NAME_CHECKED(FDetailToolCommands, DetailCommand2));
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
