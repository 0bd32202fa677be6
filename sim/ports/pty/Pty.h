#pragma once

#include <functional>
#include <string>

#include "sim/chip/ChipTable.h"
#include "sim/chip/Time.h"

namespace sim {

// A pseudo terminal with a symbolic link to it: the serial port that a client opens.
class Pty {
public:
    Pty() = default;
    ~Pty() { close(); }
    Pty(const Pty &) = delete;
    Pty &operator=(const Pty &) = delete;

    // Makes the terminal, raw, and the link. An older link is replaced; anything else at that place is
    // left alone. False and a message when it cannot.
    bool open(const std::string &link, std::string &error);

    // Takes the device away: clients see it gone. The link goes too, if it is still ours.
    void close();

    int fd() const { return m_master; }     // readable when a client has sent
    int watchFd() const { return m_watch; } // readable when a client opens or closes; -1 if unknown

    // Takes in who has come and gone; to be called between reading and writing, so that whoever is heard
    // is known. After the last client nothing it left behind stays for the next.
    void followClients(Nanoseconds now);

    // Who is to be told when the first client has opened the terminal (true) and the last has closed it.
    void tellUse(std::function<void(bool used)> listener) { m_listener = std::move(listener); }

    // Whether the control lines of a port with such lines fall when the last client leaves: as it has set it.
    bool hangsUpOnClose() const;
    void hangUpOnClose() const; // until a client sets it otherwise

    // What a client has sent; the length, or 0.
    std::size_t read(std::uint8_t *bytes, std::size_t room, Nanoseconds now);

    // False when bytes were lost: nobody is there, or nobody reads.
    bool write(const Bytes &bytes);

    // Waits a moment until clients have read what was written: a hang-up takes away what is unread.
    void drain() const;

    // The rate that the client set, in baud; 0 when there is none.
    unsigned baud() const;

private:
    bool makeTerminal(std::string &error);
    bool makeLink(std::string &error);
    void watchClients();
    void count(int clients, Nanoseconds now);
    void lastClientLeft();

    std::function<void(bool)> m_listener;
    std::string m_link;
    std::string m_device;
    int m_master = -1;
    int m_slave = -1; // held open, so that the terminal outlives its clients
    int m_watch = -1;
    int m_ownEvents = -1; // those of m_watch that are counted
    int m_clients = 0;
    Nanoseconds m_left = 0;  // when the last client left
    Nanoseconds m_heard = 0; // when one has last sent
};

} // namespace sim
