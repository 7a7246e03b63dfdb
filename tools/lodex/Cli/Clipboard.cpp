// Copyright Lodex contributors.
#include "Clipboard.h"

#include <cerrno>
#include <csignal>
#include <ctime>
#include <pthread.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{
	bool IsOnPath(const std::string& Program)
	{
		const char* PathVar = std::getenv("PATH");
		if (PathVar == nullptr)
		{
			return false;
		}
		std::string Paths = PathVar;
		std::size_t Start = 0;
		while (Start <= Paths.size())
		{
			std::size_t End = Paths.find(':', Start);
			if (End == std::string::npos)
			{
				End = Paths.size();
			}
			const std::string Dir = End > Start ? Paths.substr(Start, End - Start) : ".";
			const std::string Candidate = Dir + "/" + Program;
			if (access(Candidate.c_str(), X_OK) == 0)
			{
				return true;
			}
			Start = End + 1;
		}
		return false;
	}

	bool HasEnv(const char* Name)
	{
		const char* Value = std::getenv(Name);
		return Value != nullptr && *Value != '\0';
	}

	/**
	 * Writes the text to the command's standard input and waits for it. SIGPIPE is held back meanwhile: a tool
	 * that quits early makes the write fail instead of ending this process.
	 */
	bool PipeToCommand(
		const char* Program, const std::string& Command, const std::string& Text, std::string& OutFailure)
	{
		FILE* Pipe = popen((Command + " >/dev/null 2>&1").c_str(), "w");
		if (Pipe == nullptr)
		{
			OutFailure = std::string(Program) + " could not be started (" + std::strerror(errno) + ")";
			return false;
		}
		sigset_t BrokenPipe;
		sigset_t Previous;
		sigemptyset(&BrokenPipe);
		sigaddset(&BrokenPipe, SIGPIPE);
		pthread_sigmask(SIG_BLOCK, &BrokenPipe, &Previous);

		errno = 0;
		const std::size_t Written = std::fwrite(Text.data(), 1, Text.size(), Pipe);
		const bool bFlushed = std::fflush(Pipe) == 0;
		const int WriteError = errno;
		const int Status = pclose(Pipe);

		const timespec NoWait{0, 0};
		while (sigtimedwait(&BrokenPipe, nullptr, &NoWait) > 0)
		{
			// The held-back SIGPIPE of this write, dropped.
		}
		pthread_sigmask(SIG_SETMASK, &Previous, nullptr);

		if (Status == -1 || !WIFEXITED(Status))
		{
			OutFailure = std::string(Program) + " did not finish normally";
			return false;
		}
		if (WEXITSTATUS(Status) != 0)
		{
			OutFailure = std::string(Program) + " failed (exit status " + std::to_string(WEXITSTATUS(Status)) + ")";
			return false;
		}
		if (Written != Text.size() || !bFlushed)
		{
			OutFailure = std::string(Program) + " did not take the text (" + std::strerror(WriteError) + ")";
			return false;
		}
		return true;
	}
}

bool CopyToSystemClipboard(const std::string& Text, std::string& OutFailure)
{
	struct FClipboardTool
	{
		const char* Program;
		const char* Command;
		const char* RequiredEnv;
	};
	static const FClipboardTool Tools[] = {
		{"wl-copy", "wl-copy", "WAYLAND_DISPLAY"},
		{"xclip", "xclip -selection clipboard -in", "DISPLAY"},
		{"xsel", "xsel --clipboard --input", "DISPLAY"},
		{"pbcopy", "pbcopy", nullptr},
		{"clip.exe", "clip.exe", nullptr},
	};
	for (const FClipboardTool& Tool : Tools)
	{
		if (Tool.RequiredEnv != nullptr && !HasEnv(Tool.RequiredEnv))
		{
			continue;
		}
		if (!IsOnPath(Tool.Program))
		{
			continue;
		}
		if (PipeToCommand(Tool.Program, Tool.Command, Text, OutFailure))
		{
			return true;
		}
	}
	return false;
}
