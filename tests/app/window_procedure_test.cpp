#include "app/window_procedure.h"

#include "app/resources.h"
#include "app/tester_state.h"
#include "tests/support/canvas.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

double now;

class WindowProcedureTest : public ::testing::Test {
  protected:
    void SetUp() override {
        KeepDriverLoaded();
        Tester() = {};
        now = 50;
        Tester().clock = FrameClock([] { return now; });
        RegisterClassExA({WindowProcedure, "KRN_DEFAULT"});
        Tester().window = CreateWindowExA("KRN_DEFAULT", "Sparkrig", CW_USEDEFAULT, 0, 320, 240);
        ASSERT_NE(Tester().window, nullptr);
    }
    void TearDown() override {
        DestroyWindow(Tester().window);
        Tester() = {};
        MSG message;
        while (PeekMessageA(message, PM_REMOVE)) {
        }
    }
    void Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
        PostMessageA(Tester().window, message, wParam, lParam);
        MSG first;
        while (PeekMessageA(first, PM_REMOVE) && first.message != WM_QUIT) DispatchMessageA(first);
    }
    void ClickAt(double time, int x, int y) {
        now = time;
        Send(WM_LBUTTONDOWN, 0, (static_cast<LPARAM>(y) & 0xFFFF) << 16 | (static_cast<LPARAM>(x) & 0xFFFF));
    }
    bool TakeClick() { return std::exchange(Tester().click.button, -1) == 0; }
};

TEST_F(WindowProcedureTest, SizeTellsVisibilityAndClientArea) {
    constexpr std::tuple<WPARAM, int> kRows[] = {
        {SIZE_MINIMIZED, 0}, {SIZE_RESTORED, 1}, {SIZE_MAXHIDE, 0}, {SIZE_MAXSHOW, 1}, {SIZE_MAXIMIZED, 1}};
    for (const auto& [type, visible] : kRows) {
        Send(WM_SIZE, type);
        EXPECT_EQ(Tester().window_visible, visible) << type;
    }
    EXPECT_EQ(Tester().client_width, 320);
    EXPECT_EQ(Tester().client_height, 240);
}

TEST_F(WindowProcedureTest, WaitsWhileHiddenOrInactiveUntilQuit) {
    EXPECT_FALSE(Tester().MustWait());
    Send(WM_ACTIVATEAPP, 0);
    EXPECT_TRUE(Tester().MustWait());
    Send(WM_ACTIVATEAPP, 1);
    EXPECT_FALSE(Tester().MustWait());
    Send(WM_SIZE, SIZE_MINIMIZED);
    EXPECT_TRUE(Tester().MustWait());
    Send(WM_COMMAND, kCommandExit);
    EXPECT_EQ(Tester().quit_requested, 1);
    EXPECT_FALSE(Tester().MustWait());
}

TEST_F(WindowProcedureTest, RecordsAClickOnce) {
    ClickAt(50, 31, -7);
    EXPECT_EQ(Tester().click.x, 31);
    EXPECT_EQ(Tester().click.y, -7);
    EXPECT_EQ(Tester().click.pressed, 1);
    EXPECT_TRUE(TakeClick());
    ClickAt(50.25, 5, 6);
    EXPECT_FALSE(TakeClick()) << "within 0.3 s";
    ClickAt(50.5, 5, 6);
    EXPECT_TRUE(TakeClick());
    Send(WM_LBUTTONUP);
    ClickAt(50.5625, 8, 9);
    EXPECT_TRUE(TakeClick()) << "released in between";
}

TEST_F(WindowProcedureTest, MenusAndDragsPauseAndAlwaysGoOn) {
    constexpr std::tuple<UINT, UINT> kRows[] = {{WM_ENTERMENULOOP, WM_EXITMENULOOP},
                                                {WM_ENTERSIZEMOVE, WM_EXITSIZEMOVE}};
    for (const auto& [enter, leave] : kRows) {
        Send(enter);
        EXPECT_EQ(Tester().paused, 1);
        Send(leave);
        EXPECT_EQ(Tester().paused, 0);
    }
}

}   // namespace
}   // namespace sparkrig
