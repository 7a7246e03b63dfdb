// Copyright Lodex contributors.
#include "LodexDebuggerCommands.h"

#include "LodexDebugger/Interop/LodexEditorAdapters.h"
#include "LodexDebugger/Interop/LodexInterop.h"
#include "Styling/AppStyle.h"

// The context is named after the module; the command's label and tooltip are those of the core's module command
// (GetModuleTestCommand), localisable in the module's namespace.
FLodexDebuggerCommands::FLodexDebuggerCommands()
	: TCommands<FLodexDebuggerCommands>(LodexInterop::ToName(LodexModuleName),
		  LodexEditor::MakeContextDescription(LodexModuleName), NAME_None, FAppStyle::GetAppStyleSetName())
{
}

void FLodexDebuggerCommands::RegisterCommands()
{
	LodexEditor::MakeCommandFromTable(*this, TestCommand, LodexModuleLocNamespace, GetModuleTestCommand());
}
