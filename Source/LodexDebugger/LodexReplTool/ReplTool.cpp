// Copyright Lodex contributors.
#include "ReplTool.h"

#include "Framework/Docking/TabManager.h"
#include "Widgets/Docking/SDockTab.h"
#include "debugPanel.h"

void ReplTool::OnStartupModule()
{
	StartupWithMenuEntry();
}

void ReplTool::Initialize()
{
	InitializeFromTabTable(ELodexListener::ReplTool);
}

TSharedRef<SDockTab> ReplTool::SpawnTab(const FSpawnTabArgs& TabSpawnArgs)
{
	// The tool's own panel takes the example panel's place when it is built.
	return SNew(SDockTab).TabRole(ETabRole::NomadTab)[SNew(debugPanel).Tool(SharedThis(this))];
}
