// Copyright Lodex contributors.
#pragma once

#include "LodexDebugger/Core/Lodestring/LodexObjectGraph.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

/**
 * Every object of a scene: what evaluating a Lodestring needs beyond the path builder's walk. The tree
 * the evaluator searches (children, components, roots) is derived from these objects and the builder's
 * own walk, so a host implements this one call next to its `ILodexObjectGraph`.
 */
class ILodexSceneObjects
{
public:
	virtual ~ILodexSceneObjects() = default;

	/**
	 * Appends every object of the scene to OutObjects, in a stable order: the order becomes the order in
	 * which results are listed. Null entries and repeats are skipped. An object the walk reaches that is
	 * not listed (an attach parent in another level) is added by the index itself.
	 */
	virtual void GetAllObjects(std::vector<FLodexObject>& OutObjects) const = 0;
};

/** A run of object indices, sorted ascending. */
struct FLodexIndexRange
{
	const std::uint32_t* First = nullptr;
	const std::uint32_t* Last = nullptr;

	const std::uint32_t* begin() const { return First; }
	const std::uint32_t* end() const { return Last; }
	std::size_t size() const { return static_cast<std::size_t>(Last - First); }
	bool empty() const { return First == Last; }
};

/**
 * The tree a Lodestring is evaluated over, indexed once per scene. It is the path builder's walk turned
 * upside down: the parent of an object is the first actor, widget tree, widget or component above it on
 * its walk (objects of other kinds are passed through, as the builder passes them), its children are the
 * objects whose parent it is, and the roots are the objects whose walk ends at them. In a malformed
 * graph whose walk loops, every object of the loop is also a root.
 *
 * Objects are numbered in document order (roots in the order the scene lists them, each followed by its
 * subtree), so a sorted list of indices is a list in document order and a subtree is a range of indices.
 * Names and tags are indexed, so that finding the objects with a name costs the number of those objects.
 */
class FLodexSceneIndex
{
public:
	static constexpr std::uint32_t None = 0xFFFFFFFFu;

	/** Indexes the scene; the graph must outlive the index. */
	FLodexSceneIndex(const ILodexObjectGraph& InGraph, const ILodexSceneObjects& Objects);

	FLodexSceneIndex(const FLodexSceneIndex&) = delete;
	FLodexSceneIndex& operator=(const FLodexSceneIndex&) = delete;

	const ILodexObjectGraph& GetGraph() const { return *Graph; }

	/** The number of indexed objects (actors, widget trees, widgets and components). */
	std::uint32_t Num() const { return static_cast<std::uint32_t>(Objects.size()); }

	FLodexObject GetObject(std::uint32_t Index) const { return Objects[Index]; }

	/** The index of an object, or None when it is not in the tree (null, or of a kind that takes no step). */
	std::uint32_t FindIndex(FLodexObject Object) const;

	/** Actors, widget trees and widgets: the objects node steps select. */
	bool IsNode(std::uint32_t Index) const { return bIsNode[Index] != 0; }
	bool IsComponent(std::uint32_t Index) const { return bIsNode[Index] == 0; }

	/** The parent in the tree, or None for an object whose walk ends at it. */
	std::uint32_t GetParent(std::uint32_t Index) const { return Parents[Index]; }

	/** Whether node and component steps at the start of a path select the object. */
	bool IsRoot(std::uint32_t Index) const { return Parents[Index] == None || Cycles[Index] != None; }

	/** One past the last index of the object's subtree (cutting loops at their roots). */
	std::uint32_t GetSubtreeEnd(std::uint32_t Index) const { return SubtreeEnds[Index]; }

	/** The loop of a malformed graph the object lies on, or None. */
	std::uint32_t GetCycle(std::uint32_t Index) const { return Cycles[Index]; }
	FLodexIndexRange GetCycleMembers(std::uint32_t Cycle) const;

	FLodexIndexRange GetNodeChildren(std::uint32_t Index) const;
	FLodexIndexRange GetComponentChildren(std::uint32_t Index) const;
	FLodexIndexRange GetNodeRoots() const { return MakeRange(NodeRoots); }
	FLodexIndexRange GetComponentRoots() const { return MakeRange(ComponentRoots); }

	std::uint32_t GetNameId(std::uint32_t Index) const { return NameIds[Index]; }
	const std::string& GetName(std::uint32_t Index) const { return NameTexts.Get(NameIds[Index]); }
	/** The object's tag ids, each once. */
	FLodexIndexRange GetTagIds(std::uint32_t Index) const;

