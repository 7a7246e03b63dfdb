// Copyright Lodex contributors.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

/**
 * The pre-processing directives of one C# file, as the compiler reads them: `#define` and `#undef` change the
 * symbols, `#if`, `#elif`, `#else` and `#endif` choose which lines are code; the others (`#region`, `#pragma`,
 * `#nullable`, ...) are passed over. A condition holds `true`, `false`, symbols (a symbol the file does not define
 * is false, as in a compilation without `-define`), `!`, `==`, `!=`, `&&`, `||` and parentheses; a condition that
 * cannot be read, or is nested past 64 parentheses, is false.
 */
class FCSharpDirectives
{
public:
	/** Applies one directive: Text is the line after its '#', without the line break. */
	void Apply(std::string_view Text);

	/** Whether the lines after the directives applied so far are code (not in a section a condition leaves out). */
	bool IsActive() const { return Sections.empty() || Sections.back().bActive; }

	/** Whether Condition holds, with the symbols defined so far. */
	bool Evaluate(std::string_view Condition) const;

private:
	struct FSection
	{
		/** Whether the section around this #if is code. */
		bool bParentActive = true;
		/** Whether a branch of this #if has been taken. */
		bool bTaken = false;
		bool bActive = true;
	};
	std::vector<FSection> Sections;
	std::set<std::string, std::less<>> Symbols;
};
