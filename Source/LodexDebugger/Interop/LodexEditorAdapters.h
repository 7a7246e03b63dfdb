// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"

#include "LodexDebugger/Core/Text/LodexOutput.h"
#include "LodexDebugger/Core/Paths/PathCommands.h"

class FBindingContext;
class FUICommandInfo;
class USelection;

/** The editor's actor selection (GEditor->GetSelectedActors()) seen by the core, in selection order. */
class FLodexEditorActorSelection final : public ILodexActorSelection
{
public:
	/** The selection of the global editor; empty when there is no editor. */
	FLodexEditorActorSelection();
	explicit FLodexEditorActorSelection(USelection* InSelection);

	//~ Begin ILodexActorSelection Interface
	virtual std::size_t Num() const override;
	virtual FLodexObject GetSelectedObject(std::size_t Index) const override;
	//~ End ILodexActorSelection Interface

private:
	USelection* Selection = nullptr;
};

/** The log category LogTemp and the system clipboard. */
class FLodexEditorOutput final : public ILodexOutput
{
public:
	//~ Begin ILodexOutput Interface
	virtual void Log(ELodexLogVerbosity Verbosity, const std::string& Message) override;
	virtual void CopyToClipboard(const std::string& Text) override;
	//~ End ILodexOutput Interface
};

namespace LodexEditor
{
	/** A command set's description, localisable under the key of its context name, as the engine's contexts have it. */
	FText MakeContextDescription(const char* ContextName);

	/**
	 * Makes a command of a binding context from its row of the core's table, as the engine's command macro does: a push
	 * button with no key chord, its label and tooltip localisable under the command id and the id with "_ToolTip" in
	 * the namespace given, and the icon ".CommandId" of the context's style set.
	 */
	void MakeCommandFromTable(FBindingContext& Context, TSharedPtr<FUICommandInfo>& OutCommand,
		const char* LocNamespace, const FLodexCommandInfo& Command);

	/** The same for the command of a set whose id is CommandId (a member name of the context), in the set's namespace.
	 */
	void MakeCommandFromTable(FBindingContext& Context, TSharedPtr<FUICommandInfo>& OutCommand,
		const FLodexCommandSetInfo& Set, FName CommandId);
}
