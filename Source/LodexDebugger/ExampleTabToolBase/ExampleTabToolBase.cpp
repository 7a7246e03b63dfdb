// Copyright Lodex contributors.
#include "ExampleTabToolBase.h"

#include "Framework/Docking/TabManager.h"
#include "Framework/Docking/WorkspaceItem.h"
#include "Framework/MultiBox/MultiBoxBuilder.h"
#include "LodexDebugger.h"
#include "LodexInterop.h"
#include "Widgets/Docking/SDockTab.h"

/** The editor calls of a tab tool: the global tab manager and the module's menu extension service. */
class FLodexTabToolHost final : public ILodexTabHost
{
public:
	explicit FLodexTabToolHost(ExampleTabToolBase& InTool)
		: Tool(InTool)
	{
	}

	//~ Begin ILodexTabHost Interface
	virtual void RegisterNomadTabSpawner(const FLodexTabInfo& Tab, const char* GroupName) override
	{
		// GroupName names the module's MenuRoot, the one group every spawner of the module goes in.
		FGlobalTabmanager::Get()
			->RegisterNomadTabSpawner(LodexInterop::ToName(Tab.TabName),
				FOnSpawnTab::CreateSP(Tool.AsShared(), &ExampleTabToolBase::SpawnTab))
			.SetGroup(FLodexDebugger::Get().GetMenuRoot())
			.SetDisplayName(LodexInterop::ToText(Tab.DisplayName))
			.SetTooltipText(LodexInterop::ToText(Tab.ToolTip));
	}

	virtual void UnregisterNomadTabSpawner(const char* TabName) override
	{
		FGlobalTabmanager::Get()->UnregisterNomadTabSpawner(LodexInterop::ToName(TabName));
	}

	virtual void AddMenuExtension(const char* Hook, ELodexExtensionPosition Position, const FLodexTabInfo& Tab) override
	{
		FLodexDebugger::Get().AddMenuExtension(
			FMenuExtensionDelegate::CreateSP(Tool.AsShared(), &ExampleTabToolBase::MakeMenuEntry),
			LodexInterop::ToName(Hook), nullptr, LodexInterop::ToExtensionHookPosition(Position));
	}
	//~ End ILodexTabHost Interface

private:
	ExampleTabToolBase& Tool;
};

void ExampleTabToolBase::OnStartupModule()
{
	Initialize();
	if (TabInfo)
	{
		FLodexTabToolHost Host(*this);
		RegisterLodexTabSpawner(Host, *TabInfo);
	}
}

void ExampleTabToolBase::OnShutdownModule()
{
	if (TabInfo)
	{
		FLodexTabToolHost Host(*this);
		StopLodexTabTool(Host, *TabInfo);
	}
}

void ExampleTabToolBase::Initialize() {}

TSharedRef<SDockTab> ExampleTabToolBase::SpawnTab(const FSpawnTabArgs& TabSpawnArgs)
{
	return SNew(SDockTab);
}

void ExampleTabToolBase::MakeMenuEntry(FMenuBuilder& MenuBuilder)
{
	FGlobalTabmanager::Get()->PopulateTabSpawnerMenu(MenuBuilder, TabName);
}

void ExampleTabToolBase::InitializeFromTabTable(ELodexListener Listener)
{
	TabInfo = GetLodexListener(Listener).Tab;
	if (TabInfo)
	{
		TabName = LodexInterop::ToName(TabInfo->TabName);
		TabDisplayName = LodexInterop::ToText(TabInfo->DisplayName);
		ToolTipText = LodexInterop::ToText(TabInfo->ToolTip);
	}
}

void ExampleTabToolBase::StartupWithMenuEntry()
{
	Initialize();
	if (TabInfo)
	{
		FLodexTabToolHost Host(*this);
		StartLodexTabTool(Host, *TabInfo);
	}
}
