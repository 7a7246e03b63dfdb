// Copyright Lodex contributors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

enum class ELodexLintSeverity : std::uint8_t
{
	/** The locator does not do what the call needs today: it cannot be read, or finds the wrong number of objects. */
	Error,
	/** The locator works today but is likely to break: it rests on something that changes between runs or edits. */
	Warning,
	/** Worth knowing, never a failure: it rests on something only an edit of the level changes. */
	Note,
};

/**
 * One rule of the lint: the id its findings carry, the severity they have, a one-line summary and the text that
 * says what it flags (Markdown: code in backticks). Every list of the rules (the tool's `--list-rules`, the rules
 * of a SARIF log, the table of docs/lodex.md) is this table.
 */
struct FLodexLintRule
{
	const char* Id;
	ELodexLintSeverity Severity;
	const char* Summary;
	const char* Help;
};

/** The rules, in the order they are listed. Adding a rule is a row here and the check that reports it. */
struct FLodexLintRuleList
{
	const FLodexLintRule* Rules;
	std::size_t Count;
	const FLodexLintRule* begin() const { return Rules; }
	const FLodexLintRule* end() const { return Rules + Count; }
};
FLodexLintRuleList GetLodexLintRules();

/** The rule of that id, or null. */
const FLodexLintRule* FindLodexLintRule(std::string_view Id);

/** "error", "warning" or "note". */
const char* GetLodexLintSeverityText(ELodexLintSeverity Severity);
