// Copyright Lodex contributors.
// Bad input: every way a level file can be wrong gives one line naming the file and the byte offset, never a crash
// or a read outside the file.
#include "Scenes/LevelScene.h"
#include "TempDir.h"
#include "TestPackageWriter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>

namespace
{
	const char* const Versions = "package file versions UE4 214 to 522 and UE5 1000 to 1004 (legacy versions -2 to "
								 "-8), as Unreal Engine 5.0 loads them";

	std::string ReadError(const std::string& Bytes)
	{
		FLevelScene Scene;
		std::string Error;
		EXPECT_FALSE(ReadLevelSceneBytes(Bytes, "level.umap", "/Game/Maps/Main", Scene, Error)) << "read without error";
		return Error;
	}

	std::string Int32Bytes(std::int32_t Value)
	{
		FTestBytes Bytes;
		Bytes.Int32(Value);
		return Bytes.Text;
	}

	void PatchInt32(std::string& Bytes, std::size_t Offset, std::int32_t Value)
	{
		Bytes.replace(Offset, 4, Int32Bytes(Value));
	}

	/** The map's bytes with a change, and the layout of the unchanged map. */
	struct FBadMap
	{
		std::string Bytes;
		FTestPackage::FLayout Layout;
	};

	FBadMap Build(const FTestMap& Map, const std::function<void(FTestPackage&)>& Setup = nullptr)
	{
		FTestPackage Package(Map.PackagePath);
		if (Setup)
		{
			Setup(Package);
		}
		FBadMap Made;
		Made.Bytes = WriteTestMap(Map, &Package);
		Made.Layout = Package.Layout;
		return Made;
	}

	TEST(BadLevel, AnotherFileKindOrByteOrderIsNoPackageAndOnlyThePackageTagInEitherOrderLooksLikeOne)
	{
		const struct
		{
			std::string Bytes;
			bool bLooksLikeAPackage;
			std::string Error;
		} Rows[] = {
			{"", false,
				"level.umap: byte 0: not an Unreal package: it starts with nothing (the file is empty), not the "
				"package tag C1 83 2A 9E"},
			{"{\"objects\": []}", false,
				"level.umap: byte 0: not an Unreal package: it starts with 7B 22 6F 62, not the package tag C1 83 2A "
				"9E"},
			{"\xC1\x83", false,
				"level.umap: byte 0: not an Unreal package: it starts with C1 83, not the package tag C1 83 2A 9E"},
			{std::string("\x9E\x2A\x83\xC1\0\0\0\0", 8), true,
				"level.umap: byte 0: a byte-swapped (big-endian) package; Lodex reads the editor's little-endian "
				"packages"},
		};
		for (const auto& Row : Rows)
		{
			EXPECT_EQ(IsUnrealPackageBytes(Row.Bytes), Row.bLooksLikeAPackage) << Row.Error;
			EXPECT_EQ(ReadError(Row.Bytes), Row.Error);
		}
		FTempDir Temp;
		EXPECT_TRUE(IsUnrealPackageFile(Temp.Write("level.json", WriteTestMap(FTestMap()))));
		EXPECT_FALSE(IsUnrealPackageFile(Temp.Write("scene.umap", "{\"objects\": []}")));
		EXPECT_FALSE(IsUnrealPackageFile(Temp.File("missing.umap")));
	}

