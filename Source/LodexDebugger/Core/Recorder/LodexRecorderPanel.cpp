// Copyright Lodex contributors.
#include "LodexRecorderPanel.h"

#include "LodexScriptLines.h"

#include "LodexDebugger/Core/Lodestring/Lodestring.h"
#include "LodexDebugger/Core/Text/LodexText.h"

namespace
{
	/**
	 * The length of the line break at Text[Index], or 0: CR LF, and each character the engine's text layout takes
	 * for a line break (FChar::IsLinebreak): LF, VT, FF, CR, and in UTF-8 NEL (U+0085), LS (U+2028), PS (U+2029).
	 */
	std::size_t LodexRecorderLineBreakLength(std::string_view Text, std::size_t Index)
	{
		const char Char = Text[Index];
		if (Char == '\r')
		{
			return Index + 1 < Text.size() && Text[Index + 1] == '\n' ? 2 : 1;
		}
		if (Char == '\n' || Char == '\v' || Char == '\f')
		{
			return 1;
		}
		if (Text.compare(Index, 2, "\xC2\x85") == 0)
		{
			return 2;
		}
		if (Text.compare(Index, 3, "\xE2\x80\xA8") == 0 || Text.compare(Index, 3, "\xE2\x80\xA9") == 0)
		{
			return 3;
		}
		return 0;
	}
}

FLodexRecorderPanel::FLodexRecorderPanel(ILodexRecorderHost& InHost)
	: Host(InHost)
	, PathMode(GetPathModes().front())
{
}

FLodexRecorderPanel::~FLodexRecorderPanel() = default;

bool FLodexRecorderPanel::Record(ILodexInputLogSink* InputLog)
{
	if (Recorder)
	{
		return false;
	}
	bDeviceAnnounced = false;
	Recorder = std::make_unique<FLodexInputRecorder>(*this, Host, InputLog);
	Recorder->LogSessionStart(bUseFps);
	// The header goes straight into the store, whatever the VR mode.
	AppendStored(LodexScriptLines::MakeClientLine());
	AppendStored(LodexScriptLines::MakeConnectLine(Host.GetHostName()));
	Refresh();
	return true;
}

bool FLodexRecorderPanel::Stop()
{
	if (!Recorder)
	{
		return false;
	}
	Recorder->Flush();
	Recorder.reset();
	Refresh();
	return true;
}

void FLodexRecorderPanel::Reset()
{
	Lines.clear();
	Placeholders.clear();
	JoinedText.clear();
	bJoinedTextStale = false;
	Refresh();
}

void FLodexRecorderPanel::AppendStored(const std::string& Line)
{
	if (!bJoinedTextStale)
	{
		if (!Lines.empty())
		{
			JoinedText += LodexText::LineSeparator;
		}
		JoinedText += Line;
	}
	Lines.push_back(Line);
}

void FLodexRecorderPanel::InsertStored(std::size_t Index, const std::string& Line)
{
	Lines.insert(Lines.begin() + static_cast<std::ptrdiff_t>(Index), Line);
	// Placeholders at or after the insertion moved down one line with it.
	for (auto& Entry : Placeholders)
	{
		if (Entry.second >= Index)
		{
			++Entry.second;
		}
	}
	bJoinedTextStale = true;
}

void FLodexRecorderPanel::Refresh()
{
	if (bJoinedTextStale)
	{
		JoinedText = LodexText::Join(Lines, LodexText::LineSeparator);
		bJoinedTextStale = false;
	}
	ShownSize = JoinedText.size();
	++RefreshCount;
}

std::string FLodexRecorderPanel::GetScriptText() const
{
	return bJoinedTextStale ? LodexText::Join(Lines, LodexText::LineSeparator) : JoinedText;
}

void FLodexRecorderPanel::AddLine(const std::string& Line, ELodexAddLineMode Mode, const std::string& KeyName)
{
	if (!Host.IsVRTracking())
	{
		// Placeholders are not kept outside VR mode: the finished line is appended when it comes.
		if (Mode != ELodexAddLineMode::Placeholder)
		{
			AppendStored(Line);
		}
		Refresh();
		return;
	}
	// In VR mode the output text waits for the next refresh outside VR mode.
	if (Mode == ELodexAddLineMode::Append)
	{
		AppendStored(Line);
		return;
	}
	const auto Found = Placeholders.find(KeyName);
	if (Found == Placeholders.end())
	{
		Placeholders.emplace(KeyName, Lines.size());
		AppendStored(Line);
		return;
	}
	const std::size_t Index = Found->second;
	Placeholders.erase(Found);
	if (Index < Lines.size())
	{
		InsertStored(Index, Line);
	}
	else
	{
		AppendStored(Line);
	}
}

void FLodexRecorderPanel::SetUseFps(bool bInUseFps)
{
	if (bUseFps == bInUseFps)
	{
		return;
	}
	bUseFps = bInUseFps;
	if (Recorder)
	{
		Recorder->LogUseFps(bUseFps);
	}
}

const std::vector<std::string>& FLodexRecorderPanel::GetPathModes()
{
	static const std::vector<std::string> Modes{LodestringModes::Relative, LodestringModes::Absolute};
	return Modes;
}

