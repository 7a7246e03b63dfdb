// Copyright Lodex contributors.
#include "DetailsTool.h"

#include "Framework/Docking/TabManager.h"
#include "Widgets/Docking/SDockTab.h"
#include "DetailsToolPanel.h"

void DetailsTool::OnStartupModule()
{
	ExampleTabToolBase::OnStartupModule();
	AddMenuEntryFromTabTable(ELodexListener::DetailsTool);
}

void DetailsTool::Initialize()
{
	InitializeFromTabTable(ELodexListener::DetailsTool);
}

TSharedRef<SDockTab> DetailsTool::SpawnTab(const FSpawnTabArgs& TabSpawnArgs)
{
	return SNew(SDockTab).TabRole(ETabRole::NomadTab)[SNew(DetailsToolPanel).Tool(SharedThis(this))];
}
