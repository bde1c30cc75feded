#pragma once

// ZO_API marks what the shared library exports; everything else stays hidden.
// ZO_STATIC: the library's objects are linked straight into the program (the library's own tests).
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
