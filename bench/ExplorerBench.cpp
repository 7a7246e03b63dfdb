// Copyright Lodex contributors.
#include "LodexDebugger/Core/Explorer/ExplorerPanel.h"

#include <benchmark/benchmark.h>

#include <deque>
#include <string>
#include <vector>

namespace
{
	/** One actor whose class chain declares the given numbers of functions and properties, with engine-like names. */
	class FBenchReflection final
		: public ILodexReflection
		, public ILodexObjectGraph
	{
	public:
		struct FProperty
		{
			std::string Name;
			std::string Type;
			std::uint64_t Flags;
		};
		struct FFunction
		{
			std::string Name;
			std::vector<FProperty> Properties;
		};
		struct FClass
		{
			const FClass* Super = nullptr;
			std::vector<FFunction> Functions;
			std::vector<FProperty> Properties;
		};

		FBenchReflection(int FunctionCount, int PropertyCount, int ClassCount)
		{
			static const char* const Prefixes[] = {
				"K2_Get", "K2_Set", "Receive", "Server", "BP_On", "Get", "Set", "Is"};
			static const char* const Words[] = {"ActorLocation", "Health", "Rotation", "Velocity", "Component", "Tag",
				"Visibility", "Owner", "Collision", "Material", "Speed", "Gear", "Door", "Lock", "Hinge", "Light"};
			Classes.resize(static_cast<std::size_t>(ClassCount));
			for (int Index = 1; Index < ClassCount; ++Index)
			{
				Classes[static_cast<std::size_t>(Index - 1)].Super = &Classes[static_cast<std::size_t>(Index)];
			}
			for (int Index = 0; Index < FunctionCount; ++Index)
			{
				FFunction Function;
				Function.Name = std::string(Prefixes[Index % 8]) + Words[(Index / 8) % 16] + std::to_string(Index);
				Function.Properties = {{"NewLocation", "FVector", LodexPropertyFlags::Parm},
					{"bSweep", "bool", LodexPropertyFlags::Parm},
					{"SweepHitResult", "FHitResult", LodexPropertyFlags::Parm | LodexPropertyFlags::OutParm},
					{"ReturnValue", "bool", LodexPropertyFlags::Read}};
				Classes[static_cast<std::size_t>(Index % ClassCount)].Functions.push_back(std::move(Function));
			}
			for (int Index = 0; Index < PropertyCount; ++Index)
			{
				Classes[static_cast<std::size_t>(Index % ClassCount)].Properties.push_back(
					{std::string("Relative") + Words[Index % 16] + std::to_string(Index), "FVector", 0});
			}
		}

		FLodexObject Actor() const { return FLodexObject(this); }

		//~ Begin ILodexObjectGraph Interface
		bool IsOfClass(FLodexObject, ELodexClass Class) const override { return Class == ELodexClass::Actor; }
		std::string GetName(FLodexObject) const override { return "Door"; }
		FLodexObject GetOuter(FLodexObject) const override { return FLodexObject(); }
		FLodexObject GetAttachParent(FLodexObject) const override { return FLodexObject(); }
		FLodexObject GetWidgetParent(FLodexObject) const override { return FLodexObject(); }
		FLodexObject GetRootWidget(FLodexObject) const override { return FLodexObject(); }
		bool GetTags(FLodexObject, std::vector<std::string>&) const override { return false; }
		//~ End ILodexObjectGraph Interface

		//~ Begin ILodexReflection Interface
		FLodexClass GetClass(FLodexObject) const override { return FLodexClass(&Classes.front()); }
		FLodexClass GetSuperClass(FLodexClass Class) const override { return FLodexClass(Get(Class).Super); }
		std::string GetClassName(FLodexClass) const override { return "BP_Door_C"; }
		void GetOwnFunctions(FLodexClass Class, std::vector<FLodexFunction>& Out) const override
		{
			for (const FFunction& Function : Get(Class).Functions)
			{
				Out.push_back(FLodexFunction(&Function));
			}
		}
		void GetOwnProperties(FLodexClass Class, std::vector<FLodexProperty>& Out) const override
		{
			for (const FProperty& Property : Get(Class).Properties)
			{
				Out.push_back(FLodexProperty(&Property));
			}
		}
		std::string GetFunctionName(FLodexFunction Function) const override { return Get(Function).Name; }
		void GetFunctionProperties(FLodexFunction Function, std::vector<FLodexProperty>& Out) const override
		{
			for (const FProperty& Property : Get(Function).Properties)
			{
				Out.push_back(FLodexProperty(&Property));
			}
		}
		FLodexProperty GetReturnProperty(FLodexFunction Function) const override
		{
			return FLodexProperty(&Get(Function).Properties.back());
		}
		std::string GetPropertyName(FLodexProperty Property) const override { return Get(Property).Name; }
		std::string GetPropertyType(FLodexProperty Property) const override { return Get(Property).Type; }
		std::uint64_t GetPropertyFlags(FLodexProperty Property) const override { return Get(Property).Flags; }
		FLodexObject GetComponentOwner(FLodexObject) const override { return FLodexObject(); }
		void GetComponents(FLodexObject, std::vector<FLodexObject>&) const override {}
		//~ End ILodexReflection Interface

	private:
		static const FClass& Get(FLodexClass Class) { return *static_cast<const FClass*>(Class.Ptr); }
		static const FFunction& Get(FLodexFunction Function) { return *static_cast<const FFunction*>(Function.Ptr); }
		static const FProperty& Get(FLodexProperty Property) { return *static_cast<const FProperty*>(Property.Ptr); }

		std::vector<FClass> Classes;
	};

