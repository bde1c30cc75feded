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

// ZO_HIDDEN: a class that only the library's sources define, inside one that it exports.
#if defined(__GNUC__) && !defined(_WIN32)
#define ZO_HIDDEN __attribute__((visibility("hidden")))
#else
#define ZO_HIDDEN
#endif

// An instantiation that the library exports is declared in a header and defined in one source. mingw exports
// it by the declaration, Microsoft's compiler by the definition, and that one refuses the other's form.
#if defined(_WIN32) && !defined(__MINGW32__) && defined(ZO_BUILDING_LIBRARY) && !defined(ZO_STATIC)
#define ZO_API_DECLARED
#define ZO_API_DEFINED ZO_API
#else
#define ZO_API_DECLARED ZO_API
#define ZO_API_DEFINED
#endif

// All modules use one run-time library (docs/windows.md), so private members and bases of its types are safe.
#ifdef _MSC_VER
#pragma warning(disable : 4251 4275)
#endif
