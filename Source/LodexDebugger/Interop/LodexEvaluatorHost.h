// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"

#include "LodexDebugger/Core/Evaluation/LodexEvaluatorBridge.h"

/** What the evaluation panels need of the editor: its world contexts, the module manager, the host's block. */
class FLodexEngineEvaluatorHost final : public ILodexEvaluatorHost
{
public:
	//~ Begin ILodexEvaluatorHost Interface
	virtual int GetWorldContextCount() const override;
	virtual std::int32_t GetWorldType(int Index) const override;
	virtual void LoadModule(const char* ModuleName) override;
	virtual FLodexEvaluatorBlock& GetEvaluatorBlock() override;
	//~ End ILodexEvaluatorHost Interface
};

namespace LodexInterop
{
	/** A state colour as the engine's linear colour, components as they are. */
	FLinearColor ToLinearColor(const FLodexColor& Color);
}
