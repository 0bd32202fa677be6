#pragma once

#include <string>

#include "device/ImageSuffixes.h"

// The format that a file's suffix stands for.
struct ImageKind {
    ImageFormat format;
    const char *name;
};

// Null for a suffix that none has.
const ImageKind *imageKindOf(const std::string &path);
