#pragma once

#include <QtGlobal>

#include "foundation/LibraryTypes.h"
#include "foundation/ShareParameter.h"

// How a project's parts go over the link: in chunks.
namespace projectparts {

constexpr uint chunkSize = 1024;

// Whether the part holds all the bytes that it claims.
bool isWhole(const HEXFILEPARTINFO &part);

// Copies the chunk that starts at the offset and returns its length; 0 at the end.
uint copyChunk(const HEXFILEPARTINFO &part, uint offset, BYTE (&chunk)[chunkSize]);

} // namespace projectparts
