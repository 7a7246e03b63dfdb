// Copyright Lodex contributors.
#include "BPVELTAgent.h"

#include "HAL/PlatformProcess.h"
#include "LodexDebugger/Core/Shell/LodexDllImport.h"
#include "LodexDebugger/Interop/LodexInterop.h"
#include "Misc/Paths.h"

/** The project folder, the file check and the dynamic loader of the engine. */
class FLodexDllHost final : public ILodexDllHost
{
public:
	//~ Begin ILodexDllHost Interface
	virtual std::string GetProjectDir() const override { return LodexInterop::ToUtf8(FPaths::ProjectDir()); }

	virtual bool FileExists(const std::string& Path) const override
	{
		return FPaths::FileExists(LodexInterop::FromUtf8(Path));
	}

	virtual bool GetDllHandle(const std::string& Path) override
	{
		return FPlatformProcess::GetDllHandle(*LodexInterop::FromUtf8(Path)) != nullptr;
	}
	//~ End ILodexDllHost Interface
};

bool UBPVELTAgent::importDLL(FString folder, FString name)
{
	FLodexDllHost Host;
	return ImportLodexDll(Host, LodexInterop::ToUtf8(folder), LodexInterop::ToUtf8(name));
}
