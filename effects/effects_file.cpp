// Entries, sub-effect blocks in them, stage blocks in these. The lines of a block are walked once: each key finds its
// row in the block's table, the first of equal ones counts; then the rows are read in the order of the table.
#include "effects/effects_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <limits>
#include <list>
#include <map>
#include <type_traits>
#include <utility>

#include "base/config_file_reader.h"
#include "base/config_values.h"
#include "base/nearest_word.h"
#include "base/numeric.h"
#include "effects/effects_file_keys.h"
#include "effects/packed_colour.h"
#include "effects/transform_object.h"
#include "scene/load_scene.h"
#include "scene/matrix_rows.h"

namespace sparkrig {

using namespace effects_file;

namespace {

constexpr int kNameSize = 1024;        // bytes of a name, with its end
constexpr int kTextSize = 8129;        // bytes of any other text
constexpr float kDiagonal = 1.4142f;   // of a unit square: an entry scale of (1, 1) leaves the vertical size
constexpr float kCurveTension = 1.0f;

template <class Row, std::size_t N>
const Row* FindWord(const Row (&rows)[N], const char* word) {
    for (const Row& row : rows)
        if (EqualNoCase(row.key.data(), word)) return &row;
    return nullptr;
}

/// The number of a child key, which has no leading zeros; 0 for any other word.
int ChildNumber(std::string_view word) {
    if (!WordIndex::Same(word.substr(0, kChildKey.size()), kChildKey)) return 0;
    const std::string_view digits = word.substr(kChildKey.size());
    int number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const bool whole = error == std::errc() && end == digits.data() + digits.size();
    return whole && digits.front() != '0' ? std::max(number, 0) : 0;
}

TextPlace ValuePlace(const ConfigLine& line) {
    const std::size_t offset = std::min(line.rest.find_first_not_of(" \t=\""), line.rest.size());
    return {line.place.line, line.place.column + static_cast<int>(line.word.size() + offset)};
}

/// The lines of one block by the rows of its table.
class BlockLines {
  public:
    void Clear() { present_ = 0; }
    /// False when the row has a line already, which stays.
    bool Add(int row, const ConfigLine& line) {
        if ((*this)[row]) return false;
        present_ |= Bit(row);
        lines_[static_cast<std::size_t>(row)] = line;
        return true;
    }
    void Remove(int row) { present_ &= ~Bit(row); }
    /// Null for a row without a line.
    const ConfigLine* operator[](int row) const {
        return (present_ & Bit(row)) != 0 ? &lines_[static_cast<std::size_t>(row)] : nullptr;
    }

  private:
    static std::uint64_t Bit(int row) { return std::uint64_t{1} << row; }
    static_assert(WordIndex::kMostWords <= 64);

    std::uint64_t present_ = 0;
    std::array<ConfigLine, WordIndex::kMostWords> lines_;
};

class EffectsFileLoader {
  public:
    /// With a list for what the file names this is a check.
    EffectsFileLoader(const ErrorClass& reporter, EffectDefinitions& definitions, std::vector<NamedThing>* named)
        : reporter_(reporter), definitions_(definitions), named_(named) {}

    void Load(const char* file) {
        if (IsCheck())
            reader_.GoOnAfterErrors();
        else
            reader_.SetIndexKey("desc");   // its warnings would say of equal names what the errors say
        if (reader_.Load(file, true) != 0) reporter_.Error("Can not open file '%s': ", file);
        for (entry_ = 0; entry_ < reader_.GetBlockCount(); ++entry_) ReadEntryOrGoOn();
        for (const SubEffect* sub : ResolveEmitEffects(definitions_))
            Fault(sub->emit.place, "Emit effect '%s' of effect '%s' not found", sub->emit.name.c_str(),
                  sub->owner->name.c_str());
        if (IsCheck()) WarnOfHiddenTrails();
    }

  private:
    bool IsCheck() const { return named_ != nullptr; }

