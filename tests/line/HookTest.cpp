#include "line/hooks/Hook.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>

#include <sys/stat.h>
#include <unistd.h>

#include "line/hooks/HookFile.h"
#include "line/hooks/Permission.h"
#include "programs/Status.h"
#include "tests/line/FewDescriptors.h"
#include "tests/line/SiteFiles.h"

namespace {

class HookTest : public SiteFiles {
protected:
    // Driven as a line drives it, but never past the deadline by waiting.
    static HookEnd ended(const HookCall &call, const Json &said = Json::object()) {
        Hook hook(call, said);
        while (!hook.proceed()) {
            std::vector<pollfd> all;
            hook.watch(all);
            EXPECT_FALSE(all.empty());
            poll(all.data(), all.size(), 20000);
        }
        std::vector<pollfd> all;
        hook.watch(all);
        EXPECT_TRUE(all.empty());
        EXPECT_TRUE(hook.proceed());
        return hook.end();
    }

    Permission asked(const std::string &script) const {
        const HookCall it = call(script);
        return permissionOf(it, ended(it));
    }

    static std::string refusalOf(const HookCall &call) {
        try {
            checkHook(call);
            return "";
        } catch (const Refusal &refusal) {
            EXPECT_EQ(refusal.status, notAcceptable);
            return refusal.what();
        }
    }

