#include <algorithm>
#include <optional>
#include <set>

#include <fmt/format.h>

#include "tools/fxc/code_adaption.h"
#include "tools/fxc/code_names.h"
#include "tools/fxc/token_tools.h"
#include "tools/fxc/type_parser.h"

namespace sparkrig::fxc {

namespace {

constexpr int kDeepest = 100;   // expressions in expressions

/// As much of a type as tells matrices apart from other numbers.
struct Shape {
    DWORD rows = 0, columns = 0;   // rows 0: not known; a vector has one row
    bool matrix = false;
    int dimensions = 0;      // of an array
    std::string structure;   // of a structure

    bool IsMatrix() const { return matrix && dimensions == 0; }
    bool IsScalar() const { return rows == 1 && columns == 1 && !matrix && dimensions == 0; }
};

Shape VectorOf(DWORD columns) { return {1, columns, false, 0, {}}; }

Shape ShapeOf(const Type& type) {
    if (type.kind == VariableClass::Structure) return {0, 0, false, type.elements > 0 ? 1 : 0, type.structure};
    if (!IsNumeric(type.kind)) return Shape();
    return {type.rows, type.columns, type.kind == VariableClass::Matrix, type.elements > 0 ? 1 : 0, {}};
}

std::string Spelling(const Shape& shape) { return fmt::format("float{}x{}", shape.rows, shape.columns); }

struct Operand {
    Tokens tokens;
    Shape shape;
};

struct Binary {
    std::string_view text;
    const char* name;   // of the function for matrices; none where the compiler does it by elements
    int level;          // a higher one binds tighter
    bool compares = false;
};

// Longer ones first.
constexpr Binary kBinaries[] = {
    {"||", nullptr, 1},     {"&&", nullptr, 2},        {"==", "equal", 6, true}, {"!=", "unequal", 6, true},
    {"<<", nullptr, 8},     {">>", nullptr, 8},        {"<=", "most", 7, true},  {">=", "least", 7, true},
    {"<", "less", 7, true}, {">", "greater", 7, true}, {"|", nullptr, 3},        {"^", nullptr, 4},
    {"&", nullptr, 5},      {"+", nullptr, 9},         {"-", nullptr, 9},        {"*", "times", 10},
    {"/", nullptr, 10},     {"%", "remainder", 10},
};

/// The intrinsic functions that take each element by itself, by their names after SpellOut.
constexpr std::string_view kByElement[] = {
    "abs",      "acos", "asin", "atan",     "atan2",     "ceil",    "clamp",  "cos",   "cosh",       "ddx",
    "ddy",      "exp",  "exp2", "floor",    "fxc_fmod",  "frac",    "fwidth", "ldexp", "lerp",       "fxc_log",
    "fxc_log2", "max",  "min",  "fxc_pow",  "fxc_log10", "radians", "round",  "sign",  "smoothstep", "fxc_rsqrt",
    "saturate", "sin",  "sinh", "fxc_sqrt", "step",      "tan",     "tanh",   "trunc", "degrees",
};

constexpr std::string_view kStatements[] = {"return", "if", "else", "for", "while", "do"};

class ElementOperations {
  public:
    explicit ElementOperations(ParsedEffect& effect) : effect_(effect), code_(effect.code) {}

    /// Reads an expression wherever one can begin; all else, and what is none, stays as it is.
    void Run() {
        for (std::size_t i = 0; i + 2 < code_.size(); ++i)
            if (Is(i, "(") && Is(i + 2, ")")) converted_.insert(code_[i + 1].text);
        Tokens result;
        while (at_ < code_.size()) {
            if (PassStructure(result) || PassDeclared(result)) continue;
            const std::size_t start = at_;
            failed_ = false;
            Operand expression;
            if (BeginsOperand()) expression = ParseAssignment();
            if (failed_ || at_ == start) {
                at_ = start;
                result.push_back(code_[at_++]);
            } else {
                AppendTo(result, expression.tokens);
            }
        }
        code_ = std::move(functions_);
        AppendTo(code_, result);
    }