    /// Which edges an effect's layers are depends on all effects before it.
    void WarnOfHiddenTrails() {
        struct Trail {
            unsigned edges = 0;   // bit 0 for edge 1
            TextPlace place;
        };
        definitions_.effects.ResetIteration();
        while (const VisualEffect* effect = definitions_.effects.GetNext(nullptr)) {
            std::map<std::int32_t, Trail> trails;   // by id
            ForEachSubEffect(*effect, [&trails](const SubEffect& sub) {
                if (sub.emit.trace_number == 0 || sub.count <= 0 || !(sub.emit.per_time > 0)) return;
                Trail& trail = trails[sub.trace.id];
                if (trail.edges == 0) trail.place = sub.emit.place;
                trail.edges |= 1u << (sub.emit.trace_number - 1);
            });
            for (const auto& [id, trail] : trails) WarnOfHiddenTrail(effect->name.c_str(), trail.edges, trail.place);
        }
    }

    void WarnOfHiddenTrail(const char* effect, unsigned edges, TextPlace place) {
        const bool from_one_on = (edges & (edges + 1)) == 0;
        if (from_one_on && edges > 1) return;
        std::string laid;
        for (int edge = 1; edges != 0; ++edge, edges >>= 1)
            if ((edges & 1) != 0) laid += (laid.empty() ? "" : ", ") + std::to_string(edge);
        Warn(place, "The trail of effect '%s' is never drawn: it lays edge %s, and needs two or more from edge 1 on",
             effect, laid.c_str());
    }

    // ---- Entries

    /// In a check an entry that cannot be walked to its end costs no other.
    void ReadEntryOrGoOn() try { ReadEntry(); } catch (const ErrorRecord&) {
        if (!IsCheck()) throw;
    }

    void ReadEntry() {
        reader_.SelectBlock(entry_);
        block_place_ = reader_.CursorPlace();
        children_.clear();
        CollectLines(kEntryKeys);
        AddEffect();
        if (reader_.IsBroken(entry_)) return;
        ReadFields(kEntryKeys, *effect_);
        ReadChildren();
        ForEachBlock(kSubEffectBlocks, [this](SubEffectKind kind) { ReadSubEffect(kind); });
    }

    /// A check goes on with an effect of its own where there can be none of the name.
    void AddEffect() {
        const ConfigLine* desc = lines_[kEntryKeys.Row("desc")];
        char name[kNameSize] = "";
        const bool has_name = ReadWord(desc, name);
        const TextPlace place = has_name ? ValuePlace(*desc) : block_place_;
        reader_.PlaceReports(place);   // of names that the tree refuses
        effect_ = has_name ? definitions_.effects.Insert(name) : nullptr;
        if (!has_name) Fault(place, "Effect entry %i without 'desc' entry", entry_);
        if (has_name && !effect_) Fault(place, "Multiple effect entry '%s' in effects.cfg", name);
        if (effect_)
            definitions_.names.Add(effect_->name = name);
        else
            (effect_ = &unlisted_.emplace_back())->name = name;
        effect_->file_entry = entry_;
    }

    /// From number 1 up to the first that is missing.
    void ReadChildren() {
        const auto by_number = [](const Child& a, const Child& b) { return a.number < b.number; };
        std::stable_sort(children_.begin(), children_.end(), by_number);
        int next = 1;
        for (const Child& child : children_) {
            char name[kTextSize];
            const bool counts = child.number == next && ReadQuotedValue(child.line.rest, name, sizeof name) == 0;
            if (!counts) {
                WarnInCheck(child.line, "is not read");
                continue;
            }
            effect_->children.Add(name);
            ++next;
        }
    }

    /// Calls read(value of the block's row), the cursor in the block, for each block of the cursor's level.
    template <class Value, std::size_t N, class Read>
    void ForEachBlock(const WordRow<Value> (&rows)[N], Read read) {
        char name[kNameSize];
        while (reader_.NextBlock(name, sizeof name)) {
            block_place_ = reader_.CursorPlace();
            const WordRow<Value>* row = FindWord(rows, name);
            if (!row && name[0] != ';')
                Warn(block_place_, "Unknown block name '%s' in effects.cfg%s", name, Hint(name, rows).c_str());
            reader_.EnterBlock();
            if (row) read(row->value);
            reader_.ExitBlock();
        }
    }

