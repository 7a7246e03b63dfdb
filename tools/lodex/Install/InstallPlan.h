// Copyright Lodex contributors.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/** The descriptor of the plug-in that carries the module, in the plug-in's folder. */
inline constexpr const char* LodexPluginDescriptorName = "UnrealCLR.uplugin";
/** Added to the descriptor's name for its backup, kept beside it. */
inline constexpr const char* LodexDescriptorBackupSuffix = ".bak";

/** What stands where the install puts a file. */
enum class EInstallDestination
{
	Absent,
	File,
	Link,
};

/** One file the install puts into the plug-in folder, with its bytes, and what it replaces. */
struct FPlannedFile
{
	std::filesystem::path To;
	/** The path under the plug-in folder, with "/" separators. */
	std::string Relative;
	std::string Bytes;
	EInstallDestination Destination = EInstallDestination::Absent;
	/** The bytes of the file replaced, or the target of the link replaced, to put back after a failure. */
	std::string Previous;
	bool bSame = false;
};

struct FInstallPlan
{
	std::filesystem::path PluginDir;
	std::filesystem::path Descriptor;
	/** Where the descriptor's links lead: the file that is updated. */
	std::filesystem::path DescriptorTarget;
	std::vector<FPlannedFile> Files;
	/** Files under the installed module folder that the source tree no longer has. */
	std::vector<std::string> Stale;
	std::string DescriptorText;
	/** The descriptor's new text, when the module has to be added. */
	std::optional<std::string> NewDescriptorText;
	/** The backup of the descriptor as it was, beside the descriptor. */
	std::optional<FPlannedFile> Backup;
	/** Set when the descriptor already lists the module in a form other than the one the install writes. */
	std::string ExistingEntryNote;
};

/**
 * Works out what installing the module from the Lodex source tree SourceDir into the game project ProjectDir
 * does, changing nothing: the project and the source tree are checked, the module's sources and icons read, what
 * stands at each destination looked at (and whether it can be written), and the descriptor's update planned. On
 * failure returns false with the reason in OutError: one line that starts with the file or folder at fault.
 */
bool MakeInstallPlan(
	const std::string& ProjectDir, const std::string& SourceDir, FInstallPlan& OutPlan, std::string& OutError);
