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
	const TSharedRef<RecorderToolPanel> Panel = SNew(RecorderToolPanel).Tool(SharedThis(this));
	// A recording stops with its tab, so that no input processor outlives the panel.
	return SNew(SDockTab)
		.TabRole(ETabRole::NomadTab)
		.OnTabClosed(SDockTab::FOnTabClosedCallback::CreateSP(Panel, &RecorderToolPanel::HandleTabClosed))[Panel];
}
