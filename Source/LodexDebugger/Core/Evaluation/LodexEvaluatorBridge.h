// Copyright Lodex contributors.
#pragma once

#include "LodexEvaluatorBlock.h"

#include <cstdint>
#include <string>

/** The module that hosts the evaluator and owns the block; loaded before every path write. */
inline constexpr const char* LodexEvaluatorModuleName = "UnrealCLR";

/** The debugger's message when a request is made while the game is not running. */
inline constexpr const char* LodexGameNotRunningMessage = "Start the game in the editor to run Lodex";

/**
 * The debugger's message when the evaluator gives no buffer to write the path into (`pathText` is
 * null): the request is dropped before anything is written to the block.
 */
inline constexpr const char* LodexEvaluatorUnavailableMessage = "The Lodex evaluator is not available";

/** The REPL's count text when the evaluator gives no path buffer. */
inline constexpr const char* LodexEvaluatorUnavailableCount = "n/a";

/** The engine's world types (`EWorldType::Type`), with its values. */
enum class ELodexWorldType : std::int32_t
{
	None = 0,
	Game = 1,
	Editor = 2,
	PIE = 3,
	EditorPreview = 4,
	GamePreview = 5,
	GameRPC = 6,
	Inactive = 7,
};

/** A colour as four floats (red, green, blue, alpha), kept as given: values beyond 0 to 1 stay so. */
struct FLodexColor
{
	float R;
	float G;
	float B;
	float A;

	bool operator==(const FLodexColor& Other) const
	{
		return R == Other.R && G == Other.G && B == Other.B && A == Other.A;
	}
	bool operator!=(const FLodexColor& Other) const { return !(*this == Other); }
};

/** What the panels need of the editor to make a request: the running game, the host module, the block. */
class ILodexEvaluatorHost
{
public:
	virtual ~ILodexEvaluatorHost() = default;

	/** The number of the engine's world contexts (`GEngine->GetWorldContexts()`). */
	virtual int GetWorldContextCount() const = 0;

	/** The world type of the context at Index, an `ELodexWorldType` value (others may come). */
	virtual std::int32_t GetWorldType(int Index) const = 0;

	/** Makes sure the named module is loaded (`LoadModuleChecked`); a failure stops the editor. */
	virtual void LoadModule(const char* ModuleName) = 0;

	/**
	 * The block shared with the evaluator. A panel asks for it when it is made and keeps it, and again
	 * for every path write: the block must outlive every panel (the host module's global does).
	 */
	virtual FLodexEvaluatorBlock& GetEvaluatorBlock() = 0;
};

/**
 * Whether the editor is playing the game: true at the first world context whose type is PIE or Game.
 * (The engine's own per-world query adds nothing to the type test in an editor: it answers true only
 * for play-in-editor worlds.)
 */
bool IsLodexGameRunning(const ILodexEvaluatorHost& Host);

/**
 * Copies the path into the evaluator's buffer: the text converted with the engine's TCHAR-to-ANSI
 * conversion, the host module loaded, then the bytes and their terminating NUL copied to where
 * `pathText` points, the pointer read afresh. No capacity is known on this side: the evaluator's buffer
 * must hold any path. Returns false, and writes nothing, when `pathText` is null.
 */
bool WriteLodestringToEvaluator(ILodexEvaluatorHost& Host, const std::string& PathText);

/** A text field of the block as UTF-8, read as the engine reads 8-bit text (`LodexText::FromAnsi`); null reads as "".
 */
std::string ReadEvaluatorText(const char* const& Field);

/** What became of a request a panel was asked to make. */
enum class ELodexRequestOutcome
{
	/** The request code was written to `command`. */
	Sent,
	/** The path was empty: the panel cleared itself (REPL) or reset (debugger); nothing was written. */
	EmptyPath,
	/** The game is not running: nothing was written; the panel shows its not-running state. */
	GameNotRunning,
	/** `pathText` is null: nothing was written; the panel shows the evaluator as unavailable. */
	EvaluatorUnavailable,
	/** The debugger's commit while `status` is not 0: dropped, nothing changed. */
	ResultPending,
};

struct FLodexRequest
{
	ELodexRequestOutcome Outcome;
	/** The code written, when Outcome is Sent; None otherwise. */
	EEvaluatorCommand Command;
	/** The status that made a commit wait, when Outcome is ResultPending. */
	std::int32_t PendingStatus;
};

/** "Run", "Load", "StepInto", "StepOver", "None", or the value in decimal for others. */
std::string GetEvaluatorCommandName(std::int32_t Command);

/** "Idle", "Accepted", "Working", "Evaluated", "Finished", "Stepped", "Failed", or "unknown" for others. */
const char* GetEvaluatorStatusName(std::int32_t Status);

/** Whether a poll acts on the status (0, 1, 2, 3, 5, 8, 9); every other value is left alone. */
bool IsKnownEvaluatorStatus(std::int32_t Status);
