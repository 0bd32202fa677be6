#pragma once

namespace files {

// What an operation inside the library came to. Exports.cpp turns it into the words of the C
// interface; the values are those words, success excepted.
enum class [[nodiscard]] Status : unsigned{
    ok = 0,
    badSuffix = 2,            // no format has this suffix
    unableToOpenFile = 3,     // missing, not a regular file, not readable, or not writable
    unableToOpenTempFile = 4, // nothing can be made beside the target
    badFormat = 5,            // the content is not what the format allows
    badAddressRange = 6,      // past 32 bits, overlapping, or more than an image may hold
    badParameter = 8,
    unexpectedError = 10, // out of memory
    generalError = 13,    // writing failed half-way
    elementsFull = 15     // no room for another element
};

} // namespace files
