#pragma once

#include "libs/zvbl/wire/Wire.h"
#include "tests/fuzz/Tty.h"
#include "tests/sim/CanRig.h"
#include "tests/sim/Rig.h"

// Simulated chips at the other end of the tty.
namespace fuzz {

// On the serial line itself.
class ChipPeer : public Peer {
public:
    std::vector<std::uint8_t> answer(const std::vector<std::uint8_t> &sent) override {
        m_rig.now = ttyTime() + sim::second;
        m_rig.send(sent);
        sim::Bytes bytes;
        for (const sim::TimedByte &timed : m_rig.received())
            bytes.push_back(timed.byte);
        return bytes;
    }

    // What answers the opening byte is heard until the line is quiet.
    bool mayComeTwice(const std::vector<std::uint8_t> &sent) override {
        return sent == std::vector<std::uint8_t>{wire::sync};
    }

private:
    sim::Rig m_rig{"ZV32F421_16K"};
};

// On the bus of a CAN adapter.
class AdapterPeer : public Peer {
public:
    std::vector<std::uint8_t> answer(const std::vector<std::uint8_t> &sent) override {
        m_rig.now = ttyTime() + sim::second;
        std::string text = m_rig.adapter.receive(std::string(sent.begin(), sent.end()), m_rig.now);
        for (const sim::TimedFrame &timed : m_rig.received())
            text += m_rig.adapter.hear(timed);
        return {text.begin(), text.end()};
    }

private:
    sim::AdapterRig m_rig{{}, {}, false, "ZV32F421_16K"};
};

} // namespace fuzz
