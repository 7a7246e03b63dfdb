// Copyright Lodex contributors.
// The evaluation of a compiled Lodestring over a scene index, and how its matches are shown; the step-by-step trace
// is in LodestringTrace.cpp.
#include "LodestringEvaluator.h"
#include "LodestringSteps.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <algorithm>
#include <string>

std::string FormatLodexObjectCount(std::size_t Count)
{
	return LodexText::FormatInt(static_cast<std::int64_t>(Count)) + (Count == 1 ? " object" : " objects");
}

FLodexEvaluation EvaluateLodestring(
	const FLodexSceneIndex& Index, const FLodestringProgram& Program, const FLodexEvaluationOptions& Options)
{
	using namespace LodestringEvaluatorPrivate;
	const FEvaluator Evaluator(Index, Program, Options);
	const std::uint32_t End = static_cast<std::uint32_t>(Program.GetText().size());
	FBoundarySets Sets;
	const std::vector<FLodexStepOp>& Ops = Program.GetOps();
	for (std::size_t OpIndex = 0; OpIndex < Ops.size(); ++OpIndex)
	{
		const FLodexStepOp& Op = Ops[OpIndex];
		const bool bRoot = Op.From == 0;
		const FSet& Context = Sets.At(Op.From);
		if (!bRoot && Context.empty())
		{
			continue;
		}
		if (Op.Kind == ELodexStepKind::Property)
		{
			for (const std::uint32_t Object : Context)
			{
				Sets.Properties.push_back({Object, static_cast<std::uint32_t>(OpIndex)});
			}
			continue;
		}
		Sets.Add(Op.To, End, Evaluator.Select(Op, bRoot, Context));
	}

	FLodexEvaluation Evaluation;
	Evaluation.Matches = Sets.Result();
	Evaluation.bOk = !(Evaluation.Matches.empty() && Program.HasStandardError());
	if (!Evaluation.bOk)
	{
		Evaluation.Error = Program.GetStandardError();
	}
	return Evaluation;
}

FLodexEvaluation EvaluateLodestring(
	const FLodexSceneIndex& Index, const std::string& Path, const FLodexEvaluationOptions& Options)
{
	FLodestringProgram Program;
	FLodexEvaluation Evaluation;
	if (!CompileLodestring(Path, Program, Evaluation.Error))
	{
		return Evaluation;
	}
	return EvaluateLodestring(Index, Program, Options);
}

std::string DescribeLodexMatch(
	const FLodexSceneIndex& Index, const FLodestringProgram& Program, const FLodexMatch& Match)
{
	std::string Text = Index.GetAbsoluteLodestring(Match.Object);
	if (Match.Property != FLodexSceneIndex::None && Match.Property < Program.GetOps().size())
	{
		Text += "/@";
		Text += Program.GetOps()[Match.Property].Name;
	}
	return Text;
}

std::string MarkUpLodestring(const std::string& Path, FLodexSpan Span)
{
	auto Escaped = [](const std::string& Text)
	{
		std::string Out;
		Out.reserve(Text.size());
		for (const char Char : Text)
		{
			switch (Char)
			{
				case '&':
					Out += "&amp;";
					break;
				case '<':
					Out += "&lt;";
					break;
				case '>':
					Out += "&gt;";
					break;
				default:
					Out += Char;
			}
		}
		return Out;
	};
	const std::size_t End = std::min<std::size_t>(Span.End, Path.size());
	const std::size_t Begin = std::min<std::size_t>(Span.Begin, End);
	return Escaped(Path.substr(0, Begin)) + LodexHighlight::Open + Escaped(Path.substr(Begin, End - Begin)) +
		LodexHighlight::Close + Escaped(Path.substr(End));
}