    // ---- Sub-effects

    void ReadSubEffect(SubEffectKind kind) {
        switch (kind) {
            case SubEffectKind::Particle:
                return ReadSubEffect(effect_->particles, kParticleKeys, [this](ParticleEffect& particle) {
                    Name(NamedThing::Kind::Texture, lines_[kParticleKeys.Row("texture")], particle.texture_name);
                });
            case SubEffectKind::Mesh:
                return ReadSubEffect(effect_->meshes, kMeshKeys, [this](MeshEffect& mesh) {
                    Name(NamedThing::Kind::Scene, lines_[kMeshKeys.Row("sFile")], mesh.scene_file);
                });
            case SubEffectKind::Special:
                return ReadSubEffect(effect_->specials, kSpecialKeys,
                                     [this](SpecialEffect& special) { ReadSpecialKeys(special); });
        }
    }

    template <class List, class Table, class ReadOwn>
    void ReadSubEffect(List& list, const Table& table, ReadOwn read_own) {
        const int id = list.AddNew();
        auto& sub = *list.Get(id);
        sub.owner = effect_;
        sub.index = id;
        CollectLines(table);
        ReadEmission(sub);
        ReadFields<SubEffect>(table, sub);
        read_own(sub);
        ReadCommonKeys(sub);
        ForEachBlock(kChannelBlocks, [this, &sub](const Channel& channel) { ReadStage(channel, sub); });
    }

    void ReadSpecialKeys(SpecialEffect& special) {
        const ConfigLine* texture = lines_[kSpecialKeys.Row("texture")];
        if (texture) Name(NamedThing::Kind::Texture, texture, special.texture_name);
        D3DXVECTOR3 second = special.colour;
        ReadField(lines_[kSpecialKeys.Row("col2")], second);
        special.second_colour = PackColour(second, kOpaque);
        const ConfigLine* type = lines_[kSpecialKeys.Row("type")];
        char word[kNameSize];
        if (!ReadWord(type, word)) return Fault(block_place_, "No type in special effect '%s'", effect_->name.c_str());
        if (const auto* row = FindWord(kSpecialTypes, word))
            special.type = row->value;
        else
            Fault(ValuePlace(*type), "Unknown special effect type in effect '%s'%s", effect_->name.c_str(),
                  Hint(word, kSpecialTypes).c_str());
    }

    void ReadCommonKeys(SubEffect& sub) {
        sub.scale = Times(sub.scale, effect_->scale);
        const D3DXVECTOR3& entry = effect_->scale;
        sub.vertical_size *= std::sqrt(entry.x * entry.x + entry.y * entry.y) / kDiagonal;
        ReadCurve("LifeCountBez", lines_[kParticleKeys.Row("LifeCountBez")], sub.life_count);
        sub.life_count.ComputeTangents(kCurveTension);
        ReadStartRotation(sub);
        ReadCountType(sub);
        sub.blend_mode = ReadBlendMode(sub);
        ReadTransformObject(sub);
    }

    void ReadStartRotation(SubEffect& sub) {
        D3DXVECTOR3 axis(0, 0, 1);
        float degrees = 0;
        ReadField(lines_[kParticleKeys.Row("RotAxis")], axis);
        if (!ReadField(lines_[kParticleKeys.Row("RotAngle")], degrees)) return;
        D3DXQuaternionRotationAxis(&sub.start_rotation, &axis, degrees * kRadiansPerDegree);
    }

    void ReadCountType(SubEffect& sub) {
        const ConfigLine* line = lines_[kParticleKeys.Row("CountType")];
        char word[kNameSize];
        if (!ReadWord(line, word)) return;
        TakeChoice(*line, word, kCountTypes, "CountType", sub.count_type);
    }

