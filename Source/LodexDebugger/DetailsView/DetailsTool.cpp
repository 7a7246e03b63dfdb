// Copyright Lodex contributors.
#include "DetailsTool.h"

#include "Framework/Docking/TabManager.h"
#include "Widgets/Docking/SDockTab.h"
#include "debugPanel.h"

void DetailsTool::OnStartupModule()
{
	StartupWithMenuEntry();
}

void DetailsTool::Initialize()
{
	InitializeFromTabTable(ELodexListener::DetailsTool);
}

TSharedRef<SDockTab> DetailsTool::SpawnTab(const FSpawnTabArgs& TabSpawnArgs)
{
	// The tool's own panel takes the example panel's place when it is built.
	return SNew(SDockTab).TabRole(ETabRole::NomadTab)[SNew(debugPanel).Tool(SharedThis(this))];
}
