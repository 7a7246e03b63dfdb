// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Framework/Commands/Commands.h"

/** The "MenuTool" binding context: the scene outliner's and level viewport's Lodestring commands. */
class FMenuToolCommands : public TCommands<FMenuToolCommands>
{
public:
	FMenuToolCommands();

	//~ Begin TCommands<> Interface
	virtual void RegisterCommands() override;
	//~ End TCommands<> Interface

	/** The command of this set with the given id, or null. */
	TSharedPtr<FUICommandInfo> FindCommand(FName CommandId) const;

	/** "Lodestring Relative". */
	TSharedPtr<FUICommandInfo> MenuCommand1;
	/** "Lodestring Absolute". */
	TSharedPtr<FUICommandInfo> MenuCommand2;
};
