// Copyright Lodex contributors.
#include "LodexEvaluatorBridge.h"

#include "LodexBlockAccess.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <cstring>

bool IsLodexGameRunning(const ILodexEvaluatorHost& Host)
{
	const int Count = Host.GetWorldContextCount();
	for (int Index = 0; Index < Count; ++Index)
	{
		const std::int32_t Type = Host.GetWorldType(Index);
		if (Type == static_cast<std::int32_t>(ELodexWorldType::PIE) ||
			Type == static_cast<std::int32_t>(ELodexWorldType::Game))
		{
			return true;
		}
	}
	return false;
}

bool WriteLodestringToEvaluator(ILodexEvaluatorHost& Host, const std::string& PathText)
{
	const std::string Ansi = LodexText::ToAnsi(PathText);
	Host.LoadModule(LodexEvaluatorModuleName);
	char* const Buffer = LodexBlock::LoadPointer(Host.GetEvaluatorBlock().pathText);
	if (Buffer == nullptr)
	{
		return false;
	}
	// The text and its terminating NUL, which c_str() guarantees.
	std::memcpy(Buffer, Ansi.c_str(), Ansi.size() + 1);
	return true;
}

std::string ReadEvaluatorText(const char* const& Field)
{
	return LodexText::FromAnsi(LodexBlock::LoadPointer(Field));
}

std::string GetEvaluatorCommandName(std::int32_t Command)
{
	switch (Command)
	{
		case static_cast<std::int32_t>(EEvaluatorCommand::None):
			return "None";
		case static_cast<std::int32_t>(EEvaluatorCommand::Run):
			return "Run";
		case static_cast<std::int32_t>(EEvaluatorCommand::Load):
			return "Load";
		case static_cast<std::int32_t>(EEvaluatorCommand::StepInto):
			return "StepInto";
		case static_cast<std::int32_t>(EEvaluatorCommand::StepOver):
			return "StepOver";
		default:
			return LodexText::FormatInt(Command);
	}
}

const char* GetEvaluatorStatusName(std::int32_t Status)
{
	switch (Status)
	{
		case static_cast<std::int32_t>(EEvaluatorStatus::Idle):
			return "Idle";
		case static_cast<std::int32_t>(EEvaluatorStatus::Accepted):
			return "Accepted";
		case static_cast<std::int32_t>(EEvaluatorStatus::Working):
			return "Working";
		case static_cast<std::int32_t>(EEvaluatorStatus::Evaluated):
			return "Evaluated";
		case static_cast<std::int32_t>(EEvaluatorStatus::Finished):
			return "Finished";
		case static_cast<std::int32_t>(EEvaluatorStatus::Stepped):
			return "Stepped";
		case static_cast<std::int32_t>(EEvaluatorStatus::Failed):
			return "Failed";
		default:
			return "unknown";
	}
}

bool IsKnownEvaluatorStatus(std::int32_t Status)
{
	return std::strcmp(GetEvaluatorStatusName(Status), "unknown") != 0;
}
