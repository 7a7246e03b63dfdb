// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"

class UWorld;

/**
 * The export of the editor's world as a scene snapshot (the format the lodex tool reads), with the reflection of
 * every class in it. The snapshot's text is made by the core (LodexSnapshot::Write); this writes it to disk.
 */
namespace LodexSnapshotExporter
{
	/** The play-in-editor world while one runs, otherwise the editor's world; null without an editor. */
	UWorld* GetWorldToExport();

	/** Where a snapshot of the world goes by default: the project's Saved/Lodex/<world>.json. */
	FString GetDefaultFile(const UWorld& World);

	/**
	 * Writes the world's snapshot to File (relative paths are taken from the project's folder): first a temporary
	 * file beside it, then renamed over it, so that File is either the old file or the whole new one. The outcome
	 * goes to the log and to a notification. Returns whether the file was written.
	 */
	bool ExportWorld(UWorld& World, const FString& File);

	/** "Lodex.ExportSnapshot [FILE]": exports to FILE, or to the default file. */
	void HandleConsoleCommand(const TArray<FString>& Arguments);

	/** The pull-down entry: asks for the file with a save dialog opened on the default file, then exports. */
	void ExportWithDialog();
}
