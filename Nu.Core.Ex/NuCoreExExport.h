#pragma once
/// @file
/// The export macro of libNu.Core.Ex.4.0.x64.so.

/// Marks a class, function or explicit instantiation as exported: symbols of the library are
/// hidden unless so marked.
#define NU_CORE_EX_EXPORT __attribute__((visibility("default")))
