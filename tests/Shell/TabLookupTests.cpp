// Copyright Lodex contributors.
#include "LodexDebugger/Core/Shell/LodexShell.h"

#include <gtest/gtest.h>

#include <string>

namespace
{
	TEST(LodexTabs, AreFoundByTheirExactNameCaseIncluded)
	{
		for (const FLodexTabInfo& Tab : GetLodexTabs())
		{
			EXPECT_EQ(FindLodexTab(Tab.TabName), &Tab) << Tab.TabName;
		}
		// Near misses: another case, a prefix, a longer name, blanks, the listener without a tab, a panel's name.
		for (const char* Name : {"tabtool", "TABTOOL", "Tabtool", "recorderTool", "TabToo", "TabTool ", " TabTool",
				 "TabToolPanel", "ReplTools", "", "MenuTool", "Lodestring Debugger"})
		{
			EXPECT_EQ(FindLodexTab(Name), nullptr) << '"' << Name << '"';
		}
	}
}
