// Copyright Lodex contributors.
#include "LodexScriptLines.h"

#include "LodexEventRecord.h"

#include "LodexDebugger/Core/Text/LodexText.h"

namespace LodexScriptLines
{
	namespace
	{
		void AppendInt(std::string& Out, std::int64_t Value)
		{
			Out += LodexText::FormatInt(Value);
		}

		/** "(int)(api.GetLastFPS() * " seconds ")" */
		void AppendFpsFrames(std::string& Out, float Seconds)
		{
			Out += "(int)(api.GetLastFPS() * ";
			LodexText::AppendSanitizedFloat(Out, Seconds);
			Out += ")";
		}

		/** The frame count, or the FPS expression. */
		void AppendDuration(std::string& Out, EDurationForm Form, const FDuration& Duration)
		{
			if (Form == EDurationForm::Fps)
			{
				AppendFpsFrames(Out, Duration.Seconds);
			}
			else
			{
				AppendInt(Out, Duration.Frames);
			}
		}

		std::string KeyPressStart(const std::string& Key)
		{
			return "api.KeyPress(new KeyCode[] { KeyCode." + Key + "}, ";
		}

		/** new Vector2( x ", " y ") , " duration ", new Vector2( " x2 ", " y2 "));" */
		void AppendGestureVectors(std::string& Out, std::int32_t X1, std::int32_t Y1, std::int32_t X2, std::int32_t Y2,
			EDurationForm Form, const FDuration& Duration)
		{
			Out += "new Vector2( ";
			AppendInt(Out, X1);
			Out += ", ";
			AppendInt(Out, Y1);
			Out += ") , ";
			AppendDuration(Out, Form, Duration);
			Out += ", new Vector2( ";
			AppendInt(Out, X2);
			Out += ", ";
			AppendInt(Out, Y2);
			Out += "));";
		}

		/** A VR value: the engine's float rendering followed by the letter f. */
		void AppendVRValue(std::string& Out, double Value)
		{
			LodexText::AppendSanitizedFloat(Out, Value);
			Out += "f";
		}
	}

	FDuration MakeDuration(std::int64_t Frames, float DeltaSeconds)
	{
		FDuration Duration;
		Duration.Frames = Frames;
		// Frames times a 32-bit float, as the engine computes it: the product is a 32-bit float.
		Duration.Seconds = static_cast<float>(Frames) * DeltaSeconds;
		return Duration;
	}

	std::string MakeClientLine()
	{
		return " api = new velt.unreal_api.ApiClient();";
	}

	std::string MakeConnectLine(const std::string& HostName)
	{
		return "api.Connect(\"" + HostName + "\");";
	}

	std::string MakeKeyPressLine(const std::string& Key, EDurationForm Form, const FDuration& Duration)
	{
		std::string Line = KeyPressStart(Key);
		if (Form == EDurationForm::Fps)
		{
			AppendFpsFrames(Line, Duration.Seconds);
			Line += ");";
		}
		else
		{
			AppendInt(Line, Duration.Frames);
			Line += "); // api.GetLastFPS() * ";
			LodexText::AppendSanitizedFloat(Line, Duration.Seconds);
		}
		return Line;
	}

	std::string MakeKeyPressSecondFpsLine(const std::string& Key, const FDuration& Duration)
	{
		std::string Line = "api.KeyPress(new KeyCode[] { KeyCode." + Key + "},  ";
		AppendFpsFrames(Line, Duration.Seconds);
		Line += ");";
		return Line;
	}

	std::string MakeKeyPressAtOnceLine(const std::string& Key)
	{
		return KeyPressStart(Key) + "0);";
	}

	std::string MakeKeyPlaceholderLine(const std::string& Key)
	{
		return "//put the " + Key + " event here";
	}

	std::string MakeAnalogPlaceholderLine(const std::string& Key)
	{
		return "//Put  " + Key + " here";
	}

	std::string MakeKeyEndedLine(const std::string& Key)
	{
		return "//" + Key + "ended here";
	}

