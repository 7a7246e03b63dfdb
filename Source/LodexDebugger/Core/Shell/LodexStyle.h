// Copyright Lodex contributors.
#pragma once

#include <string>
#include <vector>

/** How a style colour is given, so that the adapter makes the engine value the same way. */
enum class ELodexColorKind
{
	/** The widget's foreground colour (`FSlateColor::UseForeground`); the components are unused. */
	UseForeground,
	/** An 8-bit colour (`FColor`), components 0 to 255. */
	Color8,
	/** A linear colour (`FLinearColor`), components 0 to 1. */
	Linear,
};

struct FLodexStyleColor
{
	ELodexColorKind Kind;
	float R;
	float G;
	float B;
	float A;
};

struct FLodexVector2
{
	float X;
	float Y;
};

/** The name of the module's style set, which is also what `GetStyleSetName` returns. */
inline constexpr const char* LodexStyleSetName = "VELTStyle";

/** The plug-in folder under the project's plugins folder that carries the module. */
inline constexpr const char* LodexPluginFolderName = "UnrealCLR";

/** One text style: a copy of the base style ("Regular") with the row's values. */
struct FLodexTextStyleInfo
{
	const char* Name;
	/** The typeface name handed to `FCoreStyle::GetDefaultFontStyle`. */
	const char* Typeface;
	int FontSize;
	FLodexStyleColor Color;
	FLodexVector2 ShadowOffset;
	FLodexStyleColor ShadowColor;
	FLodexStyleColor HighlightColor;
};

/** One image brush: a file under the content root, 16 by 16, white tint, no tiling, full colour. */
struct FLodexBrushInfo
{
	const char* Name;
	/** The file's path relative to the content root, without its extension. */
	const char* RelativePath;
	const char* Extension;
	float Width;
	float Height;
};

/** The brushes' tint: white, (1, 1, 1, 1). */
inline constexpr FLodexStyleColor LodexBrushTint{ELodexColorKind::Linear, 1.0f, 1.0f, 1.0f, 1.0f};

/** The four text styles, in the order they are added: "Regular" (the base), then the three derived ones. */
const std::vector<FLodexTextStyleInfo>& GetLodexTextStyles();

/** The five icon brushes, in the order they are added. */
const std::vector<FLodexBrushInfo>& GetLodexBrushes();

const FLodexTextStyleInfo* FindLodexTextStyle(const std::string& Name);
const FLodexBrushInfo* FindLodexBrush(const std::string& Name);

/**
 * Joins two paths as the engine's `FString` operator `/` does: a "/" goes between them unless the left
 * is empty or ends in "/" or "\", or the right starts with "/"; an empty right adds a trailing "/" to a
 * non-empty left that lacks one.
 */
std::string LodexPathAppend(const std::string& Left, const std::string& Right);

/**
 * The style set's content root: the full path of the project's plugins folder (which ends in "/"),
 * followed directly by "UnrealCLR".
 */
std::string MakeLodexStyleContentRoot(const std::string& FullProjectPluginsDir);

/** `RootToContentDir(RelativePath, Extension)`: the content root joined with the path, then the extension. */
std::string LodexRootToContentDir(
	const std::string& ContentRoot, const std::string& RelativePath, const std::string& Extension);

/** The full file path of a brush's image under the content root. */
std::string GetLodexBrushFilePath(const std::string& ContentRoot, const FLodexBrushInfo& Brush);

/** The engine calls that make, register and release the style set. */
class ILodexStyleHost
{
public:
	virtual ~ILodexStyleHost() = default;

	/** The full path (`ConvertRelativePathToFull`) of `FPaths::ProjectPluginsDir()`. */
	virtual std::string GetFullProjectPluginsDir() const = 0;
	/** Constructs the style set under the name and holds it as the process-wide instance. */
	virtual void CreateStyleSet(const char* Name) = 0;
	virtual void SetContentRoot(const std::string& ContentRoot) = 0;
	virtual void AddTextStyle(const FLodexTextStyleInfo& Style) = 0;
	/** Adds an image brush whose image file is the given full path. */
	virtual void AddImageBrush(const FLodexBrushInfo& Brush, const std::string& FilePath) = 0;
	/** `FSlateStyleRegistry::RegisterSlateStyle` on the instance. */
	virtual void RegisterStyleSet() = 0;
	/** `FSlateStyleRegistry::UnRegisterSlateStyle` on the instance. */
	virtual void UnregisterStyleSet() = 0;
	/** Whether nothing but the process-wide holder keeps the instance. */
	virtual bool IsStyleInstanceUnique() const = 0;
	/** Raises the engine's non-fatal ensure with the expression's text. */
	virtual void ReportEnsureFailure(const char* Expression) = 0;
	/** Drops the process-wide holder's reference. */
	virtual void ReleaseStyleSet() = 0;
};

/** The text of the ensure that Shutdown raises when another holder still keeps the instance. */
inline constexpr const char* LodexStyleUniqueEnsure = "StyleInstance.IsUnique()";

/** The style set's once-only life: created and registered by the first Initialize, released by Shutdown. */
class FLodexStyleSet
{
public:
	/**
	 * When no instance exists: creates it (name, content root, the four text styles, the five brushes, in
	 * table order) and registers it. Returns whether this call created it.
	 */
	bool Initialize(ILodexStyleHost& Host);

	/**
	 * Unregisters the instance, raises the "StyleInstance.IsUnique()" ensure when another holder keeps
	 * it, and releases it. Does nothing when there is no instance. The module never calls it.
	 */
	void Shutdown(ILodexStyleHost& Host);

	bool HasInstance() const { return bHasInstance; }

	static const char* GetStyleSetName() { return LodexStyleSetName; }

private:
	bool bHasInstance = false;
};
