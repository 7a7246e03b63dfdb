// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Templates/Function.h"

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
	/** Logs and copies the Lodestring of every selected actor in the editor, in the given mode. */
	void PrintSelectedActorLodestrings(const FString& Mode);

	/**
	 * Checks (with an ensure) that a registered command set still carries the context name, description, labels and
	 * tooltips of the core's table; the engine's command macros need them as literals.
	 */
	void EnsureCommandSetMatches(const FBindingContext& Context, const FLodexCommandSetInfo& Set,
		TFunctionRef<TSharedPtr<FUICommandInfo>(FName)> FindCommand);
}
