// Copyright Lodex contributors.
#pragma once

#include "Scenes/SceneOptions.h"

#include "LodexDebugger/Core/Evaluation/LodexEvaluator.h"
#include "LodexDebugger/Core/Evaluation/LodexEvaluatorBridge.h"

#include <istream>
#include <memory>
#include <ostream>
#include <string>

/** The scene of `lodex repl` and `lodex debug`: one of the evaluators, which the command requires one of. */
inline constexpr FSceneOptionLayout LodexSessionSceneLayout{
	"--scene", "A scene file, a snapshot (JSON) or a level (.umap), on which the native evaluator answers", 0};

/** The options `lodex repl` and `lodex debug` share: which evaluator answers, and the game's state. */
struct FLodexSessionOptions
{
	/** A scene file (a snapshot or a level) the native evaluator answers on (see docs/lodestring.md). */
	FCommandSceneOptions SceneFile{LodexSessionSceneLayout};
	/** Canned answers for the scripted evaluator (see docs/scripted-evaluator.md). */
	std::string EvaluatorFile;
	bool bGameNotRunning = false;
};

/** Declares the shared options on a subcommand. */
void AddLodexEvaluationOptions(CLI::App& Command, FLodexSessionOptions& Options);

/**
 * The evaluator the options choose. On a file that cannot be read or parsed, writes one line naming the
 * file (and the line) to Err and returns null.
 */
std::unique_ptr<ILodexEvaluator> MakeLodexEvaluator(const FLodexSessionOptions& Options, std::ostream& Err);

/** The scripted evaluator over canned-answer text; on a parse error one line naming Name on Err, and null. */
std::unique_ptr<ILodexEvaluator> MakeLodexScriptedEvaluator(
	const std::string& Text, const std::string& Name, std::ostream& Err);

/** The editor as the panels see it, headless: the game running or not, the evaluator's block. */
class FLodexHeadlessEvaluatorHost final : public ILodexEvaluatorHost
{
public:
	explicit FLodexHeadlessEvaluatorHost(bool bInGameRunning);

	//~ Begin ILodexEvaluatorHost Interface
	virtual int GetWorldContextCount() const override;
	virtual std::int32_t GetWorldType(int Index) const override;
	virtual void LoadModule(const char* ModuleName) override;
	virtual FLodexEvaluatorBlock& GetEvaluatorBlock() override;
	//~ End ILodexEvaluatorHost Interface

	int GetModuleLoads() const { return ModuleLoads; }

private:
	bool bGameRunning;
	int ModuleLoads = 0;
	FLodexEvaluatorBlock Block{};
};

/** Where a session reads its lines and writes its transcript. */
struct FLodexSessionIo
{
	std::istream& In;
	std::ostream& Out;
	std::ostream& Err;
	/** Echo each line read as "> line" (input from a pipe or a script); otherwise prompt with "> ". */
	bool bEcho;
};

/**
 * `lodex repl`: each line is a commit of the REPL's path box, answered by the evaluator on its own thread;
 * after each, what the panel shows. Returns the exit code.
 */
int RunLodexReplSession(ILodexEvaluator& Evaluator, bool bGameRunning, FLodexSessionIo& Io);

/**
 * `lodex debug`: each line is a button (run, into, over, reset), an edit of the path box (type TEXT), or
 * a commit of the path box (load TEXT, or any other line); after each, the debugger panel's texts.
 */
int RunLodexDebugSession(ILodexEvaluator& Evaluator, bool bGameRunning, FLodexSessionIo& Io);

/** The canned answers embedded for `lodex demo` (samples/evaluator-answers.txt). */
std::string GetSampleEvaluatorAnswers();

/**
 * The evaluation part of `lodex demo`: a short REPL session and a short step-debugger session against
 * the scripted evaluator with the embedded answers. Returns false (one line on Err) if they do not parse.
 */
bool PrintLodexEvaluationDemo(std::ostream& Out, std::ostream& Err);
