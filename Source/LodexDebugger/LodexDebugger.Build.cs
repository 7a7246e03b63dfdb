// Copyright Lodex contributors.
using UnrealBuildTool;

public class LodexDebugger : ModuleRules
{
	public LodexDebugger(ReadOnlyTargetRules Target) : base(Target)
	{
		PCHUsage = PCHUsageMode.UseExplicitOrSharedPCHs;

		// The platform-free core (Core/) is written without exceptions and RTTI; keep the module so.
		bUseRTTI = false;
		bEnableExceptions = false;

		PublicDependencyModuleNames.AddRange(new string[]
		{
			"Core",
			"CoreUObject",
			"Engine",
		});

		PrivateDependencyModuleNames.AddRange(new string[]
		{
			"ApplicationCore",
			"InputCore",
			"Slate",
			"SlateCore",
			"EditorStyle",
			"UnrealEd",
			"LevelEditor",
			"ToolMenus",
			"Projects",
			"Kismet",
			"SubobjectEditor",
			"SubobjectDataInterface",
			"UMG",
			"HeadMountedDisplay",
			"DesktopPlatform",
			"Settings",
			"PropertyEditor",
			"UnrealCLR",
		});
	}
}
