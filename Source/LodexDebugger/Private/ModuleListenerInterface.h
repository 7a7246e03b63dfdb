// Copyright Lodex contributors.
#pragma once

/** A tool that the module starts at start-up and stops at shut-down, in the module's list order. */
class IModuleListenerInterface
{
public:
	virtual void OnStartupModule() {}
	virtual void OnShutdownModule() {}

	virtual ~IModuleListenerInterface() = default;
};
