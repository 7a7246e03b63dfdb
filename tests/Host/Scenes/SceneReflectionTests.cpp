// Copyright Lodex contributors.
#include "Scenes/SceneReflection.h"
#include "Scenes/SceneSnapshot.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
	/** A scene of one actor "a" whose class is "Actor", with the given classes array. */
	std::string SceneWithClasses(const std::string& Classes, const std::string& ObjectClass = "\"Actor\"")
	{
		return R"({"objects": [{"id": "a", "kind": "actor", "name": "A", "class": )" + ObjectClass +
			R"(}], "classes": )" + Classes + "}";
	}

	std::string ParseError(const std::string& Text)
	{
		FSceneSnapshot Scene;
		std::string Error;
		return FSceneSnapshot::Parse(Text, "x.json", Scene, Error) ? std::string("(parsed)") : Error;
	}

	TEST(SceneReflection, BadClassesAreNamedByClassFunctionPropertyAndField)
	{
		const std::string Actor = R"({"name": "Actor", )";
		const std::vector<std::pair<std::string, std::string>> Rows{
			{R"({"objects": [], "classes": 3})", "x.json: field 'classes' must be an array, found number"},
			{SceneWithClasses("[5]"), "x.json: classes[0]: expected an object, found number"},
			{SceneWithClasses("[{}]"), "x.json: classes[0]: missing field 'name'"},
			{SceneWithClasses(R"([{"name": ""}])"), "x.json: classes[0]: field 'name' must not be empty"},
			{SceneWithClasses(R"([{"name": "Actor"}, {"name": "Actor"}])"),
				"x.json: classes[1] (name 'Actor'): field 'name': duplicate name, first used by classes[0]"},
			{SceneWithClasses("[" + Actor + R"("super": "Objet"}])"),
				"x.json: classes[0] (name 'Actor'): field 'super': no class has the name 'Objet'"},
			{SceneWithClasses("[" + Actor + R"("super": 1}])"),
				"x.json: classes[0] (name 'Actor'): field 'super' must be the name of a class (a string), found "
				"number"},
			{SceneWithClasses(R"([{"name": "Actor"}, {"name": "B", "super": "C"}, {"name": "C", "super": "B"}])"),
				"x.json: classes[1] (name 'B'): field 'super': the class derives from itself (B -> C -> B)"},
			// Actor leads into the loop D -> E; the loop B -> C comes first in the file among the classes on loops.
			{SceneWithClasses(
				 R"([{"name": "Actor", "super": "D"}, {"name": "D", "super": "E"}, {"name": "B", "super": "C"},
				 {"name": "C", "super": "B"}, {"name": "E", "super": "D"}])"),
				"x.json: classes[1] (name 'D'): field 'super': the class derives from itself (D -> E -> D)"},
			{SceneWithClasses(R"([{"name": "Actor", "super": "Actor"}])"),
				"x.json: classes[0] (name 'Actor'): field 'super': the class derives from itself (Actor -> Actor)"},
			{SceneWithClasses("[" + Actor + R"("functions": {}}])"),
				"x.json: classes[0] (name 'Actor'): field 'functions' must be an array, found object"},
			{SceneWithClasses("[" + Actor + R"("functions": [{"properties": []}]}])"),
				"x.json: classes[0] (name 'Actor'): functions[0]: missing field 'name'"},
			{SceneWithClasses("[" + Actor + R"("functions": [{"name": "Open"}, {"name": "Open"}]}])"),
				"x.json: classes[0] (name 'Actor'): functions[1] (name 'Open'): field 'name': duplicate name, first "
				"used by functions[0]"},
			{SceneWithClasses("[" + Actor +
				 R"("functions": [{"name": "Open", "properties": [{"name": "A", "type": "int32"}, {"name": "Speed"}]}]}])"),
				"x.json: classes[0] (name 'Actor'): functions[0] (name 'Open'): properties[1] (name 'Speed'): missing "
				"field 'type'"},
			{SceneWithClasses("[" + Actor +
				 R"("functions": [{"name": "Open", "properties": [{"name": "Speed", "type": "float", "flags": ["parm", "outt"]}]}]}])"),
				"x.json: classes[0] (name 'Actor'): functions[0] (name 'Open'): properties[0] (name 'Speed'): field "
				"'flags'[1]: unknown flag 'outt' (expected parm, out or return)"},
			{SceneWithClasses("[" + Actor +
				 R"("functions": [{"name": "Open", "properties": [{"name": "Speed", "type": "float", "flags": [7]}]}]}])"),
				"x.json: classes[0] (name 'Actor'): functions[0] (name 'Open'): properties[0] (name 'Speed'): field "
				"'flags'[0]: must be a string, found number"},
			{SceneWithClasses("[" + Actor + R"("properties": [{"name": "Tags", "type": []}]}])"),
				"x.json: classes[0] (name 'Actor'): properties[0] (name 'Tags'): field 'type' must be a string, found "
				"array"},
			{SceneWithClasses("[" + Actor +
				 R"("properties": [{"name": "Tags", "type": "TArray"}, {"name": "Tags", "type": "TArray"}]}])"),
				"x.json: classes[0] (name 'Actor'): properties[1] (name 'Tags'): field 'name': duplicate name, first "
				"used by properties[0]"},
			{SceneWithClasses(R"([{"name": "Actor"}])", "\"Actr\""),
				"x.json: objects[0] (id 'a'): field 'class': no class has the name 'Actr'"},
			{SceneWithClasses(R"([{"name": "Actor"}])", "2"),
				"x.json: objects[0] (id 'a'): field 'class' must be the name of a class (a string), found number"},
			// Names and type texts are one line: they end up in log lines, snippets and these messages.
			{SceneWithClasses(R"([{"name": "Actor"}, {"name": "A\nB"}])"),
				"x.json: classes[1]: field 'name' must be one line of text: it holds the control character U+000A"},
			{SceneWithClasses("[" + Actor + R"("super": "Object\r"}])"),
				"x.json: classes[0] (name 'Actor'): field 'super' must be one line of text: it holds the control "
				"character U+000D"},
			{SceneWithClasses("[" + Actor +
				 R"("functions": [{"name": "Open", "properties": [{"name": "\u0000", "type": "float"}]}]}])"),
				"x.json: classes[0] (name 'Actor'): functions[0] (name 'Open'): properties[0]: field 'name' must be "
				"one line of text: it holds the control character U+0000"},
			{SceneWithClasses("[" + Actor +
				 R"("functions": [{"name": "Open", "properties": [{"name": "S", "type": "float", "flags": ["out\n"]}]}]}])"),
				"x.json: classes[0] (name 'Actor'): functions[0] (name 'Open'): properties[0] (name 'S'): field "
				"'flags'[0] must be one line of text: it holds the control character U+000A"},
			{SceneWithClasses("[" + Actor + R"("properties": [{"name": "Tags", "type": "TArray\u001f"}]}])"),
				"x.json: classes[0] (name 'Actor'): properties[0] (name 'Tags'): field 'type' must be one line of "
				"text: it holds the control character U+001F"},
			{SceneWithClasses(R"([{"name": "Actor"}])", "\"Actor\\n\""),
				"x.json: objects[0] (id 'a'): field 'class' must be one line of text: it holds the control character "
				"U+000A"},
		};
		for (const auto& Row : Rows)
		{
			EXPECT_EQ(ParseError(Row.first), Row.second) << Row.first;
		}
	}

	TEST(SceneReflection, ComponentsOwnersAndTheReturnProperty)
	{
		const std::string Text = R"({"objects": [
			{"id": "lvl", "kind": "other", "name": "PersistentLevel"},
			{"id": "door", "kind": "actor", "name": "Door", "outer": "lvl"},
			{"id": "hinge", "kind": "component", "name": "Hinge", "outer": "door"},
			{"id": "lock", "kind": "component", "name": "Lock", "outer": "door"},
			{"id": "latch", "kind": "component", "name": "Latch", "outer": "lock"},
			{"id": "stray", "kind": "component", "name": "Stray", "outer": "lvl"}],
		  "classes": [{"name": "C", "functions": [
			{"name": "Early", "properties": [{"name": "A", "type": "int32", "flags": ["parm"]},
				{"name": "ReturnValue", "type": "bool", "flags": ["parm", "out", "return"]}]},
			{"name": "Late", "properties": [{"name": "Local", "type": "int32"},
				{"name": "ReturnValue", "type": "bool", "flags": ["parm", "out", "return"]}]}]}]})";
		FSceneSnapshot Scene;
		std::string Error;
		ASSERT_TRUE(FSceneSnapshot::Parse(Text, "c.json", Scene, Error)) << Error;
		const FSceneReflection Reflection(Scene);
		std::vector<FLodexObject> Components;
		Reflection.GetComponents(Scene.FindObject("door", Error), Components);
		// The latch, a subobject of the lock, is owned by the lock's actor, as the engine's components are.
		EXPECT_EQ(Components,
			(std::vector<FLodexObject>{
				Scene.FindObject("hinge", Error), Scene.FindObject("lock", Error), Scene.FindObject("latch", Error)}));
		EXPECT_EQ(Reflection.GetComponentOwner(Scene.FindObject("hinge", Error)), Scene.FindObject("door", Error));
		EXPECT_EQ(Reflection.GetComponentOwner(Scene.FindObject("latch", Error)), Scene.FindObject("door", Error));
		EXPECT_TRUE(Reflection.GetComponentOwner(Scene.FindObject("stray", Error)).IsNull());

		const FSceneClass& Class = Scene.GetClasses()[0];
		const FLodexProperty Early = Reflection.GetReturnProperty(FSceneReflection::Handle(Class.Functions[0]));
		ASSERT_FALSE(Early.IsNull());
		EXPECT_EQ(Reflection.GetPropertyType(Early), "bool");
		// As the engine's GetReturnProperty: only among the leading parameters.
		EXPECT_TRUE(Reflection.GetReturnProperty(FSceneReflection::Handle(Class.Functions[1])).IsNull());
	}
}