  private:
    // ---- Declarations

    bool Is(std::size_t at, const char* symbol) const { return at < code_.size() && code_[at].Is(symbol); }
    bool IsWord(std::size_t at) const { return at < code_.size() && code_[at].kind == TokenKind::Identifier; }

    std::optional<Type> TypeAt(std::size_t at) const {
        if (!IsWord(at)) return std::nullopt;
        const std::string& word = code_[at].text;
        if (const auto found = effect_.symbols.types.find(word); found != effect_.symbols.types.end())
            return found->second;
        if (!effect_.symbols.structures.contains(word)) return BuiltInType(word, LetterCase::Exact);
        Type type;
        type.kind = VariableClass::Structure;
        type.structure = word;
        return type;
    }

    bool PassStructure(Tokens& result) {
        if (!code_[at_].IsName("struct") || !Is(at_ + 2, "{")) return false;
        const Token name = code_[at_ + 1];
        const std::size_t end = std::min(ClosingBracket(code_, at_ + 2) + 1, code_.size());
        AppendTo(result, Part(code_, at_, end));
        at_ = end;
        if (Is(at_, ";") && effect_.symbols.structures.contains(name.text) && converted_.contains(name.text)) {
            Take(result);
            AddConversion(name, result);
        }
        return true;
    }

    /// TYPE NAME: the name has that shape from here on, whatever it was before.
    bool PassDeclared(Tokens& result) {
        const std::optional<Type> type = IsWord(at_ + 1) ? TypeAt(at_) : std::nullopt;
        if (!type) return false;
        for (std::size_t name = at_ + 1; IsWord(name);) {
            Shape shape = ShapeOf(*type);
            std::size_t behind = name + 1;
            for (; Is(behind, "["); behind = ClosingBracket(code_, behind) + 1) ++shape.dimensions;
            declared_[code_[name].text] = shape;
            const std::size_t end = EndOfExpression(code_, behind, true);
            if (!Is(end, ",") || IsWord(end + 2)) break;   // of a function: the next parameter
            name = end + 1;
        }
        AppendTo(result, Part(code_, at_, at_ + 2));
        at_ += 2;
        return true;
    }

    // ---- Expressions

    bool BeginsOperand() const {
        const Token& token = code_[at_];
        if (token.kind == TokenKind::Number) return true;
        if (token.kind == TokenKind::Identifier) return std::ranges::count(kStatements, token.text) == 0;
        return token.Is("(") || token.Is("-") || token.Is("+") || token.Is("!") || token.Is("~");
    }

    void Take(Tokens& tokens, std::size_t count = 1) {
        for (; count > 0 && at_ < code_.size(); --count) tokens.push_back(code_[at_++]);
    }

    void Expect(const char* symbol, Tokens& tokens) {
        failed_ |= !Is(at_, symbol);
        if (!failed_) Take(tokens);
    }

    /// The operator at the cursor: its characters follow each other without a blank.
    bool IsOperator(std::string_view text) const {
        for (std::size_t i = 0; i < text.size(); ++i)
            if (!Is(at_ + i, std::string(1, text[i]).c_str()) || (i > 0 && !code_[at_ + i].joined)) return false;
        return true;
    }

    const Binary* FindBinary() const {
        const auto* const found = std::ranges::find_if(kBinaries, [&](const Binary& b) { return IsOperator(b.text); });
        if (found == std::end(kBinaries)) return nullptr;
        const std::size_t behind = at_ + found->text.size();
        const bool assigns = !found->compares && Is(behind, "=") && code_[behind].joined;
        return assigns ? nullptr : found;
    }

