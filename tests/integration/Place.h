#pragma once

#include <filesystem>
#include <string>
#include <vector>

// At which link the chip of a test sits: LINK in the environment is usart (also without it), dfu, i2c, can
// or spi.
struct Place {
    unsigned char type; // as TARGET_SetComIntType takes it
    std::vector<std::string> simulatorWords;
    std::string port;        // as SetCOMSettings takes it
    std::string chipPreload; // what the simulator has to run with
};

Place placeIn(const std::filesystem::path &directory);
