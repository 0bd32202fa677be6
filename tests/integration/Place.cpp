#include "tests/integration/Place.h"

#include <cstdlib>
#include <stdexcept>

Place placeIn(const std::filesystem::path &directory) {
    const char *link = std::getenv("LINK");
    const std::string name = link ? link : "usart";
    const std::string path = directory / "port";
    if (name == "usart")
        return {0, {"--usart", path}, path, ""};
    if (name == "dfu")
        return {1, {"--dfu"}, "", ""};
    if (name == "i2c")
        return {2, {"--i2c", "i2c-1"}, "i2c-1", ""};
    if (name == "can")
        return {3, {"--can", "can0"}, "can0", CAN_SHIM};
    if (name == "spi")
        return {4, {"--spi", "spidev0.0"}, "spidev0.0", ""};
    throw std::runtime_error("no link " + name);
}
