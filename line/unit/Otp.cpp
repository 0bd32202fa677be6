#include "line/unit/Otp.h"

#include <algorithm>

#include <QByteArray>

#include "device/Device.h"
#include "device/Families.h"
#include "foundation/Result.h"
#include "line/unit/Failure.h"
#include "link/BootLoader.h"

namespace {

constexpr char failed[] = "otp";
constexpr unsigned int blockSize = 32;
constexpr std::size_t wordSize = 4;
constexpr BYTE locked = 0x00;
constexpr BYTE blank = 0xFF;

std::vector<BYTE> bytesOf(const std::string &digits) {
    const QByteArray bytes = QByteArray::fromHex(QByteArray::fromStdString(digits));
    return {bytes.begin(), bytes.end()};
}

} // namespace

Otp::Otp(CBootLoader &control, const Json &blocks) : m_control(control) {
    const OtpArea &area = familyOf(*control.m_ObDevice).otp;
    for (const Json &block : blocks) {
        const auto number = block.at("block").get<unsigned int>();
        if (number >= static_cast<unsigned int>(area.dataLength) / blockSize)
            throw Failure(failed, "this chip has no block " + std::to_string(number) + " of OTP memory");
        const unsigned int lock = area.lockAddress + number;
        const bool isLocked = read(lock, 1).front() == locked;
        addData(area.dataAddress + number * blockSize, bytesOf(block.at("bytes")), isLocked);
        if (block.at("lock").get<bool>() && !isLocked)
            addLock(lock);
    }
}

void Otp::addData(unsigned int address, const std::vector<BYTE> &wanted, bool isLocked) {
    if (wanted.empty())
        return;
    const std::vector<BYTE> held = read(address, wanted.size());
    for (std::size_t at = 0; at < wanted.size(); at += wordSize) {
        const auto word = static_cast<std::ptrdiff_t>(at);
        if (std::equal(held.begin() + word, held.begin() + word + wordSize, wanted.begin() + word))
            continue;
        if (isLocked ||
            std::any_of(held.begin() + word, held.begin() + word + wordSize, [](BYTE byte) { return byte != blank; }))
            throw Failure(failed, "the OTP memory holds something else");
        const auto place = address + static_cast<unsigned int>(at);
        if (m_data.empty() || m_data.back().address + m_data.back().bytes.size() != place || at == 0)
            m_data.push_back({place, {}});
        m_data.back().bytes.insert(m_data.back().bytes.end(), wanted.begin() + word, wanted.begin() + word + wordSize);
    }
}

void Otp::addLock(unsigned int address) {
    m_locks.push_back({address, {locked}});
}

std::vector<BYTE> Otp::read(unsigned int address, std::size_t length) const {
    std::vector<BYTE> bytes(length);
    const int status = ZVBL_UPLOAD(m_control.m_handle, address, bytes.data(), static_cast<unsigned int>(bytes.size()));
    require(CResult::Convert(status), failed);
    return bytes;
}

void Otp::write(const Write &one) const {
    std::vector<BYTE> bytes = one.bytes;
    const int status =
        ZVBL_DNLOAD(m_control.m_handle, one.address, bytes.data(), static_cast<unsigned int>(bytes.size()), 0);
    require(CResult::Convert(status), failed);
    if (read(one.address, bytes.size()) != bytes)
        throw Failure(failed, CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING);
}

void Otp::write() const {
    for (const Write &one : m_data)
        write(one);
    for (const Write &one : m_locks)
        write(one);
}