    /// The emission keys count only where there is an emit effect.
    void ReadEmission(SubEffect& sub) {
        constexpr int kFirst = kParticleKeys.Row("EmitEffectPerTime"), kLast = kParticleKeys.Row("EmitEffectVolume");
        const ConfigLine* line = lines_[kParticleKeys.Row("EmitEffect")];
        if (ReadField(line, sub.emit.name)) {
            sub.emit.place = ValuePlace(*line);
            if (sub.emit.name.StartsWith(kTracePrefix))
                Name(NamedThing::Kind::TraceTexture, line, sub.emit.name.c_str() + std::strlen(kTracePrefix));
            return;
        }
        for (int row = kFirst; row <= kLast; ++row) {
            if (lines_[row]) WarnInCheck(*lines_[row], "is not read without EmitEffect");
            lines_.Remove(row);
        }
    }

    int ReadBlendMode(const SubEffect& sub) {
        const auto for_kind = [&](const BlendModes& modes) {
            return sub.kind == SubEffectKind::Mesh ? modes.mesh : modes.other;
        };
        const ConfigLine* line = lines_[kParticleKeys.Row("BlendType")];
        char word[kNameSize];
        if (!ReadWord(line, word))
            return for_kind(sub.emit.name.StartsWith(kTracePrefix) ? kTraceBlendModes : kDefaultBlendModes);
        if (const auto* row = FindWord(kBlendModes, word)) return for_kind(row->value);
        const std::string hint = Hint(word, kBlendModes);
        if (sub.kind == SubEffectKind::Mesh)
            Fault(ValuePlace(*line), "Invalid blend mode '%s' in effects.cfg%s", word, hint.c_str());
        else if (IsCheck())
            Warn(ValuePlace(*line), "Unknown blend mode \"%s\"%s", word, hint.c_str());
        return sub.blend_mode;
    }

    void ReadTransformObject(SubEffect& sub) {
        const ConfigLine* line = lines_[kParticleKeys.Row("TransformObjectFile")];
        const ConfigLine* name_line = lines_[kParticleKeys.Row("TransformObjectName")];
        char file[kNameSize], name[kNameSize];
        if (!ReadWord(line, file)) return;
        if (!ReadWord(name_line, name))
            return Fault(line->place, "'TransformObjectName' missing in effect: '%s'", effect_->name.c_str());
        const KRN_3dScene* scene = TransformScene(ValuePlace(*line), file);
        if (!scene) return;
        if (const KRN_3dObject* node = scene->FindObject(name, true))
            sub.transform_object = CopyTransformObject(*node);
        else
            Fault(ValuePlace(*name_line), "Transformation object '%s' not found in scene of effect: '%s'", name,
                  effect_->name.c_str());
    }

    /// Each file once. Null, in a check, where it can not be loaded.
    const KRN_3dScene* TransformScene(TextPlace place, const char* file) {
        const auto [known, is_new] = transform_scenes_.try_emplace(file);
        if (!is_new) return &known->second;
        reader_.PlaceReports(place);
        try {
            LoadScene(known->second, file);
            return &known->second;
        } catch (const ErrorRecord&) {
            if (!IsCheck()) throw;
        }
        transform_scenes_.erase(known);   // to be reported at the next place too
        return nullptr;
    }

    // ---- Stages

    void ReadStage(const Channel& channel, SubEffect& sub) {
        MotionChannel& stages = sub.*channel.stages;
        VisualEffectMotion& stage = *stages.Get(stages.AddNew());
        stage.concat = channel.concat;
        CollectLines(kMotionKeys);
        ReadStageType(stage);
        if (stage.type == AnimationType::Bezier) ReadStageCurve(stage.curve);
        ReadFields(kMotionKeys, stage);
        stage.rotation_angle *= kRadiansPerDegree;
        ReadTimes(stage);
        ReadConcatType(stage);
        if (channel.stages == &SubEffect::position_stages) stage.scale = Times(stage.scale, sub.scale);
        PrepareStage(stage);
    }