	class FNullOutput final : public ILodexOutput
	{
	public:
		void Log(ELodexLogVerbosity, const std::string&) override {}
		void CopyToClipboard(const std::string&) override {}
	};

	class FOneActor final : public ILodexActorSelection
	{
	public:
		explicit FOneActor(FLodexObject InActor)
			: Actor(InActor)
		{
		}
		std::size_t Num() const override { return 1; }
		FLodexObject GetSelectedObject(std::size_t) const override { return Actor; }

	private:
		FLodexObject Actor;
	};

	/**
	 * One keystroke in the Methods search box over 10,000 listed functions: the user types "K2_SetLocation" one
	 * character at a time, then deletes it again; each iteration is one change of the box's text.
	 */
	void BM_FilterTenThousandNamesPerKeystroke(benchmark::State& State)
	{
		const FBenchReflection Reflection(10000, 0, 8);
		FNullOutput Output;
		FLodexExplorerPanel Panel(Reflection, Reflection, Output);
		const FOneActor Selection(Reflection.Actor());
		Panel.HandleSelectionChanged(&Selection);
		const std::string Typed = "k2_setlocation";
		std::vector<std::string> Keystrokes;
		for (std::size_t Length = 1; Length <= Typed.size(); ++Length)
		{
			Keystrokes.push_back(Typed.substr(0, Length));
		}
		for (std::size_t Length = Typed.size(); Length-- > 0;)
		{
			Keystrokes.push_back(Typed.substr(0, Length));
		}
		std::size_t Next = 0;
		for (auto _ : State)
		{
			Panel.HandleFilterTextChanged(ELodexExplorerList::Methods, Keystrokes[Next]);
			benchmark::DoNotOptimize(Panel.GetFilteredItems(ELodexExplorerList::Methods).data());
			Next = (Next + 1) % Keystrokes.size();
		}
		State.counters["names"] = static_cast<double>(Panel.GetNames(ELodexExplorerList::Methods).size());
	}
	BENCHMARK(BM_FilterTenThousandNamesPerKeystroke)->Unit(benchmark::kMicrosecond);

	/** Selecting an actor whose class chain (8 classes) declares 2,000 functions and 500 properties. */
	void BM_FillListsForTwoThousandFunctions(benchmark::State& State)
	{
		const FBenchReflection Reflection(2000, 500, 8);
		FNullOutput Output;
		FLodexExplorerPanel Panel(Reflection, Reflection, Output);
		const FOneActor Selection(Reflection.Actor());
		for (auto _ : State)
		{
			Panel.HandleSelectionChanged(&Selection);
			benchmark::DoNotOptimize(Panel.GetNames(ELodexExplorerList::Methods).data());
		}
		State.counters["functions"] = static_cast<double>(Panel.GetMethodFunctions().size());
	}
	BENCHMARK(BM_FillListsForTwoThousandFunctions)->Unit(benchmark::kMicrosecond);

	/** The rows a list view shows at once (40) of a 2,000-function class: return type and signature of each. */
	void BM_MethodRowsOfAScreenful(benchmark::State& State)
	{
		const FBenchReflection Reflection(2000, 0, 8);
		FNullOutput Output;
		FLodexExplorerPanel Panel(Reflection, Reflection, Output);
		const FOneActor Selection(Reflection.Actor());
		Panel.HandleSelectionChanged(&Selection);
		for (auto _ : State)
		{
			for (std::size_t Index = 0; Index < 40; ++Index)
			{
				benchmark::DoNotOptimize(Panel.GetMethodRow(Index).Signature.data());
			}
		}
	}
	BENCHMARK(BM_MethodRowsOfAScreenful)->Unit(benchmark::kMicrosecond);
}
