#pragma once

namespace files {

// What an operation inside the library came to. Exports.cpp turns it into the words of the C
// interface; the values are those words, success excepted.
enum class [[nodiscard]] Status : unsigned{
    Ok = 0,
    BadSuffix = 2,            // no format has this suffix
    UnableToOpenFile = 3,     // missing, not a regular file, not readable, or not writable
    UnableToOpenTempFile = 4, // nothing can be made beside the target
    BadFormat = 5,            // the content is not what the format allows
    BadAddressRange = 6,      // past 32 bits, overlapping, or more than an image may hold
    BadParameter = 8,
    UnexpectedError = 10, // out of memory
    GeneralError = 13,    // writing failed half-way
    ElementsFull = 15     // no room for another element
};

} // namespace files