    void ReadStageType(VisualEffectMotion& stage) {
        const ConfigLine* line = lines_[kMotionKeys.Row("type")];
        char word[kNameSize];
        if (!ReadWord(line, word))
            return Fault(block_place_, "No 'type' specified for effect '%s'", effect_->name.c_str());
        TakeChoice(*line, word, kAnimationTypes, "animation type", stage.type);
    }

    void ReadStageCurve(VectorCurve& curve) {
        ReadCurve("curve", lines_[kMotionKeys.Row("curve")], curve);
        if (curve.IsEmpty())
            Fault(lines_[kMotionKeys.Row("type")]->place, "No bezier curve defined in effect '%s'",
                  effect_->name.c_str());
        float loop_end = 0;
        ReadField(lines_[kMotionKeys.Row("curveLoopTime")], loop_end);
        curve.SetLoop(loop_end > 0, loop_end);
        curve.ComputeTangents(kCurveTension);   // last: in a loop the tangents reach across the seam
    }

    void ReadTimes(VisualEffectMotion& stage) {
        D3DXVECTOR3 scale(stage.time_scale.inverse, stage.time_scale.constant, stage.time_scale.linear);
        ReadField(lines_[kMotionKeys.Row("TimeScale")], scale);
        stage.time_scale = {scale.x, scale.y, scale.z};
        const ConfigLine* line = lines_[kMotionKeys.Row("TimeMinMax")];
        float range[2];
        if (!line || !IsRead(*line, ReadVectorValue(line->rest, range, 2))) return;
        WarnOfRemainder(*line, 2);
        stage.time_minimum = range[0];
        stage.time_maximum = range[1];
    }

    void ReadConcatType(VisualEffectMotion& stage) {
        const ConfigLine* line = lines_[kMotionKeys.Row("ConcatType")];
        char word[kNameSize];
        if (!ReadWord(line, word)) return;
        TakeChoice(*line, word, kConcatTypes, "concatenation type", stage.concat);
    }

    // ---- Lines and their values

    /// The value that a word of a closed set stands for; any other word is a fault.
    template <class Value, std::size_t N>
    void TakeChoice(const ConfigLine& line, const char* word, const WordRow<Value> (&rows)[N], const char* what,
                    Value& value) {
        if (const auto* row = FindWord(rows, word))
            value = row->value;
        else
            Fault(ValuePlace(line), "Unknown %s '%s' in effect '%s'%s", what, word, effect_->name.c_str(),
                  Hint(word, rows).c_str());
    }

    /// One walk over the lines of the cursor's level.
    template <class Table>
    void CollectLines(const Table& table) {
        lines_.Clear();
        reader_.ForEachLine([&](const ConfigLine& line) {
            const int row = line.rest.empty() ? -1 : table.index.Find(line.word);
            const int child = row < 0 && &table.index == &kEntryKeys.index ? ChildNumber(line.word) : 0;
            if (child > 0)
                children_.push_back({child, line});
            else if (row < 0)
                WarnOfUnknownKey(line, table.rows);
            else if (!lines_.Add(row, line))
                WarnInCheck(line, "stands here twice, the first one counts");
        });
    }

    template <class Owner, class Table>
    void ReadFields(const Table& table, Owner& owner) {
        for (int row = 0; const auto& [key, target] : table.rows) {
            const ConfigLine* line = lines_[row++];
            if (!line) continue;
            std::visit(
                [&](auto field_of) {
                    if constexpr (!std::is_same_v<decltype(field_of), std::monostate>) ReadField(line, field_of(owner));
                },
                target);
        }
    }

    /// False, the value as it was, without a line or without a value on it.
    template <class Value>
    bool ReadField(const ConfigLine* line, Value& value) {
        return line && IsRead(*line, Read(*line, value));
    }

    bool IsRead(const ConfigLine& line, int code) {
        if (code != 0) WarnInCheck(line, "has no value that can be read");
        return code == 0;
    }

