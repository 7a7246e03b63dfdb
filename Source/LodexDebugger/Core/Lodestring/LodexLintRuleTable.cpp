// Copyright Lodex contributors.
#include "LodexLintRuleTable.h"

#include "LodexLocatorLint.h"

namespace
{
	constexpr ELodexLintSeverity RuleTableError = ELodexLintSeverity::Error;
	constexpr ELodexLintSeverity RuleTableWarning = ELodexLintSeverity::Warning;
	constexpr ELodexLintSeverity RuleTableNote = ELodexLintSeverity::Note;

	const FLodexLintRule LodexLintRuleRows[] = {
		{LodexLintRules::Unreadable, RuleTableError, "The Lodestring cannot be read",
			"the Lodestring cannot be read (the reader's message), or the literal is not UTF-8 text"},
		{LodexLintRules::NoMatch, RuleTableError, "The Lodestring matches no object",
			"it matches no object of the scene"},
		{LodexLintRules::Ambiguous, RuleTableError, "The Lodestring matches several objects where the call acts on one",
			"it matches more than one object where the call acts on one; a `note:` line for each of the first five "
			"matches gives the Lodestring that finds that match alone, and, when the matches lie in more than one "
			"level "
			"(a map and its sub-levels), the level it is in"},
		{LodexLintRules::GeneratedSuffix, RuleTableWarning,
			"A name it tests ends in an instance number that can change from one run to the next",
			"a name it tests (a bare name, `@name = '...'`, `fn:component('...')`) ends in an instance number the "
			"engine generates (`Cube_2`, `Enemy_C_3`), and some object of that name is not known to be saved with its "
			"level (spawned at play time, or a snapshot that does not say): its number can change from one run to "
			"the next"},
		{LodexLintRules::PlacedGeneratedSuffix, RuleTableNote,
			"A name it tests ends in an instance number that only an edit of the level changes",
			"such a name, where every object of that name was saved with its level (a level read by `lodex`, or "
			"objects a snapshot marks `\"placed\": true`): the name is the same on every run and only an edit of the "
			"level renumbers it. A note never fails a run, `--strict` included; it suggests the best Lodestring when "
			"that rests on no generated name, and otherwise says that a tag would not rest on one"},
		{LodexLintRules::NotInLevel, RuleTableWarning, "The Lodestring matches no object the level saves",
			"on a scene read from a level's files, in place of `no-match`: it matches no object the level saves, and "
			"may name one spawned at play time"},
		{LodexLintRules::DeepAbsolute, RuleTableWarning, "The Lodestring names too many levels from the root",
			"it names more than `--max-depth` levels (default 5) from the root before any `//`: re-attaching any of "
			"those parents breaks it"},
		{LodexLintRules::SharedTag, RuleTableWarning, "A tag predicate in it matches several objects",
			"it finds the one object the call expects, but a predicate on tags in it matches several objects of the "
			"scene: it finds one only by where it looks"},
		{LodexLintRules::UnknownLevel, RuleTableError, "The test loads a level the project does not have",
			"with `--project`: an `api.LoadLevel(\"...\")` names a package path with no level file in the project "
			"(`/Game/X` is `Content/X.umap`, `/Plugin/X` the plug-in's `Content/X.umap`); reported at the path, and "
			"the Lodestrings up to the next `LoadLevel` are not checked"},
		{LodexLintRules::NoLevel, RuleTableNote, "The Lodestring comes before any level is loaded",
			"with `--project` and no `--scene`: the Lodestring comes before any `api.LoadLevel(\"...\")` of its "
			"file, so no level says what it should find; it is not checked"},
		{LodexLintRules::BrokenByChange, RuleTableError, "A change of the level broke the Lodestring",
			"with `--baseline`: the Lodestring found exactly one object on the level before and finds none or several "
			"now; the message says which change broke it (a rename, a re-attachment, a tag removed, an object added or "
			"removed), and `--fix` repairs it when its object is still in the level"},
		{LodexLintRules::EditorOnly, RuleTableWarning, "The Lodestring finds only objects the game does not have",
			"every object it finds is editor-only: saved not-for-client and not-for-server (a sprite or arrow "
			"component, a BSP brush; a level read by `lodex`, or objects a snapshot marks `\"editorOnly\": true`), so "
			"the game never loads it"},
		{LodexLintRules::EditorLabel, RuleTableWarning, "The Lodestring names an actor by its editor label",
			"on a scene read from a level's files, in place of `not-in-level`: it matches no object, and a name it "
			"tests is the editor label (`ActorLabel`) of an actor, which the game does not know; it suggests that "
			"actor's best Lodestring"},
		{LodexLintRules::StreamedLevel, RuleTableNote,
			"The Lodestring finds objects only in a level streamed in at play time",
			"every object it finds lies in a sub-level that the game loads only when it streams it in (a "
			"`LevelStreamingDynamic` that does not save `bInitiallyLoaded`, or a level a snapshot marks "
			"`\"streamedOnDemand\": true`): it finds them only once that level is streamed in"},
	};
}

FLodexLintRuleList GetLodexLintRules()
{
	return {LodexLintRuleRows, sizeof(LodexLintRuleRows) / sizeof(LodexLintRuleRows[0])};
}

const FLodexLintRule* FindLodexLintRule(std::string_view Id)
{
	for (const FLodexLintRule& Rule : GetLodexLintRules())
	{
		if (Id == Rule.Id)
		{
			return &Rule;
		}
	}
	return nullptr;
}

const char* GetLodexLintSeverityText(ELodexLintSeverity Severity)
{
	return Severity == ELodexLintSeverity::Error  ? "error"
		: Severity == ELodexLintSeverity::Warning ? "warning"
												  : "note";
}
