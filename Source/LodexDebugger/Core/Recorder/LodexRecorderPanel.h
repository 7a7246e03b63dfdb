// Copyright Lodex contributors.
#pragma once

#include "LodexInputRecorder.h"
#include "LodexRecorderHost.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class ILodexInputLogSink;

/** The five quick-insert buttons, in the order of their row. */
enum class ELodexQuickInsert
{
	LoadScene,
	ClickObject,
	GetObjectPosition,
	SetObjectPosition,
	WaitForObject,
};

struct FLodexQuickInsertInfo
{
	ELodexQuickInsert Button;
	/** The button's text, which is also its name in the input log. */
	const char* Label;
	/** Whether its line holds the selected object's Lode String (all but "LoadScene"). */
	bool bTakesObject;
};

/** An icon button of the tool row: the style set's brush and the tooltip. */
struct FLodexIconButtonInfo
{
	const char* Brush;
	const char* ToolTip;
};

/** What the save dialog of Download shows. */
struct FLodexSaveDialogInfo
{
	std::string Title;
	std::string DefaultFileName;
	/** "%s (%s)|%s" filled with the description, the pattern and the pattern again. */
	std::string FileTypes;
};

/**
 * The Input Recorder panel without its widgets: the recording flag, the line store and its placeholder map, the
 * "Use FPS" flag, the Lode String kind of the combo box, and the operations of its buttons. The script is the line
 * store joined with "\r\n"; the joined text is kept up to date line by line, so that adding the n-th line does not
 * cost O(n).
 */
class FLodexRecorderPanel final : public ILodexScriptSink
{
public:
	explicit FLodexRecorderPanel(ILodexRecorderHost& InHost);
	~FLodexRecorderPanel();
	FLodexRecorderPanel(const FLodexRecorderPanel&) = delete;
	FLodexRecorderPanel& operator=(const FLodexRecorderPanel&) = delete;

	//~ Record, Stop, Reset
	/**
	 * Idle to recording: a new input processor bound to this panel (writing the raw input log to Log when given),
	 * the two header lines, the output refreshed. Returns false, doing nothing, while recording.
	 */
	bool Record(ILodexInputLogSink* InputLog = nullptr);
	/** Recording to idle: every waiting record written, the processor gone, the output refreshed. */
	bool Stop();
	/** Clears the line store, the placeholders and the output text. */
	void Reset();
	bool IsRecording() const { return Recorder != nullptr; }
	/** The input processor's logic while recording; null when idle. */
	FLodexInputRecorder* GetRecorder() { return Recorder.get(); }

	/** The add-line operation (docs/recorder.md): line, mode, and the key name for modes 1 and 2. */
	void AddLine(const std::string& Line, ELodexAddLineMode Mode, const std::string& KeyName) override;

	//~ The script
	const std::vector<std::string>& GetLines() const { return Lines; }
	/** The output text as last set: the line store joined with "\r\n" at the last refresh. */
	std::string_view GetOutputText() const { return std::string_view(JoinedText).substr(0, ShownSize); }
	/** The whole script, the line store joined with "\r\n", including lines stored since the last refresh. */
	std::string GetScriptText() const;
	/** How many times the output text was set (and the scroll box scrolled to its end). */
	std::uint64_t GetRefreshCount() const { return RefreshCount; }
	/** The placeholder map: key name to the index of its placeholder line. */
	const std::map<std::string, std::size_t>& GetPlaceholders() const { return Placeholders; }

	//~ Options
	bool IsUsingFps() const override { return bUseFps; }
	void SetUseFps(bool bInUseFps);
	const std::string& GetPathMode() const { return PathMode; }
	void SetPathMode(const std::string& Mode) { PathMode = Mode; }
	/** The combo box's entries: "Relative", then "Absolute". */
	static const std::vector<std::string>& GetPathModes();
	bool IsDeviceAnnounced() const override { return bDeviceAnnounced; }
	void SetDeviceAnnounced() override { bDeviceAnnounced = true; }

	//~ Quick-insert buttons
	static const std::vector<FLodexQuickInsertInfo>& GetQuickInserts();
	static const FLodexQuickInsertInfo& GetQuickInsert(ELodexQuickInsert Button);
	/**
	 * Appends the button's line, with the current level or the selected object's Lode String in the combo box's kind.
	 * Without a level or a selected object nothing is written; returns whether a line was.
	 */
	bool InsertQuickLine(ELodexQuickInsert Button);
	/** Appends the button's line with the given level or Lode String. */
	void InsertQuickLineWith(ELodexQuickInsert Button, const std::string& Argument);
	/** The button's line for a level (LoadScene) or a Lode String (the other four). */
	static std::string MakeQuickInsertLine(ELodexQuickInsert Button, const std::string& Argument);

	//~ Tool row
	/** Record's icon and tooltip while idle, Stop's while recording. */
	FLodexIconButtonInfo GetRecordButton() const;
	static FLodexIconButtonInfo GetDownloadButton();
	static FLodexIconButtonInfo GetInfoButton();
	static FLodexIconButtonInfo GetResetButton();
	static const char* GetPathModeLabel() { return "Lode String:"; }
	static const char* GetUseFpsLabel() { return "Use FPS"; }

	/** Download's save dialog: title, default file name and filter text. */
	static FLodexSaveDialogInfo GetSaveDialog();
	/**
	 * What Download saves: the text the output area shows, as its widget gives it (the user's edits included; while
	 * recording, the session as it stands), its lines joined with "\r\n". The lines are split where the editor's
	 * text area splits them: at CR LF, LF, CR, VT, FF, NEL, LS and PS, so the area's own line ends (the
	 * platform's: "\n" on Linux and macOS) become "\r\n". The panel itself is left as it is.
	 */
	static std::string MakeDownloadText(std::string_view ShownText);
	/** The page Info opens. */
	static const char* GetSupportUrl();

private:
	void AppendStored(const std::string& Line);
	void InsertStored(std::size_t Index, const std::string& Line);
	/** Sets the output text to the joined store and scrolls to the end. */
	void Refresh();

	ILodexRecorderHost& Host;
	std::unique_ptr<FLodexInputRecorder> Recorder;

	std::vector<std::string> Lines;
	std::map<std::string, std::size_t> Placeholders;
	/** The store joined with "\r\n"; behind the store only after an insertion, until the next refresh. */
	std::string JoinedText;
	bool bJoinedTextStale = false;
	/** The length of the text the last refresh set: the output text is JoinedText's first ShownSize bytes. */
	std::size_t ShownSize = 0;
	std::uint64_t RefreshCount = 0;

	bool bUseFps = false;
	std::string PathMode;
	bool bDeviceAnnounced = false;
};

/**
 * Where a save writes first: a file beside the target, renamed over it once the text is written whole, so that a
 * failed save leaves any existing file as it was.
 */
