// Copyright Lodex contributors.
#include "TestGraph.h"
#include "TestReflection.h"

#include "LodexDebugger/Core/Explorer/ExplorerPanel.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace
{
	using R = FTestReflection;
	using EList = ELodexExplorerList;

	/** Records the panel's calls on its widgets. */
	class FRecordingView final : public ILodexExplorerView
	{
	public:
		void UpdateComponentsTree() override { Calls.push_back("UpdateComponentsTree"); }
		void ClearSearchBox(ELodexExplorerList List) override { Calls.push_back("ClearSearchBox " + Name(List)); }
		void RefreshList(ELodexExplorerList List) override { Calls.push_back("RefreshList " + Name(List)); }

		static std::string Name(ELodexExplorerList List)
		{
			return List == ELodexExplorerList::Properties ? "Properties" : "Methods";
		}

		std::vector<std::string> Calls;
	};

	/**
	 * A level with a door (a Blueprint-like class that redeclares an inherited function) with two components, a
	 * lamp, and the level object itself.
	 */
	struct FExplorerScene
	{
		FTestGraph Graph;
		FTestReflection Reflection;
		FRecordingOutput Output;
		FRecordingView View;
		FLodexExplorerPanel Panel{Graph, Reflection, Output};

		FTestReflection::FClass& ObjectClass = Reflection.Class("Object");
		FTestReflection::FClass& ActorClass = Reflection.Class("Actor", &ObjectClass);
		FTestReflection::FClass& DoorClass = Reflection.Class("BP_Door_C", &ActorClass);
		FTestReflection::FClass& ComponentClass = Reflection.Class("SceneComponent", &ObjectClass);

		FTestGraph::FNode& Level = *Graph.Level();
		FTestGraph::FNode& Door = Graph.Actor("Door");
		FTestGraph::FNode& Hinge = Graph.Add(FTestGraph::EKind::Component, "Hinge", &Door);
		FTestGraph::FNode& Knob = Graph.Add(FTestGraph::EKind::Component, "Knob", &Door);
		FTestGraph::FNode& Lamp = Graph.Actor("Lamp");

		FExplorerScene()
		{
			ObjectClass.Function("ExecuteUbergraph", {{"EntryPoint", "int32", R::In}});
			ActorClass.Function("ReceiveBeginPlay")
				.Function("K2_GetActorLocation", {{"ReturnValue", "FVector", R::Ret}});
			ActorClass.Property("Tags", "TArray").Property("RootComponent", "USceneComponent*");
			DoorClass.Function("Open").Function("ReceiveBeginPlay");
			DoorClass.Property("OpenAngle", "float").Property("", "int32");
			ComponentClass.Function("SetVisibility", {{"bNewVisibility", "bool", R::In}});
			ComponentClass.Property("RelativeLocation", "FVector")
				.Property("RelativeRotation", "FRotator")
				.Property("bVisible", "uint8");
			Reflection.SetClass(Door, DoorClass);
			Reflection.SetClass(Lamp, ActorClass);
			Reflection.SetClass(Hinge, ComponentClass);
			Reflection.SetClass(Knob, ComponentClass);
			Reflection.AddComponent(Door, Hinge);
			Reflection.AddComponent(Door, Knob);
			Panel.SetView(&View);
		}

		void Select(std::initializer_list<const FTestGraph::FNode*> Nodes)
		{
			const FTestSelection Selection(Nodes);
			Panel.HandleSelectionChanged(&Selection);
		}

		void Pick(EList List, const std::string& Item) { Panel.HandleListSelectionChanged(List, &Item); }

		std::vector<std::string> Shown(EList List) const
		{
			std::vector<std::string> Names;
			for (const std::size_t Index : Panel.GetFilteredItems(List))
			{
				Names.push_back(Panel.GetNames(List)[Index]);
			}
			return Names;
		}

		static FLodexTreeNodeSelection Node(ELodexTreeNodeKind Kind, const FTestGraph::FNode* Found = nullptr)
		{
			return {Kind, Found ? FTestGraph::Handle(*Found) : FLodexObject()};
		}
	};

	const std::vector<std::string> DoorMethods{
		"Open", "ReceiveBeginPlay", "ReceiveBeginPlay", "K2_GetActorLocation", "ExecuteUbergraph"};
	const std::vector<std::string> DoorProperties{"OpenAngle", "None", "Tags", "RootComponent"};
	const std::vector<std::string> HingeProperties{"RelativeLocation", "RelativeRotation", "bVisible"};

	TEST(ExplorerPanel, AnActorFillsBothListsOwnMembersFirstThenEachSuperClassWithTheirRowsAndTheTreeFollowsIt)
	{
		FExplorerScene Scene;
		Scene.Panel.OpenListContextMenu(EList::Methods);
		Scene.Select({&Scene.Door});
		EXPECT_EQ(Scene.Panel.GetNames(EList::Methods), DoorMethods);
		EXPECT_EQ(Scene.Panel.GetNames(EList::Properties), DoorProperties);
		EXPECT_EQ(Scene.Shown(EList::Methods), DoorMethods);
		ASSERT_EQ(Scene.Panel.GetMethodFunctions().size(), DoorMethods.size());
		// The parallel arrays: the second and third entries are the two different ReceiveBeginPlay functions.
		EXPECT_EQ(
			Scene.Panel.GetMethodFunctions()[1], FTestReflection::FindFunction(Scene.DoorClass, "ReceiveBeginPlay"));
		EXPECT_EQ(
			Scene.Panel.GetMethodFunctions()[2], FTestReflection::FindFunction(Scene.ActorClass, "ReceiveBeginPlay"));
		EXPECT_EQ(Scene.Panel.GetSelection().SelectedActor, FTestGraph::Handle(Scene.Door));
		EXPECT_EQ(Scene.Panel.GetExploredActor(), FTestGraph::Handle(Scene.Door));
		// Selecting an actor leaves the target as the list menu set it.
		EXPECT_EQ(Scene.Panel.GetReferenceTarget(), 1u);
		EXPECT_EQ(Scene.View.Calls,
			(std::vector<std::string>{"UpdateComponentsTree", "ClearSearchBox Properties", "ClearSearchBox Methods",
				"RefreshList Properties", "RefreshList Methods"}));
		// Rows show type and name, or return type and signature.
		const FLodexPropertyRow Property = Scene.Panel.GetPropertyRow(3);
		const FLodexMethodRow Method = Scene.Panel.GetMethodRow(3);
		EXPECT_EQ(Property.Type + "|" + Property.Name, "USceneComponent*|RootComponent");
		EXPECT_EQ(Method.ReturnType + "|" + Method.Signature, "FVector|K2_GetActorLocation()");
	}

	TEST(ExplorerPanel, FiltersKeepNamesContainingTheTextFoldingOnlyAsciiLettersAsTheEnginesFindDoes)
	{
		FExplorerScene Scene;
		FTestReflection::FClass& Class = Scene.Reflection.Class("Gate");
		const std::vector<std::string> Names{"Tür", "TÜR", "tür_2", "straße", "STRASSE", "用户Name", "x_Y", "Zaun"};
		for (const std::string& Name : Names)
		{
			Class.Property(Name, "int32");
		}
		Class.Function("SetVisibility");
		Scene.Reflection.SetClass(Scene.Lamp, Class);
		Scene.Select({&Scene.Lamp});
		for (const std::string Filter :
			{"tü", "TÜ", "ü", "Ü", "TÜR", "ss", "SS", "ß", "用户n", "_y", "_2", "zAUN", "aun", "xyz", ""})
		{
			Scene.View.Calls.clear();
			Scene.Panel.HandleFilterTextChanged(EList::Properties, Filter);
			std::vector<std::string> Expected;
			std::copy_if(Names.begin(), Names.end(), std::back_inserter(Expected),
				[&Filter](const std::string& Name) { return LodexText::ContainsIgnoreCase(Name, Filter); });
			EXPECT_EQ(Scene.Shown(EList::Properties), Expected) << Filter;
			EXPECT_EQ(Scene.Panel.GetFilterText(EList::Properties), Filter);
			EXPECT_EQ(Scene.View.Calls, std::vector<std::string>{"RefreshList Properties"});
		}
		// Each list keeps its own filter.
		Scene.Panel.HandleFilterTextChanged(EList::Methods, "VIS");
		EXPECT_EQ(Scene.Shown(EList::Methods), std::vector<std::string>{"SetVisibility"});
		EXPECT_EQ(Scene.Shown(EList::Properties), Names);
		Scene.Panel.HandleFilterTextChanged(EList::Properties, "tü");
		EXPECT_EQ(Scene.Panel.GetFilteredItems(EList::Properties), (std::vector<std::size_t>{0, 2}));
	}

	TEST(ExplorerPanel, AComponentSelectedInTheEditorIsExploredWithItsOwnerAndTheTargetReturnsToObject)
	{
		FExplorerScene Scene;
		Scene.Select({&Scene.Lamp});
		Scene.Panel.HandleFilterTextChanged(EList::Properties, "tag");
		Scene.Panel.OpenListContextMenu(EList::Properties);
		Scene.View.Calls.clear();
		Scene.Select({&Scene.Hinge});
		const FLodexExplorerSelection& Selection = Scene.Panel.GetSelection();
		EXPECT_EQ(Selection.SelectedActor, FTestGraph::Handle(Scene.Door));
		EXPECT_EQ(Selection.SelectedComponent, FTestGraph::Handle(Scene.Hinge));
		EXPECT_EQ(Scene.Panel.GetExploredActor(), FTestGraph::Handle(Scene.Door));
		EXPECT_EQ(Scene.Panel.GetReferenceTarget(), 0u);
		EXPECT_EQ(Scene.Shown(EList::Properties), HingeProperties);
		EXPECT_EQ(Scene.Panel.GetFilterText(EList::Properties), "");
		// The components tree is regenerated for actors only.
		EXPECT_EQ(std::count(Scene.View.Calls.begin(), Scene.View.Calls.end(), "UpdateComponentsTree"), 0);
	}

	TEST(ExplorerPanel, TreeWalkTheLastComponentWinsTheActorNodeEndsItAndEveryWalkClearsBothSearchBoxes)
	{
		using K = ELodexTreeNodeKind;
		FExplorerScene Scene;
		const FLodexObject Hinge = FTestGraph::Handle(Scene.Hinge), Knob = FTestGraph::Handle(Scene.Knob), None;
		struct FCase
		{
			const char* What;
			std::vector<FLodexTreeNodeSelection> Nodes;
			FLodexObject Component;
			std::vector<std::string> Properties;
			std::uint32_t Target;
		};
		const std::vector<FCase> Cases{
			{"not found is skipped", {{K::Component, Knob}, {K::Component, None}}, Knob, HingeProperties, 0},
			{"actor ends the walk", {{K::Component, Knob}, {K::Actor, None}, {K::Component, Hinge}}, None,
				DoorProperties, 0},
			{"nothing found", {{K::Component, None}, {K::Other, None}}, None, {}, 0},
			// No nodes: the component and the target stay, only the search boxes are cleared.
			{"no nodes", {}, Hinge, HingeProperties, 1},
			{"last component", {{K::Component, Hinge}, {K::Component, Knob}}, Knob, HingeProperties, 0},
		};
		for (const FCase& Case : Cases)
		{
			// Selecting the hinge again starts each walk afresh, with text in both search boxes.
			Scene.Select({&Scene.Hinge});
			Scene.Panel.HandleFilterTextChanged(EList::Properties, "rot");
			Scene.Panel.HandleFilterTextChanged(EList::Methods, "vis");
			Scene.Panel.OpenListContextMenu(EList::Methods);
			Scene.View.Calls.clear();
			Scene.Panel.HandleTreeSelectionUpdated(Case.Nodes);
			EXPECT_EQ(Scene.Panel.GetSelection().SelectedComponent, Case.Component) << Case.What;
			EXPECT_EQ(Scene.Shown(EList::Properties), Case.Properties) << Case.What;
			EXPECT_EQ(Scene.Panel.GetSelection().SelectedActor, FTestGraph::Handle(Scene.Door)) << Case.What;
			EXPECT_EQ(Scene.Panel.GetReferenceTarget(), Case.Target) << Case.What;
			EXPECT_EQ(Scene.Panel.GetFilterText(EList::Properties) + Scene.Panel.GetFilterText(EList::Methods), "");
			EXPECT_EQ(std::vector<std::string>(Scene.View.Calls.end() - 4, Scene.View.Calls.end()),
				(std::vector<std::string>{"RefreshList Properties", "ClearSearchBox Properties", "RefreshList Methods",
					"ClearSearchBox Methods"}))
				<< Case.What;
		}
		EXPECT_EQ(Scene.Shown(EList::Methods), (std::vector<std::string>{"SetVisibility", "ExecuteUbergraph"}));

		// Without an explored actor nothing is filled.
		FExplorerScene Fresh;
		Fresh.Panel.HandleTreeSelectionUpdated({FExplorerScene::Node(K::Actor)});
		EXPECT_TRUE(Fresh.Panel.GetNames(EList::Properties).empty());
		EXPECT_EQ(Fresh.View.Calls, (std::vector<std::string>{"ClearSearchBox Properties", "ClearSearchBox Methods"}));
	}

	TEST(ExplorerPanel, PickTakesTheFirstEntryOfExactlyThatNameANullItemClearsNoMatchKeepsThePick)
	{
		FExplorerScene Scene;
		Scene.Select({&Scene.Door});
		const FLodexFunction DoorsOwn = FTestReflection::FindFunction(Scene.DoorClass, "ReceiveBeginPlay");
		Scene.Pick(EList::Methods, "ReceiveBeginPlay");
		// Either row of the two "ReceiveBeginPlay" rows picks the first entry: the door's own.
		EXPECT_EQ(Scene.Panel.GetSelection().SelectedFunction, DoorsOwn);
		Scene.Pick(EList::Methods, "receivebeginplay");
		Scene.Pick(EList::Methods, "Nowhere");
		EXPECT_EQ(Scene.Panel.GetSelection().SelectedFunction, DoorsOwn);
		Scene.Panel.HandleListSelectionChanged(EList::Methods, nullptr);
		EXPECT_TRUE(Scene.Panel.GetSelection().SelectedFunction.IsNull());

		Scene.Pick(EList::Properties, "None");
		EXPECT_EQ(Scene.Panel.GetSelection().SelectedProperty, FTestReflection::FindProperty(Scene.DoorClass, ""));
		Scene.Pick(EList::Properties, "tags");
		EXPECT_EQ(Scene.Panel.GetSelection().SelectedProperty, FTestReflection::FindProperty(Scene.DoorClass, ""));
		Scene.Panel.HandleListSelectionChanged(EList::Properties, nullptr);
		EXPECT_TRUE(Scene.Panel.GetSelection().SelectedProperty.IsNull());
	}

	TEST(ExplorerPanel, SeveralObjectsOrNoneLeaveThePanelAsItWasAnObjectNeitherActorNorComponentIsLoggedAndEmptiesIt)
	{
		FExplorerScene Scene;
		Scene.Select({&Scene.Door});
		Scene.Pick(EList::Methods, "Open");
		Scene.Panel.HandleFilterTextChanged(EList::Methods, "o");
		Scene.View.Calls.clear();
		Scene.Select({&Scene.Door, &Scene.Lamp});
		Scene.Select({});
		Scene.Panel.HandleSelectionChanged(nullptr);
		EXPECT_TRUE(Scene.View.Calls.empty());
		EXPECT_EQ(Scene.Panel.GetSelection().SelectedFunction, FTestReflection::FindFunction(Scene.DoorClass, "Open"));
		EXPECT_EQ(Scene.Panel.GetNames(EList::Methods), DoorMethods);
		EXPECT_EQ(Scene.Panel.GetFilterText(EList::Methods), "o");
		EXPECT_TRUE(Scene.Output.Lines.empty());

		Scene.Select({&Scene.Level});
		EXPECT_EQ(Scene.Output.Messages(), std::vector<std::string>{"Unhandled thing clicked : PersistentLevel();"});
		EXPECT_EQ(Scene.Output.Lines[0].Verbosity, ELodexLogVerbosity::Log);
		EXPECT_TRUE(Scene.Panel.GetNames(EList::Methods).empty());
		EXPECT_TRUE(Scene.Panel.GetNames(EList::Properties).empty());
		EXPECT_TRUE(Scene.Panel.GetSelection().SelectedActor.IsNull());
		EXPECT_TRUE(Scene.Panel.GetSelection().SelectedFunction.IsNull());
		// The explored actor, that the tree shows, stays.
		EXPECT_EQ(Scene.Panel.GetExploredActor(), FTestGraph::Handle(Scene.Door));
		Scene.Panel.PrintReference("Absolute");
		EXPECT_EQ(Scene.Output.Lines.size(), 1u);
	}

	TEST(ExplorerPanel, ConstructionTakesTheFirstSelectedActorAndFillsNothingAndResetForgetsEverythingExplored)
	{
		FExplorerScene Scene;
		Scene.Panel.Construct(FTestSelection{&Scene.Lamp, &Scene.Door});
		EXPECT_EQ(Scene.Panel.GetSelection().SelectedActor, FTestGraph::Handle(Scene.Lamp));
		EXPECT_TRUE(Scene.Panel.GetExploredActor().IsNull());
		EXPECT_TRUE(Scene.Panel.GetNames(EList::Methods).empty());
		EXPECT_EQ(Scene.Panel.GetReferenceTarget(), 0u);
		Scene.Panel.PrintReference("Relative");
		EXPECT_EQ(Scene.Output.Copies, std::vector<std::string>{"//Lamp"});

		FExplorerScene Empty;
		Empty.Panel.Construct(FTestSelection{});
		EXPECT_TRUE(Empty.Panel.GetSelection().SelectedActor.IsNull());

		Scene.Select({&Scene.Hinge});
		Scene.Pick(EList::Methods, "SetVisibility");
		Scene.Panel.HandleFilterTextChanged(EList::Methods, "vis");
		Scene.Panel.OpenListContextMenu(EList::Methods);
		Scene.Panel.Reset();
		const FLodexExplorerSelection& Selection = Scene.Panel.GetSelection();
		EXPECT_TRUE(Selection.SelectedActor.IsNull() && Selection.SelectedComponent.IsNull() &&
			Selection.SelectedFunction.IsNull() && Selection.SelectedProperty.IsNull() &&
			Scene.Panel.GetExploredActor().IsNull());
		EXPECT_EQ(Selection.ReferenceTarget, 0u);
		EXPECT_TRUE(
			Scene.Panel.GetNames(EList::Methods).empty() && Scene.Panel.GetFilteredItems(EList::Methods).empty());
		EXPECT_EQ(Scene.Panel.GetFilterText(EList::Methods), "");
		Scene.Panel.PrintReference("Absolute");
		EXPECT_EQ(Scene.Output.Lines.size(), 1u);
	}

	TEST(ExplorerPanel, ListMenusSetTheTargetWhichHoldsUntilTheExploredObjectChanges)
	{
		FExplorerScene Scene;
		Scene.Select({&Scene.Door});
		Scene.Pick(EList::Methods, "Open");
		Scene.Pick(EList::Properties, "Tags");
		EXPECT_EQ(
			&Scene.Panel.OpenListContextMenu(EList::Properties), &GetLodexContextMenu(ELodexMenuKind::ExplorerList));
		EXPECT_EQ(Scene.Panel.GetReferenceTarget(), 2u);
		Scene.Panel.OpenListContextMenu(EList::Methods);
		EXPECT_EQ(Scene.Panel.GetReferenceTarget(), 1u);
		// The components tree's entries call PrintReference too, and print what the target holds: the method.
		EXPECT_EQ(FLodexExplorerPanel::GetComponentsTreeMenu().Kind, ELodexMenuKind::ComponentsTree);
		Scene.Panel.PrintReference("Relative");
		Scene.Panel.PrintReference("Relative");
		Scene.Panel.HandleTreeSelectionUpdated({FExplorerScene::Node(ELodexTreeNodeKind::Component, &Scene.Knob)});
		Scene.Panel.PrintReference("Relative");
		const std::string Open = "api.CallMethod(\"//Door\", \"Open\", new object[]{}); ";
		EXPECT_EQ(Scene.Output.Copies, (std::vector<std::string>{Open, Open, "//Door/fn:component('Knob')"}));
	}

	TEST(ExplorerPanel, RegistersItsCommandsMapsBothAndExtendsTheTreeMenuInThatOrder)
	{
		FRecordingCommandHost Host;
		FLodexExplorerPanel::RegisterWithEditor(Host);
		EXPECT_EQ(Host.Calls,
			(std::vector<std::string>{"CreateCommandList", "RegisterCommandSet DetailToolA",
				"Map DetailCommand1 Relative", "Map DetailCommand2 Absolute",
				"Extend Kismet.SubobjectEditorContextMenu"}));
	}
}
