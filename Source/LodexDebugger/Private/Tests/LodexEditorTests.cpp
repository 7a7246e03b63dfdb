// Copyright Lodex contributors.
//
// What only the running editor can show: registrations the module makes and takes back, the tabs' panels, keyboard
// focus in the path boxes, the recorder's input processor and the explorer's selection. Run them from the Session
// Frontend (Automation tab, filter "Lodex") or with -ExecCmds="Automation RunTests Lodex".

#include "CoreMinimal.h"
#include "Misc/AutomationTest.h"

#if WITH_DEV_AUTOMATION_TESTS

#include "Editor.h"
#include "Editor/EditorEngine.h"
#include "Engine/Selection.h"
#include "Engine/World.h"
#include "Framework/Application/SlateApplication.h"
#include "Framework/Docking/TabManager.h"
#include "GameFramework/Actor.h"
#include "LevelEditor.h"
#include "LodexDebugger.h"
#include "LodexDebugger/DetailsView/DetailToolCommands.h"
#include "LodexDebugger/DetailsView/DetailsToolPanel.h"
#include "LodexDebugger/LodexReplTool/ReplToolPanel.h"
#include "LodexDebugger/MenuTool/MenuToolCommands.h"
#include "LodexDebugger/RecorderTool/RecorderInputProcessor.h"
#include "LodexDebugger/RecorderTool/RecorderToolPanel.h"
#include "LodexDebugger/TabTool/TabToolPanel.h"
#include "LodexDebuggerCommands.h"
#include "LodexDebugger/Interop/LodexUnrealCLR.h"
#include "Modules/ModuleManager.h"
#include "Styling/SlateStyleRegistry.h"
#include "Tests/AutomationEditorCommon.h"
#include "VELTStyle.h"
#include "Widgets/Docking/SDockTab.h"
#include "Widgets/Input/SEditableTextBox.h"
#include "Widgets/SWindow.h"

namespace LodexEditorTests
{
	constexpr EAutomationTestFlags::Type Flags = static_cast<EAutomationTestFlags::Type>(
		EAutomationTestFlags::EditorContext | EAutomationTestFlags::EngineFilter);

	/** The four tab tools: tab id and the panel type each opening must make. */
	struct FTabCase
	{
		const TCHAR* TabId;
		const TCHAR* PanelType;
	};
	const FTabCase TabCases[] = {
		{TEXT("TabTool"), TEXT("TabToolPanel")},
		{TEXT("RecorderTool"), TEXT("RecorderToolPanel")},
		{TEXT("ReplTool"), TEXT("ReplToolPanel")},
		{TEXT("DetailsTool"), TEXT("DetailsToolPanel")},
	};

	bool HasTabSpawner(const TCHAR* TabId)
	{
		return FGlobalTabmanager::Get()->HasTabSpawner(FName(TabId));
	}

	/** The key presses of a user who types Text and presses Enter, through the application, to the focused widget. */
	void TypeAndPressEnter(const FString& Text)
	{
		FSlateApplication& Slate = FSlateApplication::Get();
		for (const TCHAR Char : Text)
		{
			Slate.ProcessKeyCharEvent(FCharacterEvent(Char, FModifierKeysState(), 0, false));
		}
		const FKeyEvent Enter(EKeys::Enter, FModifierKeysState(), 0, false, 0, 0);
		Slate.ProcessKeyDownEvent(Enter);
		Slate.ProcessKeyUpEvent(Enter);
	}

	/** A window holding one panel, shown for the length of a test and destroyed with this object. */
	class FScopedPanelWindow
	{
	public:
		explicit FScopedPanelWindow(const TSharedRef<SWidget>& Panel)
			: Window(SNew(SWindow).ClientSize(FVector2D(640.0f, 240.0f)).SupportsMaximize(false)[Panel])
		{
			FSlateApplication::Get().AddWindow(Window);
			Window->SlatePrepass(FSlateApplication::Get().GetApplicationScale());
		}

