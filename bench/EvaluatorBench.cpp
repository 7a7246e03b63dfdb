// Copyright Lodex contributors.
//
// The native evaluator against libxml2's XPath on the same scene of about a million objects: 1,000 root actors,
// each the top of a tree of 329 attached actors (8 children, 8 grandchildren each, 4 below each of those), every
// actor with the components "Mesh" and "Collision" and every 25th also "Light". Roots are tagged
// "zone_<n mod 50>", every 10th other actor "red". The XML tree has one element a node (<a>) or component (<c>),
// with "name" and "tag" attributes. Both answer the same queries, checked to find the same number of objects
// before anything is timed.
#include "LodexDebugger/Core/Lodestring/LodestringEvaluator.h"
#include "LodexDebugger/Core/Lodestring/LodestringProgram.h"
#include "LodexDebugger/Core/Lodestring/LodexBestLocator.h"
#include "LodexDebugger/Core/Lodestring/LodexSceneIndex.h"

#include <benchmark/benchmark.h>
#include <libxml/tree.h>
#include <libxml/xpath.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace
{
	/** The scene as plain arrays, answering the object graph's questions the way a scene snapshot does. */
	class FBenchScene final
		: public ILodexObjectGraph
		, public ILodexSceneObjects
	{
	public:
		enum class EKind : unsigned char
		{
			Actor,
			Component,
			Other,
		};
		struct FNode
		{
			EKind Kind = EKind::Other;
			std::string Name;
			std::uint32_t Outer = None;
			std::uint32_t AttachParent = None;
			std::vector<std::string> Tags;
		};
		static constexpr std::uint32_t None = 0xFFFFFFFFu;
		static constexpr int RootCount = 1000;

		FBenchScene()
		{
			Nodes.reserve(1001000);
			Nodes.push_back({EKind::Other, "PersistentLevel", None, None, {}});
			for (int Root = 0; Root < RootCount; ++Root)
			{
				const std::uint32_t Top = AddActor(None, {"zone_" + std::to_string(Root % 50)});
				for (int Child = 0; Child < 8; ++Child)
				{
					const std::uint32_t Middle = AddActor(Top, {});
					for (int Grandchild = 0; Grandchild < 8; ++Grandchild)
					{
						const std::uint32_t Low = AddActor(Middle, {});
						for (int Leaf = 0; Leaf < 4; ++Leaf)
						{
							AddActor(Low, {});
						}
					}
				}
			}
		}

		std::size_t Num() const { return Nodes.size(); }
		const FNode& Node(std::uint32_t Index) const { return Nodes[Index]; }
		FLodexObject Handle(std::uint32_t Index) const { return FLodexObject(&Nodes[Index]); }

		bool IsOfClass(FLodexObject Object, ELodexClass Class) const override
		{
			const EKind Kind = Get(Object).Kind;
			return (Class == ELodexClass::Actor && Kind == EKind::Actor) ||
				(Class == ELodexClass::ActorComponent && Kind == EKind::Component);
		}
		std::string GetName(FLodexObject Object) const override { return Get(Object).Name; }
		FLodexObject GetOuter(FLodexObject Object) const override { return At(Get(Object).Outer); }
		FLodexObject GetAttachParent(FLodexObject Object) const override { return At(Get(Object).AttachParent); }
		FLodexObject GetWidgetParent(FLodexObject) const override { return FLodexObject(); }
		FLodexObject GetRootWidget(FLodexObject) const override { return FLodexObject(); }
		bool GetTags(FLodexObject Object, std::vector<std::string>& OutTags) const override
		{
			OutTags = Get(Object).Tags;
			return Get(Object).Kind == EKind::Actor;
		}
		void GetAllObjects(std::vector<FLodexObject>& OutObjects) const override
		{
			OutObjects.reserve(OutObjects.size() + Nodes.size());
			for (const FNode& Node : Nodes)
			{
				OutObjects.push_back(FLodexObject(&Node));
			}
		}

	private:
		std::uint32_t AddActor(std::uint32_t Parent, std::vector<std::string> Tags)
		{
			const std::uint32_t Index = static_cast<std::uint32_t>(Nodes.size());
			if (Parent != None && ActorCount % 10 == 0)
			{
				Tags.push_back("red");
			}
			Nodes.push_back({EKind::Actor, "Actor_" + std::to_string(ActorCount), 0, Parent, std::move(Tags)});
			Nodes.push_back({EKind::Component, "Mesh", Index, None, {}});
			Nodes.push_back({EKind::Component, "Collision", Index, None, {}});
			if (ActorCount % 25 == 0)
			{
				Nodes.push_back({EKind::Component, "Light", Index, None, {}});
			}
			++ActorCount;
			return Index;
		}
		FLodexObject At(std::uint32_t Index) const { return Index == None ? FLodexObject() : Handle(Index); }
		static const FNode& Get(FLodexObject Object) { return *static_cast<const FNode*>(Object.Ptr); }

		std::vector<FNode> Nodes;
		int ActorCount = 0;
	};

	/** The same scene as an XML document: <scene> holding the root actors, each element its children. */
	xmlDocPtr MakeXml(const FBenchScene& Scene)
	{
		xmlDocPtr Document = xmlNewDoc(BAD_CAST "1.0");
		xmlNodePtr Root = xmlNewNode(nullptr, BAD_CAST "scene");
		xmlDocSetRootElement(Document, Root);
		std::vector<xmlNodePtr> Elements(Scene.Num(), nullptr);
		for (std::uint32_t Index = 0; Index < Scene.Num(); ++Index)
		{
			const FBenchScene::FNode& Node = Scene.Node(Index);
			if (Node.Kind == FBenchScene::EKind::Other)
			{
				continue;
			}
			const bool bActor = Node.Kind == FBenchScene::EKind::Actor;
			const std::uint32_t Parent = bActor ? Node.AttachParent : Node.Outer;
			xmlNodePtr Holder = Parent == FBenchScene::None ? Root : Elements[Parent];
			xmlNodePtr Element = xmlNewChild(Holder, nullptr, BAD_CAST(bActor ? "a" : "c"), nullptr);
			xmlNewProp(Element, BAD_CAST "name", BAD_CAST Node.Name.c_str());
			if (!Node.Tags.empty())
			{
				xmlNewProp(Element, BAD_CAST "tag", BAD_CAST Node.Tags.front().c_str());
			}
			Elements[Index] = Element;
		}
		return Document;
	}

	struct FQuery
	{
		const char* Label;
		const char* Lodestring;
		const char* XPath;
	};

	// Actor_0 is a root; its first child Actor_1, whose first child Actor_2, whose first child Actor_3.
	// Actor_200000 lies deep in the 608th tree.
	const FQuery Queries[] = {
		{"//X", "//Actor_200000", "//a[@name='Actor_200000']"},
		{"4-step absolute",
			"/*[@name = 'Actor_329']/*[@name = 'Actor_330']/*[@name = 'Actor_331']/*[@name = 'Actor_332']",
			"/scene/a[@name='Actor_329']/a[@name='Actor_330']/a[@name='Actor_331']/a[@name='Actor_332']"},
		{"tag, roots", "/*[@tag = 'zone_7']", "/scene/a[@tag='zone_7']"},
		{"tag, anywhere", "//*[@tag = 'red']", "//a[@tag='red']"},
		{"component step", "//Actor_200000/fn:component('Mesh')", "//a[@name='Actor_200000']/c[@name='Mesh']"},
	};
	constexpr int QueryCount = static_cast<int>(sizeof(Queries) / sizeof(Queries[0]));

	struct FFixture
	{
		FBenchScene Scene;
		std::unique_ptr<FLodexSceneIndex> Index;
		std::vector<FLodestringProgram> Programs;
		xmlDocPtr Document = nullptr;
		xmlXPathContextPtr Context = nullptr;
		std::vector<xmlXPathCompExprPtr> Expressions;

		FFixture()
		{
			Index = std::make_unique<FLodexSceneIndex>(Scene, Scene);
			Document = MakeXml(Scene);
			Context = xmlXPathNewContext(Document);
			for (const FQuery& Query : Queries)
			{
				FLodestringProgram Program;
				FLodexPathError Error;
				if (!CompileLodestring(Query.Lodestring, Program, Error))
				{
					std::fprintf(stderr, "%s: %s\n", Query.Lodestring, Error.Message.c_str());
					std::abort();
				}
				Programs.push_back(std::move(Program));
				Expressions.push_back(xmlXPathCompile(BAD_CAST Query.XPath));
				const std::size_t Native = EvaluateLodestring(*Index, Programs.back()).Matches.size();
				const std::size_t Xml = CountXml(Expressions.back());
				if (Native != Xml || Native == 0)
				{
					std::fprintf(stderr, "%s: native %zu, libxml2 %zu\n", Query.Label, Native, Xml);
					std::abort();
				}
			}
		}

		std::size_t CountXml(xmlXPathCompExprPtr Expression) const
		{
			xmlXPathObjectPtr Result = xmlXPathCompiledEval(Expression, Context);
			const std::size_t Count = Result != nullptr && Result->nodesetval != nullptr
				? static_cast<std::size_t>(Result->nodesetval->nodeNr)
				: 0;
			xmlXPathFreeObject(Result);
			return Count;
		}
	};

	FFixture& Fixture()
	{
		static FFixture Instance;
		return Instance;
	}

	void BM_IndexBuild(benchmark::State& State)
	{
		const FBenchScene Scene;
		for (auto _ : State)
		{
			const FLodexSceneIndex Index(Scene, Scene);
			benchmark::DoNotOptimize(Index.Num());
		}
		State.counters["objects"] = static_cast<double>(Scene.Num());
	}
	BENCHMARK(BM_IndexBuild)->Unit(benchmark::kMillisecond)->Iterations(3);

	/**
	 * The best Lodestring of every object of the scene, the index built beforehand: what a user waits for when
	 * asking for the whole scene's locators at once.
	 */
	void BM_BestLocatorAll(benchmark::State& State)
	{
		FFixture& Bench = Fixture();
		const FLodexBestLocatorFinder Finder(*Bench.Index);
		std::size_t Unique = 0;
		for (auto _ : State)
		{
			Unique = 0;
			for (std::uint32_t Object = 0; Object < Bench.Index->Num(); ++Object)
			{
				Unique += Finder.Find(Object).MatchCount == 1 ? 1 : 0;
			}
		}
		if (Unique != Bench.Index->Num())
		{
			State.SkipWithError("an object's best Lodestring does not find it alone");
		}
		State.counters["objects"] = static_cast<double>(Bench.Index->Num());
		State.counters["per_object"] = benchmark::Counter(static_cast<double>(Bench.Index->Num()),
			benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
	}
	BENCHMARK(BM_BestLocatorAll)->Unit(benchmark::kMillisecond)->Iterations(1);

	void BM_Native(benchmark::State& State)
	{
		FFixture& Bench = Fixture();
		const int Query = static_cast<int>(State.range(0));
		std::size_t Found = 0;
		for (auto _ : State)
		{
			const FLodexEvaluation Evaluation = EvaluateLodestring(*Bench.Index, Bench.Programs[Query]);
			Found = Evaluation.Matches.size();
			benchmark::DoNotOptimize(Found);
		}
		State.SetLabel(Queries[Query].Label);
		State.counters["found"] = static_cast<double>(Found);
	}
	BENCHMARK(BM_Native)->DenseRange(0, QueryCount - 1)->Unit(benchmark::kMicrosecond);

	void BM_LibXml2(benchmark::State& State)
	{
		FFixture& Bench = Fixture();
		const int Query = static_cast<int>(State.range(0));
		std::size_t Found = 0;
		for (auto _ : State)
		{
			Found = Bench.CountXml(Bench.Expressions[Query]);
			benchmark::DoNotOptimize(Found);
		}
		State.SetLabel(Queries[Query].Label);
		State.counters["found"] = static_cast<double>(Found);
	}
	BENCHMARK(BM_LibXml2)->DenseRange(0, QueryCount - 1)->Unit(benchmark::kMicrosecond);

	void BM_CompileFourSteps(benchmark::State& State)
	{
		for (auto _ : State)
		{
			FLodestringProgram Program;
			FLodexPathError Error;
			benchmark::DoNotOptimize(CompileLodestring(Queries[1].Lodestring, Program, Error));
		}
	}
	BENCHMARK(BM_CompileFourSteps)->Unit(benchmark::kMicrosecond);
}

namespace
{
	/**
	 * Long texts that read in many ways: "/a" repeated (every name may run on over the later "/", so the readings
	 * grow with the square of the steps, past the limit from about 90 steps), and a predicate whose values hold
	 * quotes and "or", so that it closes in many places.
	 */
	std::string RepeatedSteps(int Steps)
	{
		std::string Path;
		for (int Step = 0; Step < Steps; ++Step)
		{
			Path += "/a";
		}
		return Path;
	}

	std::string QuotedPredicate(int Comparisons)
	{
		std::string Path = "/*[@name = 'x";
		for (int Comparison = 0; Comparison < Comparisons; ++Comparison)
		{
			Path += "' or @name = 'x";
		}
		return Path + "']/a";
	}

	/** Compiles the text MakePath builds for the benchmark's argument, and tells how many steps it read. */
	void BM_CompileLongText(benchmark::State& State, std::string (*MakePath)(int))
	{
		const std::string Path = MakePath(static_cast<int>(State.range(0)));
		std::size_t Ops = 0;
		for (auto _ : State)
		{
			FLodestringProgram Program;
			FLodexPathError Error;
			benchmark::DoNotOptimize(CompileLodestring(Path, Program, Error));
			Ops = Program.GetOps().size();
		}
		State.counters["steps read"] = static_cast<double>(Ops);
	}
	BENCHMARK_CAPTURE(BM_CompileLongText, RepeatedSteps, &RepeatedSteps)
		->Arg(20)
		->Arg(80)
		->Arg(160)
		->Unit(benchmark::kMicrosecond);
	BENCHMARK_CAPTURE(BM_CompileLongText, QuotedPredicate, &QuotedPredicate)
		->Arg(8)
		->Arg(32)
		->Unit(benchmark::kMicrosecond);
}
