// Copyright Lodex contributors.
#include "InputLogReplay.h"

#include "Cli/JsonErrors.h"
#include "RecorderReplayHost.h"
#include "Scenes/SceneSnapshot.h"

#include "LodexDebugger/Core/Recorder/LodexInputLog.h"
#include "LodexDebugger/Core/Recorder/LodexRecorderPanel.h"
#include "LodexDebugger/Core/Text/LodexText.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <limits>

namespace
{
	/** The longest frame time a tick may give, in seconds: an hour. */
	constexpr double LodexInputLogMaxTickDelta = 3600.0;

	using FJson = nlohmann::json;

	/** Reads the fields of one line; the first problem found is kept as the line's error. */
	class FLogLine
	{
	public:
		FLogLine(const FJson& InObject, std::string& InError)
			: Object(InObject)
			, Error(InError)
		{
		}

		bool Has(const char* Name) const { return Object.find(Name) != Object.end(); }

		bool Fail(const std::string& Message)
		{
			if (Error.empty())
			{
				Error = Message;
			}
			return false;
		}

		const FJson* Find(const char* Name, bool bRequired)
		{
			const auto Found = Object.find(Name);
			if (Found == Object.end())
			{
				if (bRequired)
				{
					Fail(std::string("missing field '") + Name + "'");
				}
				return nullptr;
			}
			return &*Found;
		}

		bool WrongType(const char* Name, const char* Expected, const FJson& Value)
		{
			return Fail(std::string("field '") + Name + "' must be " + Expected + ", found " + Value.type_name());
		}

		bool Unsigned(const char* Name, std::uint64_t Max, std::uint64_t& Out, bool bRequired = true)
		{
			const FJson* Value = Find(Name, bRequired);
			if (Value == nullptr)
			{
				return !bRequired;
			}
			if (!Value->is_number_unsigned() || Value->get<std::uint64_t>() > Max)
			{
				return Value->is_number_unsigned() ? Fail(std::string("field '") + Name + "' is too large")
												   : WrongType(Name, "an unsigned integer", *Value);
			}
			Out = Value->get<std::uint64_t>();
			return true;
		}

		bool Number(const char* Name, double& Out, bool bRequired = true)
		{
			const FJson* Value = Find(Name, bRequired);
			if (Value == nullptr)
			{
				return !bRequired;
			}
			if (!Value->is_number())
			{
				return WrongType(Name, "a number", *Value);
			}
			Out = Value->get<double>();
			return true;
		}

		bool Bool(const char* Name, bool& Out)
		{
			const FJson* Value = Find(Name, true);
			if (Value == nullptr)
			{
				return false;
			}
			if (!Value->is_boolean())
			{
				return WrongType(Name, "true or false", *Value);
			}
			Out = Value->get<bool>();
			return true;
		}

		bool String(const char* Name, std::string& Out, bool bRequired = true)
		{
			const FJson* Value = Find(Name, bRequired);
			if (Value == nullptr)
			{
				return !bRequired;
			}
			if (!Value->is_string())
			{
				return WrongType(Name, "a string", *Value);
			}
			const std::string ControlCharacter = LodexText::FindControlCharacter(Value->get_ref<const std::string&>());
			if (!ControlCharacter.empty())
			{
				return Fail(std::string("field '") + Name +
					"' must be one line of text: it holds the control character " + ControlCharacter);
			}
			Out = Value->get<std::string>();
			return true;
		}

		/** An array of exactly Count numbers. */
		bool Numbers(const char* Name, std::size_t Count, double* Out)
		{
			const FJson* Value = Find(Name, true);
			if (Value == nullptr)
			{
				return false;
			}
			if (!Value->is_array() || Value->size() != Count)
			{
				return Fail(
					std::string("field '") + Name + "' must be an array of " + std::to_string(Count) + " numbers");
			}
			for (std::size_t Index = 0; Index < Count; ++Index)
			{
				if (!(*Value)[Index].is_number())
				{
					return Fail(
						std::string("field '") + Name + "' must be an array of " + std::to_string(Count) + " numbers");
				}
				Out[Index] = (*Value)[Index].get<double>();
			}
			return true;
		}

