// Copyright Lodex contributors.
#include "PlatformDll.h"

#include <dlfcn.h>
#include <sys/stat.h>
#include <utility>

FPlatformDllHost::FPlatformDllHost(std::string InProjectDir)
	: ProjectDir(std::move(InProjectDir))
{
}

bool FPlatformDllHost::FileExists(const std::string& Path) const
{
	struct stat Info;
	return stat(Path.c_str(), &Info) == 0 && S_ISREG(Info.st_mode);
}

bool FPlatformDllHost::GetDllHandle(const std::string& Path)
{
	// The handle is dropped on purpose: the library stays loaded for the rest of the process.
	return dlopen(Path.c_str(), RTLD_LAZY | RTLD_LOCAL) != nullptr;
}
