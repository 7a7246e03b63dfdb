// Copyright Lodex contributors.
// lodex diff as a CI job runs it: files, REV:PATH read from a git repository made here (external actors included),
// --exit-code, and the one-line errors for a revision or a file that does not exist and for a broken level.
#include "Host/Scenes/TestPackageWriter.h"
#include "LodexRun.h"
#include "TempDir.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace
{
	const char* const External = "__ExternalActors__/Maps/Main/1/AB/Gate";

	FTestActor Placed(const std::string& Name, const std::string& Guid, const std::string& Label)
	{
		FTestActor Made = TestActor(Name, {{"Root", "SceneComponent"}}, "Root");
		Made.Guid = Guid;
		Made.Label = Label;
		return Made;
	}

	/** A World Partition map with a lamp in the map and a gate in an external actor package. */
	void WriteLevel(const std::string& Root, const std::string& LampName, const std::string& GateLabel)
	{
		FTestMap Map;
		Map.Actors = {Placed(LampName, "00000000000000000000000000000003", "Lamp")};
		Map.ImportedActors = {"/Game/Maps/Main.Main:PersistentLevel.Gate_UAID_1"};
		WriteTestFile(Root + "/Content", "Maps/Main.umap", WriteTestMap(Map));
		WriteTestFile(Root + "/Content", std::string(External) + ".uasset",
			WriteTestExternalActor("/Game/Maps/Main", std::string("/Game/") + External,
				Placed("Gate_UAID_1", "00000000000000000000000000000009", GateLabel)));
	}

	int Git(const FTempDir& Repo, const std::string& Arguments)
	{
		return std::system(("git -C '" + Repo.Path + "' -c user.name=Lodex -c user.email=lodex@example.com " +
			Arguments + " >/dev/null 2>&1")
							   .c_str());
	}

	/** What diff says of the two commits the fixture makes, after the names of the two sides. */
	const char* const Changes =
		": 1 renamed, 1 re-labelled (2 of 2 actors paired: 2 by GUID, 0 by level script class, 0 by "
		"fingerprint)\nrenamed:\n  Lamp (Lamp_2) -> Lamp_3\nre-labelled:\n  Gate_UAID_1: 'Gate' -> "
		"'Front Gate'\n";

	class DiffCommand : public ::testing::Test
	{
	protected:
		void SetUp() override
		{
			ASSERT_EQ(Git(Repo, "init -q ."), 0);
			WriteLevel(Repo.Path, "Lamp_2", "Gate");
			ASSERT_EQ(Git(Repo, "add -A"), 0);
			ASSERT_EQ(Git(Repo, "commit -q -m one"), 0);
			WriteLevel(Repo.Path, "Lamp_3", "Front Gate");
			ASSERT_EQ(Git(Repo, "commit -q -a -m two"), 0);
			Map = Repo.Path + "/Content/Maps/Main.umap";
		}

		FTempDir Repo;
		std::string Map;
	};

	TEST_F(DiffCommand, RevisionsAreReadThroughGitWithOnlyTheFilesOfTheLevelAndExitOneOnlyForChangesWithExitCode)
	{
		// Both sides at revisions, and the earlier one against the work tree: the same changes.
		for (const std::string& Later : {"HEAD:" + Map, Map})
		{
			EXPECT_EQ(Printed(RunLodex({"diff", "HEAD~1:" + Map, Later})), "HEAD~1:" + Map + " -> " + Later + Changes);
		}
		// The work tree and the index are as they were.
		EXPECT_EQ(std::system(("test -z \"$(git -C '" + Repo.Path + "' status --porcelain)\"").c_str()), 0);
		const FLodexRun Same = RunLodex({"diff", "--exit-code", "HEAD:" + Map, Map});
		EXPECT_EQ(Same.Exit, 0);
		EXPECT_NE(Same.Out.find(": no changes ("), std::string::npos) << Same.Out;

		// A Content folder whose other files cannot be checked out at all (a filter that must run, and fails): a
		// revision's level reads all the same, since the reader never asks for them.
		WriteTestFile(Repo.Path, ".gitattributes", "Huge.uasset filter=broken\n");
		WriteTestFile(Repo.Path + "/Content", "Textures/Huge.uasset", std::string(4096, 'x'));
		ASSERT_EQ(Git(Repo, "add -A"), 0);
		ASSERT_EQ(Git(Repo, "commit -q -m textures"), 0);
		ASSERT_EQ(Git(Repo, "config filter.broken.smudge false"), 0);
		ASSERT_EQ(Git(Repo, "config filter.broken.required true"), 0);
		EXPECT_EQ(Printed(RunLodex({"diff", "--exit-code", "HEAD~2:" + Map, "HEAD:" + Map})),
			"exit 1: HEAD~2:" + Map + " -> HEAD:" + Map + Changes);
	}

	TEST_F(DiffCommand, ASnapshotOutsideContentIsReadAtARevisionAndPairsActorsByTheirGuidInAnyCase)
	{
		const std::string Snapshot = Repo.Path + "/scene.json";
		WriteTestFile(Repo.Path, "scene.json", R"({"objects": [{"id": "a", "kind": "actor", "name": "Door_2",
			"label": "Door", "guid": "0000000000000000000000000000000a", "location": [0, 0, 0]}]})");
		ASSERT_EQ(Git(Repo, "add -A"), 0);
		ASSERT_EQ(Git(Repo, "commit -q -m scene"), 0);
		WriteTestFile(Repo.Path, "scene.json", R"({"objects": [{"id": "a", "kind": "actor", "name": "Door_3",
			"label": "Door", "guid": "0000000000000000000000000000000A", "location": [0, 10, 0]}]})");
		EXPECT_EQ(Printed(RunLodex({"diff", "--exit-code", "HEAD:" + Snapshot, Snapshot})),
			"exit 1: HEAD:" + Snapshot + " -> " + Snapshot +
				": 1 renamed, 1 moved (1 of 1 actors paired: 1 by GUID, 0 by level script class, 0 by fingerprint)\n"
				"renamed:\n  Door (Door_2) -> Door_3\nmoved:\n  Door (Door_3): (0, 0, 0) -> (0, 10, 0)\n");
	}

	TEST_F(DiffCommand, LintTakesItsBaselineFromARevision)
	{
		FTempDir Tests;
		const std::string File = Tests.Write("T.cs", "class T { void Run(Api api) { api.Click(\"//Lamp_2\"); } }");
		const FLodexRun Run = RunLodex({"lint", "--scene", Map, "--baseline", "HEAD~1:" + Map, File});
		EXPECT_EQ(Run.Exit, 1);
		EXPECT_EQ(Run.Out.substr(0, Run.Out.find('\n')),
			File +
				":1:42: error: //Lamp_2 found Lamp_2 on the baseline and now matches no object: Lamp_2 was renamed "
				"Lamp_3; suggested: /Lamp_3 [broken-by-change]");
		EXPECT_EQ(Printed(RunLodex({"lint", "--scene", Map, "--baseline", "nosuch:" + Map, File})),
			"exit 1: lodex: nosuch:" + Map + ": no revision 'nosuch' in the repository at " + Repo.Path + "\n");
	}

	TEST_F(DiffCommand, WhatCannotBeReadIsOneLine)
	{
		EXPECT_EQ(Printed(RunLodex({"diff", "--exit-code", "nosuch:" + Map, Map})),
			"exit 1: lodex: nosuch:" + Map + ": no revision 'nosuch' in the repository at " + Repo.Path + "\n");
		const std::string Gone = "HEAD~1:" + Repo.Path + "/Content/Maps/Gone.umap";
		EXPECT_EQ(Printed(RunLodex({"diff", "--exit-code", Gone, Map})),
			"exit 1: lodex: " + Gone + ": no file Content/Maps/Gone.umap at revision HEAD~1\n");
		// A level kept in Git LFS, whose objects were not fetched.
		WriteTestFile(
			Repo.Path, "Content/Maps/Lfs.umap", "version https://git-lfs.github.com/spec/v1\noid sha256:00\nsize 12\n");
		ASSERT_EQ(Git(Repo, "add -A"), 0);
		ASSERT_EQ(Git(Repo, "commit -q -m lfs"), 0);
		const std::string Lfs = Repo.Path + "/Content/Maps/Lfs.umap";
		EXPECT_EQ(RunLodex({"diff", "HEAD:" + Lfs, Map}).Err,
			"lodex: HEAD:" + Lfs +
				": a Git LFS pointer, not the file itself: fetch the real file from Git LFS first (git lfs pull)\n");
		// A broken level at a revision: the reader's message, the file named as REV:PATH.
		const std::string Bytes = FTempDir::Read(Map);
		WriteTestFile(Repo.Path, "Content/Maps/Main.umap", Bytes.substr(0, 100));
		ASSERT_EQ(Git(Repo, "commit -q -a -m broken"), 0);
		const FLodexRun Run = RunLodex({"diff", "HEAD:" + Map, "HEAD~1:" + Map});
		EXPECT_EQ(Run.Exit, 1);
		EXPECT_EQ(Run.Err.rfind("lodex: HEAD:Content/Maps/Main.umap: byte ", 0), 0u) << Run.Err;
		EXPECT_EQ(Run.Err.find('\n'), Run.Err.size() - 1) << Run.Err;
		EXPECT_EQ(Run.Out, "");
	}
}
