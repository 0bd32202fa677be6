#pragma once

#include <string>

#include <sys/types.h>

// A bus of can-bus named can0, for this process, which has libcan_shim.so preloaded, and for its children.
class CanBusProcess {
public:
    explicit CanBusProcess(unsigned bitsPerSecond = 0); // 0: a virtual bus
    ~CanBusProcess();
    CanBusProcess(const CanBusProcess &) = delete;
    CanBusProcess &operator=(const CanBusProcess &) = delete;

    void tell(const std::string &command); // until it is done
    const std::string &directory() const { return m_directory; }

private:
    std::string readLine();

    std::string m_directory;
    pid_t m_process = -1;
    int m_commands = -1;
    int m_replies = -1;
};