    Operand ParseAssignment() {
        Operand left = ParseChoice();
        if (failed_ || at_ >= code_.size()) return left;
        const bool plain = IsAssignment(code_, at_);
        const bool compound = !plain && Is(at_ + 1, "=") && code_[at_ + 1].joined &&
                              std::string_view("+-*/%&|^").find(code_[at_].text) != std::string_view::npos;
        if (!plain && !compound) return left;
        Tokens sign;
        Take(sign, plain ? 1 : 2);
        Operand right = ParseAssignment();
        Operand result{left.tokens, left.shape};
        const bool by_element = sign[0].Is("*") && left.shape.IsMatrix() && right.shape.IsMatrix();
        if (by_element) {
            right = ByElement("times", "{0} * {1}", {std::move(left), std::move(right)}, sign[0]);
            sign.erase(sign.begin());
        }
        AppendTo(result.tokens, sign);
        AppendTo(result.tokens, right.tokens);
        return result;
    }

    Operand ParseChoice() {
        if (++depth_ > kDeepest) failed_ = true;
        Operand condition = failed_ ? Operand() : ParseBinaries(1);
        if (!failed_ && Is(at_, "?")) {
            Tokens signs;
            Take(signs);
            Operand yes = ParseAssignment();
            Expect(":", signs);
            Operand no = failed_ ? Operand() : ParseAssignment();
            if (!failed_) condition = Choice(std::move(condition), std::move(yes), std::move(no), signs);
        }
        --depth_;
        return condition;
    }

    Operand Choice(Operand condition, Operand yes, Operand no, const Tokens& signs) {
        if (condition.shape.IsMatrix())
            return ByElement("choice", "{0} != 0 ? {1} : {2}", {std::move(condition), std::move(yes), std::move(no)},
                             signs[0]);
        condition.shape = yes.shape.IsMatrix() ? yes.shape : no.shape;
        condition.tokens.push_back(signs[0]);
        AppendTo(condition.tokens, yes.tokens);
        condition.tokens.push_back(signs[1]);
        AppendTo(condition.tokens, no.tokens);
        return condition;
    }

    Operand ParseBinaries(int lowest) {
        Operand left = ParseUnary();
        const Binary* binary = nullptr;
        while (!failed_ && (binary = FindBinary()) && binary->level >= lowest) {
            Tokens sign;
            Take(sign, binary->text.size());
            Operand right = ParseBinaries(binary->level + 1);
            left = Combined(*binary, sign, std::move(left), std::move(right));
        }
        return left;
    }

    Operand Combined(const Binary& binary, const Tokens& sign, Operand left, Operand right) {
        const bool both = left.shape.IsMatrix() && right.shape.IsMatrix();
        const bool one = left.shape.IsMatrix() || right.shape.IsMatrix();
        if (binary.name && (both || (one && !binary.text.starts_with('*')))) {
            const std::string row = fmt::format("{{0}} {} {{1}}", binary.text);
            return ByElement(binary.name, row, {std::move(left), std::move(right)}, sign[0]);
        }
        AppendTo(left.tokens, sign);
        AppendTo(left.tokens, right.tokens);
        if (!left.shape.IsMatrix())
            left.shape = right.shape.IsMatrix() || left.shape.IsScalar() ? right.shape : left.shape;
        return left;
    }

    Operand ParseUnary() {
        for (const char* sign : {"-", "+", "!", "~"}) {
            if (!Is(at_, sign)) continue;
            if (++depth_ > kDeepest) failed_ = true;
            Operand result;
            Take(result.tokens);
            Operand operand = failed_ || at_ >= code_.size() ? Operand() : ParseUnary();
            AppendTo(result.tokens, operand.tokens);
            result.shape = operand.shape;
            --depth_;
            return result;
        }
        return ParsePicks(ParsePrimary());
    }

