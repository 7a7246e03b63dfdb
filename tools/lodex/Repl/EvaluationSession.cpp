// Copyright Lodex contributors.
#include "EvaluationSession.h"
#include "Scenes/SceneEvaluation.h"

#include "EvaluatorRunner.h"
#include "Cli/WholeFile.h"

#include "LodexDebugger/Core/Evaluation/LodexDebuggerPanel.h"
#include "LodexDebugger/Core/Evaluation/LodexReplPanel.h"
#include "LodexDebugger/Core/Evaluation/LodexScriptedEvaluator.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <sstream>

namespace
{
	/** How long a session waits for the evaluator to answer one line before it says so and moves on. */
	constexpr std::chrono::milliseconds SessionAnswerTimeout{5000};

	std::string FormatSessionColor(const FLodexColor& Color)
	{
		return "(" + LodexText::SanitizeFloat(Color.R, 0) + ", " + LodexText::SanitizeFloat(Color.G, 0) + ", " +
			LodexText::SanitizeFloat(Color.B, 0) + ", " + LodexText::SanitizeFloat(Color.A, 0) + ")";
	}

	const char* FormatSessionBool(bool bValue)
	{
		return bValue ? "true" : "false";
	}

	std::string FormatSessionCommand(std::int32_t Command)
	{
		return GetEvaluatorCommandName(Command) + " (" + LodexText::FormatInt(Command) + ")";
	}

	std::string FormatSessionStatus(std::int32_t Status)
	{
		if (!IsKnownEvaluatorStatus(Status))
		{
			return "unknown status " + LodexText::FormatInt(Status) + ", left alone";
		}
		return std::string(GetEvaluatorStatusName(Status)) + " (" + LodexText::FormatInt(Status) + ")";
	}

	void PrintSessionRequest(const FLodexRequest& Request, const char* EmptyPathEffect, std::ostream& Out)
	{
		switch (Request.Outcome)
		{
			case ELodexRequestOutcome::Sent:
				Out << "  request: " << FormatSessionCommand(static_cast<std::int32_t>(Request.Command)) << "\n";
				break;
			case ELodexRequestOutcome::EmptyPath:
				Out << "  no request: the path is empty (" << EmptyPathEffect << ")\n";
				break;
			case ELodexRequestOutcome::GameNotRunning:
				Out << "  no request: the game is not running\n";
				break;
			case ELodexRequestOutcome::EvaluatorUnavailable:
				Out << "  no request: the evaluator gives no path buffer\n";
				break;
			case ELodexRequestOutcome::ResultPending:
				Out << "  no request: a result waits in the block (" << FormatSessionStatus(Request.PendingStatus)
					<< ")\n";
				break;
		}
	}

	/**
	 * Where the user's keyboard focus is, as the editor moves it. The path boxes keep their focus when Enter
	 * commits them, and commit again whenever the focus leaves them (a click on a button, on the game's
	 * viewport, on another tab): the editor's text boxes do so, and every commit is a request.
	 */
	enum class ESessionFocus
	{
		/** The path box: the panel has a focused descendant and polls. */
		PathBox,
		/** The panel itself or one of its buttons: it polls. */
		Panel,
		/** Elsewhere in the editor: the panel does not poll and results wait in the block. */
		Outside,
	};

	/**
	 * Moves the focus to a place; when it leaves the path box, the box commits first and the evaluator answers
	 * before the session goes on (a click's press and release are separate events, the ticks between them poll).
	 */
	using FSessionFocusMover = std::function<void(ESessionFocus To)>;

	/** One of the two panels as a session drives it. */
	class ISessionPanel
	{
	public:
		virtual ~ISessionPanel() = default;
		/** Acts on one line that is not a session directive, moving the focus as the user's clicks would. */
		virtual void HandleLine(const std::string& Line, std::ostream& Out, const FSessionFocusMover& MoveFocus) = 0;
		/** The path box loses focus: the commit of the text it holds. */
		virtual void CommitPathBox(std::ostream& Out) = 0;
		virtual std::int32_t Poll() = 0;
		virtual void PrintState(std::ostream& Out) const = 0;
		virtual const char* GetHelp() const = 0;
	};

