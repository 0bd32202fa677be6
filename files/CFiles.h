#pragma once

// The door of this folder.

#include "files/ImageFile.h"
#include "files/ProgramFile.h"
#include "files/UserSystemDataFile.h"
