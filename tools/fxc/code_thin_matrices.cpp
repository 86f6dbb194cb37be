#include <map>

#include <fmt/format.h>

#include "tools/fxc/code_adaption.h"
#include "tools/fxc/matrix_swizzle.h"
#include "tools/fxc/token_tools.h"

namespace sparkrig::fxc {

namespace {

/// A matrix of one row or one column; code has it as a vector (kIntrinsicFunctions).
struct Thin {
    int rows = 0, columns = 0;
    std::size_t dimensions = 0;   // of an array
};

/// float1x4, float3x1; rows 0 for any other word.
Thin ThinType(const Token& token) {
    constexpr std::string_view kWord = "float";
    const std::string& text = token.text;
    if (token.kind != TokenKind::Identifier || !text.starts_with(kWord) || text.size() != 8 || text[6] != 'x')
        return {};
    const int rows = text[5] - '0', columns = text[7] - '0';
    const bool good = rows >= 1 && rows <= 4 && columns >= 1 && columns <= 4 && (rows == 1 || columns == 1);
    return good ? Thin{rows, columns, 0} : Thin{};
}

class ThinMatrices {
  public:
    explicit ThinMatrices(Tokens& code) : code_(code) {}

    void Run() {
        Tokens result;
        while (at_ < code_.size()) {
            if (Product(result) || Transposed(result)) continue;
            if (IsWord(at_ + 1) && code_[at_].kind == TokenKind::Identifier) Learn();
            const Thin* const used = Find(at_);
            result.push_back(code_[at_++]);
            if (used) Pick(*used, result);
        }
        code_ = std::move(result);
    }

  private:
    bool Is(std::size_t at, const char* symbol) const { return at < code_.size() && code_[at].Is(symbol); }
    bool IsWord(std::size_t at) const { return at < code_.size() && code_[at].kind == TokenKind::Identifier; }

    const Thin* Find(std::size_t at) const {
        const auto found = IsWord(at) ? declared_.find(code_[at].text) : declared_.end();
        return found == declared_.end() ? nullptr : &found->second;
    }

    /// TYPE NAME: what the name stands for from here on, and those behind commas.
    void Learn() {
        if (code_[at_].IsName("return") || code_[at_].IsName("else")) return;
        for (std::size_t name = at_ + 1; IsWord(name);) {
            Thin type = ThinType(code_[at_]);
            std::size_t behind = name + 1;
            for (; Is(behind, "["); behind = ClosingBracket(code_, behind) + 1) ++type.dimensions;
            if (type.rows > 0)
                declared_[code_[name].text] = type;
            else
                declared_.erase(code_[name].text);
            const std::size_t end = EndOfExpression(code_, behind, true);
            if (!Is(end, ",") || IsWord(end + 2)) break;   // of a function: the next parameter
            name = end + 1;
        }
    }

    /// [row][column], [row] and ._m00 of a variable, as a vector has them.
    void Pick(const Thin& matrix, Tokens& result) {
        for (std::size_t i = 0; i < matrix.dimensions && Is(at_, "["); ++i) TakeBrackets(&result);
        if (Is(at_, "[")) {
            TakeBrackets(matrix.rows > 1 ? &result : nullptr);
            if (Is(at_, "[")) TakeBrackets(matrix.columns > 1 ? &result : nullptr);
        } else if (Is(at_, ".") && IsWord(at_ + 1)) {
            std::string letters;
            for (const Element& element : ParseMatrixSwizzle(code_[at_ + 1].text))
                letters += "xyzw"[std::max(element.row, element.column)];
            if (letters.empty()) return;
            result.push_back(code_[at_]);
            result.push_back(MadeAt(code_[at_ + 1], TokenKind::Identifier, letters));
            at_ += 2;
        }
    }

    void TakeBrackets(Tokens* result) {
        const std::size_t end = std::min(ClosingBracket(code_, at_) + 1, code_.size());
        if (result) AppendTo(*result, Part(code_, at_, end));
        at_ = end;
    }

    /// mul(COLUMN, ROW): the outer product.
    bool Product(Tokens& result) {
        if (!code_[at_].IsName("mul") || !Is(at_ + 1, "(") || !Is(at_ + 3, ",") || !Is(at_ + 5, ")")) return false;
        const Thin *left = Find(at_ + 2), *right = Find(at_ + 4);
        if (!left || !right || left->rows < 2 || right->columns < 2) return false;
        const std::string a = code_[at_ + 2].text, b = code_[at_ + 4].text;
        std::string text = fmt::format("float{}x{}", left->rows, right->columns);
        for (int i = 0; i < left->rows; ++i) text += fmt::format("{}{} [ {} ] * {}", i == 0 ? " ( " : " , ", a, i, b);
        AppendText(result, code_[at_], text + " )");
        at_ += 6;
        return true;
    }

    /// A vector is its own.
    bool Transposed(Tokens& result) {
        if (!code_[at_].IsName("transpose") || !Is(at_ + 1, "(") || !Is(at_ + 3, ")") || !Find(at_ + 2)) return false;
        result.push_back(code_[at_ + 2]);
        at_ += 4;
        return true;
    }

    Tokens& code_;
    std::size_t at_ = 0;
    std::map<std::string, Thin> declared_;   // scopes do not matter: a name is declared before it is used
};

}   // namespace

void FlattenThinMatrices(Tokens& code) { ThinMatrices(code).Run(); }

}   // namespace sparkrig::fxc
