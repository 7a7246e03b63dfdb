// Copyright Lodex contributors.
#include "ContentFiles.h"

#include <system_error>

namespace fs = std::filesystem;

fs::path PluginContentFolder(const fs::path& Descriptor)
{
	return Descriptor.parent_path() / "Content";
}

std::string PluginOfContentFolder(const fs::path& Content)
{
	if (Content.filename() != "Content")
	{
		return std::string();
	}
	std::error_code Code;
	for (fs::directory_iterator It(Content.parent_path(), Code), End; !Code && It != End; It.increment(Code))
	{
		if (It->path().extension() == ".uplugin" && It->is_regular_file(Code))
		{
			return It->path().stem().string();
		}
	}
	return std::string();
}

bool IsGitLfsPointer(std::string_view Bytes)
{
	return Bytes.rfind("version https://git-lfs.github.com/spec/", 0) == 0;
}

std::string GitLfsPointerError(const std::string& Shown)
{
	return Shown + ": a Git LFS pointer, not the file itself: fetch the real file from Git LFS first (git lfs pull)";
}
