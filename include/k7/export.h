// K7_API marks what the library exports; everything else is hidden.
#pragma once

#if defined(K7_STATIC)
#define K7_API
#elif defined(_WIN32)
#if defined(K7_BUILDING)
#define K7_API __declspec(dllexport)
#else
#define K7_API __declspec(dllimport)
#endif
#else
#define K7_API __attribute__((visibility("default")))
#endif
