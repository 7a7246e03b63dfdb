// Copyright Lodex contributors.
#include "LodexSceneIndex.h"

#include "LodexDebugger/Core/Lodestring/Lodestring.h"

#include <algorithm>

namespace LodexSceneIndexPrivate
{
	constexpr std::uint32_t NoIndex = FLodexSceneIndex::None;

	/**
	 * Groups items by key, compressed: Offsets[Key] .. Offsets[Key + 1] delimit the items of Key, which
	 * keep the order of KeyOfItem (so lists of ascending indices stay ascending). Items keyed None are left out.
	 */
	void GroupItemsByKey(std::uint32_t KeyCount, const std::vector<std::uint32_t>& KeyOfItem,
		std::vector<std::uint32_t>& OutOffsets, std::vector<std::uint32_t>& OutItems)
	{
		OutOffsets.assign(static_cast<std::size_t>(KeyCount) + 1, 0);
		for (const std::uint32_t Key : KeyOfItem)
		{
			if (Key != NoIndex)
			{
				++OutOffsets[Key + 1];
			}
		}
		for (std::size_t Key = 1; Key < OutOffsets.size(); ++Key)
		{
			OutOffsets[Key] += OutOffsets[Key - 1];
		}
		OutItems.resize(OutOffsets.back());
		std::vector<std::uint32_t> Cursor(OutOffsets.begin(), OutOffsets.end() - 1);
		for (std::size_t Item = 0; Item < KeyOfItem.size(); ++Item)
		{
			const std::uint32_t Key = KeyOfItem[Item];
			if (Key != NoIndex)
			{
				OutItems[Cursor[Key]++] = static_cast<std::uint32_t>(Item);
			}
		}
	}
}

void FLodexSceneIndex::FPointerTable::Reserve(std::size_t InCount)
{
	std::size_t Capacity = 16;
	while (Capacity < InCount * 2)
	{
		Capacity *= 2;
	}
	if (Capacity <= Slots.size())
	{
		return;
	}
	std::vector<FSlot> Old = std::move(Slots);
	Slots.assign(Capacity, FSlot());
	Mask = Capacity - 1;
	Count = 0;
	for (const FSlot& Slot : Old)
	{
		if (Slot.Key != nullptr)
		{
			Insert(Slot.Key, Slot.Value);
		}
	}
}

std::size_t FLodexSceneIndex::FPointerTable::SlotOf(const void* Key) const
{
	std::uint64_t Hash = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(Key));
	Hash ^= Hash >> 33;
	Hash *= 0xff51afd7ed558ccdULL;
	Hash ^= Hash >> 33;
	return static_cast<std::size_t>(Hash) & Mask;
}

std::uint32_t FLodexSceneIndex::FPointerTable::Find(const void* Key) const
{
	if (Slots.empty() || Key == nullptr)
	{
		return None;
	}
	for (std::size_t Index = SlotOf(Key);; Index = (Index + 1) & Mask)
	{
		if (Slots[Index].Key == Key)
		{
			return Slots[Index].Value;
		}
		if (Slots[Index].Key == nullptr)
		{
			return None;
		}
	}
}

std::uint32_t FLodexSceneIndex::FPointerTable::Insert(const void* Key, std::uint32_t Value)
{
	if ((Count + 1) * 2 > Slots.size())
	{
		Reserve(Slots.empty() ? 8 : Slots.size());
	}
	for (std::size_t Index = SlotOf(Key);; Index = (Index + 1) & Mask)
	{
		if (Slots[Index].Key == Key)
		{
			return Slots[Index].Value;
		}
		if (Slots[Index].Key == nullptr)
		{
			Slots[Index] = {Key, Value};
			++Count;
			return Value;
		}
	}
}

std::uint64_t FLodexSceneIndex::FTextTable::HashOf(std::string_view Text)
{
	std::uint64_t Hash = 0xcbf29ce484222325ULL;
	for (const char Char : Text)
	{
		Hash = (Hash ^ static_cast<unsigned char>(Char)) * 0x100000001b3ULL;
	}
	Hash ^= Hash >> 29;
	Hash *= 0xbf58476d1ce4e5b9ULL;
	return Hash ^ (Hash >> 32);
}

