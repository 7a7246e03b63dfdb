// Copyright Lodex contributors.
#include "TextTree.h"

#include <utility>

namespace
{
	void RenderChildren(const FTextTreeNode& Node, const std::string& Prefix, std::string& Out)
	{
		for (std::size_t Index = 0; Index < Node.Children.size(); ++Index)
		{
			const bool bLast = Index + 1 == Node.Children.size();
			const FTextTreeNode& Child = Node.Children[Index];
			Out += Prefix + (bLast ? "└── " : "├── ") + Child.Text + "\n";
			RenderChildren(Child, Prefix + (bLast ? "    " : "│   "), Out);
		}
	}
}

FTextTreeNode& FTextTreeNode::Add(std::string ChildText)
{
	Children.push_back({std::move(ChildText), {}});
	return Children.back();
}

std::string RenderTextTree(const FTextTreeNode& Root)
{
	std::string Out = Root.Text + "\n";
	RenderChildren(Root, std::string(), Out);
	return Out;
}
