#pragma once

#include <functional>
#include <string>
#include <string_view>

// Walks through the values of a JSON object (RFC 8259) in their order, without building it: there may be a million
// records. What is in an object in it is told with a way to it, as "ms.write".
class RecordWalk {
public:
    // A value, and whether it is a text; null, true, false and numbers are as they are written. Until the next one.
    using Take = std::function<void(std::string_view way, std::string_view value, bool isText)>;

    // False where it is no object, has a list in it, or objects in objects in objects; some may be told then.
    bool run(std::string_view json, const Take &take);

private:
    bool object(int depth);
    bool member(int depth);
    bool value(int depth);
    bool text(std::string_view &found);
    bool word(std::string_view &found);
    bool has(char c);

    std::string_view m_json;
    std::size_t m_at = 0;
    std::string m_way;
    std::string m_decoded; // the last text that had an escape in it
    const Take *m_take = nullptr;
};
