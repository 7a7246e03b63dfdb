// Copyright Lodex contributors.
#include "RecorderTool.h"

#include "Framework/Docking/TabManager.h"
#include "Widgets/Docking/SDockTab.h"
#include "debugPanel.h"

void RecorderTool::OnStartupModule()
{
	StartupWithMenuEntry();
}

void RecorderTool::Initialize()
{
	InitializeFromTabTable(ELodexListener::RecorderTool);
}

TSharedRef<SDockTab> RecorderTool::SpawnTab(const FSpawnTabArgs& TabSpawnArgs)
{
	// The tool's own panel takes the example panel's place when it is built.
	return SNew(SDockTab).TabRole(ETabRole::NomadTab)[SNew(debugPanel).Tool(SharedThis(this))];
}
