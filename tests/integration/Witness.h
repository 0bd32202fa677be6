#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

// Bytes that look like a program: none of them FF, no two neighbours alike, other ones for another seed.
Bytes program(std::size_t length, unsigned seed = 1);

// The bytes, with FF after them up to the length.
Bytes filledUp(Bytes bytes, std::size_t length);

// CRC-32 of the bytes by a program that is not ours.
std::uint32_t witnessCrc(const Bytes &bytes);

// Writes the bytes into a file, as they are, or by an independent program as an Intel hex file at the address.
std::string writeBinary(const std::filesystem::path &file, const Bytes &bytes);
std::string writeHex(const std::filesystem::path &file, const Bytes &bytes, std::uint32_t address);
