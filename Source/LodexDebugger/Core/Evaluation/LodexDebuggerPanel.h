// Copyright Lodex contributors.
#pragma once

#include "LodexEvaluatorPanel.h"

#include <cstdint>
#include <string>
#include <vector>

/** The step debugger panel's widget tree: its labels, texts, fill widths and margins. */
namespace LodexDebuggerLayout
{
	inline constexpr const char* PathLabel = "Lode String:";
	inline constexpr const char* EvaluationLabel = "Path Evaluation:";
	inline constexpr const char* OperationLabel = "Operation:";
	inline constexpr const char* NodeTypeLabel = "Node Type:";
	inline constexpr const char* RunButton = "Run";
	inline constexpr const char* StepIntoButton = "Step Into";
	inline constexpr const char* StepOverButton = "Step Over";
	inline constexpr const char* ResetButton = "Reset";
	inline constexpr const char* StackHeader = "Stack";
	inline constexpr const char* ContextHeader = "Context";
	/** The duration text before the first result. */
	inline constexpr const char* InitialDuration = "...";
	/** The editor style's brush of the error icon, shown while `HasError` is true. */
	inline constexpr const char* ErrorIconBrush = "Icons.Error";
	/** The module style's text style of the path display; its decorators come from the same set. */
	inline constexpr const char* PathDisplayTextStyle = "Regular";
	/** The markup around the segment under evaluation. */
	inline constexpr const char* HighlightOpen = "<VELT.Highlight>";
	inline constexpr const char* HighlightClose = "</>";

	/** Fill widths: a label beside its value (the operation and node type rows use the same split). */
	inline constexpr float LabelFillWidth = 0.2f;
	inline constexpr float ValueFillWidth = 0.8f;
	inline constexpr float StackColumnFillWidth = 0.3f;
	inline constexpr float ContextColumnFillWidth = 0.7f;
	/** The margin around each row, and around the duration text. */
	inline constexpr float RowMargin = 5.0f;
	inline constexpr float DurationMargin = 10.0f;
	/** The padding of each list row. */
	inline constexpr float ListRowPadding = 2.0f;
}

namespace LodexDebuggerColors
{
	inline constexpr FLodexColor Neutral{1.0f, 1.0f, 1.0f, 1.0f};
	inline constexpr FLodexColor Error{1.0f, 0.0f, 0.0f, 1.0f};
}

/**
 * The Lodestring Debugger panel (`TabToolPanel`) without its widgets: it sends a path to the evaluator
 * to run whole (Run) or to step through (Load on commit, then Step Into and Step Over), and the poll of
 * a focused panel shows each answer: the marked-up path, operation, node type, stack, context and time.
 *
 * The view reads the texts and lists from here; the revision counters tell it what to redraw, so that a
 * list view is refreshed once for each change of its items.
 */
class FLodexDebuggerPanel final : public FLodexEvaluatorPanel
{
public:
	explicit FLodexDebuggerPanel(ILodexEvaluatorHost& InHost);

	/**
	 * A commit of the path box (any kind): an empty text resets the panel; otherwise, while the game runs
	 * and only when `status` reads 0, the lists are emptied, the path written and Load (4) sent; with
	 * another status the commit is dropped. When the game is not running, the not-running display.
	 */
	FLodexRequest OnPathTextCommitted(const std::string& Text);

	/** "Run": the whole path, Run (1); when the game is not running, the message without the error icon. */
	FLodexRequest OnRunClicked();

	/** "Step Into": Step Into (5) after emptying the message. */
	FLodexRequest OnStepIntoClicked();

	/** "Step Over": Step Over (6) after emptying the message. */
	FLodexRequest OnStepOverClicked();

	/**
	 * "Reset": back to the neutral look with empty texts, lists, path display and path box (and so an
	 * empty `PathText`). Local: nothing is written to the block and nothing pending is cancelled.
	 */
	void OnResetClicked();

	/**
	 * The first highlighted segment of a marked-up path: from the first "<VELT.Highlight>" (found ignoring
	 * case) up to and including the first "</>" of the text. Empty when the open tag is missing, or when
	 * no "</>" follows it (the first "</>" comes before it, or there is none).
	 */
	static std::string ExtractHighlight(const std::string& MarkedUpPath);

	bool IsIdle() const { return bIsIdle; }
	/** Run, Step Into, Step Over and Reset are enabled only while the panel is idle. */
	bool AreButtonsEnabled() const { return bIsIdle; }

	/** The rich path display: the path, with "<VELT.Highlight>" ... "</>" around the current segment. */
	const std::string& GetPathDisplay() const { return PathDisplay; }
	/** The error icon's tooltip. */
	const std::string& GetMessageText() const { return MessageText; }
	const std::string& GetOperationText() const { return OperationText; }
	const std::string& GetNodeTypeText() const { return NodeTypeText; }
	const std::string& GetStackHeader() const { return StackHeader; }
	const std::string& GetContextHeader() const { return ContextHeader; }
	const std::string& GetDurationText() const { return DurationText; }
	const std::vector<std::string>& GetStackItems() const { return StackItems; }
	const std::vector<std::string>& GetContextItems() const { return ContextItems; }

	/** Changes whenever one of the texts above changes. */
	std::uint64_t GetTextsRevision() const { return TextsRevision; }
	/** Change once for each emptying or rebuilding of a list. */
	std::uint64_t GetStackItemsRevision() const { return StackItemsRevision; }
	std::uint64_t GetContextItemsRevision() const { return ContextItemsRevision; }
	/** Changes each time the path box is to be emptied (by Reset). */
	std::uint64_t GetPathBoxClears() const { return PathBoxClears; }

private:
	std::int32_t ActOnStatus(std::int32_t Status) override;
	void ShowEvaluatorUnavailable() override;
	FLodexRequest SendStep(EEvaluatorCommand Command);
	void ShowGameNotRunning();
	/** The error colour and the message, with an empty path display; `HasError` is left as it is. */
	void ShowErrorMessage(const char* Message);
	void EmptyStackItems();
	void EmptyContextItems();
	void FillItems(std::vector<std::string>& Items, const char* Text);
	static std::string FormatDuration(double DurationMs);

	std::string PathDisplay;
	std::string MessageText;
	std::string OperationText;
	std::string NodeTypeText;
	std::string StackHeader = LodexDebuggerLayout::StackHeader;
	std::string ContextHeader = LodexDebuggerLayout::ContextHeader;
	std::string DurationText = LodexDebuggerLayout::InitialDuration;
	std::vector<std::string> StackItems;
	std::vector<std::string> ContextItems;

	std::uint64_t TextsRevision = 0;
	std::uint64_t StackItemsRevision = 0;
	std::uint64_t ContextItemsRevision = 0;
	std::uint64_t PathBoxClears = 0;
};
