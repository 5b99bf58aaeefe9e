#pragma once
// Symbols of libNu.Core.Ex.4.0.x64.so are hidden unless marked with NU_CORE_EX_EXPORT.
#define NU_CORE_EX_EXPORT __attribute__((visibility("default")))
