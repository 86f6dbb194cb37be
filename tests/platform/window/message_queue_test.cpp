#include "platform/window/message_queue.h"

#include <gtest/gtest.h>

namespace sparkrig {
namespace {

const HWND kWindow = reinterpret_cast<HWND>(16), kOther = reinterpret_cast<HWND>(32);

TEST(MessageQueue, MergesMouseMovesAndSizesOfOneTypeThatWaitInARow) {
    MessageQueue queue;
    for (const MSG& message : {MSG{kWindow, WM_MOUSEMOVE, 0, 3},
                               {kWindow, WM_MOUSEMOVE, 0, 5},
                               {kWindow, WM_LBUTTONDOWN, 0, 6},
                               {kWindow, WM_MOUSEMOVE, 0, 7},
                               {kOther, WM_MOUSEMOVE, 0, 9},
                               {kWindow, WM_SIZE, SIZE_RESTORED, 10},
                               {kWindow, WM_SIZE, SIZE_RESTORED, 11},
                               {kWindow, WM_SIZE, SIZE_MINIMIZED, 12},
                               {kWindow, WM_SIZE, SIZE_RESTORED, 13}})
        queue.Post(message);
    for (const LPARAM left : {5, 6, 7, 9, 11, 12, 13}) EXPECT_EQ(queue.Take()->lParam, left);
    EXPECT_FALSE(queue.Take().has_value());
}

TEST(MessageQueue, GivesQuitLastAndForgetsTheMessagesOfAWindow) {
    MessageQueue queue;
    queue.PostQuit(6);
    queue.Post({kWindow, WM_CHAR, 'd', 1});
    queue.Post({kOther, WM_CHAR, 'e', 1});
    queue.Forget(kWindow);
    EXPECT_EQ(queue.Take()->wParam, static_cast<WPARAM>('e'));
    EXPECT_EQ(queue.First()->message, WM_QUIT);
    EXPECT_EQ(queue.Take()->wParam, 6u);
    EXPECT_FALSE(queue.First().has_value());
}

}   // namespace
}   // namespace sparkrig
