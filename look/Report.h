#pragma once

#include <deque>
#include <string>
#include <variant>
#include <vector>

#include "look/Value.h"

// What a look has found. It is printed for a person or as JSON, out of the same facts.

// A section holds facts, findings, tables and sections, and shows them in the order in which they came. A name is
// in lower case, with blanks; JSON has it in camel case.
class Section {
public:
    explicit Section(std::string title = {}) : m_title(std::move(title)) {}

    // A title that is known only when the rest is.
    void entitle(const std::string &title) { m_title = title; }

    // A name and its value. JSON: a member.
    void fact(const std::string &name, Value value);

    // Something to be told of, with what to do about it. A person reads the mark in the place of the name. JSON: a row
    // of "findings".
    void finding(Mark mark, const std::string &name, const std::string &text, const std::string &cure = {});

    // The same for what was measured: a person reads the name in any case. JSON: a row of "checks".
    void check(Mark mark, const std::string &name, const std::string &measured, const std::string &cure = {});

    // A text of several lines that somebody pastes: it stands as it is. JSON: a member.
    void plain(const std::string &name, const std::string &text);

    // Rows under the names of their columns. JSON: a list of objects.
    void table(const std::string &name, std::vector<std::string> columns, std::vector<std::vector<Value>> rows);

    // A section inside of this one, which stays where it is. JSON: an object with its title in a list of that name.
    Section &section(const std::string &name, const std::string &title);

    // The worst mark of all findings and checks, those of inner sections too.
    Mark worst() const;

    Json json() const;
    // Lines, each ended. Indentation in blanks; in colour for a terminal.
    std::string text(bool inColour, int indentation = 0) const;

private:
    struct Fact {
        std::string name;
        Value value;
    };
    struct Finding {
        std::string list;
        std::string name;
        Mark mark;
        std::string text;
        std::string cure;
        std::string shownName() const;
    };
    struct Table {
        std::string name;
        std::vector<std::string> columns;
        std::vector<std::vector<Value>> rows;
    };
    struct Plain {
        std::string name;
        std::string text;
    };
    struct Inner {
        std::string name;
        std::deque<Section> section; // of one: a section is no whole type here
    };
    using Entry = std::variant<Fact, Finding, Table, Plain, Inner>;

    std::size_t nameWidth() const;
    static void put(Json &object, const Fact &fact);
    static void put(Json &object, const Finding &finding);
    static void put(Json &object, const Table &table);
    static void put(Json &object, const Plain &plain);
    static void put(Json &object, const Inner &inner);

    std::string m_title;
    std::deque<Entry> m_entries; // references into it stay good
};
