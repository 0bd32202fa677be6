#pragma once

// The types that cross the border to the two libraries: System V AMD64, LP64. For C11 and for C++.

#ifdef __cplusplus
#include <cstddef>
#else
#include <assert.h>
#include <stdbool.h>
#include <stddef.h>
#endif

typedef unsigned char BYTE;
typedef int BOOL;            // 32 bits
typedef unsigned long DWORD; // 64 bits on this platform
typedef void *HANDLE;        // a link or an image, opaque

static_assert(sizeof(BOOL) == 4 && sizeof(DWORD) == 8 && sizeof(HANDLE) == 8, "the library interface is LP64");
