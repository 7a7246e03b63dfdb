// Copyright Lodex contributors.
#include "TestGraph.h"

#include "LodexDebugger/Core/Lodestring.h"

#include <gtest/gtest.h>

#include <random>

namespace
{
	using EKind = FTestGraph::EKind;

	/** Door (tags locked, red) attached to House (tag bldg); Door owns the component Hinge. */
	struct FHouseScene
	{
		FTestGraph Graph;
		FTestGraph::FNode& House = Graph.Actor("House", nullptr, {"bldg"});
		FTestGraph::FNode& Door = Graph.Actor("Door", &House, {"locked", "red"});
		FTestGraph::FNode& Hinge = Graph.Add(EKind::Component, "Hinge", &Door);

		std::string Build(const FTestGraph::FNode& Node, const std::string& Mode) const
		{
			return BuildLodestring(Graph, FTestGraph::Handle(Node), Mode);
		}
	};

	struct FWorkedExampleRow
	{
		const char* Object;
		const char* Mode;
		const char* Expected;
	};

	TEST(LodestringWorkedExample, EveryRow)
	{
		const FWorkedExampleRow Rows[] = {
			{"Hinge", "Absolute", "/*[@name = 'House']/*[@name = 'Door']/fn:component('Hinge')"},
			{"Hinge", "Relative", "//Door/fn:component('Hinge')"},
			{"Hinge", "Tag", "/*[@tag = 'bldg']"},
			{"Door", "Absolute", "/*[@name = 'House']/*[@name = 'Door']"},
			{"Door", "Relative", "//Door"},
			{"House", "Tag", "/*[@tag = 'bldg']"},
			{"Hinge", "absolute", "/fn:component('Hinge')"},
		};
		FHouseScene Scene;
		for (const FWorkedExampleRow& Row : Rows)
		{
			const FTestGraph::FNode& Node = std::string(Row.Object) == "Hinge"
				? Scene.Hinge
				: (std::string(Row.Object) == "Door" ? Scene.Door : Scene.House);
			EXPECT_EQ(Scene.Build(Node, Row.Mode), Row.Expected) << Row.Object << ", \"" << Row.Mode << "\"";
		}
	}

	TEST(LodestringWorkedExample, TagModeOfDoorUnderUntaggedHouse)
	{
		FHouseScene Scene;
		Scene.House.Tags.clear();
		EXPECT_EQ(Scene.Build(Scene.Door, "Tag"), "/*[]");
	}

