#pragma once

#include <QtGlobal>

class CBootLoader;

// The sLib area as the chip shows it, in sectors of main flash.
struct SlibArea {
    bool isEnabled = false;
    ushort start = 0;
    ushort startData = 0;
    ushort end = 0;
};

// Asks the chip. 0 or a CResult code.
int readSlibArea(const CBootLoader &control, SlibArea &area);

// Whether a number can be the password of an area.
bool isSlibPassword(uint password);
