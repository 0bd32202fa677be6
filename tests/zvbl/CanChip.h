#pragma once

#include <functional>
#include <string>
#include <thread>
#include <vector>

// What is played on the bus: these frames from the host, then these from the chip, as "031 08 00, 031 11".
// Then something else happens, if told so.
struct CanTurn {
    std::string host;
    std::string chip;
    std::function<void()> then{};
};
using CanScript = std::vector<CanTurn>;

// A chip on can0 that plays a script, and complains about every frame that is not in it.
class CanChip {
public:
    explicit CanChip(CanScript script);
    ~CanChip();
    CanChip(const CanChip &) = delete;
    CanChip &operator=(const CanChip &) = delete;

    // Waits for the end of the script. What went wrong; empty if every frame was as told, and none more.
    std::string finish();

    void send(const std::string &frames); // out of turn

private:
    void serve();
    std::string hear(int timeoutMs);
    void connect();

    int m_socket = -1;
    const CanScript m_script;
    std::string m_complaint;
    std::thread m_thread;
};
