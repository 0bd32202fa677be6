#pragma once

// Prints the usage text, 61 lines.
void man();
