// Copyright Lodex contributors.
#pragma once

#include "LodexDebugger/Core/Paths/PathCommands.h"

#include <utility>
#include <vector>

/** An actor selection held as a list, in selection order. */
class FListSelection final : public ILodexActorSelection
{
public:
	explicit FListSelection(std::vector<FLodexObject> InObjects)
		: Objects(std::move(InObjects))
	{
	}

	std::size_t Num() const override { return Objects.size(); }
	FLodexObject GetSelectedObject(std::size_t Index) const override { return Objects[Index]; }

private:
	std::vector<FLodexObject> Objects;
};
