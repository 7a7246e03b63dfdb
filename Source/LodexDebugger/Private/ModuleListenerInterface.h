// Copyright Lodex contributors.
#pragma once

/**
 * A tool that the module starts at start-up and stops at shut-down, in the module's list order. The module holds its
 * listeners in shared pointers made from the concrete tools, which delete them as what they are.
 */
class IModuleListenerInterface
{
public:
	virtual void OnStartupModule() {}
	virtual void OnShutdownModule() {}

protected:
	~IModuleListenerInterface() = default;
};
