// Copyright Lodex contributors.
// What the commands take as input and output files: regular files and pipes where documented, never a device to
// read from or a node to rename over, and sizes within the stated limits.
#include "ChildProcess.h"
#include "Cli/WholeFile.h"
#include "Host/Scenes/TestPackageWriter.h"
#include "LodexRun.h"
#include "TempDir.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <vector>
#include <unistd.h>

namespace
{
	namespace fs = std::filesystem;

	const std::string Snapshot =
		"{\"objects\": [{\"id\": \"door\", \"name\": \"Door\", \"kind\": \"actor\"}, {\"id\": \"lamp\", \"name\": "
		"\"Lamp_2\", \"kind\": \"actor\"}]}";

	/** A pipe whose read end is named by /dev/fd, holding Bytes (no more than its buffer takes) and closed after. */
	class FFedPipe
	{
	public:
		explicit FFedPipe(const std::string& Bytes)
		{
			int Ends[2];
			if (pipe(Ends) == 0)
			{
				// Too many bytes for the buffer fail here rather than wait for a reader.
				fcntl(Ends[1], F_SETFL, O_NONBLOCK);
				EXPECT_EQ(write(Ends[1], Bytes.data(), Bytes.size()), static_cast<ssize_t>(Bytes.size()));
				close(Ends[1]);
				ReadEnd = Ends[0];
			}
		}
		~FFedPipe() { close(ReadEnd); }
		FFedPipe(const FFedPipe&) = delete;
		FFedPipe& operator=(const FFedPipe&) = delete;

		std::string Path() const { return "/dev/fd/" + std::to_string(ReadEnd); }

	private:
		int ReadEnd = -1;
	};

	/** A file of Size bytes that takes no room on disk. */
	std::string SparseFile(const FTempDir& Dir, const std::string& Name, off_t Size)
	{
		const std::string Path = Dir.Write(Name, "");
		EXPECT_EQ(truncate(Path.c_str(), Size), 0);
		return Path;
	}

	TEST(InputFile, ReadsARegularFileOrADocumentedPipeUpToItsLimitAndRefusesADevice)
	{
		FTempDir Dir;
		const FInputFileRules Small{16, "a test input", false};
		const FInputFileRules SmallStream{16, "a test input", true};
		const std::string AtLimit = Dir.Write("at-limit", std::string(16, 'x'));
		const std::string PastLimit = Dir.Write("past-limit", std::string(17, 'x'));

		std::string Bytes;
		std::string Error;
		EXPECT_TRUE(ReadWholeFile(AtLimit, Bytes, Error, Small)) << Error;
		EXPECT_EQ(Bytes, std::string(16, 'x'));
		{
			FFedPipe Pipe(std::string(16, 'p'));
			EXPECT_TRUE(ReadWholeFile(Pipe.Path(), Bytes, Error, SmallStream)) << Error;
			EXPECT_EQ(Bytes, std::string(16, 'p'));
		}

		const struct
		{
			std::string Path;
			FInputFileRules Rules;
			std::string Said;
		} Refusals[] = {
			{PastLimit, Small, PastLimit + ": larger than 16 bytes, the most lodex reads of a test input"},
			{"/dev/zero", Small, "/dev/zero: is a character device, not a regular file"},
			{Dir.Path, Small, Dir.Path + ": cannot read the file"},
			{Dir.File("absent"), Small, Dir.File("absent") + ": cannot open the file"},
		};
		for (const auto& Row : Refusals)
		{
			Bytes = "untouched";
			EXPECT_FALSE(ReadWholeFile(Row.Path, Bytes, Error, Row.Rules)) << Row.Path;
			EXPECT_EQ(Error, Row.Said);
			EXPECT_EQ(Bytes, "untouched");
		}
		FFedPipe Long(std::string(4096, 'z'));
		EXPECT_FALSE(ReadWholeFile(Long.Path(), Bytes, Error, SmallStream));
		EXPECT_EQ(Error, Long.Path() + ": larger than 16 bytes, the most lodex reads of a test input");
		EXPECT_EQ(DescribeByteLimit(1), "1 byte");
	}

	TEST(InputFile, CommandsStateWhatTheyRefuseAndTheLimitInOneLine)
	{
		FTempDir Dir;
		const std::string Scene = Dir.Write("scene.json", Snapshot);
		const std::string TestFile = Dir.Write("Door.cs", "class T { void Run() { api.Click(\"//Door\"); } }\n");
		// Nobody writes to it: opened, it would wait for ever.
		const std::string Fifo = Dir.File("Fifo.cs");
		ASSERT_EQ(mkfifo(Fifo.c_str(), 0600), 0);
		const std::string BigScene = SparseFile(Dir, "big.json", off_t(LodexMaxSceneFileBytes) + 1);
		const std::string BigTest = SparseFile(Dir, "Big.cs", off_t(LodexMaxTextFileBytes) + 1);
		const std::string BigLog = SparseFile(Dir, "big.jsonl", off_t(LodexMaxTextFileBytes) + 1);
		const std::pair<std::vector<std::string>, std::string> Rows[] = {
			{{"lint", "--scene", "/dev/zero", TestFile},
				"lodex: /dev/zero: is a character device, not a regular file or a pipe\n"},
			{{"path", "--scene", "/dev/zero", "door"},
				"lodex: /dev/zero: is a character device, not a regular file or a pipe\n"},
			{{"lint", "--scene", Scene, Fifo}, "lodex: " + Fifo + ": is a FIFO, not a regular file\n"},
			{{"lint", "--scene", BigScene, TestFile},
				"lodex: " + BigScene + ": larger than 512 MiB, the most lodex reads of a scene or level file\n"},
			{{"lint", "--scene", Scene, BigTest},
				"lodex: " + BigTest + ": larger than 64 MiB, the most lodex reads of a C# test file\n"},
			{{"record", "--input", BigLog},
				"lodex: " + BigLog + ": larger than 64 MiB, the most lodex reads of an input log\n"},
			{{"record", "--input", "/dev/zero"},
				"lodex: /dev/zero: is a character device, not a regular file or a pipe\n"},
		};
		for (const auto& [Args, Said] : Rows)
		{
			EXPECT_EQ(Printed(RunLodex(Args)), "exit 1: " + Said);
		}
	}

