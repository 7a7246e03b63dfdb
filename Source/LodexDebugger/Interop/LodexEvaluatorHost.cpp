// Copyright Lodex contributors.
#include "LodexEvaluatorHost.h"

#include "Engine/Engine.h"
#include "Engine/EngineTypes.h"
#include "LodexInterop.h"
#include "LodexUnrealCLR.h"
#include "Modules/ModuleManager.h"

static_assert(static_cast<int32>(EWorldType::Game) == static_cast<int32>(ELodexWorldType::Game), "EWorldType::Game");
static_assert(static_cast<int32>(EWorldType::PIE) == static_cast<int32>(ELodexWorldType::PIE), "EWorldType::PIE");

int FLodexEngineEvaluatorHost::GetWorldContextCount() const
{
	return GEngine != nullptr ? GEngine->GetWorldContexts().Num() : 0;
}

std::int32_t FLodexEngineEvaluatorHost::GetWorldType(int Index) const
{
	return static_cast<std::int32_t>(GEngine->GetWorldContexts()[Index].WorldType.GetValue());
}

void FLodexEngineEvaluatorHost::LoadModule(const char* ModuleName)
{
	FModuleManager::Get().LoadModuleChecked(LodexInterop::ToName(ModuleName));
}

FLodexEvaluatorBlock& FLodexEngineEvaluatorHost::GetEvaluatorBlock()
{
	return LodexUnrealCLR::GetEvaluatorBlock();
}

namespace LodexInterop
{
	FLinearColor ToLinearColor(const FLodexColor& Color)
	{
		return FLinearColor(Color.R, Color.G, Color.B, Color.A);
	}
}
