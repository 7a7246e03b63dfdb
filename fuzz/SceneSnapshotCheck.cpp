// Copyright Lodex contributors.
// Fuzz target scene_snapshot: a scene snapshot read as `lodex path` reads one, then every object's Lodestring in
// every mode, checked against a plain walk that remembers every object it met; then the object explorer over the
// file's reflection, as `lodex explore` drives it: each object selected, each method and property picked and printed.
#include "FuzzProperties.h"
#include "Scenes/SceneReflection.h"
#include "Scenes/SceneSnapshot.h"

#include "LodexDebugger/Core/Explorer/ExplorerPanel.h"
#include "LodexDebugger/Core/Lodestring/Lodestring.h"
#include "LodexDebugger/Core/Paths/PathCommands.h"

#include <string>
#include <unordered_set>
#include <vector>

namespace
{
	bool IsSceneNode(const FSceneObject& Object)
	{
		return Object.Kind == ELodexSnapshotKind::Actor || Object.Kind == ELodexSnapshotKind::WidgetTree ||
			Object.Kind == ELodexSnapshotKind::Widget || Object.Kind == ELodexSnapshotKind::UserWidget;
	}

	/** The next object up, by the snapshot's fields (docs/scene-snapshot.md) rather than through the graph. */
	const FSceneObject* SceneParent(const FSceneObject& Object)
	{
		if (Object.Kind == ELodexSnapshotKind::Actor)
		{
			return Object.AttachParent;
		}
		if (Object.Kind == ELodexSnapshotKind::WidgetTree)
		{
			return Object.RootWidget;
		}
		if (Object.Kind == ELodexSnapshotKind::Widget)
		{
			return nullptr;
		}
		if (Object.Kind == ELodexSnapshotKind::UserWidget)
		{
			return Object.WidgetParent;
		}
		const FSceneObject* Outer = Object.Outer;
		return Outer != nullptr && Outer->Name == "PersistentLevel" ? nullptr : Outer;
	}

	/**
	 * The Lodestring by its definition: walk up to the first object met again (or, in "Relative", to the first node),
	 * then write the steps from the top; in "Tag" only the topmost node and what lies above it.
	 */
	std::string ExpectedLodestring(const FSceneObject& Object, const std::string& Mode)
	{
		std::vector<const FSceneObject*> Walk;
		std::unordered_set<const FSceneObject*> Seen;
		for (const FSceneObject* Current = &Object; Current != nullptr && Seen.insert(Current).second;
			 Current = SceneParent(*Current))
		{
			Walk.push_back(Current);
			if (Mode == "Relative" && IsSceneNode(*Current))
			{
				break;
			}
		}
		std::size_t Bottom = 0;
		if (Mode == "Tag")
		{
			for (std::size_t Index = 0; Index < Walk.size(); ++Index)
			{
				Bottom = IsSceneNode(*Walk[Index]) ? Index : Bottom;
			}
		}
		std::string Text;
		for (std::size_t Index = Walk.size(); Index > Bottom; --Index)
		{
			const FSceneObject& Step = *Walk[Index - 1];
			if (Step.Kind == ELodexSnapshotKind::Component)
			{
				Text += "/fn:component('" + Step.Name + "')";
			}
			else if (IsSceneNode(Step) && Mode == "Absolute")
			{
				Text += "/*[@name = '" + Step.Name + "']";
			}
			else if (IsSceneNode(Step) && Mode == "Relative")
			{
				Text += "//" + Step.Name;
			}
			else if (IsSceneNode(Step) && Mode == "Tag")
			{
				Text += "/*[";
				for (std::size_t Tag = 0; Tag < Step.Tags.size(); ++Tag)
				{
					Text += (Tag > 0 ? " or @tag = '" : "@tag = '") + Step.Tags[Tag] + "'";
				}
				Text += "]";
			}
		}
		return Text;
	}
}

namespace
{
	/** The editor's log and clipboard: keeps the first text that is not one line. */
	class FOneLineOutput final : public ILodexOutput
	{
	public:
		//~ Begin ILodexOutput Interface
		void Log(ELodexLogVerbosity, const std::string& Message) override { Check("log line", Message); }
		void CopyToClipboard(const std::string& Text) override { Check("clipboard text", Text); }
		//~ End ILodexOutput Interface

		std::string Failure;
		std::size_t Texts = 0;

	private:
		void Check(const char* What, const std::string& Text)
		{
			++Texts;
			const std::string NotOneLine = LodexFuzz::CheckOneLine(Text);
			if (Failure.empty() && !NotOneLine.empty())
			{
				Failure = std::string("the explorer's ") + What + ": " + NotOneLine;
			}
		}
	};

