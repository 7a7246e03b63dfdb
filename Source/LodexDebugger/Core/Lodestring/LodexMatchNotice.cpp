// Copyright Lodex contributors.
#include "LodexMatchNotice.h"

#include "LodexDebugger/Core/Text/LodexText.h"

std::string DescribeLodexMatchCount(std::size_t Count)
{
	if (Count == 0)
	{
		return "matches no object";
	}
	if (Count == 1)
	{
		return "matches 1 object";
	}
	return "matches " + FormatLodexObjectCount(Count) + ": not unique";
}

std::string DescribeLodestringCheck(const std::string& Lodestring, const FLodexEvaluation& Evaluation)
{
	if (!Evaluation.bOk)
	{
		return Lodestring + " cannot be read: " + Evaluation.Error.Message;
	}
	return Lodestring + " " + DescribeLodexMatchCount(Evaluation.Matches.size());
}

bool IsUniqueLodestringMatch(const FLodexEvaluation& Evaluation)
{
	return Evaluation.bOk && Evaluation.Matches.size() == 1;
}

FLodexMatchNotice MakeLodestringMatchNotice(const FLodexSceneIndex& Index, const std::vector<std::string>& Lodestrings)
{
	FLodexMatchNotice Notice;
	std::vector<std::string> Lines;
	for (std::size_t Item = 0; Item < Lodestrings.size(); ++Item)
	{
		const FLodexEvaluation Evaluation = EvaluateLodestring(Index, Lodestrings[Item]);
		if (!IsUniqueLodestringMatch(Evaluation))
		{
			Notice.Severity = ELodexNoticeSeverity::Warning;
		}
		if (Item < MaxNoticeLines)
		{
			Lines.push_back(DescribeLodestringCheck(Lodestrings[Item], Evaluation));
		}
	}
	if (Lodestrings.size() > MaxNoticeLines)
	{
		Lines.push_back(
			"and " + LodexText::FormatInt(static_cast<std::int64_t>(Lodestrings.size() - MaxNoticeLines)) + " more");
	}
	Notice.Text = LodexText::Join(Lines, "\n");
	return Notice;
}
