// Copyright Lodex contributors.
#include "LodexReplPanel.h"

#include "LodexBlockAccess.h"
#include "LodexDebugger/Core/Text/LodexText.h"

FLodexReplPanel::FLodexReplPanel(ILodexEvaluatorHost& InHost)
	: FLodexEvaluatorPanel(InHost, LodexReplColors::Initial)
{
}

FLodexRequest FLodexReplPanel::OnPathTextCommitted(const std::string& Text)
{
	PathText = Text;
	return CommitPath(false);
}

FLodexRequest FLodexReplPanel::Run()
{
	return CommitPath(true);
}

FLodexRequest FLodexReplPanel::CommitPath(bool bMarkBusy)
{
	if (PathText.empty())
	{
		Clear();
		return {ELodexRequestOutcome::EmptyPath, EEvaluatorCommand::None, 0};
	}
	if (!IsLodexGameRunning(Host))
	{
		// The REPL shows no message: the state alone records that the game is not running.
		bHasError = true;
		SetStateColor(LodexReplColors::Error);
		return {ELodexRequestOutcome::GameNotRunning, EEvaluatorCommand::None, 0};
	}
	const bool bWasReady = bIsIdle;
	if (bMarkBusy)
	{
		bIsIdle = false;
	}
	return SendPath(EEvaluatorCommand::Run, bWasReady);
}

void FLodexReplPanel::ShowEvaluatorUnavailable()
{
	bHasError = true;
	SetStateColor(LodexReplColors::Error);
	SetCountText(LodexEvaluatorUnavailableCount);
}

void FLodexReplPanel::Clear()
{
	bHasError = false;
	SetStateColor(LodexReplColors::Neutral);
	SetCountText(std::string());
}

std::int32_t FLodexReplPanel::ActOnStatus(std::int32_t Status)
{
	switch (Status)
	{
		case static_cast<std::int32_t>(EEvaluatorStatus::Accepted):
		case static_cast<std::int32_t>(EEvaluatorStatus::Working):
			ContextItems.clear();
			StackItems.clear();
			LodexBlock::StoreCommand(Block, 0);
			bIsIdle = false;
			break;
		case static_cast<std::int32_t>(EEvaluatorStatus::Evaluated):
		{
			bHasError = false;
			ContextItems.clear();
			StackItems.clear();
			SetStateColor(LodexReplColors::Cleared);
			const std::int32_t Count = LodexText::ParseLeadingInt(ReadEvaluatorText(Block.resultText));
			if (Count > 1)
			{
				SetStateColor(LodexReplColors::Several);
			}
			SetCountText(LodexText::FormatInt(Count));
			LodexBlock::StoreStatus(Block, 0);
			LodexBlock::StoreCommand(Block, 0);
			break;
		}
		case static_cast<std::int32_t>(EEvaluatorStatus::Finished):
		{
			const std::string Result = ReadEvaluatorText(Block.resultText);
			if (Result.empty())
			{
				SetStateColor(LodexReplColors::Neutral);
				bHasError = false;
			}
			else
			{
				SetStateColor(LodexReplColors::Message);
				bHasError = true;
			}
			const std::int32_t Count = LodexText::ParseLeadingInt(Result);
			if (Count > 1)
			{
				SetStateColor(LodexReplColors::Several);
			}
			SetCountText(LodexText::FormatInt(Count));
			LodexBlock::StoreCommand(Block, 0);
			LodexBlock::StoreStatus(Block, 0);
			break;
		}
		case static_cast<std::int32_t>(EEvaluatorStatus::Stepped):
			// A step result meant for the debugger: its marked-up path counts as 0, and it is consumed here.
			bHasError = false;
			SetCountText(LodexText::FormatInt(LodexText::ParseLeadingInt(ReadEvaluatorText(Block.resultText))));
			LodexBlock::StoreStatus(Block, 0);
			LodexBlock::StoreCommand(Block, 0);
			break;
		case static_cast<std::int32_t>(EEvaluatorStatus::Failed):
			bHasError = true;
			SetStateColor(LodexReplColors::Error);
			SetCountText("0");
			LodexBlock::StoreStatus(Block, 0);
			LodexBlock::StoreCommand(Block, 0);
			break;
		default:
			// 4, 6, 7 and values outside 0 to 9: left alone, read again on the next tick.
			break;
	}
	return Status;
}

void FLodexReplPanel::SetCountText(std::string Text)
{
	CountText = std::move(Text);
	++CountRevision;
}
