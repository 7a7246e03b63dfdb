// Copyright Lodex contributors.
// What a level file gives as a scene: names, classes, labels, tags, components, attach parents, and the files a
// level is made of (external actors, sub-levels, redirectors, Blueprint classes), each read from packages laid out
// in a temporary Content folder by the test package writer.
#include "LevelContentTest.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
	using LevelReader = FLevelContentTest;

	const std::string Level = "/Game/Maps/Main.Main:PersistentLevel";

	TEST_F(LevelReader, ActorsKeepTheirSavedFieldsAndComeInTheActorsArraysOrderEachFollowedByItsComponents)
	{
		// A name is rendered from its stored number minus one; "Wall_07" and "Lamp_0" are stored as they are.
		FTestActor Labelled = TestActor("BP_barrel_C_41");
		Labelled.Label = "Front door";
		Labelled.bTags = true;
		Labelled.Tags = {"locked", "red_2"};
		FTestActor Wide = TestActorOfClass("T\u00fcr_2", "PointLight");
		Wide.Label = "T\u00fcr \u7528\u6237 \U0001F600";
		Wide.bTags = true;
		FTestMap Map = TestMap("/Game/Maps/Main",
			{TestActor("StaticMeshActor_193", {{"Root"}}, "Root"), TestActor("Cube"), Labelled, TestActor("Lamp_0"),
				TestActor("Wall_07", {{"Mesh"}, {"Light", "PointLightComponent"}}), Wide, TestActor("Unlisted")});
		Map.Actors.back().bListed = false;
		Map.Order = {4, 0, 1, 2, 3, 5, 6};
		Map.bNullActor = true;
		ReadMap(Map);
		EXPECT_EQ(DescribeObjects(Scene.Scene),
			(std::vector<std::string>{
				"other " + Level + " Level '' - -",
				"actor " + Level + ".Wall_07 StaticMeshActor '' [] -",
				"component " + Level + ".Wall_07.Mesh StaticMeshComponent '' - -",
				"component " + Level + ".Wall_07.Light PointLightComponent '' - -",
				"actor " + Level + ".StaticMeshActor_193 StaticMeshActor '' [] -",
				"component " + Level + ".StaticMeshActor_193.Root StaticMeshComponent '' - -",
				"actor " + Level + ".Cube StaticMeshActor '' [] -",
				"actor " + Level + ".BP_barrel_C_41 StaticMeshActor 'Front door' [locked,red_2] -",
				"actor " + Level + ".Lamp_0 StaticMeshActor '' [] -",
				"actor " + Level + ".T\u00fcr_2 PointLight 'T\u00fcr \u7528\u6237 \U0001F600' [] -",
			}));
		for (const FSceneObject& Object : Scene.Scene.GetObjects())
		{
			EXPECT_EQ(Object.Id.substr(Object.Id.find_last_of(".:") + 1), Object.Name);
			EXPECT_EQ(Object.Origin, ELodexPlacement::Placed) << Object.Id;
			EXPECT_EQ(Object.Package, "/Game/Maps/Main") << Object.Id;
		}
		EXPECT_EQ(Object(Level + ".Wall_07.Light").Outer, &Object(Level + ".Wall_07"));
		EXPECT_EQ(Object(Level + ".Wall_07").Outer, &Object(Level));
		EXPECT_EQ(Scene.Files, std::vector<std::string>{ContentFile("Maps/Main.umap")});
		EXPECT_TRUE(Scene.Notes.empty());
	}

	TEST_F(LevelReader, AnActorsAttachParentIsTheOwnerOfTheComponentItsRootIsAttachedToWhenItWasRead)
	{
		ReadMap(TestMap("/Game/Maps/Main",
			{
				TestActor("Base", {{"Root"}, {"Socket"}}, "Root"),
				// The root attaches to the base's component: the base is the parent.
				TestActor("Child",
					{{"Root", "SceneComponent", "Base.Socket"}, {"Mesh", "StaticMeshComponent", "Child.Root"}}, "Root"),
				// A component other than the root attaches elsewhere: not the actor's attachment.
				TestActor("Loose", {{"Root"}, {"Arm", "SceneComponent", "Base.Root"}}, "Root"),
				// No root saved: the component attached outside the actor is its root.
				TestActor("Rootless",
					{{"Mesh", "StaticMeshComponent", "Rootless.Pivot"}, {"Pivot", "SceneComponent", "Child.Mesh"}}),
				// Attached to its own component: no parent.
				TestActor("Self", {{"Root", "SceneComponent", "Self.Root"}}, "Root"),
				// Attached outside the objects read: left out, with a note.
				TestActor(
					"Far", {{"Root", "SceneComponent", "/Game/Maps/Other.Other:PersistentLevel.Far.Root"}}, "Root"),
			}));
		const struct
		{
			std::string Actor, Parent;
		} Rows[] = {{"Base", ""}, {"Child", "Base"}, {"Loose", ""}, {"Rootless", "Child"}, {"Self", ""}, {"Far", ""}};
		for (const auto& Row : Rows)
		{
			const FSceneObject* Parent = Object(Level + "." + Row.Actor).AttachParent;
			EXPECT_EQ(Parent != nullptr ? Parent->Name : "", Row.Parent) << Row.Actor;
		}
		EXPECT_EQ(Scene.Notes,
			std::vector<std::string>{
				"/Game/Maps/Main: actor 'Far' is attached to '/Game/Maps/Other.Other:PersistentLevel.Far.Root', "
				"which is not among the objects read; it is shown unattached"});
	}

	TEST_F(LevelReader, WorldPartitionActorsAreReadFromTheirPackagesAfterTheLevelsOwnAndAttachAcrossThem)
	{
		FTestMap Map = TestMap("/Game/Maps/Main", {TestActor("WorldSettings")});
		Map.ImportedActors = {Level + ".Kept"};
		Write("Maps/Main.umap", WriteTestMap(Map));
		const std::string Folder = "__ExternalActors__/Maps/Main/";
		FTestActor Base = TestActor("Base_UAID_01", {{"Root", "SceneComponent"}}, "Root");
		FTestActor Cube = TestActor("Cube_UAID_02", {{"Root", "SceneComponent", Level + ".Base_UAID_01.Root"}}, "Root");
		Cube.Label = "Cube";
		Write(Folder + "B/AA/Second.uasset",
			WriteTestExternalActor("/Game/Maps/Main", "/Game/__ExternalActors__/Maps/Main/B/AA/Second", Cube));
		Write(Folder + "A/ZZ/First.uasset",
			WriteTestExternalActor("/Game/Maps/Main", "/Game/__ExternalActors__/Maps/Main/A/ZZ/First", Base,
				[](FTestPackage& Package) { Package.SetVersions(-7, 522, 0, 40); }));
		// One that cannot be read is a note, and those after it are read.
		Write(Folder + "B/00/Bad.uasset", "\xC1\x83\x2A\x9E");
		// An actor package of another map in the same folder tree is left out.
		Write(Folder + "C/00/Stray.uasset",
			WriteTestExternalActor(
				"/Game/Maps/Other", "/Game/__ExternalActors__/Maps/Main/C/00/Stray", TestActor("Stray")));
		Write(Folder + "C/00/notes.txt", "not a package");
		Read();
		EXPECT_EQ(Listing(),
			(std::vector<std::string>{
				"other " + Level,
				"actor " + Level + ".WorldSettings",
				"actor " + Level + ".Base_UAID_01",
				"component " + Level + ".Base_UAID_01.Root",
				"actor " + Level + ".Cube_UAID_02",
				"component " + Level + ".Cube_UAID_02.Root",
			}));
		EXPECT_EQ(Scene.ExternalActorCount, 2u);
		EXPECT_EQ(Object(Level + ".Cube_UAID_02").AttachParent, &Object(Level + ".Base_UAID_01"));
		EXPECT_EQ(Object(Level + ".Cube_UAID_02").Label, "Cube");
		EXPECT_EQ(Object(Level + ".Cube_UAID_02").Package, "/Game/__ExternalActors__/Maps/Main/B/AA/Second");
		EXPECT_EQ(Object(Level + ".Cube_UAID_02.Root").Package, "/Game/__ExternalActors__/Maps/Main/B/AA/Second");
		EXPECT_EQ(Scene.Notes,
			(std::vector<std::string>{ContentFile(Folder + "C/00/Stray.uasset") +
					": an actor of /Game/Maps/Other.Other:PersistentLevel, not of " + Level + "; left out",
				ContentFile(Folder + "B/00/Bad.uasset") +
					": byte 4: the file ends at byte 4, inside the package summary; this external actor package is "
					"left out"}));
	}

	TEST_F(LevelReader, AnActorTheActorsArrayNamesTwiceIsReadOnceAndOneInTwoPackagesIsAnError)
	{
		FTestMap Map;
		Map.Actors = {TestActor("A"), TestActor("B")};
		Map.Order = {1, 1};
		ReadMap(Map);
		EXPECT_EQ(Listing(), (std::vector<std::string>{"other " + Level, "actor " + Level + ".B"}));

		const std::string External = "__ExternalActors__/Maps/Main/0/AB/CD.uasset";
		const std::string Bytes =
			WriteTestExternalActor("/Game/Maps/Main", "/Game/__ExternalActors__/Maps/Main/0/AB/CD", TestActor("B"));
		Write(External, Bytes);
		// The actor is the external package's first export; the export map's offset follows its count.
		FTestPackage Layout;
		WriteTestMap(FTestMap(), &Layout);
		const std::size_t At = Layout.Layout.ExportCountField + 4;
		const std::size_t ExportMap =
			static_cast<unsigned char>(Bytes[At]) + 256 * static_cast<unsigned char>(Bytes[At + 1]);
		EXPECT_EQ(ReadError("Maps/Main.umap"),
			ContentFile(External) + ": byte " + std::to_string(ExportMap + 16) + ": the actor '" + Level +
				".B' is read a second time (first from " + ContentFile("Maps/Main.umap") + ")");
	}

	TEST_F(LevelReader, SubLevelsUnderTheSameContentAreReadAfterTheLevelWithTheirOwnIds)
	{
		FTestMap Map;
		Map.Actors = {TestActor("DirectionalLight_0")};
		Map.SubLevels = {
			"/Game/Maps/Sub", "/Game/Maps/Missing", "/Game/Maps/Sub", "/Plugin/Maps/Elsewhere", "/Game/Maps/Both"};
		// Loaded at start by one streaming level, of this world or another, whatever another says: not on demand.
		Map.LoadedSubLevels = {"/Game/Maps/Deeper", "/Game/Maps/Both"};
		WriteMap(TestMap("/Game/Maps/Sub", {TestActor("DirectionalLight_0", {{"Root"}}, "Root")},
			{"/Game/Maps/Main", "/Game/Maps/Deeper"}));
		WriteMap(TestMap("/Game/Maps/Deeper", {TestActor("Rock")}));
		WriteMap(TestMap("/Game/Maps/Both", {TestActor("Rock")}));
		ReadMap(Map);
		const std::string SubLevel = "/Game/Maps/Sub.Sub:PersistentLevel";
		EXPECT_EQ(Listing(),
			(std::vector<std::string>{
				"other " + Level,
				"actor " + Level + ".DirectionalLight_0",
				"other " + SubLevel + " on demand",
				"actor " + SubLevel + ".DirectionalLight_0",
				"component " + SubLevel + ".DirectionalLight_0.Root",
				"other /Game/Maps/Both.Both:PersistentLevel",
				"actor /Game/Maps/Both.Both:PersistentLevel.Rock",
				"other /Game/Maps/Deeper.Deeper:PersistentLevel",
				"actor /Game/Maps/Deeper.Deeper:PersistentLevel.Rock",
			}));
		EXPECT_EQ(Object(SubLevel + ".DirectionalLight_0").Package, "/Game/Maps/Sub");
		EXPECT_EQ(Scene.SubLevelCount, 3u);
		const std::string Content = Temp.Path + "/Content";
		EXPECT_EQ(Scene.Notes,
			(std::vector<std::string>{
				"the sub-level /Game/Maps/Missing is not under " + Content + "; left out",
				"the sub-level /Plugin/Maps/Elsewhere is not under " + Content + "; left out",
			}));

		FLevelReadOptions Without;
		Without.bSubLevels = false;
		Read(Without);
		EXPECT_EQ(Listing(), (std::vector<std::string>{"other " + Level, "actor " + Level + ".DirectionalLight_0"}));
		EXPECT_EQ(Scene.SubLevelCount, 0u);
		EXPECT_EQ(Scene.Notes,
			std::vector<std::string>{ContentFile("Maps/Main.umap") +
				": sub-levels left out: /Game/Maps/Sub, /Game/Maps/Missing, /Game/Maps/Sub, /Plugin/Maps/Elsewhere, "
				"/Game/Maps/Both, /Game/Maps/Deeper, /Game/Maps/Both"});
	}

	TEST_F(LevelReader, ComponentsAreKnownByWhatThePackagesSaveAndEditorOnlyObjectsAreMarked)
	{
		// Subobjects of component classes, those the actor lists and its root are components.
		FTestActor Mixed = TestActor("Mixed",
			{{"Mesh"}, {"Brush", "Model"}, {"Glow", "BP_Glow_C"}, {"Spare", "BP_Glow_C"}, {"Custom", "BP_Thing_C"}},
			"Custom");
		Mixed.InstanceComponents = {"Glow"};
		FTestComponent Capture("NewSceneCaptureComponent2D", "SceneCaptureComponent2D");
		Capture.bDefaultSubObject = true;
		FTestComponent Sprite("Sprite", "BillboardComponent");
		Sprite.bEditorOnly = true;
		FTestActor Camera = TestActor("SceneCapture2D_1",
			{{"Root", "SceneComponent"}, Capture, {"Gizmo", "CaptureGizmo"}, {"Settings", "CaptureSettings"}, Sprite},
			"Root");
		Camera.Class = "SceneCapture2D";
		Camera.AttachChildren = {"Gizmo"};
		FTestActor Brush = TestActor("Brush_0", {{"BrushComponent0", "BrushComponent"}});
		Brush.Class = "Brush";
		Brush.bEditorOnly = true;
		// An object of a Blueprint class is a component when the class packages show a component super.
		Write("BP/BP_Spinner.uasset",
			WriteTestBlueprint("/Game/BP/BP_Spinner", "BP_Spinner_C", "/Script/Engine.SceneComponent", false, {}));
		Write("BP/BP_Fancy.uasset",
			WriteTestBlueprint("/Game/BP/BP_Fancy", "BP_Fancy_C", "/Game/BP/BP_Spinner.BP_Spinner_C", false, {}));
		Write("BP/BP_Data.uasset",
			WriteTestBlueprint("/Game/BP/BP_Data", "BP_Data_C", "/Script/CoreUObject.Object", false, {}));
		const FTestActor Fan = TestActor("Fan",
			{{"Spinner", "/Game/BP/BP_Spinner.BP_Spinner_C"}, {"Fancy", "/Game/BP/BP_Fancy.BP_Fancy_C"},
				{"Data", "/Game/BP/BP_Data.BP_Data_C"}, {"Lost", "/Game/BP/BP_Missing.BP_Missing_C"}});
		ReadMap(TestMap("/Game/Maps/Main", {Mixed, Camera, Brush, Fan}));
		const std::string Capturer = Level + ".SceneCapture2D_1";
		// A component of an editor-only actor is editor-only with it.
		// Settings is neither listed, nor a default subobject, nor of a component class: an object, not a component.
		// A class whose package is missing shows no component super: its object is left out, as BP_Data's is.
		EXPECT_EQ(Listing(),
			(std::vector<std::string>{
				"other " + Level,
				"actor " + Level + ".Mixed",
				"component " + Level + ".Mixed.Mesh",
				"component " + Level + ".Mixed.Glow",
				"component " + Level + ".Mixed.Custom",
				"actor " + Capturer,
				"component " + Capturer + ".Root",
				"component " + Capturer + ".NewSceneCaptureComponent2D",
				"component " + Capturer + ".Gizmo",
				"component " + Capturer + ".Sprite editor-only",
				"actor " + Level + ".Brush_0 editor-only",
				"component " + Level + ".Brush_0.BrushComponent0 editor-only",
				"actor " + Level + ".Fan",
				"component " + Level + ".Fan.Spinner",
				"component " + Level + ".Fan.Fancy",
			}));
		EXPECT_EQ(Object(Capturer + ".NewSceneCaptureComponent2D").ClassName, "SceneCaptureComponent2D");
	}

	TEST_F(LevelReader, AStreamingLevelTheWorldListsTwiceIsReadOnce)
	{
		FTestMap Map;
		Map.Actors = {TestActor("Cube")};
		Map.SubLevels = {"/Game/Maps/Sub", "/Game/Maps/Other"};
		FTestPackage Package;
		std::string Bytes = WriteTestMap(Map, &Package);
		// The world's data ends with its StreamingLevels: the second entry becomes the first's.
		const std::size_t WorldEnd = Package.Layout.ExportData[1];
		Bytes.replace(WorldEnd - 4, 4, Bytes.substr(WorldEnd - 8, 4));
		Write("Maps/Main.umap", Bytes);
		FLevelReadOptions Without;
		Without.bSubLevels = false;
		Read(Without);
		EXPECT_EQ(Scene.Notes,
			std::vector<std::string>{ContentFile("Maps/Main.umap") + ": sub-levels left out: /Game/Maps/Sub"});
	}

	TEST_F(LevelReader, ARedirectorIsFollowedAndSaidSoUnlessItLeadsNowhereOrInACircle)
	{
		Write("Maps/Main.umap", WriteTestRedirector("/Game/Maps/Main", "/Game/Maps/Renamed"));
		WriteMap(TestMap("/Game/Maps/Renamed", {TestActor("Cube")}));
		Read();
		EXPECT_EQ(Listing(),
			(std::vector<std::string>{"other /Game/Maps/Renamed.Renamed:PersistentLevel",
				"actor /Game/Maps/Renamed.Renamed:PersistentLevel.Cube"}));
		EXPECT_EQ(Scene.Notes,
			std::vector<std::string>{ContentFile("Maps/Main.umap") +
				": a redirector to /Game/Maps/Renamed; followed it to " + ContentFile("Maps/Renamed.umap")});
		EXPECT_EQ(Scene.Files, std::vector<std::string>{ContentFile("Maps/Renamed.umap")});

		// One to nothing, or in a circle, is an error.
		Write("Maps/Gone.umap", WriteTestRedirector("/Game/Maps/Gone", "/Game/Maps/Nowhere"));
		EXPECT_EQ(ReadError("Maps/Gone.umap"),
			ContentFile("Maps/Gone.umap") + ": a redirector to /Game/Maps/Nowhere, which is not under " + Temp.Path +
				"/Content");
		Write("Maps/Ping.umap", WriteTestRedirector("/Game/Maps/Ping", "/Game/Maps/Pong"));
		Write("Maps/Pong.umap", WriteTestRedirector("/Game/Maps/Pong", "/Game/Maps/Ping"));
		EXPECT_EQ(ReadError("Maps/Ping.umap"),
			ContentFile("Maps/Pong.umap") +
				": a redirector to /Game/Maps/Ping, which redirects back or on past 8 redirectors");

		// A chain is followed through 7 redirectors; the 8th is one too many.
		for (int Link = 0; Link < 8; ++Link)
		{
			const std::string Name = "/Game/Chain/R" + std::to_string(Link);
			Write("Chain/R" + std::to_string(Link) + ".umap",
				WriteTestRedirector(Name, "/Game/Chain/R" + std::to_string(Link + 1)));
		}
		WriteMap(TestMap("/Game/Chain/R8", {TestActor("Cube")}));
		EXPECT_EQ(ReadError("Chain/R0.umap"),
			ContentFile("Chain/R7.umap") +
				": a redirector to /Game/Chain/R8, which redirects back or on past 8 redirectors");
		std::string Error;
		ASSERT_TRUE(ReadLevelScene(ContentFile("Chain/R1.umap"), FLevelReadOptions(), Scene, Error)) << Error;
		EXPECT_EQ(Scene.Notes.size(), 7u);
		EXPECT_EQ(Scene.Files, std::vector<std::string>{ContentFile("Chain/R8.umap")});
	}

	TEST_F(LevelReader, ABlueprintActorWithoutSavedTagsHasItsClassesDefaultTagsLookedUpAtTheTopOfItsPackage)
	{
		FTestActor Own = TestActorOfClass("BP_Door_C_4", "/Game/BP/BP_Door.BP_Door_C");
		Own.bTags = true;
		Own.Tags = {"own"};
		FTestMap Map;
		// BP_Gate_C saves no tags: its super class does.
		Map.Actors = {TestActorOfClass("BP_Door_C_3", "/Game/BP/BP_Door.BP_Door_C"),
			TestActorOfClass("BP_Gate_C_0", "/Game/BP/BP_Gate.BP_Gate_C"), Own,
			TestActorOfClass("BP_Lost_C_0", "/Game/BP/BP_Lost.BP_Lost_C"),
			TestActorOfClass("BP_Plain_C_0", "/Game/BP/BP_Plain.BP_Plain_C"),
			// Every class the engine saves is a top-level object; a path through another object names no class
			// package, and is not looked up.
			TestActorOfClass("BP_C_0", "/Game/BP/Deep.Outer.BP_C")};
		WriteMap(Map);
		// BP_Door's package is saved by 4.21 (legacy version -7, UE4 517): the engine 5.0 loads it all the same.
		Write("BP/BP_Door.uasset",
			WriteTestBlueprint("/Game/BP/BP_Door", "BP_Door_C", "/Script/Engine.Actor", true, {"door", "locked"},
				[](FTestPackage& Package) { Package.SetVersions(-7, 517, 0, 30); }));
		Write("BP/BP_Gate.uasset",
			WriteTestBlueprint("/Game/BP/BP_Gate", "BP_Gate_C", "/Game/BP/BP_Door.BP_Door_C", false, {}));
		Write("BP/BP_Plain.uasset",
			WriteTestBlueprint("/Game/BP/BP_Plain", "BP_Plain_C", "/Script/Engine.Actor", false, {}));
		Read();
		EXPECT_EQ(DescribeObjects(Scene.Scene),
			(std::vector<std::string>{
				"other " + Level + " Level '' - -",
				"actor " + Level + ".BP_Door_C_3 BP_Door_C '' [door,locked] -",
				"actor " + Level + ".BP_Gate_C_0 BP_Gate_C '' [door,locked] -",
				"actor " + Level + ".BP_Door_C_4 BP_Door_C '' [own] -",
				"actor " + Level + ".BP_Lost_C_0 BP_Lost_C '' [] -",
				"actor " + Level + ".BP_Plain_C_0 BP_Plain_C '' [] -",
				"actor " + Level + ".BP_C_0 BP_C '' [] -",
			}));
		// The class's list is held once, not copied into each actor that takes it.
		EXPECT_TRUE(Object(Level + ".BP_Door_C_3").Tags.SharesWith(Object(Level + ".BP_Gate_C_0").Tags));
		EXPECT_EQ(Scene.Notes,
			std::vector<std::string>{"the Blueprint class /Game/BP/BP_Lost.BP_Lost_C is not under " + Temp.Path +
				"/Content: the default tags of its actors are unknown"});
	}

	TEST_F(LevelReader, APackageNameNeverLeadsOutOfContent)
	{
		// "/Game/" then an absolute path, or a name the engine never saves: nothing outside Content is read.
		WriteTestFile(Temp.Path, "Outside/Sub.umap", WriteTestMap(TestMap("/Game/Sub", {TestActor("Stranger")})));
		WriteTestFile(Temp.Path, "Outside/BP.uasset",
			WriteTestBlueprint("/Game/BP", "BP_C", "/Script/Engine.Actor", true, {"outside"}));
		const std::string Outside = "/Game/" + Temp.Path + "/Outside";
		Write("Maps\\Sub.umap", WriteTestMap(TestMap("/Game/Maps\\Sub", {TestActor("Odd")})));
		ReadMap(TestMap("/Game/Maps/Main", {TestActorOfClass("BP_C_0", Outside + "/BP.BP_C")},
			{Outside + "/Sub", "/Game/Maps\\Sub"}));
		EXPECT_EQ(Listing(), (std::vector<std::string>{"other " + Level, "actor " + Level + ".BP_C_0"}));
		EXPECT_EQ(Object(Level + ".BP_C_0").Tags, std::vector<std::string>{});
		const std::string Content = Temp.Path + "/Content";
		EXPECT_EQ(Scene.Notes,
			(std::vector<std::string>{
				"the sub-level " + Outside + "/Sub is not under " + Content + "; left out",
				"the sub-level /Game/Maps\\Sub is not under " + Content + "; left out",
				"the Blueprint class " + Outside + "/BP.BP_C is not under " + Content +
					": the default tags of its actors are unknown",
			}));

		Write("Maps/Away.umap", WriteTestRedirector("/Game/Maps/Away", Outside + "/Sub"));
		EXPECT_EQ(ReadError("Maps/Away.umap"),
			ContentFile("Maps/Away.umap") + ": a redirector to " + Outside + "/Sub, which is not under " + Content);
	}

	TEST_F(LevelReader, AMapOutsideAContentFolderIsReadAloneWithANote)
	{
		FTestMap Map;
		Map.PackagePath = "/Game/Loose";
		Map.Actors = {TestActor("Cube")};
		Map.SubLevels = {"/Game/Sub"};
		const std::string File = Temp.Write("Loose.umap", WriteTestMap(Map));
		std::string Error;
		ASSERT_TRUE(ReadLevelScene(File, FLevelReadOptions(), Scene, Error)) << Error;
		EXPECT_EQ(Listing(),
			(std::vector<std::string>{
				"other /Game/Loose.Loose:PersistentLevel", "actor /Game/Loose.Loose:PersistentLevel.Cube"}));
		EXPECT_EQ(Scene.Notes,
			(std::vector<std::string>{File +
					": not inside a Content folder; its external actors, sub-levels and Blueprint classes are not "
					"looked up",
				"the sub-level /Game/Sub is not under a Content folder; left out"}));
	}

	TEST(SceneFromObjects, ResolvesLinksByIndexAndRejectsBadOnes)
	{
		auto Make = [](const std::string& Id)
		{
			FSceneObject Object;
			Object.Id = Id;
			Object.Kind = ELodexSnapshotKind::Actor;
			Object.Name = Id;
			return Object;
		};
		FSceneObjectLinks ToFirst;
		ToFirst.Outer = 0;
		ToFirst.AttachParent = 0;
		FSceneSnapshot Scene;
		std::string Error;
		ASSERT_TRUE(FSceneSnapshot::FromObjects(
			{Make("a"), Make("b"), Make("c")}, {FSceneObjectLinks(), ToFirst}, Scene, Error));
		const std::vector<FSceneObject>& Objects = Scene.GetObjects();
		EXPECT_EQ(Objects[1].Outer, &Objects[0]);
		EXPECT_EQ(Objects[1].AttachParent, &Objects[0]);
		EXPECT_EQ(Objects[2].Outer, nullptr);
		FSceneSnapshot Moved = std::move(Scene);
		EXPECT_EQ(Moved.GetObjects()[1].Outer, &Moved.GetObjects()[0]);

		FSceneObjectLinks Past;
		Past.AttachParent = 3;
		const struct
		{
			std::vector<FSceneObject> Objects;
			std::vector<FSceneObjectLinks> Links;
			std::string Error;
		} Rows[] = {
			{{Make("a"), Make("")}, {}, "objects[1]: the id is empty"},
			{{Make("a"), Make("a")}, {}, "objects[1] (id 'a'): duplicate id, first used by objects[0]"},
			{{Make("a"), Make("b"), Make("c")}, {FSceneObjectLinks(), Past},
				"objects[1] (id 'b'): refers to objects[3] of 3"},
		};
		for (const auto& Row : Rows)
		{
			EXPECT_FALSE(FSceneSnapshot::FromObjects(Row.Objects, Row.Links, Scene, Error));
			EXPECT_EQ(Error, Row.Error);
		}
	}
}
