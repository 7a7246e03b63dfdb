// Copyright Lodex contributors.
#pragma once

#include "LodexDebugger/Core/Lodestring/LodexObjectGraph.h"

#include <cstdint>
#include <string>
#include <vector>

/**
 * Opaque reference to one reflected entity of the host: a class, a function or a property. The editor wraps a
 * UClass, UFunction or FProperty pointer, the headless host an entry of a scene snapshot. Null means "none".
 */
template<typename TagType>
struct TLodexReflectionHandle
{
	const void* Ptr = nullptr;

	TLodexReflectionHandle() = default;
	explicit TLodexReflectionHandle(const void* InPtr)
		: Ptr(InPtr)
	{
	}

	bool IsNull() const { return Ptr == nullptr; }
	explicit operator bool() const { return Ptr != nullptr; }
	bool operator==(const TLodexReflectionHandle& Other) const { return Ptr == Other.Ptr; }
	bool operator!=(const TLodexReflectionHandle& Other) const { return Ptr != Other.Ptr; }
};

struct FLodexClassTag;
struct FLodexFunctionTag;
struct FLodexPropertyTag;

/** A reflected class (UClass). */
using FLodexClass = TLodexReflectionHandle<FLodexClassTag>;
/** A reflected function of a class (UFunction). */
using FLodexFunction = TLodexReflectionHandle<FLodexFunctionTag>;
/** A reflected property of a class or a function (FProperty). */
using FLodexProperty = TLodexReflectionHandle<FLodexPropertyTag>;

/** The property flags the explorer reads, with the engine's values (`EPropertyFlags`). */
namespace LodexPropertyFlags
{
	/** `CPF_Parm`: a parameter of a function (return value included). */
	inline constexpr std::uint64_t Parm = 0x0000000000000080;
	/** `CPF_OutParm`: the value is copied out after the call (reference and return parameters too). */
	inline constexpr std::uint64_t OutParm = 0x0000000000000100;
	/** `CPF_ReturnParm`: the return value. */
	inline constexpr std::uint64_t ReturnParm = 0x0000000000000400;
	/** The three together: what a host needs to report. */
	inline constexpr std::uint64_t Read = Parm | OutParm | ReturnParm;
}

/**
 * The reflection data the object explorer reads. Every call receives a non-null handle. The "Get...(..., Out)"
 * calls append to Out.
 */
class ILodexReflection
{
public:
	virtual ~ILodexReflection() = default;

	/** The object's class; null when the host knows none. */
	virtual FLodexClass GetClass(FLodexObject Object) const = 0;

	/** The class the class derives from, or null for a root class. */
	virtual FLodexClass GetSuperClass(FLodexClass Class) const = 0;

	/** The class's own name (the engine's object name: "Actor" for AActor). */
	virtual std::string GetClassName(FLodexClass Class) const = 0;

	/** The functions the class itself declares, in the order the engine's field iterator visits them. */
	virtual void GetOwnFunctions(FLodexClass Class, std::vector<FLodexFunction>& Out) const = 0;

	/** The properties the class itself declares, in the order the engine's field iterator visits them. */
	virtual void GetOwnProperties(FLodexClass Class, std::vector<FLodexProperty>& Out) const = 0;

	/** The function's object name. */
	virtual std::string GetFunctionName(FLodexFunction Function) const = 0;

	/** The function's properties in declaration order: its parameters first, then its locals, if any. */
	virtual void GetFunctionProperties(FLodexFunction Function, std::vector<FLodexProperty>& Out) const = 0;

	/** The function's return property (the first parameter flagged as the return value), or null. */
	virtual FLodexProperty GetReturnProperty(FLodexFunction Function) const = 0;

	/** The property's name; "None" (or the empty text) for a nameless one. */
	virtual std::string GetPropertyName(FLodexProperty Property) const = 0;

	/** The property's type text: what `FProperty::GetCPPType` returns with no extended type and export flags 0. */
	virtual std::string GetPropertyType(FLodexProperty Property) const = 0;

	/** The property's flags; at least the bits of `LodexPropertyFlags::Read` must be right. */
	virtual std::uint64_t GetPropertyFlags(FLodexProperty Property) const = 0;

	/** For an actor component: the actor that owns it, or null. */
	virtual FLodexObject GetComponentOwner(FLodexObject Component) const = 0;

	/** For an actor: its components, in the order the actor lists them. */
	virtual void GetComponents(FLodexObject Actor, std::vector<FLodexObject>& Out) const = 0;
};
