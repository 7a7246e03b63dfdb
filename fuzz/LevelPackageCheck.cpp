// Copyright Lodex contributors.
// Fuzz target level_package: a level file read into a scene, as `lodex` reads a .umap (without the files around it),
// then each object found by its id and its Lodestring built.
#include "FuzzProperties.h"
#include "Scenes/LevelScene.h"

#include "LodexDebugger/Core/Lodestring/Lodestring.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <cstdlib>
#include <string>

namespace
{
	const char* const SourceName = "level.umap";

	/** A refusal is one line: "level.umap: byte N: reason" with N inside the input (or at its end), or a redirector. */
	std::string CheckLevelError(const std::string& Error, const std::string& Input)
	{
		const std::string NotOneLine = LodexFuzz::CheckOneLine(Error);
		if (!NotOneLine.empty())
		{
			return NotOneLine;
		}
		const std::string Redirector = std::string(SourceName) + ": a redirector to ";
		if (Error.compare(0, Redirector.size(), Redirector) == 0)
		{
			return std::string();
		}
		const std::string Prefix = std::string(SourceName) + ": byte ";
		if (Error.compare(0, Prefix.size(), Prefix) != 0)
		{
			return "the error does not start with '" + Prefix + "': " + LodexFuzz::Shown(Error);
		}
		char* End = nullptr;
		const unsigned long long Offset = std::strtoull(Error.c_str() + Prefix.size(), &End, 10);
		if (End == Error.c_str() + Prefix.size() || std::string(End).compare(0, 2, ": ") != 0 || End[2] == '\0')
		{
			return "the error gives no byte and reason: " + LodexFuzz::Shown(Error);
		}
		if (Offset > Input.size())
		{
			return "the error's byte " + std::to_string(Offset) + " lies past the input's " +
				std::to_string(Input.size()) + " bytes: " + LodexFuzz::Shown(Error);
		}
		return std::string();
	}
}

std::string CheckLevelPackageInput(const std::string& Input)
{
	using LodexFuzz::Shown;
	FLevelScene Level;
	std::string Error;
	if (!ReadLevelSceneBytes(Input, SourceName, "/Game/Maps/Main", Level, Error))
	{
		return CheckLevelError(Error, Input);
	}
	const FSceneSnapshot& Scene = Level.Scene;
	const std::vector<FSceneObject>& Objects = Scene.GetObjects();
	if (Objects.empty() || Objects[0].Kind != ELodexSnapshotKind::Other || Objects[0].Name != "PersistentLevel")
	{
		return "the scene does not start with its level";
	}
	for (std::size_t Index = 0; Index < Objects.size(); ++Index)
	{
		const FSceneObject& Object = Objects[Index];
		// A label may hold a tab or a line break, as the editor allows: text all the same.
		if (!LodexText::IsUtf8(Object.Label))
		{
			return "the label of '" + Shown(Object.Id) + "' is not UTF-8";
		}
		std::vector<std::string> Texts{Object.Id, Object.Name, Object.ClassName, Object.Package};
		Texts.insert(Texts.end(), Object.Tags.begin(), Object.Tags.end());
		for (const std::string& Text : Texts)
		{
			if (Text.empty() && (&Text == &Texts[0] || &Text == &Texts[1]))
			{
				return "objects[" + std::to_string(Index) + "] has an empty id or name";
			}
			const std::string NotOneLine = Text.empty() ? std::string() : LodexFuzz::CheckOneLine(Text);
			if (!NotOneLine.empty())
			{
				return "a text of '" + Shown(Object.Id) + "': " + NotOneLine;
			}
		}
		if (Object.Origin != ELodexPlacement::Placed)
		{
			return "'" + Shown(Object.Id) + "' is not placed";
		}
		const bool bOuterFits = Object.Kind == ELodexSnapshotKind::Actor ? Object.Outer == &Objects[0]
			: Object.Kind == ELodexSnapshotKind::Component
			? Object.Outer != nullptr && Object.Outer < &Object && Object.Outer->Kind == ELodexSnapshotKind::Actor
			: Index == 0 && Object.Outer == nullptr;
		if (!bOuterFits)
		{
			return "'" + Shown(Object.Id) + "' (" + LodexSnapshot::GetKindName(Object.Kind) +
				") has an outer it cannot have";
		}
		if (Object.AttachParent != nullptr &&
			(Object.Kind != ELodexSnapshotKind::Actor || Object.AttachParent->Kind != ELodexSnapshotKind::Actor))
		{
			return "'" + Shown(Object.Id) + "' is attached to something other than an actor";
		}
		std::string FindError;
		if (Scene.FindObject(Object.Id, FindError) != FSceneSnapshot::Handle(Object))
		{
			return "'" + Shown(Object.Id) + "' is not found by its id";
		}
		const std::string Built = BuildLodestring(Scene, FSceneSnapshot::Handle(Object), "Absolute");
		const std::string NotOneLine = Built.empty() ? std::string() : LodexFuzz::CheckOneLine(Built);
		if (!NotOneLine.empty())
		{
			return "the Lodestring of '" + Shown(Object.Id) + "': " + NotOneLine;
		}
	}
	return std::string();
}
