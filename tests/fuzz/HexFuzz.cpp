#include "tests/fuzz/ImageCheck.h"
#include "tests/fuzz/Target.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string content(data, data + size);
    fuzz::checkImage("hex", content, fuzz::readHexPlainly(content));
    return 0;
}