	std::string MakeClickLine(
		std::int32_t Button, std::int32_t X, std::int32_t Y, EDurationForm Form, const FDuration& Duration)
	{
		std::string Line = "api.Click(MouseButtons.";
		Line += GetLodexMouseButtonScriptName(Button);
		Line += ", new Vector2(";
		AppendInt(Line, X);
		Line += ", ";
		AppendInt(Line, Y);
		Line += "), ";
		AppendDuration(Line, Form, Duration);
		Line += "); ";
		return Line;
	}

	std::string MakeDoubleClickLine(std::int32_t Button, std::int32_t X, std::int32_t Y, std::int64_t Frames)
	{
		std::string Line = "api.DoubleClick(MouseButtons.";
		Line += GetLodexMouseButtonScriptName(Button);
		Line += ", ";
		AppendInt(Line, X);
		Line += ", ";
		AppendInt(Line, Y);
		Line += ", ";
		AppendInt(Line, Frames);
		Line += "); ";
		return Line;
	}

	std::string MakeDragLine(std::int32_t Button, std::int32_t X1, std::int32_t Y1, std::int32_t X2, std::int32_t Y2,
		EDurationForm Form, const FDuration& Duration)
	{
		std::string Line = "api.MouseDrag(MouseButtons.";
		Line += GetLodexMouseButtonScriptName(Button);
		Line += ", ";
		AppendGestureVectors(Line, X1, Y1, X2, Y2, Form, Duration);
		return Line;
	}

	std::string MakeMoveLine(std::int32_t X1, std::int32_t Y1, std::int32_t X2, std::int32_t Y2, EDurationForm Form,
		const FDuration& Duration)
	{
		std::string Line = "api.MouseMoveToPoint(";
		AppendGestureVectors(Line, X1, Y1, X2, Y2, Form, Duration);
		return Line;
	}

	std::string MakeScrollLine(std::int32_t Delta, std::int32_t Count)
	{
		std::string Line = "api.Scroll(0,";
		AppendInt(Line, Delta);
		Line += ", ";
		AppendInt(Line, Count);
		Line += "); ";
		return Line;
	}

	std::string MakeWaitLine(std::uint32_t Milliseconds)
	{
		std::string Line = "api.Wait(";
		AppendInt(Line, Milliseconds);
		Line += "); ";
		return Line;
	}

	std::string MakeWaitForEmptyInputLine()
	{
		return "api.WaitForEmptyInput();";
	}

	std::string MakeCreateInputDeviceLine(const std::string& SystemName)
	{
		return " api.CreateInputDevice(\"" + SystemName + "\",\"" + SystemName + "\");";
	}

	int GetControllerNumber(ELodexVRDevice Device)
	{
		switch (Device)
		{
			case ELodexVRDevice::LeftGrip:
			case ELodexVRDevice::LeftAim:
				return 1;
			case ELodexVRDevice::RightGrip:
			case ELodexVRDevice::RightAim:
				return 2;
			case ELodexVRDevice::Hmd:
				break;
		}
		return 0;
	}

	std::string MakeVRPoseLine(ELodexVRDevice Device, const FLodexVRPose& Pose)
	{
		const bool bDisplay = Device == ELodexVRDevice::Hmd;
		const bool bGrip = Device == ELodexVRDevice::LeftGrip || Device == ELodexVRDevice::RightGrip;
		// The display's position components are separated with "f, ", a controller's with "f,".
		const char* PositionSeparator = bDisplay ? ", " : ",";

		std::string Line = "api.VRInput(\"";
		Line += bDisplay ? "" : (bGrip ? "Grip" : "Aim");
		Line += "\", new Vector3(";
		AppendVRValue(Line, Pose.Position.X);
		Line += PositionSeparator;
		AppendVRValue(Line, Pose.Position.Y);
		Line += PositionSeparator;
		AppendVRValue(Line, Pose.Position.Z);
		Line += "), new Quaternion(";
		AppendVRValue(Line, Pose.Rotation.X);
		Line += ", ";
		AppendVRValue(Line, Pose.Rotation.Y);
		Line += ", ";
		AppendVRValue(Line, Pose.Rotation.Z);
		Line += ", ";
		AppendVRValue(Line, Pose.Rotation.W);
		Line += "), ";
		if (bDisplay)
		{
			Line += "0); ";
		}
		else
		{
			AppendInt(Line, GetControllerNumber(Device));
			Line += ");";
		}
		return Line;
	}
}