    // Waits, in short steps, until a file is there and has a line.
    static std::string lineOf(const std::string &path) {
        for (int i = 0; i < 4000; ++i) {
            std::string line;
            if (std::getline(std::ifstream(path), line) && !line.empty())
                return line;
            usleep(5000);
        }
        ADD_FAILURE() << path;
        return "0";
    }
};

TEST_F(HookTest, GetsJsonAndItsOutputIsTaken) {
    const HookEnd end = ended(call("cat"), {{"attempt", 4711}, {"why", "b\xC3\xA4"}});
    EXPECT_EQ(end.failure, "");
    EXPECT_EQ(end.output, "{\"attempt\":4711,\"why\":\"b\xC3\xA4\"}\n");
}

TEST_F(HookTest, WhatIsReadByNobodyHoldsNobodyUp) {
    EXPECT_EQ(ended(call("echo done"), {{"text", std::string(1000000, 'x')}}).output, "done\n");
}

TEST_F(HookTest, ArgumentsReachItAsTheyStandWithoutAShell) {
    HookCall with = call("for one; do echo \"<$one>\"; done");
    with.run.insert(with.run.end(), {"a b", "$HOME", "*;false"});
    EXPECT_EQ(ended(with).output, "<a b>\n<$HOME>\n<*;false>\n");
}

TEST_F(HookTest, EnvironmentSessionAndDescriptorsAreItsOwn) {
    setenv("LD_PRELOAD_OF_OURS", "1", 1);
    const int leaked = dup(STDIN_FILENO); // without a mark, as a shell leaves one
    const HookEnd end = ended(call("pwd\nenv | grep -vE '^(_|PWD)=' | sort\nls /proc/$$/fd\nps -o sid= -p $$ | "
                                   "sed \"s/ *$$/own session/\""));
    close(leaked);
    EXPECT_EQ(end.output, "/\nLC_ALL=C.UTF-8\n"
                          "PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin\n"
                          "0\n1\n10\n2\nown session\n"); // the shell itself reads the script through 10
}

TEST_F(HookTest, FailuresSayWhy) {
    EXPECT_EQ(ended(call("exit 3")).failure, dir + "/hook: exit status 3");
    EXPECT_EQ(ended(call("echo first >&2; echo no paper >&2; exit 1")).failure, dir + "/hook: exit status 1: no paper");
    EXPECT_EQ(ended(call("kill -9 $$")).failure, dir + "/hook: was ended by signal 9");
    const HookCall broken = call("");
    std::ofstream(broken.run.front()) << "#!/nowhere/sh\n";
    EXPECT_EQ(ended(broken).failure, dir + "/hook: can't be run");
}

TEST_F(HookTest, OneThatCannotBeStartedHasEndedAndItsTimeIsOver) {
    const HookCall gone = call("true", 3600);
    std::filesystem::remove(gone.run.front());
    Hook hook(gone, Json::object());
    EXPECT_LE(hook.deadline(), Hook::Clock::now());
    EXPECT_TRUE(hook.proceed());
    EXPECT_EQ(hook.end().failure, gone.run.front() + ": station.toml:12: hook.before.run: " + gone.run.front() +
                                      ": No such file or directory");
}

TEST_F(HookTest, SoHasOneWithoutRoomForAnotherDescriptor) {
    const HookCall good = call("true", 3600);
    std::optional<FewDescriptors> few(3); // what it is told, and one pipe of two
    Hook hook(good, Json::object());
    few.reset();
    EXPECT_LE(hook.deadline(), Hook::Clock::now());
    EXPECT_TRUE(hook.proceed());
    EXPECT_EQ(hook.end().failure, good.run.front() + ": no pipe to be had: Too many open files");
}

TEST_F(HookTest, OneThatHangsIsKilledWithAllThatItStarted) {
    const HookCall hangs = call("sleep 1000 & echo $! >" + dir + "/child\nsleep 1000", 0);
    Hook hook(hangs, Json::object());
    const pid_t child = std::stoi(lineOf(dir + "/child"));
    EXPECT_EQ(kill(child, 0), 0);
    EXPECT_TRUE(hook.proceed());
    EXPECT_EQ(hook.end().failure, dir + "/hook: has not ended within 0 s");
    const auto runs = [&] { // it may be waited for by nobody here
        std::string stat;
        std::getline(std::ifstream("/proc/" + std::to_string(child) + "/stat"), stat);
        return !stat.empty() && stat.find(") Z") == stat.npos;
    };
    for (int i = 0; i < 400 && runs(); ++i)
        usleep(5000);
    EXPECT_FALSE(runs());
}

TEST_F(HookTest, WhatOneLeavesBehindEndsWithItAndHoldsNobodyUp) {
    const HookEnd end = ended(call("sleep 1000 & echo $! >" + dir + "/child\necho ok"));
    EXPECT_EQ(end.output, "ok\n");
    EXPECT_EQ(end.failure, "");
}

TEST_F(HookTest, ItIsNotOverWhileItStillRuns) {
    const HookCall silent = call("exec >&- 2>&-; sleep 1000", 20);
    Hook hook(silent, Json::object());
    EXPECT_FALSE(hook.proceed());
    EXPECT_GT(hook.deadline(), Hook::Clock::now());
}

TEST_F(HookTest, OneThatFloodsIsEnded) {
    EXPECT_EQ(ended(call("yes")).failure, dir + "/hook: writes more than 64 KB");
    EXPECT_EQ(ended(call("yes >&2")).failure, dir + "/hook: writes more than 64 KB");
    EXPECT_EQ(ended(call("head -c 65536 /dev/zero")).failure, "");
    EXPECT_EQ(ended(call("head -c 65537 /dev/zero")).failure, dir + "/hook: writes more than 64 KB");
}

TEST_F(HookTest, WhoeverMayDecideWhatItIsIsRootOrWhoRunsIt) {
    const HookCall good = call("true");
    EXPECT_EQ(refusalOf(good), "");
    for (const mode_t mode : {0775, 0757, 0777}) {
        chmod(good.run.front().c_str(), mode);
        EXPECT_EQ(refusalOf(good), "station.toml:12: hook.before.run: " + dir + "/hook: others may write to it");
    }
    EXPECT_NE(ended(good).failure.find("others may write to it"), std::string::npos); // at each run again
    chmod(good.run.front().c_str(), 0755);
    chmod(dir.c_str(), 0777);
    EXPECT_EQ(refusalOf(good), "station.toml:12: hook.before.run: " + dir + ": others may write to it");
    chmod(dir.c_str(), 01777);
    EXPECT_EQ(refusalOf(good), "");
}

TEST_F(HookTest, LinksAreFollowedAndWhatTheyLeadThroughCounts) {
    std::filesystem::create_directories(dir + "/open/deep");
    std::filesystem::create_directory(dir + "/lib");
    HookCall good = call("true");
    std::filesystem::rename(good.run.front(), dir + "/open/deep/real");
    std::filesystem::create_symlink("../lib/../open/./deep", dir + "/lib/way");
    good.run.front() = dir + "/lib/way/real";
    EXPECT_EQ(refusalOf(good), "");
    EXPECT_EQ(ended(good).failure, "");
    chmod((dir + "/open").c_str(), 0770);
    EXPECT_EQ(refusalOf(good), "station.toml:12: hook.before.run: " + dir + "/open: others may write to it");
    std::filesystem::create_symlink("round", dir + "/round");
    good.run.front() = dir + "/round";
    EXPECT_NE(refusalOf(good).find("/round: Too many levels of symbolic links"), std::string::npos);
}

TEST_F(HookTest, AnotherUsersProgramIsRefused) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root gives files away";
    const HookCall theirs = call("true");
    ASSERT_EQ(chown(theirs.run.front().c_str(), 65534, 65534), 0);
    EXPECT_EQ(refusalOf(theirs), "station.toml:12: hook.before.run: " + dir + "/hook: belongs to another user");
}

