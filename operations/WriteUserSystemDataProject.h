#pragma once

#include "operations/WriteUserSystemData.h"

// Writes the user system data of a project to the target: the same job under the project's name.
class CWriteUserSystemDataProject : public CWriteUserSystemData {
public:
    using CWriteUserSystemData::CWriteUserSystemData;
};