	const char* const SessionDirectivesHelp =
		"  :focus    a click on the panel: it has focus again and polls (it has at the start)\n"
		"  :blur     the focus leaves the panel (the path box commits first if it has it):\n"
		"            no polls, results wait in the block\n"
		"  :hold     the evaluator takes no request until :release\n"
		"  :release  the evaluator takes requests again\n"
		"  :help     this text\n";

	class FSessionReplPanel final : public ISessionPanel
	{
	public:
		explicit FSessionReplPanel(ILodexEvaluatorHost& Host)
			: Panel(Host)
		{
		}

		void HandleLine(const std::string& Line, std::ostream& Out, const FSessionFocusMover& MoveFocus) override
		{
			MoveFocus(ESessionFocus::PathBox);
			Panel.OnPathTextChanged(Line);
			PrintSessionRequest(Panel.OnPathTextCommitted(Line), "cleared", Out);
		}

		void CommitPathBox(std::ostream& Out) override
		{
			PrintSessionRequest(Panel.OnPathTextCommitted(Panel.GetPathText()), "cleared", Out);
		}

		std::int32_t Poll() override { return Panel.PollEvaluator(); }

		void PrintState(std::ostream& Out) const override
		{
			Out << "  " << LodexReplLayout::PathLabel << " " << Panel.GetPathText() << "\n";
			Out << "  count: " << Panel.GetCountText() << "\n";
			Out << "  StateColor " << FormatSessionColor(Panel.GetStateColor()) << ", HasError "
				<< FormatSessionBool(Panel.HasError()) << ", IsReady " << FormatSessionBool(Panel.IsReady()) << "\n";
		}

		const char* GetHelp() const override
		{
			return "Each line is a Lodestring typed in the REPL's path box and committed with Enter (an empty line\n"
				   "clears it); the box keeps the focus, so the panel shows the answer at once.\n";
		}

	private:
		FLodexReplPanel Panel;
	};

	class FSessionDebuggerPanel final : public ISessionPanel
	{
	public:
		explicit FSessionDebuggerPanel(ILodexEvaluatorHost& Host)
			: Panel(Host)
		{
		}

		void HandleLine(const std::string& Line, std::ostream& Out, const FSessionFocusMover& MoveFocus) override
		{
			struct FButton
			{
				const char* Word;
				const char* Label;
				FLodexRequest (FLodexDebuggerPanel::*Click)();
			};
			static const FButton Buttons[] = {
				{"run", LodexDebuggerLayout::RunButton, &FLodexDebuggerPanel::OnRunClicked},
				{"into", LodexDebuggerLayout::StepIntoButton, &FLodexDebuggerPanel::OnStepIntoClicked},
				{"over", LodexDebuggerLayout::StepOverButton, &FLodexDebuggerPanel::OnStepOverClicked},
				{"reset", LodexDebuggerLayout::ResetButton, nullptr},
			};
			for (const FButton& Button : Buttons)
			{
				if (Line != Button.Word)
				{
					continue;
				}
				if (!Panel.AreButtonsEnabled())
				{
					Out << "  \"" << Button.Label << "\" is disabled: the panel waits for the evaluator\n";
					return;
				}
				// The press gives the button the focus; the click comes with the release.
				MoveFocus(ESessionFocus::Panel);
				if (!Panel.AreButtonsEnabled())
				{
					Out << "  \"" << Button.Label << "\" is disabled now: the panel waits for the evaluator\n";
					return;
				}
				if (Button.Click == nullptr)
				{
					Panel.OnResetClicked();
					Out << "  no request: Reset is local\n";
					return;
				}
				PrintSessionRequest((Panel.*Button.Click)(), "reset", Out);
				return;
			}
			MoveFocus(ESessionFocus::PathBox);
			if (Line == "type" || Line.rfind("type ", 0) == 0)
			{
				Panel.OnPathTextChanged(Line.size() > 5 ? Line.substr(5) : std::string());
				return;
			}
			const std::string Path = Line.rfind("load ", 0) == 0 ? Line.substr(5) : (Line == "load" ? "" : Line);
			Panel.OnPathTextChanged(Path);
			PrintSessionRequest(Panel.OnPathTextCommitted(Path), "reset", Out);
		}

