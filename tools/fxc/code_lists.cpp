#include <utility>

#include "tools/fxc/code_adaption.h"
#include "tools/fxc/token_tools.h"
#include "tools/fxc/type_parser.h"

namespace sparkrig::fxc {

namespace {

/// The expressions in braces, whatever the braces between them.
std::vector<Tokens> LeavesOf(const Tokens& code, std::size_t open, std::size_t close) {
    std::vector<Tokens> leaves;
    for (std::size_t i = open + 1; i < close;) {
        if (code[i].Is("{") || code[i].Is("}") || code[i].Is(",")) {
            ++i;
            continue;
        }
        const std::size_t end = std::min(EndOfExpression(code, i, true), close);
        if (end > i) leaves.push_back(Part(code, i, end));
        i = std::max(end, i + 1);   // a bracket that closes nothing is no leaf
    }
    return leaves;
}

/// A variable of numbers or a structure with a list as its value: "TYPE NAME [n][m] = {".
struct ListedVariable {
    Type type;
    std::vector<std::size_t> sizes;   // 0 for one that is not known
    std::size_t open = 0;             // the brace
};

class ListShaper {
  public:
    explicit ListShaper(ParsedEffect& effect) : effect_(effect), code_(effect.code) {}

    void Run() {
        Tokens result;
        for (std::size_t i = 0; i < code_.size();) {
            ListedVariable variable;
            std::size_t close = 0;
            Tokens value;
            if (Find(i, variable)) {
                close = ClosingBracket(code_, variable.open);
                behind_ = close + 1;
                last_ = variable.type;
                if (close < code_.size()) value = Shaped(variable, close);
            }
            if (value.empty()) {
                result.push_back(code_[i++]);
                continue;
            }
            AppendTo(result, Part(code_, i, variable.open));
            AppendTo(result, value);
            i = close + 1;
        }
        code_ = std::move(result);
    }

  private:
    /// Of numbers or of a structure.
    std::optional<Type> TypeAt(std::size_t i) const {
        if (i == behind_ && code_[i].Is(",")) return last_;   // the declaration goes on
        if (code_[i].kind != TokenKind::Identifier) return std::nullopt;
        if (effect_.symbols.structures.contains(code_[i].text)) {
            Type type;
            type.kind = VariableClass::Structure;
            type.structure = code_[i].text;
            return type;
        }
        const auto named = effect_.symbols.types.find(code_[i].text);
        const std::optional<Type> type =
            named != effect_.symbols.types.end() ? named->second : BuiltInType(code_[i].text, LetterCase::Exact);
        const bool listed = type && (IsNumeric(type->kind) || type->kind == VariableClass::Structure);
        return listed && type->elements == 0 ? type : std::nullopt;
    }

    bool Find(std::size_t i, ListedVariable& variable) const {
        if (i + 4 >= code_.size() || code_[i + 1].kind != TokenKind::Identifier) return false;
        const std::optional<Type> type = TypeAt(i);
        if (!type) return false;
        variable.type = *type;
        std::size_t at = i + 2;
        for (; at + 2 < code_.size() && code_[at].Is("["); at = ClosingBracket(code_, at) + 1)
            variable.sizes.push_back(SizeAt(at + 1));
        variable.open = at + 1;
        return variable.open < code_.size() && IsAssignment(code_, at) && code_[at + 1].Is("{");
    }

    std::size_t SizeAt(std::size_t at) const {
        if (!code_[at + 1].Is("]")) return 0;
        const auto constant = effect_.symbols.constants.find(code_[at].text);
        const double size = constant == effect_.symbols.constants.end() || constant->second.values.empty()
                                ? std::atof(code_[at].text.c_str())
                                : constant->second.values[0];
        return size >= 1 && size <= kMaxElements ? static_cast<std::size_t>(size) : 0;
    }

    /// The list as the compiler takes it; empty when it can stay, or is wrong.
    Tokens Shaped(const ListedVariable& variable, std::size_t close) const {
        const std::vector<Tokens> leaves = LeavesOf(code_, variable.open, close);
        if (variable.type.kind == VariableClass::Structure) return ShapedStructure(variable, leaves);
        const std::size_t width = std::size_t{variable.type.rows} * variable.type.columns;
        std::size_t count = 1;
        for (const std::size_t size : variable.sizes) count *= size;
        if (variable.sizes.size() == 1 && count == 0) count = CountOf(variable, close);
        if (leaves.empty() || count == 0) return {};
        const std::size_t group = leaves.size() == count * width ? width : leaves.size() == count ? 1 : 0;
        if (group == 0 && !variable.sizes.empty()) return {};
        std::vector<std::size_t> sizes = variable.sizes;
        if (sizes.size() == 1) sizes[0] = count;
        std::size_t next = 0;
        Tokens result;
        Write(variable, sizes, 0, leaves, group == 0 ? leaves.size() : group, next, result);
        return result;
    }