	TEST(LodestringActors, UnattachedActorIsOneStep)
	{
		FTestGraph Graph;
		const FTestGraph::FNode& A = Graph.Actor("A");
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(A), "Absolute"), "/*[@name = 'A']");
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(A), "Relative"), "//A");
	}

	TEST(LodestringActors, ComponentOfUnattachedActor)
	{
		FTestGraph Graph;
		FTestGraph::FNode& A = Graph.Actor("A");
		const FTestGraph::FNode& Comp = Graph.Add(EKind::Component, "Comp", &A);
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(Comp), "Relative"), "//A/fn:component('Comp')");
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(Comp), "Absolute"), "/*[@name = 'A']/fn:component('Comp')");
	}

	TEST(LodestringActors, ComponentDirectlyInTheLevelHasOnlyItsOwnStepInEveryMode)
	{
		FTestGraph Graph;
		const FTestGraph::FNode& Comp = Graph.Add(EKind::Component, "Comp", Graph.Level());
		for (const char* Mode : {"Absolute", "Relative", "Tag", "", "x"})
		{
			EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(Comp), Mode), "/fn:component('Comp')") << Mode;
		}
	}

	TEST(LodestringActors, NestedComponentsKeepEveryComponentStep)
	{
		FTestGraph Graph;
		FTestGraph::FNode& A = Graph.Actor("A");
		FTestGraph::FNode& Arm = Graph.Add(EKind::Component, "Arm", &A);
		FTestGraph::FNode& Plain = Graph.Add(EKind::Other, "Settings", &Arm);
		const FTestGraph::FNode& Hand = Graph.Add(EKind::Component, "Hand", &Plain);
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(Hand), "Absolute"),
			"/*[@name = 'A']/fn:component('Arm')/fn:component('Hand')");
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(Hand), "Relative"),
			"//A/fn:component('Arm')/fn:component('Hand')");
	}

	TEST(LodestringActors, RelativeStopsAtTheNearestActor)
	{
		FTestGraph Graph;
		FTestGraph::FNode& Top = Graph.Actor("Top");
		FTestGraph::FNode& A = Graph.Actor("A", &Top);
		const FTestGraph::FNode& Comp = Graph.Add(EKind::Component, "Comp", &A);
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(A), "Relative"), "//A");
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(Comp), "Relative"), "//A/fn:component('Comp')");
		EXPECT_EQ(Top.NameReads, 0) << "a relative walk must not go past the nearest node object";
	}

	TEST(LodestringActors, WalkNeverPassesFromAnActorToItsLevelOrOwner)
	{
		FTestGraph Graph;
		FTestGraph::FNode& Owner = Graph.Actor("Owner");
		FTestGraph::FNode& A = Graph.Add(EKind::Actor, "A", &Owner); // outer is an actor, but no attach parent
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(A), "Absolute"), "/*[@name = 'A']");
	}

	struct FTagRow
	{
		std::vector<std::string> Tags;
		bool bHasTags;
		const char* Expected;
	};

	TEST(LodestringTags, TagExpressions)
	{
		const FTagRow Rows[] = {
			{{"t1", "t2", "t3"}, true, "/*[@tag = 't1' or @tag = 't2' or @tag = 't3']"},
			{{"t1"}, true, "/*[@tag = 't1']"},
			{{}, true, "/*[]"},
			{{}, false, "/*[]"},
			{{"with blank", "Bob's"}, true, "/*[@tag = 'with blank' or @tag = 'Bob's']"},
			{{"用户", "Tür"}, true, "/*[@tag = '用户' or @tag = 'Tür']"},
		};
		for (const FTagRow& Row : Rows)
		{
			FTestGraph Graph;
			FTestGraph::FNode& A = Graph.Actor("A", nullptr, Row.Tags);
			A.bHasTags = Row.bHasTags;
			EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(A), "Tag"), Row.Expected);
		}
	}

	TEST(LodestringTags, TaggedActorUnderUntaggedActorGivesEmptyExpression)
	{
		FTestGraph Graph;
		FTestGraph::FNode& Parent = Graph.Actor("Parent");
		const FTestGraph::FNode& Child = Graph.Actor("Child", &Parent, {"t1"});
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(Child), "Tag"), "/*[]");
	}

	TEST(LodestringTags, TopmostObjectReplacesComponentsAndLowerActors)
	{
		FTestGraph Graph;
		FTestGraph::FNode& Top = Graph.Actor("Top", nullptr, {"top"});
		FTestGraph::FNode& Mid = Graph.Actor("Mid", &Top, {"mid"});
		const FTestGraph::FNode& Comp = Graph.Add(EKind::Component, "Comp", &Mid);
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(Comp), "Tag"), "/*[@tag = 'top']");
	}

	TEST(LodestringTags, WidgetsHaveNoTags)
	{
		FTestGraph Graph;
		const FTestGraph::FNode& Button = Graph.Add(EKind::Widget, "Button");
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(Button), "Tag"), "/*[]");
	}

	TEST(LodestringTags, GetTagStringsIsEmptyWithoutTagsArray)
	{
		FTestGraph Graph;
		FTestGraph::FNode& A = Graph.Actor("A", nullptr, {"kept"});
		A.bHasTags = false; // a graph must not hand back stale tags when there is no array
		EXPECT_TRUE(GetTagStrings(Graph, FTestGraph::Handle(A)).empty());
		A.bHasTags = true;
		EXPECT_EQ(GetTagStrings(Graph, FTestGraph::Handle(A)), std::vector<std::string>{"kept"});
	}

	TEST(LodestringWidgets, PlainWidgetIsOneStepWhateverHoldsIt)
	{
		FTestGraph Graph;
		FTestGraph::FNode& Panel = Graph.Add(EKind::Widget, "Panel");
		FTestGraph::FNode& W = Graph.Add(EKind::Widget, "W");
		W.WidgetParent = &Panel;
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(W), "Absolute"), "/*[@name = 'W']");
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(W), "Relative"), "//W");
	}

	TEST(LodestringWidgets, UserWidgetHeldByPanelIsTwoSteps)
	{
		FTestGraph Graph;
		FTestGraph::FNode& Outer = Graph.Add(EKind::Widget, "Outer");
		FTestGraph::FNode& Panel = Graph.Add(EKind::UserWidget, "Panel");
		Panel.WidgetParent = &Outer;
		FTestGraph::FNode& PlainPanel = Graph.Add(EKind::Widget, "PlainPanel");
		FTestGraph::FNode& User = Graph.Add(EKind::UserWidget, "UserWidget");
		User.WidgetParent = &PlainPanel;
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(User), "Absolute"),
			"/*[@name = 'PlainPanel']/*[@name = 'UserWidget']");
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(User), "Relative"), "//UserWidget");
		// A user widget held by another user widget keeps walking up.
		EXPECT_EQ(
			BuildLodestring(Graph, FTestGraph::Handle(Panel), "Absolute"), "/*[@name = 'Outer']/*[@name = 'Panel']");
	}

	TEST(LodestringWidgets, WidgetTreeWalksToItsRootWidget)
	{
		FTestGraph Graph;
		FTestGraph::FNode& Root = Graph.Add(EKind::Widget, "Root");
		FTestGraph::FNode& Tree = Graph.Add(EKind::WidgetTree, "WidgetTree");
		Tree.RootWidget = &Root;
		FTestGraph::FNode& EmptyTree = Graph.Add(EKind::WidgetTree, "EmptyTree");
		EXPECT_EQ(
			BuildLodestring(Graph, FTestGraph::Handle(Tree), "Absolute"), "/*[@name = 'Root']/*[@name = 'WidgetTree']");
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(EmptyTree), "Absolute"), "/*[@name = 'EmptyTree']");
	}

	TEST(LodestringModesTest, UnknownModesGiveOnlyComponentSteps)
	{
		FHouseScene Scene;
		for (const char* Mode : {"Tag ", "relative", "ABSOLUTE", "", " Absolute", "Relative\n"})
		{
			EXPECT_EQ(Scene.Build(Scene.Hinge, Mode), "/fn:component('Hinge')") << '"' << Mode << '"';
			EXPECT_EQ(Scene.Build(Scene.Door, Mode), "") << '"' << Mode << '"';
		}
	}

	TEST(LodestringOther, ObjectDirectlyInTheLevelGivesEmptyString)
	{
		FTestGraph Graph;
		const FTestGraph::FNode& Fog = Graph.Add(EKind::Other, "Fog", Graph.Level());
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(Fog), "Absolute"), "");
	}

	TEST(LodestringOther, PackageWithoutOuterEndsTheWalk)
	{
		FTestGraph Graph;
		FTestGraph::FNode& Package = Graph.Add(EKind::Other, "/Game/Brick");
		FTestGraph::FNode& Asset = Graph.Add(EKind::Other, "Brick", &Package);
		const FTestGraph::FNode& Comp = Graph.Add(EKind::Component, "Template", &Asset);
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(Asset), "Absolute"), "");
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(Comp), "Absolute"), "/fn:component('Template')");
	}

	TEST(LodestringOther, OnlyTheExactLevelNameStopsTheWalk)
	{
		FTestGraph Graph;
		FTestGraph::FNode& A = Graph.Actor("A");
		FTestGraph::FNode& LowerLevel = Graph.Add(EKind::Other, "persistentLevel", &A);
		const FTestGraph::FNode& Lower = Graph.Add(EKind::Component, "Comp", &LowerLevel);
		FTestGraph::FNode& ExactLevel = Graph.Add(EKind::Other, "PersistentLevel", &A);
		const FTestGraph::FNode& Exact = Graph.Add(EKind::Component, "Comp", &ExactLevel);
		EXPECT_EQ(
			BuildLodestring(Graph, FTestGraph::Handle(Lower), "Absolute"), "/*[@name = 'A']/fn:component('Comp')");
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(Exact), "Absolute"), "/fn:component('Comp')");
	}

	TEST(LodestringNames, CharactersAreInsertedAsTheyAre)
	{
		FTestGraph Graph;
		FTestGraph::FNode& Bob = Graph.Actor("Bob's");
		const FTestGraph::FNode& Odd = Graph.Add(EKind::Component, "a]b[c')/", &Bob);
		const FTestGraph::FNode& Door = Graph.Actor("Tür_用户_2");
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(Bob), "Absolute"), "/*[@name = 'Bob's']");
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(Odd), "Relative"), "//Bob's/fn:component('a]b[c')/')");
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(Door), "Absolute"), "/*[@name = 'Tür_用户_2']");
	}

	TEST(LodestringParent, OneStepOfTheWalkPerKind)
	{
		FTestGraph Graph;
		FTestGraph::FNode& House = Graph.Actor("House");
		FTestGraph::FNode& Door = Graph.Actor("Door", &House);
		FTestGraph::FNode& Hinge = Graph.Add(EKind::Component, "Hinge", &Door);
		FTestGraph::FNode& Fog = Graph.Add(EKind::Other, "Fog", Graph.Level());
		FTestGraph::FNode& Panel = Graph.Add(EKind::Widget, "Panel");
		FTestGraph::FNode& User = Graph.Add(EKind::UserWidget, "User");
		User.WidgetParent = &Panel;
		FTestGraph::FNode& Button = Graph.Add(EKind::Widget, "Button", &Door);
		Button.WidgetParent = &Panel;
		FTestGraph::FNode& Tree = Graph.Add(EKind::WidgetTree, "Tree", &User);
		Tree.RootWidget = &Panel;

		auto Parent = [&](const FTestGraph::FNode& Node)
		{
			return GetLodestringParent(Graph, FTestGraph::Handle(Node));
		};
		EXPECT_EQ(Parent(Door), FTestGraph::Handle(House));
		EXPECT_TRUE(Parent(House).IsNull());
		EXPECT_EQ(Parent(Hinge), FTestGraph::Handle(Door));
		EXPECT_TRUE(Parent(Fog).IsNull());
		EXPECT_EQ(Parent(User), FTestGraph::Handle(Panel));
		EXPECT_TRUE(Parent(Button).IsNull());
		EXPECT_EQ(Parent(Tree), FTestGraph::Handle(Panel));
	}

	TEST(LodestringMalformedGraphs, CyclesEndTheWalkAtTheFirstRepeat)
	{
		FTestGraph Graph;
		FTestGraph::FNode& A = Graph.Actor("A");
		FTestGraph::FNode& B = Graph.Actor("B", &A);
		A.AttachParent = &B;
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(A), "Absolute"), "/*[@name = 'B']/*[@name = 'A']");
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(A), "Tag"), "/*[]");

		FTestGraph::FNode& Self = Graph.Actor("Self");
		Self.AttachParent = &Self;
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(Self), "Absolute"), "/*[@name = 'Self']");

		FTestGraph::FNode& C1 = Graph.Add(EKind::Component, "C1");
		FTestGraph::FNode& C2 = Graph.Add(EKind::Component, "C2", &C1);
		C1.Outer = &C2;
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(C1), "Relative"), "/fn:component('C2')/fn:component('C1')");

		FTestGraph::FNode& O1 = Graph.Add(EKind::Other, "O1");
		O1.Outer = &O1;
		EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(O1), "Absolute"), "");
	}

	TEST(LodestringMalformedGraphs, LongLoopBehindALongTailNamesEveryObjectOnce)
	{
		for (const int LoopLength : {1, 2, 3, 37, 64, 65})
		{
			FTestGraph Graph;
			std::vector<FTestGraph::FNode*> Chain;
			for (int Index = 0; Index < 100 + LoopLength; ++Index)
			{
				Chain.push_back(&Graph.Actor("N" + std::to_string(Index)));
			}
			for (std::size_t Index = 0; Index + 1 < Chain.size(); ++Index)
			{
				Chain[Index]->AttachParent = Chain[Index + 1];
			}
			Chain.back()->AttachParent = Chain[100]; // the loop starts after a tail of 100

			std::string Expected;
			for (std::size_t Index = Chain.size(); Index > 0; --Index)
			{
				Expected += "/*[@name = 'N" + std::to_string(Index - 1) + "']";
			}
			EXPECT_EQ(BuildLodestring(Graph, FTestGraph::Handle(*Chain.front()), "Absolute"), Expected) << LoopLength;
		}
	}

	/** Generated scenes: forests of actors with components, checked against what each mode must mean. */
	TEST(LodestringProperties, GeneratedActorForests)
	{
		std::mt19937 Random(20261121);
		for (int Round = 0; Round < 200; ++Round)
		{
			FTestGraph Graph;
			std::vector<FTestGraph::FNode*> Actors;
			const int ActorCount = 1 + static_cast<int>(Random() % 12);
			for (int Index = 0; Index < ActorCount; ++Index)
			{
				FTestGraph::FNode* Parent =
					Actors.empty() || Random() % 4 == 0 ? nullptr : Actors[Random() % Actors.size()];
				std::vector<std::string> Tags;
				for (unsigned Tag = Random() % 3; Tag > 0; --Tag)
				{
					Tags.push_back("t" + std::to_string(Random() % 5));
				}
				Actors.push_back(&Graph.Actor("A" + std::to_string(Index), Parent, Tags));
			}
			for (FTestGraph::FNode* Owner : Actors)
			{
				const FTestGraph::FNode& Comp = Graph.Add(EKind::Component, "C_" + Owner->Name, Owner);
				const std::string Step = "/fn:component('" + Comp.Name + "')";
				const FLodexObject Handle = FTestGraph::Handle(Comp);
				const FLodexObject OwnerHandle = FTestGraph::Handle(*Owner);

				EXPECT_EQ(
					BuildLodestring(Graph, Handle, "Absolute"), BuildLodestring(Graph, OwnerHandle, "Absolute") + Step);
				EXPECT_EQ(BuildLodestring(Graph, Handle, "Relative"), "//" + Owner->Name + Step);

				const FTestGraph::FNode* Top = Owner;
				int Depth = 1;
				while (Top->AttachParent != nullptr)
				{
					Top = Top->AttachParent;
					++Depth;
				}
				EXPECT_EQ(
					BuildLodestring(Graph, Handle, "Tag"), BuildLodestring(Graph, FTestGraph::Handle(*Top), "Tag"));
				const std::string Absolute = BuildLodestring(Graph, OwnerHandle, "Absolute");
				EXPECT_EQ(Absolute.rfind("/*[@name = '" + Top->Name + "']", 0), 0u) << Absolute;
				int Steps = 0;
				for (std::size_t At = Absolute.find("/*[@name"); At != std::string::npos;
					 At = Absolute.find("/*[@name", At + 1))
				{
					++Steps;
				}
				EXPECT_EQ(Steps, Depth) << Absolute;
			}
		}
	}
}