	/** Name and tag ids, or None when no object has that exact text. */
	std::uint32_t FindNameId(std::string_view Name) const;
	std::uint32_t FindTagId(std::string_view Tag) const;
	std::uint32_t NumNames() const { return NameTexts.Num(); }
	std::uint32_t NumTags() const { return TagTexts.Num(); }
	const std::string& GetNameText(std::uint32_t NameId) const { return NameTexts.Get(NameId); }
	const std::string& GetTagText(std::uint32_t TagId) const { return TagTexts.Get(TagId); }

	FLodexIndexRange GetNodesNamed(std::uint32_t NameId) const;
	FLodexIndexRange GetComponentsNamed(std::uint32_t NameId) const;
	FLodexIndexRange GetNodesTagged(std::uint32_t TagId) const;

	/** The object's "Absolute" Lodestring, the text by which results are shown. */
	std::string GetAbsoluteLodestring(std::uint32_t Index) const;

private:
	/** Object pointer to index, open addressing: a million lookups must not cost a million allocations. */
	class FPointerTable
	{
	public:
		void Reserve(std::size_t Count);
		/** The index stored for the pointer, or None. */
		std::uint32_t Find(const void* Key) const;
		/** Stores the value unless the key is present; returns the value stored for the key. */
		std::uint32_t Insert(const void* Key, std::uint32_t Value);

	private:
		struct FSlot
		{
			const void* Key = nullptr;
			std::uint32_t Value = None;
		};
		std::size_t SlotOf(const void* Key) const;

		std::vector<FSlot> Slots;
		std::size_t Count = 0;
		std::size_t Mask = 0;
	};

	/** Distinct texts and their ids, open addressing over the texts' hashes. */
	class FTextTable
	{
	public:
		void Reserve(std::size_t Count);
		/** The id of the text, added when new. */
		std::uint32_t Intern(std::string&& Text);
		/** The id of the text, or None. */
		std::uint32_t Find(std::string_view Text) const;
		std::uint32_t Num() const { return static_cast<std::uint32_t>(Texts.size()); }
		const std::string& Get(std::uint32_t Id) const { return Texts[Id]; }

	private:
		struct FSlot
		{
			std::uint32_t Id = None;
			std::uint32_t Hash = 0;
		};
		static std::uint64_t HashOf(std::string_view Text);
		void Grow();

		std::vector<FSlot> Slots;
		std::size_t Mask = 0;
		/** A deque, so that texts never move. */
		std::deque<std::string> Texts;
	};

	/** The scene as the constructor first reads it, in listing order, before it is put in document order. */
	struct FRawScene;

	/** The steps of the constructor, in their order. */
	void ListSteppingObjects(const ILodexSceneObjects& SceneObjects, FRawScene& Raw);
	void ReadParentsNamesAndTags(FRawScene& Raw);
	static void FindLoops(FRawScene& Raw);
	static void OrderByDocument(FRawScene& Raw);
	void StoreInDocumentOrder(const FRawScene& Raw);
	void GroupForLookups(std::uint32_t CycleCount);

	static FLodexIndexRange MakeRange(const std::vector<std::uint32_t>& Items);
	static FLodexIndexRange MakeRange(
		const std::vector<std::uint32_t>& Offsets, const std::vector<std::uint32_t>& Items, std::uint32_t Key);

	const ILodexObjectGraph* Graph;
	/** Object pointer to its index in the scene's listing, and that index to document order. */
	FPointerTable ListedIndexOfObject;
	std::vector<std::uint32_t> DocumentIndexOfListed;

	std::vector<FLodexObject> Objects;
	std::vector<std::uint8_t> bIsNode;
	std::vector<std::uint32_t> Parents;
	std::vector<std::uint32_t> SubtreeEnds;
	std::vector<std::uint32_t> Cycles;
	std::vector<std::uint32_t> CycleOffsets;
	std::vector<std::uint32_t> CycleMembers;
	std::vector<std::uint32_t> NameIds;

	std::vector<std::uint32_t> NodeChildOffsets;
	std::vector<std::uint32_t> NodeChildren;
	std::vector<std::uint32_t> ComponentChildOffsets;
	std::vector<std::uint32_t> ComponentChildren;
	std::vector<std::uint32_t> NodeRoots;
	std::vector<std::uint32_t> ComponentRoots;

	std::vector<std::uint32_t> TagOffsets;
	std::vector<std::uint32_t> Tags;

	FTextTable NameTexts;
	FTextTable TagTexts;

	std::vector<std::uint32_t> NodesByNameOffsets;
	std::vector<std::uint32_t> NodesByName;
	std::vector<std::uint32_t> ComponentsByNameOffsets;
	std::vector<std::uint32_t> ComponentsByName;
	std::vector<std::uint32_t> NodesByTagOffsets;
	std::vector<std::uint32_t> NodesByTag;
};
