#pragma once
// The id tables and TPixel live beside the format record.
#include <Nu.Core.Ex/NuImageFormat.h>
