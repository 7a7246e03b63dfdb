// Copyright Lodex contributors.
#include "DetailsTool.h"

#include "DetailToolCommands.h"
#include "DetailsToolPanel.h"
#include "Framework/Docking/TabManager.h"
#include "Framework/MultiBox/MultiBoxBuilder.h"
#include "HAL/IConsoleManager.h"
#include "LodexDebugger.h"
#include "LodexInterop.h"
#include "SnapshotExporter.h"
#include "Textures/SlateIcon.h"
#include "Widgets/Docking/SDockTab.h"

void DetailsTool::OnStartupModule()
{
	ExampleTabToolBase::OnStartupModule();
	AddMenuEntryFromTabTable(ELodexListener::DetailsTool);
	LodexSnapshot::StartExport(*this);
}

void DetailsTool::OnShutdownModule()
{
	LodexSnapshot::StopExport(*this);
	// The panels register the "DetailToolA" commands; they live until the module goes.
	if (FDetailToolCommands::IsRegistered())
	{
		FDetailToolCommands::Unregister();
	}
	ExampleTabToolBase::OnShutdownModule();
}

void DetailsTool::Initialize()
{
	InitializeFromTabTable(ELodexListener::DetailsTool);
}

TSharedRef<SDockTab> DetailsTool::SpawnTab(const FSpawnTabArgs& TabSpawnArgs)
{
	return SNew(SDockTab).TabRole(ETabRole::NomadTab)[SNew(DetailsToolPanel).Tool(SharedThis(this))];
}

void DetailsTool::AddPullDownEntry(const FLodexSnapshotExportInfo& Export)
{
	FLodexDebugger::Get().AddMenuExtension(
		FMenuExtensionDelegate::CreateSP(this, &DetailsTool::MakeExportMenuEntry, &Export),
		LodexInterop::ToName(Export.MenuHook), nullptr, LodexInterop::ToExtensionHookPosition(Export.MenuPosition));
}

void DetailsTool::RegisterConsoleCommand(const FLodexSnapshotExportInfo& Export)
{
	ExportCommand = IConsoleManager::Get().RegisterConsoleCommand(*LodexInterop::FromUtf8(Export.ConsoleCommand),
		*LodexInterop::FromUtf8(Export.ConsoleHelp),
		FConsoleCommandWithArgsDelegate::CreateStatic(&LodexSnapshotExporter::HandleConsoleCommand), ECVF_Default);
}

void DetailsTool::UnregisterConsoleCommand(const FLodexSnapshotExportInfo& Export)
{
	if (ExportCommand != nullptr)
	{
		IConsoleManager::Get().UnregisterConsoleObject(ExportCommand, /*bKeepState*/ false);
		ExportCommand = nullptr;
	}
}

void DetailsTool::MakeExportMenuEntry(FMenuBuilder& MenuBuilder, const FLodexSnapshotExportInfo* Export)
{
	MenuBuilder.AddMenuEntry(LodexInterop::ToText(Export->MenuLabel), LodexInterop::ToText(Export->MenuToolTip),
		FSlateIcon(), FUIAction(FExecuteAction::CreateStatic(&LodexSnapshotExporter::ExportWithDialog)));
}
