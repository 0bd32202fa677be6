#pragma once

#include <string>

#include "programs/Json.h"

// Lines of JSON over a stream socket, between the program and the process that makes a unit. What goes wrong with it is
// a std::runtime_error.
class Channel {
public:
    // Takes an open descriptor over.
    explicit Channel(int descriptor) : m_descriptor(descriptor) {}
    ~Channel();
    Channel(const Channel &) = delete;
    Channel &operator=(const Channel &) = delete;

    // Waits until all of it is sent.
    void send(const Json &message);

    // Sends what can be sent now, and the rest at the next calls of sendMore(). Where the other end is gone, nobody is
    // told here: receive() tells of the end.
    void post(const Json &message);
    void sendMore();
    // What poll() is to wait for.
    short awaited() const;
    int descriptor() const { return m_descriptor; }

    enum class Got { message, end, silence };
    enum class Wait { none, forEver };
    // The next message, which is an object. Silence when none has come, without a wait.
    Got receive(Json &message, Wait wait);

private:
    bool take(Json &message);

    int m_descriptor;
    std::string m_toSend;
    std::string m_read; // and not taken yet
};
