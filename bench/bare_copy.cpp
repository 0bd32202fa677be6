// bare-copy IN OUT BYTES: reads all of IN and writes BYTES bytes to OUT, and does nothing else. What
// any converter between files of these sizes has to do at least.

#include <cstdio>
#include <cstdlib>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

int main(int argc, char **argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: bare-copy IN OUT BYTES\n");
        return 2;
    }
    std::vector<char> buffer(256 * 1024);
    const int in = ::open(argv[1], O_RDONLY);
    const int out = ::open(argv[2], O_WRONLY | O_CREAT | O_TRUNC, 0666);
    if (in < 0 || out < 0)
        return 1;
    ssize_t got = 0;
    while ((got = ::read(in, buffer.data(), buffer.size())) > 0)
        continue;
    std::size_t left = std::strtoull(argv[3], nullptr, 10);
    while (left > 0 && got == 0) {
        const ssize_t put = ::write(out, buffer.data(), left < buffer.size() ? left : buffer.size());
        if (put <= 0)
            return 1;
        left -= static_cast<std::size_t>(put);
    }
    return got == 0 ? 0 : 1;
}
