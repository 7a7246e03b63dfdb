// Copyright Lodex contributors.
#include "VELTStyle.h"

#include "Brushes/SlateImageBrush.h"
#include "LodexDebugger/Interop/LodexInterop.h"
#include "Misc/Paths.h"
#include "Styling/CoreStyle.h"
#include "Styling/SlateStyleRegistry.h"
#include "Styling/SlateTypes.h"

/** The engine calls that make, register and release the style set. */
class FVELTStyleHost final : public ILodexStyleHost
{
public:
	//~ Begin ILodexStyleHost Interface
	virtual std::string GetFullProjectPluginsDir() const override
	{
		return LodexInterop::ToUtf8(FPaths::ConvertRelativePathToFull(FPaths::ProjectPluginsDir()));
	}

	virtual void CreateStyleSet(const char* Name) override
	{
		VELTStyle::StyleInstance = MakeShareable(new FSlateStyleSet(LodexInterop::ToName(Name)));
	}

	virtual void SetContentRoot(const std::string& ContentRoot) override
	{
		VELTStyle::StyleInstance->SetContentRoot(LodexInterop::FromUtf8(ContentRoot));
	}

	virtual void AddTextStyle(const FLodexTextStyleInfo& Style) override
	{
		const FTextBlockStyle TextStyle =
			FTextBlockStyle()
				.SetFont(FCoreStyle::GetDefaultFontStyle(LodexInterop::ToName(Style.Typeface), Style.FontSize))
				.SetColorAndOpacity(LodexInterop::ToSlateColor(Style.Color))
				.SetShadowOffset(LodexInterop::ToVector2D(Style.ShadowOffset))
				.SetShadowColorAndOpacity(LodexInterop::ToLinearColor(Style.ShadowColor))
				.SetHighlightColor(LodexInterop::ToSlateColor(Style.HighlightColor));
		VELTStyle::StyleInstance->Set(LodexInterop::ToName(Style.Name), TextStyle);
	}

	virtual void AddImageBrush(const FLodexBrushInfo& Brush, const std::string& FilePath) override
	{
		VELTStyle::StyleInstance->Set(LodexInterop::ToName(Brush.Name),
			new FSlateImageBrush(LodexInterop::FromUtf8(FilePath), FVector2D(Brush.Width, Brush.Height),
				LodexInterop::ToLinearColor(LodexBrushTint), ESlateBrushTileType::NoTile,
				ESlateBrushImageType::FullColor));
	}

	virtual void RegisterStyleSet() override { FSlateStyleRegistry::RegisterSlateStyle(*VELTStyle::StyleInstance); }

	virtual void UnregisterStyleSet() override { FSlateStyleRegistry::UnRegisterSlateStyle(*VELTStyle::StyleInstance); }

	virtual bool IsStyleInstanceUnique() const override { return VELTStyle::StyleInstance.IsUnique(); }

	virtual void ReportEnsureFailure(const char* Expression) override
	{
		// The engine's ensure reports its own expression text, which is the one the core names.
		TSharedPtr<FSlateStyleSet>& StyleInstance = VELTStyle::StyleInstance;
		ensure(StyleInstance.IsUnique());
	}

	virtual void ReleaseStyleSet() override { VELTStyle::StyleInstance.Reset(); }
	//~ End ILodexStyleHost Interface
};

TSharedPtr<FSlateStyleSet> VELTStyle::StyleInstance = nullptr;
FLodexStyleSet VELTStyle::StyleLife;

void VELTStyle::Initialize()
{
	FVELTStyleHost Host;
	StyleLife.Initialize(Host);
}

void VELTStyle::Shutdown()
{
	FVELTStyleHost Host;
	StyleLife.Shutdown(Host);
}

const ISlateStyle& VELTStyle::Get()
{
	return *StyleInstance;
}

FName VELTStyle::GetStyleSetName()
{
	static FName StyleSetName(LodexInterop::ToName(FLodexStyleSet::GetStyleSetName()));
	return StyleSetName;
}
