// bare-transfers COUNT
//
// Asks the first DFU device for its state, and then for a block of 2048 bytes, so many times, by control transfers and
// nothing else, and prints the milliseconds that one of each takes. What the bus does not need of that is the cost of
// an emulated device.

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <libusb.h>

namespace {

constexpr unsigned char upload = 2;
constexpr unsigned char getState = 5;
constexpr unsigned short firstDataBlock = 2;
constexpr int blockSize = 2048;
constexpr unsigned char fromInterface = LIBUSB_ENDPOINT_IN | LIBUSB_REQUEST_TYPE_CLASS | LIBUSB_RECIPIENT_INTERFACE;
constexpr unsigned patience = 1000; // ms
constexpr unsigned char dfuClass = 0xFE;

// The first interface that is one of DFU; null without any.
libusb_device_handle *openDfu(libusb_device **devices) {
    for (; *devices; ++devices) {
        libusb_config_descriptor *config = nullptr;
        if (libusb_get_active_config_descriptor(*devices, &config) != 0)
            continue;
        const bool dfu = config->bNumInterfaces > 0 && config->interface[0].num_altsetting > 0 &&
                         config->interface[0].altsetting[0].bInterfaceClass == dfuClass;
        libusb_free_config_descriptor(config);
        libusb_device_handle *handle = nullptr;
        if (dfu && libusb_open(*devices, &handle) == 0)
            return handle;
    }
    return nullptr;
}

// The milliseconds of one transfer; below 0 when one fails.
double time(libusb_device_handle *device, int count, unsigned char request, unsigned short block, int size) {
    std::vector<unsigned char> data(static_cast<std::size_t>(size));
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i)
        if (libusb_control_transfer(device, fromInterface, request, block, 0, data.data(),
                                    static_cast<std::uint16_t>(size), patience) != size)
            return -1;
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    return took.count() / count;
}

int measure(libusb_device_handle *device, int count) {
    if (libusb_claim_interface(device, 0) != 0)
        return 1;
    const double state = time(device, count, getState, 0, 1);
    const double block = time(device, count, upload, firstDataBlock, blockSize);
    std::printf("%.4f %.4f\n", state, block);
    return state < 0 || block < 0 ? 1 : 0;
}

} // namespace

int main(int argc, char **argv) {
    const int count = argc == 2 ? std::atoi(argv[1]) : 0;
    libusb_device **devices = nullptr;
    if (count <= 0 || libusb_init(nullptr) != 0 || libusb_get_device_list(nullptr, &devices) < 0) {
        std::fprintf(stderr, "usage: bare-transfers COUNT\n");
        return 2;
    }
    libusb_device_handle *device = openDfu(devices);
    const int result = device ? measure(device, count) : 1;
    if (device)
        libusb_close(device);
    libusb_free_device_list(devices, 1);
    libusb_exit(nullptr);
    return result;
}
