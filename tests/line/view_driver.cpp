// Shows states of a line that is none, for tests of the view.
//
// usage: view_driver NESTS
//
// Each line that comes from descriptor 3 is a command: "work" goes on by one state, "end" ends. A key of a nest opens
// it.
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <iostream>

#include <poll.h>
#include <unistd.h>

#include "line/view/Keys.h"
#include "line/view/View.h"

namespace {

constexpr int commands = 3;

// What comes from a file, a chip or a hook, and would write elsewhere on the screen.
constexpr char evil[] = "no \033[2J\033[1;1Hanswer\r\n\u009b31m \u202ereversed";

NestState nestOf(int nest, int time) {
    constexpr int kinds = 8;
    NestState state{"A" + std::to_string(nest + 1)};
    state.number = 100042 + nest;
    switch ((nest + time) % kinds) {
    case 0: state.phase = Phase::pass; break;
    case 1:
        state.phase = Phase::fail;
        state.why = "no answer: boot pin, cable";
        break;
    case 2:
        state.phase = Phase::busy;
        state.step = "write";
        state.percent = 12 + nest;
        break;
    case 3:
        state.phase = Phase::busy;
        state.step = "verify";
        break;
    case 4: state.phase = Phase::empty; break;
    case 5:
        state.phase = Phase::closed;
        state.why = "3 failures in a row";
        break;
    case 6:
        state.phase = Phase::refused;
        state.why = evil;
        break;
    default: state.phase = Phase::ready; break;
    }
    return state;
}

// Of characters that take two columns, and longer than any screen.
std::string longTitle() {
    std::string title;
    for (int i = 0; i < 20; ++i)
        title += "ZX100 基板コントローラ ";
    return title;
}

State stateOf(int nests, int time) {
    State state;
    state.title = nests == 1 ? longTitle() : "ZX100 controller 2.4.1";
    state.plan = "5be1c09a11112222333344445555666677778888999900001111222233334444";
    state.order = "PO-\033[31m88";
    state.made = 312 + time;
    state.quantity = 1000;
    for (int nest = 0; nest < nests; ++nest)
        state.nests.push_back(nestOf(nest, time));
    state.passed = 312 + time;
    state.failed = 5;
    state.unitsPerHour = 86.2;
    state.secondsPerUnit = 12.9;
    state.undelivered = time;
    state.failures = {{"no-answer", 4}, {"verify-differs", 1}};
    state.notice = time % 2 == 1 ? "Ctrl-C: units under way are finished" : "";
    return state;
}

// False at the end.
bool obey(View &view, State &state, int nests) {
    static int time = 0;
    char command = 0;
    if (read(commands, &command, 1) != 1 || command == 'e')
        return false;
    if (command == 'w') {
        state = stateOf(nests, ++time);
        view.show(state);
    }
    return true;
}

void run(View &view, int nests) {
    State state = stateOf(nests, 0);
    view.show(state);
    for (;;) {
        std::vector<pollfd> waits = {{commands, POLLIN, 0}};
        for (const int descriptor : view.descriptors())
            waits.push_back({descriptor, POLLIN, 0});
        const auto now = View::Clock::now();
        const auto next = view.next();
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(next - now).count() + 1;
        poll(waits.data(), waits.size(),
             next == View::Clock::time_point::max() ? -1
             : left < 0                             ? 0
                                                    : static_cast<int>(left));
        for (const std::size_t nest : view.work())
            if (nest < state.nests.size()) {
                state.nests[nest] = {state.nests[nest].name};
                view.show(state);
            }
        if ((waits[0].revents & (POLLIN | POLLHUP)) != 0 && !obey(view, state, nests))
            return;
    }
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2)
        return EXIT_FAILURE;
    std::setlocale(LC_ALL, "C"); // as the program has it
    const auto view = makeView(true);
    run(*view, std::atoi(argv[1]));
    return EXIT_SUCCESS;
}