	/** The editor's selection: one object. */
	class FOneSelected final : public ILodexActorSelection
	{
	public:
		explicit FOneSelected(FLodexObject InObject)
			: Object(InObject)
		{
		}
		std::size_t Num() const override { return 1; }
		FLodexObject GetSelectedObject(std::size_t) const override { return Object; }

	private:
		FLodexObject Object;
	};

	/** Every row of a list picked in turn and printed in each mode of the explorer's commands. */
	std::string PickAndPrintEach(FLodexExplorerPanel& Panel, ELodexExplorerList List, FOneLineOutput& Output)
	{
		const std::vector<std::string> Names = Panel.GetNames(List);
		if (Panel.GetFilteredItems(List).size() != Names.size())
		{
			return "the explorer's unfiltered list shows " + std::to_string(Panel.GetFilteredItems(List).size()) +
				" of its " + std::to_string(Names.size()) + " rows";
		}
		for (std::size_t Row = 0; Row < Names.size(); ++Row)
		{
			const std::string Shown = List == ELodexExplorerList::Methods ? Panel.GetMethodRow(Row).Signature
																		  : Panel.GetPropertyRow(Row).Type;
			Panel.HandleListSelectionChanged(List, &Names[Row]);
			Panel.OpenListContextMenu(List);
			const std::size_t Before = Output.Texts;
			for (const FLodexCommandInfo& Command : GetDetailToolCommandSet().Commands)
			{
				Panel.PrintReference(Command.Mode);
			}
			if (Output.Texts == Before)
			{
				return "picking row " + std::to_string(Row) + " '" + LodexFuzz::Shown(Names[Row]) + "' (" +
					LodexFuzz::Shown(Shown) + ") prints nothing";
			}
			if (!Output.Failure.empty())
			{
				return Output.Failure;
			}
		}
		return std::string();
	}

	/** Each object selected in the editor, its lists filled, each row picked and printed, and the object itself. */
	std::string CheckExplorer(const FSceneSnapshot& Scene)
	{
		const FSceneReflection Reflection(Scene);
		FOneLineOutput Output;
		FLodexExplorerPanel Panel(Scene, Reflection, Output);
		for (const FSceneObject& Object : Scene.GetObjects())
		{
			const FOneSelected Selected(FSceneSnapshot::Handle(Object));
			Panel.HandleSelectionChanged(&Selected);
			for (const FLodexCommandInfo& Command : GetDetailToolCommandSet().Commands)
			{
				Panel.PrintReference(Command.Mode);
			}
			std::string Failure = Output.Failure;
			if (Failure.empty())
			{
				Failure = PickAndPrintEach(Panel, ELodexExplorerList::Methods, Output);
			}
			if (Failure.empty())
			{
				Failure = PickAndPrintEach(Panel, ELodexExplorerList::Properties, Output);
			}
			if (!Failure.empty())
			{
				return "exploring '" + LodexFuzz::Shown(Object.Id) + "': " + Failure;
			}
		}
		return std::string();
	}
}

std::string CheckSceneSnapshotInput(const std::string& Input)
{
	using LodexFuzz::Shown;
	FSceneSnapshot Scene;
	std::string Error;
	if (!FSceneSnapshot::Parse(Input, "scene.json", Scene, Error))
	{
		return LodexFuzz::CheckFileError(Error, "scene.json", Input, false);
	}
	static const char* const Modes[] = {"Absolute", "Relative", "Tag", "absolute"};
	for (const FSceneObject& Object : Scene.GetObjects())
	{
		std::string FindError;
		if (Scene.FindObject(Object.Id, FindError) != FSceneSnapshot::Handle(Object))
		{
			return "the object with the id '" + Shown(Object.Id) + "' is not found by its id";
		}
		for (const char* Mode : Modes)
		{
			const std::string Built = BuildLodestring(Scene, FSceneSnapshot::Handle(Object), Mode);
			const std::string Expected = ExpectedLodestring(Object, Mode);
			if (Built != Expected)
			{
				return std::string(Mode) + " Lodestring of '" + Shown(Object.Id) + "': built '" + Shown(Built) +
					"', expected '" + Shown(Expected) + "'";
			}
			if (Built.find_first_of("\r\n") != std::string::npos)
			{
				return std::string(Mode) + " Lodestring of '" + Shown(Object.Id) + "' is not one line: " + Shown(Built);
			}
		}
	}
	return CheckExplorer(Scene);
}
