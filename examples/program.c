// Programs an image into a chip at a serial port, sector by sector, with both libraries.
//
// usage: program PORT MAP-FILE IMAGE
#include <stdio.h>
#include <stdlib.h>

#include <device/FilesInc.h>
#include <link/ZVBLLIB.h>

enum { usart = 0, evenParity = 2, oneSector = 1, filesDone = 0x12340000, mapDone = 0 };

static void demand(unsigned status, unsigned good, const char *call) {
    if (status == good)
        return;
    fprintf(stderr, "program: %s answers %u\n", call, status & 0xFFFF);
    exit(1);
}

// The sectors of a chip. What is called for the first time without records tells how many there are.
static MAPPING sectorsOf(const char *path) {
    MAPPING map = {0};
    short count = 0, packet = 0;
    char name[256];
    BYTE perBit = 0;
    demand(FILES_GetMemoryMapping(path, &count, name, &packet, NULL, &perBit), mapDone, "FILES_GetMemoryMapping");
    map.NbSectors = (DWORD)count;
    map.pSectors = calloc(map.NbSectors, sizeof *map.pSectors);
    if (map.pSectors == NULL)
        exit(1);
    demand(FILES_GetMemoryMapping(path, &count, name, &packet, &map, &perBit), mapDone, "FILES_GetMemoryMapping");
    printf("%s, %d sectors\n", name, count);
    return map;
}

// An image whose elements are cut at the borders of the sectors.
static HANDLE imageOf(const char *path, MAPPING *map) {
    HANDLE image = NULL;
    demand(FILES_ImageFromFile(path, &image, 1), filesDone, "FILES_ImageFromFile");
    demand(FILES_FilterImageForOperation(image, map, 2, 0), filesDone, "FILES_FilterImageForOperation");
    return image;
}

static HANDLE connectTo(const char *port) {
    HANDLE link = NULL;
    BYTE version = 0;
    Commands commands;
    TARGET_SetComIntType(usart);
    demand(SetCOMSettings(&link, 0, port, 115200, 8, evenParity, 1.0F), 0, "SetCOMSettings");
    demand(Interface_Open(link), 0, "Interface_Open");
    demand(ZVBL_Init_BL(link, 0, 0, 0), 0, "ZVBL_Init_BL");
    demand(ZVBL_ZV32ISP_TOOL(link), 0, "ZVBL_ZV32ISP_TOOL");
    demand(ZVBL_GET(link, &version, &commands), 0, "ZVBL_GET");
    return link;
}

static void program(HANDLE link, const MAPPING *map, IMAGEELEMENT *element) {
    const MAPPINGSECTOR *first = map->pSectors;
    const DWORD number = (element->dwAddress - first->dwStartAddress) / first->dwSectorSize;
    BYTE sector[2] = {(BYTE)number, (BYTE)(number >> 8)};
    const unsigned address = (unsigned)element->dwAddress, length = (unsigned)element->dwDataLength;
    demand(ZVBL_ERASE(link, oneSector, sector, 0), 0, "ZVBL_ERASE");
    demand(ZVBL_DNLOAD(link, address, element->Data, length, 0), 0, "ZVBL_DNLOAD");
    demand(ZVBL_VERIFY(link, address, element->Data, length, 0), 0, "ZVBL_VERIFY");
}

int main(int argc, char **argv) {
    if (argc != 4) {
        fprintf(stderr, "usage: program PORT MAP-FILE IMAGE\n");
        return 2;
    }
    MAPPING map = sectorsOf(argv[2]);
    HANDLE image = imageOf(argv[3], &map);
    HANDLE link = connectTo(argv[1]);
    unsigned count = 0;
    DWORD bytes = 0;
    demand(FILES_GetImageNbElement(image, &count), filesDone, "FILES_GetImageNbElement");
    for (unsigned i = 0; i < count; ++i) {
        IMAGEELEMENT element = {0};
        demand(FILES_GetImageElement(image, i, &element), filesDone, "FILES_GetImageElement");
        element.Data = malloc(element.dwDataLength);
        if (element.Data == NULL)
            return 1;
        demand(FILES_GetImageElement(image, i, &element), filesDone, "FILES_GetImageElement");
        program(link, &map, &element);
        bytes += element.dwDataLength;
        free(element.Data);
    }
    printf("%lu bytes in %u pieces: programmed and compared\n", bytes, count);
    FILES_DestroyImage(&image);
    Interface_Close(link);
    free(map.pSectors);
    return 0;
}