	TEST(BadLevel, AnotherEngineVersionSaysWhichSavedItAndWhichLodexReads)
	{
		const std::string Reads = "; Lodex reads " + std::string(Versions);
		const std::string Cooked =
			"); Lodex reads the editor's uncooked packages, as they sit in a project's Content folder";
		const struct
		{
			std::int32_t Legacy, UE4, UE5;
			std::uint32_t Flags;
			std::string Error;
		} Rows[] = {
			{-8, 522, 1008, 0,
				"byte 12: saved with package file version UE4 522 and UE5 1008, legacy version -8" + Reads},
			{-7, 213, 0, 0,
				"byte 12: saved with package file version UE4 213, legacy version -7 (older than Unreal Engine 5.0 "
				"loads)" +
					Reads},
			{-8, 523, 1004, 0,
				"byte 12: saved with package file version UE4 523 and UE5 1004, legacy version -8" + Reads},
			{-8, 522, 999, 0,
				"byte 12: saved with package file version UE4 522 and UE5 999, legacy version -8" + Reads},
			{-9, 522, 1004, 0, "byte 4: saved by an engine newer than 5.0 (legacy file version -9)" + Reads},
			{864, 522, 1004, 0, "byte 4: saved by Unreal Engine 3 or older (legacy file version 864)" + Reads},
			{-8, 0, 0, 0,
				"byte 12: an unversioned package (cooked for a game); Lodex reads uncooked packages saved by the "
				"editor, with their versions: " +
					std::string(Versions)},
			{-8, 522, 1004, 0x80000200u, "byte 61: a cooked package (package flags 0x80000200" + Cooked},
			{-8, 522, 1004, 0x00002000u, "byte 61: a cooked package (package flags 0x00002000" + Cooked},
			{-8, 522, 1004, 0x80000000u, "byte 61: a cooked package (package flags 0x80000000" + Cooked},
		};
		for (const auto& Row : Rows)
		{
			const auto Setup = [&Row](FTestPackage& Package)
			{
				Package.SetVersions(Row.Legacy, Row.UE4, Row.UE5, 40);
				Package.PackageFlags = Row.Flags;
			};
			EXPECT_EQ(ReadError(Build(SmallTestMap(), Setup).Bytes), "level.umap: " + Row.Error);
		}
	}

	TEST(BadLevel, CountsAndOffsetsPastTheFileAndIndicesOutsideTheTablesAreErrors)
	{
		const FBadMap Good = Build(SmallTestMap());
		const FTestPackage::FLayout& At = Good.Layout;
		const std::string Size = std::to_string(Good.Bytes.size());
		const std::size_t Export0 = At.ExportEntries[0];
		const std::string Data0 = "export 0 'Main': its data (" + std::to_string(At.ExportData[1] - At.ExportData[0]);
		const struct
		{
			std::function<void(std::string&)> Mutate;
			std::size_t Byte;
			std::string Error;
		} Rows[] = {
			{[&](std::string& B) { PatchInt32(B, At.NameCountField, 1000000); }, At.NameCountField,
				"the name map's count 1000000 does not fit in the file: 8 bytes or more each from byte " +
					std::to_string(At.NameOffset) + ", in " + Size + " bytes"},
			{[&](std::string& B) { PatchInt32(B, At.ImportCountField, -1); }, At.ImportCountField,
				"the import map's count is negative (-1)"},
			{[&](std::string& B) { PatchInt32(B, At.ExportCountField + 4, 0x7FFFFFFF); }, At.ExportCountField + 4,
				"the export map's offset 2147483647 is outside the file (" + Size + " bytes)"},
			{[&](std::string& B) { PatchInt32(B, At.NameOffset, 5000); }, At.NameOffset,
				"the name map's entry 0 has a length of 5000 (a name holds 1 to 1024 characters with its NUL)"},
			{[&](std::string& B) { PatchInt32(B, At.NameOffset, 0); }, At.NameOffset,
				"the name map's entry 0 has a length of 0 (a name holds 1 to 1024 characters with its NUL)"},
			{[&](std::string& B) { PatchInt32(B, At.ImportOffset, 9999); }, At.ImportOffset,
				"an import's class package: name 9999 is not in the name map (36 names)"},
			{[&](std::string& B) { PatchInt32(B, Export0 + 12, 500); }, Export0 + 12,
				"export 0's outer is export 499, outside the export map (7 exports)"},
			{[&](std::string& B) { PatchInt32(B, Export0 + 0, -400); }, Export0,
				"export 0's class is import 399, outside the import map (7 imports)"},
			{[&](std::string& B) { PatchInt32(B, Export0 + 12, 2); }, Export0 + 12,
				"the outer chain of export 0 'Main' loops back to it"},
			{[&](std::string& B) { PatchInt32(B, Export0 + 36, 99999999); }, Export0 + 28,
				Data0 + " bytes at byte 99999999) lies outside the file (" + Size + " bytes)"},
			// Data two exports share, or that lies in a table, is read for neither.
			{[&](std::string& B)
				{ PatchInt32(B, At.ExportEntries[3] + 36, static_cast<std::int32_t>(At.ExportData[2])); },
				At.ExportEntries[3] + 28,
				"export 3 'Base': its data (" + std::to_string(At.ExportData[4] - At.ExportData[3]) +
					" bytes at byte " + std::to_string(At.ExportData[2]) +
					") overlaps the data of export 2 'LevelStreamingDynamic_0' (bytes " +
					std::to_string(At.ExportData[2]) + " to " + std::to_string(At.ExportData[3] - 1) + ")"},
			{[&](std::string& B) { PatchInt32(B, Export0 + 36, static_cast<std::int32_t>(At.NameOffset + 8)); },
				Export0 + 28,
				Data0 + " bytes at byte " + std::to_string(At.NameOffset + 8) + ") overlaps the name map (bytes " +
					std::to_string(At.NameOffset) + " to " + std::to_string(At.ImportOffset - 1) + ")"},
			{[&](std::string& B) { B.resize(At.ExportData[0] + 3); }, Export0 + 28,
				Data0 + " bytes at byte " + std::to_string(At.ExportData[0]) + ") lies outside the file (" +
					std::to_string(At.ExportData[0] + 3) + " bytes)"},
		};
		for (const auto& Row : Rows)
		{
			std::string Bytes = Good.Bytes;
			Row.Mutate(Bytes);
			EXPECT_EQ(ReadError(Bytes), "level.umap: byte " + std::to_string(Row.Byte) + ": " + Row.Error);
		}
	}

