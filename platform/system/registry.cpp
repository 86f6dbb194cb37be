// Per-user values in a TOML file: one table a key, named with the whole path of the key.
#include <sys/stat.h>

#include <toml++/toml.h>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <sstream>

#include "platform/system/ascii.h"
#include "platform/system/system.h"

namespace sparkrig {
namespace {

struct ErrorSentence {
    LONG error;
    const char* sentence;
};

// clang-format off
constexpr ErrorSentence kErrorSentences[] = {
    {ERROR_SUCCESS,          "The operation completed successfully."},
    {ERROR_FILE_NOT_FOUND,   "The system cannot find the file specified."},
    {ERROR_ACCESS_DENIED,    "Access is denied."},
    {ERROR_INVALID_HANDLE,   "The handle is invalid."},
    {ERROR_MORE_DATA,        "More data is available."},
    {ERROR_BADDB,            "The configuration registry database is corrupt."},
    {ERROR_CANTWRITE,        "The configuration registry key could not be written."},
    {ERROR_UNSUPPORTED_TYPE, "Data of this type is not supported."},
};
// clang-format on

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), AsciiLower);
    return lower;
}

std::filesystem::path RegistryFile() {
    const char* config = std::getenv("XDG_CONFIG_HOME");
    const char* home = std::getenv("HOME");
    const std::filesystem::path folder =
        config && *config ? std::filesystem::path(config) : std::filesystem::path(home ? home : ".") / ".config";
    return folder / "sparkrig" / "registry.toml";
}

/// The whole registry; empty when there is no file yet, nothing when the file cannot be understood.
std::optional<toml::table> ReadRegistry() {
    const std::filesystem::path file = RegistryFile();
    std::error_code error;
    if (!std::filesystem::exists(file, error)) return toml::table();
    try {
        return toml::parse_file(file.string());
    } catch (const toml::parse_error&) {   // also thrown for a file that cannot be opened
        return std::nullopt;
    }
}

/// False for texts that are no UTF-8: they would come back changed, or make the file unreadable for good.
bool ReadsBackAs(const std::string& text, const toml::table& registry) {
    try {
        return toml::parse(text) == registry;
    } catch (const toml::parse_error&) {
        return false;
    }
}

LONG WriteRegistry(const toml::table& registry) {
    std::ostringstream stream;
    stream << registry << '\n';
    const std::string text = stream.str();
    if (!ReadsBackAs(text, registry)) return ERROR_UNSUPPORTED_TYPE;
    const std::filesystem::path file = RegistryFile();
    std::error_code error;
    std::filesystem::create_directories(file.parent_path(), error);
    return ReplaceFileContent(file.c_str(), text.data(), text.size()) ? ERROR_SUCCESS : ERROR_CANTWRITE;
}

/// The entry of that name ignoring letter case, or null.
toml::node* FindEntry(toml::table& table, std::string_view name) {
    const std::string wanted = LowerCase(name);
    for (auto&& [key, node] : table)
        if (LowerCase(key.str()) == wanted) return &node;
    return nullptr;
}

toml::table* FindKey(toml::table& registry, std::string_view path) {
    toml::node* node = FindEntry(registry, path);
    return node ? node->as_table() : nullptr;
}

}   // namespace

LONG RegOpenKeyExA(const char* path, DWORD access, RegistryKey& key) {
    std::optional<toml::table> registry = ReadRegistry();
    if (!registry) return ERROR_BADDB;
    if (!FindKey(*registry, path)) return ERROR_FILE_NOT_FOUND;
    key = {path, access};
    return ERROR_SUCCESS;
}

LONG RegCreateKeyExA(const char* path, DWORD access, RegistryKey& key) {
    std::optional<toml::table> registry = ReadRegistry();
    if (!registry) return ERROR_BADDB;
    if (!FindEntry(*registry, path)) {
        registry->insert(path, toml::table());
        const LONG error = WriteRegistry(*registry);
        if (error != ERROR_SUCCESS) return error;
    } else if (!FindKey(*registry, path)) {
        return ERROR_BADDB;
    }
    key = {path, access};
    return ERROR_SUCCESS;
}

LONG RegQueryValueExA(const RegistryKey& key, const char* name, char* buffer, DWORD& size) {
    if (key.path.empty()) return ERROR_INVALID_HANDLE;
    std::optional<toml::table> registry = ReadRegistry();
    if (!registry) return ERROR_BADDB;
    toml::table* table = FindKey(*registry, key.path);
    toml::node* node = table ? FindEntry(*table, name) : nullptr;
    if (!node) return ERROR_FILE_NOT_FOUND;
    if (!node->is_string()) return ERROR_UNSUPPORTED_TYPE;

    const std::string& text = node->as_string()->get();
    const DWORD capacity = size;
    size = static_cast<DWORD>(std::min<std::size_t>(text.size(), UINT32_MAX - 1u)) + 1;
    if (capacity < size) return ERROR_MORE_DATA;
    std::memcpy(buffer, text.c_str(), size);
    return ERROR_SUCCESS;
}

LONG RegSetValueExA(const RegistryKey& key, const char* name, const char* text) {
    if (key.path.empty()) return ERROR_INVALID_HANDLE;
    if (key.access != KEY_WRITE) return ERROR_ACCESS_DENIED;
    std::optional<toml::table> registry = ReadRegistry();
    if (!registry) return ERROR_BADDB;
    toml::table* table = FindKey(*registry, key.path);
    if (!table) return ERROR_FILE_NOT_FOUND;

    const std::string wanted = LowerCase(name);
    std::string kept = name;   // the spelling that the file has already
    for (auto&& [entry, node] : *table)
        if (LowerCase(entry.str()) == wanted) kept = entry.str();
    table->insert_or_assign(kept, text);
    return WriteRegistry(*registry);
}

void RegCloseKey(RegistryKey& key) { key = {}; }

std::string FormatMessageA(LONG error) {
    for (const ErrorSentence& row : kErrorSentences)
        if (row.error == error) return row.sentence;
    return "Unknown error " + std::to_string(error) + ".";
}

}   // namespace sparkrig
