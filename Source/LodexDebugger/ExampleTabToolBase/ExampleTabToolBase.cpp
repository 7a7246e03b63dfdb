// Copyright Lodex contributors.
#include "ExampleTabToolBase.h"

#include "Framework/Docking/TabManager.h"
#include "Framework/Docking/WorkspaceItem.h"
#include "Framework/MultiBox/MultiBoxBuilder.h"
#include "LodexDebugger/Interop/LodexInterop.h"
#include "Widgets/Docking/SDockTab.h"

class ExampleTabToolBase::FTabToolCalls final : public ILodexTabTool
{
public:
	explicit FTabToolCalls(ExampleTabToolBase& InTool)
		: Tool(InTool)
	{
	}

	//~ Begin ILodexTabTool Interface
	virtual void Initialize() override { Tool.Initialize(); }

	virtual void RegisterNomadTabSpawner(const char* GroupName) override
	{
		// GroupName names the module's MenuRoot, the one group every spawner of the module goes in. The spawner is
		// bound to the tool by a shared reference's weak side: once the tool is gone it spawns nothing.
		FGlobalTabmanager::Get()
			->RegisterNomadTabSpawner(
				Tool.TabName, FOnSpawnTab::CreateSP(Tool.AsShared(), &ExampleTabToolBase::SpawnTab))
			.SetGroup(Tool.Menus.MenuRoot)
			.SetDisplayName(Tool.TabDisplayName)
			.SetTooltipText(Tool.ToolTipText);
	}

	virtual void UnregisterNomadTabSpawner() override
	{
		FGlobalTabmanager::Get()->UnregisterNomadTabSpawner(Tool.TabName);
	}

	virtual void AddMenuExtension(const char* Hook, ELodexExtensionPosition Position) override
	{
		Tool.Menus.AddMenuExtension(
			FMenuExtensionDelegate::CreateSP(Tool.AsShared(), &ExampleTabToolBase::MakeMenuEntry),
			LodexInterop::ToName(Hook), nullptr, LodexInterop::ToExtensionHookPosition(Position));
	}
	//~ End ILodexTabTool Interface

private:
	ExampleTabToolBase& Tool;
};

void ExampleTabToolBase::OnStartupModule()
{
	FTabToolCalls Calls(*this);
	StartLodexTabToolBase(Calls);
}

void ExampleTabToolBase::OnShutdownModule()
{
	FTabToolCalls Calls(*this);
	StopLodexTabTool(Calls);
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
	if (const FLodexTabInfo* Tab = GetLodexListener(Listener).Tab)
	{
		TabName = LodexInterop::ToName(Tab->TabName);
		TabDisplayName = LodexInterop::ToText(Tab->DisplayName);
		ToolTipText = LodexInterop::ToText(Tab->ToolTip);
	}
}

void ExampleTabToolBase::AddMenuEntryFromTabTable(ELodexListener Listener)
{
	if (const FLodexTabInfo* Tab = GetLodexListener(Listener).Tab)
	{
		FTabToolCalls Calls(*this);
		AddLodexTabMenuEntry(Calls, *Tab);
	}
}
