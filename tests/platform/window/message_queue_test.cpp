#include "platform/window/message_queue.h"

#include <gtest/gtest.h>

namespace sparkrig {
namespace {

const HWND kWindow = reinterpret_cast<HWND>(16), kOther = reinterpret_cast<HWND>(32);

TEST(MessageQueue, MergesMouseMovesThatWaitInARow) {
    MessageQueue queue;
    queue.Post({kWindow, WM_MOUSEMOVE, 0, 3});
    queue.Post({kWindow, WM_MOUSEMOVE, 0, 5});
    queue.Post({kWindow, WM_LBUTTONDOWN, 0, 5});
    queue.Post({kWindow, WM_MOUSEMOVE, 0, 7});
    queue.Post({kOther, WM_MOUSEMOVE, 0, 9});
    for (const LPARAM position : {5, 5, 7, 9}) EXPECT_EQ(queue.Take()->lParam, position);
    EXPECT_FALSE(queue.Take().has_value());
}

TEST(MessageQueue, MergesSizesOfOneTypeThatWaitInARow) {
    MessageQueue queue;
    queue.Post({kWindow, WM_SIZE, SIZE_RESTORED, 3});
    queue.Post({kWindow, WM_SIZE, SIZE_RESTORED, 5});
    queue.Post({kWindow, WM_SIZE, SIZE_MINIMIZED, 0});
    queue.Post({kWindow, WM_SIZE, SIZE_RESTORED, 7});
    for (const LPARAM size : {5, 0, 7}) EXPECT_EQ(queue.Take()->lParam, size);
}

TEST(MessageQueue, GivesQuitOnlyWhenNothingElseWaits) {
    MessageQueue queue;
    queue.PostQuit(6);
    queue.Post({kWindow, WM_CHAR, 'd', 1});
    EXPECT_EQ(queue.Take()->message, WM_CHAR);
    EXPECT_EQ(queue.First()->message, WM_QUIT);
    EXPECT_EQ(queue.Take()->wParam, 6u);
    EXPECT_FALSE(queue.First().has_value());
}

TEST(MessageQueue, ForgetsTheMessagesOfOneWindow) {
    MessageQueue queue;
    queue.Post({kWindow, WM_CHAR, 'd', 1});
    queue.Post({kOther, WM_CHAR, 'e', 1});
    queue.Forget(kWindow);
    EXPECT_EQ(queue.Take()->wParam, static_cast<WPARAM>('e'));
    EXPECT_FALSE(queue.Take().has_value());
}

}   // namespace
}   // namespace sparkrig
