// Copyright Lodex contributors.
#pragma once

#include "LodexReflection.h"
#include "LodexDebugger/Core/Lodestring/Lodestring.h"
#include "LodexDebugger/Core/Lodestring/LodexObjectGraph.h"
#include "LodexDebugger/Core/Text/LodexOutput.h"

#include <cstdint>
#include <string>

/** What the object explorer's `PrintReference` describes. Any other value of the field makes it do nothing. */
enum class ELodexReferenceTarget : std::uint32_t
{
	Object = 0,
	Method = 1,
	Property = 2,
};

/** The explorer's fields that `PrintReference` reads. */
struct FLodexExplorerSelection
{
	/** The actor being explored (the owner, when a component is explored). */
	FLodexObject SelectedActor;
	/** The explored component; null when an actor itself is explored. */
	FLodexObject SelectedComponent;
	/** The property last picked in the Properties list. */
	FLodexProperty SelectedProperty;
	/** The function last picked in the Methods list. */
	FLodexFunction SelectedFunction;
	/** An `ELodexReferenceTarget` value, or any other number. */
	std::uint32_t ReferenceTarget = static_cast<std::uint32_t>(ELodexReferenceTarget::Object);
};

/** A function as the explorer writes it: its return type, its signature and the argument types of a call. */
struct FLodexMethodDescription
{
	/** The function's object name (F). */
	std::string Name;
	/** R: the return property's type text, else the first out-parameter's, else "void". */
	std::string ReturnType;
	/** JD: the declarations of the parameters, joined with ", ". */
	std::string Declarations;
	/** JA: the argument types of a call, joined with ", ". */
	std::string ArgumentTypes;
	/** S: Name + "(" + Declarations + ")". */
	std::string Signature;
};

namespace LodexExplorer
{
	/** The text `PrintReference` reads for a property's name: "None" for a null or nameless property. */
	std::string GetPropertyName(const ILodexReflection& Reflection, FLodexProperty Property);

	/** The type text of a property, or the empty text for a null one. */
	std::string GetPropertyType(const ILodexReflection& Reflection, FLodexProperty Property);

	/**
	 * The function's return type, signature and argument types. The walk over its properties stops at the first
	 * one that is no parameter (the locals of a script function are never read). The return parameter is skipped.
	 * An out-parameter met while the return type is still "void" (compared ignoring case) becomes the return
	 * type and is left out; later ones are declared "T &N" and passed as "& T". Other parameters are declared
	 * "T N" and passed as "T".
	 */
	FLodexMethodDescription DescribeMethod(const ILodexReflection& Reflection, FLodexFunction Function);

	/**
	 * The sample call of a function on the object at BasePath, ending in "}); " with one trailing blank:
	 * `api.CallMethod("P", "F", new object[]{JA}); ` for a void function (ignoring case), otherwise
	 * `R var = api.CallMethod<R>("P", "F", new object[]{JA}); `. P and F are inserted as they stand.
	 */
	std::string BuildMethodSnippet(const FLodexMethodDescription& Method, const std::string& BasePath);

	/**
	 * The explorer's `PrintReference`: logs and copies the Lodestring of the explored object, of the picked
	 * property, or the picked method's signature and sample call, as the selection's target says. Nothing happens
	 * when the target's selection is missing or the target is unknown; otherwise the clipboard is written once,
	 * with the last text built.
	 */
	void PrintReference(const FLodexExplorerSelection& Selection, const ILodexObjectGraph& Graph,
		const ILodexReflection& Reflection, ILodexOutput& Output, const LodestringMode& Mode);
}
