// The operating system as the program sees it: paths, clock, memory, current directory, per-user settings.
#pragma once
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "platform/system/win_types.h"

namespace sparkrig {

// ---- Paths. Data files are named with "\" or "/" and in any letter case.

/// The name under which the disk holds `name`: "\" becomes "/", and each component that does not exist as written is
/// looked up ignoring ASCII letter case. Components that are not found stay as they are, so that a new file can be
/// made.
std::string ResolvePath(const char* name);
/// The absolute path of a file that exists, links followed; for any other name ResolvePath.
std::string RealPath(const char* name);

/// fopen on the resolved path; null with errno set on failure. Folders, pipes and devices are no files.
std::FILE* OpenFileStream(const char* name, const char* mode);

bool FileExists(const char* name);

/// The names of the files in a folder, in no order, folders left out; none when there is no such folder.
std::vector<std::string> ListFiles(const char* folder);

/// Modification time in seconds since 1970, or -1 when there is no such file.
std::int32_t FileModificationTime(const char* name);
std::int32_t FileModificationTime(std::FILE* stream);
/// The same in nanoseconds.
std::int64_t FileModificationNanoseconds(const char* name);

/// Cuts the open file at `size` bytes; what the stream still holds is written first. False with errno set.
bool TruncateStream(std::FILE* stream, std::int32_t size);

/// Gives a file new content, or makes it: written beside it, then renamed over it, so that a failure leaves the old
/// content whole. Permissions and owner survive, links are followed; a device or a pipe takes the bytes itself. False
/// with errno set on failure.
bool ReplaceFileContent(const char* name, const void* data, std::size_t size);

std::string GetCurrentDirectoryA();
bool SetCurrentDirectoryA(const char* name);

// ---- Output that the user asks for. Names are taken as they stand.

/// Makes a folder. True as well when it is there already; false with errno set on failure.
bool MakeFolder(const char* name);

/// Whether the name stands for something that cannot be replaced by a new file: a pipe, a device, a folder.
bool IsSpecialFile(const char* name);

bool IsTerminal(std::FILE* stream);

// ---- Clock and memory

/// A monotonic counter; its frequency is constant.
std::int64_t QueryPerformanceCounter();
std::int64_t QueryPerformanceFrequency();
void Sleep(DWORD milliseconds);

/// Physical memory that is free for new programs, in bytes.
std::uint64_t AvailablePhysicalMemory();

// ---- Per-user registry values, kept in $XDG_CONFIG_HOME/sparkrig/registry.toml (default ~/.config).
// Key and value names ignore letter case.

inline constexpr LONG ERROR_SUCCESS = 0;
inline constexpr LONG ERROR_FILE_NOT_FOUND = 2;
inline constexpr LONG ERROR_ACCESS_DENIED = 5;
inline constexpr LONG ERROR_INVALID_HANDLE = 6;
inline constexpr LONG ERROR_MORE_DATA = 234;
inline constexpr LONG ERROR_BADDB = 1009;   // the file is no valid TOML; it is then never overwritten
inline constexpr LONG ERROR_CANTWRITE = 1013;
inline constexpr LONG ERROR_UNSUPPORTED_TYPE = 1630;   // not a text, or no UTF-8
inline constexpr DWORD KEY_READ = 0x20019;
inline constexpr DWORD KEY_WRITE = 0x20006;

/// An open key below HKEY_CURRENT_USER. Empty while closed.
struct RegistryKey {
    std::string path;
    DWORD access = 0;
};

LONG RegOpenKeyExA(const char* path, DWORD access, RegistryKey& key);
LONG RegCreateKeyExA(const char* path, DWORD access, RegistryKey& key);
/// Reads a text value. size: in, the bytes of the buffer; out, the bytes of the text with its terminator.
LONG RegQueryValueExA(const RegistryKey& key, const char* name, char* buffer, DWORD& size);
LONG RegSetValueExA(const RegistryKey& key, const char* name, const char* text);
void RegCloseKey(RegistryKey& key);

/// The sentence for a system error code, without a line end.
std::string FormatMessageA(LONG error);

// ---- Libraries: the presence probes that the graphics device makes. Both answer true.

bool LoadLibraryA(const char* name);
void FreeLibrary(const char* name);

}   // namespace sparkrig
