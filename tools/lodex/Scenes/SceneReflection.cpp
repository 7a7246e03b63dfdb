// Copyright Lodex contributors.
#include "SceneReflection.h"

namespace
{
	/** A component's owner as the engine sets it: the nearest actor among its outers. */
	const FSceneObject* FindOwningActor(const FSceneObject& Component, std::size_t MaxSteps)
	{
		const FSceneObject* Outer = Component.Outer;
		for (std::size_t Step = 0; Outer != nullptr && Step < MaxSteps; ++Step, Outer = Outer->Outer)
		{
			if (Outer->Kind == ELodexSnapshotKind::Actor)
			{
				return Outer;
			}
		}
		return nullptr;
	}
}

FSceneReflection::FSceneReflection(const FSceneSnapshot& InScene)
	: Scene(InScene)
{
	const std::size_t Count = Scene.GetObjects().size();
	for (const FSceneObject& Object : Scene.GetObjects())
	{
		if (Object.Kind != ELodexSnapshotKind::Component)
		{
			continue;
		}
		if (const FSceneObject* Owner = FindOwningActor(Object, Count))
		{
			OwnerByComponent[&Object] = Owner;
			ComponentsByActor[Owner].push_back(FSceneSnapshot::Handle(Object));
		}
	}
}

const FSceneClass* FSceneReflection::FindClass(const std::string& Name) const
{
	for (const FSceneClass& Class : Scene.GetClasses())
	{
		if (Class.Name == Name)
		{
			return &Class;
		}
	}
	return nullptr;
}

FLodexClass FSceneReflection::GetClass(FLodexObject Object) const
{
	return FLodexClass(FSceneSnapshot::Resolve(Object).Class);
}

FLodexClass FSceneReflection::GetSuperClass(FLodexClass Class) const
{
	return FLodexClass(Resolve(Class).Super);
}

std::string FSceneReflection::GetClassName(FLodexClass Class) const
{
	return Resolve(Class).Name;
}

void FSceneReflection::GetOwnFunctions(FLodexClass Class, std::vector<FLodexFunction>& Out) const
{
	for (const FSceneFunction& Function : Resolve(Class).Functions)
	{
		Out.push_back(Handle(Function));
	}
}

void FSceneReflection::GetOwnProperties(FLodexClass Class, std::vector<FLodexProperty>& Out) const
{
	for (const FSceneProperty& Property : Resolve(Class).Properties)
	{
		Out.push_back(Handle(Property));
	}
}

std::string FSceneReflection::GetFunctionName(FLodexFunction Function) const
{
	return Resolve(Function).Name;
}

void FSceneReflection::GetFunctionProperties(FLodexFunction Function, std::vector<FLodexProperty>& Out) const
{
	for (const FSceneProperty& Property : Resolve(Function).Properties)
	{
		Out.push_back(Handle(Property));
	}
}

FLodexProperty FSceneReflection::GetReturnProperty(FLodexFunction Function) const
{
	// As the engine's UFunction::GetReturnProperty: the first return parameter among the leading parameters.
	for (const FSceneProperty& Property : Resolve(Function).Properties)
	{
		if ((Property.Flags & LodexPropertyFlags::Parm) == 0)
		{
			break;
		}
		if ((Property.Flags & LodexPropertyFlags::ReturnParm) != 0)
		{
			return Handle(Property);
		}
	}
	return FLodexProperty();
}

std::string FSceneReflection::GetPropertyName(FLodexProperty Property) const
{
	return Resolve(Property).Name;
}

std::string FSceneReflection::GetPropertyType(FLodexProperty Property) const
{
	return Resolve(Property).Type;
}

std::uint64_t FSceneReflection::GetPropertyFlags(FLodexProperty Property) const
{
	return Resolve(Property).Flags;
}

FLodexObject FSceneReflection::GetComponentOwner(FLodexObject Component) const
{
	const auto Found = OwnerByComponent.find(Component.Ptr);
	return Found == OwnerByComponent.end() ? FLodexObject() : FSceneSnapshot::Handle(*Found->second);
}

void FSceneReflection::GetComponents(FLodexObject Actor, std::vector<FLodexObject>& Out) const
{
	const auto Found = ComponentsByActor.find(Actor.Ptr);
	if (Found != ComponentsByActor.end())
	{
		Out.insert(Out.end(), Found->second.begin(), Found->second.end());
	}
}
