// Copyright Lodex contributors.
#include "Clipboard.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/stat.h>
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

	bool PipeToCommand(const std::string& Command, const std::string& Text)
	{
		FILE* Pipe = popen((Command + " >/dev/null 2>&1").c_str(), "w");
		if (Pipe == nullptr)
		{
			return false;
		}
		const std::size_t Written = std::fwrite(Text.data(), 1, Text.size(), Pipe);
		const int Status = pclose(Pipe);
		return Written == Text.size() && Status != -1 && WIFEXITED(Status) && WEXITSTATUS(Status) == 0;
	}
}

bool WriteFileAtomically(const std::string& Path, const std::string& Text, std::string& OutError)
{
	const std::string Temporary = Path + ".lodex-tmp";
	FILE* File = std::fopen(Temporary.c_str(), "wb");
	if (File == nullptr)
	{
		OutError = Path + ": cannot write the file (" + std::strerror(errno) + ")";
		return false;
	}
	const bool bWritten = std::fwrite(Text.data(), 1, Text.size(), File) == Text.size();
	const bool bClosed = std::fclose(File) == 0;
	if (!bWritten || !bClosed)
	{
		OutError = Path + ": cannot write the file (" + std::strerror(errno) + ")";
		std::remove(Temporary.c_str());
		return false;
	}
	if (std::rename(Temporary.c_str(), Path.c_str()) != 0)
	{
		OutError = Path + ": cannot replace the file (" + std::strerror(errno) + ")";
		std::remove(Temporary.c_str());
		return false;
	}
	return true;
}

bool CopyToSystemClipboard(const std::string& Text)
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
		if (PipeToCommand(Tool.Command, Text))
		{
			return true;
		}
	}
	return false;
}
