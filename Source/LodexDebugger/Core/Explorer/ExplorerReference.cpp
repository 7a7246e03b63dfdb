// Copyright Lodex contributors.
#include "ExplorerReference.h"

#include "LodexDebugger/Core/Paths/PathCommands.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <vector>

namespace ExplorerReferencePrivate
{
	const char* const VoidType = "void";

	bool IsVoidType(const std::string& TypeText)
	{
		return LodexText::EqualsIgnoreCase(TypeText, VoidType);
	}

	/** The base path of the Method and Property targets: the component when one is explored, else the actor. */
	std::string BuildMemberBasePath(
		const FLodexExplorerSelection& Selection, const ILodexObjectGraph& Graph, const LodestringMode& Mode)
	{
		const FLodexObject Base = Selection.SelectedComponent ? Selection.SelectedComponent : Selection.SelectedActor;
		return Base ? BuildLodestring(Graph, Base, Mode) : std::string();
	}

	void PrintObjectReference(const FLodexExplorerSelection& Selection, const ILodexObjectGraph& Graph,
		ILodexOutput& Output, const LodestringMode& Mode)
	{
		if (!Selection.SelectedActor)
		{
			return;
		}
		// The actor's path, with the component named here rather than by the path builder.
		const std::string Path = BuildLodestring(Graph, Selection.SelectedActor, Mode);
		if (!Selection.SelectedComponent)
		{
			Output.Log(ELodexLogVerbosity::Log, FormatLodestringLogMessage(Path));
			Output.CopyToClipboard(Path);
			return;
		}
		const std::string Reference = Path + "/fn:component('" + Graph.GetName(Selection.SelectedComponent) + "')";
		Output.Log(ELodexLogVerbosity::Log, "Lodestring : " + Reference + " ");
		Output.CopyToClipboard(Reference);
	}

	void PrintPropertyReference(const FLodexExplorerSelection& Selection, const ILodexObjectGraph& Graph,
		const ILodexReflection& Reflection, ILodexOutput& Output, const LodestringMode& Mode)
	{
		if (!Selection.SelectedProperty)
		{
			return;
		}
		const std::string Reference = BuildMemberBasePath(Selection, Graph, Mode) + "/@" +
			LodexExplorer::GetPropertyName(Reflection, Selection.SelectedProperty);
		Output.Log(ELodexLogVerbosity::Log, "Lodestring : " + Reference);
		Output.CopyToClipboard(Reference);
	}

	void PrintMethodReference(const FLodexExplorerSelection& Selection, const ILodexObjectGraph& Graph,
		const ILodexReflection& Reflection, ILodexOutput& Output, const LodestringMode& Mode)
	{
		if (!Selection.SelectedFunction)
		{
			return;
		}
		const std::string Path = BuildMemberBasePath(Selection, Graph, Mode);
		const FLodexMethodDescription Method = LodexExplorer::DescribeMethod(Reflection, Selection.SelectedFunction);
		const std::string Snippet = LodexExplorer::BuildMethodSnippet(Method, Path);
		Output.Log(ELodexLogVerbosity::Log, "Lodestring : " + Path);
		Output.Log(ELodexLogVerbosity::Log, "Method : " + Method.ReturnType + " " + Method.Signature);
		Output.Log(ELodexLogVerbosity::Log, "Sample usage: " + Snippet + " //replace types with objects ");
		Output.CopyToClipboard(Snippet);
	}
}

namespace LodexExplorer
{
	std::string GetPropertyName(const ILodexReflection& Reflection, FLodexProperty Property)
	{
		if (!Property)
		{
			return "None";
		}
		std::string Name = Reflection.GetPropertyName(Property);
		return Name.empty() ? std::string("None") : Name;
	}

	std::string GetPropertyType(const ILodexReflection& Reflection, FLodexProperty Property)
	{
		return Property ? Reflection.GetPropertyType(Property) : std::string();
	}

	FLodexMethodDescription DescribeMethod(const ILodexReflection& Reflection, FLodexFunction Function)
	{
		using namespace ExplorerReferencePrivate;
		FLodexMethodDescription Method;
		Method.Name = Reflection.GetFunctionName(Function);
		const FLodexProperty ReturnProperty = Reflection.GetReturnProperty(Function);
		Method.ReturnType = ReturnProperty ? Reflection.GetPropertyType(ReturnProperty) : std::string(VoidType);

		std::vector<FLodexProperty> Properties;
		Reflection.GetFunctionProperties(Function, Properties);
		std::vector<std::string> Declarations;
		std::vector<std::string> ArgumentTypes;
		for (const FLodexProperty Property : Properties)
		{
			const std::uint64_t Flags = Reflection.GetPropertyFlags(Property);
			if ((Flags & LodexPropertyFlags::Parm) == 0)
			{
				break;
			}
			if ((Flags & LodexPropertyFlags::ReturnParm) != 0)
			{
				continue;
			}
			const std::string Type = Reflection.GetPropertyType(Property);
			if ((Flags & LodexPropertyFlags::OutParm) != 0)
			{
				if (IsVoidType(Method.ReturnType))
				{
					Method.ReturnType = Type;
					continue;
				}
				Declarations.push_back(Type + " &" + GetPropertyName(Reflection, Property));
				ArgumentTypes.push_back("& " + Type);
				continue;
			}
			Declarations.push_back(Type + " " + GetPropertyName(Reflection, Property));
			ArgumentTypes.push_back(Type);
		}
		Method.Declarations = LodexText::Join(Declarations, ", ");
		Method.ArgumentTypes = LodexText::Join(ArgumentTypes, ", ");
		Method.Signature = Method.Name + "(" + Method.Declarations + ")";
		return Method;
	}

	std::string BuildMethodSnippet(const FLodexMethodDescription& Method, const std::string& BasePath)
	{
		std::string Snippet;
		if (ExplorerReferencePrivate::IsVoidType(Method.ReturnType))
		{
			Snippet += "api.CallMethod(\"";
		}
		else
		{
			Snippet += Method.ReturnType + " var = api.CallMethod<" + Method.ReturnType + ">(\"";
		}
		Snippet += BasePath + "\", \"" + Method.Name + "\", new object[]{" + Method.ArgumentTypes + "}); ";
		return Snippet;
	}

	void PrintReference(const FLodexExplorerSelection& Selection, const ILodexObjectGraph& Graph,
		const ILodexReflection& Reflection, ILodexOutput& Output, const LodestringMode& Mode)
	{
		using namespace ExplorerReferencePrivate;
		switch (Selection.ReferenceTarget)
		{
			case static_cast<std::uint32_t>(ELodexReferenceTarget::Object):
				PrintObjectReference(Selection, Graph, Output, Mode);
				break;
			case static_cast<std::uint32_t>(ELodexReferenceTarget::Method):
				PrintMethodReference(Selection, Graph, Reflection, Output, Mode);
				break;
			case static_cast<std::uint32_t>(ELodexReferenceTarget::Property):
				PrintPropertyReference(Selection, Graph, Reflection, Output, Mode);
				break;
			default:
				break;
		}
	}
}
