// Copyright Lodex contributors.
#pragma once

#include <string>

/** The platform calls `importDLL` makes: the project folder, a file check and the dynamic loader. */
class ILodexDllHost
{
public:
	virtual ~ILodexDllHost() = default;

	/** The project folder as `FPaths::ProjectDir` returns it, ending in "/". */
	virtual std::string GetProjectDir() const = 0;
	/** Whether a file (not a folder) exists at the path, as `FPaths::FileExists` tells. */
	virtual bool FileExists(const std::string& Path) const = 0;
	/**
	 * Loads the library at the path (`FPlatformProcess::GetDllHandle`); returns whether a handle was
	 * obtained. The handle is neither kept nor released: the library stays loaded.
	 */
	virtual bool GetDllHandle(const std::string& Path) = 0;
};

/**
 * The path `importDLL` loads: the project folder, the folder, "/", the name; nothing normalised, no
 * extension added (an empty folder gives a double slash).
 */
std::string MakeImportDllPath(const std::string& ProjectDir, const std::string& Folder, const std::string& Name);

/**
 * `UBPVELTAgent::importDLL(folder, name)`: false when no file is at the path (no load is tried), else
 * whether the loader obtained a handle. Logs nothing.
 */
bool ImportLodexDll(ILodexDllHost& Host, const std::string& Folder, const std::string& Name);