    Operand ParsePrimary() {
        Operand result;
        if (at_ >= code_.size() || !BeginsOperand() || (IsWord(at_) && IsWord(at_ + 1))) {
            failed_ = true;
        } else if (code_[at_].kind == TokenKind::Number) {
            Take(result.tokens);
            result.shape = VectorOf(1);
        } else if (Is(at_, "(")) {
            result = ParseParenthesis();
        } else if (Is(at_ + 1, "(")) {
            result = ParseCall();
        } else {
            const auto found = declared_.find(code_[at_].text);
            if (found != declared_.end()) result.shape = found->second;
            Take(result.tokens);
        }
        return result;
    }

    Operand ParseParenthesis() {
        Operand result;
        const std::optional<Type> cast = Is(at_ + 2, ")") ? TypeAt(at_ + 1) : std::nullopt;
        if (cast) {
            Take(result.tokens, 3);
            Operand operand = ParseUnary();
            if (cast->kind == VariableClass::Structure && operand.shape.rows == 1 && !operand.shape.dimensions)
                ConvertTo(cast->structure, operand, result);
            AppendTo(result.tokens, operand.tokens);
            result.shape = ShapeOf(*cast);
            return result;
        }
        Take(result.tokens);
        ParseList(result);
        return result;
    }

    /// (STRUCTURE) vector: the call of a function, where there is one.
    void ConvertTo(const std::string& structure, Operand& vector, Operand& call) {
        const DWORD numbers = SmallStructure(structure);
        if (numbers == 0) return;
        const Token place = call.tokens[0];
        call.tokens.clear();
        AppendText(call.tokens, place, fmt::format("fxc_to_{} ( ( float{} ) (", structure, numbers));
        AppendText(vector.tokens, place, ") )");
    }

    /// How many numbers a structure holds that a vector can fill; 0 for any other.
    DWORD SmallStructure(const std::string& structure) const {
        DWORD numbers = 0;
        for (const StructureMember& member : effect_.symbols.structures.at(structure)) {
            if (member.type.rows > 1 || !IsNumeric(member.type.kind) || member.elements > 0) return 0;
            numbers += member.type.columns;
        }
        return numbers <= 4 ? numbers : 0;
    }

    /// STRUCTURE fxc_to_STRUCTURE(floatN v) { STRUCTURE s; s.a = v.xy; ... return s; }
    void AddConversion(const Token& name, Tokens& result) {
        const DWORD numbers = SmallStructure(name.text);
        if (numbers == 0 || known_.contains(name.text)) return;
        std::string text = fmt::format("{0} fxc_to_{0} ( float{1} v ) {{ {0} s ;", name.text, numbers);
        std::size_t next = 0;
        for (const StructureMember& member : effect_.symbols.structures.at(name.text)) {
            text += fmt::format(" s . {} =", CodeName(member.name));
            text += numbers == 1 ? " v ;" : " v . " + std::string("xyzw").substr(next, member.type.columns) + " ;";
            next += member.type.columns;
        }
        AppendText(result, name, text + " return s ; }");
        known_.insert(name.text);
    }

    /// Values up to the bracket that closes them; the shape is the last one's.
    std::vector<Operand> ParseList(Operand& result) {
        std::vector<Operand> values;
        while (!failed_ && at_ < code_.size() && !Is(at_, ")")) {
            values.push_back(ParseAssignment());
            AppendTo(result.tokens, values.back().tokens);
            result.shape = values.back().shape;
            if (!Is(at_, ",")) break;
            Take(result.tokens);
        }
        Expect(")", result.tokens);
        return values;
    }

    Operand ParsePicks(Operand operand) {
        while (!failed_ && at_ < code_.size()) {
            if (Is(at_, "[")) {
                Take(operand.tokens);
                if (at_ < code_.size() && !Is(at_, "]")) AppendTo(operand.tokens, ParseAssignment().tokens);
                Expect("]", operand.tokens);
                operand.shape = ElementOf(operand.shape);
            } else if (Is(at_, ".") && IsWord(at_ + 1)) {
                operand.shape = MemberOf(operand.shape, code_[at_ + 1].text);
                Take(operand.tokens, 2);
            } else if (IsOperator("++") || IsOperator("--")) {
                Take(operand.tokens, 2);
            } else {
                break;
            }
        }
        return operand;
    }

