#!/bin/bash
# Prints a transcript with the few words that differ from link to link.
#
# usage: for_link.sh FILE.t   (LINK)
set -eu
unrecognized='Unrecognized device...Please, reset your device then try again '
case "${LINK:-usart}" in
    usart) name=USART gone=$unrecognized ;;
    dfu) name=DFU gone='Unable to get DFU device' ;; # a device that is gone can't be listed
    i2c) name=I2C gone=$unrecognized ;;
    can | slcan) name=CAN gone=$unrecognized ;;
    spi) name=SPI gone=$unrecognized ;;
    *) echo "no link \"$LINK\"" >&2; exit 1 ;;
esac
sed -e "s/@LINK@/$name/" -e "s/@GONE@/$gone/" "$1"
