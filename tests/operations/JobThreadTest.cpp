#include <chrono>
#include <future>
#include <pthread.h>
#include <thread>

#include "tests/operations/OperationsTest.h"

// What a listener may do on the thread of its job, and what a job does about its thread.

namespace {

// A job of one step, which tells when it is gone.
class ShortJob : public COperation {
public:
    ShortJob(CBootLoader *control, std::promise<void> *destroyed) : COperation(control), gone(destroyed) {
        m_EmType = OP_UPLOAD;
        m_strName = "Short";
    }
    ~ShortJob() override {
        WaitUntilEnded();
        if (gone)
            gone->set_value();
    }
    int Action() override {
        CallCommand(COMMAND_DONE);
        return 0;
    }
    std::promise<void> *gone;
};

const Lines allEvents = {"INIT Short", "ACTION 0", "ACTION 0", "DONE"};

// No thread can be made while this lives: a stack of 128 TB is more than a process can have.
class NoThreads {
public:
    NoThreads() {
        pthread_getattr_default_np(&usual);
        pthread_attr_t huge;
        pthread_attr_init(&huge);
        pthread_attr_setstacksize(&huge, std::size_t{1} << 47);
        EXPECT_EQ(pthread_setattr_default_np(&huge), 0);
        pthread_attr_destroy(&huge);
    }
    ~NoThreads() {
        pthread_setattr_default_np(&usual);
        pthread_attr_destroy(&usual);
    }

private:
    pthread_attr_t usual{};
};

} // namespace

class JobThreadTest : public OperationsTest {
protected:
    ShortJob *shortJob(std::promise<void> *destroyed = nullptr) {
        auto *job = new ShortJob(&bootLoader(), destroyed);
        bootLoader().m_ObOperation = job;
        listen(*job);
        return job;
    }
};

TEST_F(JobThreadTest, FreeingFromTheListenerIsPutOffToTheEndOfTheJob) {
    for (const InfoType when : {INFO_TYPE_INIT, INFO_TYPE_ACTION, INFO_TYPE_DONE}) {
        CBootLoader &control = connect(f413);
        events.clear();
        std::promise<void> destroyed;
        shortJob(&destroyed);
        onEvent = [&](InfoType type) {
            if (type == when)
                control.FreeOperation();
        };
        control.m_ObOperation->Start();
        destroyed.get_future().wait();
        EXPECT_EQ(control.m_ObOperation, nullptr);
        EXPECT_EQ(events, allEvents) << "the job runs to its end all the same";
    }
}

TEST_F(JobThreadTest, AJobThatTheListenerMakesAndNeverStartsIsFreedAtOnce) {
    CBootLoader &control = connect(f413);
    std::promise<void> destroyed;
    shortJob(&destroyed);
    onEvent = [&](InfoType type) {
        if (type != INFO_TYPE_INIT)
            return;
        control.EraseFlash({});
        control.FreeOperation();
        EXPECT_EQ(control.m_ObOperation, nullptr);
    };
    control.m_ObOperation->Start();
    destroyed.get_future().wait();
    EXPECT_EQ(events, allEvents);
}

TEST_F(JobThreadTest, AnotherThreadWaitsForTheFreedJob) {
    CBootLoader &control = connect(f413);
    std::promise<void> freed, goOn, destroyed;
    shortJob(&destroyed);
    onEvent = [&](InfoType type) {
        if (type != INFO_TYPE_INIT)
            return;
        control.FreeOperation();
        freed.set_value();
        goOn.get_future().wait();
    };
    control.m_ObOperation->Start();
    freed.get_future().wait();
    std::thread later([&] { goOn.set_value(); });
    control.FreeOperation();
    EXPECT_EQ(destroyed.get_future().wait_for(std::chrono::seconds(0)), std::future_status::ready);
    EXPECT_EQ(events, allEvents);
    later.join();
}

TEST_F(JobThreadTest, WaitingFromTheListenerComesBack) {
    connect(f413);
    COperation *job = shortJob();
    onEvent = [&](InfoType) { job->WaitUntilEnded(); };
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(events, allEvents);
}

