// Copyright Lodex contributors.
#include "Record/InputLogReplay.h"
#include "RecorderFixture.h"
#include "Scenes/SceneSnapshot.h"
#include "TempDir.h"

#include "LodexDebugger/Core/Text/LodexText.h"

#include <cstdlib>

namespace
{
	std::string ReplayToScript(const char* RelativeLog, const FSceneSnapshot& Scene, bool bForceFps)
	{
		FInputLogReplayOptions Options;
		Options.Scene = &Scene;
		Options.bForceFps = bForceFps;
		FInputLogReplay Replay;
		std::string Error;
		EXPECT_TRUE(ReplayInputLog(
			FTempDir::Read(std::string(LODEX_SOURCE_DIR) + "/" + RelativeLog), RelativeLog, Options, Replay, Error))
			<< Error;
		return Replay.Script;
	}

	/** A script as the panel holds it, made a method of a class so that it can be compiled on its own. */
	std::string WrapInClass(const std::string& Script, int Index)
	{
		std::string Source = "public static class RecordedScript" + std::to_string(Index) +
			"\n{\n\tpublic static void Run()\n\t{\n\t\tvelt.unreal_api.ApiClient api;\n";
		for (const std::string& Line : LodexText::SplitDroppingEmpty(Script, "\r\n"))
		{
			Source += "\t\t" + Line + "\n";
		}
		return Source + "\t}\n}\n";
	}

	using CSharpCompileTest = RecorderTest;

	TEST_F(CSharpCompileTest, GeneratedScriptsCompileAgainstTheApiClient)
	{
		// The build looks for Mono's C# compiler; scripts/setup.sh installs it (package mono-mcs).
		const std::string Compiler = LODEX_MCS;
		ASSERT_FALSE(Compiler.empty()) << "mcs was not found when the build was configured: run scripts/setup.sh "
										  "(it installs mono-mcs), then configure again";

		// Every line kind: the sample session in both duration forms, VR, a session cut short, the five buttons.
		std::string Error;
		FSceneSnapshot Scene;
		ASSERT_TRUE(FSceneSnapshot::LoadFile(std::string(LODEX_SOURCE_DIR) + "/samples/level.json", Scene, Error));
		std::vector<std::string> Scripts{ReplayToScript("samples/session.jsonl", Scene, false),
			ReplayToScript("samples/session.jsonl", Scene, true),
			ReplayToScript("tests/fixtures/recorder/vr.jsonl", Scene, false),
			ReplayToScript("tests/fixtures/recorder/play-ends.jsonl", Scene, false)};
		Host.SetLevelPath("/Game/Maps/Village");
		Host.SetSelection(Scene.FindObject("hinge", Error), &Scene);
		StartRecording();
		KeyUp(1001, "Escape");
		for (const FLodexQuickInsertInfo& Button : FLodexRecorderPanel::GetQuickInserts())
		{
			ASSERT_TRUE(Panel.InsertQuickLine(Button.Button));
		}
		Panel.SetUseFps(true);
		Move(1002, 10, 10);
		Move(1010, 50, 60);
		KeyDown(1012, "E");
		KeyUp(1020, "E");
		Panel.Stop();
		Scripts.push_back(Panel.GetScriptText());

		FTempDir Dir;
		ASSERT_FALSE(Dir.Path.empty());
		std::string Sources = "'" + std::string(LODEX_SOURCE_DIR) + "/tests/CSharp/ApiClientStub.cs'";
		std::string AllLines;
		for (std::size_t Index = 0; Index < Scripts.size(); ++Index)
		{
			const std::string File = Dir.Write("Recorded" + std::to_string(Index) + ".cs",
				"using velt.unreal_api;\n\n" + WrapInClass(Scripts[Index], static_cast<int>(Index)));
			Sources += " '" + File + "'";
			AllLines += Scripts[Index];
		}
		for (const char* Kind : {"api.KeyPress(", "},  (int)", "// api.GetLastFPS()", "api.Click(", "api.DoubleClick(",
				 "api.MouseDrag(", "api.MouseMoveToPoint(", "api.Scroll(", "api.Wait(", "api.WaitForEmptyInput();",
				 "api.CreateInputDevice(", "api.VRInput(\"\"", "api.VRInput(\"Grip\"", "api.VRInput(\"Aim\"",
				 "api.LoadLevel(", "api.ClickObject(", "api.GetObjectPosition(", "api.CallMethod(",
				 "api.WaitForObject(", "ended here", "(int)(api.GetLastFPS() * "})
		{
			EXPECT_NE(AllLines.find(Kind), std::string::npos) << "the scripts compiled hold no " << Kind;
		}

		const std::string Command = "'" + Compiler + "' -nologo -target:library -out:'" + Dir.File("Recorded.dll") +
			"' " + Sources + " > '" + Dir.File("mcs.txt") + "' 2>&1";
		EXPECT_EQ(std::system(Command.c_str()), 0) << FTempDir::Read(Dir.File("mcs.txt"));
		EXPECT_TRUE(FTempDir::Exists(Dir.File("Recorded.dll"))) << FTempDir::Read(Dir.File("mcs.txt"));
	}
}
