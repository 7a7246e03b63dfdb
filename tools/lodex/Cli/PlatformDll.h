// Copyright Lodex contributors.
#pragma once

#include "LodexDebugger/Core/Shell/LodexDllImport.h"

#include <string>

/** `importDLL`'s platform for the tool: a given project folder, the file system and the dynamic loader. */
class FPlatformDllHost final : public ILodexDllHost
{
public:
	/** ProjectDir is used as given; like the engine's, it is expected to end in "/". */
	explicit FPlatformDllHost(std::string InProjectDir);

	//~ Begin ILodexDllHost Interface
	std::string GetProjectDir() const override { return ProjectDir; }
	bool FileExists(const std::string& Path) const override;
	bool GetDllHandle(const std::string& Path) override;
	//~ End ILodexDllHost Interface

private:
	std::string ProjectDir;
};
