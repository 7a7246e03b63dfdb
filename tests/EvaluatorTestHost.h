// Copyright Lodex contributors.
#pragma once

#include "LodexDebugger/Core/Evaluation/LodexEvaluatorBridge.h"

#include <cstring>
#include <ostream>
#include <string>
#include <vector>

/**
 * The editor as the evaluation panels see it, for tests: world contexts of chosen types, a record of
 * module loads, and a block whose fields the test sets directly, as an evaluator would.
 */
class FTestEvaluatorHost final : public ILodexEvaluatorHost
{
public:
	static constexpr std::size_t BufferSize = 256;

	FTestEvaluatorHost()
	{
		std::memset(PathBuffer, 'x', sizeof(PathBuffer));
		PathBuffer[BufferSize - 1] = '\0';
		Block.pathText = PathBuffer;
		Block.contextText = "";
		Block.resultText = "";
		Block.operationText = "";
		Block.nodeTypeText = "";
		Block.stackText = "";
	}

	int GetWorldContextCount() const override { return static_cast<int>(WorldTypes.size()); }

	std::int32_t GetWorldType(int Index) const override
	{
		++WorldTypeQueries;
		return WorldTypes[static_cast<std::size_t>(Index)];
	}

	void LoadModule(const char* ModuleName) override { LoadedModules.emplace_back(ModuleName); }

	FLodexEvaluatorBlock& GetEvaluatorBlock() override { return Block; }

	/** Only the editor's world: no game runs. */
	void StopGame() { WorldTypes = {static_cast<std::int32_t>(ELodexWorldType::Editor)}; }

	/** Publishes a result as an evaluator does: the texts (kept alive here), the duration, then the status. */
	void Publish(std::int32_t Status, const std::string& Result, const std::string& Context = "",
		const std::string& Stack = "", const std::string& Operation = "", const std::string& NodeType = "",
		double DurationMs = 0.0)
	{
		Texts = {Result, Context, Stack, Operation, NodeType};
		Block.resultText = Texts[0].c_str();
		Block.contextText = Texts[1].c_str();
		Block.stackText = Texts[2].c_str();
		Block.operationText = Texts[3].c_str();
		Block.nodeTypeText = Texts[4].c_str();
		Block.durationMs = DurationMs;
		Block.status = Status;
	}

	/** The path the panel wrote, up to its NUL (the buffer is filled with 'x' beforehand). */
	std::string WrittenPath() const { return std::string(PathBuffer); }

	std::vector<std::int32_t> WorldTypes{
		static_cast<std::int32_t>(ELodexWorldType::Editor), static_cast<std::int32_t>(ELodexWorldType::PIE)};
	mutable int WorldTypeQueries = 0;
	std::vector<std::string> LoadedModules;
	FLodexEvaluatorBlock Block{};
	char PathBuffer[BufferSize];
	std::vector<std::string> Texts;
};

inline std::ostream& operator<<(std::ostream& Out, const FLodexColor& Color)
{
	return Out << "(" << Color.R << ", " << Color.G << ", " << Color.B << ", " << Color.A << ")";
}