void FLodexSceneIndex::FTextTable::Reserve(std::size_t InCount)
{
	std::size_t Capacity = 16;
	while (Capacity < InCount * 2)
	{
		Capacity *= 2;
	}
	if (Capacity <= Slots.size())
	{
		return;
	}
	Slots.assign(Capacity, FSlot());
	Mask = Capacity - 1;
	for (std::uint32_t Id = 0; Id < Texts.size(); ++Id)
	{
		const std::uint64_t Hash = HashOf(Texts[Id]);
		std::size_t Index = static_cast<std::size_t>(Hash) & Mask;
		while (Slots[Index].Id != None)
		{
			Index = (Index + 1) & Mask;
		}
		Slots[Index] = {Id, static_cast<std::uint32_t>(Hash >> 32)};
	}
}

void FLodexSceneIndex::FTextTable::Grow()
{
	Reserve(Slots.empty() ? 8 : Slots.size());
}

std::uint32_t FLodexSceneIndex::FTextTable::Intern(std::string&& Text)
{
	if ((Texts.size() + 1) * 2 > Slots.size())
	{
		Grow();
	}
	const std::uint64_t Hash = HashOf(Text);
	const std::uint32_t Check = static_cast<std::uint32_t>(Hash >> 32);
	for (std::size_t Index = static_cast<std::size_t>(Hash) & Mask;; Index = (Index + 1) & Mask)
	{
		const FSlot& Slot = Slots[Index];
		if (Slot.Id == None)
		{
			const std::uint32_t Id = static_cast<std::uint32_t>(Texts.size());
			Texts.push_back(std::move(Text));
			Slots[Index] = {Id, Check};
			return Id;
		}
		if (Slot.Hash == Check && Texts[Slot.Id] == Text)
		{
			return Slot.Id;
		}
	}
}

std::uint32_t FLodexSceneIndex::FTextTable::Find(std::string_view Text) const
{
	if (Slots.empty())
	{
		return None;
	}
	const std::uint64_t Hash = HashOf(Text);
	const std::uint32_t Check = static_cast<std::uint32_t>(Hash >> 32);
	for (std::size_t Index = static_cast<std::size_t>(Hash) & Mask;; Index = (Index + 1) & Mask)
	{
		const FSlot& Slot = Slots[Index];
		if (Slot.Id == None)
		{
			return None;
		}
		if (Slot.Hash == Check && std::string_view(Texts[Slot.Id]) == Text)
		{
			return Slot.Id;
		}
	}
}

struct FLodexSceneIndex::FRawScene
{
	std::vector<FLodexObject> Objects;
	std::vector<std::uint8_t> IsNode;
	std::vector<std::uint32_t> Parents;
	std::vector<std::uint32_t> NameIds;
	std::vector<std::uint32_t> TagOffsets{0};
	std::vector<std::uint32_t> Tags;
	/** The loop each object is a member of, or none; and how many loops there are. */
	std::vector<std::uint32_t> Cycles;
	std::uint32_t CycleCount = 0;
	/** Document order: the raw index at each position, each raw index's position, the end of its subtree. */
	std::vector<std::uint32_t> Order;
	std::vector<std::uint32_t> PreOf;
	std::vector<std::uint32_t> Ends;

	std::uint32_t Count() const { return static_cast<std::uint32_t>(Objects.size()); }

	/** Lists an object that takes a step, once. */
	void Add(FPointerTable& IndexOfObject, FLodexObject Object, ELodexObjectKind Kind)
	{
		const std::uint32_t Index = Count();
		if (IndexOfObject.Insert(Object.Ptr, Index) != Index)
		{
			return;
		}
		Objects.push_back(Object);
		IsNode.push_back(Kind == ELodexObjectKind::Component ? 0 : 1);
	}
};

FLodexSceneIndex::FLodexSceneIndex(const ILodexObjectGraph& InGraph, const ILodexSceneObjects& SceneObjects)
	: Graph(&InGraph)
{
	FRawScene Raw;
	ListSteppingObjects(SceneObjects, Raw);
	ReadParentsNamesAndTags(Raw);
	FindLoops(Raw);
	OrderByDocument(Raw);
	StoreInDocumentOrder(Raw);
	GroupForLookups(Raw.CycleCount);
}

