// Copyright Lodex contributors.
#pragma once

#include "CoreMinimal.h"
#include "Styling/SlateStyle.h"

#include "LodexDebugger/Core/Shell/LodexStyle.h"

/**
 * The module's style set "VELTStyle": the panels' text styles and the recorder's icons. The first panel made calls
 * Initialize(); nothing in the module calls Shutdown(), so the set stays registered until the process ends.
 */
class VELTStyle
{
public:
	/** Creates and registers the style set, once. */
	static void Initialize();

	/** Unregisters and releases the style set. */
	static void Shutdown();

	static const ISlateStyle& Get();

	static FName GetStyleSetName();

private:
	friend class FVELTStyleHost;

	static TSharedPtr<FSlateStyleSet> StyleInstance;
	static FLodexStyleSet StyleLife;
};
