#pragma once

// The C interface of libFiles.so.1: program images and user system data images in memory and on
// disk, and the ZVmap sector tables. It knows nothing of a link.

#include "foundation/LibraryTypes.h"

typedef struct {
    char Name[256]; // null-terminated
    DWORD dwStartAddress;
    DWORD dwAliasedAddress;
    DWORD dwSectorIndex;
    DWORD dwSectorSize; // bytes
    BYTE bSectorType;
    bool UseForOperation;
    bool UseForErase;
    bool UseForUpload;
    bool UseForEraseProgramProtect;
} MAPPINGSECTOR, *PMAPPINGSECTOR;

typedef struct {
    BYTE nAlternate;
    char Name[256];
    DWORD NbSectors;
    PMAPPINGSECTOR pSectors;
} MAPPING, *PMAPPING;

typedef struct {
    DWORD dwAddress;    // target address of the first byte
    DWORD dwDataLength; // bytes
    BYTE *Data;
} IMAGEELEMENT, *PIMAGEELEMENT;

static_assert(sizeof(MAPPINGSECTOR) == 296 && offsetof(MAPPINGSECTOR, bSectorType) == 288, "binary contract");
static_assert(sizeof(MAPPING) == 280 && offsetof(MAPPING, pSectors) == 272, "binary contract");
static_assert(sizeof(IMAGEELEMENT) == 24, "binary contract");

// Every status below is a 32-bit word, 0x12340000 for success; FILES_GetMemoryMapping alone answers
// 0 for success. A handle that was never given out is a bad parameter. No function throws, prints or
// exits. One image is used by one thread at a time, different images by as many as there are.
#pragma GCC visibility push(default)
#ifdef __cplusplus
extern "C" {
#endif

// Makes an empty image. The second argument is always 1.
unsigned int FILES_CreateImage(HANDLE *image, int one);

// Makes an image of one element per sector of the map, and behind the flash one per 4096-byte
// sector of the given Bank 3 size in KB.
unsigned int FILES_CreateImageFromMapping(HANDLE *image, PMAPPING mapping, unsigned int bank3Size);

// Frees the image and nulls the handle. A handle is a block of operator new: who drops it with
// operator delete instead does no harm, the memory of the image is then freed later.
unsigned int FILES_DestroyImage(HANDLE *image);

// Reads a file: program 1 for a program image, 0 for a user system data image.
unsigned int FILES_ImageFromFile(const char *path, HANDLE *image, int program);

// Writes the image; the type follows the suffix. The old file survives every failure.
unsigned int FILES_ImageToFile(const char *path, HANDLE image);

unsigned int FILES_SetImageName(HANDLE image, const char *name);

// Cuts the elements at the sector borders of the map; operation is always 2. With the optimise flag
// it also takes out what is 0xFF.
unsigned int FILES_FilterImageForOperation(HANDLE image, PMAPPING mapping, int operation, BYTE optimise);

unsigned int FILES_GetImageNbElement(HANDLE image, unsigned int *count);

// With Data null fills in address and length only; with Data set also copies the bytes.
unsigned int FILES_GetImageElement(HANDLE image, unsigned int index, PIMAGEELEMENT element);

// Stores an element's bytes: in place, or with the insert flag as a new element.
unsigned int FILES_SetImageElement(HANDLE image, unsigned int index, BYTE insert, IMAGEELEMENT element);

// Reads a ZVmap file. With a null mapping it sets the count, name and packet size only; with one whose
// pSectors has room for that many it fills the records. 0 is success.
unsigned int FILES_GetMemoryMapping(const char *path, short *sectors, char *name, short *packetSize, PMAPPING mapping,
                                    BYTE *sectorsPerSector);
#ifdef __cplusplus
}
#endif
#pragma GCC visibility pop