		~FScopedPanelWindow() { FSlateApplication::Get().RequestDestroyWindow(Window); }

	private:
		TSharedRef<SWindow> Window;
	};

	/**
	 * The evaluator block as these tests use it: a path buffer of their own and empty texts, put back as it was
	 * afterwards. The tests stand in for the evaluator: run them while no .NET evaluator serves the block.
	 */
	class FScopedTestBlock
	{
	public:
		FScopedTestBlock()
			: Block(LodexUnrealCLR::GetEvaluatorBlock())
			, Saved(Block)
		{
			Block.pathText = PathBuffer;
			Block.contextText = Block.resultText = Block.operationText = Block.nodeTypeText = Block.stackText = "";
			Block.durationMs = 0.0;
			Block.command = 0;
			Block.status = 0;
		}

		~FScopedTestBlock() { Block = Saved; }

		/** Publishes an answer as an evaluator does: the texts first, the status last. */
		void Publish(int32 Status, const char* Result, const char* Context)
		{
			Block.resultText = Result;
			Block.contextText = Context;
			Block.durationMs = 1.5;
			Block.status = Status;
		}

		/** Whether the path buffer holds exactly this text (case included). */
		bool HoldsPath(const TCHAR* Path) const { return FString(PathBuffer).Equals(Path, ESearchCase::CaseSensitive); }

		FLodexEvaluatorBlock& Block;

	private:
		FLodexEvaluatorBlock Saved;
		char PathBuffer[1024] = {};
	};

	/** One tick of a panel, as Slate gives it every frame. */
	void TickPanel(SWidget& Panel)
	{
		Panel.Tick(FGeometry(), FSlateApplication::Get().GetCurrentTime(), 1.0f / 60.0f);
	}

	/**
	 * With the game playing in the editor: one Enter in each path box is one request, the box keeps the focus, and
	 * the answer is shown on the next tick without a click.
	 */
	class FPathBoxEnterCommand final : public IAutomationLatentCommand
	{
	public:
		explicit FPathBoxEnterCommand(FAutomationTestBase* InTest)
			: Test(InTest)
		{
		}

		virtual bool Update() override
		{
			if (GEditor == nullptr || GEditor->PlayWorld == nullptr)
			{
				if (FPlatformTime::Seconds() - StartTime > 60.0)
				{
					Test->AddError(TEXT("The game did not start playing in the editor within 60 s"));
					return true;
				}
				return false;
			}
			CheckRepl();
			CheckDebugger();
			return true;
		}

	private:
		void CheckRepl()
		{
			CheckOneEnter<ReplToolPanel>(TEXT("REPL"), 1, 3, "2", "A\r\nB",
				[](const ReplToolPanel& Panel) { return Panel.GetModel().GetCountText() == "2"; });
		}

		void CheckDebugger()
		{
			CheckOneEnter<TabToolPanel>(TEXT("Debugger"), 4, 8, "<VELT.Highlight>//Door</>", "/*[@name = 'Door']",
				[](const TabToolPanel& Panel)
				{ return Panel.GetModel().GetPathDisplay() == "<VELT.Highlight>//Door</>"; });
		}

