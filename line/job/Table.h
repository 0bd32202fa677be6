#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <toml++/toml.h>
#include <vector>

// Where something stands in a file that a person wrote.
struct Place {
    std::string file;
    std::int64_t line = 1;
    std::string key; // with dots, from the top: "image.file"; unit data by number, "unit[0].at"

    // Throws Refusal, with notAcceptable: file, line, key and why.
    [[noreturn]] void refuse(const std::string &why) const;
};

// One table of a TOML file. Whoever asks for a key gets a value of its kind, or a Refusal that names file, line and
// key; so does whoever asks for one that has to be there. What nobody has asked for at the end is a mistake.
class Table {
public:
    // The text of a whole file.
    static Table parse(const std::string &file, const std::string &text);

    bool has(const std::string &key) const { return m_table->contains(key); }
    Place placeOf(const std::string &key) const;

    // Not empty, without control characters.
    std::string text(const std::string &key);
    std::int64_t number(const std::string &key, std::int64_t lowest, std::int64_t highest);
    bool flag(const std::string &key);
    // A list of texts, which may be empty itself and hold empty ones, without control characters.
    std::vector<std::string> texts(const std::string &key);

    // The value of the name that the text is.
    template <typename Choice>
    Choice choice(const std::string &key, const std::map<std::string, Choice> &names) {
        const auto found = names.find(text(key));
        if (found != names.end())
            return found->second;
        std::string all;
        for (const auto &name : names)
            all += (all.empty() ? "\"" : ", \"") + name.first + '"';
        placeOf(key).refuse("is none of " + all);
    }

    // With another value where the key is not there.
    template <typename Choice>
    Choice choiceOr(const std::string &key, const std::map<std::string, Choice> &names, Choice missing) {
        return has(key) ? choice(key, names) : missing;
    }
    bool flagOr(const std::string &key, bool missing) { return has(key) ? flag(key) : missing; }

    bool isTable(const std::string &key) const;
    Table table(const std::string &key);
    // [[key]]; none where it is not there.
    std::vector<Table> tables(const std::string &key);
    // The names of the tables in it, in the order of the alphabet.
    std::vector<std::string> names() const;

    // Refuses the first key that nobody asked for.
    void finish() const;

private:
    Table(std::shared_ptr<const toml::table> whole, const toml::table &table, Place place);

    const toml::node &node(const std::string &key);
    std::string pathOf(const std::string &key) const;

    std::shared_ptr<const toml::table> m_whole;
    const toml::table *m_table;
    Place m_place; // of the table itself
    std::set<std::string> m_asked;
};
