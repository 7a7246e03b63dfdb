// Copyright Lodex contributors.
#pragma once

#include "LodexReflection.h"
#include "SnapshotObject.h"
#include "LodexDebugger/Core/Lodestring/LodexObjectGraph.h"
#include "LodexDebugger/Core/Shell/LodexShell.h"

#include <cstddef>
#include <string>
#include <vector>

/** What a written scene snapshot holds. */
struct FLodexSnapshotCounts
{
	std::size_t Objects = 0;
	std::size_t Classes = 0;
};

/** One object as a snapshot writes it. References are indices into the list written. */
struct FLodexSnapshotObject
{
	static constexpr std::size_t NoObject = static_cast<std::size_t>(-1);

	std::string Id;
	ELodexSnapshotKind Kind = ELodexSnapshotKind::Other;
	std::string Name;
	std::size_t Outer = NoObject;
	std::size_t AttachParent = NoObject;
	std::size_t WidgetParent = NoObject;
	std::size_t RootWidget = NoObject;
	/** The object's "Tags" array; null when it has none. */
	const std::vector<std::string>* Tags = nullptr;
	ELodexPlacement Placement = ELodexPlacement::Unknown;
	/** What its level saves of it; null for nothing. */
	const FLodexSavedObject* Saved = nullptr;
	/** For a level: the game loads it only when it streams it in. */
	bool bStreamedOnDemand = false;
	/** For a level loaded as a Level Instance: the id of the actor that instances it; empty otherwise. */
	std::string InstancedBy;
	/** The package the object was read from; empty when unknown. */
	std::string Package;
	/** Its class, by its name among the snapshot's classes; empty for none. */
	std::string Class;
};

/** Writes a number of a snapshot (a location's coordinates) to Out. */
using FLodexAppendNumber = void (*)(std::string& Out, double Value);

namespace LodexSnapshot
{
	/**
	 * The scene snapshot text (JSON, UTF-8) of the objects: each object with its id, kind, name, references,
	 * tags and class, then every class met (each object's class and its super classes) with its own functions,
	 * their properties and flags, and its own properties. Objects that the given ones refer to (outers, attach
	 * parents, widget parents, root widgets) are written too, after them. Ids are the objects' names, made unique
	 * with "#2", "#3", ... Text that is not well-formed UTF-8 is written with U+FFFD in place of each bad byte.
	 */
	std::string Write(const ILodexObjectGraph& Graph, const ILodexReflection& Reflection,
		const std::vector<FLodexObject>& Objects, FLodexSnapshotCounts* OutCounts = nullptr);

	/**
	 * The scene snapshot text (JSON, UTF-8) of objects as they are to be written, in order, without classes (what
	 * `lodex level --format json` writes): one value a line, each level of nesting indented by one blank, text with
	 * the short escapes JSON has (`\b` and `\f` among them) and one U+FFFD for each ill-formed part of a UTF-8
	 * sequence (a sequence cut short counts once). Fields are written as Write writes them, in the same order.
	 * AppendNumber writes each number; null writes it with "%.17g", which reads back as the same double.
	 */
	std::string WriteObjects(
		const std::vector<FLodexSnapshotObject>& Objects, FLodexAppendNumber AppendNumber = nullptr);

	/** Appends the text as a JSON string literal, quotes included. */
	void AppendJsonString(std::string& Out, const std::string& Text);
}

/** The export of the editor's world as a scene snapshot: its console command and its pull-down entry. */
struct FLodexSnapshotExportInfo
{
	/** "Lodex.ExportSnapshot [FILE]", and "Export Scene Snapshot" in the pull-down. */
	FLodexPullDownCommandInfo Command;
	/** The folder under the project's "Saved" folder where snapshots go by default. */
	const char* DefaultFolder;
	/** The file name suffix of a snapshot, and of the temporary file written first. */
	const char* FileExtension;
	const char* TemporarySuffix;
};

const FLodexSnapshotExportInfo& GetLodexSnapshotExport();

namespace LodexSnapshot
{
	/** Installs the export: the pull-down entry, then the console command. */
	void StartExport(ILodexPullDownCommandHost& Host);

	/** Removes the console command (the pull-down goes with the module's menu extender). */
	void StopExport(ILodexPullDownCommandHost& Host);

	/** What the console command's arguments ask for: the file, or the default when none is given. */
	struct FExportRequest
	{
		bool bUseDefaultFile = false;
		std::string File;
	};

	/**
	 * The file the arguments name. The console splits its input at blanks, so the pieces are joined again with one
	 * blank each; double quotes around the whole are removed. No argument asks for the default file.
	 */
	FExportRequest ParseConsoleArguments(const std::vector<std::string>& Arguments);

	/** The default file name for a world: its name with characters unfit for a file name replaced by '_'. */
	std::string MakeDefaultFileName(const std::string& WorldName);

	/** The log line and notification text after a snapshot was written. */
	std::string FormatWrittenMessage(const std::string& Path, const FLodexSnapshotCounts& Counts);

	/** The log line and notification text when a snapshot could not be written. */
	std::string FormatFailedMessage(const std::string& Path, const std::string& Reason);
}
