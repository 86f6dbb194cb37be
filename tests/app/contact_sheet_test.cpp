#include "app/contact_sheet.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

TEST(Halve, GivesTheMeanOfFourPixelsInEachChannel) {
    const Picture picture = {5,
                             2,
                             {0xFF102030, 0xFF102034, 0xFFFFFFFF, 0x00FFFFFF, 0xFF777777,   //
                              0xFF142030, 0xFF182038, 0xFFFFFFFF, 0x02FFFFFE, 0xFF777777}};
    const Picture half = Halve(picture);
    EXPECT_EQ(half.width, 2u);
    EXPECT_EQ(half.height, 1u);
    EXPECT_THAT(half.pixels, ElementsAre(0xFF132033, 0x80FFFFFF));
}

}   // namespace
}   // namespace sparkrig
