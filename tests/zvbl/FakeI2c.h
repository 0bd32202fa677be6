#pragma once

#include <string>
#include <vector>

#include "tests/zvbl/FakeNode.h"

// A bus with one target that plays a script. Each line is one transfer:
//   "> 00 FF"    a write of exactly these bytes
//   "< 79"       a read of exactly so many bytes, which gives these
//   ">! ENXIO"   a write that fails; "<! EIO" a read that does; "! ENXIO" either
using Transfers = std::vector<std::string>;

class FakeI2c : public FakeNode {
public:
    explicit FakeI2c(const std::string &name = "i2c-1") : FakeNode("i2c-dev", name) {}

    // `rest`: what every transfer after the last line is, nothing if there must be none.
    void play(Transfers script, const std::string &rest = "");
    std::string finish(); // what went wrong; empty if all lines were played, and nothing else came
    int count();          // transfers since play()

    unsigned address = 0x3C;     // what transfers have to name
    unsigned long functions = 1; // I2C_FUNC_I2C
    int failAt = -1;             // the transfer of this number, from 0, unplugs the bus
    std::string failure = "EIO"; // and gives this from then on

protected:
    long answer(unsigned long request, UMockdevIoctlData *argument, int &error) override;

private:
    bool fails(int &error);
    long transfer(UMockdevIoctlData *argument, int &error);
    std::string next();
    void complain(const std::string &what);

    Transfers m_script;
    std::string m_rest;
    std::size_t m_at = 0;
    int m_count = 0;
    std::string m_complaint;
};
