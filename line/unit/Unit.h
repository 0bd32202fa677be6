#pragma once

#include <memory>
#include <vector>

#include "foundation/LibraryTypes.h"
#include "line/channel/Channel.h"
#include "line/unit/Dialogue.h"
#include "link/CCom.h"

class CBootLoader;
class CDownload;
class COperation;
class Otp;

// One attempt at a unit, step by step, as the other end of the channel asks for it.
class Unit {
public:
    Unit(Channel &channel, Json order);
    ~Unit();

    // Makes it, and tells how that ended. Throws std::runtime_error where the channel fails.
    void make();

private:
    void steps();
    void finish();
    void connect();
    void identify();
    void openProtected();
    // Refuses, before anything changes, what this chip can't become.
    void check();
    void openSectors();
    Json waitForGo();
    void erase();
    void write(CDownload &job, const Json &image);
    void verify(CDownload &job);
    void compare(CDownload &job, const char *by);
    void setOptions();
    void protectSectors();
    void askToBurn();
    void protectAccess();
    void start();

    void run(COperation &job, const char *cause);

    const Json m_order;
    Dialogue m_dialogue;
    std::unique_ptr<CCom> m_link;
    CBootLoader *m_control = nullptr;
    std::unique_ptr<Otp> m_otp;
    std::vector<BYTE> m_optionsBefore; // empty where they were not read
    std::vector<BYTE> m_optionsAfter;
    bool m_hasProtectedSectors = false; // among those that are written
    bool m_isVerified = false;
};
