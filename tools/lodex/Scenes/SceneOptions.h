// Copyright Lodex contributors.
#pragma once

#include "SceneFile.h"

#include <ostream>
#include <string>

namespace CLI
{
	class App;
}

/** The help text of `--no-sublevels`, the same for every command that reads a scene. */
inline constexpr const char* LodexNoSubLevelsHelp =
	"For a level: read only the level itself, not the streaming sub-levels it names";

/** The help text of `--verbose`, the same for every command that reads a scene. */
inline constexpr const char* LodexVerboseNotesHelp =
	"For a level: list each part that could not be read (external actor, sub-level, Blueprint class) in a note "
	"of its own, rather than summing up three or more of a kind in one line";

/** The help text of `--scene` for a command that says no more about its scene. */
inline constexpr const char* LodexSceneFileHelp = "Scene file: a snapshot (JSON) or a level (.umap)";

/** What a command's scene options hold besides the scene itself, each a bit of FSceneOptionLayout::Flags. */
enum ESceneOptionFlags : unsigned
{
	/** The scene must be given. */
	SceneRequired = 1u << 0,
	/** The command takes `--verbose`: each part of a level that could not be read in a note of its own. */
	SceneVerboseNotes = 1u << 1,
};

/**
 * How a command takes its scene, one line in the command's code: the option or positional that names the scene,
 * its help text, and the flags. Every command that reads a scene takes `--no-sublevels`.
 */
struct FSceneOptionLayout
{
	/** "--scene", or the name of a positional ("level"); null for a command that names its scenes itself. */
	const char* Name;
	const char* Help;
	unsigned Flags;
};

/**
 * A command's scene options: declared on the command as its layout says, and once parsed the options of the reading,
 * which loads the scene they name.
 */
class FCommandSceneOptions : public FSceneFileOptions
{
public:
	explicit FCommandSceneOptions(const FSceneOptionLayout& InLayout)
		: Layout(InLayout)
	{
	}

	/** Declares the scene's option, then the flags for reading a level. */
	void Declare(CLI::App& Command);

	/** The scene's option alone: on a group of options, or before options of the command's own. */
	void DeclareScene(CLI::App& Command);

	/** `--no-sublevels`, then `--verbose` when the layout takes it. */
	void DeclareLevelFlags(CLI::App& Command);

	/** Whether a scene was named. */
	bool IsGiven() const { return !Path.empty(); }

	/** LoadSceneFileFor with the options given: notes and a failure written to Err. */
	bool Load(FSceneFile& Out, std::ostream& Err) const;

private:
	FSceneOptionLayout Layout;
};
