// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"

#include "LodexDebugger/Core/Explorer/LodexReflection.h"

class FProperty;
class UClass;
class UFunction;

/** The conversions between the engine's reflection types and the core's handles. */
namespace LodexInterop
{
	FLodexClass ToLodexClass(const UClass* Class);
	UClass* ToUClass(FLodexClass Class);
	FLodexFunction ToLodexFunction(const UFunction* Function);
	UFunction* ToUFunction(FLodexFunction Function);
	FLodexProperty ToLodexProperty(const FProperty* Property);
	FProperty* ToFProperty(FLodexProperty Property);
}

/** The core's reflection view answered by the engine's reflection data (`TFieldIterator`, `FProperty`). */
class FLodexUObjectReflection final : public ILodexReflection
{
public:
	//~ Begin ILodexReflection Interface
	virtual FLodexClass GetClass(FLodexObject Object) const override;
	virtual FLodexClass GetSuperClass(FLodexClass Class) const override;
	virtual std::string GetClassName(FLodexClass Class) const override;
	virtual void GetOwnFunctions(FLodexClass Class, std::vector<FLodexFunction>& Out) const override;
	virtual void GetOwnProperties(FLodexClass Class, std::vector<FLodexProperty>& Out) const override;
	virtual std::string GetFunctionName(FLodexFunction Function) const override;
	virtual void GetFunctionProperties(FLodexFunction Function, std::vector<FLodexProperty>& Out) const override;
	virtual FLodexProperty GetReturnProperty(FLodexFunction Function) const override;
	virtual std::string GetPropertyName(FLodexProperty Property) const override;
	virtual std::string GetPropertyType(FLodexProperty Property) const override;
	virtual std::uint64_t GetPropertyFlags(FLodexProperty Property) const override;
	virtual FLodexObject GetComponentOwner(FLodexObject Component) const override;
	virtual void GetComponents(FLodexObject Actor, std::vector<FLodexObject>& Out) const override;
	//~ End ILodexReflection Interface
};