	TEST(InputFile, ASceneThroughAPipeIsReadOnceThenToldApartByItsBytes)
	{
		FTempDir Dir;
		const FLodexRun FromFile = RunLodex({"path", "--scene", Dir.Write("scene.json", Snapshot), "door", "lamp"});
		ASSERT_EQ(FromFile.Exit, 0) << FromFile.Err;
		FFedPipe SnapshotPipe(Snapshot);
		EXPECT_EQ(Printed(RunLodex({"path", "--scene", SnapshotPipe.Path(), "door", "lamp"})), FromFile.Out);

		FTestMap Map;
		Map.Actors = {TestActor("Crate_3")};
		Map.Actors[0].Label = "Crate";
		const std::string Level = WriteTestMap(Map);
		const FLodexRun LevelFromFile =
			RunLodex({"path", "--scene", Dir.Write("Main.umap", Level), "--mode", "best", "Crate"});
		ASSERT_EQ(LevelFromFile.Exit, 0) << LevelFromFile.Err;
		FFedPipe LevelPipe(Level);
		EXPECT_EQ(Printed(RunLodex({"path", "--scene", LevelPipe.Path(), "--mode", "best", "Crate"})),
			"exit 0: lodex: note: " + LevelPipe.Path() +
				": a level read from a pipe: only the level itself, not its external actors, sub-levels or "
				"Blueprint classes\n" +
				LevelFromFile.Out);
	}

	/** A reader of a FIFO, there before anything writes into it; Finish reads what was written, once closed. */
	struct FFifoReader
	{
		explicit FFifoReader(const std::string& Path)
			: Handle(open(Path.c_str(), O_RDONLY | O_NONBLOCK))
		{
		}
		~FFifoReader() { close(Handle); }
		std::string Finish() const
		{
			std::string Text;
			char Buffer[4096];
			ssize_t Count = 0;
			while ((Count = read(Handle, Buffer, sizeof(Buffer))) > 0)
			{
				Text.append(Buffer, static_cast<std::size_t>(Count));
			}
			return Text;
		}
		const int Handle;
	};

	TEST(OutputFile, AFifoIsWrittenIntoAndStaysAFifoAndOneNobodyReadsIsRefusedUntouched)
	{
		FTempDir Dir;
		const std::string Scene = Dir.Write("scene.json", Snapshot);
		const std::string Log = std::string(LODEX_SOURCE_DIR) + "/samples/session.jsonl";
		const std::string Fifo = Dir.File("clip");
		ASSERT_EQ(mkfifo(Fifo.c_str(), 0600), 0);
		const std::vector<std::string> Copy{
			"copy", "--scene", Scene, "--mode", "Absolute", "--clipboard", Fifo, "lamp"};

		{
			const FFifoReader Reader(Fifo);
			const FLodexRun Copied = RunLodex(Copy);
			EXPECT_EQ(Copied.Exit, 0) << Copied.Err;
			EXPECT_EQ(Reader.Finish(), "/*[@name = 'Lamp_2']");
		}

		// No reader: refused at once rather than waiting, and never replaced by a file.
		EXPECT_EQ(Printed(RunLodex(Copy)),
			"exit 1: lodex: " + Fifo + ": a FIFO that nobody reads from; nothing was written\n" +
				"/*[@name = 'Lamp_2'] matches 1 object\nLogTemp: Lodestring : /*[@name = 'Lamp_2'] \n");

		struct stat After;
		// Standard output, whatever it is (here a pipe), named as a file.
		EXPECT_EQ(Printed(ChildProcess::RunLodex({"record", "--input", Log, "--out", "/dev/stdout"})),
			RunLodex({"record", "--input", Log}).Out);

		ASSERT_EQ(lstat(Fifo.c_str(), &After), 0);
		EXPECT_TRUE(S_ISFIFO(After.st_mode));
		// A socket is no stream to write into, and nothing is renamed over it.
		const std::string Socket = Dir.File("socket");
		const int Listener = socket(AF_UNIX, SOCK_STREAM, 0);
		sockaddr_un Address{};
		Address.sun_family = AF_UNIX;
		Socket.copy(Address.sun_path, sizeof(Address.sun_path) - 1);
		ASSERT_EQ(bind(Listener, reinterpret_cast<const sockaddr*>(&Address), sizeof(Address)), 0);
		EXPECT_EQ(Printed(RunLodex({"record", "--input", Log, "--out", Socket})),
			"exit 1: lodex: " + Socket + ": is a socket, not a file; nothing was written\n");
		close(Listener);
		ASSERT_EQ(lstat(Socket.c_str(), &After), 0);
		EXPECT_TRUE(S_ISSOCK(After.st_mode));
		fs::remove(Socket);

		// No staged copy beside it.
		EXPECT_EQ(FTempDir::List(Dir.Path), (std::set<std::string>{"clip", "scene.json"}));
	}
}
