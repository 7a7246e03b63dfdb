// Copyright Lodex contributors.
#include "LodexDebugger/Core/Lodestring/Lodestring.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace
{
	/** A chain of attached actors under a level, with one component on the lowest actor. */
	class FChainGraph final : public ILodexObjectGraph
	{
	public:
		struct FNode
		{
			bool bActor = true;
			std::string Name;
			const FNode* Outer = nullptr;
			const FNode* AttachParent = nullptr;
			std::vector<std::string> Tags;
		};

		explicit FChainGraph(int Depth)
		{
			Nodes.reserve(static_cast<std::size_t>(Depth) + 2);
			Nodes.push_back({false, "PersistentLevel", nullptr, nullptr, {}});
			const FNode* Level = &Nodes.back();
			const FNode* Parent = nullptr;
			for (int Index = 0; Index < Depth; ++Index)
			{
				Nodes.push_back({true, "Actor_" + std::to_string(Index), Level, Parent, {"tag_a", "tag_b"}});
				Parent = &Nodes.back();
			}
			Nodes.push_back({false, "StaticMeshComponent0", Parent, nullptr, {}});
			Component = FLodexObject(&Nodes.back());
		}

		FLodexObject Component;

		bool IsOfClass(FLodexObject Object, ELodexClass Class) const override
		{
			const FNode& Node = Get(Object);
			if (Class == ELodexClass::Actor)
			{
				return Node.bActor;
			}
			return Class == ELodexClass::ActorComponent && !Node.bActor && Node.Outer != nullptr;
		}
		std::string GetName(FLodexObject Object) const override { return Get(Object).Name; }
		FLodexObject GetOuter(FLodexObject Object) const override { return FLodexObject(Get(Object).Outer); }
		FLodexObject GetAttachParent(FLodexObject Object) const override
		{
			return FLodexObject(Get(Object).AttachParent);
		}
		FLodexObject GetWidgetParent(FLodexObject) const override { return FLodexObject(); }
		FLodexObject GetRootWidget(FLodexObject) const override { return FLodexObject(); }
		bool GetTags(FLodexObject Object, std::vector<std::string>& OutTags) const override
		{
			OutTags = Get(Object).Tags;
			return Get(Object).bActor;
		}

	private:
		static const FNode& Get(FLodexObject Object) { return *static_cast<const FNode*>(Object.Ptr); }
		std::vector<FNode> Nodes;
	};

	void RunBuild(benchmark::State& State, const char* Mode)
	{
		const FChainGraph Graph(static_cast<int>(State.range(0)));
		const LodestringMode ModeText = Mode;
		std::size_t Bytes = 0;
		for (auto _ : State)
		{
			std::string Text = BuildLodestring(Graph, Graph.Component, ModeText);
			Bytes = Text.size();
			benchmark::DoNotOptimize(Text);
		}
		State.counters["depth"] = static_cast<double>(State.range(0));
		State.counters["chars"] = static_cast<double>(Bytes);
		State.SetComplexityN(State.range(0));
	}

	void BM_BuildLodestringAbsolute(benchmark::State& State)
	{
		RunBuild(State, "Absolute");
	}
	void BM_BuildLodestringRelative(benchmark::State& State)
	{
		RunBuild(State, "Relative");
	}
	void BM_BuildLodestringTag(benchmark::State& State)
	{
		RunBuild(State, "Tag");
	}
}

BENCHMARK(BM_BuildLodestringAbsolute)->Arg(1)->Arg(8)->Arg(64)->Arg(512)->Arg(4096)->Complexity(benchmark::oN);
BENCHMARK(BM_BuildLodestringRelative)->Arg(1)->Arg(8)->Arg(64);
BENCHMARK(BM_BuildLodestringTag)->Arg(1)->Arg(8)->Arg(64)->Arg(512)->Arg(4096)->Complexity(benchmark::oN);
