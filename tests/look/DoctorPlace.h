#pragma once

#include <functional>
#include <string>
#include <thread>

#include <sys/types.h>

#include "programs/machine/Machine.h"

// A directory that stands for the root of a machine, with the files that a test puts there.
class FakeMachine {
public:
    FakeMachine();
    ~FakeMachine();
    FakeMachine(const FakeMachine &) = delete;
    FakeMachine &operator=(const FakeMachine &) = delete;

    // Paths are absolute on that machine; directories are made.
    void file(const std::string &path, const std::string &text) const;
    void link(const std::string &path, const std::string &target) const;
    std::string root() const { return m_root; }
    Machine machine() const { return Machine(m_root); }

private:
    std::string m_root;
};

// A serial port of this machine. What its far end does runs on a thread: it gets the descriptor.
class Pty {
public:
    Pty();
    ~Pty();
    Pty(const Pty &) = delete;
    Pty &operator=(const Pty &) = delete;

    const std::string &path() const { return m_path; }
    void farEnd(std::function<void(int)> run);
    // As when an adapter is pulled out.
    void unplug();
    int master() const { return m_master; }

private:
    int m_master;
    std::string m_path;
    std::thread m_thread;
};

// A process of that name that has a file open.
class Holder {
public:
    Holder(const std::string &name, const std::string &path);
    ~Holder();
    Holder(const Holder &) = delete;
    Holder &operator=(const Holder &) = delete;

    pid_t number() const { return m_process; }

private:
    pid_t m_process;
};

// Runs a test in a process of somebody who is not root and in no group of a port.
bool asNobody(const std::function<bool()> &test);
