// Copyright Lodex contributors.
#include "Lodestring.h"

#include <cstddef>
#include <unordered_set>

namespace LodestringPrivate
{
	const char* const PersistentLevelName = "PersistentLevel";

	enum class EStepMode
	{
		Absolute,
		Relative,
		Tag,
		None,
	};

	EStepMode ParseStepMode(const LodestringMode& Mode)
	{
		if (Mode == LodestringModes::Absolute)
		{
			return EStepMode::Absolute;
		}
		if (Mode == LodestringModes::Relative)
		{
			return EStepMode::Relative;
		}
		if (Mode == LodestringModes::Tag)
		{
			return EStepMode::Tag;
		}
		return EStepMode::None;
	}

	FLodexObject ParentOfKind(const ILodexObjectGraph& Graph, FLodexObject Object, ELodexObjectKind Kind)
	{
		switch (Kind)
		{
			case ELodexObjectKind::Actor:
				return Graph.GetAttachParent(Object);
			case ELodexObjectKind::WidgetTree:
				return Graph.GetRootWidget(Object);
			case ELodexObjectKind::Widget:
				return Graph.IsOfClass(Object, ELodexClass::UserWidget) ? Graph.GetWidgetParent(Object)
																		: FLodexObject();
			case ELodexObjectKind::Component:
			case ELodexObjectKind::Other:
				break;
		}
		const FLodexObject Outer = Graph.GetOuter(Object);
		if (Outer && Graph.GetName(Outer) == PersistentLevelName)
		{
			return FLodexObject();
		}
		return Outer;
	}

	/** One object of the walk, with what it contributes to the text. */
	struct FWalkStep
	{
		FLodexObject Object;
		ELodexObjectKind Kind = ELodexObjectKind::Other;
	};

	/**
	 * Brent's cycle detection keeps the walk linear and allocation-free on well-formed graphs; only once a
	 * loop has been seen is the exact first repeat looked up, so that every object appears once.
	 */
	void CutAtFirstRepeat(std::vector<FWalkStep>& Steps)
	{
		std::unordered_set<const void*> Seen;
		Seen.reserve(Steps.size());
		for (std::size_t Index = 0; Index < Steps.size(); ++Index)
		{
			if (!Seen.insert(Steps[Index].Object.Ptr).second)
			{
				Steps.resize(Index);
				return;
			}
		}
	}

	void AppendTagExpression(std::string& Out, const std::vector<std::string>& Tags)
	{
		Out += "/*[";
		for (std::size_t Index = 0; Index < Tags.size(); ++Index)
		{
			if (Index > 0)
			{
				Out += " or ";
			}
			Out += "@tag = '";
			Out += Tags[Index];
			Out += "'";
		}
		Out += "]";
	}
}

ELodexObjectKind ClassifyLodexObject(const ILodexObjectGraph& Graph, FLodexObject Object)
{
	if (Graph.IsOfClass(Object, ELodexClass::Actor))
	{
		return ELodexObjectKind::Actor;
	}
	if (Graph.IsOfClass(Object, ELodexClass::WidgetTree))
	{
		return ELodexObjectKind::WidgetTree;
	}
	if (Graph.IsOfClass(Object, ELodexClass::Widget) || Graph.IsOfClass(Object, ELodexClass::UserWidget))
	{
		return ELodexObjectKind::Widget;
	}
	if (Graph.IsOfClass(Object, ELodexClass::ActorComponent))
	{
		return ELodexObjectKind::Component;
	}
	return ELodexObjectKind::Other;
}

FLodexObject GetLodestringParent(const ILodexObjectGraph& Graph, FLodexObject Object)
{
	return LodestringPrivate::ParentOfKind(Graph, Object, ClassifyLodexObject(Graph, Object));
}

std::vector<std::string> GetTagStrings(const ILodexObjectGraph& Graph, FLodexObject Object)
{
	std::vector<std::string> Tags;
	if (!Graph.GetTags(Object, Tags))
	{
		Tags.clear();
	}
	return Tags;
}

std::string BuildLodestring(const ILodexObjectGraph& Graph, FLodexObject Object, const LodestringMode& Mode)
{
	using namespace LodestringPrivate;
	const EStepMode StepMode = ParseStepMode(Mode);

	// Walk first, bottom-up, so that the text can be assembled top-down with appends only.
	std::vector<FWalkStep> Steps;
	FLodexObject Current = Object;
	FLodexObject Tortoise = Object;
	std::size_t Power = 1;
	std::size_t Lambda = 0;
	bool bLooped = false;
	while (Current)
	{
		FWalkStep Step;
		Step.Object = Current;
		Step.Kind = ClassifyLodexObject(Graph, Current);
		Steps.push_back(Step);

		const bool bIsNode = Step.Kind == ELodexObjectKind::Actor || Step.Kind == ELodexObjectKind::WidgetTree ||
			Step.Kind == ELodexObjectKind::Widget;
		if (bIsNode && StepMode == EStepMode::Relative)
		{
			break; // A relative Lodestring names the nearest node object and goes no higher.
		}

		Current = ParentOfKind(Graph, Current, Step.Kind);
		if (Current == Tortoise)
		{
			bLooped = true;
			break;
		}
		if (++Lambda == Power)
		{
			Tortoise = Current;
			Power *= 2;
			Lambda = 0;
		}
	}
	if (bLooped)
	{
		CutAtFirstRepeat(Steps);
	}

	// In "Tag" mode each node replaces everything below it, so only the topmost node and what lies
	// above it count.
	std::size_t Top = Steps.size();
	std::size_t Bottom = 0;
	if (StepMode == EStepMode::Tag)
	{
		for (std::size_t Index = Steps.size(); Index > 0; --Index)
		{
			const ELodexObjectKind Kind = Steps[Index - 1].Kind;
			if (Kind == ELodexObjectKind::Actor || Kind == ELodexObjectKind::WidgetTree ||
				Kind == ELodexObjectKind::Widget)
			{
				Bottom = Index - 1;
				break;
			}
		}
	}

	std::string Result;
	for (std::size_t Index = Top; Index > Bottom; --Index)
	{
		const FWalkStep& Step = Steps[Index - 1];
		switch (Step.Kind)
		{
			case ELodexObjectKind::Actor:
			case ELodexObjectKind::WidgetTree:
			case ELodexObjectKind::Widget:
				if (StepMode == EStepMode::Absolute)
				{
					Result += "/*[@name = '";
					Result += Graph.GetName(Step.Object);
					Result += "']";
				}
				else if (StepMode == EStepMode::Relative)
				{
					Result += "//";
					Result += Graph.GetName(Step.Object);
				}
				else if (StepMode == EStepMode::Tag)
				{
					AppendTagExpression(Result, GetTagStrings(Graph, Step.Object));
				}
				break;
			case ELodexObjectKind::Component:
				Result += "/fn:component('";
				Result += Graph.GetName(Step.Object);
				Result += "')";
				break;
			case ELodexObjectKind::Other:
				break;
		}
	}
	return Result;
}
