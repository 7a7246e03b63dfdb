// Copyright Lodex contributors.
#include "TestGraph.h"
#include "TestReflection.h"

#include "LodexDebugger/Core/Explorer/SnapshotWriter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace
{
	using R = FTestReflection;

	TEST(SnapshotWriter, StringsAreEscapedAndBadUtf8BecomesReplacementCharacters)
	{
		// A sequence cut short at the end: one replacement per byte.
		std::string Out;
		LodexSnapshot::AppendJsonString(
			Out, "Bob's \"Sign\" C:\\x a\nb\rc\td\x01\x1f Tür 用户 \xF0\x9F\x98\x80 \xFF a\xE7\x94");
		EXPECT_EQ(Out,
			"\"Bob's \\\"Sign\\\" C:\\\\x a\\nb\\rc\\td\\u0001\\u001f Tür 用户 \xF0\x9F\x98\x80 \xEF\xBF\xBD "
			"a\xEF\xBF\xBD\xEF\xBF\xBD\"");
	}

	TEST(SnapshotWriter, ObjectsAsTheyAreWrittenGoOneValueALineWithEveryFieldALevelSaves)
	{
		FLodexSavedObject Saved;
		Saved.ClassName = "StaticMeshActor";
		Saved.Label = "Front\bdoor\f\xE7\x94!"; // a sequence cut short is one U+FFFD here
		Saved.Guid = "0123ABCD4567EF0189AB2345CDEF6789";
		Saved.bHasLocation = true;
		Saved.Location[0] = 0.1;
		Saved.Location[1] = -0.0;
		Saved.Location[2] = std::nan("");
		Saved.bEditorOnly = true;
		const std::vector<std::string> Tags{"a", "b"};
		std::vector<FLodexSnapshotObject> Objects(2);
		Objects[0].Id = "/Game/M.M:PersistentLevel";
		Objects[0].Name = "PersistentLevel";
		Objects[0].Placement = ELodexPlacement::Placed;
		Objects[0].bStreamedOnDemand = true;
		Objects[0].InstancedBy = "/Game/X.X:PersistentLevel.LevelInstance_1";
		Objects[0].Package = "/Game/M";
		Objects[1].Id = "/Game/M.M:PersistentLevel.Door";
		Objects[1].Kind = ELodexSnapshotKind::Actor;
		Objects[1].Name = "Door";
		Objects[1].Outer = 0;
		Objects[1].Tags = &Tags;
		Objects[1].Saved = &Saved;
		Objects[1].Placement = ELodexPlacement::Spawned;
		EXPECT_EQ(LodexSnapshot::WriteObjects(Objects),
			R"({
 "objects": [
  {
   "id": "/Game/M.M:PersistentLevel",
   "kind": "other",
   "name": "PersistentLevel",
   "placed": true,
   "streamedOnDemand": true,
   "instancedBy": "/Game/X.X:PersistentLevel.LevelInstance_1",
   "package": "/Game/M"
  },
  {
   "id": "/Game/M.M:PersistentLevel.Door",
   "kind": "actor",
   "name": "Door",
   "outer": "/Game/M.M:PersistentLevel",
   "tags": [
    "a",
    "b"
   ],
   "className": "StaticMeshActor",
   "label": "Front\bdoor\f)"
			"\xEF\xBF\xBD"
			R"(!",
   "placed": false,
   "guid": "0123ABCD4567EF0189AB2345CDEF6789",
   "location": [
    0.10000000000000001,
    -0,
    null
   ],
   "editorOnly": true
  }
 ]
}
)");
	}

	TEST(SnapshotWriter, WritesObjectsThenWhatTheyReferToThenEveryClassMet)
	{
		FTestGraph Graph;
		FTestReflection Reflection;
		FTestGraph::FNode& House = Graph.Actor("House", nullptr, {"bldg"});
		FTestGraph::FNode& Door = Graph.Actor("Door", &House);
		FTestGraph::FNode& Hinge = Graph.Add(FTestGraph::EKind::Component, "Hinge", &Door);
		FTestGraph::FNode& OtherDoor = Graph.Actor("Door");
		FTestReflection::FClass& Object = Reflection.Class("Object");
		FTestReflection::FClass& Actor = Reflection.Class("Actor", &Object);
		Actor.Function("K2_GetActorLocation", {{"ReturnValue", "FVector", R::Ret}})
			.Function("Knock", {{"Strength", "float", R::In}, {"Echo", "int32", R::Local}})
			.Property("Tags", "TArray");
		Reflection.SetClass(Door, Actor);
		Reflection.SetClass(House, Actor);
		Reflection.SetClass(Hinge, Object);
		// Saved with the level, spawned at play time, and (the others) not known.
		Door.Placement = ELodexPlacement::Placed;
		OtherDoor.Placement = ELodexPlacement::Spawned;

		FLodexSnapshotCounts Counts;
		const std::string Text = LodexSnapshot::Write(Graph, Reflection,
			{FTestGraph::Handle(Hinge), FTestGraph::Handle(OtherDoor), FTestGraph::Handle(Door)}, &Counts);
		EXPECT_EQ(Text,
			"{\n"
			"  \"objects\": [\n"
			"    {\"id\": \"Hinge\", \"kind\": \"component\", \"name\": \"Hinge\", \"outer\": \"Door#2\", \"class\": "
			"\"Object\"},\n"
			"    {\"id\": \"Door\", \"kind\": \"actor\", \"name\": \"Door\", \"outer\": \"PersistentLevel\", "
			"\"tags\": [], \"placed\": false},\n"
			"    {\"id\": \"Door#2\", \"kind\": \"actor\", \"name\": \"Door\", \"outer\": \"PersistentLevel\", "
			"\"attachParent\": \"House\", \"tags\": [], \"placed\": true, \"class\": \"Actor\"},\n"
			"    {\"id\": \"PersistentLevel\", \"kind\": \"other\", \"name\": \"PersistentLevel\"},\n"
			"    {\"id\": \"House\", \"kind\": \"actor\", \"name\": \"House\", \"outer\": \"PersistentLevel\", "
			"\"tags\": [\"bldg\"], \"class\": \"Actor\"}\n"
			"  ],\n"
			"  \"classes\": [\n"
			"    {\"name\": \"Object\",\n"
			"      \"functions\": [],\n"
			"      \"properties\": []},\n"
			"    {\"name\": \"Actor\", \"super\": \"Object\",\n"
			"      \"functions\": [\n"
			"        {\"name\": \"K2_GetActorLocation\", \"properties\": [{\"name\": \"ReturnValue\", \"type\": "
			"\"FVector\", \"flags\": [\"parm\", \"out\", \"return\"]}]},\n"
			"        {\"name\": \"Knock\", \"properties\": [{\"name\": \"Strength\", \"type\": \"float\", \"flags\": "
			"[\"parm\"]}, {\"name\": \"Echo\", \"type\": \"int32\", \"flags\": []}]}\n"
			"      ],\n"
			"      \"properties\": [\n"
			"        {\"name\": \"Tags\", \"type\": \"TArray\"}\n"
			"      ]}\n"
			"  ]\n"
			"}\n");
		EXPECT_EQ(Counts.Objects, 5u);
		EXPECT_EQ(Counts.Classes, 2u);
	}

	TEST(SnapshotWriter, LoopsOfReferencesAndSameNamedClassesAreWrittenOnce)
	{
		FTestGraph Graph;
		FTestReflection Reflection;
		FTestGraph::FNode& A = Graph.Actor("A");
		FTestGraph::FNode& B = Graph.Actor("B", &A);
		A.AttachParent = &B;
		FTestReflection::FClass& First = Reflection.Class("Door_C");
		FTestReflection::FClass& Second = Reflection.Class("Door_C", &First);
		Reflection.SetClass(A, Second);
		Reflection.SetClass(B, First);
		FLodexSnapshotCounts Counts;
		const std::string Text = LodexSnapshot::Write(Graph, Reflection, {FTestGraph::Handle(A)}, &Counts);
		EXPECT_EQ(Counts.Objects, 3u);
		EXPECT_EQ(Counts.Classes, 2u);
		// The class met first keeps its name; the other one, met as its super class, is told apart.
		EXPECT_NE(Text.find("{\"name\": \"Door_C\", \"super\": \"Door_C#2\",\n"), std::string::npos) << Text;
		EXPECT_NE(Text.find("\"attachParent\": \"A\", \"tags\": [], \"class\": \"Door_C#2\""), std::string::npos);

		const std::string Empty = LodexSnapshot::Write(Graph, Reflection, {}, &Counts);
		EXPECT_EQ(Empty, "{\n  \"objects\": [],\n  \"classes\": []\n}\n");
		EXPECT_EQ(Counts.Objects, 0u);
	}

	TEST(SnapshotExport, ConsoleArgumentsDefaultFileAndMessages)
	{
		const auto Parse = [](const std::vector<std::string>& Arguments)
		{
			const LodexSnapshot::FExportRequest Request = LodexSnapshot::ParseConsoleArguments(Arguments);
			return (Request.bUseDefaultFile ? "default " : "file ") + Request.File;
		};
		EXPECT_EQ(Parse({}), "default ");
		EXPECT_EQ(Parse({"level.json"}), "file level.json");
		EXPECT_EQ(Parse({"C:/My", "Levels/level.json"}), "file C:/My Levels/level.json");
		EXPECT_EQ(Parse({"\"/tmp/a", "b.json\""}), "file /tmp/a b.json");
		EXPECT_EQ(LodexSnapshot::MakeDefaultFileName("Level_01"), "Level_01.json");
		EXPECT_EQ(LodexSnapshot::MakeDefaultFileName("a/b\\c:d*e?\"f<g>|"), "a_b_c_d_e__f_g__.json");
		EXPECT_EQ(LodexSnapshot::MakeDefaultFileName(""), "World.json");
		EXPECT_EQ(LodexSnapshot::FormatWrittenMessage("/p/Saved/Lodex/Level.json", {12, 3}),
			"Scene snapshot written to /p/Saved/Lodex/Level.json: 12 objects, 3 classes");
		EXPECT_EQ(LodexSnapshot::FormatFailedMessage("/p/x.json", "cannot write /p/x.json.tmp"),
			"Could not write the scene snapshot /p/x.json: cannot write /p/x.json.tmp");
	}

	TEST(SnapshotExport, StartAddsTheEntryThenTheCommandAndStopRemovesTheCommand)
	{
		FRecordingCommandHost Host;
		LodexSnapshot::StartExport(Host);
		LodexSnapshot::StopExport(Host);
		EXPECT_EQ(Host.Calls,
			(std::vector<std::string>{"entry Export Scene Snapshot After DETAILS_TOOL", "register Lodex.ExportSnapshot",
				"unregister Lodex.ExportSnapshot"}));
	}
}
