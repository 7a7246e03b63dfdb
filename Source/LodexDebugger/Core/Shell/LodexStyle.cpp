// Copyright Lodex contributors.
#include "LodexStyle.h"

namespace LodexStylePrivate
{
	constexpr FLodexStyleColor Foreground{ELodexColorKind::UseForeground, 0.0f, 0.0f, 0.0f, 0.0f};
	constexpr FLodexStyleColor Black{ELodexColorKind::Linear, 0.0f, 0.0f, 0.0f, 1.0f};
	constexpr FLodexStyleColor Yellow{ELodexColorKind::Linear, 1.0f, 1.0f, 0.0f, 1.0f};
	constexpr FLodexStyleColor Highlight{ELodexColorKind::Linear, 1.0f, 0.9f, 0.0f, 1.0f};
	constexpr FLodexStyleColor OpaqueRed{ELodexColorKind::Color8, 255.0f, 0.0f, 0.0f, 255.0f};
	constexpr FLodexStyleColor OpaqueWhite{ELodexColorKind::Color8, 255.0f, 255.0f, 255.0f, 255.0f};
	constexpr const char* Typeface = "Roboto";

	bool IsPathSeparator(char Char)
	{
		return Char == '/' || Char == '\\';
	}
}

const std::vector<FLodexTextStyleInfo>& GetLodexTextStyles()
{
	using namespace LodexStylePrivate;
	// "VELT.Bold" is "VELT.Highlight" under another name: same typeface, no bold face.
	static const std::vector<FLodexTextStyleInfo> Styles{
		{"Regular", Typeface, 12, Foreground, {0.0f, 0.0f}, Black, Highlight},
		{"VELT.Error", Typeface, 14, OpaqueRed, {0.0f, 0.0f}, Black, Highlight},
		{"VELT.Highlight", Typeface, 14, OpaqueWhite, {0.0f, -1.0f}, Yellow, Highlight},
		{"VELT.Bold", Typeface, 14, OpaqueWhite, {0.0f, -1.0f}, Yellow, Highlight},
	};
	return Styles;
}

const std::vector<FLodexBrushInfo>& GetLodexBrushes()
{
	static const std::vector<FLodexBrushInfo> Brushes{
		{"Icons.Record", "Resources/Record_icon", ".png", 16.0f, 16.0f},
		{"Icons.Download", "Resources/Download_icon", ".png", 16.0f, 16.0f},
		{"Icons.Stop", "Resources/Stop_icon", ".png", 16.0f, 16.0f},
		{"Icons.Info", "Resources/Info_icon", ".png", 16.0f, 16.0f},
		{"Icons.Reset", "Resources/Reset_icon", ".png", 16.0f, 16.0f},
	};
	return Brushes;
}

const FLodexTextStyleInfo* FindLodexTextStyle(const std::string& Name)
{
	for (const FLodexTextStyleInfo& Style : GetLodexTextStyles())
	{
		if (Name == Style.Name)
		{
			return &Style;
		}
	}
	return nullptr;
}

const FLodexBrushInfo* FindLodexBrush(const std::string& Name)
{
	for (const FLodexBrushInfo& Brush : GetLodexBrushes())
	{
		if (Name == Brush.Name)
		{
			return &Brush;
		}
	}
	return nullptr;
}

std::string LodexPathAppend(const std::string& Left, const std::string& Right)
{
	using namespace LodexStylePrivate;
	std::string Result = Left;
	const bool bLeftEndsInSeparator = !Left.empty() && IsPathSeparator(Left.back());
	if (Right.empty())
	{
		if (!Left.empty() && !bLeftEndsInSeparator)
		{
			Result += '/';
		}
		return Result;
	}
	if (!Left.empty() && !bLeftEndsInSeparator && Right.front() != '/')
	{
		Result += '/';
	}
	Result += Right;
	return Result;
}

std::string MakeLodexStyleContentRoot(const std::string& FullProjectPluginsDir)
{
	return FullProjectPluginsDir + LodexPluginFolderName;
}

std::string LodexRootToContentDir(
	const std::string& ContentRoot, const std::string& RelativePath, const std::string& Extension)
{
	return LodexPathAppend(ContentRoot, RelativePath) + Extension;
}

std::string GetLodexBrushFilePath(const std::string& ContentRoot, const FLodexBrushInfo& Brush)
{
	return LodexRootToContentDir(ContentRoot, Brush.RelativePath, Brush.Extension);
}

bool FLodexStyleSet::Initialize(ILodexStyleHost& Host)
{
	if (bHasInstance)
	{
		return false;
	}
	const std::string ContentRoot = MakeLodexStyleContentRoot(Host.GetFullProjectPluginsDir());
	Host.CreateStyleSet(LodexStyleSetName);
	Host.SetContentRoot(ContentRoot);
	for (const FLodexTextStyleInfo& Style : GetLodexTextStyles())
	{
		Host.AddTextStyle(Style);
	}
	for (const FLodexBrushInfo& Brush : GetLodexBrushes())
	{
		Host.AddImageBrush(Brush, GetLodexBrushFilePath(ContentRoot, Brush));
	}
	Host.RegisterStyleSet();
	bHasInstance = true;
	return true;
}

void FLodexStyleSet::Shutdown(ILodexStyleHost& Host)
{
	if (!bHasInstance)
	{
		return;
	}
	Host.UnregisterStyleSet();
	if (!Host.IsStyleInstanceUnique())
	{
		Host.ReportEnsureFailure(LodexStyleUniqueEnsure);
	}
	Host.ReleaseStyleSet();
	bHasInstance = false;
}
