// Copyright Lodex contributors.
#pragma once

#include "LodestringEvaluator.h"
#include "LodexSceneIndex.h"
#include "LodexDebugger/Core/Text/LodexOutput.h"

#include <cstddef>
#include <string>
#include <vector>

/** How the editor shows a notice: as information, or as a warning. */
enum class ELodexNoticeSeverity
{
	Info,
	Warning,
};

struct FLodexMatchNotice
{
	/** Empty when there is nothing to show. */
	std::string Text;
	ELodexNoticeSeverity Severity = ELodexNoticeSeverity::Info;
};

/** "matches 1 object", "matches no object", "matches 3 objects: not unique". */
std::string DescribeLodexMatchCount(std::size_t Count);

/** "<Lodestring> matches 1 object", or "<Lodestring> cannot be read: <message>". */
std::string DescribeLodestringCheck(const std::string& Lodestring, const FLodexEvaluation& Evaluation);

/** Whether a locator is usable as it stands: it reads, and it matches exactly one object. */
bool IsUniqueLodestringMatch(const FLodexEvaluation& Evaluation);

/**
 * The notice shown after a command has copied Lodestrings: one line for each (at most
 * `MaxNoticeLines`, then "and N more"), each evaluated over the scene as written (UTF-8, no wildcards).
 * A warning unless every one matches exactly one object; empty text when nothing was copied.
 */
FLodexMatchNotice MakeLodestringMatchNotice(const FLodexSceneIndex& Index, const std::vector<std::string>& Lodestrings);

inline constexpr std::size_t MaxNoticeLines = 5;

/** Passes everything on to another output unchanged, and keeps every text copied to the clipboard. */
class FLodexClipboardCapture final : public ILodexOutput
{
public:
	explicit FLodexClipboardCapture(ILodexOutput& InTarget)
		: Target(InTarget)
	{
	}

	//~ Begin ILodexOutput Interface
	void Log(ELodexLogVerbosity Verbosity, const std::string& Message) override { Target.Log(Verbosity, Message); }
	void CopyToClipboard(const std::string& Text) override
	{
		Target.CopyToClipboard(Text);
		Copied.push_back(Text);
	}
	//~ End ILodexOutput Interface

	const std::vector<std::string>& GetCopiedTexts() const { return Copied; }

private:
	ILodexOutput& Target;
	std::vector<std::string> Copied;
};
