// Copyright Lodex contributors.
#pragma once

#include "TestGraph.h"

#include "LodexDebugger/Core/Explorer/ExplorerPanel.h"
#include "LodexDebugger/Core/Explorer/LodexReflection.h"
#include "LodexDebugger/Core/Paths/PathCommands.h"
#include "LodexDebugger/Core/Shell/LodexShell.h"

#include <algorithm>
#include <deque>
#include <map>
#include <string>
#include <vector>

/** Reflection built in code, for tests: classes with their own functions and properties, over FTestGraph objects. */
class FTestReflection final : public ILodexReflection
{
public:
	/** Flags of a function's properties: parameter, out-parameter, return value, local. */
	static constexpr std::uint64_t In = LodexPropertyFlags::Parm;
	static constexpr std::uint64_t Out = LodexPropertyFlags::Parm | LodexPropertyFlags::OutParm;
	static constexpr std::uint64_t Ret =
		LodexPropertyFlags::Parm | LodexPropertyFlags::OutParm | LodexPropertyFlags::ReturnParm;
	static constexpr std::uint64_t Local = 0;

	struct FProperty
	{
		std::string Name;
		std::string Type;
		std::uint64_t Flags = 0;
	};

	struct FFunction
	{
		std::string Name;
		std::vector<FProperty> Properties;
	};

	struct FClass
	{
		std::string Name;
		const FClass* Super = nullptr;
		std::deque<FFunction> Functions;
		std::deque<FProperty> Properties;

		FClass& Function(std::string FunctionName, std::vector<FProperty> FunctionProperties = {})
		{
			Functions.push_back({std::move(FunctionName), std::move(FunctionProperties)});
			return *this;
		}
		FClass& Property(std::string PropertyName, std::string Type)
		{
			Properties.push_back({std::move(PropertyName), std::move(Type), 0});
			return *this;
		}
	};

	FClass& Class(std::string Name, const FClass* Super = nullptr)
	{
		Classes.push_back(FClass());
		Classes.back().Name = std::move(Name);
		Classes.back().Super = Super;
		return Classes.back();
	}

	/** Gives an object its class. */
	void SetClass(const FTestGraph::FNode& Object, const FClass& Class) { ClassOf[&Object] = &Class; }

	/** Makes a component of an actor: its owner. */
	void AddComponent(const FTestGraph::FNode& Actor, const FTestGraph::FNode& Component)
	{
		OwnerOf[&Component] = FTestGraph::Handle(Actor);
	}

	/** The handle of a class's own function of that name (the first one). */
	static FLodexFunction FindFunction(const FClass& Class, const std::string& Name)
	{
		return FindNamed<FLodexFunction>(Class.Functions, Name);
	}

	static FLodexProperty FindProperty(const FClass& Class, const std::string& Name)
	{
		return FindNamed<FLodexProperty>(Class.Properties, Name);
	}

	FLodexClass GetClass(FLodexObject Object) const override
	{
		const auto Found = ClassOf.find(Object.Ptr);
		return FLodexClass(Found == ClassOf.end() ? nullptr : Found->second);
	}
	FLodexClass GetSuperClass(FLodexClass Class) const override { return FLodexClass(Get(Class).Super); }
	std::string GetClassName(FLodexClass Class) const override { return Get(Class).Name; }
	void GetOwnFunctions(FLodexClass Class, std::vector<FLodexFunction>& OutFunctions) const override
	{
		AppendHandles(Get(Class).Functions, OutFunctions);
	}
	void GetOwnProperties(FLodexClass Class, std::vector<FLodexProperty>& OutProperties) const override
	{
		AppendHandles(Get(Class).Properties, OutProperties);
	}
	std::string GetFunctionName(FLodexFunction Function) const override { return Get(Function).Name; }
	void GetFunctionProperties(FLodexFunction Function, std::vector<FLodexProperty>& OutProperties) const override
	{
		AppendHandles(Get(Function).Properties, OutProperties);
	}
	FLodexProperty GetReturnProperty(FLodexFunction Function) const override
	{
		for (const FProperty& Property : Get(Function).Properties)
		{
			if ((Property.Flags & LodexPropertyFlags::Parm) == 0)
			{
				break;
			}
			if ((Property.Flags & LodexPropertyFlags::ReturnParm) != 0)
			{
				return FLodexProperty(&Property);
			}
		}
		return FLodexProperty();
	}
	std::string GetPropertyName(FLodexProperty Property) const override { return Get(Property).Name; }
	std::string GetPropertyType(FLodexProperty Property) const override { return Get(Property).Type; }
	std::uint64_t GetPropertyFlags(FLodexProperty Property) const override { return Get(Property).Flags; }
	FLodexObject GetComponentOwner(FLodexObject Component) const override
	{
		const auto Found = OwnerOf.find(Component.Ptr);
		return Found == OwnerOf.end() ? FLodexObject() : Found->second;
	}
	/** Nothing the tests run asks for an actor's components. */
	void GetComponents(FLodexObject, std::vector<FLodexObject>&) const override {}

private:
	template<typename THandle, typename TItems>
	static THandle FindNamed(const TItems& Items, const std::string& Name)
	{
		const auto Found =
			std::find_if(Items.begin(), Items.end(), [&Name](const auto& Item) { return Item.Name == Name; });
		return Found == Items.end() ? THandle() : THandle(&*Found);
	}
	template<typename THandle, typename TItems>
	static void AppendHandles(const TItems& Items, std::vector<THandle>& Out)
	{
		for (const auto& Item : Items)
		{
			Out.push_back(THandle(&Item));
		}
	}

