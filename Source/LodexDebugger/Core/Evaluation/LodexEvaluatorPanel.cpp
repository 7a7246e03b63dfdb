// Copyright Lodex contributors.
#include "LodexEvaluatorPanel.h"

FLodexEvaluatorPanel::FLodexEvaluatorPanel(ILodexEvaluatorHost& InHost, const FLodexColor& InStateColor)
	: Host(InHost)
	, Block(InHost.GetEvaluatorBlock())
	, StateColor(InStateColor)
{
}

void FLodexEvaluatorPanel::SetStateColor(const FLodexColor& Color)
{
	StateColor = Color;
	++StateColorChanges;
}

FLodexRequest FLodexEvaluatorPanel::SendPath(EEvaluatorCommand Command, bool bWasIdle)
{
	if (!WriteLodestringToEvaluator(Host, PathText))
	{
		bIsIdle = bWasIdle;
		ShowEvaluatorUnavailable();
		return {ELodexRequestOutcome::EvaluatorUnavailable, EEvaluatorCommand::None, 0};
	}
	LodexBlock::StoreCommand(Block, static_cast<std::int32_t>(Command));
	++RequestsSent;
	return {ELodexRequestOutcome::Sent, Command, 0};
}
