#pragma once
// CNuMetricCalibAddImageResult is declared under its own name; this name stays for callers that
// include the header of its source.
#include <Nu.Core.Ex/NuMetricCalibAddImageResult.h>
