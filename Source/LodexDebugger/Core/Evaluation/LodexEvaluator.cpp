// Copyright Lodex contributors.
#include "LodexEvaluator.h"

#include "LodexBlockAccess.h"

#include <cstring>

namespace
{
	/** What every text field points at before the first answer. */
	const char LodexEvaluatorEmptyText[] = "";
}

FLodexEvaluatorSide::FLodexEvaluatorSide(std::size_t InPathCapacity)
	: PathCapacity(InPathCapacity < 1 ? 1 : InPathCapacity)
	, PathBuffer(new char[PathCapacity]())
{
}

void FLodexEvaluatorSide::Attach(FLodexEvaluatorBlock& Block)
{
	LodexBlock::StorePointer(Block.pathText, PathBuffer.get());
	LodexBlock::StorePointer(Block.contextText, LodexEvaluatorEmptyText);
	LodexBlock::StorePointer(Block.resultText, LodexEvaluatorEmptyText);
	LodexBlock::StorePointer(Block.operationText, LodexEvaluatorEmptyText);
	LodexBlock::StorePointer(Block.nodeTypeText, LodexEvaluatorEmptyText);
	LodexBlock::StorePointer(Block.stackText, LodexEvaluatorEmptyText);
	LodexBlock::StoreDouble(Block.durationMs, 0.0);
	LodexBlock::StoreCommand(Block, 0);
	LodexBlock::StoreStatus(Block, 0);
}

bool FLodexEvaluatorSide::TakeRequest(FLodexEvaluatorBlock& Block, FLodexEvaluatorRequest& OutRequest)
{
	if (LodexBlock::LoadStatus(Block) != 0)
	{
		// An answer not yet consumed: its texts must stay as they are.
		return false;
	}
	const std::int32_t Command = LodexBlock::LoadCommand(Block);
	if (Command == 0)
	{
		return false;
	}
	LodexBlock::StoreCommand(Block, 0);
	OutRequest.Command = Command;
	const char* const Path = LodexBlock::LoadPointer(Block.pathText);
	if (Path == nullptr)
	{
		OutRequest.Path.clear();
		return true;
	}
	const void* const End = std::memchr(Path, '\0', PathCapacity);
	const std::size_t Length =
		End != nullptr ? static_cast<std::size_t>(static_cast<const char*>(End) - Path) : PathCapacity;
	OutRequest.Path.assign(Path, Length);
	return true;
}

void FLodexEvaluatorSide::Publish(FLodexEvaluatorBlock& Block, const FLodexEvaluatorAnswer& Answer)
{
	if (Answer.Status == 0)
	{
		if ((Answer.NullFields & FLodexEvaluatorAnswer::NullPath) != 0)
		{
			LodexBlock::StorePointer(Block.pathText, static_cast<char*>(nullptr));
		}
		return;
	}
	FTextSet& Set = Sets[NextSet];
	NextSet = 1 - NextSet;
	Set.Context = Answer.ContextText;
	Set.Result = Answer.ResultText;
	Set.Operation = Answer.OperationText;
	Set.NodeType = Answer.NodeTypeText;
	Set.Stack = Answer.StackText;

	const auto Text = [&Answer](const std::string& Value, unsigned NullFlag) -> const char*
	{
		return (Answer.NullFields & NullFlag) != 0 ? nullptr : Value.c_str();
	};
	LodexBlock::StorePointer(Block.contextText, Text(Set.Context, FLodexEvaluatorAnswer::NullContext));
	LodexBlock::StorePointer(Block.resultText, Text(Set.Result, FLodexEvaluatorAnswer::NullResult));
	LodexBlock::StorePointer(Block.operationText, Text(Set.Operation, FLodexEvaluatorAnswer::NullOperation));
	LodexBlock::StorePointer(Block.nodeTypeText, Text(Set.NodeType, FLodexEvaluatorAnswer::NullNodeType));
	LodexBlock::StorePointer(Block.stackText, Text(Set.Stack, FLodexEvaluatorAnswer::NullStack));
	LodexBlock::StoreDouble(Block.durationMs, Answer.DurationMs);
	if ((Answer.NullFields & FLodexEvaluatorAnswer::NullPath) != 0)
	{
		LodexBlock::StorePointer(Block.pathText, static_cast<char*>(nullptr));
	}
	LodexBlock::StoreStatus(Block, Answer.Status);
}

void FLodexEvaluatorSide::PublishStatus(FLodexEvaluatorBlock& Block, std::int32_t Status)
{
	LodexBlock::StoreStatus(Block, Status);
}
