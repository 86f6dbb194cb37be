#include "app/json_text.h"

#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>

namespace sparkrig {

namespace {

std::string Number(float value) {
    if (!std::isfinite(value)) return "null";
    char digits[32];
    return {digits, std::to_chars(digits, digits + sizeof(digits), value).ptr};
}

std::string Quoted(const char* text) {
    using Json = nlohmann::json;
    return Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
}

}   // namespace

void JsonLine::Name(const char* name) {
    if (text_.size() > 1) text_ += ',';
    text_ += '"';
    text_ += name;
    text_ += "\":";
}

void JsonLine::Add(const char* name, float value) { AddJson(name, Number(value)); }
void JsonLine::Add(const char* name, int value) { AddJson(name, std::to_string(value)); }
void JsonLine::Add(const char* name, bool value) { AddJson(name, value ? "true" : "false"); }
void JsonLine::Add(const char* name, const char* value) { AddJson(name, Quoted(value)); }

void JsonLine::AddList(const char* name, std::span<const float> values) {
    std::string list;
    for (const float value : values) list += (list.empty() ? "" : ",") + Number(value);
    AddJson(name, "[" + list + "]");
}

std::string JsonLine::Begin(const char* list) {
    Name(list);
    return text_ + "[";
}

void JsonLine::AddJson(const char* name, const std::string& json) {
    Name(name);
    text_ += json;
}

}   // namespace sparkrig