		void CommitPathBox(std::ostream& Out) override
		{
			PrintSessionRequest(Panel.OnPathTextCommitted(Panel.GetPathText()), "reset", Out);
		}

		std::int32_t Poll() override { return Panel.PollEvaluator(); }

		void PrintState(std::ostream& Out) const override
		{
			Out << "  " << LodexDebuggerLayout::PathLabel << " " << Panel.GetPathText() << "\n";
			Out << "  " << LodexDebuggerLayout::EvaluationLabel << " " << Panel.GetPathDisplay() << "\n";
			const std::string Highlight = FLodexDebuggerPanel::ExtractHighlight(Panel.GetPathDisplay());
			if (!Highlight.empty())
			{
				Out << "  highlighted: " << Highlight << "\n";
			}
			Out << "  error icon " << (Panel.HasError() ? "on" : "off") << ", message: " << Panel.GetMessageText()
				<< "\n";
			Out << "  buttons " << (Panel.AreButtonsEnabled() ? "enabled" : "disabled") << "\n";
			Out << "  " << LodexDebuggerLayout::OperationLabel << " " << Panel.GetOperationText() << "\n";
			Out << "  " << LodexDebuggerLayout::NodeTypeLabel << " " << Panel.GetNodeTypeText() << "\n";
			Out << "  " << Panel.GetStackHeader() << "\n";
			for (const std::string& Item : Panel.GetStackItems())
			{
				Out << "    " << Item << "\n";
			}
			Out << "  " << Panel.GetContextHeader() << "\n";
			for (const std::string& Item : Panel.GetContextItems())
			{
				Out << "    " << Item << "\n";
			}
			Out << "  " << Panel.GetDurationText() << "\n";
			Out << "  StateColor " << FormatSessionColor(Panel.GetStateColor()) << "\n";
		}

		const char* GetHelp() const override
		{
			return "Each line is a button of the debugger or an edit of its path box:\n"
				   "  run, into, over, reset   press Run, Step Into, Step Over, Reset\n"
				   "  type TEXT                the path box now holds TEXT (no commit)\n"
				   "  load TEXT                TEXT committed in the path box (Enter)\n"
				   "  any other line           committed in the path box (an empty line resets)\n"
				   "Enter leaves the focus in the path box; pressing a button moves it to the button, and the\n"
				   "box commits its text first (a Load, when no result waits in the block).\n";
		}

	private:
		FLodexDebuggerPanel Panel;
	};

