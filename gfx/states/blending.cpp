#include "gfx/states/blending.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace sparkrig {

namespace {

enum class Kept { Full, Given, Scaled, Unchanged };   // what becomes of the kept alpha
enum class Factor { No, Alpha, Whole };               // what of the texture factor takes the alpha

struct Operation {
    DWORD operation = 0;   // 0: the stage's is left alone
    DWORD argument1 = kNone, argument2 = kNone;
    static constexpr DWORD kNone = 0xFF;
};

constexpr Operation kTexture = {D3DTOP_SELECTARG1, D3DTA_TEXTURE};
constexpr Operation kFactor = {D3DTOP_SELECTARG1, D3DTA_TFACTOR};
constexpr Operation kTextureDiffuse = {D3DTOP_MODULATE, D3DTA_TEXTURE, D3DTA_DIFFUSE};
constexpr Operation kFactorTexture = {D3DTOP_MODULATE, D3DTA_TFACTOR, D3DTA_TEXTURE};
constexpr Operation kLeave = {};

}   // namespace

struct BlendRow {
    int mode;
    Kept kept;
    Operation alpha, colour;
    Factor factor;
    DWORD source, destination;
};

namespace {

// clang-format off
constexpr BlendRow kRows[] = {
    // mode  kept alpha        alpha operation   colour operation  factor          source                 destination
    {  2,    Kept::Full,       kTexture,         kLeave,           Factor::No,     D3DBLEND_ONE,          D3DBLEND_INVSRCCOLOR},
    {  3,    Kept::Full,       kTextureDiffuse,  kLeave,           Factor::No,     D3DBLEND_SRCALPHA,     D3DBLEND_ONE        },
    {  4,    Kept::Full,       kTexture,         kLeave,           Factor::No,     D3DBLEND_INVDESTCOLOR, D3DBLEND_INVSRCCOLOR},
    {  5,    Kept::Full,       kTextureDiffuse,  kLeave,           Factor::No,     D3DBLEND_ZERO,         D3DBLEND_INVSRCCOLOR},
    {  6,    Kept::Full,       kTexture,         kLeave,           Factor::No,     D3DBLEND_ZERO,         D3DBLEND_SRCCOLOR   },
    {  7,    Kept::Given,      kFactorTexture,   kLeave,           Factor::Alpha,  D3DBLEND_SRCALPHA,     D3DBLEND_INVSRCALPHA},
    {  9,    Kept::Full,       kTextureDiffuse,  kLeave,           Factor::Alpha,  D3DBLEND_SRCALPHA,     D3DBLEND_INVSRCALPHA},
    { 10,    Kept::Scaled,     kFactorTexture,   kLeave,           Factor::Alpha,  D3DBLEND_SRCALPHA,     D3DBLEND_INVSRCALPHA},
    { 11,    Kept::Full,       kTexture,         kLeave,           Factor::No,     D3DBLEND_ZERO,         D3DBLEND_INVSRCCOLOR},
    { 12,    Kept::Given,      kFactorTexture,   kTextureDiffuse,  Factor::Alpha,  D3DBLEND_SRCALPHA,     D3DBLEND_ONE        },
    { 13,    Kept::Given,      kFactor,          kLeave,           Factor::Alpha,  D3DBLEND_SRCALPHA,     D3DBLEND_INVSRCALPHA},
    { 14,    Kept::Unchanged,  kLeave,           kLeave,           Factor::No,     D3DBLEND_ZERO,         D3DBLEND_ONE        },
    { 15,    Kept::Unchanged,  kFactor,          kTexture,         Factor::Alpha,  D3DBLEND_ONE,          D3DBLEND_ZERO       },
    { 16,    Kept::Unchanged,  kFactor,          kTexture,         Factor::Whole,  D3DBLEND_ONE,          D3DBLEND_ONE        },
    { 17,    Kept::Given,      kFactorTexture,   kLeave,           Factor::Alpha,  D3DBLEND_ZERO,         D3DBLEND_INVSRCCOLOR},
};
// clang-format on
static_assert(std::ranges::is_sorted(kRows, {}, &BlendRow::mode));

constexpr int kMostModes = 18;
/// The rows by mode; null for a number that is no mode.
constexpr auto kRowOfMode = [] {
    std::array<const BlendRow*, kMostModes> rows = {};
    for (const BlendRow& row : kRows) rows[static_cast<std::size_t>(row.mode)] = &row;
    return rows;
}();

constexpr int kColourAlphaMode = 12;   // sends its colour operation with hardware vertex processing only

int KeptAlpha(Kept kept, int old, int given) {
    switch (kept) {
        case Kept::Full: return 255;
        case Kept::Given: return given;
        case Kept::Scaled: return old * given / 255;
        case Kept::Unchanged: return old;
    }
    return old;
}

}   // namespace

