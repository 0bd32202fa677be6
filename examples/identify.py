#!/usr/bin/env python3
"""Tells who the chip at a serial port is, and the CRC of its first sector, with Python's ctypes.

usage: identify.py PORT
"""
import ctypes
import sys
from ctypes import byref, c_float, c_int, c_ubyte, c_uint, c_ulong, c_ushort, c_void_p

USART, EVEN_PARITY = 0, 2
FLASH = 0x08000000

zvbl = ctypes.CDLL("libZVBLLIB.so.1")
# What ctypes is not told it takes for an int: a link is a pointer, and a status is one byte.
ARGUMENTS = {
    "SetCOMSettings": (c_void_p, c_int, ctypes.c_char_p, c_int, c_int, c_int, c_float),
    "Interface_Open": (c_void_p,),
    "Interface_Close": (c_void_p,),
    "ZVBL_Init_BL": (c_void_p, c_ushort, c_ulong, c_ubyte),
    "ZVBL_GET": (c_void_p, c_void_p, c_void_p),
    "ZVBL_GET_ID": (c_void_p, c_void_p, c_void_p),
    "ZVBL_GetFirmwareCRC": (c_void_p, c_uint, c_ushort, c_void_p),
}
for name, arguments in ARGUMENTS.items():
    function = getattr(zvbl, name)
    function.argtypes, function.restype = arguments, c_ubyte


def demand(name, *arguments):
    status = getattr(zvbl, name)(*arguments)
    if status != 0:
        sys.exit(f"identify: {name} answers {status}")


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__.strip())
    link, commands = c_void_p(), (c_int * 24)()
    version, length, identifier, crc = c_ubyte(), c_ubyte(), (c_ubyte * 256)(), (c_ubyte * 4)()
    zvbl.TARGET_SetComIntType(USART)
    demand("SetCOMSettings", byref(link), 0, sys.argv[1].encode(), 115200, 8, EVEN_PARITY, 1.0)
    demand("Interface_Open", link)
    demand("ZVBL_Init_BL", link, 0, 0, 0)
    demand("ZVBL_GET", link, byref(version), commands)
    demand("ZVBL_GET_ID", link, byref(length), identifier)
    print(f"identifier {bytes(identifier[: length.value]).hex()}, {sum(commands)} of {len(commands)} commands")
    demand("ZVBL_GetFirmwareCRC", link, FLASH, 1, crc)
    print(f"CRC of the first sector {bytes(crc).hex()}")
    demand("Interface_Close", link)


if __name__ == "__main__":
    main()
