#include "tests/fuzz/ImageCheck.h"
#include "tests/fuzz/Target.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fuzz::Cells cells;
    for (std::size_t i = 0; i < size; ++i)
        cells[0x08000000 + i] = data[i];
    fuzz::checkImage("bin", std::string(data, data + size), cells);
    return 0;
}