TEST_F(JobThreadTest, EveryStarterComesBackFromTheListener) {
    const std::vector<std::function<void(CBootLoader &)>> starters = {
        [](CBootLoader &control) { control.EraseFlash({}); },
        [](CBootLoader &control) { control.DownloadToDevice({}); },
        [](CBootLoader &control) { control.UploadFromDevice({}); },
        [](CBootLoader &control) { control.DownloadToDeviceProject({}); },
        [](CBootLoader &control) { control.FirmwareCRCCheck({}); },
        [](CBootLoader &control) { control.FlashCRCCheck({}); },
        [](CBootLoader &control) { control.EnableBank3Func({}); },
        [](CBootLoader &control) { control.AccessProtect(0); },
        [](CBootLoader &control) { control.ReadoutUnProtect(); },
        [](CBootLoader &control) { control.EraseProgramProtect({}); },
        [](CBootLoader &control) { control.WriteUnProtect(); },
        [](CBootLoader &control) { control.EnableSlib({}); },
        [](CBootLoader &control) { control.DisableSlib(1); },
        [](CBootLoader &control) { control.DisableSlibCheck(1); },
    };
    for (const auto &starter : starters) {
        CBootLoader &control = connect(f413);
        std::promise<void> destroyed;
        shortJob(&destroyed);
        onEvent = [&](InfoType type) {
            if (type == INFO_TYPE_ACTION && events.size() == 2)
                starter(control);
        };
        events.clear();
        control.m_ObOperation->Start();
        destroyed.get_future().wait();
        EXPECT_NE(control.m_ObOperation, nullptr);
        EXPECT_EQ(events, allEvents);
    }
}

TEST_F(JobThreadTest, AJobStartedByTheListenerBeginsWhenTheOneBeforeHasEnded) {
    CBootLoader &control = connect(f413);
    std::promise<void> secondEnded;
    shortJob();
    eventsInLog = true;
    onEvent = [&](InfoType type) {
        if (events.size() == 1) {
            control.EraseFlash({});
            listen(*control.m_ObOperation);
            control.m_ObOperation->Start();
        } else if (events.size() > 4 && type == INFO_TYPE_DONE) {
            secondEnded.set_value();
        }
    };
    control.m_ObOperation->Start();
    secondEnded.get_future().wait();
    control.FreeOperation();
    EXPECT_EQ(Lines(events.begin(), events.begin() + 4), allEvents);
    EXPECT_EQ(events.at(4), "INIT Erase");
    EXPECT_EQ(calls({"event", "ZVBL_ERASE"}).at(6), "ZVBL_ERASE h=1001 selector=FFFE sector=null size=0");
}

TEST_F(JobThreadTest, ClosingTheLinkFromTheListenerKeepsTheControlForTheJob) {
    for (const InfoType when : {INFO_TYPE_INIT, INFO_TYPE_DONE}) {
        connect(f413);
        events.clear();
        std::promise<void> destroyed;
        COperation *job = shortJob(&destroyed);
        onEvent = [&](InfoType type) {
            if (type == when) {
                EXPECT_EQ(com->Close(), 0);
                EXPECT_EQ(com->m_ObBootLoader, nullptr);
            }
            EXPECT_NE(job->m_obBootLoader->m_pCmds, nullptr) << "the control is there as long as the job runs";
        };
        job->Start();
        destroyed.get_future().wait();
        EXPECT_EQ(library.log(), "Interface_Close h=1001\n");
        EXPECT_EQ(events, allEvents);
    }
}

TEST_F(JobThreadTest, ClosingTheLinkAfterStartingAnotherJobFromTheListener) {
    CBootLoader &control = connect(f413);
    std::promise<void> firstGone, secondGone;
    shortJob(&firstGone);
    onEvent = [&](InfoType type) {
        if (type != INFO_TYPE_DONE || events.size() > 4)
            return;
        control.FreeOperation();
        shortJob(&secondGone)->Start();
        com->Close();
    };
    control.m_ObOperation->Start();
    firstGone.get_future().wait();
    secondGone.get_future().wait();
    EXPECT_EQ(events.size(), 8u);
}

