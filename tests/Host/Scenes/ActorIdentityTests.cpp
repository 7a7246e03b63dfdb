// Copyright Lodex contributors.
// An actor's identity as levels and their snapshots carry it: the saved ActorGuid and the root component's location,
// in the large-world format (doubles) and before it (floats).
#include "LevelContentTest.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace
{
	FTestActor MakeActor(const std::string& Name, const std::string& Guid)
	{
		FTestActor Actor = TestActor(Name, {{"Root", "SceneComponent"}}, "Root");
		Actor.Guid = Guid;
		return Actor;
	}

	/** Each object of the level as "name guid", then its location when it has one. */
	std::vector<std::string> Identities(const FLevelScene& Level)
	{
		std::vector<std::string> Lines;
		for (const FSceneObject& Object : Level.Scene.GetObjects())
		{
			std::string Line = Object.Name + " " + Object.Guid;
			for (std::size_t Axis = 0; Object.bHasLocation && Axis < 3; ++Axis)
			{
				Line += " " + std::to_string(Object.Location[Axis]);
			}
			Lines.push_back(Line);
		}
		return Lines;
	}

	TEST(ActorIdentity, LevelsGiveGuidAndRootLocationInBothVectorFormatsAndFloatsInALargeWorldPackageAreAnError)
	{
		for (const bool bFloats : {false, true})
		{
			FTestMap Map;
			FTestActor Moved = MakeActor("Door_2", "0A1B2C3D4E5F60718293A4B5C6D7E8F9");
			Moved.bLocation = true;
			Moved.Location[0] = 100.25;
			Moved.Location[1] = -2048.5;
			Moved.Location[2] = 7;
			Moved.bFloatVectors = bFloats;
			FTestActor NoGuid = MakeActor("Old", "");
			NoGuid.Root.clear();
			Map.Actors = {Moved, MakeActor("Lamp", "00000000000000000000000000000001"), NoGuid};
			FTestPackage Package(Map.PackagePath);
			Package.FileVersionUE5 = bFloats ? 1003 : 1004;
			FLevelScene Level;
			std::string Error;
			ASSERT_TRUE(ReadLevelSceneBytes(WriteTestMap(Map, &Package), "level.umap", Map.PackagePath, Level, Error))
				<< Error;
			// A root that saves no location puts its actor at the origin; an actor without a root has no location.
			EXPECT_EQ(Identities(Level),
				(std::vector<std::string>{"PersistentLevel ",
					"Door_2 0A1B2C3D4E5F60718293A4B5C6D7E8F9 100.250000 -2048.500000 7.000000", "Root ",
					"Lamp 00000000000000000000000000000001 0.000000 0.000000 0.000000", "Root ", "Old ", "Root "}))
				<< bFloats;
			// A snapshot of the level writes both, a location at the origin too.
			const nlohmann::json Lamp = nlohmann::json::parse(Level.Scene.Write())["objects"][3];
			EXPECT_EQ(Lamp["guid"], "00000000000000000000000000000001");
			EXPECT_EQ(Lamp["location"], nlohmann::json::array({0.0, 0.0, 0.0}));
		}
		// A location of 12 bytes in the large-world format runs past its value.
		FTestActor Floats = MakeActor("A", "");
		Floats.bLocation = true;
		Floats.bFloatVectors = true;
		FTestPackage Package;
		const std::string Bytes = WriteTestMap(TestMap("/Game/Maps/Main", {Floats}), &Package);
		FLevelScene Level;
		std::string Error;
		EXPECT_FALSE(ReadLevelSceneBytes(Bytes, "level.umap", "/Game/Maps/Main", Level, Error));
		const std::string End = std::to_string(Package.Layout.ExportData[3] + 49 + 12); // the root's tag and value
		EXPECT_EQ(Error,
			"level.umap: byte " + End +
				": a value runs past the end of the value of property 'RelativeLocation' at byte " + End);
	}
}
