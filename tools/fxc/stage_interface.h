#pragma once
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/d3dx/effect_file.h"

namespace sparkrig::fxc {

/// VPOS, as the code has it.
inline constexpr const char* kPixelPosition = "FXC_PIXEL";

/// A variable through which a function meets what is before or after it, as GLSL names it.
struct StageVariable {
    std::string name;       // unique in the function
    std::string semantic;   // such as TEXCOORD3
    int components = 4;
    int rows = 1;           // of a matrix or an array: each takes a place of its own
    std::string number;     // of its components: float, int or bool
    bool indexed = false;   // rows are reached by [i]
};

/// Interpolants by semantics that have no fixed place, for all functions of one effect: the first one to name a
/// semantic gives it the next free place.
class ExtraVaryings {
  public:
    /// None when all places are taken.
    std::optional<int> PlaceOf(const std::string& semantic);

  private:
    std::map<std::string, int> places_;
};

/// Collects the declarations, and the statements around the function, that connect its variables with the fixed
/// places of the layer.
class StageInterface {
  public:
    StageInterface(FunctionStage stage, DWORD version, ExtraVaryings& extra)
        : stage_(stage), version_(version), extra_(extra) {}

    /// False for a semantic that the stage does not have; `unsupported` is set for one that the layer leaves out.
    bool AddInput(const StageVariable& variable, std::string& unsupported);
    bool AddOutput(const StageVariable& variable, std::string& unsupported);

    const std::string& Declarations() const { return declarations_; }
    const std::string& Before() const { return before_; }
    const std::string& After() const { return after_; }
    DWORD Inputs() const { return inputs_; }
    DWORD Varyings() const { return varyings_; }
    bool WritesPointSize() const { return writes_point_size_; }
    /// The inputs that no vertex format carries, such as POSITION1; they read (0, 0, 0, 1).
    const std::vector<std::string>& MissingInputs() const { return missing_inputs_; }

  private:
    void Declare(const std::string& line);
    /// The vertex input of a number, declared.
    std::string VertexInputOf(int slot);
    /// False for what no element of a vertex is.
    bool AddVertexInput(const StageVariable& variable, const std::string& word, int index, int row);
    std::optional<int> VaryingOf(const std::string& word, int index);
    void Read(const StageVariable& variable, int row, const std::string& source);

    FunctionStage stage_;
    DWORD version_;
    ExtraVaryings& extra_;
    std::string declarations_, before_, after_;
    DWORD inputs_ = 0, varyings_ = 0;
    bool writes_point_size_ = false;
    std::vector<std::string> missing_inputs_;
};

}   // namespace sparkrig::fxc
