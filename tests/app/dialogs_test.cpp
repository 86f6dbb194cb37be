#include "app/dialogs.h"

#include "app/resources.h"
#include "platform/system/system.h"
#include "platform/window/dialog.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

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