TEST_F(JobThreadTest, DeletingTheLinkFromTheListener) {
    connect(f413);
    std::promise<void> destroyed;
    shortJob(&destroyed);
    onEvent = [&](InfoType type) {
        if (type == INFO_TYPE_INIT)
            com.reset();
    };
    bootLoader().m_ObOperation->Start();
    destroyed.get_future().wait();
    EXPECT_EQ(events, allEvents);
}

TEST_F(JobThreadTest, ASecondStartDoesNothing) {
    CBootLoader &control = connect(f413);
    std::promise<void> inTheMiddle, goOn;
    COperation *job = shortJob();
    onEvent = [&](InfoType type) {
        EXPECT_EQ(job->Start(), 0) << "nor does it from the listener";
        if (type == INFO_TYPE_INIT) {
            inTheMiddle.set_value();
            goOn.get_future().wait();
        }
    };
    EXPECT_EQ(job->Start(), 0);
    inTheMiddle.get_future().wait();
    EXPECT_EQ(job->Start(), 0);
    goOn.set_value();
    control.FreeOperation();
    EXPECT_EQ(events, allEvents);
}

TEST_F(JobThreadTest, StartsFromSeveralThreadsAreOne) {
    CBootLoader &control = connect(f413);
    COperation *job = shortJob();
    std::promise<void> goOn;
    onEvent = [&](InfoType type) {
        if (type == INFO_TYPE_INIT)
            goOn.get_future().wait();
    };
    std::thread one([&] { job->Start(); }), other([&] { job->Start(); });
    one.join();
    other.join();
    goOn.set_value();
    control.FreeOperation();
    EXPECT_EQ(events, allEvents);
}

TEST_F(JobThreadTest, AJobThatHasEndedCanRunAgain) {
    connect(f413);
    shortJob();
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(events.size(), 8u);
}

TEST_F(JobThreadTest, WithoutAThreadTheJobEndsAtOnce) {
    connect(f413);
    COperation *job = shortJob();
    {
        const NoThreads none;
        EXPECT_EQ(job->Start(), 0);
    }
    EXPECT_EQ(events, Lines{"ABEND"});
    EXPECT_EQ(abendCode, CResult::UNKNOWN_ERROR);
    EXPECT_FALSE(job->HasStart());
    job->WaitUntilEnded();
    EXPECT_EQ(library.log(), "");
    events.clear();
    EXPECT_EQ(run(), CResult::UNKNOWN_ERROR) << "the code of the last failure stays";
    EXPECT_EQ(events, allEvents) << "the job can run once there are threads again";
}

TEST_F(JobThreadTest, WithoutAThreadTheListenerMayFreeTheJobAsWell) {
    CBootLoader &control = connect(f413);
    std::promise<void> destroyed;
    COperation *job = shortJob(&destroyed);
    onEvent = [&](InfoType) { control.FreeOperation(); };
    {
        const NoThreads none;
        job->Start();
    }
    EXPECT_EQ(destroyed.get_future().wait_for(std::chrono::seconds(0)), std::future_status::ready);
    EXPECT_EQ(control.m_ObOperation, nullptr);
}

// Something in the process may call exit() on the thread of a job; the link, destroyed then, must not wait for it.
TEST_F(JobThreadTest, ExitOnTheThreadOfAJob) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            connect(f413);
            static std::unique_ptr<CCom> untilExit = std::move(com);
            COperation *job = new ShortJob(untilExit->m_ObBootLoader, nullptr);
            untilExit->m_ObBootLoader->m_ObOperation = job;
            listen(*job);
            onEvent = [](InfoType type) {
                if (type == INFO_TYPE_ACTION)
                    std::exit(3);
            };
            job->Start();
            std::promise<void>().get_future().wait();
        },
        testing::ExitedWithCode(3), "");
}
