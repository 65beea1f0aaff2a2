#pragma once

/// PXROM_API marks what the library exports; everything else is hidden.
///
/// A host that links the static library gets PXROM_STATIC from the CMake target or from pkg-config
/// (`pkg-config --static --cflags pxrom`). Only our own build sets PXROM_BUILDING.
#if defined(PXROM_STATIC)
#define PXROM_API
#elif defined(_WIN32)
#if defined(PXROM_BUILDING)
#define PXROM_API __declspec(dllexport)
#else
#define PXROM_API __declspec(dllimport)
#endif
#else
#define PXROM_API __attribute__((visibility("default")))
#endif
