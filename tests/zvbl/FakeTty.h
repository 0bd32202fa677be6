#pragma once

#include <vector>

#include <linux/serial.h>

#include "tests/zvbl/FakeNode.h"
#include "tests/zvbl/Pty.h"

// /dev/ttyUSB0: a serial port with modem control lines. Bytes and line settings are those of a pseudo
// terminal, the rest is answered here.
class FakeTty : public FakeNode {
public:
    explicit FakeTty(Pty &pty);

    // What its driver is like; to be set before it is opened.
    bool hasLines = true;
    bool hasSettings = true; // TIOCGSERIAL
    int settingsError = 0;   // of TIOCSSERIAL
    double rateFactor = 1.0; // the rate that it makes of the one that is set
    serial_struct settings{};

    int lines();                      // TIOCM_...
    void setLines(int lines);         // as the driver does at the open
    std::vector<std::string> moves(); // so far, as "+DTR+RTS" or "-DTR": one for each call
    void unplug();

private:
    long answer(unsigned long request, UMockdevIoctlData *argument, int &error) override;
    long move(unsigned long request, int bits);
    long exchangeSettings(unsigned long request, UMockdevIoctlData *argument, int &error);
    long pass(unsigned long request, UMockdevIoctlData *argument, int &error);

    Pty &m_pty;
    int m_lines = 0;
    bool m_gone = false;
    std::vector<std::string> m_moves;
};
