// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Framework/Commands/Commands.h"

/** The module's own command set; its one command is used by no menu or action. */
class FLodexDebuggerCommands : public TCommands<FLodexDebuggerCommands>
{
public:
	FLodexDebuggerCommands();

	//~ Begin TCommands<> Interface
	virtual void RegisterCommands() override;
	//~ End TCommands<> Interface

	TSharedPtr<FUICommandInfo> TestCommand;
};