    /// One number for each of the structure's, or of those of an array; any other list is left to the compiler.
    Tokens ShapedStructure(const ListedVariable& variable, const std::vector<Tokens>& leaves) const {
        Tokens result;
        std::size_t next = 0;
        const std::string& structure = variable.type.structure;
        const std::size_t count = variable.sizes.empty() ? 1 : variable.sizes[0];
        if (variable.sizes.size() > 1 || count * CountNumbers(structure, leaves.size()) != leaves.size()) return {};
        for (std::size_t i = 0; i < count; ++i) {
            if (!variable.sizes.empty()) AppendText(result, code_[variable.open], i == 0 ? "{" : ",");
            WriteMembers(variable, structure, leaves, next, result);
        }
        if (!variable.sizes.empty()) AppendText(result, code_[variable.open], "}");
        return result;
    }

    /// The numbers that a structure holds; more than `most` when it holds more, or anything else.
    std::size_t CountNumbers(const std::string& structure, std::size_t most, int depth = 0) const {
        constexpr int kDeepest = 16;   // a structure that was declared twice may hold itself
        std::size_t count = 0;
        for (const StructureMember& member : effect_.symbols.structures.at(structure)) {
            const std::size_t elements = std::max<DWORD>(1, member.elements);
            if (count >= most || depth > kDeepest) return most + 1;
            if (IsNumeric(member.type.kind))
                count += elements * member.type.rows * member.type.columns;
            else if (member.type.kind == VariableClass::Structure && elements == 1)
                count += std::max<std::size_t>(1, CountNumbers(member.type.structure, most - count, depth + 1));
            else
                return most + 1;
        }
        return count;
    }

    void WriteMembers(const ListedVariable& variable, const std::string& structure, const std::vector<Tokens>& leaves,
                      std::size_t& next, Tokens& result) const {
        const Token& at = code_[variable.open];
        const char* separator = "{";
        for (const StructureMember& member : effect_.symbols.structures.at(structure)) {
            AppendText(result, at, std::exchange(separator, ","));
            ListedVariable part{member.type, {}, variable.open};
            if (member.elements > 0) part.sizes.push_back(member.elements);
            if (member.type.kind == VariableClass::Structure)
                WriteMembers(variable, member.type.structure, leaves, next, result);
            else
                Write(part, part.sizes, 0, leaves, std::size_t{member.type.rows} * member.type.columns, next, result);
        }
        AppendText(result, at, "}");
    }

    /// Of an array without a size: as many as there are items in its list.
    std::size_t CountOf(const ListedVariable& variable, std::size_t close) const {
        std::size_t items = 0;
        for (std::size_t i = variable.open + 1; i < close; i = EndOfExpression(code_, i, true) + 1) ++items;
        const std::size_t width = std::size_t{variable.type.rows} * variable.type.columns;
        const std::size_t leaves = LeavesOf(code_, variable.open, close).size();
        return leaves == items && items % width == 0 && code_[variable.open + 1].kind == TokenKind::Number
                   ? items / width
                   : items;
    }

    void Write(const ListedVariable& variable, const std::vector<std::size_t>& sizes, std::size_t level,
               const std::vector<Tokens>& leaves, std::size_t group, std::size_t& next, Tokens& result) const {
        const Token& at = code_[variable.open];
        if (level < sizes.size()) {
            for (std::size_t i = 0; i < sizes[level]; ++i) {
                AppendText(result, at, i == 0 ? "{" : ",");
                Write(variable, sizes, level + 1, leaves, group, next, result);
            }
            return AppendText(result, at, "}");
        }
        const std::string& type = variable.type.spelling[0].text;
        AppendText(result, at, group == 1 ? "( " + type + " ) (" : type + " (");
        for (std::size_t i = 0; i < group && next < leaves.size(); ++i, ++next) {
            if (i > 0) AppendText(result, at, ",");
            AppendTo(result, leaves[next]);
        }
        AppendText(result, at, ")");
    }

    ParsedEffect& effect_;
    Tokens& code_;
    std::size_t behind_ = 0;   // the last list, whose variable is of
    Type last_;                // this type
};

}   // namespace

void ShapeLists(ParsedEffect& effect) { ListShaper(effect).Run(); }

}   // namespace sparkrig::fxc