		/**
		 * Types "//Door" and Enter into the panel's path box: one request (Command) with the path, the box keeps the
		 * focus; then an answer (Status and its texts) is published, and one tick shows it (IsShown).
		 */
		template<typename TPanel, typename FIsShown>
		void CheckOneEnter(
			const TCHAR* Name, int32 Command, int32 Status, const char* Result, const char* Context, FIsShown&& IsShown)
		{
			FScopedTestBlock TestBlock;
			const TSharedRef<TPanel> Panel = SNew(TPanel);
			FScopedPanelWindow Window(Panel);
			FSlateApplication::Get().SetKeyboardFocus(Panel->GetPathBox(), EFocusCause::Mouse);
			const auto What = [Name](const TCHAR* Check)
			{
				return FString::Printf(TEXT("%s: %s"), Name, Check);
			};

			TypeAndPressEnter(TEXT("//Door"));
			Test->TestEqual(What(TEXT("requests after one Enter")), Panel->GetModel().GetRequestsSent(), 1);
			Test->TestEqual(What(TEXT("the request")), TestBlock.Block.command, Command);
			Test->TestTrue(What(TEXT("the path written")), TestBlock.HoldsPath(TEXT("//Door")));
			Test->TestTrue(What(TEXT("the path box keeps the focus after Enter")),
				Panel->GetPathBox()->HasKeyboardFocus() || Panel->HasAnyUserFocusOrFocusedDescendants());

			TestBlock.Publish(Status, Result, Context);
			TickPanel(*Panel);
			Test->TestTrue(What(TEXT("the answer on the next tick")), IsShown(*Panel));
			Test->TestEqual(What(TEXT("the answer consumed")), TestBlock.Block.status, 0);
			Test->TestEqual(What(TEXT("still one request")), Panel->GetModel().GetRequestsSent(), 1);
		}

		FAutomationTestBase* Test;
	};
}

IMPLEMENT_SIMPLE_AUTOMATION_TEST(
	FLodexModuleLifecycleTest, "Lodex.Shell.ShutdownTakesBackWhatStartupRegistered", LodexEditorTests::Flags)

bool FLodexModuleLifecycleTest::RunTest(const FString& Parameters)
{
	using namespace LodexEditorTests;
	if (IsRunningCommandlet())
	{
		AddInfo(TEXT("Under a commandlet the module registers nothing."));
		return true;
	}
	FLodexDebugger& Module = FLodexDebugger::Get();
	FLevelEditorModule& LevelEditor = FModuleManager::LoadModuleChecked<FLevelEditorModule>(TEXT("LevelEditor"));

	for (const FTabCase& Tab : TabCases)
	{
		TestTrue(FString::Printf(TEXT("%s is registered while the module runs"), Tab.TabId), HasTabSpawner(Tab.TabId));
	}
	TestTrue(TEXT("the main menu's command set is registered"), FLodexDebuggerCommands::IsRegistered());
	TestTrue(TEXT("the context menus' command set is registered"), FMenuToolCommands::IsRegistered());

	// Whatever the editor still held after shut-down would keep these alive.
	const TWeakPtr<FExtender> MenuExtender = Module.MenuExtender;
	const TWeakPtr<FLodexPullDownMenu> PullDownMenu = Module.PullDownMenu;
	TArray<TWeakPtr<IModuleListenerInterface>> Listeners;
	for (const TSharedRef<IModuleListenerInterface>& Listener : Module.ModuleListeners)
	{
		Listeners.Add(Listener);
	}
	TestEqual(TEXT("module listeners"), Listeners.Num(), 5);
	TestTrue(TEXT("the menu extender exists"), MenuExtender.IsValid());
	const int32 ViewportExtenders = LevelEditor.GetAllLevelViewportContextMenuExtenders().Num();

	VELTStyle::Initialize();
	const ISlateStyle* const Style = FSlateStyleRegistry::FindSlateStyle(VELTStyle::GetStyleSetName());
	TestNotNull(TEXT("the style set"), Style);

	Module.ShutdownModule();

	for (const FTabCase& Tab : TabCases)
	{
		TestFalse(FString::Printf(TEXT("%s is unregistered"), Tab.TabId), HasTabSpawner(Tab.TabId));
	}
	TestFalse(TEXT("the level editor lets the menu extender go"), MenuExtender.IsValid());
	TestFalse(TEXT("nothing holds the pull-down's builders"), PullDownMenu.IsValid());
	for (const TWeakPtr<IModuleListenerInterface>& Listener : Listeners)
	{
		TestFalse(TEXT("no registration holds a module listener"), Listener.IsValid());
	}
	TestEqual(TEXT("the viewport's context menu extender is removed"),
		LevelEditor.GetAllLevelViewportContextMenuExtenders().Num(), ViewportExtenders - 1);
	TestFalse(TEXT("the main menu's command set is unregistered"), FLodexDebuggerCommands::IsRegistered());
	TestFalse(TEXT("the context menus' command set is unregistered"), FMenuToolCommands::IsRegistered());
	TestFalse(TEXT("the explorer's command set is unregistered"), FDetailToolCommands::IsRegistered());
	// The style set stays registered for the rest of the process, as documented: it is an engine FSlateStyleSet made
	// of engine types only, so nothing in it points into the module's code.
	TestTrue(TEXT("the style set stays registered"),
		FSlateStyleRegistry::FindSlateStyle(VELTStyle::GetStyleSetName()) == Style);

	Module.StartupModule();

	for (const FTabCase& Tab : TabCases)
	{
		TestTrue(FString::Printf(TEXT("%s is registered again"), Tab.TabId), HasTabSpawner(Tab.TabId));
	}
	TestEqual(TEXT("one viewport context menu extender again"),
		LevelEditor.GetAllLevelViewportContextMenuExtenders().Num(), ViewportExtenders);
	TestTrue(TEXT("the main menu's command set is registered again"), FLodexDebuggerCommands::IsRegistered());
	TestTrue(TEXT("a new menu extender"), Module.MenuExtender.IsValid());
	return true;
}

