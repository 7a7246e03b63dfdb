// Copyright Lodex contributors.
#include "Scenes/SceneReflection.h"
#include "Scenes/SceneSnapshot.h"
#include "TempDir.h"

#include "LodexDebugger/Core/Lodestring/Lodestring.h"

#include <gtest/gtest.h>

namespace
{
	TEST(SceneSnapshot, FieldsAreReadAsTheyWentInGuidsInCapitalsAndObjectsAreFoundByIdThenByUniqueName)
	{
		// Absent tags mean no tags array, null classes no classes; a guid is read in capitals; unknown fields are
		// ignored; objects may refer to objects listed later.
		FTempDir Dir;
		const std::string Path = Dir.Write("scene.json", R"({"version": 3, "classes": null, "objects": [
			{"id": "g", "kind": "actor", "name": "Tür \u7528\u6237", "tags": ["用户", "a'b"]},
			{"id": "c", "kind": "component", "name": "C", "outer": "a"},
			{"id": "a", "kind": "actor", "name": "A", "colour": "red", "attachParent": "b"},
			{"id": "b", "kind": "actor", "name": "B", "guid": "0a1b2c3d4e5f60718293a4b5c6d7e8f9", "location": [1, 2.5, -3]},
			{"id": "x", "kind": "actor", "name": "Twin"},
			{"id": "y", "kind": "actor", "name": "Twin"},
			{"id": "Twin2", "kind": "actor", "name": "x"}]})");
		FSceneSnapshot Scene;
		std::string Error;
		ASSERT_TRUE(FSceneSnapshot::LoadFile(Path, Scene, Error)) << Error;
		const FLodexObject Gate = Scene.FindObject("g", Error);
		EXPECT_EQ(BuildLodestring(Scene, Gate, "Absolute"), "/*[@name = 'Tür 用户']");
		EXPECT_EQ(BuildLodestring(Scene, Gate, "Tag"), "/*[@tag = '用户' or @tag = 'a'b']");
		EXPECT_EQ(BuildLodestring(Scene, Scene.FindObject("c", Error), "Absolute"),
			"/*[@name = 'B']/*[@name = 'A']/fn:component('C')");
		EXPECT_TRUE(Scene.GetClasses().empty());
		EXPECT_TRUE(FSceneReflection(Scene).GetClass(Gate).IsNull());
		std::vector<std::string> Tags{"stale"};
		EXPECT_FALSE(Scene.GetTags(Scene.FindObject("a", Error), Tags));
		EXPECT_TRUE(Tags.empty());
		const FSceneObject& B = FSceneSnapshot::Resolve(Scene.FindObject("b", Error));
		EXPECT_EQ(B.Guid, "0A1B2C3D4E5F60718293A4B5C6D7E8F9");
		EXPECT_TRUE(B.bHasLocation);
		EXPECT_EQ(std::vector<double>(B.Location, B.Location + 3), (std::vector<double>{1, 2.5, -3}));

		EXPECT_EQ(FSceneSnapshot::Resolve(Scene.FindObject("x", Error)).Id, "x") << "an id wins over a name";
		EXPECT_FALSE(Scene.FindObject("Twin", Error));
		EXPECT_EQ(Error, "2 objects are named 'Twin'; name one by its id");
		EXPECT_FALSE(Scene.FindObject("Nobody", Error));
		EXPECT_EQ(Error, "no object has the id, name or label 'Nobody'");
	}

	struct FBadSnapshotRow
	{
		const char* Text;
		const char* Error;
	};

	TEST(SceneSnapshot, BadFilesAreNamedWithWhatIsWrong)
	{
		const FBadSnapshotRow Rows[] = {
			{"{\"objects\": [\n  {\"id\": \"a\",}\n]}",
				"bad.json:2:14: syntax error while parsing object key - unexpected '}'; expected string literal"},
			{"",
				"bad.json:1:1: syntax error while parsing value - unexpected end of input; expected '[', '{', or a "
				"literal"},
			{"{\"objects\": [{\"id\": \"Tür\" x]}",
				"bad.json:1:27: syntax error while parsing object - invalid literal; last read: '\"Tür\" x'; "
				"expected '}'"},
			{"[]", "bad.json: expected a JSON object at the top, found array"},
			{"{}", "bad.json: missing field 'objects'"},
			{R"({"objects": {}})", "bad.json: field 'objects' must be an array, found object"},
			{R"({"objects": [3]})", "bad.json: objects[0]: expected an object, found number"},
			{R"({"objects": [{"kind": "actor", "name": "A"}]})", "bad.json: objects[0]: missing field 'id'"},
			{R"({"objects": [{"id": "a", "name": "A"}]})", "bad.json: objects[0] (id 'a'): missing field 'kind'"},
			{R"({"objects": [{"id": "a", "kind": "actor"}]})", "bad.json: objects[0] (id 'a'): missing field 'name'"},
			{R"({"objects": [{"id": "a", "kind": "actor", "name": 7}]})",
				"bad.json: objects[0] (id 'a'): field 'name' must be a string, found number"},
			{R"({"objects": [{"id": "", "kind": "actor", "name": "A"}]})",
				"bad.json: objects[0]: field 'id' must not be empty"},
			{R"({"objects": [{"id": "a", "kind": "Actor", "name": "A"}]})",
				"bad.json: objects[0] (id 'a'): field 'kind': unknown kind 'Actor' (expected actor, widgetTree, "
				"widget, "
				"userWidget, component or other)"},
			{R"({"objects": [{"id": "a", "kind": "actor", "name": "A"}, {"id": "a", "kind": "other", "name": "B"}]})",
				"bad.json: objects[1] (id 'a'): field 'id': duplicate id, first used by objects[0]"},
			{R"({"objects": [{"id": "a", "kind": "actor", "name": "A", "outer": "lvl"}]})",
				"bad.json: objects[0] (id 'a'): field 'outer': no object has the id 'lvl'"},
			{R"({"objects": [{"id": "a", "kind": "actor", "name": "A", "attachParent": 1}]})",
				"bad.json: objects[0] (id 'a'): field 'attachParent' must be the id of an object (a string), found "
				"number"},
			{R"({"objects": [{"id": "a", "kind": "widget", "name": "A", "widgetParent": "b"}]})",
				"bad.json: objects[0] (id 'a'): field 'widgetParent': no object has the id 'b'"},
			{R"({"objects": [{"id": "a", "kind": "widgetTree", "name": "A", "rootWidget": "r"}]})",
				"bad.json: objects[0] (id 'a'): field 'rootWidget': no object has the id 'r'"},
			{R"({"objects": [{"id": "a", "kind": "actor", "name": "A", "tags": "t"}]})",
				"bad.json: objects[0] (id 'a'): field 'tags' must be an array of strings, found string"},
			{R"({"objects": [{"id": "a", "kind": "actor", "name": "A", "tags": ["t", null]}]})",
				"bad.json: objects[0] (id 'a'): field 'tags'[1] must be a string, found null"},
			{R"({"objects": [{"id": "a", "kind": "actor", "name": "A", "guid": "0A1B"}]})",
				"bad.json: objects[0] (id 'a'): field 'guid' must be 32 hex digits, found '0A1B'"},
			{R"({"objects": [{"id": "a", "kind": "actor", "name": "A", "guid": "0A1B2C3D4E5F60718293A4B5C6D7E8FG"}]})",
				"bad.json: objects[0] (id 'a'): field 'guid' must be 32 hex digits, found "
				"'0A1B2C3D4E5F60718293A4B5C6D7E8FG'"},
			{R"({"objects": [{"id": "a", "kind": "actor", "name": "A", "guid": ""}]})",
				"bad.json: objects[0] (id 'a'): field 'guid' must be 32 hex digits, found ''"},
			{R"({"objects": [{"id": "a", "kind": "actor", "name": "A", "location": [1, 2]}]})",
				"bad.json: objects[0] (id 'a'): field 'location' must be an array of 3 numbers"},
			{R"({"objects": [{"id": "a", "kind": "actor", "name": "A", "location": [1, 2, "3"]}]})",
				"bad.json: objects[0] (id 'a'): field 'location' must be an array of 3 numbers"},
			// Text is one line: a name or tag ends up in a one-line Lodestring, an id or kind in a one-line message.
			{R"({"objects": [{"id": "a\r", "kind": "actor", "name": "A"}]})",
				"bad.json: objects[0]: field 'id' must be one line of text: it holds the control character U+000D"},
			{R"({"objects": [{"id": "a", "kind": "act\nor", "name": "A"}]})",
				"bad.json: objects[0] (id 'a'): field 'kind' must be one line of text: it holds the control "
				"character U+000A"},
			{R"({"objects": [{"id": "a", "kind": "actor", "name": "Door\u0000"}]})",
				"bad.json: objects[0] (id 'a'): field 'name' must be one line of text: it holds the control "
				"character U+0000"},
			{R"({"objects": [{"id": "a", "kind": "actor", "name": "A", "tags": ["t", "red\tdoor"]}]})",
				"bad.json: objects[0] (id 'a'): field 'tags'[1] must be one line of text: it holds the control "
				"character U+0009"},
			{R"({"objects": [{"id": "a", "kind": "actor", "name": "A", "outer": "lvl\n"}]})",
				"bad.json: objects[0] (id 'a'): field 'outer' must be one line of text: it holds the control "
				"character U+000A"},
		};
		for (const FBadSnapshotRow& Row : Rows)
		{
			FSceneSnapshot Scene;
			std::string Error;
			EXPECT_FALSE(FSceneSnapshot::Parse(Row.Text, "bad.json", Scene, Error)) << Row.Text;
			EXPECT_EQ(Error, Row.Error) << Row.Text;
		}
	}
}
