// Copyright Lodex contributors.
#pragma once

#include "LodexBlockAccess.h"
#include "LodexEvaluatorBridge.h"

#include <cstdint>
#include <string>

/**
 * What the REPL and the step debugger panels share: the path box's text, the state colour, whether the panel
 * waits for the evaluator, the request that writes the path and then a command, and the poll that a focused
 * panel runs on each tick. Each panel acts on the statuses it reads in its own way.
 */
class FLodexEvaluatorPanel
{
public:
	virtual ~FLodexEvaluatorPanel() = default;

	/** The path box's text changed: `PathText` follows it. */
	void OnPathTextChanged(const std::string& Text) { PathText = Text; }

	/** The widget's tick: polls the evaluator when the panel or a descendant has user focus; returns whether it did. */
	bool Tick(bool bHasFocus)
	{
		if (!bHasFocus)
		{
			return false;
		}
		PollEvaluator();
		return true;
	}

	/** Reads `status` once and acts on it; returns the value read. Idle costs one load and one store. */
	std::int32_t PollEvaluator()
	{
		const std::int32_t Status = LodexBlock::LoadStatus(Block);
		if (Status == static_cast<std::int32_t>(EEvaluatorStatus::Idle))
		{
			bIsIdle = true;
			return Status;
		}
		return ActOnStatus(Status);
	}

	const std::string& GetPathText() const { return PathText; }
	FLodexColor GetStateColor() const { return StateColor; }
	/** How many times `StateColor` was set since construction. */
	int GetStateColorChanges() const { return StateColorChanges; }
	bool HasError() const { return bHasError; }
	/** How many requests the panel wrote to `command` since construction: one per Enter, per button, per focus loss. */
	int GetRequestsSent() const { return RequestsSent; }

protected:
	FLodexEvaluatorPanel(ILodexEvaluatorHost& InHost, const FLodexColor& InStateColor);

	/** The poll's table for every status but Idle; returns Status. */
	virtual std::int32_t ActOnStatus(std::int32_t Status) = 0;
	/** What the panel shows when the evaluator gives no path buffer. */
	virtual void ShowEvaluatorUnavailable() = 0;

	void SetStateColor(const FLodexColor& Color);

	/**
	 * Writes `PathText` into the evaluator's buffer, then the command. When the evaluator gives no path buffer,
	 * nothing is sent and so nothing will answer: the panel waits as it did before the request (bWasIdle) and
	 * shows that the evaluator is unavailable.
	 */
	FLodexRequest SendPath(EEvaluatorCommand Command, bool bWasIdle);

	ILodexEvaluatorHost& Host;
	/** The host's block, which outlives every panel. */
	FLodexEvaluatorBlock& Block;
	std::string PathText;
	FLodexColor StateColor;
	int StateColorChanges = 0;
	int RequestsSent = 0;
	bool bHasError = false;
	/** No request is waiting for the evaluator: the REPL is ready, the debugger's buttons are enabled. */
	bool bIsIdle = true;
};