IMPLEMENT_SIMPLE_AUTOMATION_TEST(
	FLodexTabPanelsTest, "Lodex.Shell.EachTabOpeningMakesItsOwnPanel", LodexEditorTests::Flags)

bool FLodexTabPanelsTest::RunTest(const FString& Parameters)
{
	using namespace LodexEditorTests;
	const TSharedRef<FGlobalTabmanager> TabManager = FGlobalTabmanager::Get();
	for (const FTabCase& Tab : TabCases)
	{
		const FTabId TabId{FName(Tab.TabId)};
		if (const TSharedPtr<SDockTab> Open = TabManager->FindExistingLiveTab(TabId))
		{
			Open->RequestCloseTab();
		}
		const TSharedPtr<SDockTab> First = TabManager->TryInvokeTab(TabId);
		if (!TestTrue(FString::Printf(TEXT("%s opens"), Tab.TabId), First.IsValid()))
		{
			continue;
		}
		const TSharedRef<SWidget> FirstPanel = First->GetContent();
		TestTrue(FString::Printf(TEXT("%s's panel"), Tab.TabId), FirstPanel->GetType() == FName(Tab.PanelType));
		First->RequestCloseTab();

		const TSharedPtr<SDockTab> Second = TabManager->TryInvokeTab(TabId);
		if (!TestTrue(FString::Printf(TEXT("%s opens again"), Tab.TabId), Second.IsValid()))
		{
			continue;
		}
		const TSharedRef<SWidget> SecondPanel = Second->GetContent();
		TestTrue(FString::Printf(TEXT("%s's panel again"), Tab.TabId), SecondPanel->GetType() == FName(Tab.PanelType));
		TestTrue(FString::Printf(TEXT("%s made a new panel"), Tab.TabId), &FirstPanel.Get() != &SecondPanel.Get());
		Second->RequestCloseTab();
	}
	return true;
}

IMPLEMENT_SIMPLE_AUTOMATION_TEST(
	FLodexPathBoxEnterTest, "Lodex.Evaluation.OneEnterInEachPathBoxIsOneRequest", LodexEditorTests::Flags)

