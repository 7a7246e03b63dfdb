// Copyright Lodex contributors.
#include "TabTool.h"

#include "Framework/Docking/TabManager.h"
#include "Widgets/Docking/SDockTab.h"
#include "TabToolPanel.h"

void TabTool::OnStartupModule()
{
	ExampleTabToolBase::OnStartupModule();
	AddMenuEntryFromTabTable(ELodexListener::TabTool);
}

void TabTool::Initialize()
{
	InitializeFromTabTable(ELodexListener::TabTool);
}

TSharedRef<SDockTab> TabTool::SpawnTab(const FSpawnTabArgs& TabSpawnArgs)
{
	return SNew(SDockTab).TabRole(ETabRole::NomadTab)[SNew(TabToolPanel).Tool(SharedThis(this))];
}
