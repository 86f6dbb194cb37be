#include "app/tester_state.h"

namespace sparkrig {

TesterState& Tester() {
    static TesterState state;
    return state;
}

void TesterState::Note(const std::string& text) {
    constexpr double kSecondsShown = 10;
    notice = {text, clock.Now() + kSecondsShown};
}

void TesterState::ReadClientSize() {
    RECT client;
    GetClientRect(window, client);
    client_width = client.right;
    client_height = client.bottom;
}

}   // namespace sparkrig