    static Shape ElementOf(Shape shape) {
        if (shape.dimensions > 0) {
            --shape.dimensions;
            return shape;
        }
        return shape.matrix ? VectorOf(shape.columns) : shape.rows > 0 ? VectorOf(1) : Shape();
    }

    Shape MemberOf(const Shape& shape, const std::string& name) const {
        const auto structure = effect_.symbols.structures.find(shape.structure);
        if (structure != effect_.symbols.structures.end()) {
            for (const StructureMember& member : structure->second) {
                if (CodeName(member.name) != name) continue;
                Shape found = ShapeOf(member.type);
                found.dimensions = member.elements > 0 ? 1 : 0;
                return found;
            }
        }
        const bool swizzle = name.size() <= 4 && name.find_first_not_of("xyzwrgba") == std::string::npos;
        return swizzle ? VectorOf(static_cast<DWORD>(name.size())) : Shape();
    }

    // ---- Functions

    Operand ParseCall() {
        const Token name = code_[at_];
        const std::optional<Type> constructed = TypeAt(at_);
        Operand result;
        Take(result.tokens, 2);
        std::vector<Operand> values = ParseList(result);
        result.shape = Shape();
        if (failed_) return result;
        if (constructed) {
            result.shape = ShapeOf(*constructed);
        } else if (const auto own = effect_.symbols.functions.find(name.text); own != effect_.symbols.functions.end()) {
            if (!own->second.empty() && own->second[0].result_type) result.shape = ShapeOf(*own->second[0].result_type);
        } else if (!values.empty()) {
            return Intrinsic(name, std::move(result), std::move(values));
        }
        return result;
    }

    Operand Intrinsic(const Token& name, Operand call, std::vector<Operand> values) {
        const Shape &first = values.front().shape, &last = values.back().shape;
        const bool matrices = std::ranges::any_of(values, [](const Operand& value) { return value.shape.IsMatrix(); });
        if (name.IsName("mul") && values.size() == 2) return Product(name, std::move(call), std::move(values));
        if (name.IsName("transpose") && first.IsMatrix()) call.shape = {first.columns, first.rows, true, 0, {}};
        if (matrices && (name.IsName("fxc_any") || name.IsName("fxc_all"))) return Test(name, std::move(values));
        if (std::ranges::count(kByElement, name.text) == 0) return call;
        if (!matrices) {
            call.shape = first.IsScalar() ? last : first;
            return call;
        }
        std::string row = name.text;
        for (std::size_t i = 0; i < values.size(); ++i) row += fmt::format("{}{{{}}}", i == 0 ? " ( " : " , ", i);
        return ByElement(name.text, row + " )", std::move(values), name);
    }

    /// mul(a, b); the compiler does not take every number for the factor that it is.
    Operand Product(const Token& name, Operand call, std::vector<Operand> values) {
        const Shape &left = values[0].shape, &right = values[1].shape;
        if (left.IsScalar() || right.IsScalar()) {
            Operand product;
            product.shape = left.IsScalar() ? right : left;
            AppendText(product.tokens, name, "( (");
            AppendTo(product.tokens, values[0].tokens);
            AppendText(product.tokens, name, ") * (");
            AppendTo(product.tokens, values[1].tokens);
            AppendText(product.tokens, name, ") )");
            return product;
        }
        if (left.IsMatrix() && right.IsMatrix()) call.shape = {left.rows, right.columns, true, 0, {}};
        return call;
    }

