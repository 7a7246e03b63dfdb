// Copyright Lodex contributors.
#include "LodexDebuggerCommands.h"

#include "Styling/AppStyle.h"

// Label and tooltip are the ones of the core's module command (GetModuleTestCommand).
#define LOCTEXT_NAMESPACE "FLodexDebugger"

FLodexDebuggerCommands::FLodexDebuggerCommands()
	: TCommands<FLodexDebuggerCommands>(TEXT("LodexDebugger"),
		  NSLOCTEXT("Contexts", "LodexDebugger", "Veltrane right click menu"), NAME_None,
		  FAppStyle::GetAppStyleSetName())
{
}

void FLodexDebuggerCommands::RegisterCommands()
{
	UI_COMMAND(TestCommand, "TestCommand", "This is test command", EUserInterfaceActionType::Button, FInputChord());
}

#undef LOCTEXT_NAMESPACE
