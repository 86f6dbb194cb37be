#include "app/dialogs.h"
#include "app/resources.h"
#include "app/tester_state.h"
#include "app/window_procedure.h"
#include "platform/system/system.h"
#include "platform/window/dialog.h"
#include "tests/support/canvas.h"
#include "tests/support/temporary_folder.h"

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

class DialogsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        std::string text;
        for (const char* effect : {"whirl", "Ash", "mist", "ember"})
            text += std::string("#1\ndesc = \"") + effect + "\"\nPARTICLE {\nLife = 4\n}\n";
        engine_.effects.LoadEffects(ScratchFolder().Write("effects.cfg", text).c_str(), false);
        state_.current_effect = 3;
    }
    void TearDown() override { SetDialogDriver(nullptr); }

    Engine engine_;
    TesterState state_;
};

TEST_F(DialogsTest, TheSelectedNameBecomesCurrentByItsPlaceInTheFile) {
    constexpr std::tuple<int, UINT, int> kRows[] = {{-1, IDOK, 3}, {0, IDCANCEL, 3},
                                                    {0, IDOK, 1},  {2, IDOK, 2},
                                                    {3, IDOK, 0},  {1, kEffectList | LBN_DBLCLK << 16, 3}};
    for (const auto& [entry, button, effect] : kRows) {
        SetDialogDriver([&, entry = entry, button = button](HDLG dialog) {
            SendDlgItemMessageA(dialog, kEffectList, LB_SETCURSEL, static_cast<WPARAM>(entry), 0);
            PressButton(dialog, button);
        });
        SelectEffect(engine_, state_);
        EXPECT_EQ(state_.current_effect, effect) << entry;
    }
}

TEST_F(DialogsTest, TheDetailLevelIsReadAsANumberAndRounded) {
    constexpr std::tuple<const char*, UINT, const char*> kRows[] = {{"42", IDOK, "42"},
                                                                    {"7", IDCANCEL, "42"},
                                                                    {"61.5", IDOK, "62"},
                                                                    {"16777217", IDOK, "16777217"},
                                                                    {"no number", IDOK, "0"}};
    for (const auto& [text, button, shown] : kRows) {
        SetDialogDriver([text = text, button = button](HDLG dialog) {
            SendDlgItemMessageA(dialog, kDetailEdit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text));
            PressButton(dialog, button);
        });
        SetDetailLevel(engine_, state_);
        std::string next;
        SetDialogDriver([&](HDLG dialog) {
            char level[20];
            GetDlgItemTextA(dialog, kDetailEdit, level, sizeof(level));
            next = level;
        });
        SetDetailLevel(engine_, state_);
        EXPECT_EQ(next, shown) << text;
    }
}

}   // namespace
}   // namespace sparkrig
