// Copyright Lodex contributors.
// Fuzz target scene_snapshot: a scene snapshot read as `lodex path` reads one, then every object's Lodestring in
// every mode, checked against a plain walk that remembers every object it met.
#include "FuzzProperties.h"
#include "SceneSnapshot.h"

#include "LodexDebugger/Core/Paths/Lodestring.h"

#include <string>
#include <unordered_set>
#include <vector>

namespace
{
	bool IsSceneNode(const FSceneObject& Object)
	{
		return Object.Kind == "actor" || Object.Kind == "widgetTree" || Object.Kind == "widget" ||
			Object.Kind == "userWidget";
	}

	/** The next object up, by the snapshot's fields (docs/scene-snapshot.md) rather than through the graph. */
	const FSceneObject* SceneParent(const FSceneObject& Object)
	{
		if (Object.Kind == "actor")
		{
			return Object.AttachParent;
		}
		if (Object.Kind == "widgetTree")
		{
			return Object.RootWidget;
		}
		if (Object.Kind == "widget")
		{
			return nullptr;
		}
		if (Object.Kind == "userWidget")
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
			if (Step.Kind == "component")
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
	return std::string();
}
