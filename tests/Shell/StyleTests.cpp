// Copyright Lodex contributors.
#include "TempDir.h"

#include "LodexDebugger/Core/Shell/LodexStyle.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace
{
	using FLines = std::vector<std::string>;

	/** The style set's engine calls, recorded with what they carry; other holders of the instance are counted. */
	class FRecordingStyleHost final : public ILodexStyleHost
	{
	public:
		std::string GetFullProjectPluginsDir() const override { return "/home/tester/Game/Plugins/"; }
		void CreateStyleSet(const char* Name) override { Calls.push_back(std::string("CreateStyleSet ") + Name); }
		void SetContentRoot(const std::string& Root) override { Calls.push_back("SetContentRoot " + Root); }
		void AddTextStyle(const FLodexTextStyleInfo& S) override
		{
			Calls.push_back(std::string("AddTextStyle ") + S.Name);
		}
		void AddImageBrush(const FLodexBrushInfo& Brush, const std::string& FilePath) override
		{
			Calls.push_back(std::string("AddImageBrush ") + Brush.Name + " " + FilePath);
		}
		void RegisterStyleSet() override { Calls.push_back("RegisterStyleSet"); }
		void UnregisterStyleSet() override { Calls.push_back("UnregisterStyleSet"); }
		bool IsStyleInstanceUnique() const override { return OtherHolders == 0; }
		void ReportEnsureFailure(const char* What) override { Calls.push_back(std::string("Ensure ") + What); }
		void ReleaseStyleSet() override { Calls.push_back("ReleaseStyleSet"); }

		FLines TakeCalls() { return std::exchange(Calls, {}); }

		int OtherHolders = 0;
		FLines Calls;
	};

	TEST(LodexStyleSet, InitializeCreatesTheSetOnceInTableOrderAndShutdownReleasesItOnce)
	{
		// The styles and brushes in table order, each brush's file below the content root.
		FLines Created{"CreateStyleSet VELTStyle", "SetContentRoot /home/tester/Game/Plugins/UnrealCLR"};
		for (const FLodexTextStyleInfo& Text : GetLodexTextStyles())
		{
			Created.push_back(std::string("AddTextStyle ") + Text.Name);
		}
		for (const FLodexBrushInfo& Brush : GetLodexBrushes())
		{
			Created.push_back(std::string("AddImageBrush ") + Brush.Name + " /home/tester/Game/Plugins/UnrealCLR/" +
				Brush.RelativePath + ".png");
		}
		Created.push_back("RegisterStyleSet");
		struct FRow
		{
			int OtherHolders;
			FLines Released;
		};
		const std::vector<FRow> Rows{
			{0, {"UnregisterStyleSet", "ReleaseStyleSet"}},
			{1, {"UnregisterStyleSet", "Ensure StyleInstance.IsUnique()", "ReleaseStyleSet"}},
		};
		for (const FRow& Row : Rows)
		{
			FRecordingStyleHost Host;
			FLodexStyleSet Style;
			EXPECT_TRUE(Style.Initialize(Host));
			EXPECT_EQ(Host.TakeCalls(), Created);
			// Each panel calls Initialize before it uses a style.
			EXPECT_FALSE(Style.Initialize(Host));
			EXPECT_EQ(Host.TakeCalls(), FLines{});
			Host.OtherHolders = Row.OtherHolders;
			Style.Shutdown(Host);
			EXPECT_EQ(Host.TakeCalls(), Row.Released) << Row.OtherHolders << " other holder(s)";
			Style.Shutdown(Host);
			EXPECT_EQ(Host.TakeCalls(), FLines{});
			EXPECT_TRUE(Style.Initialize(Host)) << "a set shut down is created again";
		}
	}

	TEST(LodexPathAppend, JoinsAsTheEngineSlashOperatorAndEachBrushFileLiesBelowTheContentRoot)
	{
		const char* const Rows[][3] = {
			{"root", "Resources/x", "root/Resources/x"},
			{"root/", "Resources/x", "root/Resources/x"},
			{"root\\", "Resources/x", "root\\Resources/x"},
			{"root", "/Resources/x", "root/Resources/x"},
			{"root/", "/Resources/x", "root//Resources/x"},
			{"", "Resources/x", "Resources/x"},
			{"root", "", "root/"},
			{"root\\", "", "root\\"},
			{"", "", ""},
		};
		for (const auto& Row : Rows)
		{
			EXPECT_EQ(LodexPathAppend(Row[0], Row[1]), Row[2]) << "'" << Row[0] << "' / '" << Row[1] << "'";
		}
		// The engine's plugins folder ends in "/"; nothing is inserted or removed before "UnrealCLR".
		EXPECT_EQ(MakeLodexStyleContentRoot("/p/Plugins"), "/p/PluginsUnrealCLR");
		const FLodexBrushInfo* Info = FindLodexBrush("Icons.Info");
		ASSERT_NE(Info, nullptr);
		EXPECT_EQ(GetLodexBrushFilePath("/p/", *Info), "/p/Resources/Info_icon.png");
	}

	std::uint32_t ReadBigEndian(const std::string& Bytes, std::size_t At)
	{
		const auto Byte = [&](std::size_t I)
		{
			return std::uint32_t(static_cast<std::uint8_t>(Bytes[At + I]));
		};
		return (Byte(0) << 24) | (Byte(1) << 16) | (Byte(2) << 8) | Byte(3);
	}

	/** The RGBA bytes of a 16x16, 8-bit RGBA, non-interlaced PNG; empty when the file is not one. */
	std::vector<std::uint8_t> DecodeIcon(const std::string& Bytes)
	{
		if (Bytes.compare(0, 8, "\x89PNG\r\n\x1a\n") != 0 || Bytes.compare(12, 4, "IHDR") != 0 ||
			ReadBigEndian(Bytes, 16) != 16 || ReadBigEndian(Bytes, 20) != 16 || Bytes.compare(24, 2, "\x08\x06") != 0 ||
			Bytes[28] != 0)
		{
			return {};
		}
		std::string Compressed;
		for (std::size_t At = 8; At + 12 <= Bytes.size(); At += 12 + ReadBigEndian(Bytes, At))
		{
			Compressed += Bytes.compare(At + 4, 4, "IDAT") == 0 ? Bytes.substr(At + 8, ReadBigEndian(Bytes, At)) : "";
		}
		const std::size_t Stride = 16 * 4;
		std::vector<std::uint8_t> Raw((Stride + 1) * 16);
		uLongf Size = Raw.size();
		if (uncompress(Raw.data(), &Size, reinterpret_cast<const Bytef*>(Compressed.data()), Compressed.size()) !=
				Z_OK ||
			Size != Raw.size())
		{
			return {};
		}
		std::vector<std::uint8_t> Pixels(Stride * 16);
		for (std::size_t I = 0; I < Pixels.size(); ++I)
		{
			// Undo the row's filter (none, sub, up, average, Paeth) from the bytes left, above and above-left.
			const std::size_t X = I % Stride;
			const int Filter = Raw[(I / Stride) * (Stride + 1)];
			const int A = X >= 4 ? Pixels[I - 4] : 0, B = I >= Stride ? Pixels[I - Stride] : 0;
			const int C = X >= 4 && I >= Stride ? Pixels[I - Stride - 4] : 0;
			const int P = A + B - C, PA = std::abs(P - A), PB = std::abs(P - B), PC = std::abs(P - C);
			const std::array<int, 5> Predicted{0, A, B, (A + B) / 2, PA <= PB && PA <= PC ? A : PB <= PC ? B : C};
			Pixels[I] = static_cast<std::uint8_t>(Raw[(I / Stride) * (Stride + 1) + 1 + X] + Predicted.at(Filter));
		}
		return Pixels;
	}

	TEST(LodexIcons, AreRealSixteenBySixteenPngsWithAShapeOnAClearGround)
	{
		for (const FLodexBrushInfo& Brush : GetLodexBrushes())
		{
			const std::string Path = GetLodexBrushFilePath(LODEX_SOURCE_DIR, Brush);
			const std::vector<std::uint8_t> Pixels = DecodeIcon(FTempDir::Read(Path));
			ASSERT_EQ(Pixels.size(), 16u * 16u * 4u) << Path << " is not a 16x16 RGBA PNG";
			std::array<int, 256> Alphas{};
			for (std::size_t Alpha = 3; Alpha < Pixels.size(); Alpha += 4)
			{
				++Alphas[Pixels[Alpha]];
			}
			// Not a blank or a filled square: opaque and clear pixels, at least 24 each.
			EXPECT_GE(std::min(Alphas[255], Alphas[0]), 24) << Path;
			if (std::string(Brush.Name) == "Icons.Record")
			{
				// A red dot: red and opaque at the centre, clear in the corner.
				const std::uint8_t* Centre = &Pixels[(8 * 16 + 8) * 4];
				EXPECT_TRUE(Centre[0] > 200 && Centre[1] < 80 && Centre[2] < 80 && Centre[3] == 255) << Path;
				EXPECT_EQ(Pixels[3], 0) << Path;
			}
		}
	}
}
