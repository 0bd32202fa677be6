#include "operations/download/ProjectParts.h"

#include <algorithm>

namespace projectparts {

bool isWhole(const HEXFILEPARTINFO &part) {
    return part.PartSize <= sizeof part.pData;
}

uint copyChunk(const HEXFILEPARTINFO &part, uint offset, BYTE (&chunk)[chunkSize]) {
    const uint length = std::min(chunkSize, part.PartSize - offset);
    std::copy_n(part.pData + offset, length, chunk);
    return length;
}

} // namespace projectparts
