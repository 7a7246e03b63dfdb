// Copyright Lodex contributors.
#pragma once

#include <string>
#include <vector>

/** A line of text with lines under it, drawn with box-drawing branches. */
struct FTextTreeNode
{
	std::string Text;
	std::vector<FTextTreeNode> Children;

	FTextTreeNode& Add(std::string ChildText);
};

/** The node's line, then its children's, each under "├── " or "└── " with "│   " continuing a branch. */
std::string RenderTextTree(const FTextTreeNode& Root);
