// Copyright Lodex contributors.
#pragma once

#include "LodexDebugger/Core/Lodestring/LodexSceneIndex.h"
#include "LodexDebugger/Core/Lodestring/LodexObjectGraph.h"
#include "LodexDebugger/Core/Text/LodexOutput.h"

#include <deque>
#include <string>
#include <utility>
#include <vector>

/** An object graph built in code, for tests: objects live as long as the graph. */
class FTestGraph : public ILodexObjectGraph
{
public:
	enum class EKind
	{
		Actor,
		WidgetTree,
		Widget,
		UserWidget,
		Component,
		Other,
	};

	struct FNode
	{
		EKind Kind = EKind::Other;
		std::string Name;
		FNode* Outer = nullptr;
		FNode* AttachParent = nullptr;
		FNode* WidgetParent = nullptr;
		FNode* RootWidget = nullptr;
		bool bHasTags = false;
		std::vector<std::string> Tags;
		ELodexPlacement Placement = ELodexPlacement::Unknown;
		/** How often the builder asked for this node's name. */
		mutable int NameReads = 0;
	};

	FNode& Add(EKind Kind, std::string Name, FNode* Outer = nullptr)
	{
		Nodes.emplace_back();
		FNode& Node = Nodes.back();
		Node.Kind = Kind;
		Node.Name = std::move(Name);
		Node.Outer = Outer;
		return Node;
	}

	FNode& Actor(std::string Name, FNode* AttachParent = nullptr, std::vector<std::string> Tags = {})
	{
		FNode& Node = Add(EKind::Actor, std::move(Name), Level());
		Node.AttachParent = AttachParent;
		Node.bHasTags = true;
		Node.Tags = std::move(Tags);
		return Node;
	}

	FNode* Level()
	{
		if (LevelNode == nullptr)
		{
			LevelNode = &Add(EKind::Other, "PersistentLevel");
		}
		return LevelNode;
	}

	static FLodexObject Handle(const FNode& Node) { return FLodexObject(&Node); }

	bool IsOfClass(FLodexObject Object, ELodexClass Class) const override
	{
		const EKind Kind = Get(Object).Kind;
		switch (Class)
		{
			case ELodexClass::Actor:
				return Kind == EKind::Actor;
			case ELodexClass::WidgetTree:
				return Kind == EKind::WidgetTree;
			case ELodexClass::Widget:
				return Kind == EKind::Widget || Kind == EKind::UserWidget;
			case ELodexClass::UserWidget:
				return Kind == EKind::UserWidget;
			case ELodexClass::ActorComponent:
				return Kind == EKind::Component;
		}
		return false;
	}
	std::string GetName(FLodexObject Object) const override
	{
		++Get(Object).NameReads;
		return Get(Object).Name;
	}
	FLodexObject GetOuter(FLodexObject Object) const override { return FLodexObject(Get(Object).Outer); }
	FLodexObject GetAttachParent(FLodexObject Object) const override { return FLodexObject(Get(Object).AttachParent); }
	FLodexObject GetWidgetParent(FLodexObject Object) const override { return FLodexObject(Get(Object).WidgetParent); }
	FLodexObject GetRootWidget(FLodexObject Object) const override { return FLodexObject(Get(Object).RootWidget); }
	bool GetTags(FLodexObject Object, std::vector<std::string>& OutTags) const override
	{
		OutTags = Get(Object).Tags;
		return Get(Object).bHasTags;
	}

	ELodexPlacement GetPlacement(FLodexObject Object) const override { return Get(Object).Placement; }

private:
	static const FNode& Get(FLodexObject Object) { return *static_cast<const FNode*>(Object.Ptr); }

	std::deque<FNode> Nodes;
	FNode* LevelNode = nullptr;
};

/** A test graph that is also a scene: the objects listed, in the order they were listed. */
class FListedTestGraph final
	: public FTestGraph
	, public ILodexSceneObjects
{
public:
	FNode& Listed(FNode& Node)
	{
		Objects.push_back(Handle(Node));
		return Node;
	}

	void GetAllObjects(std::vector<FLodexObject>& OutObjects) const override
	{
		OutObjects.insert(OutObjects.end(), Objects.begin(), Objects.end());
	}

private:
	std::vector<FLodexObject> Objects;
};

/** Records what the module writes to the log and the clipboard. */
class FRecordingOutput final : public ILodexOutput
{
public:
	struct FLine
	{
		ELodexLogVerbosity Verbosity;
		std::string Message;
	};

	void Log(ELodexLogVerbosity Verbosity, const std::string& Message) override
	{
		Lines.push_back({Verbosity, Message});
	}
	void CopyToClipboard(const std::string& Text) override { Copies.push_back(Text); }

	std::vector<std::string> Messages() const
	{
		std::vector<std::string> Out;
		for (const FLine& Line : Lines)
		{
			Out.push_back(Line.Message);
		}
		return Out;
	}

	std::vector<FLine> Lines;
	std::vector<std::string> Copies;
};
