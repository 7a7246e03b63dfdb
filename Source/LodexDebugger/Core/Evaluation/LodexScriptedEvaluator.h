// Copyright Lodex contributors.
#pragma once

#include "LodexEvaluator.h"

#include <cstdint>
#include <string>
#include <vector>

/** Which requests a canned answer answers. */
enum class ELodexCannedRequest
{
	Run,
	Load,
	StepInto,
	StepOver,
	/** Step Into or Step Over. */
	Step,
	/** Any request. */
	Any,
};

/** One canned answer: the request it answers and what it publishes. */
struct FLodexCannedAnswer
{
	ELodexCannedRequest Request = ELodexCannedRequest::Any;
	/** False when the answer is for every path. */
	bool bHasPath = false;
	/** The path as written in the file (escapes resolved). */
	std::string Path;
	/** False when the status follows the request: Evaluated (3) for Run, Stepped (8) for the others. */
	bool bHasStatus = false;
	/**
	 * False when `result` was not given: an Evaluated answer then gives the number of items its context
	 * makes in a panel (non-empty pieces between "\r\n").
	 */
	bool bHasResult = false;
	std::vector<std::string> ContextLines;
	std::vector<std::string> StackLines;
	/** Status, result, operation, node type, duration and null fields; texts are joined when answering. */
	FLodexEvaluatorAnswer Answer;
	/** The line of the file where the answer starts. */
	int Line = 0;
};

struct FLodexCannedAnswers
{
	std::vector<FLodexCannedAnswer> Answers;
};

struct FLodexParseError
{
	int Line = 0;
	std::string Message;
};

/**
 * Reads the canned answers of the scripted evaluator from text (the format is described in
 * docs/scripted-evaluator.md). On an error returns false with the line and a message; Out is then
 * unspecified.
 */
bool ParseLodexCannedAnswers(const std::string& Text, FLodexCannedAnswers& Out, FLodexParseError& OutError);

/**
 * An evaluator that answers from canned answers instead of evaluating anything: for trying the panels
 * and for tests. For each request it takes the first answer, in file order, that matches the request
 * and its path and has not been used yet; when every matching answer has been used, the last of them
 * again. A Load makes the step answers (into, over, step) unused again, so a path can be stepped through
 * anew. A request no answer matches is answered with Failed (9).
 */
class FLodexScriptedEvaluator final : public ILodexEvaluator
{
public:
	explicit FLodexScriptedEvaluator(
		FLodexCannedAnswers InAnswers, std::size_t PathCapacity = FLodexEvaluatorSide::DefaultPathCapacity);

	//~ Begin ILodexEvaluator Interface
	virtual void Attach(FLodexEvaluatorBlock& Block) override;
	virtual std::int32_t Serve(FLodexEvaluatorBlock& Block) override;
	virtual std::size_t GetPathCapacity() const override;
	//~ End ILodexEvaluator Interface

	/** The answer to one request, by the rules above (marks the answer used). */
	FLodexEvaluatorAnswer AnswerRequest(const FLodexEvaluatorRequest& Request);

private:
	FLodexCannedAnswers Answers;
	std::vector<bool> Used;
	FLodexEvaluatorSide Side;
};
