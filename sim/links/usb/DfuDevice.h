#pragma once

#include "sim/links/usb/DfuCommands.h"
#include "sim/links/usb/StandardRequests.h"

namespace sim {

// A chip in its bootloader on USB: the states of Device Firmware Upgrade 1.1, Appendix A. Whatever does not
// fit the state is stalled and told on the log.
class DfuDevice : public UsbDevice {
public:
    DfuDevice(Chip &chip, Faults &faults, Log &log);

    const UsbDescriptors &descriptors() const override { return m_descriptors; }
    UsbAnswer control(const UsbSetup &setup, const Bytes &out, Nanoseconds now) override;
    void delivered(Nanoseconds at) override;
    void busReset(Nanoseconds now) override;
    UsbPresence presence(Nanoseconds now) override;
    std::optional<Nanoseconds> nextEvent(Nanoseconds now) override;
    void pressReset(Nanoseconds now) override;
    void losePower(Nanoseconds now) override;

private:
    enum class State : std::uint8_t {
        idle = 2,
        downloadSync = 3,
        downloadBusy = 4,
        downloadIdle = 5,
        manifestSync = 6,
        manifest = 7,
        uploadIdle = 9,
        error = 10,
    };
    struct Request;
    struct Transition;
    static const std::vector<Request> &requests();
    static const std::vector<Transition> &transitions();
    static const char *nameOf(State state);

    const Request *requestOf(const UsbSetup &setup) const;
    UsbAnswer misfit(const std::string &what, Nanoseconds now);
    UsbAnswer follow(State next, Nanoseconds now);

    UsbAnswer download(const UsbSetup &setup, const Bytes &out, Nanoseconds now);
    UsbAnswer upload(const UsbSetup &setup, const Bytes &out, Nanoseconds now);
    UsbAnswer uploadMemory(const UsbSetup &setup, Nanoseconds now);
    UsbAnswer handOver(const UsbSetup &setup, const Bytes &data, Nanoseconds now);
    UsbAnswer getStatus(const UsbSetup &setup, const Bytes &out, Nanoseconds now);
    UsbAnswer carryOut(const UsbSetup &setup, const Bytes &out, Nanoseconds now);
    UsbAnswer workDone(Nanoseconds now);
    UsbAnswer stillBusy(const UsbSetup &setup, const Bytes &out, Nanoseconds now);
    UsbAnswer leave(const UsbSetup &setup, const Bytes &out, Nanoseconds now);
    UsbAnswer getState(const UsbSetup &setup, const Bytes &out, Nanoseconds now);
    UsbAnswer toIdle(const UsbSetup &setup, const Bytes &out, Nanoseconds now);
    UsbAnswer statusAnswer(Nanoseconds now) const;

    void advance(Nanoseconds now);
    void beFresh();
    void goAway(Nanoseconds at, std::optional<Nanoseconds> back);
    void goAwayAfterAnswer(Nanoseconds at);

    DfuCommands m_commands;
    Log &m_log;
    const std::uint16_t m_transferSize;
    UsbDescriptors m_descriptors;
    StandardRequests m_standard{m_descriptors};

    State m_state = State::idle;
    DfuStatus m_status = DfuStatus::ok;
    struct Block {
        std::uint16_t number;
        Bytes data;
    };
    std::optional<Block> m_pending; // to be carried out at the next GETSTATUS
    Nanoseconds m_busyUntil = 0;
    Next m_ended = Next::end; // what comes after the answer that the work is done
    bool m_said = false;      // that answer has been given

    unsigned m_attachments = 1;
    std::optional<Nanoseconds> m_awayAt;
    std::optional<Nanoseconds> m_backAt;
};

} // namespace sim
