// The words of the console's command line, one in each line of the input. The bootloader library is its recording
// double, which answers as a chip that does everything; the files lie in a directory of this process.

#include <algorithm>
#include <iostream>
#include <iterator>

#include <QCoreApplication>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "app/Link.h"
#include "app/LinkSettings.h"
#include "app/Walk.h"
#include "app/Words.h"
#include "foundation/ShareParameter.h"
#include "tests/fuzz/Target.h"
#include "tests/fuzz/Workplace.h"

namespace {

constexpr std::size_t mostWords = 40;

// What the usage and the pages of the words tell; 70 would be an exception.
constexpr int statuses[] = {0, 1, 2, 3, 4, 6, 7, 8, 0xC, 0x20, 0x21, 0x22, 0x23, 0x24, 0x30, 0x31, 0x32, 0x33, 0x40};

// A path that stays in the directory of this process.
std::string harmless(std::string word) {
    word.erase(std::remove(word.begin(), word.end(), '\0'), word.end());
    if (word.find('/') == std::string::npos)
        return word;
    std::replace(word.begin(), word.end(), '/', '_');
    return "./" + word.substr(word.rfind("._", 0) == 0 ? 2 : 0);
}

std::vector<std::string> wordsOf(const std::string &text) {
    std::vector<std::string> words;
    for (std::size_t at = 0; at < text.size() && words.size() < mostWords;) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        words.push_back(harmless(text.substr(at, end - at)));
        at = end + 1;
    }
    return words;
}

// What is printed goes nowhere.
class Sink : public std::streambuf {
    int_type overflow(int_type character) override { return traits_type::not_eof(character); }
    std::streamsize xsputn(const char *, std::streamsize count) override { return count; }
};

// The console looks for files from where it is. Whoever gives the inputs has relative names too.
class There {
public:
    explicit There(const std::string &directory) : m_here(open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        fuzz::require(m_here >= 0 && chdir(directory.c_str()) == 0, "there is a directory");
    }
    ~There() { fuzz::require(fchdir(m_here) == 0 && close(m_here) == 0, "the way back is open"); }
    There(const There &) = delete;
    There &operator=(const There &) = delete;

private:
    const int m_here;
};

// A small chip's map under the name of the chip that the double is.
bool begin() {
    static int count = 1;
    static char name[] = "words-fuzz";
    static char *words[] = {name, nullptr};
    static const QCoreApplication application(count, words);
    static Sink &sink = *new Sink; // std::cout has it to the last
    std::cout.rdbuf(&sink);
    fuzz::require(mkdir("Map", 0700) == 0, "there is a directory");
    fuzz::fill("Map/ZV32F403A_1024K.ZVmap", "[Product]\nName=ZV32F403A\nPID=70050347\nSerial=07\nSectorsPerSector=2\n"
                                            "[Sector0]\nName=Sector\nAddress=08000000\nSize=800\nCount=4\n");
    fuzz::fill("image.bin", std::string(3000, 'Z'));
    fuzz::fill("image.hex", ":020000040800F2\n:0400000001020304F2\n:00000001FF\n");
    fuzz::fill("image.s19", "S0030000FC\nS3090800000001020304\nS9030000FC\n");
    fuzz::fill("lot.zvtp", std::string(80, '\0'));
    return true;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const There there(fuzz::workplace().path());
    static const bool begun = begin();
    std::vector<std::string> words = wordsOf(std::string(data, data + size));
    std::vector<char *> pointers;
    for (std::string &word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    loadStartValues();
    std::cout.clear();
    const int status = walkCommandLine(static_cast<int>(words.size()), pointers.data());
    closeLink(m_obCCom);
    fuzz::require(begun && std::find(std::begin(statuses), std::end(statuses), status) != std::end(statuses),
                  "the exit status is one of those that the pages tell");
    const bool isLine = words.empty() || optionWord(words.front()) != nullptr;
    fuzz::require(isLine || status == OP_BAD_PARAM, "a line begins with an option");
    return 0;
}
