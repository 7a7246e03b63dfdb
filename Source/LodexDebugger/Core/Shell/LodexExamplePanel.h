// Copyright Lodex contributors.
#pragma once

#include "LodexStyle.h"

/** The fixed widget tree of the example debug panel (`debugPanel`): scroll box, border, text. */
struct FLodexExamplePanelInfo
{
	/** Padding of the scroll box's one slot, on every side. */
	float ScrollSlotPadding;
	/** The border's background colour: 8-bit opaque grey. */
	FLodexStyleColor BorderColor;
	/** The border's content padding, on every side. */
	float BorderPadding;
	const char* Text;
};

const FLodexExamplePanelInfo& GetLodexExamplePanel();
