// Short names of the fixed-width integers that run through the whole engine, and the export macro.
#pragma once

typedef unsigned char uchar;
typedef unsigned short ushort;

// Marks what an embedder may link against; everything else stays hidden in a shared build.
#if defined(_WIN32)
#if defined(CVCELLS_BUILDING)
#define CVCELLS_API __declspec(dllexport)
#else
#define CVCELLS_API
#endif
#else
#define CVCELLS_API __attribute__((visibility("default")))
#endif
