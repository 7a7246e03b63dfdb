// Copyright Lodex contributors.
#pragma once

#include "Scenes/LevelScene.h"
#include "TempDir.h"
#include "TestPackageWriter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

/** Each object as "kind id class 'label' [tags] parent", the tags "-" when it saves none, in the scene's order. */
inline std::vector<std::string> DescribeObjects(const FSceneSnapshot& Scene)
{
	std::vector<std::string> Lines;
	for (const FSceneObject& Object : Scene.GetObjects())
	{
		std::string Tags;
		for (const std::string& Tag : Object.Tags)
		{
			Tags += (Tags.empty() ? "" : ",") + Tag;
		}
		Lines.push_back(LodexSnapshot::GetKindName(Object.Kind) + std::string(" ") + Object.Id + " " +
			Object.ClassName + " '" + Object.Label + "' " + (Object.bHasTags ? "[" + Tags + "]" : "-") + " " +
			(Object.AttachParent != nullptr ? Object.AttachParent->Id : "-"));
	}
	return Lines;
}

/** A project's Content folder in a temporary folder, and the level read from it. */
class FLevelContentTest : public ::testing::Test
{
protected:
	void Write(const std::string& RelativePath, const std::string& Bytes)
	{
		WriteTestFile(Temp.Path + "/Content", RelativePath, Bytes);
	}

	/** Writes the map of a /Game/ package where the game keeps it. */
	void WriteMap(const FTestMap& Map) { Write(Map.PackagePath.substr(6) + ".umap", WriteTestMap(Map)); }

	std::string ContentFile(const std::string& RelativePath) const { return Temp.Path + "/Content/" + RelativePath; }

	/** Reads Content/Maps/Main.umap; fails the test on an error. */
	const FLevelScene& Read(const FLevelReadOptions& Options = FLevelReadOptions())
	{
		std::string Error;
		Scene = FLevelScene();
		EXPECT_TRUE(ReadLevelScene(ContentFile("Maps/Main.umap"), Options, Scene, Error)) << Error;
		return Scene;
	}

	/** Writes Map and reads it. */
	const FLevelScene& ReadMap(const FTestMap& Map, const FLevelReadOptions& Options = FLevelReadOptions())
	{
		WriteMap(Map);
		return Read(Options);
	}

	std::string ReadError(const std::string& RelativePath)
	{
		std::string Error;
		EXPECT_FALSE(ReadLevelScene(ContentFile(RelativePath), FLevelReadOptions(), Scene, Error));
		return Error;
	}

	/** The object of the scene with this id; fails the test when none has it. */
	const FSceneObject& Object(const std::string& Id) const
	{
		for (const FSceneObject& Object : Scene.Scene.GetObjects())
		{
			if (Object.Id == Id)
			{
				return Object;
			}
		}
		static const FSceneObject None;
		ADD_FAILURE() << "no object " << Id;
		return None;
	}

	/** Each object as "kind id", then "editor-only" and "on demand" when it is, in the scene's order. */
	std::vector<std::string> Listing() const
	{
		std::vector<std::string> Lines;
		for (const FSceneObject& Object : Scene.Scene.GetObjects())
		{
			Lines.push_back(LodexSnapshot::GetKindName(Object.Kind) + std::string(" ") + Object.Id +
				(Object.bEditorOnly ? " editor-only" : "") + (Object.bStreamedOnDemand ? " on demand" : ""));
		}
		return Lines;
	}

	FTempDir Temp;
	FLevelScene Scene;
};
