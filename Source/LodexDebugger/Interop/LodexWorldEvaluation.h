// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"

#include "LodexDebugger/Core/Lodestring/LodexMatchNotice.h"
#include "LodexDebugger/Core/Lodestring/LodexSceneIndex.h"

#include <string>
#include <vector>

class UWorld;

/** Every object of a world that a Lodestring can reach: everything inside each of its levels. */
class FLodexWorldObjects final : public ILodexSceneObjects
{
public:
	explicit FLodexWorldObjects(UWorld* InWorld);

	//~ Begin ILodexSceneObjects Interface
	virtual void GetAllObjects(std::vector<FLodexObject>& OutObjects) const override;
	//~ End ILodexSceneObjects Interface

private:
	UWorld* World = nullptr;
};

namespace LodexEditor
{
	/**
	 * Logs and copies the Lodestring of every selected actor in the editor, in the given mode, then shows how many
	 * objects of the editor's world each one matches (`NotifyLodestringMatches`).
	 */
	void PrintSelectedActorLodestrings(const FString& Mode);

	/**
	 * Evaluates each Lodestring against the editor's world and shows how many objects it matches in an editor
	 * notification: as information when each matches exactly one, as a warning otherwise. The text and the
	 * severity are the core's (`MakeLodestringMatchNotice`); nothing is shown without Lodestrings or a world.
	 */
	void NotifyLodestringMatches(const std::vector<std::string>& Lodestrings);

	/**
	 * "Copy Best Lodestring": logs the best Lodestring of every selected actor with the number of objects it matches,
	 * copies them, one a line, and shows the same match notification as the path commands. The rules are the core's
	 * (`PrintSelectedBestLodestrings`); nothing happens without a selection or a world.
	 */
	void CopyBestLodestringsOfSelection();
}
