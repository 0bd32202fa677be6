#pragma once

// Which suffix means which format of an image file, for whoever reads, writes or names one.

enum class ImageFormat { binary, intelHex, sRecord };

struct ImageSuffix {
    const char *text; // lower case, with its dot
    ImageFormat format;
};

// In the order in which a path is searched for them.
constexpr ImageSuffix imageSuffixes[] = {{".bin", ImageFormat::binary},
                                         {".hex", ImageFormat::intelHex},
                                         {".s19", ImageFormat::sRecord},
                                         {".srec", ImageFormat::sRecord}};
