// Copyright Lodex contributors.
#include "WholeFile.h"

#include <fstream>

bool ReadWholeFile(const std::string& Path, std::string& OutBytes, std::string& OutError)
{
	std::ifstream File(Path, std::ios::binary);
	if (!File)
	{
		OutError = Path + ": cannot open the file";
		return false;
	}
	// Read in blocks: a failed read marks the stream bad (inserting its buffer into another stream would not).
	std::string Bytes;
	char Block[65536];
	while (File.read(Block, sizeof(Block)) || File.gcount() > 0)
	{
		Bytes.append(Block, static_cast<std::size_t>(File.gcount()));
	}
	if (File.bad())
	{
		OutError = Path + ": cannot read the file";
		return false;
	}
	OutBytes = std::move(Bytes);
	return true;
}
