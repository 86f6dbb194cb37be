#pragma once
#include <span>
#include <string>

namespace sparkrig {

/// Builds one JSON object as one line. Numbers are the shortest that read back to the same float; what is no finite
/// number becomes null.
class JsonLine {
  public:
    JsonLine() : text_("{") {}

    void Add(const char* name, float value);
    void Add(const char* name, int value);
    void Add(const char* name, bool value);
    void Add(const char* name, const char* value);
    void AddList(const char* name, std::span<const float> values);
    /// Text that already is JSON.
    void AddJson(const char* name, const std::string& json);

    /// The object so far, and a list as its last member: elements with commas between them are to follow, then kEnd.
    std::string Begin(const char* list);
    static constexpr const char* kEnd = "]}";
    /// The finished object, without a line end.
    std::string Finish() const { return text_ + "}"; }

  private:
    void Name(const char* name);
    std::string text_;
};

}   // namespace sparkrig
