// Copyright Lodex contributors.
#pragma once

#include "SceneSnapshot.h"

#include "LodexDebugger/Core/Explorer/LodexReflection.h"

#include <unordered_map>
#include <vector>

/**
 * The reflection of a scene snapshot as the object explorer reads it. A component's owner is, as the engine sets
 * it, the nearest actor among its outers; an actor's components are the components it owns, in the file's order.
 * The snapshot must outlive this view.
 */
class FSceneReflection final : public ILodexReflection
{
public:
	explicit FSceneReflection(const FSceneSnapshot& InScene);

	static FLodexClass Handle(const FSceneClass& Class) { return FLodexClass(&Class); }
	static FLodexFunction Handle(const FSceneFunction& Function) { return FLodexFunction(&Function); }
	static FLodexProperty Handle(const FSceneProperty& Property) { return FLodexProperty(&Property); }
	static const FSceneClass& Resolve(FLodexClass Class) { return *static_cast<const FSceneClass*>(Class.Ptr); }
	static const FSceneFunction& Resolve(FLodexFunction Function)
	{
		return *static_cast<const FSceneFunction*>(Function.Ptr);
	}
	static const FSceneProperty& Resolve(FLodexProperty Property)
	{
		return *static_cast<const FSceneProperty*>(Property.Ptr);
	}

	/** The class of this name, or null. */
	const FSceneClass* FindClass(const std::string& Name) const;

	//~ Begin ILodexReflection Interface
	FLodexClass GetClass(FLodexObject Object) const override;
	FLodexClass GetSuperClass(FLodexClass Class) const override;
	std::string GetClassName(FLodexClass Class) const override;
	void GetOwnFunctions(FLodexClass Class, std::vector<FLodexFunction>& Out) const override;
	void GetOwnProperties(FLodexClass Class, std::vector<FLodexProperty>& Out) const override;
	std::string GetFunctionName(FLodexFunction Function) const override;
	void GetFunctionProperties(FLodexFunction Function, std::vector<FLodexProperty>& Out) const override;
	FLodexProperty GetReturnProperty(FLodexFunction Function) const override;
	std::string GetPropertyName(FLodexProperty Property) const override;
	std::string GetPropertyType(FLodexProperty Property) const override;
	std::uint64_t GetPropertyFlags(FLodexProperty Property) const override;
	FLodexObject GetComponentOwner(FLodexObject Component) const override;
	void GetComponents(FLodexObject Actor, std::vector<FLodexObject>& Out) const override;
	//~ End ILodexReflection Interface

private:
	const FSceneSnapshot& Scene;
	std::unordered_map<const void*, std::vector<FLodexObject>> ComponentsByActor;
	std::unordered_map<const void*, const FSceneObject*> OwnerByComponent;
};