void FLodexSceneIndex::ListSteppingObjects(const ILodexSceneObjects& SceneObjects, FRawScene& Raw)
{
	// The objects that take a step, in the scene's order; objects reached only by a walk come after.
	std::vector<FLodexObject> Listed;
	SceneObjects.GetAllObjects(Listed);
	ListedIndexOfObject.Reserve(Listed.size());
	Raw.Objects.reserve(Listed.size());
	Raw.IsNode.reserve(Listed.size());
	for (const FLodexObject Object : Listed)
	{
		if (!Object)
		{
			continue;
		}
		const ELodexObjectKind Kind = ClassifyLodexObject(*Graph, Object);
		if (Kind != ELodexObjectKind::Other)
		{
			Raw.Add(ListedIndexOfObject, Object, Kind);
		}
	}
}

void FLodexSceneIndex::ReadParentsNamesAndTags(FRawScene& Raw)
{
	using namespace LodexSceneIndexPrivate;
	// The list grows while it is read when a walk meets an unlisted object.
	const ILodexObjectGraph& InGraph = *Graph;
	Raw.Parents.reserve(Raw.Objects.size());
	Raw.NameIds.reserve(Raw.Objects.size());
	Raw.TagOffsets.reserve(Raw.Objects.size() + 1);
	NameTexts.Reserve(Raw.Objects.size());
	std::vector<std::string> TagTextsOfObject;
	for (std::size_t Index = 0; Index < Raw.Objects.size(); ++Index)
	{
		const FLodexObject Object = Raw.Objects[Index];

		// The first object above that takes a step; objects of other kinds are passed through, and a
		// loop among them (Brent's detection) ends the walk.
		std::uint32_t Parent = NoIndex;
		FLodexObject Current = GetLodestringParent(InGraph, Object);
		FLodexObject Tortoise = Current;
		std::size_t Power = 1;
		std::size_t Lambda = 0;
		while (Current)
		{
			const std::uint32_t Known = ListedIndexOfObject.Find(Current.Ptr);
			if (Known != NoIndex)
			{
				Parent = Known;
				break;
			}
			const ELodexObjectKind Kind = ClassifyLodexObject(InGraph, Current);
			if (Kind != ELodexObjectKind::Other)
			{
				Parent = Raw.Count();
				Raw.Add(ListedIndexOfObject, Current, Kind);
				break;
			}
			Current = GetLodestringParent(InGraph, Current);
			if (Current == Tortoise)
			{
				break;
			}
			if (++Lambda == Power)
			{
				Tortoise = Current;
				Power *= 2;
				Lambda = 0;
			}
		}
		Raw.Parents.push_back(Parent);
		Raw.NameIds.push_back(NameTexts.Intern(InGraph.GetName(Object)));

		if (Raw.IsNode[Index] != 0)
		{
			TagTextsOfObject.clear();
			if (InGraph.GetTags(Object, TagTextsOfObject))
			{
				const std::size_t First = Raw.Tags.size();
				for (std::string& Tag : TagTextsOfObject)
				{
					const std::uint32_t TagId = TagTexts.Intern(std::move(Tag));
					if (std::find(Raw.Tags.begin() + static_cast<std::ptrdiff_t>(First), Raw.Tags.end(), TagId) ==
						Raw.Tags.end())
					{
						Raw.Tags.push_back(TagId);
					}
				}
			}
		}
		Raw.TagOffsets.push_back(static_cast<std::uint32_t>(Raw.Tags.size()));
	}
}

void FLodexSceneIndex::FindLoops(FRawScene& Raw)
{
	using namespace LodexSceneIndexPrivate;
	// Loops of a malformed graph: each walk is stamped with where it began; meeting the own stamp again closes a loop.
	const std::uint32_t Count = Raw.Count();
	Raw.Cycles.assign(Count, NoIndex);
	std::vector<std::uint32_t> Stamps(Count, NoIndex);
	for (std::uint32_t Start = 0; Start < Count; ++Start)
	{
		std::uint32_t At = Start;
		while (At != NoIndex && Stamps[At] == NoIndex)
		{
			Stamps[At] = Start;
			At = Raw.Parents[At];
		}
		if (At != NoIndex && Stamps[At] == Start)
		{
			std::uint32_t Member = At;
			do
			{
				Raw.Cycles[Member] = Raw.CycleCount;
				Member = Raw.Parents[Member];
			} while (Member != At);
			++Raw.CycleCount;
		}
	}
}

