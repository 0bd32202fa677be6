#pragma once

#include <string>
#include <vector>

#include "libs/zvbl/Command.h"
#include "tests/zvbl/FakeNode.h"

// One message of the host, and what the chip says while the host fetches after it.
struct Exchange {
    std::string message;
    std::string fetched;
};
using Exchanges = std::vector<Exchange>;

// A bus with one chip that plays a script. A fetch gets as many bytes as it asks for, from where the last
// one ended, and after the end `idle`.
class FakeSpi : public FakeNode {
public:
    explicit FakeSpi(const std::string &name = "spidev0.0") : FakeNode("spidev", name) {}

    void play(Exchanges script, std::uint8_t idle = 0x00);
    std::string finish(); // what went wrong; empty if all messages came, none else, and all was fetched
    int count();          // calls since play()

    unsigned mode = 0; // what the driver has, and was told
    unsigned bits = 0;
    unsigned speed = 0;
    std::string settingsFail;          // what settings fail with, empty: they don't
    int failAt = -1;                   // the call of this number, from 0, fails
    std::string failure = "ESHUTDOWN"; // and with this all from then on

protected:
    long answer(unsigned long request, UMockdevIoctlData *argument, int &error) override;

private:
    long transfer(UMockdevIoctlData *argument, std::size_t parts, int &error);
    void takeMessage(const zvbl::Bytes &message);
    zvbl::Bytes fetch(std::size_t count);
    void complain(const std::string &what);

    Exchanges m_script;
    std::size_t m_at = 0;
    zvbl::Bytes m_ready;
    std::uint8_t m_idle = 0;
    int m_count = 0;
    std::string m_complaint;
};
