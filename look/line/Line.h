#pragma once

#include <string>

#include <QSet>

#include "app/SubOptions.h"
#include "app/Words.h"
#include "device/Device.h"
#include "look/Report.h"

// A console line while it is looked at: what has been read of it, and what the chip would be like by then. Values of
// words are in the shared record, as on the console.
class Line {
public:
    Line(int wordCount, char **words, CDevice *chip, Section &wholeReport)
        : argc(wordCount), argv(words), device(chip), report(wholeReport) {}

    // Begins the report of one option, under its words.
    void beginStep(const std::string &words = {}) { m_step = &report.section("steps", words); }
    Section &step() { return *m_step; }

    // Tells of one action of the option, of which there may be several.
    Section &action(const std::string &name) { return m_step->section("actions", name); }

    void error(const std::string &name, const std::string &text, const std::string &cure = {}) {
        m_step->finding(Mark::error, name, text, cure);
    }
    void warn(const std::string &name, const std::string &text, const std::string &cure = {}) {
        m_step->finding(Mark::warning, name, text, cure);
    }
    // The line ends here, with this status.
    int refuse(int status, const std::string &what, const std::string &cure = {}) {
        error("refused", what + ": the line ends with status " + std::to_string(status), cure);
        return status;
    }
    int withoutLink(int status) {
        error("no connection", "no connection word stands before it: nothing is done, and nothing is printed",
              "put -com, -dfu, -i2c, -can or -spi in front");
        return status;
    }
    // The word on which the walk rests is neither option nor sub-option.
    int badWord(int status) { return refuse(status, "\"" + std::string(argv[index]) + "\" is no word of it"); }
    void note(const std::string &name, const std::string &text) { m_step->finding(Mark::note, name, text); }

    const int argc;
    char **const argv;
    CDevice *const device; // null: not known
    Section &report;
    int index = 0;

    bool linked = false;
    OptionId link = OptionId::usage;
    bool erased = false;    // an "-e" has succeeded, whatever it did
    bool allErased = false; // the whole flash
    QSet<int> erasedSectors;
    std::string lost; // why nothing answers any more; empty while the chip does

private:
    Section *m_step = nullptr;
};
