// Copyright Lodex contributors.
#pragma once

#include "LodexRecorderHost.h"

#include <cstdint>
#include <string>

/**
 * The lines of test script the recorder writes, each built in one place, byte for byte. Integers are written as the
 * engine's `FString::AppendInt` writes them, floating values as `FString::SanitizeFloat` renders them (both from
 * LodexText). The small differences between like lines (a trailing blank or none, "f, " or "f,", two blanks in the
 * second FPS form of a key press) belong to the format.
 */
namespace LodexScriptLines
{
	/** How a duration is written: the recorded frame count, or seconds turned into frames at replay time. */
	enum class EDurationForm
	{
		Frames,
		Fps,
	};

	/** A recorded duration: the frame count, and the seconds (frames times the world's delta time). */
	struct FDuration
	{
		std::int64_t Frames = 0;
		float Seconds = 0.0f;
	};

	/** The duration of a gesture of that many frames at that frame delta time. */
	FDuration MakeDuration(std::int64_t Frames, float DeltaSeconds);

	/** The first header line, " api = new velt.unreal_api.ApiClient();". */
	std::string MakeClientLine();
	/** The second header line, "api.Connect(\"" host "\");". */
	std::string MakeConnectLine(const std::string& HostName);

	/**
	 * A finished key press. Frame form: "api.KeyPress(new KeyCode[] { KeyCode." K "}, " frames "); //
	 * api.GetLastFPS() * " seconds. FPS form: ... "}, (int)(api.GetLastFPS() * " seconds "));". The second FPS form
	 * has two blanks after "},".
	 */
	std::string MakeKeyPressLine(const std::string& Key, EDurationForm Form, const FDuration& Duration);
	std::string MakeKeyPressSecondFpsLine(const std::string& Key, const FDuration& Duration);
	/** A key press written at once, in VR mode: "api.KeyPress(new KeyCode[] { KeyCode." K "}, 0);". */
	std::string MakeKeyPressAtOnceLine(const std::string& Key);

	/** Key down's placeholder, "//put the " K " event here". */
	std::string MakeKeyPlaceholderLine(const std::string& Key);
	/** Analog input's placeholder, "//Put  " K " here" (two blanks). */
	std::string MakeAnalogPlaceholderLine(const std::string& Key);
	/** Key up's comment for a release without a recorded press, "//" K "ended here". */
	std::string MakeKeyEndedLine(const std::string& Key);

	std::string MakeClickLine(
		std::int32_t Button, std::int32_t X, std::int32_t Y, EDurationForm Form, const FDuration& Duration);
	std::string MakeDoubleClickLine(std::int32_t Button, std::int32_t X, std::int32_t Y, std::int64_t Frames);
	/** A drag from (X2, Y2) to (X1, Y1): the first vector is where the gesture ended, as the format has it. */
	std::string MakeDragLine(std::int32_t Button, std::int32_t X1, std::int32_t Y1, std::int32_t X2, std::int32_t Y2,
		EDurationForm Form, const FDuration& Duration);
	std::string MakeMoveLine(std::int32_t X1, std::int32_t Y1, std::int32_t X2, std::int32_t Y2, EDurationForm Form,
		const FDuration& Duration);
	/** "api.Scroll(0," delta ", " count "); ". */
	std::string MakeScrollLine(std::int32_t Delta, std::int32_t Count);
	/** "api.Wait(" milliseconds "); ". */
	std::string MakeWaitLine(std::uint32_t Milliseconds);
	/** "api.WaitForEmptyInput();". */
	std::string MakeWaitForEmptyInputLine();

	/** " api.CreateInputDevice(\"" N "\",\"" N "\");". */
	std::string MakeCreateInputDeviceLine(const std::string& SystemName);
	/** The VR line of one device's pose: the head-mounted display's, or a controller's grip or aim pose. */
	std::string MakeVRPoseLine(ELodexVRDevice Device, const FLodexVRPose& Pose);

	/** The controller number a device's line ends with: 1 for the left hand, 2 for the right; 0 for the display. */
	int GetControllerNumber(ELodexVRDevice Device);
}
