#include "app/json_text.h"

#include <limits>
#include <nlohmann/json.hpp>
#include "tests/support/test.h"

namespace sparkrig {
namespace {

TEST(JsonLine, WritesEveryKindOfValue) {
    const float values[] = {0.25f, std::numeric_limits<float>::infinity(), -2};
    JsonLine line;
    line.Add("name", "a \"b\"\n\xFF");
    line.Add("count", 7);
    line.Add("on", true);
    line.AddList("list", values);
    line.AddJson("inner", "[3]");
    EXPECT_EQ(
        line.Finish(),
        "{\"name\":\"a \\\"b\\\"\\n\xEF\xBF\xBD\",\"count\":7,\"on\":true,\"list\":[0.25,null,-2],\"inner\":[3]}");
    for (const float value : {0.1f, 1.0f / 60, -3.0e-39f, 16777217.0f, 3.4028235e38f}) {
        JsonLine number;
        number.Add("value", value);
        EXPECT_EQ(nlohmann::json::parse(number.Finish())["value"].get<float>(), value) << "reads back the same";
    }
}

}   // namespace
}   // namespace sparkrig