	/** A map of one actor 'Cube' (export 2, the last) whose data starts with the given properties. */
	FBadMap OneActor(const std::function<void(FTestPackage::FData&)>& First)
	{
		FTestMap Map;
		Map.Actors = {TestActor("Cube")};
		Map.Actors[0].FirstProperties = First;
		return Build(Map);
	}

	/** Text with each "@N" replaced by the byte N bytes into the data of the map's actor, "@end" by the file's size. */
	std::string AtBytes(const std::string& Text, const FBadMap& Map)
	{
		std::string Out;
		for (std::size_t Index = 0; Index < Text.size(); ++Index)
		{
			std::size_t Digits = 0;
			if (Text[Index] != '@')
			{
				Out += Text[Index];
			}
			else if (Text.compare(Index + 1, 3, "end") == 0)
			{
				Out += std::to_string(Map.Bytes.size());
				Index += 3;
			}
			else
			{
				Out += std::to_string(Map.Layout.ExportData[2] + std::stoul(Text.substr(Index + 1), &Digits));
				Index += Digits;
			}
		}
		return Out;
	}

	TEST(BadLevel, ObjectDataThatRunsPastItsObjectOrHoldsWhatCannotBeIsAnError)
	{
		using FData = FTestPackage::FData;
		const struct
		{
			std::function<void(FData&)> First;
			std::string Error;
		} Rows[] = {
			{[](FData& D) { D.Raw("Big", "IntProperty", "", 100000); },
				"byte @16: property 'Big' has a size of 100000 bytes, past the end of the data of export 2 'Cube' at "
				"byte @end"},
			{[](FData& D) { D.String("Tags", "door"); },
				"byte @0: property 'Tags' is a StrProperty; Lodex reads it as an ArrayProperty of NameProperty"},
			{[](FData& D) { D.Raw("Tags", "ArrayProperty", Int32Bytes(0), 4, "StrProperty"); },
				"byte @0: property 'Tags' is a ArrayProperty of StrProperty; Lodex reads it as an ArrayProperty of "
				"NameProperty"},
			{[](FData& D) { D.Raw("ActorGuid", "StrProperty", std::string(4, '\0'), 4); },
				"byte @0: property 'ActorGuid' is a StrProperty; Lodex reads it as a StructProperty of Guid"},
			{[](FData& D) { D.Raw("Tags", "ArrayProperty", Int32Bytes(1000), 4, "NameProperty"); },
				"byte @33: an array count of 1000 does not fit in its 0 bytes"},
			{[](FData& D) {
				 D.Raw("Tags", "ArrayProperty", Int32Bytes(1) + Int32Bytes(4242) + Int32Bytes(0), 12, "NameProperty");
			 },
				"byte @37: a name: name 4242 is not in the name map"},
			{[](FData& D) { D.Object("RootComponent", 77); },
				"byte @25: an object reference (77) outside the import map (4 imports) and the export map (3 exports)"},
			{[](FData& D) { D.Raw("RootComponent", "ObjectProperty", "", 0); },
				"byte @25: a value runs past the end of the value of property 'RootComponent' at byte @25"},
			{[](FData& D) { D.Raw("ActorLabel", "StrProperty", Int32Bytes(-40) + "ab", 6); },
				"byte @25: a text in the value of property 'ActorLabel' of 40 characters runs past the end of the "
				"value of property 'ActorLabel' at byte @31"},
			{[](FData& D) { D.WithoutEnd(); },
				"byte @end: the file ends at byte @end, inside the data of export 2 'Cube'"},
		};
		for (const auto& Row : Rows)
		{
			const FBadMap Map = OneActor(Row.First);
			EXPECT_EQ(ReadError(Map.Bytes), "level.umap: " + AtBytes(Row.Error, Map));
		}
	}

