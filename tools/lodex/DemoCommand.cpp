// Copyright Lodex contributors.
#include "HostOutput.h"
#include "ListSelection.h"
#include "LodexCli.h"
#include "SampleData.h"
#include "SceneSnapshot.h"
#include "TextTable.h"

#include "LodexDebugger/Core/Lodestring.h"
#include "LodexDebugger/Core/PathCommands.h"

#include <CLI/CLI.hpp>

namespace
{
	std::string ShowText(const std::string& Text)
	{
		return Text.empty() ? "(empty)" : Text;
	}

	void PrintLodestringTable(const FSceneSnapshot& Scene, std::ostream& Out)
	{
		Out << "Lodestrings of every object of the sample level\n\n";
		FTextTable Table({"Object", "Kind", "Absolute", "Relative", "Tag"});
		for (const FSceneObject& Object : Scene.GetObjects())
		{
			const FLodexObject Handle = FSceneSnapshot::Handle(Object);
			Table.AddRow({Object.Name, Object.Kind, ShowText(BuildLodestring(Scene, Handle, LodestringModes::Absolute)),
				ShowText(BuildLodestring(Scene, Handle, LodestringModes::Relative)),
				ShowText(BuildLodestring(Scene, Handle, LodestringModes::Tag))});
		}
		Out << Table.Render();
	}

	bool PrintCommandRun(const FSceneSnapshot& Scene, FLodexCliIo& Io)
	{
		const FLodexCommandSetInfo& Set = GetMenuToolCommandSet();
		const FLodexCommandInfo* Command = FindCommandForMode(Set, LodestringModes::Absolute);
		std::vector<FLodexObject> Selection;
		std::string SelectionNames;
		for (const char* Id : {"door", "lamp"})
		{
			std::string Error;
			const FLodexObject Object = Scene.FindObject(Id, Error);
			if (!Object)
			{
				Io.Err << "lodex: the embedded sample level: " << Error << "\n";
				return false;
			}
			SelectionNames += SelectionNames.empty() ? "" : ", ";
			SelectionNames += FSceneSnapshot::Resolve(Object).Name;
			Selection.push_back(Object);
		}

		Io.Out << "\n\"" << Command->Label << "\" (" << Set.ContextName << "." << Command->CommandId
			   << ") on the selection " << SelectionNames << "\n\n";
		FHostOutput Output(Io.Out, Io.Err, EClipboardTarget::Memory);
		PrintSelectedActorLodestrings(Scene, FListSelection(std::move(Selection)), Output, Command->Mode);
		Io.Out << "\nClipboard: " << Output.GetClipboardText() << "\n";
		return true;
	}

	class FDemoCommand final : public ILodexCommand
	{
	public:
		CLI::App* Register(CLI::App& Parent) override
		{
			return Parent.add_subcommand("demo", "Show what the module does, on the embedded sample level");
		}

		int Run(FLodexCliIo& Io) override
		{
			FSceneSnapshot Scene;
			std::string Error;
			if (!FSceneSnapshot::Parse(GetSampleLevelJson(), "the embedded sample level", Scene, Error))
			{
				Io.Err << "lodex: " << Error << "\n";
				return LodexExitFailure;
			}
			PrintLodestringTable(Scene, Io.Out);
			if (!PrintCommandRun(Scene, Io))
			{
				return LodexExitFailure;
			}
			return LodexExitOk;
		}
	};
}

std::unique_ptr<ILodexCommand> MakeDemoCommand()
{
	return std::make_unique<FDemoCommand>();
}
