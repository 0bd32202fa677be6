#pragma once

#include <map>
#include <memory>
#include <stdexcept>
#include <string>

#include "line/channel/Channel.h"
#include "link/CCom.h"

class CBootLoader;
class CDownload;
class COperation;

// A step that failed: the cause by its name, the code of the result, and a text for a person.
struct Failure : std::runtime_error {
    Failure(const char *why, int result);
    Failure(const char *why, const std::string &text) : std::runtime_error(text), cause(why) {}
    const char *cause;
    int code = 0;
};

// One attempt at a unit, step by step, as the other end of the channel asks for it.
class Unit {
public:
    Unit(Channel &channel, Json order);
    ~Unit();

    // Makes it, and tells how that ended. Throws std::runtime_error where the channel fails.
    void make();

private:
    void steps();
    void connect();
    void identify();
    void openProtected();
    Json waitForGo();
    void erase();
    void write(CDownload &job, const Json &image);
    void verify(CDownload &job);
    void protect();
    void start();

    // Runs a step and takes its time.
    template <typename Work>
    void step(const char *name, Work work);
    void run(COperation &job, const char *cause);

    Channel &m_channel;
    const Json m_order;
    std::unique_ptr<CCom> m_link;
    CBootLoader *m_control = nullptr;
    Json m_milliseconds = Json::object();
};
