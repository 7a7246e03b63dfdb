// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Framework/Commands/Commands.h"

/** The "DetailToolA" binding context: the object explorer's Lodestring commands. */
class FDetailToolCommands : public TCommands<FDetailToolCommands>
{
public:
	FDetailToolCommands();

	//~ Begin TCommands<> Interface
	virtual void RegisterCommands() override;
	//~ End TCommands<> Interface

	/** The command of this set with the given id, or null. */
	TSharedPtr<FUICommandInfo> FindCommand(FName CommandId) const;

	/** "Lodestring Relative". */
	TSharedPtr<FUICommandInfo> DetailCommand1;
	/** "Lodestring Absolute". */
	TSharedPtr<FUICommandInfo> DetailCommand2;
};
