// Copyright Lodex contributors.
#include "TabTool.h"

#include "Framework/Docking/TabManager.h"
#include "Widgets/Docking/SDockTab.h"
#include "debugPanel.h"

void TabTool::OnStartupModule()
{
	StartupWithMenuEntry();
}

void TabTool::Initialize()
{
	InitializeFromTabTable(ELodexListener::TabTool);
}

TSharedRef<SDockTab> TabTool::SpawnTab(const FSpawnTabArgs& TabSpawnArgs)
{
	// The tool's own panel takes the example panel's place when it is built.
	return SNew(SDockTab).TabRole(ETabRole::NomadTab)[SNew(debugPanel).Tool(SharedThis(this))];
}
