// Copyright Lodex contributors.
#include "LodexDebugger/ExampleSettings.h"
