// Copyright Lodex contributors.
#pragma once

#include "LodexEvaluatorPanel.h"

#include <cstdint>
#include <string>
#include <vector>

/** The REPL panel's widget tree: one row of label, path box and count box. */
namespace LodexReplLayout
{
	inline constexpr const char* PathLabel = "Lode String:";
	inline constexpr float LabelFillWidth = 0.2f;
	inline constexpr float PathBoxFillWidth = 0.7f;
	inline constexpr float CountBoxFillWidth = 0.1f;
	/** The margin around the row. */
	inline constexpr float RowMargin = 5.0f;
	/** The count text's colour, components as given (not normalised). */
	inline constexpr FLodexColor CountTextColor{255.0f, 255.0f, 255.0f, 255.0f};
}

/** The REPL's state colours, components exactly as used (some beyond the 0 to 1 range on purpose). */
namespace LodexReplColors
{
	inline constexpr FLodexColor Initial{0.0f, 0.0f, 0.0f, 1.0f};
	inline constexpr FLodexColor Neutral{1.0f, 1.0f, 1.0f, 1.0f};
	inline constexpr FLodexColor Cleared{0.0f, 0.0f, 0.0f, 0.0f};
	inline constexpr FLodexColor Several{235.0f, 164.0f, 52.0f, 0.0f};
	inline constexpr FLodexColor Error{1.0f, 0.0f, 0.0f, 1.0f};
	inline constexpr FLodexColor Message{200.0f, 0.0f, 0.0f, 1.0f};
}

/**
 * The Lodex REPL panel (`ReplToolPanel`) without its widgets: a committed Lodestring is sent to the
 * evaluator as a Run, and the poll of a focused panel shows the number of objects found.
 *
 * The count text is the only output drawn. `StateColor` and `HasError` are state: the count box's border
 * takes its colour once, at construction (opaque black), and keeps it. Each change of `StateColor` is
 * counted, as each one made a new colour in the panel this reproduces.
 */
class FLodexReplPanel final : public FLodexEvaluatorPanel
{
public:
	explicit FLodexReplPanel(ILodexEvaluatorHost& InHost);

	/**
	 * The path box's text was committed (Enter, focus leaving the box, any kind): an empty text clears the
	 * panel; otherwise, while the game runs, the path is written and Run (1) overwrites `command` whatever
	 * it holds; when the game is not running the panel only records the error.
	 */
	FLodexRequest OnPathTextCommitted(const std::string& Text);

	/** A commit of the current `PathText` that also marks the panel busy before writing. Not bound to a control. */
	FLodexRequest Run();

	/** No error, the neutral colour, an empty count. */
	void Clear();

	/** The count box's border colour: `StateColor` as it was at construction, kept for the panel's life. */
	static constexpr FLodexColor GetBorderColor() { return LodexReplColors::Initial; }
	bool IsReady() const { return bIsIdle; }
	const std::string& GetCountText() const { return CountText; }
	/** The result lists; the REPL only empties them. */
	const std::vector<std::string>& GetContextItems() const { return ContextItems; }
	const std::vector<std::string>& GetStackItems() const { return StackItems; }
	/** Changes each time the count text is set, so that the view knows when to redraw it. */
	std::uint64_t GetCountRevision() const { return CountRevision; }

private:
	std::int32_t ActOnStatus(std::int32_t Status) override;
	void ShowEvaluatorUnavailable() override;
	void SetCountText(std::string Text);
	FLodexRequest CommitPath(bool bMarkBusy);

	std::string CountText;
	std::vector<std::string> ContextItems;
	std::vector<std::string> StackItems;
	std::uint64_t CountRevision = 0;
};
