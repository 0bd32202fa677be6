#pragma once

#include <cstdint>

// The numbers of the bootloader protocol, for the library and for the simulated chip alike. Constants
// only: what is done with them stands twice, once on each side. docs/wire-protocol.md explains them.

namespace wire {

// Answers.
constexpr std::uint8_t ack = 0x79;
constexpr std::uint8_t nack = 0x1F;
constexpr std::uint8_t busy = 0x76; // I2C: read again

// USART: the byte by which the chip measures the rate, and which brings both sides in step. SPI and CAN
// open with it too.
constexpr std::uint8_t sync = 0x7F;

// The links that travel in messages.
constexpr std::uint8_t i2cAddress = 0x3C;    // 7 bits
constexpr std::uint8_t spiStart = 0x5A;      // opens a message, and an answer
constexpr std::uint8_t spiIdle = 0x00;       // the host fetches; the chip has nothing to say
constexpr std::uint16_t canFromChip = 0x100; // added to the opcode
constexpr unsigned canStartSpeed = 250000;   // bits per second after a reset

// USB DFU 1.1 and its extension.
constexpr std::uint16_t dfuVendorId = 0x1209; // of the simulated chip
constexpr std::uint16_t dfuProductId = 0x0001;
constexpr std::uint16_t dfuVersion = 0x011A; // bcdDFUVersion
constexpr std::uint8_t dfuSetPointer = 0x21; // commands of block 0; as opcodes they mean something else
constexpr std::uint8_t dfuErase = 0x41;
constexpr unsigned dfuCommandBlock = 0;
constexpr unsigned dfuReplyBlock = 1;
constexpr unsigned dfuFirstDataBlock = 2;

// Opcodes of the fixed convention.
constexpr std::uint8_t opGet = 0x00;
constexpr std::uint8_t opGetVerRops = 0x01;
constexpr std::uint8_t opGetId = 0x02;
constexpr std::uint8_t opSetSpeed = 0x03;
constexpr std::uint8_t opRead = 0x11;
constexpr std::uint8_t opGo = 0x21;
constexpr std::uint8_t opWrite = 0x31;
constexpr std::uint8_t opErase = 0x43;
constexpr std::uint8_t opEraseExt = 0x44;
constexpr std::uint8_t opEppProtect = 0x63;
constexpr std::uint8_t opEppUnprotect = 0x73;
constexpr std::uint8_t opAccessProtect = 0x82;
constexpr std::uint8_t opAccessUnprotect = 0x92;

// Opcodes of our own.
constexpr std::uint8_t opToolExchange = 0x5A;
constexpr std::uint8_t opEppTempUnprotect = 0x71;
constexpr std::uint8_t opAccessTempUnprotect = 0x81;
constexpr std::uint8_t opAccessProtectLevel = 0x84;
constexpr std::uint8_t opFirmwareCrc = 0xAC;
constexpr std::uint8_t opEnableBank3 = 0xB3;
constexpr std::uint8_t opRemap = 0xB7;
constexpr std::uint8_t opEnableSlib = 0xD1;
constexpr std::uint8_t opDisableSlib = 0xD2;
constexpr std::uint8_t opSlibStatus = 0xD3;
constexpr std::uint8_t opReset = 0xD4;
constexpr std::uint8_t opUserDataRead = 0xE1;
constexpr std::uint8_t opUserDataWrite = 0xE2;

// ERASE_EXT special codes.
constexpr std::uint16_t eraseEverything = 0xFFFF;
constexpr std::uint16_t eraseBank1 = 0xFFFE;
constexpr std::uint16_t eraseBank2 = 0xFFFD;
constexpr std::uint16_t eraseBank3 = 0xFFFC;
constexpr std::uint16_t eraseBlock = 0xFFFB;

// FIRMWARE_CRC: with this bit the count asks for the CRC of each sector, of so many at most.
constexpr std::uint16_t crcOfEach = 0x8000;
constexpr unsigned mostCrcs = 64;

// Sizes.
constexpr unsigned maxPacket = 256;      // bytes of one READ or WRITE
constexpr unsigned writeGranularity = 4; // main flash and SPIM: length and address of a WRITE
constexpr unsigned blockSize = 0x10000;  // bytes of one block of eraseBlock
constexpr unsigned smallestSector = 1024;
constexpr unsigned spimSectorSize = 4096;
constexpr unsigned firstSpimSector = 32768; // a sector number from here up is a SPIM sector
constexpr unsigned shortId = 2;             // bytes of an identifier: the PID
constexpr unsigned longId = 5;              // or the PID and the series
constexpr unsigned maxUserData = 2048;      // compact bytes of one user system data exchange
constexpr std::uint32_t toolVersion = 0x20001;

// Addresses of the target.
constexpr std::uint32_t flashBase = 0x08000000;
constexpr std::uint32_t spimBase = 0x08400000;
constexpr std::uint32_t ramBase = 0x20000000;
constexpr std::uint32_t flashSizeRegister = 0x1FFFF7E0; // two bytes, KB, low byte first
constexpr std::uint32_t uniqueId = 0x1FFFF7E8;          // twelve bytes
constexpr std::uint32_t blockIdentifier = 0x1FFFB100;   // eight bytes, byte 6 counts

// Time.
constexpr unsigned frameLimitMs = 500; // the chip drops a command whose next byte is later than this

} // namespace wire
