// Copyright Lodex contributors.
#pragma once

#include <string>
#include <vector>

/** A plain-text table with columns padded to the widest cell, counted in characters (UTF-8 aware). */
class FTextTable
{
public:
	explicit FTextTable(std::vector<std::string> InHeader);
	void AddRow(std::vector<std::string> Row);
	std::string Render() const;

private:
	std::vector<std::vector<std::string>> Rows;
};

/** The number of characters (code points) of UTF-8 text. */
std::size_t CountUtf8Characters(const std::string& Text);
