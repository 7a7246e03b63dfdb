// Copyright Lodex contributors.
#include "LodexDebuggerPanel.h"

#include "LodexBlockAccess.h"
#include "LodexDebugger/Core/Text/LodexText.h"

FLodexDebuggerPanel::FLodexDebuggerPanel(ILodexEvaluatorHost& InHost)
	: FLodexEvaluatorPanel(InHost, LodexDebuggerColors::Neutral)
{
}

FLodexRequest FLodexDebuggerPanel::OnPathTextCommitted(const std::string& Text)
{
	PathText = Text;
	if (PathText.empty())
	{
		OnResetClicked();
		return {ELodexRequestOutcome::EmptyPath, EEvaluatorCommand::None, 0};
	}
	if (!IsLodexGameRunning(Host))
	{
		ShowGameNotRunning();
		return {ELodexRequestOutcome::GameNotRunning, EEvaluatorCommand::None, 0};
	}
	const std::int32_t Status = LodexBlock::LoadStatus(Block);
	if (Status != 0)
	{
		// A result not yet consumed: the commit is dropped and nothing changes.
		return {ELodexRequestOutcome::ResultPending, EEvaluatorCommand::None, Status};
	}
	EmptyStackItems();
	EmptyContextItems();
	return SendPath(EEvaluatorCommand::Load, bIsIdle);
}

FLodexRequest FLodexDebuggerPanel::OnRunClicked()
{
	if (!IsLodexGameRunning(Host))
	{
		// Unlike the other requests, Run leaves `HasError` (and so the error icon) as it is.
		ShowErrorMessage(LodexGameNotRunningMessage);
		return {ELodexRequestOutcome::GameNotRunning, EEvaluatorCommand::None, 0};
	}
	const bool bWasIdle = bIsIdle;
	bIsIdle = false;
	return SendPath(EEvaluatorCommand::Run, bWasIdle);
}

FLodexRequest FLodexDebuggerPanel::OnStepIntoClicked()
{
	return SendStep(EEvaluatorCommand::StepInto);
}

FLodexRequest FLodexDebuggerPanel::OnStepOverClicked()
{
	return SendStep(EEvaluatorCommand::StepOver);
}

FLodexRequest FLodexDebuggerPanel::SendStep(EEvaluatorCommand Command)
{
	if (!IsLodexGameRunning(Host))
	{
		ShowGameNotRunning();
		return {ELodexRequestOutcome::GameNotRunning, EEvaluatorCommand::None, 0};
	}
	MessageText.clear();
	++TextsRevision;
	const bool bWasIdle = bIsIdle;
	bIsIdle = false;
	return SendPath(Command, bWasIdle);
}

void FLodexDebuggerPanel::OnResetClicked()
{
	SetStateColor(LodexDebuggerColors::Neutral);
	PathDisplay.clear();
	// The path box is emptied, and PathText with it: a later Run sends what the box shows.
	PathText.clear();
	++PathBoxClears;
	MessageText.clear();
	EmptyStackItems();
	EmptyContextItems();
	StackHeader = LodexDebuggerLayout::StackHeader;
	ContextHeader = LodexDebuggerLayout::ContextHeader;
	OperationText.clear();
	NodeTypeText.clear();
	++TextsRevision;
}

void FLodexDebuggerPanel::ShowGameNotRunning()
{
	bHasError = true;
	ShowErrorMessage(LodexGameNotRunningMessage);
}

void FLodexDebuggerPanel::ShowEvaluatorUnavailable()
{
	bHasError = true;
	ShowErrorMessage(LodexEvaluatorUnavailableMessage);
}

void FLodexDebuggerPanel::ShowErrorMessage(const char* Message)
{
	SetStateColor(LodexDebuggerColors::Error);
	MessageText = Message;
	PathDisplay.clear();
	++TextsRevision;
}