	/** The session loop both commands share: lines in, panel and evaluator driven, transcript out. */
	int RunSession(
		ISessionPanel& Panel, ILodexEvaluator& Evaluator, FLodexHeadlessEvaluatorHost& Host, FLodexSessionIo& Io)
	{
		FLodexEvaluatorRunner Runner(Evaluator, Host.GetEvaluatorBlock());
		ESessionFocus Focus = ESessionFocus::Panel;
		bool bRefusedLine = false;
		int LineNumber = 0;

		const auto PrintTaken = [&Runner, &Io]()
		{
			for (const std::int32_t Command : Runner.TakeTakenCommands())
			{
				Io.Out << "  evaluator took: " << FormatSessionCommand(Command) << "\n";
			}
		};
		// Lets the evaluator answer and a focused panel poll until nothing more can happen by itself.
		const auto Settle = [&]()
		{
			std::int32_t LastPrinted = 0;
			for (int Round = 0; Round < 64; ++Round)
			{
				if (!Runner.WaitUntilQuiet(SessionAnswerTimeout))
				{
					Io.Out << "  the evaluator did not answer within " << SessionAnswerTimeout.count() << " ms\n";
					return;
				}
				PrintTaken();
				if (Focus == ESessionFocus::Outside)
				{
					return;
				}
				const std::int32_t Status = Panel.Poll();
				if (Status != 0 && Status != LastPrinted)
				{
					Io.Out << "  poll: " << FormatSessionStatus(Status) << "\n";
				}
				LastPrinted = Status;
				const bool bConsumed = Status == static_cast<std::int32_t>(EEvaluatorStatus::Evaluated) ||
					Status == static_cast<std::int32_t>(EEvaluatorStatus::Finished) ||
					Status == static_cast<std::int32_t>(EEvaluatorStatus::Stepped) ||
					Status == static_cast<std::int32_t>(EEvaluatorStatus::Failed);
				if (!bConsumed || Runner.IsHeld())
				{
					return;
				}
			}
		};

		// Returns whether the path box committed on the way.
		const auto MoveFocusTo = [&](ESessionFocus To)
		{
			const ESessionFocus From = Focus;
			Focus = To;
			if (From == ESessionFocus::PathBox && To != ESessionFocus::PathBox)
			{
				Io.Out << "  the path box loses focus and commits its text\n";
				Panel.CommitPathBox(Io.Out);
				Settle();
				return true;
			}
			if (From == ESessionFocus::Outside && To != ESessionFocus::Outside)
			{
				// The panel polls on the ticks between the click that focuses it and what the user does next.
				Settle();
			}
			return false;
		};
		const FSessionFocusMover MoveFocus = [&MoveFocusTo](ESessionFocus To)
		{
			MoveFocusTo(To);
		};

		if (!Io.bEcho)
		{
			Io.Out << Panel.GetHelp() << "Session directives:\n" << SessionDirectivesHelp << "> " << std::flush;
		}
		std::string Line;
		while (std::getline(Io.In, Line))
		{
			++LineNumber;
			if (!Line.empty() && Line.back() == '\r')
			{
				Line.pop_back();
			}
			if (Io.bEcho)
			{
				Io.Out << "> " << Line << "\n";
			}
			bool bPrintState = true;
			if (!Line.empty() && Line[0] == ':')
			{
				if (Line == ":focus")
				{
					if (Focus == ESessionFocus::Outside)
					{
						MoveFocusTo(ESessionFocus::Panel);
					}
				}
				else if (Line == ":blur")
				{
					bPrintState = MoveFocusTo(ESessionFocus::Outside);
				}
				else if (Line == ":hold")
				{
					Runner.SetHeld(true);
					bPrintState = false;
				}
				else if (Line == ":release")
				{
					Runner.SetHeld(false);
				}
				else if (Line == ":help")
				{
					Io.Out << Panel.GetHelp() << "Session directives:\n" << SessionDirectivesHelp;
					bPrintState = false;
				}
				else
				{
					Io.Out << "  unknown directive '" << Line << "'; known: :focus :blur :hold :release :help\n";
					bPrintState = false;
				}
			}
			else if (LodexText::ToAnsi(Line).size() + 1 > Evaluator.GetPathCapacity())
			{
				Io.Err << "lodex: input line " << LineNumber << ": longer than the evaluator's path buffer ("
					   << Evaluator.GetPathCapacity() << " bytes); skipped\n";
				bRefusedLine = true;
				bPrintState = false;
			}
			else
			{
				Panel.HandleLine(Line, Io.Out, MoveFocus);
			}
			if (bPrintState)
			{
				Settle();
				Panel.PrintState(Io.Out);
			}
			if (!Io.bEcho)
			{
				Io.Out << "> " << std::flush;
			}
		}
		return bRefusedLine ? 1 : 0;
	}
}

void AddLodexEvaluationOptions(CLI::App& Command, FLodexSessionOptions& Options)
{
	// Exactly one evaluator: the native one over a scene, or the scripted one.
	CLI::Option_group* Evaluator = Command.add_option_group("evaluator", "Which evaluator answers (one of them)");
	Options.SceneFile.DeclareScene(*Evaluator);
	Evaluator->add_option("--evaluator", Options.EvaluatorFile,
		"Canned answers for the scripted evaluator instead (text; see docs/scripted-evaluator.md)");
	Evaluator->require_option(1);
	Options.SceneFile.DeclareLevelFlags(Command);
	Command.add_flag("--game-not-running", Options.bGameNotRunning,
		"The editor plays no game: requests are refused as in the editor");
}

