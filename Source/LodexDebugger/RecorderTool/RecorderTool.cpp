// Copyright Lodex contributors.
#include "RecorderTool.h"

#include "Framework/Docking/TabManager.h"
#include "Widgets/Docking/SDockTab.h"
#include "RecorderToolPanel.h"

void RecorderTool::OnStartupModule()
{
	ExampleTabToolBase::OnStartupModule();
	AddMenuEntryFromTabTable(ELodexListener::RecorderTool);
}

void RecorderTool::Initialize()
{
	InitializeFromTabTable(ELodexListener::RecorderTool);
}

TSharedRef<SDockTab> RecorderTool::SpawnTab(const FSpawnTabArgs& TabSpawnArgs)
{
	return SNew(SDockTab).TabRole(ETabRole::NomadTab)[SNew(RecorderToolPanel).Tool(SharedThis(this))];
}
