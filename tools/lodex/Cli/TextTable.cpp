// Copyright Lodex contributors.
#include "TextTable.h"

#include <algorithm>

std::size_t CountUtf8Characters(const std::string& Text)
{
	std::size_t Count = 0;
	for (const char Char : Text)
	{
		// Continuation bytes (10xxxxxx) do not start a character.
		if ((static_cast<unsigned char>(Char) & 0xC0) != 0x80)
		{
			++Count;
		}
	}
	return Count;
}

FTextTable::FTextTable(std::vector<std::string> InHeader)
{
	Rows.push_back(std::move(InHeader));
}

void FTextTable::AddRow(std::vector<std::string> Row)
{
	Row.resize(Rows.front().size());
	Rows.push_back(std::move(Row));
}

std::string FTextTable::Render() const
{
	std::vector<std::size_t> Widths(Rows.front().size(), 0);
	for (const std::vector<std::string>& Row : Rows)
	{
		for (std::size_t Column = 0; Column < Row.size(); ++Column)
		{
			Widths[Column] = std::max(Widths[Column], CountUtf8Characters(Row[Column]));
		}
	}
	std::string Text;
	auto AppendRow = [&](const std::vector<std::string>& Row)
	{
		std::string Line;
		for (std::size_t Column = 0; Column < Row.size(); ++Column)
		{
			if (Column > 0)
			{
				Line += "  ";
			}
			Line += Row[Column];
			if (Column + 1 < Row.size())
			{
				Line.append(Widths[Column] - CountUtf8Characters(Row[Column]), ' ');
			}
		}
		Text += Line + "\n";
	};
	AppendRow(Rows.front());
	std::vector<std::string> Rule;
	for (const std::size_t Width : Widths)
	{
		Rule.push_back(std::string(Width, '-'));
	}
	AppendRow(Rule);
	for (std::size_t Index = 1; Index < Rows.size(); ++Index)
	{
		AppendRow(Rows[Index]);
	}
	return Text;
}
