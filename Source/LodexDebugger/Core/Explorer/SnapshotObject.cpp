// Copyright Lodex contributors.
#include "SnapshotObject.h"

namespace LodexSnapshot
{
	const char* GetKindName(ELodexSnapshotKind Kind)
	{
		switch (Kind)
		{
			case ELodexSnapshotKind::Actor:
				return "actor";
			case ELodexSnapshotKind::WidgetTree:
				return "widgetTree";
			case ELodexSnapshotKind::Widget:
				return "widget";
			case ELodexSnapshotKind::UserWidget:
				return "userWidget";
			case ELodexSnapshotKind::Component:
				return "component";
			case ELodexSnapshotKind::Other:
				break;
		}
		return "other";
	}

	bool FindKind(const std::string& Name, ELodexSnapshotKind& OutKind)
	{
		for (const ELodexSnapshotKind Kind :
			{ELodexSnapshotKind::Actor, ELodexSnapshotKind::WidgetTree, ELodexSnapshotKind::Widget,
				ELodexSnapshotKind::UserWidget, ELodexSnapshotKind::Component, ELodexSnapshotKind::Other})
		{
			if (Name == GetKindName(Kind))
			{
				OutKind = Kind;
				return true;
			}
		}
		return false;
	}
}
