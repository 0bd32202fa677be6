#include "foundation/TraceFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include "ModelTest.h"

namespace {

std::string whyNot(const std::string &path) {
    std::string why;
    const int file = openTraceFile(path, why);
    if (file >= 0)
        close(file);
    return why;
}

TEST(TraceFile, IsOpenedWhereverItsNameLeads) {
    const Workplace workplace;
    EXPECT_EQ(whyNot("trace"), "");
    std::filesystem::create_symlink("trace", "link"); // in the working directory, without a slash
    EXPECT_EQ(whyNot("link"), "");
    EXPECT_EQ(whyNot("Map/none/trace"), "No such file or directory");
}

// As it is in a directory that all may write to: a link there may be somebody else's.
TEST(TraceFile, ALinkOfSomebodyElseIsNotFollowed) {
    if (geteuid() != 0)
        GTEST_SKIP() << "makes files of other users";
    const Workplace workplace;
    const struct {
        uid_t link, directory;
        mode_t mode;
        const char *why;
    } rows[] = {
        {1001, 1002, 0777, "it is a link that somebody else made"},
        {1001, 1002, 0770, "it is a link that somebody else made"},
        {1001, 1002, 0755, ""}, // nobody else may make links there
        {1001, 1001, 0777, ""}, // its owner's
        {0, 1002, 0777, ""},    // one's own
    };
    for (const auto &row : rows) {
        std::filesystem::create_directory("shared");
        std::filesystem::create_symlink(workplace.path("trace"), "shared/link");
        ASSERT_EQ(lchown("shared/link", row.link, 0), 0);
        ASSERT_EQ(chown("shared", row.directory, 0), 0);
        ASSERT_EQ(chmod("shared", row.mode), 0);
        EXPECT_EQ(whyNot("shared/link"), row.why) << row.link << " " << row.directory << " " << std::oct << row.mode;
        std::filesystem::remove_all("shared");
    }
}

} // namespace