		/** {"left", "top", "width", "height"}. */
		bool Viewport(const char* Name, FLodexViewportRect& Out, bool& bOutPresent)
		{
			const FJson* Value = Find(Name, false);
			bOutPresent = Value != nullptr;
			if (Value == nullptr)
			{
				return true;
			}
			if (!Value->is_object())
			{
				return WrongType(Name, "an object", *Value);
			}
			std::string InnerError;
			FLogLine Inner(*Value, InnerError);
			std::uint64_t Width = 0;
			std::uint64_t Height = 0;
			const std::uint64_t MaxSize = static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max());
			if (!Inner.Number("left", Out.Left) || !Inner.Number("top", Out.Top) ||
				!Inner.Unsigned("width", MaxSize, Width) || !Inner.Unsigned("height", MaxSize, Height))
			{
				return Fail(std::string("field '") + Name + "': " + InnerError);
			}
			Out.Width = static_cast<std::int32_t>(Width);
			Out.Height = static_cast<std::int32_t>(Height);
			return true;
		}

	private:
		const FJson& Object;
		std::string& Error;
	};

	/** The replay of one log: the editor model it drives and where it is in the log. */
	class FInputLogPlayer
	{
	public:
		explicit FInputLogPlayer(const FInputLogReplayOptions& InOptions)
			: Options(InOptions)
			, Panel(Host)
		{
		}

		bool PlaySession(FLogLine& Line, FInputLogReplay& Out)
		{
			std::uint64_t Version = 0;
			if (!Line.Has("lodexInputLog"))
			{
				return Line.Fail("the first line must be the session line, {\"lodexInputLog\": 1, ...}");
			}
			if (!Line.Unsigned("lodexInputLog", std::numeric_limits<std::uint32_t>::max(), Version))
			{
				return false;
			}
			if (Version != static_cast<std::uint64_t>(LodexInputLog::Version))
			{
				return Line.Fail("input log version " + std::to_string(Version) + " is not known (this lodex reads " +
					std::to_string(LodexInputLog::Version) + ")");
			}
			std::string HostName;
			std::string Level;
			FLodexViewportRect Viewport;
			bool bHasViewport = false;
			if (!Line.String("host", HostName) || !Line.Viewport("viewport", Viewport, bHasViewport) ||
				!Line.String("level", Level, false))
			{
				return false;
			}
			Host.SetHostName(HostName);
			if (Line.Has("level"))
			{
				Host.SetLevelPath(Level);
			}
			if (bHasViewport)
			{
				Host.SetViewport(Viewport);
			}
			Out.HostName = HostName;
			if (Options.bForceFps)
			{
				Panel.SetUseFps(true);
			}
			Panel.Record(nullptr);
			return true;
		}

		bool PlayEvent(FLogLine& Line, FInputLogReplay& Out)
		{
			std::uint64_t Frame = 0;
			std::string Type;
			if (!Line.Unsigned("frame", std::numeric_limits<std::uint32_t>::max(), Frame) || !Line.String("type", Type))
			{
				return false;
			}
			if (Out.EventCount > 0 && Frame < Out.LastFrame)
			{
				return Line.Fail("frame " + std::to_string(Frame) + " comes after frame " +
					std::to_string(Out.LastFrame) + ": frames must never decrease");
			}
			if (Out.EventCount == 0)
			{
				Out.FirstFrame = static_cast<std::uint32_t>(Frame);
			}
			Out.LastFrame = static_cast<std::uint32_t>(Frame);
			++Out.EventCount;
			Host.SetFrame(static_cast<std::uint32_t>(Frame));
			FLodexInputRecorder& Recorder = *Panel.GetRecorder();

			if (Type == "keyDown" || Type == "keyUp" || Type == "analog")
			{
				FLodexKeyInput Input;
				double Value = 0.0;
				if (!Line.String("key", Input.Key) || !Line.Number("value", Value, false))
				{
					return false;
				}
				Input.AnalogValue = static_cast<float>(Value);
				Type == "keyDown" ? Recorder.HandleKeyDown(Input)
								  : (Type == "keyUp" ? Recorder.HandleKeyUp(Input) : Recorder.HandleAnalogInput(Input));
				return true;
			}
			if (Type == "mouseDown" || Type == "mouseUp" || Type == "doubleClick" || Type == "move" || Type == "wheel")
			{
				FLodexPointerInput Input;
				double Delta = 0.0;
				if (!Line.Number("x", Input.ScreenX) || !Line.Number("y", Input.ScreenY) ||
					!Line.String("button", Input.Button, false) || !Line.Number("delta", Delta, Type == "wheel"))
				{
					return false;
				}
				Input.WheelDelta = static_cast<float>(Delta);
				if (Type == "mouseDown")
				{
					Recorder.HandleMouseButtonDown(Input);
				}
				else if (Type == "mouseUp")
				{
					Recorder.HandleMouseButtonUp(Input);
				}
				else if (Type == "doubleClick")
				{
					Recorder.HandleMouseButtonDoubleClick(Input);
				}
				else if (Type == "move")
				{
					Recorder.HandleMouseMove(Input);
				}
				else
				{
					Recorder.HandleMouseWheel(Input);
				}
				return true;
			}
			if (Type == "tick")
			{
				double Delta = 0.0;
				if (!Line.Number("delta", Delta))
				{
					return false;
				}
				// A frame's time goes into script lines as durations and waits: none is negative or endless.
				if (!(Delta >= 0.0 && Delta <= LodexInputLogMaxTickDelta))
				{
					return Line.Fail("field 'delta' must be a frame time of 0 to 3600 seconds");
				}
				Host.SetDeltaSeconds(static_cast<float>(Delta));
				Recorder.Tick();
				return true;
			}
			if (Type == "pie")
			{
				bool bRunning = false;
				FLodexViewportRect Viewport;
				bool bHasViewport = false;
				if (!Line.Bool("running", bRunning) || !Line.Viewport("viewport", Viewport, bHasViewport))
				{
					return false;
				}
				if (bRunning && bHasViewport)
				{
					Host.SetViewport(Viewport);
				}
				Host.SetPlaying(bRunning);
				return true;
			}
			if (Type == "useFps")
			{
				bool bValue = false;
				if (!Line.Bool("value", bValue))
				{
					return false;
				}
				if (!Options.bForceFps)
				{
					Panel.SetUseFps(bValue);
				}
				return true;
			}
			if (Type == "button")
			{
				return PlayButton(Line);
			}
			if (Type == "vr")
			{
				bool bTracking = false;
				std::string System;
				if (!Line.Bool("tracking", bTracking) || !Line.String("system", System))
				{
					return false;
				}
				Host.SetVR(bTracking, System);
				return true;
			}
			if (Type == "pose")
			{
				return PlayPose(Line);
			}
			return Line.Fail("unknown type '" + Type + "'");
		}

		bool PlayButton(FLogLine& Line)
		{
			std::string Name;
			if (!Line.String("name", Name))
			{
				return false;
			}
			const FLodexQuickInsertInfo* Button = nullptr;
			for (const FLodexQuickInsertInfo& Info : FLodexRecorderPanel::GetQuickInserts())
			{
				Button = Name == Info.Label ? &Info : Button;
			}
			if (Button == nullptr)
			{
				return Line.Fail("unknown button '" + Name +
					"' (LoadScene, ClickObject, GetObjectPosition, SetObjectPosition or WaitForObject)");
			}
			if (!Button->bTakesObject)
			{
				Panel.InsertQuickLine(Button->Button);
				return true;
			}
			if (Options.Scene != nullptr)
			{
				std::string ObjectName;
				std::string Mode;
				if (!Line.String("object", ObjectName) || !Line.String("mode", Mode))
				{
					return false;
				}
				std::string FindError;
				const FLodexObject Object = Options.Scene->FindObject(ObjectName, FindError);
				if (!Object)
				{
					return Line.Fail("the scene: " + FindError);
				}
				Host.SetSelection(Object, Options.Scene);
				Panel.SetPathMode(Mode);
				Panel.InsertQuickLine(Button->Button);
				return true;
			}
			std::string Lodestring;
			if (!Line.Has("lodestring"))
			{
				return Line.Fail(
					"button '" + Name + "' needs --scene FILE to find its object (or a 'lodestring' field)");
			}
			if (!Line.String("lodestring", Lodestring))
			{
				return false;
			}
			Panel.InsertQuickLineWith(Button->Button, Lodestring);
			return true;
		}

		bool PlayPose(FLogLine& Line)
		{
			std::string Device;
			double Position[3];
			double Rotation[4];
			if (!Line.String("device", Device))
			{
				return false;
			}
			ELodexVRDevice Which = ELodexVRDevice::Hmd;
			if (Device != "hmd")
			{
				if (Device != "grip" && Device != "aim")
				{
					return Line.Fail("field 'device' must be \"hmd\", \"grip\" or \"aim\"");
				}
				std::uint64_t Hand = 0;
				if (!Line.Unsigned("hand", 2, Hand))
				{
					return false;
				}
				if (Hand != 1 && Hand != 2)
				{
					return Line.Fail("field 'hand' must be 1 or 2");
				}
				const bool bGrip = Device == "grip";
				Which = Hand == 1 ? (bGrip ? ELodexVRDevice::LeftGrip : ELodexVRDevice::LeftAim)
								  : (bGrip ? ELodexVRDevice::RightGrip : ELodexVRDevice::RightAim);
			}
			if (!Line.Numbers("position", 3, Position) || !Line.Numbers("rotation", 4, Rotation))
			{
				return false;
			}
			FLodexVRPose Pose;
			Pose.Position = FLodexVector3{Position[0], Position[1], Position[2]};
			Pose.Rotation = FLodexQuat{Rotation[0], Rotation[1], Rotation[2], Rotation[3]};
			Host.SetPose(Which, Pose);
			return true;
		}

		void Stop(FInputLogReplay& Out)
		{
			Panel.Stop();
			Out.Script = std::string(Panel.GetOutputText());
			Out.Lines = Panel.GetLines();
		}

	private:
		const FInputLogReplayOptions& Options;
		FRecorderReplayHost Host;
		FLodexRecorderPanel Panel;
	};

	bool IsBlankLogLine(const std::string& Line)
	{
		return Line.find_first_not_of(" \t\r") == std::string::npos;
	}
}

