// Copyright Lodex contributors.
#include "Evaluation/EvaluationFixture.h"
#include "BestLocatorLaw.h"
#include "TestGraph.h"

#include "LodexDebugger/Core/Lodestring/LodestringEvaluator.h"
#include "LodexDebugger/Core/Lodestring/LodexBestLocator.h"
#include "LodexDebugger/Core/Lodestring/LodestringProgram.h"
#include "LodexDebugger/Core/Lodestring/LodexSceneIndex.h"
#include "LodexDebugger/Core/Lodestring/Lodestring.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace
{
	/** A random scene: attached actors with components, widget trees, tags, odd names, now and then a loop. */
	class FGeneratedScene final
		: public FTestGraph
		, public ILodexSceneObjects
	{
	public:
		explicit FGeneratedScene(unsigned Seed)
			: Random(Seed)
		{
			const int Level = AddNode(EKind::Other, "PersistentLevel");
			const int ActorCount = Pick(1, 12);
			std::vector<int> Actors;
			for (int Count = 0; Count < ActorCount; ++Count)
			{
				const int Actor = AddNode(EKind::Actor, MakeName(), Chance(0.9) ? Level : -1);
				if (!Actors.empty() && Chance(0.55))
				{
					Node(Actor).AttachParent = &Node(Actors[Pick(0, static_cast<int>(Actors.size()) - 1)]);
				}
				else if (!Actors.empty() && Chance(0.1))
				{
					Node(Actor).Outer =
						&Node(Actors[Pick(0, static_cast<int>(Actors.size()) - 1)]); // owned, not attached
				}
				Node(Actor).bHasTags = true;
				for (int Tag = Pick(0, 3); Tag > 0; --Tag)
				{
					Node(Actor).Tags.push_back(MakeTag());
				}
				Actors.push_back(Actor);
				for (int Component = Pick(0, 2); Component > 0; --Component)
				{
					const int Made = AddNode(EKind::Component, MakeName(), Actor);
					if (Chance(0.3))
					{
						const int Holder = Chance(0.5) ? Made : AddNode(EKind::Other, "Settings", Made);
						AddNode(EKind::Component, MakeName(), Holder);
					}
				}
			}
			if (Chance(0.2))
			{
				AddNode(EKind::Component, MakeName(), Level);
			}
			if (Chance(0.05) && Actors.size() >= 2)
			{
				Node(Actors[0]).AttachParent = &Node(Actors[1]); // a loop, which the engine never makes
			}
			if (Chance(0.03))
			{
				Node(Actors.back()).AttachParent = &Node(Actors.back());
			}
			if (Chance(0.5))
			{
				const int Instance = AddNode(EKind::Other, "GameInstance_0");
				const int Hud = AddNode(EKind::UserWidget, MakeName(), Instance);
				const int Tree = AddNode(EKind::WidgetTree, "WidgetTree", Hud);
				const int Canvas = AddNode(EKind::Widget, MakeName(), Tree);
				Node(Tree).RootWidget = &Node(Canvas);
				std::vector<int> Panels{Canvas};
				for (int Widget = Pick(1, 4); Widget > 0; --Widget)
				{
					const int Made = AddNode(Chance(0.5) ? EKind::UserWidget : EKind::Widget, MakeName(), Tree);
					Node(Made).WidgetParent = &Node(Panels[Pick(0, static_cast<int>(Panels.size()) - 1)]);
					Panels.push_back(Made);
				}
			}
		}

		FLodexObject Handle(int Index) const { return FTestGraph::Handle(*Listed[static_cast<std::size_t>(Index)]); }
		int NodeOf(FLodexObject Object) const { return IndexOf.at(Object.Ptr); }
		int Num() const { return static_cast<int>(Listed.size()); }
		EKind KindOf(int Index) const { return Listed[static_cast<std::size_t>(Index)]->Kind; }

		//~ Begin ILodexSceneObjects Interface
		void GetAllObjects(std::vector<FLodexObject>& OutObjects) const override
		{
			for (int Index = 0; Index < Num(); ++Index)
			{
				OutObjects.push_back(Handle(Index));
			}
		}
		//~ End ILodexSceneObjects Interface

	private:
		int AddNode(EKind Kind, std::string Name, int Outer = -1)
		{
			FNode& Added = Add(Kind, std::move(Name), Outer < 0 ? nullptr : &Node(Outer));
			IndexOf.emplace(&Added, Num());
			Listed.push_back(&Added);
			return Num() - 1;
		}
		FNode& Node(int Index) { return *Listed[static_cast<std::size_t>(Index)]; }
		int Pick(int Low, int High) { return std::uniform_int_distribution<int>(Low, High)(Random); }
		bool Chance(double Probability) { return std::bernoulli_distribution(Probability)(Random); }

		/** One to three pieces, plain or taken from the grammar's own marks. */
		std::string MakeName()
		{
			static const char* const Pieces[] = {"Door", "A", "Cube_2", "Lamp", "Bob's", "a]b", "x[y", "Tür", "用户",
				"😀", "'", "]", "[", "/", "//", " or ", " and ", "@name = '", "')", "fn:component('", "*", "@", " ", "?",
				"a')/", "']/*[@name = '", "(", ")", "=", "&<>", "']", "'/"};
			std::string Name;
			for (int Piece = Pick(1, 3); Piece > 0; --Piece)
			{
				Name += Pieces[Pick(0, static_cast<int>(sizeof(Pieces) / sizeof(Pieces[0])) - 1)];
			}
			return Name;
		}
		std::string MakeTag()
		{
			static const char* const Tags[] = {"bldg", "red", "t1", "用户", "with blank", "x' or @tag = 'y", "a']", "'",
				"]", "or", "and", "x", "y", "' and @tag = '"};
			return Tags[Pick(0, static_cast<int>(sizeof(Tags) / sizeof(Tags[0])) - 1)];
		}

		std::mt19937 Random;
		/** The nodes in the order they were made, and each one's place in it. */
		std::vector<FNode*> Listed;
		std::unordered_map<const void*, int> IndexOf;
	};

	bool IsNodeKind(FTestGraph::EKind Kind)
	{
		return Kind == FTestGraph::EKind::Actor || Kind == FTestGraph::EKind::WidgetTree ||
			Kind == FTestGraph::EKind::Widget || Kind == FTestGraph::EKind::UserWidget;
	}

	/** The topmost node object of the object's walk (cut at the first repeat), or -1. */
	int TopmostNode(const FGeneratedScene& Scene, int Node)
	{
		std::set<int> Seen;
		int Top = -1;
		for (FLodexObject Current = Scene.Handle(Node); Current; Current = GetLodestringParent(Scene, Current))
		{
			const int At = Scene.NodeOf(Current);
			if (!Seen.insert(At).second)
			{
				break;
			}
			if (IsNodeKind(Scene.KindOf(At)))
			{
				Top = At;
			}
		}
		return Top;
	}

	bool Finds(const FLodexSceneIndex& Index, const std::string& Path, std::uint32_t Object, std::string& OutWhy)
	{
		const FLodexEvaluation Evaluation = EvaluateLodestring(Index, Path);
		if (!Evaluation.bOk)
		{
			OutWhy = "error: " + Evaluation.Error.Message;
			return false;
		}
		const bool bFound = std::any_of(Evaluation.Matches.begin(), Evaluation.Matches.end(),
			[&](const FLodexMatch& Match) { return Match.Object == Object; });
		OutWhy = bFound ? "" : "not among " + std::to_string(Evaluation.Matches.size()) + " matches";
		return bFound;
	}

	TEST(LodestringRoundTrip, EveryObjectIsFoundByItsOwnLodestringsAndItsBestLocatorAloneWheneverTheAbsoluteOneCan)
	{
		std::size_t Checked[3] = {0, 0, 0};
		std::size_t Unique = 0;
		std::size_t Shorter = 0;
		std::size_t Twins = 0;
		for (unsigned Seed = 1; Seed <= 2500; ++Seed)
		{
			const FGeneratedScene Scene(Seed);
			const FLodexSceneIndex Index(Scene, Scene);
			for (int Node = 0; Node < Scene.Num(); ++Node)
			{
				if (Scene.KindOf(Node) == FTestGraph::EKind::Other)
				{
					continue;
				}
				const FLodexObject Object = Scene.Handle(Node);
				const std::uint32_t Indexed = Index.FindIndex(Object);
				ASSERT_NE(Indexed, FLodexSceneIndex::None) << "seed " << Seed << ", object " << Node;
				std::string Why;

				const std::string Absolute = BuildLodestring(Scene, Object, LodestringModes::Absolute);
				EXPECT_TRUE(Finds(Index, Absolute, Indexed, Why)) << "seed " << Seed << ": " << Absolute << ": " << Why;
				++Checked[0];

				const std::string Relative = BuildLodestring(Scene, Object, LodestringModes::Relative);
				EXPECT_TRUE(Finds(Index, Relative, Indexed, Why)) << "seed " << Seed << ": " << Relative << ": " << Why;
				++Checked[1];

				const int Top = TopmostNode(Scene, Node);
				std::vector<std::string> Tags;
				if (Top >= 0 && Scene.GetTags(Scene.Handle(Top), Tags) && !Tags.empty())
				{
					const std::string Tag = BuildLodestring(Scene, Object, LodestringModes::Tag);
					const std::uint32_t TopIndex = Index.FindIndex(Scene.Handle(Top));
					EXPECT_TRUE(Finds(Index, Tag, TopIndex, Why)) << "seed " << Seed << ": " << Tag << ": " << Why;
					++Checked[2];
				}
			}
			const FLodexBestLocatorFinder Finder(Index);
			for (std::uint32_t Object = 0; Object < Index.Num(); ++Object)
			{
				const FLodexBestLocator Best =
					ExpectBestLocatorLaw(Index, Finder, Object, "seed " + std::to_string(Seed));
				Unique += Best.MatchCount == 1;
				Shorter += Best.Lodestring.size() < Index.GetAbsoluteLodestring(Object).size();
				Twins += Best.MatchCount > 1;
			}
			if (::testing::Test::HasFailure())
			{
				return;
			}
		}
		// The generator makes every kind of check often enough to mean something.
		EXPECT_GT(Checked[0], 40000u);
		EXPECT_GT(Checked[1], 40000u);
		EXPECT_GT(Checked[2], 10000u);
		EXPECT_GT(Unique, 20000u);
		EXPECT_GT(Shorter, 10000u);
		EXPECT_GT(Twins, 10u) << "the generator makes objects nothing tells apart";
	}

	TEST(LodestringBestLocator, RanksTagsThenStableNamesThenAnchorsAndAvoidsGeneratedNames)
	{
		FListedTestGraph Level;
		FTestGraph::FNode& House = Level.Listed(Level.Actor("House", nullptr, {"bldg"}));
		FTestGraph::FNode& Door = Level.Listed(Level.Actor("Door", &House));
		FTestGraph::FNode& Hinge = Level.Listed(Level.Add(FTestGraph::EKind::Component, "Hinge", &Door));
		FTestGraph::FNode& Shed = Level.Listed(Level.Actor("Shed"));
		FTestGraph::FNode& ShedDoor = Level.Listed(Level.Actor("Door", &Shed));
		FTestGraph::FNode& Cube = Level.Listed(Level.Actor("Cube_2", nullptr, {"crate"}));
		FTestGraph::FNode& Lamp = Level.Listed(Level.Actor("Lamp_3"));
		FTestGraph::FNode& Twin = Level.Listed(Level.Actor("Twin"));
		// A knob in a room of each building: neither the knob nor its room tells them apart, the building does.
		FTestGraph::FNode& HouseKnob = Level.Listed(Level.Actor("Knob", &Level.Listed(Level.Actor("Room", &House))));
		FTestGraph::FNode& ShedKnob = Level.Listed(Level.Actor("Knob", &Level.Listed(Level.Actor("Room", &Shed))));
		Level.Listed(Level.Actor("Twin"));
		const FLodexSceneIndex Index(Level, Level);
		const FLodexBestLocatorFinder Finder(Index);
		const auto Best = [&](const FTestGraph::FNode& Node)
		{
			return Finder.Find(Index.FindIndex(FTestGraph::Handle(Node)));
		};

		const struct
		{
			const FTestGraph::FNode* Node;
			const char* Lodestring;
			std::size_t Count;
			bool bStable;
		} Rows[] = {
			{&House, "//*[@tag = 'bldg']", 1, true},
			{&Door, "//House/Door", 1, true},
			{&ShedDoor, "//Shed/Door", 1, true},
			{&Shed, "/Shed", 1, true},
			{&Cube, "//*[@tag = 'crate']", 1, true},
			{&Lamp, "/Lamp_3", 1, false},
			{&Twin, "/*[@name = 'Twin']", 2, false},
			{&HouseKnob, "//House//Knob", 1, true},
			{&ShedKnob, "//Shed//Knob", 1, true},
		};
		for (const auto& Row : Rows)
		{
			const FLodexBestLocator Found = Best(*Row.Node);
			EXPECT_EQ(Found.Lodestring, Row.Lodestring) << Row.Node->Name;
			EXPECT_EQ(Found.MatchCount, Row.Count) << Row.Node->Name;
			EXPECT_EQ(Found.bStable, Row.bStable) << Row.Node->Name;
		}
		// A component through its node: only the house's door has a hinge, so the door's name is enough.
		EXPECT_EQ(Best(Hinge).Lodestring, "//Door/fn:component('Hinge')");
		EXPECT_EQ(Best(Hinge).Evidence, ELodexLocatorEvidence::Component);
	}

	TEST(LodestringBestLocator, GeneratedSuffixesAreTheEngineNumbers)
	{
		for (const char* Name : {"Cube_2", "Cube_0", "Enemy_C_3", "BP_Door_C_12"})
		{
			EXPECT_TRUE(HasGeneratedInstanceSuffix(Name)) << Name;
		}
		for (const char* Name : {"Cube", "Cube_", "_3", "Level_01", "Door_C", "Cube_2a", "Cube_12345678901"})
		{
			EXPECT_FALSE(HasGeneratedInstanceSuffix(Name)) << Name;
		}
	}

	/** Paths taken apart: letters dropped, marks of the grammar put in, pieces doubled or cut off. */
	std::vector<std::string> MangledPaths()
	{
		std::vector<std::string> Bases;
		const FCasesScene Cases;
		for (const FSceneObject& Object : Cases.Scene.GetObjects())
		{
			for (const char* Mode : {LodestringModes::Absolute, LodestringModes::Relative, LodestringModes::Tag})
			{
				Bases.push_back(BuildLodestring(Cases.Scene, FSceneSnapshot::Handle(Object), Mode));
			}
		}
		Bases.push_back("/*[@tag = 'a' and @tag = 'b' or @name = 'c']//X/fn:component('C')/@Prop");

		std::mt19937 Random(20240607);
		auto Pick = [&](std::size_t Count)
		{
			return std::uniform_int_distribution<std::size_t>(0, Count - 1)(Random);
		};
		const std::string Marks = "/*[]@'()= ,orandfn:component\t";
		std::vector<std::string> Mangled;
		for (int Round = 0; Round < 1500; ++Round)
		{
			std::string Path = Bases[Pick(Bases.size())];
			for (int Edit = static_cast<int>(Pick(4)) + 1; Edit > 0; --Edit)
			{
				const std::size_t At = Path.empty() ? 0 : Pick(Path.size() + 1);
				switch (Pick(5))
				{
					case 0:
						if (!Path.empty())
						{
							Path.erase(std::min(At, Path.size() - 1), 1);
						}
						break;
					case 1:
						Path.insert(At, 1, Marks[Pick(Marks.size())]);
						break;
					case 2:
						Path = Path.substr(0, At);
						break;
					case 3:
						Path.insert(At, Path.substr(At / 2, Pick(8) + 1));
						break;
					default:
						Path.insert(At, Path.substr(0, At));
						break;
				}
			}
			Mangled.push_back(Path);
		}
		return Mangled;
	}

	void ExpectSpanInside(const FLodexPathError& Error, const std::string& Path)
	{
		EXPECT_FALSE(Error.Message.empty()) << Path;
		EXPECT_LE(Error.Span.Begin, Error.Span.End) << Path;
		EXPECT_LE(Error.Span.End, Path.size()) << Path;
		if (!Path.empty())
		{
			EXPECT_LT(Error.Span.Begin, Error.Span.End) << Path << ": " << Error.Message;
		}
	}

	TEST(LodestringRoundTrip, MangledPathsNeverCrashTraceAsTheyEvaluateAndEveryErrorNamesASpanInsideThem)
	{
		const FCasesScene Cases;
		std::size_t Errors = 0;
		for (const std::string& Path : MangledPaths())
		{
			FLodestringProgram Program;
			FLodexPathError Error;
			if (!CompileLodestring(Path, Program, Error))
			{
				ExpectSpanInside(Error, Path);
				EXPECT_EQ(MarkUpLodestring(Path, Error.Span).find(LodexHighlight::Open), Error.Span.Begin);
				++Errors;
				continue;
			}
			if (Program.HasStandardError())
			{
				ExpectSpanInside(Program.GetStandardError(), Path);
			}
			const FLodexEvaluation Evaluation = EvaluateLodestring(*Cases.Index, Program);
			const FLodexTrace Trace = TraceLodestring(*Cases.Index, Program);
			// Step by step ends where the whole evaluation does, or fails as it does.
			EXPECT_TRUE(Trace.Result == Evaluation.Matches) << Path;
			EXPECT_TRUE(Trace.Steps.back().Context == Evaluation.Matches) << Path;
			EXPECT_EQ(Trace.bOk, Evaluation.bOk) << Path;
			EXPECT_EQ(Trace.Error.Message, Evaluation.Error.Message) << Path;
			if (!Evaluation.bOk)
			{
				ExpectSpanInside(Evaluation.Error, Path);
				++Errors;
			}
			for (const FLodexTraceStep& Step : Trace.Steps)
			{
				EXPECT_LE(Step.Span.End, Path.size()) << Path;
			}
		}
		EXPECT_GT(Errors, 500u) << "most mangled paths should be errors";
	}
}
