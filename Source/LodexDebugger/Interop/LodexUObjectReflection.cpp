// Copyright Lodex contributors.
#include "LodexUObjectReflection.h"

#include "Components/ActorComponent.h"
#include "GameFramework/Actor.h"
#include "LodexInterop.h"
#include "UObject/Class.h"
#include "UObject/UnrealType.h"

static_assert(LodexPropertyFlags::Parm == CPF_Parm && LodexPropertyFlags::OutParm == CPF_OutParm &&
		LodexPropertyFlags::ReturnParm == CPF_ReturnParm,
	"The core's property flags carry the engine's values");

namespace LodexInterop
{
	FLodexClass ToLodexClass(const UClass* Class)
	{
		return FLodexClass(Class);
	}

	UClass* ToUClass(FLodexClass Class)
	{
		return const_cast<UClass*>(static_cast<const UClass*>(Class.Ptr));
	}

	FLodexFunction ToLodexFunction(const UFunction* Function)
	{
		return FLodexFunction(Function);
	}

	UFunction* ToUFunction(FLodexFunction Function)
	{
		return const_cast<UFunction*>(static_cast<const UFunction*>(Function.Ptr));
	}

	FLodexProperty ToLodexProperty(const FProperty* Property)
	{
		return FLodexProperty(Property);
	}

	FProperty* ToFProperty(FLodexProperty Property)
	{
		return const_cast<FProperty*>(static_cast<const FProperty*>(Property.Ptr));
	}
}

FLodexClass FLodexUObjectReflection::GetClass(FLodexObject Object) const
{
	return LodexInterop::ToLodexClass(LodexInterop::ToUObject(Object)->GetClass());
}

FLodexClass FLodexUObjectReflection::GetSuperClass(FLodexClass Class) const
{
	// The super class is where the field iterator goes on after the class's own fields.
	return LodexInterop::ToLodexClass(LodexInterop::ToUClass(Class)->GetSuperClass());
}

std::string FLodexUObjectReflection::GetClassName(FLodexClass Class) const
{
	return LodexInterop::ToUtf8(LodexInterop::ToUClass(Class)->GetName());
}

void FLodexUObjectReflection::GetOwnFunctions(FLodexClass Class, std::vector<FLodexFunction>& Out) const
{
	for (TFieldIterator<UFunction> It(LodexInterop::ToUClass(Class), EFieldIteratorFlags::ExcludeSuper); It; ++It)
	{
		Out.push_back(LodexInterop::ToLodexFunction(*It));
	}
}

void FLodexUObjectReflection::GetOwnProperties(FLodexClass Class, std::vector<FLodexProperty>& Out) const
{
	for (TFieldIterator<FProperty> It(LodexInterop::ToUClass(Class), EFieldIteratorFlags::ExcludeSuper); It; ++It)
	{
		Out.push_back(LodexInterop::ToLodexProperty(*It));
	}
}

std::string FLodexUObjectReflection::GetFunctionName(FLodexFunction Function) const
{
	return LodexInterop::ToUtf8(LodexInterop::ToUFunction(Function)->GetName());
}

void FLodexUObjectReflection::GetFunctionProperties(FLodexFunction Function, std::vector<FLodexProperty>& Out) const
{
	// A function's field iterator stays within the function: its parameters, then its locals.
	for (TFieldIterator<FProperty> It(LodexInterop::ToUFunction(Function)); It; ++It)
	{
		Out.push_back(LodexInterop::ToLodexProperty(*It));
	}
}

FLodexProperty FLodexUObjectReflection::GetReturnProperty(FLodexFunction Function) const
{
	return LodexInterop::ToLodexProperty(LodexInterop::ToUFunction(Function)->GetReturnProperty());
}

std::string FLodexUObjectReflection::GetPropertyName(FLodexProperty Property) const
{
	return LodexInterop::ToUtf8(LodexInterop::ToFProperty(Property)->GetName());
}

std::string FLodexUObjectReflection::GetPropertyType(FLodexProperty Property) const
{
	return LodexInterop::ToUtf8(LodexInterop::ToFProperty(Property)->GetCPPType(nullptr, 0));
}

std::uint64_t FLodexUObjectReflection::GetPropertyFlags(FLodexProperty Property) const
{
	return static_cast<std::uint64_t>(LodexInterop::ToFProperty(Property)->PropertyFlags);
}

FLodexObject FLodexUObjectReflection::GetComponentOwner(FLodexObject Component) const
{
	const UActorComponent* ActorComponent = Cast<UActorComponent>(LodexInterop::ToUObject(Component));
	return LodexInterop::ToLodexObject(ActorComponent ? ActorComponent->GetOwner() : nullptr);
}

void FLodexUObjectReflection::GetComponents(FLodexObject Actor, std::vector<FLodexObject>& Out) const
{
	if (const AActor* EngineActor = Cast<AActor>(LodexInterop::ToUObject(Actor)))
	{
		TInlineComponentArray<UActorComponent*> Components;
		EngineActor->GetComponents(Components);
		for (UActorComponent* Component : Components)
		{
			Out.push_back(LodexInterop::ToLodexObject(Component));
		}
	}
}
