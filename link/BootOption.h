#pragma once

// How a USART link takes its target into the bootloader by the modem control lines.

// Whether the link drives the control lines at all.
enum BootSwitch { MANUAL = 0, AUTOMATIC = 1 };

// A modem control line of the port.
enum BootOptionLine { BOOTOPTION_NONE = 0, BOOTOPTION_DTR = 1, BOOTOPTION_RTS = 2 };

// The state of a line in which it is active; passed to the library as 0 and 1.
enum BootOptionState { LOW = 0, HIGH = 1 };
