// zv32-imgconv IN OUT: converts an image file by way of libFiles, the formats by suffix.

#include <cstdio>

#include "device/FilesInc.h"

int main(int argc, char **argv) {
    constexpr unsigned int NoError = 0x12340000;
    constexpr int ProgramImage = 1;
    if (argc != 3) {
        std::fprintf(stderr, "usage: zv32-imgconv IN OUT\n");
        return 2;
    }
    HANDLE image = nullptr;
    unsigned int status = FILES_ImageFromFile(argv[1], &image, ProgramImage);
    if (status == NoError)
        status = FILES_ImageToFile(argv[2], image);
    if (image)
        FILES_DestroyImage(&image);
    if (status == NoError)
        return 0;
    std::fprintf(stderr, "zv32-imgconv: status %u\n", status);
    return 1;
}
