#pragma once

// Which byte of the compact form holds what, per family.

// How many bytes there are.
struct OptionByteCounts {
    // Bytes of the compact form, by family.
    static constexpr int OTP2_LENGTH_ZV32F415_A = 16;
    static constexpr int OTP2_LENGTH_ZV32F415_B = 512;
    static constexpr int OTP2_LENGTH_ZV32 = 24;
    static constexpr int OTP2_LENGTH_ZV32F421 = 256;
    static constexpr int OTP2_LENGTH_ZV32F425 = 256;
    static constexpr int OTP2_LENGTH_ZV32F423 = 256;
    static constexpr int OTP2_LENGTH_ZV32F405_402 = 256;
    static constexpr int OTP2_LENGTH_ZV32F455_456_457 = 256;
    static constexpr int OTP2_LENGTH_ZV32L021 = 256;
    static constexpr int OTP2_LENGTH_ZV32M412_M416 = 256;
    static constexpr int OTP2_LENGTH_ZV32F422_426 = 256;
    static constexpr int OTP2_LENGTH_ZV32F435F437_1 = 256;
    static constexpr int OTP2_LENGTH_ZV32F435F437_2 = 2048;
    static constexpr int OTP2_MAX_LENGTH = 2048;

    // Bytes of DATA, by family.
    static constexpr int OTP2_DATA_LENGTH_ZV32F415_A = 10;
    static constexpr int OTP2_DATA_LENGTH_ZV32F415_B = 506;
    static constexpr int OTP2_DATA_LENGTH_ZV32 = 8;
    static constexpr int OTP2_DATA_LENGTH_ZV32F421 = 250;
    static constexpr int OTP2_DATA_LENGTH_ZV32F425 = 250;
    static constexpr int OTP2_DATA_LENGTH_ZV32F423 = 250;
    static constexpr int OTP2_DATA_LENGTH_ZV32F405_402 = 220;
    static constexpr int OTP2_DATA_LENGTH_ZV32F455_456_457 = 220;
    static constexpr int OTP2_DATA_LENGTH_ZV32L021 = 250;
    static constexpr int OTP2_DATA_LENGTH_ZV32M412_M416_G412 = 250;
    static constexpr int OTP2_DATA_LENGTH_ZV32F422_426 = 249;
    static constexpr int OTP2_DATA_LENGTH_ZV32F435F437_1 = 220;
    static constexpr int OTP2_DATA_LENGTH_ZV32F435F437_2 = 2012;

    // Bytes of EPP, by family.
    static constexpr int OTP2_EPP_LENGTH_ZV32 = 4;
    static constexpr int OTP2_EPP_LENGTH_ZV32F435F437 = 20;
};

enum class OptionItem { fap, ssb, ssb1, data, epp, eopb0, res1, bank3Key };

// A row stands for `count` bytes from `firstByte` on, which hold the item's bytes from `firstIndex` on.
struct LayoutRow {
    OptionItem item;
    int firstByte;
    int count; // toTheEnd: up to the end of the compact form
    int firstIndex;
};

constexpr int toTheEnd = -1;

struct OptionLayout {
    const LayoutRow *first;
    const LayoutRow *last; // one after
};

struct OptionLengths {
    int compact;
    int data;
    int epp;
};

// The rows of a family, a MCUSERIALS value.
OptionLayout optionLayout(int family);

// Lengths in bytes. The sector size in bytes.
OptionLengths optionLengths(int family, int bidVersion, int sectorSize);
