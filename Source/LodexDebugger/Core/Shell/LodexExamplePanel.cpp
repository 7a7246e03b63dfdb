// Copyright Lodex contributors.
#include "LodexExamplePanel.h"

const FLodexExamplePanelInfo& GetLodexExamplePanel()
{
	static const FLodexExamplePanelInfo Panel{
		5.0f, {ELodexColorKind::Color8, 192.0f, 192.0f, 192.0f, 255.0f}, 15.0f, "This is a tab example."};
	return Panel;
}