std::unique_ptr<ILodexEvaluator> MakeLodexScriptedEvaluator(
	const std::string& Text, const std::string& Name, std::ostream& Err)
{
	FLodexCannedAnswers Answers;
	FLodexParseError Error;
	if (!ParseLodexCannedAnswers(Text, Answers, Error))
	{
		Err << "lodex: " << Name << ":" << Error.Line << ": " << Error.Message << "\n";
		return nullptr;
	}
	return std::make_unique<FLodexScriptedEvaluator>(std::move(Answers));
}

std::unique_ptr<ILodexEvaluator> MakeLodexEvaluator(const FLodexSessionOptions& Options, std::ostream& Err)
{
	if (Options.SceneFile.IsGiven() || Options.EvaluatorFile.empty())
	{
		return MakeLodexSceneEvaluator(Options.SceneFile, Err);
	}
	std::string Text;
	std::string Error;
	if (!ReadWholeFile(Options.EvaluatorFile, Text, Error, {LodexMaxTextFileBytes, "an answers file", true}))
	{
		Err << "lodex: " << Error << "\n";
		return nullptr;
	}
	return MakeLodexScriptedEvaluator(Text, Options.EvaluatorFile, Err);
}

FLodexHeadlessEvaluatorHost::FLodexHeadlessEvaluatorHost(bool bInGameRunning)
	: bGameRunning(bInGameRunning)
{
}

int FLodexHeadlessEvaluatorHost::GetWorldContextCount() const
{
	// The editor's own world, and while the game runs, the play-in-editor world after it.
	return bGameRunning ? 2 : 1;
}

std::int32_t FLodexHeadlessEvaluatorHost::GetWorldType(int Index) const
{
	return static_cast<std::int32_t>(Index == 0 ? ELodexWorldType::Editor : ELodexWorldType::PIE);
}

void FLodexHeadlessEvaluatorHost::LoadModule(const char* ModuleName)
{
	(void)ModuleName;
	++ModuleLoads;
}

FLodexEvaluatorBlock& FLodexHeadlessEvaluatorHost::GetEvaluatorBlock()
{
	return Block;
}

int RunLodexReplSession(ILodexEvaluator& Evaluator, bool bGameRunning, FLodexSessionIo& Io)
{
	FLodexHeadlessEvaluatorHost Host(bGameRunning);
	FSessionReplPanel Panel(Host);
	return RunSession(Panel, Evaluator, Host, Io);
}

int RunLodexDebugSession(ILodexEvaluator& Evaluator, bool bGameRunning, FLodexSessionIo& Io)
{
	FLodexHeadlessEvaluatorHost Host(bGameRunning);
	FSessionDebuggerPanel Panel(Host);
	return RunSession(Panel, Evaluator, Host, Io);
}

bool PrintLodexEvaluationDemo(std::ostream& Out, std::ostream& Err)
{
	const std::string Hinge = "/*[@name = 'House']/*[@name = 'Door']/fn:component('Hinge')";
	struct FDemoSession
	{
		const char* Title;
		int (*Run)(ILodexEvaluator&, bool, FLodexSessionIo&);
		std::string Script;
	};
	const FDemoSession Sessions[] = {
		{"The Lodex REPL (lodex repl): each line a Lodestring committed, the count it finds", &RunLodexReplSession,
			"/*[@name = 'House']//*\n/*[@name = 'T\xC3\xBCr']\n/*[@name = 'Garage']\n\n"},
		{"The Lodestring Debugger (lodex debug): Enter loads the path, Step Into walks it, Run evaluates it whole",
			&RunLodexDebugSession, Hinge + "\ninto\ninto\nrun\n"},
	};
	for (const FDemoSession& Session : Sessions)
	{
		std::unique_ptr<ILodexEvaluator> Evaluator =
			MakeLodexScriptedEvaluator(GetSampleEvaluatorAnswers(), "the embedded evaluator answers", Err);
		if (!Evaluator)
		{
			return false;
		}
		Out << "\n" << Session.Title << "\n\n";
		std::istringstream In(Session.Script);
		FLodexSessionIo Io{In, Out, Err, true};
		Session.Run(*Evaluator, true, Io);
	}
	return true;
}
