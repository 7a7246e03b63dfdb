// Copyright Lodex contributors.
#include "LodexInputLog.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace LodexInputLog
{
	namespace
	{
		/** Builds one JSON object: {"a": 1, "b": "x"}, fields in the order added. */
		class FLodexJsonLine
		{
		public:
			FLodexJsonLine() { Text = "{"; }

			FLodexJsonLine& Raw(const char* Name, const std::string& Value)
			{
				if (Text.size() > 1)
				{
					Text += ", ";
				}
				Text += '"';
				Text += Name;
				Text += "\": ";
				Text += Value;
				return *this;
			}
			FLodexJsonLine& Int(const char* Name, std::int64_t Value) { return Raw(Name, LodexText::FormatInt(Value)); }
			FLodexJsonLine& Double(const char* Name, double Value) { return Raw(Name, FormatJsonDouble(Value)); }
			FLodexJsonLine& Float(const char* Name, float Value) { return Raw(Name, FormatJsonFloat(Value)); }
			FLodexJsonLine& Bool(const char* Name, bool bValue) { return Raw(Name, bValue ? "true" : "false"); }
			FLodexJsonLine& String(const char* Name, const std::string& Value) { return Raw(Name, QuoteJson(Value)); }

			std::string Finish()
			{
				Text += "}";
				return std::move(Text);
			}

		private:
			std::string Text;
		};

		FLodexJsonLine StartEvent(std::uint32_t Frame, const char* Type)
		{
			FLodexJsonLine Line;
			Line.Int("frame", Frame).String("type", Type);
			return Line;
		}

		std::string FormatViewport(const FLodexViewportRect& Viewport)
		{
			FLodexJsonLine Object;
			Object.Double("left", Viewport.Left)
				.Double("top", Viewport.Top)
				.Int("width", Viewport.Width)
				.Int("height", Viewport.Height);
			return Object.Finish();
		}

		std::string TwoDigits(int Value)
		{
			std::string Text = LodexText::FormatInt(Value);
			return Text.size() < 2 ? "0" + Text : Text;
		}
	}

	std::string QuoteJson(const std::string& Text)
	{
		std::string Quoted = "\"";
		for (const char Char : Text)
		{
			const unsigned char Byte = static_cast<unsigned char>(Char);
			switch (Char)
			{
				case '"':
					Quoted += "\\\"";
					break;
				case '\\':
					Quoted += "\\\\";
					break;
				case '\n':
					Quoted += "\\n";
					break;
				case '\r':
					Quoted += "\\r";
					break;
				case '\t':
					Quoted += "\\t";
					break;
				default:
					if (Byte < 0x20)
					{
						char Escape[8];
						std::snprintf(Escape, sizeof(Escape), "\\u%04x", static_cast<unsigned>(Byte));
						Quoted += Escape;
					}
					else
					{
						Quoted += Char;
					}
			}
		}
		Quoted += '"';
		return Quoted;
	}

	std::string FormatJsonDouble(double Value)
	{
		if (!std::isfinite(Value))
		{
			return "0";
		}
		// Whole pixels are the common case: written as integers (negative zero keeps its sign).
		if (Value == std::floor(Value) && std::fabs(Value) < 1e15 && !(Value == 0.0 && std::signbit(Value)))
		{
			return LodexText::FormatInt(static_cast<std::int64_t>(Value));
		}
		char Buffer[40];
		for (int Precision = 15; Precision <= 17; ++Precision)
		{
			std::snprintf(Buffer, sizeof(Buffer), "%.*g", Precision, Value);
			if (Precision == 17 || std::strtod(Buffer, nullptr) == Value)
			{
				break;
			}
		}
		return Buffer;
	}

	std::string FormatJsonFloat(float Value)
	{
		if (!std::isfinite(Value))
		{
			return "0";
		}
		char Buffer[32];
		for (int Precision = 6; Precision <= 9; ++Precision)
		{
			std::snprintf(Buffer, sizeof(Buffer), "%.*g", Precision, static_cast<double>(Value));
			if (Precision == 9 || std::strtof(Buffer, nullptr) == Value)
			{
				break;
			}
		}
		return Buffer;
	}

	std::string MakeFileName(int Year, int Month, int Day, int Hour, int Minute, int Second)
	{
		return std::string(FilePrefix) + LodexText::FormatInt(Year) + TwoDigits(Month) + TwoDigits(Day) + "-" +
			TwoDigits(Hour) + TwoDigits(Minute) + TwoDigits(Second) + FileExtension;
	}

	std::string MakeSessionLine(
		const std::string& HostName, const FLodexViewportRect* Viewport, const std::string* LevelPath)
	{
		FLodexJsonLine Line;
		Line.Int("lodexInputLog", Version).String("host", HostName);
		if (Viewport != nullptr)
		{
			Line.Raw("viewport", FormatViewport(*Viewport));
		}
		if (LevelPath != nullptr)
		{
			Line.String("level", *LevelPath);
		}
		return Line.Finish();
	}

	std::string MakeKeyLine(std::uint32_t Frame, const char* Type, const std::string& Key)
	{
		return StartEvent(Frame, Type).String("key", Key).Finish();
	}

	std::string MakeAnalogLine(std::uint32_t Frame, const std::string& Key, float Value)
	{
		return StartEvent(Frame, "analog").String("key", Key).Float("value", Value).Finish();
	}

	std::string MakePointerLine(
		std::uint32_t Frame, const char* Type, double X, double Y, const std::string& Button, const float* WheelDelta)
	{
		FLodexJsonLine Line = StartEvent(Frame, Type);
		Line.Double("x", X).Double("y", Y);
		if (!Button.empty())
		{
			Line.String("button", Button);
		}
		if (WheelDelta != nullptr)
		{
			Line.Float("delta", *WheelDelta);
		}
		return Line.Finish();
	}

	std::string MakeTickLine(std::uint32_t Frame, float DeltaSeconds)
	{
		return StartEvent(Frame, "tick").Float("delta", DeltaSeconds).Finish();
	}

	std::string MakePieLine(std::uint32_t Frame, const FLodexViewportRect* Viewport)
	{
		FLodexJsonLine Line = StartEvent(Frame, "pie");
		Line.Bool("running", Viewport != nullptr);
		if (Viewport != nullptr)
		{
			Line.Raw("viewport", FormatViewport(*Viewport));
		}
		return Line.Finish();
	}

	std::string MakeUseFpsLine(std::uint32_t Frame, bool bUseFps)
	{
		return StartEvent(Frame, "useFps").Bool("value", bUseFps).Finish();
	}

	std::string MakeButtonLine(std::uint32_t Frame, const char* Name, const std::string* ObjectName,
		const std::string* Mode, const std::string* Lodestring)
	{
		FLodexJsonLine Line = StartEvent(Frame, "button");
		Line.String("name", Name);
		if (ObjectName != nullptr)
		{
			Line.String("object", *ObjectName);
		}
		if (Mode != nullptr)
		{
			Line.String("mode", *Mode);
		}
		if (Lodestring != nullptr)
		{
			Line.String("lodestring", *Lodestring);
		}
		return Line.Finish();
	}

	std::string MakeVRLine(std::uint32_t Frame, bool bTracking, const std::string& SystemName)
	{
		return StartEvent(Frame, "vr").Bool("tracking", bTracking).String("system", SystemName).Finish();
	}

	std::string MakePoseLine(std::uint32_t Frame, ELodexVRDevice Device, const FLodexVRPose& Pose)
	{
		FLodexJsonLine Line = StartEvent(Frame, "pose");
		switch (Device)
		{
			case ELodexVRDevice::Hmd:
				Line.String("device", "hmd");
				break;
			case ELodexVRDevice::LeftGrip:
			case ELodexVRDevice::RightGrip:
				Line.String("device", "grip").Int("hand", Device == ELodexVRDevice::LeftGrip ? 1 : 2);
				break;
			case ELodexVRDevice::LeftAim:
			case ELodexVRDevice::RightAim:
				Line.String("device", "aim").Int("hand", Device == ELodexVRDevice::LeftAim ? 1 : 2);
				break;
		}
		const FLodexVector3& P = Pose.Position;
		const FLodexQuat& Q = Pose.Rotation;
		Line.Raw("position",
			"[" + FormatJsonDouble(P.X) + ", " + FormatJsonDouble(P.Y) + ", " + FormatJsonDouble(P.Z) + "]");
		Line.Raw("rotation",
			"[" + FormatJsonDouble(Q.X) + ", " + FormatJsonDouble(Q.Y) + ", " + FormatJsonDouble(Q.Z) + ", " +
				FormatJsonDouble(Q.W) + "]");
		return Line.Finish();
	}
}