    template <class Value>
    int Read(const ConfigLine& line, Value& value) {
        double number;
        const int code = ReadNumberValue(line.rest, number);
        if (code != 0) return code;
        float digits;
        if (IsCheck() && line.rest.find('=') != std::string_view::npos && ReadVectorValue(line.rest, &digits, 1) != 0)
            WarnInCheck(line, "is no number and reads as 0");
        else
            WarnOfRemainder(line, 1);
        if constexpr (std::is_same_v<Value, bool>)
            value = ToBool(number);
        else if constexpr (std::is_same_v<Value, std::int32_t>)
            value = TruncateToInt(number);
        else
            value = static_cast<Value>(number);
        return 0;
    }
    int Read(const ConfigLine& line, std::uint16_t& value) {
        std::int32_t number;
        const int code = Read(line, number);
        if (code != 0) return code;
        const int nearest = std::clamp<int>(number, 0, std::numeric_limits<std::uint16_t>::max());
        if (nearest != number)
            Warn(ValuePlace(line), "%.*s at line %i is %i, which does not fit into 16 bits: %i is taken",
                 static_cast<int>(line.word.size()), line.word.data(), line.place.line, number, nearest);
        value = static_cast<std::uint16_t>(nearest);
        return 0;
    }
    int Read(const ConfigLine& line, D3DXVECTOR3& value) {
        float numbers[3];
        const int code = ReadVectorValue(line.rest, numbers, 3);
        if (code != 0) return code;
        value = {numbers[0], numbers[1], numbers[2]};
        WarnOfRemainder(line, 3);
        return 0;
    }
    int Read(const ConfigLine& line, String& value) {
        char text[kTextSize];
        const int code = ReadQuotedValue(line.rest, text, sizeof text);
        if (code == 0) value = text;
        return code;
    }

    bool ReadWord(const ConfigLine* line, char (&word)[kNameSize]) {
        return line && IsRead(*line, ReadQuotedValue(line->rest, word, sizeof word));
    }

    template <int Components>
    void ReadCurve(const char* key, const ConfigLine* line, KeyCurve<Components>& curve) {
        if (!line) return;
        numbers_.clear();
        ReadListValue(line->rest, numbers_);
        constexpr std::size_t kGroup = 1 + Components;
        if (numbers_.size() % kGroup != 0) return Fault(ValuePlace(*line), "Invalid %s entry", key);
        for (std::size_t i = 0; i < numbers_.size(); i += kGroup) {
            if (i > 0 && numbers_[i] < numbers_[i - kGroup])
                return Fault(ValuePlace(*line), "Invalid order in bezier curve of entry '%s'", effect_->name.c_str());
            float value[Components];
            std::copy_n(&numbers_[i + 1], Components, value);
            curve.AddKey(numbers_[i], value);
        }
    }

    // ---- Reports

    /// An error, which ends the loading; a check goes on.
    void Fault(TextPlace place, const char* format, ...) __attribute__((format(printf, 3, 4))) {
        char text[kTextSize];
        std::va_list arguments;
        va_start(arguments, format);
        std::vsnprintf(text, sizeof text, format, arguments);
        va_end(arguments);
        reader_.PlaceReports(place);
        try {
            reporter_.Error("%s", text);
        } catch (const ErrorRecord&) {
            if (!IsCheck()) throw;
        }
    }

    void Warn(TextPlace place, const char* format, ...) __attribute__((format(printf, 3, 4))) {
        char text[kTextSize];
        std::va_list arguments;
        va_start(arguments, format);
        std::vsnprintf(text, sizeof text, format, arguments);
        va_end(arguments);
        reader_.PlaceReports(place);
        reporter_.Warning("%s", text);
    }

    /// Of a line that opens a block too: "SCALE {" is the first line of the key "scale".
    void WarnInCheck(const ConfigLine& line, const char* what) {
        if (!IsCheck() || line.opens_block) return;
        Warn(line.place, "Key \"%.*s\" %s", static_cast<int>(line.word.size()), line.word.data(), what);
    }

