#include "app/registry_settings.h"

#include "base/log.h"
#include "platform/system/system.h"

namespace sparkrig {

namespace {

constexpr char kProgramKey[] = "Software\\Vantrell\\Sparkrig", kBackgroundValue[] = "BgrdTexturePath";

/// Reads one value into a path buffer, which stays as it is when there is none. False when the key is missing.
bool ReadValue(const char* key_path, const char* name, char (&buffer)[TesterState::kPathBytes], LONG& result) {
    RegistryKey key;
    if (RegOpenKeyExA(key_path, KEY_READ, key) != ERROR_SUCCESS) return false;
    DWORD size = TesterState::kPathBytes - 1;
    result = RegQueryValueExA(key, name, buffer, size);
    buffer[TesterState::kPathBytes - 1] = 0;
    RegCloseKey(key);
    return true;
}

bool ReadReportedValue(const char* key_path, const char* name, char (&buffer)[TesterState::kPathBytes]) {
    LONG result = ERROR_SUCCESS;
    if (!ReadValue(key_path, name, buffer, result)) return false;
    if (result == ERROR_SUCCESS) return true;
    WriteLog("RegQueryValueEx returned error: %s", FormatMessageA(result).c_str());
    buffer[0] = 0;
    return false;
}

}   // namespace

void ReadRegistrySettings(TesterState& state, KRN_Gfx& gfx, BasePathUse base_path_use) {
    LONG ignored = ERROR_SUCCESS;   // a value that cannot be read leaves the path as it is
    if (base_path_use == BasePathUse::Enter &&
        ReadValue("Software\\Vantrell\\Dunmarch", "BasePath", state.base_path, ignored)) {
        SetCurrentDirectoryA(state.base_path);
        gfx.SetBasePath(state.base_path);
    }
    char texture_path[TesterState::kPathBytes] = "";
    if (ReadReportedValue("Software\\Vantrell\\Kelpscope", "DefaultTexturePath", texture_path)) {
        gfx.SetDefaultTexturePath(texture_path);
    }
    ReadReportedValue(kProgramKey, kBackgroundValue, state.background_path);
}

void StoreBackgroundPath(const char* path) {
    RegistryKey key;
    if (RegCreateKeyExA(kProgramKey, KEY_WRITE, key) != ERROR_SUCCESS) return;
    RegSetValueExA(key, kBackgroundValue, path);
    RegCloseKey(key);
}

}   // namespace sparkrig
