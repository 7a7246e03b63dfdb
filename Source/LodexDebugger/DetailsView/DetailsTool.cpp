// Copyright Lodex contributors.
#include "DetailsTool.h"

#include "DetailToolCommands.h"
#include "DetailsToolPanel.h"
#include "Framework/Docking/TabManager.h"
#include "Framework/MultiBox/MultiBoxBuilder.h"
#include "HAL/IConsoleManager.h"
#include "LodexDebugger/Core/Paths/LodexBestCopy.h"
#include "LodexDebugger/Core/Explorer/SnapshotWriter.h"
#include "LodexDebugger/Interop/LodexInterop.h"
#include "LodexDebugger/Interop/LodexWorldEvaluation.h"
#include "SnapshotExporter.h"
#include "Textures/SlateIcon.h"
#include "Widgets/Docking/SDockTab.h"

void DetailsTool::OnStartupModule()
{
	ExampleTabToolBase::OnStartupModule();
	AddMenuEntryFromTabTable(ELodexListener::DetailsTool);
	LodexSnapshot::StartExport(*this);
	StartLodexPullDownCommand(*this, GetLodexBestCopyCommand());
}

void DetailsTool::OnShutdownModule()
{
	StopLodexPullDownCommand(*this, GetLodexBestCopyCommand());
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

void DetailsTool::AddPullDownEntry(const FLodexPullDownCommandInfo& Command)
{
	Menus.AddMenuExtension(FMenuExtensionDelegate::CreateSP(this, &DetailsTool::MakePullDownEntry, &Command),
		LodexInterop::ToName(Command.MenuHook), nullptr, LodexInterop::ToExtensionHookPosition(Command.MenuPosition));
}

void DetailsTool::RegisterConsoleCommand(const FLodexPullDownCommandInfo& Command)
{
	IConsoleManager& Console = IConsoleManager::Get();
	const FString Name = LodexInterop::FromUtf8(Command.ConsoleCommand);
	const FString Help = LodexInterop::FromUtf8(Command.ConsoleHelp);
	IConsoleObject* Object = nullptr;
	switch (Command.Command)
	{
		case ELodexPullDownCommand::ExportSnapshot:
			Object = Console.RegisterConsoleCommand(*Name, *Help,
				FConsoleCommandWithArgsDelegate::CreateStatic(&LodexSnapshotExporter::HandleConsoleCommand),
				ECVF_Default);
			break;
		case ELodexPullDownCommand::CopyBestLodestring:
			Object = Console.RegisterConsoleCommand(*Name, *Help,
				FConsoleCommandDelegate::CreateStatic(&LodexEditor::CopyBestLodestringsOfSelection), ECVF_Default);
			break;
	}
	if (Object != nullptr)
	{
		ConsoleObjects.Add(Command.Command, Object);
	}
}

void DetailsTool::UnregisterConsoleCommand(const FLodexPullDownCommandInfo& Command)
{
	IConsoleObject* Object = nullptr;
	if (ConsoleObjects.RemoveAndCopyValue(Command.Command, Object) && Object != nullptr)
	{
		IConsoleManager::Get().UnregisterConsoleObject(Object, /*bKeepState*/ false);
	}
}

void DetailsTool::MakePullDownEntry(FMenuBuilder& MenuBuilder, const FLodexPullDownCommandInfo* Command)
{
	FExecuteAction Action;
	switch (Command->Command)
	{
		case ELodexPullDownCommand::ExportSnapshot:
			Action = FExecuteAction::CreateStatic(&LodexSnapshotExporter::ExportWithDialog);
			break;
		case ELodexPullDownCommand::CopyBestLodestring:
			Action = FExecuteAction::CreateStatic(&LodexEditor::CopyBestLodestringsOfSelection);
			break;
	}
	MenuBuilder.AddMenuEntry(LodexInterop::ToText(Command->MenuLabel), LodexInterop::ToText(Command->MenuToolTip),
		FSlateIcon(), FUIAction(Action));
}
