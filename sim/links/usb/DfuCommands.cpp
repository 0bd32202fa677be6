#include "sim/links/usb/DfuCommands.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "libs/zvbl/wire/Wire.h"
#include "sim/bootloader/Groups.h"
#include "sim/links/usb/DfuDescriptors.h"

namespace sim {

namespace {

// ---- commands that have a form of their own here. Their groups are made by DfuCommands, highest byte first.

std::size_t everything(const Bytes &arrived) {
    return arrived.size();
}
bool unchecked(const Bytes &) {
    return true;
}

Next read(Exchange &x, const Bytes &group) {
    Bytes bytes;
    x.setAddress(number32(group, 0));
    const Next next = x.conclude(x.chip.read(x.address(), number16(group, 4), bytes));
    x.send(bytes);
    return next;
}

Next write(Exchange &x, const Bytes &group) {
    x.setAddress(number32(group, 0));
    return x.conclude(x.chip.write(x.address(), Bytes(group.begin() + 4, group.end())));
}

// At an address, or everything.
std::size_t eraseLength(const Bytes &arrived) {
    return arrived.empty() ? 0 : 4;
}

Next erase(Exchange &x, const Bytes &group) {
    if (group.empty())
        return x.conclude(x.chip.eraseBank(Bank::oneAndTwo));
    x.setAddress(number32(group, 0));
    return x.conclude(x.chip.eraseSectorAt(x.address()));
}

Next go(Exchange &x, const Bytes &group) {
    x.setAddress(number32(group, 0));
    return x.conclude(x.chip.checkGo(x.address()), x.chip.goResets(x.address()) ? Next::reset : Next::leave);
}

const CommandRow readRow = {wire::opRead, "READ", Guard::access, awaitGroups, {{exactly<6>, unchecked, read}}};
const CommandRow writeRow = {wire::opWrite, "WRITE", Guard::access, awaitGroups, {{everything, unchecked, write}}};
const CommandRow eraseRow = {wire::opEraseExt, "ERASE", Guard::access, awaitGroups, {{eraseLength, unchecked, erase}}};
const CommandRow goRow = {wire::opGo, "GO", Guard::access, awaitGroups, {{exactly<4>, unchecked, go}}};

// ---- ERASE_EXT, whose second group would only be asked for after the first

constexpr std::size_t codeLength = 3;
constexpr std::size_t blockLength = 5;

const GroupRow &usualEraseExt() {
    const CommandTable &table = fixedCommands();
    return std::find_if(table.begin(), table.end(),
                        [](const CommandRow &row) { return row.opcode == wire::opEraseExt; })
        ->groups[0];
}

bool namesBlock(const Bytes &group) {
    return group.size() >= 2 && number16(group, 0) == wire::eraseBlock;
}

Bytes blockAddress(const Bytes &group) {
    return Bytes(group.begin() + codeLength, group.end());
}

std::size_t eraseExtLength(const Bytes &arrived) {
    return namesBlock(arrived) ? codeLength + blockLength : usualEraseExt().length(arrived);
}

bool eraseExtSound(const Bytes &group) {
    if (!namesBlock(group))
        return usualEraseExt().sound(group);
    return xorSound(Bytes(group.begin(), group.begin() + codeLength)) && xorSound(blockAddress(group));
}

Next eraseExt(Exchange &x, const Bytes &group) {
    if (!namesBlock(group))
        return usualEraseExt().act(x, group);
    x.setAddress(number32(blockAddress(group), 0));
    return x.conclude(x.chip.eraseBlock(x.address()));
}

// ---- block 0

constexpr std::uint8_t ownForm[] = {wire::opGet, wire::dfuSetPointer, wire::dfuErase, wire::opAccessUnprotect};

// They are blocks of data here, and have no opcode.
bool isData(std::uint8_t code) {
    return code == wire::opRead || code == wire::opWrite;
}

std::uint32_t lowestFirst(const Bytes &bytes) {
    return number32(Bytes(bytes.rbegin(), bytes.rend()), 0);
}

constexpr std::size_t addressLength = 4;

} // namespace

DfuCommands::DfuCommands(Chip &chip, Faults &faults, Log &log)
    : m_bootloader(chip, faults, log, &variants()), m_chip(chip), m_log(log), m_pointer(wire::flashBase) {}

const CommandTable &DfuCommands::variants() {
    static const CommandTable rows = {
        {wire::opEraseExt, "ERASE_EXT", Guard::access, awaitGroups, {{eraseExtLength, eraseExtSound, eraseExt}}},
    };
    return rows;
}

void DfuCommands::forget() {
    m_pointer = wire::flashBase;
    m_reply.reset();
}

Bytes DfuCommands::list() const {
    Bytes codes(std::begin(ownForm), std::end(ownForm));
    for (const std::uint8_t opcode : opcodesOf(m_chip.facts()))
        if (!isData(opcode) && std::find(codes.begin(), codes.end(), opcode) == codes.end())
            codes.push_back(opcode);
    return codes;
}

std::optional<Bytes> DfuCommands::takeReply() {
    return std::exchange(m_reply, std::nullopt);
}

DfuCommands::Result DfuCommands::download(std::uint16_t block, const Bytes &data, Nanoseconds now) {
    m_reply.reset();
    if (block == wire::dfuCommandBlock)
        return command(data[0], Bytes(data.begin() + 1, data.end()), now);
    Bytes group = addressOf(block);
    group.insert(group.end(), data.begin(), data.end());
    m_bootloader.whole(writeRow, group, now);
    return conclude(m_bootloader.outcome().notErased ? DfuStatus::errCheckErased : DfuStatus::errWrite);
}

DfuCommands::Result DfuCommands::upload(std::uint16_t block, std::size_t length, Nanoseconds now, Bytes &data) {
    Bytes group = addressOf(block);
    append16(group, static_cast<std::uint16_t>(length));
    m_bootloader.whole(readRow, group, now);
    const Result result = conclude(DfuStatus::errAddress);
    data = takeReply().value_or(Bytes());
    return result;
}

DfuCommands::Result DfuCommands::leave(Nanoseconds now) {
    m_bootloader.whole(goRow, addressOf(wire::dfuFirstDataBlock), now);
    return conclude(DfuStatus::errAddress);
}

DfuCommands::Result DfuCommands::command(std::uint8_t code, const Bytes &rest, Nanoseconds now) {
    if (code == wire::dfuSetPointer)
        return setPointer(rest, now);
    if (code == wire::dfuErase) {
        m_bootloader.whole(eraseRow, rest.size() == addressLength ? Bytes(rest.rbegin(), rest.rend()) : rest, now);
        return conclude(DfuStatus::errErase);
    }
    if (isData(code)) {
        m_log.refused("block 0: memory is written and read by blocks from 2 up");
        return {DfuStatus::errVendor, Next::end, now};
    }
    m_bootloader.whole(code, rest, now);
    return conclude(DfuStatus::errTarget);
}

DfuCommands::Result DfuCommands::setPointer(const Bytes &rest, Nanoseconds now) {
    if (rest.size() != addressLength) {
        m_log.refused("SET_POINTER: longer or shorter than this command");
        return {DfuStatus::errTarget, Next::end, now};
    }
    m_pointer = lowestFirst(rest);
    m_log.note("command: SET_POINTER");
    return {DfuStatus::ok, Next::end, now};
}

// A NACK after the opcode and one after a group are told apart, and so is what the memory itself refused.
DfuCommands::Result DfuCommands::conclude(DfuStatus refusal) {
    const std::vector<Output> outputs = m_bootloader.takeOutput();
    bool refused = false;
    for (const Output &output : outputs) {
        if (output.reply) {
            m_reply = m_reply.value_or(Bytes());
            m_reply->insert(m_reply->end(), output.bytes.begin(), output.bytes.end());
        } else {
            refused = output.bytes[0] == wire::nack;
        }
    }
    DfuStatus status = DfuStatus::ok;
    if (refused) {
        const bool byWork = m_bootloader.outcome().kind == Outcome::Kind::refused;
        status = outputs.size() == 1 ? DfuStatus::errVendor : byWork ? refusal : DfuStatus::errTarget;
        m_reply.reset();
    }
    return {status, m_bootloader.ended(), m_bootloader.busyUntil()};
}

Bytes DfuCommands::addressOf(std::uint16_t block) const {
    const std::uint64_t address =
        std::uint64_t{m_pointer} + std::uint64_t{block - wire::dfuFirstDataBlock} * dfuTransferSize(m_chip);
    Bytes bytes;
    // Beyond the last address there is no memory, and none at it.
    append32(bytes,
             static_cast<std::uint32_t>(std::min<std::uint64_t>(address, std::numeric_limits<std::uint32_t>::max())));
    return bytes;
}

} // namespace sim