void FLodexSceneIndex::OrderByDocument(FRawScene& Raw)
{
	using namespace LodexSceneIndexPrivate;
	// A depth-first walk of the forest in which every loop is cut at its members.
	const std::uint32_t Count = Raw.Count();
	std::vector<std::uint32_t> CutParents(Raw.Parents);
	for (std::uint32_t Index = 0; Index < Count; ++Index)
	{
		if (Raw.Cycles[Index] != NoIndex)
		{
			CutParents[Index] = NoIndex;
		}
	}
	std::vector<std::uint32_t> ChildOffsets;
	std::vector<std::uint32_t> Children;
	GroupItemsByKey(Count, CutParents, ChildOffsets, Children);

	Raw.PreOf.assign(Count, NoIndex);
	Raw.Ends.assign(Count, 0);
	Raw.Order.reserve(Count);
	struct FFrame
	{
		std::uint32_t Index;
		std::uint32_t NextChild;
	};
	std::vector<FFrame> Stack;
	for (std::uint32_t Root = 0; Root < Count; ++Root)
	{
		if (CutParents[Root] != NoIndex)
		{
			continue;
		}
		Raw.PreOf[Root] = static_cast<std::uint32_t>(Raw.Order.size());
		Raw.Order.push_back(Root);
		Stack.push_back({Root, ChildOffsets[Root]});
		while (!Stack.empty())
		{
			FFrame& Top = Stack.back();
			if (Top.NextChild < ChildOffsets[Top.Index + 1])
			{
				const std::uint32_t Child = Children[Top.NextChild++];
				Raw.PreOf[Child] = static_cast<std::uint32_t>(Raw.Order.size());
				Raw.Order.push_back(Child);
				Stack.push_back({Child, ChildOffsets[Child]});
			}
			else
			{
				Raw.Ends[Top.Index] = static_cast<std::uint32_t>(Raw.Order.size());
				Stack.pop_back();
			}
		}
	}
}

void FLodexSceneIndex::StoreInDocumentOrder(const FRawScene& Raw)
{
	using namespace LodexSceneIndexPrivate;
	const std::uint32_t Count = Raw.Count();
	DocumentIndexOfListed = Raw.PreOf;
	Objects.resize(Count);
	bIsNode.resize(Count);
	Parents.resize(Count);
	SubtreeEnds.resize(Count);
	Cycles.resize(Count);
	NameIds.resize(Count);
	TagOffsets.assign(static_cast<std::size_t>(Count) + 1, 0);
	Tags.reserve(Raw.Tags.size());
	for (std::uint32_t Pre = 0; Pre < Count; ++Pre)
	{
		const std::uint32_t Index = Raw.Order[Pre];
		Objects[Pre] = Raw.Objects[Index];
		bIsNode[Pre] = Raw.IsNode[Index];
		Parents[Pre] = Raw.Parents[Index] == NoIndex ? NoIndex : Raw.PreOf[Raw.Parents[Index]];
		SubtreeEnds[Pre] = Raw.Ends[Index];
		Cycles[Pre] = Raw.Cycles[Index];
		NameIds[Pre] = Raw.NameIds[Index];
		Tags.insert(Tags.end(), Raw.Tags.begin() + Raw.TagOffsets[Index], Raw.Tags.begin() + Raw.TagOffsets[Index + 1]);
		TagOffsets[Pre + 1] = static_cast<std::uint32_t>(Tags.size());
	}
}

