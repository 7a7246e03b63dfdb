// Copyright Lodex contributors.
#include "LodexDllImport.h"

std::string MakeImportDllPath(const std::string& ProjectDir, const std::string& Folder, const std::string& Name)
{
	std::string Path = ProjectDir;
	Path += Folder;
	Path += '/';
	Path += Name;
	return Path;
}

bool ImportLodexDll(ILodexDllHost& Host, const std::string& Folder, const std::string& Name)
{
	const std::string Path = MakeImportDllPath(Host.GetProjectDir(), Folder, Name);
	if (!Host.FileExists(Path))
	{
		return false;
	}
	return Host.GetDllHandle(Path);
}