	TEST(BadLevel, TheWorldAndTheLevelsOwnDataAreChecked)
	{
		const FBadMap Good = OneActor(nullptr);
		const std::size_t World = Good.Layout.ExportData[0];
		const std::size_t Count = Good.Layout.ExportData[2] - 8 - 4 - 4; // before one entry and the level's tail
		const std::size_t Entry1 = Good.Layout.ExportEntries[1];
		const std::size_t Actor = Good.Layout.ExportData[2];
		const struct
		{
			std::size_t Offset;
			std::int32_t Value;
			std::size_t Byte;
			std::string Error;
		} Rows[] = {
			{Count, 5000, Count,
				"the level's Actors has a count of 5000, past the end of the object's data at byte " +
					std::to_string(Actor)},
			{Count + 4, 99, Count + 4, "the level's Actors[0] is object 99, which the package does not list"},
			{Count + 4, 1, Count + 4, "the level's Actors[0] is export 0 'Main', which the level does not hold"},
			{World + 12, 1, World + 12, "the world's persistent level is object 1, not a level the world holds"},
			{World + 20, 3, World + 20,
				"the world's StreamingLevels has a count of 3, past the end of the object's data at byte " +
					std::to_string(Good.Layout.ExportData[1])},
			{World + 8, 7, World + 8, "a boolean in the data of export 0 'Main' holds 7, not 0 or 1"},
			{Entry1 + 20, 3, Entry1 + 16,
				"the world's persistent level is named 'PersistentLevel_2', not PersistentLevel"},
			{Actor, 4242, Actor, "a property's name: name 4242 is not in the name map"},
		};
		for (const auto& Row : Rows)
		{
			std::string Bytes = Good.Bytes;
			PatchInt32(Bytes, Row.Offset, Row.Value);
			EXPECT_EQ(ReadError(Bytes), "level.umap: byte " + std::to_string(Row.Byte) + ": " + Row.Error);
		}
	}

	TEST(BadLevel, AnAttachParentDeeperThanAnyComponentOrTwoComponentsOfOneNameAreAnError)
	{
		// A component lies five objects deep (package, world, level, actor, component); past eight none does, and the
		// path is not built.
		FTestMap Map;
		Map.Actors = {TestActor(
			"Cube", {{"Root", "SceneComponent", "/Game/Maps/Other.Other:PersistentLevel.A.B.C.D.E.F"}}, "Root")};
		const FBadMap Deep = Build(Map);
		EXPECT_EQ(ReadError(Deep.Bytes),
			"level.umap: byte " + std::to_string(Deep.Layout.ExportData[3] + 89 + 25) + // past RelativeLocation

				": actor 'Cube' is attached to object -14, which lies more than 8 objects deep in its package: no "
				"component does");
		Map.Actors[0].Components[0].AttachParent = "/Game/Maps/Other.Other:PersistentLevel.A.B.C.D.E";
		FLevelScene Scene;
		std::string Error;
		EXPECT_TRUE(ReadLevelSceneBytes(Build(Map).Bytes, "level.umap", "/Game/Maps/Main", Scene, Error)) << Error;

		Map.Actors[0].Components.push_back({"Root", "PointLightComponent"});
		const FBadMap Twins = Build(Map);
		EXPECT_EQ(ReadError(Twins.Bytes),
			"level.umap: byte " + std::to_string(Twins.Layout.ExportEntries[4] + 16) +
				": actor 'Cube' holds a second component named 'Root'");
	}

