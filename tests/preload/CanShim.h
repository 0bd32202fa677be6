#pragma once

#include <cerrno>
#include <mutex>
#include <string>

#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/time.h>

#include "tests/preload/CanBus.h"

// The parts of libcan_shim.so; can_shim.cpp tells what it does.
namespace can_shim {

using namespace can_bus;

// What stands after a name in the C library, or in the next library that is preloaded.
template <class Function>
Function real(const char *name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

#define REAL(name) static const auto real_##name = can_shim::real<decltype(&::name)>(#name)

struct Socket {
    bool netlink = false;
    int otherEnd = -1; // until it is bound; of rtnetlink for ever
    int control = -1;  // once it is
    int index = 0;
    Options options;
    timeval lastHeard{};
    std::mutex mutex;
};

inline int failWith(int error) {
    errno = error;
    return -1;
}

// The sockets that are ours, by their number; null for another one.
Socket *find(int fd);
Socket *takeOut(int fd); // and forgets the number: a closed one and an unknown one are the same to close()

// A socket's life: the new number or -1; 0 or -1.
int open(int type, bool netlink);
int bindTo(Socket &socket, int index);
int close(Socket *socket);

// The interfaces: every bus in the directory, by name and by number; "" and 0 for none.
std::string directory();
int indexOf(const std::string &name);
std::string nameOf(int index);
bool answerAbout(unsigned long what, void *argument, int &result); // an ioctl about one; false: not ours

int connectTo(const std::string &name); // a bus; -1 and ENODEV for none

// Sends one request to the bus and waits for its answer. ENXIO: the bus is gone.
Answer request(int control, const Request &what, const Options *options = nullptr, int pass = -1);
Answer ask(const std::string &name, const Request &what = {}); // without a socket

// What goes through a socket, and its settings: as the functions of the C library.
ssize_t sendFrame(Socket &socket, const void *bytes, std::size_t size);
ssize_t receive(int fd, Socket &socket, msghdr &message, int flags);
ssize_t receive(int fd, Socket &socket, void *bytes, std::size_t size, int flags);
int setOption(Socket &socket, int name, const void *value, socklen_t size);
int getOption(Socket &socket, int name, void *value, socklen_t *size);

// A question on an rtnetlink socket; its answer waits there when this returns.
ssize_t converse(Socket &socket, const void *bytes, std::size_t size);

} // namespace can_shim
