#include "sim/links/usb/StandardRequests.h"

namespace sim {

namespace {

enum Recipient : std::uint8_t { toDevice = 0, toInterface = 1, toEndpoint = 2 };
constexpr std::uint8_t in = 0x80;

enum DescriptorType : std::uint8_t { device = 1, configuration = 2, string = 3, interface = 4, endpoint = 5 };

constexpr std::uint16_t endpointHalt = 0; // the feature that can be set and cleared

Bytes languages() {
    return {4, string, 0x09, 0x04};
} // English, the only one

// UTF-16, lowest byte first.
Bytes stringDescriptor(const std::string &text) {
    Bytes bytes = {static_cast<std::uint8_t>(2 + 2 * text.size()), string};
    for (const char letter : text) {
        bytes.push_back(static_cast<std::uint8_t>(letter));
        bytes.push_back(0);
    }
    return bytes;
}

// Whether one of a configuration's descriptors has this type, and this number as its third byte.
bool hasPart(const Bytes &whole, std::uint8_t type, std::uint16_t number) {
    for (std::size_t at = 0; at + 2 < whole.size() && whole[at] != 0; at += whole[at])
        if (whole[at + 1] == type && whole[at + 2] == number)
            return true;
    return false;
}

} // namespace

UsbSetup parseSetup(const std::uint8_t *bytes) {
    const auto number = [bytes](std::size_t at) { return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8); };
    return {bytes[0], bytes[1], number(2), number(4), number(6)};
}

struct StandardRequests::Row {
    std::uint8_t type;
    std::uint8_t request;
    std::optional<Bytes> (StandardRequests::*answer)(const UsbSetup &setup); // nothing: stall
};

const std::vector<StandardRequests::Row> &StandardRequests::rows() {
    // clang-format off
    static const std::vector<Row> table = {
        {in | toDevice, 0, &StandardRequests::getStatus},
        {in | toInterface, 0, &StandardRequests::getStatus},
        {in | toEndpoint, 0, &StandardRequests::getStatus},
        {toEndpoint, 1, &StandardRequests::clearHalt},
        {toEndpoint, 3, &StandardRequests::setHalt},
        {toDevice, 5, &StandardRequests::setAddress},
        {in | toDevice, 6, &StandardRequests::getDescriptor},
        {in | toDevice, 8, &StandardRequests::getConfiguration},
        {toDevice, 9, &StandardRequests::setConfiguration},
        {in | toInterface, 10, &StandardRequests::getInterface},
        {toInterface, 11, &StandardRequests::setInterface},
    };
    // clang-format on
    return table;
}

UsbAnswer StandardRequests::answer(const UsbSetup &setup, Nanoseconds now) {
    for (const Row &row : rows()) {
        if (row.type != setup.type || row.request != setup.request)
            continue;
        std::optional<Bytes> data = (this->*row.answer)(setup);
        if (!data)
            break;
        if (data->size() > setup.length)
            data->resize(setup.length);
        return UsbAnswer::done(now, *data);
    }
    return UsbAnswer::stall(now);
}

void StandardRequests::reset() {
    m_configuration = 0;
    m_halted.clear();
}

bool StandardRequests::hasInterface(std::uint16_t number) const {
    return hasPart(m_descriptors.configuration, interface, number);
}

bool StandardRequests::hasEndpoint(std::uint16_t address) const {
    return hasPart(m_descriptors.configuration, endpoint, address);
}

std::optional<Bytes> StandardRequests::getDescriptor(const UsbSetup &setup) {
    const auto type = static_cast<std::uint8_t>(setup.value >> 8);
    const auto number = static_cast<std::uint8_t>(setup.value);
    if (type == device && number == 0)
        return m_descriptors.device;
    if (type == configuration && number == 0)
        return m_descriptors.configuration;
    if (type == string && number <= m_descriptors.strings.size())
        return number == 0 ? languages() : stringDescriptor(m_descriptors.strings[number - 1U]);
    return std::nullopt;
}

std::optional<Bytes> StandardRequests::getConfiguration(const UsbSetup &) {
    return Bytes{m_configuration};
}

std::optional<Bytes> StandardRequests::setConfiguration(const UsbSetup &setup) {
    constexpr std::size_t valueOffset = 5; // bConfigurationValue
    if (setup.value != 0 && setup.value != m_descriptors.configuration[valueOffset])
        return std::nullopt;
    reset();
    m_configuration = static_cast<std::uint8_t>(setup.value);
    return Bytes{};
}

std::optional<Bytes> StandardRequests::getInterface(const UsbSetup &setup) {
    return configured() && hasInterface(setup.index) ? std::optional<Bytes>(Bytes{0}) : std::nullopt;
}

std::optional<Bytes> StandardRequests::setInterface(const UsbSetup &setup) {
    const bool known = configured() && hasInterface(setup.index) && setup.value == 0;
    return known ? std::optional<Bytes>(Bytes{}) : std::nullopt;
}

std::optional<Bytes> StandardRequests::getStatus(const UsbSetup &setup) {
    const int recipient = setup.type & 0x1F;
    if (recipient == toInterface && !hasInterface(setup.index))
        return std::nullopt;
    if (recipient != toEndpoint || setup.index == 0)
        return Bytes{0, 0}; // powered by the bus, wakes nobody
    const bool isHalted = halted(static_cast<std::uint8_t>(setup.index));
    return hasEndpoint(setup.index) ? std::optional<Bytes>(Bytes{isHalted, 0}) : std::nullopt;
}

// The address itself is the business of whoever routes transfers to the device.
std::optional<Bytes> StandardRequests::setAddress(const UsbSetup &) {
    return Bytes{};
}

std::optional<Bytes> StandardRequests::setHalt(const UsbSetup &setup) {
    if (setup.value != endpointHalt || !hasEndpoint(setup.index))
        return std::nullopt;
    m_halted.insert(static_cast<std::uint8_t>(setup.index));
    return Bytes{};
}

std::optional<Bytes> StandardRequests::clearHalt(const UsbSetup &setup) {
    const bool known = setup.value == endpointHalt && (setup.index == 0 || hasEndpoint(setup.index));
    m_halted.erase(static_cast<std::uint8_t>(setup.index));
    return known ? std::optional<Bytes>(Bytes{}) : std::nullopt;
}

} // namespace sim