bool FadesByFactor(int mode) {
    const BlendRow* row = mode >= 0 && mode < kMostModes ? kRowOfMode[static_cast<std::size_t>(mode)] : nullptr;
    return row && row->kept == Kept::Given;
}

inline void BlendingState::SendStage(const BlendRow& row, DWORD stage) {
    struct Slots {
        D3DTEXTURESTAGESTATETYPE operation, argument1, argument2;
    };
    const auto send = [&](const Operation& values, const Slots& slots) {
        if (values.operation == 0) return;
        sender_.SetStageState(stage, slots.operation, values.operation);
        sender_.SetStageState(stage, slots.argument1, values.argument1);
        if (values.argument2 != Operation::kNone) sender_.SetStageState(stage, slots.argument2, values.argument2);
    };
    send(row.alpha, {D3DTSS_ALPHAOP, D3DTSS_ALPHAARG1, D3DTSS_ALPHAARG2});
    if (row.mode == kColourAlphaMode && !sender_.Graphics().HardwareProcessing()) return;
    send(row.colour, {D3DTSS_COLOROP, D3DTSS_COLORARG1, D3DTSS_COLORARG2});
    if (row.mode == kColourAlphaMode) sender_.SetStageState(stage + 1, D3DTSS_COLOROP, D3DTOP_DISABLE);
}

int BlendingState::Set(int mode, int alpha, int stage) {
    if (mode == -1) mode = 1;
    if (mode == 1) [[unlikely]] {   // else the compiler makes the rest a call of its own
        now_ = {mode, alpha, alpha};
        sender_.SetRenderState(D3DRS_ALPHABLENDENABLE, DWORD{FALSE});
        return 1;
    }
    const BlendRow* row = mode >= 0 && mode < kMostModes ? kRowOfMode[static_cast<std::size_t>(mode)] : nullptr;
    if (!row) sender_.Reporter().Error("Invalid Blending mode selected!");
    if (stage < 0 || stage + 1 >= static_cast<int>(kTextureStages))
        sender_.Reporter().Error("Invalid stage: %i", stage);

    now_.alpha = KeptAlpha(row->kept, now_.alpha, alpha);
    now_.mode = row->kept == Kept::Scaled ? 7 : mode;
    now_.given_alpha = row->kept == Kept::Scaled ? now_.alpha : alpha;
    sender_.SetRenderState(D3DRS_ALPHABLENDENABLE, DWORD{TRUE});
    SendStage(*row, static_cast<DWORD>(stage));
    if (row->factor == Factor::Alpha) factor_.SetAlpha(now_.given_alpha);
    if (row->factor == Factor::Whole) factor_.Set(static_cast<D3DCOLOR>(now_.given_alpha & 0xFF));
    sender_.SetRenderState(D3DRS_SRCBLEND, row->source);
    sender_.SetRenderState(D3DRS_DESTBLEND, row->destination);
    sender_.SetStageState(static_cast<DWORD>(stage) + 1, D3DTSS_ALPHAOP, D3DTOP_DISABLE);
    return 1;
}

void BlendingState::GoBackTo(const Setting& before) {
    if (now_ == before) return;
    Set(before.mode, before.given_alpha, 0);
    now_ = before;
}

}   // namespace sparkrig