    /// In a check: what stands behind the numbers of a line and is no comment was meant to be read.
    void WarnOfRemainder(const ConfigLine& line, int numbers) {
        if (!IsCheck() || line.opens_block) return;
        const std::size_t equals = line.rest.find('=');
        std::string_view rest = equals == std::string_view::npos ? line.rest : line.rest.substr(equals + 1);
        for (int i = 0; i < numbers; ++i) {
            rest = SkipBlanks(rest);
            rest = SkipBlanks(rest.substr(std::min(rest.find_first_not_of("0123456789+-.e"), rest.size())));
            if (i + 1 < numbers && rest.starts_with(',')) rest.remove_prefix(1);
        }
        rest = rest.substr(0, rest.find_last_not_of(" \t\r") + 1);
        if (rest.empty() || rest.starts_with(';') || rest.starts_with("//")) return;
        Warn(line.place, "Key \"%.*s\" has \"%.*s\" behind its value, which is not read",
             static_cast<int>(line.word.size()), line.word.data(), static_cast<int>(rest.size()), rest.data());
    }

    template <class Rows>
    void WarnOfUnknownKey(const ConfigLine& line, const Rows& rows) {
        const bool is_syntax = line.opens_block || line.word.starts_with('#') || line.word.starts_with('}');
        if (!IsCheck() || is_syntax) return;
        const std::string word(line.word.substr(0, line.word.find('\t')));
        const char* why = word.size() < line.word.size() ? "a tab does not end it" : "";
        if (line.rest.empty()) why = "neither blank nor \"=\" behind it";
        if (*why)
            Warn(line.place, "No key \"%s\": %s", word.c_str(), why);
        else
            Warn(line.place, "Unknown key \"%s\"%s", word.c_str(), Hint(word, rows).c_str());
    }

    /// In a check, the nearest word of the rows; the same word is asked for often.
    template <class Rows>
    std::string Hint(const std::string& word, const Rows& rows) {
        if (!IsCheck()) return {};
        const auto [known, is_new] = hints_.try_emplace({&rows, word});
        if (!is_new) return known->second;
        std::vector<std::string> candidates;
        for (const auto& row : rows) candidates.emplace_back(row.key);
        const std::string nearest = NearestWord(word, candidates);
        return known->second = nearest.empty() ? "" : ", did you mean \"" + nearest + "\"?";
    }

    /// For a check; without a line, at the block.
    void Name(NamedThing::Kind kind, const ConfigLine* line, const String& name) {
        if (!IsCheck()) return;
        if (name.GetLength() == 0)
            Warn(line ? line->place : block_place_, "A layer of effect '%s' names no %s", effect_->name.c_str(),
                 kind == NamedThing::Kind::Scene ? "scene" : "texture");
        else
            named_->push_back({kind, name.c_str(), line ? ValuePlace(*line) : block_place_});
    }

    struct Child {
        int number;   // of the key
        ConfigLine line;
    };

    const ErrorClass& reporter_;
    EffectDefinitions& definitions_;
    std::vector<NamedThing>* const named_;   // null for no check
    ConfigFileReader reader_;
    int entry_ = 0;
    VisualEffect* effect_ = nullptr;   // of the entry that is read
    std::list<VisualEffect> unlisted_;
    TextPlace block_place_;   // of the entry, or of the block that was entered last
    BlockLines lines_;        // of that block
    std::vector<Child> children_;
    std::vector<float> numbers_;   // memory of ReadCurve
    std::map<std::pair<const void*, std::string>, std::string> hints_;
    std::map<std::string, KRN_3dScene> transform_scenes_;   // by file
};

}   // namespace

void LoadEffectsFile(const char* file, const ErrorClass& reporter, EffectDefinitions& definitions) {
    EffectsFileLoader(reporter, definitions, nullptr).Load(file);
}

std::vector<NamedThing> CheckEffectsFile(const char* file, const ErrorClass& reporter, EffectDefinitions& definitions) {
    std::vector<NamedThing> named;
    try {
        EffectsFileLoader(reporter, definitions, &named).Load(file);
    } catch (const ErrorRecord&) {   // the file cannot be opened, which has been reported
    }
    std::ranges::stable_sort(named, {}, [](const NamedThing& thing) { return thing.place; });
    return named;
}

}   // namespace sparkrig
