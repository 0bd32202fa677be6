#include "tests/zvbl/FakeI2c.h"

#include <cerrno>

#include <linux/i2c-dev.h>
#include <linux/i2c.h>

#include "tests/zvbl/Pty.h"

void FakeI2c::play(Transfers script, const std::string &rest) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_script = std::move(script);
    m_rest = rest;
    m_at = 0;
    m_count = 0;
    m_complaint.clear();
}

std::string FakeI2c::finish() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_complaint.empty() && m_at < m_script.size())
        return "line " + std::to_string(m_at) + " never came: " + m_script[m_at];
    return m_complaint;
}

int FakeI2c::count() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_count;
}

void FakeI2c::complain(const std::string &what) {
    if (m_complaint.empty())
        m_complaint = "line " + std::to_string(m_at) + ": " + what;
}

long FakeI2c::answer(unsigned long request, UMockdevIoctlData *argument, int &error) {
    if (request == I2C_RDWR)
        return transfer(argument, error);
    if (request == I2C_FUNCS) {
        Pointed(argument, 0, sizeof functions).set(&functions, sizeof functions);
        return 0;
    }
    error = ENOTTY;
    return -1;
}

std::string FakeI2c::next() {
    return m_at < m_script.size() ? m_script[m_at++] : m_rest;
}

bool FakeI2c::fails(int &error) {
    const int number = m_count++;
    if (failAt < 0 || number < failAt)
        return false;
    if (number == failAt)
        unplug();
    error = errorNamed(failure);
    return true;
}

long FakeI2c::transfer(UMockdevIoctlData *argument, int &error) {
    const Pointed record(argument, 0, sizeof(i2c_rdwr_ioctl_data));
    if (record.as<i2c_rdwr_ioctl_data>()->nmsgs != 1)
        complain("not one message");
    const Pointed message(record.data(), 0, sizeof(i2c_msg));
    const i2c_msg &told = *message.as<i2c_msg>();
    Pointed buffer(message.data(), offsetof(i2c_msg, buf), told.len);
    const bool reads = told.flags & I2C_M_RD;
    const zvbl::Bytes sent(buffer.as<std::uint8_t>(), buffer.as<std::uint8_t>() + told.len);

    error = EIO;
    if (told.addr != address || (told.flags & ~I2C_M_RD))
        complain("address " + std::to_string(told.addr) + ", flags " + std::to_string(told.flags));
    if (fails(error))
        return -1;
    const std::string line = next();
    const std::size_t mark = line.find('!');
    if (!line.empty() && line[0] != '!' && line[0] != (reads ? '<' : '>')) {
        complain(std::string(reads ? "a read of " + std::to_string(told.len) : "a write of " + hex(sent)) + " for " +
                 line);
    } else if (mark != std::string::npos) {
        error = errorNamed(line.substr(mark + 2));
    } else if (line.empty()) {
        complain(reads ? "a read after the end" : "after the end a write of " + hex(sent));
    } else if (reads) {
        const zvbl::Bytes answer = hex(line.substr(1));
        if (answer.size() == told.len) {
            buffer.set(answer.data(), answer.size());
            return 1;
        }
        complain("a read of " + std::to_string(told.len) + " for " + line);
    } else if (sent == hex(line.substr(1))) {
        return 1;
    } else {
        complain("a write of " + hex(sent) + " for " + line);
    }
    return -1;
}
