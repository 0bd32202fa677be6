#pragma once

namespace bench {

// While it lives and is wished, no core of the machine is halted when it has nothing to do. It costs power and nobody
// else's time.
class Awake {
public:
    explicit Awake(bool wished); // throws std::runtime_error where the machine does not let it
    ~Awake();
    Awake(const Awake &) = delete;
    Awake &operator=(const Awake &) = delete;

private:
    int m_request = -1;
};

} // namespace bench
