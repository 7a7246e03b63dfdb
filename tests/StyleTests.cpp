// Copyright Lodex contributors.
#include "TempDir.h"

#include "LodexDebugger/Core/LodexStyle.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace
{
	/** The style set's engine calls, recorded; the instance's other holders are counted by the test. */
	class FRecordingStyleHost final : public ILodexStyleHost
	{
	public:
		std::string GetFullProjectPluginsDir() const override { return PluginsDir; }
		void CreateStyleSet(const char* Name) override
		{
			Calls.push_back(std::string("CreateStyleSet ") + Name);
			bHeld = true;
		}
		void SetContentRoot(const std::string& ContentRoot) override
		{
			Calls.push_back("SetContentRoot " + ContentRoot);
		}
		void AddTextStyle(const FLodexTextStyleInfo& Style) override
		{
			Calls.push_back(std::string("AddTextStyle ") + Style.Name);
		}
		void AddImageBrush(const FLodexBrushInfo& Brush, const std::string& FilePath) override
		{
			Calls.push_back(std::string("AddImageBrush ") + Brush.Name + " " + FilePath);
		}
		void RegisterStyleSet() override
		{
			Calls.push_back("RegisterStyleSet");
			++Registered;
		}
		void UnregisterStyleSet() override
		{
			Calls.push_back("UnregisterStyleSet");
			--Registered;
		}
		bool IsStyleInstanceUnique() const override { return OtherHolders == 0; }
		void ReportEnsureFailure(const char* Expression) override
		{
			Calls.push_back(std::string("Ensure ") + Expression);
		}
		void ReleaseStyleSet() override
		{
			Calls.push_back("ReleaseStyleSet");
			bHeld = false;
		}

		std::vector<std::string> TakeCalls()
		{
			std::vector<std::string> Taken;
			Taken.swap(Calls);
			return Taken;
		}

		std::string PluginsDir = "/home/tester/Game/Plugins/";
		int OtherHolders = 0;
		int Registered = 0;
		bool bHeld = false;
		std::vector<std::string> Calls;
	};

	TEST(LodexStyleSet, FirstInitializeCreatesEverythingInTableOrderThenRegisters)
	{
		FRecordingStyleHost Host;
		FLodexStyleSet Style;
		EXPECT_TRUE(Style.Initialize(Host));
		const std::string Root = "/home/tester/Game/Plugins/UnrealCLR";
		EXPECT_EQ(Host.TakeCalls(),
			(std::vector<std::string>{
				"CreateStyleSet VELTStyle",
				"SetContentRoot " + Root,
				"AddTextStyle Regular",
				"AddTextStyle VELT.Error",
				"AddTextStyle VELT.Highlight",
				"AddTextStyle VELT.Bold",
				"AddImageBrush Icons.Record " + Root + "/Resources/Record_icon.png",
				"AddImageBrush Icons.Download " + Root + "/Resources/Download_icon.png",
				"AddImageBrush Icons.Stop " + Root + "/Resources/Stop_icon.png",
				"AddImageBrush Icons.Info " + Root + "/Resources/Info_icon.png",
				"AddImageBrush Icons.Reset " + Root + "/Resources/Reset_icon.png",
				"RegisterStyleSet",
			}));
		EXPECT_STREQ(FLodexStyleSet::GetStyleSetName(), "VELTStyle");
	}

	TEST(LodexStyleSet, InitializeTwiceRegistersOneSet)
	{
		FRecordingStyleHost Host;
		FLodexStyleSet Style;
		EXPECT_TRUE(Style.Initialize(Host));
		Host.TakeCalls();
		// A second panel opened, then a third: each calls Initialize before using a style.
		EXPECT_FALSE(Style.Initialize(Host));
		EXPECT_FALSE(Style.Initialize(Host));
		EXPECT_TRUE(Host.TakeCalls().empty());
		EXPECT_EQ(Host.Registered, 1);
		EXPECT_TRUE(Style.HasInstance());
	}

	TEST(LodexStyleSet, ShutdownUnregistersEnsuresUniquenessAndReleases)
	{
		struct FRow
		{
			int OtherHolders;
			std::vector<std::string> Expected;
		};
		const std::vector<FRow> Rows{
			{0, {"UnregisterStyleSet", "ReleaseStyleSet"}},
			{1, {"UnregisterStyleSet", "Ensure StyleInstance.IsUnique()", "ReleaseStyleSet"}},
		};
		for (const FRow& Row : Rows)
		{
			FRecordingStyleHost Host;
			FLodexStyleSet Style;
			Style.Initialize(Host);
			Host.TakeCalls();
			Host.OtherHolders = Row.OtherHolders;
			Style.Shutdown(Host);
			EXPECT_EQ(Host.TakeCalls(), Row.Expected) << Row.OtherHolders << " other holder(s)";
			EXPECT_EQ(Host.Registered, 0);
			EXPECT_FALSE(Host.bHeld);
			EXPECT_FALSE(Style.HasInstance());
		}
	}

	TEST(LodexStyleSet, ShutdownWithoutAnInstanceDoesNothingAndInitializeAfterShutdownCreatesAgain)
	{
		FRecordingStyleHost Host;
		FLodexStyleSet Style;
		Style.Shutdown(Host);
		EXPECT_TRUE(Host.TakeCalls().empty());
		Style.Initialize(Host);
		Style.Shutdown(Host);
		Host.TakeCalls();
		EXPECT_TRUE(Style.Initialize(Host));
		EXPECT_EQ(Host.Registered, 1);
	}

	TEST(LodexStyleContent, InfoIconIsInfoIconPngInTheResourcesFolderUnderTheContentRoot)
	{
		const std::string Root = MakeLodexStyleContentRoot("/home/tester/My Game/Plugins/");
		EXPECT_EQ(Root, "/home/tester/My Game/Plugins/UnrealCLR");
		const FLodexBrushInfo* Info = FindLodexBrush("Icons.Info");
		ASSERT_NE(Info, nullptr);
		EXPECT_EQ(GetLodexBrushFilePath(Root, *Info), "/home/tester/My Game/Plugins/UnrealCLR/Resources/Info_icon.png");
		EXPECT_EQ(LodexRootToContentDir(Root, "Resources/Info_icon", ".png"),
			"/home/tester/My Game/Plugins/UnrealCLR/Resources/Info_icon.png");
		EXPECT_EQ(FindLodexBrush("Icons.info"), nullptr);
	}

	TEST(LodexStyleContent, ContentRootAppendsThePluginFolderWithoutAddingASlash)
	{
		// The plugins folder ends in "/" as the engine returns it; nothing is inserted or removed.
		EXPECT_EQ(MakeLodexStyleContentRoot("C:/Projects/Game/Plugins/"), "C:/Projects/Game/Plugins/UnrealCLR");
		EXPECT_EQ(MakeLodexStyleContentRoot("/p/Plugins"), "/p/PluginsUnrealCLR");
	}

	TEST(LodexPathAppend, JoinsAsTheEngineSlashOperator)
	{
		struct FRow
		{
			const char* Left;
			const char* Right;
			const char* Expected;
		};
		const FRow Rows[] = {
			{"root", "Resources/x", "root/Resources/x"},
			{"root/", "Resources/x", "root/Resources/x"},
			{"root\\", "Resources/x", "root\\Resources/x"},
			{"root", "/Resources/x", "root/Resources/x"},
			{"root/", "/Resources/x", "root//Resources/x"},
			{"", "Resources/x", "Resources/x"},
			{"", "/x", "/x"},
			{"root", "", "root/"},
			{"root/", "", "root/"},
			{"root\\", "", "root\\"},
			{"", "", ""},
			{"r", "x", "r/x"},
		};
		for (const FRow& Row : Rows)
		{
			EXPECT_EQ(LodexPathAppend(Row.Left, Row.Right), Row.Expected)
				<< "'" << Row.Left << "' / '" << Row.Right << "'";
		}
		EXPECT_EQ(LodexRootToContentDir("root", "", ".png"), "root/.png");
	}

	struct FColorRow
	{
		ELodexColorKind Kind;
		std::vector<float> Components;
	};

	void ExpectColor(const FLodexStyleColor& Color, const FColorRow& Expected, const char* What)
	{
		EXPECT_EQ(Color.Kind, Expected.Kind) << What;
		if (Expected.Kind != ELodexColorKind::UseForeground)
		{
			EXPECT_EQ((std::vector<float>{Color.R, Color.G, Color.B, Color.A}), Expected.Components) << What;
		}
	}

	TEST(LodexTextStyles, MatchTheStyleTable)
	{
		struct FRow
		{
			const char* Name;
			int FontSize;
			FColorRow Color;
			float ShadowX;
			float ShadowY;
			FColorRow ShadowColor;
		};
		const FColorRow Foreground{ELodexColorKind::UseForeground, {}};
		const FColorRow Black{ELodexColorKind::Linear, {0.0f, 0.0f, 0.0f, 1.0f}};
		const FColorRow Yellow{ELodexColorKind::Linear, {1.0f, 1.0f, 0.0f, 1.0f}};
		const FColorRow Red8{ELodexColorKind::Color8, {255.0f, 0.0f, 0.0f, 255.0f}};
		const FColorRow White8{ELodexColorKind::Color8, {255.0f, 255.0f, 255.0f, 255.0f}};
		const FColorRow Highlight{ELodexColorKind::Linear, {1.0f, 0.9f, 0.0f, 1.0f}};
		const std::vector<FRow> Rows{
			{"Regular", 12, Foreground, 0.0f, 0.0f, Black},
			{"VELT.Error", 14, Red8, 0.0f, 0.0f, Black},
			{"VELT.Highlight", 14, White8, 0.0f, -1.0f, Yellow},
			{"VELT.Bold", 14, White8, 0.0f, -1.0f, Yellow},
		};
		const std::vector<FLodexTextStyleInfo>& Styles = GetLodexTextStyles();
		ASSERT_EQ(Styles.size(), Rows.size());
		for (std::size_t Index = 0; Index < Rows.size(); ++Index)
		{
			const FLodexTextStyleInfo& Style = Styles[Index];
			const FRow& Row = Rows[Index];
			SCOPED_TRACE(Row.Name);
			EXPECT_STREQ(Style.Name, Row.Name);
			EXPECT_STREQ(Style.Typeface, "Roboto");
			EXPECT_EQ(Style.FontSize, Row.FontSize);
			ExpectColor(Style.Color, Row.Color, "colour");
			EXPECT_EQ(Style.ShadowOffset.X, Row.ShadowX);
			EXPECT_EQ(Style.ShadowOffset.Y, Row.ShadowY);
			ExpectColor(Style.ShadowColor, Row.ShadowColor, "shadow colour");
			ExpectColor(Style.HighlightColor, Highlight, "highlight colour");
			EXPECT_EQ(FindLodexTextStyle(Row.Name), &Style);
		}
	}

	TEST(LodexBrushes, AreTheFiveIconsAt16By16)
	{
		std::vector<std::string> Rows;
		for (const FLodexBrushInfo& Brush : GetLodexBrushes())
		{
			Rows.push_back(std::string(Brush.Name) + " " + Brush.RelativePath + Brush.Extension + " " +
				std::to_string(static_cast<int>(Brush.Width)) + "x" + std::to_string(static_cast<int>(Brush.Height)));
		}
		EXPECT_EQ(Rows,
			(std::vector<std::string>{
				"Icons.Record Resources/Record_icon.png 16x16",
				"Icons.Download Resources/Download_icon.png 16x16",
				"Icons.Stop Resources/Stop_icon.png 16x16",
				"Icons.Info Resources/Info_icon.png 16x16",
				"Icons.Reset Resources/Reset_icon.png 16x16",
			}));
		EXPECT_EQ((std::vector<float>{LodexBrushTint.R, LodexBrushTint.G, LodexBrushTint.B, LodexBrushTint.A}),
			(std::vector<float>{1.0f, 1.0f, 1.0f, 1.0f}));
	}

	/** An 8-bit RGBA PNG without interlacing, decoded; Width is 0 when the file is not one. */
	struct FRgbaImage
	{
		std::uint32_t Width = 0;
		std::uint32_t Height = 0;
		std::vector<std::uint8_t> Pixels;

		const std::uint8_t* At(std::uint32_t X, std::uint32_t Y) const { return &Pixels[(Y * Width + X) * 4]; }
	};

	std::uint32_t ReadBigEndian(const std::string& Bytes, std::size_t Offset)
	{
		std::uint32_t Value = 0;
		for (std::size_t Index = 0; Index < 4; ++Index)
		{
			Value = (Value << 8) | static_cast<std::uint8_t>(Bytes[Offset + Index]);
		}
		return Value;
	}

	int PaethPredictor(int Left, int Up, int UpLeft)
	{
		const int Estimate = Left + Up - UpLeft;
		const int DistLeft = std::abs(Estimate - Left);
		const int DistUp = std::abs(Estimate - Up);
		const int DistUpLeft = std::abs(Estimate - UpLeft);
		if (DistLeft <= DistUp && DistLeft <= DistUpLeft)
		{
			return Left;
		}
		return DistUp <= DistUpLeft ? Up : UpLeft;
	}

	FRgbaImage DecodeRgbaPng(const std::string& Bytes)
	{
		FRgbaImage Image;
		if (Bytes.compare(0, 8, "\x89PNG\r\n\x1a\n") != 0)
		{
			return Image;
		}
		std::string Compressed;
		std::uint32_t Width = 0;
		std::uint32_t Height = 0;
		for (std::size_t Offset = 8; Offset + 12 <= Bytes.size();)
		{
			const std::uint32_t Length = ReadBigEndian(Bytes, Offset);
			const std::string Kind = Bytes.substr(Offset + 4, 4);
			if (Kind == "IHDR")
			{
				Width = ReadBigEndian(Bytes, Offset + 8);
				Height = ReadBigEndian(Bytes, Offset + 12);
				// Bit depth 8, colour type 6 (RGBA), no interlacing.
				if (Bytes[Offset + 16] != 8 || Bytes[Offset + 17] != 6 || Bytes[Offset + 20] != 0)
				{
					return Image;
				}
			}
			else if (Kind == "IDAT")
			{
				Compressed += Bytes.substr(Offset + 8, Length);
			}
			Offset += 12 + Length;
		}
		const std::size_t Stride = Width * 4;
		std::vector<std::uint8_t> Raw((Stride + 1) * Height);
		uLongf RawSize = static_cast<uLongf>(Raw.size());
		if (Width == 0 ||
			uncompress(Raw.data(), &RawSize, reinterpret_cast<const Bytef*>(Compressed.data()),
				static_cast<uLong>(Compressed.size())) != Z_OK ||
			RawSize != Raw.size())
		{
			return Image;
		}
		Image.Pixels.assign(Stride * Height, 0);
		for (std::uint32_t Y = 0; Y < Height; ++Y)
		{
			const std::uint8_t Filter = Raw[Y * (Stride + 1)];
			for (std::size_t X = 0; X < Stride; ++X)
			{
				const int Value = Raw[Y * (Stride + 1) + 1 + X];
				const int Left = X >= 4 ? Image.Pixels[Y * Stride + X - 4] : 0;
				const int Up = Y > 0 ? Image.Pixels[(Y - 1) * Stride + X] : 0;
				const int UpLeft = X >= 4 && Y > 0 ? Image.Pixels[(Y - 1) * Stride + X - 4] : 0;
				const int Predicted = Filter == 1 ? Left
					: Filter == 2                 ? Up
					: Filter == 3                 ? (Left + Up) / 2
					: Filter == 4                 ? PaethPredictor(Left, Up, UpLeft)
												  : 0;
				Image.Pixels[Y * Stride + X] = static_cast<std::uint8_t>(Value + Predicted);
			}
		}
		Image.Width = Width;
		Image.Height = Height;
		return Image;
	}

	TEST(LodexIcons, EveryBrushHasARealSixteenBySixteenImageWithAShape)
	{
		for (const FLodexBrushInfo& Brush : GetLodexBrushes())
		{
			SCOPED_TRACE(Brush.Name);
			const std::string Path = GetLodexBrushFilePath(LODEX_SOURCE_DIR, Brush);
			ASSERT_TRUE(FTempDir::Exists(Path)) << Path;
			const FRgbaImage Image = DecodeRgbaPng(FTempDir::Read(Path));
			ASSERT_EQ(Image.Width, 16u);
			ASSERT_EQ(Image.Height, 16u);
			int Opaque = 0;
			int Clear = 0;
			for (std::size_t Index = 3; Index < Image.Pixels.size(); Index += 4)
			{
				Opaque += Image.Pixels[Index] == 255 ? 1 : 0;
				Clear += Image.Pixels[Index] == 0 ? 1 : 0;
			}
			// A shape on a transparent ground, not a blank or filled square.
			EXPECT_GE(Opaque, 24);
			EXPECT_GE(Clear, 24);
		}
	}

	TEST(LodexIcons, RecordIsRedAtItsCentreAndClearInItsCorners)
	{
		const FRgbaImage Image =
			DecodeRgbaPng(FTempDir::Read(std::string(LODEX_SOURCE_DIR) + "/Resources/Record_icon.png"));
		ASSERT_EQ(Image.Width, 16u);
		const std::uint8_t* Centre = Image.At(8, 8);
		EXPECT_GT(Centre[0], 200);
		EXPECT_LT(Centre[1], 80);
		EXPECT_LT(Centre[2], 80);
		EXPECT_EQ(Centre[3], 255);
		EXPECT_EQ(Image.At(0, 0)[3], 0);
		EXPECT_EQ(Image.At(15, 15)[3], 0);
	}

	TEST(LodexIcons, InfoHasALightLetterOnItsDisc)
	{
		const FRgbaImage Image =
			DecodeRgbaPng(FTempDir::Read(std::string(LODEX_SOURCE_DIR) + "/Resources/Info_icon.png"));
		ASSERT_EQ(Image.Width, 16u);
		// The stem of the "i" is white, the disc beside it blue.
		const std::uint8_t* Stem = Image.At(7, 10);
		const std::uint8_t* Disc = Image.At(4, 8);
		EXPECT_GT(Stem[0] + Stem[1] + Stem[2], 700);
		EXPECT_LT(Disc[0], Disc[2]);
		EXPECT_EQ(Disc[3], 255);
	}
}
