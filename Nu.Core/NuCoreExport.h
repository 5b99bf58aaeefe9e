#pragma once
/// @file
/// The export macro of libNu.Core.4.0.x64.so.

/// Marks a class or function as exported: symbols of the library are hidden unless so marked.
#define NU_CORE_EXPORT __attribute__((visibility("default")))