const std::vector<FLodexQuickInsertInfo>& FLodexRecorderPanel::GetQuickInserts()
{
	static const std::vector<FLodexQuickInsertInfo> Buttons{
		{ELodexQuickInsert::LoadScene, "LoadScene", false},
		{ELodexQuickInsert::ClickObject, "ClickObject", true},
		{ELodexQuickInsert::GetObjectPosition, "GetObjectPosition", true},
		{ELodexQuickInsert::SetObjectPosition, "SetObjectPosition", true},
		{ELodexQuickInsert::WaitForObject, "WaitForObject", true},
	};
	return Buttons;
}

const FLodexQuickInsertInfo& FLodexRecorderPanel::GetQuickInsert(ELodexQuickInsert Button)
{
	return GetQuickInserts()[static_cast<std::size_t>(Button)];
}

std::string FLodexRecorderPanel::MakeQuickInsertLine(ELodexQuickInsert Button, const std::string& Argument)
{
	switch (Button)
	{
		case ELodexQuickInsert::LoadScene:
			return "api.LoadLevel(\"" + Argument + "\"); ";
		case ELodexQuickInsert::ClickObject:
			return "api.ClickObject(MouseButtons.LEFT, \"" + Argument + "\", 10); ";
		case ELodexQuickInsert::GetObjectPosition:
			return "Vector3 spot = api.GetObjectPosition(\"" + Argument + "\"); ";
		case ELodexQuickInsert::SetObjectPosition:
			return "api.CallMethod(\"" + Argument +
				"\", \"K2_SetActorLocation\", new object[] {new Vector3(0, 0, 0)});";
		case ELodexQuickInsert::WaitForObject:
			return "api.WaitForObject(\"" + Argument + "\");";
	}
	return std::string();
}

bool FLodexRecorderPanel::InsertQuickLine(ELodexQuickInsert Button)
{
	const FLodexQuickInsertInfo& Info = GetQuickInsert(Button);
	if (!Info.bTakesObject)
	{
		std::string Level;
		if (!Host.GetCurrentLevelPath(Level))
		{
			return false;
		}
		if (Recorder)
		{
			Recorder->LogButton(Info.Label, nullptr, nullptr, nullptr);
		}
		InsertQuickLineWith(Button, Level);
		return true;
	}
	const FLodexObject Object = Host.GetSelectedObject();
	if (!Object)
	{
		return false;
	}
	const ILodexObjectGraph& Graph = Host.GetObjectGraph();
	const std::string Path = BuildLodestring(Graph, Object, PathMode);
	if (Recorder)
	{
		const std::string Name = Graph.GetName(Object);
		Recorder->LogButton(Info.Label, &Name, &PathMode, &Path);
	}
	InsertQuickLineWith(Button, Path);
	return true;
}

void FLodexRecorderPanel::InsertQuickLineWith(ELodexQuickInsert Button, const std::string& Argument)
{
	AddLine(MakeQuickInsertLine(Button, Argument), ELodexAddLineMode::Append, std::string());
}

FLodexIconButtonInfo FLodexRecorderPanel::GetRecordButton() const
{
	if (IsRecording())
	{
		return {"Icons.Stop", "Click Stop to stop capturing input."};
	}
	return {"Icons.Record", "Click Record to start capturing input."};
}

FLodexIconButtonInfo FLodexRecorderPanel::GetDownloadButton()
{
	return {"Icons.Download", "Download the output"};
}

FLodexIconButtonInfo FLodexRecorderPanel::GetInfoButton()
{
	return {"Icons.Info", "Information"};
}

FLodexIconButtonInfo FLodexRecorderPanel::GetResetButton()
{
	return {"Icons.Reset", "Reset"};
}

FLodexSaveDialogInfo FLodexRecorderPanel::GetSaveDialog()
{
	const std::string Description = "Text File";
	const std::string Pattern = std::string("*.") + "txt";
	FLodexSaveDialogInfo Dialog;
	Dialog.Title = "Save Recorded Input";
	Dialog.DefaultFileName = "RecordedInput.txt";
	// "%s (%s)|%s": the description, the pattern, the pattern again.
	Dialog.FileTypes = Description + " (" + Pattern + ")|" + Pattern;
	return Dialog;
}

std::string FLodexRecorderPanel::MakeDownloadText(std::string_view ShownText)
{
	std::string Text;
	Text.reserve(ShownText.size() + ShownText.size() / 16);
	std::size_t LineStart = 0;
	for (std::size_t Index = 0; Index < ShownText.size();)
	{
		const std::size_t Break = LodexRecorderLineBreakLength(ShownText, Index);
		if (Break == 0)
		{
			++Index;
			continue;
		}
		Text.append(ShownText, LineStart, Index - LineStart);
		Text += LodexText::LineSeparator;
		Index += Break;
		LineStart = Index;
	}
	Text.append(ShownText, LineStart, std::string_view::npos);
	return Text;
}

const char* FLodexRecorderPanel::GetSupportUrl()
{
	return "https://github.com/nxrighthere/UnrealCLR";
}