void FLodexSceneIndex::GroupForLookups(std::uint32_t CycleCount)
{
	using namespace LodexSceneIndexPrivate;
	const std::uint32_t Count = static_cast<std::uint32_t>(Objects.size());
	GroupItemsByKey(CycleCount, Cycles, CycleOffsets, CycleMembers);

	std::vector<std::uint32_t> Keys(Count, NoIndex);
	for (std::uint32_t Pre = 0; Pre < Count; ++Pre)
	{
		Keys[Pre] = bIsNode[Pre] != 0 ? Parents[Pre] : NoIndex;
	}
	GroupItemsByKey(Count, Keys, NodeChildOffsets, NodeChildren);
	for (std::uint32_t Pre = 0; Pre < Count; ++Pre)
	{
		Keys[Pre] = bIsNode[Pre] == 0 ? Parents[Pre] : NoIndex;
	}
	GroupItemsByKey(Count, Keys, ComponentChildOffsets, ComponentChildren);

	for (std::uint32_t Pre = 0; Pre < Count; ++Pre)
	{
		if (IsRoot(Pre))
		{
			(bIsNode[Pre] != 0 ? NodeRoots : ComponentRoots).push_back(Pre);
		}
	}

	for (std::uint32_t Pre = 0; Pre < Count; ++Pre)
	{
		Keys[Pre] = bIsNode[Pre] != 0 ? NameIds[Pre] : NoIndex;
	}
	GroupItemsByKey(NumNames(), Keys, NodesByNameOffsets, NodesByName);
	for (std::uint32_t Pre = 0; Pre < Count; ++Pre)
	{
		Keys[Pre] = bIsNode[Pre] == 0 ? NameIds[Pre] : NoIndex;
	}
	GroupItemsByKey(NumNames(), Keys, ComponentsByNameOffsets, ComponentsByName);

	// Tags: several keys an object, so grouped by hand; objects ascend within each tag.
	NodesByTagOffsets.assign(static_cast<std::size_t>(NumTags()) + 1, 0);
	for (const std::uint32_t Tag : Tags)
	{
		++NodesByTagOffsets[Tag + 1];
	}
	for (std::size_t Tag = 1; Tag < NodesByTagOffsets.size(); ++Tag)
	{
		NodesByTagOffsets[Tag] += NodesByTagOffsets[Tag - 1];
	}
	NodesByTag.resize(Tags.size());
	std::vector<std::uint32_t> Cursor(NodesByTagOffsets.begin(), NodesByTagOffsets.end() - 1);
	for (std::uint32_t Pre = 0; Pre < Count; ++Pre)
	{
		for (std::uint32_t Slot = TagOffsets[Pre]; Slot < TagOffsets[Pre + 1]; ++Slot)
		{
			NodesByTag[Cursor[Tags[Slot]]++] = Pre;
		}
	}
}

FLodexIndexRange FLodexSceneIndex::MakeRange(const std::vector<std::uint32_t>& Items)
{
	return {Items.data(), Items.data() + Items.size()};
}

FLodexIndexRange FLodexSceneIndex::MakeRange(
	const std::vector<std::uint32_t>& Offsets, const std::vector<std::uint32_t>& Items, std::uint32_t Key)
{
	if (Key == None || static_cast<std::size_t>(Key) + 1 >= Offsets.size())
	{
		return {};
	}
	return {Items.data() + Offsets[Key], Items.data() + Offsets[Key + 1]};
}

std::uint32_t FLodexSceneIndex::FindIndex(FLodexObject Object) const
{
	const std::uint32_t Listed = ListedIndexOfObject.Find(Object.Ptr);
	return Listed == None ? None : DocumentIndexOfListed[Listed];
}

FLodexIndexRange FLodexSceneIndex::GetCycleMembers(std::uint32_t Cycle) const
{
	return MakeRange(CycleOffsets, CycleMembers, Cycle);
}

FLodexIndexRange FLodexSceneIndex::GetNodeChildren(std::uint32_t Index) const
{
	return MakeRange(NodeChildOffsets, NodeChildren, Index);
}

FLodexIndexRange FLodexSceneIndex::GetComponentChildren(std::uint32_t Index) const
{
	return MakeRange(ComponentChildOffsets, ComponentChildren, Index);
}

FLodexIndexRange FLodexSceneIndex::GetTagIds(std::uint32_t Index) const
{
	return MakeRange(TagOffsets, Tags, Index);
}

std::uint32_t FLodexSceneIndex::FindNameId(std::string_view Name) const
{
	return NameTexts.Find(Name);
}

std::uint32_t FLodexSceneIndex::FindTagId(std::string_view Tag) const
{
	return TagTexts.Find(Tag);
}

FLodexIndexRange FLodexSceneIndex::GetNodesNamed(std::uint32_t NameId) const
{
	return MakeRange(NodesByNameOffsets, NodesByName, NameId);
}

FLodexIndexRange FLodexSceneIndex::GetComponentsNamed(std::uint32_t NameId) const
{
	return MakeRange(ComponentsByNameOffsets, ComponentsByName, NameId);
}

FLodexIndexRange FLodexSceneIndex::GetNodesTagged(std::uint32_t TagId) const
{
	return MakeRange(NodesByTagOffsets, NodesByTag, TagId);
}

std::string FLodexSceneIndex::GetAbsoluteLodestring(std::uint32_t Index) const
{
	return BuildLodestring(*Graph, Objects[Index], LodestringModes::Absolute);
}
