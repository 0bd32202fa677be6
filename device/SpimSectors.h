#pragma once

// Sector numbers of the SPI flash, which follow no map.
constexpr int firstSpimSector = 32768;        // the numbers from here up are SPIM's
constexpr unsigned int spimSectorSize = 4096; // bytes
