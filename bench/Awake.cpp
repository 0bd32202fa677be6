#include "bench/Awake.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace bench {

// The kernel keeps to a wish as long as the file is open.
Awake::Awake(bool wished) {
    const std::int32_t longestWaking = 0; // microseconds
    if (!wished)
        return;
    m_request = ::open("/dev/cpu_dma_latency", O_WRONLY | O_CLOEXEC);
    if (m_request < 0 || ::write(m_request, &longestWaking, sizeof longestWaking) != sizeof longestWaking) {
        const std::string why = std::strerror(errno);
        if (m_request >= 0)
            ::close(m_request);
        throw std::runtime_error("/dev/cpu_dma_latency: " + why);
    }
}

Awake::~Awake() {
    if (m_request >= 0)
        ::close(m_request);
}

} // namespace bench