    /// any(m) and all(m): the same of the rows.
    Operand Test(const Token& name, std::vector<Operand> values) {
        const Shape shape = values[0].shape;
        std::string result;
        for (DWORD i = 0; i < shape.rows; ++i)
            result += fmt::format("{}{} ( a [ {} ] )",
                                  i == 0                   ? ""
                                  : name.IsName("fxc_any") ? " || "
                                                           : " && ",
                                  name.text, i);
        AddFunction(fmt::format("bool fxc_rows_{} ( {} a ) {{ return {} ; }}", name.text, Spelling(shape), result),
                    name);
        return CallOf(name.text, shape, VectorOf(1), values, name);
    }

    /// The call of a function that does `row` for each row of the matrices among the values: "max ( {0} , {1} )".
    Operand ByElement(const std::string& name, const std::string& row, std::vector<Operand> values,
                      const Token& place) {
        Shape shape;
        for (const Operand& value : values) {
            if (!value.shape.IsMatrix()) continue;
            shape.rows = shape.matrix ? std::min(shape.rows, value.shape.rows) : value.shape.rows;
            shape.columns = shape.matrix ? std::min(shape.columns, value.shape.columns) : value.shape.columns;
            shape.matrix = true;
        }
        constexpr std::string_view kNames = "abcd";
        if (values.size() > kNames.size()) {
            failed_ = true;
            return {};
        }
        std::string parameters, rows;
        for (std::size_t i = 0; i < values.size(); ++i)
            parameters += fmt::format("{}{} {}", i == 0 ? "" : " , ",
                                      values[i].shape.IsMatrix() ? Spelling(shape) : "float", kNames[i]);
        for (DWORD i = 0; i < shape.rows; ++i) {
            std::string filled = row;
            for (std::size_t k = 0; k < values.size(); ++k) {
                const std::string mark = fmt::format("{{{}}}", k);
                const std::string value =
                    values[k].shape.IsMatrix() ? fmt::format("{} [ {} ]", kNames[k], i) : std::string(1, kNames[k]);
                for (std::size_t at = filled.find(mark); at != std::string::npos; at = filled.find(mark))
                    filled.replace(at, mark.size(), value);
            }
            rows += fmt::format("{}( float{} ) ( {} )", i == 0 ? "" : " , ", shape.columns, filled);
        }
        AddFunction(
            fmt::format("{0} fxc_rows_{1} ( {2} ) {{ return {0} ( {3} ) ; }}", Spelling(shape), name, parameters, rows),
            place);
        return CallOf(name, shape, shape, values, place);
    }

    Operand CallOf(const std::string& name, const Shape& matrices, const Shape& result,
                   const std::vector<Operand>& values, const Token& place) {
        Operand call;
        call.shape = result;
        AppendText(call.tokens, place, "fxc_rows_" + name + " (");
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (i > 0) AppendText(call.tokens, place, ",");
            if (values[i].shape.IsMatrix()) AppendText(call.tokens, place, "( " + Spelling(matrices) + " )");
            AppendText(call.tokens, place, "(");
            AppendTo(call.tokens, values[i].tokens);
            AppendText(call.tokens, place, ")");
        }
        AppendText(call.tokens, place, ")");
        if (call.tokens.size() > kMostTokens) failed_ = true;
        return call;
    }

    void AddFunction(const std::string& text, const Token& place) {
        if (known_.insert(text).second) AppendText(functions_, place, text);
    }

    static constexpr std::size_t kMostTokens = 2'000'000;

    ParsedEffect& effect_;
    Tokens& code_;
    std::size_t at_ = 0;
    int depth_ = 0;
    bool failed_ = false;                     // what is read is no expression
    std::map<std::string, Shape> declared_;   // scopes do not matter: a name is declared before it is used
    std::set<std::string> known_;
    std::set<std::string> converted_;   // words in parentheses: what casts may name
    Tokens functions_;                  // for the rows, in front of the code
};

}   // namespace

void OperateOnElements(ParsedEffect& effect) { ElementOperations(effect).Run(); }

}   // namespace sparkrig::fxc
