#include "app/FileNames.h"

#include <gtest/gtest.h>

namespace {

TEST(FileNames, Images) {
    const struct {
        const char *name;
        bool valid;
    } table[] = {
        {"", false},
        {"a.hex", false},
        {"./a.hex", true},
        {"/x/a.hex", true},
        {"/x/a.HEX", true},
        {"/x/a.bin", true},
        {"/x/a.s19", true},
        {"/x/a.srec", true},
        {"/x/a.SReC", true},
        {"/x/myhex", true},
        {"/x/a.s28", false},
        {"/x/a.hexx", false},
        {"/x.hex/a", false},
        {"/x/", false},
        {"/", false},
        {"/x/hex", true},
        {"/x/Bin", true},
        {"/x/.s19", true},
        {"/x/srec", true},
        {"/hex/b", false},
        // Too short for the test of the suffix: refused, as the name before the suffix.
        {"/x/a", false},
        {"/x/ab", false},
        {"/x/abc", false},
        {"/x/s19", false},
        {"/srec/x", false},
    };
    for (const auto &row : table)
        EXPECT_EQ(IsValidFileName(row.name), row.valid) << row.name;
}

TEST(FileNames, OtpFiles) {
    const struct {
        const char *name;
        bool valid;
    } table[] = {
        {"", false},        {"a.ZVTP", false},   {"./a.ZVTP", true},     {"/x/a.zvtp", true},
        {"/x/azvTP", true}, {"/x/a.zvt", false}, {"/x/zvtp", true},      {"/x/vtp", false},
        {"/x/p", false},    {"/x/", false},      {"/x/a.zvtp/b", false}, {"/x/a.bin", false},
    };
    for (const auto &row : table)
        EXPECT_EQ(IsValidOTPFileName(row.name), row.valid) << row.name;
}

} // namespace
