#include <clocale>
#include <iostream>

#include <QCoreApplication>

#include <fcntl.h>

#include "line/channel/Channel.h"
#include "line/channel/Messages.h"
#include "line/unit/Unit.h"

namespace {

int make() {
    Channel channel(channelDescriptor);
    Json order;
    if (channel.receive(order, Channel::Wait::forEver) != Channel::Got::message || order.at("do") != "make")
        return 1;
    Unit(channel, std::move(order)).make();
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    if (fcntl(channelDescriptor, F_SETFD, FD_CLOEXEC) != 0 || fcntl(sharedDescriptor, F_SETFD, FD_CLOEXEC) != 0) {
        std::cerr << "zv32-unit: only zv32-line starts it" << std::endl;
        return 1;
    }
    const QCoreApplication application(argc, argv);
    std::setlocale(LC_ALL, "C");
    try {
        return make();
    } catch (const std::exception &failure) {
        std::cerr << "zv32-unit: " << failure.what() << std::endl;
        return 1;
    }
}