	static const FClass& Get(FLodexClass Class) { return *static_cast<const FClass*>(Class.Ptr); }
	static const FFunction& Get(FLodexFunction Function) { return *static_cast<const FFunction*>(Function.Ptr); }
	static const FProperty& Get(FLodexProperty Property) { return *static_cast<const FProperty*>(Property.Ptr); }

	std::deque<FClass> Classes;
	std::map<const void*, const FClass*> ClassOf;
	std::map<const void*, FLodexObject> OwnerOf;
};

/** An actor selection held as a list, for the panel's selection events. */
class FTestSelection final : public ILodexActorSelection
{
public:
	FTestSelection() = default;
	FTestSelection(std::initializer_list<const FTestGraph::FNode*> Nodes)
	{
		for (const FTestGraph::FNode* Node : Nodes)
		{
			Objects.push_back(FLodexObject(Node));
		}
	}
	std::size_t Num() const override { return Objects.size(); }
	FLodexObject GetSelectedObject(std::size_t Index) const override { return Objects[Index]; }

	std::vector<FLodexObject> Objects;
};

/** The editor's side of the commands and menus the tools register: each call recorded, in order, as "Call what". */
class FRecordingCommandHost final
	: public IMenuToolHost
	, public ILodexExplorerPanelHost
	, public ILodexPullDownCommandHost
{
public:
	void CreateCommandList() override { Calls.push_back("CreateCommandList"); }
	void RegisterCommandSet(const FLodexCommandSetInfo& S) override { Note("RegisterCommandSet", S.ContextName); }
	void UnregisterCommandSet(const FLodexCommandSetInfo& S) override { Note("UnregisterCommandSet", S.ContextName); }
	void MapPrintAction(const FLodexCommandInfo& C, const std::string& Mode) override
	{
		Note("MapPrintAction", C.CommandId + (" " + Mode));
	}
	void MapPrintReference(const FLodexCommandInfo& C, const std::string& Mode) override
	{
		Note("Map", C.CommandId + (" " + Mode));
	}
	void AddModuleMenuExtension(const FLodexMenuInfo& M) override { Note("AddModuleMenuExtension", M.ExtensionHook); }
	void AddViewportContextMenuExtender(const FLodexMenuInfo& M) override
	{
		Note("AddViewportContextMenuExtender", M.ExtensionHook);
	}
	void RemoveViewportContextMenuExtender(const FLodexMenuInfo& M) override
	{
		Note("RemoveViewportContextMenuExtender", M.ExtensionHook);
	}
	void ExtendComponentsTreeMenu(const FLodexMenuInfo& M) override { Note("Extend", M.AddedThrough); }
	void AddPullDownEntry(const FLodexPullDownCommandInfo& C) override
	{
		Note(
			"entry", std::string(C.MenuLabel) + " " + GetLodexExtensionPositionName(C.MenuPosition) + " " + C.MenuHook);
	}
	void RegisterConsoleCommand(const FLodexPullDownCommandInfo& C) override { Note("register", C.ConsoleCommand); }
	void UnregisterConsoleCommand(const FLodexPullDownCommandInfo& C) override { Note("unregister", C.ConsoleCommand); }

	std::vector<std::string> Calls;

private:
	void Note(const char* Call, const std::string& What) { Calls.push_back(std::string(Call) + " " + What); }
};
