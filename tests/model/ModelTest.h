#pragma once

#include <filesystem>
#include <fstream>
#include <optional>
#include <stdlib.h>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "device/Device.h"

// A directory of its own that is the working directory, with an empty Map/, until it goes out of scope.
class Workplace {
public:
    Workplace() : m_before(std::filesystem::current_path()) {
        std::string pattern = (std::filesystem::temp_directory_path() / "model-XXXXXX").string();
        m_directory = mkdtemp(pattern.data());
        std::filesystem::current_path(m_directory);
        std::filesystem::create_directory("Map");
    }

    ~Workplace() {
        std::filesystem::current_path(m_before);
        std::filesystem::remove_all(m_directory);
    }

    void write(const std::string &name, const std::string &text) const { std::ofstream(m_directory / name) << text; }

    std::string path(const std::string &name) const { return (m_directory / name).string(); }

private:
    std::filesystem::path m_before;
    std::filesystem::path m_directory;
};

// A description that takes its map with it.
struct Described : CZV32F4Device {
    using CZV32F4Device::CZV32F4Device;
    ~Described() { delete m_CMapping; }
};

// The file library's double: its script and what it recorded.
class FilesDouble {
public:
    explicit FilesDouble(const Workplace &workplace, const std::string &script = "")
        : m_log(workplace.path("files.log")) {
        workplace.write("files.script", script);
        setenv("FILES_DOUBLE_SCRIPT", workplace.path("files.script").c_str(), 1);
        setenv("FILES_DOUBLE_LOG", m_log.c_str(), 1);
    }

    // The lines that it recorded since this was last asked.
    std::vector<std::string> calls() {
        std::vector<std::string> lines;
        std::ifstream file(m_log);
        for (std::string line; std::getline(file, line);)
            lines.push_back(line);
        std::vector<std::string> fresh(lines.begin() + static_cast<long>(m_seen), lines.end());
        m_seen = lines.size();
        return fresh;
    }

private:
    std::string m_log;
    std::size_t m_seen = 0;
};
