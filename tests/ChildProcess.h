// Copyright Lodex contributors.
#pragma once

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <grp.h>
#include <optional>
#include <poll.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

/** What a process printed and how it ended; Exit is -1 when a signal ended it (Signal then says which). */
struct FProcessRun
{
	int Exit = -1;
	int Signal = 0;
	std::string Out;
	std::string Err;
};

namespace ChildProcess
{
	/** Reads both pipes to their end, whatever order the child writes them in. */
	inline void ReadBoth(int OutPipe, int ErrPipe, std::string& Out, std::string& Err)
	{
		pollfd Pipes[2] = {{OutPipe, POLLIN, 0}, {ErrPipe, POLLIN, 0}};
		std::string* Targets[2] = {&Out, &Err};
		int Open = 2;
		while (Open > 0)
		{
			if (poll(Pipes, 2, -1) < 0)
			{
				if (errno == EINTR)
				{
					continue;
				}
				break;
			}
			for (int Index = 0; Index < 2; ++Index)
			{
				if (Pipes[Index].fd < 0 || Pipes[Index].revents == 0)
				{
					continue;
				}
				char Buffer[65536];
				const ssize_t Count = read(Pipes[Index].fd, Buffer, sizeof(Buffer));
				if (Count > 0)
				{
					Targets[Index]->append(Buffer, static_cast<std::size_t>(Count));
				}
				else if (Count == 0 || errno != EINTR)
				{
					close(Pipes[Index].fd);
					Pipes[Index].fd = -1;
					--Open;
				}
			}
		}
	}

	/** Watches a running child before its output is read to the end: may read its standard error into Err. */
	using FWatch = std::function<void(pid_t Child, int ErrPipe, std::string& Err)>;

	/**
	 * Forks; the child sends what Body writes to its standard output and error (the file descriptors 1 and 2)
	 * and ends with Body's result as its exit status.
	 */
	inline FProcessRun Run(const std::function<int()>& Body, const FWatch& Watch = {})
	{
		int OutPipe[2];
		int ErrPipe[2];
		FProcessRun Result;
		if (pipe(OutPipe) != 0 || pipe(ErrPipe) != 0)
		{
			Result.Err = "cannot make a pipe";
			return Result;
		}
		const pid_t Child = fork();
		if (Child == 0)
		{
			dup2(OutPipe[1], STDOUT_FILENO);
			dup2(ErrPipe[1], STDERR_FILENO);
			for (const int Handle : {OutPipe[0], OutPipe[1], ErrPipe[0], ErrPipe[1]})
			{
				close(Handle);
			}
			_exit(Body());
		}
		close(OutPipe[1]);
		close(ErrPipe[1]);
		if (Watch)
		{
			Watch(Child, ErrPipe[0], Result.Err);
		}
		ReadBoth(OutPipe[0], ErrPipe[0], Result.Out, Result.Err);
		int Status = 0;
		waitpid(Child, &Status, 0);
		Result.Exit = WIFEXITED(Status) ? WEXITSTATUS(Status) : -1;
		Result.Signal = WIFSIGNALED(Status) ? WTERMSIG(Status) : 0;
		return Result;
	}

	/** Environment changes for a child: a value to set, or none to unset. */
	using FEnvironment = std::vector<std::pair<std::string, std::optional<std::string>>>;

	/**
	 * Runs the built lodex binary; Prepare runs in the child just before the binary starts, Watch in this process
	 * while it runs.
	 */
	inline FProcessRun RunLodex(const std::vector<std::string>& Args, const FEnvironment& Environment = {},
		const std::function<void()>& Prepare = {}, const FWatch& Watch = {})
	{
		return Run(
			[&]
			{
				for (const auto& [Name, Value] : Environment)
				{
					Value ? setenv(Name.c_str(), Value->c_str(), 1) : unsetenv(Name.c_str());
				}
				if (Prepare)
				{
					Prepare();
				}
				std::vector<char*> Argv{const_cast<char*>(LODEX_BINARY)};
				for (const std::string& Arg : Args)
				{
					Argv.push_back(const_cast<char*>(Arg.c_str()));
				}
				Argv.push_back(nullptr);
				execv(LODEX_BINARY, Argv.data());
				return 127;
			},
			Watch);
	}

	/** A child preparation: writes past Bytes fail (EFBIG) instead of raising SIGXFSZ. */
	inline std::function<void()> LimitFileSize(rlim_t Bytes)
	{
		return [Bytes]
		{
			std::signal(SIGXFSZ, SIG_IGN);
			const rlimit Limit{Bytes, Bytes};
			setrlimit(RLIMIT_FSIZE, &Limit);
		};
	}

	/** The user and group a privileged test drops to: nobody, nogroup. */
	inline constexpr uid_t UnprivilegedId = 65534;

	/**
	 * Runs Body as an ordinary user: in this process when it is one already, otherwise in a child that drops to
	 * UnprivilegedId first (the files Body needs must be that user's then).
	 */
	inline FProcessRun RunUnprivileged(const std::function<FProcessRun()>& Body)
	{
		if (geteuid() != 0)
		{
			return Body();
		}
		return Run(
			[&]
			{
				if (setgroups(0, nullptr) != 0 || setgid(UnprivilegedId) != 0 || setuid(UnprivilegedId) != 0)
				{
					return 126;
				}
				const FProcessRun Inner = Body();
				(void)!write(STDOUT_FILENO, Inner.Out.data(), Inner.Out.size());
				(void)!write(STDERR_FILENO, Inner.Err.data(), Inner.Err.size());
				return Inner.Exit;
			});
	}
}