	TEST(BadLevel, APackageThatHoldsNoLevelSaysWhatItHolds)
	{
		const FBadMap Good = OneActor(nullptr);
		const std::string Blueprint =
			WriteTestBlueprint("/Game/BP/BP_Door", "BP_Door_C", "/Script/Engine.Actor", true, {"door"});
		const std::string ExportOffset =
			std::to_string(static_cast<unsigned char>(Blueprint[Good.Layout.ExportCountField + 4]) +
				256 * static_cast<unsigned char>(Blueprint[Good.Layout.ExportCountField + 5]));
		EXPECT_EQ(ReadError(Blueprint),
			"level.umap: byte " + ExportOffset +
				": not a level: the package holds no World but BP_Door_C (BlueprintGeneratedClass), Default__BP_Door_C "
				"(BP_Door_C)");
		EXPECT_EQ(ReadError(WriteTestRedirector("/Game/Maps/Main", "/Game/Maps/Other")),
			"level.umap: a redirector to /Game/Maps/Other.Other, not a level");
	}

	/** An error is one line naming the file and a byte inside it (or just past its end). */
	void ExpectOneLineInside(const std::string& Error, std::size_t Size, const std::string& Context)
	{
		const std::string Prefix = "level.umap: byte ";
		ASSERT_EQ(Error.compare(0, Prefix.size(), Prefix), 0) << Context << ": " << Error;
		EXPECT_LE(std::stoull(Error.substr(Prefix.size())), Size) << Context << ": " << Error;
		EXPECT_EQ(Error.find_first_of("\r\n"), std::string::npos) << Context << ": " << Error;
	}

	TEST(BadLevel, EveryTruncationAndEveryFlippedByteGivesOneLineNamingAByteOfTheFile)
	{
		const std::string Good = Build(SmallTestMap()).Bytes;
		for (std::size_t Length = 0; Length < Good.size(); ++Length)
		{
			ExpectOneLineInside(ReadError(Good.substr(0, Length)), Length, "cut at " + std::to_string(Length));
		}
		for (std::size_t Index = 0; Index < Good.size(); ++Index)
		{
			std::string Bytes = Good;
			Bytes[Index] = static_cast<char>(Bytes[Index] ^ 0x5A);
			FLevelScene Scene;
			std::string Error;
			if (!ReadLevelSceneBytes(Bytes, "level.umap", "/Game/Maps/Main", Scene, Error))
			{
				ExpectOneLineInside(Error, Bytes.size(), "byte " + std::to_string(Index) + " flipped");
			}
		}
	}

	TEST(BadLevel, AnErrorNamesTheFileItIsIn)
	{
		FTempDir Temp;
		const std::string Content = Temp.Path + "/Content/";
		const FBadMap Good = OneActor(nullptr);
		const std::string Truncated = Good.Bytes.substr(0, 40);
		FLevelScene Scene;
		std::string Error;
		EXPECT_FALSE(ReadLevelScene(Content + "Maps/Main.umap", FLevelReadOptions(), Scene, Error));
		EXPECT_EQ(Error, Content + "Maps/Main.umap: cannot open the file");
		WriteTestFile(Content, "Maps/Main.umap/x", "");
		EXPECT_FALSE(ReadLevelScene(Content + "Maps/Main.umap", FLevelReadOptions(), Scene, Error));
		EXPECT_EQ(Error, Content + "Maps/Main.umap: is a folder, not a level file");

		const std::string Cut = ": byte 24: the count of custom versions 1 does not fit in the file (40 bytes)";
		const FTestMap Map = TestMap("/Game/Maps/Level", {TestActor("Door")}, {"/Game/Maps/Sub"});
		// The map itself cannot be read: an error. A part of it: a note naming its file and why, and the rest read.
		const struct
		{
			std::string File, Kind;
		} Rows[] = {{"Maps/Level.umap", ""}, {"Maps/Sub.umap", "sub-level"}};
		for (const auto& Row : Rows)
		{
			FTempDir Project;
			const std::string Root = Project.Path + "/Content/";
			WriteTestFile(Root, "Maps/Level.umap", WriteTestMap(Map));
			WriteTestFile(Root, Row.File, Truncated);
			Error.clear();
			EXPECT_EQ(ReadLevelScene(Root + "Maps/Level.umap", FLevelReadOptions(), Scene, Error), !Row.Kind.empty());
			if (Row.Kind.empty())
			{
				EXPECT_EQ(Error, Root + Row.File + Cut);
				continue;
			}
			EXPECT_EQ(Error, "");
			EXPECT_EQ(
				Scene.Notes, std::vector<std::string>{Root + Row.File + Cut + "; this " + Row.Kind + " is left out"})
				<< Row.File;
			EXPECT_EQ(Scene.Scene.GetObjects().size(), 2u) << Row.File;
		}
	}
}