TEST_F(HookTest, WhatIsNoProgramIsRefused) {
    HookCall none = call("true");
    chmod(none.run.front().c_str(), 0644);
    EXPECT_NE(refusalOf(none).find("/hook: is no program that can be run"), std::string::npos);
    none.run.front() = dir;
    EXPECT_NE(refusalOf(none).find(dir + ": is no program that can be run"), std::string::npos);
    none.run.front() = dir + "/missing";
    EXPECT_NE(refusalOf(none).find("/missing: No such file or directory"), std::string::npos);
}

TEST_F(HookTest, OnlyARightAnswerGivesPermission) {
    const Permission plain = asked("echo '{\"ok\":true}'");
    EXPECT_TRUE(plain.given);
    EXPECT_EQ(plain.supply, Json::object());
    EXPECT_EQ(asked("echo '{\"ok\":true,\"supply\":{\"mac\":\"00a0c9\",\"lot\":7}}'").supply.at("mac"), "00a0c9");
    const Permission no = asked("echo '{\"ok\":false,\"why\":\"on hold\"}'");
    EXPECT_FALSE(no.given);
    EXPECT_EQ(no.why, "on hold");
}

struct Nonsense {
    const char *script;
    const char *why; // behind the hook's name
};

TEST_F(HookTest, AnyOtherAnswerGivesNone) {
    const Nonsense all[] = {
        {"true", ": its answer is no JSON object"},
        {"echo yes", ": its answer is no JSON object"},
        {"echo '[true]'", ": its answer is no JSON object"},
        {"echo '{\"ok\":true} {}'", ": its answer is no JSON object"},
        {"head -c 60000 /dev/zero | tr '\\0' '['", ": its answer is no JSON object"},
        {"echo '{\"ok\":1}'", ": its answer has no \"ok\" that is true or false"},
        {"echo '{}'", ": its answer has no \"ok\" that is true or false"},
        {"echo '{\"ok\":false,\"why\":7}'", ": its \"why\" is no text"},
        {"echo '{\"ok\":true,\"supply\":[]}'", ": its \"supply\" is no object of texts and whole numbers"},
        {"echo '{\"ok\":true,\"supply\":{\"a\":1.5}}'", ": its \"supply\" is no object of texts and whole numbers"},
        {"echo '{\"ok\":true}'; exit 1", ": exit status 1"},
    };
    for (const Nonsense &one : all) {
        const Permission permission = asked(one.script);
        EXPECT_FALSE(permission.given) << one.script;
        EXPECT_EQ(permission.why, dir + "/hook" + one.why);
    }
}

} // namespace
