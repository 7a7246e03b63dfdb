// Copyright Lodex contributors.
#include "TestGraph.h"
#include "TestReflection.h"

#include "LodexDebugger/Core/Explorer/ExplorerReference.h"
#include "LodexDebugger/Core/Lodestring/Lodestring.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
	using R = FTestReflection;

	/** A house with a door attached to it; the door has a hinge, and a lock whose subobject is a latch. */
	struct FDoorScene
	{
		FTestGraph Graph;
		FTestReflection Reflection;
		FTestGraph::FNode& House = Graph.Actor("House");
		FTestGraph::FNode& Door = Graph.Actor("Door", &House);
		FTestGraph::FNode& Hinge = Graph.Add(FTestGraph::EKind::Component, "Hinge", &Door);
		FTestGraph::FNode& Lock = Graph.Add(FTestGraph::EKind::Component, "Lock", &Door);
		FTestGraph::FNode& Latch = Graph.Add(FTestGraph::EKind::Component, "Latch", &Lock);
		FTestReflection::FClass& DoorClass = Reflection.Class("LockableDoor");
		FRecordingOutput Output;

		FDoorScene()
		{
			Reflection.AddComponent(Door, Hinge);
			Reflection.AddComponent(Door, Latch);
			DoorClass.Function("SetSpeed", {{"NewSpeed", "float", R::In}, {"Gear", "int32", R::In}})
				.Function("GetHits", {{"Count", "int32", R::Out}})
				.Property("Tags", "TArray")
				.Property("", "int32");
		}

		FLodexExplorerSelection Select(
			ELodexReferenceTarget Target, const FTestGraph::FNode* Component = nullptr, const char* Method = nullptr)
		{
			FLodexExplorerSelection Selection;
			Selection.SelectedActor = FTestGraph::Handle(Door);
			Selection.SelectedComponent = Component ? FTestGraph::Handle(*Component) : FLodexObject();
			Selection.SelectedFunction = Method ? FTestReflection::FindFunction(DoorClass, Method) : FLodexFunction();
			Selection.ReferenceTarget = static_cast<std::uint32_t>(Target);
			return Selection;
		}

		void Print(const FLodexExplorerSelection& Selection, const std::string& Mode)
		{
			LodexExplorer::PrintReference(Selection, Graph, Reflection, Output, Mode);
		}
	};

	struct FMethodCase
	{
		const char* Name;
		std::vector<FTestReflection::FProperty> Properties;
		const char* ReturnType;
		const char* Signature;
		const char* Snippet;
	};

	TEST(DescribeMethod, ReturnTypeSignatureAndSnippetOfEachParameterShape)
	{
		const std::vector<FMethodCase> Cases{
			// The worked example: two plain parameters, no return value.
			{"SetSpeed", {{"NewSpeed", "float", R::In}, {"Gear", "int32", R::In}}, "void",
				"SetSpeed(float NewSpeed, int32 Gear)",
				"api.CallMethod(\"P\", \"SetSpeed\", new object[]{float, int32}); "},
			// The worked example: the only out-parameter stands in for the missing return value.
			{"GetHits", {{"Count", "int32", R::Out}}, "int32", "GetHits()",
				"int32 var = api.CallMethod<int32>(\"P\", \"GetHits\", new object[]{}); "},
			{"Open", {}, "void", "Open()", "api.CallMethod(\"P\", \"Open\", new object[]{}); "},
			// A return value and out-parameters: every out-parameter is declared "T &N" and passed as "& T".
			{"TryUnlock",
				{{"Code", "FString", R::Out}, {"AttemptsLeft", "int32", R::Out}, {"ReturnValue", "bool", R::Ret}},
				"bool", "TryUnlock(FString &Code, int32 &AttemptsLeft)",
				"bool var = api.CallMethod<bool>(\"P\", \"TryUnlock\", new object[]{& FString, & int32}); "},
			// Two out-parameters, no return value: the first becomes the return type, the second stays.
			{"GetLockState", {{"AttemptsLeft", "int32", R::Out}, {"bJammed", "bool", R::Out}}, "int32",
				"GetLockState(bool &bJammed)",
				"int32 var = api.CallMethod<int32>(\"P\", \"GetLockState\", new object[]{& bool}); "},
			// "VOID" in another case counts as void: the out-parameter still stands in for it.
			{"Shout", {{"ReturnValue", "VOID", R::Ret}, {"Word", "FString", R::In}, {"Times", "int32", R::Out}},
				"int32", "Shout(FString Word)",
				"int32 var = api.CallMethod<int32>(\"P\", \"Shout\", new object[]{FString}); "},
			{"Whisper", {{"ReturnValue", "VOID", R::Ret}, {"Word", "FString", R::In}}, "VOID", "Whisper(FString Word)",
				"api.CallMethod(\"P\", \"Whisper\", new object[]{FString}); "},
			// The walk stops at the first property that is no parameter: locals, and anything after them, unread.
			{"Knock",
				{{"Strength", "float", R::In}, {"Answered", "bool", R::Out}, {"Echoes", "int32", R::Local},
					{"Late", "float", R::In}},
				"bool", "Knock(float Strength)",
				"bool var = api.CallMethod<bool>(\"P\", \"Knock\", new object[]{float}); "},
			// The return parameter is skipped wherever it stands; a nameless parameter is "None".
			{"Count", {{"ReturnValue", "int32", R::Ret}, {"", "FName", R::In}}, "int32", "Count(FName None)",
				"int32 var = api.CallMethod<int32>(\"P\", \"Count\", new object[]{FName}); "},
			// Type texts are used as they stand, the engine's trailing blank of TSubclassOf included.
			{"GetComponentsByClass",
				{{"ComponentClass", "TSubclassOf<UActorComponent> ", R::In}, {"ReturnValue", "TArray", R::Ret}},
				"TArray", "GetComponentsByClass(TSubclassOf<UActorComponent>  ComponentClass)",
				"TArray var = api.CallMethod<TArray>(\"P\", \"GetComponentsByClass\", new "
				"object[]{TSubclassOf<UActorComponent> }); "},
		};
		for (const FMethodCase& Case : Cases)
		{
			FTestReflection Reflection;
			FTestReflection::FClass& Class = Reflection.Class("C");
			Class.Function(Case.Name, Case.Properties);
			const FLodexMethodDescription Method =
				LodexExplorer::DescribeMethod(Reflection, FTestReflection::FindFunction(Class, Case.Name));
			EXPECT_EQ(Method.ReturnType, Case.ReturnType) << Case.Name;
			EXPECT_EQ(Method.Signature, Case.Signature) << Case.Name;
			EXPECT_EQ(LodexExplorer::BuildMethodSnippet(Method, "P"), Case.Snippet) << Case.Name;
		}
	}

	TEST(PrintReference, MethodLogsPathSignatureAndSampleAndCopiesTheSamplePropertyItsPathFromTheComponentIfAny)
	{
		FDoorScene Scene;
		Scene.Print(Scene.Select(ELodexReferenceTarget::Method, nullptr, "SetSpeed"), "Absolute");
		Scene.Print(Scene.Select(ELodexReferenceTarget::Method, &Scene.Hinge, "GetHits"), "Relative");
		FLodexExplorerSelection Selection = Scene.Select(ELodexReferenceTarget::Property, &Scene.Hinge);
		Selection.SelectedProperty = FTestReflection::FindProperty(Scene.DoorClass, "Tags");
		Scene.Print(Selection, "Relative");
		Selection.SelectedComponent = FLodexObject();
		Selection.SelectedProperty = FTestReflection::FindProperty(Scene.DoorClass, "");
		Scene.Print(Selection, "Absolute");
		const std::string SetSpeed =
			"api.CallMethod(\"/*[@name = 'House']/*[@name = 'Door']\", \"SetSpeed\", new object[]{float, int32}); ";
		const std::string GetHits =
			"int32 var = api.CallMethod<int32>(\"//Door/fn:component('Hinge')\", \"GetHits\", new object[]{}); ";
		const std::string Sample = "Sample usage: ", Comment = " //replace types with objects ";
		EXPECT_EQ(Scene.Output.Messages(),
			(std::vector<std::string>{"Lodestring : /*[@name = 'House']/*[@name = 'Door']",
				"Method : void SetSpeed(float NewSpeed, int32 Gear)", Sample + SetSpeed + Comment,
				"Lodestring : //Door/fn:component('Hinge')", "Method : int32 GetHits()", Sample + GetHits + Comment,
				"Lodestring : //Door/fn:component('Hinge')/@Tags",
				"Lodestring : /*[@name = 'House']/*[@name = 'Door']/@None"}));
		EXPECT_EQ(Scene.Output.Copies,
			(std::vector<std::string>{SetSpeed, GetHits, "//Door/fn:component('Hinge')/@Tags",
				"/*[@name = 'House']/*[@name = 'Door']/@None"}));
		for (const FRecordingOutput::FLine& Line : Scene.Output.Lines)
		{
			EXPECT_EQ(Line.Verbosity, ELodexLogVerbosity::Log);
		}
	}

	TEST(PrintReference, ObjectNamesTheComponentItselfAfterTheActorsPath)
	{
		FDoorScene Scene;
		Scene.Print(Scene.Select(ELodexReferenceTarget::Object), "Relative");
		Scene.Print(Scene.Select(ELodexReferenceTarget::Object, &Scene.Hinge), "Absolute");
		// The latch's own Lodestring passes through the lock; the explorer names it right after its actor.
		Scene.Print(Scene.Select(ELodexReferenceTarget::Object, &Scene.Latch), "Relative");
		EXPECT_EQ(Scene.Output.Messages(),
			(std::vector<std::string>{"Lodestring : //Door ",
				"Lodestring : /*[@name = 'House']/*[@name = 'Door']/fn:component('Hinge') ",
				"Lodestring : //Door/fn:component('Latch') "}));
		EXPECT_EQ(Scene.Output.Copies,
			(std::vector<std::string>{"//Door", "/*[@name = 'House']/*[@name = 'Door']/fn:component('Hinge')",
				"//Door/fn:component('Latch')"}));
		EXPECT_EQ(BuildLodestring(Scene.Graph, FTestGraph::Handle(Scene.Latch), "Relative"),
			"//Door/fn:component('Lock')/fn:component('Latch')");
	}

	TEST(PrintReference, NothingForAMissingSelectionOrAnUnknownTarget)
	{
		FDoorScene Scene;
		FLodexExplorerSelection NoActor = Scene.Select(ELodexReferenceTarget::Object, &Scene.Hinge);
		NoActor.SelectedActor = FLodexObject();
		Scene.Print(NoActor, "Absolute");
		Scene.Print(Scene.Select(ELodexReferenceTarget::Method), "Absolute");
		Scene.Print(Scene.Select(ELodexReferenceTarget::Property, &Scene.Hinge, "SetSpeed"), "Absolute");
		FLodexExplorerSelection Everything = Scene.Select(ELodexReferenceTarget::Object, &Scene.Hinge, "SetSpeed");
		Everything.SelectedProperty = FTestReflection::FindProperty(Scene.DoorClass, "Tags");
		Everything.ReferenceTarget = 3;
		Scene.Print(Everything, "Absolute");
		EXPECT_TRUE(Scene.Output.Lines.empty());
		EXPECT_TRUE(Scene.Output.Copies.empty());
	}

	TEST(PrintReference, PathAndFunctionNameGoIntoTheSampleUnescaped)
	{
		FDoorScene Scene;
		Scene.DoorClass.Function("Say\\\"", {{"Text", "FString", R::In}});
		FLodexExplorerSelection Selection = Scene.Select(ELodexReferenceTarget::Method, nullptr, "Say\\\"");
		Selection.SelectedActor = FTestGraph::Handle(Scene.Graph.Actor("Bob's \"Sign\""));
		Scene.Print(Selection, "Relative");
		EXPECT_EQ(Scene.Output.Copies,
			std::vector<std::string>{"api.CallMethod(\"//Bob's \"Sign\"\", \"Say\\\"\", new object[]{FString}); "});
	}
}
