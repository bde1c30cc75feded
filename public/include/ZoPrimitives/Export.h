#pragma once

// ZO_API marks what the shared library exports; everything else stays hidden.
// ZO_STATIC: a program links the library's objects directly (the library's own tests do).
#if defined(_WIN32) && !defined(ZO_STATIC)
#if defined(ZO_BUILDING_LIBRARY)
#define ZO_API __declspec(dllexport)
#else
#define ZO_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define ZO_API __attribute__((visibility("default")))
#else
#define ZO_API
#endif