std::int32_t FLodexDebuggerPanel::ActOnStatus(std::int32_t Status)
{
	// The status was read first, with acquire; the two list pointers after it are the ones the evaluator
	// published before this status.
	const char* const Context = LodexBlock::LoadPointer(Block.contextText);
	const char* const Stack = LodexBlock::LoadPointer(Block.stackText);
	switch (Status)
	{
		case static_cast<std::int32_t>(EEvaluatorStatus::Accepted):
		case static_cast<std::int32_t>(EEvaluatorStatus::Working):
			EmptyContextItems();
			EmptyStackItems();
			LodexBlock::StoreCommand(Block, 0);
			bIsIdle = false;
			break;
		case static_cast<std::int32_t>(EEvaluatorStatus::Evaluated):
		{
			bHasError = false;
			EmptyStackItems();
			SetStateColor(LodexDebuggerColors::Neutral);
			PathDisplay = PathText;
			MessageText = ReadEvaluatorText(Block.resultText) + " objects found";
			FillItems(ContextItems, Context);
			++ContextItemsRevision;
			StackHeader = LodexDebuggerLayout::StackHeader;
			// No blank before the parenthesis after a Run, unlike after a step.
			ContextHeader = std::string(LodexDebuggerLayout::ContextHeader) + "(" +
				LodexText::FormatInt(static_cast<std::int64_t>(ContextItems.size())) + ")";
			OperationText.clear();
			NodeTypeText.clear();
			DurationText = FormatDuration(LodexBlock::LoadDouble(Block.durationMs));
			++TextsRevision;
			LodexBlock::StoreStatus(Block, 0);
			LodexBlock::StoreCommand(Block, 0);
			break;
		}
		case static_cast<std::int32_t>(EEvaluatorStatus::Finished):
		{
			MessageText = ReadEvaluatorText(Block.resultText);
			if (MessageText.empty())
			{
				SetStateColor(LodexDebuggerColors::Neutral);
				bHasError = false;
			}
			else
			{
				SetStateColor(LodexDebuggerColors::Error);
				bHasError = true;
			}
			PathDisplay = PathText;
			OperationText.clear();
			NodeTypeText.clear();
			++TextsRevision;
			LodexBlock::StoreCommand(Block, 0);
			LodexBlock::StoreStatus(Block, 0);
			break;
		}
		case static_cast<std::int32_t>(EEvaluatorStatus::Stepped):
			bHasError = false;
			PathDisplay = ReadEvaluatorText(Block.resultText);
			OperationText = ReadEvaluatorText(Block.operationText);
			NodeTypeText = ReadEvaluatorText(Block.nodeTypeText);
			FillItems(StackItems, Stack);
			++StackItemsRevision;
			FillItems(ContextItems, Context);
			++ContextItemsRevision;
			StackHeader = std::string(LodexDebuggerLayout::StackHeader) + " (" +
				LodexText::FormatInt(static_cast<std::int64_t>(StackItems.size())) + ")";
			ContextHeader = std::string(LodexDebuggerLayout::ContextHeader) + " (" +
				LodexText::FormatInt(static_cast<std::int64_t>(ContextItems.size())) + ")";
			DurationText = FormatDuration(LodexBlock::LoadDouble(Block.durationMs));
			++TextsRevision;
			LodexBlock::StoreStatus(Block, 0);
			LodexBlock::StoreCommand(Block, 0);
			break;
		case static_cast<std::int32_t>(EEvaluatorStatus::Failed):
			bHasError = true;
			SetStateColor(LodexDebuggerColors::Error);
			PathDisplay = LodexText::FromAnsi(Context);
			MessageText = ReadEvaluatorText(Block.resultText);
			++TextsRevision;
			LodexBlock::StoreStatus(Block, 0);
			LodexBlock::StoreCommand(Block, 0);
			break;
		default:
			// 4, 6, 7 and values outside 0 to 9: left alone, read again on the next tick.
			break;
	}
	return Status;
}

std::string FLodexDebuggerPanel::ExtractHighlight(const std::string& MarkedUpPath)
{
	const std::string Open = LodexDebuggerLayout::HighlightOpen;
	const std::string Close = LodexDebuggerLayout::HighlightClose;
	std::size_t OpenAt = std::string::npos;
	for (std::size_t Index = 0; Index + Open.size() <= MarkedUpPath.size(); ++Index)
	{
		if (LodexText::EqualsIgnoreCase(MarkedUpPath.substr(Index, Open.size()), Open))
		{
			OpenAt = Index;
			break;
		}
	}
	const std::size_t CloseAt = MarkedUpPath.find(Close);
	if (OpenAt == std::string::npos || CloseAt == std::string::npos || CloseAt < OpenAt)
	{
		return std::string();
	}
	return MarkedUpPath.substr(OpenAt, CloseAt + Close.size() - OpenAt);
}

void FLodexDebuggerPanel::EmptyStackItems()
{
	StackItems.clear();
	++StackItemsRevision;
}

void FLodexDebuggerPanel::EmptyContextItems()
{
	ContextItems.clear();
	++ContextItemsRevision;
}

void FLodexDebuggerPanel::FillItems(std::vector<std::string>& Items, const char* Text)
{
	Items = LodexText::SplitDroppingEmpty(LodexText::FromAnsi(Text), LodexText::LineSeparator);
}

std::string FLodexDebuggerPanel::FormatDuration(double DurationMs)
{
	std::string Text = "Duration:";
	LodexText::AppendSanitizedFloat(Text, DurationMs, 1);
	Text += " (ms)";
	return Text;
}
