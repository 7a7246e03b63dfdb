// Copyright Lodex contributors.
#include "ReplTool.h"

#include "Framework/Docking/TabManager.h"
#include "Widgets/Docking/SDockTab.h"
#include "ReplToolPanel.h"

void ReplTool::OnStartupModule()
{
	ExampleTabToolBase::OnStartupModule();
	AddMenuEntryFromTabTable(ELodexListener::ReplTool);
}

void ReplTool::Initialize()
{
	InitializeFromTabTable(ELodexListener::ReplTool);
}

TSharedRef<SDockTab> ReplTool::SpawnTab(const FSpawnTabArgs& TabSpawnArgs)
{
	return SNew(SDockTab).TabRole(ETabRole::NomadTab)[SNew(ReplToolPanel).Tool(SharedThis(this))];
}
