// Copyright Lodex contributors.
#include "LodexBestCopy.h"

#include "LodexDebugger/Core/Text/LodexText.h"

const FLodexPullDownCommandInfo& GetLodexBestCopyCommand()
{
	static const FLodexPullDownCommandInfo Command{
		ELodexPullDownCommand::CopyBestLodestring,
		"Lodex.CopyBestLodestring",
		"Logs and copies the best Lodestring of each selected actor: the shortest that matches it alone, resting on "
		"tags and stable names before generated ones, with the number of objects it matches.",
		"DETAILS_TOOL",
		ELodexExtensionPosition::After,
		"Copy Best Lodestring",
		"Log and copy the shortest, most stable Lodestring that finds each selected actor alone, with its match count",
	};
	return Command;
}

std::string FormatBestLodestringLogMessage(const FLodexBestLocator& Best)
{
	std::string Message = "Best Lodestring : " + Best.Lodestring + " (matches " + std::to_string(Best.MatchCount) +
		(Best.MatchCount == 1 ? " object)" : " objects)");
	if (Best.MatchCount > 1)
	{
		Message += ": no Lodestring tells them apart";
	}
	return Message;
}

std::vector<std::string> PrintSelectedBestLodestrings(
	const FLodexSceneIndex& Index, const ILodexActorSelection& Selection, ILodexOutput& Output)
{
	std::vector<std::string> Copied;
	const FLodexBestLocatorFinder Finder(Index);
	const std::size_t Count = Selection.Num();
	for (std::size_t Position = 0; Position < Count; ++Position)
	{
		const FLodexObject Actor = Selection.GetSelectedObject(Position);
		if (!Actor)
		{
			continue;
		}
		const std::uint32_t ObjectIndex = Index.FindIndex(Actor);
		if (ObjectIndex == FLodexSceneIndex::None)
		{
			Output.Log(ELodexLogVerbosity::Warning,
				"Best Lodestring : " + Index.GetGraph().GetName(Actor) +
					" is not in the level: no Lodestring finds it");
			continue;
		}
		const FLodexBestLocator Best = Finder.Find(ObjectIndex);
		Output.Log(ELodexLogVerbosity::Log, FormatBestLodestringLogMessage(Best));
		Copied.push_back(Best.Lodestring);
	}
	if (!Copied.empty())
	{
		Output.CopyToClipboard(LodexText::Join(Copied, LodexText::LineSeparator));
	}
	return Copied;
}