bool FLodexPathBoxEnterTest::RunTest(const FString& Parameters)
{
	// The panels send nothing unless the game plays in the editor.
	ADD_LATENT_AUTOMATION_COMMAND(FStartPIECommand(false));
	ADD_LATENT_AUTOMATION_COMMAND(LodexEditorTests::FPathBoxEnterCommand(this));
	ADD_LATENT_AUTOMATION_COMMAND(FEndPlayMapCommand());
	return true;
}

IMPLEMENT_SIMPLE_AUTOMATION_TEST(
	FLodexRecorderProcessorTest, "Lodex.Recorder.InputProcessorOnlyWhileRecording", LodexEditorTests::Flags)

bool FLodexRecorderProcessorTest::RunTest(const FString& Parameters)
{
	FSlateApplication& Slate = FSlateApplication::Get();
	TSharedPtr<RecorderToolPanel> Panel = SNew(RecorderToolPanel);
	TestFalse(TEXT("no processor before Record"), Panel->Processor.IsValid());

	Panel->HandleRecordClicked();
	TSharedPtr<IInputProcessor> Processor = Panel->Processor;
	if (!TestTrue(TEXT("Record makes a processor"), Processor.IsValid()))
	{
		return false;
	}
	TestTrue(TEXT("registered while recording"), Slate.FindInputPreProcessor(Processor) != INDEX_NONE);

	Panel->HandleRecordClicked();
	TestFalse(TEXT("Stop lets the processor go"), Panel->Processor.IsValid());
	TestEqual(TEXT("unregistered after Stop"), Slate.FindInputPreProcessor(Processor), int32(INDEX_NONE));

	// A recording under way when its panel goes (the tab closed) stops with it.
	Panel->HandleRecordClicked();
	Processor = Panel->Processor;
	TestTrue(TEXT("registered while recording again"), Slate.FindInputPreProcessor(Processor) != INDEX_NONE);
	Panel.Reset();
	TestEqual(TEXT("unregistered once the panel is gone"), Slate.FindInputPreProcessor(Processor), int32(INDEX_NONE));
	return true;
}

IMPLEMENT_SIMPLE_AUTOMATION_TEST(
	FLodexExplorerSelectionTest, "Lodex.Explorer.FollowsTheEditorSelection", LodexEditorTests::Flags)

bool FLodexExplorerSelectionTest::RunTest(const FString& Parameters)
{
	UWorld* const World = GEditor ? GEditor->GetEditorWorldContext().World() : nullptr;
	if (!TestNotNull(TEXT("the editor's world"), World))
	{
		return false;
	}
	FActorSpawnParameters Spawn;
	Spawn.Name = MakeUniqueObjectName(World->GetCurrentLevel(), AActor::StaticClass(), TEXT("LodexExplorerTestActor"));
	Spawn.ObjectFlags = RF_Transient;
	AActor* const Actor = World->SpawnActor<AActor>(AActor::StaticClass(), FTransform::Identity, Spawn);
	if (!TestNotNull(TEXT("a test actor"), Actor))
	{
		return false;
	}

	GEditor->SelectNone(true, true, false);
	TSharedPtr<DetailsToolPanel> Panel = SNew(DetailsToolPanel);
	TestTrue(
		TEXT("the panel follows the selection event"), USelection::SelectionChangedEvent.IsBoundToObject(Panel.Get()));
	TestNull(TEXT("nothing explored with nothing selected"), Panel->GetExploredActorContext());

	GEditor->SelectActor(Actor, true, true);
	TestTrue(TEXT("the selected actor is explored"), Panel->GetExploredActorContext() == Actor);

	GEditor->SelectNone(true, true, false);
	TestTrue(TEXT("a cleared selection is followed"), Panel->GetExploredActorContext() != Actor);

	Panel.Reset();
	// With the panel gone, a selection change must find nothing of it (a stale binding would crash here).
	GEditor->SelectActor(Actor, true, true);
	GEditor->SelectNone(true, true, false);
	World->DestroyActor(Actor);
	return true;
}

#endif // WITH_DEV_AUTOMATION_TESTS