bool ReplayInputLog(const std::string& Text, const std::string& SourceName, const FInputLogReplayOptions& Options,
	FInputLogReplay& Out, std::string& OutError)
{
	Out = FInputLogReplay();
	FInputLogPlayer Player(Options);
	bool bHasSession = false;
	std::size_t Start = 0;
	std::size_t LineNumber = 0;
	while (Start < Text.size())
	{
		std::size_t End = Text.find('\n', Start);
		if (End == std::string::npos)
		{
			End = Text.size();
		}
		const std::string LineText = Text.substr(Start, End - Start);
		Start = End + 1;
		++LineNumber;
		if (IsBlankLogLine(LineText))
		{
			continue;
		}
		const std::string Where = SourceName + ":" + std::to_string(LineNumber);
		// Most lines parse: the parse that finds where and why a line does not runs only for the others.
		FJson Object = LineText.find('\0') == std::string::npos ? FJson::parse(LineText, nullptr, false)
																: FJson(FJson::value_t::discarded);
		FJsonTextError TextError;
		if (Object.is_discarded() && FindJsonTextError<FJson>(LineText, TextError))
		{
			// The line is one line of text: its column is the column in the file.
			const std::string Position = DescribeJsonPosition(LineText, TextError.ByteOffset);
			OutError = Where + ":" + Position.substr(Position.find(':') + 1) + ": " + TextError.Reason;
			return false;
		}
		try
		{
			if (Object.is_discarded())
			{
				Object = FJson::parse(LineText);
			}
		}
		catch (const FJson::exception& Error)
		{
			OutError = Where + ": " + DescribeJsonParseReason(Error.what());
			return false;
		}
		if (!Object.is_object())
		{
			OutError = Where + ": expected a JSON object, found " + Object.type_name();
			return false;
		}
		std::string Error;
		FLogLine Line(Object, Error);
		try
		{
			const bool bPlayed = bHasSession ? Player.PlayEvent(Line, Out) : Player.PlaySession(Line, Out);
			if (!bPlayed)
			{
				OutError = Where + ": " + Error;
				return false;
			}
		}
		catch (const FJson::exception& Exception)
		{
			OutError = Where + ": " + DescribeJsonParseReason(Exception.what());
			return false;
		}
		bHasSession = true;
	}
	Out.LineCount = LineNumber;
	if (!bHasSession)
	{
		OutError = SourceName + ": no session line: the log is empty";
		return false;
	}
	Player.Stop(Out);
	return true;
}
